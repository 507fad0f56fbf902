// Sums of products by vectors, two products at a time: bytes in words, words in 32 bits. To be included after
// coefficients.h, in builds with vectors.

// Two factors for neighbouring places of a vector, by sample type, and the type of the sums.
template <class Sample> struct PairTypes;
template <> struct PairTypes<std::int16_t> {
    using Sum = std::int32_t;
    using Factor = std::int16_t;

    static S16s factors(std::int32_t first, std::int32_t second)
    {
        return as<std::int16_t>(
            everywhere(static_cast<std::int32_t>(static_cast<std::uint32_t>(second) << 16 | (first & 0xFFFF))));
    }
    static bool fit(std::int32_t, std::int32_t) { return true; }
};
#if ORV_SHUFFLES
template <> struct PairTypes<std::uint8_t> {
    using Sum = std::int16_t;
    using Factor = std::int8_t;

    static S8s factors(std::int32_t first, std::int32_t second)
    {
        return as<std::int8_t>(everywhere(static_cast<std::int16_t>(second * 256 + (first & 0xFF))));
    }
    // The sum of two products saturates.
    static bool fit(std::int32_t first, std::int32_t second)
    {
        return first <= 127 && second <= 127 && first >= -128 && second >= -128 && first + second <= 128 &&
               first + second >= -128;
    }
};
#endif

// Two steps of a block: what a vector of samples from each offset adds to the even results and to the odd ones, or to
// the lower half of each lane and to the upper one.
template <class Sample> struct Step {
    std::ptrdiff_t first, second; // bytes from the first sample of the window
    Vector<typename PairTypes<Sample>::Factor> factors, moreFactors;
};

// How the products of a step pair up.
//   Interleaved  samples at two offsets, interleaved: any two coefficients
//   Neighbours   a sample and the one beside it: two coefficients side by side, for even results from one offset and
//   for
//                odd results from the next
//   Shared       the same for an odd number of columns, where even and odd results share their offset
enum class Pairing { Interleaved, Neighbours, Shared };

// Coefficients whose sums fit so narrow a type are mostly few. A window that has more is summed up plainly.
template <class Sample> struct StepList {
    static constexpr std::size_t most = 132;
    Step<Sample> steps[most];
    std::size_t count = 0;
    bool fits = true;

    void add(std::ptrdiff_t first, std::ptrdiff_t second, std::int32_t factor1, std::int32_t factor2,
             std::int32_t factor3, std::int32_t factor4)
    {
        using Types = PairTypes<Sample>;
        fits = fits && count < most && Types::fit(factor1, factor2) && Types::fit(factor3, factor4);
        if (fits && (factor1 | factor2 | factor3 | factor4) != 0)
            steps[count++] = {first, second, Types::factors(factor1, factor2), Types::factors(factor3, factor4)};
    }

    // One row of the window by neighbouring columns.
    void addNeighbours(const Coefficients &coefficients, std::int32_t row)
    {
        const std::int32_t columns = coefficients.window.columns;
        const auto value = [&](std::int32_t column) {
            return column >= 0 && column < columns ? coefficients.at(row, column) : 0;
        };
        const bool shared = columns % 2 != 0;
        for (std::int32_t column = 0; column < columns; column += 2) {
            const std::ptrdiff_t offset = coefficients.offset(row, column);
            const std::int32_t here = value(column), next = value(column + 1);
            if (shared)
                add(offset, offset, here, next, value(column - 1), here);
            else
                add(offset, coefficients.offset(row, column + 1), here, next, here, next);
        }
    }

    StepList(const Coefficients &coefficients, Pairing pairing)
    {
        if (pairing != Pairing::Interleaved) {
            for (std::int32_t row = 0; row < coefficients.window.rows; ++row)
                addNeighbours(coefficients, row);
            return;
        }
        overPairs(coefficients, [this](std::ptrdiff_t first, std::int32_t value1, std::ptrdiff_t second,
                                       std::int32_t value2) { add(first, second, value1, value2, value1, value2); });
    }
};

// So many vectors that their sums stay in registers.
#if defined(__x86_64__)
constexpr std::size_t mostVectors = 4;
#else
constexpr std::size_t mostVectors = 2;
#endif

template <Pairing pairing, std::size_t vectors, class Sample, class Finish>
inline void sumBlock(const unsigned char *in, unsigned char *out, const StepList<Sample> &list, const Finish &finish)
{
    Vector<typename PairTypes<Sample>::Sum> low[vectors] = {}, high[vectors] = {};
    for (const Step<Sample> *step = list.steps; step != list.steps + list.count; ++step)
        for (std::size_t i = 0; i < vectors; ++i) {
            const Vector<Sample> first = loadVectorOnce<Sample>(in + step->first, i * perVector<Sample>);
            Vector<Sample> second = first;
            if constexpr (pairing != Pairing::Shared)
                second = loadVectorOnce<Sample>(in + step->second, i * perVector<Sample>);
            if constexpr (pairing == Pairing::Interleaved) {
                low[i] += pairSums(interleaveLow<Sample>(first, second), step->factors);
                high[i] += pairSums(interleaveHigh<Sample>(first, second), step->factors);
            } else {
                low[i] += pairSums(first, step->factors);
                high[i] += pairSums(second, step->moreFactors);
            }
        }
    if constexpr (pairing != Pairing::Interleaved)
        for (std::size_t i = 0; i < vectors; ++i) {
            const auto even = low[i], odd = high[i];
            low[i] = interleaveLow<typename PairTypes<Sample>::Sum>(even, odd);
            high[i] = interleaveHigh<typename PairTypes<Sample>::Sum>(even, odd);
        }
    finish(out, low, high);
}

// A row of at least one vector.
template <Pairing pairing, class Sample, class Finish>
[[gnu::noinline]] void sumRow(std::size_t samples, const unsigned char *in, unsigned char *out,
                              const StepList<Sample> &list, const Finish &finish)
{
    using Out = typename Finish::Out;
    const auto one = [&](const unsigned char *from, unsigned char *to) {
        sumBlock<pairing, 1>(from, to, list, finish);
    };
    const auto most = [&](const unsigned char *from, unsigned char *to) {
        sumBlock<pairing, mostVectors>(from, to, list, finish);
    };
    overBlocks<Sample, mostVectors * perVector<Sample>, perVector<Sample>, Out>(samples, in, out, most, one);
}

// Words from 32 bits that hold the sum with half of the divisor on top, and bytes from those.
template <class Result> struct FinishWords {
    using Out = Result;
    ShiftCount shift;
    S32s half, one;

    explicit FinishWords(int by)
        : shift(static_cast<std::uint32_t>(by)), half(everywhere(static_cast<std::int32_t>(1u << by >> 1) - (by > 0))),
          one(everywhere<std::int32_t>(by > 0))
    {
    }

    S32s divided(S32s sums) const { return shiftedRight(sums + half + (shiftedRight(sums, shift) & one), shift); }

    template <std::size_t vectors>
    void operator()(unsigned char *out, const S32s (&low)[vectors], const S32s (&high)[vectors]) const
    {
        S16s words[vectors];
        for (std::size_t i = 0; i < vectors; ++i)
            words[i] = packed<std::int16_t>(divided(low[i]), divided(high[i]));
        if constexpr (sizeof(Out) == 2) {
            for (std::size_t i = 0; i < vectors; ++i)
                storeVector<std::int16_t>(out, i * perVector<std::int16_t>, words[i]);
        } else if constexpr (vectors == 1) {
            storeHalf<std::uint8_t>(out, 0, inOrderOfPairs(packed<std::uint8_t>(words[0], words[0])));
        } else {
            for (std::size_t i = 0; i < vectors; i += 2)
                storeVector<std::uint8_t>(out, i * perVector<std::int16_t>,
                                          inOrderOfPairs(packed<std::uint8_t>(words[i], words[i + 1])));
        }
    }
};

#if ORV_SHUFFLES

// Bytes from words that hold the sum; where it is not below zero, with half of the divisor on top.
template <bool positive> struct FinishBytes {
    using Out = std::uint8_t;
    ShiftCount shift;
    U16s half, one;

    explicit FinishBytes(int by)
        : shift(static_cast<std::uint32_t>(by)),
          half(everywhere(static_cast<std::uint16_t>((1u << by >> 1) - (by > 0)))),
          one(everywhere<std::uint16_t>(by > 0))
    {
    }

    S16s divided(S16s sums) const
    {
        const U16s whole = as<std::uint16_t>(positive ? sums : maximum(sums, S16s{}));
        return as<std::int16_t>(shiftedRight(whole + half + (shiftedRight(whole, shift) & one), shift));
    }

    template <std::size_t vectors>
    void operator()(unsigned char *out, const S16s (&low)[vectors], const S16s (&high)[vectors]) const
    {
        for (std::size_t i = 0; i < vectors; ++i)
            storeVector<std::uint8_t>(out, i * perVector<std::uint8_t>,
                                      packed<std::uint8_t>(divided(low[i]), divided(high[i])));
    }
};

struct FinishSums {
    using Out = std::int16_t;

    template <std::size_t vectors>
    void operator()(unsigned char *out, const S16s (&low)[vectors], const S16s (&high)[vectors]) const
    {
        for (std::size_t i = 0; i < vectors; ++i)
            storeHalvesInOrder<std::int16_t>(out, 2 * i * perVector<std::int16_t>, low[i], high[i]);
    }
};

#endif
