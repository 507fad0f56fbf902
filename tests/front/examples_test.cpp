// Results worked out by hand, for the models to be right about them, and what the list of operations cannot say.
#include "front/call.h"
#include "front/operation_entries.h"

namespace front {
namespace {

struct Example {
    PointCall function;
    std::int32_t depth;
    long long a, b, result; // two sources, or one source and a constant
    std::int32_t flip = 0;
};

const Example ofTwoImages[] = {
    {orvAdd, ORV_DEPTH_32S, leastInt, -1, leastInt},
    {orvSubtract, ORV_DEPTH_16S, -32768, 1, -32768},
    {orvSubtract, ORV_DEPTH_32S, 0, leastInt, mostInt},
    {orvMultiply, ORV_DEPTH_32S, -65536, 65536, leastInt},
    {orvMultiplyScale, ORV_DEPTH_8U, 255, 255, 255},
    {orvMultiplyScale, ORV_DEPTH_8U, 127, 2, 0}, // 254, one below full scale
    {orvMultiplyScale, ORV_DEPTH_16U, 65535, 1000, 1000},
    {orvMultiplyScale, ORV_DEPTH_16U, 65534, 1, 0},
};

const Example ofImageAndConstant[] = {
    {orvSquare, ORV_DEPTH_8S, -128, 0, 127},
    {orvSquare, ORV_DEPTH_16S, -32768, 0, 32767},
    {orvAddS, ORV_DEPTH_8U, 255, leastInt, 0},
    {orvAddS, ORV_DEPTH_16S, -10000, 40000, 30000},
    {orvAddS, ORV_DEPTH_16S, 10000, -40000, -30000},
    {orvAddS, ORV_DEPTH_16S, -32768, 65535, 32767},
    {orvAddS, ORV_DEPTH_16S, 32767, -65536, -32768}, // -1 less a rest of -32768
    {orvAddS, ORV_DEPTH_16S, -32768, 70000, -28304}, // -1 less 28303, the low word of -37233
    {orvAddS, ORV_DEPTH_16S, 32767, -70000, 28303},  // -1 and 28304, the low word of -37232
    {orvSubtractS, ORV_DEPTH_16S, 32767, 70000, 28303},
    {orvSubtractS, ORV_DEPTH_16S, -32768, -70000, -28304},
    {orvSubtractS, ORV_DEPTH_8U, 10, 300, 255, -1},
    {orvSubtractS, ORV_DEPTH_16S, -32768, -1, 32766, -1}, // its negative saturates first
    {orvSubtractS, ORV_DEPTH_32S, leastInt, -1, mostInt, -1},
    {orvMultiplyS, ORV_DEPTH_8U, 200, -3, 0},
    {orvMultiplyS, ORV_DEPTH_16S, -1, -40000, 32767},
    {orvMultiplySScale, ORV_DEPTH_8U, 200, -1, 0},
    {orvMultiplySScale, ORV_DEPTH_16U, 40000, 65536, 40000},
    {orvAndS, ORV_DEPTH_16S, -1, 0x10000, 0},
    {orvOrS, ORV_DEPTH_8U, 1, 0x1F0, 0xF1},
    {orvLShiftS, ORV_DEPTH_8S, 64, 1, -128},
    {orvLShiftS, ORV_DEPTH_32S, -1, 32, 0},
    {orvRShiftS, ORV_DEPTH_8S, -128, 9, -1},
    {orvRShiftS, ORV_DEPTH_8S, 127, 9, 0},
    {orvRShiftS, ORV_DEPTH_32S, leastInt, -1, -1}, // the count is unsigned
    {orvSet, ORV_DEPTH_8S, 0, -200, -128},
    {orvSet, ORV_DEPTH_1U, 0, 2, 255},
};

TEST(Examples, Samples)
{
    Random random(31);
    const auto check = [&](const Example &row, bool twoSources) {
        for (const std::int32_t slot : {std::int32_t{0}, Slot::best()}) {
            const Slot build(slot);
            const Form form = {.depth = row.depth, .width = 123, .height = 3}; // long enough for all that kernels do
            TestImage a(form, random), b(form, random), result(form, random);
            a.fill(integerSample(row.depth, row.a));
            b.fill(integerSample(row.depth, row.b));
            OrvImage *const three[] = {&a.header, &b.header, &result.header}, *const inPlace[] = {&a.header, &a.header};
            const Constant constant = {static_cast<std::int32_t>(row.b), 0, row.flip};
            EXPECT_EQ(row.function.run(twoSources ? three : inPlace, constant), ORV_STATUS_OK);
            const TestImage &destination = twoSources ? result : a;
            for (int x = 0; x < 123; ++x)
                EXPECT_EQ(destination.get(x, 2, 0).bits, integerSample(row.depth, row.result).bits)
                    << row.a << ", " << row.b << " at " << x;
        }
    };
    for (const Example &row : ofTwoImages)
        check(row, true);
    for (const Example &row : ofImageAndConstant)
        check(row, false);
}

// One channel of pixels beside a destination in planes is read as a plane: samples on end, from the channel's first.
TEST(Mirror, PixelsBesidePlanesAreReadOnEnd)
{
    Random random(34);
    TestImage source({.channels = 3, .width = 5, .height = 2}, random),
        destination({.order = ORV_DATA_ORDER_PLANE, .width = 5, .height = 2}, random);
    source.setWholeRectangle(3);
    orvMirror(&source.header, &destination.header, 1);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(destination.get(4 - x, y, 0).bits, source.get((2 + x) / 3, y, (2 + x) % 3).bits) << x;
}

// A strip may be delivered before the next one is read only where rows beside each other share no byte.
TEST(Examples, RowsBesideEachOther)
{
    Random random(35);
    Reports reports;
    const Operation copy = operationsWhere([](const Operation &one) { return one.name() == "Copy"; }).front();
    for (std::int32_t distance = -13; distance <= 13; ++distance) {
        const Form form = {.width = 6, .height = 2000, .extraStep = 6};
        const auto memory = std::make_shared<Bytes>(form.reach() + 26);
        for (std::uint8_t &byte : *memory)
            byte = static_cast<std::uint8_t>(random.bits());
        const auto at = [&](std::int32_t start) {
            return std::make_shared<TestImage>(form, memory, static_cast<std::size_t>(start));
        };
        const Call call = {{at(13), at(13 + distance)}, copy.draw(form.depth, random)};
        call.images.back()->setMask(randomMask(form.width, form.height, random));
        call.images.back()->mask()->fill({ORV_DEPTH_1U, 1});
        int written = 0;
        EXPECT_TRUE(runs(copy, call, reports, written)) << distance;
    }
}

// A constant below zero leaves nothing of any byte, so that no byte is read: there are none at this address.
TEST(SubtractSFlipped, ReadsNoBytesForNegativeValues)
{
    Random random(33);
    for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
        for (const std::int32_t channels : {1, 3, 4})
            for (const std::int32_t alpha : {0, channels})
                for (const bool masked : {false, true}) {
                    const Form form = {.channels = channels, .alpha = alpha, .order = order};
                    TestImage source(form, random), destination(form, random);
                    source.header.imageData = reinterpret_cast<std::uint8_t *>(std::uintptr_t{64});
                    if (masked) {
                        destination.setMask(randomMask(8, 8, random));
                        destination.mask()->fill({ORV_DEPTH_1U, 1});
                    }
                    ASSERT_EQ(orvSubtractS(&source.header, &destination.header, -1, 1), ORV_STATUS_OK);
                    const std::int32_t written = channels == 4 && alpha != 0 ? 3 : channels;
                    for (std::int32_t channel = 0; channel < written; ++channel)
                        EXPECT_EQ(destination.get(7, 7, channel).bits, 0u);
                }
}

} // namespace
} // namespace front
