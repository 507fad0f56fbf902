// Convolution of integer samples by direct summation: with a window of coefficients, with a row or with a column of
// them.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#if defined(__x86_64__) || defined(__i386__)
#include <smmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

#include "windows.h"

// The coefficients of a window, walked backwards while the window is walked forwards, and what they can sum up to.
struct Coefficients {
    const void *values;
    Window window;
    std::ptrdiff_t rowBytes, pixelBytes; // of the source
    std::int64_t positive, negative;     // sums of those of one sign
    std::int64_t largest;                // without its sign

    std::int32_t at(std::ptrdiff_t place) const
    {
        const std::ptrdiff_t count = std::ptrdiff_t{window.columns} * window.rows;
        return load<std::int32_t>(values, static_cast<std::size_t>(count - 1 - place));
    }
};

Coefficients coefficientsOf(const void *values, const Window &window, std::int32_t rowBytes, std::size_t pixelBytes)
{
    Coefficients coefficients = {values, window, rowBytes, static_cast<std::ptrdiff_t>(pixelBytes), 0, 0, 0};
    for (std::ptrdiff_t place = 0; place < std::ptrdiff_t{window.columns} * window.rows; ++place) {
        const std::int64_t value = coefficients.at(place), size = value < 0 ? -value : value;
        (value > 0 ? coefficients.positive : coefficients.negative) += value;
        coefficients.largest = size > coefficients.largest ? size : coefficients.largest;
    }
    return coefficients;
}

// Calls pair(offset, value, offset, value) for all coefficients that are not zero, two by two; the offsets are bytes
// from the first sample of the window. A last one that stands alone comes with a zero.
template <class Pair> inline void overPairs(const Coefficients &coefficients, Pair pair)
{
    std::ptrdiff_t waiting = -1, place = 0;
    std::int32_t waitingValue = 0;
    for (std::int32_t row = 0; row < coefficients.window.rows; ++row)
        for (std::int32_t column = 0; column < coefficients.window.columns; ++column) {
            const std::int32_t value = coefficients.at(place++);
            if (value == 0)
                continue;
            const std::ptrdiff_t offset = row * coefficients.rowBytes + column * coefficients.pixelBytes;
            if (waiting < 0) {
                waiting = offset;
                waitingValue = value;
            } else {
                pair(waiting, waitingValue, offset, value);
                waiting = -1;
            }
        }
    if (waiting >= 0)
        pair(waiting, waitingValue, waiting, 0);
}

// From a sum to a sample: divided by 2 to the power of `shift`, to nearest with ties to even, and kept to the range.
template <class Sum> struct ToByte {
    int shift;

    // A sum below zero gives zero, so all that is rounded is positive.
    std::uint8_t operator()(Sum sum) const
    {
        const std::uint32_t whole = sum > 0 ? static_cast<std::uint32_t>(sum) : 0;
        std::uint32_t rounded = whole;
        if (shift > 0)
            rounded = (whole + ((1u << shift >> 1) - 1) + (whole >> shift & 1)) >> shift;
        return static_cast<std::uint8_t>(rounded < 255 ? rounded : 255);
    }
};

template <class Sum, class Sample> struct FromWords {
    int shift;

    Sample operator()(Sum sum) const
    {
        constexpr Sum bottom = sizeof(Sample) == 1 ? 0 : -32768, top = sizeof(Sample) == 1 ? 255 : 32767;
        Sum rounded = sum;
        if (shift > 0) {
            const Sum half = Sum{1} << (shift - 1), quotient = sum >> shift;
            if constexpr (sizeof(Sum) == 4) // holds the sum with half of the divisor on top
                rounded = (sum + (half - 1) + (quotient & 1)) >> shift;
            else
                rounded = quotient + (((quotient & 1) + (sum & (2 * half - 1)) - 1 + half) >> shift);
        }
        return static_cast<Sample>(rounded < bottom ? bottom : rounded > top ? top : rounded);
    }
};

// Any other divisor, in extended precision.
template <class Sample, class Out> struct Divided {
    std::int32_t divisor;

    template <class Sum> Out operator()(Sum sum) const
    {
        constexpr std::int32_t bottom = sizeof(Out) == 1 ? 0 : -32768, top = sizeof(Out) == 1 ? 255 : 32767;
        const long double value = sizeof(Sample) == 1 ? static_cast<long double>(sum) * (1.0L / divisor)
                                                      : static_cast<long double>(sum) / divisor;
        if (value >= top)
            return static_cast<Out>(top);
        if (value <= bottom)
            return static_cast<Out>(bottom);
        const std::int32_t whole = static_cast<std::int32_t>(value);
        const long double rest = value - static_cast<long double>(whole);
        const bool odd = (whole & 1) != 0;
        return static_cast<Out>(whole + (rest > 0.5L || (rest == 0.5L && odd)) -
                                (rest < -0.5L || (rest == -0.5L && odd)));
    }
};

// Sums of a type that holds all that the coefficients can sum up to, or that wraps as it is wanted; coefficients of a
// type that holds them, or as much of them as matters to such a sum.
template <class Sum, class Value, class Sample, class Finish>
inline void sumPlainly(std::size_t samples, const unsigned char *in, unsigned char *out,
                       const Coefficients &coefficients, Finish finish)
{
    constexpr std::size_t most = 512 / sizeof(Sum);
    for (std::size_t i = 0; i < samples; i += most) {
        const std::size_t some = samples - i < most ? samples - i : most;
        const unsigned char *window = in + i * sizeof(Sample);
        Sum sums[most] = {};
        const auto add = [&](std::ptrdiff_t offset1, std::int32_t value1, std::ptrdiff_t offset2, std::int32_t value2) {
            const unsigned char *first = window + offset1, *second = window + offset2;
            const Value by1 = static_cast<Value>(value1), by2 = static_cast<Value>(value2);
            ORV_INDEPENDENT
            for (std::size_t j = 0; j < some; ++j)
                sums[j] = static_cast<Sum>(sums[j] + static_cast<Sum>(by1 * load<Sample>(first, j)) +
                                           static_cast<Sum>(by2 * load<Sample>(second, j)));
        };
        overPairs(coefficients, add);
        ORV_INDEPENDENT
        for (std::size_t j = 0; j < some; ++j)
            store(out, i + j, finish(sums[j]));
    }
}

#if ORV_SSE_LEVEL >= 2

// Two coefficients for neighbouring places of a vector.
struct CoefficientPair {
    std::ptrdiff_t first, second; // offsets from the first sample of the window
    __m128i values;
};

// Coefficients that sum up to so little that narrow sums do are mostly few; it is no matter which way others go.
struct PairList {
    static constexpr std::size_t most = 132;
    CoefficientPair pairs[most];
    std::size_t count;
};

inline void storeIntegers(unsigned char *out, std::size_t vector, __m128i integers)
{
    storeVector<std::uint8_t>(out, 16 * vector, asVector<std::uint8_t>(integers));
}

// Words, summed up in 32 bits that hold the sum with half of the divisor on top.
template <class Result> struct WordPairs {
    using Sample = std::int16_t;
    using Out = Result;
    __m128i shift, half, one;

    explicit WordPairs(int by)
        : shift(_mm_cvtsi32_si128(by)), half(_mm_set1_epi32(static_cast<std::int32_t>(1u << by >> 1) - (by > 0))),
          one(_mm_set1_epi32(by > 0))
    {
    }

    static bool fit(std::int32_t, std::int32_t) { return true; }
    static __m128i values(std::int32_t first, std::int32_t second)
    {
        return _mm_set1_epi32(static_cast<std::int32_t>(static_cast<std::uint32_t>(second) << 16 | (first & 0xFFFF)));
    }
    static __m128i lower(__m128i a, __m128i b) { return _mm_unpacklo_epi16(a, b); }
    static __m128i upper(__m128i a, __m128i b) { return _mm_unpackhi_epi16(a, b); }
    static __m128i add(__m128i sums, __m128i pairs, __m128i values)
    {
        return _mm_add_epi32(sums, _mm_madd_epi16(pairs, values));
    }
    __m128i rounded(__m128i sums) const
    {
        const __m128i odd = _mm_and_si128(_mm_sra_epi32(sums, shift), one);
        return _mm_sra_epi32(_mm_add_epi32(_mm_add_epi32(sums, half), odd), shift);
    }
    void finish(unsigned char *out, std::size_t vector, __m128i low, __m128i high) const
    {
        const __m128i words = _mm_packs_epi32(rounded(low), rounded(high));
        if constexpr (sizeof(Out) == 1)
            _mm_storel_epi64(reinterpret_cast<__m128i *>(out + 8 * vector), _mm_packus_epi16(words, words));
        else
            storeIntegers(out, vector, words);
    }
};

#if ORV_SSE_LEVEL >= 4

// Bytes, summed up in words that hold the sum.
struct BytePairs {
    using Sample = std::uint8_t;
    using Out = std::int16_t;

    // The sum of two products saturates.
    static bool fit(std::int32_t first, std::int32_t second)
    {
        return first <= 127 && second <= 127 && first + second <= 128;
    }
    static __m128i values(std::int32_t first, std::int32_t second)
    {
        return _mm_set1_epi16(static_cast<std::int16_t>(second * 256 + (first & 0xFF)));
    }
    static __m128i lower(__m128i a, __m128i b) { return _mm_unpacklo_epi8(a, b); }
    static __m128i upper(__m128i a, __m128i b) { return _mm_unpackhi_epi8(a, b); }
    static __m128i add(__m128i sums, __m128i pairs, __m128i values)
    {
        return _mm_add_epi16(sums, _mm_maddubs_epi16(pairs, values));
    }
    void finish(unsigned char *out, std::size_t vector, __m128i low, __m128i high) const
    {
        storeIntegers(out, 2 * vector, low);
        storeIntegers(out, 2 * vector + 1, high);
    }
};

// The same, and half of the divisor on top where the sum is not below zero.
template <bool positive> struct RoundedBytePairs : BytePairs {
    using Out = std::uint8_t;
    __m128i shift, half, one;

    explicit RoundedBytePairs(int by)
        : shift(_mm_cvtsi32_si128(by)), half(_mm_set1_epi16(static_cast<std::int16_t>((1u << by >> 1) - (by > 0)))),
          one(_mm_set1_epi16(by > 0))
    {
    }

    __m128i rounded(__m128i sums) const
    {
        if constexpr (!positive)
            sums = _mm_max_epi16(sums, _mm_setzero_si128());
        const __m128i odd = _mm_and_si128(_mm_srl_epi16(sums, shift), one);
        return _mm_srl_epi16(_mm_add_epi16(_mm_add_epi16(sums, half), odd), shift);
    }
    void finish(unsigned char *out, std::size_t vector, __m128i low, __m128i high) const
    {
        storeIntegers(out, vector, _mm_packus_epi16(rounded(low), rounded(high)));
    }
};

#endif

// False where the pairs are too many, or one of them is too much for a step.
template <class Pairs> inline bool listPairs(const Coefficients &coefficients, PairList &list)
{
    list.count = 0;
    bool fits = true;
    overPairs(coefficients, [&](std::ptrdiff_t first, std::int32_t value1, std::ptrdiff_t second, std::int32_t value2) {
        fits = fits && list.count < PairList::most && Pairs::fit(value1, value2);
        if (fits)
            list.pairs[list.count++] = {first, second, Pairs::values(value1, value2)};
    });
    return fits;
}

template <std::size_t vectors, class Pairs>
inline void sumBlock(const unsigned char *in, unsigned char *out, const PairList &list, const Pairs &pairs)
{
    __m128i low[vectors] = {}, high[vectors] = {};
    for (const CoefficientPair *pair = list.pairs; pair != list.pairs + list.count; ++pair)
        for (std::size_t i = 0; i < vectors; ++i) {
            const __m128i first = asIntegers(loadVector<std::uint8_t>(in + pair->first, 16 * i));
            const __m128i second = asIntegers(loadVector<std::uint8_t>(in + pair->second, 16 * i));
            low[i] = pairs.add(low[i], pairs.lower(first, second), pair->values);
            high[i] = pairs.add(high[i], pairs.upper(first, second), pair->values);
        }
    for (std::size_t i = 0; i < vectors; ++i)
        pairs.finish(out, i, low[i], high[i]);
}

// Not inlined: the layouts share it. False where the row is shorter than a vector.
template <class Pairs>
__attribute__((noinline)) bool sumPairs(std::size_t samples, const unsigned char *in, unsigned char *out,
                                        const PairList &list, const Pairs &pairs)
{
#if defined(__x86_64__)
    constexpr std::size_t most = 4; // vectors whose sums stay in registers
#else
    constexpr std::size_t most = 2;
#endif
    using Sample = typename Pairs::Sample;
    constexpr std::size_t one = 16 / sizeof(Sample);
    if (samples >= most * one)
        overBlocks<Sample, most * one, typename Pairs::Out>(
            samples, in, out,
            [&](const unsigned char *from, unsigned char *to) { sumBlock<most>(from, to, list, pairs); });
    else if (samples >= one)
        overBlocks<Sample, one, typename Pairs::Out>(
            samples, in, out,
            [&](const unsigned char *from, unsigned char *to) { sumBlock<1>(from, to, list, pairs); });
    return samples >= one;
}

#endif

struct Rasters {
    Given<const void *> source;
    Given<void *> destination;
    std::int32_t width, height;
};

template <class Finish, class Sum> using Finished = decltype(Finish()(Sum()));

template <class Sum, class Value, class Sample, std::size_t layout, class Finish>
KrnStatus convolvePlainly(const Rasters &rasters, const Coefficients &coefficients, Finish finish)
{
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        sumPlainly<Sum, Value, Sample>(samples, in, out, coefficients, finish);
    };
    return overWindows<Sample, layout, Finished<Finish, Sum>>(rasters.source, rasters.destination, rasters.width,
                                                              rasters.height, coefficients.window, row);
}

#if ORV_SSE_LEVEL >= 2
template <class Sum, class Pairs, std::size_t layout, class Finish>
KrnStatus convolvePairs(const Rasters &rasters, const Coefficients &coefficients, const Pairs &pairs, Finish finish)
{
    using Sample = typename Pairs::Sample;
    PairList list;
    if (!listPairs<Pairs>(coefficients, list))
        return convolvePlainly<Sum, std::int16_t, Sample, layout>(rasters, coefficients, finish);
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        if (!sumPairs(samples, in, out, list, pairs))
            sumPlainly<Sum, std::int16_t, Sample>(samples, in, out, coefficients, finish);
    };
    return overWindows<Sample, layout, typename Pairs::Out>(rasters.source, rasters.destination, rasters.width,
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
template <class Word, std::size_t layout>
KrnStatus convolveInWords(const Rasters &rasters, const Coefficients &coefficients, int shift)
{
#if ORV_SSE_LEVEL >= 4
    using Pairs = RoundedBytePairs<(static_cast<Word>(-1) > 0)>;
    return convolvePairs<Word, Pairs, layout>(rasters, coefficients, Pairs(shift), ToByte<Word>{shift});
#else
    return convolvePlainly<Word, std::int16_t, std::uint8_t, layout>(rasters, coefficients, ToByte<Word>{shift});
#endif
}

// By powers of two: from bytes to bytes, and from words to either.
template <class Out, std::size_t layout>
KrnStatus convolveBy(std::uint8_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    if (fitWords(coefficients))
        return convolveInWords<std::int16_t, layout>(rasters, coefficients, shift);
    const std::int64_t half = std::int64_t{1} << shift >> 1;
    if (shift > 0 && coefficients.negative == 0 && coefficients.positive <= (65535 - half) / largestByte)
        return convolveInWords<std::uint16_t, layout>(rasters, coefficients, shift);
    return convolvePlainly<std::int32_t, std::int32_t, std::uint8_t, layout>(rasters, coefficients,
                                                                             ToByte<std::int32_t>{shift});
}

template <class Out, std::size_t layout>
KrnStatus convolveBy(std::int16_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    const std::int64_t half = std::int64_t{1} << shift >> 1;
    if (coefficients.largest > 32767 ||
        coefficients.positive - coefficients.negative > (2147483647 - half - 1) / largestWord)
        return convolvePlainly<std::int64_t, std::int64_t, std::int16_t, layout>(rasters, coefficients,
                                                                                 FromWords<std::int64_t, Out>{shift});
    const FromWords<std::int32_t, Out> finish = {shift};
#if ORV_SSE_LEVEL >= 2
    return convolvePairs<std::int32_t, WordPairs<Out>, layout>(rasters, coefficients, WordPairs<Out>(shift), finish);
#else
    return convolvePlainly<std::int32_t, std::int16_t, std::int16_t, layout>(rasters, coefficients, finish);
#endif
}

// Runs sum(coefficients) after the tests of the window.
template <class Sample, std::size_t layout, class Sum>
KrnStatus withCoefficients(const Rasters &rasters, const void *values, const Window &given, Sum sum)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Window window = flipped(given);
    const KrnStatus status = checkWindow(rasters.source, rasters.destination, rasters.width, rasters.height, window);
    if (status != KRN_OK)
        return status;
    return sum(coefficientsOf(values, window, rasters.source.step, samplesOf(layout) * sizeof(Sample)));
}

// Sums of bytes wrap at 32 bits, those of words at 64.
template <class Sample, std::size_t layout, class Out = Sample>
KrnStatus convolve(const Rasters &rasters, const void *values, const Window &given, std::int32_t divisor)
{
    return withCoefficients<Sample, layout>(rasters, values, given, [=](const Coefficients &coefficients) -> KrnStatus {
        const std::uint32_t bits = static_cast<std::uint32_t>(divisor);
        if (bits == 0)
            return KRN_ZERO_DIVISOR;
        if ((bits & (bits - 1)) == 0)
            return convolveBy<Out, layout>(Sample(), rasters, coefficients, __builtin_ctz(bits));
        using Sum = std::conditional_t<sizeof(Sample) == 1, std::int32_t, std::int64_t>;
        return convolvePlainly<Sum, Sum, Sample, layout>(rasters, coefficients, Divided<Sample, Out>{divisor});
    });
}

struct AsItIs {
    std::int16_t operator()(std::int16_t sum) const { return sum; }
};

// The sums themselves, which wrap where they pass a word.
KrnStatus sumBytes(const Rasters &rasters, const void *values, const Window &given)
{
    return withCoefficients<std::uint8_t, C1>(rasters, values, given, [=](const Coefficients &coefficients) {
#if ORV_SSE_LEVEL >= 4
        if (fitWords(coefficients))
            return convolvePairs<std::int16_t, BytePairs, C1>(rasters, coefficients, BytePairs(), AsItIs());
#endif
        return convolvePlainly<std::int16_t, std::int16_t, std::uint8_t, C1>(rasters, coefficients, AsItIs());
    });
}

} // namespace

#define ORV_RASTERS                                                         \
    {                                                                       \
        {source, sourceStep}, {destination, destinationStep}, width, height \
    }

#define ORV_CONVOLVE_LINE(name, Sample, Out, layout, ...)                                                        \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep, \
                   std::int32_t width, std::int32_t height, const void *values, std::int32_t size,               \
                   std::int32_t anchor, std::int32_t divisor)                                                    \
    {                                                                                                            \
        return convolve<Sample, layout, Out>(ORV_RASTERS, values, __VA_ARGS__, divisor);                         \
    }

#define ORV_CONVOLVE(suffix, Sample, layout)                                                                         \
    KrnStatus krnConvolve##suffix(const void *source, std::int32_t sourceStep, void *destination,                    \
                                  std::int32_t destinationStep, std::int32_t width, std::int32_t height,             \
                                  const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX, \
                                  std::int32_t anchorY, std::int32_t divisor)                                        \
    {                                                                                                                \
        return convolve<Sample, layout>(ORV_RASTERS, values, {columns, rows, anchorX, anchorY}, divisor);            \
    }                                                                                                                \
    ORV_CONVOLVE_LINE(krnConvolveRow##suffix, Sample, Sample, layout, {size, 1, anchor, 0})                          \
    ORV_CONVOLVE_LINE(krnConvolveCol##suffix, Sample, Sample, layout, {1, size, 0, anchor})

ORV_CONVOLVE(8uC1, std::uint8_t, C1)
ORV_CONVOLVE(8uC3, std::uint8_t, C3)
ORV_CONVOLVE(8uC4, std::uint8_t, C4)
ORV_CONVOLVE(8uAC4, std::uint8_t, AC4)
ORV_CONVOLVE(16sC1, std::int16_t, C1)
ORV_CONVOLVE(16sC3, std::int16_t, C3)
ORV_CONVOLVE(16sC4, std::int16_t, C4)
ORV_CONVOLVE(16sAC4, std::int16_t, AC4)

// A column and a row of few coefficients, without rounding in between.
KrnStatus krnConvolveCol8u16sC1(const void *source, std::int32_t sourceStep, void *destination,
                                std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                const void *values, std::int32_t size, std::int32_t anchor)
{
    return sumBytes(ORV_RASTERS, values, {1, size, 0, anchor});
}
ORV_CONVOLVE_LINE(krnConvolveRow16s8uC1, std::int16_t, std::uint8_t, C1, {size, 1, anchor, 0})
ORV_CONVOLVE_LINE(krnConvolveRow16s8uC3, std::int16_t, std::uint8_t, C3, {size, 1, anchor, 0})
ORV_CONVOLVE_LINE(krnConvolveRow16s8uC4, std::int16_t, std::uint8_t, C4, {size, 1, anchor, 0})
ORV_CONVOLVE_LINE(krnConvolveRow16s8uAC4, std::int16_t, std::uint8_t, AC4, {size, 1, anchor, 0})

#include "end.h"
