// Convolution of integer samples by direct summation: with a window of coefficients, with a row or with a column of
// them.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "coefficients.h"
#if ORV_VECTOR_BYTES > 0
#include "pair_sums.h"
#endif

struct Rasters {
    ConstRaster source;
    Raster destination;
    std::int32_t width, height;
    std::size_t layout;
};

template <class Sum, class Value, class Sample, class Finish>
KrnStatus convolvePlainly(const Rasters &rasters, const Coefficients &coefficients, Finish finish)
{
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        sumPlainly<Sum, Value, Sample>(samples, in, out, coefficients, finish);
    };
    return overWindows<Sample, typename Finish::Out>(rasters.layout, rasters.source, rasters.destination, rasters.width,
                                                     rasters.height, coefficients.window, row);
}

#if ORV_VECTOR_BYTES > 0
// `plainly` sums up what vectors cannot: many coefficients, large ones, and rows shorter than a vector.
template <class Sum, class Sample, class Finish, class PlainFinish>
KrnStatus convolvePairs(const Rasters &rasters, const Coefficients &coefficients, const Finish &finish,
                        PlainFinish plainly)
{
    const std::int32_t columns = coefficients.window.columns;
    const Pairing pairing = rasters.layout != C1 || columns == 1 ? Pairing::Interleaved
                            : columns % 2 != 0                   ? Pairing::Shared
                                                                 : Pairing::Neighbours;
    const StepList<Sample> list(coefficients, pairing);
    if (!list.fits)
        return convolvePlainly<Sum, std::int16_t, Sample>(rasters, coefficients, plainly);
    const auto sum = pairing == Pairing::Interleaved ? sumRow<Pairing::Interleaved, Sample, Finish>
                     : pairing == Pairing::Shared    ? sumRow<Pairing::Shared, Sample, Finish>
                                                     : sumRow<Pairing::Neighbours, Sample, Finish>;
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        if (samples >= perVector<Sample>)
            sum(samples, in, out, list, finish);
        else
            sumPlainly<Sum, std::int16_t, Sample>(samples, in, out, coefficients, plainly);
    };
    return overWindows<Sample, typename Finish::Out>(rasters.layout, rasters.source, rasters.destination, rasters.width,
                                                     rasters.height, coefficients.window, row);
}
#endif

constexpr std::int64_t largestByte = 255, largestWord = 32768;

// Whether sums of bytes fit signed words.
bool fitWords(const Coefficients &coefficients)
{
    return coefficients.positive <= 32767 / largestByte && coefficients.negative >= -32767 / largestByte;
}

// Sums of bytes that fit words, with half of the divisor on top where they are not below zero.
template <class Word> KrnStatus convolveInWords(const Rasters &rasters, const Coefficients &coefficients, int shift)
{
#if ORV_SHUFFLES
    return convolvePairs<Word, std::uint8_t>(rasters, coefficients, FinishBytes<(static_cast<Word>(-1) > 0)>(shift),
                                             ToByte<Word>{shift});
#else
    return convolvePlainly<Word, std::int16_t, std::uint8_t>(rasters, coefficients, ToByte<Word>{shift});
#endif
}

// By powers of two: from bytes to bytes, and from words to either.
template <class Out>
KrnStatus convolveBy(std::uint8_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    if (fitWords(coefficients))
        return convolveInWords<std::int16_t>(rasters, coefficients, shift);
    const std::int64_t half = std::int64_t{1} << shift >> 1;
    if (shift > 0 && coefficients.negative == 0 && coefficients.positive <= (65535 - half) / largestByte)
        return convolveInWords<std::uint16_t>(rasters, coefficients, shift);
    return convolvePlainly<std::int32_t, std::int32_t, std::uint8_t>(rasters, coefficients,
                                                                     ToByte<std::int32_t>{shift});
}

template <class Out>
KrnStatus convolveBy(std::int16_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    const std::int64_t half = std::int64_t{1} << shift >> 1;
    if (coefficients.largest > 32767 ||
        coefficients.positive - coefficients.negative > (2147483647 - half - 1) / largestWord)
        return convolvePlainly<std::int64_t, std::int64_t, std::int16_t>(rasters, coefficients,
                                                                         FromWords<std::int64_t, Out>{shift});
    const FromWords<std::int32_t, Out> finish = {shift};
#if ORV_VECTOR_BYTES > 0
    return convolvePairs<std::int32_t, std::int16_t>(rasters, coefficients, FinishWords<Out>(shift), finish);
#else
    return convolvePlainly<std::int32_t, std::int16_t, std::int16_t>(rasters, coefficients, finish);
#endif
}

// Runs sum(coefficients) after the tests of the window.
template <class Sample, class Sum>
KrnStatus withCoefficients(const Rasters &rasters, const void *values, const Window &given, Sum sum)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Window window = flipped(given);
    const KrnStatus status = checkWindow(rasters.source, rasters.destination, rasters.width, rasters.height, window);
    if (status != KRN_OK)
        return status;
    return sum(coefficientsOf(values, window, rasters.source.step, samplesOf(rasters.layout) * sizeof(Sample)));
}

// Sums of bytes wrap at 32 bits, those of words at 64. Not inlined: the layouts share it.
template <class Sample, class Out = Sample>
[[gnu::noinline]] KrnStatus convolve(const Rasters &rasters, const void *values, const Window &given,
                                     std::int32_t divisor)
{
    return withCoefficients<Sample>(rasters, values, given, [&](const Coefficients &coefficients) -> KrnStatus {
        const std::uint32_t bits = static_cast<std::uint32_t>(divisor);
        if (bits == 0)
            return KRN_ZERO_DIVISOR;
        if ((bits & (bits - 1)) == 0)
            return convolveBy<Out>(Sample(), rasters, coefficients, __builtin_ctz(bits));
        using Sum = std::conditional_t<sizeof(Sample) == 1, std::int32_t, std::int64_t>;
        return convolvePlainly<Sum, Sum, Sample>(rasters, coefficients, Divided<Sample, Out>{divisor});
    });
}

KrnStatus sumBytes(const Rasters &rasters, const void *values, const Window &given)
{
    return withCoefficients<std::uint8_t>(rasters, values, given, [&](const Coefficients &coefficients) {
#if ORV_SHUFFLES
        if (fitWords(coefficients))
            return convolvePairs<std::int16_t, std::uint8_t>(rasters, coefficients, FinishSums(), AsItIs());
#endif
        return convolvePlainly<std::int16_t, std::int16_t, std::uint8_t>(rasters, coefficients, AsItIs());
    });
}

} // namespace

#define ORV_RASTERS(layout)                                                    \
    {                                                                          \
        from(source, sourceStep), to(destination, step), width, height, layout \
    }

#define ORV_CONVOLVE(layout, samples, Sample)                                                             \
    KRN_KERNEL(ConvolveKernel, krnConvolve##samples##layout)                                              \
    {                                                                                                     \
        return convolve<Sample>(ORV_RASTERS(layout), values, {columns, rows, anchorX, anchorY}, divisor); \
    }                                                                                                     \
    KRN_KERNEL(ConvolveLineKernel, krnConvolveRow##samples##layout)                                       \
    {                                                                                                     \
        return convolve<Sample>(ORV_RASTERS(layout), values, {size, 1, anchor, 0}, divisor);              \
    }                                                                                                     \
    KRN_KERNEL(ConvolveLineKernel, krnConvolveCol##samples##layout)                                       \
    {                                                                                                     \
        return convolve<Sample>(ORV_RASTERS(layout), values, {1, size, 0, anchor}, divisor);              \
    }

ORV_LAYOUTS(ORV_CONVOLVE, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_CONVOLVE, 16s, std::int16_t)

// A column and a row of few coefficients, without rounding in between.
KRN_KERNEL(SumLineKernel, krnConvolveCol8u16sC1)
{
    return sumBytes(ORV_RASTERS(C1), values, {1, size, 0, anchor});
}

#define ORV_CONVOLVE_ROW(layout, ...)                                                                            \
    KRN_KERNEL(ConvolveLineKernel, krnConvolveRow16s8u##layout)                                                  \
    {                                                                                                            \
        return convolve<std::int16_t, std::uint8_t>(ORV_RASTERS(layout), values, {size, 1, anchor, 0}, divisor); \
    }

ORV_LAYOUTS(ORV_CONVOLVE_ROW, )

#include "end.h"
