// Comparisons of the images of a call.
#include "comparisons.h"

namespace orv {
namespace {

bool ordersDiffer(const OrvImage &source, const OrvImage &destination, MaskOrder maskOrder)
{
    return source.dataOrder != destination.dataOrder &&
           (maskOrder == MaskOrder::Compared || source.depth != ORV_DEPTH_1U);
}

} // namespace

Refusal comparePair(const OrvImage &source, const OrvImage &destination, const PairTexts &texts, MaskOrder maskOrder)
{
    if (source.depth != destination.depth)
        return {ORV_STATUS_BAD_ARGUMENT, texts.depth};
    if (ordersDiffer(source, destination, maskOrder))
        return {ORV_STATUS_BAD_ARGUMENT, texts.dataOrder};
    if (texts.alphaChannel != nullptr && source.alphaChannel != destination.alphaChannel)
        return {ORV_STATUS_BAD_ARGUMENT, texts.alphaChannel};
    if (channelsToProcess(source) != channelsToProcess(destination))
        return {ORV_STATUS_BAD_CHANNELS, ""};
    if (anyTiled(&source, &destination))
        return {ORV_STATUS_NOT_IMPLEMENTED, ""};
    return nothingRefused;
}

Refusal compareTriple(const OrvImage &a, const OrvImage &b, const OrvImage &destination, MaskOrder maskOrder)
{
    if (a.depth != destination.depth)
        return {ORV_STATUS_BAD_ARGUMENT, "(srcImageA->depth != dstImage->depth)"};
    if (b.depth != destination.depth)
        return {ORV_STATUS_BAD_ARGUMENT, "(srcImageB->depth != dstImage->depth)"};
    if (ordersDiffer(a, destination, maskOrder))
        return {ORV_STATUS_BAD_ARGUMENT, "(srcImageA->dataOrder != dstImage->dataOrder)"};
    if (ordersDiffer(b, destination, maskOrder))
        return {ORV_STATUS_BAD_ARGUMENT, "(srcImageB->dataOrder != dstImage->dataOrder)"};
    const std::int32_t channels = channelsToProcess(destination);
    if (channelsToProcess(a) != channels || channelsToProcess(b) != channels)
        return {ORV_STATUS_BAD_CHANNELS, ""};
    if (anyTiled(&a, &b, &destination))
        return {ORV_STATUS_NOT_IMPLEMENTED, ""};
    return nothingRefused;
}

Refusal checkTriple(const OrvImage *a, const OrvImage *b, const OrvImage *destination, MaskOrder maskOrder)
{
    const Refusal refusal = checkHeaders(a, b, destination);
    return refusal.status != ORV_STATUS_OK ? refusal : compareTriple(*a, *b, *destination, maskOrder);
}

} // namespace orv
