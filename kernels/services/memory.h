// Where memory comes from: aligned blocks for records and scratch, and the runtime's allocator behind them.
#pragma once

#include <cstddef>

namespace orv {

// The runtime's allocator, for blocks (records and scratch) and for rasters, whose alignment is the image's own. Each
// release takes what the allocation of its own kind gave. Tests put functions of theirs in.
struct MemoryFunctions {
    void *(*allocateBlock)(std::size_t bytes);
    void (*releaseBlock)(void *block);
    void *(*allocateRaster)(std::size_t bytes);
    void (*releaseRaster)(void *raster);
};

extern MemoryFunctions memoryFunctions;

} // namespace orv
