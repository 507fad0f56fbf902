// Signatures of measures, which only read.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// One smallest and one largest sample for each channel that is searched.
#define KRN_PARAMETERS_MinMaxKernel \
    const void *source, std::int32_t step, std::int32_t width, std::int32_t height, float *minima, float *maxima
KRN_SIGNATURE(MinMaxKernel)

// One norm for each channel that is measured. `sums` may be null. Otherwise they are what calls for rows above have
// come to, all 0 for the first rows; the call goes on from there, and leaves in them what it has come to.
constexpr std::int32_t normSums = 8; // of four channels, and of the denominators of four
#define KRN_PARAMETERS_NormKernel \
    const void *source, std::int32_t step, std::int32_t width, std::int32_t height, double *norms, double *sums
KRN_SIGNATURE(NormKernel)

// Of two rasters.
#define KRN_PARAMETERS_NormPairKernel                                                                     \
    const void *source1, std::int32_t step1, const void *source2, std::int32_t step2, std::int32_t width, \
        std::int32_t height, double *norms, double *sums
KRN_SIGNATURE(NormPairKernel)

} // namespace orv
