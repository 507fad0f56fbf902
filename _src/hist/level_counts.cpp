// The counts of level_counts.h.
#include "hist/level_counts.h"

#include <algorithm>

namespace orv {

bool LevelCounts::take(std::int32_t channels)
{
    if (channels <= fewChannels)
        return true;
    const std::int64_t counts = std::int64_t{channels} * byteLevels;
    if (!many_.take(counts * std::int64_t{sizeof *counts_}))
        return false;
    counts_ = reinterpret_cast<std::uint32_t *>(many_.data());
    std::fill_n(counts_, counts, 0u);
    return true;
}

KrnStatus LevelCounts::add(ConstRaster samples, Size size, Layout layout, std::int32_t channel)
{
    constexpr std::int32_t bounds = byteLevels + 1;
    static constexpr const std::int32_t *levels[] = {allLevels.bounds, allLevels.bounds, allLevels.bounds,
                                                     allLevels.bounds};
    static constexpr std::int32_t levelCounts[] = {bounds, bounds, bounds, bounds};
    std::int32_t found[fewChannels][byteLevels];
    std::int32_t *const counts[] = {found[0], found[1], found[2], found[3]};
    const auto ofPixels = [&](const Kernel<HistogramsKernel> &kernel) {
        return kernel(samples.data, samples.step, size.width, size.height, counts, levels, levelCounts);
    };
    const KrnStatus status = layout == Layout::C1   ? krnHistogram8uC1(samples.data, samples.step, size.width,
                                                                       size.height, found[0], levels[0], bounds)
                             : layout == Layout::C3 ? ofPixels(krnHistogram8uC3)
                             : layout == Layout::C4 ? ofPixels(krnHistogram8uC4)
                                                    : ofPixels(krnHistogram8uAC4);
    any_ = true;
    for (std::int32_t i = 0; i < samplesWritten(layout) && status == KRN_OK; ++i)
        for (std::int32_t level = 0; level < byteLevels; ++level)
            counts_[(channel + i) * std::ptrdiff_t{byteLevels} + level] += static_cast<std::uint32_t>(found[i][level]);
    return status;
}

void LevelCounts::store(std::int32_t channel, const OrvLUT &record) const
{
    const std::uint32_t *const counts = counts_ + channel * std::ptrdiff_t{byteLevels};
    // Bounds are clamped here, though they have been checked: records may share arrays, which are being written.
    for (std::int32_t i = 0; i + 1 < record.num; ++i) {
        const std::int32_t end = clampedLevel(record.key[i + 1]);
        std::uint32_t sum = 0;
        for (std::int32_t level = clampedLevel(record.key[i]); level < end; ++level)
            sum += counts[level];
        record.value[i] = static_cast<std::int32_t>(sum);
    }
}

} // namespace orv
