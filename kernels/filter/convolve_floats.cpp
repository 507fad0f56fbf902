// Convolution of floats: with a window of coefficients, with a row or with a column of them; and what several of them
// combine by.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

#include "windows.h"

// The floating-point unit of 32-bit x86 would add a product with more bits than a float has. Through memory it gives
// what vectors give.
inline float singleFloat(float value)
{
#if defined(__i386__)
    __asm__("" : "+m"(value));
#endif
    return value;
}

// Sums are taken row by row and from left to right in each lane, so that all vectors give what plain code gives.
struct FloatWindow {
    const void *values;
    Window window;
    std::ptrdiff_t rowBytes, pixelBytes; // of the source

    // Calls tap(offset, value) along the window; its values are walked backwards.
    template <class Tap> void walk(Tap tap) const
    {
        std::size_t place = static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows);
        for (std::int32_t row = 0; row < window.rows; ++row)
            for (std::int32_t column = 0; column < window.columns; ++column)
                tap(row * rowBytes + column * pixelBytes, load<float>(values, --place));
    }
};

#if ORV_SSE_LEVEL >= 2
// So many vectors that their sums stay in registers.
#if defined(__x86_64__)
constexpr std::size_t mostVectors = 8;
#else
constexpr std::size_t mostVectors = 4;
#endif

template <std::size_t vectors>
inline void sumBlock(const unsigned char *in, unsigned char *out, const FloatWindow &window)
{
    Vector<float> sums[vectors] = {};
    window.walk([&](std::ptrdiff_t offset, float value) {
        const Vector<float> by = everywhere(value);
        for (std::size_t i = 0; i < vectors; ++i)
            sums[i] += by * loadVector<float>(in + offset, 4 * i);
    });
    for (std::size_t i = 0; i < vectors; ++i)
        storeVector<float>(out, 4 * i, sums[i]);
}

template <std::size_t vectors>
inline void sumBlocks(std::size_t samples, const unsigned char *in, unsigned char *out, const FloatWindow &window)
{
    overBlocks<float, 4 * vectors>(
        samples, in, out, [&](const unsigned char *from, unsigned char *to) { sumBlock<vectors>(from, to, window); });
}
#endif

void sumRow(std::size_t samples, const unsigned char *in, unsigned char *out, const FloatWindow &window)
{
#if ORV_SSE_LEVEL >= 2
    if (samples >= 4 * mostVectors)
        return sumBlocks<mostVectors>(samples, in, out, window);
    if (samples >= 4)
        return sumBlocks<1>(samples, in, out, window);
#endif
    constexpr std::size_t most = 64;
    for (std::size_t i = 0; i < samples; i += most) {
        const std::size_t some = samples - i < most ? samples - i : most;
        float sums[most] = {};
        window.walk([&](std::ptrdiff_t offset, float value) {
            const unsigned char *tap = in + i * sizeof(float) + offset;
            ORV_INDEPENDENT
            for (std::size_t j = 0; j < some; ++j)
                sums[j] += singleFloat(value * load<float>(tap, j));
        });
        __builtin_memcpy(out + i * sizeof(float), sums, some * sizeof(float));
    }
}

template <std::size_t layout>
KrnStatus convolve(Given<const void *> source, Given<void *> destination, std::int32_t width, std::int32_t height,
                   const void *values, const Window &given)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Window window = flipped(given);
    const KrnStatus status = checkWindow(source, destination, width, height, window);
    if (status != KRN_OK)
        return status;
    const FloatWindow taps = {values, window, source.step,
                              static_cast<std::ptrdiff_t>(samplesOf(layout) * sizeof(float))};
    return overWindows<float, layout>(
        source, destination, width, height, window,
        [&taps](std::size_t samples, const unsigned char *in, unsigned char *out) { sumRow(samples, in, out, taps); });
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

} // namespace

#define ORV_CONVOLVE(layout)                                                                                   \
    KrnStatus krnConvolve32f##layout(const void *source, std::int32_t sourceStep, void *destination,           \
                                     std::int32_t destinationStep, std::int32_t width, std::int32_t height,    \
                                     const void *values, std::int32_t columns, std::int32_t rows,              \
                                     std::int32_t anchorX, std::int32_t anchorY)                               \
    {                                                                                                          \
        return convolve<layout>({source, sourceStep}, {destination, destinationStep}, width, height, values,   \
                                {columns, rows, anchorX, anchorY});                                            \
    }                                                                                                          \
    KrnStatus krnConvolveRow32f##layout(const void *source, std::int32_t sourceStep, void *destination,        \
                                        std::int32_t destinationStep, std::int32_t width, std::int32_t height, \
                                        const void *values, std::int32_t size, std::int32_t anchor)            \
    {                                                                                                          \
        return convolve<layout>({source, sourceStep}, {destination, destinationStep}, width, height, values,   \
                                {size, 1, anchor, 0});                                                         \
    }                                                                                                          \
    KrnStatus krnConvolveCol32f##layout(const void *source, std::int32_t sourceStep, void *destination,        \
                                        std::int32_t destinationStep, std::int32_t width, std::int32_t height, \
                                        const void *values, std::int32_t size, std::int32_t anchor)            \
    {                                                                                                          \
        return convolve<layout>({source, sourceStep}, {destination, destinationStep}, width, height, values,   \
                                {1, size, 0, anchor});                                                         \
    }

ORV_CONVOLVE(C1)
ORV_CONVOLVE(C3)
ORV_CONVOLVE(C4)
ORV_CONVOLVE(AC4)

KrnStatus krnMinRow32f(const void *source1, const void *source2, void *destination, std::int32_t length)
{
    return computeOneRow<float>(length, Lower(), destination, source1, source2);
}

KrnStatus krnMaxRow32f(const void *source1, const void *source2, void *destination, std::int32_t length)
{
    return computeOneRow<float>(length, Higher(), destination, source1, source2);
}

KrnStatus krnSqrt32fC1(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                       std::int32_t width, std::int32_t height)
{
    return compute<float, C1>(width, height, Root(), Given{destination, destinationStep}, Given{source, sourceStep});
}

#include "end.h"
