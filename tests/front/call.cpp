// The naive model of a call: every sample looked up and worked out by itself.
#include "front/call.h"

#include <algorithm>
#include <cmath>
#include <cstring>
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
        return std::clamp(at, 0, length - 1);
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

// The rectangle of an image, as far as it lies within.
OrvROI rectangleOf(const TestImage &image)
{
    const Form &form = image.form;
    if (image.header.roi == nullptr)
        return {0, 0, 0, form.width, form.height};
    OrvROI roi = *image.header.roi;
    roi.width = std::clamp(form.width - roi.xOffset, 0, roi.width);
    roi.height = std::clamp(form.height - roi.yOffset, 0, roi.height);
    return roi;
}

struct Model {
    const Operation &operation;
    const Call &call;
    const Snapshot &before;
    bool open; // no result is judged

    const TestImage &destination = call.destination();
    const OrvROI to = rectangleOf(destination);
    std::int32_t width = to.width, height = to.height;
    std::vector<Place::Source> masks = {};
    int judgedOneIn = 1;

    OrvStatus status = ORV_STATUS_OK;
    OrvStatus silent = ORV_STATUS_OK;        // returned where nothing is reported
    Bytes expected = before.of(destination); // of the destination's memory
    int written = 0;
    testing::AssertionResult result = testing::AssertionSuccess();

    void shrink(const TestImage &image)
    {
        const OrvROI rectangle = rectangleOf(image);
        width = std::min(width, rectangle.width);
        height = std::min(height, rectangle.height);
    }

    bool selected(std::int32_t x, std::int32_t y) const
    {
        std::uint32_t all = 0xFF;
        for (const Place::Source &mask : masks)
            all &= mask.image->read(*mask.memory, mask.left + x, mask.top + y, 0).bits;
        return all != 0;
    }

    // The channels of the destination that are written.
    int channels() const
    {
        const TestImage &source = *call.images.front();
        const bool colors = operation.channels == Agreement::Colors;
        const int all = to.coi != 0 ? 1 : destination.form.channels;
        const TestImage &alphas = operation.alphaOfSource && (colors || !call.inPlanes()) ? source : destination;
        const int computed = all == 4 && alphas.form.alpha != 0 ? 3 : all;
        return operation.channels == Agreement::Any ? std::min(computed, source.form.channels) : computed;
    }

    // `read` is what the destination's memory holds when the channel is read.
    Place::Source sourceOf(const TestImage &given, std::int32_t channel, const Bytes &read) const
    {
        const bool inPlace =
            operation.movesPixels && call.straight() && given.header.imageData == destination.header.imageData;
        const TestImage &image = inPlace ? destination : given;
        const OrvROI from = rectangleOf(image);
        const Bytes &memory = image.memory() == destination.memory() ? read : before.of(image);
        return {&image, &memory, from.xOffset, from.yOffset,
                from.coi == 0 || operation.window ? channel : from.coi - 1};
    }

    // A result that is right becomes what is expected.
    void judge(const Place &place, std::int32_t channel)
    {
        const std::int32_t column = to.xOffset + place.x, row = to.yOffset + place.y;
        const Sample actual = destination.get(column, row, channel);
        ++written;
        const bool skipped = open || (place.x + 5 * place.y) % judgedOneIn != 0;
        const Results results = skipped ? Results{0, 0, true} : call.arguments.model(place);
        const bool bothNan = operation.anyNan && actual.isNan() && results.exact.isNan();
        if (bothNan || results.include(actual)) {
            destination.write(expected, column, row, channel, actual);
        } else if (result) {
            result = testing::AssertionFailure();
            result.operator<<(std::setprecision(12))
                << "column " << column << ", row " << row << ", channel " << channel << ": " << valueOf(actual);
            if (results.exact.depth != 0)
                result << " is not " << valueOf(results.exact);
            else
                result << " is not within " << results.lowest << " and " << results.highest;
        }
    }

    void judgeChannel(std::int32_t channel, const Bytes &read)
    {
        Place place = {destination.form.depth, width, height, {}};
        for (std::size_t i = 0; i + 1 < call.images.size(); ++i)
            place.sources[i] = sourceOf(*call.images[i], channel, read);
        for (place.y = 0; place.y < height; ++place.y)
            for (place.x = 0; place.x < width; ++place.x)
                if (selected(place.x, place.y))
                    judge(place, to.coi != 0 ? to.coi - 1 : channel);
    }

    // An image whose only channel is its alpha channel.
    bool onlyAlpha() const
    {
        return std::any_of(call.images.begin(), call.images.end(), [](const auto &image) {
            return image->form.channels == 1 && image->form.alpha != 0 && rectangleOf(*image).coi == 0;
        });
    }

    void run()
    {
        if (operation.leavesAlphaAlone && onlyAlpha()) {
            silent = call.arguments.resultOfAlphaAlone;
            return;
        }
        for (const auto &image : call.images) {
            shrink(*image);
            if (image->mask() != nullptr) {
                shrink(*image->mask());
                const OrvROI of = rectangleOf(*image->mask());
                masks.push_back({image->mask(), &before.of(*image->mask()), of.xOffset, of.yOffset, 0});
            }
        }
        // Empty scratch cannot be allocated: no bytes of a mask, or no rows of a channel.
        const bool empty = width == 0 || height == 0;
        if ((call.masked() && empty) || (!operation.window && !call.straight() && height == 0))
            status = ORV_STATUS_NO_MEMORY;
        else if (empty)
            silent = operation.resultOfNothing;
        if (empty || !call.served())
            return;
        judgedOneIn = operation.window && width * height > 10000 ? 37 : 1;
        // In planes one is finished before the next is read; pixels are all read before any is written.
        const bool together =
            operation.window ? call.wholePixels() || operation.channels == Agreement::Colors : !call.inPlanes();
        Bytes read = expected;
        for (std::int32_t channel = 0; channel < channels(); ++channel) {
            judgeChannel(channel, read);
            if (!together)
                read = expected;
        }
    }
};

} // namespace

Sample borderedSample(const TestImage &image, const Bytes &memory, std::int32_t x, std::int32_t y, std::int32_t channel)
{
    const std::int32_t width = image.form.width, height = image.form.height, depth = image.form.depth;
    const bool beside = x < 0 || x >= width, beyond = y < 0 || y >= height;
    if (!beside && !beyond)
        return image.read(memory, x, y, channel);
    const Side side = beyond ? (y < 0 ? top : bottom) : (x < 0 ? left : right);
    const std::int32_t mode = image.header.BorderMode[side] & 3, constant = image.header.BorderConst[side];
    if (mode == ORV_BORDER_CONSTANT)
        return depth == ORV_DEPTH_32F ? realSample(constant) : integerSample(depth, constant);
    return image.read(memory, folded(mode, x, width), folded(mode, y, height), channel);
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
    if (exact.depth != 0)
        return sample.bits == exact.bits;
    const double value = valueOf(sample);
    return any || (value >= lowest && value <= highest);
}

OrvStatus Call::run() const
{
    std::vector<OrvImage *> headers;
    for (const auto &image : images)
        headers.push_back(&image->header);
    return arguments.call(headers.data());
}

bool Call::masked() const
{
    return std::any_of(images.begin(), images.end(), [](const auto &image) { return image->mask() != nullptr; });
}

bool Call::inPlanes() const
{
    return destination().form.order == ORV_DATA_ORDER_PLANE ||
           std::all_of(images.begin(), images.end(), [](const auto &image) { return image->form.channels == 1; });
}

bool Call::wholePixels() const
{
    return std::all_of(images.begin(), images.end(), [&](const auto &image) {
        return image->form.order == ORV_DATA_ORDER_PIXEL && image->form.channels == images.front()->form.channels;
    });
}

bool Call::served() const
{
    const auto known = [](std::int32_t count) { return count == 1 || count == 3 || count == 4; };
    return std::all_of(images.begin(), images.end(), [&](const auto &image) {
        return image->form.order == ORV_DATA_ORDER_PLANE || known(image->form.channels);
    });
}

bool Call::straight() const
{
    const bool oneChannel = rectangleOf(destination()).coi != 0 || destination().form.channels == 1;
    return !masked() && (inPlanes() || !oneChannel);
}

std::ostream &operator<<(std::ostream &out, const Call &call)
{
    for (std::size_t i = 0; i < call.images.size(); ++i)
        out << (i + 1 < call.images.size() ? "source " : "destination ") << *call.images[i] << "\n";
    return out << call.arguments.text;
}

Snapshot::Snapshot(const Call &call)
{
    for (const auto &image : call.images)
        for (const TestImage *one = image.get(); one != nullptr; one = one->mask())
            keep(*one);
}

void Snapshot::keep(const TestImage &image)
{
    keepRecord(&image.header, sizeof image.header);
    if (image.header.roi != nullptr)
        keepRecord(image.header.roi, sizeof *image.header.roi);
    if (std::none_of(memories_.begin(), memories_.end(),
                     [&](const auto &kept) { return kept.first == image.memory(); }))
        memories_.emplace_back(image.memory(), *image.memory());
}

void Snapshot::keepRecord(const void *record, std::size_t bytes)
{
    const std::uint8_t *first = static_cast<const std::uint8_t *>(record);
    records_.emplace_back(record, Bytes(first, first + bytes));
}

const Bytes &Snapshot::of(const TestImage &image) const
{
    return std::find_if(memories_.begin(), memories_.end(),
                        [&](const auto &memory) { return memory.first == image.memory(); })
        ->second;
}

testing::AssertionResult Snapshot::unchanged(const TestImage *excepted) const
{
    for (const auto &[memory, bytes] : memories_)
        if ((excepted == nullptr || memory != excepted->memory()) && *memory != bytes)
            return testing::AssertionFailure() << "memory changed that the call does not write";
    for (const auto &[record, kept] : records_)
        if (std::memcmp(record, kept.data(), kept.size()) != 0)
            return testing::AssertionFailure() << "a header or a rectangle changed";
    return testing::AssertionSuccess();
}

testing::AssertionResult runs(const Operation &operation, const Call &call, Reports &reports, int &written,
                              bool rastersOverlap)
{
    constexpr OrvStatus ofAnotherCall = 4711; // which only a failure replaces
    const Snapshot before(call);
    reports.clear();
    orvSetErrStatus(ofAnotherCall);
    const OrvStatus status = call.run(), stored = orvGetErrStatus();

    Model model{operation, call, before, rastersOverlap && !operation.window && call.straight()};
    model.run();
    written = model.written;
    testing::AssertionResult result = model.result;
    const Bytes &actual = *call.destination().memory();
    if (const auto wrong = std::mismatch(actual.begin(), actual.end(), model.expected.begin());
        result && wrong.first != actual.end())
        result = testing::AssertionFailure()
                 << "byte " << wrong.first - actual.begin() << " of the destination's "
                 << "memory, which nobody may write, is " << int(*wrong.first) << " and not " << int(*wrong.second);
    if (result)
        result = before.unchanged(&call.destination());
    const bool fails = model.status != ORV_STATUS_OK;
    const bool isStored = fails && operation.withoutMemory != nullptr;
    const OrvStatus storedThen = isStored ? model.status : ofAnotherCall;
    const OrvStatus returned = fails ? model.status : model.silent;
    const OrvStatus expected = operation.returnsStatus && !operation.traces ? returned : storedThen;
    if (result && (status != expected || stored != storedThen))
        result = testing::AssertionFailure() << "status " << status << " and not " << expected << ", stored " << stored
                                             << " and not " << storedThen;
    const std::vector<Report> told =
        fails ? reportsOf(operation, model.status, operation.withoutMemory, true) : std::vector<Report>();
    if (result && reports.all() != told)
        result = testing::AssertionFailure()
                 << "reports " << testing::PrintToString(reports.all()) << " and not " << testing::PrintToString(told);
    if (!result)
        result << "\n" << call;
    return result;
}

std::int32_t Slot::best()
{
    const Slot kept(krnDispatchIndex);
    return orvUseBuild(ORV_BUILD_BEST);
}

} // namespace front
