// The images of a call.
#include "call_images.h"

#include <algorithm>

namespace orv {

bool CallImages::masked() const
{
    return std::any_of(images, images + imageCount(), [](const OrvImage *image) { return image->maskROI != nullptr; });
}

bool CallImages::inPlanes() const
{
    return destination().dataOrder == ORV_DATA_ORDER_PLANE ||
           std::all_of(images, images + imageCount(), [](const OrvImage *image) { return image->nChannels == 1; });
}

Size CallImages::commonSize() const
{
    Size size = maskedRoiSize(destination());
    for (std::size_t i = 0; i < sourceCount; ++i) {
        const Size other = maskedRoiSize(*images[i]);
        size = {std::min(size.width, other.width), std::min(size.height, other.height)};
    }
    return size;
}

bool pixelLayout(const OrvImage &destination, std::int32_t channels, Layout &layout)
{
    if (channels == 1)
        layout = Layout::C1;
    else if (channels == 3)
        layout = Layout::C3;
    else if (channels == 4)
        layout = destination.alphaChannel == 0 ? Layout::C4 : Layout::AC4;
    else
        return false;
    return true;
}

} // namespace orv
