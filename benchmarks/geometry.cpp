// Operations that move pixels.
#include <utility>

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

// The destination has the size of the table; the source the one that gives it.
Case resize(const char *name, int method, int to, int from, int depth, int channels)
{
    return {std::string("orvResize ") + name + " " + std::to_string(to) + ":" + std::to_string(from) + " " +
                depthName(depth) + " C" + std::to_string(channels),
            [=](int side) {
                const Image source = image(depth, channels, side * from / to);
                const Image destination = image(depth, channels, side);
                return Job{[=] { orvResize(source.get(), destination.get(), to, from, to, from, method); },
                           sampleBytes(destination), static_cast<std::size_t>(side) * static_cast<std::size_t>(side),
                           nullptr, destination->imageData};
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
    const struct {
        const char *name;
        int method;
        std::vector<std::pair<int, int>> factors;
    } methods[] = {{"nearest", ORV_INTERPOLATE_NEAREST, {{2, 1}, {1, 2}}},
                   {"linear", ORV_INTERPOLATE_LINEAR, {{2, 1}, {1, 2}, {3, 2}, {2, 3}}},
                   {"cubic", ORV_INTERPOLATE_CUBIC, {{2, 1}, {1, 2}}},
                   {"super-sampling", ORV_INTERPOLATE_SUPER, {{1, 2}, {2, 5}}}};
    for (const auto &[name, method, factors] : methods)
        for (const auto &[to, from] : factors)
            for (const auto &form :
                 {std::pair{ORV_DEPTH_8U, 1}, {ORV_DEPTH_8U, 3}, {ORV_DEPTH_16U, 1}, {ORV_DEPTH_32F, 1}})
                cases.push_back(resize(name, method, to, from, form.first, form.second));
    return cases;
}

} // namespace bench
