// Means of windows by running sums: down the columns, and along each row of column sums.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

// Sums of floats depend on their order: a column sum takes the difference of the row that enters and the row that
// leaves, and a sum of columns likewise.
inline std::int32_t moved(std::int32_t sum, std::int32_t entering, std::int32_t leaving)
{
    return sum + (entering - leaving);
}
inline float moved(float sum, float entering, float leaving)
{
    return singleFloat(sum + singleFloat(entering - leaving));
}

inline std::int32_t added(std::int32_t a, std::int32_t b)
{
    return a + b;
}
inline float added(float a, float b)
{
    return singleFloat(a + b);
}

inline float reciprocal(const Window &window)
{
    return singleFloat(1.0f / static_cast<float>(window.columns * window.rows));
}

// A quotient as a product with 12 bits of the reciprocal, rounded up.
struct ByteMean {
    using Sample = std::uint8_t;
    using Sum = std::int32_t;
    std::uint32_t multiplier, shift;

    explicit ByteMean(const Window &window)
    {
        const float inverse = reciprocal(window);
        double wide = inverse * 4294967295.0;
        __asm__("" : "+m"(wide));
        std::uint32_t value = static_cast<std::uint32_t>(static_cast<std::int64_t>(wide)), shifts = 0;
        for (; shifts < 24 && value < 0x80000000; value <<= 1)
            ++shifts;
        multiplier = inverse == 1 ? 256 : (value >> 20) + 1;
        shift = inverse == 1 ? 8 : shifts + 12;
    }
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const
    {
        return static_cast<Sample>(multiplier * static_cast<std::uint32_t>(sum) >> shift);
    }
};

// Beyond what such a product holds.
struct LargeByteMean {
    using Sample = std::uint8_t;
    using Sum = float;
    float inverse;

    explicit LargeByteMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const
    {
        return static_cast<Sample>(static_cast<std::int32_t>(singleFloat(sum * inverse)));
    }
};

// Samples count from the lowest, so that truncation rounds down.
struct WordMean {
    using Sample = std::int16_t;
    using Sum = std::int32_t;
    float inverse;

    explicit WordMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample + 32768; }
    Sample operator()(Sum sum) const
    {
        constexpr float above = 9.0e-6f; // what the product of a whole mean may lack
        const float mean = singleFloat(singleFloat(static_cast<float>(sum)) * inverse);
        return static_cast<Sample>(static_cast<std::int32_t>(singleFloat(mean + above)) ^ 0x8000);
    }
};

struct FloatMean {
    using Sample = float;
    using Sum = float;
    float inverse;

    explicit FloatMean(const Window &window) : inverse(reciprocal(window)) {}
    static Sum of(Sample sample) { return sample; }
    Sample operator()(Sum sum) const { return sum * inverse; }
};

struct Box {
    std::size_t layout;
    ConstRaster source;
    Raster destination;
    std::int32_t width, height;
    Window window;
    void *sums;
    bool continued;
};

template <class Mean> [[gnu::noinline]] KrnStatus blurBy(const Box &box)
{
    using Sample = typename Mean::Sample;
    using Sum = typename Mean::Sum;
    const Mean mean(box.window);
    const std::size_t channels = samplesOf(box.layout), written = box.layout == AC4 ? 3 : channels;
    const std::size_t columns = static_cast<std::size_t>(box.window.columns) * channels;
    const std::size_t samples = static_cast<std::size_t>(box.width) * channels, all = samples + columns - channels;
    const ConstRaster first = firstOf(box.source, box.window, channels * sizeof(Sample));
    for (std::int32_t y = 0; y < box.height; ++y) {
        if (y == 0 && !box.continued) {
            for (std::size_t i = 0; i < all; ++i) {
                Sum sum = Sum();
                for (std::int32_t row = 0; row < box.window.rows; ++row)
                    sum = added(sum, Mean::of(load<Sample>(first.fromRow(row).data, i)));
                store(box.sums, i, sum);
            }
        } else {
            const unsigned char *entering = first.fromRow(y + box.window.rows - 1).data,
                                *leaving = first.fromRow(y - 1).data;
            for (std::size_t i = 0; i < all; ++i)
                store(box.sums, i,
                      moved(load<Sum>(box.sums, i), Mean::of(load<Sample>(entering, i)),
                            Mean::of(load<Sample>(leaving, i))));
        }
        for (std::size_t channel = 0; channel < written; ++channel) {
            Sum sum = Sum();
            for (std::size_t i = channel; i < columns; i += channels)
                sum = added(sum, load<Sum>(box.sums, i));
            for (std::size_t i = channel;; i += channels) {
                store(box.destination.fromRow(y).data, i, mean(sum));
                if (i + channels >= samples)
                    break;
                sum = moved(sum, load<Sum>(box.sums, i + columns), load<Sum>(box.sums, i));
            }
        }
    }
    return KRN_OK;
}

template <class Mean> inline KrnStatus blur(const Box &box)
{
    const KrnStatus status = checkWindow(box.source, box.destination, box.width, box.height, box.window);
    if (status != KRN_OK)
        return status;
    constexpr std::int64_t mostPixels = 8100; // of bytes, of which 12 bits of the reciprocal make less than 32
    if constexpr (sizeof(typename Mean::Sample) == 1)
        if (std::int64_t{box.window.columns} * box.window.rows > mostPixels)
            return blurBy<LargeByteMean>(box);
    return blurBy<Mean>(box);
}

} // namespace

#define ORV_BLUR(layout, samples, Mean)                       \
    KRN_KERNEL(BoxKernel, krnBlur##samples##layout)           \
    {                                                         \
        static_cast<void>(scratch);                           \
        return blur<Mean>({layout,                            \
                           from(source, sourceStep),          \
                           to(destination, step),             \
                           width,                             \
                           height,                            \
                           {columns, rows, anchorX, anchorY}, \
                           sums,                              \
                           continued != 0});                  \
    }

ORV_LAYOUTS(ORV_BLUR, 8u, ByteMean)
ORV_LAYOUTS(ORV_BLUR, 16s, WordMean)
ORV_LAYOUTS(ORV_BLUR, 32f, FloatMean)

#include "end.h"
