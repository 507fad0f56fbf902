// Dilation and erosion by a square of 3 x 3.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "extremes.h"

#include "squares.h"

// Rows of the image in place, from the pixel left of the rectangle to the one right of it. Scratch holds the row above
// as it was before the pass. A row of extremes of columns is behind that.
template <class Better, std::size_t channels>
void computePlainly(Raster image, std::size_t bytes, std::int32_t height, unsigned char *above)
{
    unsigned char *const found = above + ((bytes + 31) & ~std::size_t{31});
    for (; height > 0; --height, image = image.fromRow(1)) {
        const unsigned char *const columns[] = {above, image.data, image.fromRow(1).data};
        bestOf<std::uint8_t, Better, 3>(columns, 0, {found, 0}, bytes, 1);
        __builtin_memcpy(above, image.data, bytes);
        const unsigned char *const places[] = {found, found + channels, found + 2 * channels};
        bestOf<std::uint8_t, Better, 3>(places, 0, image.fromByte(channels), bytes - 2 * channels, 1);
    }
}

template <class Better, std::size_t channels>
[[gnu::noinline]] KrnStatus pass(Raster image, std::int32_t width, std::int32_t height, unsigned char *scratch)
{
    if (image.data == nullptr)
        return KRN_NULL_POINTER;
    if (image.step < 1)
        return KRN_BAD_STEP;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    if (image.step / static_cast<std::int32_t>(channels) < std::int64_t{width} + 2)
        return KRN_SHORT_STEP;
    const Raster rows = image.fromByte(-std::int64_t{channels});
    const std::size_t bytes = (static_cast<std::size_t>(width) + 2) * channels;
    __builtin_memcpy(scratch, rows.fromRow(-1).data, bytes);
#if ORV_VECTOR_BYTES > 0
    if (bytes - 2 * channels >= ORV_VECTOR_BYTES) {
        Squares<std::uint8_t, Better, channels, true>{rows, image, scratch, bytes, false}.computeAll(height);
        return KRN_OK;
    }
#endif
    computePlainly<Better, channels>(rows, bytes, height, scratch);
    return KRN_OK;
}

} // namespace

#define ORV_MORPHOLOGY(layout)                                                                                \
    KRN_KERNEL(MorphologyKernel, krnDilate8u##layout)                                                         \
    {                                                                                                         \
        return pass<Largest, layout>(to(image, step), width, height, static_cast<unsigned char *>(scratch));  \
    }                                                                                                         \
    KRN_KERNEL(MorphologyKernel, krnErode8u##layout)                                                          \
    {                                                                                                         \
        return pass<Smallest, layout>(to(image, step), width, height, static_cast<unsigned char *>(scratch)); \
    }

ORV_MORPHOLOGY(C1)
ORV_MORPHOLOGY(C3)
ORV_MORPHOLOGY(C4)

#include "end.h"
