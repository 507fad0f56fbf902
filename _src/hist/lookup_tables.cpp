// The tables of lookup_tables.h.
#include "hist/lookup_tables.h"

#include <algorithm>

#include "kernels.h"
#include "layout.h"

namespace orv {

bool Records::lackArrays(bool factors) const
{
    return std::any_of(of + first, of + end, [factors](const OrvLUT *record) {
        return record->value == nullptr || (factors && record->interpolateType != 0 && record->factor == nullptr);
    });
}

// An interval starts at its key. One key a level is looked at, so what follows two equal keys is never reached.
void stretchLevels(const OrvLUT &record, LevelTable &table)
{
    std::copy_n(allLevels.bounds, byteLevels, table);
    std::int32_t interval = -1, start = 0;
    for (std::int32_t level = 0; level < byteLevels; ++level) {
        if (level == record.key[interval + 1]) {
            ++interval;
            start = level;
        }
        if (interval == record.num - 1)
            return;
        if (interval < 0)
            continue;
        std::uint32_t value = static_cast<std::uint32_t>(record.value[interval]);
        if (record.interpolateType != 0)
            value += static_cast<std::uint32_t>(level - start) * static_cast<std::uint32_t>(record.factor[interval]);
        table[level] = static_cast<std::int32_t>(value & 0xFF);
    }
}

// The count of an interval is shared by its levels, of which the last gets the remainder too.
void equalizeLevels(const OrvLUT &record, LevelTable &table)
{
    std::fill_n(table, byteLevels, 0);
    for (std::int32_t i = 0; i + 1 < record.num; ++i) {
        const std::int32_t start = record.key[i], end = record.key[i + 1];
        if (start == end)
            continue;
        std::fill(table + start, table + end, record.value[i] / (end - start));
        table[end - 1] += record.value[i] % (end - start);
    }
    std::uint32_t sum = 0;
    for (std::int32_t &entry : table)
        entry = static_cast<std::int32_t>(sum += static_cast<std::uint32_t>(entry));
    // In 64 bits, since the lowest integer has no quotient by -1 in 32. Without any count the table stays at 0.
    const std::int64_t total = table[byteLevels - 1];
    for (std::int32_t &entry : table)
        entry =
            total == 0
                ? 0
                : static_cast<std::int32_t>(static_cast<std::int32_t>(static_cast<std::uint32_t>(entry) * 255) / total);
}

KrnStatus lookUp(const Records &records, MakeTable make, const Work &work)
{
    static constexpr const std::int32_t *levels[] = {allLevels.bounds, allLevels.bounds, allLevels.bounds,
                                                     allLevels.bounds};
    static constexpr std::int32_t levelCounts[] = {byteLevels, byteLevels, byteLevels, byteLevels};
    LevelTable tables[4];
    const std::int32_t *const values[] = {tables[0], tables[1], tables[2], tables[3]};
    for (std::int32_t i = 0; i < samplesWritten(work.layout); ++i)
        if (const std::int32_t channel = work.channel + i; channel < records.end)
            make(*records.of[channel], tables[i]);
        else
            std::copy_n(allLevels.bounds, byteLevels, tables[i]);

    const ConstRaster &in = work.sources[0];
    const Raster &out = work.destination;
    const auto ofPixels = [&](const Kernel<TablesKernel> &kernel) {
        return kernel(in.data, in.step, out.data, out.step, work.size.width, work.size.height, values, levels,
                      levelCounts);
    };
    switch (work.layout) {
    case Layout::C1:
        return krnLUT8uC1(in.data, in.step, out.data, out.step, work.size.width, work.size.height, values[0], levels[0],
                          byteLevels);
    case Layout::C3:
        return ofPixels(krnLUT8uC3);
    case Layout::C4:
        return ofPixels(krnLUT8uC4);
    default:
        return ofPixels(krnLUT8uAC4);
    }
}

} // namespace orv
