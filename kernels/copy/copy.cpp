// Copies and fills of whole pixels. The runtime's own block moves are as fast as it gets on any processor, so one build
// serves all six slots.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "signatures.h"

namespace orv::slot0 {
namespace {

#include "rows.h"

KrnStatus copy(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
               std::int32_t width, std::int32_t height, std::int32_t pixelBytes)
{
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        std::memmove(out, in, pixels * static_cast<std::size_t>(pixelBytes));
    };
    return overRows(width, height, row, from(source, sourceStep, pixelBytes),
                    to(destination, destinationStep, pixelBytes));
}

// Lays the pattern once over a piece that stays in the nearest cache, and moves that piece along all rows. The piece
// holds whole periods of every pixel size.
KrnStatus fill(const unsigned char *pattern, void *destination, std::int32_t step, std::int32_t width,
               std::int32_t height, std::int32_t pixelBytes)
{
    constexpr std::size_t pieceBytes = 16 * 3 * 64;
    const std::size_t period = static_cast<std::size_t>(pixelBytes);
    const unsigned char *laid = nullptr;
    const auto row = [=](std::size_t pixels, unsigned char *out) mutable {
        const std::size_t bytes = pixels * period;
        const std::size_t piece = bytes < pieceBytes ? bytes : pieceBytes;
        std::size_t done = 0;
        // Rows that overlap have spoilt it.
        if (laid == nullptr || static_cast<std::size_t>(step) < bytes) {
            std::memcpy(out, pattern, period);
            for (done = period; done < piece;) {
                const std::size_t more = done < piece - done ? done : piece - done;
                std::memcpy(out + done, out, more);
                done += more;
            }
            laid = out;
        }
        while (done < bytes) {
            const std::size_t more = piece < bytes - done ? piece : bytes - done;
            std::memmove(out + done, laid, more);
            done += more;
        }
    };
    return overRows(width, height, row, to(destination, step, pixelBytes));
}

template <class Sample>
KrnStatus fillSamples(std::int32_t value, void *destination, std::int32_t step, std::int32_t width, std::int32_t height)
{
    unsigned char pattern[sizeof(Sample)];
    store(pattern, 0, static_cast<Sample>(value));
    return fill(pattern, destination, step, width, height, sizeof(Sample));
}

template <>
KrnStatus fillSamples<std::uint8_t>(std::int32_t value, void *destination, std::int32_t step, std::int32_t width,
                                    std::int32_t height)
{
    const auto row = [=](std::size_t pixels, unsigned char *out) { std::memset(out, value & 0xFF, pixels); };
    return overRows(width, height, row, to(destination, step, 1));
}

KrnStatus fillPixels(const void *values, void *destination, std::int32_t step, std::int32_t width, std::int32_t height,
                     std::int32_t pixelBytes)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    return fill(static_cast<const unsigned char *>(values), destination, step, width, height, pixelBytes);
}

} // namespace

#define ORV_COPY(name, pixelBytes)                                                                               \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep, \
                   std::int32_t width, std::int32_t height)                                                      \
    {                                                                                                            \
        return copy(source, sourceStep, destination, destinationStep, width, height, pixelBytes);                \
    }

#define ORV_FILL_PIXELS(name, pixelBytes)                                                                             \
    KrnStatus name(const void *values, void *destination, std::int32_t step, std::int32_t width, std::int32_t height) \
    {                                                                                                                 \
        return fillPixels(values, destination, step, width, height, pixelBytes);                                      \
    }

#define ORV_COPY_AND_FILL(samples, Sample)                                                                       \
    ORV_COPY(krnCopy##samples##C1, sizeof(Sample))                                                               \
    ORV_COPY(krnCopy##samples##C3, 3 * sizeof(Sample))                                                           \
    ORV_COPY(krnCopy##samples##C4, 4 * sizeof(Sample))                                                           \
    KrnStatus krnFill##samples##C1(std::int32_t value, void *destination, std::int32_t step, std::int32_t width, \
                                   std::int32_t height)                                                          \
    {                                                                                                            \
        return fillSamples<Sample>(value, destination, step, width, height);                                     \
    }                                                                                                            \
    ORV_FILL_PIXELS(krnFill##samples##C3, 3 * sizeof(Sample))                                                    \
    ORV_FILL_PIXELS(krnFill##samples##C4, 4 * sizeof(Sample))

ORV_COPY_AND_FILL(8u, std::uint8_t)
ORV_COPY_AND_FILL(16u, std::uint16_t)
ORV_COPY_AND_FILL(32s, std::int32_t)

} // namespace orv::slot0
