// The sum of two images.
#include "arith/binary_family.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvadd";
constexpr BinaryFamily family = ORV_BINARY_FAMILY(Add);

} // namespace

extern "C" OrvStatus orvAdd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage)
{
    ORV_REFUSE(checkTriple(srcImageA, srcImageB, dstImage, MaskOrder::Compared));
    ORV_RETURN_RUN(runBinaryFamily(family, srcImageA, srcImageB, dstImage));
}
