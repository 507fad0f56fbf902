// Mirror.
#include <cstdint>

#include "pointwise.h"
#include "report.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvmirr";

struct MirrorKernels {
    LayoutKernels<MirrorKernel> apart;
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

struct Mirror {
    const MirrorKernels &kernels;
    std::int32_t flip;

    void operator()(Layout layout, const Raster *sources, Raster destination, Size size) const
    {
        kernels.apart[layout](sources->data, sources->step, destination.data, destination.step, size.width, size.height,
                              flip);
    }
    void inPlace(Layout layout, Raster image, Size size) const
    {
        kernels.inPlace[layout](image.data, image.step, size.width, size.height, flip);
    }
};

OrvStatus mirror(const OrvImage &source, OrvImage &destination, std::int32_t flip)
{
    const std::int32_t bytes = sampleBytes(destination.depth);
    const MirrorKernels &kernels = bytes == 1 ? ofBytes : bytes == 2 ? ofWords : ofLongWords;
    return pointwise(Mirror{kernels, flip}, &destination, &source);
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
    const Refusal header = checkHeaders(srcImage, dstImage);
    ORV_REFUSE_AS(, header.status != ORV_STATUS_OK, header.status, header.context);
    ORV_REFUSE_AS(, srcImage == dstImage && srcImage->maskROI != nullptr, ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage==dstImage && srcImage->maskROI != 0)");
    ORV_REFUSE_AS(, srcImage->depth != dstImage->depth, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth!=dstImage->depth)");
    ORV_REFUSE_AS(, flipAxis > 1 || flipAxis < -1, ORV_STATUS_BAD_ARGUMENT, "((flipAxis>1)||(flipAxis<-1))");
    ORV_REFUSE_AS(, masksWithAlpha(*srcImage), ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage->depth==1 && srcImage->alphaChannel!=0)");
    ORV_REFUSE_AS(, masksWithAlpha(*dstImage), ORV_STATUS_BAD_ARGUMENT,
                  "(dstImage->depth==1 && dstImage->alphaChannel!=0)");
    ORV_REFUSE_AS(, ordersDisagree(*srcImage, *dstImage), ORV_STATUS_BAD_ARGUMENT,
                  "((srcImage->dataOrder != dstImage->dataOrder)&& "
                  "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))");
    ORV_REFUSE_AS(, srcImage->origin != dstImage->origin, ORV_STATUS_BAD_ARGUMENT,
                  "(srcImage->origin != dstImage->origin)");
    ORV_REFUSE_AS(, channelsToProcess(*srcImage) != channelsToProcess(*dstImage), ORV_STATUS_BAD_CHANNELS, "");
    ORV_REFUSE_AS(, anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "");
    ORV_REFUSE_AS(, dstImage->depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, "");
    // Both axes are the kernels' third way.
    const OrvStatus status = mirror(*srcImage, *dstImage, flipAxis == -1 ? 2 : flipAxis);
    ORV_REFUSE_AS(, status != ORV_STATUS_OK, status, "Not enough memory");
}
