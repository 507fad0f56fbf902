// Look-up tables of bytes.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

constexpr std::size_t levelCountOfBytes = 256, mostChannels = 4;

struct Table {
    std::uint8_t of[levelCountOfBytes];

    void make(const std::int32_t *values, const std::int32_t *levels, std::int32_t levelCount);
};

// Levels outside all intervals stay.
void Table::make(const std::int32_t *values, const std::int32_t *levels, std::int32_t levelCount)
{
    for (std::size_t level = 0; level < levelCountOfBytes; ++level)
        of[level] = static_cast<std::uint8_t>(level);
    for (std::int32_t i = 0; i + 1 < levelCount; ++i) {
        const std::int32_t end = clampedLevel(levels[i + 1]), value = values[i] < 0     ? 0
                                                                      : values[i] > 255 ? 255
                                                                                        : values[i];
        for (std::int32_t level = clampedLevel(levels[i]); level < end; ++level)
            of[level] = static_cast<std::uint8_t>(value);
    }
}

void lookUpRow(std::size_t channels, std::size_t written, std::size_t pixels, const Table *tables, unsigned char *out,
               const unsigned char *in)
{
    for (std::size_t i = 0; i < pixels; ++i)
        for (std::size_t channel = 0; channel < written; ++channel)
            out[i * channels + channel] = tables[channel].of[in[i * channels + channel]];
}

KrnStatus lookUp(std::size_t channels, std::size_t written, ConstRaster source, Raster destination, std::int32_t width,
                 std::int32_t height, const std::int32_t *const *values, const std::int32_t *const *levels,
                 const std::int32_t *levelCounts)
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
    Table tables[mostChannels];
    for (std::size_t channel = 0; channel < written; ++channel)
        tables[channel].make(values[channel], levels[channel], levelCounts[channel]);
    const auto row = [&](std::size_t pixels, unsigned char *out, const unsigned char *in) {
        lookUpRow(channels, written, pixels, tables, out, in);
    };
    return overRows(width, height, row, Pixels{destination, channels}, Pixels{source, channels});
}

} // namespace

KRN_KERNEL(TableKernel, krnLUT8uC1)
{
    return lookUp(1, 1, from(source, sourceStep), to(destination, step), width, height, &values, &levels, &levelCount);
}

#define ORV_LUT(layout, written)                                                                                  \
    KRN_KERNEL(TablesKernel, krnLUT8u##layout)                                                                    \
    {                                                                                                             \
        return lookUp(samplesOf(layout), written, from(source, sourceStep), to(destination, step), width, height, \
                      values, levels, levelCounts);                                                               \
    }

ORV_LUT(C3, 3)
ORV_LUT(C4, 4)
ORV_LUT(AC4, 3)

#include "end.h"
