// Largest and smallest samples of windows.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

struct Largest {
    template <class Sample> Sample operator()(Sample a, Sample b) const { return a > b ? a : b; }
};
struct Smallest {
    template <class Sample> Sample operator()(Sample a, Sample b) const { return a < b ? a : b; }
};

template <class Sample, class Better>
[[gnu::noinline]] KrnStatus extremes(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                     std::int32_t height, const Window &window, void *)
{
    if (const KrnStatus status = checkWindow(source, destination, width, height, window); status != KRN_OK)
        return status;
    const std::size_t channels = samplesOf(layout);
    const Better better;
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = 0; i < samples; ++i) {
            Sample found = load<Sample>(in, i);
            for (std::int32_t y = 0; y < window.rows; ++y)
                for (std::int32_t x = 0; x < window.columns; ++x)
                    found = better(found, load<Sample>(in + std::ptrdiff_t{y} * source.step,
                                                       i + static_cast<std::size_t>(x) * channels));
            store(out, i, found);
        }
    };
    return overWindows<Sample, Sample>(layout, source, destination, width, height, window, row);
}

} // namespace

#define ORV_EXTREMES(layout, samples, Sample)                                                                     \
    KRN_KERNEL(WindowKernel, krnMaxFilter##samples##layout)                                                       \
    {                                                                                                             \
        return extremes<Sample, Largest>(layout, from(source, sourceStep), to(destination, step), width, height,  \
                                         {columns, rows, anchorX, anchorY}, scratch);                             \
    }                                                                                                             \
    KRN_KERNEL(WindowKernel, krnMinFilter##samples##layout)                                                       \
    {                                                                                                             \
        return extremes<Sample, Smallest>(layout, from(source, sourceStep), to(destination, step), width, height, \
                                          {columns, rows, anchorX, anchorY}, scratch);                            \
    }

ORV_LAYOUTS(ORV_EXTREMES, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_EXTREMES, 16s, std::int16_t)

#include "end.h"
