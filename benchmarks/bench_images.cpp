// Images for the benchmark.
#include "bench_images.h"

#include <cstdlib>
#include <random>

namespace bench {

void ReleaseImage::operator()(OrvImage *image) const
{
    orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA | ORV_IMAGE_ROI | ORV_IMAGE_MASK);
}

namespace {

void fillRandom(OrvImage &target)
{
    std::minstd_rand random(42);
    if (target.depth == ORV_DEPTH_32F) {
        float *samples = reinterpret_cast<float *>(target.imageData);
        for (int i = 0; i < target.imageSize / 4; ++i)
            samples[i] = static_cast<float>(random() % 65536) / 128.0f - 256.0f;
        return;
    }
    for (int i = 0; i < target.imageSize; ++i)
        target.imageData[i] = static_cast<std::uint8_t>(random() >> 8);
}

} // namespace

Image image(int depth, int channels, int side, bool planes)
{
    return rectangle(depth, channels, side, side, planes);
}

Image rectangle(int depth, int channels, int width, int height, bool planes)
{
    OrvImage *target = orvCreateImageHeader(channels, 0, depth, "RGBA", "RGBA", planes ? 1 : 0, ORV_ORIGIN_TL,
                                            ORV_ALIGN_32BYTES, width, height, nullptr, nullptr, nullptr, nullptr);
    if (depth == ORV_DEPTH_32F)
        orvAllocateImageFP(target, 0, 0);
    else
        orvAllocateImage(target, 0, 0);
    if (target == nullptr || target->imageData == nullptr)
        std::abort();
    fillRandom(*target);
    return Image(target, ReleaseImage());
}

Image maskedImage(int depth, int channels, int side)
{
    Image target = image(depth, channels, side);
    OrvImage *mask = orvCreateImageHeader(1, 0, ORV_DEPTH_1U, "GRAY", "GRAY", 0, ORV_ORIGIN_TL, ORV_ALIGN_32BYTES, side,
                                          side, nullptr, nullptr, nullptr, nullptr);
    orvAllocateImage(mask, 0, 0);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double dx = (2.0 * x + 1) / side - 1, dy = (2.0 * y + 1) / side - 1;
            mask->imageData[y * mask->widthStep + x] = dx * dx + dy * dy <= 1 ? 255 : 0;
        }
    target->maskROI = mask;
    return target;
}

Image withChannel(Image target, int coi)
{
    target->roi = orvCreateROI(coi, 0, 0, target->width, target->height);
    return target;
}

std::size_t sampleBytes(const Image &target)
{
    const std::size_t bits = static_cast<std::uint32_t>(target->depth) & ~ORV_DEPTH_SIGN;
    return static_cast<std::size_t>(target->width) * static_cast<std::size_t>(target->height) *
           static_cast<std::size_t>(target->nChannels) * (bits == 1 ? 8 : bits) / 8;
}

const char *depthName(int depth)
{
    switch (depth) {
    case ORV_DEPTH_1U:
        return "1U";
    case ORV_DEPTH_8U:
        return "8U";
    case ORV_DEPTH_8S:
        return "8S";
    case ORV_DEPTH_16U:
        return "16U";
    case ORV_DEPTH_16S:
        return "16S";
    case ORV_DEPTH_32S:
        return "32S";
    default:
        return "32F";
    }
}

} // namespace bench
