// Rectangles and start pointers of validated images.
#include "area.h"

#include <algorithm>

namespace orv {
namespace {

// One axis of a rectangle, clipped to the image: a negative offset shortens it.
std::int32_t clippedLength(std::int64_t offset, std::int64_t length, std::int64_t limit)
{
    offset = std::min(offset, limit);
    if (offset < 0) {
        length += offset;
        offset = 0;
    }
    return static_cast<std::int32_t>(std::min(length, limit - offset));
}

} // namespace

bool roiSize(const OrvImage &image, Size &size)
{
    const OrvROI *roi = image.roi;
    if (roi == nullptr) {
        size = {image.width, image.height};
        return true;
    }
    if (roi->width < 1 || roi->height < 1)
        return false;
    size = {clippedLength(roi->xOffset, roi->width, image.width),
            clippedLength(roi->yOffset, roi->height, image.height)};
    return true;
}

Size maskedSizeOfRectangle(const OrvImage &image)
{
    Size size = {0, 0};
    roiSize(image, size);
    if (image.maskROI != nullptr) {
        Size mask = {0, 0};
        roiSize(*image.maskROI, mask);
        size = smaller(size, mask);
    }
    return size;
}

Start startOfRectangle(const OrvImage &image, std::int32_t step, std::ptrdiff_t planeStep)
{
    const OrvROI &roi = *image.roi;
    const std::ptrdiff_t x = std::max(roi.xOffset, 0), y = std::max(roi.yOffset, 0);
    const bool plane = image.dataOrder == ORV_DATA_ORDER_PLANE;
    const std::int32_t sample = sampleBytes(image.depth);
    std::ptrdiff_t offset = y * image.widthStep + x * sample * (plane ? 1 : image.nChannels);
    if (roi.coi > 1)
        offset += (roi.coi - 1) * (plane ? planeStep : sample);
    // An integer sum: a rectangle may lie far outside the raster, where pointers may not go.
    const std::uintptr_t start =
        reinterpret_cast<std::uintptr_t>(image.imageData) + static_cast<std::uintptr_t>(offset);
    return {{reinterpret_cast<std::uint8_t *>(start), step}, planeStep, roi.coi >= 1 ? 1 : image.nChannels};
}

} // namespace orv
