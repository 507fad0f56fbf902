// Means of windows.
#include <cstdint>

#include "call.h"
#include "filter/window_filter.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvBlur";

constexpr FilterKernels<LayoutKernels<BoxKernel>> means = {
    ORV_LAYOUT_KERNELS(krnBlur8u), ORV_LAYOUT_KERNELS(krnBlur16s), ORV_LAYOUT_KERNELS(krnBlur32f)};

// Sums of floats depend on where they began. So strips carry the sums of their columns on, and the first row of a
// strip reads the row that leaves them.
OrvStatus run(const OrvImage *source, const OrvImage *destination, const Window &window)
{
    const LayoutKernels<BoxKernel> &kernels = means[source->depth];
    const std::int32_t sampleBytes = orv::sampleBytes(source->depth);
    const auto blur = [&](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return kernels[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                                    window.columns, window.rows, window.anchorX, window.anchorY, work.carried,
                                    work.rowsAbove, work.scratch);
    };
    WindowCall call = callOf(window, source, destination);
    ++call.margins.top;
    return runWindow(
        call, {.run = blur,
               .scratchBytes = [&](const Work &work) { return boxScratchBytes(shapeOf(work, window, sampleBytes)); },
               .carriedBytes = [&](const Work &work) { return boxSumsBytes(shapeOf(work, window, sampleBytes)); }});
}

} // namespace

extern "C" OrvStatus orvBlur(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nCols, std::int32_t nRows,
                             std::int32_t anchorX, std::int32_t anchorY)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth!=dstImage->depth)") ||
        call.refuses(checkWindow({nCols, nRows, anchorX, anchorY})))
        return call.report();
    if (nCols == 1 && nRows == 1)
        return orvCopy(srcImage, dstImage);
    if (onlyAlpha(*srcImage) || onlyAlpha(*dstImage))
        return ORV_STATUS_OK;
    if (call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(!isFilterDepth(srcImage->depth), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(run(srcImage, dstImage, {nCols, nRows, anchorX, anchorY}));
}
