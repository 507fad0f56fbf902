// Running sums of several rows by vectors. A sum waits for its predecessor in the row, so each place of a vector is a
// row: blocks of column sums are transposed, summed up from place to place, and the means transposed back. To be
// included after box_means.h, in builds with vectors.

// Means of vectors of rows. Sums of bytes that fit a word:
struct ByteVectors : ByteMean {
    using Column = std::uint16_t;
    using Running = U16s;
    ShiftCount count;
    U16s factor;

    static bool fit(const Window &window)
    {
        const std::int64_t pixels = std::int64_t{window.columns} * window.rows;
        return pixels > 1 && pixels <= 65535 / 255;
    }
    explicit ByteVectors(const Window &window)
        : ByteMean(window), count(shift > 16 ? shift - 16 : 0),
          factor(everywhere(static_cast<std::uint16_t>(shift < 16 ? multiplier << (16 - shift) : multiplier)))
    {
    }
    static Running none() { return Running{}; }
    static Running moved(Running sums, U16s by) { return sums + by; }
    U16s means(Running sums) const { return shiftedRight(highProducts(sums, factor), count); }
};

// Products of sums of bytes with 12 bits of the reciprocal, in two words: the products of differences are added. The
// lower word counts from -32768, so that comparison as signed words tells a carry. Differences of column sums fit a
// signed word.
struct LargerByteVectors : ByteMean {
    using Column = std::uint16_t;
    struct Running {
        S16s low;
        U16s high;
    };
    ShiftCount count;
    S16s factor;

    static bool fit(const Window &window)
    {
        return std::int64_t{window.columns} * window.rows > 65535 / 255 && window.rows <= 32767 / 255;
    }
    explicit LargerByteVectors(const Window &window)
        : ByteMean(window), count(shift - 16), factor(everywhere(static_cast<std::int16_t>(multiplier)))
    {
    }
    static Running none() { return {everywhere<std::int16_t>(-32768), U16s{}}; }
    Running moved(Running products, U16s by) const
    {
        const S16s more = as<std::int16_t>(by), low = products.low + more * factor, carry = low < products.low;
        return {low, products.high + as<std::uint16_t>(highProducts(more, factor) - carry)};
    }
    U16s means(Running products) const { return shiftedRight(products.high, count); }
};

struct LargeByteVectors : LargeByteMean {
    using Column = float;
    using Running = Floats;

    using LargeByteMean::LargeByteMean;
    static Running none() { return Running{}; }
    static Running moved(Running sums, Floats by) { return sums + by; }
    S32s means(Running sums) const { return truncated(sums * inverse); }
};

struct WordVectors : WordMean {
    using Column = std::int32_t;
    using Running = S32s;

    using WordMean::WordMean;
    static Running none() { return Running{}; }
    static Running moved(Running sums, S32s by) { return sums + by; }
    S32s means(Running sums) const { return truncated(toFloats(sums) * inverse + above) ^ 0x8000; }
};

struct FloatVectors : FloatMean {
    using Column = float;
    using Running = Floats;

    using FloatMean::FloatMean;
    static Running none() { return Running{}; }
    static Running moved(Running sums, Floats by) { return sums + by; }
    Floats means(Running sums) const { return sums * inverse; }
};

// A vector of samples that enter columns, less one of those that leave, added to the sums of the columns.
template <class Column, class Sample> struct VectorMove {
};
template <> struct VectorMove<float, float> {
    static void run(const unsigned char *above, Floats entering, Floats leaving, unsigned char *below)
    {
        storeVector<float>(below, 0, loadVector<float>(above) + (entering - leaving));
    }
};

// Interleaved samples become differences and wider at once. Halves are exchanged first, so that sums come in order.
template <class Sum, class Sample, class Signs>
inline void movePairs(const unsigned char *above, Vector<Sample> entering, Vector<Sample> leaving, unsigned char *below,
                      Signs signs)
{
    entering = inOrderOfPairs(entering);
    leaving = inOrderOfPairs(leaving);
    storeVector<Sum>(below, 0, loadVector<Sum>(above) + pairSums(interleaveLow<Sample>(entering, leaving), signs));
    storeVector<Sum>(below, perVector<Sum>,
                     loadVector<Sum>(above, perVector<Sum>) +
                         pairSums(interleaveHigh<Sample>(entering, leaving), signs));
}
template <> struct VectorMove<std::int32_t, std::int16_t> {
    static void run(const unsigned char *above, S16s entering, S16s leaving, unsigned char *below)
    {
        constexpr std::int32_t signs = 1 - (1 << 16);
        movePairs<std::int32_t, std::int16_t>(above, entering, leaving, below, as<std::int16_t>(everywhere(signs)));
    }
};
#if ORV_SHUFFLES
template <> struct VectorMove<std::uint16_t, std::uint8_t> {
    static void run(const unsigned char *above, U8s entering, U8s leaving, unsigned char *below)
    {
        constexpr std::int16_t signs = 1 - (1 << 8);
        movePairs<std::int16_t, std::uint8_t>(above, entering, leaving, below, as<std::int8_t>(everywhere(signs)));
    }
};
#endif

// Samples of neighbouring places, which are in vectors of their own, side by side in each row's place.
template <class Sample, std::size_t count, class Wide> inline void narrow(const Wide (&means)[count], auto &narrowed)
{
    constexpr std::size_t ratio = sizeof(means[0][0]) / sizeof(Sample);
    for (std::size_t i = 0; i < count / ratio; ++i)
        if constexpr (ratio == 1) {
            narrowed[i] = as<std::uint8_t>(means[i]);
        } else {
            using Unsigned = std::conditional_t<sizeof(means[0][0]) == 2, std::uint16_t, std::uint32_t>;
            constexpr Unsigned low = static_cast<Unsigned>((1u << 8 * sizeof(Sample)) - 1);
            Vector<Unsigned> all = as<Unsigned>(means[ratio * i]) & low;
            if constexpr (ratio == 4) {
                all |= (as<Unsigned>(means[ratio * i + 1]) & low) << 8;
                all |= (as<Unsigned>(means[ratio * i + 2]) & low) << 16;
            }
            all |= as<Unsigned>(means[ratio * i + ratio - 1]) << (8 * sizeof(Sample) * (ratio - 1));
            narrowed[i] = as<std::uint8_t>(all);
        }
}

// The rows of a block, whose parts of vectors follow each other row by row in each lane.
template <std::size_t rowBytes, std::size_t count> inline void storeRows(const U8s (&vectors)[count], Raster out)
{
    constexpr std::size_t perLane = sizeof(Lane) / rowBytes, lanes = sizeof(U8s) / sizeof(Lane);
    using Part = std::conditional_t<rowBytes == 4, std::uint32_t, std::uint64_t>;
    for (std::size_t lane = 0; lane < lanes; ++lane)
        for (std::size_t i = 0; i < count; ++i) {
            if constexpr (rowBytes == sizeof(Lane)) {
                store(out.data, 0, lane == 0 ? laneOf<0>(vectors[i]) : laneOf<lanes - 1>(vectors[i]));
                out.data += out.step;
            } else {
                for (std::size_t part = 0; part < perLane; ++part, out.data += out.step)
                    store<Part>(out.data, 0, as<Part>(vectors[i])[lane * perLane + part]);
            }
        }
}

// As many rows as a vector has places, of which each lane takes some. A block has a lane of each row.
template <class Means> struct VectorRows : Means {
    using Column = typename Means::Column;
    using Sample = typename Means::Sample;
    using Running = typename Means::Running;
    static constexpr std::size_t rows = perVector<Column>, block = sizeof(Lane) / sizeof(Column);
    struct Sums {
        Running of[4];
    };
    using Block = U8s[block];
    using Results = decltype(std::declval<Means>().means(Running()))[block];

    using Means::Means;

    // A block of each row, transposed: that of the first row starts at `entering`. With `less` another one is
    // subtracted, which starts on the boundary of a lane.
    template <bool less>
    static void loadBlock(const unsigned char *entering, const unsigned char *leaving, std::size_t step, Block &places)
    {
        constexpr std::size_t upper = rows - block; // lanes beyond the first have other rows
        for (std::size_t row = 0; row < block; ++row) {
            Vector<Column> sums = loadLanes<Column>(entering + row * step, entering + (upper + row) * step);
            if constexpr (less) {
                const void *lower = __builtin_assume_aligned(leaving + row * step, sizeof(Lane));
                sums -= loadLanes<Column>(lower, leaving + (upper + row) * step);
            }
            places[row] = as<std::uint8_t>(sums);
        }
        transpose<sizeof(Column)>(places);
    }

    // The sums of all channels, in the order in which they are next. They are copied one by one, without a loop that
    // would go through memory.
    template <std::size_t channels> struct Queue {
        Running next[channels];

        template <std::size_t... channel>
        [[gnu::always_inline]] static void copy([[maybe_unused]] const Running *from, [[maybe_unused]] Running *to,
                                                std::index_sequence<channel...>)
        {
            ((to[channel] = from[channel]), ...);
        }
        [[gnu::always_inline]] explicit Queue(const Sums &sums)
        {
            copy(sums.of, next, std::make_index_sequence<channels>());
        }
        [[gnu::always_inline]] void save(Sums &sums) const
        {
            copy(next, sums.of, std::make_index_sequence<channels>());
        }
        [[gnu::always_inline]] void advance(const Means &means, U8s by)
        {
            const Running sum = means.moved(next[0], as<Column>(by));
            copy(next + 1, next, std::make_index_sequence<channels - 1>());
            next[channels - 1] = sum;
        }
        template <std::size_t... place>
        [[gnu::always_inline]] void advanceAll(const Means &means, const Block &places, std::index_sequence<place...>)
        {
            (advance(means, places[place]), ...);
        }
        template <std::size_t... place>
        [[gnu::always_inline]] void advanceAll(const Means &means, const Block &places, Results &results,
                                               std::index_sequence<place...>)
        {
            ((results[place] = means.means(next[0]), advance(means, places[place])), ...);
        }
    };

    // The first sums of all channels.
    template <std::size_t channels>
    [[gnu::noinline]] void startChannels(ColumnRows columns, std::size_t lag, Sums &sums) const
    {
        for (Running &sum : sums.of)
            sum = Means::none();
        Queue<channels> queue(sums);
        const unsigned char *entering = columns.row(1);
        Block places;
        for (; lag >= block; lag -= block, entering += sizeof(Lane)) {
            loadBlock<false>(entering, nullptr, columns.step, places);
            queue.advanceAll(*this, places, std::make_index_sequence<block>());
        }
        if (lag > 0)
            loadBlock<false>(entering, nullptr, columns.step, places);
        for (std::size_t place = 0; place < lag; ++place)
            queue.advance(*this, places[place]);
        queue.save(sums);
    }

    template <std::size_t channels>
    [[gnu::noinline]] void runChannels(ColumnRows columns, std::size_t begin, std::size_t end, std::size_t lag,
                                       Sums &sums, Raster out) const
    {
        Queue<channels> queue(sums);
        const unsigned char *leaving = columns.row(1) + begin * sizeof(Column);
        const unsigned char *entering = leaving + lag * sizeof(Column);
        for (std::size_t i = begin; i < end; i += block, leaving += sizeof(Lane), entering += sizeof(Lane)) {
            Block places;
            Results results;
            loadBlock<true>(entering, leaving, columns.step, places);
            queue.advanceAll(*this, places, results, std::make_index_sequence<block>());
            U8s narrowed[block * sizeof(Sample) / sizeof(Column)];
            narrow<Sample>(results, narrowed);
            transpose<sizeof(Column)>(narrowed);
            storeRows<block * sizeof(Sample)>(narrowed, out);
            out.data += block * sizeof(Sample);
        }
        queue.save(sums);
    }

    void start(ColumnRows columns, const Lag &lag, Sums &sums) const
    {
        if (lag.channels == 1)
            startChannels<1>(columns, lag.samples, sums);
        else if (lag.channels == 3)
            startChannels<3>(columns, lag.samples, sums);
        else
            startChannels<4>(columns, lag.samples, sums);
    }
    void run(ColumnRows columns, std::size_t begin, std::size_t end, const Lag &lag, Sums &sums, Raster out) const
    {
        if (lag.channels == 1)
            runChannels<1>(columns, begin, end, lag.samples, sums, out);
        else if (lag.channels == 3)
            runChannels<3>(columns, begin, end, lag.samples, sums, out);
        else
            runChannels<4>(columns, begin, end, lag.samples, sums, out);
    }
};
