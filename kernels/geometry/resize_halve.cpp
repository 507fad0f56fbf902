// Means of two by two pixels.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

// A mean by its four samples. Doubles are added in the order of krnMeanRow.
inline float meanOf(float a, float b, float c, float d)
{
    return static_cast<float>(((static_cast<double>(a) + c) + (static_cast<double>(b) + d)) * 0.25);
}
template <class Sample> inline Sample meanOf(Sample a, Sample b, Sample c, Sample d)
{
    return static_cast<Sample>((std::uint32_t{a} + b + c + d + 2) >> 2);
}

// Two source rows, and where their means go.
struct Halved {
    const unsigned char *upper, *lower;
    unsigned char *out;
};

template <class Sample, std::size_t channels>
inline void halvePixels(const Halved &rows, std::size_t first, std::size_t pixels)
{
    ORV_INDEPENDENT
    for (std::size_t i = first; i < pixels; ++i)
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const std::size_t left = 2 * i * channels + channel, right = left + channels;
            store(rows.out, i * channels + channel,
                  meanOf(load<Sample>(rows.upper, left), load<Sample>(rows.upper, right),
                         load<Sample>(rows.lower, left), load<Sample>(rows.lower, right)));
        }
}

#if ORV_VECTOR_BYTES > 0

// How samples are taken from a lane of each row: whole pairs of pixels, as many as a lane has.
template <class Sample, std::size_t channels> struct Pairs {
    static constexpr std::size_t used = 16 / (2 * channels * sizeof(Sample)) * (2 * channels * sizeof(Sample));
    static constexpr std::size_t results = used; // in bytes, of two such lanes of two rows
    static constexpr std::size_t pixels = ORV_VECTOR_BYTES / 16 * results / (channels * sizeof(Sample));
    static constexpr bool whole = used == 16;
};

// A lane's pixels with the samples of a channel side by side. Bytes without a pixel become 0.
template <class Sample, std::size_t channels> struct PairPlaces {
    alignas(ORV_VECTOR_BYTES) unsigned char bytes[ORV_VECTOR_BYTES];

    constexpr PairPlaces() : bytes()
    {
        for (std::size_t at = 0; at < sizeof bytes; ++at) {
            const std::size_t sample = at % 16 / sizeof(Sample), result = sample / 2;
            const std::size_t from = (2 * (result / channels) + sample % 2) * channels + result % channels;
            const std::size_t byte = from * sizeof(Sample) + at % sizeof(Sample);
            bytes[at] = static_cast<unsigned char>(byte < Pairs<Sample, channels>::used ? byte : 0x80);
        }
    }
};

template <class Sample, std::size_t channels> inline U8s inPairs([[maybe_unused]] U8s pixels)
{
#if ORV_SHUFFLES
    static constexpr PairPlaces<Sample, channels> places;
    return channels == 1 ? pixels : bytesAt(pixels, loadVector<std::uint8_t>(places.bytes));
#else
    static_assert(channels == 1);
    return pixels;
#endif
}

// Sums of neighbours. Words are taken as signed: both rows together are `offset` too low.
inline S16s sumsOfPairs(U8s samples, std::uint8_t)
{
#if ORV_SHUFFLES
    return pairSums(samples, everywhere<std::int8_t>(1));
#else
    const U16s words = as<std::uint16_t>(samples);
    return as<std::int16_t>((words & std::uint16_t{0xFF}) + (words >> 8));
#endif
}
inline S32s sumsOfPairs(U8s samples, std::uint16_t)
{
    return pairSums(as<std::int16_t>(as<std::uint16_t>(samples) ^ std::uint16_t{0x8000}), everywhere<std::int16_t>(1));
}
template <class Sample> constexpr int offset = sizeof(Sample) == 1 ? 0 : 4 * 32768;

// Of a lane from each of two places of both rows; the second is for vectors of two lanes.
template <class Sample, std::size_t channels>
inline auto meansOfPairs(const Halved &rows, std::size_t at, std::size_t further)
{
    const U8s upper = loadLanes<std::uint8_t>(rows.upper + at, rows.upper + at + further);
    const U8s lower = loadLanes<std::uint8_t>(rows.lower + at, rows.lower + at + further);
    const auto sums = sumsOfPairs(inPairs<Sample, channels>(upper), Sample{}) +
                      sumsOfPairs(inPairs<Sample, channels>(lower), Sample{});
    return (sums + (offset<Sample> + 2)) >> 2;
}

// Packing takes the lanes of the first vector for the lower halves: their places alternate.
template <class Sample, std::size_t channels> inline void halveVector(const Halved &rows, std::size_t pixel)
{
    using Of = Pairs<Sample, channels>;
    const std::size_t at = 2 * pixel * channels * sizeof(Sample), result = at / 2;
    const auto first = meansOfPairs<Sample, channels>(rows, at, 2 * Of::used);
    const auto second = meansOfPairs<Sample, channels>(rows, at + Of::used, 2 * Of::used);
    const Vector<Sample> means = packed<Sample>(first, second);
    if constexpr (Of::whole) {
        storeVector<Sample>(rows.out + result, 0, means);
    } else {
#if ORV_SHUFFLES
        // Six bytes of each half. What is stored beyond them is written over by the next pixels.
        alignas(ORV_VECTOR_BYTES) static constexpr unsigned char halves[32] = {
            0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, 0x80, 0x80, 0x80, 0x80,
            0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, 0x80, 0x80, 0x80, 0x80};
        const U8s dense = bytesAt(as<std::uint8_t>(means), loadVector<std::uint8_t>(halves));
        store(rows.out + result, 0, laneOf<0>(dense));
        if constexpr (ORV_VECTOR_BYTES == 32)
            store(rows.out + result + Of::results, 0, laneOf<ORV_VECTOR_BYTES / 16 - 1>(dense));
#endif
    }
}

inline void halveFloats(const Halved &rows, std::size_t pixel)
{
    Doubles means[2];
    for (std::size_t half = 0; half < 2; ++half) {
        const std::size_t at = 2 * pixel + half * perVector<float>;
        const Doubles first = loadDoubles(rows.upper, at) + loadDoubles(rows.lower, at);
        const Doubles second =
            loadDoubles(rows.upper, at + perVector<double>) + loadDoubles(rows.lower, at + perVector<double>);
        means[half] =
            inOrderOfPairs((interleaveLow<double>(first, second) + interleaveHigh<double>(first, second)) * 0.25);
    }
    storeVector<float>(rows.out, pixel, toFloats(means[0], means[1]));
}

#endif

template <class Sample, std::size_t channels> inline void halveRow(const Halved &rows, std::size_t pixels)
{
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    if constexpr (std::is_same_v<Sample, float>) {
        for (; i + perVector<float> <= pixels; i += perVector<float>)
            halveFloats(rows, i);
    } else if constexpr (channels == 1 || ORV_SHUFFLES) {
        using Of = Pairs<Sample, channels>;
        // Vectors that are not used whole end within the row.
        constexpr std::size_t spare = Of::whole ? 0 : (16 / sizeof(Sample) + channels - 1) / channels;
        for (; i + Of::pixels + spare <= pixels; i += Of::pixels)
            halveVector<Sample, channels>(rows, i);
        if (Of::whole && i > 0 && i < pixels) {
            halveVector<Sample, channels>(rows, pixels - Of::pixels);
            i = pixels;
        }
    }
#endif
    halvePixels<Sample, channels>(rows, i, pixels);
}

template <class Sample, std::size_t layout>
KrnStatus halve(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height)
{
    if (const KrnStatus refusal = testRasters(width, height, source, destination); refusal != KRN_OK)
        return refusal;
    const DoublePrecision doubles;
    constexpr std::size_t channels = samplesOf(layout), most = 128;
    const std::size_t pixels = static_cast<std::size_t>(width);
    for (std::int32_t row = 0; row < height; ++row) {
        const Halved rows = {source.fromRow(2 * std::int64_t{row}).data, source.fromRow(2 * std::int64_t{row} + 1).data,
                             destination.fromRow(row).data};
        if constexpr (layout != AC4) {
            halveRow<Sample, channels>(rows, pixels);
        } else {
            unsigned char buffer[most * 4 * sizeof(Sample)];
            for (std::size_t i = 0; i < pixels; i += most) {
                const std::size_t some = pixels - i < most ? pixels - i : most, at = 8 * i * sizeof(Sample);
                halveRow<Sample, channels>({rows.upper + at, rows.lower + at, buffer}, some);
                moveThreeOfFour<Sample>(some, buffer, rows.out + at / 2);
            }
        }
    }
    return KRN_OK;
}

} // namespace

#define ORV_HALVE(layout, stem, Sample)                                                               \
    KRN_KERNEL(HalveKernel, stem##layout)                                                             \
    {                                                                                                 \
        return halve<Sample, layout>(from(source, sourceStep), to(destination, step), width, height); \
    }

ORV_LAYOUTS(ORV_HALVE, krnHalve8u, std::uint8_t)
ORV_LAYOUTS(ORV_HALVE, krnHalve16u, std::uint16_t)
ORV_HALVE(C1, krnHalve32f, float)

#include "end.h"
