// What a call works on: sizes and start pointers resolved from headers that passed validation.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orv.h"
#include "raster.h"

namespace orv {

struct Size {
    std::int32_t width, height;

    bool empty() const { return width < 1 || height < 1; }
};

inline Size smaller(Size a, Size b)
{
    return {a.width < b.width ? a.width : b.width, a.height < b.height ? a.height : b.height};
}

// Where the work in an image starts.
struct Start {
    Raster raster;
    std::ptrdiff_t planeStep; // bytes from plane to plane, in plane order
    std::int32_t channels;    // how many are processed
};

// Whether rows follow at the step of the header, or at that step rounded down to whole samples.
enum class Steps { AsGiven, WholeSamples };

// Bytes of a sample. A sample of 1U takes one byte.
inline std::int32_t sampleBytes(std::int32_t depth)
{
    const std::uint32_t bits = static_cast<std::uint32_t>(depth) & ~ORV_DEPTH_SIGN;
    return bits == ORV_DEPTH_1U ? 1 : static_cast<std::int32_t>(bits / 8);
}

inline bool hasCoi(const OrvImage &image)
{
    return image.roi != nullptr && image.roi->coi != 0;
}

// 1 with a channel of interest, otherwise all channels.
inline std::int32_t channelsToProcess(const OrvImage &image)
{
    return hasCoi(image) ? 1 : image.nChannels;
}

// The first of them, counted from 0.
inline std::int32_t firstChannel(const OrvImage &image)
{
    return hasCoi(image) ? image.roi->coi - 1 : 0;
}

// An image whose only channel is its alpha channel. Many operations leave it alone in silence.
inline bool onlyAlpha(const OrvImage &image)
{
    return image.nChannels == 1 && image.alphaChannel != 0 && !hasCoi(image);
}

// The image's rectangle clipped to the image. False, and `size` as it was, for a rectangle with a side below 1.
bool roiSize(const OrvImage &image, Size &size);

// What the inline functions below do for images that have a rectangle or a mask.
Size maskedSizeOfRectangle(const OrvImage &image);
Start startOfRectangle(const OrvImage &image, std::int32_t step, std::ptrdiff_t planeStep);

// The rectangle's size reduced to that of the mask, if there is one.
inline Size maskedRoiSize(const OrvImage &image)
{
    return image.roi == nullptr && image.maskROI == nullptr ? Size{image.width, image.height}
                                                            : maskedSizeOfRectangle(image);
}

// Width and height that the images and their masks have in common.
inline Size commonSize(const OrvImage &a, const OrvImage &b)
{
    return smaller(maskedRoiSize(a), maskedRoiSize(b));
}

// Start of the image's rectangle and channel. The rectangle is not clipped here. A start outside the image comes with
// an empty size, and is never read.
inline Start resolveStart(const OrvImage &image, Steps steps = Steps::AsGiven)
{
    const std::int32_t step =
        steps == Steps::WholeSamples ? image.widthStep & -sampleBytes(image.depth) : image.widthStep;
    const std::ptrdiff_t planeStep = static_cast<std::ptrdiff_t>(image.height) * image.widthStep;
    return image.roi == nullptr ? Start{{image.imageData, step}, planeStep, image.nChannels}
                                : startOfRectangle(image, step, planeStep);
}

} // namespace orv
