// Windows of integer coefficients, what their sums become, and plain loops over them. To be included inside the unnamed
// namespace of a region, after windows.h.

// The coefficients of a window, read backwards while the window is read forwards, and what they can sum up to.
struct Coefficients {
    const void *values;
    Window window;
    std::ptrdiff_t rowBytes, pixelBytes; // of the source
    std::int64_t positive, negative;     // sums of those of one sign
    std::int64_t largest;                // without its sign

    std::int32_t at(std::int32_t row, std::int32_t column) const
    {
        const std::ptrdiff_t place = std::ptrdiff_t{row} * window.columns + column;
        return load<std::int32_t>(values,
                                  static_cast<std::size_t>(std::ptrdiff_t{window.columns} * window.rows - 1 - place));
    }
    // Bytes from the first sample of the window.
    std::ptrdiff_t offset(std::int32_t row, std::int32_t column) const { return row * rowBytes + column * pixelBytes; }

    // Calls take(row, column, value) for all coefficients that are not zero.
    template <class Take> void walk(Take take) const
    {
        for (std::int32_t row = 0; row < window.rows; ++row)
            for (std::int32_t column = 0; column < window.columns; ++column)
                if (const std::int32_t value = at(row, column); value != 0)
                    take(row, column, value);
    }
};

inline Coefficients coefficientsOf(const void *values, const Window &window, std::int32_t rowBytes,
                                   std::size_t pixelBytes)
{
    Coefficients coefficients = {values, window, rowBytes, static_cast<std::ptrdiff_t>(pixelBytes), 0, 0, 0};
    coefficients.walk([&](std::int32_t, std::int32_t, std::int64_t value) {
        const std::int64_t size = value < 0 ? -value : value;
        (value > 0 ? coefficients.positive : coefficients.negative) += value;
        coefficients.largest = size > coefficients.largest ? size : coefficients.largest;
    });
    return coefficients;
}

// Calls pair(offset, value, offset, value) for all coefficients that are not zero, two by two. A last one that is left
// over comes with a zero.
template <class Pair> inline void overPairs(const Coefficients &coefficients, Pair pair)
{
    std::ptrdiff_t waiting = -1;
    std::int32_t waitingValue = 0;
    coefficients.walk([&](std::int32_t row, std::int32_t column, std::int32_t value) {
        const std::ptrdiff_t offset = coefficients.offset(row, column);
        if (waiting < 0) {
            waiting = offset;
            waitingValue = value;
        } else {
            pair(waiting, waitingValue, offset, value);
            waiting = -1;
        }
    });
    if (waiting >= 0)
        pair(waiting, waitingValue, waiting, 0);
}

// From a sum to a sample: divided by 2 to the power of `shift`, to nearest with ties to even, and saturated.
template <class Sum> struct ToByte {
    using Out = std::uint8_t;
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
    using Out = Sample;
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
template <class Sample, class Result> struct Divided {
    using Out = Result;
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

// The sums themselves, which wrap where they pass a word.
struct AsItIs {
    using Out = std::int16_t;

    std::int16_t operator()(std::int16_t sum) const { return sum; }
};

// Sums of a type that holds all that the coefficients can sum up to, or that wraps as it should; coefficients of a type
// that holds them, or as much of them as matters to such a sum. Not inlined: the layouts share it.
template <class Sum, class Value, class Sample, class Finish>
[[gnu::noinline]] void sumPlainly(std::size_t samples, const unsigned char *in, unsigned char *out,
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
