#include "plan_building.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "memory.h"
#include "roots.h"

namespace orv {
namespace {

constexpr std::int64_t longestInCache = 4096; // elements of a batch
constexpr std::uintptr_t cacheLine = 64;
constexpr std::int64_t floatBytes = sizeof(float), elementBytes = floatBytes * std::int64_t{batchElement};

void put(float *table, std::int64_t index, Complex64 value)
{
    table[2 * index] = static_cast<float>(value.re);
    table[2 * index + 1] = static_cast<float>(value.im);
}

// The radices of a length, in the order of the passes. What is left is 1, or has a prime factor that is too large.
std::int64_t factorize(std::int64_t length, std::int32_t *radices, std::int32_t &count)
{
    count = 0;
    std::int64_t left = length;
    std::int32_t twos = 0;
    for (; left % 2 == 0; left /= 2)
        ++twos;
    for (; twos > 4 || twos == 3; twos -= 3)
        radices[count++] = 8;
    for (; twos > 1; twos -= 2)
        radices[count++] = 4;
    for (std::int32_t radix = 3; radix <= mostRadix; radix += 2)
        for (; left % radix == 0; left /= radix)
            radices[count++] = radix;
    if (twos == 1)
        radices[count++] = 2;
    return left;
}

bool hasCode(std::int32_t radix)
{
    return radix < 9 || radix == 11 || radix == 13;
}

KrnStatus buildPasses(FourierPlan &plan, const std::int32_t *radices, const Roots &roots, PlanBlocks &blocks)
{
    const std::int64_t length = static_cast<std::int64_t>(plan.length);
    std::int64_t span = 1;
    plan.coded = true;
    for (std::int32_t i = 0; i < plan.passCount; ++i) {
        const std::int32_t radix = radices[i];
        const std::int64_t groups = length / span / radix;
        float *const twiddles = allocateBehind<float>(blocks, 2 * groups * (radix - 1));
        if (twiddles == nullptr)
            return KRN_NO_MEMORY;
        for (std::int64_t p = 0; p < groups; ++p)
            for (std::int64_t k = 1; k < radix; ++k)
                put(twiddles, p * (radix - 1) + k - 1, roots.power(span * p * k));
        float *own = nullptr;
        if (!hasCode(radix)) {
            plan.coded = false;
            own = allocateBehind<float>(blocks, 2 * std::int64_t{radix});
            if (own == nullptr)
                return KRN_NO_MEMORY;
            for (std::int64_t j = 0; j < radix; ++j) {
                const Complex64 root = roots.power(length / radix * j);
                put(own, j, {root.re, -root.im});
            }
        }
        plan.passes[i] = {radix, static_cast<std::size_t>(span), static_cast<std::size_t>(groups), twiddles, own};
        span *= radix;
    }
    plan.scratchRoom = plan.length;
    plan.batchRoom = plan.length + 8;
    return KRN_OK;
}

// The number of rows of a matrix that is nearly square; 1 where there is none.
std::int64_t rowsOfMatrix(std::int64_t length)
{
    std::int64_t rows = static_cast<std::int64_t>(std::sqrt(static_cast<double>(length)));
    while (length % rows != 0)
        --rows;
    return rows < 16 ? 1 : rows;
}

KrnStatus buildMatrix(FourierPlan &plan, std::int64_t rowCount, const Roots &roots, PlanBlocks &blocks)
{
    const std::int64_t length = static_cast<std::int64_t>(plan.length), columnCount = length / rowCount;
    FourierPlan *const parts = allocateBehind<FourierPlan>(blocks, 2);
    float *const twiddles = allocateBehind<float>(blocks, 2 * length);
    if (parts == nullptr || twiddles == nullptr)
        return KRN_NO_MEMORY;
    for (std::int64_t column = 0; column < columnCount; ++column)
        for (std::int64_t k = 0; k < rowCount; ++k)
            put(twiddles, column * rowCount + k, roots.power(column * k));
    if (const KrnStatus status = buildFourierPlan(parts[0], rowCount, plan.precise, blocks); status != KRN_OK)
        return status;
    if (const KrnStatus status = buildFourierPlan(parts[1], columnCount, plan.precise, blocks); status != KRN_OK)
        return status;
    plan.columns = &parts[0];
    plan.rows = &parts[1];
    plan.matrixTwiddles = twiddles;
    const std::size_t ofColumn = parts[0].batchRoom + parts[0].scratchRoom, ofRow = parts[1].scratchRoom;
    plan.batchRoom = plan.length;
    plan.scratchRoom = plan.length + (ofColumn > ofRow ? ofColumn : ofRow);
    return KRN_OK;
}

// For a convolution that holds the chirp on both sides of its start: the cheaper of 2^k and 3 * 2^k.
std::int64_t convolutionLength(std::int64_t length)
{
    std::int64_t padded = 1;
    while (padded < 2 * length - 1)
        padded *= 2;
    return padded / 4 * 3 >= 2 * length - 1 ? padded / 4 * 3 : padded;
}

// The chirp exp(-pi i n^2 / length), and the spectrum of its conjugate over the length of the convolution.
KrnStatus buildChirp(std::int64_t length, std::int64_t padded, const float *&chirp, const float *&spectrum,
                     PlanBlocks &blocks)
{
    float *const values = allocateBehind<float>(blocks, 2 * length);
    float *const transformed = allocateBehind<float>(blocks, 2 * padded);
    PlanBlocks temporary = {};
    Complex64 *const sequence = allocateBehind<Complex64>(temporary, padded);
    Complex64 *const buffer = allocateBehind<Complex64>(temporary, padded);
    Roots roots, paddedRoots;
    const bool made = values != nullptr && transformed != nullptr && sequence != nullptr && buffer != nullptr &&
                      roots.make(2 * length) && paddedRoots.make(padded);
    if (made) {
        for (std::int64_t n = 0; n < padded; ++n)
            sequence[n] = {0, 0};
        std::int64_t square = 0; // modulo twice the length
        for (std::int64_t n = 0; n < length; square = (square + 2 * n + 1) % (2 * length), ++n) {
            const Complex64 root = roots.power(square);
            put(values, n, root);
            sequence[n] = {root.re, -root.im};
            if (n > 0)
                sequence[padded - n] = sequence[n];
        }
        transformOnce(padded, paddedRoots, sequence, buffer);
        const double scale = 1 / static_cast<double>(padded);
        for (std::int64_t n = 0; n < padded; ++n)
            put(transformed, n, {sequence[n].re * scale, sequence[n].im * scale});
        chirp = values;
        spectrum = transformed;
    }
    releaseBlocks(temporary);
    return made ? KRN_OK : KRN_NO_MEMORY;
}

KrnStatus buildConvolution(FourierPlan &plan, PlanBlocks &blocks)
{
    const std::int64_t length = static_cast<std::int64_t>(plan.length), padded = convolutionLength(length);
    FourierPlan *const convolution = allocateBehind<FourierPlan>(blocks, 1);
    if (convolution == nullptr)
        return KRN_NO_MEMORY;
    if (const KrnStatus status = buildFourierPlan(*convolution, padded, plan.precise, blocks); status != KRN_OK)
        return status;
    plan.convolution = convolution;
    // Its two transforms go from either place to the other.
    const std::size_t batch = convolution->batchRoom, scratch = convolution->scratchRoom;
    plan.batchRoom = plan.scratchRoom = batch > scratch ? batch : scratch;
    return buildChirp(length, padded, plan.chirp, plan.chirpSpectrum, blocks);
}

// Where eight divides the length, the core has an eighth of it.
KrnStatus buildLine(LinePlan &line, std::int64_t length, bool precise, PlanBlocks &blocks)
{
    line.precise = precise;
    line.length = static_cast<std::size_t>(length);
    line.laneTwiddles = nullptr;
    constexpr std::int64_t lanes = batchLanes;
    if (length % lanes != 0)
        return buildFourierPlan(line.core, length, line.precise, blocks);
    const std::int64_t count = length / lanes;
    float *const twiddles = allocateBehind<float>(blocks, 2 * length);
    Roots roots;
    if (twiddles == nullptr || !roots.make(length))
        return KRN_NO_MEMORY;
    for (std::int64_t k = 0; k < count; ++k)
        for (std::int64_t lane = 0; lane < lanes; ++lane) {
            const Complex64 root = roots.power(lane * k);
            twiddles[2 * lanes * k + lane] = static_cast<float>(root.re);
            twiddles[2 * lanes * k + lanes + lane] = static_cast<float>(root.im);
        }
    line.laneTwiddles = twiddles;
    return buildFourierPlan(line.core, count, line.precise, blocks);
}

bool needsChirp(std::int64_t length)
{
    std::int32_t radices[64], count = 0;
    return factorize(length, radices, count) != 1;
}

// Two batches are the least that a transform needs: tells it before its tables are made.
bool passesAllWork(std::int64_t elements)
{
    return 2 * elementBytes * elements > INT32_MAX;
}

std::int64_t workBytes(const FourierPlan &plan)
{
    return elementBytes * static_cast<std::int64_t>(plan.batchRoom + plan.scratchRoom);
}

KrnStatus buildSequence(SequencePlan &plan, bool isReal)
{
    constexpr std::int64_t lanes = batchLanes;
    const bool byHalf = isReal && plan.length % 2 == 0;
    const std::int64_t length = byHalf ? plan.length / 2 : plan.length;
    const bool needsOne = needsChirp(length), byChirp = needsOne && length % lanes != 0;
    const std::int64_t lineLength = byChirp ? convolutionLength(length) : length;
    if (passesAllWork(lineLength % lanes == 0 ? lineLength / lanes : lineLength))
        return KRN_NO_MEMORY;
    if (byHalf) {
        float *const twiddles = allocateBehind<float>(plan.blocks, 2 * (length / 2 + 1));
        Roots roots;
        if (twiddles == nullptr || !roots.make(plan.length))
            return KRN_NO_MEMORY;
        for (std::int64_t k = 0; k <= length / 2; ++k)
            put(twiddles, k, roots.power(k));
        plan.halfTwiddles = twiddles;
    }
    if (byChirp)
        if (const KrnStatus status = buildChirp(length, lineLength, plan.chirp, plan.chirpSpectrum, plan.blocks);
            status != KRN_OK)
            return status;
    if (const KrnStatus status = buildLine(plan.line, lineLength, needsOne || length > longestInFloats, plan.blocks);
        status != KRN_OK)
        return status;
    const std::int64_t sequenceFloats = 2 * (byChirp ? lineLength : 0) + 2 * (isReal ? length : 0);
    return setWorkSize(plan.workSize, workBytes(plan.line.core) + floatBytes * sequenceFloats) ? KRN_OK : KRN_NO_MEMORY;
}

// Neighbouring batches share cache lines and pages of the image. Short columns need no such help: one batch after the
// other stays in the nearest cache.
std::size_t columnBatchesOf(std::int64_t height)
{
    return height > 700 ? mostColumnBatches : 1;
}

// The plan of rows and that of columns, which are one where both are as long.
KrnStatus buildAxes(ImagePlan &plan)
{
    if (passesAllWork(plan.width) || passesAllWork(plan.height))
        return KRN_NO_MEMORY;
    if (const KrnStatus status = buildFourierPlan(plan.row, plan.width, false, plan.blocks); status != KRN_OK)
        return status;
    plan.column = &plan.row;
    if (plan.height != plan.width) {
        FourierPlan *const column = allocateBehind<FourierPlan>(plan.blocks, 1);
        if (column == nullptr)
            return KRN_NO_MEMORY;
        plan.column = column;
        if (const KrnStatus status = buildFourierPlan(*column, plan.height, false, plan.blocks); status != KRN_OK)
            return status;
    }
    plan.columnBatches = columnBatchesOf(plan.height);
    const std::int64_t ofBatches =
        elementBytes * static_cast<std::int64_t>((plan.columnBatches + 1) * plan.column->batchRoom);
    const std::int64_t ofRow = workBytes(plan.row) + floatBytes * plan.width, ofColumn = workBytes(*plan.column);
    return setWorkSize(plan.workSize, std::max({ofRow, ofColumn, ofBatches})) ? KRN_OK : KRN_NO_MEMORY;
}

// A column is gathered behind the work of its transform.
KrnStatus buildLineOfImage(ImagePlan &plan)
{
    const std::int32_t length = plan.width > plan.height ? plan.width : plan.height;
    const KrnStatus status = buildSequencePlan(plan.line, length, true, plan.forwardScale, plan.inverseScale);
    if (status != KRN_OK)
        return status;
    plan.blocks = plan.line.blocks;
    plan.line.blocks = {};
    plan.line.id = REAL_DFT_PLAN;
    const std::int64_t gathered = floatBytes * length;
    return setWorkSize(plan.workSize, plan.line.workSize + workAlignment + gathered) ? KRN_OK : KRN_NO_MEMORY;
}

} // namespace

void *allocateBehind(PlanBlocks &blocks, std::int64_t count, std::size_t itemBytes)
{
    constexpr std::size_t overhead = sizeof(void *) + cacheLine;
    if (count < 0 || static_cast<std::uint64_t>(count) > (PTRDIFF_MAX - overhead) / itemBytes)
        return nullptr;
    void *const raw = memoryFunctions.allocateBlock(static_cast<std::size_t>(count) * itemBytes + overhead);
    if (raw == nullptr)
        return nullptr;
    *static_cast<void **>(raw) = blocks.first;
    blocks.first = raw;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(raw) + sizeof(void *);
    return reinterpret_cast<void *>((start + cacheLine - 1) & ~(cacheLine - 1));
}

void releaseBlocks(PlanBlocks &blocks)
{
    while (blocks.first != nullptr) {
        void *const block = blocks.first;
        blocks.first = *static_cast<void **>(block);
        memoryFunctions.releaseBlock(block);
    }
}

KrnStatus buildFourierPlan(FourierPlan &plan, std::int64_t length, bool precise, PlanBlocks &blocks)
{
    plan = {};
    plan.precise = precise;
    plan.length = static_cast<std::size_t>(length);
    std::int32_t radices[64];
    if (factorize(length, radices, plan.passCount) != 1) {
        plan.passCount = 0;
        return buildConvolution(plan, blocks);
    }
    Roots roots;
    if (!roots.make(length))
        return KRN_NO_MEMORY;
    const std::int64_t rowCount = length > longestInCache ? rowsOfMatrix(length) : 1;
    if (rowCount == 1)
        return buildPasses(plan, radices, roots, blocks);
    plan.passCount = 0;
    return buildMatrix(plan, rowCount, roots, blocks);
}

KrnStatus buildSequencePlan(SequencePlan &plan, std::int32_t length, bool isReal, float forwardScale,
                            float inverseScale)
{
    plan = {};
    plan.length = length;
    plan.forwardScale = forwardScale;
    plan.inverseScale = inverseScale;
    const KrnStatus status = buildSequence(plan, isReal);
    if (status != KRN_OK)
        releaseBlocks(plan.blocks);
    return status;
}

KrnStatus buildImagePlan(ImagePlan &plan, std::int32_t width, std::int32_t height, float forwardScale,
                         float inverseScale)
{
    plan = {};
    plan.width = width;
    plan.height = height;
    plan.forwardScale = forwardScale;
    plan.inverseScale = inverseScale;
    const KrnStatus status = width == 1 || height == 1 ? buildLineOfImage(plan) : buildAxes(plan);
    if (status != KRN_OK)
        releaseBlocks(plan.blocks);
    return status;
}

bool scalesOfFlag(std::int32_t flag, std::int64_t length, float &forwardScale, float &inverseScale)
{
    const double count = static_cast<double>(length);
    const float all = static_cast<float>(1 / count), root = static_cast<float>(1 / std::sqrt(count));
    forwardScale = flag == SCALE_FORWARD ? all : flag == SCALE_BOTH ? root : 1;
    inverseScale = flag == SCALE_INVERSE ? all : flag == SCALE_BOTH ? root : 1;
    return flag == SCALE_FORWARD || flag == SCALE_INVERSE || flag == SCALE_BOTH || flag == SCALE_NEITHER;
}

bool setWorkSize(std::int32_t &workSize, std::int64_t bytes)
{
    if (bytes > INT32_MAX - 64)
        return false;
    workSize = bytes <= smallWorkBytes ? 0 : static_cast<std::int32_t>(bytes);
    return true;
}

} // namespace orv
