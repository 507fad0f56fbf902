// Signatures of morphology.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

// One pass in place. Each sample is computed from its neighbours as they were before the pass. The pixels around the
// rectangle are read and stay. The scratch, morphologyScratchBytes() long, starts on the alignment of blocks.
#define KRN_PARAMETERS_MorphologyKernel \
    void *image, std::int32_t step, std::int32_t width, std::int32_t height, void *scratch
KRN_SIGNATURE(MorphologyKernel)

constexpr std::int64_t morphologyScratchBytes(std::int32_t width, std::int32_t channels)
{
    return 2 * (((std::int64_t{width} + 2) * channels + 31) & ~std::int64_t{31});
}

} // namespace orv
