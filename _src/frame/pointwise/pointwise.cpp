// The paths of the pointwise frame that go through scratch memory: masks, and one channel of interleaved pixels.
#include "pointwise.h"

#include <algorithm>
#include <limits>

#include "delivery.h"

namespace orv {
namespace {

// Scratch is filled and emptied strip by strip, so that it stays in the nearest cache.
constexpr std::int64_t stripBytes = 16384;

// One call with all that its strips need.
class ScratchCall {
public:
    ScratchCall(const CallImages &call, const Loop &loop) : call_(call), loop_(loop) {}

    OrvStatus run();

private:
    bool resolveImages();
    void planLanes(bool stripsApart, bool samplesApart);
    void runStrip(std::int32_t row, Size strip, std::int32_t plane, Raster mask);

    const Operand &destination() const { return images_[call_.sourceCount]; }

    const CallImages &call_;
    const Loop &loop_;
    Size size_ = {};
    Operand images_[mostImages] = {};
    Delivery delivery_;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;       // of what is written
    Layout resultLayout_ = Layout::C1; // of what the loop computes

    Scratch scratch_;
    Lanes lanes_;
    std::int32_t stripRows_ = 1;
    Lane sourceLanes_[mostImages], resultLane_;
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
        delivery_.addMask(image.maskROI);
    }
    const std::int32_t channels = destination().start.channels;
    if (planes) {
        planes_ = planesToProcess(*destination().image, channels);
        return true;
    }
    if (!pixelLayout(*destination().image, channels, layout_))
        return false;
    resultLayout_ = delivery_.masked() ? withAllSamples(layout_) : layout_;
    return true;
}

void ScratchCall::planLanes(bool stripsApart, bool samplesApart)
{
    const std::int64_t width = size_.width;
    for (std::size_t i = 0; i < call_.sourceCount; ++i)
        if (images_[i].picked)
            sourceLanes_[i] = lanes_.add(width * images_[i].sampleBytes);
    const bool straight = stripsApart && samplesApart && !loop_.movesPixels && !destination().picked &&
                          (!delivery_.masked() || loop_.runMasked != nullptr);
    if (!straight)
        resultLane_ = lanes_.add(width * destination().sampleBytes * samplesPerPixel(resultLayout_));
    delivery_.plan(lanes_, destination(), layout_, size_.width, stripsApart);
}

void ScratchCall::runStrip(std::int32_t row, Size strip, std::int32_t plane, Raster mask)
{
    Raster rasters[mostImages];
    for (std::size_t i = 0; i < call_.imageCount(); ++i)
        rasters[i] = images_[i].at(row, plane);
    for (std::size_t i = 0; i < call_.sourceCount; ++i) {
        if (!images_[i].picked)
            continue;
        const ChannelKernels &move = channelKernels(images_[i].sampleBytes);
        const Kernel<CopyKernel> &extract = images_[i].image->nChannels == 3 ? move.extractC3 : move.extractC4;
        const Raster lane = sourceLanes_[i].in(scratch_, stripRows_);
        extract(rasters[i].data, rasters[i].step, lane.data, lane.step, strip.width, strip.height);
        rasters[i] = lane;
    }
    const Raster &destination = rasters[call_.sourceCount];
    if (resultLane_.used()) {
        const Raster result = resultLane_.in(scratch_, stripRows_);
        loop_.run(loop_.unit, resultLayout_, rasters, result, strip);
        delivery_.deliver(result, destination, strip, mask, scratch_, stripRows_);
    } else if (delivery_.masked()) {
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

    bool stripsApart = !delivery_.masksMeet(destination(), size_, planes_), samplesApart = true;
    for (std::size_t i = 0; i < call_.sourceCount; ++i) {
        stripsApart = stripsApart && stripsKeepApart(images_[i], destination(), size_, planes_);
        // What is picked from among other channels is read before the loop runs.
        samplesApart =
            samplesApart && (images_[i].picked || samplesKeepApart(images_[i], destination(), size_, planes_));
    }

    planLanes(stripsApart, samplesApart);
    stripRows_ = size_.height;
    if (stripsApart && !loop_.movesPixels && lanes_.rowBytes > 0)
        stripRows_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(stripBytes / lanes_.rowBytes, 1, size_.height));
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    if (lanes_.rowBytes > most / stripRows_ || (lanes_.rowBytes > 0 && !scratch_.take(lanes_.rowBytes * stripRows_)))
        return ORV_STATUS_NO_MEMORY;

    Size strip = {size_.width, 0};
    for (std::int32_t row = 0; row < size_.height; row += strip.height) {
        strip.height = std::min(stripRows_, size_.height - row);
        const Raster mask = delivery_.maskOfStrip(row, strip, scratch_, stripRows_);
        for (std::int32_t plane = 0; plane < planes_; ++plane)
            runStrip(row, strip, plane, mask);
    }
    return ORV_STATUS_OK;
}

} // namespace

OrvStatus runThroughScratch(const CallImages &call, const Loop &loop)
{
    return ScratchCall(call, loop).run();
}

} // namespace orv
