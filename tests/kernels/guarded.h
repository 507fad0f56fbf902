// Memory between pages that nobody may touch: a read or write beyond it ends the test where it happens.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// Kept from trial to trial, since mapping costs more than most trials do.
class Guarded {
public:
    Guarded() = default;
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;
    ~Guarded() { release(); }

    // The first and the last byte lie beside guard pages.
    std::uint8_t *begin() const { return base_ + page_; }
    std::uint8_t *end() const { return base_ + mapped_ - page_; }

    void grow(std::size_t bytes)
    {
        if (bytes + 2 * page_ <= mapped_)
            return;
        release();
        const std::size_t inside = (bytes + page_ - 1) / page_ * page_;
        mapped_ = inside + 2 * page_;
        base_ = static_cast<std::uint8_t *>(
            mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (base_ == MAP_FAILED || mprotect(base_, page_, PROT_NONE) != 0 || mprotect(end(), page_, PROT_NONE) != 0)
            std::abort();
    }

private:
    void release()
    {
        if (base_ != nullptr)
            munmap(base_, mapped_);
        base_ = nullptr;
        mapped_ = 0;
    }

    std::size_t page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), mapped_ = 0;
    std::uint8_t *base_ = nullptr;
};
