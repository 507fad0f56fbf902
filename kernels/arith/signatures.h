// Signatures of arithmetic. Integer arithmetic takes a scale: its exact results are divided by 2 to the power of it, to
// nearest with ties to even, and then saturated. 0 is none; a negative scale multiplies.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

#define KRN_PARAMETERS_BinaryScaledKernel                                                                \
    const void *source1, std::int32_t step1, const void *source2, std::int32_t step2, void *destination, \
        std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale
KRN_SIGNATURE(BinaryScaledKernel)

// One row.
#define KRN_PARAMETERS_BinaryRowKernel \
    const void *source1, const void *source2, void *destination, std::int32_t length, std::int32_t scale
KRN_SIGNATURE(BinaryRowKernel)

#define KRN_PARAMETERS_UnaryScaledKernel                                                                   \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t scale
KRN_SIGNATURE(UnaryScaledKernel)

#define KRN_PARAMETERS_ConstantScaledKernel                                                                \
    const void *source, std::int32_t sourceStep, std::int32_t value, void *destination, std::int32_t step, \
        std::int32_t width, std::int32_t height, std::int32_t scale
KRN_SIGNATURE(ConstantScaledKernel)

#define KRN_PARAMETERS_ConstantsScaledKernel                                                               \
    const void *source, std::int32_t sourceStep, const void *values, void *destination, std::int32_t step, \
        std::int32_t width, std::int32_t height, std::int32_t scale
KRN_SIGNATURE(ConstantsScaledKernel)

#define KRN_PARAMETERS_FloatConstantKernel                                                          \
    const void *source, std::int32_t sourceStep, float value, void *destination, std::int32_t step, \
        std::int32_t width, std::int32_t height
KRN_SIGNATURE(FloatConstantKernel)

#define KRN_PARAMETERS_ConstantRowKernel \
    const void *source, std::int32_t value, void *destination, std::int32_t length, std::int32_t scale
KRN_SIGNATURE(ConstantRowKernel)

#define KRN_PARAMETERS_FloatConstantRowKernel const void *source, float value, void *destination, std::int32_t length
KRN_SIGNATURE(FloatConstantRowKernel)

// In place (suffix I): one raster is source and destination.
#define KRN_PARAMETERS_ConstantScaledInPlaceKernel \
    std::int32_t value, void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale
KRN_SIGNATURE(ConstantScaledInPlaceKernel)

#define KRN_PARAMETERS_ConstantsScaledInPlaceKernel \
    const void *values, void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale
KRN_SIGNATURE(ConstantsScaledInPlaceKernel)

#define KRN_PARAMETERS_FloatConstantInPlaceKernel \
    float value, void *image, std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(FloatConstantInPlaceKernel)

#define KRN_PARAMETERS_ConstantsInPlaceKernel \
    const void *values, void *image, std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(ConstantsInPlaceKernel)

#define KRN_PARAMETERS_ConstantRowInPlaceKernel std::int32_t value, void *row, std::int32_t length, std::int32_t scale
KRN_SIGNATURE(ConstantRowInPlaceKernel)

#define KRN_PARAMETERS_FloatConstantRowInPlaceKernel float value, void *row, std::int32_t length
KRN_SIGNATURE(FloatConstantRowInPlaceKernel)

// Products of fractions in place take the raster first.
#define KRN_PARAMETERS_FractionInPlaceKernel \
    void *image, std::int32_t step, std::int32_t value, std::int32_t width, std::int32_t height
KRN_SIGNATURE(FractionInPlaceKernel)

#define KRN_PARAMETERS_FractionsInPlaceKernel \
    void *image, std::int32_t step, const void *values, std::int32_t width, std::int32_t height
KRN_SIGNATURE(FractionsInPlaceKernel)

} // namespace orv
