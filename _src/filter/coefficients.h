// Coefficients of convolution records, for kernels that compute in floats.
#pragma once

#include <cstdint>

#include "kernel.h"
#include "orv.h"

namespace orv {

// Coefficients as floats. Those of an integer record go into scratch, which is taken from its front, and are divided by
// the record's divisor. It is a power of two, so the sums are the same as if they were divided afterwards.
KrnStatus takeCoefficients(const OrvConvKernel &kernel, std::uint8_t *&scratch, const float *&coefficients);
KrnStatus takeCoefficients(const OrvConvKernelFP &kernel, std::uint8_t *&scratch, const float *&coefficients);
std::int64_t coefficientBytes(const OrvConvKernel &kernel);
std::int64_t coefficientBytes(const OrvConvKernelFP &kernel);

} // namespace orv
