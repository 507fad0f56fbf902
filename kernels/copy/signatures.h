// Signatures of copies, fills and masks.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// Writes the pixels whose mask byte is not zero.
#define KRN_PARAMETERS_CopyMaskedKernel                                                                    \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const void *mask, std::int32_t maskStep
KRN_SIGNATURE(CopyMaskedKernel)

// Combines a mask into an accumulator by bitwise AND.
#define KRN_PARAMETERS_AndMaskKernel                                                                              \
    const void *mask, std::int32_t maskStep, void *accumulator, std::int32_t accumulatorStep, std::int32_t width, \
        std::int32_t height
KRN_SIGNATURE(AndMaskKernel)

// The bits of one sample, in the low bits of the value.
#define KRN_PARAMETERS_FillKernel \
    std::int32_t value, void *destination, std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(FillKernel)

// One value per channel.
#define KRN_PARAMETERS_FillPixelsKernel \
    const void *values, void *destination, std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(FillPixelsKernel)

#define KRN_PARAMETERS_PatternKernel void *destination, std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(PatternKernel)

} // namespace orv
