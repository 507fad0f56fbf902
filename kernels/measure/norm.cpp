// Norms of integers. Maxima, sums and sums of squares of bytes are exact, so their order is free: rows without padding
// are one row, and totals become doubles at the end. Sums of squares of words are exact while doubles hold them.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

#include "norms.h"

#include "norm_lanes.h"
#include "norm_vectors.h"

// The last samples of a row, with zeros after them, which change no norm. They are copied by vectors, of which the
// last ends where the row does.
template <class Lanes, class Sample> struct Tail {
#if ORV_VECTOR_BYTES > 0
    unsigned char bytes[ORV_VECTOR_BYTES + Lanes::samples * sizeof(Sample)];

    const unsigned char *copy(const unsigned char *in, std::size_t tail, std::size_t row)
    {
        unsigned char *const out = bytes + ORV_VECTOR_BYTES;
        for (std::size_t at = 0; at < sizeof bytes; at += ORV_VECTOR_BYTES)
            storeVector<std::uint8_t>(bytes, at, U8s{});
        if (row < ORV_VECTOR_BYTES) {
            for (std::size_t at = 0; at < tail; ++at) {
                ORV_NOT_VECTORIZED;
                out[at] = in[at];
            }
            return out;
        }
        for (std::size_t at = 0; at + ORV_VECTOR_BYTES <= tail; at += ORV_VECTOR_BYTES)
            storeVector<std::uint8_t>(out, at, loadVector<std::uint8_t>(in, at));
        storeVector<std::uint8_t>(out + tail - ORV_VECTOR_BYTES, 0,
                                  loadVector<std::uint8_t>(in + tail - ORV_VECTOR_BYTES));
        return out;
    }
#else
    const unsigned char *copy(const unsigned char *in, std::size_t, std::size_t)
    {
        return in;
    }
#endif
};

// Goes on over calls, until it is added to totals.
template <class Lanes> struct Running {
    Lanes lanes;
    std::size_t room = Lanes::mostSteps;
    Places places;
};

template <class Sample, class Lanes, class... Source>
[[gnu::noinline]] void takeRows(Running<Lanes> &running, std::size_t samples, std::int32_t height, Source... rasters)
{
    Lanes lanes = running.lanes;
    std::size_t room = running.room;
    for (std::int32_t row = 0; row < height; ++row) {
        const auto takeRow = [&](auto... in) {
            Tail<Lanes, Sample> tails[sizeof...(in)];
            for (std::size_t left = samples; left > 0;) {
                std::size_t some = Lanes::samples, steps = left / some;
                if (steps == 0) {
                    std::size_t source = 0;
                    ((in = tails[source++].copy(in, left * sizeof(Sample), samples * sizeof(Sample))), ...);
                    some = left;
                    steps = 1;
                }
                steps = steps < room ? steps : room;
                left -= steps * some;
                room -= steps;
                for (; steps > 0; --steps) {
                    lanes.take(some, in...);
                    ((in += Lanes::samples * sizeof(Sample)), ...);
                }
                if (room == 0) {
                    lanes.fold(running.places);
                    room = Lanes::mostSteps;
                }
            }
        };
        takeRow(rasters.data...);
        ((rasters = rasters.fromRow(1)), ...);
    }
    running.lanes = lanes;
    running.room = room;
}

template <Norm norm, class Lanes> inline void addTo(double *totals, std::size_t channels, Running<Lanes> &running)
{
    running.lanes.fold(running.places);
    running.places.template addTo<norm>(totals, channels);
}

// Rows that follow each other without padding are one.
template <class Sample, class... Source> inline void join(std::size_t &samples, std::int32_t &height, Source... in)
{
    if (height > 1 && (... && (static_cast<std::size_t>(in.step) == samples * sizeof(Sample)))) {
        samples *= static_cast<std::size_t>(height);
        height = 1;
    }
}

// All rows in one run. The second function goes over parts that stay in the cache from the one norm to the other.
template <Norm norm, class Sample, bool oneChannel, class... Source>
inline void takeAll(std::size_t channels, double *totals, std::size_t samples, std::int32_t height, Source... in)
{
    Running<Lanes<norm, Sample, oneChannel, (sizeof...(in) > 1)>> running;
    join<Sample>(samples, height, in...);
    // Hides that this is one row, for which the compiler would make a second function.
    __asm__("" : "+r"(height));
    takeRows<Sample>(running, samples, height, in...);
    addTo<norm>(totals, channels, running);
}

template <Norm norm, class Sample, bool oneChannel>
inline void takeBoth(std::size_t channels, double *totals, std::size_t samples, std::int32_t height, ConstRaster first,
                     ConstRaster second)
{
    using Differences = Lanes<norm, Sample, oneChannel, true>;
    using Samples = Lanes<norm, Sample, oneChannel, false>;
    constexpr std::size_t most = 9216 / sizeof(Sample); // samples of a part
    static_assert(most % Differences::samples == 0 && most % Samples::samples == 0);
    Running<Differences> numerators;
    Running<Samples> denominators;
    join<Sample>(samples, height, first, second);
    const auto take = [&](std::size_t some, std::int32_t rows) {
        __asm__("" : "+r"(rows));
        takeRows<Sample>(numerators, some, rows, first, second);
        takeRows<Sample>(denominators, some, rows, second);
    };
    if (height == 1) {
        for (; samples > most; samples -= most) {
            take(most, 1);
            first = first.fromByte(most * sizeof(Sample));
            second = second.fromByte(most * sizeof(Sample));
        }
        take(samples, 1);
    } else {
        const std::int32_t atOnce = samples < most ? static_cast<std::int32_t>(most / samples) : 1;
        for (; height > 0; height -= atOnce) {
            take(samples, height < atOnce ? height : atOnce);
            first = first.fromRow(atOnce);
            second = second.fromRow(atOnce);
        }
    }
    addTo<norm>(totals, channels, numerators);
    addTo<norm>(totals + firstDenominator, channels, denominators);
}

// Squares of words may come to more than doubles hold. Then each block of a row is one run, else the order is free.
template <Norm norm, class Sample> inline bool areExact(const double *totals, std::size_t pixels, std::int32_t height)
{
    if (norm != Norm::L2 || sizeof(Sample) == 1)
        return true;
    constexpr double mostExact = 9007199254740992.0, mostSquare = 4294967296.0;
    double largest = 0;
    for (std::size_t i = 0; i < normSums; ++i)
        largest = joined<Norm::Inf>(largest, totals[i]);
    return largest + static_cast<double>(pixels) * height * mostSquare <= mostExact;
}

template <Norm norm, class Sample, class Take, class... Source>
void takeInOrder(std::size_t channels, const double *totals, std::size_t pixels, std::int32_t height, Take take,
                 Source... in)
{
    if (areExact<norm, Sample>(totals, pixels, height))
        return take(pixels * channels, height, in...);
    if (height > 1) {
        const std::int32_t half = height / 2;
        takeInOrder<norm, Sample>(channels, totals, pixels, half, take, in...);
        return takeInOrder<norm, Sample>(channels, totals, pixels, height - half, take, in.fromRow(half)...);
    }
    for (; pixels > mostPixels; pixels -= mostPixels) {
        take(mostPixels * channels, 1, in...);
        ((in = in.fromByte(static_cast<std::int64_t>(mostPixels * channels * sizeof(Sample)))), ...);
    }
    take(pixels * channels, 1, in...);
}

// Calls run(constant) where the constant tells whether there is a shorter way for one channel.
template <Norm norm, class Sample, class Run> inline void withOneChannel(std::size_t channels, Run run)
{
    if constexpr (norm != Norm::Inf && sizeof(Sample) == 1 && ORV_VECTOR_BYTES > 0)
        if (channels == 1)
            return run(std::true_type());
    run(std::false_type());
}

template <Norm norm, class Sample, class... Source>
[[gnu::noinline]] void measure(std::size_t channels, double *totals, std::int32_t width, std::int32_t height,
                               Source... in)
{
    withOneChannel<norm, Sample>(channels, [=](auto oneChannel) {
        const auto take = [=](std::size_t samples, std::int32_t rows, auto... sources) {
            takeAll<norm, Sample, decltype(oneChannel)::value>(channels, totals, samples, rows, sources...);
        };
        takeInOrder<norm, Sample>(channels, totals, static_cast<std::size_t>(width), height, take, in...);
    });
}

// The relative maximum of bytes ends where it can grow no more. A look at it is worth so many samples.
constexpr std::int32_t samplesOfLook = 65536;

inline void takeUntilLargest(double *totals, std::int32_t width, std::int32_t height, ConstRaster first,
                             ConstRaster second)
{
    const std::int32_t atOnce = width < samplesOfLook ? samplesOfLook / width : 1;
    for (; height > 0 && totals[0] + totals[firstDenominator] < 510; height -= atOnce) {
        takeBoth<Norm::Inf, std::uint8_t, false>(1, totals, static_cast<std::size_t>(width),
                                                 height < atOnce ? height : atOnce, first, second);
        first = first.fromRow(atOnce);
        second = second.fromRow(atOnce);
    }
}

template <Norm norm, class Sample>
[[gnu::noinline]] void measureBoth(std::size_t channels, double *totals, std::int32_t width, std::int32_t height,
                                   ConstRaster first, ConstRaster second)
{
    if constexpr (norm == Norm::Inf && sizeof(Sample) == 1)
        if (channels == 1)
            return takeUntilLargest(totals, width, height, first, second);
    withOneChannel<norm, Sample>(channels, [=](auto oneChannel) {
        const auto take = [=](std::size_t samples, std::int32_t rows, ConstRaster one, ConstRaster other) {
            takeBoth<norm, Sample, decltype(oneChannel)::value>(channels, totals, samples, rows, one, other);
        };
        takeInOrder<norm, Sample>(channels, totals, static_cast<std::size_t>(width), height, take, first, second);
    });
}

} // namespace

ORV_NORMS(8u, std::uint8_t)
ORV_NORMS(16s, std::int16_t)

#include "end.h"
