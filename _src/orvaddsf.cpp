// The sum of a float image and a number.
#include "arith/arithmetic.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvaddsf";
constexpr FloatConstant add = ORV_CONSTANT_KERNELS(krnAddC32f);

} // namespace

extern "C" OrvStatus orvAddSFP(const OrvImage *srcImage, OrvImage *dstImage, float value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing this depth use function orvAddS") ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)))
        return call.report();
    return call.result(runPointwise({{srcImage}, dstImage}, {.run = makeConstant(add, value)}));
}
