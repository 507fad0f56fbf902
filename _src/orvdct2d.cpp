// Cosine transforms.
#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "planes.h"
#include "transform/plane_transform.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvdct2d";

// Whether the image is a block, or its rectangle is one in the corner.
bool isBlock(const OrvImage &image)
{
    const OrvROI *const roi = image.roi;
    return image.width == 8 && image.height == 8 &&
           (roi == nullptr || (roi->xOffset == 0 && roi->yOffset == 0 && roi->width == 8 && roi->height == 8));
}

void runBlocks(const TransformImages &images, const Kernel<BlockKernel> &kernel, bool byChannel)
{
    runPlanes(
        {.images = images.images(), .size = images.size(), .byChannel = byChannel}, {.run = [&](const Work &work) {
            return kernel(work.sources[0].data, work.sources[0].step, work.destination.data, work.destination.step);
        }});
}

void runPlan(const TransformImages &images, bool forward)
{
    constexpr std::int32_t hint = 1;
    OrvDct2DPlan plan;
    if (krnDct2DInitAlloc32f(&plan, images.size().width, images.size().height, hint) == KRN_OK)
        transformPlanesBy(plan, images, krnDct2DWorkSize32f, krnDct2DFree32f,
                          forward ? krnDct2DFwd32fC1 : krnDct2DInv32fC1);
}

void run(const OrvImage &source, const OrvImage &destination, bool forward)
{
    const TransformImages images(source, destination);
    const bool words = (forward ? destination : source).depth == ORV_DEPTH_16S;
    const bool byPlane = images.images().inPlanes();
    if (!images.any())
        return;
    if (words && isBlock(source) && isBlock(destination))
        return runBlocks(images, forward ? krnDct8x8Fwd8u16s : krnDct8x8Inv16s8u, !byPlane);
    if (!words && byPlane && isBlock(source))
        return runBlocks(images, forward ? krnDct8x8Fwd8u32f : krnDct8x8Inv32f8u, false);
    runPlan(images, forward);
}

bool isFloatOrWord(const OrvImage &image)
{
    return image.depth == ORV_DEPTH_32F || image.depth == ORV_DEPTH_16S;
}

Refusal compareImages(const OrvImage &source, const OrvImage &destination, bool forward)
{
    Size from = {0, 0}, to = {0, 0};
    roiSize(source, from);
    roiSize(destination, to);
    return firstOf(
        {{source.depth == ORV_DEPTH_1U || destination.depth == ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED,
          "Images with 1u depth are not processed"},
         {source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT, "(src->dataOrder != dst->dataOrder)"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""},
         {from.width != to.width, ORV_STATUS_BAD_ARGUMENT, "(srcRoi.width != dstRoi.width)"},
         {from.height != to.height, ORV_STATUS_BAD_ARGUMENT, "(srcRoi.height != dstRoi.height)"},
         {!isFloatOrWord(forward ? destination : source), ORV_STATUS_NOT_IMPLEMENTED, ""}});
}

} // namespace

extern "C" void orvDCT2D(const OrvImage *src, OrvImage *dst, std::int32_t flags)
{
    if ((flags & ORV_DCT_RELEASE) != 0)
        return;
    Call call(unitName);
    const bool forward = (flags & ORV_DCT_FORWARD) != 0, inverse = (flags & ORV_DCT_INVERSE) != 0;
    if (call.refuses(forward == inverse, ORV_STATUS_BAD_ARGUMENT, "Bad value of the transform flag")) {
        call.report();
        return;
    }
    call.reports(src == nullptr, ORV_STATUS_BAD_ARGUMENT, "src==0");
    call.reports(dst == nullptr, ORV_STATUS_BAD_ARGUMENT, "dst==0");
    // A report handler may have cleared the status.
    if (Call::ended() || src == nullptr || dst == nullptr)
        return;
    if (call.refuses(src == dst, ORV_STATUS_BAD_ARGUMENT, "Function does not support inplace operation") ||
        call.refuses(compareImages(*src, *dst, forward)))
        call.report();
    // The bytes of the other side are looked at last, and in silence.
    else if ((forward ? src : dst)->depth == ORV_DEPTH_8U)
        run(*src, *dst, forward);
}
