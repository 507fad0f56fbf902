// Medians of 16-bit samples in large windows: histograms of columns tell the upper byte. Histograms of the lower bytes
// that go with it count the samples themselves, which costs as the side of the window. To be included after
// median_histograms.h.

// Upper and lower bytes of a piece of a source, column by column, so that a column of a window is one run of bytes.
struct SplitColumns {
    unsigned char *upper, *lower;
    std::size_t length;

    void split(ConstRaster source, std::size_t pixelBytes, std::size_t columns)
    {
        for (std::size_t y = 0; y < length; ++y) {
            const unsigned char *const row = source.fromRow(static_cast<std::int64_t>(y)).data;
            for (std::size_t x = 0; x < columns; ++x) {
                const std::uint16_t sample = load<std::uint16_t>(row + x * pixelBytes, 0) ^ 0x8000u;
                upper[x * length + y] = static_cast<unsigned char>(sample >> 8);
                lower[x * length + y] = static_cast<unsigned char>(sample);
            }
        }
    }
};

// Calls take(i) for all bytes of a run that have the value. Up to a vector may be read beyond the run: it is in
// scratch.
template <class Take>
inline void overEqual(const unsigned char *bytes, std::size_t length, std::size_t value, Take take)
{
#if ORV_VECTOR_BYTES > 0
    const U8s wanted = everywhere(static_cast<std::uint8_t>(value));
    for (std::size_t i = 0; i < length; i += ORV_VECTOR_BYTES) {
        unsigned bits = bitsOfMask(as<std::uint8_t>(loadVector<std::uint8_t>(bytes, i) == wanted));
        if (length - i < ORV_VECTOR_BYTES)
            bits &= (1u << (length - i)) - 1;
        for (; bits != 0; bits &= bits - 1)
            take(i + static_cast<std::size_t>(__builtin_ctz(bits)));
    }
#else
    // Eight bytes at a time: whether one of their differences is 0.
    constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        const std::uint64_t differences = load<std::uint64_t>(bytes + i, 0) ^ value * ones;
        if (((differences - ones) & ~differences & tops) != 0)
            for (std::size_t k = i; k < i + 8; ++k)
                if (bytes[k] == value)
                    take(k);
    }
    for (; i < length; ++i)
        if (bytes[i] == value)
            take(i);
#endif
}

// Lower bytes of the window's samples of one upper byte.
template <class Counter> struct LowerBytes {
    Histogram<Counter> counters;
    std::size_t place; // of the window that they are of

    void clear()
    {
        Bins<Counter>().keep(counters.upper);
        for (Counter *const group : counters.lower)
            Bins<Counter>().keep(group);
    }

    template <bool comes> void change(const SplitColumns &source, std::size_t start, std::size_t rows, std::size_t byte)
    {
        const auto count = [](Bins<Counter> &bin, std::size_t value) {
            comes ? bin.add(steps<Counter>.counters[value]) : bin.subtract(steps<Counter>.counters[value]);
        };
        Bins<Counter> upper(counters.upper);
        overEqual(source.upper + start, rows, byte, [&](std::size_t i) {
            const std::size_t low = numberOf(source.lower[start + i]);
            Counter *const group = counters.lower[low / bins];
            Bins<Counter> lower(group);
            count(upper, low / bins);
            count(lower, low % bins);
            lower.keep(group);
        });
        upper.keep(counters.upper);
    }

    std::size_t ofRank(std::int32_t rank) const
    {
        const std::size_t group = Bins<Counter>(counters.upper).binOf(rank);
        return group * bins + Bins<Counter>(counters.lower[group]).binOf(rank - counters.upper[group]);
    }
};

template <class Counter> struct LowerByteFinder {
    const MedianSize &size;
    const SplitColumns &source;
    const Histogram<Counter> *columns;
    LowerBytes<Counter> *histograms; // 256

    void startRow()
    {
        for (std::size_t i = 0; i < 256; ++i)
            histograms[i].place = LowerCounters<Counter>::never;
    }

    // Columns mostly have no sample of that upper byte, as their histograms tell.
    bool has(std::size_t column, std::size_t byte) const
    {
        const Histogram<Counter> &histogram = columns[column];
        const std::size_t group = byte / bins, bin = byte % bins;
        const Counter *const lower = histogram.lower[group], *const upper = histogram.upper;
        if (bin + 1 < bins)
            return lower[bin] != lower[bin + 1];
        const std::int32_t all = group + 1 < bins ? upper[group + 1] : static_cast<std::int32_t>(size.rows);
        return all - upper[group] != lower[bin];
    }

    template <bool comes>
    void change(LowerBytes<Counter> &histogram, std::size_t column, std::size_t y, std::size_t byte) const
    {
        if (has(column, byte))
            histogram.template change<comes>(source, column * source.length + y, size.rows, byte);
    }

    std::size_t find(std::size_t x, std::size_t y, std::size_t byte, std::int32_t rank) const
    {
        LowerBytes<Counter> &histogram = histograms[byte];
        if (histogram.place == LowerCounters<Counter>::never || 2 * (x - histogram.place) > size.columns) {
            histogram.clear();
            for (std::size_t i = x; i < x + size.columns; ++i)
                change<true>(histogram, i, y, byte);
        } else {
            for (std::size_t i = histogram.place; i < x; ++i) {
                change<true>(histogram, i + size.columns, y, byte);
                change<false>(histogram, i, y, byte);
            }
        }
        histogram.place = x;
        return histogram.ofRank(rank);
    }
};
