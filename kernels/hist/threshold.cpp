// Comparisons of samples with a level: one value for each side of it, or a value for one side only.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

template <class Out, class In> struct Binarize {
    In level;
    Out low, high;

    Out operator()(In value) const { return value < level ? low : high; }

#if ORV_VECTOR_BYTES > 0
    // Bytes have a minimum, but no comparison as unsigned.
    auto reaches(Vector<In> samples) const
    {
        if constexpr (sizeof(In) == 1)
            return minimum(samples, everywhere(level)) == everywhere(level);
        else
            return samples > everywhere(static_cast<In>(level - 1));
    }
    Vector<Out> chosenBy(auto mask) const
    {
        return (as<Out>(mask) & everywhere(static_cast<Out>(low ^ high))) ^ everywhere(low);
    }

    auto group(const unsigned char *in) const requires(sizeof(Out) > sizeof(In))
    {
        auto results = widened<Out, In, Upper::Same>(as<In>(reaches(loadVector<In>(in))));
        for (Vector<Out> &result : results.vectors)
            result = chosenBy(result);
        return results;
    }
    Group<Out, 1> group(const unsigned char *in) const requires(sizeof(Out) < sizeof(In))
    {
        const S16s first = reaches(loadVector<In>(in)), second = reaches(loadVector<In>(in, perVector<In>));
        return {chosenBy(inOrderOfPairs(packed<std::int8_t>(first, second)))};
    }
#endif
};

template <class Sample> struct ReplaceBelow {
    Sample level, value;

    Sample operator()(Sample sample) const { return sample < level ? value : sample; }
};

template <class Sample> struct ReplaceAbove {
    Sample level, value;

    Sample operator()(Sample sample) const { return sample > level ? value : sample; }
};

// Where no sample is on one side of the level, the same by the level next to it: vectors compare with a neighbour of
// the level, which is then a sample, too.
template <class Out, class In> inline Binarize<Out, In> inRange(Binarize<Out, In> binarize)
{
    constexpr In bottom = static_cast<In>(bottomOf<In>);
    if (binarize.level == bottom)
        return {static_cast<In>(bottom + 1), binarize.high, binarize.high};
    return binarize;
}
template <class Sample> inline ReplaceBelow<Sample> inRange(ReplaceBelow<Sample> replace)
{
    constexpr Sample bottom = static_cast<Sample>(bottomOf<Sample>);
    return replace.level == bottom ? ReplaceBelow<Sample>{static_cast<Sample>(bottom + 1), bottom} : replace;
}
template <class Sample> inline ReplaceAbove<Sample> inRange(ReplaceAbove<Sample> replace)
{
    constexpr Sample top = static_cast<Sample>(topOf<Sample>);
    return replace.level == top ? ReplaceAbove<Sample>{static_cast<Sample>(top - 1), top} : replace;
}

#if ORV_VECTOR_BYTES > 0

inline S16s vectorOf(Binarize<std::int16_t, std::int16_t> binarize, S16s samples)
{
    return binarize.chosenBy(binarize.reaches(samples));
}
inline S16s vectorOf(ReplaceBelow<std::int16_t> replace, S16s samples)
{
    return samples < everywhere(replace.level) ? everywhere(replace.value) : samples;
}
inline S16s vectorOf(ReplaceAbove<std::int16_t> replace, S16s samples)
{
    return samples > everywhere(replace.level) ? everywhere(replace.value) : samples;
}
// The masks are those of the replaced samples, for which a blend needs no copy of the value.
inline U8s vectorOf(ReplaceBelow<std::uint8_t> replace, U8s samples)
{
    const U8s highest = everywhere(static_cast<std::uint8_t>(replace.level - 1));
    return maximum(samples, highest) == highest ? everywhere(replace.value) : samples;
}
inline U8s vectorOf(ReplaceAbove<std::uint8_t> replace, U8s samples)
{
    const U8s lowest = everywhere(static_cast<std::uint8_t>(replace.level + 1));
    return minimum(samples, lowest) == lowest ? everywhere(replace.value) : samples;
}

#endif

#if ORV_SSE41

// Saturation moves the samples that reach the level to the upper half of all bytes: up by one sum, or down by one
// difference. Their upper bit is all that a blend looks at.
template <bool up> struct BinarizeMoved : Binarize<std::uint8_t, std::uint8_t> {
    U8s vector(U8s samples) const
    {
        const U8s way = everywhere(static_cast<std::uint8_t>(up ? 128 - level : level - 128));
        const U8s moved = up ? saturatingSum(samples, way) : saturatingDifference(samples, way);
        return chosenBySigns(moved, everywhere(high), everywhere(low));
    }
};

template <class Out, std::size_t layout, class In>
KrnStatus binarized(Binarize<Out, In> binarize, ConstRaster in, Raster out, std::int32_t width,
                    std::int32_t height) requires(sizeof(Out) == 1 && sizeof(In) == 1)
{
    if (binarize.level <= 128)
        return compute<Out, layout>(width, height, BinarizeMoved<true>{binarize}, out, in);
    return compute<Out, layout>(width, height, BinarizeMoved<false>{binarize}, out, in);
}

#elif ORV_VECTOR_BYTES > 0

inline U8s vectorOf(Binarize<std::uint8_t, std::uint8_t> binarize, U8s samples)
{
    return binarize.chosenBy(binarize.reaches(samples));
}

#endif

template <class Out, std::size_t layout, class In>
KrnStatus binarized(Binarize<Out, In> binarize, ConstRaster in, Raster out, std::int32_t width, std::int32_t height)
{
    return compute<Out, layout, In>(width, height, inRange(binarize), out, in);
}

} // namespace

#define ORV_BINARIZE(layout, stem, Out, In)                                                                         \
    KRN_KERNEL(BinarizeKernel, stem##layout)                                                                        \
    {                                                                                                               \
        const Binarize<Out, In> binarize = {static_cast<In>(level), static_cast<Out>(low), static_cast<Out>(high)}; \
        return binarized<Out, layout>(binarize, from(source, sourceStep), to(destination, step), width, height);    \
    }

ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u, std::uint8_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u16u, std::uint16_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u32s, std::int32_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize16s, std::int16_t, std::int16_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize16s8u, std::uint8_t, std::int16_t)

#define ORV_REPLACE(layout, stem, Sample, Replace)                                                \
    KRN_KERNEL(ReplaceKernel, stem##layout)                                                       \
    {                                                                                             \
        const Replace<Sample> replace = {static_cast<Sample>(level), static_cast<Sample>(value)}; \
        return compute<Sample, layout>(width, height, inRange(replace), to(destination, step),    \
                                       from(source, sourceStep));                                 \
    }

ORV_LAYOUTS(ORV_REPLACE, krnThresholdLT8u, std::uint8_t, ReplaceBelow)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdGT8u, std::uint8_t, ReplaceAbove)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdLT16s, std::int16_t, ReplaceBelow)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdGT16s, std::int16_t, ReplaceAbove)

#include "end.h"
