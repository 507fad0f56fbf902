// Where the frame of neighbourhoods starts in the source. No exported operation takes a rectangle with negative
// offsets, so a loop of this test's own looks at what it is given.
#include <gtest/gtest.h>

#include "front/call.h"
#include "window.h"

namespace front {
namespace {

// Takes the pixel as many columns to the left and rows above as the margins are wide.
orv::KrnStatus takeCorner(const orv::Work &work)
{
    const orv::ConstRaster corner = work.sources->fromRow(-work.margins.top).fromByte(-work.margins.left);
    for (std::int32_t y = 0; y < work.size.height; ++y)
        for (std::int32_t x = 0; x < work.size.width; ++x)
            work.destination.fromRow(y).data[x] = corner.fromRow(y).data[x];
    return orv::KRN_OK;
}

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
            const orv::WindowCall call = {.source = &source.header,
                                          .destination = &destination.header,
                                          .margins = {3, 0, 1, 0},
                                          .startLeft = 3,
                                          .startAbove = 1,
                                          .alphaOf = &source.header};
            ASSERT_EQ(orv::runWindow(call, {.run = [](const orv::Work &work) { return takeCorner(work); }}),
                      ORV_STATUS_OK);
            const Bytes before = *source.memory();
            const std::int32_t width = std::min(12, 12 + xOffset), height = std::min(9, 9 + yOffset);
            for (std::int32_t y = 0; y < height; ++y)
                for (std::int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(destination.get(x, y, 0).bits,
                              borderedSample(source, before, firstColumn + x - 3, firstRow + y - 1, 0).bits)
                        << "offsets " << xOffset << ", " << yOffset << ", mode " << mode << " at " << x << ", " << y;
        }
}

} // namespace
} // namespace front
