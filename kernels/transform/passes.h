// Passes over batches. To be included inside the unnamed namespace of a region, after butterflies.h.
//
// A pass reads elements from a place and writes them to another, part by part: in.load<Sample>(index, part) and
// out.store(index, part, value). Places other than buffers spare the first and the last pass a copy.

// The numbers of a part, which buffers hold as floats.
template <class Sample> inline Part<Sample> loadPart(const float *from)
{
#if ORV_VECTOR_BYTES > 0
    if constexpr (sizeof(Sample) == sizeof(double))
        return loadDoubles(from, 0);
    else
        return loadVector<Sample>(from);
#else
    return *from;
#endif
}
template <class Sample> inline void storePart(float *to, Part<Sample> value)
{
#if ORV_VECTOR_BYTES > 0
    if constexpr (sizeof(Sample) == sizeof(double))
        storeAsFloats(to, 0, value);
    else
        storeVector<Sample>(to, 0, value);
#else
    *to = static_cast<float>(value);
#endif
}

// Elements in a buffer, `stride` elements apart.
template <class Float> struct ElementsOf {
    Float *data;
    std::size_t stride = 1;

    template <class Sample> Float *at(std::size_t index, std::size_t part) const
    {
        return data + batchElement * stride * index + partLanes<Sample> * part;
    }
    template <class Sample> Complex<Sample> load(std::size_t index, std::size_t part) const
    {
        const float *const from = at<Sample>(index, part);
        return {loadPart<Sample>(from), loadPart<Sample>(from + batchLanes)};
    }
    template <class Sample> void store(std::size_t index, std::size_t part, const Complex<Sample> &value) const
    {
        float *const to = at<Sample>(index, part);
        storePart<Sample>(to, value.re);
        storePart<Sample>(to + batchLanes, value.im);
    }
};
using Elements = ElementsOf<float>;
using ConstElements = ElementsOf<const float>;

// The butterflies of one group from its element `q` on. The first group has no twiddles.
template <class Sample, std::size_t radix, bool turns, class In, class Out>
inline void runButterfly(const FourierPass &pass, const float *twiddles, std::size_t p, std::size_t q, In in, Out out)
{
    ORV_INDEPENDENT
    for (std::size_t part = 0; part < partCount<Sample>; ++part) {
        Complex<Sample> x[radix];
        for (std::size_t j = 0; j < radix; ++j)
            x[j] = in.template load<Sample>(q + pass.span * (p + j * pass.groups), part);
        Butterfly<radix>::run(x);
        out.store(q + pass.span * radix * p, part, x[0]);
        for (std::size_t k = 1; k < radix; ++k)
            out.store(q + pass.span * (radix * p + k), part,
                      turns ? product(x[k], numberAt<Sample>(twiddles, k - 1)) : x[k]);
    }
}

template <class Sample, std::size_t radix, class In, class Out>
[[gnu::noinline]] void runPassOf(const FourierPass &pass, In in, Out out)
{
    for (std::size_t q = 0; q < pass.span; ++q)
        runButterfly<Sample, radix, false>(pass, nullptr, 0, q, in, out);
    for (std::size_t p = 1; p < pass.groups; ++p)
        for (std::size_t q = 0; q < pass.span; ++q)
            runButterfly<Sample, radix, true>(pass, pass.twiddles + 2 * (radix - 1) * p, p, q, in, out);
}

// An odd radix without code of its own, whose long sums are of doubles.
template <class In, class Out>
inline void runLongButterfly(const FourierPass &pass, std::size_t p, std::size_t q, std::size_t part, In in, Out out)
{
    using Number = Complex<double>;
    const std::size_t radix = static_cast<std::size_t>(pass.radix), half = radix / 2;
    const float *const twiddles = pass.twiddles + 2 * (radix - 1) * p;
    const auto put = [&](std::size_t k, const Number &value) {
        out.store(q + pass.span * (radix * p + k), part, product(value, numberAt<double>(twiddles, k - 1)));
    };
    Number sums[mostRadix / 2], differences[mostRadix / 2];
    const Number first = in.template load<double>(q + pass.span * p, part);
    Number all = first;
    for (std::size_t j = 1; j <= half; ++j) {
        const Number a = in.template load<double>(q + pass.span * (p + j * pass.groups), part);
        const Number b = in.template load<double>(q + pass.span * (p + (radix - j) * pass.groups), part);
        sums[j - 1] = sum(a, b);
        differences[j - 1] = difference(a, b);
        all = sum(all, sums[j - 1]);
    }
    for (std::size_t k = 1; k <= half; ++k) {
        Number even = first, odd = {};
        for (std::size_t j = 1, turn = k; j <= half; ++j) {
            const Number root = numberAt<double>(pass.roots, turn);
            even = sum(even, scaled(root.re, sums[j - 1]));
            odd = sum(odd, scaled(root.im, differences[j - 1]));
            turn += k;
            turn -= turn < radix ? 0 : radix;
        }
        put(k, differenceTurned(even, odd));
        put(radix - k, sumTurned(even, odd));
    }
    out.store(q + pass.span * radix * p, part, all);
}

template <class In, class Out> [[gnu::noinline]] void runLongPass(const FourierPass &pass, In in, Out out)
{
    const DoublePrecision doubles;
    for (std::size_t p = 0; p < pass.groups; ++p)
        for (std::size_t q = 0; q < pass.span; ++q)
            for (std::size_t part = 0; part < partCount<double>; ++part)
                runLongButterfly(pass, p, q, part, in, out);
}

// False where the radix has no code of its own.
template <class Sample, class In, class Out> inline bool runCodedPass(const FourierPass &pass, In in, Out out)
{
    switch (pass.radix) {
    case 2:
        runPassOf<Sample, 2>(pass, in, out);
        return true;
    case 3:
        runPassOf<Sample, 3>(pass, in, out);
        return true;
    case 4:
        runPassOf<Sample, 4>(pass, in, out);
        return true;
    case 5:
        runPassOf<Sample, 5>(pass, in, out);
        return true;
    case 7:
        runPassOf<Sample, 7>(pass, in, out);
        return true;
    case 8:
        runPassOf<Sample, 8>(pass, in, out);
        return true;
    case 11:
        runPassOf<Sample, 11>(pass, in, out);
        return true;
    case 13:
        runPassOf<Sample, 13>(pass, in, out);
        return true;
    default:
        return false;
    }
}
