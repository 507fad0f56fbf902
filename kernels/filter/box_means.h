// What the sums of a window become, and running sums of several rows in plain code. To be included inside the unnamed
// namespace of a region, after windows.h.

// Sums of floats depend on their order. The sum of a column takes the difference of the row that enters and the row
// that leaves. The sum of a window takes the same difference of columns.
inline std::int32_t added(std::int32_t a, std::int32_t b)
{
    return a + b;
}
inline float added(float a, float b)
{
    return singleFloat(a + b);
}

inline std::int32_t difference(std::int32_t a, std::int32_t b)
{
    return a - b;
}
inline float difference(float a, float b)
{
    return singleFloat(a - b);
}

inline float reciprocal(const Window &window)
{
    return singleFloat(1.0f / static_cast<float>(window.columns * window.rows));
}

// A quotient as a product with 12 bits of the reciprocal, rounded up.
struct ByteMean {
    using Sample = std::uint8_t;
    using Sum = std::int32_t;
    std::uint32_t multiplier, shift;

    explicit ByteMean(const Window &window)
    {
        const float inverse = reciprocal(window);
        double wide = inverse * 4294967295.0;
        __asm__("" : "+m"(wide));
        std::uint32_t value = static_cast<std::uint32_t>(static_cast<std::int64_t>(wide)), shifts = 0;
        for (; shifts < 24 && value < 0x80000000; value <<= 1)
            ++shifts;
        multiplier = inverse == 1 ? 256 : (value >> 20) + 1;
        shift = inverse == 1 ? 8 : shifts + 12;
    }
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const
    {
        return static_cast<Sample>(multiplier * static_cast<std::uint32_t>(sum) >> shift);
    }
};

// Beyond what such a product holds.
struct LargeByteMean {
    using Sample = std::uint8_t;
    using Sum = float;
    float inverse;

    explicit LargeByteMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const
    {
        return static_cast<Sample>(static_cast<std::int32_t>(singleFloat(sum * inverse)));
    }
};

// Samples count from the lowest, so that truncation rounds down.
struct WordMean {
    using Sample = std::int16_t;
    using Sum = std::int32_t;
    static constexpr float above = 9.0e-6f; // what the product of a whole mean may lack
    float inverse;

    explicit WordMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample + 32768; }
    Sample operator()(Sum sum) const
    {
        const float mean = singleFloat(singleFloat(static_cast<float>(sum)) * inverse);
        return static_cast<Sample>(static_cast<std::int32_t>(singleFloat(mean + above)) ^ 0x8000);
    }
};

struct FloatMean {
    using Sample = float;
    using Sum = float;
    float inverse;

    explicit FloatMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const { return sum * inverse; }
};

// Column sums of several rows, in scratch. Row 0 is above the others.
struct ColumnRows {
    unsigned char *data;
    std::size_t step;

    unsigned char *row(std::size_t number) const { return data + number * step; }
};

// How many samples of its row a sum is behind the one that enters it, and channels.
struct Lag {
    std::size_t samples, channels;
};

// Row by row.
template <class Mean> struct PlainRows : Mean {
    using Sum = typename Mean::Sum;
    using Sample = typename Mean::Sample;
    using Column = Sum;
    static constexpr std::size_t rows = 4, block = 1;
    struct Sums {
        Sum of[rows][4];
    };

    using Mean::Mean;

    // The first sums of all channels.
    static void start(ColumnRows columns, const Lag &lag, Sums &sums)
    {
        sums = {};
        for (std::size_t row = 0; row < rows; ++row)
            for (std::size_t channel = 0; channel < lag.channels; ++channel) {
                Sum &sum = sums.of[row][channel];
                for (std::size_t i = channel; i < lag.samples; i += lag.channels)
                    sum = added(sum, load<Sum>(columns.row(row + 1), i));
            }
    }

    // The results of samples `begin` to `end`, of which the first one goes to `out`.
    void run(ColumnRows columns, std::size_t begin, std::size_t end, const Lag &lag, Sums &sums, Raster out) const
    {
        for (std::size_t row = 0; row < rows; ++row, out = out.fromRow(1))
            for (std::size_t channel = 0; channel < lag.channels; ++channel) {
                const unsigned char *leaving = columns.row(row + 1), *entering = leaving + lag.samples * sizeof(Sum);
                Sum sum = sums.of[row][channel];
                for (std::size_t i = begin + channel; i < end; i += lag.channels) {
                    store(out.data, i - begin, (*this)(sum));
                    sum = added(sum, difference(load<Sum>(entering, i), load<Sum>(leaving, i)));
                }
                sums.of[row][channel] = sum;
            }
    }
};
