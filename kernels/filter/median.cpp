// Medians of windows.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

template <class Sample>
[[gnu::noinline]] KrnStatus median(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                   std::int32_t height, const Window &window, void *scratch)
{
    if (const KrnStatus status = checkWindow(source, destination, width, height, window); status != KRN_OK)
        return status;
    if (window.columns % 2 == 0 || window.rows % 2 == 0)
        return KRN_BAD_MASK_SIZE;
    const std::size_t channels = samplesOf(layout);
    unsigned char *const sorted = static_cast<unsigned char *>(scratch);
    const auto row = [&](std::size_t samples, const unsigned char *in, unsigned char *out) {
        for (std::size_t i = 0; i < samples; ++i) {
            std::size_t count = 0;
            for (std::int32_t y = 0; y < window.rows; ++y)
                for (std::int32_t x = 0; x < window.columns; ++x) {
                    const Sample sample =
                        load<Sample>(in + std::ptrdiff_t{y} * source.step, i + static_cast<std::size_t>(x) * channels);
                    std::size_t place = count++;
                    for (; place > 0 && load<Sample>(sorted, place - 1) > sample; --place)
                        store(sorted, place, load<Sample>(sorted, place - 1));
                    store(sorted, place, sample);
                }
            store(out, i, load<Sample>(sorted, count / 2));
        }
    };
    return overWindows<Sample, Sample>(layout, source, destination, width, height, window, row);
}

} // namespace

#define ORV_MEDIAN(layout, samples, Sample)                                                           \
    KRN_KERNEL(WindowKernel, krnMedian##samples##layout)                                              \
    {                                                                                                 \
        return median<Sample>(layout, from(source, sourceStep), to(destination, step), width, height, \
                              {columns, rows, anchorX, anchorY}, scratch);                            \
    }

ORV_LAYOUTS(ORV_MEDIAN, 8u, std::uint8_t)
ORV_LAYOUTS(ORV_MEDIAN, 16s, std::int16_t)

#include "end.h"
