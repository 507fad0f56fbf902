// Resizing against a model that works out each pixel by itself, and what it refuses.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "front/call.h"
#include "front/measured.h"
#include "front/memory_watch.h"

namespace front {
namespace {

struct Factor {
    std::int32_t to, from;
};

// One axis: the source's rectangle in its image, and the room for results.
struct Axis {
    std::int32_t length, offset, whole, room;
    Factor factor;

    double scale() const { return static_cast<double>(factor.to) / factor.from; }
    std::int32_t count() const
    {
        const double exact = length * scale();
        const double most = std::min<double>(std::trunc(exact + 1e-7), room);
        return most >= 1 ? static_cast<std::int32_t>(most) : exact < 0.5 ? 0 : 1;
    }
    // Steps are added up.
    double position(std::int32_t k, bool nearest) const
    {
        // Through memory, since the x87 goes on with more bits than a double has.
        const volatile double ratio = scale(), scaled = length * ratio, less = scaled - 1;
        const volatile double step = nearest ? 1 / ratio : scaled > 1 ? (length - 1) / less : 0;
        volatile double at = nearest ? step / 2 : 0;
        for (std::int32_t i = 0; i < k; ++i)
            at = at + step;
        return at;
    }
};

// Results between these two are right.
struct Bounds {
    double low, high;
};

using Line = std::function<double(std::int32_t at)>; // samples along an axis, counted from the rectangle

// 14 bits of weight, rounded after each direction.
double linear(const Axis &axis, std::int32_t k, bool isFloat, const Line &sample)
{
    const double at = axis.position(k, false);
    std::int32_t i = static_cast<std::int32_t>(at + 1e-7);
    double t = at - i;
    if (axis.offset + i >= axis.whole - 1) {
        i = axis.whole - 1 - axis.offset - 1;
        t = 1;
    }
    if (isFloat) {
        // Through memory, since the x87 goes on with more bits than a float has too.
        const volatile float weight = static_cast<float>(t), rest = 1 - weight;
        const volatile float first = static_cast<float>(sample(i)) * rest;
        const volatile float second = static_cast<float>(sample(i + 1)) * weight, sum = first + second;
        return sum;
    }
    const double weight = std::trunc(t * 16384 + 1e-7);
    return std::floor((sample(i) * (16384 - weight) + sample(i + 1) * weight + 8192) / 16384);
}

// Lagrange's form of the polynomial through the four pixels nearest to the position, in the image.
double cubic(const Axis &axis, std::int32_t k, const Line &sample)
{
    const double at = axis.position(k, false);
    const std::int32_t i = static_cast<std::int32_t>(at + 1e-7) + axis.offset;
    const std::int32_t first = std::clamp(i - 1, 0, axis.whole - 4) - axis.offset;
    const double x = i == axis.whole - 1 ? axis.whole - 1 - axis.offset : at;
    double sum = 0;
    for (std::int32_t node = first; node < first + 4; ++node) {
        double term = sample(node);
        for (std::int32_t other = first; other < first + 4; ++other)
            term *= other == node ? 1 : (x - other) / (node - other);
        sum += term;
    }
    return sum;
}

// Pixels count by the part of them that lies in the box.
double mean(const Axis &axis, std::int32_t k, const Line &sample)
{
    const long double width = static_cast<long double>(axis.factor.from) / axis.factor.to, start = k * width;
    long double sum = 0, all = 0;
    for (std::int32_t i = 0; i < axis.length; ++i) {
        const long double part = std::min(start + width, i + 1.0L) - std::max<long double>(start, i);
        sum += part > 1e-9L ? part * sample(i) : 0;
        all += part > 1e-9L ? part : 0;
    }
    return static_cast<double>(sum / all);
}

Bounds expectedOf(std::int32_t method, std::int32_t depth, const Axis &x, const Axis &y, std::int32_t column,
                  std::int32_t row, const std::function<double(std::int32_t, std::int32_t)> &sample)
{
    const bool isFloat = depth == ORV_DEPTH_32F;
    const double top = depth == ORV_DEPTH_8U ? 255 : 65535;
    const auto nearest = [](const Axis &axis, std::int32_t k) {
        const std::int32_t i = static_cast<std::int32_t>(axis.position(k, true) + 1e-7);
        return std::min(i, axis.whole - 1 - axis.offset);
    };
    const auto along = [&](auto of) {
        return of(y, row, [&](std::int32_t j) { return of(x, column, [&](std::int32_t i) { return sample(i, j); }); });
    };
    if (method == ORV_INTERPOLATE_NEAREST) {
        const double value = sample(nearest(x, column), nearest(y, row));
        return {value, value};
    }
    if (method == ORV_INTERPOLATE_LINEAR) {
        const double value =
            along([&](auto &axis, auto k, const Line &line) { return linear(axis, k, isFloat, line); });
        return {value, value};
    }
    // Of floats, sums of 16 products; of integers, what these come to before they are rounded.
    const bool isCubic = method == ORV_INTERPOLATE_CUBIC;
    const double value = isCubic ? along([](auto &axis, auto k, const Line &line) { return cubic(axis, k, line); })
                                 : along([](auto &axis, auto k, const Line &line) { return mean(axis, k, line); });
    const double largest = isFloat ? 1500 : top, slack = isCubic ? 3e-6 * largest : isFloat ? 1e-4 : 1e-9;
    if (isFloat)
        return {value - slack, value + slack};
    return {std::clamp(std::floor(value + 0.5 - slack), 0.0, top),
            std::clamp(std::floor(value + 0.5 + slack), 0.0, top)};
}

double valueOf(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer());
}

Factor drawFactor(Random &random)
{
    constexpr Factor known[] = {{1, 1}, {2, 1}, {1, 2}, {3, 2}, {2, 3}, {4, 1}, {2, 5}, {1, 7}, {1000, 1001}, {1, 100}};
    return random.once(3) ? Factor{random.between(1, 40), random.between(1, 40)} : random.oneOf(known);
}

std::int32_t methodFor(std::int32_t method, const Form &form)
{
    const std::int32_t side = std::min(form.width, form.height);
    if (method == ORV_INTERPOLATE_CUBIC && side < 4)
        method = ORV_INTERPOLATE_LINEAR;
    return method == ORV_INTERPOLATE_LINEAR && side < 2 ? ORV_INTERPOLATE_NEAREST : method;
}

// All methods, depths, layouts, channels, rectangles and masks, in all builds. What no result is written to stays.
TEST(Resize, ComputesTheModel)
{
    Random random(111);
    int judged = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::int32_t depth =
            random.oneOf(std::initializer_list<std::int32_t>{ORV_DEPTH_8U, ORV_DEPTH_16U, ORV_DEPTH_32F});
        Measured images = drawMeasured(depth, 2, random);
        const TestImage &source = images.first(), &destination = *images.images[1];
        if (source.form.height > 100)
            continue;
        if (depth == ORV_DEPTH_32F)
            for (std::int32_t y = 0; y < source.form.height; ++y)
                for (std::int32_t x = 0; x < source.form.width; ++x)
                    for (std::int32_t channel = 0; channel < source.form.channels; ++channel)
                        images.images[0]->set(x, y, channel, realSample(random.between(-4000, 4000) / 4.0));
        const OrvROI from = clipped(source), to = clipped(destination);
        std::int32_t width = to.width, height = to.height;
        for (const auto &image : images.images)
            if (image->mask() != nullptr) {
                width = std::min(width, clipped(*image->mask()).width);
                height = std::min(height, clipped(*image->mask()).height);
            }
        const Factor xFactor = drawFactor(random), yFactor = random.once(2) ? xFactor : drawFactor(random);
        const Axis x = {from.width, from.xOffset, source.form.width, width, xFactor};
        const Axis y = {from.height, from.yOffset, source.form.height, height, yFactor};
        const std::int32_t asked = random.between(0, 3), method = methodFor(asked, source.form);
        const bool served = images.inPlanes() || source.form.channels == 3 || source.form.channels == 4;
        const bool nothing = from.width < 1 || from.height < 1 || width < 1 || height < 1 || !served ||
                             (asked == ORV_INTERPOLATE_SUPER && (x.scale() > 1 || y.scale() > 1));
        const std::int32_t columns = nothing ? 0 : x.count(), rows = nothing ? 0 : y.count();

        Bytes expected = *destination.memory();
        Reports reports;
        {
            const Slot slot(random);
            orvResize(&images.images[0]->header, &images.images[1]->header, xFactor.to, xFactor.from, yFactor.to,
                      yFactor.from, asked);
        }
        const bool fails = images.masked() && (width < 1 || height < 1);
        ASSERT_EQ(orvGetErrStatus(), fails ? ORV_STATUS_NO_MEMORY : ORV_STATUS_OK) << source << destination;
        const std::int32_t channels =
            destination.form.channels == 4 && destination.form.alpha != 0 && to.coi == 0 ? 3 : images.channels();
        for (std::int32_t channel = 0; channel < channels && columns > 0; ++channel)
            for (std::int32_t row = 0; row < rows; ++row)
                for (std::int32_t column = 0; column < columns; ++column) {
                    if (!images.selected(column, row))
                        continue;
                    const auto sample = [&](std::int32_t i, std::int32_t j) {
                        return valueOf(
                            source.get(from.xOffset + i, from.yOffset + j, from.coi == 0 ? channel : from.coi - 1));
                    };
                    const Bounds bounds = expectedOf(method, depth, x, y, column, row, sample);
                    const std::int32_t into = to.coi == 0 ? channel : to.coi - 1;
                    const Sample actual = destination.get(to.xOffset + column, to.yOffset + row, into);
                    ASSERT_TRUE(valueOf(actual) >= bounds.low && valueOf(actual) <= bounds.high)
                        << "method " << method << ", " << xFactor.to << ":" << xFactor.from << ", " << yFactor.to << ":"
                        << yFactor.from << ", column " << column << ", row " << row << ", channel " << channel << ": "
                        << valueOf(actual) << ", not " << bounds.low << " to " << bounds.high << "\n"
                        << source << "\n"
                        << destination;
                    destination.write(expected, to.xOffset + column, to.yOffset + row, into, actual);
                    ++judged;
                }
        ASSERT_EQ(*destination.memory(), expected) << source << destination;
    }
    EXPECT_GT(judged, 50000);
}

// Numbers beyond all images are safe: no result lies outside the source, and no table is longer than the destination.
TEST(Resize, HugeFactors)
{
    Random random(112);
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_16U, ORV_DEPTH_32F})
        for (const std::int32_t method : {0, 1, 2, 3})
            for (const Factor &factor :
                 {Factor{mostInt, 1}, {1, mostInt}, {mostInt, mostInt}, {mostInt - 1, mostInt}}) {
                TestImage source({.depth = depth, .width = 9, .height = 7}, random);
                TestImage destination({.depth = depth, .width = 20, .height = 20}, random);
                const Bytes before = *destination.memory();
                Reports reports;
                orvResize(&source.header, &destination.header, factor.to, factor.from, factor.to, factor.from, method);
                EXPECT_TRUE(reports.all().empty());
                const bool writes = factor.to > 1 && (method != 3 || factor.to <= factor.from);
                EXPECT_EQ(*destination.memory() != before, writes) << method << ", " << factor.to << ":" << factor.from;
            }
}

TEST(Resize, ChecksInTheirOrder)
{
    enum Faults : unsigned {
        align = 1,
        method = 2,
        depths = 4,
        origin = 8,
        order = 16,
        channels = 32,
        signedDepth = 64,
        x = 128,
        y = 256,
        tiled = 512,
        bits = 1024
    };
    const struct {
        unsigned fault;
        OrvStatus status;
        const char *context;
    } rows[] = {
        {align, ORV_STATUS_BAD_ALIGN, "Incorrect Image"},
        {method, ORV_STATUS_BAD_ARGUMENT,
         "(interpolate != 0) && (interpolate != 1) && (interpolate != 2) && (interpolate != 3)"},
        {depths, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth != dstImage->depth"},
        {origin, ORV_STATUS_BAD_ARGUMENT, "srcImage->origin != dstImage->origin"},
        {order, ORV_STATUS_BAD_ARGUMENT, "srcImage->dataOrder != dstImage->dataOrder"},
        {channels, ORV_STATUS_BAD_CHANNELS, ""},
        {signedDepth, ORV_STATUS_BAD_ARGUMENT,
         "(srcImage->depth != 1) && (srcImage->depth != 8) && (srcImage->depth != 16) && (srcImage->depth != 32)"},
        {x, ORV_STATUS_BAD_ARGUMENT, "(xDst<=0) || (xSrc<=0)"},
        {y, ORV_STATUS_BAD_ARGUMENT, "(yDst<=0) || (ySrc<=0)"},
        {tiled, ORV_STATUS_NOT_IMPLEMENTED, ""},
        {bits, ORV_STATUS_NOT_IMPLEMENTED, ""}};
    Random random(113);
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    TestImage source({.channels = 3}, random), destination({.channels = 3}, random);
    const Bytes before = *destination.memory();
    for (std::size_t row = 0; row < std::size(rows); ++row)
        for (const bool alone : {false, true}) {
            unsigned faults = 0;
            for (std::size_t later = row; later < std::size(rows) && (later == row || !alone); ++later)
                faults |= rows[later].fault;
            OrvImage from = source.header, into = destination.header;
            const auto has = [&](unsigned fault) { return (faults & fault) != 0; };
            into.align = has(align) ? 5 : 4;
            from.depth = into.depth = has(signedDepth) ? ORV_DEPTH_8S : ORV_DEPTH_8U;
            if (has(bits) && !has(signedDepth) && !has(channels)) {
                from.depth = into.depth = ORV_DEPTH_1U;
                from.nChannels = into.nChannels = 1;
            }
            if (has(depths))
                from.depth = ORV_DEPTH_32F;
            into.origin = has(origin);
            into.dataOrder = has(order);
            if (has(channels))
                into.nChannels = 4;
            if (has(tiled)) {
                from.imageData = nullptr;
                from.tileInfo = &tile;
            }
            Reports reports;
            orvResize(&from, &into, has(x) ? 0 : 1, 1, 1, has(y) ? -1 : 1, has(method) ? 4 : 0);
            const std::vector<Report> expected = {{rows[row].status, "orvResize", rows[row].context, "orvresiz"}};
            EXPECT_EQ(reports.all(), expected);
            EXPECT_EQ(*destination.memory(), before);
        }
}

TEST(Resize, ExhaustedMemory)
{
    Random random(114);
    int provoked = 0;
    for (const bool masked : {false, true})
        for (const std::int32_t coi : {0, 2})
            for (const std::int32_t method : {0, 1, 2, 3})
                for (int failing = 0;; ++failing) {
                    TestImage source({.channels = 3, .width = 12, .height = 12}, random);
                    TestImage destination({.channels = 3, .width = 12, .height = 12}, random);
                    source.setWholeRectangle(coi);
                    destination.setWholeRectangle(coi);
                    if (masked)
                        destination.setMask(randomMask(12, 12, random));
                    const Bytes before = *destination.memory();
                    Reports reports;
                    MemoryWatch watch;
                    watch.failAt(failing);
                    orvResize(&source.header, &destination.header, 1, 1, 1, 2, method);
                    EXPECT_EQ(watch.live(), 0u);
                    if (watch.allocations() <= failing) {
                        EXPECT_TRUE(reports.all().empty());
                        break;
                    }
                    ++provoked;
                    const std::vector<Report> expected = {
                        {ORV_STATUS_NO_MEMORY, "orvResize", "Not enough memory", "orvresiz"}};
                    EXPECT_EQ(reports.all(), expected);
                    EXPECT_EQ(*destination.memory(), before);
                }
    EXPECT_GT(provoked, 15);
}

} // namespace
} // namespace front
