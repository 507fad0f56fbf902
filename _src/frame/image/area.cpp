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

Size smaller(Size a, Size b)
{
    return {std::min(a.width, b.width), std::min(a.height, b.height)};
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

Size maskedRoiSize(const OrvImage &image)
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

Size commonSize(const OrvImage &a, const OrvImage &b)
{
    return smaller(maskedRoiSize(a), maskedRoiSize(b));
}

Start resolveStart(const OrvImage &image)
{
    std::ptrdiff_t x = 0, y = 0;
    std::int32_t coi = 0;
    if (const OrvROI *roi = image.roi; roi != nullptr) {
        x = std::max(roi->xOffset, 0);
        y = std::max(roi->yOffset, 0);
        coi = roi->coi;
    }
    const bool plane = image.dataOrder == ORV_DATA_ORDER_PLANE;
    const std::ptrdiff_t sample = sampleBytes(image.depth);
    const std::ptrdiff_t planeStep = static_cast<std::ptrdiff_t>(image.height) * image.widthStep;
    std::ptrdiff_t offset = y * image.widthStep + x * sample * (plane ? 1 : image.nChannels);
    if (coi > 1)
        offset += (coi - 1) * (plane ? planeStep : sample);
    // An integer sum: a rectangle may lie far outside the raster, where pointers may not go.
    const std::uintptr_t start =
        reinterpret_cast<std::uintptr_t>(image.imageData) + static_cast<std::uintptr_t>(offset);
    return {{reinterpret_cast<std::uint8_t *>(start), image.widthStep}, planeStep, coi >= 1 ? 1 : image.nChannels};
}

} // namespace orv
