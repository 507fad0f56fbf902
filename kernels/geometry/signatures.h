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
// that of the image's last one. Gives for each result the index of a source, counted from the rectangle's first: the
// nearest one, the first of two, or the second of four.
enum : std::int32_t { KRN_NEAREST = 1, KRN_LINEAR = 2, KRN_CUBIC = 4 };
#define KRN_PARAMETERS_ResizeAxisKernel                                                                       \
    double start, double step, std::int32_t count, std::int32_t mode, std::int32_t offset, std::int32_t last, \
        std::int32_t *indices, void *weights
KRN_SIGNATURE(ResizeAxisKernel)

// What the sources of a result weigh. For two of integers it is the weight of the second, of which resizeOne is the
// whole; for two floats the same as a float. For four it is three factors, each in an array of `count` floats.
constexpr std::int32_t resizeOne = 16384;
constexpr std::int32_t cubicFactors = 3;

// One row of pixels, each from the source at its offset in bytes, or from there and its neighbours, `pixelBytes` apart.
// Cubic rows start one pixel before the offset.
#define KRN_PARAMETERS_ResizeRowKernel                                                                               \
    const void *source, std::int32_t pixelBytes, void *destination, std::int32_t width, const std::int32_t *offsets, \
        const void *weights
KRN_SIGNATURE(ResizeRowKernel)

// One row of pixels from two such rows, or from four; `weights` are those of one result.
#define KRN_PARAMETERS_BlendRowsKernel \
    const void *const *rows, void *destination, std::int32_t width, const void *weights
KRN_SIGNATURE(BlendRowsKernel)

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
