// The fixed filters of floats. Each formula says the order of its sums, which is the same in all builds.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

// A float that is rounded to one after each operation, also on the x87 unit.
struct Single {
    float value;

    friend Single operator+(Single a, Single b) { return {singleFloat(a.value + b.value)}; }
    friend Single operator-(Single a, Single b) { return {singleFloat(a.value - b.value)}; }
    friend Single operator*(float a, Single b) { return {singleFloat(a * b.value)}; }
};

// Samples around one, or around each of a vector.
struct OneSample {
    const unsigned char *sample;
    std::ptrdiff_t step, pixelBytes;

    Single at(std::int32_t right, std::int32_t down) const
    {
        return {load<float>(sample + right * pixelBytes + down * step, 0)};
    }
};

// What the rows of windows are made of.
inline auto pair(const auto &of, std::int32_t right, std::int32_t down)
{
    return of.at(-right, down) + of.at(right, down);
}
inline auto difference(const auto &of, std::int32_t down)
{
    return of.at(-1, down) - of.at(1, down);
}
inline auto sumOfThree(const auto &of, std::int32_t down)
{
    return pair(of, 1, down) + of.at(0, down);
}
inline auto weightedThree(const auto &of, std::int32_t down)
{
    return pair(of, 1, down) + 2.0f * of.at(0, down);
}
inline auto sumOfNine(const auto &of)
{
    return (sumOfThree(of, -1) + sumOfThree(of, 1)) + sumOfThree(of, 0);
}
inline auto weightedFive(const auto &of, std::int32_t down, float outer, float inner, float centre)
{
    return (outer * pair(of, 2, down) + inner * pair(of, 1, down)) + centre * of.at(0, down);
}
// Of a window of 5 x 5 that is symmetric: the outer rows, those beside the centre, the centre.
inline auto symmetric(const auto &of, const float (&outer)[3], const float (&inner)[3], const float (&centre)[3])
{
    const auto row = [&](const float(&weights)[3], std::int32_t down) {
        return weightedFive(of, down, weights[0], weights[1], weights[2]);
    };
    return ((row(outer, -2) + row(outer, 2)) + (row(inner, -1) + row(inner, 1))) + row(centre, 0);
}

struct PrewittV {
    auto operator()(const auto &of) const { return (difference(of, -1) + difference(of, 1)) + difference(of, 0); }
};
struct PrewittH {
    auto operator()(const auto &of) const { return sumOfThree(of, 1) - sumOfThree(of, -1); }
};
struct SobelV {
    auto operator()(const auto &of) const
    {
        return (difference(of, -1) + difference(of, 1)) + 2.0f * difference(of, 0);
    }
};
struct SobelH {
    auto operator()(const auto &of) const { return weightedThree(of, 1) - weightedThree(of, -1); }
};
struct Laplace3 {
    auto operator()(const auto &of) const { return 9.0f * of.at(0, 0) - sumOfNine(of); }
};
struct Laplace5 {
    auto operator()(const auto &of) const
    {
        const auto outer = [&](std::int32_t down) { return weightedFive(of, down, 1.0f, 3.0f, 4.0f); };
        const auto inner = [&](std::int32_t down) {
            return 6.0f * of.at(0, down) - 3.0f * pair(of, 2, down); // no product with 0: infinities have none
        };
        return (weightedFive(of, 0, -4.0f, 6.0f, 20.0f) + (inner(-1) + inner(1))) - (outer(-2) + outer(2));
    }
};
struct Gauss3 {
    auto operator()(const auto &of) const
    {
        const auto row = [&](std::int32_t down) { return 0.0625f * pair(of, 1, down) + 0.125f * of.at(0, down); };
        return (row(-1) + row(1)) + 2.0f * row(0);
    }
};
struct Gauss5 {
    auto operator()(const auto &of) const
    {
        constexpr float w2 = 0.003502627f, w7 = 0.012259195f, w12 = 0.021015761f, w31 = 0.05429072f, w52 = 0.0910683f,
                        w127 = 0.22241682f;
        return symmetric(of, {w2, w7, w12}, {w7, w31, w52}, {w12, w52, w127});
    }
};
struct Hipass5 {
    auto operator()(const auto &of) const
    {
        const auto row = [&](std::int32_t down) { return pair(of, 2, down) + sumOfThree(of, down); };
        return 25.0f * of.at(0, 0) - (((row(-2) + row(2)) + (row(-1) + row(1))) + row(0));
    }
};
struct Sharpen {
    auto operator()(const auto &of) const { return 2.125f * of.at(0, 0) - 0.125f * sumOfNine(of); }
};

template <class Filter>
[[gnu::noinline]] KrnStatus filter(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                   std::int32_t height)
{
    const Filter of;
    const std::ptrdiff_t pixelBytes = static_cast<std::ptrdiff_t>(samplesOf(layout) * sizeof(float));
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = 0; i < samples; ++i)
            store(out, i, of(OneSample{in + i * sizeof(float), source.step, pixelBytes}).value);
    };
    return overWindows<float, float>(layout, source, destination, width, height, {1, 1, 0, 0}, row);
}

template <class Three, class Five>
KrnStatus filterBy(std::int32_t code, std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                   std::int32_t height)
{
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    if (code == KRN_WINDOW_3X3)
        return filter<Three>(layout, source, destination, width, height);
    if (code == KRN_WINDOW_5X5)
        return filter<Five>(layout, source, destination, width, height);
    return KRN_BAD_MASK_SIZE;
}

} // namespace

#define ORV_FIXED(layout, name)                                                                      \
    KRN_KERNEL(FixedKernel, krnFixed##name##32f##layout)                                             \
    {                                                                                                \
        return filter<name>(layout, from(source, sourceStep), to(destination, step), width, height); \
    }
#define ORV_FIXED_BY(layout, name, three, five)                                                                     \
    KRN_KERNEL(CodedKernel, krnFixed##name##32f##layout)                                                            \
    {                                                                                                               \
        return filterBy<three, five>(code, layout, from(source, sourceStep), to(destination, step), width, height); \
    }

ORV_LAYOUTS(ORV_FIXED, PrewittV)
ORV_LAYOUTS(ORV_FIXED, PrewittH)
ORV_LAYOUTS(ORV_FIXED, SobelV)
ORV_LAYOUTS(ORV_FIXED, SobelH)
ORV_LAYOUTS(ORV_FIXED_BY, Laplace, Laplace3, Laplace5)
ORV_LAYOUTS(ORV_FIXED_BY, Gauss, Gauss3, Gauss5)
ORV_LAYOUTS(ORV_FIXED_BY, Hipass, Laplace3, Hipass5)
ORV_LAYOUTS(ORV_FIXED, Sharpen)

#include "end.h"
