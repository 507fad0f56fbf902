// Straight from image to image, or through scratch: under masks, for one channel of interleaved pixels, and for loops
// that need scratch of their own.
#include "rectangle_call.h"

#include <algorithm>
#include <limits>

#include "cache_sizes.h"
#include "delivery.h"
#include "operand.h"
#include "scratch.h"

namespace orv {
namespace {

// The channel that a loop meets first.
std::int32_t firstChannelOf(const CallImages &images)
{
    return firstChannel(images.sourceCount() > 0 ? images[0] : images.destination());
}

Steps stepsFor(const Loop &loop)
{
    return loop.wholeSamples ? Steps::WholeSamples : Steps::AsGiven;
}

// One call with all that its strips need.
class ScratchCall {
public:
    ScratchCall(const RectangleCall &call, const Loop &loop, bool planes) : call_(call), loop_(loop), inPlanes_(planes)
    {
    }

    KrnStatus run();

private:
    enum class Resolved { Served, NotServed, Refused };

    Resolved resolveImages();
    Size sourceSize(std::size_t source) const
    {
        return call_.sourceSizes != nullptr ? call_.sourceSizes[source] : call_.size;
    }
    bool planBuffers();
    std::int64_t loopBytes(std::int32_t rows) const;
    KrnStatus runStrips(std::int32_t firstPlane, std::int32_t endOfPlanes);
    KrnStatus runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask);

    const Operand &destination() const { return operands_[call_.images.sourceCount()]; }

    const RectangleCall &call_;
    const Loop &loop_;
    const bool inPlanes_;
    Operand operands_[mostImages] = {};
    Masks masks_;
    Delivery delivery_;
    std::int32_t planes_ = 1;
    Layout layout_ = Layout::C1;       // of what is written
    Layout resultLayout_ = Layout::C1; // of what the loop computes

    Scratch scratch_;
    StripBuffers buffers_;
    std::int32_t stripRows_ = 1;
    StripBuffer sourceBuffers_[mostSources], resultBuffer_;
};

ScratchCall::Resolved ScratchCall::resolveImages()
{
    const CallImages &images = call_.images;
    for (std::size_t i = 0; i < images.count(); ++i) {
        operands_[i] = resolve(images[i], inPlanes_, stepsFor(loop_));
        if (operands_[i].start.raster.step == 0)
            return Resolved::Refused;
        if (call_.byChannel)
            operands_[i].takeChannels(inPlanes_);
        else if (!operands_[i].served())
            return Resolved::NotServed;
        masks_.add(images[i].maskROI);
    }
    const std::int32_t channels = destination().start.channels;
    if (inPlanes_ || call_.byChannel)
        planes_ = planesToProcess(images.destination(), channels);
    else if (!pixelLayout(images.destination(), channels, layout_))
        return Resolved::NotServed;
    resultLayout_ = masks_.any() ? withAllSamples(layout_) : layout_;
    return Resolved::Served;
}

// Plans what the strips need. The result is whether one may be written while later ones are still to be read.
bool ScratchCall::planBuffers()
{
    const Extent written = {destination(), call_.size, planes_};
    bool strips = !masks_.overlap(written), samples = true, apart = true;
    for (std::size_t i = 0; i < call_.images.sourceCount(); ++i) {
        if (call_.freeSources)
            continue;
        const Extent read = {operands_[i], sourceSize(i), planes_};
        strips = strips && stripsDisjoint(read, written);
        // What is gathered is read before the loop runs.
        samples = samples && (operands_[i].interleaved || samplesDisjoint(read, written));
        apart = apart && disjoint(read, written);
        if (operands_[i].interleaved)
            sourceBuffers_[i] = buffers_.add(std::int64_t{read.size.width} * operands_[i].sampleBytes);
    }
    const bool readable = call_.whole ? apart : strips && samples;
    const bool straight = readable && !destination().interleaved && (!masks_.any() || loop_.takesMask);
    if (!straight)
        resultBuffer_ =
            buffers_.add(std::int64_t{call_.size.width} * destination().sampleBytes * samplesPerPixel(resultLayout_));
    delivery_.plan(buffers_, destination(), layout_, call_.size.width, masks_.any());
    masks_.plan(buffers_, call_.size.width, !strips);
    return strips;
}

std::int64_t ScratchCall::loopBytes(std::int32_t rows) const
{
    return loop_.scratchBytes ? loop_.scratchBytes({.layout = resultLayout_, .size = {call_.size.width, rows}}) : 0;
}

KrnStatus ScratchCall::runStrip(std::int32_t row, Size strip, std::int32_t plane, ConstRaster mask)
{
    ConstRaster sources[mostSources];
    for (std::size_t i = 0; i < call_.images.sourceCount(); ++i) {
        const Raster image = operands_[i].at(call_.freeSources ? 0 : row, plane);
        sources[i] = image;
        if (!operands_[i].interleaved || call_.freeSources)
            continue;
        const Raster channel = sourceBuffers_[i].in(scratch_, stripRows_);
        const Size size = call_.sourceSizes != nullptr ? call_.sourceSizes[i] : strip;
        if (const KrnStatus status = gather(operands_[i], image, channel, size); status != KRN_OK)
            return status;
        sources[i] = channel;
    }
    const Raster destination = operands_[call_.images.sourceCount()].at(row, plane);
    Work work = {.layout = layout_,
                 .channel = firstChannelOf(call_.images) + plane,
                 .size = strip,
                 .sources = sources,
                 .destination = destination,
                 .mask = mask,
                 .rowsAbove = row,
                 .rowsBelow = call_.size.height - row - strip.height,
                 .scratch = scratch_.data() + buffers_.rowBytes * stripRows_};
    if (!resultBuffer_.used())
        return loop_.run(work);
    work.layout = resultLayout_;
    work.destination = resultBuffer_.in(scratch_, stripRows_);
    work.mask = {};
    if (const KrnStatus status = loop_.run(work); status != KRN_OK)
        return status;
    return delivery_.deliver(work.destination, destination, strip, mask, scratch_, stripRows_);
}

KrnStatus ScratchCall::run()
{
    const Size size = call_.size;
    // An empty mask, or a channel without rows, cannot be allocated: such a call fails as one without memory does.
    const bool masked = call_.images.masked();
    const bool oneOfPixels = !inPlanes_ && channelsToProcess(call_.images.destination()) == 1;
    if ((size.height < 1 && (masked || oneOfPixels)) || (size.width < 1 && masked))
        return KRN_NO_MEMORY;
    if (size.empty())
        return KRN_OK;
    switch (resolveImages()) {
    case Resolved::Served:
        break;
    case Resolved::NotServed:
        return KRN_OK;
    case Resolved::Refused:
        return KRN_BAD_STEP;
    }

    const bool strips = planBuffers() && !call_.whole;
    stripRows_ = size.height;
    if (const std::int64_t rowBytes = buffers_.rowBytes + loopBytes(1); strips && rowBytes > 0)
        stripRows_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(deliveryStripBytes / rowBytes, 1, size.height));
    // Gathered sources may have more rows than what is written.
    if (call_.sourceSizes != nullptr)
        for (std::size_t i = 0; i < call_.images.sourceCount(); ++i)
            stripRows_ = std::max(stripRows_, sourceSize(i).height);
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    if (buffers_.rowBytes > most / stripRows_)
        return KRN_NO_MEMORY;
    const std::int64_t bytes = buffers_.rowBytes * stripRows_ + loopBytes(std::min(stripRows_, size.height));
    if (bytes > 0 && !scratch_.take(bytes))
        return KRN_NO_MEMORY;

    // Loops that read where they like keep rows of a plane from strip to strip. A single strip reads its mask once,
    // since the mask may lie in what is written.
    if (!call_.freeSources || !strips)
        return runStrips(0, planes_);
    KrnStatus status = KRN_OK;
    for (std::int32_t plane = 0; plane < planes_ && status == KRN_OK; ++plane)
        status = runStrips(plane, plane + 1);
    return status;
}

KrnStatus ScratchCall::runStrips(std::int32_t firstPlane, std::int32_t endOfPlanes)
{
    Size strip = {call_.size.width, 0};
    for (std::int32_t row = 0; row < call_.size.height; row += strip.height) {
        strip.height = std::min(stripRows_, call_.size.height - row);
        ConstRaster mask;
        KrnStatus status = masks_.ofStrip(row, strip, scratch_, stripRows_, mask);
        for (std::int32_t plane = firstPlane; plane < endOfPlanes && status == KRN_OK; ++plane)
            status = runStrip(row, strip, plane, mask);
        if (status != KRN_OK)
            return status;
    }
    return KRN_OK;
}

// Apart from the straight path, whose stack it would burden.
[[gnu::noinline]] KrnStatus runThroughScratch(const RectangleCall &call, const Loop &loop, bool planes)
{
    return ScratchCall(call, loop, planes).run();
}

inline KrnStatus runStraight(const RectangleCall &call, const Loop &loop, bool planes)
{
    const CallImages &images = call.images;
    const std::size_t sourceCount = images.sourceCount();
    if (call.size.empty())
        return KRN_OK;
    const Start destination = resolveStart(images.destination(), stepsFor(loop));
    const bool inPlace = call.inPlaceIfShared && images[0].imageData == images.destination().imageData;
    bool refused = destination.raster.step == 0;
    ConstRaster sources[mostSources];
    std::ptrdiff_t planeSteps[mostSources];
    for (std::size_t i = 0; i < sourceCount; ++i) {
        const Start start = inPlace ? destination : resolveStart(images[i], stepsFor(loop));
        sources[i] = start.raster;
        planeSteps[i] = start.planeStep;
        refused = refused || start.raster.step == 0;
    }
    if (refused)
        return KRN_BAD_STEP;
    Work work = {
        .channel = firstChannelOf(images), .size = call.size, .sources = sources, .destination = destination.raster};
    if (!planes)
        return pixelLayout(images.destination(), destination.channels, work.layout) ? loop.run(work) : KRN_OK;
    const std::int32_t planeCount = planesToProcess(images.destination(), destination.channels);
    for (;;) {
        if (const KrnStatus status = loop.run(work); status != KRN_OK)
            return status;
        if (++work.channel - firstChannelOf(images) >= planeCount)
            return KRN_OK;
        for (std::size_t i = 0; i < sourceCount; ++i)
            sources[i] = sources[i].fromByte(planeSteps[i]);
        work.destination = work.destination.fromByte(destination.planeStep);
    }
}

} // namespace

KrnStatus runRectangles(const RectangleCall &call, const Loop &loop)
{
    const bool planes = call.images.inPlanes();
    const bool oneOfPixels = !planes && channelsToProcess(call.images.destination()) == 1;
    if (oneOfPixels || call.byChannel || loop.scratchBytes || call.images.masked())
        return runThroughScratch(call, loop, planes);
    return runStraight(call, loop, planes);
}

} // namespace orv
