// Transforms of batches of any length.
#include "external.h"
#include "plans.h"

#include "begin.h"

#include "batch.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "butterflies.h"

#include "passes.h"

float *transformByPasses(const FourierPlan &plan, float *data, float *scratch)
{
    for (std::int32_t i = 0; i < plan.passCount; ++i) {
        runPass(plan.passes[i], Elements{data}, Elements{scratch});
        float *const other = data;
        data = scratch;
        scratch = other;
    }
    return data;
}

// Multiplies `count` elements by as many factors. The results may have their parts exchanged, so that a forward
// transform of them is an inverse one.
template <bool exchangesIn, bool exchangesOut>
void multiply(std::size_t count, const float *factors, Elements in, Elements out)
{
    for (std::size_t i = 0; i < count; ++i) {
        ORV_INDEPENDENT
        for (std::size_t part = 0; part < partCount; ++part) {
            const Complex value = in.load(i, part);
            const Complex result = product(exchangesIn ? Complex{value.im, value.re} : value, twiddleAt(factors, i));
            out.store(i, part, exchangesOut ? Complex{result.im, result.re} : result);
        }
    }
}

// Columns one by one, each turned by its own twiddles; then rows, whose results are columns.
float *transformByMatrix(const FourierPlan &plan, float *data, float *scratch)
{
    const std::size_t rows = plan.columns->length, columns = plan.rows->length;
    float *const own = scratch + batchElement * plan.length;
    for (std::size_t column = 0; column < columns; ++column) {
        const Elements strided = {data + batchElement * column, columns}, gathered = {own};
        for (std::size_t row = 0; row < rows; ++row)
            for (std::size_t part = 0; part < partCount; ++part)
                gathered.store(row, part, strided.load(row, part));
        const Elements result = {transformBatch(*plan.columns, own, own + batchElement * plan.columns->batchRoom)};
        multiply<false, false>(rows, plan.matrixTwiddles + 2 * rows * column, result, strided);
    }
    for (std::size_t row = 0; row < rows; ++row) {
        const Elements result = {transformBatch(*plan.rows, data + batchElement * columns * row, own)};
        const Elements strided = {scratch + batchElement * row, rows};
        for (std::size_t column = 0; column < columns; ++column)
            for (std::size_t part = 0; part < partCount; ++part)
                strided.store(column, part, result.load(column, part));
    }
    return scratch;
}

float *transformByChirp(const FourierPlan &plan, float *data, float *scratch)
{
    const FourierPlan &convolution = *plan.convolution;
    multiply<false, false>(plan.length, plan.chirp, Elements{data}, Elements{data});
    for (std::size_t i = plan.length; i < convolution.length; ++i)
        for (std::size_t part = 0; part < partCount; ++part)
            Elements{data}.store(i, part, Complex{});
    float *const spectrum = transformBatch(convolution, data, scratch), *const other =
                                                                            spectrum == data ? scratch : data;
    multiply<false, true>(convolution.length, plan.chirpSpectrum, Elements{spectrum}, Elements{spectrum});
    float *const result = transformBatch(convolution, spectrum, other);
    multiply<true, false>(plan.length, plan.chirp, Elements{result}, Elements{result});
    return result;
}

} // namespace

float *transformBatch(const FourierPlan &plan, float *data, float *scratch)
{
    return plan.convolution != nullptr ? transformByChirp(plan, data, scratch)
           : plan.columns != nullptr   ? transformByMatrix(plan, data, scratch)
                                       : transformByPasses(plan, data, scratch);
}

#include "end.h"
