// Signatures of mirrors. A flip exchanges rows (0), columns (1) or both (2).
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

#define KRN_PARAMETERS_MirrorKernel                                                                        \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t flip
KRN_SIGNATURE(MirrorKernel)

// In place (suffix I).
#define KRN_PARAMETERS_MirrorInPlaceKernel \
    void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t flip
KRN_SIGNATURE(MirrorInPlaceKernel)

} // namespace orv
