// Products of fractions: full scale is the highest value of the depth.
#include <algorithm>
#include <cstdint>

#include "arith/arithmetic.h"
#include "arith/binary_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvalpha";
constexpr BitConstant bytes = ORV_CONSTANT_KERNELS(krnMulCScale8u, );
constexpr FractionInPlace bytesInPlace = ORV_CONSTANT_KERNELS(krnMulCScale8u, I);
constexpr BitConstant words = ORV_CONSTANT_KERNELS(krnMulCScale16u, );
constexpr FractionInPlace wordsInPlace = ORV_CONSTANT_KERNELS(krnMulCScale16u, I);

bool isFractional(const OrvImage &image)
{
    return image.depth == ORV_DEPTH_8U || image.depth == ORV_DEPTH_16U;
}

auto multiply(const BitConstant &kernels, const FractionInPlace &inPlace, std::int32_t value, std::int32_t sampleBytes)
{
    return [=](Layout layout, const Raster *in, Raster out, Size size) {
        const FourValues values(value, sampleBytes);
        if (in->data != out.data)
            applyConstant(kernels, value, sampleBytes, layout, *in, out, size);
        else if (layout == Layout::C1)
            inPlace.c1(out.data, out.step, value, size.width, size.height);
        else
            inPlace.pixels(layout)(out.data, out.step, values.bytes, size.width, size.height);
    };
}

} // namespace

extern "C" {

OrvStatus orvMultiplyScale(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    ORV_REFUSE(checkHeaders(srcImageA, srcImageB, dstImage));
    ORV_REFUSE_IF(!isFractional(*srcImageA), ORV_STATUS_BAD_ARGUMENT,
                  "(srcImageA->depth != 8) && srcImageA->depth != 16");
    ORV_REFUSE_IF(!isFractional(*srcImageB), ORV_STATUS_BAD_ARGUMENT,
                  "(srcImageB->depth != 8) && srcImageB->depth != 16");
    ORV_REFUSE_IF(!isFractional(*dstImage), ORV_STATUS_BAD_ARGUMENT, "(dstImage->depth != 8) && dstImage->depth != 16");
    ORV_REFUSE(compareTriple(*srcImageA, *srcImageB, *dstImage, MaskOrder::Compared));
    constexpr LayoutKernels<BinaryKernel> byteImages = ORV_LAYOUT_KERNELS(krnMulScale8u);
    constexpr LayoutKernels<BinaryKernel> wordImages = ORV_LAYOUT_KERNELS(krnMulScale16u);
    ORV_RETURN_RUN(pointwise(runBinary(dstImage->depth == ORV_DEPTH_8U ? byteImages : wordImages), dstImage, srcImageA,
                             srcImageB));
}

OrvStatus orvMultiplySScale(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(!isFractional(*srcImage), ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != 8) && srcImage->depth != 16");
    ORV_REFUSE_IF(!isFractional(*dstImage), ORV_STATUS_BAD_ARGUMENT, "(dstImage->depth != 8) && dstImage->depth != 16");
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_RETURN_RUN(dstImage->depth == ORV_DEPTH_8U
                       ? pointwise(multiply(bytes, bytesInPlace, std::clamp(value, 0, 255), 1), dstImage, srcImage)
                       : pointwise(multiply(words, wordsInPlace, std::clamp(value, 0, 65535), 2), dstImage, srcImage));
}

} // extern "C"
