// Operations on bits, of two images or of an image and a constant. Their kernels follow from the width of a sample.
#pragma once

#include "arith/arithmetic.h"
#include "comparisons.h"
#include "pointwise.h"

namespace orv {

// The integer depths are served, signed ones as unsigned. Only floats have a text of their own.
inline Refusal checkBitDepth(const OrvImage &image)
{
    return firstOf({{image.depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "This function does not support depth 32F"},
                    {image.depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

// One by the bytes of a sample.
template <class Kernels> struct BySampleBytes {
    Kernels bytes, words, longWords;

    const Kernels &operator[](std::int32_t sampleBytes) const
    {
        return sampleBytes == 1 ? bytes : sampleBytes == 2 ? words : longWords;
    }
};

struct BitFamily {
    BySampleBytes<LayoutKernels<BinaryKernel>> images;
    BySampleBytes<BitConstant> constants;
};

#define ORV_BIT_CONSTANTS(operation)                                                           \
    {                                                                                          \
        ORV_CONSTANT_KERNELS(krn##operation##C8u), ORV_CONSTANT_KERNELS(krn##operation##C16u), \
            ORV_CONSTANT_KERNELS(krn##operation##C32s)                                         \
    }

#define ORV_BIT_FAMILY(operation)                                                         \
    {                                                                                     \
        {ORV_LAYOUT_KERNELS(krn##operation##8u), ORV_LAYOUT_KERNELS(krn##operation##16u), \
         ORV_LAYOUT_KERNELS(krn##operation##32s)},                                        \
            ORV_BIT_CONSTANTS(operation)                                                  \
    }

inline OrvStatus runBits(const BitFamily &family, const OrvImage *a, const OrvImage *b, const OrvImage *destination)
{
    return runPointwise({{a, b}, destination}, {.run = makeBinary(family.images[sampleBytes(destination->depth)])});
}

// An image and the low bits of a constant.
inline OrvStatus runBits(const BitFamily &family, const OrvImage *source, const OrvImage *destination,
                         std::int32_t value)
{
    const std::int32_t bytes = sampleBytes(destination->depth);
    return runPointwise({{source}, destination}, {.run = makeConstant(family.constants[bytes], value, bytes)});
}

} // namespace orv
