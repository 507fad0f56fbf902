// Convolution with one kernel or several.
#include <algorithm>
#include <cstdint>

#include "call.h"
#include "filter/coefficients.h"
#include "filter/conv_record.h"
#include "float_samples.h"
#include "kernels.h"
#include "window.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvcnv2d";

constexpr std::int32_t mostKernels = 10;

// The records of a call and how their results become one.
template <class Record> struct Records {
    const Record *const *first;
    std::int32_t count, method;

    const Record *const *begin() const { return first; }
    const Record *const *end() const { return first + count; }

    // A record's results are squared before they are added.
    bool squared() const { return count > 1 && (method == ORV_COMBINE_SUMSQ || method == ORV_COMBINE_SUMSQROOT); }
    bool rooted() const { return count > 1 && method == ORV_COMBINE_SUMSQROOT; }
};

template <class Record> bool anyBad(const Records<Record> &records)
{
    return std::any_of(records.begin(), records.end(),
                       [](const Record *kernel) { return kernel == nullptr || badStructure(*kernel); });
}

// The checks after those of headers and depths.
template <class Record>
Refusal checkCall(const OrvImage &source, const OrvImage &destination, const Records<Record> &records)
{
    const Refusal refusal = firstOf(
        {{records.first == nullptr, ORV_STATUS_BAD_ARGUMENT, "kernel==0"},
         {records.count <= 0 || records.count > mostKernels, ORV_STATUS_BAD_ARGUMENT, "(nKernels<=0 || nKernels>10)"},
         {records.count > 1 && (records.method < ORV_COMBINE_SUM || records.method > ORV_COMBINE_MIN),
          ORV_STATUS_BAD_ARGUMENT, "Inadmissible method"},
         {source.depth != destination.depth || source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT,
          "Uncompatible images"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""}});
    if (refusal.status != ORV_STATUS_OK)
        return refusal;
    return firstOf({{anyBad(records), ORV_STATUS_BAD_ARGUMENT, "Bad kernel structure"},
                    {anyTiled(&source, &destination), ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

// One record on 8 or 16 bits.
auto makeIntegers(const LayoutKernels<ConvolveKernel> &kernels, const OrvConvKernel &record)
{
    return [&kernels, &record](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return kernels[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                                    record.values, record.nCols, record.nRows, givenAnchorX(record),
                                    givenAnchorY(record), divisorOf(record));
    };
}

constexpr LayoutKernels<ConvolveFloatsKernel> convolveFloats = ORV_LAYOUT_KERNELS(krnConvolve32f);

// All else: in floats, converted before and after.
template <class Record> class FloatLoop {
public:
    FloatLoop(const Records<Record> &records, std::int32_t depth) : records_(records), depth_(depth) {}

    std::int64_t scratchBytes(const Work &work) const
    {
        const FloatStrips strips(work.layout, work.size.width, work.size.height);
        std::int64_t bytes = withMarginsAsFloatsBytes(work, depth_) + 2 * strips.bytes();
        for (const Record *record : records_)
            bytes += coefficientBytes(*record);
        return bytes;
    }

    KrnStatus run(const Work &work) const;

private:
    // What all strips share.
    struct Prepared {
        ConstRaster first; // the pixel that is computed first
        const float *coefficients[mostKernels];
    };

    KrnStatus prepare(const Work &work, std::uint8_t *&scratch, Prepared &prepared) const;
    KrnStatus convolve(const Prepared &prepared, std::int32_t i, Layout layout, ConstRaster from, Raster to,
                       Size size) const;
    KrnStatus combine(ConstRaster next, Raster result, std::int32_t samples, std::int32_t rows) const;
    KrnStatus runStrip(const Prepared &prepared, Layout layout, std::int32_t row, Raster result, Raster next,
                       const FloatStrips &strips, Size size) const;

    const Records<Record> &records_;
    std::int32_t depth_;
};

template <class Record>
KrnStatus FloatLoop<Record>::prepare(const Work &work, std::uint8_t *&scratch, Prepared &prepared) const
{
    ConstRaster whole;
    KrnStatus status = withMarginsAsFloats(work, depth_, scratch, whole);
    for (std::int32_t i = 0; i < records_.count && status == KRN_OK; ++i)
        status = takeCoefficients(*records_.first[i], scratch, prepared.coefficients[i]);
    prepared.first =
        whole.fromRow(work.margins.top).fromByte(std::int64_t{4} * work.margins.left * samplesPerPixel(work.layout));
    return status;
}

template <class Record>
KrnStatus FloatLoop<Record>::convolve(const Prepared &prepared, std::int32_t i, Layout layout, ConstRaster from,
                                      Raster to, Size size) const
{
    const Record &record = *records_.first[i];
    return convolveFloats[layout](from.data, from.step, to.data, to.step, size.width, size.height,
                                  prepared.coefficients[i], record.nCols, record.nRows, givenAnchorX(record),
                                  givenAnchorY(record));
}

// Combines the next record's result with the results before it.
template <class Record>
KrnStatus FloatLoop<Record>::combine(ConstRaster next, Raster result, std::int32_t samples, std::int32_t rows) const
{
    if (records_.method != ORV_COMBINE_MAX && records_.method != ORV_COMBINE_MIN)
        return krnAdd32fC1(result.data, result.step, next.data, next.step, result.data, result.step, samples, rows);
    const Kernel<FloatPairRowKernel> &choose = records_.method == ORV_COMBINE_MAX ? krnMaxRow32f : krnMinRow32f;
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < rows && status == KRN_OK; ++row) {
        const Raster of = result.fromRow(row);
        status = choose(of.data, next.fromRow(row).data, of.data, samples);
    }
    return status;
}

// The results of all records, as floats.
template <class Record>
KrnStatus FloatLoop<Record>::runStrip(const Prepared &prepared, Layout layout, std::int32_t row, Raster result,
                                      Raster next, const FloatStrips &strips, Size size) const
{
    const std::int32_t samples = strips.samples();
    for (std::int32_t i = 0; i < records_.count; ++i) {
        const Raster &into = i == 0 ? result : next;
        KrnStatus status = convolve(prepared, i, layout, prepared.first.fromRow(row), into, size);
        if (status == KRN_OK && records_.squared())
            status = krnSqr32fC1(into.data, into.step, into.data, into.step, samples, size.height);
        if (status == KRN_OK && i > 0)
            status = combine(next, result, samples, size.height);
        if (status != KRN_OK)
            return status;
    }
    return records_.rooted() ? krnSqrt32fC1(result.data, result.step, result.data, result.step, samples, size.height)
                             : KRN_OK;
}

template <class Record> KrnStatus FloatLoop<Record>::run(const Work &work) const
{
    std::uint8_t *scratch = work.scratch;
    Prepared prepared;
    KrnStatus status = prepare(work, scratch, prepared);
    if (status != KRN_OK)
        return status;
    if (depth_ == ORV_DEPTH_32F && records_.count == 1)
        return convolve(prepared, 0, work.layout, prepared.first, work.destination, work.size);

    // What lies in scratch has all its samples computed.
    const Layout all = withAllSamples(work.layout);
    const FloatStrips strips(work.layout, work.size.width, work.size.height);
    const Raster result = strips.take(scratch), next = strips.take(scratch);
    for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; row += strips.rows()) {
        const Size size = {work.size.width, strips.rowsFrom(row)};
        status = runStrip(prepared, all, row, result, next, strips, size);
        if (status == KRN_OK)
            status = fromFloats(result, work.layout, depth_, work.destination.fromRow(row), size);
    }
    return status;
}

template <class Record>
OrvStatus runFloats(const OrvImage *source, const OrvImage *destination, const Records<Record> &records)
{
    WindowCall call = callOfSeveral(source, destination);
    for (const Record *record : records)
        add(call, *record);
    const FloatLoop<Record> loop(records, destination->depth);
    return runWindow(call, {.run = [&](const Work &work) { return loop.run(work); },
                            .scratchBytes = [&](const Work &work) { return loop.scratchBytes(work); }});
}

OrvStatus runIntegers(const LayoutKernels<ConvolveKernel> &kernels, const OrvImage *source, const OrvImage *destination,
                      const OrvConvKernel &record)
{
    return runWindow(callOfOne(record, source, destination), {.run = makeIntegers(kernels, record)});
}

// Kernels refuse records without coefficients in silence, so nothing is written.
template <class Record> bool withoutCoefficients(const Records<Record> &records)
{
    return std::any_of(records.begin(), records.end(), [](const Record *record) { return record->values == nullptr; });
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const Records<OrvConvKernel> &records)
{
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
    if (withoutCoefficients(records))
        return ORV_STATUS_OK;
    if (records.count == 1 && destination->depth == ORV_DEPTH_8U)
        return runIntegers(ORV_LAYOUT_KERNELS(krnConvolve8u), source, destination, *records.first[0]);
    if (records.count == 1 && destination->depth == ORV_DEPTH_16S)
        return runIntegers(ORV_LAYOUT_KERNELS(krnConvolve16s), source, destination, *records.first[0]);
    return runFloats(source, destination, records);
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const Records<OrvConvKernelFP> &records)
{
    return withoutCoefficients(records) ? ORV_STATUS_OK : runFloats(source, destination, records);
}

} // namespace

extern "C" {

OrvStatus orvConvolve2D(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernel *const *kernel,
                        std::int32_t nKernels, std::int32_t combineMethod)
{
    const Records<OrvConvKernel> records = {kernel, nKernels, combineMethod};
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth == ORV_DEPTH_32F || dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "32F images can be processed only with FP kernel") ||
        call.refuses(checkCall(*srcImage, *dstImage, records)))
        return call.report();
    return call.result(run(srcImage, dstImage, records), "Allocation failure");
}

OrvStatus orvConvolve2DFP(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernelFP *const *kernel,
                          std::int32_t nKernels, std::int32_t combineMethod)
{
    const Records<OrvConvKernelFP> records = {kernel, nKernels, combineMethod};
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F || dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "FP kernel can be used only for 32F images") ||
        call.refuses(checkCall(*srcImage, *dstImage, records)))
        return call.report();
    return call.result(run(srcImage, dstImage, records), "Allocation failure");
}

} // extern "C"
