// Convolution with one kernel or several.
#include <algorithm>
#include <cstdint>

#include "comparisons.h"
#include "filter/coefficients.h"
#include "filter/conv_record.h"
#include "float_samples.h"
#include "report.h"
#include "window.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvcnv2d";

constexpr std::int32_t mostKernels = 10;

// The records of a call and how their results become one.
template <class Record> struct Kernels {
    const Record *const *records;
    std::int32_t count, method;

    const Record *const *begin() const { return records; }
    const Record *const *end() const { return records + count; }
};

// The checks behind those of the headers and of the depths that a function serves.
template <class Record>
Refusal checkCall(const OrvImage &source, const OrvImage &destination, const Kernels<Record> &kernels)
{
    if (kernels.records == nullptr)
        return {ORV_STATUS_BAD_ARGUMENT, "kernel==0"};
    if (kernels.count <= 0 || kernels.count > mostKernels)
        return {ORV_STATUS_BAD_ARGUMENT, "(nKernels<=0 || nKernels>10)"};
    if (kernels.count > 1 && (kernels.method < ORV_COMBINE_SUM || kernels.method > ORV_COMBINE_MIN))
        return {ORV_STATUS_BAD_ARGUMENT, "Inadmissible method"};
    if (source.depth != destination.depth || source.dataOrder != destination.dataOrder)
        return {ORV_STATUS_BAD_ARGUMENT, "Uncompatible images"};
    if (channelsToProcess(source) != channelsToProcess(destination))
        return {ORV_STATUS_BAD_CHANNELS, ""};
    for (const Record *kernel : kernels)
        if (kernel == nullptr || badStructure(*kernel))
            return {ORV_STATUS_BAD_ARGUMENT, "Bad kernel structure"};
    if (anyTiled(&source, &destination))
        return {ORV_STATUS_NOT_IMPLEMENTED, ""};
    return nothingRefused;
}

// One kernel on 8 or 16 bits.
struct IntegerEngine {
    LayoutKernels<ConvolveKernel> kernels;
    const OrvConvKernel &record;

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *) const
    {
        kernels[layout](source.raster.data, source.raster.step, out.data, out.step, source.size.width,
                        source.size.height, record.values, record.nCols, record.nRows, givenAnchorX(record),
                        givenAnchorY(record), divisorOf(record));
    }
};

constexpr LayoutKernels<ConvolveFloatsKernel> convolveFloats = ORV_LAYOUT_KERNELS(krnConvolve32f);

// All else.
template <class Record> class FloatEngine {
public:
    FloatEngine(const Kernels<Record> &kernels, std::int32_t depth) : kernels_(kernels), depth_(depth) {}

    std::int64_t workBytes(Layout layout, const PaddedSource &source) const
    {
        const FloatPieces pieces(layout, source.size);
        std::int64_t bytes = wholeAsFloatsBytes(source, layout, depth_) + 2 * pieces.bytes();
        for (const Record *kernel : kernels_)
            bytes += coefficientBytes(*kernel);
        return bytes;
    }

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const;

private:
    bool squares() const
    {
        return kernels_.count > 1 && (kernels_.method == ORV_COMBINE_SUMSQ || kernels_.method == ORV_COMBINE_SUMSQROOT);
    }
    void add(const FloatRaster &next, const FloatRaster &result) const;

    const Kernels<Record> &kernels_;
    std::int32_t depth_;
};

void square(const FloatRaster &floats)
{
    const Raster &raster = floats.raster;
    krnSqr32fC1(raster.data, raster.step, raster.data, raster.step, floats.size.width, floats.size.height);
}

template <class Record> void FloatEngine<Record>::add(const FloatRaster &next, const FloatRaster &result) const
{
    const Raster &all = result.raster, &one = next.raster;
    if (kernels_.method != ORV_COMBINE_MAX && kernels_.method != ORV_COMBINE_MIN) {
        krnAdd32fC1(all.data, all.step, one.data, one.step, all.data, all.step, result.size.width, result.size.height);
        return;
    }
    const Kernel<FloatPairRowKernel> &pick = kernels_.method == ORV_COMBINE_MAX ? krnMaxRow32f : krnMinRow32f;
    for (std::int32_t row = 0; row < result.size.height; ++row) {
        std::uint8_t *const of = all.fromRow(row).data;
        pick(of, one.fromRow(row).data, of, result.size.width);
    }
}

template <class Record>
void FloatEngine<Record>::operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const
{
    const FloatRaster whole = wholeAsFloats(source, layout, depth_, work);
    const Raster first = firstComputed(whole, source, layout);
    const float *coefficients[mostKernels];
    for (std::int32_t i = 0; i < kernels_.count; ++i)
        coefficients[i] = takeCoefficients(*kernels_.records[i], work);
    const auto convolve = [&](std::int32_t i, Layout as, const Raster &from, const Raster &to, Size size) {
        const Record &kernel = *kernels_.records[i];
        convolveFloats[as](from.data, from.step, to.data, to.step, size.width, size.height, coefficients[i],
                           kernel.nCols, kernel.nRows, givenAnchorX(kernel), givenAnchorY(kernel));
    };
    if (depth_ == ORV_DEPTH_32F && kernels_.count == 1)
        return convolve(0, layout, first, out, source.size);

    // What lies in scratch has all its samples computed.
    const Layout all = withAllSamples(layout);
    const FloatPieces pieces(layout, source.size);
    for (std::int32_t row = 0; row < source.size.height; row += pieces.rows()) {
        std::uint8_t *free = work;
        const Size size = pieces.at(row);
        const FloatRaster result = pieces.take(free, size), next = pieces.take(free, size);
        for (std::int32_t i = 0; i < kernels_.count; ++i) {
            const FloatRaster &into = i == 0 ? result : next;
            convolve(i, all, first.fromRow(row), into.raster, size);
            if (squares())
                square(into);
            if (i > 0)
                add(next, result);
        }
        if (squares() && kernels_.method == ORV_COMBINE_SUMSQROOT)
            krnSqrt32fC1(result.raster.data, result.raster.step, result.raster.data, result.raster.step,
                         result.size.width, result.size.height);
        fromFloats(result, layout, depth_, out.fromRow(row));
    }
}

template <class Record>
OrvStatus runFloats(const OrvImage *source, const OrvImage *destination, const Kernels<Record> &kernels)
{
    Neighbourhood call = {source, destination, {}, 0, 0, source->alphaChannel != 0};
    for (const Record *kernel : kernels)
        unite(call, *kernel);
    return neighbourhood(call, FloatEngine<Record>(kernels, destination->depth));
}

OrvStatus runIntegers(const LayoutKernels<ConvolveKernel> &kernels, const OrvImage *source, const OrvImage *destination,
                      const OrvConvKernel &record)
{
    return neighbourhood(neighbourhoodOf(record, source, destination), IntegerEngine{kernels, record});
}

// Kernels refuse silently what has no coefficients: nothing is written then.
template <class Record> bool withoutCoefficients(const Kernels<Record> &kernels)
{
    return std::any_of(kernels.begin(), kernels.end(), [](const Record *kernel) { return kernel->values == nullptr; });
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const Kernels<OrvConvKernel> &kernels)
{
    const bool one = kernels.count == 1;
    switch (destination->depth) {
    case ORV_DEPTH_8U:
    case ORV_DEPTH_16S:
    case ORV_DEPTH_8S:
    case ORV_DEPTH_16U:
    case ORV_DEPTH_32S:
        break;
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
    if (withoutCoefficients(kernels))
        return ORV_STATUS_OK;
    if (one && destination->depth == ORV_DEPTH_8U)
        return runIntegers(ORV_LAYOUT_KERNELS(krnConvolve8u), source, destination, **kernels.begin());
    if (one && destination->depth == ORV_DEPTH_16S)
        return runIntegers(ORV_LAYOUT_KERNELS(krnConvolve16s), source, destination, **kernels.begin());
    return runFloats(source, destination, kernels);
}

} // namespace

extern "C" {

OrvStatus orvConvolve2D(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernel *const *kernel,
                        std::int32_t nKernels, std::int32_t combineMethod)
{
    const Kernels<OrvConvKernel> kernels = {kernel, nKernels, combineMethod};
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth == ORV_DEPTH_32F || dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "32F images can be processed only with FP kernel");
    ORV_REFUSE(checkCall(*srcImage, *dstImage, kernels));
    ORV_RETURN_RUN_AS(run(srcImage, dstImage, kernels), "Allocation failure");
}

OrvStatus orvConvolve2DFP(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernelFP *const *kernel,
                          std::int32_t nKernels, std::int32_t combineMethod)
{
    const Kernels<OrvConvKernelFP> kernels = {kernel, nKernels, combineMethod};
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth != ORV_DEPTH_32F || dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "FP kernel can be used only for 32F images");
    ORV_REFUSE(checkCall(*srcImage, *dstImage, kernels));
    if (withoutCoefficients(kernels))
        return ORV_STATUS_OK;
    ORV_RETURN_RUN_AS(runFloats(srcImage, dstImage, kernels), "Allocation failure");
}

} // extern "C"
