// The vector median.
#include <cstdint>

#include "call.h"
#include "filter/window_filter.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvnlf";

OrvStatus run(const OrvImage *source, const OrvImage *destination, const Window &window)
{
    const bool bytes = source->depth == ORV_DEPTH_8U;
    const Kernel<CodedKernel> &three = bytes ? krnColorMedian8uC3 : krnColorMedian16sC3,
                              &besideAlpha = bytes ? krnColorMedian8uAC4 : krnColorMedian16sAC4;
    const std::int32_t code = window.columns == 3 ? KRN_WINDOW_3X3 : KRN_WINDOW_5X5;
    const auto filter = [&](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return (work.layout == Layout::C3 ? three : besideAlpha)(in.data, in.step, out.data, out.step, work.size.width,
                                                                 work.size.height, code);
    };
    WindowCall call = callOf(window, source, destination);
    call.alphaOf = source; // the one whose alpha channel has been checked
    call.wholePixels = true;
    return runWindow(call, {.run = filter});
}

} // namespace

extern "C" OrvStatus orvColorMedianFilter(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nCols,
                                          std::int32_t nRows, std::int32_t anchorX, std::int32_t anchorY)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(anchorX >= nCols || anchorX < 0, ORV_STATUS_BAD_ARGUMENT, "(anchorX>=nCols)||(anchorX<0)") ||
        call.refuses(anchorY >= nRows || anchorY < 0, ORV_STATUS_BAD_ARGUMENT, "(anchorY>=nRows)||(anchorY<0)") ||
        call.refuses(srcImage == dstImage, ORV_STATUS_BAD_ARGUMENT, "(srcImage==dstImage)") ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth!=dstImage->depth") ||
        call.refuses(srcImage->depth == ORV_DEPTH_1U, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==1") ||
        call.refuses(srcImage->depth == ORV_DEPTH_32S, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==(0x80000000|32)") ||
        call.refuses(srcImage->nChannels != dstImage->nChannels, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->nChannels!=dstImage->nChannels") ||
        call.refuses(srcImage->nChannels < 3, ORV_STATUS_BAD_ARGUMENT, "srcImage->nChannels<3") ||
        call.refuses(srcImage->nChannels > 4, ORV_STATUS_BAD_ARGUMENT, "srcImage->nChannels>4") ||
        call.refuses(srcImage->nChannels == 3 && srcImage->alphaChannel != 0, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->nChannels==3)&&(srcImage->alphaChannel!=0)") ||
        call.refuses(srcImage->nChannels == 4 && srcImage->alphaChannel == 0, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->nChannels==4)&&(srcImage->alphaChannel==0)") ||
        call.refuses(hasCoi(*srcImage), ORV_STATUS_BAD_ARGUMENT, "srcImage->roi->coi!=0") ||
        call.refuses(hasCoi(*dstImage), ORV_STATUS_BAD_ARGUMENT, "dstImage->roi->coi!=0") ||
        call.refuses(nCols != 3 && nCols != 5, ORV_STATUS_BAD_ARGUMENT, "(3!=nCols)&&(5!=nCols)") ||
        call.refuses(nRows != 3 && nRows != 5, ORV_STATUS_BAD_ARGUMENT, "(3!=nRows)&&(5!=nRows)") ||
        call.refuses(nCols != nRows, ORV_STATUS_BAD_ARGUMENT, "nCols!=nRows") ||
        call.refuses(anchorX != nCols / 2 || anchorY != nRows / 2, ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(srcImage->depth != ORV_DEPTH_8U && srcImage->depth != ORV_DEPTH_16S, ORV_STATUS_NOT_IMPLEMENTED,
                     ""))
        return call.report();
    return call.result(run(srcImage, dstImage, {nCols, nRows, anchorX, anchorY}));
}
