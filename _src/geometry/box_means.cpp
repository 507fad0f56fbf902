// The loop of box_means.h.
#include "geometry/box_means.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "delivery.h"
#include "kernels.h"

namespace orv {
namespace {

struct MeanKernels {
    const Kernel<SumRowsKernel> &sum;
    LayoutKernels<MeanRowKernel> means;
};
constexpr MeanKernels meansOfBytes = {krnSumRows8u32f, ORV_LAYOUT_KERNELS(krnMeanRow32f8u)},
                      meansOfWords = {krnSumRows16u32f, ORV_LAYOUT_KERNELS(krnMeanRow32f16u)},
                      wideMeansOfBytes = {krnSumRows8u64f, ORV_LAYOUT_KERNELS(krnMeanRow64f8u)},
                      wideMeansOfWords = {krnSumRows16u64f, ORV_LAYOUT_KERNELS(krnMeanRow64f16u)},
                      meansOfFloats = {krnSumRows32f64f, ORV_LAYOUT_KERNELS(krnMeanRow64f32f)};

const MeanKernels &meansOf(std::int32_t depth, bool floats)
{
    return depth == ORV_DEPTH_8U    ? floats ? meansOfBytes : wideMeansOfBytes
           : depth == ORV_DEPTH_16U ? floats ? meansOfWords : wideMeansOfWords
                                    : meansOfFloats;
}

constexpr LayoutKernels<HalveKernel> halvesOfBytes = ORV_LAYOUT_KERNELS(krnHalve8u),
                                     halvesOfWords = ORV_LAYOUT_KERNELS(krnHalve16u);

// So many rows are added at once: more of them would lie on more pages than processors keep at hand.
constexpr std::int32_t rowsAtOnce = 16;

} // namespace

// Boxes of two by two have a kernel of their own, where no channel must be gathered and no box passes the end.
bool BoxMeans::halves() const
{
    const auto two = [](const BoxTable &table, const ResizeAxis &axis) {
        return table.sourceUnits() == 1 && table.boxUnits() == 2 && axis.length / 2 >= axis.count;
    };
    return two(columns_, call_.x) && two(rows_, call_.y) && !call_.operand.interleaved &&
           (call_.source.depth != ORV_DEPTH_32F || call_.operand.pixelBytes == call_.operand.sampleBytes);
}

// Floats hold all sums of integers, and quotients stay apart from the next integer in any rounding mode.
bool BoxMeans::floatsHold() const
{
    const double values = call_.source.depth == ORV_DEPTH_8U ? 256 : 65536;
    return call_.source.depth != ORV_DEPTH_32F && 2 * values * rows_.boxUnits() * columns_.boxUnits() <= 16777216.0;
}

template <class Sum> void BoxMeans::fill(std::uint8_t *memory)
{
    std::int32_t *const offsets = reinterpret_cast<std::int32_t *>(memory);
    Sum *const totals = reinterpret_cast<Sum *>(memory + roundedUp(4 * std::int64_t{call_.x.count}));
    Sum *weights = totals + call_.x.count;
    boxes_ = {offsets, weights, totals, boxes_.taps};
    for (std::int32_t i = 0; i < call_.x.count; ++i, weights += boxes_.taps) {
        const Box box = columns_[i];
        offsets[i] = box.first * channels_;
        totals[i] = static_cast<Sum>(columns_.weightsOf(box));
        const std::int32_t last = box.last - box.first;
        std::fill_n(weights, last, static_cast<Sum>(columns_.sourceUnits()));
        std::fill(weights + last, weights + boxes_.taps, Sum{0});
        weights[last] = static_cast<Sum>(box.lastWeight);
        weights[0] = static_cast<Sum>(box.firstWeight);
    }
}

KrnStatus BoxMeans::prepare(std::int32_t)
{
    if (halves())
        return KRN_OK;
    floats_ = floatsHold();
    channels_ = call_.operand.interleaved ? 1 : call_.operand.pixelBytes / call_.operand.sampleBytes;
    const std::int32_t together = floats_ ? channels_ == 1 ? floatTaps : 1 : doubleTaps;
    boxes_.taps = (columns_.taps() + together - 1) / together * together;
    pixels_ = columns_[call_.x.count - 1].last + 1;
    const std::int64_t bytes = floats_ ? sizeof(float) : sizeof(double), count = call_.x.count;
    const std::int64_t tableBytes = roundedUp(4 * count) + roundedUp(bytes * count * (1 + std::int64_t{boxes_.taps}));
    // Kernels read all taps of the last box.
    const std::int64_t sumBytes = roundedUp(bytes * ((std::int64_t{pixels_} + boxes_.taps) * channels_ + 1));
    const std::int64_t channelBytes = roundedUp(std::int64_t{call_.operand.sampleBytes} * pixels_);
    if (!scratch_.take(tableBytes + sumBytes + channelBytes))
        return KRN_NO_MEMORY;
    if (floats_)
        fill<float>(scratch_.data());
    else
        fill<double>(scratch_.data());
    sums_ = scratch_.data() + tableBytes;
    std::memset(sums_, 0, static_cast<std::size_t>(sumBytes));
    channel_ = sums_ + sumBytes;
    return KRN_OK;
}

// One channel of several is gathered row by row.
KrnStatus BoxMeans::sumRows(const Work &work, const Box &box)
{
    const bool gathers = call_.operand.interleaved;
    KrnStatus status = KRN_OK;
    for (std::int32_t first = box.first; first <= box.last && status == KRN_OK;) {
        const std::int32_t rows = gathers ? 1 : std::min(box.last - first + 1, rowsAtOnce);
        const std::int32_t weight = rows_.sourceUnits(), next = first + rows;
        const std::int32_t lastWeight = next > box.last && box.last > box.first ? box.lastWeight : weight;
        const RowsOfBox summed = {rows,
                                  first == box.first ? box.firstWeight
                                  : rows == 1        ? lastWeight
                                                     : weight,
                                  weight, lastWeight};
        ConstRaster source = work.sources[0].fromRow(first);
        if (gathers) {
            const Raster channel = {channel_, pixels_ * call_.operand.sampleBytes};
            status = gather(call_.operand, source, channel, {pixels_, 1});
            source = channel;
        }
        if (status == KRN_OK)
            status =
                meansOf(call_.source.depth, floats_)
                    .sum(source.data, source.step, &summed, sums_, pixels_ * channels_, first == box.first ? 1 : 0);
        first = next;
    }
    return status;
}

KrnStatus BoxMeans::run(const Work &work)
{
    if (halves()) {
        const ConstRaster source = work.sources[0].fromRow(2 * std::int64_t{work.rowsAbove});
        const std::int32_t depth = call_.source.depth;
        const Kernel<HalveKernel> &kernel = depth == ORV_DEPTH_8U    ? halvesOfBytes[work.layout]
                                            : depth == ORV_DEPTH_16U ? halvesOfWords[work.layout]
                                                                     : krnHalve32fC1;
        return kernel(source.data, source.step, work.destination.data, work.destination.step, work.size.width,
                      work.size.height);
    }
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; ++row) {
        const Box box = rows_[work.rowsAbove + row];
        status = sumRows(work, box);
        if (status == KRN_OK)
            status = meansOf(call_.source.depth, floats_)
                         .means[work.layout](sums_, work.destination.fromRow(row).data, work.size.width, &boxes_,
                                             rows_.weightsOf(box));
    }
    return status;
}

} // namespace orv
