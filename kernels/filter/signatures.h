// Signatures of convolutions. The window of coefficients, in rows, is flipped: the value at the anchor meets the pixel
// that is computed, the value right of it the pixel left of that. The source starts at the first pixel that is
// computed, and has pixels around it.
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

#define KRN_PARAMETERS_ConvolveKernel                                                                           \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,      \
        std::int32_t height, const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, \
        std::int32_t anchorY, std::int32_t divisor
KRN_SIGNATURE(ConvolveKernel)

#define KRN_PARAMETERS_ConvolveFloatsKernel                                                                     \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,      \
        std::int32_t height, const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, \
        std::int32_t anchorY
KRN_SIGNATURE(ConvolveFloatsKernel)

// A row or a column of coefficients.
#define KRN_PARAMETERS_ConvolveLineKernel                                                                  \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const void *values, std::int32_t size, std::int32_t anchor, std::int32_t divisor
KRN_SIGNATURE(ConvolveLineKernel)

// Without a divisor: of floats, and where the sums themselves are the result.
#define KRN_PARAMETERS_SumLineKernel                                                                       \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, const void *values, std::int32_t size, std::int32_t anchor
KRN_SIGNATURE(SumLineKernel)

// What a kernel with a window works on. It tells how much scratch the kernel needs.
struct WindowShape {
    std::int32_t width;         // of the destination, in pixels
    std::int32_t channels;      // samples of a pixel
    std::int32_t sampleBytes;   // of the source
    std::int32_t columns, rows; // of the window
};

// A window around each pixel. The scratch starts on the alignment of blocks.
#define KRN_PARAMETERS_WindowKernel                                                                               \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,        \
        std::int32_t height, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, std::int32_t anchorY, \
        void *scratch
KRN_SIGNATURE(WindowKernel)

// Extremes are computed in blocks of columns, so that some rows stay in the nearest cache. A block is several times as
// wide as the margins that are computed with it. Kernels call these too: they are always inlined, and leave no symbol
// that builds would share.
[[gnu::always_inline]] constexpr std::int64_t extremesBlockBytes(const WindowShape &shape)
{
    const std::int64_t pixelBytes = std::int64_t{shape.channels} * shape.sampleBytes;
    const std::int64_t around = 4 * (shape.columns - 1) * pixelBytes, row = shape.width * pixelBytes;
    const std::int64_t block = around > 2048 ? around : 2048;
    return row < block ? row : block;
}
// From row to row of such a block.
[[gnu::always_inline]] constexpr std::int64_t extremesStep(const WindowShape &shape)
{
    const std::int64_t pixelBytes = std::int64_t{shape.channels} * shape.sampleBytes;
    return (extremesBlockBytes(shape) + (shape.columns - 1) * pixelBytes + 31) & ~std::int64_t{31};
}
// So many rows of results are computed at once. The rows that their windows share are taken in blocks of as many,
// where the window is high.
constexpr std::int32_t groupRows = 8;
[[gnu::always_inline]] constexpr std::int32_t blocksOfCore(std::int32_t rows)
{
    return rows < 3 * groupRows ? 0 : (rows - groupRows) / groupRows;
}

// Bytes of scratch, without a product that wraps: windows are bounded by the padded source, which has been allocated.
constexpr std::int64_t extremesScratchBytes(const WindowShape &shape)
{
    return extremesStep(shape) * (groupRows + 2 + std::int64_t{blocksOfCore(shape.rows)}) + 64;
}
// Medians of small windows sort pieces of rows: so many bytes at a time, and what windows reach beyond them.
constexpr std::int64_t medianBlockBytes = 256, medianMarginBytes = 96, medianMostLists = 56;

// Medians of large windows count the samples of columns of a piece, and for samples of two bytes split a copy of it.
// Wider windows than the widest do so without.
constexpr std::int32_t medianMostColumns = 4095;
constexpr std::int64_t medianColumnBytes = 4 * (16 + 16 * 16), medianLowerBytes = 256 * (medianColumnBytes + 8);
// Always inlined: kernels call them in a build's region, where they may leave no symbol that several builds would
// share.
[[gnu::always_inline]] constexpr std::int32_t medianPieceWidth(std::int32_t columns)
{
    return columns < 256 ? 256 : columns < 1024 ? columns : 1024;
}
[[gnu::always_inline]] constexpr std::int32_t medianPieceHeight(std::int32_t rows)
{
    return rows < 128 ? 128 : rows < 1024 ? rows : 1024;
}

constexpr std::int64_t medianScratchBytes(const WindowShape &shape)
{
    if (shape.columns == 3 && shape.rows == 3)
        return 6 * (medianBlockBytes + medianMarginBytes);
    const std::int64_t lists = medianMostLists * (medianBlockBytes + medianMarginBytes);
    const std::int64_t sliding = shape.sampleBytes == 1 ? 4 * (16 + 256) : 4 * (16 + 256 + 4096 + 65536);
    if (shape.columns > medianMostColumns)
        return sliding;
    const std::int32_t most = medianPieceWidth(shape.columns), width = shape.width < most ? shape.width : most;
    const std::int64_t columns = std::int64_t{width} + shape.columns - 1;
    const std::int64_t rows = std::int64_t{medianPieceHeight(shape.rows)} + shape.rows - 1;
    const std::int64_t counters = columns * medianColumnBytes;
    const std::int64_t all = shape.sampleBytes == 1 ? counters : counters + medianLowerBytes + 2 * columns * rows + 32;
    const std::int64_t larger = all > sliding ? all : sliding;
    return larger > lists ? larger : lists;
}

// Means of windows. `sums` are column sums, boxSumsBytes() at most, which a call leaves as they were for its last row.
// Only a call of the same build takes them on: one that continues the rectangle. Then `continued` is not 0, and the row
// above its first window can be read.
#define KRN_PARAMETERS_BoxKernel                                                                                  \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width,        \
        std::int32_t height, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, std::int32_t anchorY, \
        void *sums, std::int32_t continued, void *scratch
KRN_SIGNATURE(BoxKernel)

constexpr std::int64_t boxSumsBytes(const WindowShape &shape)
{
    return 4 * (std::int64_t{shape.width} + shape.columns - 1) * shape.channels;
}
// Column sums of several rows, and results of a part of those rows.
constexpr std::int64_t boxScratchBytes(const WindowShape &shape)
{
    constexpr std::int64_t mostRows = 9, results = 16384; // rows of sums of 4 bytes, or twice as many of 2 bytes
    return mostRows * boxSumsBytes(shape) + results;
}

// A window of a fixed size around each pixel: 3 x 3, or as the code says.
#define KRN_PARAMETERS_FixedKernel KRN_PARAMETERS_CopyKernel
KRN_SIGNATURE(FixedKernel)

enum : std::int32_t { KRN_WINDOW_3X3 = 0x21, KRN_WINDOW_5X5 = 0x37 };

#define KRN_PARAMETERS_CodedKernel                                                                         \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t code
KRN_SIGNATURE(CodedKernel)

// One row.
#define KRN_PARAMETERS_FloatPairRowKernel \
    const void *source1, const void *source2, void *destination, std::int32_t length
KRN_SIGNATURE(FloatPairRowKernel)

} // namespace orv
