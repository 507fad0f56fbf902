// Largest and smallest samples of windows: the extremes of each column of a window, then those along its row. A few
// rows of results and a block of columns are computed at a time.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "extremes.h"

#include "squares.h"

#include "column_extremes.h"
#include "row_extremes.h"

struct Rasters {
    ConstRaster source; // the first pixel's window
    Raster destination;
    std::int32_t width, height;
    std::size_t layout;
};

// A block of columns. The scratch starts with a group of rows and their margins.
template <class Sample, class Better> struct Block {
    Rasters rasters;
    Window window;
    Raster scratch;

    std::size_t pixelBytes() const { return samplesOf(rasters.layout) * sizeof(Sample); }
    std::size_t rowBytes() const { return static_cast<std::size_t>(rasters.width) * pixelBytes(); }

    // The extremes along `count` rows, which may be those in scratch. Nine pixels are found in registers where shifts
    // of a vector reach the ninth.
    void computeRows(std::int32_t count, ConstRaster in, Raster out) const
    {
        const bool inRegisters =
            ORV_SHUFFLES && rasters.layout == C1 && in.data == scratch.data && rowBytes() >= ORV_VECTOR_BYTES;
        overWidths(window.columns, pixelBytes(), inRegisters,
                   [&](std::size_t places, const std::size_t(&offsets)[mostPlaces], std::size_t margin) {
                       const Raster to = margin == 0 ? out : scratch;
                       const std::size_t bytes = rowBytes() + margin;
                       // Within scratch there is room for whole vectors.
                       const std::size_t whole = in.data == to.data ? (bytes + 31) & ~std::size_t{31} : bytes;
                       if (places == nine) {
#if ORV_SHUFFLES
                           bestOfNine<Sample, Better>(in, to, whole, count);
#endif
                       } else {
                           const unsigned char *from[mostPlaces];
                           for (std::size_t i = 0; i < places; ++i)
                               from[i] = in.data + offsets[i];
                           bestOf<Sample, Better>(places, from, in.step, to, whole, count);
                       }
                       in = to;
                   });
    }

    // Moves three samples of each pixel to the results.
    void keepFourths(const unsigned char *in, unsigned char *out) const
    {
        const std::size_t bytes = rowBytes();
        std::size_t at = 0;
#if ORV_VECTOR_BYTES > 0
        ORV_UNROLLED
        for (; at + ORV_VECTOR_BYTES <= bytes; at += ORV_VECTOR_BYTES)
            storeVector<Sample>(out + at, 0,
                                keepingFourth<Sample>(loadVector<Sample>(in + at), loadVector<Sample>(out + at)));
#endif
        moveThreeOfFour<Sample>((bytes - at) / pixelBytes(), in + at, out + at);
    }

    void compute() const
    {
        const std::size_t bytes = rowBytes() + static_cast<std::size_t>(window.columns - 1) * pixelBytes();
        const Raster more = scratch.fromRow(groupRows).fromByte(64);
        ColumnExtremes<Sample, Better> columns(rasters.source, bytes, window.rows, rasters.height, more);
        const std::int32_t count = rasters.height < groupRows ? rasters.height : groupRows;
        for (std::int32_t next = 0; next < rasters.height; next += groupRows) {
            const bool last = rasters.height - next <= groupRows;
            const std::int32_t y = last ? rasters.height - count : next;
            const Raster results = rasters.destination.fromRow(y), out = rasters.layout == AC4 ? scratch : results;
            ConstRaster in = rasters.source.fromRow(y);
            if (window.rows > 1) {
                const Raster found = window.columns > 1 ? scratch : out;
                columns.compute(y, count, last, found);
                in = found;
            }
            if (window.rows == 1 || window.columns > 1)
                computeRows(count, in, out);
            for (std::int32_t row = 0; row < count && rasters.layout == AC4; ++row)
                keepFourths(scratch.fromRow(row).data, results.fromRow(row).data);
        }
    }
};

#if ORV_VECTOR_BYTES > 0
// Squares of 3 x 3 on rows of at least one vector, from the first pixel's window on.
template <class Sample, class Better, std::size_t channels>
[[gnu::noinline]] void ofSquares(const Rasters &given, ConstRaster first)
{
    const std::size_t pixelBytes = channels * sizeof(Sample);
    Squares<Sample, Better, channels, false>{first.fromRow(1), given.destination, first.data,
                                             (static_cast<std::size_t>(given.width) + 2) * pixelBytes,
                                             given.layout == AC4}
        .computeAll(given.height);
}
#endif

// Not inlined: the layouts share it.
template <class Sample, class Better>
[[gnu::noinline]] KrnStatus extremes(const Rasters &given, const Window &window, void *scratch)
{
    const KrnStatus status = checkWindow(given.source, given.destination, given.width, given.height, window);
    if (status != KRN_OK)
        return status;
    const std::int32_t channels = static_cast<std::int32_t>(samplesOf(given.layout)),
                       pixelBytes = channels * static_cast<std::int32_t>(sizeof(Sample));
    const WindowShape shape = {given.width, channels, sizeof(Sample), window.columns, window.rows};
    const std::int64_t most = extremesBlockBytes(shape) / pixelBytes;
    const ConstRaster first = firstOf(given.source, window, static_cast<std::size_t>(pixelBytes));
#if ORV_VECTOR_BYTES > 0
    if (window.columns == 3 && window.rows == 3 && std::int64_t{given.width} * pixelBytes >= ORV_VECTOR_BYTES) {
        (channels == 1   ? ofSquares<Sample, Better, C1>
         : channels == 3 ? ofSquares<Sample, Better, C3>
                         : ofSquares<Sample, Better, C4>)(given, first);
        return KRN_OK;
    }
#endif
    for (std::int64_t x = 0; x < given.width; x += most) {
        const std::int64_t pixels = given.width - x < most ? given.width - x : most;
        const Rasters part = {first.fromByte(x * pixelBytes), given.destination.fromByte(x * pixelBytes),
                              static_cast<std::int32_t>(pixels), given.height, given.layout};
        Block<Sample, Better>{
            part, window, {static_cast<unsigned char *>(scratch), static_cast<std::int32_t>(extremesStep(shape))}}
            .compute();
    }
    return KRN_OK;
}

} // namespace

#define ORV_EXTREMES(layout, samples, Sample)                                                                       \
    KRN_KERNEL(WindowKernel, krnMaxFilter##samples##layout)                                                         \
    {                                                                                                               \
        return extremes<Sample, Largest>({from(source, sourceStep), to(destination, step), width, height, layout},  \
                                         {columns, rows, anchorX, anchorY}, scratch);                               \
    }                                                                                                               \
    KRN_KERNEL(WindowKernel, krnMinFilter##samples##layout)                                                         \
    {                                                                                                               \
        return extremes<Sample, Smallest>({from(source, sourceStep), to(destination, step), width, height, layout}, \
                                          {columns, rows, anchorX, anchorY}, scratch);                              \
    }

ORV_LAYOUTS(ORV_EXTREMES, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_EXTREMES, 16s, std::int16_t)

#include "end.h"
