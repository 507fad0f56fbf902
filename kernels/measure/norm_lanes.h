// What norms of integers hold while they run: results of samples side by side. To be included after norms.h.
//
// A step takes so many samples that it starts at the same channel as the one before, whatever the layout. The layouts
// share the code, and the channels are told apart when all is folded.

template <class Sample> using Unsigned = std::conditional_t<sizeof(Sample) == 1, std::uint8_t, std::uint16_t>;

// The results of a call so far, by places that pixels of 1, 3 and 4 samples divide.
struct Places {
    static constexpr std::size_t count = 12;
    std::uint64_t of[count] = {};

    template <Norm norm> void join(std::size_t place, std::uint64_t value)
    {
        of[place % count] = joined<norm>(of[place % count], value);
    }
    template <Norm norm> void addTo(double *totals, std::size_t channels) const
    {
        std::uint64_t found[4] = {};
        for (std::size_t place = 0; place < count; place += channels)
            for (std::size_t channel = 0; channel < channels; ++channel)
                found[channel] = joined<norm>(found[channel], of[place + channel]);
        for (std::size_t channel = 0; channel < channels; ++channel)
            totals[channel] = joined<norm>(totals[channel], static_cast<double>(found[channel]));
    }
};

#if ORV_VECTOR_BYTES == 0

template <class Sample> inline Unsigned<Sample> magnitudeOf(Sample a, Sample b = 0)
{
    const Sample high = a > b ? a : b, low = a > b ? b : a;
    return static_cast<Unsigned<Sample>>(high - low);
}

// The narrowest type that holds a few terms: the compiler's vectors have more of these.
template <Norm norm, class Sample> struct TermOf {
    using Type = std::conditional_t<norm == Norm::L2, std::uint32_t, Unsigned<Sample>>;
};
template <Norm norm, class Sample> struct LaneOf {
    using Type = std::conditional_t<
        norm == Norm::Inf, Unsigned<Sample>,
        std::conditional_t<sizeof(Sample) == 1 && norm == Norm::L1, std::uint16_t,
                           std::conditional_t<sizeof(Sample) == 2 && norm == Norm::L2, std::uint64_t, std::uint32_t>>>;
};

// Many lanes, of which the compiler makes a loop of vectors.
template <Norm norm, class Sample, bool oneChannel, bool differs> struct Lanes {
    using Term = typename TermOf<norm, Sample>::Type;
    using Lane = typename LaneOf<norm, Sample>::Type;
    static constexpr std::size_t samples = 16 * Places::count;
    static constexpr std::size_t mostSteps = sizeof(Lane) == 2 ? 256 : 65536;
    Lane found[samples] = {};

    template <class... Source> void take(std::size_t some, const Source *...in)
    {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < some; ++i) {
            const Term magnitude = magnitudeOf<Sample>(load<Sample>(in, i)...);
            const Term term = norm == Norm::L2 ? static_cast<Term>(magnitude * magnitude) : magnitude;
            found[i] = static_cast<Lane>(joined<norm>(found[i], Lane{term}));
        }
    }
    void fold(Places &places)
    {
        for (std::size_t i = 0; i < samples; ++i)
            places.join<norm>(i, found[i]);
        *this = {};
    }
};

#endif
