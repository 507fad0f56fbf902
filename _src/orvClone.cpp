// Cloning of images.
#include <cstdint>

#include "area.h"
#include "call.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvClone";

// The clone's rows follow the library's rule. A source with another step is copied row by row, samples only: the bytes
// between its rows may not exist behind the last one.
void copyRaster(const OrvImage &source, OrvImage &clone)
{
    if (source.widthStep == clone.widthStep && source.imageSize == clone.imageSize) {
        krnCopyBytes(source.imageData, clone.imageData, source.imageSize);
        return;
    }
    const bool plane = source.dataOrder == ORV_DATA_ORDER_PLANE;
    const std::int32_t rowBytes = source.width * sampleBytes(source.depth) * (plane ? 1 : source.nChannels);
    const std::int32_t rows = source.height * (plane ? source.nChannels : 1);
    krnCopy8uC1(source.imageData, source.widthStep, clone.imageData, clone.widthStep, rowBytes, rows);
}

} // namespace

extern "C" OrvImage *orvCloneImage(const OrvImage *image)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(image)))
        return call.reportAs(nullptr);
    OrvImage *clone = orvCreateImageHeader(image->nChannels, image->alphaChannel, image->depth, image->colorModel,
                                           image->channelSeq, image->dataOrder, image->origin, image->align,
                                           image->width, image->height, nullptr, nullptr, nullptr, nullptr);
    if (call.refuses(clone == nullptr, ORV_STATUS_NO_MEMORY, "Not enough memory to allocate header for clone image"))
        return call.reportAs(nullptr);
    *clone = *image;
    clone->imageData = nullptr;
    clone->ID = 0;
    clone->imageId = nullptr;
    clone->maskROI = nullptr;
    clone->tileInfo = nullptr;

    if (const OrvROI *roi = image->roi; roi != nullptr) {
        clone->roi = orvCreateROI(roi->coi, roi->xOffset, roi->yOffset, roi->width, roi->height);
        if (call.refuses(clone->roi == nullptr, ORV_STATUS_NO_MEMORY,
                         "Not enough memory to allocate roi for clone image")) {
            call.report();
            orvDeallocate(clone, ORV_IMAGE_HEADER);
            return nullptr;
        }
    }
    if (clone->depth == ORV_DEPTH_32F)
        orvAllocateImageFP(clone, 0, 0.0f);
    else
        orvAllocateImage(clone, 0, 0);
    if (call.refuses(clone->imageData == nullptr, ORV_STATUS_NO_MEMORY,
                     "Not enough memory to allocate imageData for clone image")) {
        call.report();
        orvDeallocate(clone, ORV_IMAGE_HEADER | ORV_IMAGE_ROI);
        return nullptr;
    }
    if (image->tileInfo == nullptr)
        copyRaster(*image, *clone);
    return clone;
}
