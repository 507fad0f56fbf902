// The difference of two images.
#include "arith/binary_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsub";
constexpr BinaryFamily family = ORV_BINARY_FAMILY(Sub);

} // namespace

extern "C" OrvStatus orvSubtract(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    ORV_REFUSE(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Compared));
    // The kernel takes the subtrahend first.
    ORV_RETURN_RUN(runBinaryFamily(family, srcImageB, srcImageA, dstImage));
}
