// Loops over samples that have no kernel: they are computed here, for the base processor alone.
#pragma once

#include <cstddef>
#include <cstdint>

#include "area.h"
#include "channel_kernels.h"

namespace orv {
namespace {

#include "rows.h"

template <class Sample, class Operator>
void plainRow(std::size_t samples, const unsigned char *in, unsigned char *out, Operator operation)
{
    ORV_INDEPENDENT
    ORV_UNROLLED
    for (std::size_t i = 0; i < samples; ++i)
        store(out, i, static_cast<Sample>(operation(load<Sample>(in, i))));
}

// destination = operation(source), sample by sample; AC4 by way of a buffer, from which three samples of four are
// moved.
template <class Sample, class Operator>
void plainRows(Layout layout, Raster source, Raster destination, Size size, Operator operation)
{
    const std::int32_t samples = samplesPerPixel(layout);
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        if (layout != Layout::AC4) {
            plainRow<Sample>(pixels * static_cast<std::size_t>(samples), in, out, operation);
            return;
        }
        constexpr std::size_t most = 128;
        unsigned char buffer[most * 4 * sizeof(Sample)];
        for (std::size_t done = 0; done < pixels; done += most) {
            const std::size_t some = pixels - done < most ? pixels - done : most;
            const std::size_t at = done * 4 * sizeof(Sample);
            plainRow<Sample>(4 * some, in + at, buffer, operation);
            moveThreeOfFour<Sample>(some, buffer, out + at);
        }
    };
    const std::int32_t pixelBytes = samples * static_cast<std::int32_t>(sizeof(Sample));
    overRows(size.width, size.height, row, from(source.data, source.step, pixelBytes),
             to(destination.data, destination.step, pixelBytes));
}

} // namespace
} // namespace orv
