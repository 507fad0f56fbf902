// The images of a call.
#include "call_images.h"

namespace orv {

// In one pass, since each call of an operation makes it.
void CallImages::compare()
{
    bool oneChannel = true;
    masked_ = false;
    commonSize_ = maskedRoiSize(*images_[0]);
    for (std::size_t i = 0; i < count_; ++i) {
        const OrvImage &image = *images_[i];
        oneChannel = oneChannel && image.nChannels == 1;
        masked_ = masked_ || image.maskROI != nullptr;
        commonSize_ = smaller(commonSize_, maskedRoiSize(image));
    }
    inPlanes_ = oneChannel || destination().dataOrder == ORV_DATA_ORDER_PLANE;
}

} // namespace orv
