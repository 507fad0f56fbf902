// The frame of measure.h.
#include "measure.h"

#include <algorithm>

#include "cache_sizes.h"
#include "call_images.h"
#include "channel_kernels.h"
#include "delivery.h"
#include "operand.h"
#include "scratch.h"

namespace orv {
namespace {

// The first image decides on planes and layouts, as the destination does elsewhere.
CallImages imagesOf(const MeasureCall &call)
{
    return call.other == nullptr ? CallImages({}, call.image) : CallImages({call.other}, call.image);
}

// One call with all that its strips need.
class StripReader {
public:
    StripReader(const MeasureCall &call, const Loop &loop) : call_(call), loop_(loop), images_(imagesOf(call)) {}

    KrnStatus run();

private:
    std::size_t count() const { return images_.count(); }
    const OrvImage &image(std::size_t index) const { return index == 0 ? *call_.image : *call_.other; }
    bool gathers(std::size_t index) const
    {
        const Operand &operand = operands_[index];
        return operand.interleaved && (call_.selected == Selected::Gathered || !operand.served());
    }
    bool resolveImages();
    std::int64_t loopBytes(std::int32_t rows) const
    {
        return loop_.scratchBytes ? loop_.scratchBytes({.layout = layout_, .size = {call_.size.width, rows}}) : 0;
    }
    bool zeroes() const { return masks_.any() && call_.unselected == Unselected::Zeroed; }
    bool takeScratch();
    KrnStatus zeroUnselected(std::size_t index, Size strip, ConstRaster mask, ConstRaster &source) const;
    KrnStatus runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask);

    const MeasureCall &call_;
    const Loop &loop_;
    const CallImages images_;
    Operand operands_[mostMeasured] = {};
    Masks masks_;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;

    Scratch scratch_;
    StripBuffers buffers_;
    StripBuffer channelBuffers_[mostMeasured], zeroedBuffers_[mostMeasured];
    std::int32_t stripRows_ = 1;
};

// False where the call has nothing to do: pixels of a channel count that no layout serves.
bool StripReader::resolveImages()
{
    const bool planes = images_.inPlanes();
    for (std::size_t i = 0; i < count(); ++i) {
        Operand &operand = operands_[i] = resolve(image(i), planes);
        // Whole pixels start at their first sample.
        if (operand.interleaved && !gathers(i))
            operand.start.raster =
                operand.start.raster.fromByte(-std::int64_t{firstChannel(image(i))} * operand.sampleBytes);
    }
    const std::int32_t channels = operands_[0].start.channels;
    if (planes)
        planes_ = planesToProcess(*call_.image, channels);
    else if (operands_[0].interleaved && !gathers(0))
        layout_ = call_.image->nChannels == 3 ? Layout::C3 : Layout::C4;
    else
        return pixelLayout(*call_.image, channels, layout_);
    return true;
}

bool StripReader::takeScratch()
{
    const Size size = call_.size;
    for (std::size_t i = 0; i < count(); ++i) {
        const std::int64_t bytes = std::int64_t{size.width} * operands_[i].sampleBytes;
        if (gathers(i))
            channelBuffers_[i] = buffers_.add(bytes);
        if (zeroes())
            zeroedBuffers_[i] = buffers_.add(bytes * samplesPerPixel(layout_));
    }
    masks_.plan(buffers_, size.width, false);
    stripRows_ = size.height;
    if (const std::int64_t rowBytes = buffers_.rowBytes + loopBytes(1); rowBytes > 0)
        stripRows_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(deliveryStripBytes / rowBytes, 1, size.height));
    const std::int64_t bytes = buffers_.rowBytes * stripRows_ + loopBytes(stripRows_);
    return bytes == 0 || scratch_.take(bytes);
}

// Copies the pixels that the mask selects among zeros.
KrnStatus StripReader::zeroUnselected(std::size_t index, Size strip, ConstRaster mask, ConstRaster &source) const
{
    const ChannelKernels &kernels = channelKernels(operands_[index].sampleBytes);
    const Kernel<CopyMaskedKernel> &select = layout_ == Layout::C1   ? kernels.selectC1
                                             : layout_ == Layout::C3 ? kernels.selectC3
                                                                     : kernels.selectC4;
    const Raster zeroed = zeroedBuffers_[index].in(scratch_, stripRows_);
    const KrnStatus status =
        select(source.data, source.step, zeroed.data, zeroed.step, strip.width, strip.height, mask.data, mask.step);
    source = zeroed;
    return status;
}

KrnStatus StripReader::runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask)
{
    ConstRaster sources[mostMeasured];
    for (std::size_t i = 0; i < count(); ++i) {
        const Raster pixels = operands_[i].at(row, plane);
        sources[i] = pixels;
        KrnStatus status = KRN_OK;
        if (gathers(i)) {
            const Raster channel = channelBuffers_[i].in(scratch_, stripRows_);
            status = gather(operands_[i], pixels, channel, strip);
            sources[i] = channel;
        }
        if (status == KRN_OK && zeroes())
            status = zeroUnselected(i, strip, mask, sources[i]);
        if (status != KRN_OK)
            return status;
    }
    return loop_.run({.layout = layout_,
                      .channel = firstChannel(*call_.image) + plane,
                      .size = strip,
                      .sources = sources,
                      .mask = mask,
                      .rowsAbove = row,
                      .rowsBelow = call_.size.height - row - strip.height,
                      .scratch = scratch_.data() + buffers_.rowBytes * stripRows_});
}

KrnStatus StripReader::run()
{
    const Size size = call_.size;
    for (const OrvImage *mask : call_.masks)
        masks_.add(mask);
    const bool oneOfPixels = !images_.inPlanes() && hasCoi(*call_.image) && call_.selected == Selected::Gathered;
    if (size.empty())
        return masks_.any() || (oneOfPixels && size.height < 1) ? KRN_NO_MEMORY : KRN_OK;
    if (!resolveImages())
        return KRN_OK;
    if (!takeScratch())
        return KRN_NO_MEMORY;
    // Plane by plane, for results that depend on the order of samples.
    for (std::int32_t plane = 0; plane < planes_; ++plane) {
        Size strip = {size.width, 0};
        for (std::int32_t row = 0; row < size.height; row += strip.height) {
            strip.height = std::min(stripRows_, size.height - row);
            ConstRaster mask;
            KrnStatus status = masks_.ofStrip(row, strip, scratch_, stripRows_, mask);
            if (status == KRN_OK)
                status = runStrip(row, strip, plane, mask);
            if (status != KRN_OK)
                return status;
        }
    }
    return KRN_OK;
}

} // namespace

OrvStatus runMeasure(const MeasureCall &call, const Loop &loop)
{
    return statusOf(StripReader(call, loop).run());
}

} // namespace orv
