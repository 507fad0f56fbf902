// The rows of a resize that lie between source rows. To be included inside the unnamed namespace of a region, after
// rows.h, vectors.h and points.h.
//
// A method has its Sample, the Buffer that one of an interpolated row is, the source rows of a result (taps), and:
//   interpolate(row, columns, buffer)   a source row along itself
//   Weights(rows, y)                    of a row of results
//   between(buffers, i, weights)        sample i of such a row
// With vectors also, where hasVectors is true, for all samples from i on:
//   prepared(buffers, i)                what results between the same rows have in common
//   between(prepared, vectorsOf(weights))
//   narrowed(vectors)                   one vector of samples from those of buffers

inline KrnStatus testResize(const void *source, std::int32_t sourceStep, const void *destination, std::int32_t step,
                            std::int32_t height, const ResizeColumns *columns, const ResizeRows *rows)
{
    if (source == nullptr || destination == nullptr || columns == nullptr || rows == nullptr ||
        columns->offsets == nullptr || columns->shuffles == nullptr || rows->indices == nullptr)
        return KRN_NULL_POINTER;
    if (columns->samples < 1 || height < 1)
        return KRN_BAD_SIZE;
    return sourceStep < 1 || step < 1 ? KRN_BAD_STEP : KRN_OK;
}

inline const unsigned char *sourceRow(const void *source, std::int32_t step, std::int32_t row)
{
    return static_cast<const unsigned char *>(source) + std::ptrdiff_t{row} * step;
}

// A source of a sample, so many pixels beyond its first one.
template <class Sample>
inline Sample sourceOf(const unsigned char *row, const ResizeColumns &columns, std::size_t i, std::int32_t further)
{
    return load<Sample>(row + columns.offsets[i] + std::ptrdiff_t{further} * columns.pixelBytes, 0);
}

#if ORV_VECTOR_BYTES > 0

// Rows between the same buffers, by vectors. The last vector overlaps its neighbour. A row has at least one.
template <class Method, std::size_t layout, std::size_t results>
void blendVectors(const void *const *buffers, const typename Method::Weights *weights, std::size_t samples,
                  unsigned char *out, std::ptrdiff_t step)
{
    using Sample = typename Method::Sample;
    using Buffer = typename Method::Buffer;
    constexpr std::size_t count = sizeof(Buffer) / sizeof(Sample), perStep = perVector<Sample>;
    decltype(Method::vectorsOf(*weights)) by[results];
    for (std::size_t row = 0; row < results; ++row)
        by[row] = Method::vectorsOf(weights[row]);
    const auto blendAt = [&](std::size_t i) {
        decltype(Method::between(Method::prepared(buffers, i), by[0])) vectors[results][count];
        for (std::size_t k = 0; k < count; ++k) {
            const auto prepared = Method::prepared(buffers, i + k * perVector<Buffer>);
            for (std::size_t row = 0; row < results; ++row)
                vectors[row][k] = Method::between(prepared, by[row]);
        }
        for (std::size_t row = 0; row < results; ++row) {
            unsigned char *const to = out + static_cast<std::ptrdiff_t>(row) * step;
            Vector<Sample> result = Method::narrowed(vectors[row]);
            if constexpr (layout == AC4)
                result = keepingFourth<Sample>(result, loadVector<Sample>(to, i));
            storeVector<Sample>(to, i, result);
        }
    };
    std::size_t i = 0;
    for (; i + perStep <= samples; i += perStep)
        blendAt(i);
    if (i < samples)
        blendAt(samples - perStep);
}

#endif

template <class Method, std::size_t layout, std::size_t results>
void blend(const void *const *buffers, const typename Method::Weights *weights, std::size_t samples, unsigned char *out,
           std::ptrdiff_t step)
{
    using Sample = typename Method::Sample;
#if ORV_VECTOR_BYTES > 0
    if (Method::hasVectors && samples >= perVector<Sample>) {
        blendVectors<Method, layout, results>(buffers, weights, samples, out, step);
        return;
    }
#endif
    const void *of[Method::taps];
    for (std::size_t tap = 0; tap < Method::taps; ++tap)
        of[tap] = buffers[tap];
    for (std::size_t row = 0; row < results; ++row, out += step) {
        const typename Method::Weights by = weights[row];
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < samples; ++i)
            if (layout != AC4 || i % 4 != 3)
                store(out, i, static_cast<Sample>(Method::between(of, i, by)));
    }
}

template <class Method, std::size_t layout>
KrnStatus resizeRows(const void *source, std::int32_t sourceStep, void *destination, std::int32_t step,
                     std::int32_t firstRow, std::int32_t height, const ResizeColumns *columns, ResizeRows *rows)
{
    constexpr std::int32_t taps = Method::taps;
    static_assert((taps & (taps - 1)) == 0);
    if (const KrnStatus status = testResize(source, sourceStep, destination, step, height, columns, rows);
        status != KRN_OK)
        return status;
    if (columns->weights == nullptr || rows->weights == nullptr)
        return KRN_NULL_POINTER;
    const std::size_t samples = static_cast<std::size_t>(columns->samples);
    unsigned char *out = static_cast<unsigned char *>(destination);
    for (std::int32_t y = firstRow, end = firstRow + height; y < end;) {
        const void *buffers[mostResizeTaps];
        for (std::int32_t tap = 0; tap < taps; ++tap) {
            const std::int32_t row = rows->indices[y] + tap, place = row & (taps - 1);
            buffers[tap] = rows->buffers[place];
            if (rows->held[place] != row)
                Method::interpolate(sourceRow(source, sourceStep, row), *columns, rows->buffers[place]);
            rows->held[place] = row;
        }
        const bool two = y + 1 < end && rows->indices[y + 1] == rows->indices[y];
        const typename Method::Weights weights[] = {{*rows, y}, {*rows, two ? y + 1 : y}};
        (two ? blend<Method, layout, 2> : blend<Method, layout, 1>)(buffers, weights, samples, out, step);
        y += two ? 2 : 1;
        out += std::ptrdiff_t{step} * (two ? 2 : 1);
    }
    return KRN_OK;
}

// Defines the kernels of a method.
#define ORV_RESIZE(name, ...)                                                                                        \
    KRN_KERNEL(ResizeKernel, name##C1)                                                                               \
    {                                                                                                                \
        return resizeRows<__VA_ARGS__, C1>(source, sourceStep, destination, step, firstRow, height, columns, rows);  \
    }                                                                                                                \
    KRN_KERNEL(ResizeKernel, name##AC4)                                                                              \
    {                                                                                                                \
        return resizeRows<__VA_ARGS__, AC4>(source, sourceStep, destination, step, firstRow, height, columns, rows); \
    }
