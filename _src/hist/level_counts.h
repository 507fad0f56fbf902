// Counts of the levels of each channel of a call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"
#include "kernels.h"
#include "layout.h"
#include "orv.h"
#include "scratch.h"

namespace orv {

constexpr std::int32_t byteLevels = 256;

// Each level as the bound of an interval, for kernels that treat every level by itself.
struct AllLevels {
    std::int32_t bounds[byteLevels + 1];
};
constexpr AllLevels allLevels = [] {
    AllLevels all = {};
    for (std::int32_t level = 0; level <= byteLevels; ++level)
        all.bounds[level] = level;
    return all;
}();

// Channels count from 0. Up to four of them need no memory.
class LevelCounts {
public:
    // Makes room for the channels of a call. False on exhausted memory.
    bool take(std::int32_t channels);

    // Counts the samples of a raster whose first channel is the given one.
    KrnStatus add(ConstRaster samples, Size size, Layout layout, std::int32_t channel);

    // Whether anything has been counted.
    bool any() const { return any_; }

    // Writes what the intervals of a record come to.
    void store(std::int32_t channel, const OrvLUT &record) const;

private:
    static constexpr std::int32_t fewChannels = 4;

    std::uint32_t few_[fewChannels * byteLevels] = {};
    std::uint32_t *counts_ = few_;
    Scratch many_;
    bool any_ = false;
};

} // namespace orv
