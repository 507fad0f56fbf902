// Sums, differences and products of two images.
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

} // namespace

#define ORV_SCALED(name, Sample, layout, Operator)                                                                    \
    KrnStatus name(const void *source1, std::int32_t step1, const void *source2, std::int32_t step2,                  \
                   void *destination, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t scale) \
    {                                                                                                                 \
        return withScale<Sample>(scale, [=](auto wrap) {                                                              \
            return compute<Sample, layout>(width, height, wrap(Operator{}), Given{destination, step},                 \
                                           Given{source1, step1}, Given{source2, step2});                             \
        });                                                                                                           \
    }

#define ORV_FLOATS(name, layout, Operator)                                                                        \
    KrnStatus name(const void *source1, std::int32_t step1, const void *source2, std::int32_t step2,              \
                   void *destination, std::int32_t step, std::int32_t width, std::int32_t height)                 \
    {                                                                                                             \
        return compute<float, layout>(width, height, Operator{}, Given{destination, step}, Given{source1, step1}, \
                                      Given{source2, step2});                                                     \
    }

#define ORV_ROW(name, Operator)                                                                          \
    KrnStatus name(const void *source1, const void *source2, void *destination, std::int32_t length,     \
                   std::int32_t scale)                                                                   \
    {                                                                                                    \
        return withScale<std::int32_t>(scale, [=](auto wrap) {                                           \
            return computeOneRow<std::int32_t>(length, wrap(Operator{}), destination, source1, source2); \
        });                                                                                              \
    }

#define ORV_LAYOUTS(define, stem, ...)                                                                    \
    define(stem##C1, C1, __VA_ARGS__) define(stem##C3, C3, __VA_ARGS__) define(stem##C4, C4, __VA_ARGS__) \
        define(stem##AC4, AC4, __VA_ARGS__)

#define ORV_BYTES(name, layout, Operator) ORV_SCALED(name, std::uint8_t, layout, Operator)
#define ORV_WORDS(name, layout, Operator) ORV_SCALED(name, std::int16_t, layout, Operator)

// Differences take the subtrahend first.
ORV_LAYOUTS(ORV_BYTES, krnAdd8u, Sum<std::uint8_t>)
ORV_LAYOUTS(ORV_BYTES, krnSub8u, Exchanged<Difference<std::uint8_t>>)
ORV_LAYOUTS(ORV_BYTES, krnMul8u, Product<std::uint8_t>)
ORV_LAYOUTS(ORV_WORDS, krnAdd16s, Sum<std::int16_t>)
ORV_LAYOUTS(ORV_WORDS, krnSub16s, Exchanged<Difference<std::int16_t>>)
ORV_LAYOUTS(ORV_WORDS, krnMul16s, Product<std::int16_t>)
ORV_LAYOUTS(ORV_FLOATS, krnAdd32f, FloatSum)
ORV_LAYOUTS(ORV_FLOATS, krnSub32f, Exchanged<FloatDifference>)
ORV_LAYOUTS(ORV_FLOATS, krnMul32f, FloatProduct)
ORV_ROW(krnAdd32sRow, Sum<std::int32_t>)
ORV_ROW(krnSub32sRow, Exchanged<Difference<std::int32_t>>)
ORV_ROW(krnMul32sRow, Product<std::int32_t>)

#include "end.h"
