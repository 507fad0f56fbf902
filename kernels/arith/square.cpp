// Squares.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

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

#if ORV_VECTOR_BYTES > 0
template <class Sample> inline auto vectorOf(Square<Sample>, Vector<Sample> a) requires requires
{
    vectorOf(Product<Sample>(), a, a);
}
{
    return vectorOf(Product<Sample>(), a, a);
}
inline U16s vectorOf(Square<std::uint16_t>, U16s a)
{
    return a * a | as<std::uint16_t>(highProducts(a, a) != 0);
}
#endif

} // namespace

#define ORV_SQUARE(layout, samples, Sample)                                                              \
    KRN_KERNEL(UnaryScaledKernel, krnSqr##samples##layout)                                               \
    {                                                                                                    \
        return withScale<Sample>(scale, [=](auto wrap) {                                                 \
            return compute<Sample, layout>(width, height, wrap(Square<Sample>()), to(destination, step), \
                                           from(source, sourceStep));                                    \
        });                                                                                              \
    }

#define ORV_FLOAT_SQUARE(layout, stem)                                                                                \
    KRN_KERNEL(CopyKernel, stem##layout)                                                                              \
    {                                                                                                                 \
        return compute<float, layout>(width, height, FloatSquare(), to(destination, step), from(source, sourceStep)); \
    }

ORV_LAYOUTS(ORV_SQUARE, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_SQUARE, 16u, std::uint16_t)
ORV_LAYOUTS(ORV_SQUARE, 16s, std::int16_t)
ORV_LAYOUTS(ORV_FLOAT_SQUARE, krnSqr32f)

#include "end.h"
