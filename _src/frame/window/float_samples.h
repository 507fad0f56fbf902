// Samples as floats: what operations do that compute in floats whatever the depth of their images.
#pragma once

#include <algorithm>
#include <cstdint>

#include "area.h"
#include "channel_kernels.h"
#include "padded_source.h"
#include "scratch.h"

namespace orv {

// A rectangle of floats in scratch, whose rows start on the alignment of blocks.
struct FloatRaster {
    Raster raster;
    Size size; // in samples

    static std::int64_t stepOf(std::int64_t samples) { return roundedUp(samples * 4); }
    static std::int64_t bytes(std::int64_t samples, std::int64_t rows) { return stepOf(samples) * rows; }
};

// Takes the rectangle from the front of the scratch.
FloatRaster takeFloats(std::uint8_t *&work, Size samples);

// Results that need more than one step are made in pieces of so many rows that they stay in the nearest cache.
class FloatPieces {
public:
    FloatPieces(Layout layout, Size size) : layout_(layout), size_(size)
    {
        constexpr std::int64_t pieceBytes = 8192;
        const std::int64_t rowBytes = FloatRaster::bytes(samples(), 1);
        rows_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(pieceBytes / rowBytes, 1, size.height));
    }

    std::int32_t rows() const { return rows_; }
    std::int64_t bytes() const { return FloatRaster::bytes(samples(), rows_); } // of a result
    // The pixels of the piece that starts with this row.
    Size at(std::int32_t row) const { return {size_.width, std::min(rows_, size_.height - row)}; }
    FloatRaster take(std::uint8_t *&work, Size size) const
    {
        return takeFloats(work, {static_cast<std::int32_t>(samples()), size.height});
    }

private:
    std::int64_t samples() const { return std::int64_t{size_.width} * samplesPerPixel(layout_); }

    Layout layout_;
    Size size_;
    std::int32_t rows_;
};

// The samples of a source with its margins, all channels one by one, as floats. Samples that are floats stay where they
// are and take no scratch.
FloatRaster wholeAsFloats(const PaddedSource &source, Layout layout, std::int32_t depth, std::uint8_t *&work);
std::int64_t wholeAsFloatsBytes(const PaddedSource &source, Layout layout, std::int32_t depth);

// Where in it the first pixel is that is computed.
Raster firstComputed(const FloatRaster &whole, const PaddedSource &source, Layout layout);

// To pixels of the depth, rounded to nearest with ties to even.
void fromFloats(const FloatRaster &floats, Layout layout, std::int32_t depth, const Raster &destination);

} // namespace orv
