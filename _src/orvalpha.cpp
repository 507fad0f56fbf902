// Products of fractions: full scale is the highest value of the depth.
#include <algorithm>
#include <cstdint>

#include "arith/arithmetic.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvalpha";
constexpr LayoutKernels<BinaryKernel> byteImages = ORV_LAYOUT_KERNELS(krnMulScale8u);
constexpr LayoutKernels<BinaryKernel> wordImages = ORV_LAYOUT_KERNELS(krnMulScale16u);
constexpr BitConstant byteConstant = ORV_CONSTANT_KERNELS(krnMulCScale8u);
constexpr BitConstant wordConstant = ORV_CONSTANT_KERNELS(krnMulCScale16u);

bool isFractional(const OrvImage &image)
{
    return image.depth == ORV_DEPTH_8U || image.depth == ORV_DEPTH_16U;
}

} // namespace

extern "C" {

OrvStatus orvMultiplyScale(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImageA, srcImageB, dstImage)) ||
        call.refuses(!isFractional(*srcImageA), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImageA->depth != 8) && srcImageA->depth != 16") ||
        call.refuses(!isFractional(*srcImageB), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImageB->depth != 8) && srcImageB->depth != 16") ||
        call.refuses(!isFractional(*dstImage), ORV_STATUS_BAD_ARGUMENT,
                     "(dstImage->depth != 8) && dstImage->depth != 16") ||
        call.refuses(compareTriple(*srcImageA, *srcImageB, *dstImage, MaskOrder::Compared)))
        return call.report();
    const bool bytes = dstImage->depth == ORV_DEPTH_8U;
    return call.result(
        runPointwise({{srcImageA, srcImageB}, dstImage}, {.run = makeBinary(bytes ? byteImages : wordImages)}));
}

OrvStatus orvMultiplySScale(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(!isFractional(*srcImage), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth != 8) && srcImage->depth != 16") ||
        call.refuses(!isFractional(*dstImage), ORV_STATUS_BAD_ARGUMENT,
                     "(dstImage->depth != 8) && dstImage->depth != 16") ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)))
        return call.report();
    const bool bytes = dstImage->depth == ORV_DEPTH_8U;
    return call.result(runPointwise({{srcImage}, dstImage},
                                    {.run = bytes ? makeConstant(byteConstant, std::clamp(value, 0, 255), 1)
                                                  : makeConstant(wordConstant, std::clamp(value, 0, 65535), 2)}));
}

} // extern "C"
