// The frame of window.h.
#include "window.h"

#include <algorithm>
#include <limits>

#include "border.h"
#include "cache_sizes.h"
#include "call_images.h"
#include "channel_kernels.h"
#include "delivery.h"
#include "operand.h"
#include "scratch.h"

namespace orv {
namespace {

// One call with all that its strips need.
class StripCall {
public:
    StripCall(const WindowCall &call, const Loop &loop)
        : call_(call), loop_(loop), images_({call.source}, call.destination)
    {
    }

    KrnStatus run();

private:
    bool resolveImages();
    Work workOn(std::int32_t rows) const
    {
        return {.layout = layout_, .size = {size_.width, rows}, .margins = call_.margins};
    }
    std::int64_t buffersBytes(std::int32_t rows) const { return buffers_.rowBytes * rows; }
    std::int64_t paddedBytes(std::int32_t rows) const { return paddedStep_ * paddedHeight(workOn(rows)); }
    std::int64_t planeBytes(std::int32_t rows) const { return planeStep_ * paddedHeight(workOn(rows)); }
    std::int64_t loopBytes(std::int32_t rows) const
    {
        return loop_.scratchBytes ? roundedUp(loop_.scratchBytes(workOn(rows))) : 0;
    }
    std::int64_t carriedBytes() const { return loop_.carriedBytes ? roundedUp(loop_.carriedBytes(workOn(1))) : 0; }
    std::int64_t scratchBytes(std::int32_t rows) const
    {
        return buffersBytes(rows) + paddedBytes(rows) + planeBytes(rows) + loopBytes(rows);
    }
    bool inStrips() const { return strips_ && call_.padding != Padding::OwnWholeCopy; }
    bool planBuffers();
    std::int32_t chooseStripRows() const;
    void findRowsInPlace();
    bool inPlace(std::int32_t row) const { return row >= firstInPlace_ && row < endOfInPlace_; }
    KrnStatus interleave(const BorderedImage &image, const PaddedArea &area, Raster padded) const;
    KrnStatus scatterPlanes(ConstRaster result, std::int32_t row, Size strip, ConstRaster mask) const;
    KrnStatus runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask);

    const WindowCall &call_;
    const Loop &loop_;
    const CallImages images_;
    Size size_ = {};
    Operand source_ = {}, destination_ = {};
    Masks masks_;
    Delivery delivery_;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;
    bool interleaves_ = false, scatters_ = false;      // pixels from planes, and to planes
    std::int64_t firstColumn_ = 0, firstRow_ = 0;      // of the image, that is computed
    bool strips_ = true;                               // no strip is written over what is still to be read
    std::int32_t firstInPlace_ = 0, endOfInPlace_ = 0; // rows whose windows lie in the image and are read there

    // In this order: buffers of a strip, the padded source, one padded plane of it, the loop's scratch, what is
    // carried.
    Scratch scratch_;
    StripBuffers buffers_;
    StripBuffer resultBuffer_, channelBuffer_;
    std::int64_t paddedStep_ = 0, planeStep_ = 0;
    std::int32_t stripRows_ = 1;
};

// An image whose channels are taken one by one: its planes, or each channel of interleaved pixels.
Operand byChannels(const OrvImage &image)
{
    Operand operand = resolve(image, false);
    operand.interleaved = image.dataOrder == ORV_DATA_ORDER_PIXEL && image.nChannels > 1;
    if (operand.interleaved)
        operand.start.planeStep = operand.sampleBytes;
    return operand;
}

// False where the call has nothing to do: pixels of a channel count that no layout serves.
bool StripCall::resolveImages()
{
    const OrvImage &source = *call_.source, &destination = *call_.destination;
    const std::int32_t channels = channelsToProcess(destination);
    const bool sourcePlanes = source.dataOrder == ORV_DATA_ORDER_PLANE,
               destinationPlanes = destination.dataOrder == ORV_DATA_ORDER_PLANE;
    const bool alike = !sourcePlanes && !destinationPlanes && channels > 1 && source.nChannels == channels;
    if (alike || call_.wholePixels) {
        source_ = resolve(source, false);
        source_.interleaved = false;
        destination_ = resolve(destination, false);
        if (!pixelLayout(*call_.alphaOf, channels, layout_))
            return false;
        interleaves_ = sourcePlanes;
        scatters_ = destinationPlanes;
    } else {
        source_ = byChannels(source);
        destination_ = byChannels(destination);
        planes_ = std::min(planesToProcess(destination, channels), source.nChannels);
        if (!source_.served() || !destination_.served())
            return false;
    }
    // The channel of interest says that one channel is read, but not which: it is always the first.
    source_.start.raster = {source.imageData, source.widthStep};
    masks_.add(source.maskROI);
    masks_.add(destination.maskROI);

    if (const OrvROI *roi = source.roi; roi != nullptr) {
        firstColumn_ = roi->xOffset < -call_.startLeft ? 0 : roi->xOffset;
        firstRow_ = roi->yOffset < -call_.startAbove ? 0 : roi->yOffset;
    }
    const Size whole = {source.width, source.height};
    const Extent read = {source_, whole, interleaves_ ? channels : planes_},
                 written = {destination_, size_, scatters_ ? channels : planes_};
    strips_ = disjoint(read, written) && !masks_.overlap(written);
    return true;
}

// False where no block could hold what is padded.
bool StripCall::planBuffers()
{
    const std::int32_t sampleBytes = source_.sampleBytes, pixelBytes = sampleBytes * samplesPerPixel(layout_);
    if (masks_.any() || destination_.interleaved || scatters_)
        resultBuffer_ = buffers_.add(std::int64_t{size_.width} * pixelBytes);
    if (scatters_ && masks_.any())
        channelBuffer_ = buffers_.add(std::int64_t{size_.width} * sampleBytes);
    delivery_.plan(buffers_, destination_, layout_, size_.width, masks_.any());
    masks_.plan(buffers_, size_.width, !strips_);
    paddedStep_ = paddedStep(paddedWidth(workOn(1)), pixelBytes);
    planeStep_ = interleaves_ ? paddedStep(paddedWidth(workOn(1)), sampleBytes) : 0;
    // What no block can hold is refused before it is multiplied by more.
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return paddedHeight(workOn(1)) <= most && paddedStep_ <= most / paddedHeight(workOn(inStrips() ? 1 : size_.height));
}

// As many rows as the cache holds, but at least as many as consecutive strips share. Scratch that a loop needs for a
// single row does not count: strips of fewer rows would not save it.
std::int32_t StripCall::chooseStripRows() const
{
    if (!inStrips())
        return size_.height;
    const std::int64_t least = std::max<std::int64_t>(8, std::int64_t{call_.margins.top} + call_.margins.bottom);
    const std::int64_t most = std::max(least, windowStripBytes / paddedStep_ + 1);
    std::int64_t strips = (size_.height + most - 1) / most, rows = (size_.height + strips - 1) / strips;
    while (rows > least && scratchBytes(static_cast<std::int32_t>(rows)) - loopBytes(1) > windowStripBytes) {
        ++strips;
        rows = (size_.height + strips - 1) / strips;
    }
    // Kernels compute groups of rows, of which an incomplete one costs as much as a whole one.
    constexpr std::int64_t group = 16;
    return static_cast<std::int32_t>(std::min<std::int64_t>((rows + group - 1) / group * group, size_.height));
}

void StripCall::findRowsInPlace()
{
    const Margins &margins = call_.margins;
    const std::int64_t end = firstColumn_ + size_.width + margins.right;
    if (!strips_ || call_.padding != Padding::Strips || source_.interleaved || interleaves_ ||
        firstColumn_ < margins.left || end > call_.source->width)
        return;
    const std::int64_t first = std::max<std::int64_t>(margins.top - firstRow_, 0);
    const std::int64_t last = std::min<std::int64_t>(call_.source->height - margins.bottom - firstRow_, size_.height);
    if (first >= last)
        return;
    firstInPlace_ = static_cast<std::int32_t>(first);
    endOfInPlace_ = static_cast<std::int32_t>(last);
}

// Pads each plane by itself. A fourth channel that the layout leaves alone is not read, and so is left out.
KrnStatus StripCall::interleave(const BorderedImage &image, const PaddedArea &area, Raster padded) const
{
    const ChannelKernels &kernels = channelKernels(image.sampleBytes);
    const Kernel<CopyKernel> &insert = samplesPerPixel(layout_) == 3 ? kernels.insertC3 : kernels.insertC4;
    const Raster plane = {padded.data + paddedBytes(stripRows_), static_cast<std::int32_t>(planeStep_)};
    KrnStatus status = KRN_OK;
    for (std::int32_t channel = 0; channel < samplesWritten(layout_) && status == KRN_OK; ++channel) {
        BorderedImage one = image;
        one.raster = source_.at(0, channel);
        one.layout = Layout::C1;
        borderFill(one, area, plane);
        const Raster out = padded.fromByte(std::int64_t{channel} * image.sampleBytes);
        status = insert(plane.data, plane.step, out.data, out.step, static_cast<std::int32_t>(area.width),
                        static_cast<std::int32_t>(area.height));
    }
    return status;
}

// The channels of a result of whole pixels, each into its plane.
KrnStatus StripCall::scatterPlanes(ConstRaster result, std::int32_t row, Size strip, ConstRaster mask) const
{
    const ChannelKernels &kernels = channelKernels(destination_.sampleBytes);
    const Kernel<CopyKernel> &extract = samplesPerPixel(layout_) == 3 ? kernels.extractC3 : kernels.extractC4;
    KrnStatus status = KRN_OK;
    for (std::int32_t channel = 0; channel < samplesWritten(layout_) && status == KRN_OK; ++channel) {
        const ConstRaster from = result.fromByte(std::int64_t{channel} * destination_.sampleBytes);
        const Raster plane = destination_.at(row, channel);
        const Raster to = mask.data == nullptr ? plane : channelBuffer_.in(scratch_, stripRows_);
        status = extract(from.data, from.step, to.data, to.step, strip.width, strip.height);
        if (status == KRN_OK && mask.data != nullptr)
            status = kernels.copyMasked.c1(to.data, to.step, plane.data, plane.step, strip.width, strip.height,
                                           mask.data, mask.step);
    }
    return status;
}

KrnStatus StripCall::runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask)
{
    const Raster image = source_.at(0, plane), destination = destination_.at(row, plane);
    const BorderedImage bordered = {call_.source, image, withAllSamples(layout_), source_.interleaved,
                                    source_.sampleBytes};
    const Margins &margins = call_.margins;
    const std::int32_t pixelBytes = bordered.paddedPixelBytes();
    const Raster padded = {scratch_.data() + buffersBytes(stripRows_), static_cast<std::int32_t>(paddedStep_)};

    Work work = workOn(strip.height);
    ConstRaster source;
    if (inPlace(row)) {
        source = image.fromRow(firstRow_ + row).fromByte(firstColumn_ * pixelBytes);
    } else {
        const Raster first = padded.fromRow(margins.top).fromByte(std::int64_t{margins.left} * pixelBytes);
        const PaddedArea area = {firstColumn_ - margins.left, firstRow_ + row - margins.top, paddedWidth(work),
                                 paddedHeight(work)};
        if (!interleaves_)
            borderFill(bordered, area, padded);
        else if (const KrnStatus status = interleave(bordered, area, padded); status != KRN_OK)
            return status;
        source = first;
        if (call_.padding != Padding::Strips)
            work.copy = first;
    }
    work.channel = plane;
    work.sources = &source;
    work.destination = resultBuffer_.used() ? resultBuffer_.in(scratch_, stripRows_) : destination;
    work.rowsAbove = row;
    work.rowsBelow = size_.height - row - strip.height;
    work.scratch = padded.data + paddedBytes(stripRows_) + planeBytes(stripRows_);
    work.carried = work.scratch + loopBytes(stripRows_) + plane * carriedBytes();
    const KrnStatus status = loop_.run(work);
    if (status != KRN_OK || !resultBuffer_.used())
        return status;
    return scatters_ ? scatterPlanes(work.destination, row, strip, mask)
                     : delivery_.deliver(work.destination, destination, strip, mask, scratch_, stripRows_);
}

KrnStatus StripCall::run()
{
    size_ = images_.commonSize();
    if (size_.empty()) // an empty mask cannot be allocated: such a call fails as one without memory does
        return images_.masked() ? KRN_NO_MEMORY : KRN_OK;
    if (!resolveImages())
        return KRN_OK;
    if (!planBuffers())
        return KRN_NO_MEMORY;
    stripRows_ = chooseStripRows();
    findRowsInPlace();
    if (!scratch_.take(scratchBytes(stripRows_) + planes_ * carriedBytes()))
        return KRN_NO_MEMORY;

    Size strip = {size_.width, 0};
    for (std::int32_t row = 0; row < size_.height; row += strip.height) {
        const std::int32_t end = row < firstInPlace_ ? firstInPlace_ : inPlace(row) ? endOfInPlace_ : size_.height;
        strip.height = std::min(stripRows_, end - row);
        ConstRaster mask;
        KrnStatus status = masks_.ofStrip(row, strip, scratch_, stripRows_, mask);
        for (std::int32_t plane = 0; plane < planes_ && status == KRN_OK; ++plane)
            status = runStrip(row, strip, plane, mask);
        if (status != KRN_OK)
            return status;
    }
    return KRN_OK;
}

} // namespace

OrvStatus runWindow(const WindowCall &call, const Loop &loop)
{
    return statusOf(StripCall(call, loop).run());
}

} // namespace orv
