// Comparisons of the images of a call.
#include "comparisons.h"

namespace orv {
namespace {

bool ordersDiffer(const OrvImage &source, const OrvImage &destination, MaskOrder maskOrder)
{
    return source.dataOrder != destination.dataOrder &&
           (maskOrder == MaskOrder::Compared || source.depth != ORV_DEPTH_1U);
}

bool channelsDiffer(const OrvImage &a, const OrvImage &b)
{
    return channelsToProcess(a) != channelsToProcess(b);
}

} // namespace

Refusal comparePair(const OrvImage &source, const OrvImage &destination, const PairTexts &texts, MaskOrder maskOrder)
{
    const bool alphaDiffers = texts.alphaChannel != nullptr && source.alphaChannel != destination.alphaChannel;
    return firstOf({{source.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, texts.depth},
                    {ordersDiffer(source, destination, maskOrder), ORV_STATUS_BAD_ARGUMENT, texts.dataOrder},
                    {alphaDiffers, ORV_STATUS_BAD_ARGUMENT, texts.alphaChannel},
                    {channelsDiffer(source, destination), ORV_STATUS_BAD_CHANNELS, ""},
                    {anyTiled(&source, &destination), ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

Refusal compareTriple(const OrvImage &a, const OrvImage &b, const OrvImage &destination, MaskOrder maskOrder)
{
    return firstOf({{a.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "(srcImageA->depth != dstImage->depth)"},
                    {b.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "(srcImageB->depth != dstImage->depth)"},
                    {ordersDiffer(a, destination, maskOrder), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImageA->dataOrder != dstImage->dataOrder)"},
                    {ordersDiffer(b, destination, maskOrder), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImageB->dataOrder != dstImage->dataOrder)"},
                    {channelsDiffer(a, destination) || channelsDiffer(b, destination), ORV_STATUS_BAD_CHANNELS, ""},
                    {anyTiled(&a, &b, &destination), ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

Refusal checkTriple(const OrvImage *a, const OrvImage *b, const OrvImage *destination, MaskOrder maskOrder)
{
    const Refusal refusal = checkHeaders(a, b, destination);
    return refusal.status != ORV_STATUS_OK ? refusal : compareTriple(*a, *b, *destination, maskOrder);
}

} // namespace orv
