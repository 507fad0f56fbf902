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

// Runs the family's kernel for the destination's depth; its status tells an unserved depth from exhausted memory.
inline OrvStatus runBinaryFamily(const BinaryFamily &family, const OrvImage *first, const OrvImage *second,
                                 const OrvImage *destination)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return pointwise(runBinary(family.bytes), destination, first, second);
    case ORV_DEPTH_16S:
        return pointwise(runBinary(family.words), destination, first, second);
    case ORV_DEPTH_32S:
        return pointwise(
            [&](Layout layout, const Raster *in, Raster out, Size size) {
                integerRowByRow<2>(layout, in, out, size,
                                   [&](const void *const *rows, void *result, std::int32_t samples) {
                                       family.longWordRow(rows[0], rows[1], result, samples, unscaled);
                                   });
            },
            destination, first, second);
    case ORV_DEPTH_32F:
        return pointwise(runBinary(family.floats), destination, first, second);
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace orv
