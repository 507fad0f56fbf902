// Copy and fill.
#include <algorithm>
#include <bit>
#include <cstdint>

#include "call.h"
#include "channel_kernels.h"
#include "fill.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvsce";

// Pixels of the same length on both sides. Under a mask the copy goes straight into the destination.
auto makeCopy(const ChannelKernels &kernels)
{
    return [&kernels](const Work &work) {
        const ConstRaster &in = work.sources[0], &mask = work.mask;
        const Raster &out = work.destination;
        return mask.data == nullptr
                   ? kernels.copy[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height)
                   : kernels.copyMasked[work.layout](in.data, in.step, out.data, out.step, work.size.width,
                                                     work.size.height, mask.data, mask.step);
    };
}

// Pixels of three samples on one side, of three and alpha on the other.
auto makeCopyBesideAlpha(const Kernel<CopyKernel> &copy)
{
    return [&copy](const Work &work) {
        const ConstRaster &in = work.sources[0];
        return copy(in.data, in.step, work.destination.data, work.destination.step, work.size.width, work.size.height);
    };
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t channels)
{
    const ChannelKernels &kernels = channelKernels(sampleBytes(destination->depth));
    const bool pixels = destination->dataOrder == ORV_DATA_ORDER_PIXEL;
    if (!pixels || channels != 3 || source->nChannels == destination->nChannels)
        return runPointwise({{source}, destination}, {.run = makeCopy(kernels), .takesMask = true});
    const bool intoAlpha = source->nChannels < destination->nChannels;
    return runPointwise({{source}, destination},
                        {.run = makeCopyBesideAlpha(intoAlpha ? kernels.copyC3AC4 : kernels.copyAC4C3)});
}

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
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->depth != dstImage->depth") ||
        call.refuses(srcImage->origin != dstImage->origin, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->origin != dstImage->origin"))
        return call.report();
    const bool orderMatters = srcImage->depth != ORV_DEPTH_1U && (srcImage->nChannels != 1 || dstImage->nChannels != 1);
    const std::int32_t channels = channelsWithoutAlpha(*srcImage);
    if (call.refuses(orderMatters && srcImage->dataOrder != dstImage->dataOrder, ORV_STATUS_BAD_ARGUMENT,
                     "srcImage->dataOrder != dstImage->dataOrder") ||
        call.refuses(channels != channelsWithoutAlpha(*dstImage), ORV_STATUS_BAD_CHANNELS, ""))
        return call.report();
    if (srcImage == dstImage)
        return channels;
    if (call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(run(srcImage, dstImage, channels));
}

OrvStatus orvSet(OrvImage *dstImage, std::int32_t fillValue)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(dstImage)) ||
        call.refuses(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH,
                     "You should use orvSetFP for this image") ||
        call.refuses(anyTiled(dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return call.result(runPointwise(
        {{}, dstImage}, {.run = makeFill(sampleBytes(dstImage->depth), clampedToDepth(dstImage->depth, fillValue))}));
}

OrvStatus orvSetFP(OrvImage *dstImage, float fillValue)
{
    Call call(unitName);
    if (call.refuses(dstImage == nullptr, ORV_STATUS_BAD_ARGUMENT, "dstImage==0") ||
        call.refuses(dstImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH, "You should use orvSet for this image"))
        return call.report();
    // For the length of the call the image is one of integers, with the same bits.
    dstImage->depth = ORV_DEPTH_32S;
    orvSet(dstImage, std::bit_cast<std::int32_t>(fillValue));
    const OrvStatus status = orvGetErrStatus();
    call.reports(status < 0, ORV_STATUS_BACKTRACE, "");
    dstImage->depth = ORV_DEPTH_32F;
    return status;
}

} // extern "C"
