// From scratch into the destination.
#include "delivery.h"

namespace orv {
namespace {

void move(const Kernel<CopyKernel> &kernel, const Raster &from, const Raster &to, Size size)
{
    kernel(from.data, from.step, to.data, to.step, size.width, size.height);
}

} // namespace

bool Delivery::masksMeet(const Operand &destination, Size size, std::int32_t planes) const
{
    for (std::size_t i = 0; i < maskCount_; ++i)
        if (meet(reach(masks_[i], size, 1), reach(destination, size, planes)))
            return true;
    return false;
}

void Delivery::plan(Lanes &lanes, const Operand &destination, Layout layout, std::int32_t width, bool stripsApart)
{
    destination_ = destination;
    layout_ = layout;
    if (masked() && destination.picked)
        mergeLane_ = lanes.add(std::int64_t{width} * destination.sampleBytes);
    if (maskCount_ > 1 || (masked() && !stripsApart))
        maskLane_ = lanes.add(width);
}

Raster Delivery::maskOfStrip(std::int32_t row, Size strip, const Scratch &scratch, std::int32_t rows) const
{
    if (!masked())
        return {};
    const Raster first = masks_[0].at(row, 0);
    if (!maskLane_.used())
        return first;
    const Raster mask = maskLane_.in(scratch, rows);
    move(krnCopy8uC1, first, mask, strip);
    for (std::size_t i = 1; i < maskCount_; ++i) {
        const Raster next = masks_[i].at(row, 0);
        krnAndMask8u(next.data, next.step, mask.data, mask.step, strip.width, strip.height);
    }
    return mask;
}

void Delivery::deliver(const Raster &result, const Raster &destination, Size strip, const Raster &mask,
                       const Scratch &scratch, std::int32_t rows) const
{
    const ChannelKernels &kernels = channelKernels(destination_.sampleBytes);
    const bool three = destination_.image->nChannels == 3;
    const Kernel<CopyKernel> &insert = three ? kernels.insertC3 : kernels.insertC4;
    if (!masked()) {
        move(destination_.picked ? insert : kernels.copy[layout_], result, destination, strip);
        return;
    }
    Raster merged = destination;
    if (destination_.picked) {
        merged = mergeLane_.in(scratch, rows);
        move(three ? kernels.extractC3 : kernels.extractC4, destination, merged, strip);
    }
    kernels.copyMasked[layout_](result.data, result.step, merged.data, merged.step, strip.width, strip.height,
                                mask.data, mask.step);
    if (destination_.picked)
        move(insert, merged, destination, strip);
}

} // namespace orv
