// Signatures of conversions and memory services.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// From float; rounding is 0 toward zero, 1 to nearest with ties to even, else to nearest with ties away from zero.
#define KRN_PARAMETERS_ConvertRoundKernel                                                                  \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t rounding
KRN_SIGNATURE(ConvertRoundKernel)

#define KRN_PARAMETERS_CopyBytesKernel const void *source, void *destination, std::int32_t count
KRN_SIGNATURE(CopyBytesKernel)

struct AllocateKernel {
    using Function = void *(std::int32_t count);
};
struct ReleaseKernel {
    using Function = void(void *block);
};

} // namespace orv
