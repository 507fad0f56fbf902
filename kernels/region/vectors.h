// The vector layer: vectors of a sample type, as wide as the build's, and all that kernels do with them. Besides these
// functions, vectors take the operators of their samples (+, -, *, &, |, ^, ~, shifts by a constant, comparisons, ?:).
// To be included inside the unnamed namespace of a region.
//
// Operations work within lanes of 16 bytes, so that a kernel reads the same for all widths. The few that cross lanes
// are in shuffles.h, which comes with these.

#if ORV_VECTOR_BYTES > 0

template <class Sample> struct VectorOf {
    typedef Sample Type __attribute__((vector_size(ORV_VECTOR_BYTES)));
};
template <class Sample> using Vector = typename VectorOf<Sample>::Type;
template <class Sample> constexpr std::size_t perVector = ORV_VECTOR_BYTES / sizeof(Sample);

// Vectors one after the other in a row.
template <class Sample, std::size_t vectorCount> struct Group {
    static constexpr std::size_t count = vectorCount, samples = count * perVector<Sample>;

    Vector<Sample> vectors[count];
};

// One lane, for what gains nothing from more.
typedef std::uint8_t Lane __attribute__((vector_size(16)));

using U8s = Vector<std::uint8_t>;
using S8s = Vector<std::int8_t>;
using U16s = Vector<std::uint16_t>;
using S16s = Vector<std::int16_t>;
using S32s = Vector<std::int32_t>;
using Floats = Vector<float>;
using Doubles = Vector<double>;

// The instructions of one width: ORV_VECTOR(add_epi16) is the addition of words.
#if ORV_VECTOR_BYTES == 32
using Bits = __m256i;
using FloatBits = __m256;
#define ORV_VECTOR(name) _mm256_##name
#define ORV_VECTOR_BITS(name) _mm256_##name##_si256
#else
using Bits = __m128i;
using FloatBits = __m128;
#define ORV_VECTOR(name) _mm_##name
#define ORV_VECTOR_BITS(name) _mm_##name##_si128
#endif

inline Bits bitsOf(auto vector)
{
    return reinterpret_cast<Bits>(vector);
}
// The same bits as samples of another type.
template <class Sample> inline Vector<Sample> as(auto vector)
{
    return reinterpret_cast<Vector<Sample>>(vector);
}

template <class Sample> inline Vector<Sample> loadVector(const void *row, std::size_t index = 0)
{
    Vector<Sample> vector;
    __builtin_memcpy(&vector, static_cast<const unsigned char *>(row) + index * sizeof(Sample), sizeof vector);
    return vector;
}

// Keeps a vector that several operations take from being loaded for each of them.
template <class Sample> inline Vector<Sample> loadVectorOnce(const void *row, std::size_t index = 0)
{
    Vector<Sample> vector = loadVector<Sample>(row, index);
    __asm__("" : "+x"(vector));
    return vector;
}

template <class Sample> inline void storeVector(void *row, std::size_t index, Vector<Sample> vector)
{
    __builtin_memcpy(static_cast<unsigned char *>(row) + index * sizeof(Sample), &vector, sizeof vector);
}

inline bool onVectorBoundary(const void *address)
{
    return reinterpret_cast<std::uintptr_t>(address) % ORV_VECTOR_BYTES == 0;
}

// Past the caches, to a vector boundary; finishStreaming() comes before anybody else may read.
template <class Sample> inline void streamVector(void *row, std::size_t index, Vector<Sample> vector)
{
    ORV_VECTOR_BITS(stream)
    (reinterpret_cast<Bits *>(static_cast<unsigned char *>(row) + index * sizeof(Sample)), bitsOf(vector));
}
inline void finishStreaming()
{
    _mm_sfence();
}

// A lane from each of two addresses; the second is for vectors of two lanes.
template <class Sample> inline Vector<Sample> loadLanes(const void *lower, [[maybe_unused]] const void *upper)
{
#if ORV_VECTOR_BYTES == 32
    const __m256i bits = _mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i *>(lower)));
    return as<Sample>(_mm256_inserti128_si256(bits, _mm_loadu_si128(static_cast<const __m128i *>(upper)), 1));
#else
    return loadVector<Sample>(lower);
#endif
}
template <std::size_t number> inline Lane laneOf(auto vector)
{
#if ORV_VECTOR_BYTES == 32
    return reinterpret_cast<Lane>(_mm256_extracti128_si256(bitsOf(vector), number));
#else
    static_assert(number == 0);
    return reinterpret_cast<Lane>(vector);
#endif
}

// The counterpart of loadLanes().
template <class Sample> inline void storeLanes(void *lower, [[maybe_unused]] void *upper, Vector<Sample> vector)
{
    const Lane first = laneOf<0>(vector);
    __builtin_memcpy(lower, &first, sizeof first);
#if ORV_VECTOR_BYTES == 32
    const Lane second = laneOf<1>(vector);
    __builtin_memcpy(upper, &second, sizeof second);
#endif
}

// The lower half of a vector.
template <class Sample> inline void storeHalf(void *row, std::size_t index, Vector<Sample> vector)
{
    __builtin_memcpy(static_cast<unsigned char *>(row) + index * sizeof(Sample), &vector, sizeof vector / 2);
}

template <class Sample> inline Vector<Sample> everywhere(Sample sample)
{
    return sample - Vector<Sample>{};
}

// A float everywhere in each lane; the second is for vectors of two lanes.
inline Floats everywhereInLanes(float lower, [[maybe_unused]] float upper)
{
#if ORV_VECTOR_BYTES == 32
    return reinterpret_cast<Floats>(_mm256_blend_ps(_mm256_set1_ps(lower), _mm256_set1_ps(upper), 0xF0));
#else
    return everywhere(lower);
#endif
}

// Bit by bit: `yes` where the mask is set, else `no`.
template <class Sample> inline Vector<Sample> chosen(Vector<Sample> mask, Vector<Sample> yes, Vector<Sample> no)
{
    const Bits bits = bitsOf(mask);
    return as<Sample>((bits & bitsOf(yes)) | (~bits & bitsOf(no)));
}

#if ORV_SSE41
// By the upper bit of each byte.
inline U8s chosenBySigns(U8s signs, U8s yes, U8s no)
{
    return as<std::uint8_t>(ORV_VECTOR(blendv_epi8)(bitsOf(no), bitsOf(yes), bitsOf(signs)));
}
#endif

// One bit for each byte of the mask, whose bytes have all bits set or none.
inline unsigned bitsOfMask(U8s mask)
{
    return static_cast<unsigned>(ORV_VECTOR(movemask_epi8)(bitsOf(mask)));
}
constexpr unsigned allBits = static_cast<unsigned>((std::uint64_t{1} << ORV_VECTOR_BYTES) - 1);

inline U8s saturatingSum(U8s a, U8s b)
{
    return as<std::uint8_t>(ORV_VECTOR(adds_epu8)(bitsOf(a), bitsOf(b)));
}
inline U16s saturatingSum(U16s a, U16s b)
{
    return as<std::uint16_t>(ORV_VECTOR(adds_epu16)(bitsOf(a), bitsOf(b)));
}
inline S16s saturatingSum(S16s a, S16s b)
{
    return as<std::int16_t>(ORV_VECTOR(adds_epi16)(bitsOf(a), bitsOf(b)));
}
inline U8s saturatingDifference(U8s a, U8s b)
{
    return as<std::uint8_t>(ORV_VECTOR(subs_epu8)(bitsOf(a), bitsOf(b)));
}
inline S8s saturatingDifference(S8s a, S8s b)
{
    return as<std::int8_t>(ORV_VECTOR(subs_epi8)(bitsOf(a), bitsOf(b)));
}
inline S16s saturatingDifference(S16s a, S16s b)
{
    return as<std::int16_t>(ORV_VECTOR(subs_epi16)(bitsOf(a), bitsOf(b)));
}

// Of floats: the second where either is no number.
inline Floats minimum(Floats a, Floats b)
{
    return reinterpret_cast<Floats>(ORV_VECTOR(min_ps)(reinterpret_cast<FloatBits>(a), reinterpret_cast<FloatBits>(b)));
}
inline Floats maximum(Floats a, Floats b)
{
    return reinterpret_cast<Floats>(ORV_VECTOR(max_ps)(reinterpret_cast<FloatBits>(a), reinterpret_cast<FloatBits>(b)));
}
inline U8s minimum(U8s a, U8s b)
{
    return as<std::uint8_t>(ORV_VECTOR(min_epu8)(bitsOf(a), bitsOf(b)));
}
inline U8s maximum(U8s a, U8s b)
{
    return as<std::uint8_t>(ORV_VECTOR(max_epu8)(bitsOf(a), bitsOf(b)));
}
inline S16s maximum(S16s a, S16s b)
{
    return as<std::int16_t>(ORV_VECTOR(max_epi16)(bitsOf(a), bitsOf(b)));
}
inline S16s minimum(S16s a, S16s b)
{
    return as<std::int16_t>(ORV_VECTOR(min_epi16)(bitsOf(a), bitsOf(b)));
}
#if ORV_SSE41
inline U16s minimum(U16s a, U16s b)
{
    return as<std::uint16_t>(ORV_VECTOR(min_epu16)(bitsOf(a), bitsOf(b)));
}
#endif
inline U16s maximum(U16s a, U16s b)
{
#if ORV_SSE41
    return as<std::uint16_t>(ORV_VECTOR(max_epu16)(bitsOf(a), bitsOf(b)));
#else
    return a + as<std::uint16_t>(ORV_VECTOR(subs_epu16)(bitsOf(b), bitsOf(a)));
#endif
}

// Of the lowest word, too.
inline U16s magnitudes(S16s a)
{
#if ORV_SHUFFLES
    return as<std::uint16_t>(ORV_VECTOR(abs_epi16)(bitsOf(a)));
#else
    return as<std::uint16_t>(maximum(a, -a));
#endif
}

inline Floats squareRoot(Floats a)
{
    return reinterpret_cast<Floats>(ORV_VECTOR(sqrt_ps)(reinterpret_cast<FloatBits>(a)));
}

// The means of two, with ties up.
inline U16s roundedMeans(U16s a, U16s b)
{
    return as<std::uint16_t>(ORV_VECTOR(avg_epu16)(bitsOf(a), bitsOf(b)));
}

// The magnitudes of differences of bytes, added up in each eight bytes.
inline Vector<std::uint64_t> differenceSums(U8s a, U8s b)
{
    return as<std::uint64_t>(ORV_VECTOR(sad_epu8)(bitsOf(a), bitsOf(b)));
}

// The high words of the products of words; the low ones are those of the operator.
inline S16s highProducts(S16s a, S16s b)
{
    return as<std::int16_t>(ORV_VECTOR(mulhi_epi16)(bitsOf(a), bitsOf(b)));
}
inline U16s highProducts(U16s a, U16s b)
{
    return as<std::uint16_t>(ORV_VECTOR(mulhi_epu16)(bitsOf(a), bitsOf(b)));
}

// The high halves of the products of samples of 32 bits, as unsigned.
inline S32s highProducts(S32s a, S32s b)
{
    const Bits even = ORV_VECTOR(mul_epu32)(bitsOf(a), bitsOf(b));
    const Bits odd =
        ORV_VECTOR(mul_epu32)(ORV_VECTOR(srli_epi64)(bitsOf(a), 32), ORV_VECTOR(srli_epi64)(bitsOf(b), 32));
    return as<std::int32_t>(ORV_VECTOR_BITS(or)(ORV_VECTOR(srli_epi64)(even, 32),
                                                ORV_VECTOR_BITS(and)(odd, ORV_VECTOR(set1_epi64x)(-1LL << 32))));
}

// The products of words, added up two by two.
inline S32s pairSums(S16s a, S16s b)
{
    return as<std::int32_t>(ORV_VECTOR(madd_epi16)(bitsOf(a), bitsOf(b)));
}
// The products of words as fractions of 32768, rounded to nearest with ties up.
inline S16s roundedProducts(S16s a, S16s b)
{
#if ORV_SHUFFLES
    return as<std::int16_t>(ORV_VECTOR(mulhrs_epi16)(bitsOf(a), bitsOf(b)));
#else
    const S16s high = highProducts(a, b);
    return high + high + as<std::int16_t>(((as<std::uint16_t>(a * b) >> 14) + 1) >> 1);
#endif
}
#if ORV_SHUFFLES
// The sums of the products of bytes and signed bytes two by two; they saturate.
inline S16s pairSums(U8s a, S8s b)
{
    return as<std::int16_t>(ORV_VECTOR(maddubs_epi16)(bitsOf(a), bitsOf(b)));
}
#endif

// The 64-bit products of the even samples.
inline Vector<std::uint64_t> evenProducts(Vector<std::uint32_t> a, Vector<std::uint32_t> b)
{
    return as<std::uint64_t>(ORV_VECTOR(mul_epu32)(bitsOf(a), bitsOf(b)));
}
#if ORV_SSE41
inline S32s evenProducts(S32s a, S32s b)
{
    return as<std::int32_t>(ORV_VECTOR(mul_epi32)(bitsOf(a), bitsOf(b)));
}
// Even samples of the one, odd samples of the other.
inline S32s evenAndOdd(S32s even, S32s odd)
{
    return as<std::int32_t>(ORV_VECTOR(blend_epi16)(bitsOf(even), bitsOf(odd), 0xCC));
}
// Each sample with its neighbour's place: the odd ones where the even ones were.
inline S32s oddAsEven(S32s a)
{
    return as<std::int32_t>(ORV_VECTOR(srli_epi64)(bitsOf(a), 32));
}
inline S32s evenAsOdd(S32s a)
{
    return as<std::int32_t>(ORV_VECTOR(slli_epi64)(bitsOf(a), 32));
}
#endif

// Samples of two vectors in turn, from the lower or the upper half of each lane: with zeros this widens unsigned
// samples.
template <class Sample> inline Vector<Sample> interleaveLow(Vector<Sample> a, Vector<Sample> b)
{
    if constexpr (sizeof(Sample) == 1)
        return as<Sample>(ORV_VECTOR(unpacklo_epi8)(bitsOf(a), bitsOf(b)));
    else if constexpr (sizeof(Sample) == 2)
        return as<Sample>(ORV_VECTOR(unpacklo_epi16)(bitsOf(a), bitsOf(b)));
    else if constexpr (sizeof(Sample) == 4)
        return as<Sample>(ORV_VECTOR(unpacklo_epi32)(bitsOf(a), bitsOf(b)));
    else
        return as<Sample>(ORV_VECTOR(unpacklo_epi64)(bitsOf(a), bitsOf(b)));
}
template <class Sample> inline Vector<Sample> interleaveHigh(Vector<Sample> a, Vector<Sample> b)
{
    if constexpr (sizeof(Sample) == 1)
        return as<Sample>(ORV_VECTOR(unpackhi_epi8)(bitsOf(a), bitsOf(b)));
    else if constexpr (sizeof(Sample) == 2)
        return as<Sample>(ORV_VECTOR(unpackhi_epi16)(bitsOf(a), bitsOf(b)));
    else if constexpr (sizeof(Sample) == 4)
        return as<Sample>(ORV_VECTOR(unpackhi_epi32)(bitsOf(a), bitsOf(b)));
    else
        return as<Sample>(ORV_VECTOR(unpackhi_epi64)(bitsOf(a), bitsOf(b)));
}

// The counterpart of the two for floats: those at the even and at the odd places.
inline Floats evenFloats(Floats a, Floats b)
{
    return reinterpret_cast<Floats>(
        ORV_VECTOR(shuffle_ps)(reinterpret_cast<FloatBits>(a), reinterpret_cast<FloatBits>(b), 0x88));
}
inline Floats oddFloats(Floats a, Floats b)
{
    return reinterpret_cast<Floats>(
        ORV_VECTOR(shuffle_ps)(reinterpret_cast<FloatBits>(a), reinterpret_cast<FloatBits>(b), 0xDD));
}

// Vectors of items of so many bytes become those that have the items of each place one after the other, place by place.
// As many vectors as a lane has items are transposed in each lane.
template <std::size_t bytes, std::size_t count> inline void transpose(U8s (&vectors)[count])
{
    if constexpr (count > 1) {
        using Item =
            std::conditional_t<bytes == 1, std::uint8_t,
                               std::conditional_t<bytes == 2, std::uint16_t,
                                                  std::conditional_t<bytes == 4, std::uint32_t, std::uint64_t>>>;
        U8s low[count / 2], high[count / 2];
        for (std::size_t i = 0; i < count / 2; ++i) {
            const Vector<Item> first = as<Item>(vectors[2 * i]), second = as<Item>(vectors[2 * i + 1]);
            low[i] = as<std::uint8_t>(interleaveLow<Item>(first, second));
            high[i] = as<std::uint8_t>(interleaveHigh<Item>(first, second));
        }
        transpose<2 * bytes>(low);
        transpose<2 * bytes>(high);
        for (std::size_t i = 0; i < count / 2; ++i) {
            vectors[i] = low[i];
            vectors[count / 2 + i] = high[i];
        }
    }
}

// The counterpart of the two: narrows with saturation, the samples of `low` to the lower halves of lanes.
template <class Narrow> inline Vector<Narrow> packed(S16s low, S16s high)
{
    static_assert(sizeof(Narrow) == 1);
    if constexpr (static_cast<Narrow>(-1) > 0)
        return as<Narrow>(ORV_VECTOR(packus_epi16)(bitsOf(low), bitsOf(high)));
    else
        return as<Narrow>(ORV_VECTOR(packs_epi16)(bitsOf(low), bitsOf(high)));
}
template <class Narrow> inline Vector<Narrow> packed(S32s low, S32s high)
{
    static_assert(sizeof(Narrow) == 2);
    if constexpr (static_cast<Narrow>(-1) < 0)
        return as<Narrow>(ORV_VECTOR(packs_epi32)(bitsOf(low), bitsOf(high)));
    else
#if ORV_SSE41
        return as<Narrow>(ORV_VECTOR(packus_epi32)(bitsOf(low), bitsOf(high)));
#else
        // For values in the range of the sample: down by half of it, and back.
        return as<Narrow>(ORV_VECTOR(packs_epi32)(bitsOf(low - 32768), bitsOf(high - 32768))) ^ std::uint16_t{0x8000};
#endif
}

// Shifts by a count that is known at run time only; counts beyond the width leave nothing, or nothing but the sign.
struct ShiftCount {
    __m128i bits;

    explicit ShiftCount(std::uint32_t count) : bits(_mm_cvtsi32_si128(static_cast<int>(count < 64 ? count : 64))) {}
};
inline U16s shiftedLeft(U16s a, ShiftCount count)
{
    return as<std::uint16_t>(ORV_VECTOR(sll_epi16)(bitsOf(a), count.bits));
}
inline S32s shiftedLeft(S32s a, ShiftCount count)
{
    return as<std::int32_t>(ORV_VECTOR(sll_epi32)(bitsOf(a), count.bits));
}
inline U16s shiftedRight(U16s a, ShiftCount count)
{
    return as<std::uint16_t>(ORV_VECTOR(srl_epi16)(bitsOf(a), count.bits));
}
inline S16s shiftedRight(S16s a, ShiftCount count)
{
    return as<std::int16_t>(ORV_VECTOR(sra_epi16)(bitsOf(a), count.bits));
}
inline S32s shiftedRight(S32s a, ShiftCount count)
{
    return as<std::int32_t>(ORV_VECTOR(sra_epi32)(bitsOf(a), count.bits));
}

// Floats to integers, to nearest in the processor's rounding mode or toward zero, and back.
inline S32s rounded(Floats a)
{
    return as<std::int32_t>(ORV_VECTOR(cvtps_epi32)(reinterpret_cast<FloatBits>(a)));
}
inline S32s truncated(Floats a)
{
    return as<std::int32_t>(ORV_VECTOR(cvttps_epi32)(reinterpret_cast<FloatBits>(a)));
}
inline Floats toFloats(S32s a)
{
    return reinterpret_cast<Floats>(ORV_VECTOR(cvtepi32_ps)(bitsOf(a)));
}

// Floats to doubles: so many from memory, and those of the lower and the upper half of a vector, across lanes.
inline Doubles loadDoubles(const void *row, std::size_t index)
{
    const unsigned char *const in = static_cast<const unsigned char *>(row) + index * sizeof(float);
#if ORV_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(_mm256_cvtps_pd(_mm_loadu_ps(reinterpret_cast<const float *>(in))));
#else
    return reinterpret_cast<Doubles>(
        _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(in)))));
#endif
}
// The counterpart of loadDoubles().
inline void storeAsFloats(void *row, std::size_t index, Doubles a)
{
    unsigned char *const out = static_cast<unsigned char *>(row) + index * sizeof(float);
#if ORV_VECTOR_BYTES == 32
    _mm_storeu_ps(reinterpret_cast<float *>(out), _mm256_cvtpd_ps(reinterpret_cast<__m256d>(a)));
#else
    const __m128 floats = _mm_cvtpd_ps(reinterpret_cast<__m128d>(a));
    _mm_storel_pi(reinterpret_cast<__m64 *>(out), floats);
#endif
}
#if ORV_VECTOR_BYTES == 32
inline Doubles lowerDoubles(Floats a)
{
    return reinterpret_cast<Doubles>(_mm256_cvtps_pd(_mm256_castps256_ps128(reinterpret_cast<__m256>(a))));
}
inline Doubles upperDoubles(Floats a)
{
    return reinterpret_cast<Doubles>(_mm256_cvtps_pd(_mm256_extractf128_ps(reinterpret_cast<__m256>(a), 1)));
}
#else
inline Doubles lowerDoubles(Floats a)
{
    return reinterpret_cast<Doubles>(_mm_cvtps_pd(reinterpret_cast<__m128>(a)));
}
inline Doubles upperDoubles(Floats a)
{
    const __m128 bits = reinterpret_cast<__m128>(a);
    return reinterpret_cast<Doubles>(_mm_cvtps_pd(_mm_movehl_ps(bits, bits)));
}
#endif

// Two vectors of doubles as one of floats, or as one of integers toward zero, across lanes.
#if ORV_VECTOR_BYTES == 32
inline Floats toFloats(Doubles low, Doubles high)
{
    return reinterpret_cast<Floats>(_mm256_set_m128(_mm256_cvtpd_ps(reinterpret_cast<__m256d>(high)),
                                                    _mm256_cvtpd_ps(reinterpret_cast<__m256d>(low))));
}
inline S32s truncated(Doubles low, Doubles high)
{
    return as<std::int32_t>(_mm256_set_m128i(_mm256_cvttpd_epi32(reinterpret_cast<__m256d>(high)),
                                             _mm256_cvttpd_epi32(reinterpret_cast<__m256d>(low))));
}
#else
inline Floats toFloats(Doubles low, Doubles high)
{
    return reinterpret_cast<Floats>(
        _mm_movelh_ps(_mm_cvtpd_ps(reinterpret_cast<__m128d>(low)), _mm_cvtpd_ps(reinterpret_cast<__m128d>(high))));
}
inline S32s truncated(Doubles low, Doubles high)
{
    return as<std::int32_t>(_mm_unpacklo_epi64(_mm_cvttpd_epi32(reinterpret_cast<__m128d>(low)),
                                               _mm_cvttpd_epi32(reinterpret_cast<__m128d>(high))));
}
#endif

#endif

#include "shuffles.h"
