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

// Adds the weighted samples of a row to sums, or starts them.
#define KRN_PARAMETERS_AddRowKernel \
    const void *source, void *sums, std::int32_t samples, std::int32_t weight, std::int32_t starts
KRN_SIGNATURE(AddRowKernel)

// One row of the means of boxes. A box goes from the sums of one pixel to those of another; these two have weights of
// their own, those between them `weight`. A box of one pixel has the first weight alone.
struct BoxesOfRow {
    const std::int32_t *first, *last, *firstWeight, *lastWeight;
    std::int32_t weight;
};
// Divided by the weights of a box in its row and by `rowWeights`, that of the rows that were added.
#define KRN_PARAMETERS_MeanRowKernel \
    const void *sums, void *destination, std::int32_t width, const BoxesOfRow *boxes, double rowWeights
KRN_SIGNATURE(MeanRowKernel)

} // namespace orv
