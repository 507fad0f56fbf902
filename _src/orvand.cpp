// Bitwise and.
#include "call.h"
#include "logic/bit_family.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvand";
constexpr BitFamily family = ORV_BIT_FAMILY(And);

} // namespace

extern "C" {

OrvStatus orvAnd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Ignored)) ||
        call.refuses(checkBitDepth(*dstImage)))
        return call.report();
    return call.result(runBits(family, srcImageA, srcImageB, dstImage));
}

OrvStatus orvAndS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)) || call.refuses(checkBitDepth(*dstImage)))
        return call.report();
    return call.result(runBits(family, srcImage, dstImage, value));
}

} // extern "C"
