// Passes with a square of 3 x 3 in a copy of the source.
#include "morph/morphology.h"

#include <algorithm>

#include "area.h"
#include "channel_kernels.h"
#include "filter/window_filter.h"
#include "window.h"

namespace orv {
namespace {

// All passes work in one padded copy: around the rectangle they see the image and its border as they were at first. A
// strip has that copy's rows for itself. A pass needs one row more on either side than the pass after it, so a strip
// starts with as many margin rows as there are passes. They end where the rectangle does.
class Passes {
public:
    Passes(const MorphologyPass &first, const MorphologyPass *second, std::int32_t iterations)
        : first_(first), second_(second), iterations_(iterations)
    {
    }

    std::int64_t count() const { return std::int64_t{iterations_} * (second_ != nullptr ? 2 : 1); }

    KrnStatus run(const Work &work) const
    {
        std::int64_t left = count();
        KrnStatus status = KRN_OK;
        for (std::int32_t i = 0; i < iterations_ && status == KRN_OK; ++i)
            status = pass(first_, work, --left);
        for (std::int32_t i = 0; i < iterations_ && second_ != nullptr && status == KRN_OK; ++i)
            status = pass(*second_, work, --left);
        if (status != KRN_OK)
            return status;
        return channelKernels(1).copy[work.layout](work.copy.data, work.copy.step, work.destination.data,
                                                   work.destination.step, work.size.width, work.size.height);
    }

private:
    // `left` is the number of passes after this one.
    static KrnStatus pass(const MorphologyPass &kernels, const Work &work, std::int64_t left)
    {
        const auto above = static_cast<std::int32_t>(std::min<std::int64_t>(work.rowsAbove, left));
        const auto below = static_cast<std::int32_t>(std::min<std::int64_t>(work.rowsBelow, left));
        return kernels[work.layout](work.copy.fromRow(-above).data, work.copy.step, work.size.width,
                                    above + work.size.height + below, work.scratch);
    }

    const MorphologyPass &first_, *second_;
    std::int32_t iterations_;
};

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t iterations, const MorphologyPass &first,
              const MorphologyPass *second)
{
    // A sample meets all others of the rectangle, and the border, in as many passes as its longer side has pixels.
    // Further passes change nothing.
    const Size size = commonSize(*source, *destination);
    const Passes passes(first, second, std::clamp(iterations, 1, std::max({size.width, size.height, 1})));
    WindowCall call = callOf({3, 3, 1, 1}, source, destination);
    call.padding = Padding::OwnCopy;
    // Strips pay for their margins with time and memory, unless they are much higher.
    constexpr std::int64_t leastStrips = 4;
    if (passes.count() * leastStrips < size.height)
        call.margins.top = call.margins.bottom = static_cast<std::int32_t>(passes.count());
    else
        call.padding = Padding::OwnWholeCopy;
    return runWindow(call, {.run = [&](const Work &work) { return passes.run(work); },
                            .scratchBytes =
                                [](const Work &work) {
                                    return morphologyScratchBytes(work.size.width, samplesPerPixel(work.layout));
                                }});
}

Refusal checkImages(const OrvImage &source, const OrvImage &destination)
{
    const std::int32_t depth = source.depth;
    const Refusal refusal = firstOf(
        {{depth != ORV_DEPTH_1U && depth != ORV_DEPTH_8U && depth != ORV_DEPTH_16U, ORV_STATUS_BAD_ARGUMENT,
          "Illegal image depth"},
         {depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "SRC and DST depth are different"},
         {source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT, "SRC and DST order are different"},
         {source.origin != destination.origin, ORV_STATUS_BAD_ARGUMENT, "SRC and DST orign are different"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS,
          "SRC and DST number of channels are different"}});
    if (refusal.status != ORV_STATUS_OK)
        return refusal;
    return firstOf({{source.alphaChannel != destination.alphaChannel, ORV_STATUS_BAD_ARGUMENT,
                     "(src->alphaChannel!=dst->alphaChannel)"},
                    {source.alphaChannel != 0 && source.alphaChannel != source.nChannels, ORV_STATUS_BAD_ARGUMENT,
                     "(src->alphaChannel!=0)&&(src->alphaChannel!=src->nChannels)"},
                    {anyTiled(&source, &destination), ORV_STATUS_NOT_IMPLEMENTED, ""},
                    {depth != ORV_DEPTH_8U, ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

} // namespace

OrvStatus runMorphology(Call call, const OrvImage *source, OrvImage *destination, std::int32_t iterations,
                        const MorphologyPass &first, const MorphologyPass *second)
{
    if (call.refuses(checkHeaders(source, destination)) ||
        call.refuses(iterations < 1, ORV_STATUS_BAD_ARGUMENT, "Illegal number of iterations") ||
        call.refuses(checkImages(*source, *destination)))
        return call.report();
    return call.result(run(source, destination, iterations, first, second));
}

} // namespace orv
