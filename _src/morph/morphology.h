// What dilation, erosion, opening and closing share.
#pragma once

#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "layout.h"

namespace orv {

using MorphologyPass = LayoutKernels<MorphologyKernel>;

// C4 computes the fourth channel too. It is the copy to the destination that leaves an alpha channel alone.
#define ORV_MORPHOLOGY_KERNELS(stem)           \
    {                                          \
        stem##C1, stem##C3, stem##C4, stem##C4 \
    }
inline constexpr MorphologyPass dilation = ORV_MORPHOLOGY_KERNELS(krnDilate8u),
                                erosion = ORV_MORPHOLOGY_KERNELS(krnErode8u);

// Checks the call and runs `iterations` passes of the first kernel, then as many of the second, if there is one.
OrvStatus runMorphology(Call call, const OrvImage *source, OrvImage *destination, std::int32_t iterations,
                        const MorphologyPass &first, const MorphologyPass *second = nullptr);

} // namespace orv
