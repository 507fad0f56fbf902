// Signatures of mirrors and of resizing. A flip exchanges rows (0), columns (1) or both (2).
#pragma once

#include "../dispatch/signatures.h"

namespace orv {

#define KRN_PARAMETERS_MirrorKernel                                                                        \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height, std::int32_t flip
KRN_SIGNATURE(MirrorKernel)

// In place (suffix I).
#define KRN_PARAMETERS_MirrorInPlaceKernel \
    void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t flip
KRN_SIGNATURE(MirrorInPlaceKernel)

// One axis of a resize: where each result lies among the sources. Positions start at `start` and grow by `step`, which
// is added up. `count` is the number of results, `offset` that of the rectangle's first source in the image, and `last`
// that of the image's last one. Gives for each result the index of its first source, counted from the rectangle's
// first, and what its sources weigh.
// Positions and counts that fall short of a whole number by rounding count as that number.
constexpr double resizeSlack = 1e-7;
enum : std::int32_t { KRN_NEAREST = 1, KRN_LINEAR = 2, KRN_CUBIC = 4 };
#define KRN_PARAMETERS_ResizeAxisKernel                                                                       \
    double start, double step, std::int32_t count, std::int32_t mode, std::int32_t offset, std::int32_t last, \
        std::int32_t *indices, void *weights
KRN_SIGNATURE(ResizeAxisKernel)

// Between two integers, the second weighs so many parts of resizeOne. Bytes have twice that, negative: from -32768 to
// 0. Words have both weights, that of the second in the upper half. Two floats have the weight of the second. Four
// samples have three factors as floats, each in an array of `count`.
constexpr std::int32_t resizeOne = 16384;
constexpr std::int32_t cubicFactors = 3;

// The columns of a resize, sample by sample: all channels of a pixel one after the other. The sources of a sample are
// `pixelBytes` apart.
struct ResizeColumns {
    std::int32_t samples, pixelBytes;
    const std::int32_t *offsets; // of first sources, in bytes from the row's start
    const void *weights;         // as above, those of bytes as words
    const void *shuffles;        // from krnResizeShuffles
};
// Its rows. `buffers` hold source rows that were interpolated along themselves: row r lies in buffer r modulo their
// number. `held` are the numbers of these rows, or noRow.
constexpr std::int32_t mostResizeTaps = 4;
constexpr std::int32_t noRow = INT32_MIN;
struct ResizeRows {
    std::int32_t count;
    const std::int32_t *indices; // of first source rows
    const void *weights;
    void *buffers[mostResizeTaps];
    std::int32_t held[mostResizeTaps];
};

// Prepares the gathering of samples of so many bytes, each to a place in a vector: with as many of its sources, one
// after the other, as `taps` says. What it writes serves the build that wrote it.
#define KRN_PARAMETERS_ResizeShufflesKernel \
    const ResizeColumns *columns, std::int32_t sampleBytes, std::int32_t taps, std::int32_t placeBytes, void *shuffles
KRN_SIGNATURE(ResizeShufflesKernel)
constexpr std::int32_t mostWindows = 4; // of 16 bytes, from which a lane is gathered
constexpr std::int64_t shufflesBytes(std::int64_t samples, std::int32_t placeBytes)
{
    const std::int64_t lanes = samples * placeBytes / 16 + 2;
    return 64 + lanes * (4 + 16 * mostWindows);
}

// So many rows of results, from `firstRow` on.
#define KRN_PARAMETERS_ResizeKernel                                                                           \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t firstRow, \
        std::int32_t height, const ResizeColumns *columns, ResizeRows *rows
KRN_SIGNATURE(ResizeKernel)

// The rows of a box: the first and the last have weights of their own, those between them `weight`. A single row has
// the first weight.
struct RowsOfBox {
    std::int32_t rows, firstWeight, weight, lastWeight;
};
// Adds the weighted samples of rows to sums, or starts them.
#define KRN_PARAMETERS_SumRowsKernel \
    const void *source, std::int32_t step, const RowsOfBox *box, void *sums, std::int32_t samples, std::int32_t starts
KRN_SIGNATURE(SumRowsKernel)

// The boxes along a row of sums, in numbers of the sums' type. The sums of a box start at an offset in samples. Each
// box has `taps` weights, of which those behind its last pixel are 0, and their total.
struct BoxesOfRow {
    const std::int32_t *offsets;
    const void *weights, *totals;
    std::int32_t taps;
};
// So many weights of one channel are taken at once, and the taps are a multiple of that. Pixels of several channels
// have whole pairs of doubles. All taps of a box are read, and a pixel's fourth sample where it has three.
constexpr std::int32_t floatTaps = 4, doubleTaps = 2;

// One row of the means of boxes, which are divided by `rowWeights` too, that of the rows that were added.
#define KRN_PARAMETERS_MeanRowKernel \
    const void *sums, void *destination, std::int32_t width, const BoxesOfRow *boxes, double rowWeights
KRN_SIGNATURE(MeanRowKernel)

// The means of boxes of two by two pixels. The size is that of the destination.
#define KRN_PARAMETERS_HalveKernel                                                                         \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, std::int32_t width, \
        std::int32_t height
KRN_SIGNATURE(HalveKernel)

} // namespace orv
