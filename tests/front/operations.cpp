// The list of operations, and what its entries have in common.
#include "front/operation_entries.h"

#include <ostream>
#include <sstream>

namespace front {

decltype(Operation::draw) pixelByPixel(PointCall call, Formula formula, std::vector<Constant> constants)
{
    return [=](std::int32_t, Random &random) -> Arguments {
        const Constant constant = random.oneOf(constants);
        std::ostringstream text;
        text << "constants " << constant.integer << ", " << constant.real << ", " << constant.flip;
        return {text.str(), [=](Images images) { return call.run(images, constant); },
                [=](const Place &place) {
                    Sample samples[2] = {};
                    for (int i = 0; i < 2 && place.sources[i].image != nullptr; ++i)
                        samples[i] = place[i];
                    return Results::only(formula(place.depth, samples, constant));
                }};
    };
}

Refusals wrongDepths(int image, std::initializer_list<std::int32_t> values, const char *context)
{
    Refusals refusals;
    for (const std::int32_t value : values)
        refusals.push_back(depth(image, value, ORV_STATUS_BAD_ARGUMENT, context));
    return refusals;
}

Refusals joined(std::initializer_list<Refusals> lists)
{
    Refusals all;
    for (const Refusals &list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

Refusals headersOf(int images)
{
    Refusals refusals;
    for (int image = 0; image < images; ++image)
        refusals.insert(refusals.end(), {null(image), header(image)});
    return refusals;
}

Refusals comparisonsOfTwo()
{
    return {differs(Fault::OtherDepth, 1, "(srcImage->depth != dstImage->depth)"),
            differs(Fault::Order, 1, "(srcImage->dataOrder != dstImage->dataOrder)"), otherChannels(1), tiled(0),
            tiled(1)};
}

Refusals comparisonsOfThree()
{
    return {differs(Fault::OtherDepth, 0, "(srcImageA->depth != dstImage->depth)"),
            differs(Fault::OtherDepth, 1, "(srcImageB->depth != dstImage->depth)"),
            differs(Fault::Order, 0, "(srcImageA->dataOrder != dstImage->dataOrder)"),
            differs(Fault::Order, 1, "(srcImageB->dataOrder != dstImage->dataOrder)"),
            otherChannels(0),
            otherChannels(1),
            tiled(0),
            tiled(1),
            tiled(2)};
}

Refusals comparisonsWithAlpha()
{
    return {differs(Fault::OtherDepth, 1, "(src->depth != dst->depth)"),
            differs(Fault::Order, 1, "(src->dataOrder != dst->dataOrder)"),
            differs(Fault::Alpha, 1, "(src->alphaChannel != dst->alphaChannel)"),
            otherChannels(1),
            tiled(0),
            tiled(1)};
}

const std::vector<Operation> &operations()
{
    static const std::vector<Operation> all = [] {
        std::vector<Operation> list;
        for (const auto &part :
             {copies(), imageArithmetic(), scalarArithmetic(), logicAndShifts(), convolutions(), filters(), levels()})
            list.insert(list.end(), part.begin(), part.end());
        return list;
    }();
    return all;
}

std::vector<Operation> operationsWhere(bool (*holds)(const Operation &operation))
{
    std::vector<Operation> some;
    for (const Operation &operation : operations())
        if (holds(operation))
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
    case Agreement::SameImages:
        return sameCount && source.count == destination.count && source.alpha == destination.alpha;
    case Agreement::Colors:
        return source.coi == 0 && destination.coi == 0 && source.count == destination.count &&
               ((source.count == 3 && source.alpha == 0) || (source.count == 4 && source.alpha == 4));
    case Agreement::Any:
        return true;
    }
    return false;
}

std::vector<Report> reportsOf(const Operation &operation, OrvStatus status, const char *context, bool byWorker)
{
    if (context == nullptr)
        return {};
    const Reporter &reporter = byWorker ? operation.worker : operation.reporter;
    std::vector<Report> reports = {{status, reporter.function, context, reporter.unit}};
    if (byWorker && operation.traces)
        reports.push_back({ORV_STATUS_BACKTRACE, operation.reporter.function, "", operation.reporter.unit});
    return reports;
}

void PrintTo(const Operation &operation, std::ostream *out)
{
    *out << operation.name();
}

} // namespace front
