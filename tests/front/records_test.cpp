// Memory blocks, rectangle and tile records, and the border settings of headers.
#include <cstring>

#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

namespace front {
namespace {

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

TEST(Blocks, StartOnMultiplesOf32)
{
    MemoryWatch watch;
    for (const Allocator &allocator : allocators)
        for (std::size_t misalignment = 1; misalignment <= 64; ++misalignment)
            for (const std::int32_t count : {1, 31, 100}) {
                SCOPED_TRACE(allocator.name);
                watch.misalign(misalignment);
                void *block = allocator.allocate(count);
                const std::size_t bytes = static_cast<std::size_t>(count) * allocator.itemBytes;
                EXPECT_EQ(watch.requests().back(), bytes + 32 + sizeof(void *)); // 36 more where pointers have 4 bytes
                // The first multiple of 32 that leaves room for a pointer before it.
                std::uint8_t *expected = watch.last() + sizeof(void *);
                while (reinterpret_cast<std::uintptr_t>(expected) % 32 != 0)
                    ++expected;
                ASSERT_EQ(block, expected);
                ASSERT_LE(expected + bytes, watch.last() + watch.requests().back());
                std::memset(block, 0x5A, bytes);
                void *stored;
                std::memcpy(&stored, expected - sizeof stored, sizeof stored);
                EXPECT_EQ(stored, watch.last());
                orvFree(block);
                EXPECT_EQ(watch.live(), 0u);
            }
}

TEST(Blocks, AreNullForNothingAndWithoutMemory)
{
    Reports reports;
    MemoryWatch watch;
    for (const Allocator &allocator : allocators) {
        SCOPED_TRACE(allocator.name);
        for (const std::int32_t count : {0, -1, leastInt})
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

TEST(Records, HoldWhatWasGiven)
{
    Reports reports;
    MemoryWatch watch;
    OrvROI *roi = orvCreateROI(-1, leastInt, 2, 0, mostInt); // unchecked
    ASSERT_NE(roi, nullptr);
    EXPECT_TRUE(roi->coi == -1 && roi->xOffset == leastInt && roi->yOffset == 2 && roi->width == 0 &&
                roi->height == mostInt);
    orvSetROI(roi, 1, 2, 3, 4, 5);
    EXPECT_TRUE(roi->coi == 1 && roi->xOffset == 2 && roi->yOffset == 3 && roi->width == 4 && roi->height == 5);
    orvDeleteROI(roi);

    OrvTileInfo *tile = orvCreateTileInfo(nullptr, 7, -1, 3);
    ASSERT_NE(tile, nullptr);
    EXPECT_TRUE(tile->callback == nullptr && tile->id == 7 && tile->tileData == nullptr && tile->width == -1 &&
                tile->height == 3);
    tile->tileData = &tile;
    orvSetTileInfo(tile, provideNoTile, 9, 16, 24);
    EXPECT_TRUE(tile->callback == provideNoTile && tile->id == 9 && tile->tileData == nullptr && tile->width == 16 &&
                tile->height == 24);
    orvDeleteTileInfo(tile);

    orvSetROI(nullptr, 1, 2, 3, 4, 5);
    orvSetTileInfo(nullptr, provideNoTile, 0, 8, 8);
    orvDeleteROI(nullptr);
    orvDeleteTileInfo(nullptr);
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(watch.allocations(), 2);
    EXPECT_EQ(watch.live(), 0u);
}

TEST(Records, BorderConstantsAreClampedToTheDepth)
{
    for (const std::int32_t depth : allDepths)
        for (const std::int32_t value : {77, 300, -1, 128, -129, 65536, 40000, -32769, mostInt, leastInt})
            for (std::int32_t sides = -1; sides < 32; ++sides) {
                OrvImage image = {};
                image.depth = depth;
                for (int side = 0; side < 4; ++side)
                    image.BorderMode[side] = image.BorderConst[side] = 4711;
                orvSetBorderMode(&image, -9, sides, value);
                const long long clamped = depth == ORV_DEPTH_1U    ? (value > 0 ? 1 : 0)
                                          : depth == ORV_DEPTH_32F ? value
                                                                   : saturated(depth, value);
                for (int side = 0; side < 4; ++side) {
                    const bool set = (sides >> side & 1) != 0;
                    EXPECT_EQ(image.BorderMode[side], set ? -9 : 4711);
                    EXPECT_EQ(image.BorderConst[side], set ? clamped : 4711) << depth << " " << value;
                }
            }
    orvSetBorderMode(nullptr, 0, ORV_SIDE_ALL, 0);
}

} // namespace
} // namespace front
