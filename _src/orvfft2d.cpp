// Fourier transforms of real images.
#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "transform/plane_transform.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvfft2d";

// The power of 2 that a length is, or -1.
std::int32_t orderOf(std::int32_t length)
{
    std::int32_t order = 0;
    while (length >> order > 1)
        ++order;
    return std::int32_t{1} << order == length ? order : -1;
}

void runPlan(const TransformImages &images, bool forward)
{
    constexpr std::int32_t hint = 1;
    const Size size = images.size();
    const std::int32_t orderX = orderOf(size.width), orderY = orderOf(size.height);
    if (orderX >= 0 && orderY >= 0) {
        OrvFft2DPlan plan;
        if (krnFft2DInitAlloc32f(&plan, orderX, orderY, SCALE_INVERSE, hint) == KRN_OK)
            transformPlanesBy(plan, images, krnFft2DWorkSize32f, krnFft2DFree32f,
                              forward ? krnFft2DFwd32fC1 : krnFft2DInv32fC1);
        return;
    }
    OrvDft2DPlan plan;
    if (krnDft2DInitAlloc32f(&plan, size.width, size.height, SCALE_INVERSE, hint) == KRN_OK)
        transformPlanesBy(plan, images, krnDft2DWorkSize32f, krnDft2DFree32f,
                          forward ? krnDft2DFwd32fC1 : krnDft2DInv32fC1);
}

void run(const OrvImage &source, const OrvImage &destination, bool forward)
{
    const TransformImages images(source, destination);
    const std::int32_t channels = channelsToProcess(source);
    const bool served = images.images().inPlanes() || channels == 1 || channels == 3 || channels == 4;
    if (served && images.any())
        runPlan(images, forward);
}

// Floats on both sides have no kernel for pixels of several samples.
bool servesDepths(const OrvImage &real, const OrvImage &spectrum)
{
    switch (spectrum.depth) {
    case ORV_DEPTH_32S:
        return real.depth == ORV_DEPTH_8U;
    case ORV_DEPTH_16S:
        return real.depth == ORV_DEPTH_16S;
    case ORV_DEPTH_32F:
        return real.depth == ORV_DEPTH_8U ||
               (real.depth == ORV_DEPTH_32F &&
                (real.dataOrder == ORV_DATA_ORDER_PLANE || (real.nChannels == 1 && spectrum.nChannels == 1)));
    default:
        return false;
    }
}

bool has(std::int32_t flags, std::int32_t flag)
{
    return (flags & flag) != 0;
}

Refusal checkFlags(std::int32_t flags)
{
    const bool forward = has(flags, ORV_FFT_FORWARD), inverse = has(flags, ORV_FFT_INVERSE);
    return firstOf(
        {{!forward && !inverse, ORV_STATUS_BAD_ARGUMENT, "0 == (flags & 1) && 0 == (flags & 2 )"},
         {forward && inverse, ORV_STATUS_BAD_ARGUMENT, "(flags & 1) != 0 && (flags & 2 ) != 0"},
         {has(flags, 32) && has(flags, 16), ORV_STATUS_BAD_ARGUMENT, "(flags & 32) != 0 && (flags & 16 ) != 0"}});
}

Refusal compareImages(const OrvImage &source, const OrvImage &destination)
{
    return firstOf({{&source == &destination, ORV_STATUS_BAD_ARGUMENT, "Function does not support inplace operation"},
                    {source.depth == ORV_DEPTH_1U || destination.depth == ORV_DEPTH_1U, ORV_STATUS_BAD_ARGUMENT,
                     "Images with 1u depth are not processed"},
                    {source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT,
                     "(srcImage->dataOrder != dstImage->dataOrder)"},
                    {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""}});
}

// The checks that both directions share. True where they let the call go on; a report handler may have cleared the
// status of a missing image.
bool checkCall(Call &call, const OrvImage *source, const OrvImage *destination, std::int32_t flags)
{
    if (call.refuses(checkFlags(flags)))
        return call.reportAs(false);
    call.reports(source == nullptr, ORV_STATUS_BAD_ARGUMENT, "srcImage==0");
    call.reports(destination == nullptr, ORV_STATUS_BAD_ARGUMENT, "dstImage==0");
    if (Call::ended() || source == nullptr || destination == nullptr)
        return false;
    return call.refuses(compareImages(*source, *destination)) ? call.reportAs(false) : true;
}

} // namespace

extern "C" void orvRealFft2D(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t flags)
{
    Call call(unitName);
    if (has(flags, ORV_FFT_RELEASE) || !checkCall(call, srcImage, dstImage, flags))
        return;
    if (call.refuses(!has(flags, ORV_FFT_FORWARD) || !servesDepths(*srcImage, *dstImage), ORV_STATUS_NOT_IMPLEMENTED,
                     ""))
        call.report();
    else
        run(*srcImage, *dstImage, true);
}

// A destination whose depth does not fit is left alone in silence.
extern "C" void orvCcsFft2D(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t flags)
{
    Call call(unitName);
    if (has(flags, ORV_FFT_RELEASE) || !checkCall(call, srcImage, dstImage, flags))
        return;
    const std::int32_t depth = srcImage->depth;
    const bool isSpectrum = depth == ORV_DEPTH_16S || depth == ORV_DEPTH_32S || depth == ORV_DEPTH_32F;
    if (call.refuses(!has(flags, ORV_FFT_INVERSE) || !isSpectrum, ORV_STATUS_NOT_IMPLEMENTED, ""))
        call.report();
    else if (servesDepths(*dstImage, *srcImage))
        run(*srcImage, *dstImage, false);
}
