// Rows of integer samples for the fixed filters, in vectors or one by one. To be included after fixed_rows.h.
//
// A row has its samples as centre(), the sums of those so far to the left and right as pair(), and the differences of
// its neighbours. oneTwoOne() weights three. Sums have twice the bits of the samples. total() makes larger ones, for
// the filter that needs them.

#if ORV_VECTOR_BYTES > 0

// The sums of the lower and the upper halves of lanes.
template <class Wide> struct Sums {
    Vector<Wide> low, high;
};
template <class Wide> inline Sums<Wide> operator+(const Sums<Wide> &a, const Sums<Wide> &b)
{
    return {a.low + b.low, a.high + b.high};
}
template <class Wide> inline Sums<Wide> operator-(const Sums<Wide> &a, const Sums<Wide> &b)
{
    return {a.low - b.low, a.high - b.high};
}
template <class Wide> inline Sums<Wide> operator*(std::int32_t factor, const Sums<Wide> &a)
{
    const Vector<Wide> factors = everywhere(static_cast<Wide>(factor));
    return {factors * a.low, factors * a.high};
}

// Two samples of a pair side by side, from one vector of the first and one of the second. Products of both are added up
// by one instruction.
inline S16s weighted(U8s pairs, std::int32_t first, std::int32_t second)
{
#if ORV_SHUFFLES
    return pairSums(pairs, as<std::int8_t>(everywhere(static_cast<std::int16_t>(second * 256 + (first & 0xFF)))));
#else
    const U16s words = as<std::uint16_t>(pairs);
    return as<std::int16_t>(words & std::uint16_t{0xFF}) * everywhere(static_cast<std::int16_t>(first)) +
           as<std::int16_t>(words >> 8) * everywhere(static_cast<std::int16_t>(second));
#endif
}
inline S32s weighted(S16s pairs, std::int32_t first, std::int32_t second)
{
    return pairSums(pairs, as<std::int16_t>(everywhere(second * 65536 + (first & 0xFFFF))));
}
template <class Sample> struct Pairs {
    Vector<Sample> low, high;

    Pairs(Vector<Sample> first, Vector<Sample> second)
        : low(interleaveLow<Sample>(first, second)), high(interleaveHigh<Sample>(first, second))
    {
    }
    auto sums(std::int32_t first, std::int32_t second) const
    {
        return Sums<std::conditional_t<sizeof(Sample) == 1, std::int16_t, std::int32_t>>{weighted(low, first, second),
                                                                                         weighted(high, first, second)};
    }
    friend auto operator*(std::int32_t factor, const Pairs &pairs) { return pairs.sums(factor, factor); }
};

// Divided by a power of two: to nearest, ties to even. Where words are rounded to nearest by one instruction, the ties
// that went up to an odd number go back.
template <int shift, class Wide> inline Vector<Wide> halved(Vector<Wide> sum)
{
    constexpr Wide half = 1 << shift >> 1, one = 1;
#if ORV_SHUFFLES
    if constexpr (sizeof(Wide) == 2) {
        constexpr Wide fraction = 32768 >> shift, low = 4 * half - 1;
        return roundedProducts(sum, everywhere(fraction)) + ((sum & low) == half);
    }
#endif
    return (sum + static_cast<Wide>(half - one) + ((sum >> shift) & one)) >> shift;
}
template <int shift, class Wide> inline Sums<Wide> halved(const Sums<Wide> &sums)
{
    return {halved<shift, Wide>(sums.low), halved<shift, Wide>(sums.high)};
}

template <class Of> struct RowOf {
    using Sample = Of;
    static constexpr std::size_t count = perVector<Sample>;
    const unsigned char *sample;
    std::ptrdiff_t pixelBytes;

    Vector<Sample> at(std::ptrdiff_t right) const { return loadVector<Sample>(sample + right * pixelBytes); }
    Pairs<Sample> pair(std::ptrdiff_t right) const { return {at(-right), at(right)}; }
    auto difference() const { return pair(1).sums(1, -1); }
    static Vector<Sample> narrowed(const auto &sums) { return packed<Sample>(sums.low, sums.high); }
};

// Sums of more than 16 bits: their lower 16, and a quarter of them, of which each summand may lack up to 3/4.
struct LongSums {
    Sums<std::int16_t> sums, quarters;
};
inline LongSums operator+(const LongSums &a, const LongSums &b)
{
    return {a.sums + b.sums, a.quarters + b.quarters};
}

struct ByteRow : RowOf<std::uint8_t> {
    using Sum = Sums<std::int16_t>;

    Sum wide(std::ptrdiff_t right) const
    {
        const Pairs<Sample> words(at(right), U8s{});
        return {as<std::int16_t>(words.low), as<std::int16_t>(words.high)};
    }
    Sum centre() const { return wide(0); }
    // One pair has both weights, and the third sample needs no product.
    Sum oneTwoOne() const { return Pairs<Sample>(at(-1), at(0)).sums(1, 2) + wide(1); }

    using Total = LongSums;
    static Total total(const Sum &sums)
    {
        const auto quarter = [](S16s sum) { return as<std::int16_t>(as<std::uint16_t>(sum) >> 2); };
        return {sums, {quarter(sums.low), quarter(sums.high)}};
    }
    // A quotient from the quarters is the right one or one less. What it leaves of the sum tells which.
    static Sum by571(const Total &total)
    {
        const auto quotient = [](S16s sum, S16s quarter) {
            constexpr std::uint16_t half = 285 / 4, reciprocal = 65536 * 4 / 571;
            const S16s low = as<std::int16_t>(
                highProducts(as<std::uint16_t>(quarter) + half, everywhere<std::uint16_t>(reciprocal)));
            constexpr std::int16_t divisor = 571, mostLeft = divisor - 285 - 1;
            return low - (sum - low * divisor > mostLeft);
        };
        return {quotient(total.sums.low, total.quarters.low), quotient(total.sums.high, total.quarters.high)};
    }
};

struct WordRow : RowOf<std::int16_t> {
    using Sum = Sums<std::int32_t>;
    using Total = Sum;

    Pairs<Sample> centre() const { return {at(0), S16s{}}; }
    Sum oneTwoOne() const { return 1 * pair(1) + 2 * centre(); }
    static Total total(const Sum &sums) { return sums; }
    static Sum by571(const Sum &sums)
    {
        const auto quotient = [](S32s sum) {
            const S32s biased = sum + (286 + 571 * 32768), reciprocal = everywhere(7521834);
            return highProducts(biased, reciprocal) - 32768;
        };
        return {quotient(sums.low), quotient(sums.high)};
    }
};

#else

// Arithmetic in no more bits than a vector would have, so that the compiler's vectors hold as many samples.
template <class Value> struct Number {
    Value value;

    friend Number operator+(Number a, Number b) { return {static_cast<Value>(a.value + b.value)}; }
    friend Number operator-(Number a, Number b) { return {static_cast<Value>(a.value - b.value)}; }
    friend Number operator*(std::int32_t factor, Number a) { return {static_cast<Value>(factor * a.value)}; }
};

// Divided by a power of two: to nearest, ties to even.
template <int shift, class Value> inline Number<Value> halved(Number<Value> sum)
{
    const Value odd = (sum.value >> shift) & 1;
    return {static_cast<Value>(static_cast<Value>(sum.value + (1 << shift >> 1) - 1 + odd) >> shift)};
}

template <class Of, class Wide> struct RowOf {
    using Sample = Of;
    using Sum = Number<Wide>;
    using Total = Number<std::int32_t>;
    static constexpr std::size_t count = 384 / sizeof(Sample);
    const unsigned char *sample;
    std::ptrdiff_t pixelBytes;

    Sum at(std::ptrdiff_t right) const { return {load<Sample>(sample + right * pixelBytes, 0)}; }
    Sum centre() const { return at(0); }
    Sum pair(std::ptrdiff_t right) const { return at(-right) + at(right); }
    Sum difference() const { return at(-1) - at(1); }
    Sum oneTwoOne() const { return pair(1) + 2 * centre(); }
    static Sample narrowed(auto sum) { return saturated<Sample>(sum.value); }
};

struct ByteRow : RowOf<std::uint8_t, std::int16_t> {
    static Total total(Sum sum) { return {static_cast<std::uint16_t>(sum.value)}; }
    static Total by571(Total sum)
    {
        return {static_cast<std::int32_t>(static_cast<std::uint32_t>(sum.value + 286) * 29382 >> 24)};
    }
};

struct WordRow : RowOf<std::int16_t, std::int32_t> {
    static Total total(Sum sum) { return sum; }
    static Total by571(Total sum)
    {
        const std::uint32_t biased = static_cast<std::uint32_t>(sum.value + 286 + 571 * 32768);
        return {static_cast<std::int32_t>(std::uint64_t{biased} * 7521834 >> 32) - 32768};
    }
};

#endif
