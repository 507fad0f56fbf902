// Medians of windows.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "sorting.h"

#include "median_networks.h"

#include "median_histograms.h"

#include "median_words.h"

#include "median_sliding.h"

struct Rasters {
    std::size_t layout;
    ConstRaster source; // from the first pixel's window on
    Raster destination;
    std::size_t width, height;
};

// Runs the network on a piece of two rows. Pixels whose fourth sample stays are moved from a buffer.
template <class Network, class Sample> void computePiece(std::size_t layout, RowPair pair, void *scratch)
{
    if (layout != AC4)
        return Network::template compute<Sample>(pair, scratch);
    unsigned char buffer[2][medianBlockBytes];
    unsigned char *const out[2] = {pair.out[0], pair.out[1]};
    for (std::size_t i = 0; i < 2; ++i)
        pair.out[i] = buffer[i];
    Network::template compute<Sample>(pair, scratch);
    for (std::size_t i = 0; i < 2; ++i)
        moveThreeOfFour<Sample>(pair.samples / 4, buffer[i], out[i]);
}

#if ORV_VECTOR_BYTES > 0
// Rows shorter than a vector are computed from a copy that is as long as one.
template <class Network, class Sample> void computeShortRows(std::size_t layout, const RowPair &pair, void *scratch)
{
    constexpr std::size_t length = ORV_VECTOR_BYTES + 8 * 4 * sizeof(Sample), most = 10;
    unsigned char source[most][length] = {}, results[2][ORV_VECTOR_BYTES];
    const std::size_t bytes = pair.samples * sizeof(Sample),
                      read = bytes + (Network::columns - 1) * pair.channels * sizeof(Sample),
                      rows = Network::rows + (pair.lower != 0);
    for (std::size_t y = 0; y < rows; ++y)
        for (std::size_t i = 0; i < read; ++i)
            source[y][i] = pair.row(y)[i];
    const RowPair copy = {source[0],
                          length,
                          pair.lower == 0 ? std::ptrdiff_t{0} : std::ptrdiff_t{length},
                          {results[0], results[1]},
                          perVector<Sample>,
                          pair.channels};
    Network::template compute<Sample>(copy, scratch);
    for (std::size_t which = 0; which < 2; ++which)
        if (layout == AC4)
            moveThreeOfFour<Sample>(pair.samples / 4, results[which], pair.out[which]);
        else
            for (std::size_t i = 0; i < bytes; ++i)
                pair.out[which][i] = results[which][i];
}
#endif

template <class Network, class Sample> [[gnu::noinline]] void medianByNetwork(const Rasters &rasters, void *scratch)
{
    const std::size_t channels = samplesOf(rasters.layout), samples = channels * rasters.width;
    for (std::size_t y = 0; y < rasters.height; y += 2) {
        // The last of an odd number of rows is computed with the one before.
        const std::int64_t upper = static_cast<std::int64_t>(y + 1 < rasters.height ? y : y == 0 ? 0 : y - 1);
        const Raster first = rasters.destination.fromRow(upper), next = first.fromRow(rasters.height > 1);
        RowPair pair = {rasters.source.fromRow(upper).data,
                        rasters.source.step,
                        rasters.height > 1 ? rasters.source.step : 0,
                        {first.data, next.data},
                        samples,
                        channels};
#if ORV_VECTOR_BYTES > 0
        if (samples < perVector<Sample>) {
            computeShortRows<Network, Sample>(rasters.layout, pair, scratch);
            continue;
        }
#endif
        for (std::size_t i = 0; i < samples; i += medianBlock<Sample>) {
            const std::size_t some = samples - i < medianBlock<Sample> ? samples - i : medianBlock<Sample>;
            const std::size_t begin = some < perBatch<Sample> ? samples - perBatch<Sample> : i;
            RowPair piece = pair;
            piece.samples = some < perBatch<Sample> ? perBatch<Sample> : some;
            piece.in += begin * sizeof(Sample);
            for (unsigned char *&out : piece.out)
                out += begin * sizeof(Sample);
            computePiece<Network, Sample>(rasters.layout, piece, scratch);
        }
    }
}

// One channel of a piece by histograms of its columns.
template <class Counter>
void medianOfPiece(const MedianSize &size, ConstRaster source, Raster destination, std::size_t pixelBytes, std::uint8_t,
                   void *scratch)
{
    const Bytes bytes = {source.data, static_cast<std::ptrdiff_t>(pixelBytes), source.step};
    medianBytes(size, bytes, static_cast<Histogram<Counter> *>(scratch),
                [&](std::size_t x, std::size_t y, std::size_t byte, std::int32_t) {
                    destination.fromRow(static_cast<std::int64_t>(y)).data[x * pixelBytes] =
                        static_cast<unsigned char>(byte);
                });
}
template <class Counter>
void medianOfPiece(const MedianSize &size, ConstRaster source, Raster destination, std::size_t pixelBytes, std::int16_t,
                   void *scratch)
{
    Histogram<Counter> *const histograms = static_cast<Histogram<Counter> *>(scratch);
    LowerBytes<Counter> *const lower =
        static_cast<LowerBytes<Counter> *>(static_cast<void *>(histograms + size.sourceColumns()));
    static_assert(256 * sizeof *lower <= medianLowerBytes && sizeof *histograms <= medianColumnBytes);
    SplitColumns columns = {static_cast<unsigned char *>(static_cast<void *>(lower + 256)), nullptr,
                            size.height + size.rows - 1};
    columns.lower = columns.upper + size.sourceColumns() * columns.length;
    columns.split(source, pixelBytes, size.sourceColumns());
    LowerByteFinder<Counter> finder = {size, columns, histograms, lower};
    const Bytes bytes = {columns.upper, static_cast<std::ptrdiff_t>(columns.length), 1};
    medianBytes(size, bytes, histograms, [&](std::size_t x, std::size_t y, std::size_t byte, std::int32_t rank) {
        if (x == 0)
            finder.startRow();
        const std::size_t sample = byte << 8 | finder.find(x, y, byte, rank);
        store(destination.fromRow(static_cast<std::int64_t>(y)).data + x * pixelBytes, 0,
              static_cast<std::uint16_t>(sample ^ 0x8000));
    });
}

// Calls one(source, destination) for the channels that are written.
template <class Sample, class One> inline void overChannels(const Rasters &rasters, One one)
{
    for (std::size_t channel = 0; channel < (rasters.layout == AC4 ? 3 : rasters.layout); ++channel) {
        const std::int64_t bytes = static_cast<std::int64_t>(channel * sizeof(Sample));
        one(rasters.source.fromByte(bytes), rasters.destination.fromByte(bytes));
    }
}

template <class Sample, class Counter>
[[gnu::noinline]] void medianByColumns(const Rasters &rasters, const Window &window, void *scratch)
{
    const std::size_t pixelBytes = samplesOf(rasters.layout) * sizeof(Sample);
    const std::size_t columns = static_cast<std::size_t>(window.columns), rows = static_cast<std::size_t>(window.rows);
    const std::size_t width = static_cast<std::size_t>(medianPieceWidth(window.columns)),
                      height = static_cast<std::size_t>(medianPieceHeight(window.rows));
    overChannels<Sample>(rasters, [&](ConstRaster source, Raster destination) {
        for (std::size_t y = 0; y < rasters.height; y += height)
            for (std::size_t x = 0; x < rasters.width; x += width) {
                const MedianSize size = {columns, rows, rasters.width - x < width ? rasters.width - x : width,
                                         rasters.height - y < height ? rasters.height - y : height};
                const std::int64_t row = static_cast<std::int64_t>(y),
                                   bytes = static_cast<std::int64_t>(x * pixelBytes);
                medianOfPiece<Counter>(size, source.fromRow(row).fromByte(bytes),
                                       destination.fromRow(row).fromByte(bytes), pixelBytes, Sample(), scratch);
            }
    });
}

// Along the longer side of the window.
template <class Sample>
[[gnu::noinline]] void medianBySliding(const Rasters &rasters, const Window &window, void *scratch)
{
    const std::ptrdiff_t pixelBytes = static_cast<std::ptrdiff_t>(samplesOf(rasters.layout) * sizeof(Sample));
    const std::size_t columns = static_cast<std::size_t>(window.columns), rows = static_cast<std::size_t>(window.rows);
    overChannels<Sample>(rasters, [&](ConstRaster source, Raster destination) {
        const SlidingLines alongRows = {source.data,      destination.data, pixelBytes,     source.step, pixelBytes,
                                        destination.step, rasters.width,    rasters.height, columns,     rows};
        const SlidingLines alongColumns = {source.data, destination.data, source.step,   pixelBytes, destination.step,
                                           pixelBytes,  rasters.height,   rasters.width, rows,       columns};
        slideAlongLines<Sample>(rows <= columns ? alongRows : alongColumns, scratch);
    });
}

// Not inlined: the layouts share it.
template <class Sample>
[[gnu::noinline]] KrnStatus median(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                   std::int32_t height, const Window &window, void *scratch)
{
    if (const KrnStatus status = checkWindow(source, destination, width, height, window); status != KRN_OK)
        return status;
    if (window.columns % 2 == 0 || window.rows % 2 == 0)
        return KRN_BAD_MASK_SIZE;
    const Rasters rasters = {layout, firstOf(source, window, samplesOf(layout) * sizeof(Sample)), destination,
                             static_cast<std::size_t>(width), static_cast<std::size_t>(height)};
    const auto sides = [&](std::int32_t columns, std::int32_t rows) {
        return window.columns == columns && window.rows == rows;
    };
    const std::int32_t shorter = window.columns < window.rows ? window.columns : window.rows;
    if (sides(3, 3))
        medianByNetwork<NineMedian, Sample>(rasters, scratch);
    else if (sides(5, 5))
        medianByNetwork<SquareMedian<5>, Sample>(rasters, scratch);
    else if (sides(7, 7))
        medianByNetwork<SquareMedian<7>, Sample>(rasters, scratch);
    else if (sides(9, 9))
        medianByNetwork<SquareMedian<9>, Sample>(rasters, scratch);
    else if (sides(3, 1))
        medianByNetwork<FewMedian<3, 1>, Sample>(rasters, scratch);
    else if (sides(1, 3))
        medianByNetwork<FewMedian<1, 3>, Sample>(rasters, scratch);
    else if (sides(5, 1))
        medianByNetwork<FewMedian<5, 1>, Sample>(rasters, scratch);
    else if (sides(1, 5))
        medianByNetwork<FewMedian<1, 5>, Sample>(rasters, scratch);
    else if (shorter < 4 || window.columns > medianMostColumns)
        medianBySliding<Sample>(rasters, window, scratch);
    else if (std::int64_t{window.columns} * window.rows <= 32767)
        medianByColumns<Sample, std::int16_t>(rasters, window, scratch);
    else
        medianByColumns<Sample, std::int32_t>(rasters, window, scratch);
    return KRN_OK;
}

} // namespace

#define ORV_MEDIAN(layout, samples, Sample)                                                           \
    KRN_KERNEL(WindowKernel, krnMedian##samples##layout)                                              \
    {                                                                                                 \
        return median<Sample>(layout, from(source, sourceStep), to(destination, step), width, height, \
                              {columns, rows, anchorX, anchorY}, scratch);                            \
    }

ORV_LAYOUTS(ORV_MEDIAN, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_MEDIAN, 16s, std::int16_t)

#include "end.h"
