// Sums, differences and products of two images: the same operation over other kernels.
#pragma once

#include "arith/arithmetic.h"
#include "pointwise.h"

namespace orv {

struct BinaryFamily {
    LayoutKernels<BinaryScaledKernel> bytes, words;
    const Kernel<BinaryRowKernel> &longWordRow;
    LayoutKernels<BinaryKernel> floats;
};

#define ORV_BINARY_FAMILY(operation)                                                                             \
    {                                                                                                            \
        ORV_LAYOUT_KERNELS(krn##operation##8u), ORV_LAYOUT_KERNELS(krn##operation##16s), krn##operation##32sRow, \
            ORV_LAYOUT_KERNELS(krn##operation##32f)                                                              \
    }

inline auto makeBinaryRows(const Kernel<BinaryRowKernel> &kernel)
{
    return makeRows(2, [&kernel](const void *const *rows, void *result, std::int32_t samples) {
        return kernel(rows[0], rows[1], result, samples, unscaled);
    });
}

// Runs the family's kernel for the destination's depth. ORV_STATUS_NOT_IMPLEMENTED if the depth is not served.
inline OrvStatus runBinaryFamily(const BinaryFamily &family, const OrvImage *first, const OrvImage *second,
                                 const OrvImage *destination)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return runPointwise({{first, second}, destination}, {.run = makeBinary(family.bytes)});
    case ORV_DEPTH_16S:
        return runPointwise({{first, second}, destination}, {.run = makeBinary(family.words)});
    case ORV_DEPTH_32S:
        return runPointwise({{first, second}, destination},
                            {.run = makeBinaryRows(family.longWordRow), .wholeSamples = true});
    case ORV_DEPTH_32F:
        return runPointwise({{first, second}, destination}, {.run = makeBinary(family.floats)});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace orv
