// Single channels of interleaved pixels, and copies that pass over the fourth sample.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

// Moves `moved` samples of each pixel between pixels of different lengths.
template <class Sample, std::size_t inChannels, std::size_t outChannels, std::size_t moved>
KrnStatus moveSamples(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            for (std::size_t channel = 0; channel < moved; ++channel)
                store(out, i * outChannels + channel, load<Sample>(in, i * inChannels + channel));
    };
    return overRows(width, height, row, Pixels{source, inChannels * sizeof(Sample)},
                    Pixels{destination, outChannels * sizeof(Sample)});
}

#if ORV_SHUFFLES

template <class Sample, std::size_t channels, std::size_t... number>
inline void insertVector(U8s in, unsigned char *out, std::index_sequence<number...>)
{
    constexpr std::size_t pixelBytes = channels * sizeof(Sample);
    (storeVector<std::uint8_t>(out, ORV_VECTOR_BYTES * number,
                               chosen<std::uint8_t>(movedBits<pixelBytes, sizeof(Sample), number>(),
                                                    spread<sizeof(Sample), channels, number>(in),
                                                    loadVector<std::uint8_t>(out, ORV_VECTOR_BYTES * number))),
     ...);
}

// Returns how many pixels it has done. The start pointer is on one sample, so a vector of pixels from there extends
// into the next pixel: the last pixel of a row is left over.
template <class Sample, std::size_t channels>
inline std::size_t insertVectors(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    std::size_t i = 0;
    if (perVector<Sample> / channels <= 2) // stores of single samples are faster
        return i;
    for (; i + perVector<Sample> < pixels; i += perVector<Sample>)
        insertVector<Sample, channels>(loadVector<std::uint8_t>(in + i * sizeof(Sample)),
                                       out + i * channels * sizeof(Sample), std::make_index_sequence<channels>());
    return i;
}

#else

template <class, std::size_t> inline std::size_t insertVectors(std::size_t, const unsigned char *, unsigned char *)
{
    return 0;
}

#endif

template <class Sample, std::size_t channels>
KrnStatus insert(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = insertVectors<Sample, channels>(pixels, in, out); i < pixels; ++i)
            store(out, i * channels, load<Sample>(in, i));
    };
    return overRows(width, height, row, Pixels{source, sizeof(Sample)}, Pixels{destination, channels * sizeof(Sample)});
}

struct Same {
    auto vector(auto sample) const { return sample; }
    auto operator()(auto sample) const { return sample; }
};

} // namespace

#define ORV_MOVE(name, ...)                                                                 \
    KRN_KERNEL(CopyKernel, name)                                                            \
    {                                                                                       \
        return __VA_ARGS__(from(source, sourceStep), to(destination, step), width, height); \
    }

#define ORV_CHANNELS(samples, Sample)                                                                        \
    KRN_KERNEL(CopyKernel, krnCopy##samples##AC4)                                                            \
    {                                                                                                        \
        return compute<Sample, AC4>(width, height, Same(), to(destination, step), from(source, sourceStep)); \
    }                                                                                                        \
    ORV_MOVE(krnCopy##samples##C3AC4, moveSamples<Sample, 3, 4, 3>)                                          \
    ORV_MOVE(krnCopy##samples##AC4C3, moveSamples<Sample, 4, 3, 3>)                                          \
    ORV_MOVE(krnExtract##samples##C3, moveSamples<Sample, 3, 1, 1>)                                          \
    ORV_MOVE(krnExtract##samples##C4, moveSamples<Sample, 4, 1, 1>)                                          \
    ORV_MOVE(krnInsert##samples##C3, insert<Sample, 3>)                                                      \
    ORV_MOVE(krnInsert##samples##C4, insert<Sample, 4>)

ORV_CHANNELS(8u, std::uint8_t)
ORV_CHANNELS(16u, std::uint16_t)
ORV_CHANNELS(32s, std::int32_t)

#include "end.h"
