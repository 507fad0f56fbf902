// Single channels of interleaved pixels, and copies that pass over the fourth sample.
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
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif

// Moves `moved` samples of each pixel between pixels of different lengths.
template <class Sample, std::size_t inChannels, std::size_t outChannels, std::size_t moved>
KrnStatus moveSamples(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                      std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            for (std::size_t channel = 0; channel < moved; ++channel)
                store(out, i * outChannels + channel, load<Sample>(in, i * inChannels + channel));
    };
    return overRows(width, height, row, from(source, sourceStep, inChannels * sizeof(Sample)),
                    to(destination, destinationStep, outChannels * sizeof(Sample)));
}

#if ORV_SSE_LEVEL >= 4

#include "bytes16.h"

template <std::size_t pixelBytes, std::size_t... piece>
inline void insertSixteen(Bytes16 in, unsigned char *out, std::index_sequence<piece...>)
{
    const Bytes16 all = reinterpret_cast<Bytes16>(_mm_set1_epi8(-1));
    (storeBytes(out + 16 * piece, spread<pixelBytes, 1, piece>(all) != 0 ? spread<pixelBytes, 1, piece>(in)
                                                                         : loadBytes(out + 16 * piece)),
     ...);
}

// Returns how many pixels it has done. The start pointer stands on one sample, so sixteen pixels from there reach into
// the next one: the last pixel of a row is left over.
template <std::size_t pixelBytes>
inline std::size_t insertSixteens(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    std::size_t i = 0;
    for (; i + 16 < pixels; i += 16)
        insertSixteen<pixelBytes>(loadBytes(in + i), out + i * pixelBytes, std::make_index_sequence<pixelBytes>());
    return i;
}

#else

template <std::size_t> inline std::size_t insertSixteens(std::size_t, const unsigned char *, unsigned char *)
{
    return 0;
}

#endif

template <std::size_t channels>
KrnStatus insertBytes(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                      std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = insertSixteens<channels>(pixels, in, out); i < pixels; ++i)
            out[i * channels] = in[i];
    };
    return overRows(width, height, row, from(source, sourceStep, 1), to(destination, destinationStep, channels));
}

template <class Sample>
KrnStatus copyThreeOfFour(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                          std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
#if ORV_SSE_LEVEL >= 2
        if constexpr (sizeof(Sample) == 4) {
            ORV_UNROLLED
            for (std::size_t i = 0; i < 4 * pixels; i += 4)
                storeVector<Sample>(out, i,
                                    keepingFourth<Sample>(loadVector<Sample>(in, i), loadVector<Sample>(out, i)));
            return;
        }
#endif
        moveThreeOfFour<Sample>(pixels, in, out);
    };
    return overRows(width, height, row, from(source, sourceStep, 4 * sizeof(Sample)),
                    to(destination, destinationStep, 4 * sizeof(Sample)));
}

template <class Sample>
KrnStatus fillThreeOfFour(const void *values, void *destination, std::int32_t step, std::int32_t width,
                          std::int32_t height)
{
    if (values == nullptr)
        return KRN_NULL_POINTER;
    const Sample first = load<Sample>(values, 0), second = load<Sample>(values, 1), third = load<Sample>(values, 2);
    const auto row = [=](std::size_t pixels, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i) {
            store(out, 4 * i, first);
            store(out, 4 * i + 1, second);
            store(out, 4 * i + 2, third);
        }
    };
    return overRows(width, height, row, to(destination, step, 4 * sizeof(Sample)));
}

} // namespace

#define ORV_MOVE(name, Sample, inChannels, outChannels, moved)                                                       \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,     \
                   std::int32_t width, std::int32_t height)                                                          \
    {                                                                                                                \
        return moveSamples<Sample, inChannels, outChannels, moved>(source, sourceStep, destination, destinationStep, \
                                                                   width, height);                                   \
    }

#define ORV_CHANNELS(samples, Sample)                                                                             \
    ORV_MOVE(krnCopy##samples##AC4, Sample, 4, 4, 3)                                                              \
    ORV_MOVE(krnCopy##samples##C3AC4, Sample, 3, 4, 3)                                                            \
    ORV_MOVE(krnCopy##samples##AC4C3, Sample, 4, 3, 3)                                                            \
    ORV_MOVE(krnExtract##samples##C3, Sample, 3, 1, 1)                                                            \
    ORV_MOVE(krnExtract##samples##C4, Sample, 4, 1, 1)                                                            \
    KrnStatus krnFill##samples##AC4(const void *values, void *destination, std::int32_t step, std::int32_t width, \
                                    std::int32_t height)                                                          \
    {                                                                                                             \
        return fillThreeOfFour<Sample>(values, destination, step, width, height);                                 \
    }

#define ORV_INSERT_BYTES(name, channels)                                                                         \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep, \
                   std::int32_t width, std::int32_t height)                                                      \
    {                                                                                                            \
        return insertBytes<channels>(source, sourceStep, destination, destinationStep, width, height);           \
    }

ORV_CHANNELS(8u, std::uint8_t)
ORV_INSERT_BYTES(krnInsert8uC3, 3)
ORV_INSERT_BYTES(krnInsert8uC4, 4)
ORV_CHANNELS(16u, std::uint16_t)
ORV_MOVE(krnInsert16uC3, std::uint16_t, 1, 3, 1)
ORV_MOVE(krnInsert16uC4, std::uint16_t, 1, 4, 1)
ORV_CHANNELS(32s, std::int32_t)
ORV_MOVE(krnInsert32sC3, std::int32_t, 1, 3, 1)
ORV_MOVE(krnInsert32sC4, std::int32_t, 1, 4, 1)

#include "end.h"
