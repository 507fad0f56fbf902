// Checks as values, and the checks that many units share. A list of checks gives the first that refuses.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"
#include "orv.h"

namespace orv {

// A status and its text. The status is 0 if nothing was refused.
struct Refusal {
    OrvStatus status;
    const char *text;
};

constexpr Refusal nothingRefused = {ORV_STATUS_OK, ""};

// A check that has been made: whether it refuses the call, and how that is reported.
struct Check {
    bool refuses;
    OrvStatus status;
    const char *text;
};

// The first check that refuses. All conditions are evaluated, so none may need an earlier one.
template <std::size_t count> inline Refusal firstOf(const Check (&checks)[count])
{
    // Unrolled, so that the list never stands in memory.
#pragma GCC unroll 16
    for (std::size_t i = 0; i < count; ++i)
        if (checks[i].refuses)
            return {checks[i].status, checks[i].text};
    return nothingRefused;
}

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

// The texts of a unit's comparisons. A null text omits the comparison.
struct PairTexts {
    const char *depth, *dataOrder, *alphaChannel;
};

constexpr PairTexts textsOfImages = {"(srcImage->depth != dstImage->depth)",
                                     "(srcImage->dataOrder != dstImage->dataOrder)", nullptr};
constexpr PairTexts textsWithAlpha = {"(src->depth != dst->depth)", "(src->dataOrder != dst->dataOrder)",
                                      "(src->alphaChannel != dst->alphaChannel)"};

// Whether the data order of 1U images is compared too. They have one channel, so both orders are the same.
enum class MaskOrder { Ignored, Compared };

// A source and a destination with valid headers: depth, data order, alpha channel, channels to process, tiles.
Refusal comparePair(const OrvImage &source, const OrvImage &destination, const PairTexts &texts,
                    MaskOrder maskOrder = MaskOrder::Ignored);

// Two sources and a destination, headers included: depths, data orders, channels to process, tiles.
Refusal checkTriple(const OrvImage *a, const OrvImage *b, const OrvImage *destination, MaskOrder maskOrder);

// The part of checkTriple() behind the headers.
Refusal compareTriple(const OrvImage &a, const OrvImage &b, const OrvImage &destination, MaskOrder maskOrder);

} // namespace orv
