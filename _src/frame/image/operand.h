// An image of a call as its loops meet it: where its samples are, and whether others overlap them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"

namespace orv {

// The bytes from the first to the last sample of a rectangle, or of its planes.
struct ByteRange {
    std::uintptr_t first, end;
};

inline bool overlap(ByteRange a, ByteRange b)
{
    return a.first < b.end && b.first < a.end;
}

// An image of the call, or a mask.
struct Operand {
    const OrvImage *image;
    Start start;
    std::int32_t sampleBytes;
    std::int32_t pixelBytes; // from pixel to pixel
    bool interleaved;        // one channel of several in pixel order: gathered to be read, scattered to be written

    // The rectangle's rows from one on, in a plane counted from the first that is processed.
    Raster at(std::int32_t row, std::int32_t plane) const
    {
        return start.raster.fromRow(row).fromByte(plane * std::int64_t{start.planeStep});
    }

    // Each channel of interleaved pixels as a plane, one sample further on than that before it.
    void takeChannels(bool planes)
    {
        interleaved = !planes && image->dataOrder != ORV_DATA_ORDER_PLANE && image->nChannels > 1;
        if (interleaved)
            start.planeStep = sampleBytes;
    }

    // Most operations gather pixels of three and four samples only.
    bool served() const { return !interleaved || image->nChannels == 3 || image->nChannels == 4; }
};

Operand resolve(const OrvImage &image, bool planes, Steps steps = Steps::AsGiven);

ByteRange byteRange(const Operand &operand, Size size, std::int32_t planes);

// A rectangle: its size in pixels, and its number of planes.
struct Extent {
    const Operand &operand;
    Size size;
    std::int32_t planes;
};

// Whether the rectangles have no byte in common.
bool disjoint(const Extent &read, const Extent &written);

// Whether a strip may be written while later rows of `read` are still to be read: they are disjoint, or each row of the
// one lies beside the same row of the other and no further.
bool stripsDisjoint(const Extent &read, const Extent &written);

// Whether a loop may write samples while it still reads: they are disjoint, or the same.
bool samplesDisjoint(const Extent &read, const Extent &written);

} // namespace orv
