// Lanes of norm_lanes.h by vectors.
//
// A step takes three vectors, or twice as many, for then it is whole pixels of 1, 3 and 4 samples.

#if ORV_VECTOR_BYTES > 0

constexpr std::size_t period = 3;

using U32s = Vector<std::uint32_t>;
using U64s = Vector<std::uint64_t>;

inline U8s magnitudesOf(U8s a)
{
    return a;
}
inline U8s magnitudesOf(U8s a, U8s b)
{
    return saturatingDifference(a, b) | saturatingDifference(b, a);
}
inline U16s magnitudesOf(S16s a)
{
    return magnitudes(a);
}
inline U16s magnitudesOf(S16s a, S16s b)
{
    return as<std::uint16_t>(maximum(a, b)) - as<std::uint16_t>(minimum(a, b));
}

template <class Sample, class... Source> inline auto magnitudesAt(std::size_t vector, const Source *...in)
{
    return magnitudesOf(loadVector<Sample>(in, vector * perVector<Sample>)...);
}

// Calls of(lane, value) for the lanes of a vector.
template <class Value, class Of> inline void overLanes(Vector<Value> vector, Of of)
{
    Value values[perVector<Value>];
    __builtin_memcpy(values, &vector, sizeof vector);
    for (std::size_t lane = 0; lane < perVector<Value>; ++lane)
        of(lane, values[lane]);
}

template <Norm norm, class Sample, bool oneChannel> struct Lanes;

// Maxima.
template <class Sample, bool oneChannel> struct Lanes<Norm::Inf, Sample, oneChannel> {
    static constexpr std::size_t samples = period * perVector<Sample>, mostSteps = ~std::size_t{0};
    Vector<Unsigned<Sample>> top[period] = {};

    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < period; ++v)
            top[v] = maximum(top[v], magnitudesAt<Sample>(v, in...));
    }
    void fold(Places &places)
    {
        for (std::size_t v = 0; v < period; ++v)
            overLanes<Unsigned<Sample>>(top[v], [&](std::size_t lane, Unsigned<Sample> value) {
                places.join<Norm::Inf>(v * perVector<Sample> + lane, value);
            });
    }
};

// Sums. Two neighbours are added as one sample of twice the width, which wraps, and the odd one on its own. What the
// sums of both say together is exact for as many steps as a sum of either fits that width.
template <class Sample, bool oneChannel> struct Lanes<Norm::L1, Sample, oneChannel> {
    using Pair = std::conditional_t<sizeof(Sample) == 1, std::uint16_t, std::uint32_t>;
    static constexpr std::size_t samples = period * perVector<Sample>;
    static constexpr std::size_t mostSteps = sizeof(Sample) == 1 ? 256 : 65536;
    static constexpr int bits = 8 * sizeof(Sample);
    Vector<Pair> both[period] = {}, odd[period] = {};

    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const Vector<Pair> pairs = as<Pair>(magnitudesAt<Sample>(v, in...));
            both[v] += pairs;
            odd[v] += pairs >> bits;
        }
    }
    void fold(Places &places)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<Sample>;
            overLanes<Pair>(both[v] - (odd[v] << bits), [&](std::size_t lane, Pair sum) {
                places.join<Norm::L1>(first + 2 * lane, sum);
            });
            overLanes<Pair>(odd[v], [&](std::size_t lane, Pair sum) {
                places.join<Norm::L1>(first + 2 * lane + 1, sum);
            });
        }
        *this = {};
    }
};

// Sums of bytes of one channel, by the instruction for these.
template <> struct Lanes<Norm::L1, std::uint8_t, true> {
    static constexpr std::size_t samples = period * perVector<std::uint8_t>, mostSteps = ~std::size_t{0};
    U64s sums[period] = {};

    static U64s sumsOf(U8s a, U8s b = U8s{}) { return differenceSums(a, b); }
    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < period; ++v)
            sums[v] += sumsOf(loadVector<std::uint8_t>(in, v * perVector<std::uint8_t>)...);
    }
    void fold(Places &places)
    {
        for (std::size_t v = 0; v < period; ++v)
            overLanes<std::uint64_t>(sums[v], [&](std::size_t, std::uint64_t sum) { places.join<Norm::L1>(0, sum); });
    }
};

// Sums of squares have 32 bits a sample. Four samples in each lane of 16 bytes start at the sample `first` of a step.
// Vectors of which this is the same modulo 3 have the same channels in the same places, so three sums do.
constexpr std::size_t sumOf(std::size_t first)
{
    return first % period;
}
template <class Sample> inline std::size_t placeOf(std::size_t sum, std::size_t lane)
{
    return 4 * sum + lane / 4 * (sizeof(Lane) / sizeof(Sample)) + lane % 4;
}

// The same samples of two periods side by side are multiplied and added up at once.
template <bool oneChannel> struct Lanes<Norm::L2, std::uint8_t, oneChannel> {
    static constexpr std::size_t samples = 2 * period * perVector<std::uint8_t>;
    static constexpr std::size_t mostSteps = 8192; // of four times two squares each
    U32s sums[period] = {};

    void add(std::size_t first, U8s words)
    {
        const S16s values = as<std::int16_t>(words);
        sums[sumOf(first)] += as<std::uint32_t>(pairSums(values, values));
    }
    void addHalves(std::size_t first, U8s pairs)
    {
        add(first, interleaveLow<std::uint8_t>(pairs, U8s{}));
        add(first + 4, interleaveHigh<std::uint8_t>(pairs, U8s{}));
    }
    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const U8s a = magnitudesAt<std::uint8_t>(v, in...), b = magnitudesAt<std::uint8_t>(v + period, in...);
            addHalves(v * perVector<std::uint8_t>, interleaveLow<std::uint8_t>(a, b));
            addHalves(v * perVector<std::uint8_t> + 8, interleaveHigh<std::uint8_t>(a, b));
        }
    }
    void fold(Places &places)
    {
        for (std::size_t i = 0; i < period; ++i)
            overLanes<std::uint32_t>(sums[i], [&](std::size_t lane, std::uint32_t sum) {
                places.join<Norm::L2>(placeOf<std::uint8_t>(i, lane), sum);
            });
        *this = {};
    }
};

// Squares of words fill 32 bits. Their sums wrap; those of their upper halves do not, and tell how often.
template <bool oneChannel> struct Lanes<Norm::L2, std::int16_t, oneChannel> {
    static constexpr std::size_t samples = 2 * period * perVector<std::int16_t>;
    static constexpr std::size_t mostSteps = 16384; // of four squares each
    U32s sums[period] = {}, upper[period] = {};

    void add(std::size_t first, U32s squares)
    {
        sums[sumOf(first)] += squares;
        upper[sumOf(first)] += squares >> 16;
    }
    // Two squares of signed words fit 32 bits, and so does one of a difference.
    void take(std::size_t, const unsigned char *in)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<std::int16_t>;
            const S16s a = loadVector<std::int16_t>(in, first);
            const S16s b = loadVector<std::int16_t>(in, first + samples / 2);
            const S16s low = interleaveLow<std::int16_t>(a, b), high = interleaveHigh<std::int16_t>(a, b);
            add(first, as<std::uint32_t>(pairSums(low, low)));
            add(first + 4, as<std::uint32_t>(pairSums(high, high)));
        }
    }
    void take(std::size_t, const unsigned char *one, const unsigned char *other)
    {
        for (std::size_t v = 0; v < 2 * period; ++v) {
            const U16s a = magnitudesAt<std::int16_t>(v, one, other), low = a * a, high = highProducts(a, a);
            add(v * perVector<std::int16_t>, as<std::uint32_t>(interleaveLow<std::uint16_t>(low, high)));
            add(v * perVector<std::int16_t> + 4, as<std::uint32_t>(interleaveHigh<std::uint16_t>(low, high)));
        }
    }
    void fold(Places &places)
    {
        for (std::size_t i = 0; i < period; ++i) {
            const std::size_t sum = i;
            overLanes<std::uint32_t>(upper[i], [&](std::size_t lane, std::uint32_t value) {
                places.join<Norm::L2>(placeOf<std::int16_t>(sum, lane), std::uint64_t{value} << 16);
            });
            overLanes<std::uint32_t>(sums[i] - (upper[i] << 16), [&](std::size_t lane, std::uint32_t value) {
                places.join<Norm::L2>(placeOf<std::int16_t>(sum, lane), value);
            });
        }
        *this = {};
    }
};

#endif
