// Where the frame of neighbourhoods starts in the source. No exported operation takes a rectangle with negative
// offsets, so a loop of this test's own looks at what it is given.
#include <gtest/gtest.h>

#include "front/neighbourhood_model.h"
#include "window.h"

namespace front {
namespace {

// Takes the pixel as many columns to the left and rows above as the margins reach.
struct Corner {
    void operator()(orv::Layout, const orv::PaddedSource &source, orv::Raster out, std::uint8_t *) const
    {
        for (std::int32_t y = 0; y < source.size.height; ++y)
            for (std::int32_t x = 0; x < source.size.width; ++x)
                out.fromRow(y).data[x] = source.raster.fromRow(y - source.margins.top).data[x - source.margins.left];
    }
};

// An offset that stays within the rim starts there, one beyond it counts as 0, each of the two by itself.
TEST(Rim, NegativeOffsetsStartInIt)
{
    const struct {
        std::int32_t xOffset, yOffset, firstColumn, firstRow;
    } rows[] = {{-3, 2, -3, 2}, {-4, 2, 0, 2}, {2, -1, 2, -1}, {1, -2, 1, 0}, {-1, -1, -1, -1}, {-100, -100, 0, 0}};
    Random random(17);
    for (const auto &[xOffset, yOffset, firstColumn, firstRow] : rows)
        for (const std::int32_t mode :
             {ORV_BORDER_CONSTANT, ORV_BORDER_REPLICATE, ORV_BORDER_REFLECT, ORV_BORDER_WRAP}) {
            TestImage source({.width = 14, .height = 11}, random), destination({.width = 14, .height = 11}, random);
            orvSetBorderMode(&source.header, mode, ORV_SIDE_ALL, 99);
            source.setRectangle(0, xOffset, yOffset, 12, 9);
            const orv::Neighbourhood call = {&source.header, &destination.header, {3, 0, 1, 0}, 3, 1, false};
            ASSERT_EQ(orv::neighbourhood(call, Corner()), ORV_STATUS_OK);
            const BorderedSource model(source, *source.memory());
            const std::int32_t width = std::min(12, 12 + xOffset), height = std::min(9, 9 + yOffset);
            for (std::int32_t y = 0; y < height; ++y)
                for (std::int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(destination.get(x, y, 0).bits, model.at(firstColumn + x - 3, firstRow + y - 1, 0).bits)
                        << "offsets " << xOffset << ", " << yOffset << ", mode " << mode << " at " << x << ", " << y;
        }
}

} // namespace
} // namespace front
