// Resizing between two pixels of each row and column. Integers are rounded after each direction, ties up.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "resize_frame.h"
#include "resize_shuffles.h"

// A method along rows and across two of them, by what it says of two samples and of two vectors.
template <class Linear> struct LinearRows : Linear {
    using typename Linear::Buffer;
    using typename Linear::Sample;
    using typename Linear::Weight;
    static constexpr std::size_t taps = 2;

    struct Weights {
        Weight weight;

        Weights(const ResizeRows &rows, std::int32_t y)
            : weight(static_cast<Weight>(load<typename Linear::Stored>(rows.weights, static_cast<std::size_t>(y))))
        {
        }
    };

    static void interpolate(const unsigned char *row, const ResizeColumns &columns, void *buffer)
    {
#if ORV_SHUFFLES
        if (Linear::gathered(row, columns, buffer))
            return;
#endif
        const std::size_t samples = static_cast<std::size_t>(columns.samples);
        for (std::size_t i = 0; i < samples; ++i)
            store(buffer, i,
                  static_cast<Buffer>(Linear::between(sourceOf<Sample>(row, columns, i, 0),
                                                      sourceOf<Sample>(row, columns, i, 1),
                                                      load<Weight>(columns.weights, i))));
    }

    static auto between(const void *const *buffers, std::size_t i, Weights of)
    {
        return Linear::between(load<Buffer>(buffers[0], i), load<Buffer>(buffers[1], i), of.weight);
    }
#if ORV_VECTOR_BYTES > 0
    static constexpr bool hasVectors = true;
    using Linear::between;

    static auto vectorsOf(Weights of)
    {
        return Linear::everywhereOf(of.weight);
    }
    static auto prepared(const void *const *buffers, std::size_t i)
    {
        using InVector = typename Linear::InVector;
        return Linear::prepared(loadVector<InVector>(buffers[0], i), loadVector<InVector>(buffers[1], i));
    }
#endif
};

// The first, and the fraction of the difference that the weight says: a product of words.
struct LinearBytes {
    using Sample = std::uint8_t;
    using Buffer = std::uint16_t;
    using Weight = std::int16_t;
    using Stored = std::int32_t; // the weight of a row

    static std::int32_t between(std::int32_t a, std::int32_t b, Weight weight)
    {
        return a + ((static_cast<std::int16_t>(a - b) * weight + resizeOne) >> 15);
    }
#if ORV_SHUFFLES
    static bool gathered(const unsigned char *row, const ResizeColumns &columns, void *buffer)
    {
        const void *const weights = columns.weights;
        return gatheredByVectors<2>(row, columns, [=](std::size_t i, const auto &sources) {
            const U8s pairs = sources.at(0);
            const S16s first = as<std::int16_t>(pairs) & std::int16_t{0xFF};
            const S16s difference = pairSums(pairs, as<std::int8_t>(everywhere<std::int16_t>(1 - 256)));
            storeVector<std::int16_t>(buffer, i, between({first, difference}, loadVector<std::int16_t>(weights, i)));
        });
    }
#endif
#if ORV_VECTOR_BYTES > 0
    using InVector = std::int16_t;

    static S16s everywhereOf(Weight weight)
    {
        return everywhere(weight);
    }
    struct Prepared {
        S16s first, difference;
    };
    static Prepared prepared(S16s a, S16s b)
    {
        return {a, a - b};
    }
    static S16s between(Prepared of, S16s weights)
    {
        return of.first + roundedProducts(of.difference, weights);
    }
    static U8s narrowed(S16s (&vectors)[2])
    {
        return inOrderOfPairs(packed<std::uint8_t>(vectors[0], vectors[1]));
    }
#endif
};

struct LinearWords {
    using Sample = std::uint16_t;
    using Buffer = std::uint16_t;
    using Weight = std::int32_t;
    using Stored = std::int32_t; // the weight of a row

    static std::int32_t between(std::int32_t a, std::int32_t b, Weight weights)
    {
        return (a * (weights & 0xFFFF) + b * (weights >> 16) + resizeOne / 2) >> 14;
    }
#if ORV_SHUFFLES
    static bool gathered(const unsigned char *row, const ResizeColumns &columns, void *buffer)
    {
        const void *const weights = columns.weights;
        const std::ptrdiff_t pixelBytes = columns.pixelBytes;
        return gatheredByVectors<2>(row, columns, [=](std::size_t i, const auto &sources) {
            const WeightVectors of = {
                loadLanes<std::int16_t>(at<std::int32_t>(weights, i), at<std::int32_t>(weights, i + 8)),
                loadLanes<std::int16_t>(at<std::int32_t>(weights, i + 4), at<std::int32_t>(weights, i + 12))};
            storeVector<std::uint16_t>(
                buffer, i,
                between(prepared(as<std::uint16_t>(sources.at(0)), as<std::uint16_t>(sources.at(pixelBytes))), of));
        });
    }
#endif
#if ORV_VECTOR_BYTES > 0
    using InVector = std::uint16_t;
    struct WeightVectors {
        S16s low, high; // of the lower halves of lanes and the upper ones
    };

    template <class Sample> static const unsigned char *at(const void *row, std::size_t i)
    {
        return static_cast<const unsigned char *>(row) + i * sizeof(Sample);
    }
    static WeightVectors everywhereOf(Weight weights)
    {
        const S16s all = as<std::int16_t>(everywhere(weights));
        return {all, all};
    }
    // Less 32768 samples are signed words. The result is less the same, since the weights are resizeOne together.
    struct Prepared {
        S16s low, high; // both sources of a result side by side
    };
    static Prepared prepared(U16s a, U16s b)
    {
        const U16s first = a ^ middle, second = b ^ middle;
        return {as<std::int16_t>(interleaveLow<std::uint16_t>(first, second)),
                as<std::int16_t>(interleaveHigh<std::uint16_t>(first, second))};
    }
    static U16s between(Prepared of, WeightVectors weights)
    {
        const auto half = [](S16s pairs, S16s by) { return (pairSums(pairs, by) + resizeOne / 2) >> 14; };
        return as<std::uint16_t>(packed<std::int16_t>(half(of.low, weights.low), half(of.high, weights.high))) ^ middle;
    }
    static constexpr std::uint16_t middle = 0x8000;
    static U16s narrowed(U16s (&vectors)[1])
    {
        return vectors[0];
    }
#endif
};

struct LinearFloats {
    using Sample = float;
    using Buffer = float;
    using Weight = float;
    using Stored = float; // the weight of a row

    static float between(float a, float b, float weight)
    {
        return singleFloat(singleFloat(a * singleFloat(1 - weight)) + singleFloat(b * weight));
    }
#if ORV_SHUFFLES
    static bool gathered(const unsigned char *row, const ResizeColumns &columns, void *buffer)
    {
        const void *const weights = columns.weights;
        const std::ptrdiff_t pixelBytes = columns.pixelBytes;
        return gatheredByVectors<4>(row, columns, [=](std::size_t i, const auto &sources) {
            storeVector<float>(
                buffer, i,
                between({as<float>(sources.at(0)), as<float>(sources.at(pixelBytes))}, loadVector<float>(weights, i)));
        });
    }
#endif
#if ORV_VECTOR_BYTES > 0
    using InVector = float;

    static Floats everywhereOf(Weight weight)
    {
        return everywhere(weight);
    }
    struct Prepared {
        Floats a, b;
    };
    static Prepared prepared(Floats a, Floats b)
    {
        return {a, b};
    }
    static Floats between(Prepared of, Floats weights)
    {
        return of.a * (1 - weights) + of.b * weights;
    }
    static Floats narrowed(Floats (&vectors)[1])
    {
        return vectors[0];
    }
#endif
};

} // namespace

ORV_RESIZE(krnResizeLinear8u, LinearRows<LinearBytes>)
ORV_RESIZE(krnResizeLinear16u, LinearRows<LinearWords>)
ORV_RESIZE(krnResizeLinear32f, LinearRows<LinearFloats>)

#include "end.h"
