// Running sums of several rows by vectors. A sum waits for its predecessor in the row, so each place of a vector is a
// row: blocks of column sums are transposed, summed up from place to place, and the means transposed back. To be
// included after box_means.h, in builds with vectors.

// Sums of bytes that fit a word.
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

// Sums of bytes in two words. The lower one counts from -32768, so that comparison as signed words tells a carry.
// Differences of column sums fit a signed word.
struct LargerByteVectors : ByteMean {
    using Column = std::uint16_t;
    struct Running {
        S16s low;
        U16s high;
    };
    ShiftCount count;
    U16s factor;

    static bool fit(const Window &window)
    {
        return std::int64_t{window.columns} * window.rows > 65535 / 255 && window.rows <= 32767 / 255;
    }
    explicit LargerByteVectors(const Window &window)
        : ByteMean(window), count(shift - 16), factor(everywhere(static_cast<std::uint16_t>(multiplier)))
    {
    }
    static Running none() { return {everywhere<std::int16_t>(-32768), U16s{}}; }
    static Running moved(Running sums, U16s by)
    {
        const S16s low = sums.low + as<std::int16_t>(by), carry = low < sums.low, sign = as<std::int16_t>(by) >> 15;
        return {low, sums.high + as<std::uint16_t>(sign - carry)};
    }
    U16s means(Running sums) const
    {
        const U16s low = as<std::uint16_t>(sums.low) ^ std::uint16_t{0x8000};
        return shiftedRight(highProducts(low, factor) + sums.high * factor, count);
    }
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
    constexpr std::size_t perLane = 16 / rowBytes, lanes = ORV_VECTOR_BYTES / 16;
    using Part = std::conditional_t<rowBytes == 4, std::uint32_t, std::uint64_t>;
    for (std::size_t lane = 0; lane < lanes; ++lane)
        for (std::size_t i = 0; i < count; ++i) {
            if constexpr (rowBytes == 16) {
                store(out.data, 0, lane == 0 ? laneOf<0>(vectors[i]) : laneOf<lanes - 1>(vectors[i]));
                out.data += out.step;
            } else {
                for (std::size_t part = 0; part < perLane; ++part, out.data += out.step)
                    store<Part>(out.data, 0, as<Part>(vectors[i])[lane * perLane + part]);
            }
        }
}

template <class Means> struct VectorRows : Means {
    using Column = typename Means::Column;
    using Sample = typename Means::Sample;
    using Running = typename Means::Running;
    static constexpr std::size_t rows = perVector<Column>, block = 16 / sizeof(Column);
    struct Sums {
        Running of[4];
    };
    using Block = U8s[block];

    using Means::Means;

    static Vector<Column> rowsOf(const ColumnRows &columns, std::size_t row, std::size_t i)
    {
        return loadLanes<Column>(columns.row(1 + row) + i * sizeof(Column),
                                 columns.row(1 + block % rows + row) + i * sizeof(Column));
    }

    // The first sums of all channels.
    static void start(const ColumnRows &columns, const Lag &lag, Sums &sums)
    {
        for (Running &sum : sums.of)
            sum = Means::none();
        std::size_t channel = 0;
        for (std::size_t i = 0; i < lag.samples; i += block) {
            Block places;
            for (std::size_t row = 0; row < block; ++row)
                places[row] = as<std::uint8_t>(rowsOf(columns, row, i));
            transpose<sizeof(Column)>(places);
            for (std::size_t place = 0; place < block && i + place < lag.samples; ++place) {
                sums.of[channel] = Means::moved(sums.of[channel], as<Column>(places[place]));
                channel = channel + 1 == lag.channels ? 0 : channel + 1;
            }
        }
    }

    template <std::size_t channels>
    [[gnu::noinline]] void runChannels(const ColumnRows &columns, std::size_t begin, std::size_t end, std::size_t lag,
                                       Sums &sums, Raster out) const
    {
        Running next[channels];
        for (std::size_t channel = 0; channel < channels; ++channel)
            next[channel] = sums.of[channel];
        for (std::size_t i = begin; i < end; i += block) {
            Block places;
            for (std::size_t row = 0; row < block; ++row)
                places[row] = as<std::uint8_t>(rowsOf(columns, row, i + lag) - rowsOf(columns, row, i));
            transpose<sizeof(Column)>(places);
            decltype(this->means(next[0])) means[block];
            for (std::size_t place = 0; place < block; ++place) {
                means[place] = this->means(next[0]);
                const Running sum = Means::moved(next[0], as<Column>(places[place]));
                for (std::size_t channel = 1; channel < channels; ++channel)
                    next[channel - 1] = next[channel];
                next[channels - 1] = sum;
            }
            U8s narrowed[block * sizeof(Sample) / sizeof(Column)];
            narrow<Sample>(means, narrowed);
            transpose<sizeof(Column)>(narrowed);
            storeRows<block * sizeof(Sample)>(narrowed, out);
            out.data += block * sizeof(Sample);
        }
        for (std::size_t channel = 0; channel < channels; ++channel)
            sums.of[channel] = next[channel];
    }

    void run(const ColumnRows &columns, std::size_t begin, std::size_t end, const Lag &lag, Sums &sums,
             Raster out) const
    {
        if (lag.channels == 1)
            runChannels<1>(columns, begin, end, lag.samples, sums, out);
        else if (lag.channels == 3)
            runChannels<3>(columns, begin, end, lag.samples, sums, out);
        else
            runChannels<4>(columns, begin, end, lag.samples, sums, out);
    }
};
