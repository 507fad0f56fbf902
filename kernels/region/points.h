// Kernels that compute each sample from the samples at the same place: a kernel is an operator and a layout. To be
// included inside the unnamed namespace of a region, after rows.h (and vectors.h, where ORV_SSE_LEVEL is 2 or more).
//
// An operator takes one sample of each source. Where there is also a vectorOf(operator, vectors...), that takes sixteen
// bytes of each, and is what runs in builds with vectors; or a member many(samples, out, in...), which does most of a
// row and says how many samples that was. Else the compiler makes what it can of the loop.

// Layouts by their samples a pixel; AC4 leaves every fourth sample as it is.
enum : std::size_t { C1 = 1, C3 = 3, C4 = 4, AC4 = 0 };

constexpr std::size_t samplesOf(std::size_t layout)
{
    return layout == AC4 ? 4 : layout;
}

#if ORV_SSE_LEVEL >= 2
// An operator whose formula serves numbers and vectors alike has it as a member.
inline auto vectorOf(auto operation, auto... vectors) requires requires
{
    operation.vector(vectors...);
}
{
    return operation.vector(vectors...);
}
#endif

#if ORV_SSE_LEVEL >= 2
// Long rows of two sources and a destination of its own fill no cache that serves them all. Stores that pass the caches
// by save the reading of what they overwrite.
template <class... Source> inline bool worthStreaming(std::size_t bytes, const unsigned char *out, const Source *...in)
{
    constexpr std::size_t longRow = std::size_t{8} << 20;
    return bytes >= longRow && reinterpret_cast<std::uintptr_t>(out) % 16 == 0 && (... && (in != out));
}
#endif

// Not inlined: the layouts of a kernel share it.
template <class Out, class In, class Operator, class... Source>
__attribute__((noinline)) void computeRow(std::size_t samples, Operator operation, unsigned char *out,
                                          const Source *...in)
{
    std::size_t i = 0;
#if ORV_SSE_LEVEL >= 2
    if constexpr (requires { operation.many(samples, out, in...); }) {
        i = operation.many(samples, out, in...);
    } else if constexpr (requires { vectorOf(operation, loadVector<In>(in, 0)...); }) {
        if (sizeof...(in) > 1 && worthStreaming(samples * sizeof(Out), out, in...)) {
            for (; i + 16 / sizeof(Out) <= samples; i += 16 / sizeof(Out))
                streamVector<Out>(out, i, vectorOf(operation, loadVector<In>(in, i)...));
            _mm_sfence();
        }
        ORV_UNROLLED
        for (; i + 16 / sizeof(Out) <= samples; i += 16 / sizeof(Out))
            storeVector<Out>(out, i, vectorOf(operation, loadVector<In>(in, i)...));
    }
#endif
    ORV_INDEPENDENT
    for (; i < samples; ++i)
        store(out, i, static_cast<Out>(operation(load<In>(in, i)...)));
}

// Pixels of four samples, of which the fourth stays: computed all four into a buffer, and moved from there.
template <class Out, class In, class Operator, class... Source>
__attribute__((noinline)) void computeThreeOfFour(std::size_t pixels, Operator operation, unsigned char *out,
                                                  const Source *...in)
{
    std::size_t i = 0;
#if ORV_SSE_LEVEL >= 2
    if constexpr (requires { vectorOf(operation, loadVector<In>(in, 0)...); }) {
        constexpr std::size_t lanes = 16 / sizeof(Out);
        ORV_UNROLLED
        for (; 4 * i + lanes <= 4 * pixels; i += lanes / 4)
            storeVector<Out>(
                out, 4 * i,
                keepingFourth<Out>(vectorOf(operation, loadVector<In>(in, 4 * i)...), loadVector<Out>(out, 4 * i)));
    }
#endif
    constexpr std::size_t most = 128;
    unsigned char buffer[most * 4 * sizeof(Out)];
    while (i < pixels) {
        const std::size_t some = pixels - i < most ? pixels - i : most;
        computeRow<Out, In>(4 * some, operation, buffer, (in + 4 * i * sizeof(In))...);
        moveThreeOfFour<Out>(some, buffer, out + 4 * i * sizeof(Out));
        i += some;
    }
}

// A raster as a kernel is given it.
template <class Pointer> struct Given {
    Pointer data;
    std::int32_t step;
};
template <class Pointer> Given(Pointer *, std::int32_t) -> Given<Pointer *>;

template <class Out, std::size_t layout, class In = Out, class Operator, class... Source>
inline KrnStatus compute(std::int32_t width, std::int32_t height, Operator operation, Given<void *> out, Source... in)
{
    constexpr std::int32_t channels = static_cast<std::int32_t>(samplesOf(layout));
    const auto row = [=](std::size_t pixels, unsigned char *result, auto *...sources) {
        if constexpr (layout == AC4)
            computeThreeOfFour<Out, In>(pixels, operation, result, sources...);
        else
            computeRow<Out, In>(pixels * samplesOf(layout), operation, result, sources...);
    };
    return overRows(width, height, row, to(out.data, out.step, channels * static_cast<std::int32_t>(sizeof(Out))),
                    from(in.data, in.step, channels * static_cast<std::int32_t>(sizeof(In)))...);
}

// One row of so many samples.
template <class Sample, class Operator, class... Source>
inline KrnStatus computeOneRow(std::int32_t length, Operator operation, void *out, const Source *...in)
{
    if (out == nullptr || (... || (in == nullptr)))
        return KRN_NULL_POINTER;
    if (length < 1)
        return KRN_BAD_SIZE;
    computeRow<Sample, Sample>(static_cast<std::size_t>(length), operation, static_cast<unsigned char *>(out),
                               static_cast<const unsigned char *>(in)...);
    return KRN_OK;
}

// One value a channel. Where they are all the same, which is the common case, a pixel is as many samples of the one
// channel; else the channels are computed one by one.
template <class Sample, std::size_t layout, class Value, class Make, class... In>
inline KrnStatus computeByChannel(const void *values, std::int32_t width, std::int32_t height, Make make,
                                  Given<void *> out, In... in)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    constexpr std::size_t channels = layout == AC4 ? 3 : layout;
    bool same = true;
    for (std::size_t channel = 1; channel < channels; ++channel)
        same = same && load<Value>(values, channel) == load<Value>(values, 0);
    if (same)
        return compute<Sample, layout>(width, height, make(load<Value>(values, 0)), out, in...);
    constexpr std::int32_t pixelBytes = static_cast<std::int32_t>(samplesOf(layout) * sizeof(Sample));
    const auto row = [=](std::size_t pixels, unsigned char *result, auto *...sources) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const auto operation = make(load<Value>(values, channel));
            for (std::size_t i = channel; i < pixels * samplesOf(layout); i += samplesOf(layout))
                store(result, i, static_cast<Sample>(operation(load<Sample>(sources, i)...)));
        }
    };
    return overRows(width, height, row, to(out.data, out.step, pixelBytes), from(in.data, in.step, pixelBytes)...);
}
