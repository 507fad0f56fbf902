// Convolution kernels against the formula, sample by sample; the divisors that only kernels know; what they refuse.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "row_table.h"

namespace {

using namespace orv;

std::vector<TableRow> convolveRows(bool floats)
{
    std::vector<TableRow> rows;
    for (const TableRow &row : tableRows("krnConvolve"))
        if (shapeOf(row.name).sourceFloats == floats)
            rows.push_back(row);
    return rows;
}

// A source with margins for its window, and a destination of odd rows.
template <class Sample, class Value, class Out = Sample> struct Trial {
    RowWindow window;
    int channels, width, height, step, outStep;
    std::vector<Sample> source;
    std::vector<Out> destination;
    std::vector<Value> values;

    Trial(const TableRow &row, std::mt19937 &random, const std::function<Sample()> &sample,
          const std::function<Value()> &value)
        : channels(shapeOf(row.name).source.channels), width(1 + static_cast<int>(random() % 90)),
          height(1 + static_cast<int>(random() % 3))
    {
        if (std::string(row.name).find("Col") == std::string::npos)
            window.columns = 1 + static_cast<int>(random() % 7);
        if (std::string(row.name).find("Row") == std::string::npos)
            window.rows = 1 + static_cast<int>(random() % 6);
        window.anchorX = static_cast<int>(random() % window.columns);
        window.anchorY = static_cast<int>(random() % window.rows);
        step = (width + window.columns - 1) * channels + static_cast<int>(random() % 5);
        outStep = width * channels + static_cast<int>(random() % 5);
        source.resize(static_cast<std::size_t>(step * (height + window.rows - 1)));
        destination.resize(static_cast<std::size_t>(outStep * height), Out(77));
        for (Sample &one : source)
            one = sample();
        values.resize(static_cast<std::size_t>(window.size()));
        for (Value &one : values)
            one = value();
    }

    const Sample *first() const
    {
        return source.data() + (window.rows - 1 - window.anchorY) * step +
               (window.columns - 1 - window.anchorX) * channels;
    }
    RowCall call(std::vector<Out> &out)
    {
        const int bytes = static_cast<int>(sizeof(Sample)), outBytes = static_cast<int>(sizeof(Out));
        return {{{const_cast<Sample *>(first()), step * bytes}, {}},
                {out.data(), outStep * outBytes},
                {},
                width,
                height,
                0,
                0,
                values.data(),
                0,
                window};
    }
    // Calls term(coefficient, sample) for all that meet at a sample of the result.
    template <class Term> void sum(int x, int y, Term term) const
    {
        for (int r = 0; r < window.rows; ++r)
            for (int c = 0; c < window.columns; ++c)
                term(values[static_cast<std::size_t>(r * window.columns + c)],
                     first()[(y + window.anchorY - r) * step + x + (window.anchorX - c) * channels]);
    }
    // Runs all builds; result(x, y, got) says whether a sample is right.
    template <class Right> testing::AssertionResult hold(const TableRow &row, Right right)
    {
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
            std::vector<Out> out = destination;
            const KrnStatus status = row(call(out));
            for (int i = 0; status == KRN_OK && i < outStep * height; ++i) {
                const int x = i % outStep, y = i / outStep;
                const bool written = x < width * channels && !(row.alpha() && x % 4 == 3);
                const Out got = out[static_cast<std::size_t>(i)];
                if (written ? !right(x, y, got) : got != Out(77))
                    return testing::AssertionFailure()
                           << row.name << " of build " << krnDispatchIndex << ": " << +got << " at " << x << ", " << y
                           << " of " << width << " x " << height << ", window " << window.columns << " x "
                           << window.rows << ", divisor " << window.divisor;
            }
            if (status != KRN_OK)
                return testing::AssertionFailure() << row.name << " gave " << status;
        }
        krnDispatchIndex = 0;
        return testing::AssertionSuccess();
    }
};

template <class Sample> std::int64_t saturated(std::int64_t value)
{
    const std::int64_t low = std::numeric_limits<Sample>::min(), high = std::numeric_limits<Sample>::max();
    return std::min(std::max(value, low), high);
}

// To nearest, ties to even: by whole numbers, or as the other divisors have it.
template <class Sample, class Out> std::int64_t quotient(std::int64_t sum, std::int32_t divisor)
{
    const std::int64_t power = static_cast<std::uint32_t>(divisor);
    if ((power & (power - 1)) == 0) {
        const std::int64_t down = sum >= 0 ? sum / power : -((power - 1 - sum) / power), rest = sum - down * power;
        return saturated<Out>(down + (2 * rest > power || (2 * rest == power && down % 2 != 0)));
    }
    const long double value = sizeof(Sample) == 1 ? static_cast<long double>(sum) * (1.0L / divisor)
                                                  : static_cast<long double>(sum) / divisor;
    return saturated<Out>(value > 1e6L ? 1000000 : value < -1e6L ? -1000000 : std::llrint(value));
}

template <class Sample, class Out = Sample> void holdIntegers(const TableRow &row)
{
    const std::string name = row.name;
    std::seed_seq seed(name.begin(), name.end());
    std::mt19937 random(seed);
    for (int i = 0; i < 300; ++i) {
        const unsigned kind = random() % 8;
        // From sums that fit a word to those that pass 32 bits; zeros among them.
        const auto value = [&]() -> std::int32_t {
            const std::int32_t any = static_cast<std::int32_t>(random());
            const std::int32_t ranges[] = {3, 9, 20, 128, 257, 32768, 65536};
            const std::int32_t range = kind < 7 ? ranges[kind] : 0;
            return range == 0     ? any
                   : any % 4 == 0 ? 0
                                  : any % range - (i % 3 == 0 ? 0 : range / 2) * (any < 0 ? -1 : 0);
        };
        const auto sample = [&] {
            const unsigned any = random();
            return static_cast<Sample>(any % 4 != 0 ? any >> 8 : any % 8 == 0 ? 0xFFFF : 0x8080);
        };
        Trial<Sample, std::int32_t, Out> trial(row, random, sample, value);
        trial.window.divisor = random() % 4 == 0   ? static_cast<int>(random() % 600) - 300
                               : random() % 4 == 0 ? static_cast<int>(1u << random() % 32)
                                                   : 1 << random() % 9;
        if (trial.window.divisor == 0)
            trial.window.divisor = 7;
        ASSERT_TRUE(trial.hold(row, [&](int x, int y, Out got) {
            std::int64_t sum = 0;
            trial.sum(x, y, [&](std::int32_t coefficient, Sample at) { sum += std::int64_t{coefficient} * at; });
            if (sizeof(Sample) == 1)
                sum = static_cast<std::int32_t>(sum);
            // From bytes to words the sums themselves come, which wrap there.
            if (sizeof(Sample) < sizeof(Out))
                return got == static_cast<Out>(sum);
            return got == quotient<Sample, Out>(sum, trial.window.divisor);
        }));
    }
}

TEST(ConvolveKernels, Integers)
{
    const std::vector<TableRow> rows = convolveRows(false);
    EXPECT_EQ(rows.size(), 29u);
    for (const TableRow &row : rows) {
        const bool fromBytes = shapeOf(row.name).source.sampleBytes == 1,
                   toBytes = shapeOf(row.name).destination.sampleBytes == 1;
        if (fromBytes)
            toBytes ? holdIntegers<std::uint8_t>(row) : holdIntegers<std::uint8_t, std::int16_t>(row);
        else
            toBytes ? holdIntegers<std::int16_t, std::uint8_t>(row) : holdIntegers<std::int16_t>(row);
    }
}

// A float of the sum is off by no more than half a bit of all that was added up, for each step.
TEST(ConvolveKernels, Floats)
{
    const std::vector<TableRow> rows = convolveRows(true);
    EXPECT_EQ(rows.size(), 12u);
    std::mt19937 random(3);
    const auto number = [&] { return std::ldexp(static_cast<float>(static_cast<int>(random())), -20); };
    for (const TableRow &row : rows)
        for (int i = 0; i < 100; ++i) {
            Trial<float, float> trial(row, random, number, number);
            ASSERT_TRUE(trial.hold(row, [&](int x, int y, float got) {
                double sum = 0, size = 0;
                trial.sum(x, y, [&](float coefficient, float at) {
                    sum += double{coefficient} * at;
                    size += std::fabs(double{coefficient} * at);
                });
                return std::fabs(got - sum) <= trial.window.size() * size * std::ldexp(1.0, -24);
            }));
        }
}

// The numbers by which the rounding was fixed.
TEST(ConvolveKernels, TiesGoToEven)
{
    const struct {
        int sum, divisor, byte, word;
    } rows[] = {{3, 2, 2, 2},   {5, 2, 2, 2},      {7, 2, 4, 4},   {-3, 2, 0, -2}, {-1, 2, 0, 0},
                {3, 6, 0, 0},   {9, 6, 2, 2},      {-9, 6, 0, -2}, {11, 3, 4, 4},  {100000, 3, 255, 32767},
                {-5, -2, 2, 2}, {300, 1, 255, 300}};
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
        for (const auto &[sum, divisor, byte, word] : rows) {
            const std::uint8_t one = 1;
            const std::int16_t oneWord = 1;
            std::uint8_t outByte = 99;
            std::int16_t outWord = 99;
            EXPECT_EQ(krnConvolve8uC1(&one, 1, &outByte, 1, 1, 1, &sum, 1, 1, 0, 0, divisor), KRN_OK);
            EXPECT_EQ(krnConvolve16sC1(&oneWord, 2, &outWord, 2, 1, 1, &sum, 1, 1, 0, 0, divisor), KRN_OK);
            EXPECT_EQ(outByte, byte) << sum << " / " << divisor;
            EXPECT_EQ(outWord, word) << sum << " / " << divisor;
        }
    krnDispatchIndex = 0;
}

TEST(ConvolveKernels, RefuseWindowsThenDivisors)
{
    const std::vector<std::uint8_t> source(400);
    const std::int32_t values[9] = {};
    const struct {
        RowWindow window;
        KrnStatus status;
    } rows[] = {{{0, 3, 0, 0, 0}, KRN_BAD_MASK_SIZE}, {{3, -1, 0, 0, 0}, KRN_BAD_MASK_SIZE},
                {{3, 3, 3, 0, 0}, KRN_BAD_ANCHOR},    {{3, 3, 0, -1, 0}, KRN_BAD_ANCHOR},
                {{3, 3, 1, 1, 0}, KRN_ZERO_DIVISOR},  {{3, 3, 1, 1, 5}, KRN_OK}};
    for (const auto &[window, status] : rows) {
        std::vector<std::uint8_t> destination(16, 0x99);
        const std::vector<std::uint8_t> before = destination;
        EXPECT_EQ(krnConvolve8uC1(source.data() + 100, 20, destination.data(), 4, 4, 4, values, window.columns,
                                  window.rows, window.anchorX, window.anchorY, window.divisor),
                  status);
        EXPECT_EQ(destination == before, status != KRN_OK);
        if (status == KRN_ZERO_DIVISOR)
            continue;
        const std::vector<float> floats(400);
        EXPECT_EQ(krnConvolve32fC1(floats.data() + 200, 80, destination.data(), 16, 1, 1, floats.data(), window.columns,
                                   window.rows, window.anchorX, window.anchorY),
                  status);
    }
}

} // namespace
