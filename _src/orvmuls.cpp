// The product of an image and a constant.
#include <algorithm>
#include <cstdint>

#include "arith/arithmetic.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvmuls";
constexpr ScaledConstant bytes = ORV_CONSTANT_KERNELS(krnMulC8u);
constexpr ScaledConstant words = ORV_CONSTANT_KERNELS(krnMulC16s);
constexpr FloatConstant floats = ORV_CONSTANT_KERNELS(krnMulC32f);

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t value)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return runPointwise({{source}, destination}, {.run = makeConstant(bytes, std::clamp(value, 0, 255), 1)});
    case ORV_DEPTH_16S:
        return runPointwise({{source}, destination}, {.run = makeConstant(words, std::clamp(value, -32768, 32767), 2)});
    case ORV_DEPTH_32S:
        return runPointwise({{source}, destination},
                            {.run = makeConstantRows(krnMulC32sRow, value), .wholeSamples = true});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

// Differing channels are a bad argument in orvMultiplySFP, and nowhere else.
Refusal compareFloatPair(const OrvImage &source, const OrvImage &destination)
{
    const Refusal refusal = comparePair(source, destination, textsOfImages);
    return refusal.status == ORV_STATUS_BAD_CHANNELS ? Refusal{ORV_STATUS_BAD_ARGUMENT, "(srcChannels != dstChannels)"}
                                                     : refusal;
}

} // namespace

extern "C" {

OrvStatus orvMultiplyS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing depth 32F use function orvMultiplySFP") ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)))
        return call.report();
    return call.result(run(srcImage, dstImage, value));
}

OrvStatus orvMultiplySFP(const OrvImage *srcImage, OrvImage *dstImage, float value)
{
    Call call(unitName);
    if (call.refuses(srcImage == nullptr, ORV_STATUS_BAD_ARGUMENT, "srcImage==0") ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing this depth use function orvMultiplyS") ||
        call.refuses(checkHeaders(srcImage, dstImage)) || call.refuses(compareFloatPair(*srcImage, *dstImage)))
        return call.report();
    return call.result(runPointwise({{srcImage}, dstImage}, {.run = makeConstant(floats, value)}));
}

} // extern "C"
