// The smallest and the largest sample of each channel. Not-a-numbers change nothing; a channel of nothing else has the
// minimum infinity and the maximum minus infinity.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

// Running results of samples side by side: a number of them that vectors and pixels of 1, 3 and 4 samples divide.
constexpr std::size_t lanes = 24;

struct Extremes {
    float low[lanes], high[lanes];

    void take(std::size_t lane, float value)
    {
        low[lane] = value < low[lane] ? value : low[lane];
        high[lane] = value > high[lane] ? value : high[lane];
    }
    void fold(std::size_t from, std::size_t into)
    {
        low[into] = low[from] < low[into] ? low[from] : low[into];
        high[into] = high[from] > high[into] ? high[from] : high[into];
    }
    void takeRow(std::size_t samples, const unsigned char *in);
};

void Extremes::takeRow(std::size_t samples, const unsigned char *in)
{
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    constexpr std::size_t vectors = lanes / perVector<float>;
    Floats lows[vectors], highs[vectors];
    for (std::size_t v = 0; v < vectors; ++v) {
        lows[v] = loadVector<float>(low, v * perVector<float>);
        highs[v] = loadVector<float>(high, v * perVector<float>);
    }
    for (; i + lanes <= samples; i += lanes)
        for (std::size_t v = 0; v < vectors; ++v) {
            const Floats values = loadVector<float>(in, i + v * perVector<float>);
            lows[v] = minimum(values, lows[v]);
            highs[v] = maximum(values, highs[v]);
        }
    for (std::size_t v = 0; v < vectors; ++v) {
        storeVector<float>(low, v * perVector<float>, lows[v]);
        storeVector<float>(high, v * perVector<float>, highs[v]);
    }
#else
    for (; i + lanes <= samples; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            take(lane, load<float>(in, i + lane));
#endif
    for (std::size_t lane = 0; i < samples; ++i, ++lane)
        take(lane, load<float>(in, i));
}

// Zeros of both signs are equal, and which of them is met first depends on the order of the search. It is the first of
// the raster.
float withSignOfFirstZero(float value, std::size_t channel, std::size_t channels, ConstRaster source,
                          std::int32_t width, std::int32_t height)
{
    if (value != 0)
        return value;
    for (std::int32_t y = 0; y < height; ++y) {
        const unsigned char *const row = source.fromRow(y).data;
        for (std::size_t i = channel; i < static_cast<std::size_t>(width) * channels; i += channels)
            if (load<float>(row, i) == 0)
                return load<float>(row, i);
    }
    return value;
}

KrnStatus minMax(std::size_t channels, std::size_t searched, ConstRaster source, std::int32_t width,
                 std::int32_t height, float *minima, float *maxima)
{
    if (source.data == nullptr || minima == nullptr || maxima == nullptr)
        return KRN_NULL_POINTER;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    if (source.step < 1)
        return KRN_BAD_STEP;
    Extremes extremes;
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        extremes.low[lane] = __builtin_inff();
        extremes.high[lane] = -__builtin_inff();
    }
    const auto row = [&](std::size_t pixels, const unsigned char *in) { extremes.takeRow(pixels * channels, in); };
    overRows(width, height, row, Pixels{source, channels * sizeof(float)});
    for (std::size_t channel = 0; channel < searched; ++channel) {
        for (std::size_t lane = channel + channels; lane < lanes; lane += channels)
            extremes.fold(lane, channel);
        minima[channel] = withSignOfFirstZero(extremes.low[channel], channel, channels, source, width, height);
        maxima[channel] = withSignOfFirstZero(extremes.high[channel], channel, channels, source, width, height);
    }
    return KRN_OK;
}

constexpr std::size_t searchedOf(std::size_t layout)
{
    return layout == AC4 ? 3 : layout;
}

} // namespace

#define ORV_MIN_MAX(layout, ...)                                                                                 \
    KRN_KERNEL(MinMaxKernel, krnMinMax32f##layout)                                                               \
    {                                                                                                            \
        return minMax(samplesOf(layout), searchedOf(layout), from(source, step), width, height, minima, maxima); \
    }

ORV_LAYOUTS(ORV_MIN_MAX, )

#include "end.h"
