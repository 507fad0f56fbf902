// Resizing between four pixels of each row and column, by Newton's form of the polynomial through them.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "resize_frame.h"
#include "resize_shuffles.h"

// For the nodes -1, 0, 1 and 2: differences of first, second and third order, and their factors.
template <class Number> struct Differences {
    Number p0, d1, d2, d3;
};
template <class Number> struct Factors {
    Number a, b, c;
};

inline Differences<float> differences(float p0, float p1, float p2, float p3)
{
    const float d1 = singleFloat(p1 - p0), d2 = singleFloat(singleFloat(p2 - p1) - d1);
    return {p0, d1, d2, singleFloat(singleFloat(singleFloat(p1 - singleFloat(2 * p2)) + p3) - d2)};
}
inline float polynomial(Differences<float> of, Factors<float> by)
{
    return singleFloat(singleFloat(by.a * of.d1) +
                       singleFloat(singleFloat(by.b * of.d2) + singleFloat(of.p0 + singleFloat(of.d3 * by.c))));
}

#if ORV_VECTOR_BYTES > 0
// Those of integers are as exact as in floats.
template <class Vector> inline Differences<Vector> differences(Vector p0, Vector p1, Vector p2, Vector p3)
{
    const Vector d1 = p1 - p0, d2 = (p2 - p1) - d1;
    return {p0, d1, d2, ((p1 - (p2 + p2)) + p3) - d2};
}
inline Floats polynomial(const Differences<Floats> &of, const Factors<Floats> &by)
{
    return by.a * of.d1 + (by.b * of.d2 + (of.p0 + of.d3 * by.c));
}
#endif

struct FactorsOfRow {
    Factors<float> factors;

    FactorsOfRow(const ResizeRows &rows, std::int32_t y)
    {
        const std::size_t at = static_cast<std::size_t>(y), count = static_cast<std::size_t>(rows.count);
        factors = {load<float>(rows.weights, at), load<float>(rows.weights, count + at),
                   load<float>(rows.weights, 2 * count + at)};
    }
};

#if ORV_SHUFFLES
inline Differences<Floats> toFloats(Differences<S32s> of)
{
    return {toFloats(of.p0), toFloats(of.d1), toFloats(of.d2), toFloats(of.d3)};
}

// The differences of gathered sources.
template <class Sample> struct GatheredTaps {
    template <class Sources> static Differences<Floats> of(const Sources &sources, std::ptrdiff_t pixelBytes)
    {
        using Place = std::conditional_t<std::is_same_v<Sample, float>, float, std::int32_t>;
        const auto tap = [&](std::ptrdiff_t number) { return as<Place>(sources.at(number * pixelBytes)); };
        const auto all = differences(tap(0), tap(1), tap(2), tap(3));
        if constexpr (std::is_same_v<Sample, float>)
            return all;
        else
            return toFloats(all);
    }
};
// A place has all four bytes: their differences are sums of products.
template <> struct GatheredTaps<std::uint8_t> {
    template <class Sources> static Differences<Floats> of(const Sources &sources, std::ptrdiff_t)
    {
        const U8s taps = sources.at(0);
        const auto sum = [=](std::int8_t p0, std::int8_t p1, std::int8_t p2, std::int8_t p3) {
            const std::uint32_t factors = static_cast<std::uint8_t>(p0) | static_cast<std::uint32_t>(p1 & 0xFF) << 8 |
                                          static_cast<std::uint32_t>(p2 & 0xFF) << 16 |
                                          static_cast<std::uint32_t>(p3 & 0xFF) << 24;
            const S16s pairs = pairSums(taps, as<std::int8_t>(everywhere(factors)));
            return pairSums(pairs, everywhere<std::int16_t>(1));
        };
        return toFloats({as<std::int32_t>(taps) & 0xFF, sum(-1, 1, 0, 0), sum(1, -2, 1, 0), sum(-1, 3, -3, 1)});
    }
};
#endif

template <class Out> struct Cubic {
    using Sample = Out;
    using Buffer = float;
    using Weights = FactorsOfRow;
    static constexpr std::size_t taps = 4;

    static void interpolate(const unsigned char *row, const ResizeColumns &columns, void *buffer)
    {
        const std::size_t samples = static_cast<std::size_t>(columns.samples);
        const void *const weights = columns.weights;
#if ORV_SHUFFLES
        const std::ptrdiff_t pixelBytes = columns.pixelBytes;
        if (gatheredByVectors<4>(row, columns, [=](std::size_t i, const auto &sources) {
                storeVector<float>(
                    buffer, i,
                    polynomial(GatheredTaps<Sample>::of(sources, pixelBytes),
                               Factors<Floats>{loadVector<float>(weights, i), loadVector<float>(weights, samples + i),
                                               loadVector<float>(weights, 2 * samples + i)}));
            }))
            return;
#endif
        for (std::size_t i = 0; i < samples; ++i) {
            const auto tap = [&](std::int32_t number) {
                return static_cast<float>(sourceOf<Sample>(row, columns, i, number));
            };
            store(buffer, i,
                  polynomial(differences(tap(0), tap(1), tap(2), tap(3)),
                             {load<float>(weights, i), load<float>(weights, samples + i),
                              load<float>(weights, 2 * samples + i)}));
        }
    }

    static Sample between(const void *const *buffers, std::size_t i, const Weights &by)
    {
        return rounded(polynomial(differences(load<float>(buffers[0], i), load<float>(buffers[1], i),
                                              load<float>(buffers[2], i), load<float>(buffers[3], i)),
                                  by.factors));
    }
    // To nearest with ties up, and within the range.
    static Sample rounded(float value)
    {
        if constexpr (std::is_same_v<Sample, float>)
            return value;
        constexpr float top = sizeof(Sample) == 1 ? 255 : 65535;
        const float moved = singleFloat(value + 0.5f);
        return static_cast<Sample>(moved < top ? (moved > 0 ? moved : 0) : top);
    }
#if ORV_VECTOR_BYTES > 0
    // Before SSE4.1 words do not saturate as unsigned ones.
    static constexpr bool hasVectors = ORV_SSE41 || sizeof(Sample) != 2;

    static Factors<Floats> vectorsOf(const Weights &of)
    {
        return {everywhere(of.factors.a), everywhere(of.factors.b), everywhere(of.factors.c)};
    }
    static Differences<Floats> prepared(const void *const *buffers, std::size_t i)
    {
        return differences(loadVector<float>(buffers[0], i), loadVector<float>(buffers[1], i),
                           loadVector<float>(buffers[2], i), loadVector<float>(buffers[3], i));
    }
    static Floats between(const Differences<Floats> &of, const Factors<Floats> &by)
    {
        return polynomial(of, by);
    }
    static Vector<Sample> narrowed(Floats (&v)[1])
    {
        return as<Sample>(v[0]);
    }
    static Vector<Sample> narrowed(Floats (&v)[2])
    {
        return inOrderOfPairs(packed<Sample>(truncated(v[0] + 0.5f), truncated(v[1] + 0.5f)));
    }
    static Vector<Sample> narrowed(Floats (&v)[4])
    {
        return inOrderOfQuads(packed<Sample>(packed<std::int16_t>(truncated(v[0] + 0.5f), truncated(v[1] + 0.5f)),
                                             packed<std::int16_t>(truncated(v[2] + 0.5f), truncated(v[3] + 0.5f))));
    }
#endif
};

} // namespace

ORV_RESIZE(krnResizeCubic8u, Cubic<std::uint8_t>)
ORV_RESIZE(krnResizeCubic16u, Cubic<std::uint16_t>)
ORV_RESIZE(krnResizeCubic32f, Cubic<float>)

#include "end.h"
