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
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

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
inline std::size_t toSixteens(std::size_t samples, unsigned char *out, const unsigned char *in)
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

#endif

template <class Sample, Rounding rounding> struct ToInteger {
    Sample operator()(float value) const { return toSample<Sample, rounding>(value); }
#if ORV_SSE_LEVEL >= 2
    std::size_t many(std::size_t samples, unsigned char *out, const unsigned char *in) const
    {
        return toSixteens<Sample, rounding>(samples, out, in);
    }
#endif
};

template <class Sample> struct ToFloat {
    float operator()(Sample value) const { return static_cast<float>(value); }
};

template <class Sample, std::size_t layout>
KrnStatus convertToIntegers(const void *source, std::int32_t sourceStep, void *destination,
                            std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                            std::int32_t rounding)
{
    const auto run = [=](auto operation) {
        return compute<Sample, layout, float>(width, height, operation, Given{destination, destinationStep},
                                              Given{source, sourceStep});
    };
    switch (rounding) {
    case 0:
        return run(ToInteger<Sample, Rounding::TowardZero>());
    case 1:
        return run(ToInteger<Sample, Rounding::NearestEven>());
    default:
        return run(ToInteger<Sample, Rounding::NearestAway>());
    }
}

} // namespace

#define ORV_TO_FLOATS(name, Sample, layout)                                                                          \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,     \
                   std::int32_t width, std::int32_t height)                                                          \
    {                                                                                                                \
        return compute<float, layout, Sample>(width, height, ToFloat<Sample>(), Given{destination, destinationStep}, \
                                              Given{source, sourceStep});                                            \
    }

#define ORV_TO_INTEGERS(name, Sample, layout)                                                                     \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,  \
                   std::int32_t width, std::int32_t height, std::int32_t rounding)                                \
    {                                                                                                             \
        return convertToIntegers<Sample, layout>(source, sourceStep, destination, destinationStep, width, height, \
                                                 rounding);                                                       \
    }

#define ORV_CONVERSIONS(samples, Sample)                    \
    ORV_TO_FLOATS(krnConvert##samples##32f, Sample, C1)     \
    ORV_TO_FLOATS(krnConvert##samples##32fC3, Sample, C3)   \
    ORV_TO_FLOATS(krnConvert##samples##32fC4, Sample, C4)   \
    ORV_TO_FLOATS(krnConvert##samples##32fAC4, Sample, AC4) \
    ORV_TO_INTEGERS(krnConvert32f##samples##C1, Sample, C1) \
    ORV_TO_INTEGERS(krnConvert32f##samples##C3, Sample, C3) \
    ORV_TO_INTEGERS(krnConvert32f##samples##C4, Sample, C4) \
    ORV_TO_INTEGERS(krnConvert32f##samples##AC4, Sample, AC4)

ORV_CONVERSIONS(8u, std::uint8_t)
ORV_CONVERSIONS(8s, std::int8_t)
ORV_CONVERSIONS(16u, std::uint16_t)
ORV_CONVERSIONS(16s, std::int16_t)
ORV_CONVERSIONS(32s, std::int32_t)

#include "end.h"
