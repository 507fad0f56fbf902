// Medians of small windows by sorting networks, for two rows of results at a time. To be included inside the unnamed
// namespace of a region, after sorting.h and windows.h.

// Samples of a row that are computed at a time, so that what passes between loops stays in the nearest cache.
template <class Sample> constexpr std::size_t medianBlock = medianBlockBytes / sizeof(Sample);
static_assert(medianMarginBytes >= ORV_VECTOR_BYTES + 8 * 4 * sizeof(std::int16_t));

// A piece of two rows. Where an image has one row only, both are the same.
struct RowPair {
    const unsigned char *in; // the first sample of the upper window
    std::ptrdiff_t step;     // of the source
    std::ptrdiff_t lower;    // from the upper window to the lower one: a step or none
    unsigned char *out[2];
    std::size_t samples, channels;

    const unsigned char *window(std::size_t which) const { return which == 0 ? in : in + lower; }
    const unsigned char *row(std::size_t number) const { return in + static_cast<std::ptrdiff_t>(number) * step; }
};

template <class Sample> inline Lists<Sample> listsAt(void *scratch, std::size_t first)
{
    constexpr std::size_t rowBytes = medianBlockBytes + medianMarginBytes;
    return {static_cast<unsigned char *>(scratch) + first * rowBytes, rowBytes / sizeof(Sample)};
}

// Of a window of so few samples that sharing does not pay.
template <std::size_t ownColumns, std::size_t ownRows> struct FewMedian {
    static constexpr std::size_t columns = ownColumns, rows = ownRows;

    template <class Sample> [[gnu::noinline]] static void compute(const RowPair &pair, void *)
    {
        for (std::size_t which = 0; which < 2; ++which) {
            const unsigned char *const in = pair.window(which);
            unsigned char *const out = pair.out[which];
            const std::ptrdiff_t step = pair.step;
            const std::size_t channels = pair.channels;
            overBatches<Sample>(pair.samples, [=](std::size_t i) ORV_INLINED {
                Batch<Sample> all[columns * rows];
                overNumbers<columns * rows>([&](std::size_t k) ORV_INLINED {
                    all[k] = loadBatch<Sample>(in + static_cast<std::ptrdiff_t>(k / columns) * step,
                                               i + k % columns * channels);
                });
                sort<columns * rows>(all);
                storeBatch<Sample>(out, i, all[columns * rows / 2]);
            });
        }
    }
};

template <class Sample> ORV_INLINED inline Batch<Sample> medianOf(Batch<Sample> a, Batch<Sample> b, Batch<Sample> c)
{
    exchange(a, b);
    return maximum(a, minimum(b, c));
}

// Of 3 x 3: columns are sorted, and each row of what comes narrows the median down.
struct NineMedian {
    static constexpr std::size_t columns = 3, rows = 3;

    template <class Sample> [[gnu::noinline]] static void compute(const RowPair &pair, void *scratch)
    {
        const Lists<Sample> upper = listsAt<Sample>(scratch, 0), lower = listsAt<Sample>(scratch, 3);
        const std::size_t channels = pair.channels;
        const unsigned char *const first = pair.row(0), *const second = pair.row(1), *const third = pair.row(2),
                                   *const last = pair.lower == 0 ? first : pair.row(3);
        overBatches<Sample>(pair.samples + 2 * channels, [=](std::size_t i) ORV_INLINED {
            Batch<Sample> low = loadBatch<Sample>(second, i), high = loadBatch<Sample>(third, i);
            exchange(low, high);
            const auto with = [=](Batch<Sample> other, Lists<Sample> lists) ORV_INLINED {
                const Batch<Sample> column[] = {minimum(low, other), maximum(low, minimum(high, other)),
                                                maximum(high, other)};
                storeList<3>(lists, i, column);
            };
            with(loadBatch<Sample>(first, i), upper);
            with(loadBatch<Sample>(last, i), lower);
        });
        for (std::size_t which = 0; which < 2; ++which) {
            const Lists<Sample> lists = which == 0 ? upper : lower;
            unsigned char *const out = pair.out[which];
            overBatches<Sample>(pair.samples, [=](std::size_t i) ORV_INLINED {
                const auto at = [&](std::size_t item, std::size_t column)
                                    ORV_INLINED { return loadBatch<Sample>(lists.row(item), i + column * channels); };
                storeBatch<Sample>(out, i,
                                   medianOf<Sample>(maximum(maximum(at(0, 0), at(0, 1)), at(0, 2)),
                                                    medianOf<Sample>(at(1, 0), at(1, 1), at(1, 2)),
                                                    minimum(minimum(at(2, 0), at(2, 1)), at(2, 2))));
            });
        }
    }
};

// Of larger squares (Adams 2021): the rows that two windows share are sorted column by column, and neighbouring columns
// merged, once for all windows. What cannot be the median any more is dropped.
template <std::size_t side> struct SquareMedian {
    static constexpr std::size_t columns = side, rows = side;
    static constexpr std::size_t half = side * side / 2, shared = side - 1;

    // Of so many sorted samples of the window, those on either end that have too many above or below them.
    static constexpr std::size_t dropped(std::size_t samples) { return samples > half + 1 ? samples - 1 - half : 0; }
    static constexpr std::size_t kept(std::size_t samples) { return samples - 2 * dropped(samples); }

    // Merges neighbouring lists of `first` and `second` samples of the window, but for those that were dropped, and
    // gives the first that is kept.
    template <std::size_t first, std::size_t second, class Value> ORV_INLINED static Value *join(Value *items)
    {
        merge<kept(first), kept(second)>(items);
        return items + dropped(first + second) - dropped(first) - dropped(second);
    }

    template <class Sample>
    static void sortColumns(const unsigned char *in, std::ptrdiff_t step, Lists<Sample> to, std::size_t samples)
    {
        overBatches<Sample>(samples, [=](std::size_t i) ORV_INLINED {
            Batch<Sample> column[shared];
            overNumbers<shared>([&](std::size_t k) ORV_INLINED {
                column[k] = loadBatch<Sample>(in + static_cast<std::ptrdiff_t>(k) * step, i);
            });
            sort<shared>(column);
            storeList<shared>(to, i, column);
        });
    }

    // Merges each list with that of the column so far to its right.
    template <std::size_t size, class Sample>
    static void joinColumns(Lists<Sample> from, Lists<Sample> to, std::size_t samples, std::size_t distance)
    {
        overBatches<Sample>(samples, [=](std::size_t i) ORV_INLINED {
            Batch<Sample> items[2 * size];
            loadList<size>(items, from, i);
            loadList<size>(items + size, from, i + distance);
            merge<size, size>(items);
            storeList<2 * size>(to, i, items);
        });
    }

    // All shared samples of a window, from those of single columns, pairs and fours.
    template <class Sample>
    ORV_INLINED static Batch<Sample> *sharedSamples(Batch<Sample> *items, Lists<Sample> ones, Lists<Sample> twos,
                                                    Lists<Sample> fours, std::size_t i, std::size_t channels)
    {
        constexpr std::size_t one = shared, two = 2 * shared, four = 4 * shared;
        if constexpr (side == 9) {
            loadList<four>(items, fours, i);
            loadList<four>(items + four, fours, i + 4 * channels);
            items = join<four, four>(items);
        } else {
            loadList<two>(items, twos, i);
            loadList<two>(items + two, twos, i + 2 * channels);
            items = join<two, two>(items);
        }
        constexpr std::size_t some = side == 9 ? 2 * four : four;
        Batch<Sample> *const more = items + kept(some);
        if constexpr (side != 7) {
            loadList<one>(more, ones, i + (side - 1) * channels);
            return join<some, one>(items);
        } else {
            loadList<two>(more, twos, i + 4 * channels);
            loadList<one>(more + two, ones, i + 6 * channels);
            join<two, one>(more);
            return join<some, two + one>(items);
        }
    }

    template <class Sample> [[gnu::noinline]] static void compute(const RowPair &pair, void *scratch)
    {
        const Lists<Sample> ones = listsAt<Sample>(scratch, 0), twos = listsAt<Sample>(scratch, shared),
                            fours = listsAt<Sample>(scratch, 3 * shared);
        const std::size_t channels = pair.channels, samples = pair.samples;
        sortColumns<Sample>(pair.row(1), pair.step, ones, samples + (side - 1) * channels);
        joinColumns<shared>(ones, twos, samples + (side - 2) * channels, channels);
        if constexpr (side == 9)
            joinColumns<2 * shared>(twos, fours, samples + (side - 4) * channels, 2 * channels);
        const unsigned char *const first = pair.row(0), *const last = pair.lower == 0 ? first : pair.row(side);
        unsigned char *const upper = pair.out[0], *const lower = pair.out[1];
        overBatches<Sample>(samples, [=](std::size_t i) ORV_INLINED {
            Batch<Sample> items[side * shared];
            const Batch<Sample> *const middle = sharedSamples<Sample>(items, ones, twos, fours, i, channels);
            const auto with = [&](const unsigned char *row) ORV_INLINED {
                Batch<Sample> more[side];
                overNumbers<side>([&](std::size_t k)
                                      ORV_INLINED { more[k] = loadBatch<Sample>(row, i + k * channels); });
                sort<side>(more);
                return itemOf<half - dropped(side * shared), side>(middle, more);
            };
            storeBatch<Sample>(upper, i, with(first));
            storeBatch<Sample>(lower, i, with(last));
        });
    }
};
