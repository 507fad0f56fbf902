// Means of boxes, for images that become smaller.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

// Sums of integers are exact: the caller takes doubles where 32 bits do not hold them.
template <class Sum, class Sample>
KrnStatus addRow(const void *source, void *sums, std::int32_t samples, std::int32_t weight, std::int32_t starts)
{
    if (source == nullptr || sums == nullptr)
        return KRN_NULL_POINTER;
    if (samples < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    const Sum factor = static_cast<Sum>(weight);
    const std::size_t count = static_cast<std::size_t>(samples);
    const auto term = [=](std::size_t i) { return static_cast<Sum>(load<Sample>(source, i)) * factor; };
    if (starts != 0) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < count; ++i)
            store(sums, i, term(i));
    } else {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < count; ++i)
            store(sums, i, static_cast<Sum>(load<Sum>(sums, i) + term(i)));
    }
    return KRN_OK;
}

// Rounded to nearest, ties up, and within the range; a mean of integers cannot leave it but by rounding of doubles.
template <class Out> inline Out mean(double sum, double weights)
{
    if constexpr (std::is_same_v<Out, float>)
        return static_cast<float>(sum / weights);
    constexpr double top = sizeof(Out) == 1 ? 255 : 65535;
    const double value = (sum + weights / 2) / weights;
    return static_cast<Out>(value < top ? value : top);
}

template <class Out, class Sum, std::size_t layout>
KrnStatus meanRow(const void *sums, void *destination, std::int32_t width, const BoxesOfRow *boxes, double rowWeights)
{
    constexpr std::size_t channels = samplesOf(layout), written = layout == AC4 ? 3 : layout;
    if (sums == nullptr || destination == nullptr || boxes == nullptr)
        return KRN_NULL_POINTER;
    if (width < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    for (std::size_t i = 0; i < static_cast<std::size_t>(width); ++i) {
        const std::size_t first = static_cast<std::size_t>(boxes->first[i]);
        const std::size_t last = static_cast<std::size_t>(boxes->last[i]);
        const double firstWeight = boxes->firstWeight[i], weight = boxes->weight;
        const double lastWeight = last > first ? boxes->lastWeight[i] : 0;
        const double between = last > first ? static_cast<double>(last - first - 1) : 0;
        const double weights = (firstWeight + between * weight + lastWeight) * rowWeights;
        for (std::size_t channel = 0; channel < written; ++channel) {
            const auto at = [=](std::size_t pixel) {
                return static_cast<double>(load<Sum>(sums, pixel * channels + channel));
            };
            double inner = 0;
            for (std::size_t pixel = first + 1; pixel < last; ++pixel)
                inner += at(pixel);
            const double sum = at(first) * firstWeight + inner * weight + (last > first ? at(last) * lastWeight : 0);
            store(destination, i * channels + channel, mean<Out>(sum, weights));
        }
    }
    return KRN_OK;
}

} // namespace

#define ORV_ADD_ROW(name, Sum, Sample)                                     \
    KRN_KERNEL(AddRowKernel, name)                                         \
    {                                                                      \
        return addRow<Sum, Sample>(source, sums, samples, weight, starts); \
    }

ORV_ADD_ROW(krnAddRow8u32s, std::uint32_t, std::uint8_t)
ORV_ADD_ROW(krnAddRow16u32s, std::uint32_t, std::uint16_t)
ORV_ADD_ROW(krnAddRow8u64f, double, std::uint8_t)
ORV_ADD_ROW(krnAddRow16u64f, double, std::uint16_t)
ORV_ADD_ROW(krnAddRow32f64f, double, float)

#define ORV_MEAN_ROW(layout, stem, Out, Sum)                                           \
    KRN_KERNEL(MeanRowKernel, stem##layout)                                            \
    {                                                                                  \
        return meanRow<Out, Sum, layout>(sums, destination, width, boxes, rowWeights); \
    }

ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow32s8u, std::uint8_t, std::uint32_t)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow32s16u, std::uint16_t, std::uint32_t)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f8u, std::uint8_t, double)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f16u, std::uint16_t, double)
ORV_LAYOUTS(ORV_MEAN_ROW, krnMeanRow64f32f, float, double)

#include "end.h"
