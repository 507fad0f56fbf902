// The Jaehne test pattern. Evaluated in one build for all slots: a sine that differed in its last bit between builds
// would move samples by one.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "raster.h"
#include "signatures.h"

namespace orv::slot0 {
namespace {

#include "rows.h"

template <class Sample, class Shade>
KrnStatus pattern(void *destination, std::int32_t step, std::int32_t width, std::int32_t height, Shade shade)
{
    if (destination == nullptr)
        return KRN_NULL_POINTER;
    if (step < 1)
        return KRN_BAD_STEP;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    const double middleX = 0.5 * (width - 1), middleY = 0.5 * (height - 1);
    unsigned char *row = static_cast<unsigned char *>(destination);
    for (std::int32_t y = 0; y < height; ++y, row += step) {
        const double dy = y - middleY;
        for (std::int32_t x = 0; x < width; ++x) {
            const double dx = x - middleX;
            const double s = std::sin((dx * dx + dy * dy) * 6.283185307179586 / (4.0 * height));
            store(row, static_cast<std::size_t>(x), static_cast<Sample>(shade(s)));
        }
    }
    return KRN_OK;
}

} // namespace

#define ORV_PATTERN(name, Sample, formula)                                                          \
    KRN_KERNEL(PatternKernel, name)                                                                 \
    {                                                                                               \
        return pattern<Sample>(destination, step, width, height, [](double s) { return formula; }); \
    }

ORV_PATTERN(krnJaehne8u, std::uint8_t, (s + 1) * 127.99999)
ORV_PATTERN(krnJaehne8s, std::int8_t, s * 127.99999)
ORV_PATTERN(krnJaehne16u, std::uint16_t, (s + 1) * 32767.99999)
ORV_PATTERN(krnJaehne16s, std::int16_t, s * 32767.99999)
ORV_PATTERN(krnJaehne32s, std::int32_t, s * 2147483647.99999)
ORV_PATTERN(krnJaehne32f, float, (s + 1) * 0.49999)

} // namespace orv::slot0
