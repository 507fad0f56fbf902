// Arithmetic on samples, for the kernels of points.h. Each integer operator knows the exact result, from which the
// scaled forms follow, and the saturated one. To be included as points.h is, after it.

template <class Sample> constexpr bool isSigned = static_cast<Sample>(-1) < static_cast<Sample>(1);
template <class Sample> constexpr std::int64_t topOf = (std::int64_t{1} << (8 * sizeof(Sample) - isSigned<Sample>)) - 1;
template <class Sample> constexpr std::int64_t bottomOf = isSigned<Sample> ? -topOf<Sample> - 1 : 0;

// Wide enough for the sum, the difference and the product of two samples.
template <class Sample> struct ExactOf {
    using Type = std::int32_t;
};
template <> struct ExactOf<std::uint16_t> {
    using Type = std::int64_t;
};
template <> struct ExactOf<std::int32_t> {
    using Type = std::int64_t;
};
template <class Sample> using Exact = typename ExactOf<Sample>::Type;

template <class Sample, class Value> inline Sample saturated(Value value)
{
    constexpr Value top = static_cast<Value>(topOf<Sample>), bottom = static_cast<Value>(bottomOf<Sample>);
    value = value < top ? value : top;
    return static_cast<Sample>(value > bottom ? value : bottom);
}

// Sums and differences of signed samples wrap, and are put right where they did. In the width of the sample and without
// branches, so that the compiler's vectors hold as many of them as they can.
template <class Sample> inline Sample chosen(Sample mask, Sample yes, Sample no)
{
    return static_cast<Sample>((yes & mask) | (no & ~mask));
}
template <class Sample> inline Sample signMask(Sample value)
{
    return static_cast<Sample>(value >> (8 * sizeof(Sample) - 1));
}

template <class Sample> inline Sample saturatedTowards(Sample sign)
{
    return static_cast<Sample>(signMask(sign) ^ static_cast<Sample>(topOf<Sample>));
}
template <class Sample> inline Sample saturatingSum(Sample a, Sample b)
{
    const Sample sum = static_cast<Sample>(a + b);
    const Sample wrapped = signMask(static_cast<Sample>((a ^ sum) & (b ^ sum)));
    return chosen(wrapped, saturatedTowards(a), sum);
}
template <class Sample> inline Sample saturatingDifference(Sample a, Sample b)
{
    const Sample difference = static_cast<Sample>(a - b);
    const Sample wrapped = signMask(static_cast<Sample>((a ^ b) & (a ^ difference)));
    return chosen(wrapped, saturatedTowards(a), difference);
}

template <class Sample> struct Sum {
    Exact<Sample> exact(Sample a, Sample b) const { return Exact<Sample>{a} + b; }
    Sample operator()(Sample a, Sample b) const { return saturated<Sample>(exact(a, b)); }
};
template <class Sample> struct Difference {
    Exact<Sample> exact(Sample a, Sample b) const { return Exact<Sample>{a} - b; }
    Sample operator()(Sample a, Sample b) const { return saturated<Sample>(exact(a, b)); }
};
template <class Sample> struct Product {
    Exact<Sample> exact(Sample a, Sample b) const { return Exact<Sample>{a} * b; }
    Sample operator()(Sample a, Sample b) const { return saturated<Sample>(exact(a, b)); }
};

// Floats neither saturate nor scale.
struct FloatSum {
    auto vector(auto a, auto b) const { return a + b; }
    float operator()(float a, float b) const { return a + b; }
};
struct FloatDifference {
    auto vector(auto a, auto b) const { return a - b; }
    float operator()(float a, float b) const { return a - b; }
};
struct FloatProduct {
    auto vector(auto a, auto b) const { return a * b; }
    float operator()(float a, float b) const { return a * b; }
};

template <> inline std::int32_t Sum<std::int32_t>::operator()(std::int32_t a, std::int32_t b) const
{
    return saturatingSum(a, b);
}
template <> inline std::int16_t Sum<std::int16_t>::operator()(std::int16_t a, std::int16_t b) const
{
    return saturatingSum(a, b);
}
template <> inline std::uint8_t Sum<std::uint8_t>::operator()(std::uint8_t a, std::uint8_t b) const
{
    const std::uint8_t sum = static_cast<std::uint8_t>(a + b);
    return static_cast<std::uint8_t>(sum | -static_cast<std::uint8_t>(sum < a));
}
template <> inline std::int32_t Difference<std::int32_t>::operator()(std::int32_t a, std::int32_t b) const
{
    return saturatingDifference(a, b);
}
template <> inline std::int16_t Difference<std::int16_t>::operator()(std::int16_t a, std::int16_t b) const
{
    return saturatingDifference(a, b);
}
template <> inline std::uint8_t Difference<std::uint8_t>::operator()(std::uint8_t a, std::uint8_t b) const
{
    const std::uint8_t difference = static_cast<std::uint8_t>(a - b);
    return static_cast<std::uint8_t>(difference & -static_cast<std::uint8_t>(difference <= a));
}
template <> inline std::uint8_t Product<std::uint8_t>::operator()(std::uint8_t a, std::uint8_t b) const
{
    const std::uint16_t product = static_cast<std::uint16_t>(a * b);
    return static_cast<std::uint8_t>(product > 255 ? 255 : product);
}
template <> inline std::int16_t Product<std::int16_t>::operator()(std::int16_t a, std::int16_t b) const
{
    const std::int32_t product = std::int32_t{a} * b;
    const std::int16_t low = static_cast<std::int16_t>(product), high = static_cast<std::int16_t>(product >> 16);
    const std::int16_t wrapped = static_cast<std::int16_t>(-(high != signMask(low)));
    return chosen(wrapped, saturatedTowards(high), low);
}
template <> inline std::int32_t Product<std::int32_t>::operator()(std::int32_t a, std::int32_t b) const
{
    const std::int64_t product = exact(a, b);
    const std::int32_t low = static_cast<std::int32_t>(product);
    return low == product ? low : ((a ^ b) >> 31) ^ 0x7FFFFFFF;
}

// The operators by vectors.
#if ORV_SSE_LEVEL >= 2

inline auto vectorOf(Sum<std::uint8_t>, Vector<std::uint8_t> a, Vector<std::uint8_t> b)
{
    return asVector<std::uint8_t>(_mm_adds_epu8(asIntegers(a), asIntegers(b)));
}
inline auto vectorOf(Sum<std::int16_t>, Vector<std::int16_t> a, Vector<std::int16_t> b)
{
    return asVector<std::int16_t>(_mm_adds_epi16(asIntegers(a), asIntegers(b)));
}
inline auto vectorOf(Sum<std::int32_t>, Vector<std::int32_t> a, Vector<std::int32_t> b)
{
    const Vector<std::int32_t> sum = a + b;
    return ((a ^ sum) & (b ^ sum)) < 0 ? (a >> 31) ^ 0x7FFFFFFF : sum;
}

inline auto vectorOf(Difference<std::uint8_t>, Vector<std::uint8_t> a, Vector<std::uint8_t> b)
{
    return asVector<std::uint8_t>(_mm_subs_epu8(asIntegers(a), asIntegers(b)));
}
inline auto vectorOf(Difference<std::int16_t>, Vector<std::int16_t> a, Vector<std::int16_t> b)
{
    return asVector<std::int16_t>(_mm_subs_epi16(asIntegers(a), asIntegers(b)));
}
inline auto vectorOf(Difference<std::int32_t>, Vector<std::int32_t> a, Vector<std::int32_t> b)
{
    const Vector<std::int32_t> difference = a - b;
    return ((a ^ b) & (a ^ difference)) < 0 ? (a >> 31) ^ 0x7FFFFFFF : difference;
}

// Products of bytes fill a word without a sign. The pack takes words with one, so those beyond it are turned into
// others that it saturates too.
inline __m128i byteProducts(__m128i a, __m128i b)
{
    const __m128i product = _mm_mullo_epi16(a, b);
#if ORV_SSE_LEVEL >= 5
    return _mm_min_epu16(product, _mm_set1_epi16(255));
#else
    return _mm_xor_si128(product, _mm_srai_epi16(product, 15));
#endif
}
inline auto vectorOf(Product<std::uint8_t>, Vector<std::uint8_t> a, Vector<std::uint8_t> b)
{
    const __m128i zero = _mm_setzero_si128(), left = asIntegers(a), right = asIntegers(b);
    return asVector<std::uint8_t>(
        _mm_packus_epi16(byteProducts(_mm_unpacklo_epi8(left, zero), _mm_unpacklo_epi8(right, zero)),
                         byteProducts(_mm_unpackhi_epi8(left, zero), _mm_unpackhi_epi8(right, zero))));
}
inline auto vectorOf(Product<std::int16_t>, Vector<std::int16_t> a, Vector<std::int16_t> b)
{
    const __m128i low = _mm_mullo_epi16(asIntegers(a), asIntegers(b)),
                  high = _mm_mulhi_epi16(asIntegers(a), asIntegers(b));
    return asVector<std::int16_t>(_mm_packs_epi32(_mm_unpacklo_epi16(low, high), _mm_unpackhi_epi16(low, high)));
}
#if ORV_SSE_LEVEL >= 5
inline auto vectorOf(Product<std::int32_t>, Vector<std::int32_t> a, Vector<std::int32_t> b)
{
    const __m128i left = asIntegers(a), right = asIntegers(b);
    const auto even = asVector<std::int32_t>(_mm_mul_epi32(left, right));
    const auto odd = asVector<std::int32_t>(_mm_mul_epi32(_mm_srli_epi64(left, 32), _mm_srli_epi64(right, 32)));
    const Vector<std::int32_t> low = __builtin_shufflevector(even, odd, 0, 4, 2, 6);
    const Vector<std::int32_t> high = __builtin_shufflevector(even, odd, 1, 5, 3, 7);
    return high == (low >> 31) ? low : ((a ^ b) >> 31) ^ 0x7FFFFFFF;
}
#endif

#endif

// An operator with its second operand fixed, or first and second exchanged.
template <class Operator, class Sample> struct WithConstant {
    Operator operation;
    Sample constant;

    auto exact(Sample a) const { return operation.exact(a, constant); }
    Sample operator()(Sample a) const { return static_cast<Sample>(operation(a, constant)); }
};
template <class Operator> struct Exchanged {
    Operator operation;

    auto exact(auto a, auto b) const { return operation.exact(b, a); }
    auto operator()(auto a, auto b) const { return operation(b, a); }
};

#if ORV_SSE_LEVEL >= 2
template <class Operator> inline auto vectorOf(Exchanged<Operator> exchanged, auto a, auto b) requires requires
{
    vectorOf(exchanged.operation, b, a);
}
{
    return vectorOf(exchanged.operation, b, a);
}
template <class Operator, class Sample>
inline auto vectorOf(WithConstant<Operator, Sample> with, Vector<Sample> a) requires requires
{
    vectorOf(with.operation, a, a);
}
{
    return vectorOf(with.operation, a, everywhere<Sample>(with.constant));
}
#endif

// The exact result divided by a power of two, rounded to nearest with ties to even, then saturated. A shift of 63 gives
// 0 for all results that two samples can have.
template <class Operator, class Sample> struct ScaledDown {
    Operator operation;
    std::int32_t shift;

    Sample operator()(auto... samples) const
    {
        const std::int64_t value = operation.exact(samples...);
        return saturated<Sample>((value + (std::int64_t{1} << (shift - 1)) - 1 + ((value >> shift) & 1)) >> shift);
    }
};

// The exact result times a power of two, saturated. What saturates before the shift does so after it too.
template <class Operator, class Sample> struct ScaledUp {
    Operator operation;
    std::int32_t shift;

    Sample operator()(auto... samples) const
    {
        return saturated<Sample>(std::int64_t{saturated<Sample>(operation.exact(samples...))} << shift);
    }
};

// Calls run(wrap), where wrap makes of an operator the one of this scale: results are divided by 2 to the power of the
// scale. No result of two samples keeps a bit beyond 63 downwards, or one that does not saturate beyond 31 upwards.
template <class Sample, class Run> inline KrnStatus withScale(std::int32_t scale, Run run)
{
    if (scale == 0)
        return run([](auto operation) { return operation; });
    if (scale > 0)
        return run([=](auto operation) {
            return ScaledDown<decltype(operation), Sample>{operation, scale < 63 ? scale : 63};
        });
    return run([=](auto operation) {
        return ScaledUp<decltype(operation), Sample>{operation, scale > -31 ? -scale : 31};
    });
}
