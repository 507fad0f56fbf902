// Look-up tables made of records.
#pragma once

#include <cstdint>

#include "hist/level_counts.h"
#include "loop.h"
#include "orv.h"

namespace orv {

// The records of a call's channels.
struct Records {
    OrvLUT *const *of;
    std::int32_t first, end; // channels, counted from 0

    // Whether an array is missing that a call reads or writes.
    bool lackArrays(bool factors) const;
};

// What becomes of each level.
using LevelTable = std::int32_t[byteLevels];
using MakeTable = void (*)(const OrvLUT &record, LevelTable &table);

// The value of each interval, or a slope in it.
void stretchLevels(const OrvLUT &record, LevelTable &table);

// The running share of the counts, as a level.
void equalizeLevels(const OrvLUT &record, LevelTable &table);

// Applies a table to each channel. One without a record is copied.
KrnStatus lookUp(const Records &records, MakeTable make, const Work &work);

} // namespace orv
