// Signatures of transforms.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// A block of 8 x 8 samples.
#define KRN_PARAMETERS_BlockKernel const void *source, std::int32_t sourceStep, void *destination, std::int32_t step
KRN_SIGNATURE(BlockKernel)

} // namespace orv
