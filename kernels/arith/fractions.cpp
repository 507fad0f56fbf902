// Products of fractions: a sample counts as a number from 0 to 1, and so does the product.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

// Product divided by the highest sample: t / 255 is (t + t / 256 + 1) / 256 for every product t of two bytes, and the
// same holds for words.
template <class Sample> struct Fraction {
    Sample operator()(Sample a, Sample b) const
    {
        constexpr int bits = 8 * sizeof(Sample);
        const std::uint32_t product = std::uint32_t{a} * b;
        return static_cast<Sample>((product + (product >> bits) + 1) >> bits);
    }
};

#if ORV_VECTOR_BYTES > 0

// (t + t / 256 + 1) / 256 is (t + 1) 257 / 65536: the two differ in the carry of t + 1 into the high byte only, which
// makes no difference to the quotient.
inline U16s byteFractions(U16s a, U16s b)
{
    return highProducts(a * b + std::uint16_t{1}, everywhere<std::uint16_t>(257));
}

inline U8s vectorOf(Fraction<std::uint8_t>, U8s a, U8s b)
{
    const U16s left = as<std::uint16_t>(a), right = as<std::uint16_t>(b);
    const U16s even = byteFractions(left & std::uint16_t{0xFF}, right & std::uint16_t{0xFF});
    const U16s odd = byteFractions(left >> 8, right >> 8);
    return as<std::uint8_t>(even | odd << 8);
}

// The low word of the product, the high one and 1 carry into the high word when they sum up to 65536 or more: when the
// first two make 65535, or more than a word holds.
inline U16s vectorOf(Fraction<std::uint16_t>, U16s a, U16s b)
{
    const U16s high = highProducts(a, b);
    return high - as<std::uint16_t>(saturatingSum(a * b, high) == std::uint16_t{0xFFFF});
}

#endif

template <class Sample, std::size_t layout>
KrnStatus constants(const void *values, ConstRaster in, Raster out, std::int32_t width, std::int32_t height)
{
    const auto make = [](Sample value) { return WithConstant<Fraction<Sample>, Sample>{{}, value}; };
    return computeByChannel<Sample, layout, Sample>(values, width, height, make, out, in);
}

} // namespace

#define ORV_IMAGES(layout, samples, Sample)                                                                            \
    KRN_KERNEL(BinaryKernel, krnMulScale##samples##layout)                                                             \
    {                                                                                                                  \
        return compute<Sample, layout>(width, height, Fraction<Sample>(), to(destination, step), from(source1, step1), \
                                       from(source2, step2));                                                          \
    }

#define ORV_CONSTANTS(samples, Sample, layout)                                                                    \
    KRN_KERNEL(ConstantsKernel, krnMulCScale##samples##layout)                                                    \
    {                                                                                                             \
        return constants<Sample, layout>(values, from(source, sourceStep), to(destination, step), width, height); \
    }

#define ORV_FRACTIONS(samples, Sample)                                                                      \
    ORV_LAYOUTS(ORV_IMAGES, samples, Sample)                                                                \
    KRN_KERNEL(ConstantKernel, krnMulCScale##samples##C1)                                                   \
    {                                                                                                       \
        const Sample cut = static_cast<Sample>(value);                                                      \
        return constants<Sample, C1>(&cut, from(source, sourceStep), to(destination, step), width, height); \
    }                                                                                                       \
    ORV_CONSTANTS(samples, Sample, C3)                                                                      \
    ORV_CONSTANTS(samples, Sample, C4)                                                                      \
    ORV_CONSTANTS(samples, Sample, AC4)

ORV_FRACTIONS(8u, std::uint8_t)
ORV_FRACTIONS(16u, std::uint16_t)

#include "end.h"
