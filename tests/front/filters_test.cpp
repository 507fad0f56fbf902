// Filters by numbers, and what their entries in the list of operations cannot say: silent cases, windows that are no
// windows, windows beyond all memory, and iterations without end.
#include "front/memory_watch.h"
#include "front/operations.h"
#include "front/reports.h"
#include "front/test_image.h"

#include <gtest/gtest.h>

namespace front {
namespace {

using WindowFunction = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t, std::int32_t, std::int32_t,
                                     std::int32_t);

struct Filter {
    const char *name, *unit;
    WindowFunction call;
};

constexpr Filter windowFilters[] = {{"orvMaxFilter", "orvnlf", orvMaxFilter},
                                    {"orvMinFilter", "orvnlf", orvMinFilter},
                                    {"orvMedianFilter", "orvnlf", orvMedianFilter},
                                    {"orvBlur", "orvBlur", orvBlur}};

class Filters : public testing::Test {
protected:
    // Runs a call that must leave the destination as it is.
    template <class Call> void expectNothing(const Call &call, OrvStatus status, const std::vector<Report> &reports)
    {
        const Bytes before = *destination->memory();
        reports_.clear();
        EXPECT_EQ(call(&source->header, &destination->header), status);
        EXPECT_EQ(reports_.all(), reports);
        EXPECT_EQ(*destination->memory(), before);
    }
    void makeImages(const Form &form)
    {
        source = std::make_unique<TestImage>(form, random);
        destination = std::make_unique<TestImage>(form, random);
    }

    Random random{91};
    Reports reports_;
    std::unique_ptr<TestImage> source, destination;
};

TEST_F(Filters, SilentCases)
{
    const auto evenMedian = [](std::int32_t columns, std::int32_t rows) {
        return [=](const OrvImage *from, OrvImage *to) { return orvMedianFilter(from, to, columns, rows, 0, 0); };
    };
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_16S})
        for (const bool masked : {false, true}) {
            makeImages({.depth = depth, .channels = 3});
            if (masked)
                destination->setMask(randomMask(8, 8, random));
            expectNothing(evenMedian(4, 3), ORV_STATUS_OK, {});
            expectNothing(evenMedian(3, 2), ORV_STATUS_OK, {});
            for (const std::int32_t filter : {-1, 11, leastInt, mostInt})
                expectNothing([=](const OrvImage *from, OrvImage *to) { return orvFixedFilter(from, to, filter); },
                              ORV_STATUS_OK, {});
        }
    // The test for tiles comes behind that of an image which is nothing but an alpha channel.
    makeImages({.alpha = 1});
    static OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    source->header.tileInfo = &tile;
    source->header.imageData = nullptr;
    for (const Filter &filter : windowFilters)
        expectNothing([&](const OrvImage *from, OrvImage *to) { return filter.call(from, to, 3, 3, 1, 1); },
                      ORV_STATUS_OK, {});
}

// One pixel makes the call a copy, whose checks apply.
TEST_F(Filters, OnePixelCopies)
{
    for (const Filter &filter : windowFilters) {
        const auto call = [&](const OrvImage *from, OrvImage *to) { return filter.call(from, to, 1, 1, 0, 0); };
        makeImages({.channels = 3});
        source->setRectangle(2, 1, 2, 5, 5);
        destination->setRectangle(3, 0, 1, 8, 4);
        EXPECT_EQ(call(&source->header, &destination->header), ORV_STATUS_OK);
        EXPECT_EQ(destination->get(4, 4, 2).bits, source->get(5, 5, 1).bits) << filter.name;
        destination->header.origin = 1 - source->header.origin;
        expectNothing(call, ORV_STATUS_BAD_ARGUMENT,
                      {{-5, "orvCopy", "srcImage->origin != dstImage->origin", "orvsce"}});
    }
}

TEST_F(Filters, WindowsBeyondAllMemory)
{
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{50001, 50001}, {65537, 65537}, {1 << 30 | 1, 3}, {mostInt, 1}, {1, mostInt}, {mostInt, mostInt}};
    for (const Filter &filter : windowFilters)
        for (const auto &[columns, rows] : sizes)
            for (const std::int32_t anchorX : {0, columns - 1})
                for (const bool together : {false, true}) {
                    makeImages({.channels = 3});
                    MemoryWatch watch;
                    reports_.clear();
                    TestImage same(source->form, source->memory(), source->start());
                    EXPECT_EQ(filter.call(&source->header, together ? &same.header : &destination->header, columns,
                                          rows, anchorX, rows - 1),
                              ORV_STATUS_NO_MEMORY)
                        << filter.name << " " << columns << " x " << rows;
                    EXPECT_EQ(reports_.all(),
                              (std::vector<Report>{{-4, filter.name, "Not enough memory", filter.unit}}));
                    EXPECT_EQ(watch.live(), 0u);
                }
}

// A line longer than the image, from each end, in a constant border and in a repeated one.
TEST_F(Filters, LinesBeyondTheImage)
{
    constexpr std::int32_t length = 30001;
    for (const Filter &filter : windowFilters)
        for (const bool rows : {false, true})
            for (const std::int32_t anchor : {0, length / 2, length - 1}) {
                makeImages({.width = 5, .height = 4});
                orvSetBorderMode(&source->header, ORV_BORDER_CONSTANT, ORV_SIDE_ALL, 77);
                EXPECT_EQ(filter.call(&source->header, &destination->header, rows ? 1 : length, rows ? length : 1,
                                      rows ? 0 : anchor, rows ? anchor : 0),
                          ORV_STATUS_OK);
                for (std::int32_t y = 0; y < 4; ++y)
                    for (std::int32_t x = 0; x < 5; ++x) {
                        const std::int32_t at = rows ? y : x, size = rows ? 4 : 5, first = std::max(at - anchor, 0),
                                           end = std::min(at - anchor + length, size);
                        long long sum = 77LL * (length - (end - first)), least = 77, most = 77;
                        for (std::int32_t i = first; i < end; ++i) {
                            const long long sample = source->get(rows ? x : i, rows ? i : y, 0).integer();
                            sum += sample;
                            least = std::min(least, sample);
                            most = std::max(most, sample);
                        }
                        const long long expected = filter.call == orvMaxFilter   ? most
                                                   : filter.call == orvMinFilter ? least
                                                                                 : 77;
                        const double mean = static_cast<double>(sum) / length;
                        if (filter.call == orvBlur)
                            ASSERT_NEAR(static_cast<double>(destination->get(x, y, 0).integer()), mean, 1);
                        else
                            ASSERT_EQ(destination->get(x, y, 0).integer(), expected) << filter.name;
                    }
            }
}

// What does not change any more is not computed any more: else this test would not end.
TEST_F(Filters, IterationsWithoutEnd)
{
    for (const auto &morphology : {orvDilate, orvErode, orvOpen, orvClose})
        for (const Form &form : {Form{.width = 1, .height = 1}, Form{.width = 7, .height = 3},
                                 Form{.width = 3, .height = 600}, Form{.width = 600, .height = 2}}) {
            makeImages(form);
            const TestImage start(form, std::make_shared<Bytes>(*source->memory()), source->start());
            TestImage expected(form, random);
            const std::int32_t longer = std::max(form.width, form.height);
            EXPECT_EQ(morphology(&start.header, &expected.header, longer), ORV_STATUS_OK);
            EXPECT_EQ(morphology(&source->header, &destination->header, mostInt), ORV_STATUS_OK);
            for (std::int32_t y = 0; y < form.height; ++y)
                for (std::int32_t x = 0; x < form.width; ++x)
                    ASSERT_EQ(destination->get(x, y, 0).bits, expected.get(x, y, 0).bits);
        }
}

// Worked by hand: one row of samples, a window, and what comes of them in the middle.
TEST_F(Filters, NumbersWorkedByHand)
{
    const struct {
        WindowFunction call;
        std::int32_t depth, columns, anchorX;
        std::vector<long long> samples;
        std::int32_t x;
        long long result;
    } rows[] = {{orvBlur, ORV_DEPTH_8U, 2, 0, {1, 2}, 0, 1},
                {orvBlur, ORV_DEPTH_16S, 2, 0, {-1, -2}, 0, -2},
                {orvBlur, ORV_DEPTH_16S, 2, 0, {-32768, -32768}, 0, -32768},
                {orvBlur, ORV_DEPTH_16S, 2, 0, {32767, 32767}, 0, 32767},
                {orvMedianFilter, ORV_DEPTH_8U, 5, 0, {9, 1, 7, 3, 200}, 0, 7},
                {orvMedianFilter, ORV_DEPTH_16S, 3, 2, {-5, 4, -32768, 0}, 2, -5},
                {orvMaxFilter, ORV_DEPTH_16S, 3, 0, {-7, -9, -8, 5}, 0, -7},
                {orvMinFilter, ORV_DEPTH_8U, 2, 1, {8, 3, 9, 4}, 2, 3}};
    for (const auto &[call, depth, columns, anchorX, samples, x, result] : rows) {
        makeImages({.depth = depth, .width = static_cast<std::int32_t>(samples.size()), .height = 1});
        for (std::size_t i = 0; i < samples.size(); ++i)
            source->set(static_cast<std::int32_t>(i), 0, 0, integerSample(depth, samples[i]));
        EXPECT_EQ(call(&source->header, &destination->header, columns, 1, anchorX, 0), ORV_STATUS_OK);
        EXPECT_EQ(destination->get(x, 0, 0).integer(), result);
    }
}

} // namespace
} // namespace front
