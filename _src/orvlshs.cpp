// Shift to the left.
#include <cstdint>

#include "logic/bit_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvlshs";

const BitConstant &kernelsOf(std::int32_t depth)
{
    static constexpr BitConstant bytes = ORV_CONSTANT_KERNELS(krnLShiftC8u, );
    static constexpr BitConstant words = ORV_CONSTANT_KERNELS(krnLShiftC16u, );
    static constexpr BitConstant longWords = ORV_CONSTANT_KERNELS(krnLShiftC32s, );
    const std::int32_t sample = sampleBytes(depth);
    return sample == 1 ? bytes : sample == 2 ? words : longWords;
}

} // namespace

extern "C" OrvStatus orvLShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift)
{
    ORV_REFUSE_IF(src == nullptr, ORV_STATUS_BAD_ARGUMENT, "src==0");
    ORV_REFUSE(checkHeaders(src, dst));
    ORV_REFUSE(comparePair(*src, *dst, textsWithAlpha, MaskOrder::Compared));
    ORV_REFUSE(checkBitDepth(*dst));
    ORV_RETURN_RUN(runBits(kernelsOf(dst->depth), src, dst, static_cast<std::int32_t>(nShift), sizeof nShift));
}
