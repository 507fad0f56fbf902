// The one view of samples in memory that frames and kernels share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv {

template <class Byte> struct RasterOf {
    Byte *data;
    std::int32_t step; // bytes from row to row
};

} // namespace orv
