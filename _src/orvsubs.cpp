// The difference of an image and an integer, either way round.
#include <algorithm>
#include <cstdint>

#include "arith/two_passes.h"
#include "fill.h"
#include "pointwise.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsubs";

auto subtractBytes(std::int32_t value)
{
    return [value](Layout layout, const Raster *in, Raster out, Size size) {
        if (value < 0)
            applyConstant(addToBytes, addToBytesInPlace, -std::max(value, -255), 1, layout, *in, out, size);
        else
            applyConstant(subtractFromBytes, subtractFromBytesInPlace, std::min(value, 255), 1, layout, *in, out, size);
    };
}

// A value beyond a byte is 255 and the rest, which is added to 255 - x.
auto bytesFrom(std::int32_t value)
{
    return [value](Layout layout, const Raster *in, Raster out, Size size) {
        constexpr ScaledConstant reversed = ORV_CONSTANT_KERNELS(krnSubRevC8u, );
        constexpr ScaledConstantInPlace reversedInPlace = ORV_CONSTANT_KERNELS(krnSubRevC8u, I);
        inBands(layout, 1, size, [&](std::int32_t row, Size band) {
            const Raster result = out.fromRow(row);
            applyConstant(reversed, reversedInPlace, std::min(value, 255), 1, layout, in->fromRow(row), result, band);
            if (value > 255)
                applyConstant(addToBytes, addToBytesInPlace, std::min(value - 255, 255), 1, layout, result, result,
                              band);
        });
    };
}

template <class Sample> auto plain(std::int32_t value, bool flip, std::int32_t bottom, std::int32_t top)
{
    return [=](Layout layout, const Raster *in, Raster out, Size size) {
        constexpr std::int32_t bytes = sizeof(Sample);
        const std::int32_t sign = flip ? -1 : 1;
        plainRows<Sample>(layout, inWholeSamples(*in, bytes), inWholeSamples(out, bytes), size,
                          [=](Sample sample) { return std::clamp((sample - value) * sign, bottom, top); });
    };
}

// The way round that the words take: their negative first, which for the lowest word is one less than it should be.
auto wordsFrom(std::int32_t value)
{
    return [constant = WordConstant(value)](Layout layout, const Raster *in, Raster out, Size size) {
        constexpr ScaledConstant multiply = ORV_CONSTANT_KERNELS(krnMulC16s, );
        constexpr ScaledConstantInPlace multiplyInPlace = ORV_CONSTANT_KERNELS(krnMulC16s, I);
        inBands(layout, 2, size, [&](std::int32_t row, Size band) {
            const Raster result = out.fromRow(row);
            applyConstant(multiply, multiplyInPlace, -1, 2, layout, in->fromRow(row), result, band);
            applyConstant(addToWords, addToWordsInPlace, constant.clamped, 2, layout, result, result, band);
            constant.applyRest(false, layout, result, band);
        });
    };
}

auto subtractWords(std::int32_t value)
{
    return [constant = WordConstant(value)](Layout layout, const Raster *in, Raster out, Size size) {
        inBands(layout, 2, size, [&](std::int32_t row, Size band) {
            const Raster result = out.fromRow(row);
            applyConstant(subtractFromWords, subtractFromWordsInPlace, constant.clamped, 2, layout, in->fromRow(row),
                          result, band);
            constant.applyRest(true, layout, result, band);
        });
    };
}

OrvStatus runOnBytes(const OrvImage *srcImage, const OrvImage *dstImage, std::int32_t value, bool flip)
{
    if (!flip)
        return pointwise(subtractBytes(value), dstImage, srcImage);
    // Below zero whatever the source holds.
    if (value < 0)
        return pointwise(FillSamples{channelKernels(1), 0}, dstImage, srcImage);
    return pointwise(bytesFrom(std::min(value, 32767)), dstImage, srcImage);
}

OrvStatus run(const OrvImage *srcImage, const OrvImage *dstImage, std::int32_t value, bool flip)
{
    switch (dstImage->depth) {
    case ORV_DEPTH_8U:
        return runOnBytes(srcImage, dstImage, value, flip);
    case ORV_DEPTH_8S:
        return pointwise(plain<std::int8_t>(std::clamp(value, -32768, 32767), flip, -128, 127), dstImage, srcImage);
    case ORV_DEPTH_16U:
        return pointwise(plain<std::uint16_t>(std::clamp(value, -131070, 131070), flip, 0, 65535), dstImage, srcImage);
    case ORV_DEPTH_16S:
        return flip ? pointwise(wordsFrom(value), dstImage, srcImage)
                    : pointwise(subtractWords(value), dstImage, srcImage);
    case ORV_DEPTH_32S:
        return pointwise(
            runConstantRows(flip ? krnSubRevC32sRow : krnSubC32sRow, flip ? krnSubRevC32sRowI : krnSubC32sRowI, value),
            dstImage, srcImage);
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvSubtractS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value, std::int32_t flip)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_REFUSE_IF(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing depth 32F use function orvSubtractSFP");
    ORV_RETURN_RUN(run(srcImage, dstImage, value, flip != 0));
}
