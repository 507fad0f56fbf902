// The frame of operations that compute each pixel from a window around it. It resolves rectangles, channels and masks,
// and runs a unit's loop over padded sources: strips of the rectangle, each with the margins that the loop reads. What
// is copied grows with the rectangle and the reach of the window, never with the image; windows that lie in the image
// read it where it is.
#pragma once

#include "padded_source.h"

namespace orv {

struct Neighbourhood {
    const OrvImage *source;
    const OrvImage *destination;
    Margins reach; // of the window
    // How far to the left of the image and above it a rectangle with negative offsets may start; offsets beyond count
    // as 0.
    std::int32_t rimLeft, rimTop;
    // The fourth sample of interleaved pixels is an alpha channel, and left alone.
    bool alpha;
};

// A unit's loop without its type, so that the frame is compiled once for all units.
struct WindowLoop {
    const void *unit;
    void (*run)(const void *unit, Layout layout, const PaddedSource &source, Raster destination, std::uint8_t *work);
    // Bytes of scratch that a run needs, of which `work` has the start; the source has its sizes only.
    std::int64_t (*workBytes)(const void *unit, Layout layout, const PaddedSource &source);
};

// 0, or ORV_STATUS_NO_MEMORY before anything is written.
OrvStatus runNeighbourhood(const Neighbourhood &call, const WindowLoop &loop);

// Runs `run(layout, source, destination, work)`; with scratch where it has `workBytes(layout, source)`. Headers have
// been validated and agree in depth, data order and channels to process. The images may overlap in any way: where they
// do, a plane is read before any of it is written.
template <class Run> OrvStatus neighbourhood(const Neighbourhood &call, const Run &run)
{
    return runNeighbourhood(
        call, {&run,
               [](const void *unit, Layout layout, const PaddedSource &source, Raster destination, std::uint8_t *work) {
                   (*static_cast<const Run *>(unit))(layout, source, destination, work);
               },
               []([[maybe_unused]] const void *unit, [[maybe_unused]] Layout layout,
                  [[maybe_unused]] const PaddedSource &source) -> std::int64_t {
                   if constexpr (requires(const Run &any) { any.workBytes(layout, source); })
                       return static_cast<const Run *>(unit)->workBytes(layout, source);
                   else
                       return 0;
               }});
}

} // namespace orv
