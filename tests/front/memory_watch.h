// Counts the library's memory while it stands, blocks and rasters apart, and lets allocations fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "memory.h"

namespace front {

class MemoryWatch {
public:
    MemoryWatch() : previous_(orv::memoryFunctions)
    {
        EXPECT_EQ(current, nullptr) << "one watch at a time";
        current = this;
        orv::memoryFunctions = {[](std::size_t bytes) { return current->allocate(current->blocks_, bytes); },
                                [](void *block) { current->release(current->blocks_, block); },
                                [](std::size_t bytes) { return current->allocate(current->rasters_, bytes); },
                                [](void *raster) { current->release(current->rasters_, raster); }};
    }
    ~MemoryWatch()
    {
        orv::memoryFunctions = previous_;
        current = nullptr;
        for (Pieces *pieces : {&blocks_, &rasters_})
            for (const auto &[piece, raw] : *pieces)
                std::free(raw);
    }
    MemoryWatch(const MemoryWatch &) = delete;
    MemoryWatch &operator=(const MemoryWatch &) = delete;

    std::size_t liveBlocks() const { return blocks_.size(); }
    std::size_t liveRasters() const { return rasters_.size(); }
    std::size_t live() const { return liveBlocks() + liveRasters(); }
    int allocations() const { return static_cast<int>(requests_.size()); }
    const std::vector<std::size_t> &requests() const { return requests_; } // bytes of each, failed ones too
    std::uint8_t *last() const { return last_; }                           // what the last allocation gave

    // Lets the allocation of this number fail, counted from 0 and from now on.
    void failAt(int allocation) { failing_ = allocations() + allocation; }
    void failAll() { exhausted_ = true; }
    // Counts allocations anew.
    void forget() { requests_.clear(), failing_ = -1; }
    // Puts what is handed out from now on so many bytes, 1 to 64, behind a multiple of 64.
    void misalign(std::size_t bytes) { misalignment_ = bytes; }

private:
    using Pieces = std::map<void *, void *>; // what the library got, and the runtime's own pointer

    void *allocate(Pieces &pieces, std::size_t bytes)
    {
        const bool fails = exhausted_ || allocations() == failing_;
        requests_.push_back(bytes);
        constexpr std::size_t most = std::size_t{1} << 28; // what no test needs is not asked of the machine
        if (fails || bytes > most)
            return nullptr;
        const std::size_t room = misalignment_ == 0 ? 0 : 128;
        std::uint8_t *const raw = static_cast<std::uint8_t *>(std::malloc(bytes + room));
        last_ = room == 0 ? raw : raw + 64 - reinterpret_cast<std::uintptr_t>(raw) % 64 + misalignment_;
        pieces[last_] = raw;
        return last_;
    }
    void release(Pieces &pieces, void *piece)
    {
        const auto found = pieces.find(piece);
        if (found == pieces.end()) {
            ADD_FAILURE() << "released what was not allocated so: " << piece;
            return;
        }
        std::free(found->second);
        pieces.erase(found);
    }

    inline static MemoryWatch *current = nullptr;

    orv::MemoryFunctions previous_;
    Pieces blocks_, rasters_;
    std::vector<std::size_t> requests_;
    std::uint8_t *last_ = nullptr;
    int failing_ = -1;
    bool exhausted_ = false;
    std::size_t misalignment_ = 0;
};

} // namespace front
