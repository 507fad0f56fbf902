// Kernels that no exported function runs alone.
#include "kernels.h"
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

Case toFloat(const char *name, const orv::Kernel<orv::CopyKernel> &kernel, int depth)
{
    return {std::string(name) + " C1", [&kernel, depth](int side) {
                const Image source = image(depth, 1, side), target = image(ORV_DEPTH_32F, 1, side);
                Job job = {[=, &kernel] {
                               kernel(source->imageData, source->widthStep, target->imageData, target->widthStep, side,
                                      side);
                           },
                           sampleBytes(target), sampleBytes(target) / 4};
                job.to = target->imageData;
                return job;
            }};
}

Case fromFloat(const char *name, const orv::Kernel<orv::ConvertRoundKernel> &kernel, int depth, int mode)
{
    return {std::string(name) + " mode " + std::to_string(mode), [&kernel, depth, mode](int side) {
                const Image source = image(ORV_DEPTH_32F, 1, side), target = image(depth, 1, side);
                Job job = {[=, &kernel] {
                               kernel(source->imageData, source->widthStep, target->imageData, target->widthStep, side,
                                      side, mode);
                           },
                           sampleBytes(source), sampleBytes(source) / 4};
                job.from = source->imageData;
                return job;
            }};
}

} // namespace

std::vector<Case> kernelCases()
{
    std::vector<Case> cases;
    cases.push_back(toFloat("krnConvert8u32f", orv::krnConvert8u32f, ORV_DEPTH_8U));
    cases.push_back(toFloat("krnConvert16s32f", orv::krnConvert16s32f, ORV_DEPTH_16S));
    cases.push_back(toFloat("krnConvert32s32f", orv::krnConvert32s32f, ORV_DEPTH_32S));
    for (const int mode : {0, 1, 2}) {
        cases.push_back(fromFloat("krnConvert32f8uC1", orv::krnConvert32f8uC1, ORV_DEPTH_8U, mode));
        cases.push_back(fromFloat("krnConvert32f16sC1", orv::krnConvert32f16sC1, ORV_DEPTH_16S, mode));
        cases.push_back(fromFloat("krnConvert32f32sC1", orv::krnConvert32f32sC1, ORV_DEPTH_32S, mode));
    }
    return cases;
}

} // namespace bench
