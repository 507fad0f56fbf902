// Medians by one histogram that slides along (Huang 1979). It serves windows with a side so short that few samples come
// and go at each step, and those so wide that histograms of their columns would need too much memory. To be included
// after windows.h.

// Counts samples by their upper four bits, upper eight and so on.
template <class Sample> struct SlidingHistogram {
    static constexpr std::size_t levels = 2 * sizeof(Sample), counters = std::size_t{1} << 4 * levels;
    std::int32_t *level[levels];

    explicit SlidingHistogram(void *scratch)
    {
        std::int32_t *next = static_cast<std::int32_t *>(scratch);
        for (std::size_t i = 0; i < levels; ++i) {
            level[i] = next;
            next += std::size_t{16} << 4 * i;
        }
        __builtin_memset(scratch, 0, static_cast<std::size_t>(next - level[0]) * sizeof *next);
    }

    void count(Sample sample, std::int32_t by)
    {
        const std::size_t bits = static_cast<std::size_t>(sample - (static_cast<Sample>(-1) < 0 ? -32768 : 0));
        for (std::size_t i = 0; i < levels; ++i)
            level[i][bits >> 4 * (levels - 1 - i)] += by;
    }

    Sample ofRank(std::int32_t rank) const
    {
        std::size_t bits = 0;
        for (std::size_t i = 0; i < levels; ++i)
            for (bits *= 16; rank >= level[i][bits]; ++bits)
                rank -= level[i][bits];
        return static_cast<Sample>(static_cast<std::ptrdiff_t>(bits) + (static_cast<Sample>(-1) < 0 ? -32768 : 0));
    }
};

// Samples of a window at a place: the distances to the next place along a line and to the next line.
struct SlidingLines {
    const unsigned char *in;
    unsigned char *out;
    std::ptrdiff_t along, across, outAlong, outAcross;
    std::size_t length, lines; // of the results
    std::size_t size, others;  // of the window, along a line and across
};

// Lines are walked to and fro, so that the histogram is counted once only.
template <class Sample> void slideAlongLines(const SlidingLines &all, void *scratch)
{
    SlidingHistogram<Sample> histogram(scratch);
    const std::int32_t half = static_cast<std::int32_t>(all.size * all.others / 2);
    const auto count = [&](const unsigned char *first, std::ptrdiff_t distance, std::size_t samples, std::int32_t by) {
        for (std::size_t i = 0; i < samples; ++i)
            histogram.count(load<Sample>(first + static_cast<std::ptrdiff_t>(i) * distance, 0), by);
    };
    const std::ptrdiff_t wide = static_cast<std::ptrdiff_t>(all.size), high = static_cast<std::ptrdiff_t>(all.others);
    const unsigned char *in = all.in;
    unsigned char *out = all.out;
    for (std::ptrdiff_t i = 0; i < high; ++i)
        count(in + i * all.across, all.along, all.size, 1);
    bool forth = true;
    for (std::size_t line = 0;; forth = !forth) {
        for (std::size_t i = 0;;) {
            store(out, 0, histogram.ofRank(half));
            if (++i == all.length)
                break;
            if (!forth) {
                in -= all.along;
                out -= all.outAlong;
            }
            count(in + wide * all.along, all.across, all.others, forth ? 1 : -1);
            count(in, all.across, all.others, forth ? -1 : 1);
            if (forth) {
                in += all.along;
                out += all.outAlong;
            }
        }
        if (++line == all.lines)
            return;
        count(in + high * all.across, all.along, all.size, 1);
        count(in, all.along, all.size, -1);
        in += all.across;
        out += all.outAcross;
    }
}
