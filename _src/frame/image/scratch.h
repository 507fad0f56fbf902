// Scratch memory of one call.
#pragma once

#include <cstdint>
#include <limits>

#include "kernels.h"
#include "raster.h"

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
    ~Scratch()
    {
        if (block_ != nullptr)
            krnFree(block_);
    }

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

// The rows of one strip in a call's scratch. It can be planned before the height of strips is known, which follows from
// all that is planned.
struct StripBuffer {
    std::int64_t offset = -1; // in bytes a row of all buffers; unused where negative
    std::int32_t step = 0;

    bool used() const { return offset >= 0; }
    Raster in(const Scratch &scratch, std::int32_t rows) const { return {scratch.data() + offset * rows, step}; }
};

// The buffers of a strip, one behind the other.
struct StripBuffers {
    std::int64_t rowBytes = 0; // of all together

    StripBuffer add(std::int64_t bytes)
    {
        const StripBuffer buffer = {rowBytes, static_cast<std::int32_t>(roundedUp(bytes))};
        rowBytes += roundedUp(bytes);
        return buffer;
    }
};

} // namespace orv
