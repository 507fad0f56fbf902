// Samples as floats, for loops that compute in floats whatever the depth of the images.
#pragma once

#include <algorithm>
#include <cstdint>

#include "area.h"
#include "cache_sizes.h"
#include "float_conversions.h"
#include "loop.h"
#include "raster.h"
#include "scratch.h"

namespace orv {

// Scratch bytes of `rows` rows of floats. Rows start on the alignment of blocks.
constexpr std::int64_t floatRowsBytes(std::int64_t samples, std::int64_t rows)
{
    return roundedUp(samples * 4) * rows;
}

// Takes such rows from the front of the scratch.
inline Raster takeFloatRows(std::uint8_t *&scratch, std::int64_t samples, std::int64_t rows)
{
    const Raster floats = {scratch, static_cast<std::int32_t>(roundedUp(samples * 4))};
    scratch += floatRowsBytes(samples, rows);
    return floats;
}

// Results of several steps are made in strips that fit the nearest cache.
class FloatStrips {
public:
    // All samples of pixels of the layout.
    FloatStrips(Layout layout, std::int64_t width, std::int32_t height)
        : samples_(width * samplesPerPixel(layout)), height_(height),
          rows_(static_cast<std::int32_t>(
              std::clamp<std::int64_t>(passStripBytes / floatRowsBytes(samples_, 1), 1, height)))
    {
    }

    std::int32_t samples() const { return static_cast<std::int32_t>(samples_); } // of a row
    std::int32_t rows() const { return rows_; }
    std::int32_t rowsFrom(std::int32_t row) const { return std::min(rows_, height_ - row); }
    std::int64_t bytes() const { return floatRowsBytes(samples_, rows_); } // of one strip
    Raster take(std::uint8_t *&scratch) const { return takeFloatRows(scratch, samples_, rows_); }

private:
    std::int64_t samples_;
    std::int32_t height_, rows_;
};

// The first source and its margins as floats, all samples of a row side by side. Float samples stay where they are.
// Others are converted into rows that are taken from the front of the scratch.
KrnStatus withMarginsAsFloats(const Work &work, std::int32_t depth, std::uint8_t *&scratch, ConstRaster &floats);
std::int64_t withMarginsAsFloatsBytes(const Work &work, std::int32_t depth);

} // namespace orv
