// Transforms of batches of any length.
#include "external.h"
#include "plans.h"

#include "begin.h"

#include "batch.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "control_word.h"

#include "butterflies.h"

#include "passes.h"

template <class Sample>
float *passes(const FourierPlan &plan, std::int32_t first, std::int32_t last, float *data, float *scratch)
{
    for (std::int32_t i = first; i < last; ++i) {
        if (!runCodedPass<Sample>(plan.passes[i], Elements{data}, Elements{scratch}))
            runLongPass(plan.passes[i], Elements{data}, Elements{scratch});
        float *const other = data;
        data = scratch;
        scratch = other;
    }
    return data;
}

// Multiplies `count` elements by as many factors. The results may have their parts exchanged, so that a forward
// transform of them is an inverse one.
template <class Sample, bool exchangesIn, bool exchangesOut>
void multiply(std::size_t count, const float *factors, Elements in, Elements out)
{
    for (std::size_t i = 0; i < count; ++i) {
        ORV_PARTS
        for (std::size_t part = 0; part < partCount<Sample>; ++part) {
            const auto value = in.load<Sample>(i, part);
            const auto result = product(exchangesIn ? exchanged(value) : value, numberAt<Sample>(factors, i));
            out.store(i, part, exchangesOut ? exchanged(result) : result);
        }
    }
}

void copyElements(std::size_t count, Elements in, Elements out)
{
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t part = 0; part < partCount<float>; ++part)
            out.store(i, part, in.load<float>(i, part));
}

// Columns one by one, each turned by its own twiddles; then rows, whose results are columns.
template <class Sample> float *transformByMatrix(const FourierPlan &plan, float *data, float *scratch)
{
    const std::size_t rows = plan.columns->length, columns = plan.rows->length;
    float *const own = scratch + batchElement * plan.length;
    for (std::size_t column = 0; column < columns; ++column) {
        const Elements strided = {data + batchElement * column, columns};
        copyElements(rows, strided, Elements{own});
        const Elements result = {transformBatch(*plan.columns, own, own + batchElement * plan.columns->batchRoom)};
        multiply<Sample, false, false>(rows, plan.matrixTwiddles + 2 * rows * column, result, strided);
    }
    for (std::size_t row = 0; row < rows; ++row) {
        const Elements result = {transformBatch(*plan.rows, data + batchElement * columns * row, own)};
        copyElements(columns, result, Elements{scratch + batchElement * row, rows});
    }
    return scratch;
}

template <class Sample> float *transformByChirp(const FourierPlan &plan, float *data, float *scratch)
{
    const FourierPlan &convolution = *plan.convolution;
    multiply<Sample, false, false>(plan.length, plan.chirp, Elements{data}, Elements{data});
    for (std::size_t i = plan.length; i < convolution.length; ++i)
        for (std::size_t part = 0; part < partCount<float>; ++part)
            Elements{data}.store(i, part, Complex<float>{});
    float *const spectrum = transformBatch(convolution, data, scratch), *const other =
                                                                            spectrum == data ? scratch : data;
    multiply<Sample, false, true>(convolution.length, plan.chirpSpectrum, Elements{spectrum}, Elements{spectrum});
    float *const result = transformBatch(convolution, spectrum, other);
    multiply<Sample, true, false>(plan.length, plan.chirp, Elements{result}, Elements{result});
    return result;
}

template <class Sample> float *transform(const FourierPlan &plan, float *data, float *scratch)
{
    return plan.convolution != nullptr ? transformByChirp<Sample>(plan, data, scratch)
           : plan.columns != nullptr   ? transformByMatrix<Sample>(plan, data, scratch)
                                       : passes<Sample>(plan, 0, plan.passCount, data, scratch);
}

} // namespace

float *transformBatch(const FourierPlan &plan, float *data, float *scratch)
{
    if (!plan.precise) {
        const SinglePrecision floats;
        return transform<float>(plan, data, scratch);
    }
    const DoublePrecision doubles;
    return transform<double>(plan, data, scratch);
}

float *runPasses(const FourierPlan &plan, std::int32_t first, std::int32_t last, float *data, float *scratch)
{
    const SinglePrecision floats;
    return passes<float>(plan, first, last, data, scratch);
}

#include "end.h"
