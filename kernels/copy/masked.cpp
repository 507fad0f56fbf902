// Copies under a byte mask, and the combination of masks.
#include <cstddef>
#include <cstdint>
#include <utility>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"

// Every sample is stored, the unselected ones with the value they have: a loop without branches.
template <class Sample, std::size_t channels, std::size_t moved>
void copySelected(std::size_t first, std::size_t pixels, const unsigned char *in, const unsigned char *select,
                  unsigned char *out)
{
    ORV_INDEPENDENT
    for (std::size_t i = first; i < pixels; ++i) {
        const Sample taken = static_cast<Sample>(select[i] != 0 ? ~Sample{0} : 0);
        for (std::size_t channel = 0; channel < moved; ++channel) {
            const std::size_t at = i * channels + channel;
            store(out, at, static_cast<Sample>((load<Sample>(in, at) & taken) | (load<Sample>(out, at) & ~taken)));
        }
    }
}

#if ORV_SSE_LEVEL >= 4

#include "bytes16.h"

// Masks are made of large areas: sixteen pixels mostly stay or move as a whole.
template <std::size_t pixelBytes, std::size_t moved, std::size_t... piece>
inline void copySixteen(const unsigned char *in, Bytes16 select, unsigned char *out, std::index_sequence<piece...>)
{
    const unsigned selected = nonZeroBytes(select);
    if (selected == 0)
        return;
    if (selected == 0xFFFF && pixelBytes == moved)
        (storeBytes(out + 16 * piece, loadBytes(in + 16 * piece)), ...);
    else
        (storeBytes(out + 16 * piece, spread<pixelBytes, moved, piece>(select) != 0 ? loadBytes(in + 16 * piece)
                                                                                    : loadBytes(out + 16 * piece)),
         ...);
}

// Returns how many pixels it has done. Of one-byte pixels none: there a wrong guess costs more than the copy.
template <std::size_t pixelBytes, std::size_t moved>
inline std::size_t copySixteens(std::size_t pixels, const unsigned char *in, const unsigned char *select,
                                unsigned char *out)
{
    std::size_t i = 0;
    if constexpr (pixelBytes > 1)
        for (; i + 16 <= pixels; i += 16)
            copySixteen<pixelBytes, moved>(in + i * pixelBytes, loadBytes(select + i), out + i * pixelBytes,
                                           std::make_index_sequence<pixelBytes>());
    return i;
}

#else

template <std::size_t, std::size_t>
inline std::size_t copySixteens(std::size_t, const unsigned char *, const unsigned char *, unsigned char *)
{
    return 0;
}

#endif

template <class Sample, std::size_t channels, std::size_t moved>
KrnStatus copyMasked(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                     std::int32_t width, std::int32_t height, const void *mask, std::int32_t maskStep)
{
    constexpr std::size_t bytes = sizeof(Sample);
    const auto row = [](std::size_t pixels, const unsigned char *in, const unsigned char *select, unsigned char *out) {
        const std::size_t done = copySixteens<channels * bytes, moved * bytes>(pixels, in, select, out);
        copySelected<Sample, channels, moved>(done, pixels, in, select, out);
    };
    return overRows(width, height, row, from(source, sourceStep, channels * bytes), from(mask, maskStep, 1),
                    to(destination, destinationStep, channels * bytes));
}

} // namespace

#define ORV_COPY_MASKED(name, Sample, channels, moved)                                                              \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,    \
                   std::int32_t width, std::int32_t height, const void *mask, std::int32_t maskStep)                \
    {                                                                                                               \
        return copyMasked<Sample, channels, moved>(source, sourceStep, destination, destinationStep, width, height, \
                                                   mask, maskStep);                                                 \
    }

#define ORV_COPY_MASKED_LAYOUTS(samples, Sample)              \
    ORV_COPY_MASKED(krnCopyMasked##samples##C1, Sample, 1, 1) \
    ORV_COPY_MASKED(krnCopyMasked##samples##C3, Sample, 3, 3) \
    ORV_COPY_MASKED(krnCopyMasked##samples##C4, Sample, 4, 4) \
    ORV_COPY_MASKED(krnCopyMasked##samples##AC4, Sample, 4, 3)

ORV_COPY_MASKED_LAYOUTS(8u, std::uint8_t)
ORV_COPY_MASKED_LAYOUTS(16u, std::uint16_t)
ORV_COPY_MASKED_LAYOUTS(32s, std::int32_t)

KrnStatus krnAndMask8u(const void *mask, std::int32_t maskStep, void *accumulator, std::int32_t accumulatorStep,
                       std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            out[i] = static_cast<unsigned char>(out[i] & in[i]);
    };
    return overRows(width, height, row, from(mask, maskStep, 1), to(accumulator, accumulatorStep, 1));
}

#include "end.h"
