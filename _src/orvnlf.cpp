// Largest, smallest and middle samples of windows.
#include <cstdint>

#include "call.h"
#include "filter/window_filter.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvnlf";

struct RankKernels {
    LayoutKernels<WindowKernel> bytes, words;
    std::int64_t (*scratchBytes)(const WindowShape &shape);
};

#define ORV_RANK_KERNELS(stem, scratchBytes)                                      \
    {                                                                             \
        ORV_LAYOUT_KERNELS(stem##8u), ORV_LAYOUT_KERNELS(stem##16s), scratchBytes \
    }

constexpr RankKernels largest = ORV_RANK_KERNELS(krnMaxFilter, extremesScratchBytes),
                      smallest = ORV_RANK_KERNELS(krnMinFilter, extremesScratchBytes),
                      middle = ORV_RANK_KERNELS(krnMedian, medianScratchBytes);

OrvStatus run(const RankKernels &kernels, const OrvImage *source, const OrvImage *destination, const Window &window)
{
    const LayoutKernels<WindowKernel> &ofDepth = source->depth == ORV_DEPTH_8U ? kernels.bytes : kernels.words;
    const auto filter = [&](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return ofDepth[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                                    window.columns, window.rows, window.anchorX, window.anchorY, work.scratch);
    };
    const auto scratchBytes = [&](const Work &work) {
        return kernels.scratchBytes(shapeOf(work, window, sampleBytes(source->depth)));
    };
    return runWindow(callOf(window, source, destination), {.run = filter, .scratchBytes = scratchBytes});
}

// The checks after those of headers and window.
Refusal checkImages(const OrvImage &source, const OrvImage &destination)
{
    const Refusal refusal =
        firstOf({{source.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth!=dstImage->depth)"},
                 {source.nChannels != destination.nChannels, ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage->nChannels!=dstImage->nChannels)"},
                 {source.alphaChannel != destination.alphaChannel, ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage->alphaChannel!=dstImage->alphaChannel)"},
                 {source.alphaChannel != 0 && source.alphaChannel != source.nChannels, ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage->alphaChannel!=0)&&(srcImage->alphaChannel!=srcImage->nChannels)"}});
    if (refusal.status != ORV_STATUS_OK)
        return refusal;
    return firstOf({{&source == &destination, ORV_STATUS_BAD_ARGUMENT, "(srcImage==dstImage)"},
                    {source.depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==32"},
                    {source.depth != ORV_DEPTH_1U && source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->dataOrder!=dstImage->dataOrder)"},
                    {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""}});
}

OrvStatus filter(Call call, const RankKernels &kernels, const OrvImage *source, OrvImage *destination,
                 const Window &window)
{
    if (call.refuses(checkHeaders(source, destination)) || call.refuses(checkWindow(window)) ||
        call.refuses(checkImages(*source, *destination)))
        return call.report();
    if (window.columns == 1 && window.rows == 1)
        return orvCopy(source, destination);
    if (onlyAlpha(*source) || onlyAlpha(*destination))
        return ORV_STATUS_OK;
    if (call.refuses(anyTiled(source, destination), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(source->depth != ORV_DEPTH_8U && source->depth != ORV_DEPTH_16S, ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(run(kernels, source, destination, window));
}

} // namespace

extern "C" {

OrvStatus orvMaxFilter(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nCols, std::int32_t nRows,
                       std::int32_t anchorX, std::int32_t anchorY)
{
    return filter(Call(unitName), largest, srcImage, dstImage, {nCols, nRows, anchorX, anchorY});
}

OrvStatus orvMinFilter(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nCols, std::int32_t nRows,
                       std::int32_t anchorX, std::int32_t anchorY)
{
    return filter(Call(unitName), smallest, srcImage, dstImage, {nCols, nRows, anchorX, anchorY});
}

// The kernels refuse even windows in silence.
OrvStatus orvMedianFilter(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nCols, std::int32_t nRows,
                          std::int32_t anchorX, std::int32_t anchorY)
{
    return filter(Call(unitName), middle, srcImage, dstImage, {nCols, nRows, anchorX, anchorY});
}

} // extern "C"
