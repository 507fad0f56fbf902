// The paths of the pointwise frame that go through scratch memory: masks, and one channel of interleaved pixels.
#include "pointwise.h"

#include <algorithm>

#include "scratch.h"

namespace orv {
namespace {

// Scratch is filled and emptied strip by strip, so that it stays in the nearest cache.
constexpr std::int64_t stripBytes = 16384;

std::int64_t roundedUp(std::int64_t bytes)
{
    return (bytes + 31) & ~std::int64_t{31};
}

// The bytes from the first to the last sample that a rectangle, or its planes, reach.
struct Reach {
    std::uintptr_t first, end;
};

bool meet(Reach a, Reach b)
{
    return a.first < b.end && b.first < a.end;
}

// An image of the call, or a mask.
struct Operand {
    const OrvImage *image;
    Start start;
    std::int32_t sampleBytes;
    std::int32_t pixelBytes; // from pixel to pixel
    bool picked;             // one channel of several, in pixel order
};

Operand resolve(const OrvImage &image, bool planes)
{
    Operand operand = {&image, orvResolveStart(image), sampleBytes(image.depth), 0, false};
    operand.pixelBytes = operand.sampleBytes * (planes ? 1 : image.nChannels);
    operand.picked = !planes && operand.start.channels == 1 && image.nChannels > 1;
    return operand;
}

std::int64_t rowReach(const Operand &operand, Size size)
{
    return static_cast<std::int64_t>(size.width) * operand.pixelBytes;
}

Reach reach(const Operand &operand, Size size, std::int32_t planes)
{
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(operand.start.raster.data);
    const std::int64_t bytes = (planes - 1) * static_cast<std::int64_t>(operand.start.planeStep) +
                               (size.height - 1) * static_cast<std::int64_t>(operand.start.raster.step) +
                               rowReach(operand, size);
    return {first, first + static_cast<std::uintptr_t>(bytes)};
}

// Whether a strip may be written while later rows of `read` are still to be read: they have no byte in common, or each
// row of the one lies beside the same row of the other and no further.
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

// Whether a loop may write samples while it still reads: the rasters have no byte in common, or are the same.
bool samplesKeepApart(const Operand &read, const Operand &written, Size size, std::int32_t planes)
{
    return !meet(reach(read, size, planes), reach(written, size, planes)) ||
           read.start.raster.data == written.start.raster.data;
}

// A piece of the call's scratch that holds the rows of one strip.
struct Lane {
    std::int64_t offset = -1; // in bytes a row of all lanes; none where negative
    std::int32_t step = 0;

    Raster in(const Scratch &scratch, std::int32_t rows) const { return {scratch.data() + offset * rows, step}; }
};

// One call with all that its strips need.
class ScratchCall {
public:
    ScratchCall(const PointwiseCall &call, const Loop &loop) : call_(call), loop_(loop) {}

    OrvStatus run();

private:
    bool resolveImages();
    void planLanes(bool stripsApart, bool samplesApart);
    Lane laneOf(std::int64_t rowBytes);
    Raster maskOfStrip(std::int32_t row, Size strip);
    void runStrip(std::int32_t row, Size strip, std::int32_t plane, Raster mask);
    void deliver(const Raster &result, const Raster &destination, Size strip, const Raster &mask);

    const Operand &destination() const { return images_[call_.sourceCount]; }
    const ChannelKernels &kernels(const Operand &operand) const { return channelKernels(operand.sampleBytes); }

    const PointwiseCall &call_;
    const Loop &loop_;
    Size size_ = {};
    Operand images_[mostImages] = {};
    Operand masks_[mostImages] = {};
    std::size_t maskCount_ = 0;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;       // of what is written
    Layout resultLayout_ = Layout::C1; // of what the loop computes

    Scratch scratch_;
    std::int64_t rowBytes_ = 0; // of all lanes together
    std::int32_t stripRows_ = 1;
    Lane sourceLanes_[mostImages], resultLane_, mergeLane_, maskLane_;
};

// False where the call has nothing to do: pixels of a channel count that no layout serves.
bool ScratchCall::resolveImages()
{
    const bool planes = call_.inPlanes();
    for (std::size_t i = 0; i < call_.imageCount(); ++i) {
        const OrvImage &image = *call_.images[i];
        images_[i] = resolve(image, planes);
        if (images_[i].picked && image.nChannels != 3 && image.nChannels != 4)
            return false;
        if (image.maskROI != nullptr)
            masks_[maskCount_++] = resolve(*image.maskROI, true);
    }
    const std::int32_t channels = destination().start.channels;
    if (planes) {
        planes_ = planesToProcess(*destination().image, channels);
        return true;
    }
    if (!pixelLayout(*destination().image, channels, layout_))
        return false;
    resultLayout_ = layout_ == Layout::AC4 && maskCount_ > 0 ? Layout::C4 : layout_;
    return true;
}

Lane ScratchCall::laneOf(std::int64_t rowBytes)
{
    const Lane lane = {rowBytes_, static_cast<std::int32_t>(roundedUp(rowBytes))};
    rowBytes_ += roundedUp(rowBytes);
    return lane;
}

void ScratchCall::planLanes(bool stripsApart, bool samplesApart)
{
    const std::int64_t width = size_.width;
    for (std::size_t i = 0; i < call_.sourceCount; ++i)
        if (images_[i].picked)
            sourceLanes_[i] = laneOf(width * images_[i].sampleBytes);
    const bool masked = maskCount_ > 0;
    const bool straight =
        stripsApart && samplesApart && !destination().picked && (!masked || loop_.runMasked != nullptr);
    if (!straight)
        resultLane_ = laneOf(width * destination().sampleBytes * samplesPerPixel(resultLayout_));
    if (masked && destination().picked)
        mergeLane_ = laneOf(width * destination().sampleBytes);
    if (maskCount_ > 1 || (masked && !stripsApart))
        maskLane_ = laneOf(width);
}

Raster ScratchCall::maskOfStrip(std::int32_t row, Size strip)
{
    if (maskCount_ == 0)
        return {};
    const Raster first = masks_[0].start.raster.fromRow(row);
    if (maskLane_.offset < 0)
        return first;
    const Raster mask = maskLane_.in(scratch_, stripRows_);
    krnCopy8uC1(first.data, first.step, mask.data, mask.step, strip.width, strip.height);
    for (std::size_t i = 1; i < maskCount_; ++i) {
        const Raster next = masks_[i].start.raster.fromRow(row);
        krnAndMask8u(next.data, next.step, mask.data, mask.step, strip.width, strip.height);
    }
    return mask;
}

void copyChannel(const Kernel<CopyKernel> &kernel, const Raster &from, const Raster &to, Size size)
{
    kernel(from.data, from.step, to.data, to.step, size.width, size.height);
}

void ScratchCall::deliver(const Raster &result, const Raster &destination, Size strip, const Raster &mask)
{
    const Operand &image = this->destination();
    const ChannelKernels &move = kernels(image);
    const bool three = image.image->nChannels == 3;
    const Kernel<CopyKernel> &extract = three ? move.extractC3 : move.extractC4;
    const Kernel<CopyKernel> &insert = three ? move.insertC3 : move.insertC4;
    if (maskCount_ == 0) {
        copyChannel(image.picked ? insert : move.copy[layout_], result, destination, strip);
        return;
    }
    Raster merged = destination;
    if (image.picked) {
        merged = mergeLane_.in(scratch_, stripRows_);
        copyChannel(extract, destination, merged, strip);
    }
    move.copyMasked[layout_](result.data, result.step, merged.data, merged.step, strip.width, strip.height, mask.data,
                             mask.step);
    if (image.picked)
        copyChannel(insert, merged, destination, strip);
}

void ScratchCall::runStrip(std::int32_t row, Size strip, std::int32_t plane, Raster mask)
{
    Raster rasters[mostImages];
    for (std::size_t i = 0; i < call_.imageCount(); ++i) {
        rasters[i] = images_[i].start.raster.fromRow(row);
        if (plane > 0)
            rasters[i].data += plane * images_[i].start.planeStep;
    }
    for (std::size_t i = 0; i < call_.sourceCount; ++i) {
        if (!images_[i].picked)
            continue;
        const ChannelKernels &move = kernels(images_[i]);
        const Raster lane = sourceLanes_[i].in(scratch_, stripRows_);
        copyChannel(images_[i].image->nChannels == 3 ? move.extractC3 : move.extractC4, rasters[i], lane, strip);
        rasters[i] = lane;
    }
    const Raster &destination = rasters[call_.sourceCount];
    if (resultLane_.offset >= 0) {
        const Raster result = resultLane_.in(scratch_, stripRows_);
        loop_.run(loop_.unit, resultLayout_, rasters, result, strip);
        deliver(result, destination, strip, mask);
    } else if (maskCount_ > 0) {
        loop_.runMasked(loop_.unit, layout_, rasters, destination, mask, strip);
    } else {
        loop_.run(loop_.unit, layout_, rasters, destination, strip);
    }
}

OrvStatus ScratchCall::run()
{
    size_ = call_.commonSize();
    // A mask of no bytes, or planes of no rows, cannot be had: such a call ends as one without memory does.
    if (size_.height < 1 || (size_.width < 1 && call_.masked()))
        return ORV_STATUS_NO_MEMORY;
    if (size_.width < 1 || !resolveImages())
        return ORV_STATUS_OK;

    bool stripsApart = true, samplesApart = true;
    for (std::size_t i = 0; i < call_.sourceCount; ++i) {
        stripsApart = stripsApart && stripsKeepApart(images_[i], destination(), size_, planes_);
        // What is picked from among other channels is read before the loop runs.
        samplesApart =
            samplesApart && (images_[i].picked || samplesKeepApart(images_[i], destination(), size_, planes_));
    }
    for (std::size_t i = 0; i < maskCount_; ++i)
        stripsApart = stripsApart && !meet(reach(masks_[i], size_, 1), reach(destination(), size_, planes_));

    planLanes(stripsApart, samplesApart);
    stripRows_ = size_.height;
    if (stripsApart && rowBytes_ > 0)
        stripRows_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(stripBytes / rowBytes_, 1, size_.height));
    if (rowBytes_ > 0 && !scratch_.take(rowBytes_ * stripRows_))
        return ORV_STATUS_NO_MEMORY;

    Size strip = {size_.width, 0};
    for (std::int32_t row = 0; row < size_.height; row += strip.height) {
        strip.height = std::min(stripRows_, size_.height - row);
        const Raster mask = maskOfStrip(row, strip);
        for (std::int32_t plane = 0; plane < planes_; ++plane)
            runStrip(row, strip, plane, mask);
    }
    return ORV_STATUS_OK;
}

} // namespace

bool PointwiseCall::masked() const
{
    return std::any_of(images, images + imageCount(), [](const OrvImage *image) { return image->maskROI != nullptr; });
}

bool PointwiseCall::inPlanes() const
{
    return destination().dataOrder == ORV_DATA_ORDER_PLANE ||
           std::all_of(images, images + imageCount(), [](const OrvImage *image) { return image->nChannels == 1; });
}

Size PointwiseCall::commonSize() const
{
    Size size = orvMaskedRoiSize(destination());
    for (std::size_t i = 0; i < sourceCount; ++i) {
        const Size other = orvMaskedRoiSize(*images[i]);
        size = {std::min(size.width, other.width), std::min(size.height, other.height)};
    }
    return size;
}

bool pixelLayout(const OrvImage &destination, std::int32_t channels, Layout &layout)
{
    if (channels == 1)
        layout = Layout::C1;
    else if (channels == 3)
        layout = Layout::C3;
    else if (channels == 4)
        layout = destination.alphaChannel == 0 ? Layout::C4 : Layout::AC4;
    else
        return false;
    return true;
}

OrvStatus runThroughScratch(const PointwiseCall &call, const Loop &loop)
{
    return ScratchCall(call, loop).run();
}

} // namespace orv
