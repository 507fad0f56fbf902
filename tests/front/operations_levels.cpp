// Entries of the operations on levels: thresholds, contrast stretch and equalisation.
#include <algorithm>
#include <memory>

#include "front/lut_records.h"
#include "front/operation_entries.h"

namespace front {
namespace {

// Step by step: samples of the source's range on either side of a level, then the whole range of the destination.
// Where the destination has the source's width there is no third step, and bits stay what they are.
Sample thresholded(std::int32_t from, std::int32_t to, long long sample, long long threshold)
{
    const auto bits = [&](long long value) { return integerSample(to, value); };
    const bool isHigh = sample >= threshold;
    if (from == ORV_DEPTH_8U && to == ORV_DEPTH_8S && !isHigh && sample >= 127)
        return {to, static_cast<std::uint32_t>(sample)};
    if (from == ORV_DEPTH_16S && to == ORV_DEPTH_16U && !isHigh)
        return sample < -1 ? bits(0) : Sample{to, static_cast<std::uint32_t>(sample) & 0xFFFF};
    return bits(isHigh ? highestOf(to) : lowestOf(to));
}

Operation threshold(std::int32_t from, std::int32_t to, const char *variant)
{
    Operation operation = {{"orvThreshold", "orvthres"}, 1, {from}, nullptr};
    operation.variant = variant;
    operation.draw = [=](std::int32_t, Random &random) -> Arguments {
        const long long lowest = lowestOf(from), highest = highestOf(from);
        const long long anywhere = lowest + random.between(0, static_cast<int>(highest - lowest));
        const int level = static_cast<int>(
            random.oneOf(std::initializer_list<long long>{lowest, lowest + 1, highest, 1, 0, 128, anywhere, anywhere}));
        return {"threshold " + std::to_string(level),
                [=](Images images) { return orvThreshold(images[0], images[1], level); },
                [=](const Place &place) { return Results::only(thresholded(from, to, place[0].integer(), level)); },
                level};
    };
    operation.originsAgree = true;
    operation.orders = Orders::FreeBesideSingles;
    operation.leavesAlphaAlone = true;
    if (to != from) {
        operation.destinationDepth = to;
        operation.onItself = OnItself::Refused;
    }
    return operation;
}

// The tests of the threshold itself depend on the depth, and have a test of their own.
Refusals refusalsOfThreshold()
{
    const char *orders = "((srcImage->dataOrder != dstImage->dataOrder)&& "
                         "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))";
    return joined(
        {headersOf(2),
         {depth(0, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth == 32)"),
          depth(1, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "(dstImage->depth == 32)"),
          depth(0, ORV_DEPTH_1U, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth == 1)"), differs(Fault::Order, 1, orders),
          differs(Fault::Origin, 1, "(srcImage->origin != dstImage->origin)"), otherChannels(1),
          differs(Fault::MaskOrigin, 0, "(srcImage->origin != srcImage->maskROI->origin)"),
          differs(Fault::MaskOrigin, 1, "(dstImage->origin != dstImage->maskROI->origin)"), tiled(0), tiled(1),
          depth(0, ORV_DEPTH_8S, ORV_STATUS_NOT_IMPLEMENTED, ""),
          depth(0, ORV_DEPTH_16U, ORV_STATUS_NOT_IMPLEMENTED, "")}});
}

// Records for all channels that the source's header asks for, and no more.
Operation ofRecords(const char *function, OrvStatus (*call)(const OrvImage *, OrvImage *, OrvLUT *const *),
                    int (*level)(const LutRecord &record, int sample))
{
    Operation operation = {{function, "orvhist"}, 1, {ORV_DEPTH_8U}, nullptr};
    operation.draw = [=](std::int32_t, Random &random) -> Arguments {
        const auto records = std::make_shared<std::vector<LutRecord>>();
        for (int channel = 0; channel < 5; ++channel)
            records->push_back(drawLut(random));
        return {"", [=](Images images) { return LutCall(*records, *images[0]).run(call, images[0], images[1]); },
                [=](const Place &place) {
                    const Sample sample = place[0];
                    const std::int32_t channel = place.sources[0].channel;
                    if (channel >= recordsFor(place.sources[0].image->header))
                        return Results::only(sample);
                    const int value =
                        level((*records)[static_cast<std::size_t>(channel)], static_cast<int>(sample.bits));
                    return Results::only(sample.bits == 255 ? sample : Sample{sample.depth, std::uint32_t(value)});
                }};
    };
    operation.resultOfNothing = -6;
    operation.withoutMemory = "Insufficient memory";
    return operation;
}

} // namespace

std::vector<Operation> levels()
{
    std::vector<Operation> all = {threshold(ORV_DEPTH_8U, ORV_DEPTH_8U, ""),
                                  threshold(ORV_DEPTH_8U, ORV_DEPTH_8S, "8uTo8s"),
                                  threshold(ORV_DEPTH_8U, ORV_DEPTH_16U, "8uTo16u"),
                                  threshold(ORV_DEPTH_8U, ORV_DEPTH_16S, "8uTo16s"),
                                  threshold(ORV_DEPTH_8U, ORV_DEPTH_32S, "8uTo32s"),
                                  threshold(ORV_DEPTH_16S, ORV_DEPTH_16S, "16s"),
                                  threshold(ORV_DEPTH_16S, ORV_DEPTH_8U, "16sTo8u"),
                                  threshold(ORV_DEPTH_16S, ORV_DEPTH_16U, "16sTo16u"),
                                  ofRecords("orvContrastStretch", orvContrastStretch, stretchedLevel),
                                  ofRecords("orvHistoEqualize", orvHistoEqualize, equalizedLevel)};
    all.front().refusals = refusalsOfThreshold();
    return all;
}

} // namespace front
