// Sums of the rows of boxes, for images that become smaller.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

// The weights of a box's rows, as the factors of one type of sums.
template <class Factor> struct Weights {
    Factor first, between, last;
};

// Runs term(row, factor) for the rows of a box in their order.
template <class Factor, class Term>
inline void overRowsOf(const RowsOfBox &box, const Weights<Factor> &weights, ConstRaster source, Term term)
{
    term(source.data, weights.first);
    if (box.rows == 1)
        return;
    for (std::int32_t row = 2; row < box.rows; ++row) {
        source.data += source.step;
        term(source.data, weights.between);
    }
    term(source.data + source.step, weights.last);
}

// Samples one by one, through memory. Rows are added up before their sums are added to those of earlier rows: that is
// the order of vectors.
template <class Sample, class Sum>
inline void sumSamples(ConstRaster source, const RowsOfBox &box, void *sums, std::size_t samples, bool starts)
{
    // Few enough to stay in the nearest cache while all rows are added.
    constexpr std::size_t most = 512;
    Sum added[most];
    const Weights<Sum> weights = {static_cast<Sum>(box.firstWeight), static_cast<Sum>(box.weight),
                                  static_cast<Sum>(box.lastWeight)};
    for (std::size_t first = 0; first < samples; first += most) {
        const std::size_t some = samples - first < most ? samples - first : most;
        for (std::size_t i = 0; i < some; ++i)
            added[i] = 0;
        overRowsOf(box, weights, source.fromByte(static_cast<std::int64_t>(first * sizeof(Sample))),
                   [&](const unsigned char *row, Sum factor) {
                       ORV_INDEPENDENT
                       for (std::size_t i = 0; i < some; ++i)
                           added[i] += static_cast<Sum>(load<Sample>(row, i)) * factor;
                   });
        for (std::size_t i = 0; i < some; ++i)
            store(sums, first + i, starts ? added[i] : load<Sum>(sums, first + i) + added[i]);
    }
}

#if ORV_VECTOR_BYTES > 0

// The sums of a vector of samples in registers.
template <class Sample, class Sum> struct Sums;

// Words hold the sums of bytes whose weights are 257 at most.
constexpr std::int32_t mostByteWeights = 257;

template <> struct Sums<std::uint8_t, float> {
    using Factor = std::uint16_t;
    using Result = Group<float, 4>;
    U16s low = {}, high = {};

    static bool hold(const RowsOfBox &box)
    {
        const std::int64_t further = box.rows == 1 ? 0 : (box.rows - std::int64_t{2}) * box.weight + box.lastWeight;
        return box.firstWeight + further <= mostByteWeights;
    }
    void add(const unsigned char *in, U16s factors)
    {
        const U8s samples = forQuadsInOrder(loadVector<std::uint8_t>(in));
        low += as<std::uint16_t>(interleaveLow<std::uint8_t>(samples, U8s{})) * factors;
        high += as<std::uint16_t>(interleaveHigh<std::uint8_t>(samples, U8s{})) * factors;
    }
    Result result() const
    {
        const U16s zeros = {};
        return {toFloats(as<std::int32_t>(interleaveLow<std::uint16_t>(low, zeros))),
                toFloats(as<std::int32_t>(interleaveHigh<std::uint16_t>(low, zeros))),
                toFloats(as<std::int32_t>(interleaveLow<std::uint16_t>(high, zeros))),
                toFloats(as<std::int32_t>(interleaveHigh<std::uint16_t>(high, zeros)))};
    }
};

template <> struct Sums<std::uint16_t, float> {
    using Factor = float;
    using Result = Group<float, 2>;
    Floats low = {}, high = {};

    static bool hold(const RowsOfBox &) { return true; }
    void add(const unsigned char *in, Floats factors)
    {
        const auto samples = widened<std::int32_t, std::uint16_t, Upper::Zeros>(loadVector<std::uint16_t>(in));
        low += toFloats(samples.vectors[0]) * factors;
        high += toFloats(samples.vectors[1]) * factors;
    }
    Result result() const { return {low, high}; }
};

template <> struct Sums<float, double> {
    using Factor = double;
    using Result = Group<double, 2>;
    Doubles low = {}, high = {};

    static bool hold(const RowsOfBox &) { return true; }
    void add(const unsigned char *in, Doubles factors)
    {
        low += loadDoubles(in, 0) * factors;
        high += loadDoubles(in, perVector<double>) * factors;
    }
    Result result() const { return {low, high}; }
};

// The last vector overlaps its neighbour. It is computed before anything is written, since sums are added to.
template <class Sample, class Sum>
void sumVectors(ConstRaster source, const RowsOfBox &box, void *sums, std::size_t samples, bool starts)
{
    using Result = typename Sums<Sample, Sum>::Result;
    using Factor = typename Sums<Sample, Sum>::Factor;
    const auto factors = [](std::int32_t weight) { return everywhere(static_cast<Factor>(weight)); };
    const Weights<Vector<Factor>> weights = {factors(box.firstWeight), factors(box.weight), factors(box.lastWeight)};
    const auto at = [&](std::size_t i) {
        Sums<Sample, Sum> added;
        overRowsOf(box, weights, source.fromByte(static_cast<std::int64_t>(i * sizeof(Sample))),
                   [&](const unsigned char *in, Vector<Factor> factor) { added.add(in, factor); });
        Result result = added.result();
        if (!starts)
            for (std::size_t k = 0; k < Result::count; ++k)
                result.vectors[k] = loadVector<Sum>(sums, i + k * perVector<Sum>) + result.vectors[k];
        return result;
    };
    const auto put = [&](std::size_t i, const Result &result) {
        for (std::size_t k = 0; k < Result::count; ++k)
            storeVector<Sum>(sums, i + k * perVector<Sum>, result.vectors[k]);
    };
    const std::size_t tail = samples - Result::samples;
    const Result last = at(tail);
    for (std::size_t i = 0; i < tail; i += Result::samples)
        put(i, at(i));
    put(tail, last);
}

#endif

template <class Sample, class Sum>
KrnStatus sumRows(const void *source, std::int32_t step, const RowsOfBox *box, void *sums, std::int32_t samples,
                  bool starts)
{
    if (source == nullptr || sums == nullptr || box == nullptr)
        return KRN_NULL_POINTER;
    if (samples < 1 || box->rows < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    const std::size_t count = static_cast<std::size_t>(samples);
#if ORV_VECTOR_BYTES > 0
    if constexpr (requires { Sums<Sample, Sum>::hold(*box); })
        if (Sums<Sample, Sum>::hold(*box) && count >= perVector<Sample>) {
            sumVectors<Sample, Sum>(from(source, step), *box, sums, count, starts);
            return KRN_OK;
        }
#endif
    sumSamples<Sample, Sum>(from(source, step), *box, sums, count, starts);
    return KRN_OK;
}

} // namespace

#define ORV_SUM_ROWS(name, Sample, Sum)                                             \
    KRN_KERNEL(SumRowsKernel, name)                                                 \
    {                                                                               \
        return sumRows<Sample, Sum>(source, step, box, sums, samples, starts != 0); \
    }

ORV_SUM_ROWS(krnSumRows8u32f, std::uint8_t, float)
ORV_SUM_ROWS(krnSumRows16u32f, std::uint16_t, float)
ORV_SUM_ROWS(krnSumRows8u64f, std::uint8_t, double)
ORV_SUM_ROWS(krnSumRows16u64f, std::uint16_t, double)
ORV_SUM_ROWS(krnSumRows32f64f, float, double)

#include "end.h"
