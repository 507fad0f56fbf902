// Cases of operations from one image to another that read around each pixel.
#pragma once

#include <string>

#include "bench_case.h"
#include "bench_images.h"

namespace bench {

template <class Call> Case windowCase(const std::string &operation, int depth, int channels, Call call)
{
    const std::string name = operation + " " + depthName(depth) + " C" + std::to_string(channels);
    return {name, [=](int side) {
                const Image source = image(depth, channels, side), destination = image(depth, channels, side);
                orvSetBorderMode(source.get(), ORV_BORDER_REPLICATE, ORV_SIDE_ALL, 0);
                return Job{[=] { call(source, destination); }, sampleBytes(destination),
                           static_cast<std::size_t>(side) * static_cast<std::size_t>(side), source->imageData,
                           destination->imageData};
            }};
}

// A small rectangle of an image of 4096 x 4096. The cost must depend on the rectangle and not on the image. Both sizes
// of the table are 64 x 64 here: the first inside the image, the second at its corner.
template <class Call> Case smallRectangleCase(const std::string &operation, Call call)
{
    return {operation + ", 64x64 of 4096x4096 8U C1", [=](int side) {
                const Image source = withChannel(image(ORV_DEPTH_8U, 1, 4096), 0);
                const Image destination = withChannel(image(ORV_DEPTH_8U, 1, 4096), 0);
                const int offset = side == 256 ? 2000 : 0;
                for (const Image &each : {source, destination})
                    orvSetROI(each->roi, 0, offset, offset, 64, 64);
                return Job{[=] { call(source, destination); }, 64 * 64, 64 * 64};
            }};
}

} // namespace bench
