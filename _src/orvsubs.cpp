// The difference of an image and an integer, either way round.
#include <algorithm>
#include <cstdint>

#include "arith/plain_rows.h"
#include "arith/two_passes.h"
#include "call.h"
#include "fill.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsubs";

// A value beyond a byte is 255 and the residual, which is added to 255 - x.
auto makeBytesFrom(std::int32_t value)
{
    return [value](const Work &work) {
        constexpr ScaledConstant reversed = ORV_CONSTANT_KERNELS(krnSubRevC8u);
        return inStrips(work.layout, 1, work.size, [&](std::int32_t row, Size strip) {
            const Raster result = work.destination.fromRow(row);
            const KrnStatus status = applyConstant(reversed, std::min(value, 255), 1, work.layout,
                                                   work.sources[0].fromRow(row), result, strip);
            return status == KRN_OK && value > 255
                       ? applyConstant(addToBytes, std::min(value - 255, 255), 1, work.layout, result, result, strip)
                       : status;
        });
    };
}

template <class Sample> auto makeSubtract(std::int32_t value, bool flip, std::int32_t bottom, std::int32_t top)
{
    const std::int32_t sign = flip ? -1 : 1;
    return makePlain<Sample>([=](Sample sample) { return std::clamp((sample - value) * sign, bottom, top); });
}

// The negated word first, which saturates for the lowest word, and the constant added to that.
auto makeWordsFrom(std::int32_t value)
{
    return [constant = WordConstant(value)](const Work &work) {
        constexpr ScaledConstant multiply = ORV_CONSTANT_KERNELS(krnMulC16s);
        return inStrips(work.layout, 2, work.size, [&](std::int32_t row, Size strip) {
            const Raster result = work.destination.fromRow(row);
            KrnStatus status = applyConstant(multiply, -1, 2, work.layout, work.sources[0].fromRow(row), result, strip);
            if (status == KRN_OK)
                status = applyConstant(addToWords, constant.clamped, 2, work.layout, result, result, strip);
            return status == KRN_OK ? constant.applyResidual(false, work.layout, result, strip) : status;
        });
    };
}

OrvStatus runOnBytes(const OrvImage *source, const OrvImage *destination, std::int32_t value, bool flip)
{
    if (!flip)
        return value < 0
                   ? runPointwise({{source}, destination}, {.run = makeConstant(addToBytes, -std::max(value, -255), 1)})
                   : runPointwise({{source}, destination},
                                  {.run = makeConstant(subtractFromBytes, std::min(value, 255), 1)});
    // The result is below zero for every source sample.
    if (value < 0)
        return runPointwise({{source}, destination}, {.run = makeFill(1, 0)});
    return runPointwise({{source}, destination}, {.run = makeBytesFrom(std::min(value, 32767))});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t value, bool flip)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return runOnBytes(source, destination, value, flip);
    case ORV_DEPTH_8S:
        return runPointwise({{source}, destination},
                            {.run = makeSubtract<std::int8_t>(std::clamp(value, -32768, 32767), flip, -128, 127)});
    case ORV_DEPTH_16U:
        return runPointwise({{source}, destination},
                            {.run = makeSubtract<std::uint16_t>(std::clamp(value, -131070, 131070), flip, 0, 65535),
                             .wholeSamples = true});
    case ORV_DEPTH_16S:
        return flip ? runPointwise({{source}, destination}, {.run = makeWordsFrom(value)})
                    : runPointwise({{source}, destination}, {.run = makeWords(subtractFromWords, true, value)});
    case ORV_DEPTH_32S:
        return runPointwise(
            {{source}, destination},
            {.run = makeConstantRows(flip ? krnSubRevC32sRow : krnSubC32sRow, value), .wholeSamples = true});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvSubtractS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value, std::int32_t flip)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)) ||
        call.refuses(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing depth 32F use function orvSubtractSFP"))
        return call.report();
    return call.result(run(srcImage, dstImage, value, flip != 0));
}
