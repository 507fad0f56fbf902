// Sums, differences and products of an image and constants.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

template <class Sample, std::size_t layout, class Operator>
KrnStatus integerConstants(const void *values, ConstRaster in, Raster out, std::int32_t width, std::int32_t height,
                           std::int32_t scale)
{
    return withScale<Sample>(scale, [=](auto wrap) {
        const auto make = [=](Sample value) { return wrap(WithConstant<Operator, Sample>{Operator(), value}); };
        return computeByChannel<Sample, layout, Sample>(values, width, height, make, out, in);
    });
}

template <std::size_t layout, class Operator>
KrnStatus floatConstants(const void *values, ConstRaster in, Raster out, std::int32_t width, std::int32_t height)
{
    const auto make = [](float value) { return WithConstant<Operator, float>{Operator(), value}; };
    return computeByChannel<float, layout, float>(values, width, height, make, out, in);
}

} // namespace

// One channel takes the constant itself, cut to the sample.
#define ORV_CONSTANT(stem, Sample, Operator)                                                                        \
    KRN_KERNEL(ConstantScaledKernel, stem##C1)                                                                      \
    {                                                                                                               \
        const Sample cut = static_cast<Sample>(value);                                                              \
        return integerConstants<Sample, C1, Operator>(&cut, from(source, sourceStep), to(destination, step), width, \
                                                      height, scale);                                               \
    }

#define ORV_CONSTANTS(stem, layout, Sample, Operator)                                                              \
    KRN_KERNEL(ConstantsScaledKernel, stem##layout)                                                                \
    {                                                                                                              \
        return integerConstants<Sample, layout, Operator>(values, from(source, sourceStep), to(destination, step), \
                                                          width, height, scale);                                   \
    }

#define ORV_INTEGERS(stem, Sample, Operator)  \
    ORV_CONSTANT(stem, Sample, Operator)      \
    ORV_CONSTANTS(stem, C3, Sample, Operator) \
    ORV_CONSTANTS(stem, C4, Sample, Operator) \
    ORV_CONSTANTS(stem, AC4, Sample, Operator)

#define ORV_FLOAT_CONSTANTS(stem, layout, Operator)                                                             \
    KRN_KERNEL(ConstantsKernel, stem##layout)                                                                   \
    {                                                                                                           \
        return floatConstants<layout, Operator>(values, from(source, sourceStep), to(destination, step), width, \
                                                height);                                                        \
    }

#define ORV_FLOATS(stem, Operator)                                                                                   \
    KRN_KERNEL(FloatConstantKernel, stem##C1)                                                                        \
    {                                                                                                                \
        return floatConstants<C1, Operator>(&value, from(source, sourceStep), to(destination, step), width, height); \
    }                                                                                                                \
    ORV_FLOAT_CONSTANTS(stem, C3, Operator)                                                                          \
    ORV_FLOAT_CONSTANTS(stem, C4, Operator)                                                                          \
    ORV_FLOAT_CONSTANTS(stem, AC4, Operator)

#define ORV_INTEGER_ROW(name, Operator)                                                                               \
    KRN_KERNEL(ConstantRowKernel, name)                                                                               \
    {                                                                                                                 \
        return withScale<std::int32_t>(scale, [=](auto wrap) {                                                        \
            return computeOneRow<std::int32_t>(length, wrap(WithConstant<Operator, std::int32_t>{Operator(), value}), \
                                               destination, source);                                                  \
        });                                                                                                           \
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

KRN_KERNEL(FloatConstantRowKernel, krnSubRevC32fRow)
{
    using Reversed = WithConstant<Exchanged<FloatDifference>, float>;
    return computeOneRow<float>(length, Reversed{{}, value}, destination, source);
}

#include "end.h"
