// Access to single pixels of an image.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"
#include "channel_kernels.h"

namespace orv {

// Where the samples of a pixel are. Pixel order has one group of samples, plane order one sample in each plane. There
// are no groups if the number of channels is not served.
struct PixelPlace {
    std::uint8_t *first;
    std::ptrdiff_t planeStep;
    std::int32_t groups;
    Layout layout;
    std::int32_t sampleBytes;
};

// The image is valid and not tiled, and the pixel lies inside.
inline PixelPlace placeOfPixel(const OrvImage &image, std::int32_t x, std::int32_t y)
{
    const bool plane = image.dataOrder == ORV_DATA_ORDER_PLANE;
    const std::int32_t channels = image.nChannels;
    const std::int32_t sample = sampleBytes(image.depth);
    const std::int32_t row = image.origin == ORV_ORIGIN_BL ? image.height - y - 1 : y;
    const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(row) * image.widthStep +
                                  static_cast<std::ptrdiff_t>(x) * sample * (plane ? 1 : channels);
    const bool served = channels == 1 || channels == 3 || channels == 4;
    return {image.imageData + offset, static_cast<std::ptrdiff_t>(image.height) * image.widthStep,
            !served ? 0
            : plane ? channels
                    : 1,
            plane || channels == 1 ? Layout::C1
            : channels == 3        ? Layout::C3
                                   : Layout::C4,
            sample};
}

} // namespace orv
