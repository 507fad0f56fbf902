// Conversions between integer samples and floats.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

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

#if ORV_VECTOR_BYTES > 0

#include "control_word.h"

// Floats, rounded to integers that pack to the right samples.
template <class Sample, Rounding rounding> inline S32s toIntegers(Floats value)
{
    const Floats bottom = everywhere(Range<Sample>::bottom), top = everywhere(mostWhole<Sample>);
    // What no 32-bit integer holds becomes the lowest one, which packs to the bottom of most samples. The minimum of a
    // number and a not-a-number is its second operand.
    constexpr bool packsToBottom =
        sizeof(Sample) < 4 && Range<Sample>::topSample != 65535 && rounding != Rounding::NearestAway;
    const Floats inside = packsToBottom ? minimum(top, value) : minimum(maximum(value, bottom), top);
    S32s whole = rounding == Rounding::NearestEven ? rounded(inside) : truncated(inside);
    if constexpr (rounding == Rounding::NearestAway) {
        const Floats fraction = inside - toFloats(whole);
        whole = whole - (fraction >= 0.5f) + (fraction <= -0.5f);
    }
    if constexpr (sizeof(Sample) == 4)
        whole |= as<std::int32_t>(as<std::uint32_t>(value >= Range<Sample>::top) >> 1);
    return whole;
}

#endif

template <class Sample, Rounding rounding> struct ToInteger {
    Sample operator()(float value) const { return toSample<Sample, rounding>(value); }

#if ORV_VECTOR_BYTES > 0
    // Of as many vectors of floats as a vector of samples has integers.
    Group<Sample, 1> group(const unsigned char *in) const requires(sizeof(Sample) < sizeof(float))
    {
        const auto integers = [in](std::size_t vector) {
            return toIntegers<Sample, rounding>(loadVector<float>(in, vector * perVector<float>));
        };
        if constexpr (sizeof(Sample) == 2) {
            return {inOrderOfPairs(packed<Sample>(integers(0), integers(1)))};
        } else {
            const S16s low = packed<std::int16_t>(integers(0), integers(1));
            const S16s high = packed<std::int16_t>(integers(2), integers(3));
            return {inOrderOfQuads(packed<Sample>(low, high))};
        }
    }
#endif
};

template <class Sample> struct ToFloat {
    float operator()(Sample value) const { return static_cast<float>(value); }

#if ORV_VECTOR_BYTES > 0
    auto group(const unsigned char *in) const requires(sizeof(Sample) < sizeof(float))
    {
        constexpr Upper upper = Range<Sample>::bottomSample < 0 ? Upper::Signs : Upper::Zeros;
        const auto integers = widened<std::int32_t, Sample, upper>(loadVector<Sample>(in));
        Group<float, integers.count> floats;
        for (std::size_t i = 0; i < integers.count; ++i)
            floats.vectors[i] = toFloats(integers.vectors[i]);
        return floats;
    }
#endif
};

#if ORV_VECTOR_BYTES > 0

template <Rounding rounding> inline S32s vectorOf(ToInteger<std::int32_t, rounding>, Floats floats)
{
    return toIntegers<std::int32_t, rounding>(floats);
}
inline Floats vectorOf(ToFloat<std::int32_t>, S32s integers)
{
    return toFloats(integers);
}

#endif

// While it lives, vectors of floats round to the nearest integer.
class NearestRounding {
public:
#if ORV_VECTOR_BYTES > 0
    NearestRounding() : saved_(krnSetMxcsrRound(mxcsrNearest)) {}
    ~NearestRounding()
    {
        krnRestoreMxcsr(saved_);
    }

private:
    unsigned saved_;
#endif
};

template <class Sample, std::size_t layout>
KrnStatus convertToIntegers(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height,
                            std::int32_t rounding)
{
    const auto run = [=](auto operation) {
        [[maybe_unused]] const NearestRounding nearest;
        return compute<Sample, layout, float>(width, height, operation, destination, source);
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

#define ORV_TO_FLOATS(name, Sample, layout)                                                            \
    KRN_KERNEL(CopyKernel, name)                                                                       \
    {                                                                                                  \
        return compute<float, layout, Sample>(width, height, ToFloat<Sample>(), to(destination, step), \
                                              from(source, sourceStep));                               \
    }

#define ORV_TO_INTEGERS(layout, stem, Sample)                                                                    \
    KRN_KERNEL(ConvertRoundKernel, stem##layout)                                                                 \
    {                                                                                                            \
        return convertToIntegers<Sample, layout>(from(source, sourceStep), to(destination, step), width, height, \
                                                 rounding);                                                      \
    }

#define ORV_CONVERSIONS(samples, Sample)                    \
    ORV_TO_FLOATS(krnConvert##samples##32f, Sample, C1)     \
    ORV_TO_FLOATS(krnConvert##samples##32fC3, Sample, C3)   \
    ORV_TO_FLOATS(krnConvert##samples##32fC4, Sample, C4)   \
    ORV_TO_FLOATS(krnConvert##samples##32fAC4, Sample, AC4) \
    ORV_LAYOUTS(ORV_TO_INTEGERS, krnConvert32f##samples, Sample)

ORV_CONVERSIONS(8u, std::uint8_t)
ORV_CONVERSIONS(8s, std::int8_t)
ORV_CONVERSIONS(16u, std::uint16_t)
ORV_CONVERSIONS(16s, std::int16_t)
ORV_CONVERSIONS(32s, std::int32_t)

#include "end.h"
