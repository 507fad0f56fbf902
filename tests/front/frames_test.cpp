// What frames promise to loops, and what they make of a loop that refuses: with loops of this test's own, and with the
// operations that walk rows in whole samples.
#include <cstring>
#include <functional>

#include <gtest/gtest.h>

#include "front/reports.h"
#include "front/test_image.h"
#include "measure.h"
#include "planes.h"
#include "pointwise.h"
#include "window.h"

namespace front {
namespace {

using orv::Work;

struct WholeSampleCall {
    const char *name;
    std::int32_t depth;
    int sources;
    std::function<OrvStatus(OrvImage *const *images)> run;
};

const std::vector<WholeSampleCall> &wholeSampleCalls()
{
    static const std::vector<WholeSampleCall> calls = {
        {"AddS16U", ORV_DEPTH_16U, 1, [](OrvImage *const *i) { return orvAddS(i[0], i[1], 1234); }},
        {"SubtractS16U", ORV_DEPTH_16U, 1, [](OrvImage *const *i) { return orvSubtractS(i[0], i[1], 77, 0); }},
        {"SubtractS16UFlipped", ORV_DEPTH_16U, 1,
         [](OrvImage *const *i) { return orvSubtractS(i[0], i[1], 65000, 1); }},
        {"AddS32S", ORV_DEPTH_32S, 1, [](OrvImage *const *i) { return orvAddS(i[0], i[1], 1234); }},
        {"SubtractS32S", ORV_DEPTH_32S, 1, [](OrvImage *const *i) { return orvSubtractS(i[0], i[1], 77, 0); }},
        {"SubtractS32SFlipped", ORV_DEPTH_32S, 1, [](OrvImage *const *i) { return orvSubtractS(i[0], i[1], 77, 1); }},
        {"MultiplyS32S", ORV_DEPTH_32S, 1, [](OrvImage *const *i) { return orvMultiplyS(i[0], i[1], 3); }},
        {"Add32S", ORV_DEPTH_32S, 2, [](OrvImage *const *i) { return orvAdd(i[0], i[1], i[2]); }},
        {"Subtract32S", ORV_DEPTH_32S, 2, [](OrvImage *const *i) { return orvSubtract(i[0], i[1], i[2]); }},
        {"Multiply32S", ORV_DEPTH_32S, 2, [](OrvImage *const *i) { return orvMultiply(i[0], i[1], i[2]); }}};
    return calls;
}

// Images of one call, and what becomes of the destination's memory with another step in all headers.
struct Images {
    std::vector<std::shared_ptr<TestImage>> images;
    std::vector<Bytes> before;

    Images(const WholeSampleCall &call, const Form &form, std::int32_t coi, std::uint8_t mask, Random &random)
    {
        for (int i = 0; i <= call.sources; ++i) {
            images.push_back(std::make_shared<TestImage>(form, random));
            images.back()->setWholeRectangle(coi);
            before.push_back(*images.back()->memory());
        }
        if (mask == 0)
            return;
        const auto all = std::make_shared<TestImage>(
            Form{.depth = ORV_DEPTH_1U, .width = form.width, .height = form.height}, random);
        all->fill({ORV_DEPTH_1U, mask});
        images.back()->setMask(all);
    }

    Bytes run(const WholeSampleCall &call, std::int32_t widthStep)
    {
        std::vector<OrvImage *> headers;
        for (std::size_t i = 0; i < images.size(); ++i) {
            *images[i]->memory() = before[i];
            images[i]->header.widthStep = widthStep;
            headers.push_back(&images[i]->header);
        }
        EXPECT_EQ(call.run(headers.data()), ORV_STATUS_OK) << call.name;
        return *images.back()->memory();
    }
};

// The step counts rounded down to whole samples, whichever way a call takes: straight, strip by strip, with a mask, for
// one channel.
TEST(WholeSampleSteps, AreTheSameInAllFormsOfACall)
{
    Random random(71);
    Reports reports;
    for (const WholeSampleCall &call : wholeSampleCalls())
        for (const std::int32_t channels : {1, 3, 4})
            for (const std::int32_t coi : {0, channels - 1})
                for (const std::int32_t height : {3, 700}) {
                    const std::int32_t bytes = bytesOf(call.depth);
                    const Form form = {.depth = call.depth,
                                       .channels = channels,
                                       .width = 7,
                                       .height = height,
                                       .extraStep = random.between(1, 2 * bytes)};
                    Images plain(call, form, coi, 0, random);
                    const std::int32_t odd = form.widthStep(), whole = odd / bytes * bytes;
                    const Bytes expected = plain.run(call, whole);
                    EXPECT_TRUE(expected != plain.before.back()) << call.name << *plain.images.back();
                    EXPECT_EQ(plain.run(call, odd), expected) << call.name;
                    Images masked = plain;
                    const auto mask = std::make_shared<TestImage>(
                        Form{.depth = ORV_DEPTH_1U, .width = form.width, .height = form.height}, random);
                    mask->fill({ORV_DEPTH_1U, 0xFF});
                    masked.images.back()->setMask(mask);
                    EXPECT_EQ(masked.run(call, odd), expected) << call.name << " under a mask";
                    masked.images.back()->setMask(nullptr);
                }
}

// A step that rounds down to nothing is refused in silence. Nothing is delivered, least of all scratch as it was found.
TEST(WholeSampleSteps, BelowOneSampleWriteNothing)
{
    Random random(72);
    Reports reports;
    for (const WholeSampleCall &call : wholeSampleCalls())
        for (const std::int32_t coi : {0, 2})
            for (const std::uint8_t mask : {0, 0xFF}) {
                const Form form = {.depth = call.depth, .channels = 3, .width = 5, .height = 4};
                Images images(call, form, coi, mask, random);
                EXPECT_EQ(images.run(call, bytesOf(call.depth) - 1), images.before.back()) << call.name;
            }
}

// Whatever a kernel refuses inside a loop, the frame delivers nothing; only exhausted memory is told.
TEST(Frames, DeliverNothingOfALoopThatRefuses)
{
    Random random(73);
    for (const auto &[refusal, expected] :
         {std::pair{orv::KRN_BAD_STEP, ORV_STATUS_OK}, std::pair{orv::KRN_NO_MEMORY, ORV_STATUS_NO_MEMORY}})
        for (const bool masked : {false, true})
            for (int frame = 0; frame < 3; ++frame) {
                const Form form = {.channels = 3, .width = 9, .height = 7};
                TestImage source(form, random), destination(form, random);
                source.setWholeRectangle(2);
                destination.setWholeRectangle(masked ? 0 : 2);
                if (masked) {
                    source.setWholeRectangle(0);
                    destination.setMask(randomMask(9, 7, random));
                }
                const Bytes before = *destination.memory();
                int runs = 0;
                const auto run = [&, status = refusal](const Work &work) -> orv::KrnStatus {
                    std::memset(work.destination.data, 0xA5, 1); // in scratch
                    ++runs;
                    return status;
                };
                const orv::Loop loop = {.run = run};
                const orv::CallImages images({&source.header}, &destination.header);
                const OrvStatus status = frame == 0   ? orv::runPointwise(images, loop)
                                         : frame == 1 ? orv::runPlanes({.images = images, .size = {9, 7}}, loop)
                                                      : orv::runWindow({.source = &source.header,
                                                                        .destination = &destination.header,
                                                                        .margins = {1, 1, 1, 1},
                                                                        .startLeft = 1,
                                                                        .startAbove = 1,
                                                                        .alphaOf = &source.header},
                                                                       loop);
                EXPECT_EQ(status, expected) << frame;
                EXPECT_EQ(runs, 1) << frame;
                EXPECT_EQ(*destination.memory(), before) << frame;
            }
}

// A loop is told its channels, and has the scratch that it asks for in every strip.
TEST(Frames, TellChannelsAndGiveScratch)
{
    const struct {
        std::int32_t channels, order, coi;
        std::vector<std::int32_t> expected;
    } rows[] = {{1, ORV_DATA_ORDER_PIXEL, 0, {0}},
                {3, ORV_DATA_ORDER_PIXEL, 0, {0}},
                {3, ORV_DATA_ORDER_PIXEL, 2, {1}},
                {3, ORV_DATA_ORDER_PLANE, 0, {0, 1, 2}},
                {4, ORV_DATA_ORDER_PLANE, 3, {2}}};
    Random random(74);
    for (const auto &[channels, order, coi, expected] : rows) {
        const Form form = {.channels = channels, .order = order, .width = 50, .height = 300};
        TestImage source(form, random), destination(form, random);
        source.setWholeRectangle(coi);
        destination.setWholeRectangle(coi);
        std::vector<std::int32_t> told;
        const auto scratchBytes = [](const Work &work) { return std::int64_t{200} * work.size.height; };
        const auto throughScratch = [&](const Work &work) -> orv::KrnStatus {
            if (told.size() < expected.size())
                told.push_back(work.channel);
            const std::size_t bytes = static_cast<std::size_t>(work.size.width * orv::samplesPerPixel(work.layout));
            for (std::int32_t y = 0; y < work.size.height; ++y)
                std::memcpy(work.scratch + 200 * y, work.sources->fromRow(y).data, bytes);
            for (std::int32_t y = 0; y < work.size.height; ++y)
                std::memcpy(work.destination.fromRow(y).data, work.scratch + 200 * y, bytes);
            return orv::KRN_OK;
        };
        ASSERT_EQ(orv::runPointwise({{&source.header}, &destination.header},
                                    {.run = throughScratch, .scratchBytes = scratchBytes}),
                  ORV_STATUS_OK);
        EXPECT_EQ(told, expected);
        for (std::int32_t channel = 0; channel < channels; ++channel)
            for (std::int32_t y = 0; y < 300 && (coi == 0 || channel == coi - 1); ++y)
                for (std::int32_t x = 0; x < 50; ++x)
                    ASSERT_EQ(destination.get(x, y, channel).bits, source.get(x, y, channel).bits);
    }
}

// A window that may not be cut has all rows at once; one that owns its copy may write it, and the image stays.
TEST(Frames, KeepWindowsWhole)
{
    Random random(75);
    const Form form = {.width = 300, .height = 2000};
    TestImage source(form, random), destination(form, random);
    const Bytes before = *source.memory();
    const struct {
        orv::Padding padding;
        bool whole, copy;
    } rows[] = {{orv::Padding::Strips, false, false},
                {orv::Padding::WholePlanes, true, false},
                {orv::Padding::OwnCopy, true, true}};
    for (const auto &[padding, whole, copy] : rows) {
        int runs = 0, copies = 0;
        const auto run = [&](const Work &work) -> orv::KrnStatus {
            ++runs;
            copies += work.copy.data != nullptr && work.copy.data == work.sources->data;
            for (std::int32_t y = -1; y <= work.size.height && work.copy.data != nullptr; ++y)
                std::memset(work.copy.fromRow(y).data - 1, 7, static_cast<std::size_t>(work.size.width) + 2);
            return orv::KRN_OK;
        };
        ASSERT_EQ(orv::runWindow({.source = &source.header,
                                  .destination = &destination.header,
                                  .margins = orv::Window{3, 3, 1, 1}.margins(),
                                  .startLeft = 1,
                                  .startAbove = 1,
                                  .alphaOf = &source.header,
                                  .padding = padding},
                                 {.run = run}),
                  ORV_STATUS_OK);
        EXPECT_EQ(runs == 1, whole);
        EXPECT_EQ(copies == 1, copy);
        EXPECT_EQ(*source.memory(), before);
    }
}

// Whole planes of one size go into whole planes of another, in every form.
TEST(Frames, TakePlanesOfDifferentSizes)
{
    Random random(76);
    for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
        for (const std::int32_t coi : {0, 2})
            for (const bool masked : {false, true}) {
                TestImage source({.channels = 3, .order = order, .width = 40, .height = 90}, random);
                TestImage destination({.channels = 3, .order = order, .width = 20, .height = 30}, random);
                source.setWholeRectangle(coi);
                destination.setWholeRectangle(coi);
                if (masked) {
                    destination.setMask(randomMask(20, 30, random));
                    destination.mask()->fill({ORV_DEPTH_1U, 1});
                }
                const auto everySecond = [](const Work &work) -> orv::KrnStatus {
                    const std::int32_t samples = orv::samplesPerPixel(work.layout);
                    for (std::int32_t y = 0; y < work.size.height; ++y)
                        for (std::int32_t x = 0; x < work.size.width * samples; ++x)
                            work.destination.fromRow(y).data[x] =
                                work.sources->fromRow(3 * y).data[x / samples * 2 * samples + x % samples];
                    return orv::KRN_OK;
                };
                const orv::Size sourceSize = {40, 90};
                const orv::CallImages images({&source.header}, &destination.header);
                ASSERT_EQ(orv::runPlanes({.images = images, .size = {20, 30}, .sourceSizes = &sourceSize},
                                         {.run = everySecond}),
                          ORV_STATUS_OK);
                for (std::int32_t channel = coi == 0 ? 0 : coi - 1; channel < (coi == 0 ? 3 : coi); ++channel)
                    for (std::int32_t y = 0; y < 30; ++y)
                        for (std::int32_t x = 0; x < 20; ++x)
                            ASSERT_EQ(destination.get(x, y, channel).bits, source.get(2 * x, 3 * y, channel).bits);
            }
}

// What is read: planes, pixels, one channel gathered, and only what the masks of both images select.
TEST(Frames, MeasureWhatIsSelected)
{
    Random random(77);
    for (int round = 0; round < 200; ++round) {
        const std::int32_t channels = random.oneOf(std::initializer_list<std::int32_t>{1, 3, 4});
        const std::int32_t coi = random.once(2) ? 0 : random.between(1, channels);
        const Form form = {.channels = channels,
                           .alpha = channels == 4 && random.once(2) ? 4 : 0,
                           .order = random.between(0, 1),
                           .width = random.between(1, 60),
                           .height = random.between(1, 500),
                           .extraStep = random.between(0, 3)};
        TestImage a(form, random), b(form, random);
        const bool two = random.once(2), masked = random.once(2);
        a.setWholeRectangle(coi);
        b.setWholeRectangle(coi);
        if (masked)
            a.setMask(randomMask(form.width, form.height, random));
        if (masked && random.once(2))
            b.setMask(randomMask(form.width, form.height, random));

        std::uint64_t sum = 0, expected = 0;
        const auto add = [&](const Work &work) -> orv::KrnStatus {
            const std::int32_t samples = orv::samplesPerPixel(work.layout);
            for (std::int32_t y = 0; y < work.size.height; ++y)
                for (std::int32_t x = 0; x < work.size.width * samples; ++x) {
                    if (work.mask.data != nullptr && work.mask.fromRow(y).data[x / samples] == 0)
                        continue;
                    if (work.layout == orv::Layout::AC4 && x % 4 == 3)
                        continue;
                    const std::uint64_t weight = static_cast<std::uint64_t>(work.channel + x % samples + 1);
                    sum += weight * work.sources[0].fromRow(y).data[x];
                    sum += two ? 1000 * weight * work.sources[1].fromRow(y).data[x] : 0;
                }
            return orv::KRN_OK;
        };
        ASSERT_EQ(orv::runMeasure({.image = &a.header,
                                   .other = two ? &b.header : nullptr,
                                   .size = {form.width, form.height},
                                   .masked = masked},
                                  {.run = add}),
                  ORV_STATUS_OK);
        for (std::int32_t channel = 0; channel < channels; ++channel) {
            if (coi != 0 ? channel != coi - 1 : channel == 3 && form.alpha != 0)
                continue;
            for (std::int32_t y = 0; y < form.height; ++y)
                for (std::int32_t x = 0; x < form.width; ++x) {
                    std::uint32_t selected = 0xFF;
                    if (a.mask() != nullptr)
                        selected &= a.mask()->get(x, y, 0).bits;
                    if (two && b.mask() != nullptr)
                        selected &= b.mask()->get(x, y, 0).bits;
                    const std::uint64_t weight = static_cast<std::uint64_t>(channel + 1);
                    const std::uint64_t sample =
                        a.get(x, y, channel).bits + (two ? 1000 * b.get(x, y, channel).bits : 0);
                    expected += selected != 0 ? weight * sample : 0;
                }
        }
        ASSERT_EQ(sum, expected) << a;
    }
}

} // namespace
} // namespace front
