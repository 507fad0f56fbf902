// Operations on bits, which have kernels by the width of a sample: of two images, and of an image and a constant.
#pragma once

#include "arith/arithmetic.h"
#include "arith/binary_family.h"
#include "comparisons.h"
#include "pointwise.h"

namespace orv {

// The integer depths are served, signed ones as unsigned. There is a text for floats, and none for masks.
inline Refusal checkBitDepth(const OrvImage &image)
{
    if (image.depth == ORV_DEPTH_32F)
        return {ORV_STATUS_BAD_ARGUMENT, "This function does not support depth 32F"};
    if (image.depth == ORV_DEPTH_1U)
        return {ORV_STATUS_NOT_IMPLEMENTED, ""};
    return nothingRefused;
}

struct BitFamily {
    LayoutKernels<BinaryKernel> bytes, words, longWords;
    BitConstant byteConstant, wordConstant, longWordConstant;
};

#define ORV_BIT_FAMILY(operation)                                                                      \
    {                                                                                                  \
        ORV_LAYOUT_KERNELS(krn##operation##8u), ORV_LAYOUT_KERNELS(krn##operation##16u),               \
            ORV_LAYOUT_KERNELS(krn##operation##32s), ORV_CONSTANT_KERNELS(krn##operation##C8u, ),      \
            ORV_CONSTANT_KERNELS(krn##operation##C16u, ), ORV_CONSTANT_KERNELS(krn##operation##C32s, ) \
    }

inline OrvStatus runBits(const BitFamily &family, const OrvImage *a, const OrvImage *b, const OrvImage *destination)
{
    const std::int32_t bytes = sampleBytes(destination->depth);
    return pointwise(runBinary(bytes == 1   ? family.bytes
                               : bytes == 2 ? family.words
                                            : family.longWords),
                     destination, a, b);
}

// An image and a constant, of which the low bits count.
inline OrvStatus runBits(const BitConstant &kernels, const OrvImage *source, const OrvImage *destination,
                         std::int32_t value, std::int32_t valueBytes)
{
    return pointwise([&](Layout layout, const Raster *in, Raster out,
                         Size size) { applyConstant(kernels, value, valueBytes, layout, *in, out, size); },
                     destination, source);
}

inline OrvStatus runBits(const BitFamily &family, const OrvImage *source, const OrvImage *destination,
                         std::int32_t value)
{
    const std::int32_t bytes = sampleBytes(destination->depth);
    return runBits(bytes == 1   ? family.byteConstant
                   : bytes == 2 ? family.wordConstant
                                : family.longWordConstant,
                   source, destination, value, bytes);
}

} // namespace orv
