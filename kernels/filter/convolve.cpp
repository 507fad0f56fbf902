// Convolution of integer samples by direct summation: with a window of coefficients, with a row or with a column of
// them.
#include <cstddef>
#include <cstdint>

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

    std::int32_t at(std::ptrdiff_t place) const
    {
        const std::ptrdiff_t count = std::ptrdiff_t{window.columns} * window.rows;
        return load<std::int32_t>(values, static_cast<std::size_t>(count - 1 - place));
    }
};

Coefficients coefficientsOf(const void *values, const Window &window, std::int32_t rowBytes, std::size_t pixelBytes)
{
    Coefficients coefficients = {values, window, rowBytes, static_cast<std::ptrdiff_t>(pixelBytes), 0, 0};
    for (std::ptrdiff_t place = 0; place < std::ptrdiff_t{window.columns} * window.rows; ++place) {
        const std::int32_t value = coefficients.at(place);
        (value > 0 ? coefficients.positive : coefficients.negative) += value;
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

template <class Sum> struct ToWord {
    int shift;

    std::int16_t operator()(Sum sum) const
    {
        Sum rounded = sum;
        if (shift > 0) {
            const Sum half = Sum{1} << (shift - 1), quotient = sum >> shift, rest = sum & (half - 1 + half);
            rounded = quotient + (((quotient & 1) + rest - 1 + half) >> shift);
        }
        return static_cast<std::int16_t>(rounded < -32768 ? -32768 : rounded > 32767 ? 32767 : rounded);
    }
};

// Any other divisor, in extended precision.
template <class Sample> struct Divided {
    std::int32_t divisor;

    template <class Sum> Sample operator()(Sum sum) const
    {
        constexpr std::int32_t bottom = sizeof(Sample) == 1 ? 0 : -32768, top = sizeof(Sample) == 1 ? 255 : 32767;
        const long double value = sizeof(Sample) == 1 ? static_cast<long double>(sum) * (1.0L / divisor)
                                                      : static_cast<long double>(sum) / divisor;
        if (value >= top)
            return static_cast<Sample>(top);
        if (value <= bottom)
            return static_cast<Sample>(bottom);
        const std::int32_t whole = static_cast<std::int32_t>(value);
        const long double rest = value - static_cast<long double>(whole);
        const bool odd = (whole & 1) != 0;
        return static_cast<Sample>(whole + (rest > 0.5L || (rest == 0.5L && odd)) -
                                   (rest < -0.5L || (rest == -0.5L && odd)));
    }
};

// Sums of a type that holds all that the coefficients can sum up to, or that wraps as it is wanted.
template <class Sum, class Sample, class Finish>
inline void sumRow(std::size_t samples, const unsigned char *in, unsigned char *out, const Coefficients &coefficients,
                   Finish finish)
{
    constexpr std::size_t most = 512 / sizeof(Sum);
    for (std::size_t i = 0; i < samples; i += most) {
        const std::size_t some = samples - i < most ? samples - i : most;
        const unsigned char *window = in + i * sizeof(Sample);
        Sum sums[most] = {};
        overPairs(coefficients,
                  [&](std::ptrdiff_t offset1, std::int32_t value1, std::ptrdiff_t offset2, std::int32_t value2) {
                      const unsigned char *first = window + offset1, *second = window + offset2;
                      const Sum by1 = static_cast<Sum>(value1), by2 = static_cast<Sum>(value2);
                      ORV_INDEPENDENT
                      for (std::size_t j = 0; j < some; ++j)
                          sums[j] = static_cast<Sum>(sums[j] + static_cast<Sum>(by1 * load<Sample>(first, j)) +
                                                     static_cast<Sum>(by2 * load<Sample>(second, j)));
                  });
        ORV_INDEPENDENT
        for (std::size_t j = 0; j < some; ++j)
            store(out, i + j, finish(sums[j]));
    }
}

// Whether sums of bytes fit words, and may be rounded as such.
enum class Words { No, Signed, Unsigned };

Words fitWords(const Coefficients &coefficients, int shift)
{
    const std::int64_t top = 255 * coefficients.positive, bottom = 255 * coefficients.negative;
    if (top <= 32767 && bottom >= -32768)
        return Words::Signed;
    const std::int64_t half = std::int64_t{1} << shift >> 1;
    return shift > 0 && bottom == 0 && top + half <= 65535 ? Words::Unsigned : Words::No;
}

#if ORV_SSE_LEVEL >= 2

// Two coefficients for neighbouring places of a vector.
struct CoefficientPair {
    std::ptrdiff_t first, second; // offsets from the first sample of the window
    __m128i values;
};

template <std::size_t most> struct PairList {
    CoefficientPair pairs[most];
    std::size_t count;
};

// Coefficients that sum up to so little that words hold the sums are few. False where two of them are too much for one
// step of the processor all the same.
constexpr std::size_t mostPairs = 132;

template <class Value> inline bool listPairs(const Coefficients &coefficients, PairList<mostPairs> &list)
{
    list.count = 0;
    bool fits = true;
    overPairs(coefficients, [&](std::ptrdiff_t offset1, std::int32_t value1, std::ptrdiff_t offset2,
                                std::int32_t value2) {
        const std::int32_t size1 = value1 < 0 ? -value1 : value1, size2 = value2 < 0 ? -value2 : value2;
        fits = fits && list.count < mostPairs && static_cast<Value>(value1) == value1 &&
               static_cast<Value>(value2) == value2 && (sizeof(Value) == 2 || size1 + size2 <= 128);
        if (!fits)
            return;
        CoefficientPair &pair = list.pairs[list.count++];
        pair.first = offset1;
        pair.second = offset2;
        constexpr int bits = 8 * sizeof(Value);
        const std::int32_t both = static_cast<std::int32_t>(static_cast<std::uint32_t>(value2) << bits |
                                                            (static_cast<std::uint32_t>(value1) & ((1u << bits) - 1)));
        pair.values = sizeof(Value) == 1 ? _mm_set1_epi16(static_cast<std::int16_t>(both)) : _mm_set1_epi32(both);
    });
    return fits;
}

inline __m128i loadIntegers(const unsigned char *at)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}

inline void storeIntegers(unsigned char *at, __m128i integers)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(at), integers);
}

// Words of a sum that fits 32 bits with half of the divisor on top.
struct WordsOfSums {
    __m128i shift, half, one;

    explicit WordsOfSums(int by)
        : shift(_mm_cvtsi32_si128(by)), half(_mm_set1_epi32((1 << by >> 1) - (by > 0))), one(_mm_set1_epi32(by > 0))
    {
    }

    __m128i rounded(__m128i sums) const
    {
        const __m128i odd = _mm_and_si128(_mm_sra_epi32(sums, shift), one);
        return _mm_sra_epi32(_mm_add_epi32(_mm_add_epi32(sums, half), odd), shift);
    }
};

inline void sumWords(const unsigned char *in, unsigned char *out, const PairList<mostPairs> &list,
                     const WordsOfSums &finish)
{
    __m128i sums[4] = {};
    for (std::size_t i = 0; i < list.count; ++i) {
        const CoefficientPair &pair = list.pairs[i];
        for (std::size_t half = 0; half < 2; ++half) {
            const __m128i first = loadIntegers(in + pair.first + 16 * half);
            const __m128i second = loadIntegers(in + pair.second + 16 * half);
            sums[2 * half] =
                _mm_add_epi32(sums[2 * half], _mm_madd_epi16(_mm_unpacklo_epi16(first, second), pair.values));
            sums[2 * half + 1] =
                _mm_add_epi32(sums[2 * half + 1], _mm_madd_epi16(_mm_unpackhi_epi16(first, second), pair.values));
        }
    }
    for (std::size_t half = 0; half < 2; ++half)
        storeIntegers(out + 16 * half,
                      _mm_packs_epi32(finish.rounded(sums[2 * half]), finish.rounded(sums[2 * half + 1])));
}

#endif

#if ORV_SSE_LEVEL >= 4

// Bytes of a sum that fits a word.
template <bool positive> struct BytesOfSums {
    __m128i shift, half, one;

    explicit BytesOfSums(int by)
        : shift(_mm_cvtsi32_si128(by)), half(_mm_set1_epi16(static_cast<std::int16_t>((1 << by >> 1) - (by > 0)))),
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
};

template <class Finish>
inline void sumBytes(const unsigned char *in, unsigned char *out, const PairList<mostPairs> &list, const Finish &finish)
{
    __m128i sums[4] = {};
    for (std::size_t i = 0; i < list.count; ++i) {
        const CoefficientPair &pair = list.pairs[i];
        for (std::size_t half = 0; half < 2; ++half) {
            const __m128i first = loadIntegers(in + pair.first + 16 * half);
            const __m128i second = loadIntegers(in + pair.second + 16 * half);
            sums[2 * half] =
                _mm_add_epi16(sums[2 * half], _mm_maddubs_epi16(_mm_unpacklo_epi8(first, second), pair.values));
            sums[2 * half + 1] =
                _mm_add_epi16(sums[2 * half + 1], _mm_maddubs_epi16(_mm_unpackhi_epi8(first, second), pair.values));
        }
    }
    for (std::size_t half = 0; half < 2; ++half)
        storeIntegers(out + 16 * half,
                      _mm_packus_epi16(finish.rounded(sums[2 * half]), finish.rounded(sums[2 * half + 1])));
}

#endif

struct Rasters {
    Given<const void *> source;
    Given<void *> destination;
    std::int32_t width, height;
};

template <class Sample, std::size_t layout, class Row>
inline KrnStatus overWindows(const Rasters &rasters, const Coefficients &coefficients, Row row)
{
    return overWindows<Sample, layout>(rasters.source, rasters.destination, rasters.width, rasters.height,
                                       coefficients.window, row);
}

template <class Sum, class Sample, std::size_t layout, class Finish>
KrnStatus sumPlainly(const Rasters &rasters, const Coefficients &coefficients, Finish finish)
{
    return overWindows<Sample, layout>(rasters, coefficients,
                                       [=](std::size_t samples, const unsigned char *in, unsigned char *out) {
                                           sumRow<Sum, Sample>(samples, in, out, coefficients, finish);
                                       });
}

// Rows of fewer samples than a block go the plain way.
template <class Sum, class Sample, std::size_t layout, std::size_t most, class Block, class Finish>
KrnStatus sumBlocks(const Rasters &rasters, const Coefficients &coefficients, Block block, Finish finish)
{
    return overWindows<Sample, layout>(rasters, coefficients,
                                       [=](std::size_t samples, const unsigned char *in, unsigned char *out) {
                                           if (samples >= most)
                                               overBlocks<Sample, most>(samples, in, out, block);
                                           else
                                               sumRow<Sum, Sample>(samples, in, out, coefficients, finish);
                                       });
}

template <std::size_t layout>
KrnStatus convolveRasters(std::uint8_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    const Words words = fitWords(coefficients, shift);
#if ORV_SSE_LEVEL >= 4
    PairList<mostPairs> list;
    if (words != Words::No && listPairs<std::int8_t>(coefficients, list)) {
        const auto run = [&](auto finish, auto plainly) {
            const auto block = [&list, finish](const unsigned char *in, unsigned char *out) {
                sumBytes(in, out, list, finish);
            };
            using Sum = decltype(plainly);
            return sumBlocks<Sum, std::uint8_t, layout, 32>(rasters, coefficients, block, ToByte<Sum>{shift});
        };
        return words == Words::Signed ? run(BytesOfSums<false>(shift), std::int16_t())
                                      : run(BytesOfSums<true>(shift), std::uint16_t());
    }
#endif
    switch (words) {
    case Words::Signed:
        return sumPlainly<std::int16_t, std::uint8_t, layout>(rasters, coefficients, ToByte<std::int16_t>{shift});
    case Words::Unsigned:
        return sumPlainly<std::uint16_t, std::uint8_t, layout>(rasters, coefficients, ToByte<std::uint16_t>{shift});
    default:
        return sumPlainly<std::int32_t, std::uint8_t, layout>(rasters, coefficients, ToByte<std::int32_t>{shift});
    }
}

template <std::size_t layout>
KrnStatus convolveRasters(std::int16_t, const Rasters &rasters, const Coefficients &coefficients, int shift)
{
    const std::int64_t most = 32768 * (coefficients.positive - coefficients.negative);
    if (most + (std::int64_t{1} << shift) > 2147483647)
        return sumPlainly<std::int64_t, std::int16_t, layout>(rasters, coefficients, ToWord<std::int64_t>{shift});
#if ORV_SSE_LEVEL >= 2
    PairList<mostPairs> list;
    if (listPairs<std::int16_t>(coefficients, list)) {
        const WordsOfSums finish(shift);
        const auto block = [&list, finish](const unsigned char *in, unsigned char *out) {
            sumWords(in, out, list, finish);
        };
        return sumBlocks<std::int32_t, std::int16_t, layout, 16>(rasters, coefficients, block,
                                                                 ToWord<std::int32_t>{shift});
    }
#endif
    return sumPlainly<std::int32_t, std::int16_t, layout>(rasters, coefficients, ToWord<std::int32_t>{shift});
}

// Sums of bytes wrap at 32 bits, those of words at 64.
template <class Sample, std::size_t layout>
KrnStatus convolve(const Rasters &rasters, const void *values, const Window &given, std::int32_t divisor)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Window window = flipped(given);
    const KrnStatus status = checkWindow(rasters.source, rasters.destination, rasters.width, rasters.height, window);
    if (status != KRN_OK)
        return status;
    const std::uint32_t bits = static_cast<std::uint32_t>(divisor);
    if (bits == 0)
        return KRN_ZERO_DIVISOR;
    const Coefficients coefficients =
        coefficientsOf(values, window, rasters.source.step, samplesOf(layout) * sizeof(Sample));
    if ((bits & (bits - 1)) == 0)
        return convolveRasters<layout>(Sample(), rasters, coefficients, __builtin_ctz(bits));
    if constexpr (sizeof(Sample) == 1)
        return sumPlainly<std::int32_t, Sample, layout>(rasters, coefficients, Divided<Sample>{divisor});
    else
        return sumPlainly<std::int64_t, Sample, layout>(rasters, coefficients, Divided<Sample>{divisor});
}

} // namespace

#define ORV_RASTERS                                                         \
    {                                                                       \
        {source, sourceStep}, {destination, destinationStep}, width, height \
    }

#define ORV_CONVOLVE(suffix, Sample, layout)                                                                           \
    KrnStatus krnConvolve##suffix(const void *source, std::int32_t sourceStep, void *destination,                      \
                                  std::int32_t destinationStep, std::int32_t width, std::int32_t height,               \
                                  const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX,   \
                                  std::int32_t anchorY, std::int32_t divisor)                                          \
    {                                                                                                                  \
        return convolve<Sample, layout>(ORV_RASTERS, values, {columns, rows, anchorX, anchorY}, divisor);              \
    }                                                                                                                  \
    KrnStatus krnConvolveRow##suffix(const void *source, std::int32_t sourceStep, void *destination,                   \
                                     std::int32_t destinationStep, std::int32_t width, std::int32_t height,            \
                                     const void *values, std::int32_t size, std::int32_t anchor, std::int32_t divisor) \
    {                                                                                                                  \
        return convolve<Sample, layout>(ORV_RASTERS, values, {size, 1, anchor, 0}, divisor);                           \
    }                                                                                                                  \
    KrnStatus krnConvolveCol##suffix(const void *source, std::int32_t sourceStep, void *destination,                   \
                                     std::int32_t destinationStep, std::int32_t width, std::int32_t height,            \
                                     const void *values, std::int32_t size, std::int32_t anchor, std::int32_t divisor) \
    {                                                                                                                  \
        return convolve<Sample, layout>(ORV_RASTERS, values, {1, size, 0, anchor}, divisor);                           \
    }

ORV_CONVOLVE(8uC1, std::uint8_t, C1)
ORV_CONVOLVE(8uC3, std::uint8_t, C3)
ORV_CONVOLVE(8uC4, std::uint8_t, C4)
ORV_CONVOLVE(8uAC4, std::uint8_t, AC4)
ORV_CONVOLVE(16sC1, std::int16_t, C1)
ORV_CONVOLVE(16sC3, std::int16_t, C3)
ORV_CONVOLVE(16sC4, std::int16_t, C4)
ORV_CONVOLVE(16sAC4, std::int16_t, AC4)

#include "end.h"
