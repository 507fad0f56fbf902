// Converts images of any depth to 8-bit pictures for PNG files.
#include "display.h"

#include <algorithm>
#include <cmath>

namespace sheet {
namespace {

std::uint8_t limited(double value)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

template <class Sample> void mapSamples(const OrvImage &image, const Mapping &mapping, OrvImage &out)
{
    const std::ptrdiff_t plane = std::ptrdiff_t{image.height} * image.widthStep;
    const bool planes = image.dataOrder == ORV_DATA_ORDER_PLANE;
    for (std::int32_t y = 0; y < image.height; ++y) {
        std::uint8_t *target = rowOf<std::uint8_t>(out, y);
        for (std::int32_t c = 0; c < image.nChannels; ++c) {
            const auto *first = reinterpret_cast<const std::uint8_t *>(rowOf<Sample>(image, y));
            const auto *source = reinterpret_cast<const Sample *>(first + (planes ? c * plane : 0)) + (planes ? 0 : c);
            const std::ptrdiff_t next = planes ? 1 : image.nChannels;
            for (std::int32_t x = 0; x < image.width; ++x)
                target[x * image.nChannels + c] = limited(mapping.gain * source[x * next] + mapping.offset);
        }
    }
}

} // namespace

Mapping rangeOf(std::int32_t depth)
{
    switch (depth) {
    case ORV_DEPTH_8S:
        return {1, 128, "shown as 128 + sample"};
    case ORV_DEPTH_16U:
        return {255 / 65535.0, 0, "shown as sample / 257"};
    case ORV_DEPTH_16S:
        return {255 / 65535.0, 127.5, "shown as 127.5 + sample / 257"};
    case ORV_DEPTH_32S:
        return {255 / 4294967295.0, 127.5, "shown as 127.5 + sample / 16843009"};
    case ORV_DEPTH_32F:
        return {255, 0, "shown as sample × 255"};
    default:
        return {1, 0, ""};
    }
}

Image shown(const OrvImage &image, const Mapping &mapping)
{
    Image out = newImage({.channels = image.nChannels, .alpha = image.alphaChannel}, sizeOf(image));
    switch (image.depth) {
    case ORV_DEPTH_8S:
        mapSamples<std::int8_t>(image, mapping, *out);
        break;
    case ORV_DEPTH_16U:
        mapSamples<std::uint16_t>(image, mapping, *out);
        break;
    case ORV_DEPTH_16S:
        mapSamples<std::int16_t>(image, mapping, *out);
        break;
    case ORV_DEPTH_32S:
        mapSamples<std::int32_t>(image, mapping, *out);
        break;
    case ORV_DEPTH_32F:
        mapSamples<float>(image, mapping, *out);
        break;
    default:
        mapSamples<std::uint8_t>(image, mapping, *out);
    }
    return out;
}

Image toFloat(const OrvImage &image, float gain, float offset)
{
    Image out = newImage({.depth = ORV_DEPTH_32F, .channels = 1}, sizeOf(image));
    for (std::int32_t y = 0; y < image.height; ++y) {
        const std::uint8_t *source = rowOf<std::uint8_t>(image, y);
        float *target = rowOf<float>(*out, y);
        for (std::int32_t x = 0; x < image.width; ++x)
            target[x] = gain * static_cast<float>(source[x]) + offset;
    }
    return out;
}

Image sideBySide(const OrvImage &left, const OrvImage &right)
{
    const std::int32_t gap = std::max(2, left.width / 40);
    Image out = newImage({.channels = left.nChannels}, {left.width + gap + right.width, left.height});
    check(orvSet(out.get(), 255));
    OrvROI first = {0, 0, 0, left.width, left.height};
    OrvROI second = {0, left.width + gap, 0, right.width, right.height};
    OrvImage target = viewOf(*out, &first);
    check(orvCopy(&left, &target));
    target.roi = &second;
    check(orvCopy(&right, &target));
    return out;
}

Image reduced(const OrvImage &image, Size size)
{
    Image out = newImage({}, size);
    const std::int32_t channels = image.nChannels;
    for (std::int32_t y = 0; y < size.height; ++y) {
        const auto top = static_cast<std::int32_t>(std::int64_t{y} * image.height / size.height);
        const auto bottom = static_cast<std::int32_t>(std::int64_t{y + 1} * image.height / size.height);
        for (std::int32_t x = 0; x < size.width; ++x) {
            const auto left = static_cast<std::int32_t>(std::int64_t{x} * image.width / size.width);
            const auto right = static_cast<std::int32_t>(std::int64_t{x + 1} * image.width / size.width);
            double sums[3] = {};
            for (std::int32_t v = top; v < bottom; ++v) {
                const std::uint8_t *pixel = rowOf<std::uint8_t>(image, v) + std::ptrdiff_t{left} * channels;
                for (std::int32_t u = left; u < right; ++u, pixel += channels) {
                    const double cover = channels == 4 ? pixel[3] / 255.0 : 1;
                    for (int c = 0; c < 3; ++c)
                        sums[c] += cover * pixel[channels == 1 ? 0 : c] + (1 - cover) * 255;
                }
            }
            const double pixels = double(bottom - top) * (right - left);
            for (int c = 0; c < 3; ++c)
                rowOf<std::uint8_t>(*out, y)[3 * x + c] = limited(sums[c] / pixels);
        }
    }
    return out;
}

} // namespace sheet
