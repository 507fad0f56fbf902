// Bitwise and.
#include "logic/bit_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvand";
constexpr BitFamily family = ORV_BIT_FAMILY(And);

} // namespace

extern "C" {

OrvStatus orvAnd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    ORV_REFUSE(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Ignored));
    ORV_REFUSE(checkBitDepth(*dstImage));
    ORV_RETURN_RUN(runBits(family, srcImageA, srcImageB, dstImage));
}

OrvStatus orvAndS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_REFUSE(checkBitDepth(*dstImage));
    ORV_RETURN_RUN(runBits(family, srcImage, dstImage, value));
}

} // extern "C"
