// The difference of a float image and a number, either way round.
#include "arith/float_constant.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsubsf";
constexpr FloatConstant subtract = ORV_CONSTANT_KERNELS(krnSubC32f, );
constexpr FloatConstantInPlace subtractInPlace = ORV_CONSTANT_KERNELS(krnSubC32f, I);

auto floatsFrom(float value)
{
    return [value](Layout layout, const Raster *in, Raster out, Size size) {
        rowByRow<1>(layout, in, out, size, [=](const void *const *rows, void *result, std::int32_t samples) {
            if (rows[0] == result)
                krnSubRevC32fRowI(value, result, samples);
            else
                krnSubRevC32fRow(rows[0], value, result, samples);
        });
    };
}

} // namespace

extern "C" OrvStatus orvSubtractSFP(const OrvImage *srcImage, OrvImage *dstImage, float value, std::int32_t flip)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing this depth use function orvSubtractS");
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_RETURN_RUN(flip != 0 ? pointwise(floatsFrom(value), dstImage, srcImage)
                             : runFloatConstant(subtract, subtractInPlace, value, srcImage, dstImage));
}
