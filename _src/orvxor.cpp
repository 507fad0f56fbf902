// Bitwise xor.
#include "logic/bit_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvxor";
constexpr BitFamily family = ORV_BIT_FAMILY(Xor);

} // namespace

extern "C" {

OrvStatus orvXor(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    ORV_REFUSE(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Ignored));
    ORV_REFUSE(checkBitDepth(*dstImage));
    ORV_RETURN_RUN(runBits(family, srcImageA, srcImageB, dstImage));
}

OrvStatus orvXorS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_REFUSE(checkBitDepth(*dstImage));
    ORV_RETURN_RUN(runBits(family, srcImage, dstImage, value));
}

// A failure is one of orvXorS, and reported as such.
OrvStatus orvNot(const OrvImage *srcImage, OrvImage *dstImage)
{
    return orvXorS(srcImage, dstImage, -1);
}

} // extern "C"
