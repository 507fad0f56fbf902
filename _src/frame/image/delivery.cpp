// From scratch into the destination.
#include "delivery.h"

#include "channel_kernels.h"

namespace orv {
namespace {

KrnStatus move(const Kernel<CopyKernel> &kernel, ConstRaster from, Raster to, Size size)
{
    return kernel(from.data, from.step, to.data, to.step, size.width, size.height);
}

} // namespace

KrnStatus gather(const Operand &image, ConstRaster pixels, Raster channel, Size size)
{
    const ChannelKernels &kernels = channelKernels(image.sampleBytes);
    if (image.served())
        return move(image.image->nChannels == 3 ? kernels.extractC3 : kernels.extractC4, pixels, channel, size);
    // The pixels of a row as rows of one sample.
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < size.height && status == KRN_OK; ++row)
        status = move(kernels.copy.c1, {pixels.fromRow(row).data, image.pixelBytes},
                      {channel.fromRow(row).data, image.sampleBytes}, {1, size.width});
    return status;
}

KrnStatus scatter(const Operand &image, ConstRaster channel, Raster pixels, Size size)
{
    const ChannelKernels &kernels = channelKernels(image.sampleBytes);
    if (image.served())
        return move(image.image->nChannels == 3 ? kernels.insertC3 : kernels.insertC4, channel, pixels, size);
    KrnStatus status = KRN_OK;
    for (std::int32_t row = 0; row < size.height && status == KRN_OK; ++row)
        status = move(kernels.copy.c1, {channel.fromRow(row).data, image.sampleBytes},
                      {pixels.fromRow(row).data, image.pixelBytes}, {1, size.width});
    return status;
}

bool Masks::overlap(const Extent &written) const
{
    for (std::size_t i = 0; i < count_; ++i)
        if (!disjoint({masks_[i], written.size, 1}, written))
            return true;
    return false;
}

void Masks::plan(StripBuffers &buffers, std::int32_t width, bool copied)
{
    if (count_ > 1 || (any() && copied))
        buffer_ = buffers.add(width);
}

KrnStatus Masks::ofStrip(std::int32_t row, Size strip, const Scratch &scratch, std::int32_t rows,
                         ConstRaster &mask) const
{
    mask = {};
    if (!any())
        return KRN_OK;
    const Raster first = masks_[0].at(row, 0);
    if (!buffer_.used()) {
        mask = first;
        return KRN_OK;
    }
    const Raster all = buffer_.in(scratch, rows);
    KrnStatus status = move(krnCopy8uC1, first, all, strip);
    for (std::size_t i = 1; i < count_ && status == KRN_OK; ++i) {
        const Raster next = masks_[i].at(row, 0);
        status = krnAndMask8u(next.data, next.step, all.data, all.step, strip.width, strip.height);
    }
    mask = all;
    return status;
}

void Delivery::plan(StripBuffers &buffers, const Operand &destination, Layout layout, std::int32_t width, bool masked)
{
    destination_ = destination;
    layout_ = layout;
    if (masked && destination.interleaved)
        mergeBuffer_ = buffers.add(std::int64_t{width} * destination.sampleBytes);
}

KrnStatus Delivery::deliver(ConstRaster result, Raster destination, Size strip, ConstRaster mask,
                            const Scratch &scratch, std::int32_t rows) const
{
    const ChannelKernels &kernels = channelKernels(destination_.sampleBytes);
    if (mask.data == nullptr)
        return destination_.interleaved ? scatter(destination_, result, destination, strip)
                                        : move(kernels.copy[layout_], result, destination, strip);
    Raster merged = destination;
    if (destination_.interleaved) {
        merged = mergeBuffer_.in(scratch, rows);
        if (const KrnStatus status = gather(destination_, destination, merged, strip); status != KRN_OK)
            return status;
    }
    const KrnStatus status = kernels.copyMasked[layout_](result.data, result.step, merged.data, merged.step,
                                                         strip.width, strip.height, mask.data, mask.step);
    return status == KRN_OK && destination_.interleaved ? scatter(destination_, merged, destination, strip) : status;
}

} // namespace orv
