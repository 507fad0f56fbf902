// The fixed filters of 8 and 16 bits.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "operators.h"

// A sample and its neighbours.
template <class Sample> struct Neighbours {
    const unsigned char *sample;
    std::ptrdiff_t step, pixelBytes;

    std::int32_t at(std::int32_t right, std::int32_t down) const
    {
        return load<Sample>(sample + right * pixelBytes + down * step, 0);
    }
    std::int32_t sum(std::int32_t side) const
    {
        std::int32_t sum = 0;
        for (std::int32_t down = -(side / 2); down <= side / 2; ++down)
            for (std::int32_t right = -(side / 2); right <= side / 2; ++right)
                sum += at(right, down);
        return sum;
    }
    // Coefficients of a quarter of a window of 5 x 5 that is symmetric: from its corner to its centre.
    std::int32_t symmetric(const std::int32_t (&quarter)[6]) const
    {
        const auto four = [&](std::int32_t right, std::int32_t down) {
            return at(-right, -down) + at(right, -down) + at(-right, down) + at(right, down);
        };
        const auto cross = [&](std::int32_t far) { return at(-far, 0) + at(far, 0) + at(0, -far) + at(0, far); };
        return quarter[0] * four(2, 2) + quarter[1] * (four(1, 2) + four(2, 1)) + quarter[2] * cross(2) +
               quarter[3] * four(1, 1) + quarter[4] * cross(1) + quarter[5] * at(0, 0);
    }
};

// Divided by a power of two: to nearest, ties to even.
template <int shift> inline std::int32_t halved(std::int32_t sum)
{
    return (sum + (1 << shift >> 1) - 1 + ((sum >> shift) & 1)) >> shift;
}

struct PrewittV {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return of.at(-1, -1) - of.at(1, -1) + of.at(-1, 0) - of.at(1, 0) + of.at(-1, 1) - of.at(1, 1);
    }
};
struct PrewittH {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return of.at(-1, 1) - of.at(-1, -1) + of.at(0, 1) - of.at(0, -1) + of.at(1, 1) - of.at(1, -1);
    }
};
struct SobelV {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return PrewittV()(of) + of.at(-1, 0) - of.at(1, 0);
    }
};
struct SobelH {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return PrewittH()(of) + of.at(0, 1) - of.at(0, -1);
    }
};
struct Laplace3 {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return 9 * of.at(0, 0) - of.sum(3);
    }
};
struct Laplace5 {
    static constexpr std::int32_t side = 5;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return of.symmetric({-1, -3, -4, 0, 6, 20});
    }
};
struct Gauss3 {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return halved<4>(of.sum(3) + of.at(-1, 0) + of.at(0, -1) + of.at(0, 1) + of.at(1, 0) + 3 * of.at(0, 0));
    }
};
// By 571, as a product with its reciprocal: of 24 bits for bytes; of 32 bits for words, which are biased to be
// positive.
struct Gauss5 {
    static constexpr std::int32_t side = 5;
    std::int32_t operator()(const Neighbours<std::uint8_t> &of) const
    {
        const std::uint32_t sum = static_cast<std::uint32_t>(of.symmetric(quarter));
        return static_cast<std::int32_t>((sum + 286) * 29382 >> 24);
    }
    std::int32_t operator()(const Neighbours<std::int16_t> &of) const
    {
        const std::uint32_t biased = static_cast<std::uint32_t>(of.symmetric(quarter) + 286 + 571 * 32768);
        return static_cast<std::int16_t>((std::uint64_t{biased} * 7521834 >> 32) ^ 0x8000);
    }

private:
    static constexpr std::int32_t quarter[] = {2, 7, 12, 31, 52, 127};
};
struct Hipass5 {
    static constexpr std::int32_t side = 5;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return 25 * of.at(0, 0) - of.sum(5);
    }
};
struct Sharpen {
    static constexpr std::int32_t side = 3;
    template <class Sample> std::int32_t operator()(const Neighbours<Sample> &of) const
    {
        return halved<3>(17 * of.at(0, 0) - of.sum(3));
    }
};

template <class Sample, class Filter>
[[gnu::noinline]] KrnStatus filter(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                   std::int32_t height)
{
    const Filter of;
    const std::ptrdiff_t pixelBytes = static_cast<std::ptrdiff_t>(samplesOf(layout) * sizeof(Sample));
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = 0; i < samples; ++i)
            store(out, i, saturated<Sample>(of(Neighbours<Sample>{in + i * sizeof(Sample), source.step, pixelBytes})));
    };
    return overWindows<Sample, Sample>(layout, source, destination, width, height, {1, 1, 0, 0}, row);
}

template <class Sample, class Three, class Five>
KrnStatus filterBy(std::int32_t code, std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                   std::int32_t height)
{
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    if (code == KRN_WINDOW_3X3)
        return filter<Sample, Three>(layout, source, destination, width, height);
    if (code == KRN_WINDOW_5X5)
        return filter<Sample, Five>(layout, source, destination, width, height);
    return KRN_BAD_MASK_SIZE;
}

} // namespace

#define ORV_FIXED(layout, samples, Sample, name)                                                             \
    KRN_KERNEL(FixedKernel, krnFixed##name##samples##layout)                                                 \
    {                                                                                                        \
        return filter<Sample, name>(layout, from(source, sourceStep), to(destination, step), width, height); \
    }
#define ORV_FIXED_BY(layout, samples, Sample, name, three, five)                                                   \
    KRN_KERNEL(CodedKernel, krnFixed##name##samples##layout)                                                       \
    {                                                                                                              \
        return filterBy<Sample, three, five>(code, layout, from(source, sourceStep), to(destination, step), width, \
                                             height);                                                              \
    }
#define ORV_FIXED_FILTERS(samples, Sample)                                  \
    ORV_LAYOUTS(ORV_FIXED, samples, Sample, PrewittV)                       \
    ORV_LAYOUTS(ORV_FIXED, samples, Sample, PrewittH)                       \
    ORV_LAYOUTS(ORV_FIXED, samples, Sample, SobelV)                         \
    ORV_LAYOUTS(ORV_FIXED, samples, Sample, SobelH)                         \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Sample, Laplace, Laplace3, Laplace5) \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Sample, Gauss, Gauss3, Gauss5)       \
    ORV_LAYOUTS(ORV_FIXED_BY, samples, Sample, Hipass, Laplace3, Hipass5)   \
    ORV_LAYOUTS(ORV_FIXED, samples, Sample, Sharpen)

ORV_FIXED_FILTERS(8u, std::uint8_t)
ORV_FIXED_FILTERS(16s, std::int16_t)

#include "end.h"
