// Shift to the right.
#include <cstdint>

#include "logic/bit_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvrshs";

// By depth, not by width: signs are kept.
const BitConstant &kernelsOf(std::int32_t depth)
{
    static constexpr BitConstant bytes = ORV_CONSTANT_KERNELS(krnRShiftC8u, );
    static constexpr BitConstant signedBytes = ORV_CONSTANT_KERNELS(krnRShiftC8s, );
    static constexpr BitConstant words = ORV_CONSTANT_KERNELS(krnRShiftC16u, );
    static constexpr BitConstant signedWords = ORV_CONSTANT_KERNELS(krnRShiftC16s, );
    static constexpr BitConstant longWords = ORV_CONSTANT_KERNELS(krnRShiftC32s, );
    switch (depth) {
    case ORV_DEPTH_8U:
        return bytes;
    case ORV_DEPTH_8S:
        return signedBytes;
    case ORV_DEPTH_16U:
        return words;
    case ORV_DEPTH_16S:
        return signedWords;
    default:
        return longWords;
    }
}

} // namespace

extern "C" OrvStatus orvRShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift)
{
    ORV_REFUSE_IF(src == nullptr, ORV_STATUS_BAD_ARGUMENT, "src==0");
    ORV_REFUSE(checkHeaders(src, dst));
    ORV_REFUSE(comparePair(*src, *dst, textsWithAlpha, MaskOrder::Compared));
    ORV_REFUSE(checkBitDepth(*dst));
    ORV_RETURN_RUN(runBits(kernelsOf(dst->depth), src, dst, static_cast<std::int32_t>(nShift), sizeof nShift));
}
