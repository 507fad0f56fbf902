// Histograms of bytes.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

constexpr std::size_t levelCountOfBytes = 256, mostChannels = 4;

// Counts of each level, channel by channel.
using Counts = std::uint32_t[mostChannels][levelCountOfBytes];

void countRow(std::size_t channels, std::size_t pixels, const unsigned char *in, Counts &counts)
{
    for (std::size_t i = 0; i < pixels; ++i)
        for (std::size_t channel = 0; channel < channels; ++channel)
            ++counts[channel][in[i * channels + channel]];
}

// The counts of an interval are those of its levels.
void foldCounts(const std::uint32_t (&ofLevels)[levelCountOfBytes], const std::int32_t *levels, std::int32_t levelCount,
                std::int32_t *counts)
{
    for (std::int32_t i = 0; i + 1 < levelCount; ++i) {
        const std::int32_t end = clampedLevel(levels[i + 1]);
        std::uint32_t sum = 0;
        for (std::int32_t level = clampedLevel(levels[i]); level < end; ++level)
            sum += ofLevels[level];
        counts[i] = static_cast<std::int32_t>(sum);
    }
}

KrnStatus histogram(std::size_t channels, std::size_t counted, ConstRaster source, std::int32_t width,
                    std::int32_t height, std::int32_t *const *counts, const std::int32_t *const *levels,
                    const std::int32_t *levelCounts)
{
    if (source.data == nullptr || counts == nullptr || levels == nullptr || levelCounts == nullptr)
        return KRN_NULL_POINTER;
    for (std::size_t channel = 0; channel < counted; ++channel)
        if (counts[channel] == nullptr || levels[channel] == nullptr)
            return KRN_NULL_POINTER;
    if (const KrnStatus status = testRasters(width, height, source); status != KRN_OK)
        return status;
    for (std::size_t channel = 0; channel < counted; ++channel)
        if (levelCounts[channel] < 2)
            return KRN_BAD_HISTOGRAM_LEVELS;
    Counts ofLevels = {};
    const auto row = [&](std::size_t pixels, const unsigned char *in) { countRow(channels, pixels, in, ofLevels); };
    overRows(width, height, row, Pixels{source, channels});
    for (std::size_t channel = 0; channel < counted; ++channel)
        foldCounts(ofLevels[channel], levels[channel], levelCounts[channel], counts[channel]);
    return KRN_OK;
}

} // namespace

KRN_KERNEL(HistogramKernel, krnHistogram8uC1)
{
    return histogram(1, 1, from(source, step), width, height, &counts, &levels, &levelCount);
}

#define ORV_HISTOGRAM(layout, counted)                                                                                \
    KRN_KERNEL(HistogramsKernel, krnHistogram8u##layout)                                                              \
    {                                                                                                                 \
        return histogram(samplesOf(layout), counted, from(source, step), width, height, counts, levels, levelCounts); \
    }

ORV_HISTOGRAM(C3, 3)
ORV_HISTOGRAM(C4, 4)
ORV_HISTOGRAM(AC4, 3)

#include "end.h"
