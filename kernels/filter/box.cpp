// Means of windows by running sums: down the columns, and along each row of column sums.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "box_means.h"
#if ORV_VECTOR_BYTES > 0
#include "box_vectors.h"
#endif

struct Box {
    std::size_t layout;
    ConstRaster source;
    Raster destination;
    std::int32_t width, height;
    Window window;
    void *sums;
    bool continued;
    void *scratch;
};

// Column sums that fit a word are moved in 32 bits all the same.
template <class Column> using Wide = std::conditional_t<std::is_same_v<Column, float>, float, std::int32_t>;

// The column sums of a row from those of the row above. Not inlined: the ways to sum up rows share it.
template <class Column, class Sample>
[[gnu::noinline]] void moveColumns(std::size_t samples, const unsigned char *above, const unsigned char *entering,
                                   const unsigned char *leaving, unsigned char *below)
{
    using Sum = Wide<Column>;
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    if constexpr (requires { VectorMove<Column, Sample>::run; }) {
        const auto move = [=](std::size_t at) {
            VectorMove<Column, Sample>::run(above + at * sizeof(Column), loadVector<Sample>(entering, at),
                                            loadVector<Sample>(leaving, at), below + at * sizeof(Column));
        };
        constexpr std::size_t some = perVector<Sample>;
        ORV_UNROLLED
        for (; i + some <= samples; i += some)
            move(i);
        if (samples >= some) // the last vector overlaps its neighbour
            return i < samples ? move(samples - some) : void();
    }
#endif
    ORV_INDEPENDENT
    for (; i < samples; ++i) {
        const auto by = difference(load<Sample>(entering, i), load<Sample>(leaving, i));
        store(below, i, static_cast<Column>(added(Sum{load<Column>(above, i)}, static_cast<Sum>(by))));
    }
}

// The column sums of the first row.
template <class Mean, class Column>
[[gnu::noinline]] void addColumns(std::size_t samples, ConstRaster source, std::int32_t rows, unsigned char *sums)
{
    using Sum = Wide<Column>;
    using Sample = typename Mean::Sample;
    __builtin_memset(sums, 0, samples * sizeof(Column));
    for (std::int32_t row = 0; row < rows; ++row) {
        const unsigned char *in = source.fromRow(row).data;
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < samples; ++i)
            store(sums, i, static_cast<Column>(added(Sum{load<Column>(sums, i)}, Mean::of(load<Sample>(in, i)))));
    }
}

// A rectangle in groups of rows, and these in parts whose column sums stay in the nearest cache.
template <class Rows> struct Groups {
    using Sample = typename Rows::Sample;
    using Column = typename Rows::Column;
    // A part has whole pixels of 3 samples and of 4.
    static constexpr std::size_t part = 384, resultStep = part * sizeof(Sample) + 64;

    const Box &box;
    const Rows rows;
    const Lag lag;
    const std::size_t samples, all; // of a row of results, of a row of columns
    const ConstRaster first;
    ColumnRows columns;
    Raster results;

    explicit Groups(const Box &of)
        : box(of), rows(of.window), lag{static_cast<std::size_t>(of.window.columns) * samplesOf(of.layout),
                                        samplesOf(of.layout)},
          samples(static_cast<std::size_t>(of.width) * lag.channels), all(samples + lag.samples - lag.channels),
          first(firstOf(of.source, of.window, lag.channels * sizeof(Sample)))
    {
        constexpr std::size_t line = 64, beyond = Rows::block + 4; // read behind a row, and without effect
        // An odd number of lines avoids rows that compete for one place in the cache.
        columns.step = ((all + beyond) * sizeof(Column) + line - 1) / line * line | line;
        columns.data = static_cast<unsigned char *>(of.scratch);
        results = {columns.row(Rows::rows + 1), resultStep};
        for (std::size_t row = 0; row <= Rows::rows; ++row)
            __builtin_memset(columns.row(row) + all * sizeof(Column), 0, columns.step - all * sizeof(Column));
    }

    // Columns `begin` to `end` of a group's rows. Rows below the rectangle repeat its last one.
    void sumColumns(std::int32_t y, std::size_t count, std::size_t begin, std::size_t end) const
    {
        const ConstRaster from = first.fromByte(static_cast<std::int64_t>(begin * sizeof(Sample)));
        for (std::size_t row = 0; row < Rows::rows; ++row) {
            const unsigned char *above = columns.row(row) + begin * sizeof(Column);
            unsigned char *below = columns.row(row + 1) + begin * sizeof(Column);
            const std::int64_t line = static_cast<std::int64_t>(row) + y;
            if (row >= count)
                __builtin_memcpy(below, above, (end - begin) * sizeof(Column));
            else if (line == 0 && !box.continued)
                addColumns<Rows, Column>(end - begin, from, box.window.rows, below);
            else
                moveColumns<Column, Sample>(end - begin, above, from.fromRow(line + box.window.rows - 1).data,
                                            from.fromRow(line - 1).data, below);
        }
    }

    // From the buffer: rows whose fourth samples stay, and those that do not fill blocks or a group.
    void deliver(std::size_t count, std::size_t some, Raster out) const
    {
        for (std::size_t row = 0; row < count; ++row) {
            const std::int64_t number = static_cast<std::int64_t>(row);
            const unsigned char *in = results.fromRow(number).data;
            if (box.layout == AC4)
                moveThreeOfFour<Sample>(some / 4, in, out.fromRow(number).data);
            else
                __builtin_memcpy(out.fromRow(number).data, in, some * sizeof(Sample));
        }
    }

    void group(std::int32_t y, std::size_t count) const
    {
        typename Rows::Sums sums;
        std::size_t summed = 0;
        for (std::size_t begin = 0; begin < samples; begin += part) {
            const std::size_t some = samples - begin < part ? samples - begin : part;
            const std::size_t end = begin + some + lag.samples, last = end < all ? end : all;
            sumColumns(y, count, summed, last);
            summed = last;
            if (begin == 0)
                rows.start(columns, lag, sums);
            const Raster out = box.destination.fromRow(y).fromByte(static_cast<std::int64_t>(begin * sizeof(Sample)));
            const bool direct = box.layout != AC4 && count == Rows::rows && some % Rows::block == 0;
            rows.run(columns, begin, begin + some, lag, sums, direct ? out : results);
            if (!direct)
                deliver(count, some, out);
        }
    }

    void run() const
    {
        const std::size_t bytes = all * sizeof(Column), height = static_cast<std::size_t>(box.height);
        if (box.continued)
            __builtin_memcpy(columns.row(0), box.sums, bytes);
        for (std::size_t y = 0; y < height; y += Rows::rows) {
            group(static_cast<std::int32_t>(y), height - y < Rows::rows ? height - y : Rows::rows);
            __builtin_memcpy(columns.row(0), columns.row(Rows::rows), bytes);
        }
        __builtin_memcpy(box.sums, columns.row(0), bytes);
    }
};

template <class Rows> [[gnu::noinline]] KrnStatus blurBy(const Box &box)
{
    Groups<Rows>(box).run();
    return KRN_OK;
}

KrnStatus blurSamples(const Box &box, std::uint8_t)
{
    constexpr std::int64_t mostPixels = 8100; // of bytes, of which 12 bits of the reciprocal make less than 32
    const bool large = std::int64_t{box.window.columns} * box.window.rows > mostPixels;
#if ORV_VECTOR_BYTES > 0
    if (large)
        return blurBy<VectorRows<LargeByteVectors>>(box);
    if (ByteVectors::fit(box.window))
        return blurBy<VectorRows<ByteVectors>>(box);
    if (LargerByteVectors::fit(box.window))
        return blurBy<VectorRows<LargerByteVectors>>(box);
#else
    if (large)
        return blurBy<PlainRows<LargeByteMean>>(box);
#endif
    return blurBy<PlainRows<ByteMean>>(box);
}

KrnStatus blurSamples(const Box &box, std::int16_t)
{
#if ORV_VECTOR_BYTES > 0
    return blurBy<VectorRows<WordVectors>>(box);
#else
    return blurBy<PlainRows<WordMean>>(box);
#endif
}

KrnStatus blurSamples(const Box &box, float)
{
#if ORV_VECTOR_BYTES > 0
    return blurBy<VectorRows<FloatVectors>>(box);
#else
    return blurBy<PlainRows<FloatMean>>(box);
#endif
}

template <class Sample> inline KrnStatus blur(const Box &box)
{
    const KrnStatus status = checkWindow(box.source, box.destination, box.width, box.height, box.window);
    return status != KRN_OK ? status : blurSamples(box, Sample());
}

} // namespace

#define ORV_BLUR(layout, samples, Sample)                       \
    KRN_KERNEL(BoxKernel, krnBlur##samples##layout)             \
    {                                                           \
        return blur<Sample>({layout,                            \
                             from(source, sourceStep),          \
                             to(destination, step),             \
                             width,                             \
                             height,                            \
                             {columns, rows, anchorX, anchorY}, \
                             sums,                              \
                             continued != 0,                    \
                             scratch});                         \
    }

ORV_LAYOUTS(ORV_BLUR, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_BLUR, 16s, std::int16_t)
ORV_LAYOUTS(ORV_BLUR, 32f, float)

#include "end.h"
