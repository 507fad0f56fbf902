// The test image.
#include <cstdint>

#include "call.h"
#include "kernels.h"

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
    const Kernel<PatternKernel> *pattern = patternKernel(depth);
    Call call(unitName);
    if (call.refuses(depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(width < 1 || height < 1, ORV_STATUS_BAD_IMAGE_SIZE, orvErrorStr(ORV_STATUS_BAD_IMAGE_SIZE)) ||
        call.refuses(pattern == nullptr, ORV_STATUS_BAD_DEPTH, orvErrorStr(ORV_STATUS_BAD_DEPTH)))
        return call.reportAs(nullptr);

    OrvImage *image = orvCreateImageHeader(1, 0, depth, "GRAY", "GRAY", ORV_DATA_ORDER_PIXEL, ORV_ORIGIN_TL,
                                           ORV_ALIGN_8BYTES, width, height, nullptr, nullptr, nullptr, nullptr);
    if (call.refuses(image == nullptr, ORV_STATUS_NO_MEMORY, "Not enough memory to allocate header for ImageJaehne"))
        return call.reportAs(nullptr);
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
