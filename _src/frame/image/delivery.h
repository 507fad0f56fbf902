// How a strip of results goes from scratch into the destination: through the masks of the call, and into one channel of
// interleaved pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "call_images.h"
#include "kernel.h"
#include "layout.h"
#include "operand.h"
#include "scratch.h"

namespace orv {

// The masks of a call, as one.
class Masks {
public:
    void add(const OrvImage *mask)
    {
        if (mask != nullptr)
            masks_[count_++] = resolve(*mask, true);
    }
    bool any() const { return count_ > 0; }

    // Whether a mask has bytes in common with what is written.
    bool overlap(const Extent &written) const;

    // Takes a buffer for the mask of a strip, where there are several masks, or where one is to be `copied`.
    void plan(StripBuffers &buffers, std::int32_t width, bool copied);

    // The mask of a strip, null where there is none. `rows` are those of a buffer.
    KrnStatus ofStrip(std::int32_t row, Size strip, const Scratch &scratch, std::int32_t rows, ConstRaster &mask) const;

private:
    Operand masks_[mostImages] = {};
    std::size_t count_ = 0;
    StripBuffer buffer_;
};

class Delivery {
public:
    // Takes the buffers that the way into the destination needs, beside that of the results.
    void plan(StripBuffers &buffers, const Operand &destination, Layout layout, std::int32_t width, bool masked);

    // Moves the result into the rows of the destination.
    KrnStatus deliver(ConstRaster result, Raster destination, Size strip, ConstRaster mask, const Scratch &scratch,
                      std::int32_t rows) const;

private:
    Operand destination_ = {};
    Layout layout_ = Layout::C1; // of what is written
    StripBuffer mergeBuffer_;    // the channel of interleaved pixels, as it was
};

// Copies one channel of interleaved pixels to a raster of that channel alone, and back. Pixels of three and four
// samples have kernels for this.
KrnStatus gather(const Operand &image, ConstRaster pixels, Raster channel, Size size);
KrnStatus scatter(const Operand &image, ConstRaster channel, Raster pixels, Size size);

} // namespace orv
