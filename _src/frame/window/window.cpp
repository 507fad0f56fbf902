// The frame of window.h.
#include "window.h"

#include <algorithm>
#include <limits>

#include "border.h"
#include "cache_sizes.h"
#include "call_images.h"
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
    std::int64_t scratchBytes(std::int32_t rows) const;
    std::int32_t chooseStripRows() const;
    void findRowsInPlace();
    bool inPlace(std::int32_t row) const { return row >= firstInPlace_ && row < endOfInPlace_; }
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
    std::int64_t firstColumn_ = 0, firstRow_ = 0;      // of the image, that is computed
    bool strips_ = true;                               // no strip is written over what is still to be read
    std::int32_t firstInPlace_ = 0, endOfInPlace_ = 0; // rows whose windows lie in the image and are read there

    Scratch scratch_;
    StripBuffers buffers_;
    StripBuffer resultBuffer_;
    std::int64_t paddedStep_ = 0;
    std::int32_t stripRows_ = 1;
};

// False where the call has nothing to do: pixels of a channel count that no layout serves.
bool StripCall::resolveImages()
{
    const bool planes = images_.inPlanes();
    destination_ = resolve(*call_.destination, planes);
    // The channel of interest says that one channel is read, but not which: it is always the first.
    source_ = resolve(*call_.source, planes);
    source_.start.raster = {call_.source->imageData, call_.source->widthStep};
    if (!source_.served() || !destination_.served())
        return false;
    masks_.add(call_.source->maskROI);
    masks_.add(call_.destination->maskROI);

    const std::int32_t channels = destination_.start.channels;
    if (planes)
        planes_ = planesToProcess(*call_.destination, channels);
    else if (!pixelLayout(*call_.alphaOf, channels, layout_))
        return false;

    if (const OrvROI *roi = call_.source->roi; roi != nullptr) {
        firstColumn_ = roi->xOffset < -call_.startLeft ? 0 : roi->xOffset;
        firstRow_ = roi->yOffset < -call_.startAbove ? 0 : roi->yOffset;
    }
    const Size whole = {call_.source->width, call_.source->height};
    const Extent written = {destination_, size_, planes_};
    strips_ = disjoint({source_, whole, planes_}, written) && !masks_.overlap(written);
    return true;
}

std::int64_t StripCall::scratchBytes(std::int32_t rows) const
{
    const std::int64_t loopBytes = loop_.scratchBytes ? loop_.scratchBytes(workOn(rows)) : 0;
    return buffersBytes(rows) + paddedBytes(rows) + loopBytes;
}

// As many rows as the cache holds, but at least as many as consecutive strips share.
std::int32_t StripCall::chooseStripRows() const
{
    if (!strips_ || call_.padding != Padding::Strips)
        return size_.height;
    const std::int64_t least = std::max<std::int64_t>(8, std::int64_t{call_.margins.top} + call_.margins.bottom);
    const std::int64_t most = std::max(least, windowStripBytes / paddedStep_ + 1);
    std::int64_t strips = (size_.height + most - 1) / most, rows = (size_.height + strips - 1) / strips;
    while (rows > least && scratchBytes(static_cast<std::int32_t>(rows)) > windowStripBytes) {
        ++strips;
        rows = (size_.height + strips - 1) / strips;
    }
    return static_cast<std::int32_t>(rows);
}

void StripCall::findRowsInPlace()
{
    const Margins &margins = call_.margins;
    const std::int64_t end = firstColumn_ + size_.width + margins.right;
    if (!strips_ || call_.padding != Padding::Strips || source_.interleaved || firstColumn_ < margins.left ||
        end > call_.source->width)
        return;
    const std::int64_t first = std::max<std::int64_t>(margins.top - firstRow_, 0);
    const std::int64_t last = std::min<std::int64_t>(call_.source->height - margins.bottom - firstRow_, size_.height);
    if (first >= last)
        return;
    firstInPlace_ = static_cast<std::int32_t>(first);
    endOfInPlace_ = static_cast<std::int32_t>(last);
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
        borderFill(bordered,
                   {firstColumn_ - margins.left, firstRow_ + row - margins.top, paddedWidth(work), paddedHeight(work)},
                   padded);
        source = first;
        if (call_.padding == Padding::OwnCopy)
            work.copy = first;
    }
    work.channel = plane;
    work.sources = &source;
    work.destination = resultBuffer_.used() ? resultBuffer_.in(scratch_, stripRows_) : destination;
    work.scratch = padded.data + paddedBytes(stripRows_);
    const KrnStatus status = loop_.run(work);
    return status == KRN_OK && resultBuffer_.used()
               ? delivery_.deliver(work.destination, destination, strip, mask, scratch_, stripRows_)
               : status;
}

KrnStatus StripCall::run()
{
    size_ = images_.commonSize();
    if (size_.empty()) // an empty mask cannot be allocated: such a call fails as one without memory does
        return images_.masked() ? KRN_NO_MEMORY : KRN_OK;
    if (!resolveImages())
        return KRN_OK;

    const std::int32_t pixelBytes = source_.sampleBytes * samplesPerPixel(layout_);
    if (masks_.any() || destination_.interleaved)
        resultBuffer_ = buffers_.add(std::int64_t{size_.width} * pixelBytes);
    delivery_.plan(buffers_, destination_, layout_, size_.width, masks_.any());
    masks_.plan(buffers_, size_.width, !strips_);
    paddedStep_ = paddedStep(paddedWidth(workOn(1)), pixelBytes);
    // What no block can hold is refused before it is multiplied by more.
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    const bool whole = !strips_ || call_.padding != Padding::Strips;
    if (paddedHeight(workOn(1)) > most || paddedStep_ > most / paddedHeight(workOn(whole ? size_.height : 1)))
        return KRN_NO_MEMORY;
    stripRows_ = chooseStripRows();
    findRowsInPlace();
    if (!scratch_.take(scratchBytes(stripRows_)))
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
