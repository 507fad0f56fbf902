// From images of any depth to 8-bit pictures that a PNG file and a page can show.
#pragma once

#include "owned_image.h"

namespace sheet {

// shown = gain x sample + offset, rounded and limited to 0..255.
struct Mapping {
    double gain, offset;
    const char *text; // the same in words for the caption, empty when samples are shown as they are
};

// The mapping that brings the whole range of a depth, or 0..1 of 32F, to 0..255.
Mapping rangeOf(std::int32_t depth);

// The image as 8U in pixel order with its number of channels, rows as they lie in memory.
Image shown(const OrvImage &image, const Mapping &mapping);

// A 32-bit float for each sample of an 8U image of one channel: gain x sample + offset.
Image toFloat(const OrvImage &image, float gain, float offset);

// Two pictures of one size, one channel or three, beside each other on white.
Image sideBySide(const OrvImage &left, const OrvImage &right);

// A picture of one, three or four channels as three channels of a size not above its own, each pixel the mean of those
// it stands for. Transparent pixels come onto white.
Image reduced(const OrvImage &image, Size size);

} // namespace sheet
