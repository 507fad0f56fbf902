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

// Differences are floats. The rest is exact in doubles, but for the sums.
inline double valueAt(std::size_t i, const unsigned char *in)
{
    return load<float>(in, i);
}
inline double valueAt(std::size_t i, const unsigned char *first, const unsigned char *second)
{
    return singleFloat(load<float>(first, i) - load<float>(second, i));
}

template <Norm norm> inline double termOf(double value)
{
    return norm == Norm::L2 ? value * value : __builtin_fabs(value);
}

// The samples of a block are dealt in turn to so many sums. Halves of these are added up until one sum a channel is
// left. All builds do, since the order of sums decides about their last bits.
constexpr std::size_t lanesOf(std::size_t channels)
{
    return channels == 3 ? 24 : 16;
}

template <Norm norm, class Sample, std::size_t channels, class... Source>
[[gnu::noinline]] void takeBlock(double *totals, std::size_t pixels, const Source *...in)
{
    constexpr std::size_t lanes = lanesOf(channels);
    double found[lanes] = {};
    for (std::size_t i = 0; i < pixels * channels; i += lanes)
        for (std::size_t lane = 0; lane < lanes && i + lane < pixels * channels; ++lane)
            found[lane] = joined<norm>(found[lane], termOf<norm>(valueAt(i + lane, in...)));
    for (std::size_t half = lanes / 2; half >= channels; half /= 2)
        for (std::size_t lane = 0; lane < half; ++lane)
            found[lane] = joined<norm>(found[lane], found[lane + half]);
    for (std::size_t channel = 0; channel < channels; ++channel)
        totals[channel] = joined<norm>(totals[channel], found[channel]);
}

} // namespace

ORV_NORMS(32f, float)

#include "end.h"
