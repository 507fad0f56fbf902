// Bitwise xor.
#include "call.h"
#include "logic/bit_family.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvxor";
constexpr BitFamily family = ORV_BIT_FAMILY(Xor);

} // namespace

extern "C" {

OrvStatus orvXor(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Ignored)) ||
        call.refuses(checkBitDepth(*dstImage)))
        return call.report();
    return call.result(runBits(family, srcImageA, srcImageB, dstImage));
}

OrvStatus orvXorS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)) || call.refuses(checkBitDepth(*dstImage)))
        return call.report();
    return call.result(runBits(family, srcImage, dstImage, value));
}

// A failure is one of orvXorS, and reported as such.
OrvStatus orvNot(const OrvImage *srcImage, OrvImage *dstImage)
{
    return orvXorS(srcImage, dstImage, -1);
}

} // extern "C"
