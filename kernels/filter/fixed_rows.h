// The walk of the fixed filters, windows of 3 x 3 and 5 x 5 whose coefficients are known when they are compiled. To be
// included after windows.h.
//
// A filter says what a row of the source adds to the results around it: `own` to those of its own row, `near` to those
// one row away and `far` to those two rows away. The walk goes down the rows, and holds unfinished sums for the rows to
// come, so each row of the source is read and weighted once.
//
// A filter has
//   margin       rows above and below
//   take()       the next row of the source, which finishes the sums `margin` rows above it
//   finished()   what becomes of a sum before it is narrowed to a sample
// and runs on a Row: samples side by side, with their neighbours to the left and right, and
//   Sample, Sum, count   the sample type, the type of sums, and how many a Row has
//   narrowed()           the samples that the sums become

// Sums of rows that are alike above and below: of three rows, and of five. A sign below 0 subtracts those rows.
template <int sign> inline auto joined(const auto &a, const auto &b)
{
    if constexpr (sign < 0)
        return a - b;
    else
        return a + b;
}
template <int nearSign, class Sum> inline Sum aroundOne(Sum (&held)[2], const Sum &near, const Sum &own)
{
    const Sum result = joined<nearSign>(held[1], near);
    held[1] = joined<nearSign>(own, held[0]);
    held[0] = near;
    return result;
}
template <int farSign, int nearSign, class Sum>
inline Sum aroundTwo(Sum (&held)[4], const Sum &far, const Sum &near, const Sum &own)
{
    const Sum result = joined<farSign>(held[3], far);
    held[3] = joined<nearSign>(held[2], near);
    held[2] = joined<nearSign>(own, held[1]);
    held[1] = joined<farSign * nearSign>(near, held[0]);
    held[0] = far;
    return result;
}
// Three rows with the weights 1, 2, 1: neighbours share the sums of two.
template <class Sum> inline Sum binomial(Sum (&held)[2], const Sum &row)
{
    const Sum two = row + held[0], result = held[1] + two;
    held[0] = row;
    held[1] = two;
    return result;
}
// The row below less the row above.
template <class Sum> inline Sum difference(Sum (&held)[2], const Sum &row)
{
    const Sum result = row - held[1];
    held[1] = held[0];
    held[0] = row;
    return result;
}

// What most filters have in common.
template <std::ptrdiff_t rows> struct OfRows {
    static constexpr std::ptrdiff_t margin = rows / 2;
    template <class Row> using Sum = typename Row::Sum;
    template <class Row> static auto finished(const auto &sum) { return sum; }
};
using OfThreeRows = OfRows<3>;
using OfFiveRows = OfRows<5>;

// A filter on rasters, whose source starts at the first pixel that is computed.
struct Strip {
    ConstRaster source;
    Raster destination;
    std::size_t samples; // of a row
    std::ptrdiff_t rows, pixelBytes;
    bool keepsFourth; // each fourth sample of the destination stays
};

// Rows at the edge of a strip are weighted twice, so strips have many rows. Each row takes a line of the cache, and
// rows compete for the same lines if the step is near a large power of two.
constexpr std::ptrdiff_t mostRows = 32, mostCompeting = 8;
inline bool competes(std::int64_t step)
{
    constexpr std::int64_t multiple = 2048, line = 64;
    return (step + line - 1) % multiple < 2 * line - 1;
}

#if ORV_VECTOR_BYTES > 0

// The walk goes down the rows, so the processor does not foresee the columns to the right. This many bytes ahead are
// fetched.
constexpr std::ptrdiff_t aheadBytes = 256;

// One vector of columns. The main loop takes as many rows as sums are held, so that these need not move.
template <class Filter, class Row> inline void filterColumn(const Strip &strip, std::size_t column)
{
    using Sample = typename Row::Sample;
    constexpr std::ptrdiff_t held = 2 * Filter::margin;
    typename Filter::template Sum<Row> sums[2 * Filter::margin] = {};
    const unsigned char *in = strip.source.fromRow(-Filter::margin).data + column * sizeof(Sample);
    unsigned char *out = strip.destination.data + column * sizeof(Sample);
    const auto next = [&] {
        const auto result = Filter::take(sums, Row{in, strip.pixelBytes});
        __builtin_prefetch(in + aheadBytes);
        in += strip.source.step;
        return result;
    };
    const auto write = [&](const auto &sum) {
        Vector<Sample> result = Row::narrowed(Filter::template finished<Row>(sum));
        if (strip.keepsFourth)
            result = keepingFourth<Sample>(result, loadVector<Sample>(out));
        storeVector<Sample>(out, 0, result);
        __builtin_prefetch(out + aheadBytes);
        out += strip.destination.step;
    };
    std::ptrdiff_t y = strip.rows % held;
    for (std::ptrdiff_t before = held + y; before > 0; --before) {
        const auto result = next();
        if (before <= y)
            write(result);
    }
    for (; y < strip.rows; y += held)
        for (std::ptrdiff_t i = 0; i < held; ++i)
            write(next());
}

// At least one vector of columns.
template <class Filter, class Row> [[gnu::noinline]] void filterStrip(const Strip &given)
{
    const Strip strip = given; // stores to the results cannot change this one
    std::size_t column = 0;
    for (; column < strip.samples; column += Row::count)
        filterColumn<Filter, Row>(strip, column + Row::count <= strip.samples ? column : strip.samples - Row::count);
}

// Columns that are fewer than a vector has are copied to where a vector can be read and written, and their results from
// there.
template <class Row> inline void filterNarrow(void (*filter)(const Strip &), std::ptrdiff_t margin, const Strip &strip)
{
    using Sample = typename Row::Sample;
    constexpr std::ptrdiff_t mostAround = 2 * 2 * 4 * sizeof(Sample), step = ORV_VECTOR_BYTES + mostAround;
    unsigned char in[static_cast<std::size_t>((mostRows + 4) * step)] = {}, out[mostRows * ORV_VECTOR_BYTES];
    const std::ptrdiff_t before = margin * strip.pixelBytes;
    const std::size_t rowBytes = strip.samples * sizeof(Sample);
    for (std::ptrdiff_t y = -margin; y < strip.rows + margin; ++y)
        __builtin_memcpy(in + (y + margin) * step, strip.source.fromRow(y).data - before,
                         rowBytes + 2 * static_cast<std::size_t>(before));
    for (std::ptrdiff_t y = 0; strip.keepsFourth && y < strip.rows; ++y)
        __builtin_memcpy(out + y * ORV_VECTOR_BYTES, strip.destination.fromRow(y).data, rowBytes);
    filter({{in + margin * step + before, step},
            {out, ORV_VECTOR_BYTES},
            Row::count,
            strip.rows,
            strip.pixelBytes,
            strip.keepsFourth});
    for (std::ptrdiff_t y = 0; y < strip.rows; ++y)
        __builtin_memcpy(strip.destination.fromRow(y).data, out + y * ORV_VECTOR_BYTES, rowBytes);
}

#else

// Some columns. The rows above the first result are taken as the others are; their results are written aside.
template <class Filter, class Row> inline void filterColumns(const Strip &strip, std::size_t column, std::size_t some)
{
    using Sample = typename Row::Sample;
    using Sum = typename Filter::template Sum<Row>;
    constexpr std::ptrdiff_t held = 2 * Filter::margin;
    Sum sums[2 * Filter::margin][Row::count] = {};
    unsigned char aside[Row::count * sizeof(Sample)];
    const std::ptrdiff_t pixelBytes = strip.pixelBytes; // stores to the results cannot change this one
    for (std::ptrdiff_t y = -held; y < strip.rows; ++y) {
        const unsigned char *in = strip.source.fromRow(y + Filter::margin).data + column * sizeof(Sample);
        unsigned char *out = y < 0 ? aside : strip.destination.fromRow(y).data + column * sizeof(Sample);
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < some; ++i) {
            Sum own[2 * Filter::margin];
            for (std::ptrdiff_t k = 0; k < held; ++k)
                own[k] = sums[k][i];
            const Sum result = Filter::take(own, Row{in + i * sizeof(Sample), pixelBytes});
            for (std::ptrdiff_t k = 0; k < held; ++k)
                sums[k][i] = own[k];
            store(out, i, Row::narrowed(Filter::template finished<Row>(result)));
        }
    }
}

template <class Filter, class Row> [[gnu::noinline]] void filterStrip(const Strip &strip)
{
    for (std::size_t column = 0; column < strip.samples; column += Row::count) {
        const std::size_t left = strip.samples - column;
        filterColumns<Filter, Row>(strip, column, left < Row::count ? left : Row::count);
    }
}

// Some pixels whose fourth sample stays, of all rows: computed into a buffer, and moved from there.
template <class Sample> inline void filterThreeOfFour(void (*filter)(const Strip &), const Strip &strip)
{
    constexpr std::size_t most = 32;
    constexpr std::ptrdiff_t step = most * 4 * sizeof(Sample);
    unsigned char buffer[static_cast<std::size_t>(mostRows * step)];
    const std::size_t pixels = strip.samples / 4, some = pixels < most ? pixels : most;
    for (std::size_t i = 0; i < pixels; i += some) {
        const std::int64_t first =
            static_cast<std::int64_t>((i + some <= pixels ? i : pixels - some) * 4 * sizeof(Sample));
        filter({strip.source.fromByte(first), {buffer, step}, some * 4, strip.rows, strip.pixelBytes, false});
        for (std::ptrdiff_t y = 0; y < strip.rows; ++y)
            moveThreeOfFour<Sample>(some, buffer + y * step, strip.destination.fromRow(y).fromByte(first).data);
    }
}

#endif

// Not inlined: all filters of a sample type share it.
template <class Row>
[[gnu::noinline]] KrnStatus overStrips(void (*filter)(const Strip &), [[maybe_unused]] std::ptrdiff_t margin,
                                       std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                       std::int32_t height)
{
    using Sample = typename Row::Sample;
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    const std::size_t channels = samplesOf(layout), samples = static_cast<std::size_t>(width) * channels;
    const std::ptrdiff_t rows = competes(source.step) || competes(destination.step) ? mostCompeting : mostRows;
    for (std::ptrdiff_t y = 0; y < height; y += rows) {
        const Strip strip = {source.fromRow(y),
                             destination.fromRow(y),
                             samples,
                             height - y < rows ? height - y : rows,
                             static_cast<std::ptrdiff_t>(channels * sizeof(Sample)),
                             layout == AC4};
#if ORV_VECTOR_BYTES > 0
        if (samples < Row::count)
            filterNarrow<Row>(filter, margin, strip);
#else
        if (layout == AC4)
            filterThreeOfFour<Sample>(filter, strip);
#endif
        else
            filter(strip);
    }
    return KRN_OK;
}

template <class Filter, class Row>
inline KrnStatus runFilter(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                           std::int32_t height)
{
    return overStrips<Row>(filterStrip<Filter, Row>, Filter::margin, layout, source, destination, width, height);
}

// Of the size that the code names.
template <class Three, class Five, class Row>
inline KrnStatus runFilterBy(std::int32_t code, std::size_t layout, ConstRaster source, Raster destination,
                             std::int32_t width, std::int32_t height)
{
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    if (code == KRN_WINDOW_3X3)
        return runFilter<Three, Row>(layout, source, destination, width, height);
    if (code == KRN_WINDOW_5X5)
        return runFilter<Five, Row>(layout, source, destination, width, height);
    return KRN_BAD_MASK_SIZE;
}

// Defines the kernels of a layout. Their last argument names the Row that the filters run on.
#define ORV_FIXED(layout, samples, name, Row)                                                                \
    KRN_KERNEL(FixedKernel, krnFixed##name##samples##layout)                                                 \
    {                                                                                                        \
        return runFilter<name, Row>(layout, from(source, sourceStep), to(destination, step), width, height); \
    }
#define ORV_FIXED_BY(layout, samples, name, three, five, Row)                                                      \
    KRN_KERNEL(CodedKernel, krnFixed##name##samples##layout)                                                       \
    {                                                                                                              \
        return runFilterBy<three, five, Row>(code, layout, from(source, sourceStep), to(destination, step), width, \
                                             height);                                                              \
    }
#define ORV_FIXED_FILTERS(samples, Row)                                  \
    ORV_LAYOUTS(ORV_FIXED, samples, PrewittV, Row)                       \
    ORV_LAYOUTS(ORV_FIXED, samples, PrewittH, Row)                       \
    ORV_LAYOUTS(ORV_FIXED, samples, SobelV, Row)                         \
    ORV_LAYOUTS(ORV_FIXED, samples, SobelH, Row)                         \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Laplace, Laplace3, Laplace5, Row) \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Gauss, Gauss3, Gauss5, Row)       \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Hipass, Laplace3, Hipass5, Row)   \
    ORV_LAYOUTS(ORV_FIXED, samples, Sharpen, Row)
