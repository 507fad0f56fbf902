// Pixels around an image, from its border settings.
#pragma once

#include <cstdint>

#include "area.h"
#include "layout.h"
#include "loop.h"
#include "raster.h"

namespace orv {

// Step of padded rows. Steps that are a multiple of 512 bytes are avoided: rows at such a distance
// share few sets of a cache, and a window reads several rows at once. Each row ends in at least one spare byte.
constexpr std::int64_t paddedStep(std::int64_t width, std::int32_t pixelBytes)
{
    constexpr std::int64_t block = 32, aliasing = 512;
    const std::int64_t step = (width * pixelBytes + block) & ~(block - 1);
    return step % aliasing == 0 ? step + block : step;
}

// What is padded: the pixels of an image, one of its planes, or its first channel.
struct BorderedImage {
    const OrvImage *image; // its size and its border settings
    ConstRaster raster;    // its first pixel
    Layout layout;         // of a padded pixel: all samples of the image's, or C1
    bool interleaved;      // the first channel of interleaved pixels
    std::int32_t sampleBytes;

    std::int32_t paddedPixelBytes() const { return sampleBytes * samplesPerPixel(layout); }
    std::int32_t pixelBytes() const { return interleaved ? sampleBytes * image->nChannels : paddedPixelBytes(); }
};

// A rectangle counted from the image's first pixel, which may lie outside it in whole or in part.
struct PaddedArea {
    std::int64_t x, y, width, height;
};

// Writes the pixels of the area. Pixels outside the image come from its border settings, one per side. The corners
// belong to the top and the bottom. Margins larger than the image go on reflecting or wrapping periodically.
void borderFill(const BorderedImage &source, const PaddedArea &area, Raster padded);

} // namespace orv
