// The aligned blocks, the same in every build.
#include "memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "signatures.h"

namespace orv {

MemoryFunctions memoryFunctions = {std::malloc, std::free, std::malloc, std::free};

namespace {

constexpr std::uintptr_t blockAlignment = 32;

// A block starts at the first multiple of 32 that leaves room for the raw pointer just before it.
constexpr std::size_t blockOverhead = blockAlignment + sizeof(void *);

void *allocateAligned(std::int32_t count, std::size_t itemBytes)
{
    if (count < 1)
        return nullptr;
    const std::uint64_t bytes = static_cast<std::uint64_t>(count) * itemBytes + blockOverhead;
    if (bytes > PTRDIFF_MAX)
        return nullptr;
    void *raw = memoryFunctions.allocateBlock(static_cast<std::size_t>(bytes));
    if (raw == nullptr)
        return nullptr;
    const std::uintptr_t start = (reinterpret_cast<std::uintptr_t>(raw) + blockOverhead - 1) & ~(blockAlignment - 1);
    void **block = reinterpret_cast<void **>(start);
    block[-1] = raw;
    return block;
}

} // namespace

namespace slot0 {

void *krnMallocBytes(std::int32_t count)
{
    return allocateAligned(count, 1);
}
void *krnMalloc16(std::int32_t count)
{
    return allocateAligned(count, 2);
}
void *krnMalloc32(std::int32_t count)
{
    return allocateAligned(count, 4);
}
void *krnMalloc32f(std::int32_t count)
{
    return allocateAligned(count, 4);
}
void *krnMalloc64(std::int32_t count)
{
    return allocateAligned(count, 8);
}

void krnFree(void *block)
{
    if (block != nullptr)
        memoryFunctions.releaseBlock(static_cast<void **>(block)[-1]);
}

KRN_KERNEL(CopyBytesKernel, krnCopyBytes)
{
    if (source == nullptr || destination == nullptr)
        return KRN_NULL_POINTER;
    if (count < 1)
        return KRN_BAD_SIZE;
    std::memmove(destination, source, static_cast<std::size_t>(count));
    return KRN_OK;
}

} // namespace slot0
} // namespace orv
