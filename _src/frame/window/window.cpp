// The frame of window.h.
#include "window.h"

#include <algorithm>
#include <limits>

#include "call_images.h"
#include "delivery.h"

namespace orv {
namespace {

// A strip and all that is made from it stay in the second cache.
constexpr std::int64_t stripBytes = 131072;

// One call with all that its strips need.
class WindowCall {
public:
    WindowCall(const Neighbourhood &call, const WindowLoop &loop) : call_(call), loop_(loop) {}

    OrvStatus run();

private:
    bool resolveImages();
    PaddedSource padded(std::int32_t rows) const { return {{}, call_.reach, {size_.width, rows}}; }
    std::int64_t lanesBytes(std::int32_t rows) const { return lanes_.rowBytes * rows; }
    std::int64_t paddedBytes(std::int32_t rows) const;
    std::int64_t scratchBytes(std::int32_t rows) const;
    std::int32_t chooseStripRows() const;
    void findBareRows();
    bool bare(std::int32_t row) const { return row >= firstBare_ && row < endOfBare_; }
    void runStrip(std::int32_t row, Size strip, std::int32_t plane, const Raster &mask);

    const Neighbourhood &call_;
    const WindowLoop &loop_;
    Size size_ = {};
    Operand source_ = {}, destination_ = {};
    Delivery delivery_;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;
    std::int64_t firstColumn_ = 0, firstRow_ = 0; // of the image, that is computed
    bool apart_ = true;                           // no strip is written over what is still to be read
    std::int32_t firstBare_ = 0, endOfBare_ = 0;  // rows whose windows lie in the image, and are read where they are

    Scratch scratch_;
    Lanes lanes_;
    Lane resultLane_;
    std::int64_t paddedStep_ = 0;
    std::int32_t stripRows_ = 1;
};

// False where the call has nothing to do: pixels of a channel count that no layout serves.
bool WindowCall::resolveImages()
{
    const OrvImage *const images[] = {call_.source, call_.destination};
    const bool planes = CallImages{images, 1}.inPlanes();
    destination_ = resolve(*call_.destination, planes);
    // The channel of interest says that one channel is read, but not which: it is always the first.
    source_ = resolve(*call_.source, planes);
    source_.start.raster = {call_.source->imageData, call_.source->widthStep};
    for (const Operand *operand : {&source_, &destination_})
        if (operand->picked && operand->image->nChannels != 3 && operand->image->nChannels != 4)
            return false;
    delivery_.addMask(call_.source->maskROI);
    delivery_.addMask(call_.destination->maskROI);

    const std::int32_t channels = destination_.start.channels;
    if (planes)
        planes_ = planesToProcess(*call_.destination, channels);
    else if (channels == 4)
        layout_ = call_.alpha ? Layout::AC4 : Layout::C4;
    else if (!pixelLayout(*call_.destination, channels, layout_))
        return false;

    if (const OrvROI *roi = call_.source->roi; roi != nullptr) {
        firstColumn_ = roi->xOffset < -call_.rimLeft ? 0 : roi->xOffset;
        firstRow_ = roi->yOffset < -call_.rimTop ? 0 : roi->yOffset;
    }
    const Size whole = {call_.source->width, call_.source->height};
    apart_ = !meet(reach(source_, whole, planes_), reach(destination_, size_, planes_)) &&
             !delivery_.masksMeet(destination_, size_, planes_);
    return true;
}

std::int64_t WindowCall::paddedBytes(std::int32_t rows) const
{
    return paddedStep_ * padded(rows).wholeHeight();
}

std::int64_t WindowCall::scratchBytes(std::int32_t rows) const
{
    return lanesBytes(rows) + paddedBytes(rows) + loop_.workBytes(loop_.unit, layout_, padded(rows));
}

// As many rows as the cache holds, but no fewer than are brought anew for each strip.
std::int32_t WindowCall::chooseStripRows() const
{
    if (!apart_)
        return size_.height;
    const std::int64_t least = std::max<std::int64_t>(8, std::int64_t{call_.reach.top} + call_.reach.bottom);
    const std::int64_t most = std::max(least, stripBytes / paddedStep_ + 1);
    std::int64_t strips = (size_.height + most - 1) / most, rows = (size_.height + strips - 1) / strips;
    while (rows > least && scratchBytes(static_cast<std::int32_t>(rows)) > stripBytes) {
        ++strips;
        rows = (size_.height + strips - 1) / strips;
    }
    return static_cast<std::int32_t>(rows);
}

void WindowCall::findBareRows()
{
    const Margins &reach = call_.reach;
    const std::int64_t end = firstColumn_ + size_.width + reach.right;
    if (!apart_ || source_.picked || firstColumn_ < reach.left || end > call_.source->width)
        return;
    const std::int64_t first = std::max<std::int64_t>(reach.top - firstRow_, 0);
    const std::int64_t last = std::min<std::int64_t>(call_.source->height - reach.bottom - firstRow_, size_.height);
    if (first >= last)
        return;
    firstBare_ = static_cast<std::int32_t>(first);
    endOfBare_ = static_cast<std::int32_t>(last);
}

void WindowCall::runStrip(std::int32_t row, Size strip, std::int32_t plane, const Raster &mask)
{
    Raster image = source_.start.raster;
    image.data += plane * source_.start.planeStep;
    const BorderedImage bordered = {call_.source, image, withAllSamples(layout_), source_.picked, source_.sampleBytes};
    const std::int32_t pixelBytes = bordered.paddedPixelBytes();

    PaddedSource source = padded(strip.height);
    const Raster whole = {scratch_.data() + lanesBytes(stripRows_), static_cast<std::int32_t>(paddedStep_)};
    if (bare(row)) {
        source.raster = image.fromRow(static_cast<std::int32_t>(firstRow_ + row));
        source.raster.data += firstColumn_ * pixelBytes;
    } else {
        source.raster = whole.fromRow(source.margins.top);
        source.raster.data += std::ptrdiff_t{source.margins.left} * pixelBytes;
        borderFill(bordered,
                   {firstColumn_ - source.margins.left, firstRow_ + row - source.margins.top, source.wholeWidth(),
                    source.wholeHeight()},
                   whole);
    }

    const Raster destination = destination_.at(row, plane);
    const Raster result = resultLane_.used() ? resultLane_.in(scratch_, stripRows_) : destination;
    loop_.run(loop_.unit, layout_, source, result, whole.data + paddedBytes(stripRows_));
    if (resultLane_.used())
        delivery_.deliver(result, destination, strip, mask, scratch_, stripRows_);
}

OrvStatus WindowCall::run()
{
    size_ = commonSize(*call_.source, *call_.destination);
    if (size_.empty()) // a mask of no bytes cannot be had: such a call ends as one without memory does
        return call_.source->maskROI != nullptr || call_.destination->maskROI != nullptr ? ORV_STATUS_NO_MEMORY
                                                                                         : ORV_STATUS_OK;
    if (!resolveImages())
        return ORV_STATUS_OK;

    const std::int32_t pixelBytes = source_.sampleBytes * samplesPerPixel(layout_);
    if (delivery_.masked() || destination_.picked)
        resultLane_ = lanes_.add(std::int64_t{size_.width} * pixelBytes);
    delivery_.plan(lanes_, destination_, layout_, size_.width, apart_);
    paddedStep_ = paddedStep(padded(1).wholeWidth(), pixelBytes);
    // What no block can hold is refused before it is multiplied by more.
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    if (padded(1).wholeHeight() > most || paddedStep_ > most / padded(apart_ ? 1 : size_.height).wholeHeight())
        return ORV_STATUS_NO_MEMORY;
    stripRows_ = chooseStripRows();
    findBareRows();
    if (!scratch_.take(scratchBytes(stripRows_)))
        return ORV_STATUS_NO_MEMORY;

    Size strip = {size_.width, 0};
    for (std::int32_t row = 0; row < size_.height; row += strip.height) {
        const std::int32_t end = row < firstBare_ ? firstBare_ : bare(row) ? endOfBare_ : size_.height;
        strip.height = std::min(stripRows_, end - row);
        const Raster mask = delivery_.maskOfStrip(row, strip, scratch_, stripRows_);
        for (std::int32_t plane = 0; plane < planes_; ++plane)
            runStrip(row, strip, plane, mask);
    }
    return ORV_STATUS_OK;
}

} // namespace

OrvStatus runNeighbourhood(const Neighbourhood &call, const WindowLoop &loop)
{
    return WindowCall(call, loop).run();
}

} // namespace orv
