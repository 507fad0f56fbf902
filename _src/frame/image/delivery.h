// How a strip of results goes from scratch into the destination: through the masks of the call, and into one channel of
// interleaved pixels.
#pragma once

#include <cstdint>

#include "channel_kernels.h"
#include "operand.h"
#include "scratch.h"

namespace orv {

constexpr std::size_t mostImages = 4; // of one call

// A piece of a call's scratch that holds the rows of one strip.
struct Lane {
    std::int64_t offset = -1; // in bytes a row of all lanes; none where negative
    std::int32_t step = 0;

    bool used() const { return offset >= 0; }
    Raster in(const Scratch &scratch, std::int32_t rows) const { return {scratch.data() + offset * rows, step}; }
};

// Lanes side by side.
struct Lanes {
    std::int64_t rowBytes = 0; // of all together

    Lane add(std::int64_t bytes)
    {
        const Lane lane = {rowBytes, static_cast<std::int32_t>(roundedUp(bytes))};
        rowBytes += roundedUp(bytes);
        return lane;
    }
};

class Delivery {
public:
    void addMask(const OrvImage *mask)
    {
        if (mask != nullptr)
            masks_[maskCount_++] = resolve(*mask, true);
    }
    bool masked() const { return maskCount_ > 0; }

    // Whether a mask has bytes in common with what is written.
    bool masksMeet(const Operand &destination, Size size, std::int32_t planes) const;

    // Takes the lanes that the way into the destination needs, beside that of the results. Masks that are written over
    // while they are still to be read, and several masks, go through a lane.
    void plan(Lanes &lanes, const Operand &destination, Layout layout, std::int32_t width, bool stripsApart);

    // The mask of a strip; one without data where there is none. `rows` are those of a lane.
    Raster maskOfStrip(std::int32_t row, Size strip, const Scratch &scratch, std::int32_t rows) const;

    // Moves the result into the rows of the destination.
    void deliver(const Raster &result, const Raster &destination, Size strip, const Raster &mask,
                 const Scratch &scratch, std::int32_t rows) const;

private:
    Operand masks_[mostImages] = {};
    std::size_t maskCount_ = 0;
    Operand destination_ = {};
    Layout layout_ = Layout::C1; // of what is written
    Lane mergeLane_, maskLane_;
};

} // namespace orv
