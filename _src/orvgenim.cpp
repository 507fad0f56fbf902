// The test image.
#include <cstdint>

#include "kernels.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvgenim";

const Kernel<PatternKernel> *patternKernel(std::int32_t depth)
{
    switch (depth) {
    case ORV_DEPTH_8U:
        return &krnJaehne8u;
    case ORV_DEPTH_8S:
        return &krnJaehne8s;
    case ORV_DEPTH_16U:
        return &krnJaehne16u;
    case ORV_DEPTH_16S:
        return &krnJaehne16s;
    case ORV_DEPTH_32S:
        return &krnJaehne32s;
    case ORV_DEPTH_32F:
        return &krnJaehne32f;
    default:
        return nullptr;
    }
}

} // namespace

extern "C" OrvImage *orvCreateImageJaehne(std::int32_t depth, std::int32_t width, std::int32_t height)
{
    ORV_REFUSE_AS(nullptr, depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, "");
    ORV_REFUSE_AS(nullptr, width < 1 || height < 1, ORV_STATUS_BAD_IMAGE_SIZE, orvErrorStr(ORV_STATUS_BAD_IMAGE_SIZE));
    const Kernel<PatternKernel> *pattern = patternKernel(depth);
    ORV_REFUSE_AS(nullptr, pattern == nullptr, ORV_STATUS_BAD_DEPTH, orvErrorStr(ORV_STATUS_BAD_DEPTH));

    OrvImage *image = orvCreateImageHeader(1, 0, depth, "GRAY", "GRAY", ORV_DATA_ORDER_PIXEL, ORV_ORIGIN_TL,
                                           ORV_ALIGN_8BYTES, width, height, nullptr, nullptr, nullptr, nullptr);
    ORV_REFUSE_AS(nullptr, image == nullptr, ORV_STATUS_NO_MEMORY,
                  "Not enough memory to allocate header for ImageJaehne");
    if (depth == ORV_DEPTH_32F)
        orvAllocateImageFP(image, 1, 0.0f);
    else
        orvAllocateImage(image, 1, 0);
    if (image->imageData == nullptr) {
        // The allocation has reported.
        orvDeallocateHeader(image);
        return nullptr;
    }
    (*pattern)(image->imageData, image->widthStep, width, height);
    return image;
}
