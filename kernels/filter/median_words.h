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

// Calls take(i) for all bytes of a run that have the value.
template <class Take>
inline void overEqual(const unsigned char *bytes, std::size_t length, std::size_t value, Take take)
{
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    const U8s wanted = everywhere(static_cast<std::uint8_t>(value));
    for (; i + perVector<std::uint8_t> <= length; i += perVector<std::uint8_t>)
        for (unsigned bits = bitsOfMask(as<std::uint8_t>(loadVector<std::uint8_t>(bytes, i) == wanted)); bits != 0;
             bits &= bits - 1)
            take(i + static_cast<std::size_t>(__builtin_ctz(bits)));
#else
    // Eight bytes at a time: whether one of their differences is 0.
    constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
    for (; i + 8 <= length; i += 8) {
        const std::uint64_t differences = load<std::uint64_t>(bytes + i, 0) ^ value * ones;
        if (((differences - ones) & ~differences & tops) != 0)
            for (std::size_t k = i; k < i + 8; ++k)
                if (bytes[k] == value)
                    take(k);
    }
#endif
    for (; i < length; ++i)
        if (bytes[i] == value)
            take(i);
}

// Lower bytes of the window's samples of one upper byte. These counters are not cumulative.
template <class Counter> struct LowerBytes {
    Counter upper[bins], lower[bins][bins];
    std::size_t place;

    void change(const SplitColumns &source, std::size_t start, std::size_t rows, std::size_t byte, Counter by)
    {
        overEqual(source.upper + start, rows, byte, [&](std::size_t i) {
            const std::size_t low = source.lower[start + i];
            upper[low / bins] = static_cast<Counter>(upper[low / bins] + by);
            lower[low / bins][low % bins] = static_cast<Counter>(lower[low / bins][low % bins] + by);
        });
    }

    static std::size_t binOf(const Counter *counters, std::size_t &rank)
    {
        std::size_t bin = 0;
        for (; rank >= static_cast<std::size_t>(counters[bin]); ++bin)
            rank -= static_cast<std::size_t>(counters[bin]);
        return bin;
    }
    std::size_t ofRank(std::size_t rank) const
    {
        const std::size_t group = binOf(upper, rank);
        return group * bins + binOf(lower[group], rank);
    }
};

template <class Counter> struct LowerByteFinder {
    const MedianSize &size;
    const SplitColumns &source;
    LowerBytes<Counter> *histograms; // 256

    void startRow()
    {
        for (std::size_t i = 0; i < 256; ++i)
            histograms[i].place = LowerCounters<Counter>::never;
    }

    std::size_t find(std::size_t x, std::size_t y, std::size_t byte, std::size_t rank)
    {
        LowerBytes<Counter> &histogram = histograms[byte];
        const auto startOf = [&](std::size_t column) { return column * source.length + y; };
        if (histogram.place == LowerCounters<Counter>::never || 2 * (x - histogram.place) > size.columns) {
            __builtin_memset(&histogram, 0, sizeof histogram);
            for (std::size_t i = x; i < x + size.columns; ++i)
                histogram.change(source, startOf(i), size.rows, byte, 1);
        } else {
            for (std::size_t i = histogram.place; i < x; ++i) {
                histogram.change(source, startOf(i + size.columns), size.rows, byte, 1);
                histogram.change(source, startOf(i), size.rows, byte, -1);
            }
        }
        histogram.place = x;
        return histogram.ofRank(rank);
    }
};
