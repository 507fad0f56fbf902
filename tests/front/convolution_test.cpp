// Convolutions by numbers: roundings, anchors, ways of combining, and records as applications make them.
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

namespace front {
namespace {

constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();

// The convolution of an image of one pixel, whose value is the sum, with a kernel of the one coefficient 1.
long long quotient(std::int32_t depth, long long sum, std::int32_t shift, int kernels = 1)
{
    Random random(1);
    TestImage image({.depth = depth, .width = 1, .height = 1}, random);
    image.fill(integerSample(depth, sum));
    const std::int32_t one = 1;
    OrvConvKernel *kernel = orvCreateConvKernel(1, 1, 0, 0, &one, shift);
    OrvConvKernel *const both[] = {kernel, kernel};
    EXPECT_EQ(orvConvolve2D(&image.header, &image.header, both, kernels, kernels > 1 ? ORV_COMBINE_MAX : 99),
              ORV_STATUS_OK);
    orvDeleteConvKernel(kernel);
    return image.get(0, 0, 0).integer();
}

// The same in integers and in floats.
TEST(Convolution, RoundsToNearestTiesToEven)
{
    const struct {
        std::int32_t depth;
        long long sum;
        std::int32_t shift;
        long long result;
    } rows[] = {{ORV_DEPTH_8U, 3, 1, 2},         {ORV_DEPTH_8U, 5, 1, 2},      {ORV_DEPTH_8U, 7, 1, 4},
                {ORV_DEPTH_8U, 6, 2, 2},         {ORV_DEPTH_8U, 10, 2, 2},     {ORV_DEPTH_8U, 11, 2, 3},
                {ORV_DEPTH_8U, 255, 9, 0},       {ORV_DEPTH_8U, 255, 0, 255},  {ORV_DEPTH_8U, 200, 32, 200},
                {ORV_DEPTH_8U, 200, -31, 100},   {ORV_DEPTH_16S, -3, 1, -2},   {ORV_DEPTH_16S, -1, 1, 0},
                {ORV_DEPTH_16S, -5, 1, -2},      {ORV_DEPTH_16S, -7, 2, -2},   {ORV_DEPTH_16S, -10, 2, -2},
                {ORV_DEPTH_16S, -32768, 15, -1}, {ORV_DEPTH_16S, 32767, 15, 1}};
    for (const auto &row : rows)
        for (const int kernels : {1, 2})
            EXPECT_EQ(quotient(row.depth, row.sum, row.shift, kernels), row.result)
                << row.sum << " >> " << row.shift << ", kernels " << kernels;
}

// The coefficients in a field of zeros appear as they were given, around the pixel by the anchor.
TEST(Convolution, ImpulseGivesTheKernel)
{
    const std::int32_t values[] = {1, 2, 3, 4, 5, 6};
    const float floats[] = {1, 2, 3, 4, 5, 6};
    Random random(2);
    for (std::int32_t anchorX = 0; anchorX < 3; ++anchorX)
        for (std::int32_t anchorY = 0; anchorY < 2; ++anchorY)
            for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F}) {
                TestImage source({.depth = depth, .width = 9, .height = 8}, random);
                TestImage destination({.depth = depth, .width = 9, .height = 8}, random);
                source.fill({depth, 0});
                source.set(4, 4, 0, depth == ORV_DEPTH_32F ? realSample(1) : integerSample(depth, 1));
                OrvConvKernel *kernel = orvCreateConvKernel(3, 2, anchorX, anchorY, values, 0);
                OrvConvKernelFP *kernelFP = orvCreateConvKernelFP(3, 2, anchorX, anchorY, floats);
                OrvConvKernel *const kernels[] = {kernel};
                OrvConvKernelFP *const kernelsFP[] = {kernelFP};
                EXPECT_EQ(depth == ORV_DEPTH_32F ? orvConvolve2DFP(&source.header, &destination.header, kernelsFP, 1, 0)
                                                 : orvConvolve2D(&source.header, &destination.header, kernels, 1, 0),
                          ORV_STATUS_OK);
                for (std::int32_t y = 0; y < 8; ++y)
                    for (std::int32_t x = 0; x < 9; ++x) {
                        const std::int32_t column = x - 4 + anchorX, row = y - 4 + anchorY;
                        const bool within = column >= 0 && column < 3 && row >= 0 && row < 2;
                        const double expected = within ? values[3 * row + column] : 0;
                        const Sample actual = destination.get(x, y, 0);
                        EXPECT_EQ(depth == ORV_DEPTH_32F ? actual.real() : double(actual.integer()), expected)
                            << x << "," << y << " depth " << depth;
                    }
                orvDeleteConvKernel(kernel);
                orvDeleteConvKernelFP(kernelFP);
            }
}

TEST(Convolution, CombinesResults)
{
    const struct {
        std::int32_t method;
        long long result;
    } rows[] = {{ORV_COMBINE_SUM, 1},
                {ORV_COMBINE_SUMSQ, 25},
                {ORV_COMBINE_SUMSQROOT, 5},
                {ORV_COMBINE_MAX, 4},
                {ORV_COMBINE_MIN, -3}};
    const std::int32_t weights[] = {4, -6}; // the second halved
    Random random(3);
    for (const auto &row : rows) {
        TestImage image({.depth = ORV_DEPTH_16S}, random);
        image.fill(integerSample(ORV_DEPTH_16S, 1));
        OrvConvKernel *first = orvCreateConvKernel(1, 1, 0, 0, &weights[0], 0);
        OrvConvKernel *second = orvCreateConvKernel(1, 1, 0, 0, &weights[1], 1);
        OrvConvKernel *const kernels[] = {first, second};
        EXPECT_EQ(orvConvolve2D(&image.header, &image.header, kernels, 2, row.method), ORV_STATUS_OK);
        EXPECT_EQ(image.get(5, 5, 0).integer(), row.result) << row.method;
        orvDeleteConvKernel(first);
        orvDeleteConvKernel(second);
    }
}

// Halves of two results make a whole: only their sum is rounded.
TEST(Convolution, OfSeveralIsRoundedOnce)
{
    const std::int32_t one = 1;
    Random random(4);
    TestImage image({}, random);
    image.fill({ORV_DEPTH_8U, 1});
    OrvConvKernel *half = orvCreateConvKernel(1, 1, 0, 0, &one, 1);
    OrvConvKernel *const kernels[] = {half, half};
    EXPECT_EQ(orvConvolve2D(&image.header, &image.header, kernels, 2, ORV_COMBINE_SUM), ORV_STATUS_OK);
    EXPECT_EQ(image.get(3, 3, 0).integer(), 1);
    orvDeleteConvKernel(half);
}

// The sum of 8U samples is of 32 bits, that of 16S samples of 64.
TEST(Convolution, WrapsAroundAt8U)
{
    const std::int32_t values[] = {1 << 30, 1 << 30, 1 << 30, 1 << 30, 7};
    Random random(5);
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_16S}) {
        TestImage image({.depth = depth}, random);
        image.fill(integerSample(depth, 1));
        for (std::int32_t &mode : image.header.BorderMode)
            mode = ORV_BORDER_REPLICATE;
        OrvConvKernel *kernel = orvCreateConvKernel(5, 1, 2, 0, values, 0);
        OrvConvKernel *const kernels[] = {kernel};
        EXPECT_EQ(orvConvolve2D(&image.header, &image.header, kernels, 1, 0), ORV_STATUS_OK);
        EXPECT_EQ(image.get(0, 0, 0).integer(), depth == ORV_DEPTH_8U ? 7 : 32767);
        orvDeleteConvKernel(kernel);
    }
}

// Windows of which no copy of a source with its margins could be had: refused as memory that is exhausted, before a
// coefficient is read.
TEST(Convolution, OfWindowsBeyondAllMemory)
{
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{50000, 50000}, {1 << 16, 1 << 16}, {1 << 30, 1}, {1, 1 << 30}, {mostInt, 2}, {mostInt, mostInt}};
    std::int32_t noCoefficients = 0;
    float noFloats = 0;
    Random random(7);
    Reports reports;
    MemoryWatch watch;
    TestImage image({.width = 20, .height = 20}, random), other({.width = 20, .height = 20}, random);
    TestImage floats({.depth = ORV_DEPTH_32F}, random), otherFloats({.depth = ORV_DEPTH_32F}, random);
    const auto expectStarved = [&](OrvStatus status, const char *function, const char *context, const char *unit) {
        EXPECT_EQ(status, ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(reports.all(), (std::vector<Report>{{ORV_STATUS_NO_MEMORY, function, context, unit}}));
        EXPECT_EQ(watch.live(), 0u);
        reports.clear();
    };
    for (const auto &size : sizes) {
        SCOPED_TRACE(testing::PrintToString(size.columns) + " x " + testing::PrintToString(size.rows));
        OrvConvKernel kernel = {size.columns, size.rows, size.columns / 2, size.rows / 2, &noCoefficients, 0};
        OrvConvKernelFP kernelFP = {size.columns, size.rows, size.columns / 2, size.rows / 2, &noFloats};
        OrvConvKernel *const kernels[] = {&kernel, &kernel};
        OrvConvKernelFP *const kernelsFP[] = {&kernelFP};
        for (const int count : {1, 2})
            expectStarved(orvConvolve2D(&image.header, &other.header, kernels, count, 0), "orvConvolve2D",
                          "Allocation failure", "orvcnv2d");
        expectStarved(orvConvolve2DFP(&floats.header, &otherFloats.header, kernelsFP, 1, 0), "orvConvolve2DFP",
                      "Allocation failure", "orvcnv2d");
        if (size.columns != 1 && size.rows != 1)
            continue;
        const bool row = size.rows == 1;
        expectStarved(orvConvolveSep2D(&image.header, &other.header, row ? &kernel : nullptr, row ? nullptr : &kernel),
                      "orvConvolveSep2D", "Not enough memory", "orvCSep2");
        expectStarved(orvConvolveSep2DFP(&floats.header, &otherFloats.header, row ? &kernelFP : nullptr,
                                         row ? nullptr : &kernelFP),
                      "orvConvolveSep2DFP", "Not enough memory", "orvCSep2");
    }
}

// Several windows together: what one product too many would make of their sizes.
TEST(Convolution, OfSizesThatTogetherPassAllNumbers)
{
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{0x1f000000, 0x1fffffff}, {0x10000000, 0x70000000}, {0x40000000, 0x70000001}};
    std::int32_t noCoefficients = 0;
    Random random(9);
    Reports reports;
    for (const auto &[columns, rows] : sizes)
        for (const std::int32_t channels : {1, 4})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE}) {
                TestImage image({.depth = ORV_DEPTH_8S, .channels = channels, .order = order}, random);
                TestImage other({.depth = ORV_DEPTH_8S, .channels = channels, .order = order}, random);
                OrvConvKernel wide = {columns, 1, 0, 0, &noCoefficients, 0};
                OrvConvKernel high = {1, rows, 0, rows - 1, &noCoefficients, 0}, low = high;
                low.anchorY = 0;
                OrvConvKernel *const kernels[] = {&wide, &high, &low};
                for (const int count : {2, 3})
                    for (TestImage *destination : {&image, &other})
                        EXPECT_EQ(orvConvolve2D(&image.header, &destination->header, kernels, count, 0),
                                  ORV_STATUS_NO_MEMORY);
            }
}

// A record that lost its coefficients, alone or among others.
TEST(Convolution, WithoutCoefficientsWritesNothing)
{
    std::int32_t one = 1;
    Random random(8);
    Reports reports;
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_32S, ORV_DEPTH_32F}) {
        TestImage image({.depth = depth}, random);
        const Bytes before = *image.memory();
        OrvConvKernel good = {1, 1, 0, 0, &one, 0}, lost = {1, 1, 0, 0, nullptr, 0};
        OrvConvKernelFP lostFloats = {1, 1, 0, 0, nullptr};
        OrvConvKernel *const kernels[] = {&lost, &good, &lost};
        OrvConvKernelFP *const kernelsFP[] = {&lostFloats};
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

// Both vectors: the quarters of the columns, 0.5, 2.5 and 0.5, are not rounded before those of the row.
TEST(SeparableConvolution, IsRoundedOnce)
{
    const std::int32_t values[] = {1, 2, 1};
    const long long samples[] = {2, 10, 2, 0, 0, 0, 0, 0, 0};
    Random random(6);
    TestImage source({.width = 3, .height = 3}, random), destination({.width = 3, .height = 3}, random);
    for (std::int32_t i = 0; i < 9; ++i)
        source.set(i % 3, i / 3, 0, integerSample(ORV_DEPTH_8U, samples[i]));
    OrvConvKernel *row = orvCreateConvKernel(3, 1, 1, 0, values, 2);
    OrvConvKernel *column = orvCreateConvKernel(1, 3, 0, 1, values, 2);
    EXPECT_EQ(orvConvolveSep2D(&source.header, &destination.header, row, column), ORV_STATUS_OK);
    EXPECT_EQ(destination.get(1, 1, 0).integer(), 2); // 24 / 16; 0, 2 and 0 would make 1
    orvDeleteConvKernel(row);
    orvDeleteConvKernel(column);
}

} // namespace
} // namespace front
