// The naive model of the operations that work pixel by pixel.
#include "front/pointwise_call.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "kernel.h"

namespace front {
namespace {

// Pixels of a rectangle, counted one by one over the image.
int columns(const TestImage &image)
{
    const OrvROI *roi = image.header.roi;
    int count = 0;
    for (long long x = 0; x < image.form.width; ++x)
        count += roi == nullptr || (x >= roi->xOffset && x - roi->xOffset < roi->width);
    return count;
}

int rows(const TestImage &image)
{
    const OrvROI *roi = image.header.roi;
    int count = 0;
    for (long long y = 0; y < image.form.height; ++y)
        count += roi == nullptr || (y >= roi->yOffset && y - roi->yOffset < roi->height);
    return count;
}

struct Model {
    const Operation &operation;
    const PointwiseCall &call;
    const Snapshot &before;
    const bool planes = call.inPlanes();
    const CommonArea area = CommonArea(call, before);

    OrvStatus status = ORV_STATUS_OK;
    Bytes expected = before.of(call.destination()); // of the destination's memory
    std::vector<bool> written = std::vector<bool>(expected.size());

    // The channels of the destination that are written.
    int channels() const
    {
        const TestImage &image = call.destination();
        const int all = coiOf(image) != 0 ? 1 : image.form.channels;
        return all == 4 && image.form.alpha != 0 ? 3 : all;
    }

    bool inPlace(const TestImage &image) const
    {
        return operation.origin != nullptr && call.straight() &&
               image.header.imageData == call.destination().header.imageData;
    }

    Sample source(const TestImage &image, const Bytes &bytes, int x, int y, int channel) const
    {
        return image.read(bytes, leftOf(image) + x, topOf(image) + y, coiOf(image) != 0 ? coiOf(image) - 1 : channel);
    }

    void writeChannel(int channel, const Bytes &destinationMemory)
    {
        const TestImage &destination = call.destination();
        const int to = coiOf(destination) != 0 ? coiOf(destination) - 1 : channel;
        for (int y = 0; y < area.height; ++y)
            for (int x = 0; x < area.width; ++x) {
                if (!area.selected(x, y))
                    continue;
                const Position from = operation.origin == nullptr
                                          ? Position{x, y}
                                          : operation.origin({x, y}, area.width, area.height, call.constant);
                Sample samples[3] = {};
                for (std::size_t i = 0; i + 1 < call.images.size(); ++i) {
                    const TestImage &image = inPlace(*call.images[i]) ? destination : *call.images[i];
                    const bool shared = image.memory() == destination.memory();
                    samples[i] = source(image, shared ? destinationMemory : before.of(image), from.x, from.y, channel);
                }
                const std::int32_t column = leftOf(destination) + x, row = topOf(destination) + y;
                Sample result = operation.expected(destination.form.depth, samples, call.constant);
                if (const Sample actual = destination.get(column, row, to);
                    operation.anyNan && result.isNan() && actual.isNan())
                    result = actual;
                destination.write(expected, column, row, to, result);
                for (int byte = 0; byte < bytesOf(destination.form.depth); ++byte)
                    written[destination.place(column, row, to) + static_cast<std::size_t>(byte)] = true;
            }
    }

    void run()
    {
        // Scratch of no bytes cannot be had: no mask bytes, or no rows of a channel.
        if ((call.masked() && area.empty()) || (!call.straight() && area.height == 0))
            status = ORV_STATUS_NO_MEMORY;
        if (area.empty() || !call.served())
            return;
        // Plane after plane is finished; pixels are all read before any is written.
        Bytes read = expected;
        for (int channel = 0; channel < channels(); ++channel) {
            writeChannel(channel, read);
            if (planes)
                read = expected;
        }
    }
};

testing::AssertionResult sameBytes(const Model &model, bool onlyUnwritten)
{
    const Bytes &actual = *model.call.destination().memory();
    if (actual == model.expected)
        return testing::AssertionSuccess();
    for (std::size_t at = 0; at < actual.size(); ++at)
        if (actual[at] != model.expected[at] && !(onlyUnwritten && model.written[at]))
            return testing::AssertionFailure()
                   << "byte " << at << " of the destination's memory, "
                   << (model.written[at] ? "which is written, " : "which nobody may write, ") << "is "
                   << int(actual[at]) << " and not " << int(model.expected[at]);
    return testing::AssertionSuccess();
}

} // namespace

OrvStatus PointwiseCall::run(const Operation &operation) const
{
    std::vector<OrvImage *> headers;
    for (const auto &image : images)
        headers.push_back(&image->header);
    return operation.call(headers.data(), constant);
}

bool PointwiseCall::masked() const
{
    return std::any_of(images.begin(), images.end(), [](const auto &image) { return image->mask() != nullptr; });
}

bool PointwiseCall::inPlanes() const
{
    return destination().form.order == ORV_DATA_ORDER_PLANE ||
           std::all_of(images.begin(), images.end(), [](const auto &image) { return image->form.channels == 1; });
}

bool PointwiseCall::served() const
{
    const auto known = [](std::int32_t count) { return count == 1 || count == 3 || count == 4; };
    return inPlanes() || std::all_of(images.begin(), images.end(), [&](const auto &image) {
               return image->form.order == ORV_DATA_ORDER_PLANE || known(image->form.channels);
           });
}

bool PointwiseCall::straight() const
{
    const bool oneChannel = coiOf(destination()) != 0 || destination().form.channels == 1;
    return !masked() && (inPlanes() || !oneChannel);
}

std::ostream &operator<<(std::ostream &out, const PointwiseCall &call)
{
    for (std::size_t i = 0; i < call.images.size(); ++i)
        out << (i + 1 < call.images.size() ? "source " : "destination ") << *call.images[i] << "\n";
    return out << "constants " << call.constant.integer << ", " << call.constant.real << ", " << call.constant.flip;
}

Snapshot::Snapshot(const PointwiseCall &call)
{
    for (const auto &image : call.images) {
        keep(*image);
        for (const TestImage *mask = image->mask(); mask != nullptr; mask = mask->mask())
            keep(*mask);
    }
}

void Snapshot::keep(const TestImage &image)
{
    keepRecord(&image.header, sizeof image.header);
    if (image.header.roi != nullptr)
        keepRecord(image.header.roi, sizeof *image.header.roi);
    for (const auto &[memory, bytes] : memories_)
        if (memory == image.memory())
            return;
    memories_.emplace_back(image.memory(), *image.memory());
}

void Snapshot::keepRecord(const void *record, std::size_t bytes)
{
    const std::uint8_t *first = static_cast<const std::uint8_t *>(record);
    records_.emplace_back(record, Bytes(first, first + bytes));
}

const Bytes &Snapshot::of(const TestImage &image) const
{
    const auto found = std::find_if(memories_.begin(), memories_.end(),
                                    [&](const auto &memory) { return memory.first == image.memory(); });
    return found->second;
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

std::int32_t leftOf(const TestImage &image)
{
    return image.header.roi == nullptr ? 0 : image.header.roi->xOffset;
}

std::int32_t topOf(const TestImage &image)
{
    return image.header.roi == nullptr ? 0 : image.header.roi->yOffset;
}

std::int32_t coiOf(const TestImage &image)
{
    return image.header.roi == nullptr ? 0 : image.header.roi->coi;
}

CommonArea::CommonArea(const PointwiseCall &call, const Snapshot &before)
    : width(columns(call.destination())), height(rows(call.destination())), before_(before)
{
    for (const auto &image : call.images) {
        shrink(*image);
        if (image->mask() != nullptr) {
            masks_.push_back(image->mask());
            shrink(*image->mask());
        }
    }
}

void CommonArea::shrink(const TestImage &image)
{
    width = std::min(width, columns(image));
    height = std::min(height, rows(image));
}

bool CommonArea::selected(int x, int y) const
{
    std::uint32_t all = 0xFF;
    for (const TestImage *mask : masks_)
        all &= mask->read(before_.of(*mask), leftOf(*mask) + x, topOf(*mask) + y, 0).bits;
    return all != 0;
}

testing::AssertionResult runs(const Operation &operation, const PointwiseCall &call, Reports &reports, int &written,
                              bool rastersCross)
{
    const Snapshot before(call);
    reports.clear();
    const OrvStatus status = call.run(operation);

    Model model{operation, call, before};
    model.run();
    written = static_cast<int>(std::count(model.written.begin(), model.written.end(), true));
    testing::AssertionResult result = sameBytes(model, rastersCross && call.straight());
    if (result)
        result = before.unchanged(&call.destination());
    if (result && status != model.status)
        result = testing::AssertionFailure() << "status " << status << " and not " << model.status;
    std::vector<Report> expected;
    if (model.status != ORV_STATUS_OK)
        expected = reportsOf(operation, model.status, "Not enough memory", true);
    if (result && reports.all() != expected)
        result = testing::AssertionFailure() << "reports " << testing::PrintToString(reports.all()) << " and not "
                                             << testing::PrintToString(expected);
    if (!result)
        result << "\n" << call;
    return result;
}

Slot::Slot(std::int32_t index) : previous_(krnDispatchIndex)
{
    krnDispatchIndex = index;
}

Slot::~Slot()
{
    krnDispatchIndex = previous_;
}

std::int32_t Slot::best()
{
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_cpu_supports("sse4.1") ? 5 : 0;
#else
    return 5;
#endif
}

} // namespace front
