// The sum of a float image and a number.
#include "arith/float_constant.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvaddsf";
constexpr FloatConstant add = ORV_CONSTANT_KERNELS(krnAddC32f, );
constexpr FloatConstantInPlace addInPlace = ORV_CONSTANT_KERNELS(krnAddC32f, I);

} // namespace

extern "C" OrvStatus orvAddSFP(const OrvImage *srcImage, OrvImage *dstImage, float value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing this depth use function orvAddS");
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_RETURN_RUN(runFloatConstant(add, addInPlace, value, srcImage, dstImage));
}
