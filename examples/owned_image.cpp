// Images that release themselves, and failures that end the program with one line.
#include "owned_image.h"

#include <cstdio>

namespace sheet {
namespace {

char lastReport[256]; // global, because a handler has no argument for context

OrvStatus keepReport(OrvStatus status, const char *func, const char *context, const char *, std::int32_t)
{
    std::snprintf(lastReport, sizeof lastReport, "%s: %s%s%s%s", func, orvErrorStr(status), *context != 0 ? " (" : "",
                  context, *context != 0 ? ")" : "");
    return status;
}

} // namespace

void takeReports()
{
    orvSetErrMode(ORV_ErrorModeParent);
    orvRedirectError(keepReport);
}

void check(OrvStatus status)
{
    if (status < 0)
        throw Failure(lastReport);
}

void ReleaseImage::operator()(OrvImage *image) const
{
    orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
}

Image owned(OrvImage *image)
{
    // The library does not report exhausted memory for a header.
    if (image == nullptr)
        throw Failure(lastReport[0] != 0 ? lastReport : "not enough memory for an image header");
    return Image(image);
}

Image newImage(Layout layout, Size size)
{
    const char *model = layout.channels == 1 ? "GRAY" : layout.channels == 3 ? "RGB" : "RGBA";
    Image image = owned(orvCreateImageHeader(layout.channels, layout.alpha, layout.depth, model, model, layout.order,
                                             ORV_ORIGIN_TL, ORV_ALIGN_32BYTES, size.width, size.height, nullptr,
                                             nullptr, nullptr, nullptr));
    if (layout.depth == ORV_DEPTH_32F)
        orvAllocateImageFP(image.get(), 1, 0.0f);
    else
        orvAllocateImage(image.get(), 1, 0);
    if (image->imageData == nullptr)
        throw Failure(lastReport);
    return image;
}

OrvImage viewOf(const OrvImage &image, OrvROI *rectangle, OrvImage *mask)
{
    OrvImage view = image;
    view.roi = rectangle;
    view.maskROI = mask;
    return view;
}

Image ellipseMask(Size size)
{
    Image mask = newImage({.depth = ORV_DEPTH_1U, .channels = 1}, size);
    for (std::int32_t y = 0; y < size.height; ++y) {
        std::uint8_t *row = rowOf<std::uint8_t>(*mask, y);
        const double v = (2.0 * y + 1) / size.height - 1;
        for (std::int32_t x = 0; x < size.width; ++x) {
            const double u = (2.0 * x + 1) / size.width - 1;
            row[x] = u * u + v * v <= 1 ? 255 : 0;
        }
    }
    return mask;
}

} // namespace sheet
