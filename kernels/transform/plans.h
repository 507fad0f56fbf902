// Plans of Fourier transforms: what is computed once for a length, and read by every build.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv {

// Transforms run on batches: so many sequences at once, one a lane. Element k of a batch is the real parts of element k
// of all sequences, then their imaginary parts.
constexpr std::size_t batchLanes = 8;
constexpr std::size_t batchElement = 2 * batchLanes; // floats

// Work of up to so many bytes needs no buffer: the size that a plan tells is 0.
constexpr std::int32_t smallWorkBytes = 4096;
// Of other work. A buffer may start anywhere, and has room for as much more.
constexpr std::int32_t workAlignment = 32;

// The blocks behind a plan, each with the address of the next one at its start.
struct PlanBlocks {
    void *first;
};

// Radices of more than 13 have no code of their own. They are odd, and at most this; larger prime factors are
// transformed by a chirp.
constexpr std::int32_t mostRadix = 127;

// One pass of an autosorting transform (Stockham's; P. N. Swarztrauber, "FFT algorithms for vector computers", 1984).
// The `radix` inputs of a butterfly lie `span * groups` elements apart. Its results lie `span` apart, and those of
// group p are turned by p times the angle of their number: radix - 1 complex twiddles a group.
struct FourierPass {
    std::int32_t radix;
    std::size_t span, groups;
    const float *twiddles;
    const float *roots; // of unity: cosines and sines, for a radix without code of its own
};

// A complex transform of one length, in one of three ways: passes; rows and columns of a matrix, where the batch is too
// long for the cache; or a convolution with a chirp, where the length has a large prime factor (L. I. Bluestein, "A
// linear filtering approach to the computation of discrete Fourier transform", 1970).
struct FourierPlan {
    static constexpr std::int32_t mostPasses = 20;

    std::size_t length;
    // A transform needs room for so many elements in its batch and for so many elsewhere.
    std::size_t batchRoom, scratchRoom;
    bool precise; // each pass rounds its results alone: its arithmetic is that of doubles

    std::int32_t passCount;
    bool coded; // no pass has a radix without code
    FourierPass passes[mostPasses];

    // The matrix, row by row: a column is a transform with as many elements as there are rows.
    const FourierPlan *columns, *rows;
    const float *matrixTwiddles; // column by column

    const FourierPlan *convolution;
    const float *chirp, *chirpSpectrum;
};

// A complex transform of one sequence. Where eight divides the length, lane j holds every eighth element from j on, and
// a last pass goes across the lanes. Else one lane holds it all.
struct LinePlan {
    std::size_t length;
    bool precise;
    FourierPlan core;
    const float *laneTwiddles; // as elements of a batch; null for one lane
};

// A transform of one sequence, real or complex.
struct SequencePlan {
    std::int32_t id, length, workSize; // workSize is in bytes
    float forwardScale, inverseScale;  // 1 for none
    LinePlan line;                     // of the length itself, of half of it, or of a convolution
    const float *chirp, *chirpSpectrum;
    const float *halfTwiddles; // of a real transform by one of half the length; null for a real one of odd length
    PlanBlocks blocks;
};

struct OrvFftPlan : SequencePlan {};
struct OrvDftPlan : SequencePlan {};

constexpr std::size_t mostColumnBatches = 4;

// A transform of a real image. Rows run in pairs, as real and imaginary parts.
struct ImagePlan {
    std::int32_t id, width, height, workSize;
    float forwardScale, inverseScale; // of both directions
    FourierPlan row;
    const FourierPlan *column; // the row's where both are as long
    std::size_t columnBatches; // that run side by side
    OrvDftPlan line;           // of an image of one row or of one column, which uses nothing else
    PlanBlocks blocks;
};

struct OrvFft2DPlan : ImagePlan {};
struct OrvDft2DPlan : ImagePlan {};

enum PlanId : std::int32_t {
    RELEASED_PLAN = 0,
    COMPLEX_FFT_PLAN = 4,
    REAL_FFT_PLAN = 6,
    COMPLEX_DFT_PLAN = 13,
    REAL_DFT_PLAN = 15,
    FFT_2D_PLAN = 26,
    DFT_2D_PLAN = 28,
};

// What a plan scales by the length, and how.
enum PlanFlag : std::int32_t {
    SCALE_FORWARD = 1,
    SCALE_INVERSE = 2,
    SCALE_BOTH = 4, // by the root of the length
    SCALE_NEITHER = 8,
};

} // namespace orv
