// Histograms of bytes.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

constexpr std::size_t levelCountOfBytes = 256;

// Pixels of four samples and of three make blocks of 16 samples and of 12.
template <std::size_t channels> constexpr std::size_t placesOf = channels == 3 ? 12 : 16;

// Pairs of places come again with the same two channels.
template <std::size_t channels> constexpr std::size_t pairsOf = channels == 4 ? 2 : channels;

// Counts of levels by the place of the sample in a block. An increment waits for the last one of the same counter, so
// that equal samples near each other need counters of their own. Those of two neighbouring places stand side by side,
// since a processor can write twice to one line of its cache at a time.
struct Counts {
    static constexpr std::size_t mostPlaces = 16;
    // The distance of pairs is no power of two: loads wait for stores to the same place of another page.
    static constexpr std::size_t padding = 16, pairSize = 2 * levelCountOfBytes + padding;

    std::uint32_t pairs[mostPlaces / 2][pairSize];

    std::uint32_t &of(std::size_t place, std::size_t level) { return pairs[place / 2][2 * level + place % 2]; }
    void clear(std::size_t places)
    {
        for (std::size_t pair = 0; 2 * pair < places; ++pair)
            for (std::uint32_t &count : pairs[pair])
                count = 0;
    }
    template <std::size_t channels> void addUp();
};

// Leaves the counts of each channel at the first place that has it.
template <std::size_t channels> void Counts::addUp()
{
    constexpr std::size_t period = pairsOf<channels>;
    for (std::size_t first = 0; first < period; ++first) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < 2 * levelCountOfBytes; ++i) {
            std::uint32_t sum = pairs[first][i];
            for (std::size_t pair = first + period; pair < placesOf<channels> / 2; pair += period)
                sum += pairs[pair][i];
            pairs[first][i] = sum;
        }
    }
    for (std::size_t place = channels; place < 2 * period; ++place)
        for (std::size_t level = 0; level < levelCountOfBytes; ++level)
            of(place % channels, level) += of(place, level);
}

// Counts whole blocks, and returns how many bytes that were. Bytes are taken from words: increments load and store
// enough already.
template <std::size_t channels, std::size_t counted>
inline std::size_t countBlocks(std::size_t bytes, const unsigned char *in, Counts &counts)
{
    constexpr std::size_t places = placesOf<channels>;
    std::size_t at = 0;
    for (; at + places <= bytes; at += places) {
        ORV_UNROLLED
        for (std::size_t place = 0; place < places; place += 4) {
            const std::uint32_t word = load<std::uint32_t>(in + at + place, 0);
            ORV_UNROLLED
            for (std::size_t i = 0; i < 4; ++i)
                if ((place + i) % channels < counted)
                    ++counts.of(place + i, word >> 8 * i & 0xFF);
        }
    }
    return at;
}

template <std::size_t channels, std::size_t counted>
inline void countPixels(std::size_t pixels, const unsigned char *in, Counts &counts)
{
    for (; pixels > 0; --pixels, in += channels)
        for (std::size_t channel = 0; channel < counted; ++channel)
            ++counts.of(channel, in[channel]);
}

template <std::size_t channels, std::size_t counted>
void countRaster(ConstRaster source, std::int32_t width, std::int32_t height, Counts &counts)
{
    // Of fewer samples, clearing and adding up the counts of all places takes longer than it saves.
    constexpr std::size_t manySamples = 8192;
    const bool byPlaces = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * channels >= manySamples;
    counts.clear(byPlaces ? placesOf<channels> : channels);
    const auto row = [&](std::size_t pixels, const unsigned char *in) {
        const std::size_t done = byPlaces ? countBlocks<channels, counted>(pixels * channels, in, counts) : 0;
        countPixels<channels, counted>(pixels - done / channels, in + done, counts);
    };
    overRows(width, height, row, Pixels{source, channels});
    if (byPlaces)
        counts.addUp<channels>();
}

// The count of an interval is the difference of two running sums: intervals may be many or long, and may overlap. Sums
// wrap, and their differences are right again.
void countIntervals(Counts &ofLevels, std::size_t channel, const std::int32_t *levels, std::int32_t levelCount,
                    std::int32_t *counts)
{
    std::uint32_t below[levelCountOfBytes + 1] = {0};
    for (std::size_t level = 0; level < levelCountOfBytes; ++level)
        below[level + 1] = below[level] + ofLevels.of(channel, level);
    std::int32_t begin = clampedLevel(levels[0]);
    for (std::int32_t i = 0; i + 1 < levelCount; ++i) {
        const std::int32_t end = clampedLevel(levels[i + 1]);
        counts[i] = static_cast<std::int32_t>(begin < end ? below[end] - below[begin] : 0);
        begin = end;
    }
}

template <std::size_t channels, std::size_t counted>
KrnStatus histogram(ConstRaster source, std::int32_t width, std::int32_t height, std::int32_t *const *counts,
                    const std::int32_t *const *levels, const std::int32_t *levelCounts)
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
    Counts ofLevels;
    countRaster<channels, counted>(source, width, height, ofLevels);
    for (std::size_t channel = 0; channel < counted; ++channel)
        countIntervals(ofLevels, channel, levels[channel], levelCounts[channel], counts[channel]);
    return KRN_OK;
}

} // namespace

KRN_KERNEL(HistogramKernel, krnHistogram8uC1)
{
    return histogram<1, 1>(from(source, step), width, height, &counts, &levels, &levelCount);
}

#define ORV_HISTOGRAM(layout, counted)                                                                                \
    KRN_KERNEL(HistogramsKernel, krnHistogram8u##layout)                                                              \
    {                                                                                                                 \
        return histogram<samplesOf(layout), counted>(from(source, step), width, height, counts, levels, levelCounts); \
    }

ORV_HISTOGRAM(C3, 3)
ORV_HISTOGRAM(C4, 4)
ORV_HISTOGRAM(AC4, 3)

#include "end.h"
