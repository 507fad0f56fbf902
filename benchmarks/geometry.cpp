// Operations that move pixels.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

Case mirror(int depth, int channels, int axis, bool inPlace)
{
    const std::string name = std::string("orvMirror ") + std::to_string(axis) + " " + depthName(depth) + " C" +
                             std::to_string(channels) + (inPlace ? " in place" : "");
    return {name, [=](int side) {
                const Image source = image(depth, channels, side);
                const Image destination = inPlace ? source : image(depth, channels, side);
                return Job{[=] { orvMirror(source.get(), destination.get(), axis); }, sampleBytes(destination),
                           static_cast<std::size_t>(side) * static_cast<std::size_t>(side),
                           inPlace ? nullptr : source->imageData, destination->imageData};
            }};
}

} // namespace

std::vector<Case> geometryCases()
{
    const struct {
        int depth, channels;
    } forms[] = {{ORV_DEPTH_8U, 1}, {ORV_DEPTH_8U, 3}, {ORV_DEPTH_16S, 1}, {ORV_DEPTH_32F, 1}};
    std::vector<Case> cases;
    for (const bool inPlace : {false, true})
        for (const auto &form : forms)
            for (const int axis : {0, 1, -1})
                cases.push_back(mirror(form.depth, form.channels, axis, inPlace));
    return cases;
}

} // namespace bench
