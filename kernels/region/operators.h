// Arithmetic on samples, for the kernels of points.h. Each integer operator knows the exact result, from which the
// scaled forms follow, and the saturated one. To be included after points.h.

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

// Sums and differences of signed samples wrap, and are corrected where they did. In the width of the sample and without
// branches, so that the compiler's vectors hold as many of them as they can.
template <class Sample> inline Sample chosenSample(Sample mask, Sample yes, Sample no)
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
    return chosenSample(wrapped, saturatedTowards(a), sum);
}
template <class Sample> inline Sample saturatingDifference(Sample a, Sample b)
{
    const Sample difference = static_cast<Sample>(a - b);
    const Sample wrapped = signMask(static_cast<Sample>((a ^ b) & (a ^ difference)));
    return chosenSample(wrapped, saturatedTowards(a), difference);
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
    return chosenSample(wrapped, saturatedTowards(high), low);
}
template <> inline std::int32_t Product<std::int32_t>::operator()(std::int32_t a, std::int32_t b) const
{
    const std::int64_t product = exact(a, b);
    const std::int32_t low = static_cast<std::int32_t>(product);
    return low == product ? low : ((a ^ b) >> 31) ^ 0x7FFFFFFF;
}

// The operators by vectors.
#if ORV_VECTOR_BYTES > 0

template <class Sample> inline auto vectorOf(Sum<Sample>, Vector<Sample> a, Vector<Sample> b) requires requires
{
    saturatingSum(a, b);
}
{
    return saturatingSum(a, b);
}
inline S32s vectorOf(Sum<std::int32_t>, S32s a, S32s b)
{
    const S32s sum = a + b;
    return ((a ^ sum) & (b ^ sum)) < 0 ? (a >> 31) ^ 0x7FFFFFFF : sum;
}

template <class Sample> inline auto vectorOf(Difference<Sample>, Vector<Sample> a, Vector<Sample> b) requires requires
{
    saturatingDifference(a, b);
}
{
    return saturatingDifference(a, b);
}
inline S32s vectorOf(Difference<std::int32_t>, S32s a, S32s b)
{
    const S32s difference = a - b;
    return ((a ^ b) & (a ^ difference)) < 0 ? (a >> 31) ^ 0x7FFFFFFF : difference;
}

// Products of bytes fill a word without a sign. packed() takes signed words, so those beyond its range are turned into
// others that it saturates too.
inline S16s byteProducts(U8s a, U8s b)
{
    const U16s products = as<std::uint16_t>(a) * as<std::uint16_t>(b);
#if ORV_SSE41
    return as<std::int16_t>(minimum(products, everywhere<std::uint16_t>(255)));
#else
    return as<std::int16_t>(products) ^ (as<std::int16_t>(products) >> 15);
#endif
}
inline U8s vectorOf(Product<std::uint8_t>, U8s a, U8s b)
{
    constexpr U8s zeros = {};
    return packed<std::uint8_t>(
        byteProducts(interleaveLow<std::uint8_t>(a, zeros), interleaveLow<std::uint8_t>(b, zeros)),
        byteProducts(interleaveHigh<std::uint8_t>(a, zeros), interleaveHigh<std::uint8_t>(b, zeros)));
}
inline S16s vectorOf(Product<std::int16_t>, S16s a, S16s b)
{
    const S16s low = a * b, high = highProducts(a, b);
    return packed<std::int16_t>(as<std::int32_t>(interleaveLow<std::int16_t>(low, high)),
                                as<std::int32_t>(interleaveHigh<std::int16_t>(low, high)));
}
#if ORV_SSE41
inline S32s vectorOf(Product<std::int32_t>, S32s a, S32s b)
{
    const S32s even = evenProducts(a, b), odd = evenProducts(oddAsEven(a), oddAsEven(b));
    const S32s low = evenAndOdd(even, evenAsOdd(odd)), high = evenAndOdd(oddAsEven(even), odd);
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

#if ORV_VECTOR_BYTES > 0
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

// The exact result divided by 2 to the power of the scale, rounded to nearest with ties to even, then saturated; a
// negative scale multiplies. A scale of 63 leaves 0 of all results that two samples can have, and no result but 0 stays
// in the range when it is multiplied by 2 to the power of 31. Not inlined, and so one code for all operators: the
// operations pass no scale.
template <class Sample> [[gnu::noinline]] Sample scaled(std::int64_t exact, std::int32_t scale)
{
    if (scale < 0)
        return saturated<Sample>(std::int64_t{saturated<Sample>(exact)} << (scale > -31 ? -scale : 31));
    const std::int32_t shift = scale < 63 ? scale : 63;
    return saturated<Sample>((exact + (std::int64_t{1} << (shift - 1)) - 1 + ((exact >> shift) & 1)) >> shift);
}

template <class Operator, class Sample> struct Scaled {
    static constexpr bool sampleBySample = true;
    Operator operation;
    std::int32_t scale;

    Sample operator()(auto... samples) const { return scaled<Sample>(operation.exact(samples...), scale); }
};

// Calls run(wrap), where wrap makes of an operator the one of this scale.
template <class Sample, class Run> inline KrnStatus withScale(std::int32_t scale, Run run)
{
    if (scale == 0)
        return run([](auto operation) { return operation; });
    return run([=](auto operation) { return Scaled<decltype(operation), Sample>{operation, scale}; });
}
