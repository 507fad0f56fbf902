// Copies, fills and magnitudes.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

std::size_t pixelsOf(int side)
{
    return static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
}

using Call = OrvStatus(const OrvImage *, OrvImage *);

Job unary(Call *call, const Image &source, const Image &destination)
{
    Job job = {[=] { call(source.get(), destination.get()); }, sampleBytes(destination), pixelsOf(destination->width)};
    job.to = destination->imageData;
    if (sampleBytes(source) >= job.bytes)
        job.from = source->imageData;
    return job;
}

std::string titled(const char *operation, int depth, int channels, const char *form = "")
{
    return std::string(operation) + " " + depthName(depth) + " C" + std::to_string(channels) + form;
}

} // namespace

std::vector<Case> copyingCases()
{
    std::vector<Case> cases;
    const int depths[] = {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F};
    for (const int depth : depths)
        for (const int channels : {1, 3, 4}) {
            cases.push_back(
                {titled("orvCopy", depth, channels),
                 [=](int side) { return unary(orvCopy, image(depth, channels, side), image(depth, channels, side)); },
                 depth == ORV_DEPTH_8U && channels == 1});
            cases.push_back({titled("orvCopy", depth, channels, " masked"), [=](int side) {
                                 return unary(orvCopy, image(depth, channels, side),
                                              maskedImage(depth, channels, side));
                             }});
            cases.push_back({titled("orvSet", depth, channels), [=](int side) {
                                 const Image target = image(depth, channels, side);
                                 Job job = {[=] { orvSet(target.get(), 77); }, sampleBytes(target), pixelsOf(side)};
                                 job.to = target->imageData;
                                 if (depth == ORV_DEPTH_32F)
                                     job.call = [=] { orvSetFP(target.get(), 77); };
                                 return job;
                             }});
            if (channels == 1)
                continue;
            cases.push_back({titled("orvCopy", depth, channels, " extract"), [=](int side) {
                                 const Image source = withChannel(image(depth, channels, side), 2);
                                 Job job = unary(orvCopy, source, image(depth, 1, side));
                                 job.bytes = sampleBytes(source);
                                 job.from = source->imageData;
                                 job.to = nullptr;
                                 return job;
                             }});
            cases.push_back({titled("orvCopy", depth, channels, " insert"), [=](int side) {
                                 return unary(orvCopy, image(depth, 1, side),
                                              withChannel(image(depth, channels, side), 2));
                             }});
        }
    for (const int depth : {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F})
        for (const int channels : {1, 3})
            cases.push_back(
                {titled("orvAbs", depth, channels),
                 [=](int side) { return unary(orvAbs, image(depth, channels, side), image(depth, channels, side)); },
                 channels == 1});
    return cases;
}

} // namespace bench
