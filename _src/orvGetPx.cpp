// Reading of single pixels.
#include <cstdint>

#include "call.h"
#include "pixel.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvGetPx";

} // namespace

extern "C" OrvStatus orvGetPixel(const OrvImage *img, std::int32_t x, std::int32_t y, void *pixel)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(img)) || call.refuses(pixel == nullptr, ORV_STATUS_BAD_ARGUMENT, "(0 == pixel)") ||
        call.refuses(x > img->width - 1 || x < 0, ORV_STATUS_BAD_ARGUMENT, "((x>img->width-1) || (x<0))") ||
        call.refuses(y > img->height - 1 || y < 0, ORV_STATUS_BAD_ARGUMENT, "((y>img->height-1) || (y<0))") ||
        call.refuses(img->tileInfo != nullptr, ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(img->depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();

    const PixelPlace place = placeOfPixel(*img, x, y);
    const std::int32_t bytes = place.sampleBytes * samplesPerPixel(place.layout);
    const Kernel<CopyKernel> &copy = channelKernels(place.sampleBytes).copy[place.layout];
    std::uint8_t *out = static_cast<std::uint8_t *>(pixel);
    for (std::int32_t group = 0; group < place.groups; ++group, out += bytes)
        copy(place.first + group * place.planeStep, bytes, out, bytes, 1, 1);
    return ORV_STATUS_OK;
}
