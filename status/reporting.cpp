// The reporting record and its accessors, the texts of the statuses, and the version record.
#include "orv.h"
#include "trace.h"

namespace {

struct Reporting {
    OrvStatus lastStatus;
    int32_t mode;
    OrvErrorCallback handler;
};

// One per process, without a lock: two threads that fail at the same time overwrite each other's status.
Reporting reporting = {ORV_STATUS_OK, ORV_ErrorModeLeaf, orvNulDevReport};

constexpr OrvLibVersion version = {
    .major = 1,
    .minor = 0,
    .build = 1,
    .Name = "orv.dll",
    .Version = "1.0 Beta",
    .InternalVersion = "[1.0.1.15, 03/04/2002]",
    .BuildDate = "Oct  1 2009",
    .CallConv = "Microsoft*",
};

struct StatusText {
    OrvStatus status;
    const char *text;
};

constexpr StatusText plainTexts[] = {
    {ORV_STATUS_OK, "No Error"},
    {ORV_STATUS_BACKTRACE, "Backtrace"},
    {ORV_STATUS_INTERNAL, "Internal error (bad state)"},
    {ORV_STATUS_NO_MEMORY, "Insufficient memory"},
    {ORV_STATUS_BAD_ARGUMENT, "Bad argument"},
    {ORV_STATUS_UNSUPPORTED, "Unsupported function"},
    {ORV_STATUS_NO_CONVERGENCE, "Iteration convergence failed"},
    {ORV_STATUS_AUTOTRACE, "Autotrace call"},
    {ORV_STATUS_NULL_CALLBACK, "Null pointer to callback function"},
    {ORV_STATUS_BAD_TILE_SIZE, "Incorrect size of the tile"},
    {ORV_STATUS_MASK_TILED, "Mask image is taled"}, // [sic]: applications compare these texts
    {ORV_STATUS_NULL_POINTER, "Null pointer"},
    {ORV_STATUS_BAD_VECTOR_LENGTH, "Incorrect vector length"},
    {ORV_STATUS_BAD_FILTER_CONTENT, "Incorrect filter structure content"},
    {ORV_STATUS_BAD_TRANSFORM_CONTENT, "Incorrect transform kernel content"},
    {ORV_STATUS_BAD_FILTER_OFFSET, "Incorrect filter ofset value"}, // [sic]
    {ORV_STATUS_NOT_IMPLEMENTED, "Not implemented"},
};

// A failure of the header check has two texts in one string: the whole string for a mask, and the part after the prefix
// for the image itself.
constexpr int maskPrefixLength = 6;

constexpr StatusText headerTexts[] = {
    {ORV_STATUS_NULL_HEADER, "Mask. Null pointer to an image header"},
    {ORV_STATUS_BAD_IMAGE_SIZE, "Mask. Incorrect image size"},
    {ORV_STATUS_BAD_ROI_OFFSET, "Mask. Incorrect offset of ROI of the image"},
    {ORV_STATUS_NO_RASTER, "Mask. Image must be tiled or must have nonzero data pointer"},
    {ORV_STATUS_BAD_WIDTH_STEP, "Mask. Incorrect widthStep of the image"},
    {ORV_STATUS_BAD_COLOR_MODEL, "Mask. Incorrect Color model or channel sequence of the image"},
    {ORV_STATUS_BAD_CHANNELS, "Mask. Incorrect number of channels in the image"},
    {ORV_STATUS_BAD_1U_CHANNELS, "Mask. Number of channels for 1U depth image must be one"},
    {ORV_STATUS_BAD_DEPTH, "Mask. Incorrect depth value in the image header"},
    {ORV_STATUS_BAD_ALPHA, "Mask. Incorrect alpha channel number in the image header"},
    {ORV_STATUS_BAD_ORDER, "Mask. Incorrect data order value in the image header"},
    {ORV_STATUS_BAD_ORIGIN, "Mask. Incorrect data origin value in the image header"},
    {ORV_STATUS_BAD_ALIGN, "Mask. Incorrect data alignment value in the image header"},
    {ORV_STATUS_BAD_COI, "Mask. Incorrect COI of the image"},
    {ORV_STATUS_BAD_ROI_SIZE, "Mask. Incorrect size of ROI in the image header"},
};

// Two failures of the header check have no mask status, although their strings have the prefix.
constexpr bool maskMayHave(OrvStatus status)
{
    return status != ORV_STATUS_NULL_HEADER && status != ORV_STATUS_BAD_1U_CHANNELS;
}

} // namespace

OrvStatus orvGetErrStatus(void)
{
    return reporting.lastStatus;
}

void orvSetErrStatus(OrvStatus status)
{
    reporting.lastStatus = status;
}

int32_t orvGetErrMode(void)
{
    return reporting.mode;
}

void orvSetErrMode(int32_t mode)
{
    reporting.mode = mode;
}

OrvStatus orvError(OrvStatus status, const char *func, const char *context, const char *file, int32_t line)
{
    if (!orv::isTraceRecord(status))
        reporting.lastStatus = status;
    if (status == ORV_STATUS_OK)
        return ORV_STATUS_OK;
    return reporting.handler(status, func, context, file, line);
}

OrvErrorCallback orvRedirectError(OrvErrorCallback handler)
{
    const OrvErrorCallback previous = reporting.handler;
    reporting.handler = handler != nullptr ? handler : orvNulDevReport;
    return previous;
}

const char *orvErrorStr(OrvStatus status)
{
    for (const StatusText &entry : plainTexts)
        if (entry.status == status)
            return entry.text;
    for (const StatusText &entry : headerTexts) {
        if (entry.status == status)
            return entry.text + maskPrefixLength;
        if (entry.status + ORV_STATUS_MASK_BASE == status && maskMayHave(entry.status))
            return entry.text;
    }
    return "Unknown error or status code";
}

const OrvLibVersion *orvGetLibVersion(void)
{
    return &version;
}
