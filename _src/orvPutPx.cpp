// Writing of single pixels.
#include <cstdint>
#include <cstring>

#include "call.h"
#include "pixel.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvPutPx";

// The bits of one sample of 1, 2 or 4 bytes.
std::int32_t sampleBits(const std::uint8_t *sample, std::int32_t bytes)
{
    std::uint8_t byte;
    std::uint16_t word;
    std::int32_t longWord;
    switch (bytes) {
    case 1:
        std::memcpy(&byte, sample, 1);
        return byte;
    case 2:
        std::memcpy(&word, sample, 2);
        return word;
    default:
        std::memcpy(&longWord, sample, 4);
        return longWord;
    }
}

} // namespace

extern "C" OrvStatus orvPutPixel(OrvImage *img, std::int32_t x, std::int32_t y, const void *pixel)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(img)) ||
        call.refuses(x > img->width - 1 || x < 0, ORV_STATUS_BAD_ARGUMENT, "((x>img->width-1) || (x<0))") ||
        call.refuses(y > img->height - 1 || y < 0, ORV_STATUS_BAD_ARGUMENT, "((y>img->height-1) || (y<0))") ||
        call.refuses(img->tileInfo != nullptr, ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(img->depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    // A null pixel is no refusal; there is nothing to write.
    if (pixel == nullptr)
        return ORV_STATUS_OK;

    const PixelPlace place = placeOfPixel(*img, x, y);
    const std::int32_t bytes = place.sampleBytes * samplesPerPixel(place.layout);
    const ChannelKernels &kernels = channelKernels(place.sampleBytes);
    const std::uint8_t *in = static_cast<const std::uint8_t *>(pixel);
    for (std::int32_t group = 0; group < place.groups; ++group, in += bytes) {
        std::uint8_t *out = place.first + group * place.planeStep;
        if (place.layout == Layout::C1)
            kernels.fillC1(sampleBits(in, place.sampleBytes), out, bytes, 1, 1);
        else
            (place.layout == Layout::C3 ? kernels.fillC3 : kernels.fillC4)(in, out, bytes, 1, 1);
    }
    return ORV_STATUS_OK;
}
