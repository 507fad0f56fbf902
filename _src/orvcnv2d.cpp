// Convolution with one kernel or several.
#include <algorithm>
#include <cstdint>

#include "frame/checks.h"
#include "frame/conv_record.h"
#include "frame/float_samples.h"
#include "frame/neighbourhood.h"
#include "frame/report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvcnv2d";

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
    if (kernels.count <= 0 || kernels.count > 10)
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

// All else.
template <class Record> struct FloatEngine {
    const Kernels<Record> &kernels;
    std::int32_t depth;

    std::int64_t workBytes(Layout layout, const PaddedSource &source) const
    {
        const std::int64_t samples = std::int64_t{source.size.width} * samplesPerPixel(layout);
        std::int64_t coefficients = 0;
        for (const Record *kernel : kernels)
            coefficients = std::max(coefficients, coefficientBytes(*kernel));
        return wholeAsFloatsBytes(source, layout, depth) + 2 * FloatRaster::bytes(samples, source.size.height) +
               coefficients;
    }

    void operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const;

private:
    void combine(const FloatRaster &result, const FloatRaster &next) const;
    void finish(const FloatRaster &result) const;
};

constexpr LayoutKernels<ConvolveFloatsKernel> convolveFloats = {krnConvolve32fC1, krnConvolve32fC3, krnConvolve32fC4,
                                                                krnConvolve32fAC4};

// From the first pixel that is computed, in floats with margins.
template <class Record>
void convolve(Layout layout, const PaddedSource &source, const FloatRaster &whole, const Record &kernel, Size size,
              const Raster &out, std::uint8_t *work)
{
    const Raster from = whole.raster.fromRow(source.margins.top);
    const float *values = coefficientsOf(kernel, work);
    convolveFloats[layout](from.data + std::ptrdiff_t{4} * source.margins.left * samplesPerPixel(layout), from.step,
                           out.data, out.step, size.width, size.height, values, kernel.nCols, kernel.nRows,
                           givenAnchorX(kernel), givenAnchorY(kernel));
}

void square(const FloatRaster &floats)
{
    const Raster &raster = floats.raster;
    krnSqr32fC1(raster.data, raster.step, raster.data, raster.step, floats.size.width, floats.size.height);
}

template <class Record> void FloatEngine<Record>::combine(const FloatRaster &result, const FloatRaster &next) const
{
    const Raster &all = result.raster, &one = next.raster;
    if (kernels.method != ORV_COMBINE_MAX && kernels.method != ORV_COMBINE_MIN) {
        krnAdd32fC1(all.data, all.step, one.data, one.step, all.data, all.step, result.size.width, result.size.height);
        return;
    }
    const Kernel<FloatPairRowKernel> &pick = kernels.method == ORV_COMBINE_MAX ? krnMaxRow32f : krnMinRow32f;
    for (std::int32_t row = 0; row < result.size.height; ++row) {
        std::uint8_t *const of = all.fromRow(row).data;
        pick(of, one.fromRow(row).data, of, result.size.width);
    }
}

template <class Record> void FloatEngine<Record>::finish(const FloatRaster &result) const
{
    for (std::int32_t row = 0; row < result.size.height; ++row) {
        std::uint8_t *const of = result.raster.fromRow(row).data;
        krnSqrtRow32f(of, of, result.size.width);
    }
}

template <class Record>
void FloatEngine<Record>::operator()(Layout layout, const PaddedSource &source, Raster out, std::uint8_t *work) const
{
    const FloatRaster whole = wholeAsFloats(source, layout, depth, work);
    if (depth == ORV_DEPTH_32F && kernels.count == 1)
        return convolve(layout, source, whole, **kernels.begin(), source.size, out, work);

    // What lies in scratch has all its samples computed.
    const Layout all = layout == Layout::AC4 ? Layout::C4 : layout;
    const Size samples = {source.size.width * samplesPerPixel(layout), source.size.height};
    const FloatRaster result = takeFloats(work, samples), next = takeFloats(work, samples);
    const bool squares =
        kernels.count > 1 && (kernels.method == ORV_COMBINE_SUMSQ || kernels.method == ORV_COMBINE_SUMSQROOT);
    for (const Record *const &kernel : kernels) {
        const FloatRaster &into = &kernel == kernels.begin() ? result : next;
        convolve(all, source, whole, *kernel, source.size, into.raster, work);
        divide(into, *kernel);
        if (squares)
            square(into);
        if (&kernel != kernels.begin())
            combine(result, next);
    }
    if (kernels.count > 1 && kernels.method == ORV_COMBINE_SUMSQROOT)
        finish(result);
    fromFloats(result, layout, depth, out);
}

template <class Record>
OrvStatus runFloats(const OrvImage *source, const OrvImage *destination, const Kernels<Record> &kernels)
{
    Neighbourhood call = {source, destination, {}, 0, 0, source->alphaChannel != 0};
    for (const Record *kernel : kernels)
        unite(call, *kernel);
    return neighbourhood(call, FloatEngine<Record>{kernels, destination->depth});
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
        return runIntegers({krnConvolve8uC1, krnConvolve8uC3, krnConvolve8uC4, krnConvolve8uAC4}, source, destination,
                           **kernels.begin());
    if (one && destination->depth == ORV_DEPTH_16S)
        return runIntegers({krnConvolve16sC1, krnConvolve16sC3, krnConvolve16sC4, krnConvolve16sAC4}, source,
                           destination, **kernels.begin());
    return runFloats(source, destination, kernels);
}

} // namespace

extern "C" {

OrvStatus orvConvolve2D(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernel *const *kernel,
                        std::int32_t nKernels, std::int32_t combineMethod)
{
    const Kernels<OrvConvKernel> kernels = {kernel, nKernels, combineMethod};
    ORV_REFUSE(checkHeaders(srcImage, dstImage));
    ORV_REFUSE_IF(srcImage->depth == ORV_DEPTH_32F || dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                  "32F images can be processed only with FP kernel");
    ORV_REFUSE(checkCall(*srcImage, *dstImage, kernels));
    ORV_RETURN_RUN_AS(run(srcImage, dstImage, kernels), "Allocation failure");
}

OrvStatus orvConvolve2DFP(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernelFP *const *kernel,
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
