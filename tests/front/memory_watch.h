// Counts the library's memory while it stands, blocks and rasters apart, and lets allocations fail.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

#include "memory.h"

namespace front {

class MemoryWatch {
public:
    MemoryWatch();
    ~MemoryWatch();
    MemoryWatch(const MemoryWatch &) = delete;
    MemoryWatch &operator=(const MemoryWatch &) = delete;

    std::size_t liveBlocks() const { return blocks_.size(); }
    std::size_t liveRasters() const { return rasters_.size(); }
    std::size_t live() const { return liveBlocks() + liveRasters(); }
    int allocations() const { return static_cast<int>(requests_.size()); }
    const std::vector<std::size_t> &requests() const { return requests_; } // bytes of each, failed ones too

    // Lets the allocation of this number fail, counted from 0 and from now on.
    void failAt(int allocation);
    // Lets all allocations fail.
    void failAll() { exhausted_ = true; }
    // Counts allocations anew.
    void forget() { requests_.clear(), failing_ = -1; }
    // Puts what is handed out from now on so many bytes, 1 to 64, behind a multiple of 64.
    void misalign(std::size_t bytes) { misalignment_ = bytes; }

private:
    using Pieces = std::map<void *, void *>; // what the library got, and the runtime's own pointer

    static void *allocateBlock(std::size_t bytes);
    static void releaseBlock(void *block);
    static void *allocateRaster(std::size_t bytes);
    static void releaseRaster(void *raster);
    void *allocate(Pieces &pieces, std::size_t bytes);
    void release(Pieces &pieces, void *piece);

    static MemoryWatch *current;

    orv::MemoryFunctions previous_;
    Pieces blocks_, rasters_;
    std::vector<std::size_t> requests_;
    int failing_ = -1;
    bool exhausted_ = false;
    std::size_t misalignment_ = 0;
};

} // namespace front
