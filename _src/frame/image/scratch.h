// Scratch memory of one call.
#pragma once

#include <cstdint>
#include <limits>

#include "kernels.h"

namespace orv {

// To the alignment of blocks, on which rows in scratch start.
constexpr std::int64_t roundedUp(std::int64_t bytes)
{
    return (bytes + 31) & ~std::int64_t{31};
}

// A block that frees itself: whichever way a call ends, it keeps nothing.
class Scratch {
public:
    Scratch() = default;
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
    ~Scratch() { krnFree(block_); }

    // False on exhausted memory, for no bytes at all, and for more than 32 bits can say. Called once.
    bool take(std::int64_t bytes)
    {
        if (bytes < 1 || bytes > std::numeric_limits<std::int32_t>::max())
            return false;
        block_ = static_cast<std::uint8_t *>(krnMallocBytes(static_cast<std::int32_t>(bytes)));
        return block_ != nullptr;
    }

    std::uint8_t *data() const { return block_; }

private:
    std::uint8_t *block_ = nullptr;
};

} // namespace orv
