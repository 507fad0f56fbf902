// Images for the benchmark.
#pragma once

#include <cstddef>
#include <memory>

#include "orv.h"

namespace bench {

struct ReleaseImage {
    void operator()(OrvImage *image) const;
};

using Image = std::shared_ptr<OrvImage>;

// An image of random samples, whose rows are aligned to 32 bytes.
Image image(int depth, int channels, int side, bool planes = false);
Image rectangle(int depth, int channels, int width, int height, bool planes = false);

// The same with a mask: the largest ellipse that fits.
Image maskedImage(int depth, int channels, int side);

// Sets a rectangle that covers the whole image, and a channel.
Image withChannel(Image target, int coi);

// Bytes of the samples, without padding.
std::size_t sampleBytes(const Image &target);

const char *depthName(int depth);

} // namespace bench
