// Convolution with a row of coefficients, a column of them, or both.
#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "comparisons.h"
#include "filter/coefficients.h"
#include "filter/conv_record.h"
#include "float_samples.h"
#include "report.h"
#include "window.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvCSep2";

template <class Record> Refusal checkVector(const Record &kernel, bool row)
{
    if (kernel.values == nullptr)
        return {ORV_STATUS_BAD_ARGUMENT, "NULL kernel values"};
    const std::int32_t length = row ? kernel.nCols : kernel.nRows, thickness = row ? kernel.nRows : kernel.nCols;
    if (length <= 1 || thickness != 1)
        return {ORV_STATUS_BAD_ARGUMENT, "Invalid kernal size"};
    if (badStructure(kernel))
        return {ORV_STATUS_BAD_ARGUMENT, "Invalid kernrl anchor"};
    return nothingRefused;
}

// The checks behind those of the headers and of the depths that a function serves.
template <class Record>
Refusal checkCall(const OrvImage *source, const OrvImage *destination, const Record *xKernel, const Record *yKernel)
{
    if (source == destination)
        return {ORV_STATUS_BAD_ARGUMENT, "Unsupported in-place mode"};
    if (xKernel == nullptr && yKernel == nullptr)
        return {ORV_STATUS_BAD_ARGUMENT, "Kernel pointers are NULL"};
    if (source->depth != destination->depth)
        return {ORV_STATUS_BAD_ARGUMENT, "SRC and DST depth are different"};
    if (source->dataOrder != destination->dataOrder)
        return {ORV_STATUS_BAD_ARGUMENT, "SRC and DST order are different"};
    if (source->origin != destination->origin)
        return {ORV_STATUS_BAD_ARGUMENT, "SRC and DST orign are different"};
    if (channelsToProcess(*source) != channelsToProcess(*destination))
        return {ORV_STATUS_BAD_CHANNELS, ""};
    if (xKernel != nullptr)
        if (const Refusal refusal = checkVector(*xKernel, true); refusal.status != ORV_STATUS_OK)
            return refusal;
    if (yKernel != nullptr)
        if (const Refusal refusal = checkVector(*yKernel, false); refusal.status != ORV_STATUS_OK)
            return refusal;
    if (anyTiled(source, destination))
        return {ORV_STATUS_NOT_IMPLEMENTED, ""};
    return nothingRefused;
}

// One vector: its kernel, called with the anchor as it was given, and with a divisor in integers.
template <class Signature, class Record> struct OneVector {
    LayoutKernels<Signature> row, column;
    const Record &record;

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *) const
    {
        const bool across = record.nRows == 1;
        const auto call = [&](auto... divisor) {
            (across ? row : column)[layout](source.raster.data, source.raster.step, out.data, out.step,
                                            source.size.width, source.size.height, record.values,
                                            record.nCols * record.nRows,
                                            across ? givenAnchorX(record) : givenAnchorY(record), divisor...);
        };
        if constexpr (requires { record.nShiftR; })
            call(divisorOf(record));
        else
            call();
    }
};

using IntegerVector = OneVector<ConvolveLineKernel, OrvConvKernel>;
using FloatVector = OneVector<SumLineKernel, OrvConvKernelFP>;

#define ORV_LINE_KERNELS(samples) \
    ORV_LAYOUT_KERNELS(krnConvolveRow##samples), ORV_LAYOUT_KERNELS(krnConvolveCol##samples)

constexpr LayoutKernels<SumLineKernel> floatRow = ORV_LAYOUT_KERNELS(krnConvolveRow32f);

// The sums of columns, of all columns with the margins.
FloatPieces sumsOf(Layout layout, const PaddedSource &source)
{
    return FloatPieces(layout, {static_cast<std::int32_t>(source.wholeWidth()), source.size.height});
}

// Both vectors, in floats: the column first, over all columns that the row will read.
template <class Record> struct TwoVectors {
    const Record &x, &y;
    std::int32_t depth;

    std::int64_t workBytes(Layout layout, const PaddedSource &source) const
    {
        return wholeAsFloatsBytes(source, layout, depth) + sumsOf(layout, source).bytes() +
               FloatPieces(layout, source.size).bytes() + coefficientBytes(x) + coefficientBytes(y);
    }

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const
    {
        const FloatRaster whole = wholeAsFloats(source, layout, depth, work);
        const float *const xValues = takeCoefficients(x, work), *const yValues = takeCoefficients(y, work);
        const FloatPieces pieces = sumsOf(layout, source);
        const std::ptrdiff_t marginBytes = std::ptrdiff_t{4} * source.margins.left * samplesPerPixel(layout);
        for (std::int32_t row = 0; row < source.size.height; row += pieces.rows()) {
            std::uint8_t *free = work;
            const Size size = {source.size.width, pieces.at(row).height};
            const FloatRaster sums = pieces.take(free, size);
            const Raster from = whole.raster.fromRow(source.margins.top + row);
            krnConvolveCol32fC1(from.data, from.step, sums.raster.data, sums.raster.step, sums.size.width,
                                sums.size.height, yValues, y.nRows, givenAnchorY(y));

            const auto across = [&](Layout as, const Raster &to) {
                floatRow[as](sums.raster.data + marginBytes, sums.raster.step, to.data, to.step, size.width,
                             size.height, xValues, x.nCols, givenAnchorX(x));
            };
            if (depth == ORV_DEPTH_32F) {
                across(layout, out.fromRow(row));
                continue;
            }
            const FloatRaster result = FloatPieces(layout, source.size).take(free, size);
            across(withAllSamples(layout), result.raster);
            fromFloats(result, layout, depth, out.fromRow(row));
        }
    }
};

std::int64_t sumOfSizes(const OrvConvKernel &vector)
{
    std::int64_t sum = 0;
    for (std::int32_t i = 0; i < vector.nCols * vector.nRows; ++i)
        sum += vector.values[i] < 0 ? -std::int64_t{vector.values[i]} : vector.values[i];
    return sum;
}

// Both vectors on bytes whose sums of columns fit words, and whose sums of these are whole numbers that floats hold:
// then integers give what floats would.
struct BytesInWords {
    const OrvConvKernel &x, &y;

    static bool serve(const OrvConvKernel &x, const OrvConvKernel &y)
    {
        const std::int64_t columns = sumOfSizes(y), rows = sumOfSizes(x);
        return columns <= 32767 / 255 && rows < (1 << 24) / 255 / std::max<std::int64_t>(columns, 1) &&
               shiftOf(x) + shiftOf(y) < 31;
    }

    std::int64_t workBytes(Layout layout, const PaddedSource &source) const { return sumsOf(layout, source).bytes(); }

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const
    {
        const std::int32_t channels = samplesPerPixel(layout);
        const FloatPieces pieces = sumsOf(layout, source);
        const Raster whole = source.whole(channels).fromRow(source.margins.top);
        for (std::int32_t row = 0; row < source.size.height; row += pieces.rows()) {
            std::uint8_t *free = work;
            const Size size = {source.size.width, pieces.at(row).height};
            const FloatRaster sums = pieces.take(free, size); // words, which leave half of each row unused
            const Raster from = whole.fromRow(row), to = out.fromRow(row);
            krnConvolveCol8u16sC1(from.data, from.step, sums.raster.data, sums.raster.step, sums.size.width,
                                  sums.size.height, y.values, y.nRows, givenAnchorY(y));
            rowOfWords[layout](sums.raster.data + std::ptrdiff_t{2} * source.margins.left * channels, sums.raster.step,
                               to.data, to.step, size.width, size.height, x.values, x.nCols, givenAnchorX(x),
                               1 << (shiftOf(x) + shiftOf(y)));
        }
    }

private:
    static constexpr LayoutKernels<ConvolveLineKernel> rowOfWords = ORV_LAYOUT_KERNELS(krnConvolveRow16s8u);
};

// `one` makes the loop of a single vector.
template <class Record, class MakeOne>
OrvStatus run(const OrvImage *source, const OrvImage *destination, const Record *x, const Record *y, MakeOne one)
{
    if (x == nullptr || y == nullptr) {
        const Record &only = x != nullptr ? *x : *y;
        return neighbourhood(neighbourhoodOf(only, source, destination), one(only));
    }
    Neighbourhood call = {source, destination, {}, 0, 0, source->alphaChannel != 0};
    unite(call, *x);
    unite(call, *y);
    if constexpr (std::is_same_v<Record, OrvConvKernel>)
        if (destination->depth == ORV_DEPTH_8U && BytesInWords::serve(*x, *y))
            return neighbourhood(call, BytesInWords{*x, *y});
    return neighbourhood(call, TwoVectors<Record>{*x, *y, destination->depth});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const OrvConvKernel *x, const OrvConvKernel *y)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return run(source, destination, x, y, [](const OrvConvKernel &only) {
            return IntegerVector{ORV_LINE_KERNELS(8u), only};
        });
    case ORV_DEPTH_16S:
        return run(source, destination, x, y, [](const OrvConvKernel &only) {
            return IntegerVector{ORV_LINE_KERNELS(16s), only};
        });
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const OrvConvKernelFP *x, const OrvConvKernelFP *y)
{
    return run(source, destination, x, y, [](const OrvConvKernelFP &only) {
        return FloatVector{ORV_LINE_KERNELS(32f), only};
    });
}

} // namespace

extern "C" {

OrvStatus orvConvolveSep2D(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernel *xKernel,
                           const OrvConvKernel *yKernel)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth == ORV_DEPTH_32F || dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "orvConvolveSep2D does not support ORV_DEPTH_32F.\nCall orvConvolveSep2DFP instead");
    ORV_REFUSE(checkCall(srcImage, dstImage, xKernel, yKernel));
    ORV_RETURN_RUN(run(srcImage, dstImage, xKernel, yKernel));
}

OrvStatus orvConvolveSep2DFP(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernelFP *xKernel,
                             const OrvConvKernelFP *yKernel)
{
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_32F || dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "orvConvolveSep2DFP does support ORV_DEPTH_32F only.\nCall orvConvolveSep2D instead");
    ORV_REFUSE(checkCall(srcImage, dstImage, xKernel, yKernel));
    ORV_RETURN_RUN(run(srcImage, dstImage, xKernel, yKernel));
}

} // extern "C"
