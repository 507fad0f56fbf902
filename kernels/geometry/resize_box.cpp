// Means of boxes along sums of rows, for images that become smaller.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

// Integers are rounded to nearest, ties up: (2 s + w) / (2 w) without its fraction, of which floats and doubles hold
// both terms exactly. A rounded quotient does not reach the next integer. A mean beyond the range can only come of sums
// that doubles had to round.
template <class Out, class Sum> inline Out mean(Sum sum, Sum weights)
{
    if constexpr (std::is_same_v<Out, float>)
        return static_cast<float>(sum / weights);
    constexpr Sum top = sizeof(Out) == 1 ? 255 : 65535;
    const Sum value = (sum + sum + weights) / (weights + weights);
    return static_cast<Out>(static_cast<std::int32_t>(value < top ? value : top));
}

// Weights of 0 leave out pixels that belong to other boxes. In doubles these may be infinities and not-a-numbers, while
// floats hold integers. Every second pixel is added up by itself: that is the order of vectors.
template <class Sum> inline Sum sumOfBox(const void *sums, std::size_t channels, const void *weights, std::size_t taps)
{
    Sum even = 0, odd = 0;
    for (std::size_t tap = 0; tap < taps; ++tap) {
        const Sum weight = load<Sum>(weights, tap);
        const Sum product = load<Sum>(sums, tap * channels) * weight;
        const Sum term = std::is_same_v<Sum, float> || weight != 0 ? product : 0;
        (tap % 2 == 0 ? even : odd) += term;
    }
    return even + odd;
}

// A row of boxes as kernels take it.
template <class Sum> struct Boxes {
    const unsigned char *sums, *weights, *totals;
    const std::int32_t *offsets;
    std::size_t taps;
    Sum rowWeights;

    const unsigned char *at(std::size_t box) const
    {
        return sums + static_cast<std::size_t>(offsets[box]) * sizeof(Sum);
    }
    const unsigned char *weightsOf(std::size_t box) const { return weights + box * taps * sizeof(Sum); }
};

template <class Out, class Sum>
inline void meansOfBoxes(const Boxes<Sum> &boxes, std::size_t channels, std::size_t written, std::size_t count,
                         unsigned char *out)
{
    for (std::size_t box = 0; box < count; ++box) {
        const Sum weights = load<Sum>(boxes.totals, box) * boxes.rowWeights;
        for (std::size_t channel = 0; channel < written; ++channel)
            store(out, box * channels + channel,
                  mean<Out>(
                      sumOfBox<Sum>(boxes.at(box) + channel * sizeof(Sum), channels, boxes.weightsOf(box), boxes.taps),
                      weights));
    }
}

#if ORV_VECTOR_BYTES > 0

template <class Sum> constexpr std::size_t laneTaps = 16 / sizeof(Sum);

inline Floats product(Floats sums, Floats weights)
{
    return sums * weights;
}
inline Doubles product(Doubles sums, Doubles weights)
{
    return as<double>(bitsOf(sums * weights) & bitsOf(weights != 0));
}

// Means as the samples of 32 bits that results are narrowed from.
template <class Out> inline S32s meansOf(Floats sums, Floats weights)
{
    return truncated((sums + sums + weights) / (weights + weights));
}
inline Doubles roundedMeans(Doubles sums, Doubles weights, double top)
{
    const Doubles values = (sums + sums + weights) / (weights + weights), most = everywhere(top);
    return values < most ? values : most;
}
template <class Out> inline auto meansOf(Doubles low, Doubles high, Doubles lowWeights, Doubles highWeights)
{
    constexpr double top = sizeof(Out) == 1 ? 255 : 65535;
    if constexpr (std::is_same_v<Out, float>)
        return toFloats(low / lowWeights, high / highWeights);
    else
        return truncated(roundedMeans(low, lowWeights, top), roundedMeans(high, highWeights, top));
}

// One vector of results from groups of them that are in order.
inline void storeNarrowed(unsigned char *out, std::size_t i, const Floats (&means)[1], float)
{
    storeVector<float>(out, i, means[0]);
}
inline void storeNarrowed(unsigned char *out, std::size_t i, const S32s (&means)[2], std::uint16_t)
{
    storeVector<std::uint16_t>(out, i, inOrderOfPairs(packed<std::uint16_t>(means[0], means[1])));
}
inline void storeNarrowed(unsigned char *out, std::size_t i, const S32s (&means)[4], std::uint8_t)
{
    const S16s low = packed<std::int16_t>(means[0], means[1]), high = packed<std::int16_t>(means[2], means[3]);
    storeVector<std::uint8_t>(out, i, inOrderOfQuads(packed<std::uint8_t>(low, high)));
}

// The sums of as many boxes of one channel as a vector has. A lane takes some taps of a box at once; its boxes are
// added up by a transposition. `chunks` is how many lanes a box has, 0 for any number.
template <std::size_t chunks, class Sum> inline Vector<Sum> sumsOfBoxes(const Boxes<Sum> &boxes, std::size_t first)
{
    constexpr std::size_t taken = laneTaps<Sum>;
    const std::size_t taps = chunks == 0 ? boxes.taps : chunks * taken;
    U8s partial[taken];
    ORV_UNROLLED
    for (std::size_t k = 0; k < taken; ++k) {
        const std::size_t box = first + k, further = ORV_VECTOR_BYTES == 32 ? box + taken : box;
        const unsigned char *const lower = boxes.at(box), *const upper = boxes.at(further);
        const unsigned char *const lowerWeights = boxes.weights + box * taps * sizeof(Sum);
        const unsigned char *const upperWeights = boxes.weights + further * taps * sizeof(Sum);
        Vector<Sum> sum = {};
        for (std::size_t byte = 0; byte < taps * sizeof(Sum); byte += 16)
            sum += product(loadLanes<Sum>(lower + byte, upper + byte),
                           loadLanes<Sum>(lowerWeights + byte, upperWeights + byte));
        partial[k] = as<std::uint8_t>(sum);
    }
    transpose<sizeof(Sum)>(partial);
    Vector<Sum> sums = as<Sum>(partial[0]) + as<Sum>(partial[1]);
    if constexpr (taken == 4)
        sums += as<Sum>(partial[2]) + as<Sum>(partial[3]);
    return sums;
}

template <class Out, std::size_t chunks> inline auto meansOfGroup(const Boxes<float> &boxes, std::size_t first)
{
    return meansOf<Out>(sumsOfBoxes<chunks>(boxes, first), loadVector<float>(boxes.totals, first) * boxes.rowWeights);
}
template <class Out, std::size_t chunks> inline auto meansOfGroup(const Boxes<double> &boxes, std::size_t first)
{
    const std::size_t second = first + perVector<double>;
    return meansOf<Out>(sumsOfBoxes<chunks>(boxes, first), sumsOfBoxes<chunks>(boxes, second),
                        loadVector<double>(boxes.totals, first) * boxes.rowWeights,
                        loadVector<double>(boxes.totals, second) * boxes.rowWeights);
}

// The sums of all channels of a pixel, in a lane of floats; the second box is for vectors of two lanes. `known` is how
// many taps a box has, 0 for any number.
template <std::size_t known>
inline Floats sumsOfPixels(const Boxes<float> &boxes, std::size_t channels, std::size_t first)
{
    const std::size_t second = ORV_VECTOR_BYTES == 32 ? first + 1 : first, taps = known == 0 ? boxes.taps : known;
    const unsigned char *const lower = boxes.at(first), *const upper = boxes.at(second);
    const unsigned char *const lowerWeights = boxes.weights + first * taps * sizeof(float);
    const unsigned char *const upperWeights = boxes.weights + second * taps * sizeof(float);
    Floats sums = {};
    ORV_UNROLLED
    for (std::size_t tap = 0; tap < taps; ++tap) {
        const std::size_t at = tap * channels * sizeof(float);
        sums += loadLanes<float>(lower + at, upper + at) *
                everywhereInLanes(load<float>(lowerWeights, tap), load<float>(upperWeights, tap));
    }
    return sums;
}
template <class Out, std::size_t known>
inline auto meansOfPixels(const Boxes<float> &boxes, std::size_t channels, std::size_t first)
{
    const std::size_t second = ORV_VECTOR_BYTES == 32 ? first + 1 : first;
    const Floats totals = everywhereInLanes(load<float>(boxes.totals, first), load<float>(boxes.totals, second));
    return meansOf<Out>(sumsOfPixels<known>(boxes, channels, first), totals * boxes.rowWeights);
}

// The same in the doubles of one pixel, from its sample `channel` on.
inline Doubles sumsOfPixel(const Boxes<double> &boxes, std::size_t channels, std::size_t box, std::size_t channel)
{
    const unsigned char *const in = boxes.at(box) + channel * sizeof(double), *const weights = boxes.weightsOf(box);
    Doubles even = {}, odd = {};
    for (std::size_t tap = 0; tap < boxes.taps; tap += 2) {
        even += product(loadVector<double>(in, tap * channels), everywhere(load<double>(weights, tap)));
        odd += product(loadVector<double>(in, (tap + 1) * channels), everywhere(load<double>(weights, tap + 1)));
    }
    return even + odd;
}
template <class Out, std::size_t>
inline auto meansOfPixels(const Boxes<double> &boxes, std::size_t channels, std::size_t first)
{
    // Vectors of four doubles hold a pixel each, vectors of two a half.
    constexpr bool halves = perVector<double> == 2;
    const std::size_t second = halves ? first : first + 1, channel = halves ? 2 : 0;
    return meansOf<Out>(sumsOfPixel(boxes, channels, first, 0), sumsOfPixel(boxes, channels, second, channel),
                        everywhere(load<double>(boxes.totals, first) * boxes.rowWeights),
                        everywhere(load<double>(boxes.totals, second) * boxes.rowWeights));
}

// Stores the results that means(i) gives from the sample i on, as many as a vector of 32-bit samples. The last vector
// overlaps its neighbour. False where the row is shorter than one.
template <class Out, class Means> inline bool storeMeans(std::size_t samples, unsigned char *out, Means means)
{
    if (samples < perVector<Out>)
        return false;
    constexpr std::size_t groups = perVector<Out> / perVector<float>;
    const auto storeAt = [&](std::size_t i) {
        decltype(means(i)) results[groups];
        ORV_UNROLLED
        for (std::size_t k = 0; k < groups; ++k)
            results[k] = means(i + k * perVector<float>);
        storeNarrowed(out, i, results, Out{});
    };
    std::size_t i = 0;
    for (; i + perVector<Out> <= samples; i += perVector<Out>)
        storeAt(i);
    if (i < samples)
        storeAt(samples - perVector<Out>);
    return true;
}

// Drops every fourth sample. Each store but the last is of four samples, of which the next writes over one.
template <class Sample> inline void moveThirds(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    struct Pixel {
        Sample samples[4];
    };
    for (std::size_t i = 0; i + 1 < pixels; ++i)
        store(out + 3 * i * sizeof(Sample), 0, load<Pixel>(in, i));
    __builtin_memcpy(out + 3 * (pixels - 1) * sizeof(Sample), in + 4 * (pixels - 1) * sizeof(Sample),
                     3 * sizeof(Sample));
}

// Pixels of four samples, of which some layouts take three: these go through a buffer.
template <class Out, class Sum, std::size_t layout, std::size_t known>
bool storePixels(const Boxes<Sum> &boxes, std::size_t width, unsigned char *out)
{
    constexpr std::size_t channels = samplesOf(layout), most = 64;
    const auto pixels = [&](std::size_t first, std::size_t count, unsigned char *into) {
        return storeMeans<Out>(
            4 * count, into, [&](std::size_t i) { return meansOfPixels<Out, known>(boxes, channels, first + i / 4); });
    };
    if constexpr (layout == C4)
        return pixels(0, width, out);
    if (4 * width < perVector<Out>)
        return false;
    unsigned char buffer[most * 4 * sizeof(Out)];
    for (std::size_t i = 0; i < width; i += most) {
        // The last pixels may be fewer than a vector holds: some are computed again.
        std::size_t some = width - i < most ? width - i : most;
        const std::size_t least = perVector<Out> / 4, from = some < least ? width - least : i;
        some = some < least ? least : some;
        pixels(from, some, buffer);
        if constexpr (layout == AC4)
            moveThreeOfFour<Out>(some, buffer, out + 4 * from * sizeof(Out));
        else
            moveThirds<Out>(some, buffer, out + 3 * from * sizeof(Out));
    }
    return true;
}

template <class Out, class Sum, std::size_t layout>
bool meansByVectors(const Boxes<Sum> &boxes, std::size_t width, unsigned char *out)
{
    if constexpr (layout == C1) {
        if (boxes.taps == laneTaps<Sum>)
            return storeMeans<Out>(width, out, [&](std::size_t i) { return meansOfGroup<Out, 1>(boxes, i); });
        if (boxes.taps == 2 * laneTaps<Sum>)
            return storeMeans<Out>(width, out, [&](std::size_t i) { return meansOfGroup<Out, 2>(boxes, i); });
        return storeMeans<Out>(width, out, [&](std::size_t i) { return meansOfGroup<Out, 0>(boxes, i); });
    } else {
        // Most factors give boxes of two or three pixels.
        if constexpr (std::is_same_v<Sum, float>) {
            if (boxes.taps == 2)
                return storePixels<Out, Sum, layout, 2>(boxes, width, out);
            if (boxes.taps == 3)
                return storePixels<Out, Sum, layout, 3>(boxes, width, out);
        }
        return storePixels<Out, Sum, layout, 0>(boxes, width, out);
    }
}

#endif

template <class Out, class Sum, std::size_t layout>
KrnStatus meanRow(const void *sums, void *destination, std::int32_t width, const BoxesOfRow *of, double rowWeights)
{
    if (sums == nullptr || destination == nullptr || of == nullptr)
        return KRN_NULL_POINTER;
    if (width < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    const auto bytes = [](const void *memory) { return static_cast<const unsigned char *>(memory); };
    const Boxes<Sum> boxes = {bytes(sums),
                              bytes(of->weights),
                              bytes(of->totals),
                              of->offsets,
                              static_cast<std::size_t>(of->taps),
                              static_cast<Sum>(rowWeights)};
    unsigned char *const out = static_cast<unsigned char *>(destination);
    const std::size_t count = static_cast<std::size_t>(width);
#if ORV_VECTOR_BYTES > 0
    if (meansByVectors<Out, Sum, layout>(boxes, count, out))
        return KRN_OK;
#endif
    meansOfBoxes<Out>(boxes, samplesOf(layout), layout == AC4 ? 3 : layout, count, out);
    return KRN_OK;
}

} // namespace

#define ORV_MEAN_ROW(layout, stem, Out, Sum)                                           \
    KRN_KERNEL(MeanRowKernel, stem##layout)                                            \
    {                                                                                  \
        return meanRow<Out, Sum, layout>(sums, destination, width, boxes, rowWeights); \
    }

ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow32f8u, std::uint8_t, float)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow32f16u, std::uint16_t, float)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f8u, std::uint8_t, double)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f16u, std::uint16_t, double)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f32f, float, double)

#include "end.h"
