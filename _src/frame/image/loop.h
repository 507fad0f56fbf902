// The contract between frames and the loops of units. A unit describes its loop in a record; a frame calls it for
// strips of rows, for planes or for whole pixels, whatever the images of the call need.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "area.h"
#include "kernel.h"
#include "layout.h"
#include "raster.h"

namespace orv {

// A reference to something that can be called, without its type. It must not outlive what it refers to. So a frame is
// called in the expression that makes the loop, and loops may refer to the tables of kernels they are made from.
template <class Signature> class Callable;

template <class Result, class... Arguments> class Callable<Result(Arguments...)> {
public:
    constexpr Callable() = default;

    template <class Target>
    requires(!std::is_same_v<Target, Callable>) constexpr Callable(const Target &target)
        : target_(&target), call_([](const void *erased, Arguments... arguments) -> Result {
              return (*static_cast<const Target *>(erased))(arguments...);
          })
    {
    }

    explicit operator bool() const { return call_ != nullptr; }
    Result operator()(Arguments... arguments) const { return call_(target_, arguments...); }

private:
    const void *target_ = nullptr;
    Result (*call_)(const void *target, Arguments... arguments) = nullptr;
};

// How many pixels a window extends beyond the one that it computes.
struct Margins {
    std::int32_t left, right, top, bottom;
};

// What one call of a loop works on.
struct Work {
    Layout layout = Layout::C1; // of sources and destination
    std::int32_t channel = 0;   // of the first sample, in the first source's image; of the destination's without one
    Size size = {};             // in pixels
    Margins margins = {};       // around the sources, which can be read there; none but for windows
    const ConstRaster *sources = nullptr;
    Raster destination = {};                   // null where the loop only reads
    ConstRaster mask = {};                     // null, unless the loop takes masks and the call has one
    Raster copy = {};                          // sources[0], if the call asked for a copy that the loop may change
    std::int32_t rowsAbove = 0, rowsBelow = 0; // of the rectangle, outside this strip
    std::uint8_t *scratch = nullptr;
    std::uint8_t *carried = nullptr; // what the strips of a plane share
};

// A loop. It returns KRN_OK, or the status of the first kernel that refused: the frame then delivers nothing more.
struct Loop {
    Callable<KrnStatus(const Work &)> run;
    // Bytes of scratch that a run needs, or null for none. Rasters are not yet set; more rows never need less.
    Callable<std::int64_t(const Work &)> scratchBytes = {};
    // For windows: bytes that the strips of a plane carry from one to the next, in their order, or null for none.
    Callable<std::int64_t(const Work &)> carriedBytes = {};
    // For pointwise frames: the loop writes under `mask` where there is one, and need not go through scratch for it.
    bool takesMask = false;
    // For pointwise frames and planes: the loop walks rows in whole samples. The frame rounds the step of each image
    // down to them, for the whole call; a step that becomes 0 is refused as kernels refuse it.
    bool wholeSamples = false;
};

// The result of a frame whose run ended with this status. A kernel's refusal is silent to the application; only
// exhausted memory is not.
constexpr OrvStatus statusOf(KrnStatus status)
{
    return status == KRN_NO_MEMORY ? ORV_STATUS_NO_MEMORY : ORV_STATUS_OK;
}

} // namespace orv
