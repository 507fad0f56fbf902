// The sum of two images.
#include "arith/binary_family.h"
#include "call.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvadd";
constexpr BinaryFamily family = ORV_BINARY_FAMILY(Add);

} // namespace

extern "C" OrvStatus orvAdd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    Call call(unitName);
    if (call.refuses(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Compared)))
        return call.report();
    return call.result(runBinaryFamily(family, srcImageA, srcImageB, dstImage));
}
