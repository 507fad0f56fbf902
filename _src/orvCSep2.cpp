// Convolution with a row of coefficients, a column of them, or both.
#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "call.h"
#include "filter/coefficients.h"
#include "filter/conv_record.h"
#include "float_samples.h"
#include "kernels.h"
#include "window.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvCSep2";

template <class Record> Refusal checkVector(const Record &kernel, bool row)
{
    const std::int32_t length = row ? kernel.nCols : kernel.nRows, thickness = row ? kernel.nRows : kernel.nCols;
    return firstOf({{kernel.values == nullptr, ORV_STATUS_BAD_ARGUMENT, "NULL kernel values"},
                    {length <= 1 || thickness != 1, ORV_STATUS_BAD_ARGUMENT, "Invalid kernal size"},
                    {badStructure(kernel), ORV_STATUS_BAD_ARGUMENT, "Invalid kernrl anchor"}});
}

// The checks after those of headers and depths.
Refusal compareImages(const OrvImage &source, const OrvImage &destination, bool anyVector)
{
    return firstOf(
        {{&source == &destination, ORV_STATUS_BAD_ARGUMENT, "Unsupported in-place mode"},
         {!anyVector, ORV_STATUS_BAD_ARGUMENT, "Kernel pointers are NULL"},
         {source.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "SRC and DST depth are different"},
         {source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT, "SRC and DST order are different"},
         {source.origin != destination.origin, ORV_STATUS_BAD_ARGUMENT, "SRC and DST orign are different"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""}});
}

// One vector: its kernel, called with the anchor as it was given.
auto makeOneVector(const LayoutKernels<ConvolveLineKernel> &kernels, const OrvConvKernel &record, std::int32_t anchor)
{
    return [&kernels, &record, anchor](const Work &work) {
        const ConstRaster &in = work.sources[0];
        return kernels[work.layout](in.data, in.step, work.destination.data, work.destination.step, work.size.width,
                                    work.size.height, record.values, record.nCols * record.nRows, anchor,
                                    divisorOf(record));
    };
}

auto makeOneVector(const LayoutKernels<SumLineKernel> &kernels, const OrvConvKernelFP &record, std::int32_t anchor)
{
    return [&kernels, &record, anchor](const Work &work) {
        const ConstRaster &in = work.sources[0];
        return kernels[work.layout](in.data, in.step, work.destination.data, work.destination.step, work.size.width,
                                    work.size.height, record.values, record.nCols * record.nRows, anchor);
    };
}

// Kernels of a row and of a column.
template <class Signature> struct LineKernels {
    LayoutKernels<Signature> row, column;
};

#define ORV_LINE_KERNELS(samples)                                                                \
    {                                                                                            \
        ORV_LAYOUT_KERNELS(krnConvolveRow##samples), ORV_LAYOUT_KERNELS(krnConvolveCol##samples) \
    }

constexpr LineKernels<ConvolveLineKernel> ofBytes = ORV_LINE_KERNELS(8u), ofWords = ORV_LINE_KERNELS(16s);
constexpr LineKernels<SumLineKernel> ofFloats = ORV_LINE_KERNELS(32f);

// The sums of columns, over all columns that the row will read.
FloatStrips sumsOf(const Work &work)
{
    return FloatStrips(work.layout, paddedWidth(work), work.size.height);
}

// Both vectors, in floats: the column first.
template <class Record> struct TwoVectors {
    const Record &x, &y;
    std::int32_t depth;

    std::int64_t scratchBytes(const Work &work) const
    {
        return withMarginsAsFloatsBytes(work, depth) + sumsOf(work).bytes() + resultsOf(work).bytes() +
               coefficientBytes(x) + coefficientBytes(y);
    }

    KrnStatus run(const Work &work) const
    {
        std::uint8_t *scratch = work.scratch;
        ConstRaster whole;
        const float *xValues = nullptr, *yValues = nullptr;
        KrnStatus status = withMarginsAsFloats(work, depth, scratch, whole);
        if (status == KRN_OK)
            status = takeCoefficients(x, scratch, xValues);
        if (status == KRN_OK)
            status = takeCoefficients(y, scratch, yValues);

        const FloatStrips strips = sumsOf(work);
        const Raster sums = strips.take(scratch), results = resultsOf(work).take(scratch);
        const ConstRaster firstSums = sums.fromByte(std::int64_t{4} * work.margins.left * samplesPerPixel(work.layout));
        for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; row += strips.rows()) {
            const Size size = {work.size.width, strips.rowsFrom(row)};
            const ConstRaster from = whole.fromRow(std::int64_t{work.margins.top} + row);
            status = krnConvolveCol32fC1(from.data, from.step, sums.data, sums.step, strips.samples(), size.height,
                                         yValues, y.nRows, givenAnchorY(y));
            if (status == KRN_OK)
                status = runRow(work, firstSums, xValues, row, size, results);
        }
        return status;
    }

private:
    static FloatStrips resultsOf(const Work &work)
    {
        return FloatStrips(work.layout, work.size.width, work.size.height);
    }

    // From the sums of columns into rows of the destination.
    KrnStatus runRow(const Work &work, ConstRaster sums, const float *values, std::int32_t row, Size size,
                     Raster results) const
    {
        const Raster out = work.destination.fromRow(row);
        const bool floats = depth == ORV_DEPTH_32F;
        const Raster to = floats ? out : results;
        const Layout layout = floats ? work.layout : withAllSamples(work.layout);
        const KrnStatus status = ofFloats.row[layout](sums.data, sums.step, to.data, to.step, size.width, size.height,
                                                      values, x.nCols, givenAnchorX(x));
        return status == KRN_OK && !floats ? fromFloats(results, work.layout, depth, out, size) : status;
    }
};

std::int64_t sumOfSizes(const OrvConvKernel &vector)
{
    std::int64_t sum = 0;
    for (std::int32_t i = 0; i < vector.nCols * vector.nRows; ++i)
        sum += vector.values[i] < 0 ? -std::int64_t{vector.values[i]} : vector.values[i];
    return sum;
}

// Both vectors, in integers. The sums of columns fit words, and the sums of those fit a float exactly, so the results
// are those of floats.
struct BytesInWords {
    const OrvConvKernel &x, &y;

    static bool serve(const OrvConvKernel &x, const OrvConvKernel &y)
    {
        const std::int64_t columns = sumOfSizes(y), rows = sumOfSizes(x);
        return columns <= 32767 / 255 && rows < (1 << 24) / 255 / std::max<std::int64_t>(columns, 1) &&
               shiftOf(x) + shiftOf(y) < 31;
    }

    std::int64_t scratchBytes(const Work &work) const { return sumsOf(work).bytes(); }

    KrnStatus run(const Work &work) const
    {
        constexpr LayoutKernels<ConvolveLineKernel> rowOfWords = ORV_LAYOUT_KERNELS(krnConvolveRow16s8u);
        const std::int32_t channels = samplesPerPixel(work.layout);
        const FloatStrips strips = sumsOf(work);
        std::uint8_t *scratch = work.scratch;
        const Raster sums = strips.take(scratch); // words, which leave half of each row unused
        const ConstRaster firstSums = sums.fromByte(std::int64_t{2} * work.margins.left * channels);
        const ConstRaster whole = withMargins(work, channels).fromRow(work.margins.top);
        KrnStatus status = KRN_OK;
        for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; row += strips.rows()) {
            const std::int32_t rows = strips.rowsFrom(row);
            const ConstRaster from = whole.fromRow(row);
            const Raster to = work.destination.fromRow(row);
            status = krnConvolveCol8u16sC1(from.data, from.step, sums.data, sums.step, strips.samples(), rows, y.values,
                                           y.nRows, givenAnchorY(y));
            if (status == KRN_OK)
                status =
                    rowOfWords[work.layout](firstSums.data, firstSums.step, to.data, to.step, work.size.width, rows,
                                            x.values, x.nCols, givenAnchorX(x), 1 << (shiftOf(x) + shiftOf(y)));
        }
        return status;
    }
};

template <class TwoPasses, class Record>
OrvStatus runTwo(const OrvImage *source, const OrvImage *destination, const Record &x, const Record &y,
                 const TwoPasses &loop)
{
    WindowCall call = callOfSeveral(source, destination);
    add(call, x);
    add(call, y);
    return runWindow(call, {.run = [&](const Work &work) { return loop.run(work); },
                            .scratchBytes = [&](const Work &work) { return loop.scratchBytes(work); }});
}

template <class Signature, class Record>
OrvStatus runOne(const OrvImage *source, const OrvImage *destination, const LineKernels<Signature> &kernels,
                 const Record &record)
{
    const bool row = record.nRows == 1;
    return runWindow(callOfOne(record, source, destination),
                     {.run = makeOneVector(row ? kernels.row : kernels.column, record,
                                           row ? givenAnchorX(record) : givenAnchorY(record))});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const OrvConvKernel *x, const OrvConvKernel *y)
{
    const std::int32_t depth = destination->depth;
    if (depth != ORV_DEPTH_8U && depth != ORV_DEPTH_16S)
        return ORV_STATUS_NOT_IMPLEMENTED;
    if (x == nullptr || y == nullptr)
        return runOne(source, destination, depth == ORV_DEPTH_8U ? ofBytes : ofWords, x != nullptr ? *x : *y);
    if (depth == ORV_DEPTH_8U && BytesInWords::serve(*x, *y))
        return runTwo(source, destination, *x, *y, BytesInWords{*x, *y});
    return runTwo(source, destination, *x, *y, TwoVectors<OrvConvKernel>{*x, *y, depth});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const OrvConvKernelFP *x, const OrvConvKernelFP *y)
{
    if (x == nullptr || y == nullptr)
        return runOne(source, destination, ofFloats, x != nullptr ? *x : *y);
    return runTwo(source, destination, *x, *y, TwoVectors<OrvConvKernelFP>{*x, *y, ORV_DEPTH_32F});
}

} // namespace

extern "C" {

OrvStatus orvConvolveSep2D(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernel *xKernel,
                           const OrvConvKernel *yKernel)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth == ORV_DEPTH_32F || dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "orvConvolveSep2D does not support ORV_DEPTH_32F.\nCall orvConvolveSep2DFP instead") ||
        call.refuses(compareImages(*srcImage, *dstImage, xKernel != nullptr || yKernel != nullptr)) ||
        (xKernel != nullptr && call.refuses(checkVector(*xKernel, true))) ||
        (yKernel != nullptr && call.refuses(checkVector(*yKernel, false))) ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(run(srcImage, dstImage, xKernel, yKernel));
}

OrvStatus orvConvolveSep2DFP(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernelFP *xKernel,
                             const OrvConvKernelFP *yKernel)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F || dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "orvConvolveSep2DFP does support ORV_DEPTH_32F only.\nCall orvConvolveSep2D instead") ||
        call.refuses(compareImages(*srcImage, *dstImage, xKernel != nullptr || yKernel != nullptr)) ||
        (xKernel != nullptr && call.refuses(checkVector(*xKernel, true))) ||
        (yKernel != nullptr && call.refuses(checkVector(*yKernel, false))) ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(run(srcImage, dstImage, xKernel, yKernel));
}

} // extern "C"
