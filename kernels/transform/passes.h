// Passes over batches. To be included inside the unnamed namespace of a region, after butterflies.h.
//
// A pass reads elements from a place and writes them to another, part by part. A place knows where the elements of a
// batch start, start(batch); how far elements are apart, stride(); how a part is loaded from and stored to an address;
// and whether elements are so far apart that no cache foresees them. Places other than buffers spare the first and the
// last pass a copy.

// The numbers of a part, which buffers hold as floats.
template <class Sample> inline Part<Sample> loadPart(const float *from)
{
#if ORV_VECTOR_BYTES > 0
    if constexpr (sizeof(Sample) == sizeof(double))
        return loadDoubles(from, 0);
    else
        return loadVector<Sample>(__builtin_assume_aligned(from, sizeof(Vector<Sample>)));
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
        storeVector<Sample>(__builtin_assume_aligned(to, sizeof(Vector<Sample>)), 0, value);
#else
    *to = static_cast<float>(value);
#endif
}

// Elements in a buffer, so many elements apart.
template <class Float> struct ElementsOf {
    static constexpr bool isScattered = false;

    Float *data;
    std::size_t apart = 1;

    Float *start(std::size_t) const { return data; }
    Float *address(std::size_t index) const { return data + stride() * index; }
    std::size_t stride() const { return batchElement * apart; }

    template <class Sample> static Complex<Sample> loadAt(const float *from, std::size_t part)
    {
        from += partLanes<Sample> * part;
        return {loadPart<Sample>(from), loadPart<Sample>(from + batchLanes)};
    }
    template <class Sample> static void storeAt(float *to, std::size_t part, const Complex<Sample> &value)
    {
        to += partLanes<Sample> * part;
        storePart<Sample>(to, value.re);
        storePart<Sample>(to + batchLanes, value.im);
    }
    template <class Sample> Complex<Sample> load(std::size_t index, std::size_t part) const
    {
        return loadAt<Sample>(address(index), part);
    }
    template <class Sample> void store(std::size_t index, std::size_t part, const Complex<Sample> &value) const
    {
        storeAt(address(index), part, value);
    }
};
using Elements = ElementsOf<float>;
using ConstElements = ElementsOf<const float>;

// The butterfly of the elements from `from` on, whose results stand from `to` on. The first group has no twiddles.
template <class Sample, std::size_t radix, bool turns, class In, class Out>
inline void runButterfly(const float *twiddles, auto *from, std::size_t inStride, auto *to, std::size_t outStride)
{
    ORV_PARTS
    for (std::size_t part = 0; part < partCount<Sample>; ++part) {
        Complex<Sample> x[radix];
        for (std::size_t j = 0; j < radix; ++j)
            x[j] = In::template loadAt<Sample>(from + j * inStride, part);
        Butterfly<radix>::run(x);
        Out::storeAt(to, part, x[0]);
        for (std::size_t k = 1; k < radix; ++k)
            Out::storeAt(to + k * outStride, part, turns ? product(x[k], numberAt<Sample>(twiddles, k - 1)) : x[k]);
    }
}

template <class Sample, std::size_t radix, class In, class Out>
[[gnu::noinline]] void runPassOf(const FourierPass &pass, In in, Out out)
{
    // Copies, since results might be stored over the plan for all that a compiler knows.
    const std::size_t span = pass.span, groups = pass.groups;
    const std::size_t inStride = span * groups * in.stride(), outStride = span * out.stride();
    const float *twiddles = pass.twiddles;
    auto *from = in.start(0);
    auto *to = out.start(0);
    for (std::size_t q = 0; q < span; ++q, from += in.stride(), to += out.stride())
        runButterfly<Sample, radix, false, In, Out>(nullptr, from, inStride, to, outStride);
    for (std::size_t p = 1; p < groups; ++p) {
        twiddles += 2 * (radix - 1);
        to += (radix - 1) * outStride;
        for (std::size_t q = 0; q < span; ++q, from += in.stride(), to += out.stride())
            runButterfly<Sample, radix, true, In, Out>(twiddles, from, inStride, to, outStride);
    }
}

// Asks for the elements of a butterfly soon to come.
template <std::size_t radix, class Place> inline void prefetch(auto *from, std::size_t stride, std::size_t next)
{
    constexpr std::size_t ahead = 4;
    if constexpr (Place::isScattered)
        for (std::size_t j = 0; j < radix; ++j)
            __builtin_prefetch(from + j * stride + ahead * next, 0, 2);
}

// The first or the last pass of several batches side by side, from an image or to one.
template <class Sample, std::size_t radix, class In, class Out>
[[gnu::noinline]] void runPassesOf(const FourierPass &pass, In in, Out out, std::size_t batches)
{
    const std::size_t span = pass.span, groups = pass.groups;
    const std::size_t inStride = span * groups * in.stride(), outStride = span * out.stride();
    const float *twiddles = pass.twiddles;
    std::size_t from = 0, to = 0;
    for (std::size_t p = 0; p < groups; ++p, twiddles += 2 * (radix - 1), to += (radix - 1) * outStride)
        for (std::size_t q = 0; q < span; ++q, from += in.stride(), to += out.stride())
            for (std::size_t batch = 0; batch < batches; ++batch) {
                prefetch<radix, In>(in.start(batch) + from, inStride, in.stride());
                prefetch<radix, Out>(out.start(batch) + to, outStride, out.stride());
                runButterfly<Sample, radix, In::isScattered, In, Out>(twiddles, in.start(batch) + from, inStride,
                                                                      out.start(batch) + to, outStride);
            }
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

// Calls run() with the radix as a type. False where the radix has no code of its own.
template <class Run> inline bool withRadix(std::int32_t radix, Run run)
{
    switch (radix) {
    case 2:
        run(std::integral_constant<std::size_t, 2>());
        return true;
    case 3:
        run(std::integral_constant<std::size_t, 3>());
        return true;
    case 4:
        run(std::integral_constant<std::size_t, 4>());
        return true;
    case 5:
        run(std::integral_constant<std::size_t, 5>());
        return true;
    case 7:
        run(std::integral_constant<std::size_t, 7>());
        return true;
    case 8:
        run(std::integral_constant<std::size_t, 8>());
        return true;
    case 11:
        run(std::integral_constant<std::size_t, 11>());
        return true;
    case 13:
        run(std::integral_constant<std::size_t, 13>());
        return true;
    default:
        return false;
    }
}

template <class Sample, class In, class Out> inline bool runCodedPass(const FourierPass &pass, In in, Out out)
{
    return withRadix(pass.radix, [&](auto radix) { runPassOf<Sample, decltype(radix)::value>(pass, in, out); });
}
template <class Sample, class In, class Out>
inline bool runCodedPasses(const FourierPass &pass, In in, Out out, std::size_t batches)
{
    if (batches == 1)
        return runCodedPass<Sample>(pass, in, out);
    return withRadix(pass.radix,
                     [&](auto radix) { runPassesOf<Sample, decltype(radix)::value>(pass, in, out, batches); });
}
