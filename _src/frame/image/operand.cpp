// Where the samples of a call's images are.
#include "operand.h"

#include <algorithm>

namespace orv {
namespace {

std::int64_t rowReach(const Operand &operand, Size size)
{
    return static_cast<std::int64_t>(size.width) * operand.pixelBytes;
}

} // namespace

Operand resolve(const OrvImage &image, bool planes)
{
    Operand operand = {&image, resolveStart(image), sampleBytes(image.depth), 0, false};
    // Beside pixels of one channel a source may have its channel as a plane.
    const bool plane = planes || image.dataOrder == ORV_DATA_ORDER_PLANE;
    operand.pixelBytes = operand.sampleBytes * (plane ? 1 : image.nChannels);
    operand.picked = !plane && operand.start.channels == 1 && image.nChannels > 1;
    return operand;
}

Reach reach(const Operand &operand, Size size, std::int32_t planes)
{
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(operand.start.raster.data);
    const std::int64_t bytes = (planes - 1) * static_cast<std::int64_t>(operand.start.planeStep) +
                               (size.height - 1) * static_cast<std::int64_t>(operand.start.raster.step) +
                               rowReach(operand, size);
    return {first, first + static_cast<std::uintptr_t>(bytes)};
}

bool stripsKeepApart(const Operand &read, const Operand &written, Size size, std::int32_t planes)
{
    const Reach a = reach(read, size, planes), b = reach(written, size, planes);
    if (!meet(a, b))
        return true;
    const std::int32_t step = read.start.raster.step;
    const std::uintptr_t apart = a.first > b.first ? a.first - b.first : b.first - a.first;
    const std::int64_t row = std::max(rowReach(read, size), rowReach(written, size));
    return step == written.start.raster.step && (planes == 1 || read.start.planeStep == written.start.planeStep) &&
           apart + static_cast<std::uintptr_t>(row) <= static_cast<std::uintptr_t>(step);
}

bool samplesKeepApart(const Operand &read, const Operand &written, Size size, std::int32_t planes)
{
    return !meet(reach(read, size, planes), reach(written, size, planes)) ||
           read.start.raster.data == written.start.raster.data;
}

} // namespace orv
