// Rows of resizing, whose sources lie at offsets of a table: every build between guard pages, against formulas and so
// against build 0.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "guarded.h"
#include "trial.h"

namespace {

using namespace orv;

int below(Random &random, int bound)
{
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

// A row of samples that starts behind a guard page or ends before one, at any byte.
struct Line {
    const SampleType &type;
    int samples;
    std::uint8_t *start;

    Line(Guarded &memory, const SampleType &itsType, int count, Random &random) : type(itsType), samples(count)
    {
        const std::size_t bytes = static_cast<std::size_t>(count * type.bytes),
                          gap = random() % 3 == 0 ? random() % 9 : 0;
        memory.grow(bytes + 64);
        start = random() % 2 == 0 ? memory.begin() + gap : memory.end() - bytes - gap;
        std::memset(memory.begin(), 0x5A, static_cast<std::size_t>(memory.end() - memory.begin()));
    }
    Raster raster() const { return {&type, samples, 1, 0, 0, start, samples * type.bytes, start, 0}; }
    double get(int i) const { return raster().get(i, 0); }
    void set(int i, double value) const { raster().set(i, 0, value); }
    std::vector<std::uint8_t> bytes() const { return {start - 0, start + samples * type.bytes}; }
    void fill(Random &random) const
    {
        for (int i = 0; i < samples; ++i)
            set(i, type.isFloat()      ? static_cast<float>(below(random, 40001) - 20000) / 16
                   : random() % 5 == 0 ? (random() % 2 == 0 ? type.lowest : std::min(type.highest, 65535.0))
                                       : below(random, static_cast<int>(std::min(type.highest, 65535.0)) + 1));
    }
};

// Runs call() in all builds; each must write what expected(i) says of each sample that is written.
template <class Call, class Expected>
testing::AssertionResult holdRow(const Row &row, const Line &out, int written, int pixel, Call call, Expected expected)
{
    const std::vector<std::uint8_t> before = out.bytes();
    testing::AssertionResult outcome = testing::AssertionSuccess();
    for (krnDispatchIndex = 0; outcome && krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        if (const KrnStatus status = call(); status != KRN_OK)
            outcome = testing::AssertionFailure() << row.name << " returned " << status;
        const std::vector<std::uint8_t> result = out.bytes();
        std::memcpy(out.start, before.data(), before.size());
        for (int i = 0; i < out.samples && outcome; ++i) {
            if (i % pixel < written)
                out.set(i, expected(i));
            const std::size_t at = static_cast<std::size_t>(i * out.type.bytes),
                              bytes = static_cast<std::size_t>(out.type.bytes);
            if (std::memcmp(out.start + at, &result[at], bytes) != 0) {
                const double right = out.get(i);
                std::memcpy(out.start + at, &result[at], bytes);
                outcome = testing::AssertionFailure()
                          << row.name << " of build " << krnDispatchIndex << ", sample " << i << " of " << out.samples
                          << ": " << out.get(i) << ", not " << right;
            }
        }
        std::memcpy(out.start, before.data(), before.size());
    }
    krnDispatchIndex = 0;
    return outcome;
}

float f(double value)
{
    const volatile float rounded = static_cast<float>(value);
    return rounded;
}

// Newton's form in single floats, operation by operation.
float newton(float p0, float p1, float p2, float p3, const float *factor)
{
    const float d1 = f(double{p1} - p0), d2 = f(double{f(double{p2} - p1)} - d1);
    const float d3 = f(double{f(double{f(double{p1} - f(2.0 * p2))} + p3)} - d2);
    const float inner = f(double{p0} + f(double{d3} * factor[2]));
    return f(double{f(double{factor[0]} * d1)} + f(double{f(double{factor[1]} * d2)} + inner));
}

double roundedTo(const SampleType &type, float value)
{
    return type.isFloat() ? value : std::clamp<double>(std::trunc(f(double{value} + 0.5)), 0, type.highest);
}

// Weights of results, with the form of the sources as bytes, words or floats have them.
struct Weights {
    std::vector<std::int32_t> parts; // of resizeOne
    std::vector<std::int32_t> packed;
    std::vector<std::int16_t> words; // for the columns of bytes
    std::vector<float> floats;       // three arrays, of which linear methods use the first

    Weights(int count, int bytes, Random &random)
    {
        for (int i = 0; i < count; ++i) {
            parts.push_back(random() % 6 == 0 ? 0 : random() % 6 == 0 ? resizeOne : below(random, resizeOne + 1));
            packed.push_back(bytes == 1 ? -2 * parts.back() : parts.back() * 65536 + resizeOne - parts.back());
            words.push_back(static_cast<std::int16_t>(-2 * parts.back()));
        }
        for (int i = 0; i < 3 * count; ++i)
            floats.push_back(static_cast<float>(below(random, 4097)) / 2048 - (i < count ? 0 : 1));
    }
    double linear(bool asFloats, std::size_t i, double a, double b) const
    {
        if (!asFloats)
            return std::floor((a * (resizeOne - parts[i]) + b * parts[i] + resizeOne / 2) / resizeOne);
        const double t = floats[i];
        return f(double{f(a * f(1 - t))} + f(b * t));
    }
    float cubic(std::size_t i, const float *taps) const
    {
        const std::size_t count = parts.size();
        const float factor[] = {floats[i], floats[count + i], floats[2 * count + i]};
        return newton(taps[0], taps[1], taps[2], taps[3], factor);
    }
};

// Samples at ascending places, dense or sparse or all over the row, of pixels of any size; and so rows.
void tryResize(const Row &row, Random &random)
{
    static Guarded memory[2];
    const bool linear = row.is("ResizeLinear"), cubic = row.is("ResizeCubic"), fours = row.layout.written == 3;
    const SampleType &type = row.source;
    const int channels = fours ? 4 : 1 + below(random, 4),
              stride = channels + (random() % 4 == 0 ? below(random, 3) : 0);
    const int width = 1 + below(random, random() % 4 == 0 ? 60 : 16), samples = width * channels;
    const int height = 1 + below(random, 5), sourceRows = 4 + below(random, 4), above = below(random, 3);
    const int taps = linear ? 2 : cubic ? 4 : 1, pixels = taps + below(random, random() % 2 == 0 ? 20 : 200);
    const int sourceStep = (pixels - 1) * stride + channels + below(random, 3), step = samples + below(random, 3);
    const Line in(memory[0], type, sourceStep * (sourceRows - 1) + (pixels - 1) * stride + channels, random);
    const Line out(memory[1], row.destination, step * (height - 1) + samples, random);
    in.fill(random);
    out.fill(random);
    const bool ascends = random() % 4 != 0;
    const auto place = [&](int i, int of, int bound) {
        return ascends ? static_cast<int>(std::int64_t{i} * bound / of) : below(random, bound);
    };
    std::vector<std::int32_t> offsets, indices;
    for (int i = 0; i < width; ++i)
        for (int first = place(i, width, pixels - taps + 1), channel = 0; channel < channels; ++channel)
            offsets.push_back((first * stride + channel) * type.bytes);
    for (int i = 0; i < above + height; ++i)
        indices.push_back(place(i, above + height, sourceRows - taps + 1));
    const bool floats = cubic || type.isFloat();
    const Weights across(samples, type.bytes, random), down(above + height, type.bytes, random);
    const int bufferBytes = floats ? 4 : 2, placeBytes = taps == 1 ? type.bytes : std::max(type.bytes, bufferBytes);
    // Words for vectors, and no byte beyond what is promised.
    const std::size_t shufflesSize = static_cast<std::size_t>(shufflesBytes(samples, placeBytes));
    alignas(32) static std::uint8_t shuffles[32000], buffers[4][1024];
    ASSERT_LT(shufflesSize, sizeof shuffles);
    ASSERT_LE(samples * bufferBytes, 1024);
    ResizeColumns columns = {samples, stride * type.bytes, offsets.data(), across.floats.data(), shuffles};
    ResizeRows rows = {above + height, indices.data(), down.floats.data(), {}, {}};
    if (!floats) {
        columns.weights = type.bytes == 1 ? static_cast<const void *>(across.words.data()) : across.packed.data();
        rows.weights = down.packed.data();
    }
    const auto call = [&] {
        shuffles[shufflesSize] = 0x77;
        EXPECT_EQ(krnResizeShuffles(&columns, type.bytes, type.bytes == 1 ? taps : 1, placeBytes, shuffles), KRN_OK);
        EXPECT_EQ(shuffles[shufflesSize], 0x77);
        for (std::size_t i = 0; i < 4; ++i) {
            rows.buffers[i] = buffers[i];
            rows.held[i] = noRow;
        }
        return (*static_cast<const Kernel<ResizeKernel> *>(row.kernel))(
            in.start, sourceStep * type.bytes, out.start, step * type.bytes, above, height, &columns, &rows);
    };
    const auto expected = [&](int at) -> double {
        if (at % step >= samples || (fours && at % step % 4 == 3))
            return out.get(at);
        const std::size_t x = static_cast<std::size_t>(at % step), y = static_cast<std::size_t>(above + at / step);
        const auto sample = [&](int right, int lower) {
            return in.get((indices[y] + lower) * sourceStep + offsets[x] / type.bytes + right * stride);
        };
        double between[4];
        for (int tap = 0; tap < taps; ++tap) {
            if (linear)
                between[tap] = across.linear(floats, x, sample(0, tap), sample(1, tap));
            else if (cubic) {
                const float line[] = {f(sample(0, tap)), f(sample(1, tap)), f(sample(2, tap)), f(sample(3, tap))};
                between[tap] = across.cubic(x, line);
            } else
                between[tap] = sample(0, tap);
        }
        if (linear)
            return down.linear(floats, y, between[0], between[1]);
        const float column[] = {f(between[0]), f(between[1]), f(between[2]), f(between[3])};
        return cubic ? roundedTo(type, down.cubic(y, column)) : between[0];
    };
    ASSERT_TRUE(holdRow(row, out, 1, 1, call, expected));
}

// Rows of a box, and sums that they start or are added to. Sums of bytes leave the range of 16 bits; none leaves the
// whole numbers of floats.
void trySum(const Row &row, Random &random)
{
    static Guarded memory[2];
    const int samples = 1 + below(random, random() % 4 == 0 ? 300 : 70), most = row.source.bytes == 1 ? 90 : 40;
    const int weights = random() % 3 == 0 ? most : 1;
    const RowsOfBox box = {1 + below(random, 5), 1 + below(random, weights), weights, 1 + below(random, weights)};
    const bool starts = random() % 3 == 0;
    const Line in(memory[0], row.source, samples * box.rows, random), out(memory[1], row.destination, samples, random);
    in.fill(random);
    for (int i = 0; i < samples; ++i)
        out.set(i, below(random, 1000));
    const auto call = [&] {
        return (*static_cast<const Kernel<SumRowsKernel> *>(row.kernel))(in.start, samples * row.source.bytes, &box,
                                                                         out.start, samples, starts);
    };
    std::vector<double> before;
    for (int i = 0; i < samples; ++i)
        before.push_back(starts ? 0 : out.get(i));
    ASSERT_TRUE(holdRow(row, out, 1, 1, call, [&](int i) {
        double sum = before[static_cast<std::size_t>(i)];
        for (int y = 0; y < box.rows; ++y)
            sum += in.get(y * samples + i) * (y == 0              ? box.firstWeight
                                              : y + 1 == box.rows ? box.lastWeight
                                                                  : box.weight);
        return sum;
    }));
}

// Boxes of any number of pixels. What has no weight is not a number where sums are doubles, and counts for nothing.
template <class Sum> void tryMeanOf(const Row &row, Random &random)
{
    static Guarded memory[2];
    const bool floats = sizeof(Sum) == sizeof(float);
    const int channels = row.layout.source, width = 1 + below(random, random() % 4 == 0 ? 150 : 40);
    const int together = !floats ? doubleTaps : channels == 1 ? floatTaps : 1;
    const int taps = (1 + below(random, random() % 4 == 0 ? 11 : 4) + together - 1) / together * together;
    const int most = 3, rowWeights = 1 + below(random, 2);
    const double top = row.destination.isFloat() ? 1000 : row.destination.highest;
    const int pixels = taps + below(random, 200);
    const Line in(memory[0], row.source, pixels * channels + (channels == 3), random);
    const Line out(memory[1], row.destination, width * channels, random);
    out.fill(random);
    for (int i = 0; i < in.samples; ++i)
        in.set(i, !floats && random() % 9 == 0 ? std::nan("") : below(random, static_cast<int>(top) * rowWeights + 1));
    std::vector<std::int32_t> offsets;
    std::vector<Sum> weights, totals;
    for (int i = 0; i < width; ++i) {
        offsets.push_back(below(random, pixels - taps + 1) * channels);
        Sum total = 0;
        for (int tap = 0; tap < taps; ++tap) {
            bool counts = tap == 0 || random() % 3 != 0;
            for (int channel = 0; channel < channels; ++channel) {
                const int at = offsets.back() + tap * channels + channel;
                if (tap == 0 && std::isnan(in.get(at)))
                    in.set(at, 1);
                counts = counts && !std::isnan(in.get(at));
            }
            weights.push_back(counts ? static_cast<Sum>(1 + below(random, most)) : 0);
            total += weights.back();
        }
        totals.push_back(total);
    }
    const BoxesOfRow boxes = {offsets.data(), weights.data(), totals.data(), taps};
    const auto call = [&] {
        return (*static_cast<const Kernel<MeanRowKernel> *>(row.kernel))(in.start, out.start, width, &boxes,
                                                                         rowWeights);
    };
    const auto expected = [&](int i) -> double {
        const std::size_t box = static_cast<std::size_t>(i / channels);
        double sum = 0;
        for (int tap = 0; tap < taps; ++tap)
            if (const double weight = weights[box * static_cast<std::size_t>(taps) + static_cast<std::size_t>(tap)];
                weight != 0)
                sum += in.get(offsets[box] + tap * channels + i % channels) * weight;
        const double all = double{totals[box]} * rowWeights;
        return row.destination.isFloat() ? sum / all : std::floor((2 * sum + all) / (2 * all));
    };
    ASSERT_TRUE(holdRow(row, out, row.layout.written, channels, call, expected));
}

void tryMean(const Row &row, Random &random)
{
    if (row.source.bytes == sizeof(float))
        tryMeanOf<float>(row, random);
    else
        tryMeanOf<double>(row, random);
}

void tryHalve(const Row &row, Random &random)
{
    static Guarded memory[2];
    const int channels = row.layout.source, width = 1 + below(random, random() % 4 == 0 ? 300 : 40);
    const int step = 2 * width * channels; // of the source, in samples
    const Line in(memory[0], row.source, 4 * step, random);
    const Line out(memory[1], row.destination, step, random); // two rows
    in.fill(random);
    out.fill(random);
    const auto call = [&] {
        return (*static_cast<const Kernel<HalveKernel> *>(row.kernel))(in.start, step * row.source.bytes, out.start,
                                                                       step / 2 * row.destination.bytes, width, 2);
    };
    const auto expected = [&](int i) -> double {
        const int left = i / (step / 2) * 2 * step + i % (step / 2) / channels * 2 * channels + i % channels;
        const double sum =
            in.get(left) + in.get(left + channels) + in.get(left + step) + in.get(left + step + channels);
        return row.destination.isFloat() ? sum / 4 : std::floor((sum + 2) / 4);
    };
    ASSERT_TRUE(holdRow(row, out, row.layout.written, channels, call, expected));
}

TEST(ResizeRows, EveryBuildComputesTheFormula)
{
    int rows = 0;
    for (const Row &row : allRows()) {
        const std::string name = row.name;
        std::seed_seq seed(name.begin(), name.end());
        Random random(seed);
        const auto attempt = row.is("ResizeNearest") || row.is("ResizeLinear") || row.is("ResizeCubic") ? tryResize
                             : row.is("SumRows")                                                        ? trySum
                             : row.is("MeanRow")                                                        ? tryMean
                             : row.is("Halve")                                                          ? tryHalve
                                                                                                        : nullptr;
        rows += attempt != nullptr;
        for (int i = 0; i < 150 && attempt != nullptr && !testing::Test::HasFatalFailure(); ++i)
            attempt(row, random);
    }
    EXPECT_EQ(rows, 18 + 5 + 20 + 9);
}

// Doubles do not hold sums of such floats: builds add them up in one order.
TEST(ResizeRows, SumsOfFloatsAreTheSameInAllBuilds)
{
    Random random(8);
    const auto draw = [&] { return std::ldexp(below(random, 2000) - 1000.0, below(random, 100)); };
    for (int round = 0; round < 200; ++round) {
        const int samples = 1 + below(random, 600);
        const RowsOfBox box = {1 + below(random, 20), 2, 3, 1};
        std::vector<float> in(static_cast<std::size_t>(samples * box.rows));
        std::generate(in.begin(), in.end(), [&] { return static_cast<float>(draw()); });
        std::vector<double> before(static_cast<std::size_t>(samples)), kept;
        std::generate(before.begin(), before.end(), draw);
        for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
            std::vector<double> sums = before;
            ASSERT_EQ(krnSumRows32f64f(in.data(), samples * 4, &box, sums.data(), samples, round % 4 == 0), KRN_OK);
            if (krnDispatchIndex == 0)
                kept = sums;
            ASSERT_EQ(sums, kept) << krnDispatchIndex;
        }
    }
    krnDispatchIndex = 0;
}

// Both kinds of tables, from positions that are added up: builds agree to the last bit.
TEST(ResizeRows, TablesAreTheSameInAllBuilds)
{
    Random random(7);
    for (int round = 0; round < 300; ++round) {
        const int length = 4 + below(random, 500), count = 1 + below(random, 700), whole = length + below(random, 9);
        const int offset = below(random, whole - length + 1);
        const double step = (length - 1) / (count + below(random, 1000) / 1000.0), start = below(random, 2) * step / 2;
        for (const std::int32_t mode : {KRN_NEAREST, KRN_LINEAR, KRN_CUBIC})
            for (const auto *axis : {&krnResizeAxis8u, &krnResizeAxis16u, &krnResizeAxis32f}) {
                std::vector<std::int32_t> kept, indices(static_cast<std::size_t>(count)), weights(3 * indices.size());
                for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
                    ASSERT_EQ((*axis)(start, step, count, mode, offset, whole - 1, indices.data(), weights.data()),
                              KRN_OK);
                    std::vector<std::int32_t> all = indices;
                    all.insert(all.end(), weights.begin(), weights.end());
                    if (krnDispatchIndex == 0)
                        kept = all;
                    ASSERT_EQ(all, kept);
                    const auto [least, most] = std::minmax_element(indices.begin(), indices.end());
                    ASSERT_GE(*least + offset, 0);
                    ASSERT_LE(*most + offset, whole - (mode == KRN_CUBIC ? 4 : mode == KRN_LINEAR ? 2 : 1));
                }
            }
    }
    krnDispatchIndex = 0;
}

} // namespace
