// Validation of image headers.
#include "header_check.h"

#include <cstdint>

namespace orv {
namespace {

// The headers whose masks are being followed, innermost first.
struct MaskChain {
    const OrvImage *image;
    const MaskChain *outer;
    int length;
};

// No operation reads the mask of a mask. A chain that returns to a header in it, or is longer than the limit, is not
// followed further: nothing depends on it, and the check must end.
constexpr int longestChain = 100;

bool worthFollowing(const OrvImage *mask, const MaskChain *chain)
{
    if (chain != nullptr && chain->length >= longestChain)
        return false;
    for (; chain != nullptr; chain = chain->outer)
        if (chain->image == mask)
            return false;
    return true;
}

OrvStatus checkHeader(const OrvImage *image, const MaskChain *outer);

OrvStatus checkMask(const OrvImage *mask, const MaskChain *chain)
{
    if (mask->depth != ORV_DEPTH_1U)
        return ORV_STATUS_BAD_DEPTH + ORV_STATUS_MASK_BASE;
    if (mask->tileInfo != nullptr)
        return ORV_STATUS_MASK_TILED;
    if (!worthFollowing(mask, chain))
        return ORV_STATUS_OK;
    const OrvStatus status = checkHeader(mask, chain);
    return status == ORV_STATUS_OK ? ORV_STATUS_OK : status + ORV_STATUS_MASK_BASE;
}

bool knownDepth(std::int32_t depth)
{
    switch (depth) {
    case ORV_DEPTH_1U:
    case ORV_DEPTH_8U:
    case ORV_DEPTH_8S:
    case ORV_DEPTH_16U:
    case ORV_DEPTH_16S:
    case ORV_DEPTH_32S:
    case ORV_DEPTH_32F:
        return true;
    default:
        return false;
    }
}

OrvStatus checkFields(const OrvImage &image, const char *colorModel, const char *channelSeq, const MaskChain *chain)
{
    if (image.height < 1 || image.width < 1)
        return ORV_STATUS_BAD_IMAGE_SIZE;
    if (image.nChannels < 1)
        return ORV_STATUS_BAD_CHANNELS;
    if (image.nChannels > 1 && image.depth == ORV_DEPTH_1U)
        return ORV_STATUS_BAD_1U_CHANNELS;
    if (colorModel == nullptr || channelSeq == nullptr)
        return ORV_STATUS_BAD_COLOR_MODEL;
    if (!knownDepth(image.depth))
        return ORV_STATUS_BAD_DEPTH;
    if (image.alphaChannel != 0 && image.alphaChannel != image.nChannels)
        return ORV_STATUS_BAD_ALPHA;
    if (image.dataOrder != ORV_DATA_ORDER_PIXEL && image.dataOrder != ORV_DATA_ORDER_PLANE)
        return ORV_STATUS_BAD_ORDER;
    if (image.origin != ORV_ORIGIN_TL && image.origin != ORV_ORIGIN_BL)
        return ORV_STATUS_BAD_ORIGIN;
    if (image.align != ORV_ALIGN_4BYTES && image.align != ORV_ALIGN_8BYTES && image.align != ORV_ALIGN_16BYTES &&
        image.align != ORV_ALIGN_32BYTES)
        return ORV_STATUS_BAD_ALIGN;
    return image.maskROI == nullptr ? ORV_STATUS_OK : checkMask(image.maskROI, chain);
}

OrvStatus checkTiles(const OrvTileInfo &tile)
{
    if (tile.callback == nullptr)
        return ORV_STATUS_NULL_CALLBACK;
    if (tile.width < 1 || tile.height < 1 || tile.width % 8 != 0 || tile.height % 8 != 0)
        return ORV_STATUS_BAD_TILE_SIZE;
    return ORV_STATUS_OK;
}

OrvStatus checkRoi(const OrvROI &roi, std::int32_t nChannels)
{
    if (roi.coi < 0 || roi.coi > nChannels)
        return ORV_STATUS_BAD_COI;
    if (roi.height < 1 || roi.width < 1)
        return ORV_STATUS_BAD_ROI_SIZE;
    if (roi.xOffset < 0 || roi.yOffset < 0)
        return ORV_STATUS_BAD_ROI_OFFSET;
    return ORV_STATUS_OK;
}

OrvStatus firstFailure(const OrvImage *image, const MaskChain *outer)
{
    if (image == nullptr)
        return ORV_STATUS_NULL_HEADER;
    if ((image->imageData == nullptr) == (image->tileInfo == nullptr))
        return ORV_STATUS_NO_RASTER;
    if (image->imageSize < 1 && image->tileInfo == nullptr)
        return ORV_STATUS_BAD_IMAGE_SIZE;
    if (image->widthStep < 1 && image->tileInfo == nullptr)
        return ORV_STATUS_BAD_WIDTH_STEP;
    const MaskChain chain = {image, outer, outer == nullptr ? 1 : outer->length + 1};
    OrvStatus status = checkFields(*image, image->colorModel, image->channelSeq, &chain);
    if (status == ORV_STATUS_OK && image->tileInfo != nullptr)
        status = checkTiles(*image->tileInfo);
    if (status == ORV_STATUS_OK && image->roi != nullptr)
        status = checkRoi(*image->roi, image->nChannels);
    return status;
}

OrvStatus checkHeader(const OrvImage *image, const MaskChain *outer)
{
    const OrvStatus status = firstFailure(image, outer);
    if (status != ORV_STATUS_OK)
        orvSetErrStatus(status);
    return status;
}

} // namespace

OrvStatus checkHeaderFields(const OrvImage &image, const char *colorModel, const char *channelSeq)
{
    return checkFields(image, colorModel, channelSeq, nullptr);
}

} // namespace orv

extern "C" OrvStatus orvCheckImageHeader(const OrvImage *image)
{
    return orv::checkHeader(image, nullptr);
}
