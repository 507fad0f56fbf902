// Signatures of convolutions. The window of coefficients, in rows, is flipped: the value at the anchor meets the pixel
// that is computed, the value right of it the pixel left of that. The source starts at the first pixel that is
// computed, and has pixels around it.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

#define KRN_PARAMETERS_ConvolveKernel                                                                           \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,      \
        std::int32_t height, const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, \
        std::int32_t anchorY, std::int32_t divisor
KRN_SIGNATURE(ConvolveKernel)

#define KRN_PARAMETERS_ConvolveFloatsKernel                                                                     \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,      \
        std::int32_t height, const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, \
        std::int32_t anchorY
KRN_SIGNATURE(ConvolveFloatsKernel)

// A row or a column of coefficients.
#define KRN_PARAMETERS_ConvolveLineKernel                                                                  \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const void *values, std::int32_t size, std::int32_t anchor, std::int32_t divisor
KRN_SIGNATURE(ConvolveLineKernel)

// Without a divisor: of floats, and where the sums themselves are the result.
#define KRN_PARAMETERS_SumLineKernel                                                                       \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const void *values, std::int32_t size, std::int32_t anchor
KRN_SIGNATURE(SumLineKernel)

// One row.
#define KRN_PARAMETERS_FloatPairRowKernel \
    const void *source1, const void *source2, void *destination, std::int32_t length
KRN_SIGNATURE(FloatPairRowKernel)

} // namespace orv
