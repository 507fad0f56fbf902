// The images of a call, and what follows from all of them together.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"
#include "channel_kernels.h"

namespace orv {

// The images of a call, sources first and the destination last.
struct CallImages {
    const OrvImage *const *images;
    std::size_t sourceCount;

    const OrvImage &destination() const { return *images[sourceCount]; }
    std::size_t imageCount() const { return sourceCount + 1; }

    bool masked() const;
    bool inPlanes() const; // the destination is in plane order, or all images have one channel
    Size commonSize() const;
};

// Pixel layout of a destination with so many channels to process; false where no layout serves them.
bool pixelLayout(const OrvImage &destination, std::int32_t channels, Layout &layout);

// How many planes of so many channels are processed: not the alpha plane of the destination.
inline std::int32_t planesToProcess(const OrvImage &destination, std::int32_t channels)
{
    return channels == 4 && destination.alphaChannel != 0 ? 3 : channels;
}

} // namespace orv
