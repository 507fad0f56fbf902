// Checks that many units share: a list of them answers with the first that refuses, and the unit reports that under its
// own name.
#pragma once

#include "area.h"

namespace orv {

// A status and its text; the status is 0 where nothing was refused.
struct Refusal {
    OrvStatus status;
    const char *context;
};

constexpr Refusal nothingRefused = {ORV_STATUS_OK, ""};

template <class... Images> bool anyTiled(const Images *...images)
{
    return (... || (images->tileInfo != nullptr));
}

// Channels to process, where an operation does not count an alpha channel.
inline std::int32_t channelsWithoutAlpha(const OrvImage &image)
{
    const std::int32_t channels = channelsToProcess(image);
    return channels == 4 && image.alphaChannel != 0 ? 3 : channels;
}

// The header that is refused first, with the status that its check has stored.
template <class... Images> Refusal checkHeaders(const Images *...images)
{
    if ((... || (orvCheckImageHeader(images) != ORV_STATUS_OK)))
        return {orvGetErrStatus(), "Incorrect Image"};
    return nothingRefused;
}

// How a unit names its two images in its texts; null for a comparison that it does not make.
struct PairTexts {
    const char *depth, *dataOrder, *alphaChannel;
};

constexpr PairTexts textsOfImages = {"(srcImage->depth != dstImage->depth)",
                                     "(srcImage->dataOrder != dstImage->dataOrder)", nullptr};
constexpr PairTexts textsWithAlpha = {"(src->depth != dst->depth)", "(src->dataOrder != dst->dataOrder)",
                                      "(src->alphaChannel != dst->alphaChannel)"};

// Whether the data order of mask samples, which have but one channel, is compared like that of others.
enum class MaskOrder { Ignored, Compared };

// A source and a destination with valid headers: depth, data order, alpha channel, channels to process, tiles.
Refusal comparePair(const OrvImage &source, const OrvImage &destination, const PairTexts &texts,
                    MaskOrder maskOrder = MaskOrder::Ignored);

// Two sources and a destination, headers included: depths, data orders, channels to process, tiles.
Refusal checkTriple(const OrvImage *a, const OrvImage *b, const OrvImage *destination, MaskOrder maskOrder);

// The part of checkTriple() behind the headers.
Refusal compareTriple(const OrvImage &a, const OrvImage &b, const OrvImage &destination, MaskOrder maskOrder);

} // namespace orv
