// Cosine transforms: every build between guard pages, against the definition and so against build 0.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

#include "guarded.h"
#include "memory.h"
#include "rows.h"

namespace {

using namespace orv;
using Random = std::mt19937;

int below(Random &random, int bound)
{
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

// A raster that starts behind a guard page or ends before one, at any byte. What lies around its samples is watched.
struct Plot {
    const SampleType &type;
    int width, height, step;
    std::uint8_t *start;
    Guarded &memory;

    Plot(Guarded &itsMemory, const SampleType &itsType, int itsWidth, int itsHeight, Random &random)
        : type(itsType), width(itsWidth), height(itsHeight), step(width * type.bytes + below(random, 3) * 7),
          memory(itsMemory)
    {
        const std::size_t bytes = static_cast<std::size_t>((height - 1) * step + width * type.bytes),
                          gap = random() % 2 == 0 ? random() % 9 : 0;
        memory.grow(bytes + 16);
        std::memset(memory.begin(), 0x5A, static_cast<std::size_t>(memory.end() - memory.begin()));
        start = random() % 2 == 0 ? memory.begin() + gap : memory.end() - bytes - gap;
    }
    std::uint8_t *at(int x, int y) const { return start + y * step + x * type.bytes; }
    double get(int x, int y) const
    {
        std::int16_t word = 0;
        float real = 0;
        std::memcpy(type.isFloat() ? static_cast<void *>(&real) : &word, at(x, y),
                    std::size_t(std::min(type.bytes, 4)));
        return type.isFloat() ? real : word;
    }
    void set(int x, int y, double value) const
    {
        const std::int16_t word = type.isFloat() ? std::int16_t{0} : static_cast<std::int16_t>(value);
        const float real = static_cast<float>(value);
        std::memcpy(at(x, y), type.isFloat() ? static_cast<const void *>(&real) : &word, std::size_t(type.bytes));
    }
    std::vector<std::uint8_t> bytes() const { return {memory.begin(), memory.end()}; }
    std::vector<double> samples() const
    {
        std::vector<double> all;
        for (int i = 0; i < width * height; ++i)
            all.push_back(get(i % width, i / width));
        return all;
    }
};

// The definition, in doubles, along rows and then along columns.
std::vector<double> transformed(const std::vector<double> &in, int width, int height, bool inverse)
{
    const auto along = [inverse](const std::vector<double> &from, int length, int count, int step, int stride) {
        std::vector<double> to(from.size());
        for (int k = 0; k < length; ++k)
            for (int i = 0; i < length; ++i) {
                const int result = inverse ? i : k, source = inverse ? k : i;
                const double factor = std::sqrt((k == 0 ? 1.0 : 2.0) / length) *
                                      std::cos(std::numbers::pi * ((2 * i + 1) * k % (4 * length)) / (2.0 * length));
                for (int line = 0; line < count; ++line)
                    to[std::size_t(line * stride + result * step)] +=
                        factor * from[std::size_t(line * stride + source * step)];
            }
        return to;
    };
    return along(along(in, width, height, 1, width), height, width, width, 1);
}

// Runs call() in all builds. Each must write the same bytes.
template <class Call> void runBuilds(const Plot &out, Call call)
{
    const std::vector<std::uint8_t> before = out.bytes();
    std::vector<std::uint8_t> kept;
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        std::copy(before.begin(), before.end(), out.memory.begin());
        EXPECT_EQ(call(), KRN_OK);
        if (krnDispatchIndex == 0)
            kept = out.bytes();
        ASSERT_EQ(out.bytes(), kept) << "build " << krnDispatchIndex;
    }
    krnDispatchIndex = 0;
    for (int y = 0; y < out.height; ++y)
        std::memset(&kept[std::size_t(out.at(0, y) - out.memory.begin())], 0, std::size_t(out.width * out.type.bytes));
    EXPECT_EQ(std::count(kept.begin(), kept.end(), 0x5A) + out.width * out.height * out.type.bytes,
              static_cast<long>(kept.size()));
}

// Coefficients of all sizes, or pixels: noise, edges, constants, single ones.
double draw(const Row &row, int kind, int index, Random &random)
{
    if (row.source.kind == SampleType::U8)
        return kind == 0   ? below(random, 256)
               : kind == 1 ? below(random, 2) * 255
               : kind == 2 ? (index / 8 % 2) * 255
               : kind == 3 ? 200
                           : (random() % 8 == 0) * 255;
    const int most = kind == 0 ? 32768 : kind == 1 ? 1200 : kind == 2 ? 150 : 30;
    return index == 0 && kind > 0              ? below(random, 2041)
           : kind == 4                         ? (random() % 2 == 0 ? -32768 : 32767)
           : kind == 1 && random() % 6 != 0    ? 0
           : row.source.isFloat() && kind == 3 ? below(random, 2 * most) / 3.0 - most
                                               : below(random, 2 * most) - most;
}

void tryBlock(const Row &row, int round, Random &random)
{
    static Guarded memory[2];
    const bool inverse = row.is("Dct8x8Inv");
    const Plot in(memory[0], row.source, 8, 8, random), out(memory[1], row.destination, 8, 8, random);
    for (int i = 0; i < 64; ++i)
        in.set(i % 8, i / 8, draw(row, round % 5, i, random));
    ASSERT_NO_FATAL_FAILURE(runBuilds(out, [&] {
        return (*static_cast<const Kernel<BlockKernel> *>(row.kernel))(in.start, in.step, out.start, out.step);
    }));
    const std::vector<double> right = transformed(in.samples(), 8, 8, inverse);
    double most = 0;
    for (const double value : right)
        most = std::max(most, std::abs(value));
    for (std::size_t i = 0; i < 64; ++i) {
        const double expected = inverse && row.destination.bytes == 1 ? std::clamp(right[i], 0.0, 255.0) : right[i];
        const double bound = row.destination.isFloat() ? 3e-7 * most : row.source.isFloat() ? 0.55 : 0.75;
        ASSERT_NEAR(out.samples()[i], expected, bound) << row.name << ", sample " << i << ", kind " << round % 5;
    }
}

TEST(CosineBlocks, AreTheDefinitionInAllBuilds)
{
    Random random(31);
    int rows = 0;
    for (const Row &row : allRows())
        if (row.is("Dct8x8Fwd") || row.is("Dct8x8Inv"))
            for (int round = (++rows, 0); round < 500 && !testing::Test::HasFatalFailure(); ++round)
                tryBlock(row, round, random);
    EXPECT_EQ(rows, 6);
}

// Rows in the stated order of sums and shifts, columns as sums of products: to the last bit.
TEST(CosineBlocks, FixedPointRowsAndColumnsAreExact)
{
    static const int odd[] = {0, 22725, 21407, 19266, 16384, 12873, 8867, 4520};
    const auto factor = [](int i, int k) {
        const int angle = k == 0 ? 4 : (2 * i + 1) * k % 32, folded = angle > 16 ? 32 - angle : angle;
        return folded == 8 ? 0 : folded < 8 ? odd[folded] : -odd[16 - folded];
    };
    const auto scaled = [](long value) { return (value + 2048) >> 12; };
    Random random(32);
    for (int round = 0; round < 300; ++round) {
        std::uint8_t in[64];
        std::int16_t rows[8][8], out[64];
        for (std::uint8_t &sample : in)
            sample = static_cast<std::uint8_t>(round % 2 == 0 ? below(random, 256) : below(random, 2) * 255);
        for (int i = 0; i < 8; ++i) {
            const std::uint8_t *const x = in + 8 * i;
            const long s[] = {x[0] + x[7], x[1] + x[6], x[2] + x[5], x[3] + x[4]};
            const long d[] = {x[0] - x[7], x[1] - x[6], x[2] - x[5], x[3] - x[4]};
            const long e0 = s[0] + s[3], e1 = s[1] + s[2], e2 = s[1] - s[2], e3 = s[0] - s[3];
            const long a = 8 * (d[1] + d[2]), b = 8 * (d[1] - d[2]), c = scaled(46341 * d[0]), f = scaled(46341 * d[3]);
            const long p = b + f, q = a + c, r = c - a, t = f - b;
            const long y[] = {(e0 + e1) * 8,
                              scaled(3218 * q + 799 * (p + q)),
                              scaled(25080 * e3 + 17734 * (e2 + e3)),
                              scaled(-5681 * t + 3406 * (r + t)),
                              (e0 - e1) * 8,
                              scaled(-1130 * r + 3406 * (r + t)),
                              scaled(-60547 * e2 + 17734 * (e2 + e3)),
                              scaled(-4816 * p + 799 * (p + q))};
            std::copy(std::begin(y), std::end(y), rows[i]);
        }
        ASSERT_EQ(krnDct8x8Fwd8u16s(in, 8, out, 16), KRN_OK);
        for (int k = 0; k < 64; ++k) {
            long sum = 0;
            for (int i = 0; i < 8; ++i)
                sum += long{rows[i][k % 8]} * factor(i, k / 8);
            ASSERT_EQ(out[k], (sum + (1 << 19)) >> 20) << "sample " << k;
        }
    }
}

void tryImage(int width, int height, bool inverse, bool inPlace, Random &random)
{
    static Guarded memory[2];
    const SampleType &floats = sampleType("32f");
    const Plot in(memory[0], floats, width, height, random), out(memory[1], floats, width, height, random);
    const Kernel<Dct2DKernel> &kernel = inverse ? krnDct2DInv32fC1 : krnDct2DFwd32fC1;
    for (int i = 0; i < width * height; ++i)
        in.set(i % width, i / width, below(random, 2001) - 1000);
    OrvDct2DPlan plan;
    std::int32_t bytes = 0;
    ASSERT_EQ(krnDct2DInitAlloc32f(&plan, width, height, 1), KRN_OK);
    ASSERT_EQ(krnDct2DWorkSize32f(&plan, &bytes), KRN_OK);
    std::vector<std::uint8_t> work(std::size_t(bytes) + 1);
    ASSERT_NO_FATAL_FAILURE(runBuilds(out, [&] {
        void *const given = bytes > 0 && random() % 2 == 0 ? work.data() + random() % 2 : nullptr;
        for (int y = 0; y < height && inPlace; ++y)
            std::memcpy(out.at(0, y), in.at(0, y), std::size_t(4 * width));
        const Plot &from = inPlace ? out : in;
        return kernel(from.start, from.step, out.start, out.step, &plan, given);
    }));
    const std::vector<double> right = transformed(in.samples(), width, height, inverse), samples = out.samples();
    double squares = 0, worst = 0;
    for (std::size_t i = 0; i < right.size(); ++i) {
        squares += right[i] * right[i];
        worst = std::max(worst, std::abs(samples[i] - right[i]));
    }
    EXPECT_LE(worst, 1.2e-6 * std::sqrt(squares / static_cast<double>(right.size()))) << width << " x " << height;
    EXPECT_EQ(krnDct2DFree32f(&plan), KRN_OK);
    EXPECT_EQ(kernel(in.start, in.step, out.start, out.step, &plan, nullptr), KRN_WRONG_PLAN);
}

TEST(CosineImages, AreTheDefinitionInAllBuilds)
{
    Random random(33);
    for (const auto &[width, height] : {std::pair{1, 1},
                                        {1, 9},
                                        {16, 1},
                                        {2, 2},
                                        {3, 5},
                                        {8, 8},
                                        {7, 16},
                                        {16, 17},
                                        {33, 31},
                                        {64, 32},
                                        {96, 40},
                                        {101, 16},
                                        {19, 131},
                                        {257, 24}})
        for (const bool inverse : {false, true})
            tryImage(width, height, inverse, random() % 3 == 0, random);
}

TEST(CosineImages, ArgumentsAreTestedInTheirOrder)
{
    OrvDct2DPlan plan, other = {};
    float image[9] = {};
    std::int32_t size = 0;
    EXPECT_EQ(krnDct2DInitAlloc32f(nullptr, 0, 3, 1), KRN_NULL_POINTER);
    EXPECT_EQ(krnDct2DInitAlloc32f(&plan, 0, 3, 1), KRN_BAD_SIZE);
    EXPECT_EQ(krnDct2DInitAlloc32f(&plan, 3, -1, 1), KRN_BAD_SIZE);
    EXPECT_EQ(krnDct2DInitAlloc32f(&plan, 3, 0x7FFFFFFF, 1), KRN_NO_MEMORY);
    EXPECT_EQ(krnDct2DFree32f(&plan), KRN_WRONG_PLAN);
    EXPECT_EQ(krnDct2DFree32f(nullptr), KRN_NULL_POINTER);
    ASSERT_EQ(krnDct2DInitAlloc32f(&plan, 3, 3, 1), KRN_OK);
    EXPECT_EQ(krnDct2DWorkSize32f(nullptr, nullptr), KRN_NULL_POINTER);
    EXPECT_EQ(krnDct2DWorkSize32f(&other, nullptr), KRN_WRONG_PLAN);
    EXPECT_EQ(krnDct2DWorkSize32f(&plan, nullptr), KRN_NULL_POINTER);
    EXPECT_EQ(krnDct2DWorkSize32f(&plan, &size), KRN_OK);
    for (const auto *const kernel : {&krnDct2DFwd32fC1, &krnDct2DInv32fC1}) {
        EXPECT_EQ((*kernel)(nullptr, 0, image, 0, nullptr, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ((*kernel)(nullptr, 0, image, 0, &other, nullptr), KRN_WRONG_PLAN);
        EXPECT_EQ((*kernel)(nullptr, 0, image, 0, &plan, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ((*kernel)(image, 0, image, 12, &plan, nullptr), KRN_BAD_STEP);
        EXPECT_EQ((*kernel)(image, 12, image, -1, &plan, nullptr), KRN_BAD_STEP);
    }
    EXPECT_EQ(krnDct8x8Fwd8u16s(nullptr, 0, image, 0), KRN_NULL_POINTER);
    EXPECT_EQ(krnDct8x8Fwd8u16s(image, 8, image, 0), KRN_BAD_STEP);
    EXPECT_EQ(krnDct2DFree32f(&plan), KRN_OK);
}

} // namespace
