// Dilation and erosion by a square of 3 x 3.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "extremes.h"

// Rows of the image in place, from the pixel left of the rectangle to the one right of it. Scratch holds the row above
// as it was before the pass.
template <class Better, std::size_t channels> struct Rows {
    Raster image; // from the first row that is computed
    unsigned char *above;
    std::size_t bytes;

    std::size_t resultBytes() const { return bytes - 2 * channels; }

    // One row by a row of extremes of its columns, which is behind the one above.
    void computePlainly() const
    {
        unsigned char *const found = above + ((bytes + 31) & ~std::size_t{31});
        const unsigned char *const columns[] = {above, image.data, image.fromRow(1).data};
        bestOf<std::uint8_t, Better, 3>(columns, 0, {found, 0}, bytes, 1);
        __builtin_memcpy(above, image.data, bytes);
        const unsigned char *const places[] = {found, found + channels, found + 2 * channels};
        bestOf<std::uint8_t, Better, 3>(places, 0, image.fromByte(channels), resultBytes(), 1);
    }

#if ORV_VECTOR_BYTES > 0
    static constexpr std::size_t step = ORV_VECTOR_BYTES;
    static constexpr std::int32_t rowsAtOnce = 4;

    // The extremes of columns in one row, or in an even number of them, which share what they read two by two. Returns
    // the last of these rows.
    template <std::size_t rows> U8s ofColumns(std::size_t at, U8s (&found)[rows]) const
    {
        const Better better;
        const auto row = [&](std::size_t y) {
            return loadVectorOnce<std::uint8_t>(image.fromRow(static_cast<std::int32_t>(y)).data, at);
        };
        U8s before = loadVectorOnce<std::uint8_t>(above, at), first = row(0);
        if constexpr (rows == 1) {
            found[0] = better(better(before, first), row(1));
            return first;
        }
        for (std::size_t y = 0; y + 1 < rows; y += 2) {
            const U8s second = row(y + 1), both = better(first, second);
            found[y] = better(before, both);
            before = second;
            first = row(y + 2);
            found[y + 1] = better(both, first);
        }
        return before;
    }

    // Results from place `at` on, from columns anywhere.
    template <std::size_t rows> void computeAt(std::size_t at, U8s (&results)[rows]) const
    {
        const Better better;
        ofColumns(at, results);
        for (std::size_t i = 1; i < 3; ++i) {
            U8s found[rows];
            ofColumns(at + i * channels, found);
            for (std::size_t row = 0; row < rows; ++row)
                results[row] = better(results[row], found[row]);
        }
    }

    template <std::size_t rows> void storeResults(std::size_t at, const U8s (&results)[rows]) const
    {
        for (std::size_t row = 0; row < rows; ++row)
            storeVector<std::uint8_t>(image.fromRow(static_cast<std::int32_t>(row)).data, at + channels, results[row]);
    }

    // One row or several of at least one vector of results. What the last vectors give is computed before anything is
    // written. They are two where what the loop leaves over is more than a vector.
    template <std::size_t rows> void compute() const
    {
        const Better better;
        const std::size_t last = resultBytes() - step, end = bytes / step * step - step;
        U8s lastResults[rows], moreResults[rows], columns[rows];
        computeAt(last, lastResults);
        if (end < last)
            computeAt(end, moreResults);
        const U8s lastAbove = loadVector<std::uint8_t>(image.fromRow(rows - 1).data, bytes - step);
        storeVector<std::uint8_t>(above, 0, ofColumns(0, columns));
        for (std::size_t at = 0; at < end; at += step) {
            U8s next[rows];
            storeVector<std::uint8_t>(above, at + step, ofColumns(at + step, next));
            for (std::size_t row = 0; row < rows; ++row) {
                const U8s one = furtherBytes<channels>(columns[row], next[row]);
                const U8s two = furtherBytes<2 * channels>(columns[row], next[row]);
                columns[row] = better(better(columns[row], one), two);
            }
            storeResults(at, columns);
            for (std::size_t row = 0; row < rows; ++row)
                columns[row] = next[row];
        }
        storeVector<std::uint8_t>(above, bytes - step, lastAbove);
        if (end < last)
            storeResults(end, moreResults);
        storeResults(last, lastResults);
    }
#endif
};

template <class Better, std::size_t channels>
[[gnu::noinline]] KrnStatus pass(Raster image, std::int32_t width, std::int32_t height, unsigned char *scratch)
{
    if (image.data == nullptr)
        return KRN_NULL_POINTER;
    if (image.step < 1)
        return KRN_BAD_STEP;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    if (image.step / static_cast<std::int32_t>(channels) < std::int64_t{width} + 2)
        return KRN_SHORT_STEP;
    Rows<Better, channels> rows = {image.fromByte(-std::int64_t{channels}), scratch,
                                   (static_cast<std::size_t>(width) + 2) * channels};
    __builtin_memcpy(scratch, rows.image.fromRow(-1).data, rows.bytes);
    std::int32_t y = 0;
#if ORV_VECTOR_BYTES > 0
    if (rows.resultBytes() >= ORV_VECTOR_BYTES) {
        constexpr std::int32_t several = decltype(rows)::rowsAtOnce;
        for (; y + several <= height; y += several, rows.image = rows.image.fromRow(several))
            rows.template compute<several>();
        for (; y < height; ++y, rows.image = rows.image.fromRow(1))
            rows.template compute<1>();
        return KRN_OK;
    }
#endif
    for (; y < height; ++y, rows.image = rows.image.fromRow(1))
        rows.computePlainly();
    return KRN_OK;
}

} // namespace

#define ORV_MORPHOLOGY(layout)                                                                                \
    KRN_KERNEL(MorphologyKernel, krnDilate8u##layout)                                                         \
    {                                                                                                         \
        return pass<Largest, layout>(to(image, step), width, height, static_cast<unsigned char *>(scratch));  \
    }                                                                                                         \
    KRN_KERNEL(MorphologyKernel, krnErode8u##layout)                                                          \
    {                                                                                                         \
        return pass<Smallest, layout>(to(image, step), width, height, static_cast<unsigned char *>(scratch)); \
    }

ORV_MORPHOLOGY(C1)
ORV_MORPHOLOGY(C3)
ORV_MORPHOLOGY(C4)

#include "end.h"
