// The watch over the library's memory.
#include "front/memory_watch.h"

#include <cstdint>
#include <cstdlib>

#include <gtest/gtest.h>

namespace front {

MemoryWatch *MemoryWatch::current = nullptr;

MemoryWatch::MemoryWatch() : previous_(orv::memoryFunctions)
{
    EXPECT_EQ(current, nullptr) << "one watch at a time";
    current = this;
    orv::memoryFunctions = {allocateBlock, releaseBlock, allocateRaster, releaseRaster};
}

MemoryWatch::~MemoryWatch()
{
    orv::memoryFunctions = previous_;
    current = nullptr;
    for (Pieces *pieces : {&blocks_, &rasters_})
        for (const auto &[piece, raw] : *pieces)
            std::free(raw);
}

void MemoryWatch::failAt(int allocation)
{
    failing_ = allocations() + allocation;
}

void *MemoryWatch::allocate(Pieces &pieces, std::size_t bytes)
{
    const bool fails = exhausted_ || allocations() == failing_;
    requests_.push_back(bytes);
    constexpr std::size_t most = std::size_t{1} << 28; // what no test needs is not asked of the machine
    if (fails || bytes > most)
        return nullptr;
    const std::size_t room = misalignment_ == 0 ? 0 : 128;
    std::uint8_t *const raw = static_cast<std::uint8_t *>(std::malloc(bytes + room));
    std::uint8_t *piece = raw;
    if (room != 0)
        piece += 64 - reinterpret_cast<std::uintptr_t>(raw) % 64 + misalignment_;
    pieces[piece] = raw;
    return piece;
}

void MemoryWatch::release(Pieces &pieces, void *piece)
{
    const auto found = pieces.find(piece);
    if (found == pieces.end()) {
        ADD_FAILURE() << "released what was not allocated so: " << piece;
        return;
    }
    std::free(found->second);
    pieces.erase(found);
}

void *MemoryWatch::allocateBlock(std::size_t bytes)
{
    return current->allocate(current->blocks_, bytes);
}

void MemoryWatch::releaseBlock(void *block)
{
    current->release(current->blocks_, block);
}

void *MemoryWatch::allocateRaster(std::size_t bytes)
{
    return current->allocate(current->rasters_, bytes);
}

void MemoryWatch::releaseRaster(void *raster)
{
    current->release(current->rasters_, raster);
}

} // namespace front
