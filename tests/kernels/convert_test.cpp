// Conversions between integers and floats against exact arithmetic.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "kernels.h"

namespace {

using namespace orv;

// The value that a rounding mode makes of a number between bottom and top.
double roundedBy(int mode, double value)
{
    const double truncated = std::trunc(value);
    if (mode == 0)
        return truncated;
    const double sum = value < 0 ? value - 0.5 : value + 0.5; // exact: a float and a half fit a double
    double result = std::trunc(sum);
    if (mode == 1 && result == sum && std::fmod(result, 2) != 0)
        result += value < 0 ? 1 : -1;
    return result;
}

std::vector<float> samples(double bottom, double top)
{
    std::vector<float> values = {0.0f,       -0.0f,       0.5f,        -0.5f,        1.5f,        -1.5f,
                                 2.5f,       -2.5f,       0.49999997f, -0.49999997f, 0.50000006f, 1e-40f,
                                 8388609.0f, -8388609.0f, 1e30f,       -1e30f,       4194304.5f};
    for (const double edge : {bottom, top})
        for (const double offset : {-2.0, -1.5, -1.0, -0.5, -0.25, 0.0, 0.25, 0.5, 1.0, 1.5})
            values.push_back(static_cast<float>(edge + offset));
    values.push_back(std::nextafter(2147483648.0f, 0.0f));
    values.push_back(std::numeric_limits<float>::infinity());
    values.push_back(-std::numeric_limits<float>::infinity());
    std::mt19937 random(7);
    for (int i = 0; i < 4000; ++i) {
        const double range = top - bottom;
        values.push_back(static_cast<float>(bottom - range / 8 + range * 1.25 * random() / 4294967296.0));
        values.push_back(static_cast<float>(static_cast<int>(random() % 1024) - 512) / 4.0f); // many ties
    }
    return values;
}

template <class Sample> struct ToIntegers {
    const char *name;
    const Kernel<ConvertRoundKernel> *layouts[4]; // C1, C3, C4, AC4
    const Kernel<ConvertKernel> *back[4];
};

template <class Sample> void testConversions(const ToIntegers<Sample> &kernels)
{
    const double bottom = std::numeric_limits<Sample>::min(), top = std::numeric_limits<Sample>::max();
    std::vector<float> in = samples(bottom, top);
    in.resize(in.size() / 12 * 12);
    const int channelsOf[] = {1, 3, 4, 4};
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
        for (const int mode : {0, 1, 2, -7})
            for (int layout = 0; layout < 4; ++layout) {
                std::vector<Sample> out(in.size(), 77);
                const int width = static_cast<int>(in.size()) / channelsOf[layout];
                const int count = static_cast<int>(in.size());
                ASSERT_EQ((*kernels.layouts[layout])(in.data(), 4 * count, out.data(),
                                                     count * static_cast<int>(sizeof(Sample)), width, 1, mode),
                          KRN_OK);
                for (std::size_t i = 0; i < in.size(); ++i) {
                    double expected = in[i] >= top ? top : in[i] <= bottom ? bottom : roundedBy(mode, in[i]);
                    if (layout == 3 && i % 4 == 3)
                        expected = 77;
                    ASSERT_EQ(static_cast<double>(out[i]), expected)
                        << kernels.name << " of " << in[i] << ", mode " << mode << ", build " << krnDispatchIndex
                        << ", layout " << layout;
                }
            }
    krnDispatchIndex = 0;
}

template <class Sample> void testToFloats(const ToIntegers<Sample> &kernels)
{
    std::vector<Sample> in;
    std::mt19937 random(11);
    for (int i = 0; i < 1200; ++i)
        in.push_back(
            static_cast<Sample>(i % 2 == 0 ? random() : (random() % 5) + std::numeric_limits<Sample>::max() - 2));
    const int channelsOf[] = {1, 3, 4, 4};
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
        for (int layout = 0; layout < 4; ++layout) {
            std::vector<float> out(in.size(), 77);
            const int count = static_cast<int>(in.size());
            ASSERT_EQ((*kernels.back[layout])(in.data(), count * static_cast<int>(sizeof(Sample)), out.data(),
                                              4 * count, count / channelsOf[layout], 1),
                      KRN_OK);
            for (std::size_t i = 0; i < in.size(); ++i) {
                const volatile float nearest = static_cast<float>(in[i]);
                ASSERT_EQ(out[i], layout == 3 && i % 4 == 3 ? 77.0f : nearest) << kernels.name << " of " << +in[i];
            }
        }
    krnDispatchIndex = 0;
}

#define CONVERSIONS(samples, Sample)                                                                      \
    ToIntegers<Sample>                                                                                    \
    {                                                                                                     \
#samples, {&krnConvert32f##samples##C1, &krnConvert32f##samples##C3, &krnConvert32f##samples##C4, \
                   &krnConvert32f##samples##AC4 },                                                        \
        {                                                                                                 \
            &krnConvert##samples##32f, &krnConvert##samples##32fC3, &krnConvert##samples##32fC4,          \
                &krnConvert##samples##32fAC4                                                              \
        }                                                                                                 \
    }

TEST(Conversions, RoundAndSaturate)
{
    testConversions(CONVERSIONS(8u, std::uint8_t));
    testConversions(CONVERSIONS(8s, std::int8_t));
    testConversions(CONVERSIONS(16u, std::uint16_t));
    testConversions(CONVERSIONS(16s, std::int16_t));
    testConversions(CONVERSIONS(32s, std::int32_t));
}

TEST(Conversions, ToFloatsAreExactOrNearest)
{
    testToFloats(CONVERSIONS(8u, std::uint8_t));
    testToFloats(CONVERSIONS(8s, std::int8_t));
    testToFloats(CONVERSIONS(16u, std::uint16_t));
    testToFloats(CONVERSIONS(16s, std::int16_t));
    testToFloats(CONVERSIONS(32s, std::int32_t));
}

TEST(Conversions, ANotANumberBecomesTheBottom)
{
    const std::vector<float> in(50, std::numeric_limits<float>::quiet_NaN());
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
        for (const int mode : {0, 1, 2}) {
            std::vector<std::int16_t> words(50, 1);
            krnConvert32f16sC1(in.data(), 200, words.data(), 100, 50, 1, mode);
            EXPECT_EQ(words, std::vector<std::int16_t>(50, -32768));
            std::vector<std::int32_t> longWords(50, 1);
            krnConvert32f32sC1(in.data(), 200, longWords.data(), 200, 50, 1, mode);
            EXPECT_EQ(longWords, std::vector<std::int32_t>(50, std::numeric_limits<std::int32_t>::min()));
        }
    krnDispatchIndex = 0;
}

} // namespace
