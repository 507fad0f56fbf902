// Memory between pages that nobody may touch: a read or write beyond it ends the test where it happens.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// `bytes` of memory that either end at the upper guard page or start at the lower one.
class Guarded {
public:
    enum Side { AtLowerGuard, AtUpperGuard };

    Guarded(std::size_t bytes, Side side) : bytes_(bytes)
    {
        const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inside = (bytes + page - 1) / page * page;
        mapped_ = inside + 2 * page;
        base_ = static_cast<std::uint8_t *>(
            mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (base_ == MAP_FAILED || mprotect(base_, page, PROT_NONE) != 0 ||
            mprotect(base_ + page + inside, page, PROT_NONE) != 0)
            std::abort();
        data_ = base_ + page + (side == AtUpperGuard ? inside - bytes : 0);
    }
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;
    ~Guarded() { munmap(base_, mapped_); }

    std::uint8_t *data() const { return data_; }
    std::size_t size() const { return bytes_; }

private:
    std::size_t bytes_, mapped_;
    std::uint8_t *base_, *data_;
};
