// Two-level images.
#include <cstdint>

#include "call.h"
#include "fill.h"
#include "kernels.h"
#include "layout.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvthres";

// Most pairs of depths take one pass: below the level the lowest sample of the destination, else its highest.
struct TwoLevels {
    LayoutKernels<BinarizeKernel> kernels;
    std::int32_t low, high;
};
constexpr TwoLevels bytesToBytes = {ORV_LAYOUT_KERNELS(krnBinarize8u), 0, 255},
                    bytesToSignedBytes = {ORV_LAYOUT_KERNELS(krnBinarize8u), -128, 127},
                    bytesToWords = {ORV_LAYOUT_KERNELS(krnBinarize8u16u), 0, 65535},
                    bytesToSignedWords = {ORV_LAYOUT_KERNELS(krnBinarize8u16u), -32768, 32767},
                    bytesToLongWords = {ORV_LAYOUT_KERNELS(krnBinarize8u32s), INT32_MIN, INT32_MAX},
                    signedWordsToBytes = {ORV_LAYOUT_KERNELS(krnBinarize16s8u), 0, 255},
                    signedWordsToSignedWords = {ORV_LAYOUT_KERNELS(krnBinarize16s), -32768, 32767};

// The others replace samples above a level, and then those of the result that are below another. So samples below the
// threshold stay where they are not below the second level, which compares them as the source's type.
struct Chain {
    LayoutKernels<ReplaceKernel> above;
    LayoutKernels<ReplaceInPlaceKernel> belowInPlace;
    std::int32_t high, level, low;
};
#define ORV_IN_PLACE_KERNELS(stem)                  \
    {                                               \
        stem##C1I, stem##C3I, stem##C4I, stem##AC4I \
    }
constexpr Chain bytesChain = {ORV_LAYOUT_KERNELS(krnThresholdGT8u), ORV_IN_PLACE_KERNELS(krnThresholdLT8u), 0x7F, 0x7F,
                              0x80},
                wordsChain = {ORV_LAYOUT_KERNELS(krnThresholdGT16s), ORV_IN_PLACE_KERNELS(krnThresholdLT16s), -1, -1,
                              0};

OrvStatus run(const OrvImage *source, const OrvImage *destination, const TwoLevels &levels, std::int32_t threshold)
{
    const auto loop = [&](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        return levels.kernels[work.layout](in.data, in.step, out.data, out.step, work.size.width, work.size.height,
                                           threshold, levels.low, levels.high);
    };
    return runPointwise({{source}, destination}, {.run = loop});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, const Chain &chain, std::int32_t threshold)
{
    const auto loop = [&](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        const Size size = work.size;
        const KrnStatus status = chain.above[work.layout](in.data, in.step, out.data, out.step, size.width, size.height,
                                                          threshold - 1, chain.high);
        return status != KRN_OK ? status
                                : chain.belowInPlace[work.layout](out.data, out.step, size.width, size.height,
                                                                  chain.level, chain.low);
    };
    return runPointwise({{source}, destination}, {.run = loop});
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t threshold)
{
    const auto twoLevels = [&](const TwoLevels &levels) { return run(source, destination, levels, threshold); };
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return twoLevels(source->depth == ORV_DEPTH_8U ? bytesToBytes : signedWordsToBytes);
    case ORV_DEPTH_8S:
        if (source->depth != ORV_DEPTH_8U)
            break;
        // Up to this threshold the chain leaves nothing between its levels.
        return threshold <= 127 ? twoLevels(bytesToSignedBytes) : run(source, destination, bytesChain, threshold);
    case ORV_DEPTH_16U:
        if (source->depth == ORV_DEPTH_8U)
            return twoLevels(bytesToWords);
        // There is no level below the lowest one.
        return threshold == INT16_MIN
                   ? runPointwise({{source}, destination}, {.run = makeFill(sampleBytes(destination->depth), 0xFFFF)})
                   : run(source, destination, wordsChain, threshold);
    case ORV_DEPTH_16S:
        return twoLevels(source->depth == ORV_DEPTH_8U ? bytesToSignedWords : signedWordsToSignedWords);
    case ORV_DEPTH_32S:
        return source->depth == ORV_DEPTH_8U ? twoLevels(bytesToLongWords) : OrvStatus{ORV_STATUS_OK};
    default: // a depth that no chain leads to is no failure
        break;
    }
    return ORV_STATUS_OK;
}

// The texts have the values of the depths, not their names.
Refusal checkThreshold(std::int32_t depth, std::int32_t threshold)
{
    return firstOf({{depth == ORV_DEPTH_8S && threshold > 127, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == (0x80000000| 8)) && (Threshold > 127))"},
                    {depth == ORV_DEPTH_8S && threshold < -128, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == (0x80000000| 8)) && (Threshold < -128))"},
                    {depth == ORV_DEPTH_8U && threshold > 255, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == 8) && (Threshold > 255))"},
                    {depth == ORV_DEPTH_8U && threshold < 0, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == 8) && (Threshold < 0))"},
                    {depth == ORV_DEPTH_16S && threshold > 32767, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == (0x80000000|16)) && (Threshold > 32767))"},
                    {depth == ORV_DEPTH_16S && threshold < -32768, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == (0x80000000|16)) && (Threshold < -32768))"},
                    {depth == ORV_DEPTH_16U && threshold > 65535, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == 16) && (Threshold > 65535))"},
                    {depth == ORV_DEPTH_16U && threshold < 0, ORV_STATUS_BAD_ARGUMENT,
                     "((srcImage->depth == 16) && (Threshold < 0))"}});
}

bool masksDiffer(const OrvImage &image)
{
    return image.maskROI != nullptr && image.origin != image.maskROI->origin;
}

Refusal checkImages(const OrvImage &source, const OrvImage &destination)
{
    const bool oneChannel = source.nChannels == 1 || destination.nChannels == 1;
    return firstOf(
        {{source.depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth == 32)"},
         {destination.depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "(dstImage->depth == 32)"},
         {source.depth == ORV_DEPTH_1U, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth == 1)"},
         {source.dataOrder != destination.dataOrder && !oneChannel, ORV_STATUS_BAD_ARGUMENT,
          "((srcImage->dataOrder != dstImage->dataOrder)&& "
          "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))"},
         {source.origin != destination.origin, ORV_STATUS_BAD_ARGUMENT, "(srcImage->origin != dstImage->origin)"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""},
         {masksDiffer(source), ORV_STATUS_BAD_ARGUMENT, "(srcImage->origin != srcImage->maskROI->origin)"},
         {masksDiffer(destination), ORV_STATUS_BAD_ARGUMENT, "(dstImage->origin != dstImage->maskROI->origin)"}});
}

} // namespace

extern "C" OrvStatus orvThreshold(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t Threshold)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) || call.refuses(checkImages(*srcImage, *dstImage)) ||
        call.refuses(checkThreshold(srcImage->depth, Threshold)))
        return call.report();
    if (onlyAlpha(*srcImage) || onlyAlpha(*dstImage))
        return Threshold;
    if (call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        call.refuses(srcImage->depth != ORV_DEPTH_8U && srcImage->depth != ORV_DEPTH_16S, ORV_STATUS_NOT_IMPLEMENTED,
                     ""))
        return call.report();
    return call.result(run(srcImage, dstImage, Threshold));
}
