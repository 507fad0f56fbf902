// Arithmetic, logic and shifts by numbers worked out by hand, and what the list of operations cannot say of them.
#include "front/pointwise_call.h"

namespace front {
namespace {

using TwoImages = OrvStatus (*)(const OrvImage *, const OrvImage *, OrvImage *);
using ImageAndConstant = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t);

// Rows long enough for all that a kernel does to them.
Form example(std::int32_t depth)
{
    return {.depth = depth, .channels = 3, .width = 41, .height = 3};
}

void expectFilled(const TestImage &image, std::uint32_t bits)
{
    const Form &form = image.form;
    for (std::int32_t y = 0; y < form.height; ++y)
        for (std::int32_t x = 0; x < form.width; ++x)
            for (std::int32_t channel = 0; channel < form.channels; ++channel)
                ASSERT_EQ(image.get(x, y, channel).bits, bits) << x << "," << y << "," << channel << " of " << image;
}

TEST(ArithmeticExamples, TwoImages)
{
    const struct {
        TwoImages function;
        std::int32_t depth;
        long long a, b, result;
    } rows[] = {
        {orvAdd, ORV_DEPTH_8U, 200, 100, 255},
        {orvAdd, ORV_DEPTH_32S, 2147483647, 1, 2147483647},
        {orvAdd, ORV_DEPTH_32S, -2147483648LL, -1, -2147483648LL},
        {orvSubtract, ORV_DEPTH_8U, 100, 200, 0},
        {orvSubtract, ORV_DEPTH_16S, -32768, 1, -32768},
        {orvSubtract, ORV_DEPTH_16S, 5, 7, -2},
        {orvSubtract, ORV_DEPTH_32S, 0, -2147483648LL, 2147483647},
        {orvMultiply, ORV_DEPTH_8U, 16, 16, 255},
        {orvMultiply, ORV_DEPTH_16S, -32768, -32768, 32767},
        {orvMultiply, ORV_DEPTH_16S, 256, 128, 32767},
        {orvMultiply, ORV_DEPTH_32S, 65536, 65536, 2147483647},
        {orvMultiply, ORV_DEPTH_32S, -65536, 65536, -2147483648LL},
        {orvMultiplyScale, ORV_DEPTH_8U, 255, 255, 255},
        {orvMultiplyScale, ORV_DEPTH_8U, 128, 255, 128},
        {orvMultiplyScale, ORV_DEPTH_8U, 128, 128, 64},
        {orvMultiplyScale, ORV_DEPTH_8U, 1, 1, 0},
        {orvMultiplyScale, ORV_DEPTH_8U, 0, 255, 0},
        {orvMultiplyScale, ORV_DEPTH_8U, 127, 2, 0}, // 254, one below full scale
        {orvMultiplyScale, ORV_DEPTH_16U, 65535, 65535, 65535},
        {orvMultiplyScale, ORV_DEPTH_16U, 65535, 1000, 1000},
        {orvMultiplyScale, ORV_DEPTH_16U, 65534, 1, 0},
        {orvAnd, ORV_DEPTH_8S, -1, 0x35, 0x35},
        {orvOr, ORV_DEPTH_16U, 0xF000, 0x00F1, 0xF0F1},
        {orvXor, ORV_DEPTH_32S, -1, 0x0F0F0F0F, -252645136},
    };
    Random random(31);
    for (const std::int32_t slot : {std::int32_t{0}, Slot::best()})
        for (const auto &row : rows) {
            const Slot build(slot);
            TestImage a(example(row.depth), random), b(example(row.depth), random), result(example(row.depth), random);
            a.fill(integerSample(row.depth, row.a));
            b.fill(integerSample(row.depth, row.b));
            EXPECT_EQ(row.function(&a.header, &b.header, &result.header), ORV_STATUS_OK);
            SCOPED_TRACE("row " + std::to_string(&row - rows));
            expectFilled(result, integerSample(row.depth, row.result).bits);
        }
}

OrvStatus square(const OrvImage *source, OrvImage *destination, std::int32_t)
{
    return orvSquare(source, destination);
}

OrvStatus subtract(const OrvImage *source, OrvImage *destination, std::int32_t value)
{
    return orvSubtractS(source, destination, value, 0);
}

OrvStatus subtractFrom(const OrvImage *source, OrvImage *destination, std::int32_t value)
{
    return orvSubtractS(source, destination, value, -1);
}

OrvStatus complement(const OrvImage *source, OrvImage *destination, std::int32_t)
{
    return orvNot(source, destination);
}

OrvStatus left(const OrvImage *source, OrvImage *destination, std::int32_t count)
{
    return orvLShiftS(source, destination, static_cast<unsigned int>(count));
}

OrvStatus right(const OrvImage *source, OrvImage *destination, std::int32_t count)
{
    return orvRShiftS(source, destination, static_cast<unsigned int>(count));
}

TEST(ArithmeticExamples, ImageAndConstant)
{
    constexpr std::int32_t leastInt = -2147483647 - 1;
    const struct {
        ImageAndConstant function;
        std::int32_t depth;
        long long source;
        std::int32_t value;
        long long result;
    } rows[] = {
        {square, ORV_DEPTH_8U, 15, 0, 225},
        {square, ORV_DEPTH_8U, 16, 0, 255},
        {square, ORV_DEPTH_8S, -128, 0, 127},
        {square, ORV_DEPTH_8S, 12, 0, 127},
        {square, ORV_DEPTH_8S, -11, 0, 121},
        {square, ORV_DEPTH_16U, 256, 0, 65535},
        {square, ORV_DEPTH_16U, 255, 0, 65025},
        {square, ORV_DEPTH_16S, -32768, 0, 32767},
        {orvAddS, ORV_DEPTH_8U, 255, leastInt, 0},
        {orvAddS, ORV_DEPTH_16S, -10000, 40000, 30000},
        {orvAddS, ORV_DEPTH_16S, 0, 40000, 32767},
        {orvAddS, ORV_DEPTH_16S, 10000, -40000, -30000},
        {orvAddS, ORV_DEPTH_16S, -32768, 65535, 32767},
        {orvAddS, ORV_DEPTH_16S, 32767, -65536, -32768}, // -1 less a rest of -32768
        {orvAddS, ORV_DEPTH_16S, -32768, 70000, -28304}, // -1 less 28303, the low word of -37233
        {orvAddS, ORV_DEPTH_16S, 32767, -70000, 28303},  // -1 and 28304, the low word of -37232
        {subtract, ORV_DEPTH_16S, 32767, 70000, 28303},
        {subtract, ORV_DEPTH_16S, -32768, -70000, -28304},
        {subtractFrom, ORV_DEPTH_8U, 77, -1, 0},
        {subtractFrom, ORV_DEPTH_8U, 10, 300, 255},
        {subtractFrom, ORV_DEPTH_8U, 100, 300, 200},
        {subtractFrom, ORV_DEPTH_16U, 65535, 200000, 65535},
        {subtractFrom, ORV_DEPTH_16S, -32768, -1, 32766}, // its negative saturates first
        {subtractFrom, ORV_DEPTH_32S, leastInt, -1, 2147483647},
        {orvMultiplyS, ORV_DEPTH_8U, 200, -3, 0},
        {orvMultiplyS, ORV_DEPTH_8U, 1, 300, 255},
        {orvMultiplyS, ORV_DEPTH_16S, 1, 40000, 32767},
        {orvMultiplyS, ORV_DEPTH_16S, -1, -40000, 32767},
        {orvMultiplyS, ORV_DEPTH_32S, leastInt, 0, 0},
        {orvMultiplySScale, ORV_DEPTH_8U, 200, -1, 0},
        {orvMultiplySScale, ORV_DEPTH_8U, 200, 1000, 200},
        {orvMultiplySScale, ORV_DEPTH_16U, 40000, 65536, 40000},
        {orvAndS, ORV_DEPTH_16S, -1, 0x10000, 0},
        {orvOrS, ORV_DEPTH_8U, 1, 0x1F0, 0xF1},
        {complement, ORV_DEPTH_8S, -1, 0, 0},
        {complement, ORV_DEPTH_16U, 0, 0, 65535},
        {complement, ORV_DEPTH_32S, 0, 0, -1},
        {left, ORV_DEPTH_8U, 200, 1, 144},
        {left, ORV_DEPTH_8S, 64, 1, -128},
        {left, ORV_DEPTH_8U, 255, 8, 0},
        {left, ORV_DEPTH_32S, 1, 31, leastInt},
        {left, ORV_DEPTH_32S, -1, 32, 0},
        {right, ORV_DEPTH_8S, -128, 9, -1},
        {right, ORV_DEPTH_8S, 127, 9, 0},
        {right, ORV_DEPTH_16S, -5, 100, -1},
        {right, ORV_DEPTH_16S, 5, 100, 0},
        {right, ORV_DEPTH_8U, 255, 8, 0},
        {right, ORV_DEPTH_32S, leastInt, -1, -1}, // the count is unsigned
    };
    Random random(32);
    for (const std::int32_t slot : {std::int32_t{0}, Slot::best()})
        for (const auto &row : rows)
            for (const bool inPlace : {false, true}) {
                const Slot build(slot);
                TestImage source(example(row.depth), random), other(example(row.depth), random);
                TestImage &result = inPlace ? source : other;
                source.fill(integerSample(row.depth, row.source));
                EXPECT_EQ(row.function(&source.header, &result.header, row.value), ORV_STATUS_OK);
                SCOPED_TRACE("row " + std::to_string(&row - rows));
                expectFilled(result, integerSample(row.depth, row.result).bits);
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

class WholeSamples : public testing::TestWithParam<Operation> {};

// Rows whose step is no multiple of their samples are walked with the step rounded down.
TEST_P(WholeSamples, StepsAreRoundedDown)
{
    const Operation &operation = GetParam();
    Random random(34);
    for (const std::int32_t depth : operation.depths)
        for (const std::int32_t channels : {1, 3})
            for (std::int32_t more = 1; more < 2 * bytesOf(depth); ++more) {
                const Form form = {.depth = depth, .channels = channels, .width = 7, .height = 9, .extraStep = more};
                PointwiseCall odd, whole;
                odd.constant = whole.constant = random.oneOf(operation.constants);
                for (int i = 0; i <= operation.sources; ++i) {
                    odd.images.push_back(std::make_shared<TestImage>(form, random));
                    const TestImage &image = *odd.images.back();
                    const auto memory = std::make_shared<Bytes>(*image.memory());
                    whole.images.push_back(std::make_shared<TestImage>(form, memory, image.start()));
                    whole.images.back()->header.widthStep = form.widthStep() / bytesOf(depth) * bytesOf(depth);
                }
                EXPECT_EQ(odd.run(operation), ORV_STATUS_OK);
                EXPECT_EQ(whole.run(operation), ORV_STATUS_OK);
                EXPECT_EQ(*odd.destination().memory(), *whole.destination().memory()) << odd;
            }
}

INSTANTIATE_TEST_SUITE_P(Some, WholeSamples, testing::ValuesIn(operationsWith(&Operation::stepsOfWholeSamples, true)),
                         nameOf);

} // namespace
} // namespace front
