// The images of a call, and what follows from all of them together.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "area.h"
#include "layout.h"

namespace orv {

constexpr std::size_t mostSources = 3;
constexpr std::size_t mostImages = mostSources + 1; // of one call, its destination included

// Some sources, and a destination.
class CallImages {
public:
    CallImages(std::initializer_list<const OrvImage *> sources, const OrvImage *destination)
        : count_(sources.size() + 1)
    {
        std::copy(sources.begin(), sources.end(), images_);
        images_[count_ - 1] = destination;
        compare();
    }

    std::size_t sourceCount() const { return count_ - 1; }
    std::size_t count() const { return count_; }
    // Sources first, the destination last.
    const OrvImage &operator[](std::size_t index) const { return *images_[index]; }
    const OrvImage &destination() const { return *images_[count_ - 1]; }

    bool masked() const { return masked_; }
    bool inPlanes() const { return inPlanes_; } // the destination is in plane order, or all images have one channel
    Size commonSize() const { return commonSize_; }

private:
    void compare();

    const OrvImage *images_[mostImages];
    std::size_t count_;
    Size commonSize_;
    bool masked_, inPlanes_;
};

// Pixel layout for this number of processed channels; false if no layout serves it.
inline bool pixelLayout(const OrvImage &image, std::int32_t channels, Layout &layout)
{
    if (channels == 1)
        layout = Layout::C1;
    else if (channels == 3)
        layout = Layout::C3;
    else if (channels == 4)
        layout = image.alphaChannel == 0 ? Layout::C4 : Layout::AC4;
    else
        return false;
    return true;
}

// Number of planes that are processed: all channels but the image's alpha plane.
inline std::int32_t planesToProcess(const OrvImage &image, std::int32_t channels)
{
    return channels == 4 && image.alphaChannel != 0 ? 3 : channels;
}

} // namespace orv
