// Bitwise operations and shifts of the kernels against the arithmetic that they stand for.
#include <gtest/gtest.h>

#include <climits>

#include "pointwise_rows.h"

namespace {

using namespace orv;

// Bit by bit.
template <class Sample> Sample bitwise(const char *truth, Sample a, Sample b)
{
    std::uint32_t result = 0;
    for (std::size_t bit = 0; bit < 8 * sizeof(Sample); ++bit) {
        const int both = 2 * (a >> bit & 1) + (b >> bit & 1);
        result |= static_cast<std::uint32_t>(truth[both] == '1') << bit;
    }
    return static_cast<Sample>(result);
}

struct Operation {
    std::string stem;
    const char *truth; // of 0 and 0, 0 and 1, 1 and 0, 1 and 1
};
const Operation operations[] = {{"And", "0001"}, {"Or", "0111"}, {"Xor", "0110"}};

TEST(Logic, BitByBit)
{
    for (const Operation &operation : operations)
        for (const std::string &stem : {operation.stem, operation.stem + "C"}) {
            const std::vector<PointwiseRow> rows = rowsOf(stem);
            EXPECT_EQ(rows.size(), 12u);
            for (const PointwiseRow &row : rows)
                withSampleOf(row.type, [&](auto sample) {
                    using Sample = decltype(sample);
                    const auto formula = [&](Sample a, Sample b, int) { return bitwise(operation.truth, a, b); };
                    const std::vector<Sample> numbers = numbersOf<Sample>();
                    EXPECT_TRUE(holdAll(row, numbers, numbers, {0}, formula));
                });
        }
}

const std::vector<std::uint32_t> beyondAll = {32, 33, 40, INT_MAX, 0x80000000u, UINT_MAX};

std::vector<std::uint32_t> counts()
{
    std::vector<std::uint32_t> all = beyondAll;
    for (std::uint32_t count = 0; count <= 40; ++count)
        all.push_back(count);
    return all;
}

// Times 2 as often as counted, or half of it towards minus infinity.
template <class Sample> Sample shifted(bool left, Sample sample, std::uint32_t count)
{
    std::int64_t value = sample;
    for (std::uint32_t i = 0; i < count && i < 40; ++i)
        value = left ? static_cast<Sample>(2 * value) : (value - (value % 2 != 0 && value < 0)) / 2;
    return static_cast<Sample>(value);
}

TEST(Shifts, MultiplyAndHalve)
{
    for (const char *stem : {"LShiftC", "RShiftC"}) {
        const bool left = stem[0] == 'L';
        const std::vector<PointwiseRow> rows = rowsOf(stem);
        EXPECT_EQ(rows.size(), left ? 12u : 20u);
        for (const PointwiseRow &row : rows)
            withSampleOf(row.type, [&](auto sample) {
                using Sample = decltype(sample);
                const auto formula = [left](Sample a, std::uint32_t count, int) { return shifted(left, a, count); };
                const std::vector<Sample> numbers = numbersOf<Sample>();
                EXPECT_TRUE(holdAll(row, numbers, counts(), {0}, formula));
                EXPECT_TRUE(holdLayouts(row, numbers, beyondAll, formula));
            });
    }
}
} // namespace
