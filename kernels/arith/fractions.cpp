// Products of fractions: a sample counts as a number from 0 to 1, and so does the product.
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

// Product divided by the highest sample: t / 255 is (t + t / 256 + 1) / 256 for every product t of two bytes, and likewise
// for words.
template <class Sample> struct Fraction {
    Sample operator()(Sample a, Sample b) const
    {
        constexpr int bits = 8 * sizeof(Sample);
        const std::uint32_t product = std::uint32_t{a} * b;
        return static_cast<Sample>((product + (product >> bits) + 1) >> bits);
    }
};

#if ORV_SSE_LEVEL >= 2

// (t + t / 256 + 1) / 256 is (t + 1) 257 / 65536: the two differ in the carry of t + 1 into the high byte only, which
// makes no difference to the quotient.
inline __m128i byteFractions(__m128i a, __m128i b)
{
    const __m128i next = _mm_add_epi16(_mm_mullo_epi16(a, b), _mm_set1_epi16(1));
    return _mm_mulhi_epu16(next, _mm_set1_epi16(257));
}

inline auto vectorOf(Fraction<std::uint8_t>, Vector<std::uint8_t> a, Vector<std::uint8_t> b)
{
    const __m128i low = _mm_set1_epi16(0xFF), left = asIntegers(a), right = asIntegers(b);
    const __m128i even = byteFractions(_mm_and_si128(left, low), _mm_and_si128(right, low));
    const __m128i odd = byteFractions(_mm_srli_epi16(left, 8), _mm_srli_epi16(right, 8));
    return asVector<std::uint8_t>(_mm_or_si128(even, _mm_slli_epi16(odd, 8)));
}

// The low word of the product, the high one and the one to be added carry into the high word when they make 65536 or
// more: when the first two make 65535, or more than a word holds.
inline auto vectorOf(Fraction<std::uint16_t>, Vector<std::uint16_t> a, Vector<std::uint16_t> b)
{
    const __m128i low = _mm_mullo_epi16(asIntegers(a), asIntegers(b)),
                  high = _mm_mulhi_epu16(asIntegers(a), asIntegers(b));
    const __m128i carries = _mm_cmpeq_epi16(_mm_adds_epu16(low, high), _mm_set1_epi16(-1));
    return asVector<std::uint16_t>(_mm_sub_epi16(high, carries));
}

#endif

template <class Sample, std::size_t layout>
KrnStatus constants(const void *values, Given<const void *> in, Given<void *> out, std::int32_t width,
                    std::int32_t height)
{
    const auto make = [](Sample value) { return WithConstant<Fraction<Sample>, Sample>{{}, value}; };
    return computeByChannel<Sample, layout, Sample>(values, width, height, make, out, in);
}

} // namespace

#define ORV_IMAGES(samples, Sample, layout)                                                              \
    KrnStatus krnMulScale##samples##layout(const void *source1, std::int32_t step1, const void *source2, \
                                           std::int32_t step2, void *destination, std::int32_t step,     \
                                           std::int32_t width, std::int32_t height)                      \
    {                                                                                                    \
        return compute<Sample, layout>(width, height, Fraction<Sample>(), Given{destination, step},      \
                                       Given{source1, step1}, Given{source2, step2});                    \
    }

#define ORV_CONSTANTS(samples, Sample, layout)                                                                         \
    KrnStatus krnMulCScale##samples##layout(const void *source, std::int32_t sourceStep, const void *values,           \
                                            void *destination, std::int32_t step, std::int32_t width,                  \
                                            std::int32_t height)                                                       \
    {                                                                                                                  \
        return constants<Sample, layout>(values, Given{source, sourceStep}, Given{destination, step}, width, height);  \
    }                                                                                                                  \
    KrnStatus krnMulCScale##samples##layout##I(void *image, std::int32_t step, const void *values, std::int32_t width, \
                                               std::int32_t height)                                                    \
    {                                                                                                                  \
        return krnMulCScale##samples##layout(image, step, values, image, step, width, height);                         \
    }

#define ORV_FRACTIONS(samples, Sample)                                                                                 \
    ORV_IMAGES(samples, Sample, C1)                                                                                    \
    ORV_IMAGES(samples, Sample, C3)                                                                                    \
    ORV_IMAGES(samples, Sample, C4)                                                                                    \
    ORV_IMAGES(samples, Sample, AC4)                                                                                   \
    KrnStatus krnMulCScale##samples##C1(const void *source, std::int32_t sourceStep, std::int32_t value,               \
                                        void *destination, std::int32_t step, std::int32_t width, std::int32_t height) \
    {                                                                                                                  \
        const Sample cut = static_cast<Sample>(value);                                                                 \
        return constants<Sample, C1>(&cut, Given{source, sourceStep}, Given{destination, step}, width, height);        \
    }                                                                                                                  \
    KrnStatus krnMulCScale##samples##C1I(void *image, std::int32_t step, std::int32_t value, std::int32_t width,       \
                                         std::int32_t height)                                                          \
    {                                                                                                                  \
        return krnMulCScale##samples##C1(image, step, value, image, step, width, height);                              \
    }                                                                                                                  \
    ORV_CONSTANTS(samples, Sample, C3)                                                                                 \
    ORV_CONSTANTS(samples, Sample, C4)                                                                                 \
    ORV_CONSTANTS(samples, Sample, AC4)

ORV_FRACTIONS(8u, std::uint8_t)
ORV_FRACTIONS(16u, std::uint16_t)

#include "end.h"
