// Where the samples of a call's images are.
#include "operand.h"

#include <algorithm>

namespace orv {
namespace {

std::int64_t rowBytes(const Extent &extent)
{
    return std::int64_t{extent.size.width} * extent.operand.pixelBytes;
}

ByteRange byteRange(const Extent &extent)
{
    return byteRange(extent.operand, extent.size, extent.planes);
}

} // namespace

Operand resolve(const OrvImage &image, bool planes, Steps steps)
{
    Operand operand = {&image, resolveStart(image, steps), sampleBytes(image.depth), 0, false};
    // Beside pixels of one channel a source may have its channel as a plane.
    const bool plane = planes || image.dataOrder == ORV_DATA_ORDER_PLANE;
    operand.pixelBytes = operand.sampleBytes * (plane ? 1 : image.nChannels);
    operand.interleaved = !plane && operand.start.channels == 1 && image.nChannels > 1;
    return operand;
}

ByteRange byteRange(const Operand &operand, Size size, std::int32_t planes)
{
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(operand.start.raster.data);
    const std::int64_t bytes = (planes - 1) * std::int64_t{operand.start.planeStep} +
                               (size.height - 1) * std::int64_t{operand.start.raster.step} +
                               std::int64_t{size.width} * operand.pixelBytes;
    return {first, first + static_cast<std::uintptr_t>(bytes)};
}

bool disjoint(const Extent &read, const Extent &written)
{
    return !overlap(byteRange(read), byteRange(written));
}

bool stripsDisjoint(const Extent &read, const Extent &written)
{
    if (disjoint(read, written))
        return true;
    const Start &from = read.operand.start, &to = written.operand.start;
    const std::uintptr_t a = byteRange(read).first, b = byteRange(written).first, distance = a > b ? a - b : b - a;
    const std::int64_t row = std::max(rowBytes(read), rowBytes(written));
    return from.raster.step == to.raster.step && (read.planes == 1 || from.planeStep == to.planeStep) &&
           distance + static_cast<std::uintptr_t>(row) <= static_cast<std::uintptr_t>(to.raster.step);
}

bool samplesDisjoint(const Extent &read, const Extent &written)
{
    return disjoint(read, written) || read.operand.start.raster.data == written.operand.start.raster.data;
}

} // namespace orv
