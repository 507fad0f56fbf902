// The product of an image and a constant.
#include <algorithm>
#include <cstdint>

#include "arith/float_constant.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvmuls";
constexpr ScaledConstant bytes = ORV_CONSTANT_KERNELS(krnMulC8u, );
constexpr ScaledConstantInPlace bytesInPlace = ORV_CONSTANT_KERNELS(krnMulC8u, I);
constexpr ScaledConstant words = ORV_CONSTANT_KERNELS(krnMulC16s, );
constexpr ScaledConstantInPlace wordsInPlace = ORV_CONSTANT_KERNELS(krnMulC16s, I);
constexpr FloatConstant floats = ORV_CONSTANT_KERNELS(krnMulC32f, );
constexpr FloatConstantInPlace floatsInPlace = ORV_CONSTANT_KERNELS(krnMulC32f, I);

auto multiply(const ScaledConstant &kernels, const ScaledConstantInPlace &inPlace, std::int32_t value,
              std::int32_t sampleBytes)
{
    return [=](Layout layout, const Raster *in, Raster out, Size size) {
        applyConstant(kernels, inPlace, value, sampleBytes, layout, *in, out, size);
    };
}

OrvStatus run(const OrvImage *srcImage, const OrvImage *dstImage, std::int32_t value)
{
    switch (dstImage->depth) {
    case ORV_DEPTH_8U:
        return pointwise(multiply(bytes, bytesInPlace, std::clamp(value, 0, 255), 1), dstImage, srcImage);
    case ORV_DEPTH_16S:
        return pointwise(multiply(words, wordsInPlace, std::clamp(value, -32768, 32767), 2), dstImage, srcImage);
    case ORV_DEPTH_32S:
        return pointwise(runConstantRows(krnMulC32sRow, krnMulC32sRowI, value), dstImage, srcImage);
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" {

OrvStatus orvMultiplyS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing depth 32F use function orvMultiplySFP");
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_RETURN_RUN(run(srcImage, dstImage, value));
}

OrvStatus orvMultiplySFP(const OrvImage *srcImage, OrvImage *dstImage, float value)
{
    ORV_REFUSE_IF(srcImage == nullptr, ORV_STATUS_BAD_ARGUMENT, "srcImage==0");
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing this depth use function orvMultiplyS");
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    // Differing channels are a bad argument here, and nowhere else.
    const Refusal comparison = comparePair(*srcImage, *dstImage, textsOfImages);
    ORV_REFUSE_IF(comparison.status == ORV_STATUS_BAD_CHANNELS, ORV_STATUS_BAD_ARGUMENT,
                  "(srcChannels != dstChannels)");
    ORV_REFUSE(comparison);
    ORV_RETURN_RUN(runFloatConstant(floats, floatsInPlace, value, srcImage, dstImage));
}

} // extern "C"
