// Images that release themselves, and failures that end the program with one line.
#pragma once

#include <orv.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace sheet {

// The text is the one line that the user sees.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Installs a report handler that keeps the report, so that the program continues and check() can throw it.
void takeReports();

// Throws the report if the status is a failure.
void check(OrvStatus status);

struct ReleaseImage {
    void operator()(OrvImage *image) const;
};

// Owns header and raster. Rectangles and masks belong to the code that set them.
using Image = std::unique_ptr<OrvImage, ReleaseImage>;

// Takes ownership of an image that the library created. Throws the report if it is null.
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

// A new image whose samples are all 0.
Image newImage(Layout layout, Size size);

// A second header for the same raster, restricted to a rectangle and a mask.
OrvImage viewOf(const OrvImage &image, OrvROI *rectangle, OrvImage *mask = nullptr);

// A mask: the largest ellipse that fits.
Image ellipseMask(Size size);

// The samples of a row in memory order; in plane order, of the first plane.
template <class Sample> Sample *rowOf(const OrvImage &image, std::int32_t y)
{
    const std::ptrdiff_t offset = std::ptrdiff_t{y} * image.widthStep;
    return reinterpret_cast<Sample *>(image.imageData + offset);
}

} // namespace sheet
