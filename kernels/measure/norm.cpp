// Norms of integers.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

#include "norms.h"

// Holds what a block of samples comes to.
template <Norm norm, class Sample> struct TotalOf {
    using Type = std::uint32_t;
};
template <> struct TotalOf<Norm::L2, std::int16_t> {
    using Type = std::uint64_t;
};

// What a sample adds to the total.
template <Norm norm, class Sample> inline typename TotalOf<norm, Sample>::Type termOf(std::int32_t value)
{
    const std::uint32_t magnitude = static_cast<std::uint32_t>(value < 0 ? -value : value);
    if constexpr (norm == Norm::L2)
        return typename TotalOf<norm, Sample>::Type{magnitude} * magnitude;
    else
        return magnitude;
}

template <class Sample> inline std::int32_t valueAt(std::size_t i, const unsigned char *in)
{
    return load<Sample>(in, i);
}
template <class Sample>
inline std::int32_t valueAt(std::size_t i, const unsigned char *first, const unsigned char *second)
{
    return std::int32_t{load<Sample>(first, i)} - load<Sample>(second, i);
}

template <Norm norm, class Sample, std::size_t channels, class... Source>
[[gnu::noinline]] void takeBlock(double *totals, std::size_t pixels, const Source *...in)
{
    typename TotalOf<norm, Sample>::Type found[channels] = {};
    for (std::size_t i = 0; i < pixels * channels; i += channels)
        for (std::size_t channel = 0; channel < channels; ++channel)
            found[channel] = joined<norm>(found[channel], termOf<norm, Sample>(valueAt<Sample>(i + channel, in...)));
    for (std::size_t channel = 0; channel < channels; ++channel)
        totals[channel] = joined<norm>(totals[channel], static_cast<double>(found[channel]));
}

} // namespace

ORV_NORMS(8u, std::uint8_t)
ORV_NORMS(16s, std::int16_t)

#include "end.h"
