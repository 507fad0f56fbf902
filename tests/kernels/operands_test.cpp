// Operands that show faults, all with all; numbers worked by hand; and the smallest and largest samples.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "trial.h"

namespace {

using namespace orv;

using Numbers = std::vector<double>;

// A row of so many numbers for each of the second operands. Two images meet in a rectangle of both.
testing::AssertionResult holdPairs(const Row &row, const Numbers &firsts, const Numbers &seconds, int mode)
{
    Random random(1);
    const int columns = static_cast<int>(firsts.size()), rows = static_cast<int>(seconds.size());
    const Formula formula = formulaOf(row);
    testing::AssertionResult outcome = testing::AssertionSuccess();
    std::size_t next = 0;
    const auto first = [&] { return firsts[next++ % firsts.size()]; };
    if (row.takes(SECOND)) {
        const bool one = row.takes(ONE_ROW);
        Trial trial(row, {one ? columns * rows : columns, one ? 1 : rows}, random);
        trial.first.fill(first);
        next = 0;
        trial.second.fill([&] { return seconds[next++ / firsts.size()]; });
        trial.mode = mode;
        return hold(trial, formula);
    }
    Trial trial(row, {columns}, random);
    trial.first.fill(first);
    trial.mode = mode;
    for (const double second : seconds) {
        trial.constants.fill(second);
        if (outcome)
            outcome = hold(trial, formula);
    }
    return outcome;
}

// What the row reads, with all words where an image alone is read.
Numbers firstsOf(const Row &row)
{
    Numbers numbers = numbersOf(row.source);
    if (row.takes(SECOND | CONSTANT))
        return numbers;
    if (row.source.bytes == 2)
        for (double word = row.source.lowest; word <= row.source.highest; ++word)
            numbers.push_back(word);
    if (row.takes(ROUNDING)) {
        Random random(7);
        const double range = row.destination.highest - row.destination.lowest;
        for (int i = 0; i < 2000; ++i) {
            numbers.push_back(row.destination.lowest + range * (1.25 * random() / 4294967296.0 - 0.125));
            numbers.push_back(static_cast<int>(random() % 2048) / 4.0 - 256); // many ties
        }
    }
    return numbers;
}

Numbers secondsOf(const Row &row)
{
    if (row.shifts()) {
        Numbers counts = {INT_MAX, INT_MIN, -1};
        for (int count = 0; count <= 40; ++count)
            counts.push_back(count);
        return counts;
    }
    if (!row.takes(SECOND | CONSTANT))
        return {0};
    Numbers numbers = numbersOf(row.source);
    if (row.is("MulScale") || row.is("MulCScale"))
        for (int factor = 256; factor < 65535 && row.source.bytes == 2; ++factor)
            if (65535 % factor == 0)
                numbers.push_back(factor); // whole results of products and of those beside
    return numbers;
}

// Layouts and forms in place are left to the walk.
TEST(Operands, AllWithAll)
{
    int rows = 0;
    for (const Row &row : allRows()) {
        const bool moves = row.is("Copy") || row.is("Fill") || row.is("Jaehne") || row.windowed() ||
                           row.takes(FLIP | RESULTS | TABLE | LEVEL);
        if (row.run == nullptr || row.plain || row.layout.source + row.layout.destination != 2 || moves ||
            row.takes(IN_PLACE | MASK))
            continue;
        ++rows;
        const std::vector<int> modes = row.takes(SCALE)      ? scales()
                                       : row.takes(ROUNDING) ? std::vector<int>{0, 1, 2, -7}
                                                             : std::vector<int>{0};
        for (const int mode : modes)
            ASSERT_TRUE(holdPairs(row, firstsOf(row), secondsOf(row), mode));
    }
    EXPECT_GT(rows, 70);
}

// Two samples of a row, or a sample and a constant. Those of convolutions are coefficients, and their modes divisors.
TEST(Operands, NumbersWorkedByHand)
{
    struct Worked {
        double a, b;
        int mode;
        double result;
    };
    const std::pair<const char *, std::vector<Worked>> cases[] = {
        {"krnAdd8uC1", {{200, 100, 0, 255}, {255, 255, 9, 1}, {255, 255, 10, 0}}},
        {"krnSub8uC1", {{200, 100, 0, 0}, {100, 200, 0, 100}, {0, 255, 8, 1}, {5, 4, -20, 0}}},
        {"krnMul8uC1", {{1, 5, 1, 2}, {1, 7, 1, 4}, {255, 255, 16, 1}, {255, 255, 17, 0}, {1, 1, -7, 128}}},
        {"krnAdd16sC1", {{-32768, -32768, 16, -1}, {-32768, -32768, 17, 0}}},
        {"krnSub16sC1", {{1, 0, 1, 0}, {3, 0, 1, -2}}},
        {"krnMul16sC1", {{-32768, -32768, 0, 32767}, {-32768, -32768, 30, 1}, {-1, 1, -15, -32768}}},
        {"krnAdd32sRow", {{INT_MAX, 1, 0, INT_MAX}, {INT_MIN, INT_MIN, 32, -1}, {INT_MIN, INT_MIN, 33, 0}}},
        {"krnMul32sRow", {{65536, 65536, 0, INT_MAX}, {INT_MIN, INT_MIN, 62, 1}, {INT_MIN, INT_MIN, 63, 0}}},
        {"krnSubRevC32sRow", {{INT_MIN, 1, 0, INT_MAX}, {3, 10, 0, 7}}},
        {"krnMulC32sRow", {{INT_MIN, 0, INT_MIN, 0}}},
        {"krnSqr16uC1", {{255, 0, 0, 65025}, {256, 0, 0, 65535}}},
        {"krnMulScale8uC1", {{128, 255, 0, 128}, {254, 254, 0, 253}}},
        {"krnAbs8sC1", {{-128, 0, 0, 127}}},
        {"krnAbs32sC1", {{INT_MIN, 0, 0, INT_MAX}}},
        {"krnLShiftC8uC1", {{129, 1, 0, 2}}},
        {"krnRShiftC8sC1", {{-3, 1, 0, -2}}},
        {"krnConvert32f8uC1", {{2.5, 0, 0, 2}, {2.5, 0, 1, 2}, {2.5, 0, 2, 3}}},
        {"krnConvert32f32sC1", {{2147483648.0, 0, 0, INT_MAX}, {-0.5, 0, 2, -1}}},
        {"krnConvolve8uC1", {{1, 5, 2, 2}, {1, 9, 6, 2}, {1, 11, 3, 4}, {1, -3, 2, 0}, {1, -5, -2, 2}}},
        {"krnConvolve16sC1", {{1, -3, 2, -2}, {1, -9, 6, -2}, {1, 100000, 3, 32767}, {1, -5, -2, 2}}},
    };
    Random random(1);
    for (const auto &[name, rows] : cases)
        for (const auto &[a, b, mode, result] : rows) {
            Trial trial(rowNamed(name), {33}, random);
            trial.first.fill([first = a] { return first; });
            trial.second.fill([second = b] { return second; });
            trial.constants.fill(b);
            trial.coefficients.assign(1, b);
            (trial.row.takes(WINDOW) ? trial.divisor : trial.mode) = mode;
            EXPECT_TRUE(hold(trial, [expected = result](const Trial &, int, int) { return expected; }));
        }
}

// Not-a-numbers in all places, and zeros of both signs as the extremes.
TEST(Operands, ExtremesOfZerosAndNotANumbers)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const Numbers sets[] = {{0.0, -0.0},       {0.0, -0.0, 1.0},        {0.0, -0.0, -1.0},
                            {none, 0.0, -0.0}, {none, -1.0, 1.0, -0.0}, {none}};
    Random random(1);
    for (const Row &row : allRows())
        for (int i = 0; i < 500 && row.is("MinMax"); ++i) {
            Trial trial(row, {1 + static_cast<int>(random() % 70), 1 + static_cast<int>(random() % 3)}, random);
            const Numbers &numbers = sets[random() % std::size(sets)];
            trial.first.fill([&] { return numbers[random() % numbers.size()]; });
            ASSERT_TRUE(hold(trial, formulaOf(row)));
        }
}

// Samples at each level, beside it and as far from it as they get; values of all kinds. Bits above a sample's are cut.
TEST(Operands, ThresholdsAtEachLevel)
{
    Random random(2);
    for (const Row &row : allRows())
        for (const double level : row.takes(LEVEL) && !row.takes(IN_PLACE) ? numbersOf(row.source) : Numbers()) {
            Trial trial(row, {200}, random);
            const auto drawValue = [&] {
                const Numbers &numbers = numbersOf(row.destination);
                const double any = numbers[random() % numbers.size()];
                return static_cast<int>(random() % 3 == 0 ? any : static_cast<int>(random()));
            };
            const unsigned above = random() % 2 == 0 ? static_cast<unsigned>(random()) << 8 * row.source.bytes : 0;
            trial.level = static_cast<int>(level) ^ static_cast<int>(above);
            trial.low = drawValue();
            trial.high = drawValue();
            const double far[] = {row.source.lowest, row.source.highest, -1,           0, level - 128,
                                  level + 128,       level - 32768,      level + 32768};
            trial.first.fill([&] {
                const double sample =
                    random() % 3 == 0 ? far[random() % std::size(far)] : level + static_cast<double>(random() % 5) - 2;
                return std::clamp(sample, row.source.lowest, row.source.highest);
            });
            ASSERT_TRUE(hold(trial, formulaOf(row)));
        }
}

// Where doubles hold all sums the order does not show, and rows longer than a block come to what short ones do. The
// sums are the largest there are.
TEST(Operands, NormsOfWholeNumbersAreExact)
{
    Random random(3);
    for (const Row &row : allRows())
        for (int i = 0; i < 6 && row.isNorm(); ++i) {
            const int width = i == 0 ? 80000 / row.layout.source : 1 + static_cast<int>(random() % 300);
            Trial trial(row, {width, i < 2 ? 1 : 1 + static_cast<int>(random() % 4)}, random);
            const bool isFloat = row.source.isFloat(), ends = i % 2 == 0;
            const auto next = [&](bool low) {
                return isFloat ? static_cast<int>(random() % 4001 - 2000) / 4.0
                       : ends  ? (low ? row.source.lowest : row.source.highest)
                               : row.source.lowest + static_cast<double>(random() % (1u << 8 * row.source.bytes));
            };
            trial.first.fill([&] { return next(true); });
            trial.second.fill([&] { return next(false); });
            ASSERT_TRUE(hold(trial, formulaOf(row, true)));
        }
}

// One infinity or not-a-number among all samples decides. The smallest and the largest floats have sums that are exact.
TEST(Operands, NormsOfFloatsAtTheirLimits)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN(),
                     infinity = std::numeric_limits<double>::infinity();
    const std::pair<Numbers, Numbers> sets[] = {
        {{1.0, -2.0, 0.0}, {infinity}},         {{0.0}, {-infinity}},      {{1.0, 0.5}, {none}}, {{0.0, -0.0}, {none}},
        {{0x1p-149, -0x3p-149, 0x1p-127}, {0}}, {{0x1p127, -0x1p127}, {0}}};
    Random random(4);
    for (const Row &row : allRows())
        for (int i = 0; i < 60 && row.isNorm() && row.source.isFloat(); ++i) {
            const auto &[others, ones] = sets[random() % std::size(sets)];
            Trial trial(row, {1 + static_cast<int>(random() % 70), 1 + static_cast<int>(random() % 3)}, random);
            const auto other = [&, &numbers = others] { return numbers[random() % numbers.size()]; };
            trial.first.fill(other);
            trial.second.fill(other);
            const int x = static_cast<int>(random()) & 0xFFFF, y = static_cast<int>(random() % 3);
            trial.first.set(x % trial.first.samples, y % trial.first.height, ones[0]);
            ASSERT_TRUE(hold(trial, formulaOf(row, true)));
        }
}

// The quotient is a warning where the denominator is no number to divide by; maxima of bytes may end early.
TEST(Operands, DenominatorsOfRelativeNorms)
{
    const std::uint8_t bytes[] = {0, 3, 0, 0}, none[4] = {}, ends[] = {0, 255, 7, 9};
    const float floats[] = {3, 4}, least[] = {1e-45f, 0};
    double norm = -1;
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        EXPECT_EQ(krnNormRelL28uC1(bytes, 2, none, 2, 2, 2, &norm, nullptr), KRN_WARN_ZERO_DENOMINATOR);
        EXPECT_EQ(norm, 3);
        EXPECT_EQ(krnNormRelInf8uC1(bytes, 4, none, 4, 4, 1, &norm, nullptr), KRN_OK);
        EXPECT_EQ(norm, 3);
        EXPECT_EQ(krnNormRelL18uC1(bytes, 4, none, 4, 4, 1, &norm, nullptr), KRN_OK);
        EXPECT_EQ(norm, std::numeric_limits<double>::infinity());
        EXPECT_EQ(krnNormRelInf8uC1(none, 1, ends, 1, 1, 4, &norm, nullptr), KRN_OK);
        EXPECT_EQ(norm, 1);
        EXPECT_EQ(krnNormRelL232fC1(floats, 8, least, 8, 2, 1, &norm, nullptr), KRN_OK);
        EXPECT_GT(norm, 1e45);
    }
    krnDispatchIndex = 0;
}

} // namespace
