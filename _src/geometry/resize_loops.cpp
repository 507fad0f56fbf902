// The loops of resize_loops.h.
#include "geometry/resize_loops.h"

#include <algorithm>

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

} // namespace orv
