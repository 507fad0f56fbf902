// Fills. A row is written from a pattern of whole pixels, so it does not matter what rows before it wrote.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

// Pixels side by side. All pixel sizes divide 48, so vectors of any width repeat after three of them at the latest;
// with one pixel more a vector can be read at each place within a pixel.
struct Pattern {
    static constexpr std::size_t period = 96;
    unsigned char bytes[period + 16];
    std::size_t pixelBytes;

    Pattern(const void *pixel, std::size_t size) : pixelBytes(size)
    {
        __builtin_memcpy(bytes, pixel, size);
        for (std::size_t laid = size; laid < sizeof bytes; laid *= 2)
            __builtin_memcpy(bytes + laid, bytes, laid < sizeof bytes - laid ? laid : sizeof bytes - laid);
    }
};

void fillRow(std::size_t bytes, const Pattern &pattern, unsigned char *out)
{
#if ORV_VECTOR_BYTES > 0
    constexpr std::size_t step = ORV_VECTOR_BYTES;
    if (bytes >= step) {
        const auto at = [&](std::size_t i) { return loadVector<std::uint8_t>(pattern.bytes + i % pattern.pixelBytes); };
        // The ends are vectors at any address, what is between them lies on vector boundaries.
        storeVector<std::uint8_t>(out, 0, at(0));
        storeVector<std::uint8_t>(out, bytes - step, at(bytes - step));
        std::size_t i = step - reinterpret_cast<std::uintptr_t>(out) % step;
        const U8s first = at(i), second = at(i + step), third = at(i + 2 * step);
        for (; i + 3 * step <= bytes; i += 3 * step) {
            storeVector<std::uint8_t>(out, i, first);
            storeVector<std::uint8_t>(out, i + step, second);
            storeVector<std::uint8_t>(out, i + 2 * step, third);
        }
        if (i + step <= bytes)
            storeVector<std::uint8_t>(out, i, first);
        if (i + 2 * step <= bytes)
            storeVector<std::uint8_t>(out, i + step, second);
        return;
    }
#endif
    // Laid over a part that stays in the nearest cache, which is then moved along the row.
    constexpr std::size_t laidBytes = 32 * Pattern::period;
    const std::size_t laid = bytes < laidBytes ? bytes : laidBytes;
    std::size_t done = laid < pattern.pixelBytes ? laid : pattern.pixelBytes;
    __builtin_memcpy(out, pattern.bytes, done);
    while (done < bytes) {
        const std::size_t ready = done < laid ? done : laid;
        const std::size_t some = ready < bytes - done ? ready : bytes - done;
        __builtin_memcpy(out + done, out, some);
        done += some;
    }
}

constexpr std::size_t largeRowBytes = std::size_t{1} << 20;

// The runtime's own fill of bytes is the fastest where there are no vectors, and as long as the caches take it in.
inline bool fillsLikeRuntime(std::size_t bytes)
{
    return ORV_VECTOR_BYTES == 0 || bytes < largeRowBytes;
}

[[gnu::noinline]] KrnStatus fillBytes(unsigned char byte, Raster out, std::int32_t width, std::int32_t height)
{
    const auto row = [byte](std::size_t pixels, unsigned char *at) {
        if (fillsLikeRuntime(pixels))
            __builtin_memset(at, byte, pixels);
        else
            fillRow(pixels, Pattern(&byte, 1), at);
    };
    return overRows(width, height, row, Pixels{out, std::size_t{1}});
}

[[gnu::noinline]] KrnStatus fill(const void *pixel, std::size_t pixelBytes, Raster out, std::int32_t width,
                                 std::int32_t height)
{
    if (pixel == nullptr)
        return KRN_NULL_POINTER;
    const Pattern pattern(pixel, pixelBytes);
    const auto row = [&](std::size_t pixels, unsigned char *at) { fillRow(pixels * pixelBytes, pattern, at); };
    return overRows(width, height, row, Pixels{out, pixelBytes});
}

template <class Sample> KrnStatus fillSamples(std::int32_t value, Raster out, std::int32_t width, std::int32_t height)
{
    const Sample sample = static_cast<Sample>(value);
    if constexpr (sizeof(Sample) == 1)
        return fillBytes(sample, out, width, height);
    else
        return fill(&sample, sizeof sample, out, width, height);
}

template <class Sample>
KrnStatus fillThreeOfFour(const void *values, Raster out, std::int32_t width, std::int32_t height)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    unsigned char pixels[4 * sizeof(Sample) * 16];
    for (std::size_t i = 0; i < 64; ++i)
        store(pixels, i, i % 4 < 3 ? load<Sample>(values, i % 4) : Sample{0});
    const auto row = [&](std::size_t count, unsigned char *at) {
        for (std::size_t i = 0; i < count; i += 16)
            moveThreeOfFour<Sample>(count - i < 16 ? count - i : 16, pixels, at + 4 * sizeof(Sample) * i);
    };
    return overRows(width, height, row, Pixels{out, 4 * sizeof(Sample)});
}

} // namespace

#define ORV_FILL(samples, Sample)                                                      \
    KRN_KERNEL(FillKernel, krnFill##samples##C1)                                       \
    {                                                                                  \
        return fillSamples<Sample>(value, to(destination, step), width, height);       \
    }                                                                                  \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##C3)                                 \
    {                                                                                  \
        return fill(values, 3 * sizeof(Sample), to(destination, step), width, height); \
    }                                                                                  \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##C4)                                 \
    {                                                                                  \
        return fill(values, 4 * sizeof(Sample), to(destination, step), width, height); \
    }                                                                                  \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##AC4)                                \
    {                                                                                  \
        return fillThreeOfFour<Sample>(values, to(destination, step), width, height);  \
    }

ORV_FILL(8u, std::uint8_t)
ORV_FILL(16u, std::uint16_t)
ORV_FILL(32s, std::int32_t)

#include "end.h"
