// Medians of large windows by histograms of each column, at a cost that does not depend on the size of the window
// (Perreault and Hebert 2007). To be included inside the unnamed namespace of a region, after windows.h.
//
// A byte is found by halves: 16 counters tell its upper four bits, and 16 more of that group the lower four. Counters
// are cumulative, the one of number k counts what is below k: a rank is found by comparisons, and a sample counts by
// adding a row of ones and zeros.

constexpr std::size_t bins = 16;

template <class Counter> struct Steps {
    Counter counters[bins][bins] = {};

    constexpr Steps()
    {
        for (std::size_t value = 0; value < bins; ++value)
            for (std::size_t k = value + 1; k < bins; ++k)
                counters[value][k] = 1;
    }
};
template <class Counter> constexpr Steps<Counter> steps = {};

#if ORV_VECTOR_BYTES > 0

template <class Counter> struct Bins {
    static constexpr std::size_t vectors = bins / perVector<Counter>;
    Vector<Counter> counters[vectors] = {};

    Bins() = default;
    explicit Bins(const Counter *from)
    {
        for (std::size_t i = 0; i < vectors; ++i)
            counters[i] = loadVector<Counter>(from, i * perVector<Counter>);
    }
    void keep(Counter *to) const
    {
        for (std::size_t i = 0; i < vectors; ++i)
            storeVector<Counter>(to, i * perVector<Counter>, counters[i]);
    }
    void add(const Counter *more)
    {
        for (std::size_t i = 0; i < vectors; ++i)
            counters[i] += loadVector<Counter>(more, i * perVector<Counter>);
    }
    void subtract(const Counter *less)
    {
        for (std::size_t i = 0; i < vectors; ++i)
            counters[i] -= loadVector<Counter>(less, i * perVector<Counter>);
    }

    Counter at(std::size_t bin) const
    {
        Counter kept[bins];
        keep(kept);
        return kept[bin];
    }

    // The last bin whose counter is not above the rank; the first one's is 0.
    std::size_t binOf(std::int32_t rank) const
    {
        const Vector<Counter> ranks = everywhere(static_cast<Counter>(rank));
        std::uint64_t above = 0;
        for (std::size_t i = 0; i < vectors; ++i)
            above |= std::uint64_t{bitsOfMask(as<std::uint8_t>(counters[i] > ranks))} << i * ORV_VECTOR_BYTES;
        if constexpr (sizeof(Counter) == 2)
            above |= std::uint64_t{1} << 2 * bins;
        else if (above == 0)
            return bins - 1;
        return static_cast<std::size_t>(__builtin_ctzll(above)) / sizeof(Counter) - 1;
    }
};

#else

template <class Counter> struct Bins {
    Counter counters[bins] = {};

    Bins() = default;
    explicit Bins(const Counter *from) { __builtin_memcpy(counters, from, sizeof counters); }
    void keep(Counter *to) const { __builtin_memcpy(to, counters, sizeof counters); }
    void add(const Counter *more)
    {
        for (std::size_t i = 0; i < bins; ++i)
            counters[i] = static_cast<Counter>(counters[i] + more[i]);
    }
    void subtract(const Counter *less)
    {
        for (std::size_t i = 0; i < bins; ++i)
            counters[i] = static_cast<Counter>(counters[i] - less[i]);
    }
    Counter at(std::size_t bin) const { return counters[bin]; }
    std::size_t binOf(std::int32_t rank) const
    {
        std::size_t bin = 0;
        for (std::size_t half = bins / 2; half > 0; half /= 2)
            bin += counters[bin + half] <= rank ? half : 0;
        return bin;
    }
};

#endif

// A byte as a number. The compiler would spill one byte and load eight, which waits until the byte is in the cache.
inline std::size_t numberOf(unsigned char byte)
{
    std::size_t number = byte;
    __asm__("" : "+r"(number));
    return number;
}

// Bytes in columns and rows, at any distances.
struct Bytes {
    const unsigned char *data;
    std::ptrdiff_t right, down;

    std::size_t at(std::size_t x, std::size_t y) const
    {
        return numberOf(data[static_cast<std::ptrdiff_t>(x) * right + static_cast<std::ptrdiff_t>(y) * down]);
    }
};

// Size of the window, and of the piece that is computed.
struct MedianSize {
    std::size_t columns, rows, width, height;

    std::size_t sourceColumns() const { return width + columns - 1; }
    std::size_t half() const { return columns * rows / 2; }
};

// Sixteen counters for the upper four bits, and for each of them sixteen for the lower.
template <class Counter> struct Histogram {
    Counter upper[bins], lower[bins][bins];
};

template <class Counter> inline void count(Histogram<Counter> &histogram, std::size_t byte)
{
    const auto in = [](Counter *to, std::size_t value) {
        Bins<Counter> counters(to);
        counters.add(steps<Counter>.counters[value]);
        counters.keep(to);
    };
    in(histogram.upper, byte / bins);
    in(histogram.lower[byte / bins], byte % bins);
}

template <class Counter> inline void exchangeCounted(Histogram<Counter> &histogram, std::size_t before, std::size_t now)
{
    Bins<Counter> counters(histogram.upper);
    counters.subtract(steps<Counter>.counters[before / bins]);
    counters.add(steps<Counter>.counters[now / bins]);
    counters.keep(histogram.upper);
    Counter *const from = histogram.lower[before / bins], *const to = histogram.lower[now / bins];
    Bins<Counter> less(from);
    less.subtract(steps<Counter>.counters[before % bins]);
    less.keep(from);
    Bins<Counter> more(to);
    more.add(steps<Counter>.counters[now % bins]);
    more.keep(to);
}

// The window's lower counters of the group that has the median. Those of other groups stay behind until a median is in
// their group again.
template <class Counter> struct LowerCounters {
    static constexpr std::size_t never = ~std::size_t{0} / 2;
    const Histogram<Counter> *histograms;
    std::size_t columns;
    std::size_t group = 0;
    Bins<Counter> window;
    Counter behind[bins][bins];
    std::size_t place[bins]; // of the window that they are of

    LowerCounters(const Histogram<Counter> *all, std::size_t count) : histograms(all), columns(count)
    {
        for (std::size_t &each : place)
            each = never;
        sum(0);
    }

    void sum(std::size_t x)
    {
        window = Bins<Counter>();
        for (std::size_t i = x; i < x + columns; ++i)
            window.add(histograms[i].lower[group]);
    }
    void step(std::size_t x)
    {
        window.add(histograms[x + columns - 1].lower[group]);
        window.subtract(histograms[x - 1].lower[group]);
    }

    // To the place right of the last one.
    void move(std::size_t x, std::size_t wanted)
    {
        if (wanted == group)
            return step(x);
        window.keep(behind[group]);
        place[group] = x - 1;
        group = wanted;
        const std::size_t last = place[wanted];
        if (last == never || 2 * (x - last) > columns)
            return sum(x);
        window = Bins<Counter>(behind[wanted]);
        for (std::size_t i = last + 1; i <= x; ++i)
            step(i);
    }
};

// Calls found(x, byte, rank) for each place of a row, from left to right. The median is one of the window's samples of
// that byte, of that rank among them.
template <class Counter, class Found>
inline void slideAlongRow(const MedianSize &size, const Histogram<Counter> *histograms, Found found)
{
    Bins<Counter> upper;
    for (std::size_t i = 0; i < size.columns; ++i)
        upper.add(histograms[i].upper);
    LowerCounters<Counter> lower(histograms, size.columns);
    for (std::size_t x = 0;; ++x) {
        const std::int32_t half = static_cast<std::int32_t>(size.half());
        const std::size_t group = upper.binOf(half);
        const std::int32_t rank = half - upper.at(group);
        if (x > 0)
            lower.move(x, group);
        else if (group > 0) {
            lower.group = group;
            lower.sum(0);
        }
        const std::size_t bin = lower.window.binOf(rank);
        found(x, group * bins + bin, rank - lower.window.at(bin));
        if (x + 1 == size.width)
            return;
        upper.add(histograms[x + size.columns].upper);
        upper.subtract(histograms[x].upper);
    }
}

// Calls found(x, y, byte, rank) for all places, row by row.
template <class Counter, class Found>
inline void medianBytes(const MedianSize &size, Bytes bytes, Histogram<Counter> *histograms, Found found)
{
    const std::size_t columns = size.sourceColumns();
    __builtin_memset(histograms, 0, columns * sizeof *histograms);
    for (std::size_t y = 0; y < size.rows; ++y)
        for (std::size_t x = 0; x < columns; ++x)
            count(histograms[x], bytes.at(x, y));
    for (std::size_t y = 0;; ++y) {
        slideAlongRow(size, histograms,
                      [&](std::size_t x, std::size_t byte, std::int32_t rank) { found(x, y, byte, rank); });
        if (y + 1 == size.height)
            return;
        for (std::size_t x = 0; x < columns; ++x)
            exchangeCounted(histograms[x], bytes.at(x, y), bytes.at(x, y + size.rows));
    }
}
