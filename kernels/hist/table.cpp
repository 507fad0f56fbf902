// Look-up tables of bytes.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "table_blocks.h"

#if ORV_VECTOR_BYTES > 0
#include "table_steps.h"
#endif
#if ORV_SSE41
#include "table_shuffles.h"
#endif

inline std::uint8_t clampedSample(std::int32_t value)
{
    return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// Levels outside all intervals stay. Most intervals have one level, or a table has few.
void Table::make(const std::int32_t *values, const std::int32_t *levels, std::int32_t levelCount)
{
    for (std::size_t level = 0; level < levelCountOfBytes; ++level)
        of[level] = static_cast<std::uint8_t>(level);
    std::int32_t begin = clampedLevel(levels[0]);
    for (std::int32_t i = 0; i + 1 < levelCount; ++i) {
        const std::int32_t end = clampedLevel(levels[i + 1]);
        const std::uint8_t value = clampedSample(values[i]);
        if (begin < end)
            of[begin] = value;
        for (std::int32_t level = begin + 1; level < end; ++level) {
            ORV_NOT_VECTORIZED;
            of[level] = value;
        }
        begin = end;
    }
}

// Results are put into words: a processor can load more often than it can store. The table of a channel comes again
// after so many samples; a fourth sample without a table stays as it was.
template <std::size_t channels, std::size_t written>
void lookUpRow(std::size_t pixels, const Table *tables, unsigned char *out, const unsigned char *in)
{
    constexpr std::size_t atOnce = channels == 3 ? 12 : 4;
    const std::size_t samples = pixels * channels;
    std::size_t at = 0;
    for (; at + atOnce <= samples; at += atOnce) {
        ORV_UNROLLED
        for (std::size_t first = 0; first < atOnce; first += 4) {
            std::uint32_t result = written < channels ? load<std::uint32_t>(out + at + first, 0) & 0xFF000000 : 0;
            ORV_UNROLLED
            for (std::size_t i = 0; i < 4; ++i)
                if ((first + i) % channels < written)
                    result |= std::uint32_t{tables[(first + i) % channels].of[in[at + first + i]]} << 8 * i;
            store(out + at + first, 0, result);
        }
    }
    for (; at < samples; at += channels)
        for (std::size_t channel = 0; channel < written; ++channel)
            out[at + channel] = tables[channel].of[in[at + channel]];
}

// Runs over the rows. Pixels of one table are `together` pixels of one channel.
template <std::size_t channels, std::size_t written> struct Rectangle {
    ConstRaster source;
    Raster destination;
    std::int32_t width, height;
    std::size_t together;

    template <class Row> KrnStatus run(Row row) const
    {
        const auto joined = [&](std::size_t pixels, unsigned char *out, const unsigned char *in) {
            row(pixels * together, out, in);
        };
        return overRows(width, height, joined, Pixels{destination, channels * together},
                        Pixels{source, channels * together});
    }

    KrnStatus lookUp(const Table *tables) const
    {
#if ORV_VECTOR_BYTES > 0
        // Of fewer samples, finding the runs of a table takes longer than it saves.
        constexpr std::size_t manySamples = 1024;
        if (static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * together >= manySamples) {
            RunsOfChannels runs;
            if (runs.find(tables, written))
                return runs.rises ? lookUpSteps<true>(runs, tables) : lookUpSteps<false>(runs, tables);
#if ORV_SSE41
            return lookUpBlocks<channels, channels>(ShuffledTables<channels, written>(tables), tables);
#endif
        }
#endif
        return run([tables](std::size_t pixels, unsigned char *out, const unsigned char *in) {
            lookUpRow<channels, written>(pixels, tables, out, in);
        });
    }

#if ORV_VECTOR_BYTES > 0
    template <bool rises> KrnStatus lookUpSteps(const RunsOfChannels &runs, const Table *tables) const
    {
        constexpr std::size_t period = channels == 3 ? 3 : 1;
        Steps<period> steps;
        steps.make(runs, written);
        const auto block = [&steps](auto samples) { return steps.template lookUp<rises>(samples); };
        constexpr std::size_t atOnce = channels == 3 ? 3 : 4;
        return lookUpBlocks<atOnce, period>(block, tables);
    }

    // Rows may be too short for as many vectors at once, and for any.
    template <std::size_t atOnce, std::size_t atLeast, class LookUp>
    KrnStatus lookUpBlocks(const LookUp &block, const Table *tables) const
    {
        constexpr bool keepsFourth = written < channels;
        return run([&block, tables](std::size_t pixels, unsigned char *out, const unsigned char *in) {
            const std::size_t bytes = pixels * channels;
            if (bytes >= Block<atOnce>::bytes)
                overBlocks<atOnce, keepsFourth>(bytes, block, out, in);
            else if (atLeast < atOnce && bytes >= Block<atLeast>::bytes)
                overBlocks<atLeast, keepsFourth>(bytes, block, out, in);
            else
                lookUpRow<channels, written>(pixels, tables, out, in);
        });
    }
#endif
};

template <std::size_t channels, std::size_t written>
KrnStatus lookUp(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height,
                 const std::int32_t *const *values, const std::int32_t *const *levels, const std::int32_t *levelCounts)
{
    if (source.data == nullptr || destination.data == nullptr || values == nullptr || levels == nullptr ||
        levelCounts == nullptr)
        return KRN_NULL_POINTER;
    for (std::size_t channel = 0; channel < written; ++channel)
        if (values[channel] == nullptr || levels[channel] == nullptr)
            return KRN_NULL_POINTER;
    if (const KrnStatus status = testRasters(width, height, source, ConstRaster(destination)); status != KRN_OK)
        return status;
    for (std::size_t channel = 0; channel < written; ++channel)
        if (levelCounts[channel] < 2)
            return KRN_BAD_TABLE_LEVELS;
    Table tables[written];
    bool same = true;
    for (std::size_t channel = 0; channel < written; ++channel) {
        tables[channel].make(values[channel], levels[channel], levelCounts[channel]);
        same = same && tables[channel] == tables[0];
    }
    if (same && channels == written)
        return Rectangle<1, 1>{source, destination, width, height, channels}.lookUp(tables);
    return Rectangle<channels, written>{source, destination, width, height, 1}.lookUp(tables);
}

} // namespace

KRN_KERNEL(TableKernel, krnLUT8uC1)
{
    return lookUp<1, 1>(from(source, sourceStep), to(destination, step), width, height, &values, &levels, &levelCount);
}

#define ORV_LUT(layout, written)                                                                                  \
    KRN_KERNEL(TablesKernel, krnLUT8u##layout)                                                                    \
    {                                                                                                             \
        return lookUp<samplesOf(layout), written>(from(source, sourceStep), to(destination, step), width, height, \
                                                  values, levels, levelCounts);                                   \
    }

ORV_LUT(C3, 3)
ORV_LUT(C4, 4)
ORV_LUT(AC4, 3)

#include "end.h"
