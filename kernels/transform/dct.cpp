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

#include "butterflies.h"

#include "control_word.h"

#include "float_block.h"

#include "passes.h"

#include "cosine_batches.h"

#include "work.h"

// Turns the spectrum of a batch of numbers in folded order into cosine transforms. Numbers from both ends give results
// at both ends, which may have their place.
template <class In, class Out> inline void turnSpectrum(const CosineAxis &axis, In in, Out out)
{
    const std::size_t length = axis.core.length;
    for (std::size_t part = 0; part < partCount; ++part) {
        const Complex first = in.load(0, part);
        out.store(0, part, {first.re * axis.first, first.im * axis.first});
    }
    for (std::size_t k = 1; k <= length - k; ++k) {
        const Part c = allLanes(axis.turns[2 * k]), s = allLanes(axis.turns[2 * k + 1]);
        ORV_INDEPENDENT
        for (std::size_t part = 0; part < partCount; ++part) {
            const Complex a = in.load(k, part), b = in.load(length - k, part);
            const Complex p = {a.re + b.re, a.im + b.im}, q = {a.im - b.im, b.re - a.re};
            out.store(length - k, part, {s * p.re - c * q.re, s * p.im - c * q.im});
            out.store(k, part, {c * p.re + s * q.re, c * p.im + s * q.im});
        }
    }
}

// The reverse. What it gives has its parts exchanged, so that a forward transform is an inverse one.
template <class In, class Out> inline void turnCosines(const CosineAxis &axis, In in, Out out)
{
    const std::size_t length = axis.core.length;
    for (std::size_t part = 0; part < partCount; ++part) {
        const Complex first = in.load(0, part);
        out.store(0, part, {first.im * axis.first, first.re * axis.first});
    }
    for (std::size_t k = 1; k <= length - k; ++k) {
        const Part c = allLanes(axis.turns[2 * k]), s = allLanes(axis.turns[2 * k + 1]);
        ORV_INDEPENDENT
        for (std::size_t part = 0; part < partCount; ++part) {
            const Complex a = in.load(k, part), b = in.load(length - k, part);
            const Complex p = {c * a.re + s * b.re, c * a.im + s * b.im};
            const Complex q = {s * a.re - c * b.re, s * a.im - c * b.im};
            out.store(length - k, part, {p.im - q.re, p.re + q.im});
            out.store(k, part, {q.re + p.im, p.re - q.im});
        }
    }
}

// The batch and what the transform needs beside it.
struct Buffers {
    float *data, *scratch;
};

void forwardRows(const CosineAxis &axis, ConstRaster source, Raster destination, std::size_t count, Buffers work)
{
    const std::size_t length = axis.core.length;
    loadRows(source, count, length, FoldedOrder{length}, work.data);
    float *const spectrum = transformBatch(axis.core, work.data, work.scratch);
    turnSpectrum(axis, Elements{spectrum}, Elements{spectrum});
    storeRows(destination, count, length, NaturalOrder(), spectrum, 0);
}

void inverseRows(const CosineAxis &axis, ConstRaster source, Raster destination, std::size_t count, Buffers work)
{
    const std::size_t length = axis.core.length;
    loadRows(source, count, length, NaturalOrder(), work.data);
    turnCosines(axis, Elements{work.data}, Elements{work.data});
    float *const numbers = transformBatch(axis.core, work.data, work.scratch);
    storeRows(destination, count, length, FoldedOrder{length}, numbers, batchLanes);
}

void forwardColumns(const CosineAxis &axis, Raster image, std::size_t count, Buffers work)
{
    const std::size_t length = axis.core.length;
    const FoldedOrder order = {length};
    const Columns columns = {image};
    if (count < sequences)
        loadColumns(image, count, length, order, work.data);
    for (std::size_t i = 0; i < length && count == sequences; ++i)
        for (std::size_t part = 0; part < partCount; ++part)
            Elements{work.data}.store(order(i), part, columns.load(i, part));
    float *const spectrum = transformBatch(axis.core, work.data, work.scratch);
    if (count == sequences)
        return turnSpectrum(axis, Elements{spectrum}, columns);
    turnSpectrum(axis, Elements{spectrum}, Elements{spectrum});
    storeColumns(image, count, length, NaturalOrder(), spectrum, 0);
}

void inverseColumns(const CosineAxis &axis, Raster image, std::size_t count, Buffers work)
{
    const std::size_t length = axis.core.length;
    const FoldedOrder order = {length};
    const Columns columns = {image};
    if (count == sequences) {
        turnCosines(axis, columns, Elements{work.data});
    } else {
        loadColumns(image, count, length, NaturalOrder(), work.data);
        turnCosines(axis, Elements{work.data}, Elements{work.data});
    }
    float *const numbers = transformBatch(axis.core, work.data, work.scratch);
    if (count < sequences)
        return storeColumns(image, count, length, order, numbers, batchLanes);
    for (std::size_t i = 0; i < length; ++i)
        for (std::size_t part = 0; part < partCount; ++part)
            columns.store(i, part, exchanged(Elements{numbers}.load(order(i), part)));
}

inline Buffers buffersOf(const CosineAxis &axis, float *work)
{
    return {work, work + batchElement * axis.core.batchRoom};
}

template <bool inverse>
void transformImage(const OrvDct2DPlan &plan, ConstRaster source, Raster destination, float *work)
{
    const std::size_t width = static_cast<std::size_t>(plan.width), height = static_cast<std::size_t>(plan.height);
    const auto rows = inverse ? inverseRows : forwardRows;
    const auto columns = inverse ? inverseColumns : forwardColumns;
    for (std::size_t row = 0; row < height; row += sequences) {
        const std::int64_t first = static_cast<std::int64_t>(row);
        rows(plan.row, source.fromRow(first), destination.fromRow(first),
             height - row < sequences ? height - row : sequences, buffersOf(plan.row, work));
    }
    if (height == 1)
        return;
    for (std::size_t column = 0; column < width; column += sequences)
        columns(*plan.column, destination.fromByte(static_cast<std::int64_t>(sizeof(float) * column)),
                width - column < sequences ? width - column : sequences, buffersOf(*plan.column, work));
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
