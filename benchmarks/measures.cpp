// Operations that only read. They have no destination, so memcpy moves the bytes of the source.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

std::string layoutName(int channels, bool alpha)
{
    return (alpha ? " AC" : " C") + std::to_string(channels);
}

std::size_t pixels(int side)
{
    return static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
}

Case extremes(int channels, bool alpha)
{
    return {"orvMinMaxFP 32F" + layoutName(channels, alpha), [=](int side) {
                const Image source = image(ORV_DEPTH_32F, channels, side);
                source->alphaChannel = alpha ? 4 : 0;
                return Job{[source] {
                               float min = 0, max = 0;
                               orvMinMaxFP(source.get(), &min, &max);
                           },
                           sampleBytes(source), pixels(side), source->imageData, nullptr};
            }};
}

struct Norm {
    const char *name;
    int type;
    bool two;
};

Case norm(const Norm &kind, int depth, int channels, bool alpha = false, bool masked = false)
{
    const std::string name = std::string("orvNorm ") + kind.name + " " + depthName(depth) +
                             layoutName(channels, alpha) + (masked ? " masked" : "");
    return {name, [=](int side) {
                const Image a = masked ? maskedImage(depth, channels, side) : image(depth, channels, side);
                const Image b = image(depth, channels, side);
                a->alphaChannel = alpha ? 4 : 0;
                return Job{[=] { orvNorm(a.get(), kind.two ? b.get() : nullptr, kind.type); }, sampleBytes(a),
                           pixels(side), a->imageData, nullptr};
            }};
}

} // namespace

std::vector<Case> measureCases()
{
    constexpr Norm norms[] = {{"maximum", ORV_NORM_INF, false},
                              {"maximum of two", ORV_NORM_INF, true},
                              {"sum", ORV_NORM_L1, false},
                              {"sum of two", ORV_NORM_L1, true},
                              {"Euclidean", ORV_NORM_L2, false},
                              {"Euclidean of two", ORV_NORM_L2, true},
                              {"relative maximum", ORV_NORM_RELATIVE_INF, true},
                              {"relative sum", ORV_NORM_RELATIVE_L1, true},
                              {"relative Euclidean", ORV_NORM_RELATIVE_L2, true}};
    std::vector<Case> cases;
    for (const int channels : {1, 3, 4})
        cases.push_back(extremes(channels, false));
    cases.push_back(extremes(4, true));
    for (const Norm &kind : norms)
        for (const int depth : {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F}) {
            for (const int channels : {1, 3, 4})
                cases.push_back(norm(kind, depth, channels));
            cases.push_back(norm(kind, depth, 4, true));
            cases.push_back(norm(kind, depth, 1, false, true));
        }
    return cases;
}

} // namespace bench
