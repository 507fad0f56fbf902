// Rectangle and tile records, and the border settings of headers.
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "front/memory_watch.h"
#include "front/reports.h"

namespace front {
namespace {

constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t leastInt = std::numeric_limits<std::int32_t>::min();

void provideNoTile() {}

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
    const struct {
        std::int32_t depth, value, stored;
    } rows[] = {{ORV_DEPTH_1U, 5, 1},
                {ORV_DEPTH_1U, -5, 0},
                {ORV_DEPTH_8U, 300, 255},
                {ORV_DEPTH_8U, -1, 0},
                {ORV_DEPTH_8S, 128, 127},
                {ORV_DEPTH_8S, leastInt, -128},
                {ORV_DEPTH_16U, 65536, 65535},
                {ORV_DEPTH_16U, -1, 0},
                {ORV_DEPTH_16S, 40000, 32767},
                {ORV_DEPTH_16S, -32769, -32768},
                {ORV_DEPTH_32S, mostInt, mostInt},
                {ORV_DEPTH_32F, leastInt, leastInt},
                {ORV_DEPTH_8U, 77, 77}};
    for (const auto &row : rows)
        for (std::int32_t sides = -1; sides < 32; ++sides) {
            OrvImage image = {};
            image.depth = row.depth;
            for (int side = 0; side < 4; ++side)
                image.BorderMode[side] = image.BorderConst[side] = 4711;
            orvSetBorderMode(&image, -9, sides, row.value);
            for (int side = 0; side < 4; ++side) {
                const bool set = (sides >> side & 1) != 0;
                EXPECT_EQ(image.BorderMode[side], set ? -9 : 4711);
                EXPECT_EQ(image.BorderConst[side], set ? row.stored : 4711) << row.depth << " " << row.value;
            }
        }
    orvSetBorderMode(nullptr, 0, ORV_SIDE_ALL, 0);
}

} // namespace
} // namespace front
