// The frame of operations that work pixel by pixel: it resolves rectangles, channels and masks, and runs a unit's loop
// over planes or pixels, through scratch where the loop cannot run from image to image.
#pragma once

#include <cstddef>

#include "area.h"
#include "call_images.h"
#include "channel_kernels.h"
#include "delivery.h"

namespace orv {

// A unit's loop without its type, for the paths through scratch, which are compiled once for all units.
struct Loop {
    const void *unit;
    void (*run)(const void *unit, Layout layout, const Raster *sources, Raster destination, Size size);
    // Runs under a mask straight into the destination, or null where the unit has no such loop.
    void (*runMasked)(const void *unit, Layout layout, const Raster *sources, Raster destination, Raster mask,
                      Size size);
    bool movesPixels; // takes all rows of a rectangle at once, and never writes where it still reads
};

// Masked calls, and calls on one channel of interleaved pixels. 0, or ORV_STATUS_NO_MEMORY.
OrvStatus runThroughScratch(const CallImages &call, const Loop &loop);

// Runs `run(layout, sources, destination, size)`: sources and destination are rectangles of `size` pixels of the
// layout, one source for each source image in turn. A unit that can also write under a mask has `masked(layout,
// sources, destination, mask, size)`. The result is 0, or ORV_STATUS_NO_MEMORY, which the unit reports.
//
// A unit with one source whose pixels move to other places has `inPlace(layout, destination, size)` too. It runs in the
// stead of the other where a straight call has one raster for both images, on the destination's rectangle, wherever
// that of the source may lie.
//
// Headers have been validated and agree in their channels to process. Which results a loop gives where rasters overlap
// at different positions is open, but under a mask and for a single channel of pixels the whole result is there before
// any of it is written.
template <class Run, class... Sources>
OrvStatus pointwise(Run run, const OrvImage *destination, const Sources *...sources)
{
    constexpr std::size_t count = sizeof...(Sources);
    static_assert(count < mostImages);
    constexpr bool movesPixels = requires(Raster raster)
    {
        run.inPlace(Layout::C1, raster, Size());
    };
    static_assert(!movesPixels || count == 1);
    const OrvImage *const images[count + 1] = {sources..., destination};
    const CallImages call = {images, count};

    const bool planes = call.inPlanes();
    Start starts[count + 1];
    for (std::size_t i = 0; i <= count; ++i)
        starts[i] = resolveStart(*images[i]);
    const std::int32_t channels = starts[count].channels;

    if (call.masked() || (!planes && channels == 1)) {
        Loop loop = {&run,
                     [](const void *unit, Layout layout, const Raster *from, Raster to, Size size) {
                         (*static_cast<const Run *>(unit))(layout, from, to, size);
                     },
                     nullptr, movesPixels};
        if constexpr (requires(const Raster *from, Raster to) { run.masked(Layout::C1, from, to, to, Size()); })
            loop.runMasked = [](const void *unit, Layout layout, const Raster *from, Raster to, Raster mask,
                                Size size) { static_cast<const Run *>(unit)->masked(layout, from, to, mask, size); };
        return runThroughScratch(call, loop);
    }

    const Size size = call.commonSize();
    if (size.empty())
        return ORV_STATUS_OK;
    Raster rasters[count + 1];
    for (std::size_t i = 0; i <= count; ++i)
        rasters[i] = starts[i].raster;
    const auto runStraight = [&](Layout layout) {
        if constexpr (movesPixels) {
            if (images[0]->imageData == destination->imageData)
                return run.inPlace(layout, rasters[count], size);
        }
        run(layout, rasters, rasters[count], size);
    };
    if (planes) {
        const std::int32_t planeCount = planesToProcess(*destination, channels);
        for (std::int32_t plane = 0;; ++plane) {
            runStraight(Layout::C1);
            if (plane + 1 >= planeCount)
                break;
            for (std::size_t i = 0; i <= count; ++i)
                rasters[i].data += starts[i].planeStep;
        }
    } else if (Layout layout; pixelLayout(*destination, channels, layout)) {
        runStraight(layout);
    }
    return ORV_STATUS_OK;
}

} // namespace orv
