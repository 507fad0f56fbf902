// The list of operations, with the formulas and the checks of copy, fill and magnitude.
#include "front/operation_entries.h"

#include <cmath>
#include <ostream>

namespace front {
namespace {

Sample copied(std::int32_t, const Sample *sources, const Constant &)
{
    return sources[0];
}

Sample magnitude(std::int32_t sampleDepth, const Sample *sources, const Constant &)
{
    if (sampleDepth == ORV_DEPTH_32F)
        return {sampleDepth, sources[0].bits & 0x7FFFFFFF};
    return integerSample(sampleDepth, saturated(sampleDepth, std::llabs(sources[0].integer())));
}

Sample filled(std::int32_t sampleDepth, const Sample *, const Constant &constant)
{
    if (sampleDepth == ORV_DEPTH_1U)
        return integerSample(sampleDepth, constant.integer != 0 ? 255 : 0);
    return integerSample(sampleDepth, saturated(sampleDepth, constant.integer));
}

Operation copyOperation()
{
    Operation copy = {
        .name = "Copy",
        .reporter = {"orvCopy", "orvsce"},
        .sources = 1,
        .depths = {std::begin(allDepths), std::end(allDepths)},
        .call = [](OrvImage *const *images, const Constant &) { return orvCopy(images[0], images[1]); },
        .expected = copied,
        .refusals = {null(0), header(0), null(1), header(1),
                     differs(Fault::OtherDepth, 1, "srcImage->depth != dstImage->depth"),
                     differs(Fault::Origin, 1, "srcImage->origin != dstImage->origin"),
                     differs(Fault::Order, 1, "srcImage->dataOrder != dstImage->dataOrder"),
                     differs(Fault::Channels, 1, "", ORV_STATUS_BAD_CHANNELS),
                     differs(Fault::Alpha, 1, "", ORV_STATUS_BAD_CHANNELS), tiled(0), tiled(1)},
    };
    copy.originsAgree = true;
    copy.orderOfSingleChannelsFree = true;
    copy.orderFreeAtDepth1U = true;
    copy.channels = Agreement::WithoutAlpha;
    copy.nothingOnItself = true;
    return copy;
}

Operation absOperation()
{
    Operation abs = {
        .name = "Abs",
        .reporter = {"orvAbs", "orvabs"},
        .sources = 1,
        .depths = {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F},
        .call = [](OrvImage *const *images, const Constant &) { return orvAbs(images[0], images[1]); },
        .expected = magnitude,
        .refusals = {null(0), header(0), null(1), header(1),
                     differs(Fault::OtherDepth, 1, "(srcImage->depth != dstImage->depth)"),
                     differs(Fault::Order, 1, "(srcImage->dataOrder != dstImage->dataOrder)"),
                     differs(Fault::Channels, 1, "", ORV_STATUS_BAD_CHANNELS), tiled(0), tiled(1),
                     depth(allImages, ORV_DEPTH_1U, ORV_STATUS_NOT_IMPLEMENTED, "")},
    };
    abs.orderFreeAtDepth1U = true;
    return abs;
}

// The magnitude of unsigned samples is a copy, with the checks of orvCopy behind those of orvAbs.
Operation absOfUnsignedOperation()
{
    Operation abs = absOperation();
    abs.name = "AbsOfUnsigned";
    abs.depths = {ORV_DEPTH_8U, ORV_DEPTH_16U};
    abs.expected = copied;
    abs.refusals.pop_back();
    abs.refusals.push_back(byWorker(differs(Fault::Origin, 1, "srcImage->origin != dstImage->origin")));
    abs.refusals.push_back(byWorker(differs(Fault::Alpha, 1, "", ORV_STATUS_BAD_CHANNELS)));
    abs.worker = {"orvCopy", "orvsce"};
    abs.originsAgree = true;
    abs.channels = Agreement::Both;
    abs.nothingOnItself = true;
    return abs;
}

Operation setOperation()
{
    return {
        .name = "Set",
        .reporter = {"orvSet", "orvsce"},
        .sources = 0,
        .depths = {ORV_DEPTH_1U, ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S},
        .call = [](OrvImage *const *images, const Constant &constant) { return orvSet(images[0], constant.integer); },
        .expected = filled,
        .refusals = {null(0), header(0),
                     depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_DEPTH, "You should use orvSetFP for this image"),
                     tiled(0)},
        .constants = integers({0,   1,     -1,    2,      127,    128,   -128,  -129,       255,     256,
                               300, 32767, 32768, -32768, -32769, 65535, 65536, 0x01020304, mostInt, leastInt}),
    };
}

Operation setFloatOperation()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Operation set = {
        .name = "SetFP",
        .reporter = {"orvSetFP", "orvsce"},
        .sources = 0,
        .depths = {ORV_DEPTH_32F},
        .call = [](OrvImage *const *images, const Constant &constant) { return orvSetFP(images[0], constant.real); },
        .expected = [](std::int32_t, const Sample *, const Constant &constant) { return realSample(constant.real); },
        .refusals = {null(0, ORV_STATUS_BAD_ARGUMENT, "dstImage==0"),
                     depth(allImages, ORV_DEPTH_8U, ORV_STATUS_BAD_DEPTH, "You should use orvSet for this image"),
                     byWorker(header(0)), byWorker(tiled(0))},
        .constants = reals({0.0f, -0.0f, 1.0f, -2.5f, 1e-42f, 3.4e38f, infinity, -infinity}),
    };
    set.worker = {"orvSet", "orvsce"};
    set.traces = true;
    return set;
}

} // namespace

const std::vector<Operation> &operations()
{
    static const std::vector<Operation> all = [] {
        std::vector<Operation> list = {copyOperation(), absOperation(), absOfUnsignedOperation(), setOperation(),
                                       setFloatOperation()};
        for (const auto &part : {imageArithmetic(), scalarArithmetic(), logicAndShifts(), geometry()})
            list.insert(list.end(), part.begin(), part.end());
        return list;
    }();
    return all;
}

std::vector<Operation> operationsWith(bool Operation::*flag, bool value)
{
    std::vector<Operation> some;
    for (const Operation &operation : operations())
        if (operation.*flag == value)
            some.push_back(operation);
    return some;
}

bool agree(const Operation &operation, const Channels &source, const Channels &destination)
{
    const auto all = [](const Channels &channels) { return channels.coi != 0 ? 1 : channels.count; };
    const auto withoutAlpha = [&](const Channels &channels) {
        return all(channels) == 4 && channels.alpha != 0 ? 3 : all(channels);
    };
    const bool sameCount = all(source) == all(destination);
    const bool sameWithoutAlpha = withoutAlpha(source) == withoutAlpha(destination);
    switch (operation.channels) {
    case Agreement::All:
        return sameCount;
    case Agreement::WithoutAlpha:
        return sameWithoutAlpha;
    case Agreement::Both:
        return sameCount && sameWithoutAlpha;
    case Agreement::SameAlpha:
        return sameCount && source.alpha == destination.alpha;
    }
    return false;
}

std::vector<Report> reportsOf(const Operation &operation, OrvStatus status, const char *context, bool byWorker)
{
    const Reporter &reporter = byWorker ? operation.worker : operation.reporter;
    std::vector<Report> reports = {{status, reporter.function, context, reporter.unit}};
    if (byWorker && operation.traces)
        reports.push_back({ORV_STATUS_BACKTRACE, operation.reporter.function, "", operation.reporter.unit});
    return reports;
}

std::string nameOf(const testing::TestParamInfo<Operation> &info)
{
    return info.param.name;
}

void PrintTo(const Operation &operation, std::ostream *out)
{
    *out << operation.name;
}

} // namespace front
