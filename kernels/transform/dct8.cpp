// Cosine transforms of blocks of 8 x 8 samples.
#include "../services/signatures.h"
#include "external.h"
#include "signatures.h"

#include "begin.h"

// Converts what the inverse transform of floats gives.
ConvertRoundKernel::Function krnConvert32f8uC1;

namespace {

#include "rows.h"
#include "vectors.h"

#include "control_word.h"

#include "dct8_fixed.h"

#include "dct8_rows.h"

#include "float_block.h"

#include "dct8_floats.h"

inline Raster row(Raster block, std::size_t index)
{
    return block.fromRow(static_cast<std::int64_t>(index));
}
inline ConstRaster row(ConstRaster block, std::size_t index)
{
    return block.fromRow(static_cast<std::int64_t>(index));
}

#if ORV_VECTOR_BYTES > 0

inline void forwardFixed(ConstRaster source, Raster destination)
{
    U8s pairs[4];
    loadColumns(source, pairs);
    S16s block[8];
    constexpr U8s zeros = {};
    for (std::size_t i = 0; i < 4; ++i) {
        block[2 * i] = as<std::int16_t>(interleaveLow<std::uint8_t>(pairs[i], zeros));
        block[2 * i + 1] = as<std::int16_t>(interleaveHigh<std::uint8_t>(pairs[i], zeros));
    }
    rowPass(block);
    transposeWords(block);
    forwardPass<ColumnShift>(block);
    for (std::size_t i = 0; i < 8; ++i)
        store(row(destination, i).data, 0, laneOf<0>(block[i]));
}

// Of all coefficients together; saturation leaves more than mostMagnitude.
inline std::int32_t magnitude(const S16s (&block)[8])
{
    S16s sums = {};
    for (const S16s words : block)
        sums = saturatingSum(sums, maximum(words, saturatingDifference(S16s{}, words)));
    const S32s pairs = pairSums(sums, everywhere<std::int16_t>(1));
    return pairs[0] + pairs[1] + pairs[2] + pairs[3];
}

#else

inline void forwardFixed(ConstRaster source, Raster destination)
{
    std::int32_t block[8][8], column[8];
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t k = 0; k < 8; ++k)
            block[i][k] = row(source, i).data[k];
        rowPass(block[i]);
    }
    for (std::size_t k = 0; k < 8; ++k) {
        for (std::size_t i = 0; i < 8; ++i)
            column[i] = static_cast<std::int16_t>(block[i][k]);
        forwardPass<ColumnShift>(column);
        for (std::size_t i = 0; i < 8; ++i)
            store(row(destination, i).data, k, static_cast<std::int16_t>(column[i]));
    }
}

inline std::int32_t magnitude(ConstRaster block)
{
    std::int32_t sum = 0;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::int32_t word = load<std::int16_t>(row(block, i / 8).data, i % 8);
        sum += word < 0 ? -word : word;
    }
    return sum;
}

#endif

template <class Integer> void inversePlain(ConstRaster source, Raster destination)
{
    Integer block[8][8], column[8];
    for (std::size_t k = 0; k < 8; ++k) {
        for (std::size_t i = 0; i < 8; ++i)
            column[i] = load<std::int16_t>(row(source, i).data, k);
        inversePass<InverseColumnShift>(column);
        for (std::size_t i = 0; i < 8; ++i)
            block[i][k] = column[i];
    }
    for (std::size_t i = 0; i < 8; ++i) {
        inversePass<InverseRowShift>(block[i]);
        for (std::size_t k = 0; k < 8; ++k) {
            const Integer sample = block[i][k] < 0 ? 0 : block[i][k];
            row(destination, i).data[k] = static_cast<std::uint8_t>(sample > 255 ? 255 : sample);
        }
    }
}

[[gnu::noinline]] void inverseLarge(ConstRaster source, Raster destination)
{
    inversePlain<std::int64_t>(source, destination);
}

inline void inverseFixed(ConstRaster source, Raster destination)
{
#if ORV_VECTOR_BYTES > 0
    S16s block[8];
    for (std::size_t i = 0; i < 8; ++i) {
        const unsigned char *const words = row(source, i).data;
        block[i] = loadLanes<std::int16_t>(words, words);
    }
    if (magnitude(block) > mostMagnitude)
        return inverseLarge(source, destination);
    inversePass<InverseColumnShift>(block);
    transposeWords(block);
    inversePass<InverseRowShift>(block);
    storeColumns(block, destination);
#else
    if (magnitude(source) > mostMagnitude)
        return inverseLarge(source, destination);
    inversePlain<std::int32_t>(source, destination);
#endif
}

// The columns of what is computed stand as rows. Dense floats are converted in whole vectors.
inline void storeTransposedBytes(FloatBlock &block, Raster destination)
{
    constexpr std::int32_t samples = 64, toNearestEven = 1;
    alignas(32) unsigned char floats[samples * sizeof(float)], bytes[samples];
    transpose(block);
    storeBlock(block, to(floats, 8 * sizeof(float)));
    krnConvert32f8uC1(floats, sizeof floats, bytes, samples, samples, 1, toNearestEven);
    for (std::size_t i = 0; i < 8; ++i)
        store(row(destination, i).data, 0, load<std::uint64_t>(bytes, i));
}

} // namespace

// The body works on two rasters, in and out.
#define ORV_BLOCK_KERNEL(name, ...)                                                  \
    KRN_KERNEL(BlockKernel, name)                                                    \
    {                                                                                \
        const ConstRaster in = from(source, sourceStep);                             \
        const Raster out = to(destination, step);                                    \
        if (const KrnStatus refusal = testRasters(8, 8, in, out); refusal != KRN_OK) \
            return refusal;                                                          \
        __VA_ARGS__                                                                  \
        return KRN_OK;                                                               \
    }

ORV_BLOCK_KERNEL(krnDct8x8Fwd8u16s, forwardFixed(in, out);)
ORV_BLOCK_KERNEL(krnDct8x8Inv16s8u, inverseFixed(in, out);)
ORV_BLOCK_KERNEL(krnDct8x8Fwd8u32f, const SinglePrecision floats; FloatBlock block; loadTransposed(in, block);
                 forwardFloats(block); storeBlock(block, out);)
ORV_BLOCK_KERNEL(krnDct8x8Inv32f8u, const SinglePrecision floats; FloatBlock block; loadBlock(in, block);
                 inverseFloats(block); storeTransposedBytes(block, out);)
ORV_BLOCK_KERNEL(krnDct8x8Fwd32f, const SinglePrecision floats; FloatBlock block; loadBlock(in, block);
                 transpose(block); forwardFloats(block); storeBlock(block, out);)
ORV_BLOCK_KERNEL(krnDct8x8Inv32f, const SinglePrecision floats; FloatBlock block; loadBlock(in, block);
                 inverseFloats(block); transpose(block); storeBlock(block, out);)

#include "end.h"
