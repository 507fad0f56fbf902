// Magnitudes. Integers saturate: the lowest value becomes the highest. Floats lose their sign bit, not-a-numbers too.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

template <class Sample> struct Magnitude {
    // In the width of the sample: the lowest value counts as the next one before it is negated.
    Sample operator()(Sample value) const
    {
        constexpr Sample negatable = static_cast<Sample>(-((1 << (8 * sizeof(Sample) - 1)) - 1));
        const Sample bounded = value > negatable ? value : negatable;
        const Sample negated = static_cast<Sample>(-bounded);
        return value > negated ? value : negated;
    }
};
template <> inline std::int32_t Magnitude<std::int32_t>::operator()(std::int32_t value) const
{
    const std::int32_t sign = value >> 31, magnitude = (value ^ sign) - sign;
    return magnitude + (magnitude >> 31);
}

struct FloatMagnitude {
    auto vector(auto bits) const { return bits & 0x7FFFFFFF; }
    std::uint32_t operator()(std::uint32_t bits) const { return bits & 0x7FFFFFFF; }
};

#if ORV_VECTOR_BYTES > 0
template <class Sample> inline Vector<Sample> vectorOf(Magnitude<Sample>, Vector<Sample> a)
{
    const Vector<Sample> negated = saturatingDifference(Vector<Sample>{}, a);
    return a > negated ? a : negated;
}
inline S16s vectorOf(Magnitude<std::int16_t>, S16s a)
{
    return maximum(a, saturatingDifference(S16s{}, a));
}
inline S32s vectorOf(Magnitude<std::int32_t>, S32s a)
{
    const S32s sign = a >> 31, magnitude = (a ^ sign) - sign;
    return magnitude + (magnitude >> 31);
}
#endif

} // namespace

#define ORV_ABS(layout, samples, Sample, Operator)                                                                  \
    KRN_KERNEL(CopyKernel, krnAbs##samples##layout)                                                                 \
    {                                                                                                               \
        return compute<Sample, layout>(width, height, Operator(), to(destination, step), from(source, sourceStep)); \
    }

ORV_LAYOUTS(ORV_ABS, 8s, std::int8_t, Magnitude<std::int8_t>)
ORV_LAYOUTS(ORV_ABS, 16s, std::int16_t, Magnitude<std::int16_t>)
ORV_LAYOUTS(ORV_ABS, 32s, std::int32_t, Magnitude<std::int32_t>)
ORV_LAYOUTS(ORV_ABS, 32f, std::uint32_t, FloatMagnitude)

#include "end.h"
