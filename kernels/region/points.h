// Kernels that compute each sample from the samples at the same place: a kernel is an operator and a layout. To be
// included inside the unnamed namespace of a region, after rows.h and vectors.h.
//
// An operator takes one sample of each source. Where vectorOf(operator, vectors...) exists too, builds with vectors run
// that, and the operator itself on rows shorter than a vector only. Where samples of source and destination differ in
// width, an operator may have a member group(in) likewise: a Group of results from the samples at `in` on. Else the
// compiler vectorizes the loop, unless the operator has a member sampleBySample.

// Layouts by their samples a pixel; AC4 leaves every fourth sample as it is.
enum : std::size_t { C1 = 1, C3 = 3, C4 = 4, AC4 = 0 };

constexpr std::size_t samplesOf(std::size_t layout)
{
    return layout == AC4 ? 4 : layout;
}

// Defines a kernel for each layout.
#define ORV_LAYOUTS(define, ...) \
    define(C1, __VA_ARGS__) define(C3, __VA_ARGS__) define(C4, __VA_ARGS__) define(AC4, __VA_ARGS__)

// The x87 unit of 32-bit x86 goes on with more bits than a float has. Through memory it gives what vectors give.
inline float singleFloat(float value)
{
#if defined(__i386__)
    __asm__("" : "+m"(value));
#endif
    return value;
}

// In a loop that runs for a few samples only: vectors would be code that never runs.
#define ORV_NOT_VECTORIZED __asm__ volatile("")

#if ORV_VECTOR_BYTES > 0

// An operator whose formula serves numbers and vectors alike has it as a member.
inline auto vectorOf(auto operation, auto... vectors) requires requires
{
    operation.vector(vectors...);
}
{
    return operation.vector(vectors...);
}

// Long rows with several sources fill no cache that serves them all. Stores past the caches save the reading of what
// they overwrite.
constexpr std::size_t longRowBytes = std::size_t{8} << 20;

// Rows by vectors. The last one overlaps its neighbour where vectors do not divide the row. It is computed before
// anything is written, so that the row may be its own source. The row has at least one vector; finish(result, index)
// gives what is stored.
template <class Out, class In, class Operator, class Finish, class... Source>
inline void computeVectors(std::size_t samples, Operator operation, Finish finish, unsigned char *out,
                           const Source *...in)
{
    constexpr std::size_t step = perVector<Out>;
    const auto at = [=](std::size_t i) { return finish(vectorOf(operation, loadVector<In>(in, i)...), i); };
    const std::size_t tail = samples - step;
    const auto last = at(tail);
    std::size_t i = 0;
    if (sizeof...(in) > 1 && samples * sizeof(Out) >= longRowBytes && onVectorBoundary(out) && (... && (in != out))) {
        for (; i <= tail; i += step)
            streamVector<Out>(out, i, at(i));
        finishStreaming();
    }
    ORV_UNROLLED
    for (; i <= tail; i += step)
        storeVector<Out>(out, i, at(i));
    if (i != samples)
        storeVector<Out>(out, tail, last);
}

// The same by groups, for rows of at least one. Samples of several widths have no row in place: the last group may be
// computed from what is there when the others are stored.
template <class Out, class In, class Operator, class Finish>
inline void computeGroups(std::size_t samples, Operator operation, Finish finish, unsigned char *out,
                          const unsigned char *in)
{
    using Results = decltype(operation.group(in));
    const auto computeAt = [=](std::size_t i) {
        const Results results = operation.group(in + i * sizeof(In));
        for (std::size_t k = 0; k < Results::count; ++k) {
            const std::size_t at = i + k * perVector<Out>;
            storeVector<Out>(out, at, finish(results.vectors[k], at));
        }
    };
    const std::size_t tail = samples - Results::samples;
    std::size_t i = 0;
    for (; i <= tail; i += Results::samples)
        computeAt(i);
    if (i != samples)
        computeAt(tail);
}

// Computes a row by vectors where the operator knows them and the row is long enough.
template <class Out, class In, class Operator, class Finish, class... Source>
inline bool computedByVectors([[maybe_unused]] std::size_t samples, [[maybe_unused]] Operator operation,
                              [[maybe_unused]] Finish finish, [[maybe_unused]] unsigned char *out,
                              [[maybe_unused]] const Source *...in)
{
    if constexpr (requires { vectorOf(operation, loadVector<In>(in)...); }) {
        if (samples < perVector<Out>)
            return false;
        computeVectors<Out, In>(samples, operation, finish, out, in...);
        return true;
    } else if constexpr (requires { operation.group(in...); }) {
        if (samples < decltype(operation.group(in...))::samples)
            return false;
        computeGroups<Out, In>(samples, operation, finish, out, in...);
        return true;
    }
    return false;
}

#endif

// Not inlined: the layouts of a kernel share it.
template <class Out, class In, class Operator, class... Source>
[[gnu::noinline]] void computeRow(std::size_t samples, Operator operation, unsigned char *out, const Source *...in)
{
#if ORV_VECTOR_BYTES > 0
    if (computedByVectors<Out, In>(
            samples, operation, [](Vector<Out> result, std::size_t) { return result; }, out, in...))
        return;
    constexpr bool byVectors = requires
    {
        vectorOf(operation, loadVector<In>(in)...);
    }
    || requires
    {
        operation.group(in...);
    };
#else
    constexpr bool byVectors = false;
#endif
    if constexpr (byVectors || requires { operation.sampleBySample; }) {
        // Hides that the row is short, for which the compiler would repeat the loop instead of running it.
        __asm__("" : "+r"(samples));
        for (std::size_t i = 0; i < samples; ++i) {
            ORV_NOT_VECTORIZED;
            store(out, i, static_cast<Out>(operation(load<In>(in, i)...)));
        }
    } else {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < samples; ++i)
            store(out, i, static_cast<Out>(operation(load<In>(in, i)...)));
    }
}

// Pixels of four samples, of which the fourth stays. Without vectors all four are computed into a buffer, and moved
// from there.
template <class Out, class In, class Operator, class... Source>
[[gnu::noinline]] void computeThreeOfFour(std::size_t pixels, Operator operation, unsigned char *out,
                                          const Source *...in)
{
#if ORV_VECTOR_BYTES > 0
    if (computedByVectors<Out, In>(
            4 * pixels, operation,
            [out](Vector<Out> result, std::size_t i) { return keepingFourth<Out>(result, loadVector<Out>(out, i)); },
            out, in...))
        return;
#endif
    constexpr std::size_t most = 128;
    unsigned char buffer[most * 4 * sizeof(Out)];
    for (std::size_t i = 0; i < pixels; i += most) {
        const std::size_t some = pixels - i < most ? pixels - i : most;
        computeRow<Out, In>(4 * some, operation, buffer, (in + 4 * i * sizeof(In))...);
        moveThreeOfFour<Out>(some, buffer, out + 4 * i * sizeof(Out));
    }
}

// C1, C3 and C4 are one code: pixels of so many samples.
template <class Out, class In, class Operator, class... Source>
[[gnu::noinline]] KrnStatus computePixels(std::size_t channels, std::int32_t width, std::int32_t height,
                                          Operator operation, Raster out, Source... in)
{
    const auto row = [=](std::size_t pixels, unsigned char *result, auto *...sources) {
        computeRow<Out, In>(pixels * channels, operation, result, sources...);
    };
    return overRows(width, height, row, Pixels{out, channels * sizeof(Out)}, Pixels{in, channels * sizeof(In)}...);
}

template <class Out, std::size_t layout, class In = Out, class Operator, class... Source>
inline KrnStatus compute(std::int32_t width, std::int32_t height, Operator operation, Raster out, Source... in)
{
    if constexpr (layout != AC4)
        return computePixels<Out, In>(layout, width, height, operation, out, in...);
    const auto row = [=](std::size_t pixels, unsigned char *result, auto *...sources) {
        computeThreeOfFour<Out, In>(pixels, operation, result, sources...);
    };
    return overRows(width, height, row, Pixels{out, 4 * sizeof(Out)}, Pixels{in, 4 * sizeof(In)}...);
}

// One row.
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

// Pixels of `channels` samples, of which the first `computed` are computed, each channel by an operator of its own.
template <class Sample, class Value, class Make>
[[gnu::noinline]] KrnStatus computeChannels(std::size_t channels, std::size_t computed, const void *values,
                                            std::int32_t width, std::int32_t height, Make make, Raster out,
                                            ConstRaster in)
{
    const auto row = [=](std::size_t pixels, unsigned char *result, const unsigned char *source) {
        for (std::size_t channel = 0; channel < computed; ++channel) {
            const auto operation = make(load<Value>(values, channel));
            for (std::size_t i = channel; i < pixels * channels; i += channels) {
                ORV_NOT_VECTORIZED;
                store(result, i, static_cast<Sample>(operation(load<Sample>(source, i))));
            }
        }
    };
    const std::size_t pixelBytes = channels * sizeof(Sample);
    return overRows(width, height, row, Pixels{out, pixelBytes}, Pixels{in, pixelBytes});
}

// A raster and one value a channel. Where the values are all the same, which is the common case, a pixel is as many
// samples of one channel.
template <class Sample, std::size_t layout, class Value, class Make>
inline KrnStatus computeByChannel(const void *values, std::int32_t width, std::int32_t height, Make make, Raster out,
                                  ConstRaster in)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    constexpr std::size_t computed = layout == AC4 ? 3 : layout;
    for (std::size_t channel = 1; channel < computed; ++channel)
        if (load<Value>(values, channel) != load<Value>(values, 0))
            return computeChannels<Sample, Value>(samplesOf(layout), computed, values, width, height, make, out, in);
    return compute<Sample, layout>(width, height, make(load<Value>(values, 0)), out, in);
}
