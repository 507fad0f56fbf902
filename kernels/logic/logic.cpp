// Bitwise operations, by the width of a sample.
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
KrnStatus constants(const void *source, std::int32_t sourceStep, const void *values, void *destination,
                    std::int32_t step, std::int32_t width, std::int32_t height)
{
    const auto make = [](Sample value) { return WithConstant<Operator, Sample>{{}, value}; };
    return computeByChannel<Sample, layout, Sample>(values, width, height, make, Given{destination, step},
                                                    Given{source, sourceStep});
}

} // namespace

#define ORV_IMAGES(name, Sample, layout, Operator)                                                                 \
    KrnStatus name(const void *source1, std::int32_t step1, const void *source2, std::int32_t step2,               \
                   void *destination, std::int32_t step, std::int32_t width, std::int32_t height)                  \
    {                                                                                                              \
        return compute<Sample, layout>(width, height, Operator(), Given{destination, step}, Given{source1, step1}, \
                                       Given{source2, step2});                                                     \
    }

#define ORV_CONSTANTS(name, Sample, layout, Operator)                                                             \
    KrnStatus name(const void *source, std::int32_t sourceStep, const void *values, void *destination,            \
                   std::int32_t step, std::int32_t width, std::int32_t height)                                    \
    {                                                                                                             \
        return constants<Sample, layout, Operator>(source, sourceStep, values, destination, step, width, height); \
    }

#define ORV_LOGIC(Operator, samples, Sample)                                                                 \
    ORV_IMAGES(krn##Operator##samples##C1, Sample, C1, Operator)                                             \
    ORV_IMAGES(krn##Operator##samples##C3, Sample, C3, Operator)                                             \
    ORV_IMAGES(krn##Operator##samples##C4, Sample, C4, Operator)                                             \
    ORV_IMAGES(krn##Operator##samples##AC4, Sample, AC4, Operator)                                           \
    KrnStatus krn##Operator##C##samples##C1(const void *source, std::int32_t sourceStep, std::int32_t value, \
                                            void *destination, std::int32_t step, std::int32_t width,        \
                                            std::int32_t height)                                             \
    {                                                                                                        \
        const Sample cut = static_cast<Sample>(value);                                                       \
        return constants<Sample, C1, Operator>(source, sourceStep, &cut, destination, step, width, height);  \
    }                                                                                                        \
    ORV_CONSTANTS(krn##Operator##C##samples##C3, Sample, C3, Operator)                                       \
    ORV_CONSTANTS(krn##Operator##C##samples##C4, Sample, C4, Operator)                                       \
    ORV_CONSTANTS(krn##Operator##C##samples##AC4, Sample, AC4, Operator)

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
