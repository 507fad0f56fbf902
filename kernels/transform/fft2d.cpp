// Transforms of images of one channel.
#include "external.h"
#include "memory.h"
#include "signatures.h"

#include "begin.h"

#include "batch.h"

// Images of one row or of one column are sequences.
KRN_KERNEL(DftKernel, krnDftFwd32f);
KRN_KERNEL(DftKernel, krnDftInv32f);

namespace {

#include "rows.h"
#include "vectors.h"

#include "control_word.h"

#include "butterflies.h"

#include "passes.h"

#include "image_rows.h"

#include "image_columns.h"

#include "work.h"

// Where the two columns of number k stand between the passes, counted from the first one of their batch.
class PairPlaces {
public:
    explicit PairPlaces(std::size_t width) : whole_((width - 1) / 2 / batchLanes * batchLanes) {}

    std::size_t re(std::size_t k) const
    {
        const std::size_t lane = (k - 1) % batchLanes;
        return k > whole_ ? 2 * lane : lane;
    }
    std::size_t im(std::size_t k) const { return re(k) + (k > whole_ ? 1 : batchLanes); }

private:
    std::size_t whole_; // pairs that fill batches
};

// The spectra of both halves of a batch from that of the rows together, packed and twice as large: numbers from both
// ends of the row are conjugate to each other in the one, and opposite to that in the other.
void separateRows(const float *spectrum, std::size_t width, const RowsOfBatch &to, float scale)
{
    const ConstElements in = {spectrum};
    alignas(32) float columns[batchElement * (lineColumns + 1)];
    const Elements out = {columns};
    const auto twice = [&](std::size_t from, std::size_t place) {
        for (std::size_t part = 0; part < partCount<float>; ++part) {
            const Complex<float> value = in.load<float>(from, part);
            out.store(place, part, sum(value, value));
        }
    };
    twice(0, 0);
    std::size_t column = 0, place = 1;
    const PairPlaces places(width);
    for (std::size_t k = 1; k < width - k; ++k) {
        const std::size_t re = 1 + places.re(k), im = 1 + places.im(k);
        ORV_PARTS
        for (std::size_t part = 0; part < partCount<float>; ++part) {
            const Complex<float> a = in.load<float>(k, part), b = in.load<float>(width - k, part);
            out.store(re, part, sum(a, b));
            out.store(im, part, Complex<float>{a.im - b.im, b.re - a.re});
        }
        place += 2;
        if (place <= lineColumns)
            continue;
        storeColumns(columns, to, column, lineColumns, 0.5f * scale);
        for (std::size_t part = 0; part < partCount<float>; ++part)
            out.store(0, part, out.load<float>(lineColumns, part));
        column += lineColumns;
        place = 1;
    }
    if (width % 2 == 0)
        twice(width / 2, place++);
    storeColumns(columns, to, column, place, 0.5f * scale);
}

// The reverse of it, with real and imaginary parts exchanged: for an inverse transform.
void joinRows(const RowsOfBatch &from, std::size_t width, float *spectrum)
{
    const Elements out = {spectrum};
    alignas(32) float columns[batchElement * (lineColumns + 1)];
    const Elements in = {columns};
    const auto single = [&](std::size_t place, std::size_t to) {
        for (std::size_t part = 0; part < partCount<float>; ++part)
            out.store(to, part, exchanged(in.load<float>(place, part)));
    };
    loadColumns(from, 0, 1, columns);
    single(0, 0);
    const PairPlaces places(width);
    for (std::size_t k = 1; k < width - k;) {
        const std::size_t column = 2 * k - 1, left = width - column;
        const std::size_t some = left < lineColumns ? left : lineColumns;
        loadColumns(from, column, some, columns);
        for (std::size_t place = 0; place + 1 < some; place += 2, ++k) {
            const std::size_t re = places.re(k), im = places.im(k);
            ORV_PARTS
            for (std::size_t part = 0; part < partCount<float>; ++part) {
                const Complex<float> a = in.load<float>(re, part), b = in.load<float>(im, part);
                out.store(k, part, Complex<float>{b.re + a.im, a.re - b.im});
                out.store(width - k, part, Complex<float>{a.im - b.re, a.re + b.im});
            }
        }
    }
    if (width % 2 == 0) {
        loadColumns(from, width - 1, 1, columns);
        single(0, width / 2);
    }
}

// Sixteen rows from `y` on. The spare row stands for those beyond the last one.
RowsOfBatch rowsFrom(Raster image, std::size_t y, std::size_t height, float *spare)
{
    RowsOfBatch rows;
    for (std::size_t i = 0; i < batchRows; ++i)
        rows.rows[i] = y + i < height ? image.fromRow(static_cast<std::int64_t>(y + i)).data
                                      : reinterpret_cast<unsigned char *>(spare);
    return rows;
}

// The work of rows: a batch, its scratch and a row.
struct RowsWork {
    float *batch, *scratch, *spare;

    RowsWork(const FourierPlan &plan, float *work)
        : batch(work), scratch(work + batchElement * plan.batchRoom), spare(scratch + batchElement * plan.scratchRoom)
    {
    }
};

Raster readable(ConstRaster image)
{
    return {const_cast<unsigned char *>(image.data), image.step};
}

// A part of an image, of which the rest is zero.
struct SourcePart {
    ConstRaster raster;
    std::size_t width, height;
};

// The spectrum of rows, of which `some` columns are given and the rest is zero.
const float *transformRowsOf(const FourierPlan &plan, const RowsOfBatch &rows, std::size_t some,
                             const RowsWork &buffers)
{
    if (some == plan.length && plan.coded && plan.passCount > 1) {
        const FourierPass &pass = plan.passes[0];
        withRadix(pass.radix, [&](auto radix) { runRowsPass<decltype(radix)::value>(pass, rows, buffers.batch); });
        return runPasses(plan, 1, plan.passCount, buffers.batch, buffers.scratch);
    }
    loadColumns(rows, 0, some, buffers.batch);
    for (std::size_t i = batchElement * some; i < batchElement * plan.length; ++i)
        buffers.batch[i] = 0;
    return transformBatch(plan, buffers.batch, buffers.scratch);
}

void transformRows(const ImagePlan &plan, const SourcePart &source, Raster out, float *work)
{
    const std::size_t width = plan.row.length, height = static_cast<std::size_t>(plan.height);
    const RowsWork buffers(plan.row, work);
    for (std::size_t y = 0; y < source.height; y += batchRows) {
        if (y + batchRows > source.height)
            for (std::size_t x = 0; x < width; ++x)
                buffers.spare[x] = 0;
        const RowsOfBatch rows = rowsFrom(readable(source.raster), y, source.height, buffers.spare);
        separateRows(transformRowsOf(plan.row, rows, source.width, buffers), width,
                     rowsFrom(out, y, source.height, buffers.spare), plan.forwardScale);
    }
    for (std::size_t y = source.height; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            store<float>(out.fromRow(static_cast<std::int64_t>(y)).data, x, 0);
}

void transformPackedRows(const ImagePlan &plan, Raster image, float *work)
{
    const std::size_t width = plan.row.length, height = static_cast<std::size_t>(plan.height);
    const RowsWork buffers(plan.row, work);
    for (std::size_t y = 0; y < height; y += batchRows) {
        if (y + batchRows > height)
            for (std::size_t x = 0; x < width; ++x)
                buffers.spare[x] = 0;
        const RowsOfBatch rows = rowsFrom(image, y, height, buffers.spare);
        joinRows(rows, width, buffers.batch);
        const float *const result = transformBatch(plan.row, buffers.batch, buffers.scratch);
        RowsOfBatch exchangedRows;
        for (std::size_t i = 0; i < batchRows; ++i)
            exchangedRows.rows[i] = rows.rows[(i + batchLanes) % batchRows];
        storeColumns(result, exchangedRows, 0, width, plan.inverseScale);
    }
}

void forwardImage(const ImagePlan &plan, const SourcePart &source, Raster out, float *work)
{
    const SinglePrecision floats;
    transformRows(plan, source, out, work);
    transformColumns<false>(*plan.column, out, out, plan.row.length, plan.columnBatches, work);
}

// Columns first, into the destination.
void inverseImage(const ImagePlan &plan, const SourcePart &source, Raster out, float *work)
{
    const SinglePrecision floats;
    transformColumns<true>(*plan.column, source.raster, out, plan.row.length, plan.columnBatches, work);
    transformPackedRows(plan, out, work);
}

// An image of one row or of one column, gathered behind the work of its transform.
template <bool inverse>
KrnStatus transformSingle(const ImagePlan &plan, const SourcePart &source, Raster out, float *work)
{
    float *const gathered = work + static_cast<std::size_t>(plan.line.workSize) / sizeof(float);
    const bool isRow = plan.height == 1;
    const std::size_t length = static_cast<std::size_t>(plan.line.length);
    const std::size_t count = isRow ? source.width : source.height;
    for (std::size_t i = 0; i < length; ++i) {
        const std::int64_t y = isRow ? 0 : static_cast<std::int64_t>(i);
        gathered[i] = i < count ? load<float>(source.raster.fromRow(y).data, isRow ? i : 0) : 0;
    }
    const KrnStatus status = inverse ? krnDftInv32f(gathered, gathered, &plan.line, work)
                                     : krnDftFwd32f(gathered, gathered, &plan.line, work);
    for (std::size_t i = 0; i < length; ++i)
        store<float>(out.fromRow(isRow ? 0 : static_cast<std::int64_t>(i)).data, isRow ? i : 0, gathered[i]);
    return status;
}

template <bool inverse> KrnStatus run(const ImagePlan &plan, const SourcePart &source, Raster out, void *given)
{
    const Work work(plan.workSize, given);
    if (work.start() == nullptr)
        return KRN_NO_MEMORY;
    if (plan.width == 1 || plan.height == 1)
        return transformSingle<inverse>(plan, source, out, work.start());
    inverse ? inverseImage(plan, source, out, work.start()) : forwardImage(plan, source, out, work.start());
    return KRN_OK;
}

// The tests of the arguments, in their order. Null for the size of a part where the source is a whole image.
struct PartSize {
    std::int32_t width, height;
};
KrnStatus test(const ImagePlan *plan, std::int32_t id, ConstRaster source, ConstRaster destination,
               const PartSize *part)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    if (plan->id != id)
        return KRN_WRONG_PLAN;
    if (source.data == nullptr || destination.data == nullptr)
        return KRN_NULL_POINTER;
    if (part != nullptr &&
        (part->width < 1 || part->width > plan->width || part->height < 1 || part->height > plan->height))
        return KRN_BAD_SIZE;
    return source.step < 1 || destination.step < 1 ? KRN_BAD_STEP : KRN_OK;
}

template <bool inverse>
KrnStatus transformImage(const ImagePlan *plan, std::int32_t id, ConstRaster source, Raster destination,
                         const PartSize *part, void *work)
{
    if (const KrnStatus status = test(plan, id, source, destination, part); status != KRN_OK)
        return status;
    const PartSize size = part != nullptr ? *part : PartSize{plan->width, plan->height};
    return run<inverse>(*plan, {source, static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height)},
                        destination, work);
}

} // namespace

#define ORV_IMAGES(stem, id)                                                                                    \
    KRN_KERNEL(stem##Kernel, krn##stem##Fwd32fC1)                                                               \
    {                                                                                                           \
        return transformImage<false>(plan, id, from(source, sourceStep), to(destination, step), nullptr, work); \
    }                                                                                                           \
    KRN_KERNEL(stem##Kernel, krn##stem##Inv32fC1)                                                               \
    {                                                                                                           \
        return transformImage<true>(plan, id, from(source, sourceStep), to(destination, step), nullptr, work);  \
    }

ORV_IMAGES(Fft2D, FFT_2D_PLAN)
ORV_IMAGES(Dft2D, DFT_2D_PLAN)

KRN_KERNEL(Dft2DPartKernel, krnDft2DFwdPart32fC1)
{
    const PartSize part = {width, height};
    return transformImage<false>(plan, DFT_2D_PLAN, from(source, sourceStep), to(destination, step), &part, work);
}

#include "end.h"
