// Shift to the right.
#include <cstdint>

#include "call.h"
#include "logic/bit_family.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvrshs";

// By depth, not by width: signs are kept.
const BitConstant &kernelsOf(std::int32_t depth)
{
    static constexpr BitConstant bytes = ORV_CONSTANT_KERNELS(krnRShiftC8u);
    static constexpr BitConstant signedBytes = ORV_CONSTANT_KERNELS(krnRShiftC8s);
    static constexpr BitConstant words = ORV_CONSTANT_KERNELS(krnRShiftC16u);
    static constexpr BitConstant signedWords = ORV_CONSTANT_KERNELS(krnRShiftC16s);
    static constexpr BitConstant longWords = ORV_CONSTANT_KERNELS(krnRShiftC32s);
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

OrvStatus run(const OrvImage *source, const OrvImage *destination, unsigned int shift)
{
    return runPointwise({{source}, destination}, {.run = makeConstant(kernelsOf(destination->depth),
                                                                      static_cast<std::int32_t>(shift), sizeof shift)});
}

} // namespace

extern "C" OrvStatus orvRShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift)
{
    Call call(unitName);
    if (call.refuses(src == nullptr, ORV_STATUS_BAD_ARGUMENT, "src==0") || call.refuses(checkHeaders(src, dst)) ||
        call.refuses(comparePair(*src, *dst, textsWithAlpha, MaskOrder::Compared)) || call.refuses(checkBitDepth(*dst)))
        return call.report();
    return call.result(run(src, dst, nShift));
}
