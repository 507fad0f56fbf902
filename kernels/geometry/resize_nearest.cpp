// Resizing by nearest pixels.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "resize_frame.h"
#include "resize_shuffles.h"

template <class Sample, std::size_t layout>
void nearestRow(const unsigned char *row, const ResizeColumns &columns, unsigned char *out)
{
#if ORV_SHUFFLES
    if (gatheredByVectors<sizeof(Sample)>(row, columns, [=](std::size_t i, const auto &sources) {
            Vector<Sample> samples = as<Sample>(sources.at(0));
            if constexpr (layout == AC4)
                samples = keepingFourth<Sample>(samples, loadVector<Sample>(out, i));
            storeVector<Sample>(out, i, samples);
        }))
        return;
#endif
    const std::size_t samples = static_cast<std::size_t>(columns.samples);
    for (std::size_t i = 0; i < samples; ++i)
        if (layout != AC4 || i % 4 != 3)
            store(out, i, sourceOf<Sample>(row, columns, i, 0));
}

template <class Sample, std::size_t layout>
KrnStatus nearestRows(const void *source, std::int32_t sourceStep, void *destination, std::int32_t step,
                      std::int32_t firstRow, std::int32_t height, const ResizeColumns *columns, const ResizeRows *rows)
{
    if (const KrnStatus status = testResize(source, sourceStep, destination, step, height, columns, rows);
        status != KRN_OK)
        return status;
    unsigned char *out = static_cast<unsigned char *>(destination);
    for (std::int32_t y = firstRow; y < firstRow + height; ++y, out += step)
        nearestRow<Sample, layout>(sourceRow(source, sourceStep, rows->indices[y]), *columns, out);
    return KRN_OK;
}

} // namespace

#define ORV_NEAREST(layout, samples, Sample)                                                                        \
    KRN_KERNEL(ResizeKernel, krnResizeNearest##samples##layout)                                                     \
    {                                                                                                               \
        return nearestRows<Sample, layout>(source, sourceStep, destination, step, firstRow, height, columns, rows); \
    }
#define ORV_NEAREST_LAYOUTS(samples, Sample) ORV_NEAREST(C1, samples, Sample) ORV_NEAREST(AC4, samples, Sample)

ORV_NEAREST_LAYOUTS(8u, std::uint8_t)
ORV_NEAREST_LAYOUTS(16u, std::uint16_t)
ORV_NEAREST_LAYOUTS(32s, std::int32_t)

#include "end.h"
