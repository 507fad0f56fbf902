// Border settings.
#include <algorithm>
#include <cstdint>

#include "orv.h"

namespace {

std::int32_t clampedToDepth(std::int32_t depth, std::int32_t value)
{
    switch (depth) {
    case ORV_DEPTH_1U:
        return std::clamp(value, 0, 1);
    case ORV_DEPTH_8U:
        return std::clamp(value, 0, 255);
    case ORV_DEPTH_8S:
        return std::clamp(value, -128, 127);
    case ORV_DEPTH_16U:
        return std::clamp(value, 0, 65535);
    case ORV_DEPTH_16S:
        return std::clamp(value, -32768, 32767);
    default:
        return value;
    }
}

} // namespace

extern "C" void orvSetBorderMode(OrvImage *image, std::int32_t mode, std::int32_t border, std::int32_t constVal)
{
    if (image == nullptr)
        return;
    const std::int32_t constant = clampedToDepth(image->depth, constVal);
    for (int side = 0; side < 4; ++side) {
        if ((border & (1 << side)) == 0)
            continue;
        image->BorderMode[side] = mode;
        image->BorderConst[side] = constant;
    }
}
