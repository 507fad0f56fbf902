// Bitwise operations, by the width of a sample.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

struct And {
    auto vector(auto a, auto b) const { return a & b; }
    auto operator()(auto a, auto b) const { return a & b; }
};
struct Or {
    auto vector(auto a, auto b) const { return a | b; }
    auto operator()(auto a, auto b) const { return a | b; }
};
struct Xor {
    auto vector(auto a, auto b) const { return a ^ b; }
    auto operator()(auto a, auto b) const { return a ^ b; }
};

template <class Sample, std::size_t layout, class Operator>
KrnStatus constants(const void *values, ConstRaster in, Raster out, std::int32_t width, std::int32_t height)
{
    const auto make = [](Sample value) { return WithConstant<Operator, Sample>{{}, value}; };
    return computeByChannel<Sample, layout, Sample>(values, width, height, make, out, in);
}

} // namespace

#define ORV_IMAGES(layout, stem, Sample, Operator)                                                             \
    KRN_KERNEL(BinaryKernel, stem##layout)                                                                     \
    {                                                                                                          \
        return compute<Sample, layout>(width, height, Operator(), to(destination, step), from(source1, step1), \
                                       from(source2, step2));                                                  \
    }

#define ORV_CONSTANTS(name, layout, Sample, Operator)                                                              \
    KRN_KERNEL(ConstantsKernel, name)                                                                              \
    {                                                                                                              \
        return constants<Sample, layout, Operator>(values, from(source, sourceStep), to(destination, step), width, \
                                                   height);                                                        \
    }

#define ORV_LOGIC(Operator, samples, Sample)                                                                          \
    ORV_LAYOUTS(ORV_IMAGES, krn##Operator##samples, Sample, Operator)                                                 \
    KRN_KERNEL(ConstantKernel, krn##Operator##C##samples##C1)                                                         \
    {                                                                                                                 \
        const Sample cut = static_cast<Sample>(value);                                                                \
        return constants<Sample, C1, Operator>(&cut, from(source, sourceStep), to(destination, step), width, height); \
    }                                                                                                                 \
    ORV_CONSTANTS(krn##Operator##C##samples##C3, C3, Sample, Operator)                                                \
    ORV_CONSTANTS(krn##Operator##C##samples##C4, C4, Sample, Operator)                                                \
    ORV_CONSTANTS(krn##Operator##C##samples##AC4, AC4, Sample, Operator)

ORV_LOGIC(And, 8u, std::uint8_t)
ORV_LOGIC(And, 16u, std::uint16_t)
ORV_LOGIC(And, 32s, std::int32_t)
ORV_LOGIC(Or, 8u, std::uint8_t)
ORV_LOGIC(Or, 16u, std::uint16_t)
ORV_LOGIC(Or, 32s, std::int32_t)
ORV_LOGIC(Xor, 8u, std::uint8_t)
ORV_LOGIC(Xor, 16u, std::uint16_t)
ORV_LOGIC(Xor, 32s, std::int32_t)

#include "end.h"
