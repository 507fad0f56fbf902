// Sorting networks on batches of samples: a batch is a vector in builds that have them, and one sample in others, whose
// loops the compiler vectorizes. To be included inside the unnamed namespace of a region, after vectors.h.

#if ORV_VECTOR_BYTES > 0

template <class Sample> using Batch = Vector<Sample>;
template <class Sample> constexpr std::size_t perBatch = perVector<Sample>;

template <class Sample> inline Batch<Sample> loadBatch(const void *row, std::size_t index)
{
    return loadVector<Sample>(row, index);
}
template <class Sample> inline void storeBatch(void *row, std::size_t index, Batch<Sample> batch)
{
    storeVector<Sample>(row, index, batch);
}

#else

template <class Sample> using Batch = Sample;
template <class Sample> constexpr std::size_t perBatch = 1;

template <class Sample> inline Sample loadBatch(const void *row, std::size_t index)
{
    return load<Sample>(row, index);
}
template <class Sample> inline void storeBatch(void *row, std::size_t index, Sample sample)
{
    store(row, index, sample);
}
template <class Sample> inline Sample minimum(Sample a, Sample b)
{
    return a < b ? a : b;
}
template <class Sample> inline Sample maximum(Sample a, Sample b)
{
    return a > b ? a : b;
}

#endif

// Code that is part of the loop around it: what stays a call is not vectorized.
#define ORV_INLINED __attribute__((always_inline))

// Calls take(number) for so many numbers, without a loop.
template <class Take, std::size_t... number>
ORV_INLINED inline void overNumbers(Take take, std::index_sequence<number...>)
{
    (take(number), ...);
}
template <std::size_t count, class Take> ORV_INLINED inline void overNumbers(Take take)
{
    overNumbers(take, std::make_index_sequence<count>());
}

// Runs compute(index) for batches that cover a row. The last one overlaps its neighbour, so the row has at least one.
template <class Sample, class Compute> inline void overBatches(std::size_t samples, Compute compute)
{
#if ORV_VECTOR_BYTES > 0
    for (std::size_t i = 0; i < samples; i += perBatch<Sample>)
        compute(i + perBatch<Sample> <= samples ? i : samples - perBatch<Sample>);
#else
    ORV_INDEPENDENT
    for (std::size_t i = 0; i < samples; ++i)
        compute(i);
#endif
}

// Places whose items are put in order.
struct Exchange {
    std::size_t low, high;
};
struct Network {
    static constexpr std::size_t most = 256;
    Exchange exchanges[most] = {};
    std::size_t count = 0;

    // Batcher 1968: merges neighbouring runs by odd-even merging. It is defined for runs of one length, a power of two.
    // Items that shorter ones lack would be least in the first run and greatest in the second: they never move.
    constexpr void merge(std::size_t from, std::size_t first, std::size_t second)
    {
        std::size_t run = 1;
        while (run < first || run < second)
            run *= 2;
        const std::size_t begin = run - first, end = run + second;
        for (std::size_t gap = run; gap > 0; gap /= 2)
            for (std::size_t group = gap % run; group + gap < 2 * run; group += 2 * gap)
                for (std::size_t low = group; low < group + gap; ++low)
                    if (low >= begin && low + gap < end)
                        exchanges[count++] = {from + low - begin, from + low + gap - begin};
    }
    constexpr void sort(std::size_t from, std::size_t size)
    {
        if (size < 2)
            return;
        sort(from, size / 2);
        sort(from + size / 2, size - size / 2);
        merge(from, size / 2, size - size / 2);
    }
};

template <std::size_t first, std::size_t second>
constexpr Network merging = [] {
    Network network;
    network.merge(0, first, second);
    return network;
}();
template <std::size_t size>
constexpr Network sorting = [] {
    Network network;
    network.sort(0, size);
    return network;
}();

template <class Value> ORV_INLINED inline void exchange(Value &low, Value &high)
{
    const Value less = minimum(low, high);
    high = maximum(low, high);
    low = less;
}
template <const Network &network, class Value, std::size_t... at>
ORV_INLINED inline void exchangeAll(Value *items, std::index_sequence<at...>)
{
    (exchange(items[network.exchanges[at].low], items[network.exchanges[at].high]), ...);
}

// These work sample by sample, and in place: the compiler keeps in registers what is not copied, and drops the parts
// of a network whose results nobody reads.
template <std::size_t size, class Value> ORV_INLINED inline void sort(Value *items)
{
    exchangeAll<sorting<size>>(items, std::make_index_sequence<sorting<size>.count>());
}
template <std::size_t first, std::size_t second, class Value> ORV_INLINED inline void merge(Value *items)
{
    exchangeAll<merging<first, second>>(items, std::make_index_sequence<merging<first, second>.count>());
}

// What stands at one place of the common order of two lists: of all ways to take so many items from their fronts, the
// one whose greatest item is least.
template <std::size_t place, std::size_t second, class Value>
ORV_INLINED inline Value itemOf(const Value *a, const Value *b)
{
    Value result = a[place];
    overNumbers<second>([&](std::size_t i) ORV_INLINED { result = minimum(result, maximum(a[place - 1 - i], b[i])); });
    return result;
}

// Lists in memory: item by item, in rows of one length.
template <class Sample> struct Lists {
    unsigned char *data;
    std::size_t length; // samples of a row

    unsigned char *row(std::size_t item) const { return data + item * length * sizeof(Sample); }
};
template <std::size_t size, class Sample>
ORV_INLINED inline void loadList(Batch<Sample> *items, Lists<Sample> lists, std::size_t index)
{
    overNumbers<size>([=](std::size_t i) ORV_INLINED { items[i] = loadBatch<Sample>(lists.row(i), index); });
}
template <std::size_t size, class Sample>
ORV_INLINED inline void storeList(Lists<Sample> lists, std::size_t index, const Batch<Sample> *items)
{
    overNumbers<size>([=](std::size_t i) ORV_INLINED { storeBatch<Sample>(lists.row(i), index, items[i]); });
}
