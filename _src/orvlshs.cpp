// Shift to the left.
#include <cstdint>

#include "call.h"
#include "logic/bit_family.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvlshs";
constexpr BySampleBytes<BitConstant> kernels = ORV_BIT_CONSTANTS(LShift);

OrvStatus run(const OrvImage *source, const OrvImage *destination, unsigned int shift)
{
    return runPointwise({{source}, destination}, {.run = makeConstant(kernels[sampleBytes(destination->depth)],
                                                                      static_cast<std::int32_t>(shift), sizeof shift)});
}

} // namespace

extern "C" OrvStatus orvLShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift)
{
    Call call(unitName);
    if (call.refuses(src == nullptr, ORV_STATUS_BAD_ARGUMENT, "src==0") || call.refuses(checkHeaders(src, dst)) ||
        call.refuses(comparePair(*src, *dst, textsWithAlpha, MaskOrder::Compared)) || call.refuses(checkBitDepth(*dst)))
        return call.report();
    return call.result(run(src, dst, nShift));
}
