// What a call works on: sizes and start pointers resolved from headers that passed validation.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orv.h"

namespace orv {

struct Size {
    std::int32_t width, height;

    bool empty() const { return width < 1 || height < 1; }
};

// A rectangle of samples as kernels take it.
struct Raster {
    std::uint8_t *data;
    std::int32_t step; // bytes from row to row

    // The same rectangle from a later row on.
    Raster fromRow(std::int32_t row) const { return {data + static_cast<std::ptrdiff_t>(row) * step, step}; }
};

// Where the work in an image starts.
struct Start {
    Raster raster;
    std::ptrdiff_t planeStep; // bytes from plane to plane, in plane order
    std::int32_t channels;    // how many are processed
};

// Bits of a depth without its sign, a mask sample counting as 8, in bytes.
inline std::int32_t sampleBytes(std::int32_t depth)
{
    const std::uint32_t bits = static_cast<std::uint32_t>(depth) & ~ORV_DEPTH_SIGN;
    return bits == ORV_DEPTH_1U ? 1 : static_cast<std::int32_t>(bits / 8);
}

// 1 with a channel of interest, else all channels.
inline std::int32_t channelsToProcess(const OrvImage &image)
{
    return image.roi != nullptr && image.roi->coi != 0 ? 1 : image.nChannels;
}

// The image's rectangle clipped to the image. False, and `size` as it was, for a rectangle with a side below 1.
bool roiSize(const OrvImage &image, Size &size);

// The rectangle's size reduced to that of the mask, if there is one.
Size maskedRoiSize(const OrvImage &image);

// Width and height that the images and their masks have in common.
Size commonSize(const OrvImage &a, const OrvImage &b);

// Start of the image's rectangle and channel. The rectangle is not clipped here: a start beyond the image goes with a
// size of nothing, and is never read.
Start resolveStart(const OrvImage &image);

} // namespace orv
