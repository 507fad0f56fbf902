// Plans of cosine transforms.
#pragma once

#include "plans.h"

namespace orv {

// One side. A cosine transform of n numbers is a Fourier transform of the same numbers in another order, whose results
// are turned (J. Makhoul, "A fast cosine transform in one and two dimensions", 1980). Two sequences travel as real and
// imaginary parts.
struct CosineAxis {
    FourierPlan core;
    float first;        // what scales result 0
    const float *turns; // cosine and sine of k * pi / (2 * length), times what scales result k
};

struct OrvDct2DPlan {
    std::int32_t id, width, height, hint, workSize; // workSize is in bytes
    CosineAxis row;
    const CosineAxis *column; // the row's where both are as long
    PlanBlocks blocks;
};

constexpr std::int32_t DCT_2D_PLAN = 31;

} // namespace orv
