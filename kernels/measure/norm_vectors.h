// Lanes of norm_lanes.h by vectors.
//
// Three vectors are whole pixels of 1, 3 and 4 samples. A step takes twice as many: sums then have pairs of samples
// that are of one channel.

#if ORV_VECTOR_BYTES > 0

constexpr std::size_t period = 3, perStep = 2 * period;

using U32s = Vector<std::uint32_t>;
using U64s = Vector<std::uint64_t>;

inline U8s magnitudesOf(U8s a)
{
    return a;
}
inline U8s magnitudesOf(U8s a, U8s b)
{
    return maximum(a, b) - minimum(a, b);
}
inline U16s magnitudesOf(S16s a)
{
    return magnitudes(a);
}
inline U16s magnitudesOf(S16s a, S16s b)
{
    return as<std::uint16_t>(maximum(a, b) - minimum(a, b));
}

template <class Sample, class... Source> inline auto magnitudesAt(std::size_t vector, const Source *...in)
{
    return magnitudesOf(loadVectorOnce<Sample>(in, vector * perVector<Sample>)...);
}

// Calls of(lane, value) for the lanes of a vector.
template <class Value, class Of> inline void overLanes(Vector<Value> vector, Of of)
{
    Value values[perVector<Value>];
    __builtin_memcpy(values, &vector, sizeof vector);
    __asm__("" : "+m"(values)); // memory is faster than to move the lanes one by one
    for (std::size_t lane = 0; lane < perVector<Value>; ++lane)
        of(lane, values[lane]);
}

// Sums of 32 bits of the samples of a period. A vector has four samples in each lane of 16 bytes; with `first` the
// first of them is said. Vectors of which this is the same modulo 3 have the same channels in the same places, so three
// sums do.
template <class Sample> struct WideSums {
    U32s of[period] = {};

    static constexpr std::size_t sumAt(std::size_t first) { return first % period; }
    void add(std::size_t first, U32s values) { of[sumAt(first)] += values; }
    // Twice as many, of 16 bits.
    void addWords(std::size_t first, U16s words)
    {
        add(first, as<std::uint32_t>(interleaveLow<std::uint16_t>(words, U16s{})));
        add(first + 4, as<std::uint32_t>(interleaveHigh<std::uint16_t>(words, U16s{})));
    }
    // Adds so many times each sum, less a constant.
    void foldInto(Places &places, std::uint64_t factor = 1, std::uint64_t less = 0) const
    {
        for (std::size_t i = 0; i < period; ++i) {
            const std::size_t sum = i; // what a lambda may capture
            overLanes<std::uint32_t>(of[i], [&](std::size_t lane, std::uint32_t value) {
                const std::size_t lower = lane / 4 * (sizeof(Lane) / sizeof(Sample));
                places.join<Norm::L1>(4 * sum + lower + lane % 4, value * factor - less);
            });
        }
    }
};

// Of one raster or of the difference of two. There are shorter ways for bytes of one channel.
template <Norm norm, class Sample, bool oneChannel, bool differs> struct Lanes;

// Maxima.
template <class Sample, bool differs> struct Lanes<Norm::Inf, Sample, false, differs> {
    static constexpr std::size_t samples = perStep * perVector<Sample>, mostSteps = ~std::size_t{0};
    Vector<Unsigned<Sample>> top[period] = {};

    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < perStep; ++v)
            top[v % period] = maximum(top[v % period], magnitudesAt<Sample>(v, in...));
    }
    void fold(Places &places)
    {
        for (std::size_t v = 0; v < period; ++v)
            overLanes<Unsigned<Sample>>(top[v], [&](std::size_t lane, Unsigned<Sample> value) {
                places.join<Norm::Inf>(v * perVector<Sample> + lane, value);
            });
    }
};

// Sums of bytes of one channel, by the instruction for these.
template <bool differs> struct Lanes<Norm::L1, std::uint8_t, true, differs> {
    static constexpr std::size_t samples = perStep * perVector<std::uint8_t>, mostSteps = ~std::size_t{0};
    U64s sums[period] = {};

    static U64s sumsOf(U8s a, U8s b = U8s{}) { return differenceSums(a, b); }
    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < perStep; ++v)
            sums[v % period] += sumsOf(loadVector<std::uint8_t>(in, v * perVector<std::uint8_t>)...);
    }
    void fold(Places &places)
    {
        for (std::size_t v = 0; v < period; ++v)
            overLanes<std::uint64_t>(sums[v], [&](std::size_t, std::uint64_t sum) { places.join<Norm::L1>(0, sum); });
    }
};

// Sums of bytes. Two neighbours are added as one word, which wraps, and the odd one on its own. What both say together
// is exact for as many steps as the sum of either fits a word.
template <bool differs> struct Lanes<Norm::L1, std::uint8_t, false, differs> {
    static constexpr std::size_t samples = perStep * perVector<std::uint8_t>, mostSteps = 128;
    U16s both[period] = {}, odd[period] = {};

    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < perStep; ++v) {
            const U16s pairs = as<std::uint16_t>(magnitudesAt<std::uint8_t>(v, in...));
            both[v % period] += pairs;
            odd[v % period] += pairs >> 8;
        }
    }
    void fold(Places &places)
    {
        WideSums<std::uint8_t> sums;
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<std::uint8_t>;
            const U16s even = both[v] - (odd[v] << 8);
            sums.addWords(first, interleaveLow<std::uint16_t>(even, odd[v]));
            sums.addWords(first + 8, interleaveHigh<std::uint16_t>(even, odd[v]));
        }
        sums.foldInto(places);
        *this = {};
    }
};

// Sums of words. Words wrap too soon, but tell the last bits of a sum; how often they wrap follows from the upper bytes
// of means of two. A sum of two is at least 512 times that byte less 1, and less than 512 more than that.
template <bool differs> struct Lanes<Norm::L1, std::int16_t, false, differs> {
    static constexpr std::size_t samples = perStep * perVector<std::int16_t>;
    static constexpr std::uint16_t mostSteps = 127; // 512 times it fits a word
    U16s sums[period] = {}, upper[period] = {};

    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const U16s a = magnitudesAt<std::int16_t>(v, in...), b = magnitudesAt<std::int16_t>(v + period, in...);
            sums[v] += a;
            sums[v] += b;
            upper[v] += roundedMeans(a, b) >> 8;
        }
    }
    void fold(Places &places)
    {
        WideSums<std::int16_t> wide, multiples;
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<std::int16_t>;
            wide.addWords(first, sums[v] - (upper[v] << 9) + mostSteps);
            multiples.addWords(first, upper[v]);
        }
        for (std::size_t i = 0; i < period; ++i)
            wide.of[i] += (multiples.of[i] << 9) - std::uint32_t{2 * mostSteps}; // of two halves of vectors
        wide.foldInto(places);
        *this = {};
    }
};

// Sums of squares of bytes of one channel, whose neighbours are multiplied and added up at once.
template <bool differs> struct Lanes<Norm::L2, std::uint8_t, true, differs> {
    static constexpr std::size_t samples = perStep * perVector<std::uint8_t>;
    static constexpr std::size_t mostSteps = 8192; // of four times two squares each
    U32s sums[period] = {};

    void add(std::size_t v, S16s values) { sums[v % period] += as<std::uint32_t>(pairSums(values, values)); }
    template <class... Source> void take(std::size_t, const Source *...in)
    {
        for (std::size_t v = 0; v < perStep; ++v)
            takeVector(v, loadVectorOnce<std::uint8_t>(in, v * perVector<std::uint8_t>)...);
    }
    void takeVector(std::size_t v, U8s a)
    {
        add(v, as<std::int16_t>(interleaveLow<std::uint8_t>(a, U8s{})));
        add(v, as<std::int16_t>(interleaveHigh<std::uint8_t>(a, U8s{})));
    }
    void takeVector(std::size_t v, U8s a, U8s b)
    {
#if ORV_SHUFFLES
        constexpr std::int16_t signs = 1 - (1 << 8);
        const S8s difference = as<std::int8_t>(everywhere(signs));
        add(v, pairSums(interleaveLow<std::uint8_t>(a, b), difference));
        add(v, pairSums(interleaveHigh<std::uint8_t>(a, b), difference));
#else
        takeVector(v, magnitudesOf(a, b));
#endif
    }
    void fold(Places &places)
    {
        for (U32s &sum : sums)
            overLanes<std::uint32_t>(sum, [&](std::size_t, std::uint32_t value) { places.join<Norm::L2>(0, value); });
        *this = {};
    }
};

// Sums of squares of bytes: the same samples of two periods side by side are multiplied and added up at once.
template <bool differs> struct Lanes<Norm::L2, std::uint8_t, false, differs> {
    static constexpr std::size_t samples = perStep * perVector<std::uint8_t>;
    static constexpr std::size_t mostSteps = 8192; // of four times two squares each
    WideSums<std::uint8_t> sums;

    void add(std::size_t first, U8s words)
    {
        const S16s values = as<std::int16_t>(words);
        sums.add(first, as<std::uint32_t>(pairSums(values, values)));
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
        sums.foldInto(places);
        *this = {};
    }
};

// Sums of squares of words. Two squares fit 32 bits. Their sums wrap; those of their upper halves do not, and tell how
// often.
template <> struct Lanes<Norm::L2, std::int16_t, false, false> {
    static constexpr std::size_t samples = perStep * perVector<std::int16_t>;
    static constexpr std::size_t mostSteps = 32768; // of two sums each
    WideSums<std::int16_t> sums, upper;

    void add(std::size_t first, S16s pairs)
    {
        const U32s squares = as<std::uint32_t>(pairSums(pairs, pairs));
        sums.add(first, squares);
        upper.add(first, squares >> 16);
    }
    void take(std::size_t, const unsigned char *in)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<std::int16_t>;
            const S16s a = loadVectorOnce<std::int16_t>(in, first);
            const S16s b = loadVectorOnce<std::int16_t>(in, first + samples / 2);
            add(first, interleaveLow<std::int16_t>(a, b));
            add(first + 4, interleaveHigh<std::int16_t>(a, b));
        }
    }
    void fold(Places &places)
    {
        for (std::size_t i = 0; i < period; ++i)
            sums.of[i] -= upper.of[i] << 16;
        sums.foldInto(places);
        upper.foldInto(places, 65536);
        *this = {};
    }
};

// One square of a difference fills 32 bits. How often sums wrap follows from the upper bytes of means, as it does for
// sums of words, but of means of the upper halves of squares.
template <> struct Lanes<Norm::L2, std::int16_t, false, true> {
    static constexpr std::size_t samples = perStep * perVector<std::int16_t>;
    static constexpr std::uint32_t mostSteps = 63; // with two means a sum each: twice 2 to the power of 25 fits
    WideSums<std::int16_t> sums;
    U16s upper[period] = {};

    U16s add(std::size_t first, U16s a)
    {
        const U16s low = a * a, high = highProducts(a, a);
        sums.add(first, as<std::uint32_t>(interleaveLow<std::uint16_t>(low, high)));
        sums.add(first + 4, as<std::uint32_t>(interleaveHigh<std::uint16_t>(low, high)));
        return high;
    }
    void take(std::size_t, const unsigned char *one, const unsigned char *other)
    {
        for (std::size_t v = 0; v < period; ++v) {
            const std::size_t first = v * perVector<std::int16_t>;
            const U16s high = add(first, magnitudesAt<std::int16_t>(v, one, other));
            const U16s next = add(first, magnitudesAt<std::int16_t>(v + period, one, other));
            upper[v] += roundedMeans(high, next) >> 8;
        }
    }
    void fold(Places &places)
    {
        constexpr std::uint32_t least = 2 * mostSteps << 16; // by which a sum may be below its multiple
        WideSums<std::int16_t> multiples;
        for (std::size_t v = 0; v < period; ++v)
            multiples.addWords(v * perVector<std::int16_t>, upper[v]);
        for (std::size_t i = 0; i < period; ++i)
            sums.of[i] += least - (multiples.of[i] << 25);
        sums.foldInto(places, 1, least);
        multiples.foldInto(places, std::uint64_t{1} << 25);
        *this = {};
    }
};

#endif
