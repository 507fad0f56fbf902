// Pixels with margins: what neighbourhood operations read, so that no loop meets the edge of an image.
#pragma once

#include <cstdint>

#include "area.h"
#include "channel_kernels.h"

namespace orv {

// How many pixels a window reaches beyond the one that it computes.
struct Margins {
    std::int32_t left, right, top, bottom;
};

struct PaddedSource {
    Raster raster; // at the first pixel that is computed
    Margins margins;
    Size size; // of what is computed

    std::int64_t wholeWidth() const { return std::int64_t{size.width} + margins.left + margins.right; }
    std::int64_t wholeHeight() const { return std::int64_t{size.height} + margins.top + margins.bottom; }
    // The same with its margins.
    Raster whole(std::int32_t pixelBytes) const
    {
        return {raster.fromRow(-margins.top).data - std::ptrdiff_t{margins.left} * pixelBytes, raster.step};
    }
};

// Bytes from row to row of so many padded pixels. A row always ends in spare bytes, so that lengths of a power of two,
// which crowd the same cache lines, do not come about.
constexpr std::int64_t paddedStep(std::int64_t width, std::int32_t pixelBytes)
{
    return (width * pixelBytes + 32) & ~std::int64_t{31};
}

// What margins are made from: the pixels of an image, one of its planes, or its first channel.
struct BorderedImage {
    const OrvImage *image; // its size and its border fields
    Raster raster;         // its first pixel
    Layout layout;         // of a padded pixel: all samples of the image's, or C1
    bool picked;           // the first channel of interleaved pixels
    std::int32_t sampleBytes;

    std::int32_t paddedPixelBytes() const { return sampleBytes * samplesPerPixel(layout); }
    std::int32_t pixelBytes() const { return picked ? sampleBytes * image->nChannels : paddedPixelBytes(); }
};

// A rectangle counted from the image's first pixel, which may lie outside it in whole or in part.
struct PaddedArea {
    std::int64_t x, y, width, height;
};

// Writes the pixels of the area: the image's where it has some, and around it what its border fields say, a side each.
// The corners belong to the top and the bottom. An area that lies further out than the image is large goes on
// reflecting or wrapping periodically.
void borderFill(const BorderedImage &source, const PaddedArea &area, const Raster &padded);

} // namespace orv
