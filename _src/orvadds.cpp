// The sum of an image and an integer.
#include <algorithm>
#include <cstdint>

#include "arith/two_passes.h"
#include "pointwise.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvadds";

auto addBytes(std::int32_t value)
{
    return [value](Layout layout, const Raster *in, Raster out, Size size) {
        if (value < 0)
            applyConstant(subtractFromBytes, subtractFromBytesInPlace, -std::max(value, -255), 1, layout, *in, out,
                          size);
        else
            applyConstant(addToBytes, addToBytesInPlace, std::min(value, 255), 1, layout, *in, out, size);
    };
}

template <class Sample> auto addPlain(std::int32_t value, std::int32_t bottom, std::int32_t top)
{
    return [=](Layout layout, const Raster *in, Raster out, Size size) {
        constexpr std::int32_t bytes = sizeof(Sample);
        plainRows<Sample>(layout, inWholeSamples(*in, bytes), inWholeSamples(out, bytes), size,
                          [=](Sample sample) { return std::clamp(sample + value, bottom, top); });
    };
}

auto addWords(std::int32_t value)
{
    return [constant = WordConstant(value)](Layout layout, const Raster *in, Raster out, Size size) {
        inBands(layout, 2, size, [&](std::int32_t row, Size band) {
            const Raster result = out.fromRow(row);
            applyConstant(addToWords, addToWordsInPlace, constant.clamped, 2, layout, in->fromRow(row), result, band);
            constant.applyRest(false, layout, result, band);
        });
    };
}

OrvStatus run(const OrvImage *srcImage, const OrvImage *dstImage, std::int32_t value)
{
    switch (dstImage->depth) {
    case ORV_DEPTH_8U:
        return pointwise(addBytes(value), dstImage, srcImage);
    case ORV_DEPTH_8S:
        return pointwise(addPlain<std::int8_t>(std::clamp(value, -32768, 32767), -128, 127), dstImage, srcImage);
    case ORV_DEPTH_16U:
        return pointwise(addPlain<std::uint16_t>(std::clamp(value, -65535, 65535), 0, 65535), dstImage, srcImage);
    case ORV_DEPTH_16S:
        return pointwise(addWords(value), dstImage, srcImage);
    case ORV_DEPTH_32S:
        return pointwise(runConstantRows(krnAddC32sRow, krnAddC32sRowI, value), dstImage, srcImage);
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvAddS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE(comparePair(*srcImage, *dstImage, textsOfImages));
    ORV_REFUSE_IF(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "For processing depth 32F use function orvAddSFP");
    ORV_RETURN_RUN(run(srcImage, dstImage, value));
}
