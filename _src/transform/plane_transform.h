// Transforms of whole planes of floats, for images of any depth.
#pragma once

#include <cstdint>

#include "area.h"
#include "call_images.h"
#include "loop.h"
#include "raster.h"

namespace orv {

// The images of a transform. Headers have not been validated, and masks have no effect: the call works on copies of the
// headers, which have no mask.
class TransformImages {
public:
    TransformImages(const OrvImage &source, const OrvImage &destination)
        : source_(withoutMask(source)), destination_(withoutMask(destination)), images_({&source_}, &destination_)
    {
    }
    TransformImages(const TransformImages &) = delete;
    TransformImages &operator=(const TransformImages &) = delete;

    const OrvImage &source() const { return source_; }
    const OrvImage &destination() const { return destination_; }
    const CallImages &images() const { return images_; }
    Size size() const { return images_.commonSize(); }

    // Whether there is anything to transform: rasters, channels and a common rectangle.
    bool any() const { return hasChannels(source_) && hasChannels(destination_) && !size().empty(); }

private:
    static OrvImage withoutMask(const OrvImage &image)
    {
        OrvImage copy = image;
        copy.maskROI = nullptr;
        return copy;
    }
    static bool hasChannels(const OrvImage &image)
    {
        return image.imageData != nullptr && image.nChannels > 0 &&
               (image.roi == nullptr || (image.roi->coi >= 0 && image.roi->coi <= image.nChannels));
    }

    const OrvImage source_, destination_;
    const CallImages images_;
};

// A kernel with its plan. It transforms a plane of floats; its source may be its destination.
struct PlaneTransform {
    std::int32_t workBytes;
    Callable<KrnStatus(ConstRaster source, Raster destination, void *work)> run;
};

// Transforms each channel. Samples of other depths become floats on the way, and results are rounded to nearest with
// ties to even. Exhausted memory leaves the destination as it is.
void transformPlanes(const TransformImages &images, const PlaneTransform &transform);

// The same by a plan that has been built, and is released at the end. Kernels tell the work of a plan, release it, and
// transform by it.
template <class Plan, class WorkSize, class Free, class Transform>
void transformPlanesBy(Plan &plan, const TransformImages &images, const Kernel<WorkSize> &workSize,
                       const Kernel<Free> &release, const Kernel<Transform> &transform)
{
    std::int32_t bytes = 0;
    const auto run = [&](ConstRaster source, Raster destination, void *work) {
        return transform(source.data, source.step, destination.data, destination.step, &plan, work);
    };
    if (workSize(&plan, &bytes) == KRN_OK)
        transformPlanes(images, {bytes, run});
    release(&plan);
}

} // namespace orv
