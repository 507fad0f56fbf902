// Columns of a packed image as batches: columns in pairs are the real and the imaginary parts of a lane. To be included
// inside the unnamed namespace of a region, after passes.h. The includer has batch.h.

// Eight pairs of neighbouring columns, where they are in the image. An inverse transform exchanges real and imaginary
// parts.
template <bool exchanges, class Byte> struct ColumnPairs {
    static constexpr bool isScattered = true;

    Byte *data;
    std::size_t step;

    Byte *start(std::size_t batch) const { return data + sizeof(float) * batchElement * batch; }
    std::size_t stride() const { return step; }

    template <class Sample> static Complex<Sample> loadAt(const unsigned char *from, std::size_t part)
    {
        from += part * sizeof(Complex<Sample>);
#if ORV_VECTOR_BYTES > 0
        const Part<Sample> a = loadVector<Sample>(from), b = loadVector<Sample>(from, perVector<Sample>);
        const Complex<Sample> value = {inOrderOfPairs(evenFloats(a, b)), inOrderOfPairs(oddFloats(a, b))};
#else
        const Complex<Sample> value = {load<Sample>(from, 0), load<Sample>(from, 1)};
#endif
        return exchanges ? exchanged(value) : value;
    }
    template <class Sample> static void storeAt(unsigned char *to, std::size_t part, const Complex<Sample> &result)
    {
        to += part * sizeof(Complex<Sample>);
        const Complex<Sample> value = exchanges ? exchanged(result) : result;
#if ORV_VECTOR_BYTES > 0
        storeHalvesInOrder<Sample>(to, 0, interleaveLow<Sample>(value.re, value.im),
                                   interleaveHigh<Sample>(value.re, value.im));
#else
        store<Sample>(to, 0, value.re);
        store<Sample>(to, 1, value.im);
#endif
    }
};

// Between the passes of rows and those of columns, a batch of pairs stands in the image as an element does: eight real
// parts, then their imaginary parts.
template <bool exchanges, class Byte> struct SplitPairs {
    static constexpr bool isScattered = true;

    Byte *data;
    std::size_t step;

    Byte *start(std::size_t batch) const { return data + sizeof(float) * batchElement * batch; }
    std::size_t stride() const { return step; }

    template <class Sample> static Complex<Sample> loadAt(const unsigned char *from, std::size_t part)
    {
        from += part * sizeof(Part<Sample>);
#if ORV_VECTOR_BYTES > 0
        const Complex<Sample> value = {loadVector<Sample>(from), loadVector<Sample>(from, batchLanes)};
#else
        const Complex<Sample> value = {load<Sample>(from, 0), load<Sample>(from, batchLanes)};
#endif
        return exchanges ? exchanged(value) : value;
    }
    template <class Sample> static void storeAt(unsigned char *to, std::size_t part, const Complex<Sample> &result)
    {
        to += part * sizeof(Part<Sample>);
        const Complex<Sample> value = exchanges ? exchanged(result) : result;
#if ORV_VECTOR_BYTES > 0
        storeVector<Sample>(to, 0, value.re);
        storeVector<Sample>(to, batchLanes, value.im);
#else
        store<Sample>(to, 0, value.re);
        store<Sample>(to, batchLanes, value.im);
#endif
    }
};

// Some pairs of columns, fewer than lanes or not, as a batch.
inline void gatherPairs(ConstRaster image, std::size_t rows, std::size_t column, std::size_t pairs, bool split,
                        bool exchanges, float *elements)
{
    const std::size_t re = exchanges ? batchLanes : 0, im = batchLanes - re;
    for (std::size_t y = 0; y < rows; ++y) {
        const unsigned char *const row = image.fromRow(static_cast<std::int64_t>(y)).data;
        float *const element = elements + batchElement * y;
        for (std::size_t lane = 0; lane < batchLanes; ++lane) {
            const std::size_t place = column + (split ? lane : 2 * lane);
            element[re + lane] = lane < pairs ? load<float>(row, place) : 0;
            element[im + lane] = lane < pairs ? load<float>(row, place + (split ? batchLanes : 1)) : 0;
        }
    }
}
inline void scatterPairs(const float *elements, Raster image, std::size_t rows, std::size_t column, std::size_t pairs,
                         bool split, bool exchanges)
{
    const std::size_t re = exchanges ? batchLanes : 0, im = batchLanes - re;
    for (std::size_t y = 0; y < rows; ++y) {
        unsigned char *const row = image.fromRow(static_cast<std::int64_t>(y)).data;
        const float *const element = elements + batchElement * y;
        for (std::size_t lane = 0; lane < pairs; ++lane) {
            const std::size_t place = column + (split ? lane : 2 * lane);
            store<float>(row, place, element[re + lane]);
            store<float>(row, place + (split ? batchLanes : 1), element[im + lane]);
        }
    }
}

// The two columns at the edges of an image, which are packed sequences: the first one is the real part of a lane, the
// last one, of an even width, its imaginary part.
struct EdgeColumns {
    ConstRaster in;
    Raster out;
    std::size_t rows, last; // the place of the last column; 0 where the first one is alone

    float first(std::size_t y) const { return load<float>(in.fromRow(static_cast<std::int64_t>(y)).data, 0); }
    float second(std::size_t y) const
    {
        return last == 0 ? 0 : load<float>(in.fromRow(static_cast<std::int64_t>(y)).data, last);
    }
    void put(std::size_t y, float a, float b) const
    {
        unsigned char *const row = out.fromRow(static_cast<std::int64_t>(y)).data;
        store<float>(row, 0, a);
        if (last != 0)
            store<float>(row, last, b);
    }

    // Numbers into a lane, of which `lane` is the real part in the first element.
    void gather(float *lane) const
    {
        for (std::size_t y = 0; y < rows; ++y) {
            lane[batchElement * y] = first(y);
            lane[batchElement * y + batchLanes] = second(y);
        }
    }
    // Their spectra, from that of both.
    void separate(const float *lane) const
    {
        put(0, lane[0], lane[batchLanes]);
        for (std::size_t k = 1; k < rows - k; ++k) {
            const float *const a = lane + batchElement * k, *const b = lane + batchElement * (rows - k);
            put(2 * k - 1, 0.5f * (a[0] + b[0]), 0.5f * (a[batchLanes] + b[batchLanes]));
            put(2 * k, 0.5f * (a[batchLanes] - b[batchLanes]), 0.5f * (b[0] - a[0]));
        }
        if (rows % 2 == 0)
            put(rows - 1, lane[batchElement * (rows / 2)], lane[batchElement * (rows / 2) + batchLanes]);
    }
    // Spectra as that of both, for an inverse transform.
    void join(float *lane) const
    {
        const auto set = [=](std::size_t k, float re, float im) {
            lane[batchElement * k] = im;
            lane[batchElement * k + batchLanes] = re;
        };
        set(0, first(0), second(0));
        for (std::size_t k = 1; k < rows - k; ++k) {
            const float re = first(2 * k - 1), im = first(2 * k), re2 = second(2 * k - 1), im2 = second(2 * k);
            set(k, re - im2, im + re2);
            set(rows - k, re + im2, re2 - im);
        }
        if (rows % 2 == 0)
            set(rows / 2, first(rows - 1), second(rows - 1));
    }
    // What comes out of that transform.
    void scatter(const float *lane) const
    {
        for (std::size_t y = 0; y < rows; ++y)
            put(y, lane[batchElement * y + batchLanes], lane[batchElement * y]);
    }
};

// Several batches in buffers of their own.
struct Batches {
    static constexpr bool isScattered = false;

    float *buffers[mostColumnBatches];

    float *start(std::size_t batch) const { return buffers[batch]; }
    std::size_t stride() const { return batchElement; }

    template <class Sample> static Complex<Sample> loadAt(const float *from, std::size_t part)
    {
        return Elements::loadAt<Sample>(from, part);
    }
    template <class Sample> static void storeAt(float *to, std::size_t part, const Complex<Sample> &value)
    {
        Elements::storeAt(to, part, value);
    }
};

// Neighbouring batches of pairs, which share cache lines of the image. Without a copy where the plan has a first and a
// last pass.
template <bool inverse>
inline void transformPairs(const FourierPlan &plan, ConstRaster in, Raster out, std::size_t column, std::size_t count,
                           float *work)
{
    const std::size_t bufferFloats = batchElement * plan.batchRoom;
    if (plan.passCount < 2 || !plan.coded) {
        for (std::size_t batch = 0; batch < count; ++batch, column += batchElement) {
            gatherPairs(in, plan.length, column, batchLanes, !inverse, inverse, work);
            scatterPairs(transformBatch(plan, work, work + bufferFloats), out, plan.length, column, batchLanes, inverse,
                         inverse);
        }
        return;
    }
    const std::int64_t bytes = static_cast<std::int64_t>(sizeof(float) * column);
    const std::size_t inStep = static_cast<std::size_t>(in.step), outStep = static_cast<std::size_t>(out.step);
    const std::conditional_t<inverse, ColumnPairs<true, const unsigned char>, SplitPairs<false, const unsigned char>>
        from = {in.fromByte(bytes).data, inStep};
    const std::conditional_t<inverse, SplitPairs<true, unsigned char>, ColumnPairs<false, unsigned char>> to = {
        out.fromByte(bytes).data, outStep};
    Batches batches;
    for (std::size_t batch = 0; batch < count; ++batch)
        batches.buffers[batch] = work + bufferFloats * batch;
    float *free = work + bufferFloats * count;
    runCodedPasses<float>(plan.passes[0], from, batches, count);
    for (std::size_t batch = 0; batch < count; ++batch) {
        float *const before = batches.buffers[batch];
        batches.buffers[batch] = runPasses(plan, 1, plan.passCount - 1, before, free);
        free = batches.buffers[batch] == free ? before : free;
    }
    runCodedPasses<float>(plan.passes[plan.passCount - 1], batches, to, count);
}

// All columns of an image. The pairs that fill no batch go with the edges.
template <bool inverse>
inline void transformColumns(const FourierPlan &plan, ConstRaster in, Raster out, std::size_t width,
                             std::size_t batches, float *work)
{
    const std::size_t rows = plan.length, pairs = (width - 1) / 2, left = pairs % batchLanes, whole = pairs - left;
    for (std::size_t pair = 0; pair < whole; pair += batches * batchLanes) {
        const std::size_t rest = (whole - pair) / batchLanes;
        transformPairs<inverse>(plan, in, out, 1 + 2 * pair, rest < batches ? rest : batches, work);
    }
    const EdgeColumns edges = {in, out, rows, width % 2 == 0 ? width - 1 : 0};
    gatherPairs(in, rows, 1 + 2 * whole, left, false, inverse, work);
    inverse ? edges.join(work + left) : edges.gather(work + left);
    const float *const result = transformBatch(plan, work, work + batchElement * plan.batchRoom);
    scatterPairs(result, out, rows, 1 + 2 * whole, left, false, inverse);
    inverse ? edges.scatter(result + left) : edges.separate(result + left);
}
