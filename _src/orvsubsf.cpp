// The difference of a float image and a number, either way round.
#include "arith/arithmetic.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsubsf";
constexpr FloatConstant subtract = ORV_CONSTANT_KERNELS(krnSubC32f);

auto makeReversed(float value)
{
    return makeRows(1, [value](const void *const *rows, void *result, std::int32_t samples) {
        return krnSubRevC32fRow(rows[0], value, result, samples);
    });
}

OrvStatus run(const OrvImage *srcImage, const OrvImage *dstImage, float value, bool flip)
{
    return flip ? runPointwise({{srcImage}, dstImage}, {.run = makeReversed(value)})
                : runPointwise({{srcImage}, dstImage}, {.run = makeConstant(subtract, value)});
}

} // namespace

extern "C" OrvStatus orvSubtractSFP(const OrvImage *srcImage, OrvImage *dstImage, float value, std::int32_t flip)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing this depth use function orvSubtractS") ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)))
        return call.report();
    return call.result(run(srcImage, dstImage, value, flip != 0));
}
