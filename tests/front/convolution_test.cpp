// Convolutions by numbers: anchors, one rounding, windows beyond all memory, and records without coefficients.
#include "front/convolution_calls.h"
#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

#include <gtest/gtest.h>

namespace front {
namespace {

using Ints = Window<std::int32_t>;

// The coefficients in a field of zeros appear as they were given, around the pixel by the anchor.
TEST(Convolution, ImpulseGivesTheKernel)
{
    const std::int32_t values[] = {1, 2, 3, 4, 5, 6};
    Random random(2);
    for (std::int32_t anchor = 0; anchor < 6; ++anchor) {
        const std::int32_t anchorX = anchor % 3, anchorY = anchor / 3;
        TestImage source({.width = 9, .height = 8}, random), destination({.width = 9, .height = 8}, random);
        source.fill({ORV_DEPTH_8U, 0});
        source.set(4, 4, 0, {ORV_DEPTH_8U, 1});
        OrvConvKernel *const kernel = orvCreateConvKernel(3, 2, anchorX, anchorY, values, 0);
        EXPECT_EQ(orvConvolve2D(&source.header, &destination.header, &kernel, 1, 0), ORV_STATUS_OK);
        for (std::int32_t y = 0; y < 8; ++y)
            for (std::int32_t x = 0; x < 9; ++x) {
                const std::int32_t column = x - 4 + anchorX, row = y - 4 + anchorY;
                const bool within = column >= 0 && column < 3 && row >= 0 && row < 2;
                EXPECT_EQ(destination.get(x, y, 0).integer(), within ? values[3 * row + column] : 0) << x << "," << y;
            }
        orvDeleteConvKernel(kernel);
    }
}

// Both vectors: the quarters of the columns, 0.5, 2.5 and 0.5, are not rounded before those of the row.
TEST(SeparableConvolution, IsRoundedOnce)
{
    const long long samples[] = {2, 10, 2, 0, 0, 0, 0, 0, 0};
    Random random(6);
    TestImage source({.width = 3, .height = 3}, random), destination({.width = 3, .height = 3}, random);
    for (std::int32_t i = 0; i < 9; ++i)
        source.set(i % 3, i / 3, 0, integerSample(ORV_DEPTH_8U, samples[i]));
    Ints row = {3, 1, 1, 0, 2, {1, 2, 1}}, column = {1, 3, 0, 1, 2, {1, 2, 1}};
    const OrvConvKernel x = row.record(), y = column.record();
    EXPECT_EQ(orvConvolveSep2D(&source.header, &destination.header, &x, &y), ORV_STATUS_OK);
    EXPECT_EQ(destination.get(1, 1, 0).integer(), 2); // 24 / 16; 0, 2 and 0 would make 1
}

// Windows of which no copy of a source with its margins could be had: refused as memory that is exhausted, before a
// coefficient is read. One is all that they have.
template <class Value> Window<Value> large(std::int32_t columns, std::int32_t rows, std::int32_t anchorY)
{
    return {columns, rows, columns / 2, anchorY, 0, {Value(0)}};
}

class LargeWindows : public testing::Test {
protected:
    template <class Value> void expectStarved(const Form &form, std::vector<Window<Value>> windows)
    {
        const char *function = std::is_same_v<Value, float> ? "orvConvolve2DFP" : "orvConvolve2D";
        TestImage image(form, random), other(form, random);
        for (TestImage *destination : {&image, &other}) {
            MemoryWatch watch;
            reports.clear();
            EXPECT_EQ(convolve(&image.header, &destination->header, windows, ORV_COMBINE_SUM), ORV_STATUS_NO_MEMORY);
            EXPECT_EQ(reports.all(), (std::vector<Report>{{-4, function, "Allocation failure", "orvcnv2d"}}));
            EXPECT_EQ(watch.live(), 0u);
        }
    }

    Random random{7};
    Reports reports;
};

TEST_F(LargeWindows, BeyondAllMemory)
{
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{50000, 50000}, {1 << 16, 1 << 16}, {1 << 30, 1}, {1, 1 << 30}, {mostInt, 2}, {mostInt, mostInt}};
    for (const auto &[columns, rows] : sizes) {
        SCOPED_TRACE(testing::PrintToString(columns) + " x " + testing::PrintToString(rows));
        Ints window = large<std::int32_t>(columns, rows, rows / 2);
        expectStarved<std::int32_t>({}, {window});
        expectStarved<std::int32_t>({}, {window, window});
        expectStarved<float>({.depth = ORV_DEPTH_32F}, {large<float>(columns, rows, rows / 2)});
        if (columns != 1 && rows != 1)
            continue;
        const OrvConvKernel vector = window.record();
        TestImage image({}, random), other({}, random);
        reports.clear();
        EXPECT_EQ(orvConvolveSep2D(&image.header, &other.header, rows == 1 ? &vector : nullptr,
                                   rows == 1 ? nullptr : &vector),
                  ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(reports.all(), (std::vector<Report>{{-4, "orvConvolveSep2D", "Not enough memory", "orvCSep2"}}));
    }
}

// Several windows together, whose sizes multiply to more than 64 bits.
TEST_F(LargeWindows, TogetherBeyondAllNumbers)
{
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{0x1f000000, 0x1fffffff}, {0x10000000, 0x70000000}, {0x40000000, 0x70000001}};
    for (const auto &[columns, rows] : sizes)
        for (const std::int32_t channels : {1, 4})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE}) {
                const Form form = {.depth = ORV_DEPTH_8S, .channels = channels, .order = order};
                const Ints wide = {columns, 1, columns - 1, 0, 0, {0}}, high = large<std::int32_t>(1, rows, 0);
                const Ints low = large<std::int32_t>(1, rows, rows - 1);
                expectStarved<std::int32_t>(form, {wide, high});
                expectStarved<std::int32_t>(form, {wide, high, low});
            }
}

// A record that lost its coefficients, alone or among others.
TEST(Convolution, WithoutCoefficientsWritesNothing)
{
    std::int32_t one = 1;
    OrvConvKernel good = {1, 1, 0, 0, &one, 0}, lost = {1, 1, 0, 0, nullptr, 0};
    OrvConvKernelFP lostFloats = {1, 1, 0, 0, nullptr};
    OrvConvKernel *const kernels[] = {&lost, &good, &lost};
    OrvConvKernelFP *const kernelsFP[] = {&lostFloats};
    Random random(8);
    Reports reports;
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_32S, ORV_DEPTH_32F}) {
        TestImage image({.depth = depth}, random);
        const Bytes before = *image.memory();
        if (depth == ORV_DEPTH_32F) {
            EXPECT_EQ(orvConvolve2DFP(&image.header, &image.header, kernelsFP, 1, 0), ORV_STATUS_OK);
        } else {
            EXPECT_EQ(orvConvolve2D(&image.header, &image.header, kernels, 1, 0), ORV_STATUS_OK);
            EXPECT_EQ(orvConvolve2D(&image.header, &image.header, kernels + 1, 2, 0), ORV_STATUS_OK);
        }
        EXPECT_EQ(*image.memory(), before);
    }
    EXPECT_TRUE(reports.all().empty());
}

} // namespace
} // namespace front
