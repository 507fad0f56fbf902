// Signatures of measures, which only read.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// One smallest and one largest sample for each channel that is searched.
#define KRN_PARAMETERS_MinMaxKernel \
    const void *source, std::int32_t step, std::int32_t width, std::int32_t height, float *minima, float *maxima
KRN_SIGNATURE(MinMaxKernel)

} // namespace orv
