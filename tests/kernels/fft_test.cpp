// Fourier transforms: sequences and images of every kind of length against sums in long doubles, every build against
// build 0, and what plans and transforms refuse.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <random>
#include <vector>

#include "fourier_model.h"
#include "front/memory_watch.h"
#include "guarded.h"
#include "rows.h"

namespace {

using namespace orv;
using namespace fourier;

using Random = std::mt19937;

// Runs call() in every build; all must give the same bytes at `out`, which it gives back to them as they were before.
template <class Call> void inAllBuilds(void *out, std::size_t bytes, Call call)
{
    std::vector<std::uint8_t> before(bytes), first(bytes);
    std::memcpy(before.data(), out, bytes);
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        std::memcpy(out, before.data(), bytes);
        EXPECT_EQ(call(), KRN_OK);
        if (krnDispatchIndex == 0)
            std::memcpy(first.data(), out, bytes);
        EXPECT_EQ(std::memcmp(first.data(), out, bytes), 0) << "build " << krnDispatchIndex;
    }
    krnDispatchIndex = 0;
}

// Forward against the sum and back again, at any address between guard pages, in place or not, with work of its own or
// of the caller's.
void trySequence(bool real, std::size_t length, Random &random)
{
    SCOPED_TRACE((real ? "real " : "complex ") + std::to_string(length));
    static Guarded memory[3];
    OrvDftPlan plan;
    ASSERT_EQ((real ? krnDftInitAlloc32f : krnDftInitAlloc32fc)(&plan, static_cast<int>(length), SCALE_INVERSE, 0),
              KRN_OK);
    int workSize = 0;
    ASSERT_EQ((real ? krnDftWorkSize32f : krnDftWorkSize32fc)(&plan, &workSize), KRN_OK);
    const std::size_t count = real ? length : 2 * length, bytes = count * sizeof(float), work = std::size_t(workSize);
    for (Guarded *each : {&memory[0], &memory[1]})
        each->grow(bytes + 16);
    memory[2].grow(work);
    const Floats values = noise(count, random);
    std::uint8_t *const in = random() % 2 == 0 ? memory[0].begin() + random() % 9 : memory[0].end() - bytes;
    std::uint8_t *const out = random() % 3 == 0   ? in
                              : random() % 2 == 0 ? memory[1].begin()
                                                  : memory[1].end() - bytes - random() % 9;
    void *const given = random() % 2 == 0 ? nullptr : memory[2].end() - work;
    Numbers numbers;
    for (std::size_t i = 0; i < length; ++i)
        numbers.push_back(real ? Number(values[i]) : Number(values[2 * i], values[2 * i + 1]));
    const Numbers expected = spectrumOf(numbers);
    std::memcpy(in, values.data(), bytes);
    inAllBuilds(out, bytes, [&] { return (real ? krnDftFwd32f : krnDftFwd32fc)(in, out, &plan, given); });
    Floats result(count);
    std::memcpy(result.data(), out, bytes);
    Real worst = 0;
    for (std::size_t i = 0; i < length; ++i)
        worst = std::max(worst, real ? std::abs(packedAt(expected, i) - result[i])
                                     : std::abs(expected[i] - Number(result[2 * i], result[2 * i + 1])));
    EXPECT_LE(worst, 6e-7L * meanSquareRoot(expected));
    inAllBuilds(out, bytes, [&] { return (real ? krnDftInv32f : krnDftInv32fc)(out, out, &plan, given); });
    std::memcpy(result.data(), out, bytes);
    for (std::size_t i = 0; i < count; ++i)
        ASSERT_NEAR(result[i], values[i], 2e-6);
    EXPECT_EQ((real ? krnDftFree32f : krnDftFree32fc)(&plan), KRN_OK);
}

TEST(FourierSequences, AllLengths)
{
    Random random(1);
    std::vector<std::size_t> lengths = {343, 512, 1000, 1018, 1024, 1999, 2048, 4096, 8192, 65536};
    for (std::size_t length = 1; length <= 300; ++length)
        lengths.push_back(length);
    // Large radices, eights of primes, and matrices of both.
    for (const std::size_t length : {127 * 16, 131 * 8, 127 * 127, 4096 + 32, 37 * 1024, 8 * 8 * 1031, 3 * 32768})
        lengths.push_back(length);
    for (const std::size_t length : lengths)
        for (const bool real : {false, true})
            trySequence(real, length, random);
}

// Plans of powers of two are those of lengths but for their kind.
TEST(FourierSequences, OrdersAreLengths)
{
    Random random(5);
    const Floats values = noise(2 << 10, random);
    for (int order = 0; order <= 10; ++order)
        for (const bool real : {false, true}) {
            OrvFftPlan fft;
            OrvDftPlan dft;
            Floats result(values.size()), expected(values.size());
            ASSERT_EQ((real ? krnFftInitAlloc32f : krnFftInitAlloc32fc)(&fft, order, SCALE_BOTH, 0), KRN_OK);
            ASSERT_EQ((real ? krnDftInitAlloc32f : krnDftInitAlloc32fc)(&dft, 1 << order, SCALE_BOTH, 0), KRN_OK);
            (real ? krnFftFwd32f : krnFftFwd32fc)(values.data(), result.data(), &fft, nullptr);
            (real ? krnDftFwd32f : krnDftFwd32fc)(values.data(), expected.data(), &dft, nullptr);
            EXPECT_EQ(result, expected);
            (real ? krnFftInv32f : krnFftInv32fc)(values.data(), result.data(), &fft, nullptr);
            (real ? krnDftInv32f : krnDftInv32fc)(values.data(), expected.data(), &dft, nullptr);
            EXPECT_EQ(result, expected);
            int size = 0, expectedSize = 0;
            EXPECT_EQ((real ? krnFftWorkSize32f : krnFftWorkSize32fc)(&fft, &size), KRN_OK);
            EXPECT_EQ((real ? krnDftWorkSize32f : krnDftWorkSize32fc)(&dft, &expectedSize), KRN_OK);
            EXPECT_EQ(size, expectedSize);
            EXPECT_EQ((real ? krnFftFree32f : krnFftFree32fc)(&fft), KRN_OK);
            EXPECT_EQ((real ? krnDftFree32f : krnDftFree32fc)(&dft), KRN_OK);
        }
    OrvFft2DPlan fft;
    OrvDft2DPlan dft;
    ASSERT_EQ(krnFft2DInitAlloc32f(&fft, 5, 4, SCALE_BOTH, 0), KRN_OK);
    ASSERT_EQ(krnDft2DInitAlloc32f(&dft, 32, 16, SCALE_BOTH, 0), KRN_OK);
    Floats result(512), expected(512);
    EXPECT_EQ(krnFft2DFwd32fC1(values.data(), 128, result.data(), 128, &fft, nullptr), KRN_OK);
    EXPECT_EQ(krnDft2DFwd32fC1(values.data(), 128, expected.data(), 128, &dft, nullptr), KRN_OK);
    EXPECT_EQ(result, expected);
    EXPECT_EQ(krnFft2DInv32fC1(values.data(), 128, result.data(), 128, &fft, nullptr), KRN_OK);
    EXPECT_EQ(krnDft2DInv32fC1(values.data(), 128, expected.data(), 128, &dft, nullptr), KRN_OK);
    EXPECT_EQ(result, expected);
    EXPECT_EQ(krnFft2DFree32f(&fft), KRN_OK);
    EXPECT_EQ(krnDft2DFree32f(&dft), KRN_OK);
}

TEST(FourierSequences, FlagsScale)
{
    Random random(2);
    const Floats values = noise(24, random);
    for (const int flag : {SCALE_FORWARD, SCALE_INVERSE, SCALE_BOTH, SCALE_NEITHER}) {
        OrvDftPlan plan, plain;
        ASSERT_EQ(krnDftInitAlloc32fc(&plan, 12, flag, 1), KRN_OK);
        ASSERT_EQ(krnDftInitAlloc32fc(&plain, 12, SCALE_NEITHER, 1), KRN_OK);
        for (const bool inverse : {false, true}) {
            Floats result(24), unscaled(24);
            const Kernel<DftKernel> &transform = inverse ? krnDftInv32fc : krnDftFwd32fc;
            ASSERT_EQ(transform(values.data(), result.data(), &plan, nullptr), KRN_OK);
            ASSERT_EQ(transform(values.data(), unscaled.data(), &plain, nullptr), KRN_OK);
            const float scale = flag == SCALE_BOTH ? static_cast<float>(1 / std::sqrt(12.0))
                                : flag == (inverse ? SCALE_INVERSE : SCALE_FORWARD) ? 1.0f / 12
                                                                                    : 1;
            for (std::size_t i = 0; i < 24; ++i)
                EXPECT_FLOAT_EQ(result[i], scale * unscaled[i]);
        }
        EXPECT_EQ(krnDftFree32fc(&plan), KRN_OK);
        EXPECT_EQ(krnDftFree32fc(&plain), KRN_OK);
    }
}

// The packed spectrum of an image, from transforms of rows and of columns.
Numbers imageSpectrum(const Floats &values, std::size_t width, std::size_t height)
{
    std::vector<Numbers> rows;
    for (std::size_t y = 0; y < height; ++y)
        rows.push_back(spectrumOf(Numbers(values.begin() + static_cast<std::ptrdiff_t>(width * y),
                                          values.begin() + static_cast<std::ptrdiff_t>(width * (y + 1)))));
    Numbers result(width * height);
    for (std::size_t x = 0; x < width; ++x) {
        Numbers column;
        for (const Numbers &row : rows)
            column.push_back(row[x]);
        column = spectrumOf(column);
        for (std::size_t y = 0; y < height; ++y)
            result[width * y + x] = column[y];
    }
    return result;
}

// Where a packed image has a value: column and row of the spectrum, and whether it is an imaginary part.
Real packedAt(const Numbers &spectrum, std::size_t width, std::size_t x, std::size_t y)
{
    const bool edge = x == 0 || (width % 2 == 0 && x == width - 1);
    const std::size_t column = (x + 1) / 2, along = edge ? (y + 1) / 2 : y;
    const bool imaginary = edge ? y % 2 == 0 && y != 0 : x % 2 == 0;
    const Number &value = spectrum[width * along + column];
    return imaginary ? value.imag() : value.real();
}

// A raster between guard pages, whose rows may be padded; the padding must stay.
struct Plane {
    std::size_t width, height, step;
    std::uint8_t *start;

    Plane(Guarded &memory, std::size_t w, std::size_t h, Random &random) : width(w), height(h), step(4 * w)
    {
        step += random() % 2 == 0 ? 0 : random() % 3 == 0 ? 4 * (random() % 20) : random() % 70;
        const std::size_t bytes = step * (height - 1) + 4 * width;
        memory.grow(bytes + 16);
        std::memset(memory.begin(), 0x5A, static_cast<std::size_t>(memory.end() - memory.begin()));
        start = random() % 2 == 0 ? memory.begin() + random() % 16 : memory.end() - bytes;
    }
    std::size_t bytes() const { return step * (height - 1) + 4 * width; }
    int stepBytes() const { return static_cast<int>(step); }
    void put(const Floats &values) const
    {
        for (std::size_t y = 0; y < height; ++y)
            std::memcpy(start + step * y, &values[width * y], 4 * width);
    }
    Floats values() const
    {
        Floats all(width * height);
        for (std::size_t y = 0; y < height; ++y)
            std::memcpy(&all[width * y], start + step * y, 4 * width);
        return all;
    }
    void expectPadding() const
    {
        for (std::size_t y = 0; y + 1 < height; ++y)
            for (std::size_t i = 4 * width; i < step; ++i)
                ASSERT_EQ(start[step * y + i], 0x5A) << "row " << y;
    }
};

void tryImage(std::size_t width, std::size_t height, Random &random)
{
    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
    static Guarded memory[3];
    OrvDft2DPlan plan;
    ASSERT_EQ(krnDft2DInitAlloc32f(&plan, static_cast<int>(width), static_cast<int>(height), SCALE_INVERSE, 1), KRN_OK);
    int workSize = 0;
    ASSERT_EQ(krnDft2DWorkSize32f(&plan, &workSize), KRN_OK);
    memory[2].grow(static_cast<std::size_t>(workSize));
    void *const work = random() % 2 == 0 ? nullptr : memory[2].end() - workSize;
    const Floats values = noise(width * height, random);
    const Plane in(memory[0], width, height, random);
    const bool inPlace = random() % 3 == 0;
    const Plane out = inPlace ? in : Plane(memory[1], width, height, random);
    in.put(values);
    inAllBuilds(out.start, out.bytes(),
                [&] { return krnDft2DFwd32fC1(in.start, in.stepBytes(), out.start, out.stepBytes(), &plan, work); });
    const Numbers expected = imageSpectrum(values, width, height);
    const Floats spectrum = out.values();
    Real worst = 0;
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            worst = std::max(worst, std::abs(packedAt(expected, width, x, y) - spectrum[width * y + x]));
    // Long chirps of images round each step to floats, so that they exceed the bound of sequences a little.
    EXPECT_LE(worst, (std::max(width, height) > 2000 ? 8e-7L : 6e-7L) * meanSquareRoot(expected));
    const Plane back = random() % 2 == 0 ? out : Plane(memory[inPlace ? 1 : 0], width, height, random);
    inAllBuilds(back.start, back.bytes(), [&] {
        return krnDft2DInv32fC1(out.start, out.stepBytes(), back.start, back.stepBytes(), &plan, work);
    });
    const Floats result = back.values();
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_NEAR(result[i], values[i], 2e-6);
    out.expectPadding();
    back.expectPadding();
    EXPECT_EQ(krnDft2DFree32f(&plan), KRN_OK);
}

TEST(FourierImages, AllSizes)
{
    Random random(3);
    for (std::size_t width = 1; width <= 20; ++width)
        for (std::size_t height = 1; height <= 20; ++height)
            tryImage(width, height, random);
    // Columns that run one by one, in twos and in fours.
    const std::pair<std::size_t, std::size_t> sizes[] = {{1, 300},  {300, 1},  {64, 64},  {33, 34},   {131, 16},
                                                         {16, 131}, {70, 262}, {127, 37}, {256, 128}, {150, 90},
                                                         {81, 4},   {3, 4099}, {8192, 2}, {70, 360},  {100, 720}};
    for (const auto &[width, height] : sizes)
        tryImage(width, height, random);
}

// But for what rounding leaves in rows of zeros.
TEST(FourierImages, PartsAreLikeImagesOfZeros)
{
    Random random(4);
    for (const auto &[width, height, some, rows] :
         {std::tuple{40, 33, 21, 18}, {40, 33, 40, 1}, {7, 5, 1, 5}, {64, 48, 33, 16}, {1, 9, 1, 4}, {9, 1, 4, 1}}) {
        OrvDft2DPlan plan;
        ASSERT_EQ(krnDft2DInitAlloc32f(&plan, width, height, SCALE_NEITHER, 0), KRN_OK);
        const std::size_t count = static_cast<std::size_t>(width * height);
        Floats whole(count), part = noise(static_cast<std::size_t>(some * rows), random), expected(count),
                             result(count, 7);
        for (int i = 0; i < some * rows; ++i)
            whole[static_cast<std::size_t>(i / some * width + i % some)] = part[static_cast<std::size_t>(i)];
        ASSERT_EQ(krnDft2DFwd32fC1(whole.data(), 4 * width, expected.data(), 4 * width, &plan, nullptr), KRN_OK);
        inAllBuilds(result.data(), 4 * count, [&, some = some, rows = rows, width = width] {
            return krnDft2DFwdPart32fC1(part.data(), 4 * some, some, rows, result.data(), 4 * width, &plan, nullptr);
        });
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_NEAR(result[i], expected[i], 1e-5);
        for (const auto &[w, h] : {std::pair{0, 1}, {1, 0}, {width + 1, 1}, {1, height + 1}})
            EXPECT_EQ(krnDft2DFwdPart32fC1(part.data(), 4, w, h, result.data(), 4, &plan, nullptr), KRN_BAD_SIZE);
        EXPECT_EQ(krnDft2DFree32f(&plan), KRN_OK);
    }
}

TEST(FourierRefusals, PlansInTheirOrder)
{
    OrvFftPlan fft;
    OrvDftPlan dft;
    OrvFft2DPlan fft2d;
    OrvDft2DPlan dft2d;
    int size = 0;
    EXPECT_EQ(krnFftInitAlloc32fc(nullptr, 31, 3, 0), KRN_NULL_POINTER);
    EXPECT_EQ(krnDft2DInitAlloc32f(nullptr, 0, 0, 0, 0), KRN_NULL_POINTER);
    for (const int order : {-1, 31, 1 << 30}) {
        EXPECT_EQ(krnFftInitAlloc32f(&fft, order, 3, 0), KRN_BAD_ORDER);
        EXPECT_EQ(krnFft2DInitAlloc32f(&fft2d, order, 3, 3, 0), KRN_BAD_ORDER);
        EXPECT_EQ(krnFft2DInitAlloc32f(&fft2d, 3, order, 3, 0), KRN_BAD_ORDER);
    }
    for (const int length : {0, -5}) {
        EXPECT_EQ(krnDftInitAlloc32fc(&dft, length, 3, 0), KRN_BAD_SIZE);
        EXPECT_EQ(krnDft2DInitAlloc32f(&dft2d, 8, length, 3, 0), KRN_BAD_SIZE);
        EXPECT_EQ(krnDft2DInitAlloc32f(&dft2d, length, 8, 3, 0), KRN_BAD_SIZE);
    }
    for (const int flag : {0, 3, 5, 16, -1}) {
        EXPECT_EQ(krnFftInitAlloc32f(&fft, 3, flag, 0), KRN_BAD_FLAG);
        EXPECT_EQ(krnDft2DInitAlloc32f(&dft2d, 8, 9, flag, 0), KRN_BAD_FLAG);
    }
    // Tables that pass all memory.
    for (const int order : {28, 30})
        EXPECT_EQ(krnFftInitAlloc32fc(&fft, order, 1, 0), KRN_NO_MEMORY);
    for (const int length : {2147483647, 2147483646, 1 << 30})
        EXPECT_EQ(krnDftInitAlloc32f(&dft, length, 1, 0), KRN_NO_MEMORY);
    EXPECT_EQ(krnFft2DInitAlloc32f(&fft2d, 30, 30, 1, 0), KRN_NO_MEMORY);
    EXPECT_EQ(krnDft2DInitAlloc32f(&dft2d, 2147483647, 2147483647, 1, 0), KRN_NO_MEMORY);
    float values[64] = {};
    EXPECT_EQ(krnFftFwd32f(values, values, &fft, nullptr), KRN_WRONG_PLAN);
    EXPECT_EQ(krnFftFree32f(&fft), KRN_WRONG_PLAN);
    EXPECT_EQ(krnDft2DFree32f(&dft2d), KRN_WRONG_PLAN);
    EXPECT_EQ(krnDft2DWorkSize32f(nullptr, &size), KRN_NULL_POINTER);

    ASSERT_EQ(krnDftInitAlloc32f(&dft, 12, 1, 0), KRN_OK);
    ASSERT_EQ(krnDft2DInitAlloc32f(&dft2d, 5, 4, 1, 0), KRN_OK);
    EXPECT_EQ(krnDftWorkSize32f(&dft, nullptr), KRN_NULL_POINTER);
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        EXPECT_EQ(krnDftFwd32f(nullptr, nullptr, nullptr, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ(krnDftFwd32fc(nullptr, values, &dft, nullptr), KRN_WRONG_PLAN);
        EXPECT_EQ(krnDftFwd32f(nullptr, values, &dft, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ(krnDftInv32f(values, nullptr, &dft, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ(krnDft2DFwd32fC1(values, 0, nullptr, 20, &dft2d, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ(krnDft2DFwd32fC1(values, 0, values, 20, &dft2d, nullptr), KRN_BAD_STEP);
        EXPECT_EQ(krnDft2DInv32fC1(values, 20, values, -20, &dft2d, nullptr), KRN_BAD_STEP);
    }
    krnDispatchIndex = 0;
    EXPECT_EQ(krnDftFree32f(&dft), KRN_OK);
    EXPECT_EQ(krnDft2DFree32f(&dft2d), KRN_OK);
    EXPECT_EQ(krnDftFwd32f(values, values, &dft, nullptr), KRN_WRONG_PLAN);
    EXPECT_EQ(krnDft2DFwd32fC1(values, 20, values, 20, &dft2d, nullptr), KRN_WRONG_PLAN);
}

// Each allocation of a plan and of a transform in turn fails; nothing stays behind.
TEST(FourierRefusals, ExhaustedMemory)
{
    front::MemoryWatch memory;
    Floats values(2 * 8192);
    for (const int length : {1, 64, 509, 600, 1018, 1048, 37 * 1024}) {
        bool failed = true;
        for (int allocation = 0; failed; ++allocation) {
            Floats out(static_cast<std::size_t>(length) + 600 * 16), in(out.size());
            OrvDftPlan plan;
            OrvDft2DPlan image;
            memory.forget();
            memory.failAt(allocation);
            KrnStatus status = krnDftInitAlloc32f(&plan, length, 1, 0), status2 = KRN_NO_MEMORY;
            failed = status != KRN_OK;
            if (!failed) {
                status = krnDftFwd32f(in.data(), out.data(), &plan, nullptr);
                failed = status != KRN_OK;
                EXPECT_EQ(krnDftFree32f(&plan), KRN_OK);
            }
            EXPECT_EQ(memory.live(), 0u);
            memory.forget();
            memory.failAt(allocation);
            status2 = krnDft2DInitAlloc32f(&image, length, length < 1000 ? 17 : 1, 1, 0);
            if (status2 == KRN_OK) {
                Floats plane(static_cast<std::size_t>(length) * 17);
                status2 = krnDft2DFwd32fC1(plane.data(), 4 * length, plane.data(), 4 * length, &image, nullptr);
                EXPECT_EQ(krnDft2DFree32f(&image), KRN_OK);
            }
            EXPECT_EQ(memory.live(), 0u);
            failed = failed || status2 != KRN_OK;
            for (const KrnStatus each : {status, status2})
                EXPECT_TRUE(each == KRN_OK || each == KRN_NO_MEMORY) << each;
        }
    }
}

} // namespace
