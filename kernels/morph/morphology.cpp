// Dilation and erosion by a square of 3 x 3.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

struct Largest {
    std::uint8_t operator()(std::uint8_t a, std::uint8_t b) const { return a > b ? a : b; }
};
struct Smallest {
    std::uint8_t operator()(std::uint8_t a, std::uint8_t b) const { return a < b ? a : b; }
};

// Rows are computed into two buffers in turn. Each is written back once the row below it has been computed.
template <class Better>
[[gnu::noinline]] KrnStatus pass(std::size_t channels, Raster image, std::int32_t width, std::int32_t height,
                                 unsigned char *scratch)
{
    if (image.data == nullptr)
        return KRN_NULL_POINTER;
    if (image.step < 1)
        return KRN_BAD_STEP;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    if (image.step / static_cast<std::int32_t>(channels) < std::int64_t{width} + 2)
        return KRN_SHORT_STEP;
    const std::size_t samples = static_cast<std::size_t>(width) * channels,
                      rowBytes = (samples + 31) & ~std::size_t{31};
    const Better better;
    unsigned char *buffers[] = {scratch, scratch + rowBytes};
    for (std::int32_t y = 0; y <= height; ++y) {
        if (y < height) {
            const unsigned char *const row = image.fromRow(y).data;
            for (std::size_t i = 0; i < samples; ++i) {
                std::uint8_t found = row[i];
                for (std::int32_t dy = -1; dy <= 1; ++dy)
                    for (std::int32_t dx = -1; dx <= 1; ++dx)
                        found = better(
                            found, row[std::ptrdiff_t{dy} * image.step + dx * static_cast<std::ptrdiff_t>(channels) +
                                       static_cast<std::ptrdiff_t>(i)]);
                buffers[y % 2][i] = found;
            }
        }
        if (y > 0)
            __builtin_memcpy(image.fromRow(y - 1).data, buffers[(y - 1) % 2], samples);
    }
    return KRN_OK;
}

} // namespace

#define ORV_MORPHOLOGY(layout)                                                                                \
    KRN_KERNEL(MorphologyKernel, krnDilate8u##layout)                                                         \
    {                                                                                                         \
        return pass<Largest>(layout, to(image, step), width, height, static_cast<unsigned char *>(scratch));  \
    }                                                                                                         \
    KRN_KERNEL(MorphologyKernel, krnErode8u##layout)                                                          \
    {                                                                                                         \
        return pass<Smallest>(layout, to(image, step), width, height, static_cast<unsigned char *>(scratch)); \
    }

ORV_MORPHOLOGY(C1)
ORV_MORPHOLOGY(C3)
ORV_MORPHOLOGY(C4)

#include "end.h"
