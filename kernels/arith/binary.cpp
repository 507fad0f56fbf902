// Sums, differences and products of two images.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

} // namespace

#define ORV_SCALED(layout, stem, Sample, Operator)                                                 \
    KRN_KERNEL(BinaryScaledKernel, stem##layout)                                                   \
    {                                                                                              \
        return withScale<Sample>(scale, [=](auto wrap) {                                           \
            return compute<Sample, layout>(width, height, wrap(Operator{}), to(destination, step), \
                                           from(source1, step1), from(source2, step2));            \
        });                                                                                        \
    }

#define ORV_FLOATS(layout, stem, Operator)                                                                    \
    KRN_KERNEL(BinaryKernel, stem##layout)                                                                    \
    {                                                                                                         \
        return compute<float, layout>(width, height, Operator{}, to(destination, step), from(source1, step1), \
                                      from(source2, step2));                                                  \
    }

#define ORV_ROW(name, Operator)                                                                          \
    KRN_KERNEL(BinaryRowKernel, name)                                                                    \
    {                                                                                                    \
        return withScale<std::int32_t>(scale, [=](auto wrap) {                                           \
            return computeOneRow<std::int32_t>(length, wrap(Operator{}), destination, source1, source2); \
        });                                                                                              \
    }

// Differences take the subtrahend first.
ORV_LAYOUTS(ORV_SCALED, krnAdd8u, std::uint8_t, Sum<std::uint8_t>)
ORV_LAYOUTS(ORV_SCALED, krnSub8u, std::uint8_t, Exchanged<Difference<std::uint8_t>>)
ORV_LAYOUTS(ORV_SCALED, krnMul8u, std::uint8_t, Product<std::uint8_t>)
ORV_LAYOUTS(ORV_SCALED, krnAdd16s, std::int16_t, Sum<std::int16_t>)
ORV_LAYOUTS(ORV_SCALED, krnSub16s, std::int16_t, Exchanged<Difference<std::int16_t>>)
ORV_LAYOUTS(ORV_SCALED, krnMul16s, std::int16_t, Product<std::int16_t>)
ORV_LAYOUTS(ORV_FLOATS, krnAdd32f, FloatSum)
ORV_LAYOUTS(ORV_FLOATS, krnSub32f, Exchanged<FloatDifference>)
ORV_LAYOUTS(ORV_FLOATS, krnMul32f, FloatProduct)
ORV_ROW(krnAdd32sRow, Sum<std::int32_t>)
ORV_ROW(krnSub32sRow, Exchanged<Difference<std::int32_t>>)
ORV_ROW(krnMul32sRow, Product<std::int32_t>)

#include "end.h"
