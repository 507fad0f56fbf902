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
        for (std::size_t at = 0; at < sizeof bytes; ++at)
            bytes[at] = static_cast<const unsigned char *>(pixel)[at % size];
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

// The runtime's own fill of bytes is faster as long as the caches take it in.
constexpr std::size_t largeRowBytes = std::size_t{1} << 20;

[[gnu::noinline]] KrnStatus fill(const void *pixel, std::size_t pixelBytes, void *destination, std::int32_t step,
                                 std::int32_t width, std::int32_t height)
{
    if (pixel == nullptr)
        return KRN_NULL_POINTER;
    const Pattern pattern(pixel, pixelBytes);
    const auto row = [&](std::size_t pixels, unsigned char *out) {
        if (pixelBytes == 1 && (ORV_VECTOR_BYTES == 0 || pixels < largeRowBytes))
            __builtin_memset(out, pattern.bytes[0], pixels);
        else
            fillRow(pixels * pixelBytes, pattern, out);
    };
    return overRows(width, height, row, Pixels{to(destination, step), pixelBytes});
}

template <class Sample>
KrnStatus fillSamples(std::int32_t value, void *destination, std::int32_t step, std::int32_t width, std::int32_t height)
{
    const Sample sample = static_cast<Sample>(value);
    return fill(&sample, sizeof sample, destination, step, width, height);
}

template <class Sample>
KrnStatus fillThreeOfFour(const void *values, void *destination, std::int32_t step, std::int32_t width,
                          std::int32_t height)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    unsigned char pixels[4 * sizeof(Sample) * 16];
    for (std::size_t i = 0; i < 64; ++i)
        store(pixels, i, i % 4 < 3 ? load<Sample>(values, i % 4) : Sample{0});
    const auto row = [&](std::size_t count, unsigned char *out) {
        for (std::size_t i = 0; i < count; i += 16)
            moveThreeOfFour<Sample>(count - i < 16 ? count - i : 16, pixels, out + 4 * sizeof(Sample) * i);
    };
    return overRows(width, height, row, Pixels{to(destination, step), 4 * sizeof(Sample)});
}

} // namespace

#define ORV_FILL(samples, Sample)                                                  \
    KRN_KERNEL(FillKernel, krnFill##samples##C1)                                   \
    {                                                                              \
        return fillSamples<Sample>(value, destination, step, width, height);       \
    }                                                                              \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##C3)                             \
    {                                                                              \
        return fill(values, 3 * sizeof(Sample), destination, step, width, height); \
    }                                                                              \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##C4)                             \
    {                                                                              \
        return fill(values, 4 * sizeof(Sample), destination, step, width, height); \
    }                                                                              \
    KRN_KERNEL(FillPixelsKernel, krnFill##samples##AC4)                            \
    {                                                                              \
        return fillThreeOfFour<Sample>(values, destination, step, width, height);  \
    }

ORV_FILL(8u, std::uint8_t)
ORV_FILL(16u, std::uint16_t)
ORV_FILL(32s, std::int32_t)

#include "end.h"
