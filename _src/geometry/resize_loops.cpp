// The loops of resize_loops.h.
#include "geometry/resize_loops.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "kernels.h"

namespace orv {
namespace {

using Rows = Kernel<ResizeRowKernel>;
using Blends = Kernel<BlendRowsKernel>;

// The kernels of one method at one depth. Rows of AC4 have all four samples; three of them are blended.
struct MethodKernels {
    const Rows &c1, &c3, &c4;
    const Blends &blendC1, &blendAC4;

    const Rows &rows(Layout layout) const { return layout == Layout::C1 ? c1 : layout == Layout::C3 ? c3 : c4; }
};
#define ORV_METHOD(rows, blends)                              \
    {                                                         \
        rows##C1, rows##C3, rows##C4, blends##C1, blends##AC4 \
    }
constexpr MethodKernels linearBytes = ORV_METHOD(krnResizeLinear8u16u, krnResizeRowsLinear16u8u),
                        linearWords = ORV_METHOD(krnResizeLinear16u, krnResizeRowsLinear16u),
                        linearFloats = ORV_METHOD(krnResizeLinear32f, krnResizeRowsLinear32f),
                        cubicBytes = ORV_METHOD(krnResizeCubic8u32f, krnResizeRowsCubic32f8u),
                        cubicWords = ORV_METHOD(krnResizeCubic16u32f, krnResizeRowsCubic32f16u),
                        cubicFloats = ORV_METHOD(krnResizeCubic32f, krnResizeRowsCubic32f);

const MethodKernels &methodOf(std::int32_t mode, std::int32_t depth)
{
    const bool cubic = mode == KRN_CUBIC;
    return depth == ORV_DEPTH_8U    ? cubic ? cubicBytes : linearBytes
           : depth == ORV_DEPTH_16U ? cubic ? cubicWords : linearWords
           : cubic                  ? cubicFloats
                                    : linearFloats;
}

constexpr LayoutKernels<ResizeRowKernel> nearestBytes = ORV_LAYOUT_KERNELS(krnResizeNearest8u),
                                         nearestWords = ORV_LAYOUT_KERNELS(krnResizeNearest16u),
                                         nearestLongWords = ORV_LAYOUT_KERNELS(krnResizeNearest32s);

} // namespace

KrnStatus Interpolation::prepare(std::int32_t samplesPerPixel)
{
    const std::int64_t columnBytes = roundedUp(ResizeTable::bytes(call_.x.count));
    const std::int64_t rowBytes = roundedUp(ResizeTable::bytes(call_.y.count));
    const std::int64_t bufferBytes = roundedUp(4 * std::int64_t{call_.x.count} * samplesPerPixel);
    if (!scratch_.take(columnBytes + rowBytes + taps() * bufferBytes))
        return KRN_NO_MEMORY;
    std::uint8_t *memory = scratch_.data();
    KrnStatus status = columns_.fill(call_.x, call_.mode, floats(), memory);
    if (status == KRN_OK)
        status = rows_.fill(call_.y, call_.mode, floats(), memory += columnBytes);
    for (std::int32_t i = 0; i < taps(); ++i)
        buffers_[i] = memory + rowBytes + i * bufferBytes;
    for (std::int32_t i = 0; i < call_.x.count; ++i)
        columns_.indices[i] *= call_.operand.pixelBytes;
    return status;
}

KrnStatus Interpolation::gatherRow(const Work &work, std::int32_t row) const
{
    const std::int32_t bytes = call_.operand.sampleBytes;
    const LayoutKernels<ResizeRowKernel> &kernels = bytes == 1   ? nearestBytes
                                                    : bytes == 2 ? nearestWords
                                                                 : nearestLongWords;
    return kernels[work.layout](work.sources[0].fromRow(rows_.indices[work.rowsAbove + row]).data,
                                call_.operand.pixelBytes, work.destination.fromRow(row).data, work.size.width,
                                columns_.indices, nullptr);
}

// Rows that follow each other have buffers of their own.
KrnStatus Interpolation::interpolateRow(const Work &work, std::int32_t sourceRow, const void *&buffer)
{
    const std::int32_t ofImage = sourceRow + call_.y.offset, place = ofImage % taps();
    buffer = buffers_[place];
    if (held_[place] == ofImage)
        return KRN_OK;
    held_[place] = ofImage;
    return methodOf(call_.mode, call_.source.depth)
        .rows(work.layout)(work.sources[0].fromRow(sourceRow).data, call_.operand.pixelBytes, buffers_[place],
                           work.size.width, columns_.indices, columns_.weights);
}

KrnStatus Interpolation::blendRow(const Work &work, std::int32_t row)
{
    const std::int32_t y = work.rowsAbove + row, first = rows_.indices[y] - (call_.mode == KRN_CUBIC ? 1 : 0);
    const void *buffers[mostTaps] = {};
    for (std::int32_t i = 0; i < taps(); ++i)
        if (const KrnStatus status = interpolateRow(work, first + i, buffers[i]); status != KRN_OK)
            return status;
    const std::uint8_t *weights = static_cast<const std::uint8_t *>(rows_.weights) + std::ptrdiff_t{4} * y;
    float factors[cubicFactors];
    if (call_.mode == KRN_CUBIC) {
        for (std::int32_t i = 0; i < cubicFactors; ++i)
            std::memcpy(&factors[i], weights + std::ptrdiff_t{4} * i * call_.y.count, sizeof factors[i]);
        weights = reinterpret_cast<const std::uint8_t *>(factors);
    }
    const MethodKernels &method = methodOf(call_.mode, call_.source.depth);
    std::uint8_t *const out = work.destination.fromRow(row).data;
    return work.layout == Layout::AC4
               ? method.blendAC4(buffers, out, work.size.width, weights)
               : method.blendC1(buffers, out, work.size.width * samplesPerPixel(work.layout), weights);
}

KrnStatus Interpolation::run(const Work &work)
{
    if (plane_ != work.sources[0].data)
        std::fill_n(held_, mostTaps, -1);
    plane_ = work.sources[0].data;
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < work.size.height && status == KRN_OK; ++row)
        status = taps() == 0 ? gatherRow(work, row) : blendRow(work, row);
    return status;
}

} // namespace orv
