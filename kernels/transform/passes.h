// Passes over batches. To be included inside the unnamed namespace of a region, after butterflies.h.
//
// A pass reads elements from a place and writes them to another, part by part: in.load(index, part) and
// out.store(index, part, value). Places other than buffers spare the first and the last pass a copy.

// Elements in a buffer, `stride` elements apart.
template <class Float> struct ElementsOf {
    Float *data;
    std::size_t stride = 1;

    Float *at(std::size_t index, std::size_t part) const
    {
        return data + batchElement * stride * index + partLanes * part;
    }
    Complex load(std::size_t index, std::size_t part) const
    {
        Float *const from = at(index, part);
#if ORV_VECTOR_BYTES > 0
        return {loadVector<float>(from), loadVector<float>(from + batchLanes)};
#else
        return {*from, from[batchLanes]};
#endif
    }
    void store(std::size_t index, std::size_t part, const Complex &value) const
    {
        Float *const to = at(index, part);
#if ORV_VECTOR_BYTES > 0
        storeVector<float>(to, 0, value.re);
        storeVector<float>(to + batchLanes, 0, value.im);
#else
        *to = value.re;
        to[batchLanes] = value.im;
#endif
    }
};

using Elements = ElementsOf<float>;
using ConstElements = ElementsOf<const float>;

// The butterflies of one group from its element `q` on. The first group has no twiddles.
template <std::size_t radix, bool turns, class In, class Out>
inline void runButterfly(const FourierPass &pass, const float *twiddles, std::size_t p, std::size_t q, In in, Out out)
{
    ORV_INDEPENDENT
    for (std::size_t part = 0; part < partCount; ++part) {
        Complex x[radix];
        for (std::size_t j = 0; j < radix; ++j)
            x[j] = in.load(q + pass.span * (p + j * pass.groups), part);
        Butterfly<radix>::run(x);
        out.store(q + pass.span * radix * p, part, x[0]);
        for (std::size_t k = 1; k < radix; ++k)
            out.store(q + pass.span * (radix * p + k), part, turns ? product(x[k], twiddleAt(twiddles, k - 1)) : x[k]);
    }
}

template <std::size_t radix, class In, class Out>
[[gnu::noinline]] void runPassOf(const FourierPass &pass, In in, Out out)
{
    for (std::size_t q = 0; q < pass.span; ++q)
        runButterfly<radix, false>(pass, nullptr, 0, q, in, out);
    for (std::size_t p = 1; p < pass.groups; ++p)
        for (std::size_t q = 0; q < pass.span; ++q)
            runButterfly<radix, true>(pass, pass.twiddles + 2 * (radix - 1) * p, p, q, in, out);
}

// An odd radix without code of its own. Two sums at a time, for results from both ends.
template <class In, class Out>
inline void runLongButterfly(const FourierPass &pass, std::size_t p, std::size_t q, std::size_t part, In in, Out out)
{
    constexpr std::size_t most = 128;
    const std::size_t radix = static_cast<std::size_t>(pass.radix), half = radix / 2;
    const float *const twiddles = pass.twiddles + 2 * (radix - 1) * p;
    const auto put = [&](std::size_t k, const Complex &value) {
        out.store(q + pass.span * (radix * p + k), part, product(value, twiddleAt(twiddles, k - 1)));
    };
    Complex sums[most / 2], differences[most / 2];
    const Complex first = in.load(q + pass.span * p, part);
    Complex all = first;
    for (std::size_t j = 1; j <= half; ++j) {
        const Complex a = in.load(q + pass.span * (p + j * pass.groups), part);
        const Complex b = in.load(q + pass.span * (p + (radix - j) * pass.groups), part);
        sums[j - 1] = sum(a, b);
        differences[j - 1] = difference(a, b);
        all = sum(all, sums[j - 1]);
    }
    for (std::size_t k = 1; k <= half; ++k) {
        Complex even = first, odd = {};
        for (std::size_t j = 1, turn = k; j <= half; ++j) {
            const Complex root = twiddleAt(pass.roots, turn), &s = sums[j - 1], &d = differences[j - 1];
            even = sum(even, Complex{root.re * s.re, root.re * s.im});
            odd = sum(odd, Complex{root.im * d.re, root.im * d.im});
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
    for (std::size_t p = 0; p < pass.groups; ++p)
        for (std::size_t q = 0; q < pass.span; ++q)
            for (std::size_t part = 0; part < partCount; ++part)
                runLongButterfly(pass, p, q, part, in, out);
}

template <class In, class Out> inline void runPass(const FourierPass &pass, In in, Out out)
{
    switch (pass.radix) {
    case 2:
        return runPassOf<2>(pass, in, out);
    case 3:
        return runPassOf<3>(pass, in, out);
    case 4:
        return runPassOf<4>(pass, in, out);
    case 5:
        return runPassOf<5>(pass, in, out);
    case 7:
        return runPassOf<7>(pass, in, out);
    case 8:
        return runPassOf<8>(pass, in, out);
    case 11:
        return runPassOf<11>(pass, in, out);
    case 13:
        return runPassOf<13>(pass, in, out);
    default:
        return runLongPass(pass, in, out);
    }
}
