// Rasters flipped about their axes.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "mirror_rows.h"

#include "mirror_in_place.h"
#if ORV_VECTOR_BYTES > 0
#include "mirror_streaming.h"
#endif

enum : std::int32_t { flipRows = 0, flipColumns = 1, flipBoth = 2 };

template <std::size_t pixelBytes, std::size_t moved>
KrnStatus mirror(ConstRaster in, Raster out, std::int32_t width, std::int32_t height, std::int32_t flip)
{
    if (const KrnStatus refusal = testRasters(width, height, in, out); refusal != KRN_OK)
        return refusal;
    if (flip < flipRows || flip > flipBoth)
        return KRN_BAD_AXIS;
    auto row = flip == flipRows ? moveRow<pixelBytes, moved> : mirrorRow<pixelBytes, moved>;
#if ORV_VECTOR_BYTES > 0
    const bool streams = moved == pixelBytes && static_cast<std::size_t>(width) * static_cast<std::size_t>(height) >=
                                                    streamedBytes / pixelBytes;
    if (streams)
        row = flip == flipRows ? streamRow<pixelBytes> : streamMirrored<pixelBytes>(flip == flipBoth);
#endif
    for (std::int32_t y = 0; y < height; ++y)
        row(static_cast<std::size_t>(width), in.fromRow(y).data,
            out.fromRow(flip == flipColumns ? y : height - 1 - y).data);
#if ORV_VECTOR_BYTES > 0
    if (streams)
        finishStreaming();
#endif
    return KRN_OK;
}

template <std::size_t pixelBytes, std::size_t moved>
KrnStatus mirrorInPlace(Raster raster, std::int32_t width, std::int32_t height, std::int32_t flip)
{
    if (const KrnStatus refusal = testRasters(width, height, raster); refusal != KRN_OK)
        return refusal;
    if (flip < flipRows || flip > flipBoth)
        return KRN_BAD_AXIS;
    const std::size_t pixels = static_cast<std::size_t>(width);
    const auto mirrorOne = [=](std::int32_t y) {
        unsigned char *const row = raster.fromRow(y).data;
        exchangeMirrored<pixelBytes, moved>(pixels / 2, row, row + pixels * pixelBytes);
    };
    if (flip == flipColumns) {
        for (std::int32_t y = 0; y < height; ++y)
            mirrorOne(y);
        return KRN_OK;
    }
    for (std::int32_t y = 0; y < height / 2; ++y) {
        unsigned char *const above = raster.fromRow(y).data, *const below = raster.fromRow(height - 1 - y).data;
        if (flip == flipBoth)
            exchangeMirrored<pixelBytes, moved>(pixels, above, below + pixels * pixelBytes);
        else if constexpr (moved == pixelBytes)
            exchangeRows<1, 1>(pixels * pixelBytes, above, below);
        else
            exchangeRows<pixelBytes, moved>(pixels, above, below);
    }
    if (flip == flipBoth && height % 2 != 0)
        mirrorOne(height / 2);
    return KRN_OK;
}

} // namespace

#define ORV_MIRROR(name, pixelBytes, moved)                                                                     \
    KRN_KERNEL(MirrorKernel, name)                                                                              \
    {                                                                                                           \
        return mirror<pixelBytes, moved>(from(source, sourceStep), to(destination, step), width, height, flip); \
    }                                                                                                           \
    KRN_KERNEL(MirrorInPlaceKernel, name##I)                                                                    \
    {                                                                                                           \
        return mirrorInPlace<pixelBytes, moved>(to(image, step), width, height, flip);                          \
    }

#define ORV_MIRRORS(samples, sampleBytes)                                \
    ORV_MIRROR(krnMirror##samples##C1, sampleBytes, sampleBytes)         \
    ORV_MIRROR(krnMirror##samples##C3, 3 * sampleBytes, 3 * sampleBytes) \
    ORV_MIRROR(krnMirror##samples##C4, 4 * sampleBytes, 4 * sampleBytes) \
    ORV_MIRROR(krnMirror##samples##AC4, 4 * sampleBytes, 3 * sampleBytes)

ORV_MIRRORS(8u, 1)
ORV_MIRRORS(16u, 2)
ORV_MIRRORS(32s, 4)

#include "end.h"
