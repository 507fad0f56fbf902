// Sums, differences, products, squares and fractions of the kernels against exact arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "pointwise_rows.h"

namespace {

using namespace orv;

using Wide = std::int64_t; // holds the product of any two samples

template <class Number> struct Operation {
    const char *stem;
    Number (*of)(Number, Number);
    int rows; // in the table, of all types and layouts
};

// Kernels of two images subtract the first from the second.
const Operation<Wide> integerOperations[] = {
    {"Add", [](Wide a, Wide b) { return a + b; }, 9},      {"Sub", [](Wide a, Wide b) { return b - a; }, 9},
    {"Mul", [](Wide a, Wide b) { return a * b; }, 9},      {"AddC", [](Wide a, Wide c) { return a + c; }, 18},
    {"SubC", [](Wide a, Wide c) { return a - c; }, 18},    {"MulC", [](Wide a, Wide c) { return a * c; }, 18},
    {"SubRevC", [](Wide a, Wide c) { return c - a; }, 10}, {"Sqr", [](Wide a, Wide) { return a * a; }, 12},
};

Wide clamped(Wide value, Wide bottom, Wide top)
{
    return value < bottom ? bottom : value > top ? top : value;
}

// The number of units nearest to the value, the even one of two.
Wide nearestMultiple(Wide value, Wide unit)
{
    Wide below = value / unit, rest = value % unit;
    if (rest < 0) {
        --below;
        rest += unit;
    }
    const Wide toNext = unit - rest;
    return below + (rest > toNext || (rest == toNext && below % 2 != 0));
}

// The value divided by 2 to the power of the scale, within the range.
Wide scaled(Wide value, int scale, Wide bottom, Wide top)
{
    if (scale > 62)
        return 0; // a half at the most, which is nearest to an even 0 too
    if (scale > 0)
        return clamped(nearestMultiple(value, Wide{1} << scale), bottom, top);
    for (int doubled = 0; doubled > scale && value != 0 && value >= bottom && value <= top; --doubled)
        value *= 2;
    return clamped(value, bottom, top);
}

template <class Sample> Sample scaled(Wide value, int scale)
{
    return static_cast<Sample>(
        scaled(value, scale, std::numeric_limits<Sample>::min(), std::numeric_limits<Sample>::max()));
}

// Beyond these scales nothing is left of a result, or nothing but its sign.
struct Limits {
    const char *start, *type; // of the stem
    int upper, lower;
};
const Limits limits[] = {
    {"Add", "8u", 9, -7},    {"Sub", "8u", 8, -7},    {"Mul", "8u", 16, -7},   {"Add", "16s", 16, -15},
    {"Sub", "16s", 16, -15}, {"Mul", "16s", 30, -14}, {"Add", "32s", 32, -30}, {"Sub", "32s", 32, -30},
    {"Mul", "32s", 62, -31}, {"Sqr", "8u", 16, -7},   {"Sqr", "16u", 32, -15}, {"Sqr", "16s", 30, -14},
};

std::vector<int> scalesOf(const PointwiseRow &row)
{
    const auto found = std::find_if(std::begin(limits), std::end(limits), [&](const Limits &l) {
        return startsWith(row.stem, l.start) && row.type == l.type;
    });
    std::set<int> scales = {0,  1,  2,  3,  5,  -1, -2,  -3,  INT_MIN, INT_MIN + 1, INT_MAX,
                            31, 32, 33, 63, 64, 65, -32, -33, -63,     -64,         -65};
    if (found != std::end(limits))
        for (int beside = -1; beside <= 1; ++beside) {
            scales.insert(found->upper + beside);
            scales.insert(found->lower + beside);
        }
    return {scales.begin(), scales.end()};
}

// Runs run(row, formula, sample) over all rows of integer arithmetic, where the sample is one of the row's type.
template <class Run> void overIntegerRows(Run run)
{
    for (const Operation<Wide> &operation : integerOperations) {
        int rows = 0;
        for (const PointwiseRow &row : rowsOf(operation.stem))
            if (row.type != "32f") {
                ++rows;
                withSampleOf(row.type, [&](auto sample) {
                    using Sample = decltype(sample);
                    const auto formula = [&](Sample a, Sample b, int scale) {
                        return scaled<Sample>(operation.of(a, b), scale);
                    };
                    run(row, formula, sample);
                });
            }
        EXPECT_EQ(rows, operation.rows) << operation.stem;
    }
}

TEST(IntegerArithmetic, IsExactThenScaledThenSaturated)
{
    overIntegerRows([](const PointwiseRow &row, auto formula, auto sample) {
        const auto numbers = numbersOf<decltype(sample)>();
        EXPECT_TRUE(holdAll(row, numbers, numbers, scalesOf(row), formula));
    });
}

template <class Word> std::vector<Word> allWords()
{
    std::vector<Word> all;
    for (int number = 0; number < 65536; ++number)
        all.push_back(static_cast<Word>(number));
    return all;
}

template <class Word> void testSquares(const char *type)
{
    for (const PointwiseRow &row : rowsOf("Sqr")) {
        if (row.type == type) {
            EXPECT_TRUE(holdAll(row, allWords<Word>(), allWords<Word>(), scalesOf(row),
                                [](Word a, Word, int scale) { return scaled<Word>(Wide{a} * a, scale); }));
        }
    }
}

TEST(IntegerArithmetic, SquaresOfAllWords)
{
    testSquares<std::uint16_t>("16u");
    testSquares<std::int16_t>("16s");
}

struct Case {
    const char *name;
    Wide a, b;
    int scale;
    Wide result;
};

TEST(IntegerArithmetic, NumbersWorkedByHand)
{
    const Case cases[] = {{"krnAdd8uC1", 200, 100, 0, 255},
                          {"krnAdd8uC1", 255, 255, 9, 1},
                          {"krnAdd8uC1", 255, 255, 10, 0},
                          {"krnSub8uC1", 200, 100, 0, 0},
                          {"krnSub8uC1", 100, 200, 0, 100},
                          {"krnSub8uC1", 0, 255, 8, 1},
                          {"krnSub8uC1", 0, 255, 9, 0},
                          {"krnSub8uC1", 5, 4, -20, 0},
                          {"krnMul8uC1", 16, 16, 0, 255},
                          {"krnMul8uC1", 1, 5, 1, 2},
                          {"krnMul8uC1", 1, 7, 1, 4},
                          {"krnMul8uC1", 255, 255, 16, 1},
                          {"krnMul8uC1", 255, 255, 17, 0},
                          {"krnMul8uC1", 1, 1, -7, 128},
                          {"krnMul8uC1", 1, 1, -8, 255},
                          {"krnSub16sC1", 1, 0, 1, 0},
                          {"krnSub16sC1", 3, 0, 1, -2},
                          {"krnAdd16sC1", -32768, -32768, 16, -1},
                          {"krnAdd16sC1", -32768, -32768, 17, 0},
                          {"krnMul16sC1", -32768, -32768, 0, 32767},
                          {"krnMul16sC1", 256, 128, 0, 32767},
                          {"krnMul16sC1", -32768, -32768, 30, 1},
                          {"krnMul16sC1", -32768, -32768, 31, 0},
                          {"krnMul16sC1", -1, 1, -15, -32768},
                          {"krnAdd32sRow", INT_MAX, 1, 0, INT_MAX},
                          {"krnAdd32sRow", INT_MIN, INT_MIN, 32, -1},
                          {"krnAdd32sRow", INT_MIN, INT_MIN, 33, 0},
                          {"krnSub32sRow", INT_MIN, INT_MAX, 33, 0},
                          {"krnMul32sRow", 65536, 65536, 0, INT_MAX},
                          {"krnMul32sRow", -65536, 65536, 0, INT_MIN},
                          {"krnMul32sRow", INT_MIN, INT_MIN, 62, 1},
                          {"krnMul32sRow", INT_MIN, INT_MIN, 63, 0},
                          {"krnSubRevC32sRow", INT_MIN, 1, 0, INT_MAX},
                          {"krnSubRevC32sRow", 3, 10, 0, 7},
                          {"krnSqr16uC1", 256, 0, 0, 65535},
                          {"krnSqr16uC1", 255, 0, 0, 65025},
                          {"krnSqr16sC1", -32768, 0, 0, 32767},
                          {"krnMulC8uC1", 255, 0, INT_MIN, 0},
                          {"krnMulC32sRow", INT_MIN, 0, INT_MIN, 0}};
    int found = 0;
    overIntegerRows([&](const PointwiseRow &row, auto, auto sample) {
        using Sample = decltype(sample);
        for (const Case &c : cases) {
            if (row.name == c.name) {
                ++found;
                const Sample a = static_cast<Sample>(c.a), b = static_cast<Sample>(c.b);
                EXPECT_TRUE(hold<Sample>(row, {33, 1, 0, Place::Apart, c.scale}, Operands<Sample>{{a}, {b}, {b}},
                                         [&](Sample, Sample, int) { return static_cast<Sample>(c.result); }));
            }
        }
    });
    EXPECT_EQ(found, static_cast<int>(std::size(cases)));
}

TEST(Fractions, AreProductsDividedByTheHighestSample)
{
    for (const char *stem : {"MulScale", "MulCScale"}) {
        const std::vector<PointwiseRow> rows = rowsOf(stem);
        EXPECT_EQ(rows.size(), stem[3] == 'C' ? 16u : 8u);
        for (const PointwiseRow &row : rows)
            withSampleOf(row.type, [&](auto sample) {
                using Sample = decltype(sample);
                constexpr int highest = std::numeric_limits<Sample>::max();
                std::vector<Sample> numbers = numbersOf<Sample>();
                for (int factor = 256; factor < highest; ++factor)
                    if (highest % factor == 0)
                        numbers.push_back(static_cast<Sample>(factor)); // whole results of products and of those beside
                EXPECT_TRUE(holdAll(row, numbers, numbers, {0}, [](Sample a, Sample b, int) {
                    return static_cast<Sample>(Wide{a} * b / highest);
                }));
            });
    }
}

// A single float, also where wider registers compute it.
float single(float value)
{
    const volatile float stored = value;
    return stored;
}

TEST(FloatArithmetic, RoundsToSingleAndFollowsTheProcessor)
{
    const Operation<float> operations[] = {
        {"Add", [](float a, float b) { return single(a + b); }, 4},
        {"Sub", [](float a, float b) { return single(b - a); }, 4},
        {"Mul", [](float a, float b) { return single(a * b); }, 4},
        {"AddC", [](float a, float c) { return single(a + c); }, 8},
        {"SubC", [](float a, float c) { return single(a - c); }, 8},
        {"MulC", [](float a, float c) { return single(a * c); }, 8},
        {"SubRevC", [](float a, float c) { return single(c - a); }, 2},
        {"Sqr", [](float a, float) { return single(a * a); }, 4},
    };
    constexpr float infinity = std::numeric_limits<float>::infinity(), none = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> numbers = {0.0f,     -0.0f,  1.0f,    -1.0f,    3.0f,        0.1f,     1e-45f,    -1e-45f,
                                  1.2e-38f, 1e-20f, 3.4e38f, -3.4e38f, 16777216.0f, infinity, -infinity, none};
    std::mt19937 random(3);
    for (int i = 0; i < 100; ++i)
        numbers.push_back(
            std::ldexp(static_cast<float>(static_cast<int>(random())), static_cast<int>(random() % 60) - 60));
    for (const Operation<float> &operation : operations) {
        int rows = 0;
        for (const PointwiseRow &row : rowsOf(operation.stem))
            if (row.type == "32f") {
                ++rows;
                const auto formula = [&](float a, float b, int) { return operation.of(a, b); };
                EXPECT_TRUE(holdAll(row, numbers, numbers, {0}, formula));
            }
        EXPECT_EQ(rows, operation.rows) << operation.stem;
    }
}

TEST(Widening, KeepsBytesAndSaturatesWords)
{
    const std::vector<PointwiseRow> rows = rowsOf("Cvt");
    EXPECT_EQ(rows.size(), 8u);
    const auto bytes = numbersOf<std::uint8_t>();
    const auto words = allWords<std::int16_t>();
    for (const PointwiseRow &row : rows) {
        const ::testing::AssertionResult outcome =
            row.type == "8u"
                ? holdAll<std::uint8_t, std::int16_t>(row, bytes, bytes, {0}, [](Wide byte, Wide, int) { return byte; })
                : holdAll<std::int16_t, std::uint8_t>(row, words, words, {0},
                                                      [](Wide word, Wide, int) { return clamped(word, 0, 255); });
        EXPECT_TRUE(outcome);
    }
}

} // namespace
