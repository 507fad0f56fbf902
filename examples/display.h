// Converts images of any depth to 8-bit pictures for PNG files.
#pragma once

#include "owned_image.h"

namespace sheet {

// shown = gain x sample + offset, rounded and limited to 0..255.
struct Mapping {
    double gain, offset;
    const char *text; // the same in words for the caption; empty if samples are shown as they are
};

// Maps the whole range of a depth, or 0..1 of 32F, to 0..255.
Mapping rangeOf(std::int32_t depth);

// The image as 8U in pixel order, with the same channels and rows in memory order.
Image shown(const OrvImage &image, const Mapping &mapping);

// Converts an 8U image of one channel to floats: gain x sample + offset.
Image toFloat(const OrvImage &image, float gain, float offset);

// Two pictures side by side on white. They have one size, and one channel or three.
Image sideBySide(const OrvImage &left, const OrvImage &right);

// Reduces a picture of one, three or four channels to a smaller one of three. Each pixel is the mean of those it
// replaces. Transparent pixels are blended with white.
Image reduced(const OrvImage &image, Size size);

} // namespace sheet
