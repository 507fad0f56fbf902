// An image of a call as its loops meet it: where its samples are, and whether others overlap them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"

namespace orv {

// The bytes from the first to the last sample that a rectangle, or its planes, reach.
struct Reach {
    std::uintptr_t first, end;
};

inline bool meet(Reach a, Reach b)
{
    return a.first < b.end && b.first < a.end;
}

// An image of the call, or a mask.
struct Operand {
    const OrvImage *image;
    Start start;
    std::int32_t sampleBytes;
    std::int32_t pixelBytes; // from pixel to pixel
    bool picked;             // one channel of several, in pixel order

    // The rectangle's rows from one on, in a plane counted from the first that is processed.
    Raster at(std::int32_t row, std::int32_t plane) const
    {
        Raster raster = start.raster.fromRow(row);
        if (plane > 0)
            raster.data += plane * start.planeStep;
        return raster;
    }
};

Operand resolve(const OrvImage &image, bool planes);

Reach reach(const Operand &operand, Size size, std::int32_t planes);

// Whether a strip may be written while later rows of `read` are still to be read: they have no byte in common, or each
// row of the one lies beside the same row of the other and no further.
bool stripsKeepApart(const Operand &read, const Operand &written, Size size, std::int32_t planes);

// Whether a loop may write samples while it still reads: the rasters have no byte in common, or are the same.
bool samplesKeepApart(const Operand &read, const Operand &written, Size size, std::int32_t planes);

} // namespace orv
