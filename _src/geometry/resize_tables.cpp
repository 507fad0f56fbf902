// The tables of resize_tables.h.
#include "geometry/resize_tables.h"

#include <algorithm>
#include <type_traits>

#include "scratch.h"

namespace orv {
namespace {

// Rounded to a double, also where the processor calculates with more bits.
double stored(double value)
{
    const volatile double rounded = value;
    return rounded;
}

} // namespace

void ResizeAxis::findCount(std::int32_t room)
{
    const double exact = stored(length * stored(factor()));
    count = static_cast<std::int32_t>(std::min<double>(exact + resizeSlack, room));
    if (count < 1)
        count = exact < 0.5 ? 0 : 1;
}

KrnStatus ResizeMethod::fillAxis(const ResizeAxis &of, std::int32_t *memory) const
{
    const double factor = stored(of.factor()), scaled = stored(of.length * factor);
    const double step = mode == KRN_NEAREST ? 1 / factor : scaled > 1 ? (of.length - 1) / stored(scaled - 1) : 0;
    const double start = mode == KRN_NEAREST ? stored(step) / 2 : 0;
    return axis(start, stored(step), of.count, mode, of.offset, of.whole - 1, memory, memory + of.count);
}

std::int64_t ColumnTable::bytes(std::int32_t count) const
{
    const std::int64_t samples = std::int64_t{count} * samplesPerPixel;
    return roundedUp(method.axisBytes(count)) + roundedUp(method.axisBytes(samples)) +
           roundedUp(shufflesBytes(samples, placeBytes()));
}

KrnStatus ColumnTable::fill(const ResizeAxis &axis, std::uint8_t *memory, ResizeColumns &columns) const
{
    std::int32_t *const pixels = reinterpret_cast<std::int32_t *>(memory);
    if (const KrnStatus status = method.fillAxis(axis, pixels); status != KRN_OK)
        return status;
    const std::int32_t samples = axis.count * samplesPerPixel, pixelBytes = source.pixelBytes;
    std::uint8_t *const bySample = memory + roundedUp(method.axisBytes(axis.count));
    std::uint8_t *const shuffles = bySample + roundedUp(method.axisBytes(samples));
    std::int32_t *const offsets = reinterpret_cast<std::int32_t *>(bySample), *const weights = offsets + samples;
    for (std::int32_t sample = 0; sample < samplesPerPixel; ++sample)
        for (std::int32_t i = 0; i < axis.count; ++i)
            offsets[i * samplesPerPixel + sample] = pixels[i] * pixelBytes + sample * source.sampleBytes;
    const auto spread = [&](auto *out) {
        const std::int32_t *const of = pixels + axis.count, count = axis.count * method.weights();
        for (std::int32_t sample = 0; sample < samplesPerPixel; ++sample)
            for (std::int32_t i = 0; i < count; ++i)
                out[i * samplesPerPixel + sample] = static_cast<std::remove_pointer_t<decltype(out)>>(of[i]);
    };
    if (source.sampleBytes == 1 && method.mode == KRN_LINEAR)
        spread(reinterpret_cast<std::int16_t *>(weights));
    else
        spread(weights);
    columns = {samples, pixelBytes, offsets, weights, shuffles};
    return krnResizeShuffles(&columns, source.sampleBytes, method.tapsInPlace, placeBytes(), shuffles);
}

} // namespace orv
