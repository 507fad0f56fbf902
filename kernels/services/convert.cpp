// Conversions between integer samples and floats.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"

// The range of a sample type, and the same as floats. The top of 32 bits is one beyond it: floats have no nearer value.
template <class Sample, std::int32_t low, std::int32_t high> struct Bounds {
    static constexpr Sample bottomSample = low, topSample = high;
    static constexpr float bottom = static_cast<float>(low), top = static_cast<float>(high);
};
template <class Sample> struct Range;
template <> struct Range<std::uint8_t> : Bounds<std::uint8_t, 0, 255> {
};
template <> struct Range<std::int8_t> : Bounds<std::int8_t, -128, 127> {
};
template <> struct Range<std::uint16_t> : Bounds<std::uint16_t, 0, 65535> {
};
template <> struct Range<std::int16_t> : Bounds<std::int16_t, -32768, 32767> {
};
template <> struct Range<std::int32_t> : Bounds<std::int32_t, -2147483647 - 1, 2147483647> {
};

// The highest float of the range that a 32-bit integer holds.
template <class Sample> constexpr float mostWhole = sizeof(Sample) == 4 ? 2147483520.0f : Range<Sample>::top;

enum class Rounding { TowardZero, NearestEven, NearestAway };

// Whole part and fraction are exact in single floats, so that the outcome depends on no rounding mode of the processor.
// Without branches, for vectors' sake. A not-a-number becomes the bottom of the range.
template <class Sample, Rounding rounding> inline Sample toSample(float value)
{
    float inside = value > Range<Sample>::bottom ? value : Range<Sample>::bottom;
    inside = inside < mostWhole<Sample> ? inside : mostWhole<Sample>;
    const std::int32_t whole = static_cast<std::int32_t>(inside);
    std::int32_t rounded = whole;
    if constexpr (rounding != Rounding::TowardZero) {
        const float fraction = inside - static_cast<float>(whole);
        const std::int32_t tieGoesOut = rounding == Rounding::NearestAway ? 1 : whole & 1;
        rounded += (fraction > 0.5f) | (static_cast<std::int32_t>(fraction == 0.5f) & tieGoesOut);
        rounded -= (fraction < -0.5f) | (static_cast<std::int32_t>(fraction == -0.5f) & tieGoesOut);
    }
    if constexpr (sizeof(Sample) == 4)
        rounded = value >= Range<Sample>::top ? Range<Sample>::topSample : rounded;
    return static_cast<Sample>(rounded);
}

#if ORV_SSE_LEVEL >= 2

#include "control_word.h"
#include "floats4.h"

// Four floats, rounded to integers that pack to the right samples.
template <class Sample, Rounding rounding> inline __m128i toIntegers4(__m128 value)
{
    // What no 32-bit integer holds becomes the lowest one, which packs to the bottom of most samples.
    constexpr bool packsToBottom =
        sizeof(Sample) < 4 && Range<Sample>::topSample != 65535 && rounding != Rounding::NearestAway;
    const __m128 inside =
        packsToBottom ? notAbove(value, Range<Sample>::top) : clamped(value, Range<Sample>::bottom, mostWhole<Sample>);
    __m128i whole = rounding == Rounding::NearestEven ? _mm_cvtps_epi32(inside) : _mm_cvttps_epi32(inside);
    if constexpr (rounding == Rounding::NearestAway) {
        const __m128 fraction = _mm_sub_ps(inside, _mm_cvtepi32_ps(whole));
        const __m128 half = _mm_set1_ps(0.5f);
        whole = _mm_sub_epi32(whole, _mm_castps_si128(_mm_cmpge_ps(fraction, half)));
        whole = _mm_add_epi32(whole, _mm_castps_si128(_mm_cmple_ps(fraction, _mm_sub_ps(_mm_setzero_ps(), half))));
    }
    if constexpr (sizeof(Sample) == 4) {
        const __m128 above = _mm_cmpge_ps(value, _mm_set1_ps(Range<Sample>::top));
        whole = _mm_or_si128(whole, _mm_srli_epi32(_mm_castps_si128(above), 1));
    }
    return whole;
}

// Returns how many samples it has done.
template <class Sample, Rounding rounding>
inline std::size_t toSixteens(std::size_t samples, const unsigned char *in, unsigned char *out)
{
    const unsigned savedControl = krnSetMxcsrRound(mxcsrNearest);
    std::size_t i = 0;
    for (; i + 16 <= samples; i += 16) {
        __m128i integers[4];
        for (std::size_t quarter = 0; quarter < 4; ++quarter)
            integers[quarter] = toIntegers4<Sample, rounding>(loadFloats(in + 4 * (i + 4 * quarter)));
        storePacked<Sample>(out + i * sizeof(Sample), integers);
    }
    krnRestoreMxcsr(savedControl);
    return i;
}

#else

template <class Sample, Rounding> inline std::size_t toSixteens(std::size_t, const unsigned char *, unsigned char *)
{
    return 0;
}

#endif

template <class Sample, Rounding rounding>
inline void toSamples(std::size_t samples, const unsigned char *in, unsigned char *out)
{
    ORV_INDEPENDENT
    for (std::size_t i = toSixteens<Sample, rounding>(samples, in, out); i < samples; ++i)
        store(out, i, toSample<Sample, rounding>(load<float>(in, i)));
}

template <class Sample, Rounding rounding>
KrnStatus toIntegers(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                     std::int32_t width, std::int32_t height, std::int32_t channels)
{
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        toSamples<Sample, rounding>(pixels * static_cast<std::size_t>(channels), in, out);
    };
    return overRows(width, height, row, from(source, sourceStep, channels * 4),
                    to(destination, destinationStep, channels * static_cast<std::int32_t>(sizeof(Sample))));
}

template <class In, class Out, class Convert>
KrnStatus threeOfFour(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                      std::int32_t width, std::int32_t height, Convert convert)
{
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            for (std::size_t channel = 0; channel < 3; ++channel)
                store(out, 4 * i + channel, static_cast<Out>(convert(load<In>(in, 4 * i + channel))));
    };
    return overRows(width, height, row, from(source, sourceStep, 4 * sizeof(In)),
                    to(destination, destinationStep, 4 * sizeof(Out)));
}

// Picks the loop of a rounding mode; AC4 (channels 0) has its own.
template <class Sample, std::size_t channels>
KrnStatus convertToIntegers(const void *source, std::int32_t sourceStep, void *destination,
                            std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                            std::int32_t rounding)
{
    const auto run = [&]<Rounding mode>() {
        if constexpr (channels == 0)
            return threeOfFour<float, Sample>(source, sourceStep, destination, destinationStep, width, height,
                                              [](float value) { return toSample<Sample, mode>(value); });
        else
            return toIntegers<Sample, mode>(source, sourceStep, destination, destinationStep, width, height, channels);
    };
    switch (rounding) {
    case 0:
        return run.template operator()<Rounding::TowardZero>();
    case 1:
        return run.template operator()<Rounding::NearestEven>();
    default:
        return run.template operator()<Rounding::NearestAway>();
    }
}

template <class Sample, std::size_t channels>
KrnStatus convertToFloats(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                          std::int32_t width, std::int32_t height)
{
    if constexpr (channels == 0) {
        return threeOfFour<Sample, float>(source, sourceStep, destination, destinationStep, width, height,
                                          [](Sample value) { return static_cast<float>(value); });
    } else {
        const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
            ORV_INDEPENDENT
            for (std::size_t i = 0; i < pixels * channels; ++i)
                store(out, i, static_cast<float>(load<Sample>(in, i)));
        };
        return overRows(width, height, row, from(source, sourceStep, channels * sizeof(Sample)),
                        to(destination, destinationStep, channels * 4));
    }
}

} // namespace

#define ORV_TO_FLOATS(name, Sample, channels)                                                                      \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,   \
                   std::int32_t width, std::int32_t height)                                                        \
    {                                                                                                              \
        return convertToFloats<Sample, channels>(source, sourceStep, destination, destinationStep, width, height); \
    }

#define ORV_TO_INTEGERS(name, Sample, channels)                                                                     \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,    \
                   std::int32_t width, std::int32_t height, std::int32_t rounding)                                  \
    {                                                                                                               \
        return convertToIntegers<Sample, channels>(source, sourceStep, destination, destinationStep, width, height, \
                                                   rounding);                                                       \
    }

#define ORV_CONVERSIONS(samples, Sample)                   \
    ORV_TO_FLOATS(krnConvert##samples##32f, Sample, 1)     \
    ORV_TO_FLOATS(krnConvert##samples##32fC3, Sample, 3)   \
    ORV_TO_FLOATS(krnConvert##samples##32fC4, Sample, 4)   \
    ORV_TO_FLOATS(krnConvert##samples##32fAC4, Sample, 0)  \
    ORV_TO_INTEGERS(krnConvert32f##samples##C1, Sample, 1) \
    ORV_TO_INTEGERS(krnConvert32f##samples##C3, Sample, 3) \
    ORV_TO_INTEGERS(krnConvert32f##samples##C4, Sample, 4) \
    ORV_TO_INTEGERS(krnConvert32f##samples##AC4, Sample, 0)

ORV_CONVERSIONS(8u, std::uint8_t)
ORV_CONVERSIONS(8s, std::int8_t)
ORV_CONVERSIONS(16u, std::uint16_t)
ORV_CONVERSIONS(16s, std::int16_t)
ORV_CONVERSIONS(32s, std::int32_t)

#include "end.h"
