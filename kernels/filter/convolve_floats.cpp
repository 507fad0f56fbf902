// Convolution of floats: with a window of coefficients, with a row or with a column of them; and what several of them
// combine by.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

// Sums are taken row by row and from left to right, in each lane of a vector as in plain code.
struct FloatWindow {
    const void *values;
    Window window;
    std::ptrdiff_t rowBytes, pixelBytes; // of the source

    // The coefficients are read backwards while the window is read forwards.
    float at(std::int32_t row, std::int32_t column) const
    {
        const std::ptrdiff_t place = (std::ptrdiff_t{window.rows} - row) * window.columns - 1 - column;
        return load<float>(values, static_cast<std::size_t>(place));
    }
    std::ptrdiff_t offset(std::int32_t row, std::int32_t column) const { return row * rowBytes + column * pixelBytes; }
};

#if ORV_VECTOR_BYTES > 0
// So many vectors of each of two rows that their sums stay in registers.
#if defined(__x86_64__)
constexpr std::size_t mostVectors = 4;
#else
constexpr std::size_t mostVectors = 1;
#endif

template <std::size_t vectors> struct FloatSums {
    Floats sums[vectors] = {};

    void add(std::size_t i, Floats value, float coefficient) { sums[i] += everywhere(coefficient) * value; }
    void store(unsigned char *out) const
    {
        for (std::size_t i = 0; i < vectors; ++i)
            storeVector<float>(out, i * perVector<float>, sums[i]);
    }
};

template <std::size_t vectors>
inline void sumOneRow(const unsigned char *in, unsigned char *out, const FloatWindow &window)
{
    FloatSums<vectors> sums;
    for (std::int32_t row = 0; row < window.window.rows; ++row)
        for (std::int32_t column = 0; column < window.window.columns; ++column)
            for (std::size_t i = 0; i < vectors; ++i)
                sums.add(i, loadVector<float>(in + window.offset(row, column), i * perVector<float>),
                         window.at(row, column));
    sums.store(out);
}

// Two rows of results at once: a row of the source that the windows of both read is loaded once.
template <std::size_t vectors>
inline void sumTwoRows(const unsigned char *in, unsigned char *out, std::ptrdiff_t outStep, const FloatWindow &window)
{
    FloatSums<vectors> above, below;
    const std::int32_t rows = window.window.rows, columns = window.window.columns;
    const auto overRow = [&](std::int32_t row, auto take) {
        for (std::int32_t column = 0; column < columns; ++column)
            for (std::size_t i = 0; i < vectors; ++i)
                take(i, loadVectorOnce<float>(in + window.offset(row, column), i * perVector<float>), column);
    };
    overRow(0, [&](std::size_t i, Floats value, std::int32_t column) { above.add(i, value, window.at(0, column)); });
    for (std::int32_t row = 1; row < rows; ++row)
        overRow(row, [&](std::size_t i, Floats value, std::int32_t column) {
            above.add(i, value, window.at(row, column));
            below.add(i, value, window.at(row - 1, column));
        });
    overRow(rows, [&](std::size_t i, Floats value, std::int32_t column) {
        below.add(i, value, window.at(rows - 1, column));
    });
    above.store(out);
    below.store(out + outStep);
}
#endif

void sumPlainly(std::size_t samples, const unsigned char *in, unsigned char *out, const FloatWindow &window)
{
    constexpr std::size_t most = 64;
    for (std::size_t i = 0; i < samples; i += most) {
        const std::size_t some = samples - i < most ? samples - i : most;
        float sums[most] = {};
        for (std::int32_t row = 0; row < window.window.rows; ++row)
            for (std::int32_t column = 0; column < window.window.columns; ++column) {
                const unsigned char *tap = in + i * sizeof(float) + window.offset(row, column);
                const float value = window.at(row, column);
                ORV_INDEPENDENT
                for (std::size_t j = 0; j < some; ++j)
                    sums[j] += singleFloat(value * load<float>(tap, j));
            }
        __builtin_memcpy(out + i * sizeof(float), sums, some * sizeof(float));
    }
}

// One row of results or two, `outStep` bytes from each other.
void sumRows(std::size_t rows, std::size_t samples, const unsigned char *in, unsigned char *out, std::ptrdiff_t outStep,
             const FloatWindow &window)
{
#if ORV_VECTOR_BYTES > 0
    if (samples >= perVector<float>) {
        constexpr std::size_t one = perVector<float>, most = mostVectors * one;
        if (rows == 1)
            overBlocks<float, most, one, float>(
                samples, in, out,
                [&](const unsigned char *from, unsigned char *to) { sumOneRow<mostVectors>(from, to, window); },
                [&](const unsigned char *from, unsigned char *to) { sumOneRow<1>(from, to, window); });
        else
            overBlocks<float, most, one, float>(
                samples, in, out,
                [&](const unsigned char *from, unsigned char *to) {
                    sumTwoRows<mostVectors>(from, to, outStep, window);
                },
                [&](const unsigned char *from, unsigned char *to) { sumTwoRows<1>(from, to, outStep, window); });
        return;
    }
#endif
    for (std::size_t row = 0; row < rows; ++row)
        sumPlainly(samples, in + static_cast<std::ptrdiff_t>(row) * window.rowBytes,
                   out + static_cast<std::ptrdiff_t>(row) * outStep, window);
}

[[gnu::noinline]] KrnStatus convolve(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                     std::int32_t height, const void *values, const Window &given)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Window window = flipped(given);
    const KrnStatus status = checkWindow(source, destination, width, height, window);
    if (status != KRN_OK)
        return status;
    const std::size_t pixelBytes = samplesOf(layout) * sizeof(float);
    const FloatWindow taps = {values, window, source.step, static_cast<std::ptrdiff_t>(pixelBytes)};
    if (layout == AC4)
        return overWindows<float, float>(layout, source, destination, width, height, window,
                                         [&taps](std::size_t samples, const unsigned char *in, unsigned char *out) {
                                             sumRows(1, samples, in, out, 0, taps);
                                         });
    const std::size_t samples = static_cast<std::size_t>(width) * samplesOf(layout);
    const ConstRaster first = firstOf(source, window, pixelBytes);
    for (std::int32_t y = 0; y < height; y += 2)
        sumRows(y + 1 < height ? 2 : 1, samples, first.fromRow(y).data, destination.fromRow(y).data, destination.step,
                taps);
    return KRN_OK;
}

struct Lower {
    float operator()(float a, float b) const { return a < b ? a : b; }
};
struct Higher {
    float operator()(float a, float b) const { return a > b ? a : b; }
};
struct Root {
    float operator()(float a) const { return __builtin_sqrtf(a); }
};

#if ORV_VECTOR_BYTES > 0
inline Floats vectorOf(Lower, Floats a, Floats b)
{
    return minimum(a, b);
}
inline Floats vectorOf(Higher, Floats a, Floats b)
{
    return maximum(a, b);
}
inline Floats vectorOf(Root, Floats a)
{
    return squareRoot(a);
}
#endif

} // namespace

#define ORV_CONVOLVE(layout, ...)                                                                       \
    KRN_KERNEL(ConvolveFloatsKernel, krnConvolve32f##layout)                                            \
    {                                                                                                   \
        return convolve(layout, from(source, sourceStep), to(destination, step), width, height, values, \
                        {columns, rows, anchorX, anchorY});                                             \
    }                                                                                                   \
    KRN_KERNEL(SumLineKernel, krnConvolveRow32f##layout)                                                \
    {                                                                                                   \
        return convolve(layout, from(source, sourceStep), to(destination, step), width, height, values, \
                        {size, 1, anchor, 0});                                                          \
    }                                                                                                   \
    KRN_KERNEL(SumLineKernel, krnConvolveCol32f##layout)                                                \
    {                                                                                                   \
        return convolve(layout, from(source, sourceStep), to(destination, step), width, height, values, \
                        {1, size, 0, anchor});                                                          \
    }

ORV_LAYOUTS(ORV_CONVOLVE, )

KRN_KERNEL(FloatPairRowKernel, krnMinRow32f)
{
    return computeOneRow<float>(length, Lower(), destination, source1, source2);
}

KRN_KERNEL(FloatPairRowKernel, krnMaxRow32f)
{
    return computeOneRow<float>(length, Higher(), destination, source1, source2);
}

KRN_KERNEL(CopyKernel, krnSqrt32fC1)
{
    return compute<float, C1>(width, height, Root(), to(destination, step), from(source, sourceStep));
}

#include "end.h"
