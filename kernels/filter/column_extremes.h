// Extremes of the rows of windows: each column for itself. To be included after region/extremes.h.
//
// Windows of neighbouring rows of results have most of their rows in common. The results of a group share those, which
// are its core. Each result adds some rows above the core and some below it, one more or less than its neighbour (van
// Herk 1992, Gil and Werman 1993). From group to group the core of a high window moves on by one block of as many rows,
// so the extremes of blocks are kept in a queue.

constexpr std::int32_t smallGroupRows = 4;

// Rows y to y + group - 1 of the results. `core` has the extremes of rows group - 1 and more of the first window,
// `after` starts with the first row below that window. `block` gets the extremes of as many rows from there on.
template <class Sample, class Better, std::int32_t group, bool makesBlock>
[[gnu::noinline]] void groupOfRows(const unsigned char *core, ConstRaster in, ConstRaster after, Raster out,
                                   unsigned char *block, std::size_t bytes)
{
    const Better better;
    const auto sample = [](auto raster, std::int32_t row, std::size_t at) { return raster.fromRow(row).data + at; };
    overBytes<Sample>(bytes, [&]<class Value>(std::size_t at) {
        Value upward[std::size_t{group}];
        upward[group - 1] = load<Value>(core + at, 0);
        for (std::int32_t i = group - 2; i >= 0; --i)
            upward[i] = better(upward[i + 1], load<Value>(sample(in, i, at), 0));
        store(out.data + at, 0, upward[0]);
        Value downward = load<Value>(after.data + at, 0);
        for (std::int32_t i = 1; i < group; ++i) {
            store(sample(out, i, at), 0, better(upward[i], downward));
            if (makesBlock || i + 1 < group)
                downward = better(downward, load<Value>(sample(after, i, at), 0));
        }
        if constexpr (makesBlock)
            store(block + at, 0, downward);
    });
}

// The extremes of `count` rows, and of as many from each later row on.
template <class Sample, class Better>
[[gnu::noinline]] void bestOfRows(ConstRaster in, std::int64_t count, Raster out, std::size_t bytes,
                                  std::int32_t height = 1)
{
    if (count <= static_cast<std::int64_t>(mostPlaces)) {
        const unsigned char *places[mostPlaces] = {};
        for (std::int64_t y = 0; y < count; ++y)
            places[y] = in.fromRow(y).data;
        return bestOf<Sample, Better>(static_cast<std::size_t>(count), places, in.step, out, bytes, height);
    }
    for (; height > 0; --height, in = in.fromRow(1), out = out.fromRow(1)) {
        const unsigned char *places[mostPlaces] = {out.data};
        std::size_t taken = 0; // of `places`, of which the first is what has been found, but for the first time
        for (std::int64_t y = 0; y < count; ++y) {
            places[taken++] = in.fromRow(y).data;
            if (taken == mostPlaces || y + 1 == count) {
                bestOf<Sample, Better>(taken, places, 0, out, bytes, 1);
                places[0] = out.data;
                taken = 1;
            }
        }
    }
}

// A queue of the extremes of blocks of rows, as many as lie within a core. Blocks from `next` on hold the extremes of
// themselves and of all behind them. The blocks before it are younger: `younger` has the extremes of all of those.
template <class Sample, class Better> struct BlockQueue {
    Raster blocks;
    std::int32_t count, next;
    unsigned char *younger;
    std::size_t bytes;

    unsigned char *block(std::int64_t index) const { return blocks.fromRow(index).data; }

    void best(unsigned char *out, const unsigned char *first, const unsigned char *second) const
    {
        const unsigned char *const places[] = {first, second};
        bestOf<Sample, Better, 2>(places, 0, {out, 0}, bytes, 1);
    }

    void accumulate()
    {
        for (std::int32_t i = count - 1; i > 0; --i)
            best(block(i - 1), block(i - 1), block(i));
        next = 0;
    }

    void fill(ConstRaster in)
    {
        for (std::int32_t i = 0; i < count; ++i)
            bestOfRows<Sample, Better>(in.fromRow(std::int64_t{i} * groupRows), groupRows, blocks.fromRow(i), bytes);
        accumulate();
    }

    // Adds the extremes of all blocks to a row.
    void addTo(unsigned char *row) const
    {
        const unsigned char *const places[] = {row, block(next), younger};
        bestOf<Sample, Better>(next == 0 ? 2 : 3, places, 0, {row, 0}, bytes, 1);
    }

    // The block that has just been written over the oldest one joins.
    void turn()
    {
        best(younger, block(next), next == 0 ? block(next) : younger);
        if (++next == count)
            accumulate();
    }
};

// The rows of a block of columns. The scratch has two rows, and those of the queue.
template <class Sample, class Better> struct ColumnExtremes {
    ConstRaster source; // the first row of the first window
    std::size_t bytes;  // of a row
    std::int32_t rows;  // of the window
    unsigned char *core;
    BlockQueue<Sample, Better> queue;

    ColumnExtremes(ConstRaster in, std::size_t rowBytes, std::int32_t windowRows, std::int32_t height, Raster scratch)
        : source(in), bytes(rowBytes), rows(windowRows),
          core(scratch.data), queue{scratch.fromRow(2), blocksOfCore(windowRows), 0, scratch.fromRow(1).data, rowBytes}
    {
        if (height <= 2 * groupRows)
            queue.count = 0;
        else if (queue.count > 0)
            queue.fill(source.fromRow(rows - groupRows * queue.count));
    }

    // One group whose core is found anew.
    template <std::int32_t group> void computeGroup(std::int32_t y, Raster out) const
    {
        const ConstRaster in = source.fromRow(y);
        const unsigned char *last = in.fromRow(group - 1).data;
        if (rows > group) {
            bestOfRows<Sample, Better>(in.fromRow(group - 1), rows - group + 1, {core, 0}, bytes);
            last = core;
        }
        groupOfRows<Sample, Better, group, false>(last, in, in.fromRow(rows), out, nullptr, bytes);
    }

    // The next group, counted from the first on.
    void computeNext(std::int32_t y, Raster out)
    {
        const ConstRaster in = source.fromRow(y);
        const std::int32_t between = rows - groupRows * queue.count - groupRows + 1;
        bestOfRows<Sample, Better>(in.fromRow(groupRows - 1), between, {core, 0}, bytes);
        queue.addTo(core);
        groupOfRows<Sample, Better, groupRows, true>(core, in, in.fromRow(rows), out, queue.block(queue.next), bytes);
        queue.turn();
    }

    template <std::int32_t group> void computeGroups(std::int32_t y, std::int32_t count, Raster out) const
    {
        for (std::int32_t i = 0; i < count; i += group) {
            const std::int32_t first = i + group <= count ? i : count - group;
            computeGroup<group>(y + first, out.fromRow(first));
        }
    }

    // Rows y to y + count - 1, at most groupRows of them. All but the last come as whole groups, in their order.
    void compute(std::int32_t y, std::int32_t count, bool last, Raster out)
    {
        if (queue.count > 0 && !last)
            return computeNext(y, out);
        if (rows >= groupRows && count == groupRows)
            return computeGroup<groupRows>(y, out);
        if (rows >= smallGroupRows && count >= smallGroupRows)
            return computeGroups<smallGroupRows>(y, count, out);
        bestOfRows<Sample, Better>(source.fromRow(y), rows, out, bytes, count);
    }
};
