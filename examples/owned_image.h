// Images that release themselves, and the failures that end the program with one line.
#pragma once

#include <orv.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace sheet {

// Its text is the one line that the user sees.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Has the library hand its reports to this program, which goes on after them.
void takeReports();

// Throws what the library reported when a call did not succeed.
void check(OrvStatus status);

struct ReleaseImage {
    void operator()(OrvImage *image) const;
};

// Owns header and raster. Rectangles and masks belong to whoever hung them on.
using Image = std::unique_ptr<OrvImage, ReleaseImage>;

// Takes over what the library created; throws what it reported when there is nothing.
Image owned(OrvImage *image);

struct Size {
    std::int32_t width, height;
};

inline Size sizeOf(const OrvImage &image)
{
    return {image.width, image.height};
}

struct Layout {
    std::int32_t depth = ORV_DEPTH_8U;
    std::int32_t channels = 3;
    std::int32_t order = ORV_DATA_ORDER_PIXEL;
    std::int32_t alpha = 0;
};

// A new image with all samples 0.
Image newImage(Layout layout, Size size);

// A second header for the same raster, which a call restricts to a rectangle and to the pixels of a mask.
OrvImage viewOf(const OrvImage &image, OrvROI *rectangle, OrvImage *mask = nullptr);

// A mask with the largest ellipse that fits.
Image ellipseMask(Size size);

// The samples of a row in memory order, of the first plane in plane order.
template <class Sample> Sample *rowOf(const OrvImage &image, std::int32_t y)
{
    const std::ptrdiff_t offset = std::ptrdiff_t{y} * image.widthStep;
    return reinterpret_cast<Sample *>(image.imageData + offset);
}

} // namespace sheet
