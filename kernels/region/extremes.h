// The larger or the smaller of samples, of vectors and of rows. To be included inside the unnamed namespace of a
// region, after points.h.

struct Largest {
    template <class Sample> Sample operator()(Sample a, Sample b) const { return a > b ? a : b; }
#if ORV_VECTOR_BYTES > 0
    U8s operator()(U8s a, U8s b) const
    {
        return maximum(a, b);
    }
    S16s operator()(S16s a, S16s b) const
    {
        return maximum(a, b);
    }
#endif
};
struct Smallest {
    template <class Sample> Sample operator()(Sample a, Sample b) const { return a < b ? a : b; }
#if ORV_VECTOR_BYTES > 0
    U8s operator()(U8s a, U8s b) const
    {
        return minimum(a, b);
    }
    S16s operator()(S16s a, S16s b) const
    {
        return minimum(a, b);
    }
#endif
};

// Runs body<Value>(at) over the bytes of a row, by vectors where the row has one, `atOnce` of them in a turn. The last
// vector overlaps what is before it: it computes that again.
template <class Sample, std::size_t atOnce = 1, class Body> inline void overBytes(std::size_t bytes, Body body)
{
#if ORV_VECTOR_BYTES > 0
    if (bytes >= ORV_VECTOR_BYTES) {
        std::size_t at = 0;
        for (; atOnce > 1 && at + atOnce * ORV_VECTOR_BYTES <= bytes; at += atOnce * ORV_VECTOR_BYTES)
            for (std::size_t i = 0; i < atOnce; ++i)
                body.template operator()<Vector<Sample>>(at + i * ORV_VECTOR_BYTES);
        for (; at + ORV_VECTOR_BYTES <= bytes; at += ORV_VECTOR_BYTES)
            body.template operator()<Vector<Sample>>(at);
        if (at < bytes)
            body.template operator()<Vector<Sample>>(bytes - ORV_VECTOR_BYTES);
        return;
    }
    // Hides that the row is short, for which the compiler would repeat the loop instead of running it.
    __asm__("" : "+r"(bytes));
    for (std::size_t at = 0; at < bytes; at += sizeof(Sample)) {
        ORV_NOT_VECTORIZED;
        body.template operator()<Sample>(at);
    }
#else
    ORV_INDEPENDENT
    for (std::size_t i = 0; i < bytes / sizeof(Sample); ++i)
        body.template operator()<Sample>(i * sizeof(Sample));
#endif
}

constexpr std::size_t mostPlaces = 5; // that bestOf() takes at once

// The best of several places, for a row from each place on. All move on by `inStep` bytes from row to row. The result
// may lie over the first place if it is whole vectors, or if the other places are other rows.
template <class Sample, class Better, std::size_t count>
[[gnu::noinline]] void bestOf(const unsigned char *const *places, std::int32_t inStep, Raster out, std::size_t bytes,
                              std::int32_t height)
{
    const unsigned char *in[count];
    for (std::size_t i = 0; i < count; ++i)
        in[i] = places[i];
    const Better better;
    for (std::int32_t row = 0; row < height; ++row, out = out.fromRow(1)) {
        overBytes<Sample, 4>(bytes, [&]<class Value>(std::size_t at) {
            Value found = load<Value>(in[0] + at, 0);
            for (std::size_t i = 1; i < count; ++i)
                found = better(found, load<Value>(in[i] + at, 0));
            store(out.data + at, 0, found);
        });
        for (std::size_t i = 0; i < count; ++i)
            in[i] += inStep;
    }
}

template <class Sample, class Better>
void bestOf(std::size_t count, const unsigned char *const *places, std::int32_t inStep, Raster out, std::size_t bytes,
            std::int32_t height)
{
    static constexpr decltype(&bestOf<Sample, Better, 1>) byCount[] = {
        bestOf<Sample, Better, 1>, bestOf<Sample, Better, 2>, bestOf<Sample, Better, 3>, bestOf<Sample, Better, 4>,
        bestOf<Sample, Better, mostPlaces>};
    byCount[count - 1](places, inStep, out, bytes, height);
}
