// Tables of few runs, by comparisons. In a run, either all levels have one value, or values go up with the levels. To
// be included after table_blocks.h, in builds with vectors.

// With more runs, other ways are faster (measured on Zen 3).
constexpr std::size_t mostRuns = ORV_SSE41 ? 14 : 18;

// Where each run begins, and its values: (level & mask) + constant.
struct Runs {
    struct Run {
        std::uint8_t begin, constant, mask;
    };
    Run runs[mostRuns];
    std::size_t count;
    bool risesSomewhere;

    // Whether the table has no more than mostRuns.
    bool find(const Table &table);
};

// The longest run from each level on leads to the fewest.
bool Runs::find(const Table &table)
{
    risesSomewhere = false;
    std::size_t begin = 0;
    for (count = 0; begin < levelCountOfBytes && count < mostRuns; ++count) {
        const std::uint8_t first = table.of[begin], offset = static_cast<std::uint8_t>(first - begin);
        std::size_t sameEnd = begin + 1, risingEnd = begin + 1;
        while (sameEnd < levelCountOfBytes && table.of[sameEnd] == first)
            ++sameEnd;
        while (risingEnd < levelCountOfBytes && static_cast<std::uint8_t>(table.of[risingEnd] - risingEnd) == offset)
            ++risingEnd;
        const bool rises = risingEnd > sameEnd;
        runs[count] = {static_cast<std::uint8_t>(begin), rises ? offset : first,
                       static_cast<std::uint8_t>(rises ? 0xFF : 0)};
        risesSomewhere = risesSomewhere || rises;
        begin = rises ? risingEnd : sameEnd;
    }
    return begin == levelCountOfBytes;
}

// Finds the runs of all channels, and tells whether steps are the fastest way. A step takes five operations instead of
// three where values rise.
struct RunsOfChannels {
    Runs channels[4];
    std::size_t steps = 0; // of the channel that has most
    bool rises = false;

    bool find(const Table *tables, std::size_t count)
    {
        for (std::size_t channel = 0; channel < count; ++channel) {
            if (!channels[channel].find(tables[channel]))
                return false;
            steps = channels[channel].count - 1 > steps ? channels[channel].count - 1 : steps;
            rises = rises || channels[channel].risesSomewhere;
        }
        return steps * (rises ? 5 : 3) <= (mostRuns - 1) * 3;
    }
};

// Vectors with a byte of each channel in turn: as many as it takes until a vector starts with the first channel again.
template <std::size_t count> struct Pattern {
    U8s vectors[count];

    // Pixels of three samples repeat after three words, others after one.
    void spread(const std::uint8_t (&channels)[4])
    {
        const std::uint32_t first = channels[0], second = channels[1], third = channels[2], fourth = channels[3];
        if constexpr (count == 1) {
            vectors[0] = as<std::uint8_t>(everywhere(first | second << 8 | third << 16 | fourth << 24));
        } else {
            const std::uint32_t words[] = {first | second << 8 | third << 16 | first << 24,
                                           second | third << 8 | first << 16 | second << 24,
                                           third | first << 8 | second << 16 | third << 24};
            for (std::size_t i = 0; i < count * perVector<std::uint32_t>; ++i)
                store(vectors, i, words[i % 3]);
        }
    }
};

// A sample's values add up from the differences of neighbouring runs, of all that begin below it.
template <std::size_t period> struct Steps {
    struct Step {
        Pattern<period> below, constant, mask;
    };
    Pattern<period> constant, mask;
    Step steps[mostRuns - 1];
    std::size_t count;

    void make(const RunsOfChannels &runs, std::size_t channelCount);

    template <bool rises, std::size_t vectors> Block<vectors> lookUp(Block<vectors> samples) const;
};

// Channels of fewer runs than others have steps that no sample reaches.
template <std::size_t period> void Steps<period>::make(const RunsOfChannels &runs, std::size_t channelCount)
{
    count = runs.steps;
    for (std::size_t i = 0; i <= count; ++i) {
        std::uint8_t below[4], constants[4], masks[4];
        for (std::size_t place = 0; place < 4; ++place) {
            const Runs &of = runs.channels[place % channelCount];
            const Runs::Run none = {}, run = i < of.count ? of.runs[i] : none, last = i > 0 ? of.runs[i - 1] : none;
            below[place] = static_cast<std::uint8_t>(i < of.count ? (run.begin - 1) ^ 0x80 : 0x7F);
            constants[place] = static_cast<std::uint8_t>(run.constant - last.constant);
            masks[place] = run.mask ^ last.mask;
        }
        Pattern<period> &ofConstants = i > 0 ? steps[i - 1].constant : constant;
        Pattern<period> &ofMasks = i > 0 ? steps[i - 1].mask : mask;
        ofConstants.spread(constants);
        ofMasks.spread(masks);
        if (i > 0)
            steps[i - 1].below.spread(below);
    }
}

template <std::size_t period>
template <bool rises, std::size_t vectors>
inline Block<vectors> Steps<period>::lookUp(Block<vectors> samples) const
{
    S8s biased[vectors];
    U8s constants[vectors], masks[vectors];
    for (std::size_t v = 0; v < vectors; ++v) {
        biased[v] = as<std::int8_t>(samples.vectors[v] ^ std::uint8_t{0x80});
        constants[v] = constant.vectors[v % period];
        masks[v] = mask.vectors[v % period];
    }
    for (const Step *step = steps; step != steps + count; ++step)
        for (std::size_t v = 0; v < vectors; ++v) {
            const U8s reached = as<std::uint8_t>(biased[v] > as<std::int8_t>(step->below.vectors[v % period]));
            constants[v] += reached & step->constant.vectors[v % period];
            if constexpr (rises)
                masks[v] ^= reached & step->mask.vectors[v % period];
        }
    for (std::size_t v = 0; v < vectors; ++v) {
        if constexpr (rises)
            constants[v] += samples.vectors[v] & masks[v];
        samples.vectors[v] = constants[v];
    }
    return samples;
}
