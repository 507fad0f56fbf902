// Copies under a byte mask, which leave the other pixels alone or zero them, and the combination of masks.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

enum class Others { Kept, Zeroed };

// Every sample is stored, the unselected ones with the value they have: a loop without branches.
template <class Sample, std::size_t channels, std::size_t moved, Others others>
void copySelected(std::size_t first, std::size_t pixels, const unsigned char *in, const unsigned char *select,
                  unsigned char *out)
{
    ORV_INDEPENDENT
    for (std::size_t i = first; i < pixels; ++i) {
        const Sample taken = static_cast<Sample>(select[i] != 0 ? ~Sample{0} : 0);
        for (std::size_t channel = 0; channel < moved; ++channel) {
            const std::size_t at = i * channels + channel;
            const Sample other = others == Others::Kept ? load<Sample>(out, at) : Sample{0};
            store(out, at, static_cast<Sample>((load<Sample>(in, at) & taken) | (other & ~taken)));
        }
    }
}

#if ORV_SHUFFLES

// As many pixels as a vector has bytes. Masks are made of large areas: such pixels mostly stay or move as a whole.
// Pixels of one byte are not worth the branch: a wrong guess costs more than the copy.
template <std::size_t pixelBytes, std::size_t moved, std::size_t... number>
inline void copyVectors(const unsigned char *in, U8s select, unsigned char *out, std::index_sequence<number...>)
{
    constexpr std::size_t step = ORV_VECTOR_BYTES;
    const U8s unselected = as<std::uint8_t>(select == 0);
    if constexpr (pixelBytes > 1) {
        const unsigned bits = bitsOfMask(unselected);
        if (bits == allBits)
            return;
        if (bits == 0 && pixelBytes == moved) {
            (storeVector<std::uint8_t>(out, step * number, loadVector<std::uint8_t>(in, step * number)), ...);
            return;
        }
    }
    const auto takenAt = [&]<std::size_t at>(std::integral_constant<std::size_t, at>) {
        const U8s taken = ~spread<1, pixelBytes, at>(unselected);
        if constexpr (pixelBytes == moved)
            return taken;
        else
            return taken & movedBits<pixelBytes, moved, at>();
    };
    (storeVector<std::uint8_t>(out, step * number,
                               chosen<std::uint8_t>(takenAt(std::integral_constant<std::size_t, number>()),
                                                    loadVector<std::uint8_t>(in, step * number),
                                                    loadVector<std::uint8_t>(out, step * number))),
     ...);
}

template <std::size_t pixelBytes, std::size_t... number>
inline void zeroVectors(const unsigned char *in, U8s select, unsigned char *out, std::index_sequence<number...>)
{
    constexpr std::size_t step = ORV_VECTOR_BYTES;
    const U8s unselected = as<std::uint8_t>(select == 0);
    (storeVector<std::uint8_t>(
         out, step * number, loadVector<std::uint8_t>(in, step * number) & ~spread<1, pixelBytes, number>(unselected)),
     ...);
}

// Returns how many pixels it has done.
template <std::size_t pixelBytes, std::size_t moved, Others others>
inline std::size_t copyByVectors(std::size_t pixels, const unsigned char *in, const unsigned char *select,
                                 unsigned char *out)
{
    std::size_t i = 0;
    for (; i + ORV_VECTOR_BYTES <= pixels; i += ORV_VECTOR_BYTES) {
        const U8s bytes = loadVector<std::uint8_t>(select + i);
        constexpr std::make_index_sequence<pixelBytes> numbers;
        if constexpr (others == Others::Kept)
            copyVectors<pixelBytes, moved>(in + i * pixelBytes, bytes, out + i * pixelBytes, numbers);
        else
            zeroVectors<pixelBytes>(in + i * pixelBytes, bytes, out + i * pixelBytes, numbers);
    }
    return i;
}

#else

template <std::size_t, std::size_t, Others>
inline std::size_t copyByVectors(std::size_t, const unsigned char *, const unsigned char *, unsigned char *)
{
    return 0;
}

#endif

template <class Sample, std::size_t channels, std::size_t moved, Others others>
KrnStatus copyMasked(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height, ConstRaster mask)
{
    constexpr std::size_t bytes = sizeof(Sample);
    const auto row = [](std::size_t pixels, const unsigned char *in, const unsigned char *select, unsigned char *out) {
        const std::size_t done = copyByVectors<channels * bytes, moved * bytes, others>(pixels, in, select, out);
        copySelected<Sample, channels, moved, others>(done, pixels, in, select, out);
    };
    return overRows(width, height, row, Pixels{source, channels * bytes}, Pixels{mask, std::size_t{1}},
                    Pixels{destination, channels * bytes});
}

struct And {
    auto vector(auto a, auto b) const { return a & b; }
    auto operator()(auto a, auto b) const { return a & b; }
};

} // namespace

#define ORV_COPY_MASKED(name, Sample, channels, moved, others)                                                      \
    KRN_KERNEL(CopyMaskedKernel, name)                                                                              \
    {                                                                                                               \
        return copyMasked<Sample, channels, moved, Others::others>(from(source, sourceStep), to(destination, step), \
                                                                   width, height, from(mask, maskStep));            \
    }

#define ORV_COPY_MASKED_LAYOUTS(samples, Sample)                     \
    ORV_COPY_MASKED(krnCopyMasked##samples##C1, Sample, 1, 1, Kept)  \
    ORV_COPY_MASKED(krnCopyMasked##samples##C3, Sample, 3, 3, Kept)  \
    ORV_COPY_MASKED(krnCopyMasked##samples##C4, Sample, 4, 4, Kept)  \
    ORV_COPY_MASKED(krnCopyMasked##samples##AC4, Sample, 4, 3, Kept) \
    ORV_COPY_MASKED(krnSelect##samples##C1, Sample, 1, 1, Zeroed)    \
    ORV_COPY_MASKED(krnSelect##samples##C3, Sample, 3, 3, Zeroed)    \
    ORV_COPY_MASKED(krnSelect##samples##C4, Sample, 4, 4, Zeroed)

ORV_COPY_MASKED_LAYOUTS(8u, std::uint8_t)
ORV_COPY_MASKED_LAYOUTS(16u, std::uint16_t)
ORV_COPY_MASKED_LAYOUTS(32s, std::int32_t)

KRN_KERNEL(AndMaskKernel, krnAndMask8u)
{
    return compute<std::uint8_t, C1>(width, height, And(), to(accumulator, accumulatorStep), from(mask, maskStep),
                                     from(accumulator, accumulatorStep));
}

#include "end.h"
