// The loops of resize_loops.h.
#include "geometry/resize_loops.h"

#include <algorithm>

#include "delivery.h"
#include "kernels.h"

namespace orv {
namespace {

#define ORV_METHOD(axis, kernel, ...)              \
    {                                              \
        axis, kernel##C1, kernel##AC4, __VA_ARGS__ \
    }
// Nearest pixels have no weights, and axes without them are all alike.
constexpr ResizeMethod nearestBytes = ORV_METHOD(krnResizeAxis32f, krnResizeNearest8u, KRN_NEAREST, 0, 1),
                       nearestWords = ORV_METHOD(krnResizeAxis32f, krnResizeNearest16u, KRN_NEAREST, 0, 1),
                       nearestFloats = ORV_METHOD(krnResizeAxis32f, krnResizeNearest32s, KRN_NEAREST, 0, 1),
                       linearBytes = ORV_METHOD(krnResizeAxis8u, krnResizeLinear8u, KRN_LINEAR, 2, 2),
                       linearWords = ORV_METHOD(krnResizeAxis16u, krnResizeLinear16u, KRN_LINEAR, 2, 1),
                       linearFloats = ORV_METHOD(krnResizeAxis32f, krnResizeLinear32f, KRN_LINEAR, 4, 1),
                       cubicBytes = ORV_METHOD(krnResizeAxis32f, krnResizeCubic8u, KRN_CUBIC, 4, 4),
                       cubicWords = ORV_METHOD(krnResizeAxis32f, krnResizeCubic16u, KRN_CUBIC, 4, 1),
                       cubicFloats = ORV_METHOD(krnResizeAxis32f, krnResizeCubic32f, KRN_CUBIC, 4, 1);

struct MeanKernels {
    const Kernel<AddRowKernel> &add;
    LayoutKernels<MeanRowKernel> means;
};
constexpr MeanKernels meansOfBytes = {krnAddRow8u32s, ORV_LAYOUT_KERNELS(krnMeanRow32s8u)},
                      meansOfWords = {krnAddRow16u32s, ORV_LAYOUT_KERNELS(krnMeanRow32s16u)},
                      wideMeansOfBytes = {krnAddRow8u64f, ORV_LAYOUT_KERNELS(krnMeanRow64f8u)},
                      wideMeansOfWords = {krnAddRow16u64f, ORV_LAYOUT_KERNELS(krnMeanRow64f16u)},
                      meansOfFloats = {krnAddRow32f64f, ORV_LAYOUT_KERNELS(krnMeanRow64f32f)};

const MeanKernels &meansOf(std::int32_t depth, bool integers)
{
    return depth == ORV_DEPTH_8U    ? integers ? meansOfBytes : wideMeansOfBytes
           : depth == ORV_DEPTH_16U ? integers ? meansOfWords : wideMeansOfWords
                                    : meansOfFloats;
}

} // namespace

const ResizeMethod &Interpolation::methodOf(std::int32_t mode, std::int32_t depth)
{
    const auto byDepth = [=](const ResizeMethod &bytes, const ResizeMethod &words,
                             const ResizeMethod &floats) -> const ResizeMethod & {
        return depth == ORV_DEPTH_8U ? bytes : depth == ORV_DEPTH_16U ? words : floats;
    };
    return mode == KRN_NEAREST  ? byDepth(nearestBytes, nearestWords, nearestFloats)
           : mode == KRN_LINEAR ? byDepth(linearBytes, linearWords, linearFloats)
                                : byDepth(cubicBytes, cubicWords, cubicFloats);
}

KrnStatus Interpolation::prepare(std::int32_t samplesPerPixel)
{
    const ColumnTable table = {method_, call_.operand, samplesPerPixel};
    const std::int64_t columnBytes = roundedUp(table.bytes(call_.x.count));
    const std::int64_t rowBytes = roundedUp(method_.axisBytes(call_.y.count));
    const std::int64_t bufferBytes = roundedUp(std::int64_t{call_.x.count} * samplesPerPixel * method_.bufferedBytes);
    if (!scratch_.take(columnBytes + rowBytes + method_.taps() * bufferBytes))
        return KRN_NO_MEMORY;
    std::int32_t *const rows = reinterpret_cast<std::int32_t *>(scratch_.data() + columnBytes);
    rows_ = {.count = call_.y.count, .indices = rows, .weights = rows + call_.y.count, .buffers = {}, .held = {}};
    for (std::int32_t i = 0; i < method_.taps(); ++i)
        rows_.buffers[i] = scratch_.data() + columnBytes + rowBytes + i * bufferBytes;
    const KrnStatus status = method_.fillAxis(call_.y, rows);
    return status != KRN_OK ? status : table.fill(call_.x, scratch_.data(), columns_);
}

KrnStatus Interpolation::run(const Work &work)
{
    const ConstRaster source = work.sources[0];
    if (plane_ != source.data)
        std::fill_n(rows_.held, mostResizeTaps, noRow);
    plane_ = source.data;
    return (work.layout == Layout::AC4 ? method_.ac4 : method_.c1)(source.data, source.step, work.destination.data,
                                                                   work.destination.step, work.rowsAbove,
                                                                   work.size.height, &columns_, &rows_);
}

KrnStatus BoxMeans::prepare(std::int32_t samplesPerPixel)
{
    const std::int64_t columnBytes = roundedUp(BoxTable::bytes(call_.x.count));
    const std::int64_t rowBytes = roundedUp(BoxTable::bytes(call_.y.count));
    const std::int64_t sumBytes = roundedUp(8 * std::int64_t{call_.x.length} * samplesPerPixel);
    const std::int64_t channelBytes = roundedUp(4 * std::int64_t{call_.x.length});
    if (!scratch_.take(columnBytes + rowBytes + sumBytes + channelBytes))
        return KRN_NO_MEMORY;
    columns_.fill(call_.x, scratch_.data());
    rows_.fill(call_.y, scratch_.data() + columnBytes);
    sums_ = scratch_.data() + columnBytes + rowBytes;
    channel_ = sums_ + sumBytes;
    pixels_ = columns_.last[call_.x.count - 1] + 1;
    // Sums of a column must fit 32 bits, and those of a box the whole numbers of doubles.
    const double most = call_.source.depth == ORV_DEPTH_8U ? 255 : 65535, ofColumn = most * rows_.boxUnits;
    integers_ = call_.source.depth != ORV_DEPTH_32F && ofColumn < 4294967296.0 &&
                ofColumn * columns_.boxUnits < 4503599627370496.0;
    return KRN_OK;
}

KrnStatus BoxMeans::addRow(const Work &work, std::int32_t sourceRow, std::int32_t weight, bool starts)
{
    ConstRaster row = work.sources[0].fromRow(sourceRow);
    KrnStatus status = KRN_OK;
    if (call_.operand.interleaved) {
        const Raster channel = {channel_, pixels_ * call_.operand.sampleBytes};
        status = gather(call_.operand, row, channel, {pixels_, 1});
        row = channel;
    }
    return status != KRN_OK ? status
                            : meansOf(call_.source.depth, integers_)
                                  .add(row.data, sums_, pixels_ * samplesPerPixel(work.layout), weight, starts ? 1 : 0);
}

KrnStatus BoxMeans::run(const Work &work)
{
    const BoxesOfRow boxes = {columns_.first, columns_.last, columns_.firstWeight, columns_.lastWeight,
                              columns_.sourceUnits};
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; ++row) {
        const std::int32_t y = work.rowsAbove + row, first = rows_.first[y], last = rows_.last[y];
        for (std::int32_t sourceRow = first; sourceRow <= last && status == KRN_OK; ++sourceRow)
            status = addRow(work, sourceRow,
                            sourceRow == first  ? rows_.firstWeight[y]
                            : sourceRow == last ? rows_.lastWeight[y]
                                                : rows_.sourceUnits,
                            sourceRow == first);
        if (status == KRN_OK)
            status = meansOf(call_.source.depth, integers_)
                         .means[work.layout](sums_, work.destination.fromRow(row).data, work.size.width, &boxes,
                                             rows_.weightsOf(y));
    }
    return status;
}

} // namespace orv
