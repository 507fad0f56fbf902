// What frames promise to loops, and what they make of a loop that refuses: with loops of this test's own, and with the
// operations that walk rows in whole samples.
#include <algorithm>
#include <cstring>

#include "front/call.h"
#include "measure.h"
#include "planes.h"
#include "pointwise.h"
#include "window.h"

namespace front {
namespace {

using orv::Work;

// Operations that walk rows in whole samples.
class WholeSamples : public testing::TestWithParam<Operation> {
protected:
    // What a call with this step in all headers makes of the destination's memory. The memory is as before then.
    Bytes resultOf(const Call &call, std::int32_t widthStep)
    {
        const Snapshot before(call);
        for (const auto &image : call.images)
            image->header.widthStep = widthStep;
        EXPECT_EQ(call.run(), ORV_STATUS_OK) << call;
        Bytes &memory = *call.destination().memory(), result = memory;
        std::ranges::copy(before.of(call.destination()), memory.begin()); // where the header points
        return result;
    }
    Call callOf(const Form &form, std::int32_t coi)
    {
        Call call;
        for (int i = 0; i <= operation_.sources; ++i) {
            call.images.push_back(std::make_shared<TestImage>(form, random_));
            call.images.back()->setWholeRectangle(coi);
        }
        call.arguments = operation_.draw(form.depth, random_);
        return call;
    }
    void setMask(const Call &call)
    {
        const Form form = {.depth = ORV_DEPTH_1U, .width = call.destination().form.width, .height = 700};
        call.images.back()->setMask(std::make_shared<TestImage>(form, random_));
        call.images.back()->mask()->fill({ORV_DEPTH_1U, 0xFF});
    }

    const Operation &operation_ = GetParam();
    Random random_{71};
    Reports reports_;
};

// The step is rounded down whichever way a call takes: straight, strip by strip, with a mask, for one channel.
TEST_P(WholeSamples, StepsAreRoundedDownInAllForms)
{
    int changed = 0;
    for (const std::int32_t depth : operation_.wholeSamples)
        for (const std::int32_t channels : {1, 3, 4})
            for (const std::int32_t coi : {0, channels - 1})
                for (const std::int32_t height : {3, 700})
                    for (std::int32_t extra = 1; extra < 2 * bytesOf(depth); ++extra) {
                        const Form form = {
                            .depth = depth, .channels = channels, .width = 7, .height = height, .extraStep = extra};
                        const Call call = callOf(form, coi);
                        const std::int32_t odd = form.widthStep(), whole = odd / bytesOf(depth) * bytesOf(depth);
                        const Bytes expected = resultOf(call, whole);
                        changed += expected != *call.destination().memory();
                        EXPECT_EQ(resultOf(call, odd), expected) << call;
                        setMask(call);
                        EXPECT_EQ(resultOf(call, odd), expected) << call;
                    }
    EXPECT_GT(changed, 0);
}

// A step that rounds down to nothing is refused in silence. Nothing is delivered, least of all scratch as it was found.
TEST_P(WholeSamples, StepsBelowOneSampleWriteNothing)
{
    for (const std::int32_t depth : operation_.wholeSamples)
        for (const std::int32_t coi : {0, 2})
            for (const bool masked : {false, true}) {
                const Call call = callOf({.depth = depth, .channels = 3, .width = 5, .height = 4}, coi);
                if (masked)
                    setMask(call);
                EXPECT_EQ(resultOf(call, bytesOf(depth) - 1), *call.destination().memory()) << call;
            }
}

INSTANTIATE_TEST_SUITE_P(Some, WholeSamples, testing::ValuesIn(operationsWhere([](const Operation &one) {
                             return !one.wholeSamples.empty();
                         })),
                         nameOf);

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
        const std::size_t runs = expected.size();
        const Form form = {.channels = channels, .order = order, .width = 50, .height = 300};
        TestImage source(form, random), destination(form, random);
        source.setWholeRectangle(coi);
        destination.setWholeRectangle(coi);
        std::vector<std::int32_t> told;
        const auto scratchBytes = [](const Work &work) { return std::int64_t{200} * work.size.height; };
        const auto throughScratch = [&](const Work &work) -> orv::KrnStatus {
            if (told.size() < runs)
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
                {orv::Padding::OwnCopy, false, true},
                {orv::Padding::OwnWholeCopy, true, true}};
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
        EXPECT_EQ(copies, copy ? runs : 0);
        EXPECT_EQ(*source.memory(), before);
    }
}

// No exported operation takes a rectangle with negative offsets. One that stays within the margins starts there, one
// beyond them counts as 0, each of the two by itself.
TEST(Frames, NegativeOffsetsStartInTheBorder)
{
    const struct {
        std::int32_t xOffset, yOffset, firstColumn, firstRow;
    } rows[] = {{-3, 2, -3, 2}, {-4, 2, 0, 2}, {2, -1, 2, -1}, {1, -2, 1, 0}, {-1, -1, -1, -1}, {-100, -100, 0, 0}};
    // Takes the pixel as many columns to the left and rows above as the margins are wide.
    const auto takeCorner = [](const orv::Work &work) -> orv::KrnStatus {
        const orv::ConstRaster corner = work.sources->fromRow(-work.margins.top).fromByte(-work.margins.left);
        for (std::int32_t y = 0; y < work.size.height; ++y)
            std::memcpy(work.destination.fromRow(y).data, corner.fromRow(y).data,
                        static_cast<unsigned>(work.size.width));
        return orv::KRN_OK;
    };
    Random random(17);
    for (const auto &[xOffset, yOffset, firstColumn, firstRow] : rows)
        for (const std::int32_t mode :
             {ORV_BORDER_CONSTANT, ORV_BORDER_REPLICATE, ORV_BORDER_REFLECT, ORV_BORDER_WRAP}) {
            TestImage source({.width = 14, .height = 11}, random), destination({.width = 14, .height = 11}, random);
            orvSetBorderMode(&source.header, mode, ORV_SIDE_ALL, 99);
            source.setRectangle(0, xOffset, yOffset, 12, 9);
            const orv::WindowCall call = {.source = &source.header,
                                          .destination = &destination.header,
                                          .margins = {3, 0, 1, 0},
                                          .startLeft = 3,
                                          .startAbove = 1,
                                          .alphaOf = &source.header};
            ASSERT_EQ(orv::runWindow(call, {.run = takeCorner}), ORV_STATUS_OK);
            const Bytes before = *source.memory();
            const std::int32_t width = std::min(12, 12 + xOffset), height = std::min(9, 9 + yOffset);
            for (std::int32_t y = 0; y < height; ++y)
                for (std::int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(destination.get(x, y, 0).bits,
                              borderedSample(source, before, firstColumn + x - 3, firstRow + y - 1, 0).bits)
                        << "offsets " << xOffset << ", " << yOffset << ", mode " << mode << " at " << x << ", " << y;
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
        const bool two = random.once(2), masked = random.once(2), zeroed = random.once(2);
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
                    if (!zeroed && work.mask.data != nullptr && work.mask.fromRow(y).data[x / samples] == 0)
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
                                   .masks = {a.header.maskROI, two ? b.header.maskROI : nullptr},
                                   .unselected = zeroed ? orv::Unselected::Zeroed : orv::Unselected::AsTheyAre},
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
