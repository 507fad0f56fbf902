// Norms against naive sums, and what they refuse.
#include <cmath>

#include <gtest/gtest.h>

#include "front/call.h"
#include "front/measured.h"
#include "front/memory_watch.h"

namespace front {
namespace {

using Wide = long double;

double valueOf(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer());
}

// The norm of one channel before the root is taken, of the first image, of the second, or of the difference.
Wide channelTotal(const Measured &measured, std::int32_t channel, int norm, bool first, bool second)
{
    Wide total = 0;
    measured.overSelected([&](std::int32_t x, std::int32_t y) {
        double value = first ? valueOf(measured.at(0, x, y, channel)) : 0;
        value -= second ? valueOf(measured.at(1, x, y, channel)) : 0;
        if (measured.first().form.depth == ORV_DEPTH_32F)
            value = static_cast<float>(value);
        const Wide magnitude = std::fabs(value), term = norm == ORV_NORM_L2 ? magnitude * magnitude : magnitude;
        total = norm == ORV_NORM_INF ? (term > total ? term : total) : total + term;
    });
    return total;
}

Wide combined(Wide a, Wide b, int norm)
{
    return norm == ORV_NORM_INF ? (b > a ? b : a) : a + (norm == ORV_NORM_L2 ? b * b : b);
}

Wide expectedOf(const Measured &measured, int type)
{
    const int norm = type & 7;
    const bool two = measured.images.size() == 2, relative = type > 8;
    const bool pixels = !measured.inPlanes() && clipped(measured.first()).coi == 0;
    const auto root = [&](Wide total) { return norm == ORV_NORM_L2 ? std::sqrt(total) : total; };
    if (measured.empty() || measured.unserved())
        return 0;
    Wide all = 0, ofSecond = 0;
    for (std::int32_t channel = 0; channel < measured.channels(); ++channel) {
        const Wide total = channelTotal(measured, channel, norm, true, two);
        const Wide second = relative ? channelTotal(measured, channel, norm, false, true) : 0;
        const bool guarded = norm != ORV_NORM_L1 && second == 0;
        const Wide quotient = guarded ? total : total / second;
        all = combined(all, root(relative && !pixels ? quotient : total), norm);
        ofSecond = combined(ofSecond, root(second), norm);
    }
    return relative && pixels ? root(all) / root(ofSecond) : root(all);
}

// To the last bits of sums of integers, which doubles hold here; floats round on their way.
testing::AssertionResult isNear(double actual, Wide expected)
{
    if (std::isnan(actual) && std::isnan(expected))
        return testing::AssertionSuccess();
    if (static_cast<double>(expected) == actual || std::fabs(actual - expected) <= 1e-13L * std::fabs(expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual << " and not " << static_cast<double>(expected);
}

// Whole numbers of samples near the middle of their range, the same in both images at times, and floats of one size.
void tame(const Measured &measured, Random &random)
{
    const bool same = random.once(4), zero = random.once(6);
    for (std::size_t i = 0; i < measured.images.size(); ++i) {
        const TestImage &image = *measured.images[i];
        for (std::int32_t y = 0; y < image.form.height; ++y)
            for (std::int32_t x = 0; x < image.form.width; ++x)
                for (std::int32_t channel = 0; channel < image.form.channels; ++channel)
                    if (zero && i == 1)
                        measured.images[i]->set(x, y, channel, {image.form.depth, 0});
                    else if (image.form.depth == ORV_DEPTH_32F)
                        measured.images[i]->set(x, y, channel,
                                                realSample(same ? 3 : random.between(-9999, 9999) / 7.0));
    }
}

TEST(Norm, IsThatOfANaiveSum)
{
    Random random(101);
    int many = 0;
    for (int round = 0; round < 2500; ++round) {
        const std::int32_t depth =
            random.oneOf(std::initializer_list<std::int32_t>{ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F});
        const bool two = random.once(2);
        const int type = two ? random.oneOf(std::initializer_list<int>{1, 2, 4, 9, 10, 12})
                             : random.oneOf(std::initializer_list<int>{1, 2, 4});
        const Measured measured = drawMeasured(depth, two ? 2 : 1, random);
        tame(measured, random);
        const Snapshot before(Call{measured.images, {}});
        Reports reports;
        const Slot slot(random);
        OrvImage *const second = two ? &measured.images[1]->header : nullptr;
        const double norm = orvNorm(&measured.images[0]->header, second, type);
        ASSERT_TRUE(before.unchanged());
        if (measured.failsEmpty()) {
            const std::vector<Report> expected = {{ORV_STATUS_NO_MEMORY, "orvNorm", "Not enough memory", "orvNorm"}};
            ASSERT_EQ(reports.all(), expected) << measured.first();
            ASSERT_EQ(norm, 0);
            continue;
        }
        ASSERT_TRUE(reports.all().empty()) << measured.first();
        ASSERT_TRUE(isNear(norm, expectedOf(measured, type))) << "type " << type << "\n" << measured.first();
        many += norm > 0;
    }
    EXPECT_GT(many, 1200);
}

// A strip ends anywhere, and all builds add up in one order: the last bit of a sum of floats depends on neither.
TEST(Norm, OfFloatsIsTheSameOnAllRoads)
{
    Random random(102);
    for (const std::int32_t channels : {1, 3, 4})
        for (const int type : {2, 4, 10, 12}) {
            const Form form = {.depth = ORV_DEPTH_32F, .channels = channels, .width = 77, .height = 500};
            Measured plain;
            for (int i = 0; i < 2; ++i)
                plain.images.push_back(std::make_shared<TestImage>(form, random));
            tame(plain, random);
            OrvImage &a = plain.images[0]->header, &b = plain.images[1]->header;
            Reports reports;
            const double expected = orvNorm(&a, &b, type);
            const auto all =
                std::make_shared<TestImage>(Form{.depth = ORV_DEPTH_1U, .width = 77, .height = 500}, random);
            all->fill({ORV_DEPTH_1U, 1});
            for (std::int32_t build = 0; build <= Slot::best(); ++build) {
                const Slot slot(build);
                EXPECT_EQ(orvNorm(&a, &b, type), expected) << build;
                a.maskROI = &all->header;
                EXPECT_EQ(orvNorm(&a, &b, type), expected) << build;
                a.maskROI = nullptr;
            }
        }
}

// Each row has one fault more than the next one. Those that do not end a call let later ones be reported where a
// handler clears the status.
TEST(Norm, ChecksInTheirOrder)
{
    enum Faults : unsigned {
        badA = 1,
        order = 2,
        badB = 4,
        otherDepth = 8,
        type = 16,
        alone = 32,
        channels = 64,
        coi = 128,
        tiled = 256,
        depth = 512
    };
    const struct {
        unsigned fault;
        OrvStatus status;
        const char *context;
        bool ends = false;
    } rows[] = {{badA, ORV_STATUS_BAD_ALIGN, "Incorrect Image", true},
                {order, ORV_STATUS_BAD_ORDER, "DataOrder_A!=DataOrder_B"},
                {badB | otherDepth, ORV_STATUS_BAD_ALIGN, "Incorrect Image", true},
                {otherDepth, ORV_STATUS_BAD_ARGUMENT, "(srcImageA->depth != srcImageB->depth)", true},
                {type, ORV_STATUS_BAD_ARGUMENT, "Unknown normType"},
                {badB, ORV_STATUS_BAD_ALIGN, "Incorrect Image", true},
                {channels, ORV_STATUS_BAD_CHANNELS, ""},
                {coi, ORV_STATUS_BAD_COI, "COI should be defined for second image if COI is defined for the first one"},
                {tiled, ORV_STATUS_NOT_IMPLEMENTED, ""},
                {depth, ORV_STATUS_NOT_IMPLEMENTED, ""}};
    static std::vector<Report> reported;
    static bool clears;
    const auto record = [](OrvStatus status, const char *function, const char *context, const char *unit,
                           std::int32_t) {
        reported.push_back({status, function, context, unit});
        if (clears)
            orvSetErrStatus(ORV_STATUS_OK);
        return status;
    };
    Random random(103);
    TestImage imageA({.channels = 3}, random), imageB({.channels = 3}, random);
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    Reports reports;
    orvRedirectError(record);
    for (std::size_t row = 0; row < std::size(rows); ++row)
        for (const bool clearing : {false, true})
            for (const bool onlyThis : {false, true}) {
                unsigned faults = 0;
                std::vector<Report> expected;
                bool ended = false;
                for (std::size_t later = row; later < std::size(rows) && (later == row || !onlyThis); ++later)
                    // Different depths bring the check of the second header forward.
                    if (later == row || !((rows[row].fault & otherDepth) != 0 ? (rows[later].fault & badB) != 0
                                                                              : (rows[later].fault & otherDepth) != 0))
                        faults |= rows[later].fault;
                for (std::size_t later = row; later < std::size(rows) && !ended; ++later)
                    if ((faults & rows[later].fault) == rows[later].fault) {
                        expected.push_back({rows[later].status, "orvNorm", rows[later].context, "orvNorm"});
                        ended = rows[later].ends || !clearing;
                    }
                OrvImage a = imageA.header, b = imageB.header;
                const auto has = [&](unsigned fault) { return (faults & fault) != 0; };
                OrvROI roi = {1, 0, 0, 8, 8};
                a.align = has(badA) ? 5 : 4;
                b.align = has(badB) ? 5 : 4;
                b.dataOrder = has(order) ? 1 : 0;
                a.depth = b.depth = has(depth) ? ORV_DEPTH_8S : ORV_DEPTH_8U;
                if (has(otherDepth))
                    b.depth = ORV_DEPTH_16S;
                b.nChannels = has(channels) ? 4 : 3;
                b.roi = has(coi) ? &roi : nullptr;
                if (has(tiled)) {
                    b.imageData = nullptr;
                    b.tileInfo = &tile;
                }
                reported.clear();
                clears = clearing;
                orvSetErrStatus(ORV_STATUS_OK);
                EXPECT_EQ(orvNorm(&a, &b, has(type) ? 3 : ORV_NORM_L1), 0);
                EXPECT_EQ(reported, expected) << "row " << row << (clearing ? " clearing" : "");
            }
}

TEST(Norm, EdgeCases)
{
    Random random(104);
    Reports reports;
    TestImage zero({}, random), words({.depth = ORV_DEPTH_16S, .width = 3, .height = 1}, random),
        four({.channels = 4}, random);
    zero.fill({ORV_DEPTH_8U, 0});
    words.fill(integerSample(ORV_DEPTH_16S, -32768));
    EXPECT_EQ(orvNorm(&words.header, nullptr, ORV_NORM_INF), 32768);
    EXPECT_EQ(orvNorm(&words.header, nullptr, ORV_NORM_L2), std::sqrt(3.0) * 32768);
    EXPECT_EQ(orvNorm(&zero.header, &zero.header, ORV_NORM_RELATIVE_L2), 0);
    EXPECT_EQ(orvNorm(&zero.header, &zero.header, ORV_NORM_RELATIVE_INF), 0);
    EXPECT_TRUE(std::isnan(orvNorm(&zero.header, &zero.header, ORV_NORM_RELATIVE_L1)));
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(orvNorm(&zero.header, nullptr, ORV_NORM_RELATIVE_INF), 0);
    four.header.alphaChannel = 2;
    EXPECT_EQ(orvNorm(&four.header, nullptr, ORV_NORM_INF), 0);
    const std::vector<Report> expected = {
        {ORV_STATUS_BAD_ARGUMENT, "orvNorm", "normType is impossible, no second image", "orvNorm"},
        {ORV_STATUS_BAD_ALPHA, "orvNorm", "Incorrect Image", "orvNorm"}};
    EXPECT_EQ(reports.all(), expected);
}

TEST(Norm, ExhaustedMemory)
{
    Random random(105);
    TestImage image({.channels = 3}, random);
    image.setWholeRectangle(2);
    for (const bool masked : {false, true}) {
        if (masked)
            image.setMask(randomMask(8, 8, random));
        Reports reports;
        MemoryWatch watch;
        watch.failAll();
        EXPECT_EQ(orvNorm(&image.header, &image.header, ORV_NORM_L1), 0);
        EXPECT_EQ(orvGetErrStatus(), ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(reports.all().size(), 1u);
    }
}

} // namespace
} // namespace front
