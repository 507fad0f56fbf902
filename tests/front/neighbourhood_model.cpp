// The naive model of the operations that work on a neighbourhood.
#include "front/neighbourhood_model.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>

namespace front {
namespace {

enum Side { top, bottom, left, right };

// The column or row of the image that stands at a place, on and on in both directions.
std::int32_t folded(std::int32_t mode, std::int32_t at, std::int32_t length)
{
    const auto remainder = [](std::int32_t number, std::int32_t divisor) {
        return ((number % divisor) + divisor) % divisor;
    };
    switch (mode) {
    case ORV_BORDER_REPLICATE:
        return at < 0 ? 0 : at >= length ? length - 1 : at;
    case ORV_BORDER_REFLECT: {
        const std::int32_t there = remainder(at, 2 * length);
        return there < length ? there : 2 * length - 1 - there;
    }
    default:
        return remainder(at, length);
    }
}

double valueOf(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer());
}

struct Model {
    const NeighbourhoodOperation &operation;
    const NeighbourhoodArguments &arguments;
    const PointwiseCall &call;
    const Snapshot &before;
    int judgedOneIn;
    const TestImage &source = *call.images.front();
    const TestImage &destination = call.destination();
    const CommonArea area = CommonArea(call, before);

    Bytes expected = before.of(destination); // of the destination's memory
    int written = 0;
    testing::AssertionResult result = testing::AssertionSuccess();

    // How many channels are written.
    int channels() const
    {
        const int all = coiOf(destination) != 0 ? 1 : destination.form.channels;
        const TestImage &alphas = operation.alphaOfSource && !call.inPlanes() ? source : destination;
        return all == 4 && alphas.form.alpha != 0 ? 3 : all;
    }

    // A result that is right becomes what is expected.
    void judge(int x, int y, int channel, const Surroundings &surroundings)
    {
        const std::int32_t column = leftOf(destination) + x, row = topOf(destination) + y;
        const Sample actual = destination.get(column, row, channel);
        ++written;
        const bool skipped = (x + 5 * y) % judgedOneIn != 0;
        const Results results = skipped ? Results{0, 0, true} : arguments.results(surroundings);
        if (results.include(actual)) {
            destination.write(expected, column, row, channel, actual);
        } else if (result) {
            result = testing::AssertionFailure();
            result.operator<<(std::setprecision(12))
                << "column " << column << ", row " << row << ", channel " << channel << ": " << valueOf(actual)
                << " is not within " << results.lowest << " and " << results.highest;
        }
    }

    void run()
    {
        if (area.empty() || !call.served())
            return;
        // All is read as it was: the whole source, or the plane, is copied before anything of it is written.
        const BorderedSource bordered(source, before.of(source));
        for (int channel = 0; channel < channels(); ++channel) {
            const int from =
                coiOf(source) != 0 ? 0 : channel; // one channel is the first, whatever the source's coi says
            const int to = coiOf(destination) != 0 ? coiOf(destination) - 1 : channel;
            for (int y = 0; y < area.height; ++y)
                for (int x = 0; x < area.width; ++x)
                    if (area.selected(x, y))
                        judge(x, y, to, {bordered, leftOf(source) + x, topOf(source) + y, from});
        }
    }
};

} // namespace

Sample BorderedSource::at(std::int32_t x, std::int32_t y, std::int32_t channel) const
{
    const std::int32_t width = image_.form.width, height = image_.form.height, depth = image_.form.depth;
    const bool beside = x < 0 || x >= width, beyond = y < 0 || y >= height;
    if (!beside && !beyond)
        return image_.read(memory_, x, y, channel);
    const Side side = beyond ? (y < 0 ? top : bottom) : (x < 0 ? left : right);
    const std::int32_t mode = image_.header.BorderMode[side] & 3, constant = image_.header.BorderConst[side];
    if (mode == ORV_BORDER_CONSTANT)
        return depth == ORV_DEPTH_32F ? realSample(constant) : integerSample(depth, constant);
    return image_.read(memory_, folded(mode, x, width), folded(mode, y, height), channel);
}

Results Results::of(const FloatRange &range, std::int32_t depth)
{
    if (range.isAnything())
        return {0, 0, true};
    if (depth == ORV_DEPTH_32F)
        return {range.low, range.high};
    const auto whole = [depth](double value) {
        const double least = static_cast<double>(lowestOf(depth)), most = static_cast<double>(highestOf(depth));
        return std::clamp(std::nearbyint(value), least, most);
    };
    return {whole(range.low), whole(range.high)};
}

bool Results::include(const Sample &sample) const
{
    const double value = valueOf(sample);
    return any || (value >= lowest && value <= highest);
}

const std::vector<NeighbourhoodOperation> &neighbourhoodOperations()
{
    static const std::vector<NeighbourhoodOperation> all = convolutions();
    return all;
}

std::vector<Operation> refusalsOfNeighbourhoods()
{
    return refusalsOfConvolutions();
}

testing::AssertionResult runs(const NeighbourhoodOperation &operation, const NeighbourhoodArguments &arguments,
                              const PointwiseCall &images, Reports &reports, int &written, int judgedOneIn)
{
    const Snapshot before(images);
    reports.clear();
    const OrvStatus status = arguments.call(&images.images.front()->header, &images.images.back()->header);

    Model model{operation, arguments, images, before, judgedOneIn};
    model.run();
    written = model.written;
    testing::AssertionResult result = model.result;
    if (result && *images.destination().memory() != model.expected)
        result = testing::AssertionFailure() << "memory of the destination changed that the call does not write";
    if (result)
        result = before.unchanged(&images.destination());
    // The bytes of a mask of no pixels cannot be had.
    const bool starved = images.masked() && model.area.empty();
    std::vector<Report> expected;
    if (starved)
        expected.push_back(
            {ORV_STATUS_NO_MEMORY, operation.reporter.function, operation.withoutMemory, operation.reporter.unit});
    if (result && status != (starved ? ORV_STATUS_NO_MEMORY : ORV_STATUS_OK))
        result = testing::AssertionFailure() << "status " << status;
    if (result && reports.all() != expected)
        result = testing::AssertionFailure() << "reports " << testing::PrintToString(reports.all());
    if (!result) {
        result << "\n" << arguments.text << "\n" << images << "\nborders";
        for (int side = 0; side < 4; ++side)
            result << " " << images.images.front()->header.BorderMode[side] << " ("
                   << images.images.front()->header.BorderConst[side] << ")";
    }
    return result;
}

std::string nameOfNeighbourhood(const testing::TestParamInfo<NeighbourhoodOperation> &info)
{
    return info.param.name;
}

void PrintTo(const NeighbourhoodOperation &operation, std::ostream *out)
{
    *out << operation.name;
}

} // namespace front
