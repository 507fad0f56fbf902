// Mirror kernels against the place that each pixel comes from.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "row_table.h"

namespace {

using namespace orv;

using Bytes = std::vector<std::uint8_t>;

// No two neighbours alike, and no period that a row or a piece of one could have.
Bytes pattern(std::size_t size, unsigned seed)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>((i + seed) * 2654435761u >> 13);
    return bytes;
}

void holdMirror(const TableRow &row, int width, int height, int spare)
{
    const RasterShape shape = shapeOf(row.name).source;
    const int pixelBytes = shape.pixelBytes(), movedBytes = pixelBytes - (row.alpha() ? shape.sampleBytes : 0);
    const int step = width * pixelBytes + spare, otherStep = step + 2 * (spare > 0);
    const int start = 16 + spare;
    const Bytes source = pattern(static_cast<std::size_t>(start + 16 + step * height), 1);
    const Bytes before = row.inPlace() ? source : pattern(static_cast<std::size_t>(start + 16 + otherStep * height), 7);
    const int destinationStep = row.inPlace() ? step : otherStep;
    for (int flip = 0; flip <= 2; ++flip) {
        Bytes expected = before;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int fromX = flip == 0 ? x : width - 1 - x, fromY = flip == 1 ? y : height - 1 - y;
                std::memcpy(expected.data() + start + y * destinationStep + x * pixelBytes,
                            source.data() + start + fromY * step + fromX * pixelBytes,
                            static_cast<std::size_t>(movedBytes));
            }
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
            Bytes from = source, result = before;
            RowCall arguments = {{{from.data() + start, step}, {}},
                                 {result.data() + start, destinationStep},
                                 {},
                                 width,
                                 height,
                                 0,
                                 0,
                                 nullptr,
                                 flip};
            ASSERT_EQ(row(arguments), KRN_OK);
            ASSERT_TRUE(result == expected && from == source)
                << row.name << " of build " << krnDispatchIndex << ", flip " << flip << ", " << width << " x " << height
                << ", spare " << spare;
        }
    }
}

TEST(Mirror, MovesEachPixelToItsPlace)
{
    const std::vector<TableRow> rows = tableRows("krnMirror");
    ASSERT_EQ(rows.size(), 24u);
    for (const TableRow &row : rows) {
        for (int width = 1; width <= 71; ++width)
            ASSERT_NO_FATAL_FAILURE(holdMirror(row, width, 1 + width % 4, width % 3 == 0 ? 0 : width % 11));
        // Longer than the pieces that change places.
        for (const int width : {1000, 2049, 4099})
            ASSERT_NO_FATAL_FAILURE(holdMirror(row, width, 3, 5));
        ASSERT_NO_FATAL_FAILURE(holdMirror(row, 3, 70, 1));
    }
    krnDispatchIndex = 0;
}

// Images larger than the caches take a way of their own, at any place.
TEST(Mirror, LargeImagesAreLikeSmallOnes)
{
    for (const TableRow &row : tableRows("krnMirror")) {
        const std::string name = row.name;
        if (name != "krnMirror8uC1" && name != "krnMirror8uC3" && name != "krnMirror16uC3")
            continue;
        const int pixelBytes = shapeOf(name).source.pixelBytes(), width = 9001 / pixelBytes;
        for (const int spare : {0, 5})
            ASSERT_NO_FATAL_FAILURE(holdMirror(row, width, 13000000 / (width * pixelBytes), spare));
    }
    krnDispatchIndex = 0;
}

// After pointers, sizes and steps, which all kernels look at first.
TEST(Mirror, RefusesOtherAxesLast)
{
    for (const TableRow &row : tableRows("krnMirror"))
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
            for (const int flip : {-1, 3, 2147483647}) {
                const Bytes source = pattern(128, 1), untouched = pattern(128, 2);
                Bytes from = source, result = untouched;
                RowCall arguments = {{{from.data(), 64}, {}}, {result.data(), 64}, {}, 4, 2, 0, 0, nullptr, flip};
                EXPECT_EQ(row(arguments), KRN_BAD_AXIS) << row.name;
                EXPECT_EQ(result, untouched);
                arguments.destination.step = 0;
                EXPECT_EQ(row(arguments), KRN_BAD_STEP) << row.name;
                arguments.width = 0;
                EXPECT_EQ(row(arguments), KRN_BAD_SIZE) << row.name;
                arguments.destination.data = nullptr;
                EXPECT_EQ(row(arguments), KRN_NULL_POINTER) << row.name;
            }
    krnDispatchIndex = 0;
}

} // namespace
