// The loop of a resize by means of boxes. Its tables and row buffers are taken before anything is written.
#pragma once

#include <cstdint>

#include "geometry/box_table.h"
#include "geometry/resize_loops.h"

namespace orv {

class BoxMeans {
public:
    explicit BoxMeans(const ResizeCall &call) : call_(call), columns_(call.x), rows_(call.y) {}

    KrnStatus prepare(std::int32_t samplesPerPixel);
    KrnStatus run(const Work &work);

private:
    bool halves() const;
    bool floatsHold() const;
    template <class Sum> void fill(std::uint8_t *memory);
    KrnStatus sumRows(const Work &work, const Box &box);

    const ResizeCall &call_;
    Scratch scratch_;
    BoxTable columns_, rows_;
    BoxesOfRow boxes_ = {};
    std::uint8_t *sums_ = nullptr, *channel_ = nullptr;
    std::int32_t channels_ = 1; // of a pixel as it is summed
    std::int32_t pixels_ = 0;   // of a source row, up to the last box
    bool floats_ = false;       // sums are floats, else doubles
};

} // namespace orv
