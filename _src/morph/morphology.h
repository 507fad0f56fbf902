// What dilation, erosion, opening and closing share.
#pragma once

#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "layout.h"

namespace orv {

// A pass in place, in which C4 computes the fourth channel too, and one from image to image, which leaves an alpha
// channel alone.
struct MorphologyPass {
    LayoutKernels<MorphologyKernel> inPlace;
    LayoutKernels<WindowKernel> apart;
};

#define ORV_MORPHOLOGY_PASS(stem, apart)                                        \
    {                                                                           \
        {stem##C1, stem##C3, stem##C4, stem##C4}, ORV_LAYOUT_KERNELS(apart##8u) \
    }
inline constexpr MorphologyPass dilation = ORV_MORPHOLOGY_PASS(krnDilate8u, krnMaxFilter),
                                erosion = ORV_MORPHOLOGY_PASS(krnErode8u, krnMinFilter);

// Checks the call and runs `iterations` passes of the first kernel, then as many of the second, if there is one.
OrvStatus runMorphology(Call call, const OrvImage *source, OrvImage *destination, std::int32_t iterations,
                        const MorphologyPass &first, const MorphologyPass *second = nullptr);

} // namespace orv
