// Cosine transforms of images of any size.
#include "external.h"
#include "memory.h"
#include "signatures.h"

#include "begin.h"

#include "batch.h"

BlockKernel::Function krnDct8x8Fwd32f;
BlockKernel::Function krnDct8x8Inv32f;

namespace {

#include "rows.h"
#include "vectors.h"

#include "control_word.h"

#include "butterflies.h"

#include "passes.h"

#include "image_rows.h"

#include "cosine_batches.h"

#include "work.h"

using Number = Complex<float>;

// Turns the spectrum of folded numbers into their cosine transforms. Numbers from both ends give results at both ends.
inline void turnSpectrum(const CosineAxis &axis, Elements batch)
{
    const std::size_t length = axis.core.length;
    for (std::size_t part = 0; part < partCount<float>; ++part)
        batch.store(0, part, scaled(allLanes(axis.first), batch.load<float>(0, part)));
    for (std::size_t k = 1; k <= length - k; ++k) {
        const Part<float> c = allLanes(axis.turns[2 * k]), s = allLanes(axis.turns[2 * k + 1]);
        ORV_INDEPENDENT
        for (std::size_t part = 0; part < partCount<float>; ++part) {
            const Number a = batch.load<float>(k, part), b = batch.load<float>(length - k, part);
            const Number p = sum(a, b), q = {a.im - b.im, b.re - a.re};
            batch.store(length - k, part, difference(scaled(s, p), scaled(c, q)));
            batch.store(k, part, sum(scaled(c, p), scaled(s, q)));
        }
    }
}

// The reverse. What it gives has its parts exchanged, so that a forward transform is an inverse one.
inline void turnCosines(const CosineAxis &axis, Elements batch)
{
    const std::size_t length = axis.core.length;
    for (std::size_t part = 0; part < partCount<float>; ++part)
        batch.store(0, part, exchanged(scaled(allLanes(axis.first), batch.load<float>(0, part))));
    for (std::size_t k = 1; k <= length - k; ++k) {
        const Part<float> c = allLanes(axis.turns[2 * k]), s = allLanes(axis.turns[2 * k + 1]);
        ORV_INDEPENDENT
        for (std::size_t part = 0; part < partCount<float>; ++part) {
            const Number a = batch.load<float>(k, part), b = batch.load<float>(length - k, part);
            const Number p = sum(scaled(c, a), scaled(s, b)), q = difference(scaled(s, a), scaled(c, b));
            batch.store(length - k, part, Number{p.im - q.re, p.re + q.im});
            batch.store(k, part, Number{p.im + q.re, p.re - q.im});
        }
    }
}

// The batch, what the transform needs beside it, and a row for those that a batch lacks.
struct Buffers {
    float *batch, *scratch, *spare;

    Buffers(const CosineAxis &axis, float *work)
        : batch(work), scratch(work + batchElement * axis.core.batchRoom),
          spare(scratch + batchElement * axis.core.scratchRoom)
    {
    }
};

// Sixteen rows, or fewer, in the order of their parts on one side of an inverse transform.
RowsOfBatch rowsOf(const unsigned char *data, std::int32_t step, std::size_t count, float *spare, std::size_t first)
{
    RowsOfBatch rows;
    Raster image = {const_cast<unsigned char *>(data), step};
    for (std::size_t i = 0; i < batchRows; ++i)
        rows.rows[i ^ first] =
            i < count ? image.fromRow(static_cast<std::int64_t>(i)).data : reinterpret_cast<unsigned char *>(spare);
    return rows;
}

template <bool inverse>
void transformRows(const CosineAxis &axis, ConstRaster source, Raster destination, std::size_t count, float *work)
{
    const std::size_t length = axis.core.length;
    const Buffers buffers(axis, work);
    for (std::size_t i = 0; i < length && count < batchRows; ++i)
        buffers.spare[i] = 0;
    const RowsOfBatch from = rowsOf(source.data, source.step, count, buffers.spare, 0);
    const RowsOfBatch to = rowsOf(destination.data, destination.step, count, buffers.spare, inverse ? batchLanes : 0);
    if (!inverse) {
        loadFolded(from, length, buffers.batch);
        float *const spectrum = transformBatch(axis.core, buffers.batch, buffers.scratch);
        turnSpectrum(axis, Elements{spectrum});
        return storeColumns(spectrum, to, 0, length, 1);
    }
    loadColumns(from, 0, length, buffers.batch);
    turnCosines(axis, Elements{buffers.batch});
    storeFolded(transformBatch(axis.core, buffers.batch, buffers.scratch), length, to);
}

template <bool inverse> void transformColumns(const CosineAxis &axis, const Columns &columns, float *work)
{
    const std::size_t length = axis.core.length;
    const Buffers buffers(axis, work);
    const auto place = [=](std::size_t row, bool folds) { return batchElement * (folds ? folded(row, length) : row); };
    for (std::size_t row = 0; row < length; ++row)
        columns.loadElement(row, buffers.batch + place(row, !inverse));
    if (inverse)
        turnCosines(axis, Elements{buffers.batch});
    float *const result = transformBatch(axis.core, buffers.batch, buffers.scratch);
    if (!inverse)
        turnSpectrum(axis, Elements{result});
    for (std::size_t row = 0; row < length; ++row)
        columns.storeElement(row, result + place(row, inverse), inverse ? batchLanes : 0);
}

template <bool inverse>
void transformImage(const OrvDct2DPlan &plan, ConstRaster source, Raster destination, float *work)
{
    const std::size_t width = static_cast<std::size_t>(plan.width), height = static_cast<std::size_t>(plan.height);
    const auto some = [](std::size_t left) { return left < sequences ? left : sequences; };
    for (std::size_t row = 0; row < height; row += sequences) {
        const std::int64_t first = static_cast<std::int64_t>(row);
        transformRows<inverse>(plan.row, source.fromRow(first), destination.fromRow(first), some(height - row), work);
    }
    for (std::size_t column = 0; column < width && height > 1; column += sequences)
        transformColumns<inverse>(
            *plan.column,
            {destination.fromByte(static_cast<std::int64_t>(sizeof(float) * column)), some(width - column)}, work);
}

// Tests the arguments in their order.
template <bool inverse>
KrnStatus transform(const OrvDct2DPlan *plan, ConstRaster source, Raster destination, void *given)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    if (plan->id != DCT_2D_PLAN)
        return KRN_WRONG_PLAN;
    if (const KrnStatus refusal = testRasters(plan->width, plan->height, source, destination); refusal != KRN_OK)
        return refusal;
    if (plan->width == 8 && plan->height == 8)
        return (inverse ? krnDct8x8Inv32f : krnDct8x8Fwd32f)(source.data, source.step, destination.data,
                                                             destination.step);
    const Work work(plan->workSize, given);
    if (work.start() == nullptr)
        return KRN_NO_MEMORY;
    const SinglePrecision floats;
    transformImage<inverse>(*plan, source, destination, work.start());
    return KRN_OK;
}

} // namespace

KRN_KERNEL(Dct2DKernel, krnDct2DFwd32fC1)
{
    return transform<false>(plan, from(source, sourceStep), to(destination, step), work);
}
KRN_KERNEL(Dct2DKernel, krnDct2DInv32fC1)
{
    return transform<true>(plan, from(source, sourceStep), to(destination, step), work);
}

#include "end.h"
