// The fixed filters.
#include <cstdint>

#include "call.h"
#include "filter/window_filter.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvnlf";

struct FixedKernels {
    LayoutKernels<FixedKernel> prewittV, prewittH, sobelV, sobelH, sharpen;
    LayoutKernels<CodedKernel> laplace, gauss, hipass; // of both sizes
};

#define ORV_FIXED_KERNELS(samples)                                                                      \
    {                                                                                                   \
        ORV_LAYOUT_KERNELS(krnFixedPrewittV##samples), ORV_LAYOUT_KERNELS(krnFixedPrewittH##samples),   \
            ORV_LAYOUT_KERNELS(krnFixedSobelV##samples), ORV_LAYOUT_KERNELS(krnFixedSobelH##samples),   \
            ORV_LAYOUT_KERNELS(krnFixedSharpen##samples), ORV_LAYOUT_KERNELS(krnFixedLaplace##samples), \
            ORV_LAYOUT_KERNELS(krnFixedGauss##samples), ORV_LAYOUT_KERNELS(krnFixedHipass##samples)     \
    }

constexpr FilterKernels<FixedKernels> fixedFilters = {ORV_FIXED_KERNELS(8u), ORV_FIXED_KERNELS(16s),
                                                      ORV_FIXED_KERNELS(32f)};

bool isLarge(std::int32_t filter)
{
    return filter == ORV_FILTER_LAPLACE_5 || filter == ORV_FILTER_GAUSS_5 || filter == ORV_FILTER_HIPASS_5;
}

KrnStatus filterBy(const FixedKernels &kernels, std::int32_t filter, const Work &work)
{
    const ConstRaster &in = work.sources[0];
    const Raster &out = work.destination;
    const auto fixed = [&](const LayoutKernels<FixedKernel> &of) {
        return of[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height);
    };
    const auto coded = [&](const LayoutKernels<CodedKernel> &of) {
        return of[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                               isLarge(filter) ? KRN_WINDOW_5X5 : KRN_WINDOW_3X3);
    };
    switch (filter) {
    case ORV_FILTER_PREWITT_V:
        return fixed(kernels.prewittV);
    case ORV_FILTER_PREWITT_H:
        return fixed(kernels.prewittH);
    case ORV_FILTER_SOBEL_V:
        return fixed(kernels.sobelV);
    case ORV_FILTER_SOBEL_H:
        return fixed(kernels.sobelH);
    case ORV_FILTER_LAPLACE_3:
    case ORV_FILTER_LAPLACE_5:
        return coded(kernels.laplace);
    case ORV_FILTER_GAUSS_3:
    case ORV_FILTER_GAUSS_5:
        return coded(kernels.gauss);
    case ORV_FILTER_HIPASS_3:
    case ORV_FILTER_HIPASS_5:
        return coded(kernels.hipass);
    case ORV_FILTER_SHARPEN_3:
        return fixed(kernels.sharpen);
    default: // a number that names no filter is no failure, and nothing is delivered
        return KRN_BAD_MASK_SIZE;
    }
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t filter)
{
    const FixedKernels &kernels = fixedFilters[source->depth];
    const Window window = isLarge(filter) ? Window{5, 5, 2, 2} : Window{3, 3, 1, 1};
    return runWindow(callOf(window, source, destination),
                     {.run = [&](const Work &work) { return filterBy(kernels, filter, work); }});
}

} // namespace

// Whatever is reported and whatever the handler answers, the result of a refused call is the same.
extern "C" OrvStatus orvFixedFilter(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t filter)
{
    constexpr OrvStatus refused = ORV_STATUS_BAD_ARGUMENT;
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage == dstImage, ORV_STATUS_BAD_ARGUMENT, "(srcImage==dstImage)") ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth!=dstImage->depth)") ||
        call.refuses(srcImage->nChannels != dstImage->nChannels, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->nChannels!=dstImage->nChannels)") ||
        call.refuses(srcImage->alphaChannel != dstImage->alphaChannel, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->alphaChannel!=dstImage->alphaChannel)") ||
        call.refuses(srcImage->depth != ORV_DEPTH_1U && srcImage->dataOrder != dstImage->dataOrder,
                     ORV_STATUS_BAD_ARGUMENT, "(srcImage->dataOrder!=dstImage->dataOrder)"))
        return call.reportAs(refused);
    if (call.refuses(channelsToProcess(*srcImage) != channelsToProcess(*dstImage), ORV_STATUS_BAD_CHANNELS, ""))
        return call.reportAs(OrvStatus{ORV_STATUS_BAD_CHANNELS});
    if (onlyAlpha(*srcImage) || onlyAlpha(*dstImage))
        return ORV_STATUS_OK;
    if (call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(!isFilterDepth(srcImage->depth), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.reportAs(refused);
    return run(srcImage, dstImage, filter); // exhausted memory is returned without a report
}
