// Sums, differences and products of an image and constants, between two rasters and in place.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <smmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

#include "operators.h"

template <class Sample, std::size_t layout, class Operator>
KrnStatus integerConstants(const void *values, Given<const void *> in, Given<void *> out, std::int32_t width,
                           std::int32_t height, std::int32_t scale)
{
    return withScale<Sample>(scale, [=](auto wrap) {
        const auto make = [=](Sample value) { return wrap(WithConstant<Operator, Sample>{Operator(), value}); };
        return computeByChannel<Sample, layout, Sample>(values, width, height, make, out, in);
    });
}

template <std::size_t layout, class Operator>
KrnStatus floatConstants(const void *values, Given<const void *> in, Given<void *> out, std::int32_t width,
                         std::int32_t height)
{
    const auto make = [](float value) { return WithConstant<Operator, float>{Operator(), value}; };
    return computeByChannel<float, layout, float>(values, width, height, make, out, in);
}

template <class Operator>
KrnStatus integerRow(const void *source, std::int32_t value, void *destination, std::int32_t length, std::int32_t scale)
{
    return withScale<std::int32_t>(scale, [=](auto wrap) {
        return computeOneRow<std::int32_t>(length, wrap(WithConstant<Operator, std::int32_t>{Operator(), value}),
                                           destination, source);
    });
}

} // namespace

// One channel takes the constant itself, cut to the sample.
#define ORV_CONSTANT(stem, Sample, Operator)                                                                         \
    KrnStatus stem##C1(const void *source, std::int32_t sourceStep, std::int32_t value, void *destination,           \
                       std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale)               \
    {                                                                                                                \
        const Sample cut = static_cast<Sample>(value);                                                               \
        return integerConstants<Sample, C1, Operator>(&cut, Given{source, sourceStep}, Given{destination, step},     \
                                                      width, height, scale);                                         \
    }                                                                                                                \
    KrnStatus stem##C1I(std::int32_t value, void *image, std::int32_t step, std::int32_t width, std::int32_t height, \
                        std::int32_t scale)                                                                          \
    {                                                                                                                \
        return stem##C1(image, step, value, image, step, width, height, scale);                                      \
    }

#define ORV_CONSTANTS(stem, layout, Sample, Operator)                                                                  \
    KrnStatus stem##layout(const void *source, std::int32_t sourceStep, const void *values, void *destination,         \
                           std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale)             \
    {                                                                                                                  \
        return integerConstants<Sample, layout, Operator>(values, Given{source, sourceStep}, Given{destination, step}, \
                                                          width, height, scale);                                       \
    }                                                                                                                  \
    KrnStatus stem##layout##I(const void *values, void *image, std::int32_t step, std::int32_t width,                  \
                              std::int32_t height, std::int32_t scale)                                                 \
    {                                                                                                                  \
        return stem##layout(image, step, values, image, step, width, height, scale);                                   \
    }

#define ORV_INTEGERS(stem, Sample, Operator)  \
    ORV_CONSTANT(stem, Sample, Operator)      \
    ORV_CONSTANTS(stem, C3, Sample, Operator) \
    ORV_CONSTANTS(stem, C4, Sample, Operator) \
    ORV_CONSTANTS(stem, AC4, Sample, Operator)

#define ORV_FLOAT_CONSTANTS(stem, layout, Operator)                                                                 \
    KrnStatus stem##layout(const void *source, std::int32_t sourceStep, const void *values, void *destination,      \
                           std::int32_t step, std::int32_t width, std::int32_t height)                              \
    {                                                                                                               \
        return floatConstants<layout, Operator>(values, Given{source, sourceStep}, Given{destination, step}, width, \
                                                height);                                                            \
    }                                                                                                               \
    KrnStatus stem##layout##I(const void *values, void *image, std::int32_t step, std::int32_t width,               \
                              std::int32_t height)                                                                  \
    {                                                                                                               \
        return stem##layout(image, step, values, image, step, width, height);                                       \
    }

#define ORV_FLOATS(stem, Operator)                                                                                     \
    KrnStatus stem##C1(const void *source, std::int32_t sourceStep, float value, void *destination, std::int32_t step, \
                       std::int32_t width, std::int32_t height)                                                        \
    {                                                                                                                  \
        return floatConstants<C1, Operator>(&value, Given{source, sourceStep}, Given{destination, step}, width,        \
                                            height);                                                                   \
    }                                                                                                                  \
    KrnStatus stem##C1I(float value, void *image, std::int32_t step, std::int32_t width, std::int32_t height)          \
    {                                                                                                                  \
        return stem##C1(image, step, value, image, step, width, height);                                               \
    }                                                                                                                  \
    ORV_FLOAT_CONSTANTS(stem, C3, Operator)                                                                            \
    ORV_FLOAT_CONSTANTS(stem, C4, Operator)                                                                            \
    ORV_FLOAT_CONSTANTS(stem, AC4, Operator)

#define ORV_INTEGER_ROW(stem, Operator)                                                                                \
    KrnStatus stem(const void *source, std::int32_t value, void *destination, std::int32_t length, std::int32_t scale) \
    {                                                                                                                  \
        return integerRow<Operator>(source, value, destination, length, scale);                                        \
    }                                                                                                                  \
    KrnStatus stem##I(std::int32_t value, void *row, std::int32_t length, std::int32_t scale)                          \
    {                                                                                                                  \
        return integerRow<Operator>(row, value, row, length, scale);                                                   \
    }

ORV_INTEGERS(krnAddC8u, std::uint8_t, Sum<std::uint8_t>)
ORV_INTEGERS(krnSubC8u, std::uint8_t, Difference<std::uint8_t>)
ORV_INTEGERS(krnSubRevC8u, std::uint8_t, Exchanged<Difference<std::uint8_t>>)
ORV_INTEGERS(krnMulC8u, std::uint8_t, Product<std::uint8_t>)
ORV_INTEGERS(krnAddC16s, std::int16_t, Sum<std::int16_t>)
ORV_INTEGERS(krnSubC16s, std::int16_t, Difference<std::int16_t>)
ORV_INTEGERS(krnMulC16s, std::int16_t, Product<std::int16_t>)
ORV_FLOATS(krnAddC32f, FloatSum)
ORV_FLOATS(krnSubC32f, FloatDifference)
ORV_FLOATS(krnMulC32f, FloatProduct)
ORV_INTEGER_ROW(krnAddC32sRow, Sum<std::int32_t>)
ORV_INTEGER_ROW(krnSubC32sRow, Difference<std::int32_t>)
ORV_INTEGER_ROW(krnSubRevC32sRow, Exchanged<Difference<std::int32_t>>)
ORV_INTEGER_ROW(krnMulC32sRow, Product<std::int32_t>)

KrnStatus krnSubRevC32fRow(const void *source, float value, void *destination, std::int32_t length)
{
    using Reversed = WithConstant<Exchanged<FloatDifference>, float>;
    return computeOneRow<float>(length, Reversed{{}, value}, destination, source);
}

KrnStatus krnSubRevC32fRowI(float value, void *row, std::int32_t length)
{
    return krnSubRevC32fRow(row, value, row, length);
}

#include "end.h"
