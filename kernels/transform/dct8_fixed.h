// Fixed-point cosine transforms of a block of 8 x 8 samples. To be included inside the unnamed namespace of a region,
// after rows.h and vectors.h.
//
// The row pass of the forward transform has constants of 12 fractional bits. Its results are 16 bits wide and
// 8 * sqrt(8) times the orthonormal ones. The column pass, and both passes of the inverse transform, are sums of
// products in 32 bits, which are rounded once. They share these constants: cos(i * pi / 16) / 2, times sqrt(2^31).
template <class Value> struct Cosines {
    static constexpr std::int32_t of[] = {0, 22725, 21407, 19266, 16384, 12873, 8867, 4520}, moreBits = 0;
};
// In 64 bits, times 2^16 too.
template <> struct Cosines<std::int64_t> {
    static constexpr std::int32_t of[] = {0,          1489322693, 1402911301, 1262586814,
                                          1073741824, 843633538,  581104888,  296244703},
                                  moreBits = 16;
};

enum : int { ColumnShift = 20, InverseColumnShift = 13, InverseRowShift = 18 };

// If the magnitudes of all coefficients add up to no more, the first pass of the inverse transform fits 16 bits and the
// second fits 32. Otherwise both are computed in 64 bits.
constexpr std::int32_t mostMagnitude = 11584;

// Two products, for plain integers and for vectors of words alike.
template <class Integer> struct PlainSums {
    Integer sum;
};
template <class Integer> inline PlainSums<Integer> operator+(PlainSums<Integer> a, PlainSums<Integer> b)
{
    return {a.sum + b.sum};
}
template <class Integer> inline PlainSums<Integer> operator-(PlainSums<Integer> a, PlainSums<Integer> b)
{
    return {a.sum - b.sum};
}
template <class Integer>
inline PlainSums<Integer> products(Integer a, Integer b, std::int32_t factorA, std::int32_t factorB)
{
    return {a * factorA + b * factorB};
}
template <int shift, class Integer> inline Integer rounded(PlainSums<Integer> sums)
{
    constexpr int all = shift + Cosines<Integer>::moreBits;
    return (sums.sum + (Integer{1} << (all - 1))) >> all;
}

#if ORV_VECTOR_BYTES > 0

// Eight words fill one lane. Wider vectors have nothing of use in the others.
struct LaneSums {
    S32s low, high;
};
inline LaneSums operator+(LaneSums a, LaneSums b)
{
    return {a.low + b.low, a.high + b.high};
}
inline LaneSums operator-(LaneSums a, LaneSums b)
{
    return {a.low - b.low, a.high - b.high};
}
inline LaneSums products(S16s a, S16s b, std::int32_t factorA, std::int32_t factorB)
{
    const std::uint32_t pair = static_cast<std::uint16_t>(factorA) | static_cast<std::uint32_t>(factorB) << 16;
    const S16s factors = as<std::int16_t>(everywhere<std::uint32_t>(pair));
    return {pairSums(interleaveLow<std::int16_t>(a, b), factors),
            pairSums(interleaveHigh<std::int16_t>(a, b), factors)};
}
template <int shift> inline S16s rounded(LaneSums sums)
{
    const S32s half = everywhere<std::int32_t>(1 << (shift - 1));
    return packed<std::int16_t>((sums.low + half) >> shift, (sums.high + half) >> shift);
}

#endif

// The odd outputs 1, 3, 5, 7 from the differences of mirrored inputs, and the other way round: the matrix is symmetric.
template <int number, class Value> inline auto oddSum(Value v0, Value v1, Value v2, Value v3)
{
    constexpr auto &cosines = Cosines<Value>::of;
    if constexpr (number == 0)
        return products(v0, v1, cosines[1], cosines[3]) + products(v2, v3, cosines[5], cosines[7]);
    else if constexpr (number == 1)
        return products(v0, v1, cosines[3], -cosines[7]) + products(v2, v3, -cosines[1], -cosines[5]);
    else if constexpr (number == 2)
        return products(v0, v1, cosines[5], -cosines[1]) + products(v2, v3, cosines[7], cosines[3]);
    else
        return products(v0, v1, cosines[7], -cosines[5]) + products(v2, v3, cosines[3], -cosines[1]);
}

template <int shift, class Value> inline void forwardPass(Value (&x)[8])
{
    constexpr auto &cosines = Cosines<Value>::of;
    const Value s0 = x[0] + x[7], s1 = x[1] + x[6], s2 = x[2] + x[5], s3 = x[3] + x[4];
    const Value d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];
    const Value e2 = s1 - s2, e3 = s0 - s3;
    const auto outer = products(s0, s3, cosines[4], cosines[4]), inner = products(s1, s2, cosines[4], cosines[4]);
    x[0] = rounded<shift>(outer + inner);
    x[4] = rounded<shift>(outer - inner);
    x[2] = rounded<shift>(products(e3, e2, cosines[2], cosines[6]));
    x[6] = rounded<shift>(products(e3, e2, cosines[6], -cosines[2]));
    x[1] = rounded<shift>(oddSum<0>(d0, d1, d2, d3));
    x[3] = rounded<shift>(oddSum<1>(d0, d1, d2, d3));
    x[5] = rounded<shift>(oddSum<2>(d0, d1, d2, d3));
    x[7] = rounded<shift>(oddSum<3>(d0, d1, d2, d3));
}

template <int shift, class Value> inline void inversePass(Value (&y)[8])
{
    constexpr auto &cosines = Cosines<Value>::of;
    const Value y1 = y[1], y3 = y[3], y5 = y[5], y7 = y[7];
    const auto sum = products(y[0], y[4], cosines[4], cosines[4]),
               turned = products(y[2], y[6], cosines[2], cosines[6]);
    const auto difference = products(y[0], y[4], cosines[4], -cosines[4]);
    const auto across = products(y[2], y[6], cosines[6], -cosines[2]);
    const auto finish = [&y](auto even, auto odd, std::size_t index) {
        y[index] = rounded<shift>(even + odd);
        y[7 - index] = rounded<shift>(even - odd);
    };
    finish(sum + turned, oddSum<0>(y1, y3, y5, y7), 0);
    finish(difference + across, oddSum<1>(y1, y3, y5, y7), 1);
    finish(difference - across, oddSum<2>(y1, y3, y5, y7), 2);
    finish(sum - turned, oddSum<3>(y1, y3, y5, y7), 3);
}
