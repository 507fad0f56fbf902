// Operations of a float image and a number.
#pragma once

#include "arith/arithmetic.h"
#include "pointwise.h"

namespace orv {

inline OrvStatus runFloatConstant(const FloatConstant &kernels, const FloatConstantInPlace &inPlace, float value,
                                  const OrvImage *source, const OrvImage *destination)
{
    return pointwise([&](Layout layout, const Raster *in, Raster out,
                         Size size) { applyConstant(kernels, inPlace, value, layout, *in, out, size); },
                     destination, source);
}

} // namespace orv
