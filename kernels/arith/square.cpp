// Squares.
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

template <class Sample> struct Square {
    std::int64_t exact(Sample a) const { return std::int64_t{a} * a; }
    Sample operator()(Sample a) const { return Product<Sample>()(a, a); }
};
template <> inline std::uint16_t Square<std::uint16_t>::operator()(std::uint16_t a) const
{
    return static_cast<std::uint16_t>(a > 255 ? 65535 : a * a);
}

struct FloatSquare {
    auto vector(auto a) const { return a * a; }
    float operator()(float a) const { return a * a; }
};

#if ORV_SSE_LEVEL >= 2
template <class Sample> inline auto vectorOf(Square<Sample>, Vector<Sample> a) requires requires
{
    vectorOf(Product<Sample>(), a, a);
}
{
    return vectorOf(Product<Sample>(), a, a);
}
inline auto vectorOf(Square<std::uint16_t>, Vector<std::uint16_t> a)
{
    const __m128i high = _mm_mulhi_epu16(asIntegers(a), asIntegers(a));
    const __m128i fits = _mm_cmpeq_epi16(high, _mm_setzero_si128());
    return a * a | ~asVector<std::uint16_t>(fits);
}
#endif

} // namespace

#define ORV_SQUARE(name, Sample, layout)                                                                               \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,       \
                   std::int32_t width, std::int32_t height, std::int32_t scale)                                        \
    {                                                                                                                  \
        return withScale<Sample>(scale, [=](auto wrap) {                                                               \
            return compute<Sample, layout>(width, height, wrap(Square<Sample>()), Given{destination, destinationStep}, \
                                           Given{source, sourceStep});                                                 \
        });                                                                                                            \
    }

#define ORV_SQUARE_LAYOUT(layout)                                                                        \
    ORV_SQUARE(krnSqr8u##layout, std::uint8_t, layout)                                                   \
    ORV_SQUARE(krnSqr16u##layout, std::uint16_t, layout)                                                 \
    ORV_SQUARE(krnSqr16s##layout, std::int16_t, layout)                                                  \
    KrnStatus krnSqr32f##layout(const void *source, std::int32_t sourceStep, void *destination,          \
                                std::int32_t destinationStep, std::int32_t width, std::int32_t height)   \
    {                                                                                                    \
        return compute<float, layout>(width, height, FloatSquare(), Given{destination, destinationStep}, \
                                      Given{source, sourceStep});                                        \
    }

ORV_SQUARE_LAYOUT(C1)
ORV_SQUARE_LAYOUT(C3)
ORV_SQUARE_LAYOUT(C4)
ORV_SQUARE_LAYOUT(AC4)

#include "end.h"
