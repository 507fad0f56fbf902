// Coefficients of convolution records, for kernels that compute in floats.
#pragma once

#include <cstdint>

#include "orv.h"

namespace orv {

// Coefficients as floats. Those of an integer record are converted into scratch, and divided by its divisor: a power of
// two, so that each sum comes out as if it had been divided itself.
const float *takeCoefficients(const OrvConvKernel &kernel, std::uint8_t *&work);
const float *takeCoefficients(const OrvConvKernelFP &kernel, std::uint8_t *&work);
std::int64_t coefficientBytes(const OrvConvKernel &kernel);
std::int64_t coefficientBytes(const OrvConvKernelFP &kernel);

} // namespace orv
