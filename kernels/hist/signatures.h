// Signatures of histograms, look-up tables and thresholds. Levels are samples of 8 bits, or bounds between them: 0 to
// 256. Those beyond are taken as the nearest bound.
#pragma once

#include "../dispatch/signatures.h"
#include "../services/signatures.h"

namespace orv {

// Counts samples by intervals: interval i holds the levels from levels[i] to levels[i + 1] - 1. A number of levels has
// one interval less.
#define KRN_PARAMETERS_HistogramKernel                                                                    \
    const void *source, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t *counts, \
        const std::int32_t *levels, std::int32_t levelCount
KRN_SIGNATURE(HistogramKernel)

// The same with an array for each channel.
#define KRN_PARAMETERS_HistogramsKernel                                                                          \
    const void *source, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t *const *counts, \
        const std::int32_t *const *levels, const std::int32_t *levelCounts
KRN_SIGNATURE(HistogramsKernel)

// Replaces the levels of each interval by one value. Levels outside all intervals stay.
#define KRN_PARAMETERS_TableKernel                                                                         \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const std::int32_t *values, const std::int32_t *levels, std::int32_t levelCount
KRN_SIGNATURE(TableKernel)

#define KRN_PARAMETERS_TablesKernel                                                                        \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const std::int32_t *const *values, const std::int32_t *const *levels,         \
        const std::int32_t *levelCounts
KRN_SIGNATURE(TablesKernel)

// Replaces samples on one side of a level by a value. Both are cut to the sample.
#define KRN_PARAMETERS_ReplaceKernel                                                                       \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t level, std::int32_t value
KRN_SIGNATURE(ReplaceKernel)
#define KRN_PARAMETERS_ReplaceInPlaceKernel \
    void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t level, std::int32_t value
KRN_SIGNATURE(ReplaceInPlaceKernel)

// Gives samples below a level one value and all others another. The level is cut to the source's sample, the values to
// the destination's.
#define KRN_PARAMETERS_BinarizeKernel                                                                      \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t level, std::int32_t low, std::int32_t high
KRN_SIGNATURE(BinarizeKernel)

// The bound that a level means.
[[gnu::always_inline]] constexpr std::int32_t clampedLevel(std::int32_t level)
{
    return level < 0 ? 0 : level > 256 ? 256 : level;
}

} // namespace orv
