// Norms of floats.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

#include "norms.h"

// The samples of a block are dealt in turn to so many sums, or maxima. Those that are left at its end take the last of
// these. All builds do the same, since the order of sums decides about their last bits.
constexpr std::size_t lanesOf(std::size_t channels)
{
    return channels == 3 ? 24 : 16;
}

// Differences are floats. The rest is exact in doubles, but for the sums.
inline float valueAt(std::size_t i, const unsigned char *in)
{
    return load<float>(in, i);
}
inline float valueAt(std::size_t i, const unsigned char *first, const unsigned char *second)
{
    return singleFloat(load<float>(first, i) - load<float>(second, i));
}

template <Norm norm> using Found = std::conditional_t<norm == Norm::Inf, float, double>;

template <Norm norm> inline Found<norm> termOf(Found<norm> value)
{
    if constexpr (norm == Norm::Inf)
        return __builtin_fabsf(value);
    else
        return norm == Norm::L2 ? value * value : __builtin_fabs(value);
}

// Halves are joined until so many are left.
template <Norm norm, std::size_t left, std::size_t lanes> inline void joinHalves(auto *found)
{
    if constexpr (lanes > left) {
        constexpr std::size_t half = lanes / 2;
        for (std::size_t lane = 0; lane < half; ++lane)
            found[lane] = joined<norm>(found[lane], found[lane + half]);
        joinHalves<norm, left, half>(found);
    }
}

template <Norm norm, std::size_t channels, class... Source>
[[gnu::noinline]] void takeSamples(double *totals, std::size_t samples, const Source *...in)
{
    constexpr std::size_t lanes = lanesOf(channels);
    Found<norm> found[lanes] = {};
    const auto take = [&](std::size_t lane, std::size_t i) {
        found[lane] = joined<norm>(found[lane], termOf<norm>(valueAt(i, in...)));
    };
    std::size_t i = 0;
    for (; i + lanes <= samples; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            take(lane, i + lane);
    for (std::size_t lane = lanes - (samples - i); lane < lanes; ++lane, ++i)
        take(lane, i);
    joinHalves<norm, channels, lanes>(found);
    for (std::size_t channel = 0; channel < channels; ++channel)
        totals[channel] = joined<norm>(totals[channel], static_cast<double>(found[channel]));
}

#if ORV_VECTOR_BYTES > 0

inline Floats valuesAt(std::size_t i, const unsigned char *in)
{
    return loadVector<float>(in, i);
}
inline Floats valuesAt(std::size_t i, const unsigned char *first, const unsigned char *second)
{
    return loadVector<float>(first, i) - loadVector<float>(second, i);
}

constexpr std::uint32_t magnitudeBits = 0x7FFFFFFF;

// What the samples of a vector add to two vectors of sums, over the scale.
template <Norm norm> struct Terms;

template <> struct Terms<Norm::L2> {
    Doubles first, second;
    static constexpr double scale = 1;

    Terms(Doubles lower, Doubles upper) : first(lower * lower), second(upper * upper) {}
    explicit Terms(Floats values) : Terms(lowerDoubles(values), upperDoubles(values)) {}
    static void store(double *sums, Doubles lower, Doubles upper)
    {
        storeVector<double>(sums, 0, lower);
        storeVector<double>(sums, perVector<double>, upper);
    }
};

// Conversions and additions of doubles wait for the same units. So other units put the bits of a float where a double
// has them. That double is the magnitude of the float over the scale, a power of 2, which changes no rounding of sums.
// But infinities and not-a-numbers become 2 to the power of 128 and more, over the scale.
template <> struct Terms<Norm::L1> {
    Doubles first, second;
    static constexpr double scale = 0x1p896;

    explicit Terms(Floats values)
    {
        const Vector<std::uint32_t> bits = as<std::uint32_t>(values) & magnitudeBits;
        first = as<double>(evenProducts(bits, everywhere(std::uint32_t{1} << 29)));
        second = as<double>((as<std::uint64_t>(bits) >> 3) & (std::uint64_t{magnitudeBits} << 29));
    }
    static void store(double *sums, Doubles even, Doubles odd)
    {
        storeHalvesInOrder<double>(sums, 0, interleaveLow<double>(even, odd), interleaveHigh<double>(even, odd));
    }
};

template <Norm norm> inline Terms<norm> termsAt(std::size_t i, const auto *...in)
{
    return Terms<norm>(valuesAt(i, in...));
}
template <> inline Terms<Norm::L2> termsAt<Norm::L2>(std::size_t i, const unsigned char *in)
{
    return Terms<Norm::L2>(loadDoubles(in, i), loadDoubles(in, i + perVector<double>));
}

template <Norm norm, std::size_t channels> struct Running {
    static constexpr std::size_t vectors = lanesOf(channels) / perVector<float>;
    static constexpr std::size_t left = channels == 3 ? 3 : 1; // when halves are joined vector by vector
    Doubles first[vectors] = {}, second[vectors] = {};

    void take(std::size_t vector, Terms<norm> terms)
    {
        first[vector] += terms.first;
        second[vector] += terms.second;
    }
    // False, and adds nothing, where a sum may have met an infinity or a not-a-number without being one.
    bool addTo(double *totals)
    {
        joinHalves<norm, left, vectors>(first);
        joinHalves<norm, left, vectors>(second);
        double found[lanesOf(channels)];
        for (std::size_t i = 0; i < left; ++i)
            Terms<norm>::store(found + i * perVector<float>, first[i], second[i]);
        joinHalves<norm, channels, left * perVector<float>>(found);
        for (std::size_t channel = 0; channel < channels && norm == Norm::L1; ++channel)
            if (found[channel] >= 0x1p128 / Terms<norm>::scale)
                return false;
        for (std::size_t channel = 0; channel < channels; ++channel)
            totals[channel] += found[channel] * Terms<norm>::scale;
        return true;
    }
};

template <> struct Terms<Norm::Inf> {
    Floats magnitudes;

    explicit Terms(Floats values) : magnitudes(as<float>(as<std::uint32_t>(values) & magnitudeBits)) {}
};

template <std::size_t channels> struct Running<Norm::Inf, channels> {
    static constexpr std::size_t vectors = lanesOf(channels) / perVector<float>;
    static constexpr std::size_t left = channels == 3 ? 3 : 1;
    Floats most[vectors] = {};

    void take(std::size_t vector, Terms<Norm::Inf> terms) { most[vector] = maximum(terms.magnitudes, most[vector]); }
    bool addTo(double *totals)
    {
        joinHalves<Norm::Inf, left, vectors>(most);
        float found[lanesOf(channels)];
        for (std::size_t i = 0; i < left; ++i)
            storeVector<float>(found, i * perVector<float>, most[i]);
        joinHalves<Norm::Inf, channels, left * perVector<float>>(found);
        for (std::size_t channel = 0; channel < channels; ++channel)
            totals[channel] = joined<Norm::Inf>(totals[channel], static_cast<double>(found[channel]));
        return true;
    }
};

// From the place of a number on: no bits of the first lanes, and all bits of so many last ones.
template <std::size_t lanes> struct LastBits {
    std::uint32_t of[2 * lanes];

    constexpr LastBits() : of()
    {
        for (std::size_t i = lanes; i < 2 * lanes; ++i)
            of[i] = 0xFFFFFFFF;
    }
};

// For blocks with a sample for each lane at least. Those that are left at its end are loaded with some before them.
template <Norm norm, std::size_t channels, class... Source>
inline bool takeVectors(double *totals, std::size_t samples, const Source *...in)
{
    constexpr std::size_t lanes = lanesOf(channels), step = perVector<float>;
    static constexpr LastBits<lanes> bits;
    Running<norm, channels> running;
    std::size_t i = 0;
    for (; i + lanes <= samples; i += lanes)
        for (std::size_t at = 0; at < lanes; at += step)
            running.take(at / step, termsAt<norm>(i + at, in...));
    if (i < samples)
        for (std::size_t at = 0; at < lanes; at += step) {
            const Vector<std::uint32_t> values = as<std::uint32_t>(valuesAt(samples - lanes + at, in...));
            running.take(at / step,
                         Terms<norm>(as<float>(values & loadVector<std::uint32_t>(bits.of, samples - i + at))));
        }
    return running.addTo(totals);
}

#endif

template <Norm norm, class Sample, std::size_t channels, class... Source>
[[gnu::noinline]] void takeBlock(double *totals, std::size_t pixels, const Source *...in)
{
#if ORV_VECTOR_BYTES > 0
    if (pixels * channels >= lanesOf(channels) && takeVectors<norm, channels>(totals, pixels * channels, in...))
        return;
#endif
    takeSamples<norm, channels>(totals, pixels * channels, in...);
}

} // namespace

ORV_NORMS(32f, float)

#include "end.h"
