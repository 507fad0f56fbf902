// Copy and fill.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "fill.h"
#include "pointwise.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsce";

// Pixels of the same length on both sides. Under a mask the copy goes straight into the destination.
struct CopySamples {
    const ChannelKernels &kernels;

    void operator()(Layout layout, const Raster *sources, Raster out, Size size) const
    {
        kernels.copy[layout](sources->data, sources->step, out.data, out.step, size.width, size.height);
    }

    void masked(Layout layout, const Raster *sources, Raster out, Raster mask, Size size) const
    {
        kernels.copyMasked[layout](sources->data, sources->step, out.data, out.step, size.width, size.height, mask.data,
                                   mask.step);
    }
};

// Pixels of three samples on one side, of three and alpha on the other.
struct CopyBesideAlpha {
    const Kernel<CopyKernel> &copy;

    void operator()(Layout, const Raster *sources, Raster out, Size size) const
    {
        copy(sources->data, sources->step, out.data, out.step, size.width, size.height);
    }
};

std::int32_t clampedToDepth(std::int32_t depth, std::int32_t value)
{
    switch (depth) {
    case ORV_DEPTH_1U:
        return value != 0 ? 255 : 0;
    case ORV_DEPTH_8U:
        return std::clamp(value, 0, 255);
    case ORV_DEPTH_8S:
        return std::clamp(value, -128, 127);
    case ORV_DEPTH_16U:
        return std::clamp(value, 0, 65535);
    case ORV_DEPTH_16S:
        return std::clamp(value, -32768, 32767);
    default:
        return value;
    }
}

} // namespace

extern "C" {

OrvStatus orvCopy(const OrvImage *srcImage, OrvImage *dstImage)
{
    ORV_CHECK_HEADER(srcImage);
    ORV_CHECK_HEADER(dstImage);
    ORV_REFUSE_IF(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth != dstImage->depth");
    ORV_REFUSE_IF(srcImage->origin != dstImage->origin, ORV_STATUS_BAD_ARGUMENT,
                  "srcImage->origin != dstImage->origin");
    const bool orderMatters = srcImage->depth != ORV_DEPTH_1U && (srcImage->nChannels != 1 || dstImage->nChannels != 1);
    ORV_REFUSE_IF(orderMatters && srcImage->dataOrder != dstImage->dataOrder, ORV_STATUS_BAD_ARGUMENT,
                  "srcImage->dataOrder != dstImage->dataOrder");
    const std::int32_t channels = channelsWithoutAlpha(*srcImage);
    ORV_REFUSE_IF(channels != channelsWithoutAlpha(*dstImage), ORV_STATUS_BAD_CHANNELS, "");
    if (srcImage == dstImage)
        return channels;
    ORV_REFUSE_IF(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "");

    const ChannelKernels &kernels = channelKernels(sampleBytes(dstImage->depth));
    const bool pixels = dstImage->dataOrder == ORV_DATA_ORDER_PIXEL;
    if (pixels && channels == 3 && srcImage->nChannels < dstImage->nChannels)
        ORV_RETURN_RUN(pointwise(CopyBesideAlpha{kernels.copyC3AC4}, dstImage, srcImage));
    if (pixels && channels == 3 && srcImage->nChannels > dstImage->nChannels)
        ORV_RETURN_RUN(pointwise(CopyBesideAlpha{kernels.copyAC4C3}, dstImage, srcImage));
    ORV_RETURN_RUN(pointwise(CopySamples{kernels}, dstImage, srcImage));
}

OrvStatus orvSet(OrvImage *dstImage, std::int32_t fillValue)
{
    ORV_CHECK_HEADER(dstImage);
    ORV_REFUSE_IF(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH, "You should use orvSetFP for this image");
    ORV_REFUSE_IF(anyTiled(dstImage), ORV_STATUS_NOT_IMPLEMENTED, "");
    const ChannelKernels &kernels = channelKernels(sampleBytes(dstImage->depth));
    ORV_RETURN_RUN(pointwise(FillSamples{kernels, clampedToDepth(dstImage->depth, fillValue)}, dstImage));
}

OrvStatus orvSetFP(OrvImage *dstImage, float fillValue)
{
    ORV_REFUSE_IF(dstImage == nullptr, ORV_STATUS_BAD_ARGUMENT, "dstImage==0");
    ORV_REFUSE_IF(dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH, "You should use orvSet for this image");
    // The same bits as an integer image, for the length of the call.
    dstImage->depth = ORV_DEPTH_32S;
    orvSet(dstImage, std::bit_cast<std::int32_t>(fillValue));
    const OrvStatus status = orvGetErrStatus();
    if (status < 0)
        ORV_REPORT(ORV_STATUS_BACKTRACE, "");
    dstImage->depth = ORV_DEPTH_32F;
    return status;
}

} // extern "C"
