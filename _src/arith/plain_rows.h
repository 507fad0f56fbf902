// Loops without a kernel. They are compiled here, for the base processor.
#pragma once

#include <cstddef>
#include <cstdint>

#include "loop.h"
#include "raster.h"

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

// A loop of destination = operation(source), sample by sample. Rows of AC4 go through a buffer, from which three
// samples of four are moved.
template <class Sample, class Operator> auto makePlain(Operator operation)
{
    return [operation](const Work &work) -> KrnStatus {
        const std::size_t samples = static_cast<std::size_t>(samplesPerPixel(work.layout));
        const auto row = [=, layout = work.layout](std::size_t pixels, const unsigned char *in, unsigned char *out) {
            if (layout != Layout::AC4) {
                plainRow<Sample>(pixels * samples, in, out, operation);
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
        const std::size_t pixelBytes = samples * sizeof(Sample);
        return overRows(work.size.width, work.size.height, row, Pixels{work.sources[0], pixelBytes},
                        Pixels{work.destination, pixelBytes});
    };
}

} // namespace
} // namespace orv
