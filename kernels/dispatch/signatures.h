// The signatures that kernels of several families share, and how a signature is written. A signature is a tag: its
// parameters are listed once, and the table, the declarations and the definitions of kernels follow from that list.
//
// Rasters are untyped: samples may stand at any byte address, so no kernel holds a pointer that it could dereference
// as it is. Steps are bytes from row to row, widths are pixels.
#pragma once

#include "kernel.h"

// Makes the tag `name` of the list KRN_PARAMETERS_name.
#define KRN_SIGNATURE(name)                                \
    struct name {                                          \
        using Function = KrnStatus(KRN_PARAMETERS_##name); \
    };

// The head of a kernel's definition.
#define KRN_KERNEL(signature, name) KrnStatus name(KRN_PARAMETERS_##signature)

namespace orv {

// One raster into another of the same size.
#define KRN_PARAMETERS_CopyKernel                                                                          \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height
KRN_SIGNATURE(CopyKernel)

// Two rasters into a third. A difference takes the subtrahend first.
#define KRN_PARAMETERS_BinaryKernel                                                                      \
    const void *source1, std::int32_t step1, const void *source2, std::int32_t step2, void *destination, \
        std::int32_t step, std::int32_t width, std::int32_t height
KRN_SIGNATURE(BinaryKernel)

// A raster and a constant: the value itself for one channel, cut to the sample.
#define KRN_PARAMETERS_ConstantKernel                                                                      \
    const void *source, std::int32_t sourceStep, std::int32_t value, void *destination, std::int32_t step, \
        std::int32_t width, std::int32_t height
KRN_SIGNATURE(ConstantKernel)

// A raster and one value a channel.
#define KRN_PARAMETERS_ConstantsKernel                                                                     \
    const void *source, std::int32_t sourceStep, const void *values, void *destination, std::int32_t step, \
        std::int32_t width, std::int32_t height
KRN_SIGNATURE(ConstantsKernel)

} // namespace orv
