// The difference of two images.
#include "arith/binary_family.h"
#include "call.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsub";
constexpr BinaryFamily family = ORV_BINARY_FAMILY(Sub);

} // namespace

extern "C" OrvStatus orvSubtract(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Compared)))
        return call.report();
    // The kernel takes the subtrahend first.
    return call.result(runBinaryFamily(family, srcImageB, srcImageA, dstImage));
}
