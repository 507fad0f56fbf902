// Passes with a square of 3 x 3 in a copy of the source.
#include "morph/morphology.h"

#include <algorithm>

#include "area.h"
#include "filter/window_filter.h"
#include "window.h"

namespace orv {
namespace {

constexpr Window square = {3, 3, 1, 1};

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

    // The last pass goes straight to the destination.
    KrnStatus run(const Work &work) const
    {
        std::int64_t left = count();
        for (const MorphologyPass *kernels : {&first_, second_})
            for (std::int32_t i = 0; i < iterations_ && kernels != nullptr && left > 1; ++i)
                if (const KrnStatus status = pass(*kernels, work, --left); status != KRN_OK)
                    return status;
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        const MorphologyPass &last = second_ != nullptr ? *second_ : first_;
        return last.apart[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                                       square.columns, square.rows, square.anchorX, square.anchorY, work.scratch);
    }

    std::int64_t scratchBytes(const Work &work) const
    {
        const WindowShape shape = shapeOf(work, square, 1);
        return std::max(morphologyScratchBytes(shape.width, shape.channels), extremesScratchBytes(shape));
    }

private:
    // `left` is the number of passes after this one.
    static KrnStatus pass(const MorphologyPass &kernels, const Work &work, std::int64_t left)
    {
        const auto above = static_cast<std::int32_t>(std::min<std::int64_t>(work.rowsAbove, left));
        const auto below = static_cast<std::int32_t>(std::min<std::int64_t>(work.rowsBelow, left));
        return kernels.inPlace[work.layout](work.copy.fromRow(-above).data, work.copy.step, work.size.width,
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
    WindowCall call = callOf(square, source, destination);
    // Strips pay for their margins with time and memory, unless they are much higher.
    constexpr std::int64_t leastStrips = 4;
    if (passes.count() > 1)
        call.padding = passes.count() * leastStrips < size.height ? Padding::OwnCopy : Padding::OwnWholeCopy;
    if (call.padding == Padding::OwnCopy)
        call.margins.top = call.margins.bottom = static_cast<std::int32_t>(passes.count());
    return runWindow(call, {.run = [&](const Work &work) { return passes.run(work); },
                            .scratchBytes = [&](const Work &work) { return passes.scratchBytes(work); }});
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
