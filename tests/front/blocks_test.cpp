// Aligned memory blocks: where they start whatever the runtime gives, what they ask for, and how they go back.
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "front/memory_watch.h"
#include "front/reports.h"

namespace front {
namespace {

constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();

struct Allocator {
    const char *name;
    std::size_t itemBytes;
    void *(*allocate)(std::int32_t count);
};

const Allocator allocators[] = {{"orvMalloc", 1, [](std::int32_t count) -> void * { return orvMalloc(count); }},
                                {"orvwMalloc", 2, [](std::int32_t count) -> void * { return orvwMalloc(count); }},
                                {"orviMalloc", 4, [](std::int32_t count) -> void * { return orviMalloc(count); }},
                                {"orvsMalloc", 4, [](std::int32_t count) -> void * { return orvsMalloc(count); }},
                                {"orvdMalloc", 8, [](std::int32_t count) -> void * { return orvdMalloc(count); }}};

// A block that the runtime would have given, at every distance from an alignment that matters.
class Runtime {
public:
    explicit Runtime(std::size_t misalignment) : previous_(orv::memoryFunctions)
    {
        const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(room);
        given = room + (64 - first % 64) + misalignment;
        requested = 0;
        released = nullptr;
        orv::memoryFunctions.allocateBlock = [](std::size_t bytes) -> void * {
            requested = bytes;
            return given;
        };
        orv::memoryFunctions.releaseBlock = [](void *block) { released = block; };
    }
    ~Runtime() { orv::memoryFunctions = previous_; }
    Runtime(const Runtime &) = delete;
    Runtime &operator=(const Runtime &) = delete;

    static std::uint8_t room[4096];
    static std::uint8_t *given;
    static std::size_t requested;
    static void *released;

private:
    orv::MemoryFunctions previous_;
};

std::uint8_t Runtime::room[4096];
std::uint8_t *Runtime::given;
std::size_t Runtime::requested;
void *Runtime::released;

TEST(Blocks, StartOnMultiplesOf32)
{
    for (const Allocator &allocator : allocators)
        for (std::size_t misalignment = 0; misalignment < 64; ++misalignment)
            for (const std::int32_t count : {1, 31, 100}) {
                SCOPED_TRACE(allocator.name);
                const Runtime runtime(misalignment);
                void *block = allocator.allocate(count);
                const std::size_t bytes = static_cast<std::size_t>(count) * allocator.itemBytes;
                EXPECT_EQ(Runtime::requested, bytes + 32 + sizeof(void *)); // 36 more where pointers have 4 bytes
                // The first multiple of 32 that leaves room for a pointer before it.
                std::uint8_t *expected = Runtime::given + sizeof(void *);
                while (reinterpret_cast<std::uintptr_t>(expected) % 32 != 0)
                    ++expected;
                ASSERT_EQ(block, expected);
                ASSERT_LE(expected + bytes, Runtime::given + Runtime::requested);
                void *stored;
                std::memcpy(&stored, expected - sizeof stored, sizeof stored);
                EXPECT_EQ(stored, Runtime::given);
                orvFree(block);
                EXPECT_EQ(Runtime::released, Runtime::given);
            }
}

TEST(Blocks, AreNullForNothingAndWithoutMemory)
{
    Reports reports;
    MemoryWatch watch;
    for (const Allocator &allocator : allocators) {
        SCOPED_TRACE(allocator.name);
        for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()})
            EXPECT_EQ(allocator.allocate(count), nullptr);
    }
    EXPECT_EQ(watch.allocations(), 0);
    watch.failAll();
    for (const Allocator &allocator : allocators)
        EXPECT_EQ(allocator.allocate(10), nullptr) << allocator.name;
    EXPECT_EQ(watch.allocations(), 5);
    orvFree(nullptr);
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(orvGetErrStatus(), ORV_STATUS_OK);
}

// What the machine cannot address is refused before it is asked for, and never wraps to a small block.
TEST(Blocks, OfAbsurdSizeAreNullOrAskedForInFull)
{
    MemoryWatch watch;
    for (const Allocator &allocator : allocators) {
        const std::size_t before = watch.requests().size();
        EXPECT_EQ(allocator.allocate(mostInt), nullptr) << allocator.name;
        for (std::size_t i = before; i < watch.requests().size(); ++i)
            EXPECT_GE(watch.requests()[i] / allocator.itemBytes, static_cast<std::size_t>(mostInt)) << allocator.name;
    }
}

TEST(Blocks, ComeFromTheRuntime)
{
    for (const Allocator &allocator : allocators) {
        void *block = allocator.allocate(1000);
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x5A, 1000 * allocator.itemBytes);
        orvFree(block);
    }
}

} // namespace
} // namespace front
