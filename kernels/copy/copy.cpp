// Copies of whole pixels. The runtime's own block moves are as fast as it gets on any processor, so one build serves
// all slots.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster.h"
#include "signatures.h"

namespace orv::slot0 {
namespace {

#include "rows.h"

KrnStatus copy(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height, std::size_t pixelBytes)
{
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        std::memmove(out, in, pixels * pixelBytes);
    };
    return overRows(width, height, row, Pixels{source, pixelBytes}, Pixels{destination, pixelBytes});
}

} // namespace

#define ORV_COPY(name, pixelBytes)                                                               \
    KRN_KERNEL(CopyKernel, name)                                                                 \
    {                                                                                            \
        return copy(from(source, sourceStep), to(destination, step), width, height, pixelBytes); \
    }

#define ORV_COPIES(samples, sampleBytes)            \
    ORV_COPY(krnCopy##samples##C1, sampleBytes)     \
    ORV_COPY(krnCopy##samples##C3, 3 * sampleBytes) \
    ORV_COPY(krnCopy##samples##C4, 4 * sampleBytes)

ORV_COPIES(8u, 1)
ORV_COPIES(16u, 2)
ORV_COPIES(32s, 4)

} // namespace orv::slot0
