// Mirror.
#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "planes.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvmirr";

struct MirrorKernels {
    LayoutKernels<MirrorKernel> twoRasters;
    LayoutKernels<MirrorInPlaceKernel> inPlace;
};

#define ORV_MIRROR_KERNELS(stem)                        \
    {                                                   \
        ORV_LAYOUT_KERNELS(stem),                       \
        {                                               \
            stem##C1I, stem##C3I, stem##C4I, stem##AC4I \
        }                                               \
    }

constexpr MirrorKernels ofBytes = ORV_MIRROR_KERNELS(krnMirror8u);
constexpr MirrorKernels ofWords = ORV_MIRROR_KERNELS(krnMirror16u);
constexpr MirrorKernels ofLongWords = ORV_MIRROR_KERNELS(krnMirror32s);

// In place rows and columns are exchanged, and not copied.
auto makeMirror(const MirrorKernels &kernels, std::int32_t flip, bool shared)
{
    return [&kernels, flip, shared](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return shared && in.data == out.data
                   ? kernels.inPlace[work.layout](out.data, out.step, work.size.width, work.size.height, flip)
                   : kernels.twoRasters[work.layout](in.data, in.step, out.data, out.step, work.size.width,
                                                     work.size.height, flip);
    };
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t flipAxis)
{
    const std::int32_t bytes = sampleBytes(destination->depth);
    const MirrorKernels &kernels = bytes == 1 ? ofBytes : bytes == 2 ? ofWords : ofLongWords;
    // Both axes are the kernels' third way.
    const std::int32_t flip = flipAxis == -1 ? 2 : flipAxis;
    const bool shared = source->imageData == destination->imageData;
    const CallImages images({source}, destination);
    return runPlanes({.images = images, .size = images.commonSize(), .inPlaceIfShared = true},
                     {.run = makeMirror(kernels, flip, shared)});
}

bool masksWithAlpha(const OrvImage &image)
{
    return image.depth == ORV_DEPTH_1U && image.alphaChannel != 0;
}

bool ordersDisagree(const OrvImage &source, const OrvImage &destination)
{
    return source.dataOrder != destination.dataOrder && source.nChannels != 1 && destination.nChannels != 1;
}

} // namespace

extern "C" void orvMirror(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t flipAxis)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(srcImage == dstImage && srcImage->maskROI != nullptr, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage==dstImage && srcImage->maskROI != 0)") ||
        call.refuses(srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth!=dstImage->depth)") ||
        call.refuses(flipAxis > 1 || flipAxis < -1, ORV_STATUS_BAD_ARGUMENT, "((flipAxis>1)||(flipAxis<-1))") ||
        call.refuses(masksWithAlpha(*srcImage), ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->depth==1 && srcImage->alphaChannel!=0)") ||
        call.refuses(masksWithAlpha(*dstImage), ORV_STATUS_BAD_ARGUMENT,
                     "(dstImage->depth==1 && dstImage->alphaChannel!=0)") ||
        call.refuses(ordersDisagree(*srcImage, *dstImage), ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->dataOrder != dstImage->dataOrder)&& "
                     "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))") ||
        call.refuses(srcImage->origin != dstImage->origin, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->origin != dstImage->origin)") ||
        call.refuses(channelsToProcess(*srcImage) != channelsToProcess(*dstImage), ORV_STATUS_BAD_CHANNELS, "") ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(dstImage->depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, ""))
        call.report();
    else
        call.result(run(srcImage, dstImage, flipAxis));
}
