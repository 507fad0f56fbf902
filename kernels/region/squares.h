// Extremes of squares of 3 x 3, in place or not. To be included after extremes.h.

#if ORV_VECTOR_BYTES > 0

// Rows from the pixel left of the first result to the one right of the last. In place the results go to the rows
// themselves, and `above` holds the row above as it was before.
template <class Sample, class Better, std::size_t channels, bool inPlace> struct Squares {
    static constexpr std::size_t step = ORV_VECTOR_BYTES, pixelBytes = channels * sizeof(Sample);
    static constexpr std::int32_t rowsAtOnce = 4;
    using Samples = Vector<Sample>;
    using Above = std::conditional_t<inPlace, unsigned char *, const unsigned char *>;

    ConstRaster rows; // from the first row of results on
    Raster results;   // from their first sample on
    Above above;
    std::size_t bytes; // of a row
    bool keepsFourth;

    std::size_t resultBytes() const { return bytes - 2 * pixelBytes; }

    // The extremes of columns in one row, or in an even number of them, which share what they read two by two. Returns
    // the last of these rows.
    template <std::size_t count> Samples ofColumns(std::size_t at, Samples (&found)[count]) const
    {
        const Better better;
        const auto row = [&](std::size_t y) {
            return loadVectorOnce<Sample>(rows.fromRow(static_cast<std::int32_t>(y)).data + at);
        };
        Samples before = loadVectorOnce<Sample>(above + at), first = row(0);
        if constexpr (count == 1) {
            found[0] = better(better(before, first), row(1));
            return first;
        }
        for (std::size_t y = 0; y + 1 < count; y += 2) {
            const Samples second = row(y + 1), both = better(first, second);
            found[y] = better(before, both);
            before = second;
            first = row(y + 2);
            found[y + 1] = better(both, first);
        }
        return before;
    }

    // In place, a row that is overwritten is the one above the next rows.
    void keep([[maybe_unused]] std::size_t at, [[maybe_unused]] Samples row) const
    {
        if constexpr (inPlace)
            storeVector<Sample>(above + at, 0, row);
    }

    // Results from place `at` on, from columns anywhere.
    template <std::size_t count> void computeAt(std::size_t at, Samples (&found)[count]) const
    {
        const Better better;
        ofColumns(at, found);
        for (std::size_t i = 1; i < 3; ++i) {
            Samples more[count];
            ofColumns(at + i * pixelBytes, more);
            for (std::size_t row = 0; row < count; ++row)
                found[row] = better(found[row], more[row]);
        }
    }

    template <std::size_t count> void storeResults(std::size_t at, const Samples (&found)[count]) const
    {
        for (std::size_t row = 0; row < count; ++row) {
            unsigned char *const out = results.fromRow(static_cast<std::int32_t>(row)).data + at;
            storeVector<Sample>(out, 0,
                                keepsFourth ? keepingFourth<Sample>(found[row], loadVector<Sample>(out)) : found[row]);
        }
    }

    // One row or several of at least one vector of results. What the last vectors give is computed before anything is
    // written. They are two where what the loop leaves over is more than a vector.
    template <std::size_t count> void compute() const
    {
        const Better better;
        const std::size_t last = resultBytes() - step, end = bytes / step * step - step;
        Samples lastResults[count], moreResults[count] = {}, columns[count];
        computeAt(last, lastResults);
        if (end < last)
            computeAt(end, moreResults);
        const Samples lastRow = loadVector<Sample>(rows.fromRow(count - 1).data + bytes - step);
        keep(0, ofColumns(0, columns));
        for (std::size_t at = 0; at < end; at += step) {
            Samples next[count];
            keep(at + step, ofColumns(at + step, next));
            for (std::size_t row = 0; row < count; ++row) {
                const U8s low = as<std::uint8_t>(columns[row]), high = as<std::uint8_t>(next[row]);
                const Samples one = as<Sample>(furtherBytes<pixelBytes>(low, high));
                const Samples two = as<Sample>(furtherBytes<2 * pixelBytes>(low, high));
                columns[row] = better(better(columns[row], one), two);
            }
            storeResults(at, columns);
            for (std::size_t row = 0; row < count; ++row)
                columns[row] = next[row];
        }
        keep(bytes - step, lastRow);
        if (end < last)
            storeResults(end, moreResults);
        storeResults(last, lastResults);
    }

    void advance(std::int32_t count)
    {
        if constexpr (!inPlace)
            above = rows.fromRow(count - 1).data;
        rows = rows.fromRow(count);
        results = results.fromRow(count);
    }

    // All rows, which have at least one vector of results.
    void computeAll(std::int32_t height)
    {
        for (; height >= rowsAtOnce; height -= rowsAtOnce) {
            compute<rowsAtOnce>();
            advance(rowsAtOnce);
        }
        for (; height > 0; --height) {
            compute<1>();
            advance(1);
        }
    }
};

#endif
