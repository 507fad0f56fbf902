// Vector medians: the pixel of a window that is nearest to all others.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

// The sum of the distances of three samples.
template <class Sample> inline std::int32_t distance(const unsigned char *a, const unsigned char *b)
{
    std::int32_t sum = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int32_t difference = load<Sample>(a, i) - load<Sample>(b, i);
        sum += difference < 0 ? -difference : difference;
    }
    return sum;
}

template <class Sample>
[[gnu::noinline]] KrnStatus colorMedian(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                                        std::int32_t height, std::int32_t code)
{
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    if (code != KRN_WINDOW_3X3 && code != KRN_WINDOW_5X5)
        return KRN_BAD_MASK_SIZE;
    const std::int32_t side = code == KRN_WINDOW_3X3 ? 3 : 5, size = side * side;
    const std::size_t pixelBytes = samplesOf(layout) * sizeof(Sample);
    const ConstRaster first = firstOf(source, {side, side, side / 2, side / 2}, pixelBytes);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            const ConstRaster corner =
                first.fromRow(y).fromByte(std::int64_t{x} * static_cast<std::int64_t>(pixelBytes));
            const auto pixel = [&](std::int32_t i) {
                return corner.data + std::ptrdiff_t{i / side} * corner.step +
                       static_cast<std::size_t>(i % side) * pixelBytes;
            };
            std::int32_t nearest = 0, smallest = 2147483647;
            for (std::int32_t i = 0; i < size; ++i) {
                std::int32_t sum = 0;
                for (std::int32_t j = 0; j < size; ++j)
                    sum += distance<Sample>(pixel(i), pixel(j));
                if (sum < smallest) {
                    smallest = sum;
                    nearest = i;
                }
            }
            unsigned char *const out = destination.fromRow(y).data + static_cast<std::size_t>(x) * pixelBytes;
            for (std::size_t i = 0; i < 3; ++i)
                store(out, i, load<Sample>(pixel(nearest), i));
        }
    return KRN_OK;
}

} // namespace

#define ORV_COLOR_MEDIAN(layout, samples, Sample)                                                                 \
    KRN_KERNEL(CodedKernel, krnColorMedian##samples##layout)                                                      \
    {                                                                                                             \
        return colorMedian<Sample>(layout, from(source, sourceStep), to(destination, step), width, height, code); \
    }

ORV_COLOR_MEDIAN(C3, 8u, std::uint8_t)
ORV_COLOR_MEDIAN(AC4, 8u, std::uint8_t)
ORV_COLOR_MEDIAN(C3, 16s, std::int16_t)
ORV_COLOR_MEDIAN(AC4, 16s, std::int16_t)

#include "end.h"
