// Resizing: where results lie among sources, rows of nearest pixels, and rows and columns of interpolated ones.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

// Positions that fall short of a source by rounding count as that source.
constexpr double slack = 1e-7;

// Writes the weights of the result at place k, which lies at t from its source.
struct IntegerWeights {
    std::int32_t *of;

    void linear(std::int32_t k, double t, std::int32_t) const
    {
        of[k] = static_cast<std::int32_t>(t * resizeOne + slack);
    }
    void cubic(std::int32_t, double, std::int32_t) const {}
};
struct FloatWeights {
    float *of;

    void linear(std::int32_t k, double t, std::int32_t) const { of[k] = static_cast<float>(t); }
    // The factors of the differences of first, second and third order in Newton's form.
    void cubic(std::int32_t k, double position, std::int32_t count) const
    {
        const float t = static_cast<float>(position), a = singleFloat(1 + t);
        const float b = singleFloat(singleFloat(t * a) * 0.5f);
        of[k] = a;
        of[count + k] = b;
        of[2 * std::int64_t{count} + k] = singleFloat(singleFloat(singleFloat(t - 1) * b) / 3);
    }
};

// No source lies outside the image: at its ends those further inside are taken, and weighted for the same place.
template <class Weights>
KrnStatus fillAxis(double start, double step, std::int32_t count, std::int32_t mode, std::int32_t offset,
                   std::int32_t last, std::int32_t *indices, Weights weights)
{
    if (indices == nullptr || (mode != KRN_NEAREST && weights.of == nullptr))
        return KRN_NULL_POINTER;
    if (count < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    double position = start;
    for (std::int32_t k = 0; k < count; ++k, position += step) {
        const double most = last - offset;
        std::int32_t i = static_cast<std::int32_t>(position + slack < most ? position + slack : most);
        const bool isLast = offset + i == last;
        if (mode == KRN_LINEAR) {
            i -= isLast;
            weights.linear(k, isLast ? 1 : position - i, count);
        } else if (mode == KRN_CUBIC) {
            i += isLast ? -2 : offset + i == 0 ? 1 : offset + i == last - 1 ? -1 : 0;
            weights.cubic(k, isLast ? 2 : position - i, count);
        }
        indices[k] = i;
    }
    return KRN_OK;
}

inline KrnStatus testRow(const void *source, const void *destination, const void *offsets, std::int32_t width)
{
    if (source == nullptr || destination == nullptr || offsets == nullptr)
        return KRN_NULL_POINTER;
    return width < 1 ? KRN_BAD_SIZE : KRN_OK;
}

template <class Sample, std::size_t layout>
KrnStatus gatherRow(const void *source, void *destination, std::int32_t width, const std::int32_t *offsets)
{
    constexpr std::size_t channels = samplesOf(layout), written = layout == AC4 ? 3 : layout;
    if (const KrnStatus status = testRow(source, destination, offsets, width); status != KRN_OK)
        return status;
    const unsigned char *const in = static_cast<const unsigned char *>(source);
    for (std::size_t i = 0; i < static_cast<std::size_t>(width); ++i)
        for (std::size_t channel = 0; channel < written; ++channel)
            store(destination, i * channels + channel, load<Sample>(in + offsets[i], channel));
    return KRN_OK;
}

// Two samples by the weight of the second.
struct LinearOfIntegers {
    using Weight = std::int32_t;

    static std::int32_t between(std::int32_t a, std::int32_t b, std::int32_t weight)
    {
        return (a * (resizeOne - weight) + b * weight + resizeOne / 2) >> 14;
    }
};
struct LinearOfFloats {
    using Weight = float;

    static float between(float a, float b, float weight)
    {
        return singleFloat(singleFloat(a * singleFloat(1 - weight)) + singleFloat(b * weight));
    }
};

template <class Out, class In, std::size_t channels, class Linear>
KrnStatus linearRow(const void *source, std::int32_t pixelBytes, void *destination, std::int32_t width,
                    const std::int32_t *offsets, const void *weights)
{
    if (weights == nullptr)
        return KRN_NULL_POINTER;
    if (const KrnStatus status = testRow(source, destination, offsets, width); status != KRN_OK)
        return status;
    for (std::size_t i = 0; i < static_cast<std::size_t>(width); ++i) {
        const unsigned char *const in = static_cast<const unsigned char *>(source) + offsets[i];
        const auto weight = load<typename Linear::Weight>(weights, i);
        for (std::size_t channel = 0; channel < channels; ++channel)
            store(destination, i * channels + channel,
                  static_cast<Out>(Linear::between(load<In>(in, channel), load<In>(in + pixelBytes, channel), weight)));
    }
    return KRN_OK;
}

// Newton's form for the nodes -1, 0, 1 and 2.
inline float cubicBetween(float p0, float p1, float p2, float p3, float a, float b, float c)
{
    const float d1 = singleFloat(p1 - p0), d2 = singleFloat(singleFloat(p2 - p1) - d1);
    const float d3 = singleFloat(singleFloat(singleFloat(p1 - singleFloat(2 * p2)) + p3) - d2);
    return singleFloat(singleFloat(a * d1) + singleFloat(singleFloat(b * d2) + singleFloat(p0 + singleFloat(d3 * c))));
}

template <class In, std::size_t channels>
KrnStatus cubicRow(const void *source, std::int32_t pixelBytes, void *destination, std::int32_t width,
                   const std::int32_t *offsets, const void *weights)
{
    if (weights == nullptr)
        return KRN_NULL_POINTER;
    if (const KrnStatus status = testRow(source, destination, offsets, width); status != KRN_OK)
        return status;
    const std::size_t count = static_cast<std::size_t>(width);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char *const in = static_cast<const unsigned char *>(source) + offsets[i] - pixelBytes;
        const float a = load<float>(weights, i), b = load<float>(weights, count + i),
                    c = load<float>(weights, 2 * count + i);
        const auto tap = [&](std::size_t number, std::size_t channel) {
            return static_cast<float>(load<In>(in + number * static_cast<std::size_t>(pixelBytes), channel));
        };
        for (std::size_t channel = 0; channel < channels; ++channel)
            store(destination, i * channels + channel,
                  cubicBetween(tap(0, channel), tap(1, channel), tap(2, channel), tap(3, channel), a, b, c));
    }
    return KRN_OK;
}

// Integers are rounded to nearest, ties up, and saturate.
template <class Out> inline Out rounded(float value)
{
    if constexpr (std::is_same_v<Out, float>)
        return value;
    constexpr float top = sizeof(Out) == 1 ? 255 : 65535;
    const float moved = singleFloat(value + 0.5f);
    return static_cast<Out>(moved < top ? (moved > 0 ? moved : 0) : top);
}

// Calls between(i) for the samples of a row that are written.
template <class Out, std::size_t layout, class Between>
KrnStatus blendRows(std::size_t count, const void *const *rows, void *destination, std::int32_t width,
                    const void *weights, Between between)
{
    if (rows == nullptr || destination == nullptr || weights == nullptr)
        return KRN_NULL_POINTER;
    for (std::size_t row = 0; row < count; ++row)
        if (rows[row] == nullptr)
            return KRN_NULL_POINTER;
    if (width < 1)
        return KRN_BAD_SIZE;
    const std::size_t samples = static_cast<std::size_t>(width) * samplesOf(layout);
    ORV_INDEPENDENT
    for (std::size_t i = 0; i < samples; ++i)
        if (layout != AC4 || i % 4 != 3)
            store(destination, i, static_cast<Out>(between(i)));
    return KRN_OK;
}

template <class Out, class Buffer, std::size_t layout, class Linear>
KrnStatus linearRows(const void *const *rows, void *destination, std::int32_t width, const void *weights)
{
    return blendRows<Out, layout>(2, rows, destination, width, weights, [=](std::size_t i) {
        return Linear::between(load<Buffer>(rows[0], i), load<Buffer>(rows[1], i),
                               load<typename Linear::Weight>(weights, 0));
    });
}

template <class Out, std::size_t layout>
KrnStatus cubicRows(const void *const *rows, void *destination, std::int32_t width, const void *weights)
{
    return blendRows<Out, layout>(4, rows, destination, width, weights, [=](std::size_t i) {
        const auto of = [=](std::size_t row) { return load<float>(rows[row], i); };
        return rounded<Out>(cubicBetween(of(0), of(1), of(2), of(3), load<float>(weights, 0), load<float>(weights, 1),
                                         load<float>(weights, 2)));
    });
}

} // namespace

KRN_KERNEL(ResizeAxisKernel, krnResizeAxis32s)
{
    return fillAxis(start, step, count, mode, offset, last, indices,
                    IntegerWeights{static_cast<std::int32_t *>(weights)});
}
KRN_KERNEL(ResizeAxisKernel, krnResizeAxis32f)
{
    return fillAxis(start, step, count, mode, offset, last, indices, FloatWeights{static_cast<float *>(weights)});
}

#define ORV_NEAREST(layout, samples, Sample)                                   \
    KRN_KERNEL(ResizeRowKernel, krnResizeNearest##samples##layout)             \
    {                                                                          \
        (void)pixelBytes, (void)weights;                                       \
        return gatherRow<Sample, layout>(source, destination, width, offsets); \
    }

ORV_LAYOUTS(ORV_NEAREST, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_NEAREST, 16u, std::uint16_t)
ORV_LAYOUTS(ORV_NEAREST, 32s, std::int32_t)

#define ORV_ROW(name, ...)                                                            \
    KRN_KERNEL(ResizeRowKernel, name)                                                 \
    {                                                                                 \
        return __VA_ARGS__(source, pixelBytes, destination, width, offsets, weights); \
    }
#define ORV_LINEAR_ROWS(stem, Out, In, Linear)       \
    ORV_ROW(stem##C1, linearRow<Out, In, 1, Linear>) \
    ORV_ROW(stem##C3, linearRow<Out, In, 3, Linear>) \
    ORV_ROW(stem##C4, linearRow<Out, In, 4, Linear>)
#define ORV_CUBIC_ROWS(stem, In)       \
    ORV_ROW(stem##C1, cubicRow<In, 1>) \
    ORV_ROW(stem##C3, cubicRow<In, 3>) \
    ORV_ROW(stem##C4, cubicRow<In, 4>)

ORV_LINEAR_ROWS(krnResizeLinear8u16u, std::uint16_t, std::uint8_t, LinearOfIntegers)
ORV_LINEAR_ROWS(krnResizeLinear16u, std::uint16_t, std::uint16_t, LinearOfIntegers)
ORV_LINEAR_ROWS(krnResizeLinear32f, float, float, LinearOfFloats)
ORV_CUBIC_ROWS(krnResizeCubic8u32f, std::uint8_t)
ORV_CUBIC_ROWS(krnResizeCubic16u32f, std::uint16_t)
ORV_CUBIC_ROWS(krnResizeCubic32f, float)

#define ORV_BLEND(name, ...)                                   \
    KRN_KERNEL(BlendRowsKernel, name)                          \
    {                                                          \
        return __VA_ARGS__(rows, destination, width, weights); \
    }
#define ORV_LINEAR_BLENDS(stem, Out, Buffer, Linear)         \
    ORV_BLEND(stem##C1, linearRows<Out, Buffer, C1, Linear>) \
    ORV_BLEND(stem##AC4, linearRows<Out, Buffer, AC4, Linear>)
#define ORV_CUBIC_BLENDS(stem, Out)         \
    ORV_BLEND(stem##C1, cubicRows<Out, C1>) \
    ORV_BLEND(stem##AC4, cubicRows<Out, AC4>)

ORV_LINEAR_BLENDS(krnResizeRowsLinear16u8u, std::uint8_t, std::uint16_t, LinearOfIntegers)
ORV_LINEAR_BLENDS(krnResizeRowsLinear16u, std::uint16_t, std::uint16_t, LinearOfIntegers)
ORV_LINEAR_BLENDS(krnResizeRowsLinear32f, float, float, LinearOfFloats)
ORV_CUBIC_BLENDS(krnResizeRowsCubic32f8u, std::uint8_t)
ORV_CUBIC_BLENDS(krnResizeRowsCubic32f16u, std::uint16_t)
ORV_CUBIC_BLENDS(krnResizeRowsCubic32f, float)

#include "end.h"
