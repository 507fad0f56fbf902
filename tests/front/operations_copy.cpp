// Entries of copy, mirror, fill and magnitude.
#include <cstdlib>
#include <limits>

#include "front/operation_entries.h"

namespace front {
namespace {

Sample copied(std::int32_t, const Sample *sources, const Constant &)
{
    return sources[0];
}

Sample magnitude(std::int32_t depth, const Sample *sources, const Constant &)
{
    if (depth == ORV_DEPTH_32F)
        return {depth, sources[0].bits & 0x7FFFFFFF};
    return integerSample(depth, saturated(depth, std::llabs(sources[0].integer())));
}

Sample filled(std::int32_t depth, const Sample *, const Constant &constant)
{
    if (depth == ORV_DEPTH_1U)
        return integerSample(depth, constant.integer != 0 ? 255 : 0);
    return integerSample(depth, saturated(depth, constant.integer));
}

Operation copyOperation()
{
    Operation copy = {{"orvCopy", "orvsce"},
                      1,
                      {std::begin(allDepths), std::end(allDepths)},
                      pixelByPixel(orvCopy, copied),
                      joined({headersOf(2),
                              {differs(Fault::OtherDepth, 1, "srcImage->depth != dstImage->depth"),
                               differs(Fault::Origin, 1, "srcImage->origin != dstImage->origin"),
                               differs(Fault::Order, 1, "srcImage->dataOrder != dstImage->dataOrder"),
                               differs(Fault::Channels, 1, "", ORV_STATUS_BAD_CHANNELS),
                               differs(Fault::Alpha, 1, "", ORV_STATUS_BAD_CHANNELS), tiled(0), tiled(1)}})};
    copy.originsAgree = true;
    copy.orders = Orders::FreeOfSingles;
    copy.orderFreeAtDepth1U = true;
    copy.channels = Agreement::WithoutAlpha;
    copy.onItself = OnItself::ChannelCount;
    return copy;
}

Operation absOperation()
{
    Operation abs = {{"orvAbs", "orvabs"},
                     1,
                     {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F},
                     pixelByPixel(orvAbs, magnitude),
                     joined({headersOf(2), comparisonsOfTwo(), {unserved(ORV_DEPTH_1U)}})};
    abs.orderFreeAtDepth1U = true;
    return abs;
}

// The magnitude of unsigned samples is a copy, with the checks of orvCopy behind those of orvAbs.
Operation absOfUnsignedOperation()
{
    Operation abs = absOperation();
    abs.variant = "OfUnsigned";
    abs.depths = {ORV_DEPTH_8U, ORV_DEPTH_16U};
    abs.draw = pixelByPixel(orvAbs, copied);
    abs.refusals.pop_back();
    abs.refusals.push_back(byWorker(differs(Fault::Origin, 1, "srcImage->origin != dstImage->origin")));
    abs.refusals.push_back(byWorker(differs(Fault::Alpha, 1, "", ORV_STATUS_BAD_CHANNELS)));
    abs.worker = {"orvCopy", "orvsce"};
    abs.originsAgree = true;
    abs.channels = Agreement::Both;
    abs.onItself = OnItself::ChannelCount;
    return abs;
}

Operation setOperation()
{
    return {{"orvSet", "orvsce"},
            0,
            {ORV_DEPTH_1U, ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S},
            pixelByPixel(orvSet, filled,
                         constants({0,   1,     -1,    2,      127,    128,   -128,  -129,       255,     256,
                                    300, 32767, 32768, -32768, -32769, 65535, 65536, 0x01020304, mostInt, leastInt})),
            {null(0), header(0),
             depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH, "You should use orvSetFP for this image"),
             tiled(0)}};
}

Operation setFloatOperation()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Operation set = {
        {"orvSetFP", "orvsce"},
        0,
        {ORV_DEPTH_32F},
        pixelByPixel(
            orvSetFP, [](std::int32_t, const Sample *, const Constant &constant) { return realSample(constant.real); },
            constants({0.0f, -0.0f, 1.0f, -2.5f, 1e-42f, 3.4e38f, infinity, -infinity})),
        {null(0, ORV_STATUS_BAD_ARGUMENT, "dstImage==0"),
         depth(allImages, ORV_DEPTH_8U, ORV_STATUS_BAD_DEPTH, "You should use orvSet for this image"),
         byWorker(header(0)), byWorker(tiled(0))}};
    set.worker = {"orvSet", "orvsce"};
    set.traces = true;
    return set;
}

OrvStatus statusOfMirror(Images images, std::int32_t axis)
{
    orvMirror(images[0], images[1], axis);
    return orvGetErrStatus();
}

OrvStatus mirrorWith(Images images, std::uint32_t faults)
{
    constexpr std::int32_t axes[] = {2, -2, leastInt, mostInt};
    std::int32_t axis = 0;
    for (int fault = 0; fault < 4; ++fault)
        axis = (faults & (1u << fault)) != 0 ? axes[fault] : axis;
    return statusOfMirror(images, axis);
}

Arguments drawMirror(std::int32_t, Random &random)
{
    const std::int32_t axis = random.between(-1, 1);
    return {"axis " + std::to_string(axis), [=](Images images) { return statusOfMirror(images, axis); },
            [=](const Place &place) {
                const std::int32_t right = axis == 0 ? 0 : place.width - 1 - 2 * place.x;
                const std::int32_t down = axis == 1 ? 0 : place.height - 1 - 2 * place.y;
                return Results::only(place.at(0, right, down));
            }};
}

Operation mirrorOperation()
{
    const auto axis = [](std::int32_t fault) {
        return Refusal{Fault::Argument, 0, ORV_STATUS_BAD_ARGUMENT, "((flipAxis>1)||(flipAxis<-1))", fault};
    };
    Operation mirror = {
        {"orvMirror", "orvmirr"},
        1,
        {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F},
        drawMirror,
        joined({headersOf(2),
                {differs(Fault::MaskOnOneHeader, 1, "(srcImage==dstImage && srcImage->maskROI != 0)"),
                 differs(Fault::OtherDepth, 1, "(srcImage->depth!=dstImage->depth)"), axis(0), axis(1), axis(2),
                 axis(3), differs(Fault::MaskAlpha, 0, "(srcImage->depth==1 && srcImage->alphaChannel!=0)"),
                 differs(Fault::MaskAlpha, 1, "(dstImage->depth==1 && dstImage->alphaChannel!=0)"),
                 differs(Fault::Order, 1,
                         "((srcImage->dataOrder != dstImage->dataOrder)&& "
                         "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))"),
                 differs(Fault::Origin, 1, "(srcImage->origin != dstImage->origin)"), otherChannels(1), tiled(0),
                 tiled(1), unserved(ORV_DEPTH_1U)}})};
    mirror.callWith = mirrorWith;
    mirror.originsAgree = true;
    mirror.orders = Orders::FreeBesideSingles;
    mirror.orderFreeAtDepth1U = true;
    mirror.onItself = OnItself::ComputedUnmasked;
    mirror.returnsStatus = false;
    mirror.movesPixels = true;
    return mirror;
}

} // namespace

std::vector<Operation> copies()
{
    return {copyOperation(), absOperation(),      absOfUnsignedOperation(),
            setOperation(),  setFloatOperation(), mirrorOperation()};
}

} // namespace front
