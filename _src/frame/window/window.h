// The frame of operations that compute each pixel from a window around it. It resolves rectangles, channels and masks,
// and runs a loop over padded sources: strips of the rectangle, each with the margins that the loop reads. What is
// copied grows with the rectangle and the window, never with the image; windows that lie in the image read it where it
// is.
#pragma once

#include <algorithm>
#include <cstdint>

#include "area.h"
#include "loop.h"
#include "orv.h"

namespace orv {

// A window of pixels. The one that is computed stands at the anchor.
struct Window {
    std::int32_t columns, rows, anchorX, anchorY;

    Margins margins() const { return {anchorX, columns - anchorX - 1, anchorY, rows - anchorY - 1}; }
};

// The margins that serve both.
inline Margins larger(const Margins &a, const Margins &b)
{
    return {std::max(a.left, b.left), std::max(a.right, b.right), std::max(a.top, b.top), std::max(a.bottom, b.bottom)};
}

// How rows reach a loop.
enum class Padding {
    Strips,       // strip by strip; windows that lie in the image are read there
    OwnCopy,      // strip by strip in a copy, Work::copy, that the loop may change
    OwnWholeCopy, // all rows at once in such a copy
};

struct WindowCall {
    const OrvImage *source;
    const OrvImage *destination;
    Margins margins;
    // How far to the left of the image and above it a rectangle with negative offsets may start. Offsets beyond count
    // as 0.
    std::int32_t startLeft, startAbove;
    // Whose alpha channel is left alone in interleaved pixels: the source's or the destination's.
    const OrvImage *alphaOf;
    Padding padding = Padding::Strips;
    // The loop computes all samples of a pixel together: planes are interleaved for it, and its results scattered to
    // planes.
    bool wholePixels = false;
};

// 0, or ORV_STATUS_NO_MEMORY before anything is written. Headers have been validated and agree in depth. Images that
// differ in data order or in channels are processed channel by channel, as many as both have. The images may overlap in
// any way: where they do, a plane is read before any of it is written.
//
// The loop's source starts at the first pixel that is computed, and can be read as far around it as the margins say.
OrvStatus runWindow(const WindowCall &call, const Loop &loop);

// The size of a source with its margins.
inline std::int64_t paddedWidth(const Work &work)
{
    return std::int64_t{work.size.width} + work.margins.left + work.margins.right;
}
inline std::int64_t paddedHeight(const Work &work)
{
    return std::int64_t{work.size.height} + work.margins.top + work.margins.bottom;
}

// The first source from its margins on.
inline ConstRaster withMargins(const Work &work, std::int32_t pixelBytes)
{
    return work.sources->fromRow(-std::int64_t{work.margins.top})
        .fromByte(-std::int64_t{work.margins.left} * pixelBytes);
}

} // namespace orv
