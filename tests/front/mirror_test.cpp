// What is particular to the mirror: its axes, one raster under two headers, and orders that differ.
#include "front/pointwise_call.h"

namespace front {
namespace {

const Operation &mirror()
{
    static const Operation found = operationsWith(&Operation::noMaskOnItself, true).front();
    return found;
}

std::vector<std::uint32_t> bitsOf(const TestImage &image)
{
    std::vector<std::uint32_t> bits;
    for (int y = 0; y < image.form.height; ++y)
        for (int x = 0; x < image.form.width; ++x)
            bits.push_back(image.get(x, y, 0).bits);
    return bits;
}

// By numbers, for the table's formula to be right about which axis is which, also in place with a middle row.
TEST(Mirror, ByNumbers)
{
    const struct {
        std::int32_t axis, width, height;
        std::vector<std::uint32_t> expected;
    } rows[] = {{0, 3, 3, {7, 8, 9, 4, 5, 6, 1, 2, 3}},
                {1, 3, 3, {3, 2, 1, 6, 5, 4, 9, 8, 7}},
                {-1, 3, 3, {9, 8, 7, 6, 5, 4, 3, 2, 1}},
                {0, 2, 2, {3, 4, 1, 2}},
                {1, 4, 1, {4, 3, 2, 1}},
                {-1, 1, 4, {4, 3, 2, 1}},
                {-1, 4, 3, {12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}},
                {0, 1, 1, {1}},
                {1, 1, 1, {1}},
                {-1, 1, 1, {1}}};
    Random random(31);
    for (const std::int32_t depth : {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F})
        for (const auto &[axis, width, height, expected] : rows) {
            const Form form = {.depth = depth, .width = width, .height = height};
            TestImage source(form, random), destination(form, random);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    source.set(x, y, 0, {depth, static_cast<std::uint32_t>(1 + y * width + x)});
            orvMirror(&source.header, &destination.header, axis);
            EXPECT_EQ(bitsOf(destination), expected) << axis;
            orvMirror(&source.header, &source.header, axis);
            EXPECT_EQ(bitsOf(source), expected) << axis << " in place";
        }
}

// Headers that share imageData flip the destination's rectangle, whatever the rectangle and the channel of the source.
TEST(Mirror, TwoHeadersOverOneRaster)
{
    Random random(32);
    Reports reports;
    for (int round = 0; round < 300; ++round) {
        const Channels channels = random.oneOf(
            std::initializer_list<Channels>{{1, 0, 0}, {3, 0, 0}, {4, 0, 0}, {4, 4, 0}, {3, 0, 2}, {4, 4, 3}});
        const Form form = {.depth = random.oneOf(mirror().depths),
                           .channels = channels.count,
                           .alpha = channels.alpha,
                           .order = random.between(0, 1),
                           .width = random.between(1, 40),
                           .height = random.between(1, 9),
                           .extraStep = random.between(0, 5)};
        const auto source = std::make_shared<TestImage>(form, random);
        const auto destination = std::make_shared<TestImage>(form, source->memory(), source->start());
        setRandomRectangle(*source, Rectangles::Inside, channels.coi == 0 ? 0 : random.between(1, 3), random);
        setRandomRectangle(*destination, Rectangles::Inside, channels.coi, random);
        if (random.once(4))
            destination->setMask(randomMask(40, 9, random));
        const PointwiseCall call = {{source, destination}, random.oneOf(mirror().constants)};
        const Slot slot(random.once(2) ? 0 : Slot::best());
        int written = 0;
        ASSERT_TRUE(runs(mirror(), call, reports, written));
        EXPECT_GT(written, 0);
    }
}

// Orders may differ where one of the images has one channel: what is read is the channel's own samples, but for pixels
// beside planes.
TEST(Mirror, OrdersThatDiffer)
{
    const struct {
        Channels source;
        std::int32_t sourceOrder;
        Channels destination;
    } rows[] = {{{3, 0, 2}, ORV_DATA_ORDER_PLANE, {1, 0, 0}}, {{4, 4, 4}, ORV_DATA_ORDER_PLANE, {1, 0, 1}},
                {{5, 0, 5}, ORV_DATA_ORDER_PLANE, {1, 0, 0}}, {{1, 0, 0}, ORV_DATA_ORDER_PIXEL, {3, 0, 2}},
                {{1, 0, 1}, ORV_DATA_ORDER_PIXEL, {4, 4, 4}}, {{1, 0, 0}, ORV_DATA_ORDER_PLANE, {3, 0, 3}},
                {{1, 0, 0}, ORV_DATA_ORDER_PLANE, {4, 0, 1}}};
    Random random(33);
    Reports reports;
    int writing = 0, calls = 0;
    for (const std::int32_t depth : mirror().depths)
        for (const auto &row : rows)
            for (const Constant &constant : mirror().constants)
                for (unsigned masks = 0; masks < 4; ++masks) {
                    const auto image = [&](const Channels &channels, std::int32_t order, bool masked) {
                        const Form form = {.depth = depth,
                                           .channels = channels.count,
                                           .alpha = channels.alpha,
                                           .order = order,
                                           .width = random.between(1, 30),
                                           .height = random.between(1, 30),
                                           .extraStep = random.between(0, 5)};
                        const auto made = std::make_shared<TestImage>(form, random);
                        setRandomRectangle(*made, random.once(3) ? Rectangles::None : Rectangles::Clipped, channels.coi,
                                           random);
                        if (masked)
                            made->setMask(randomMask(random.between(1, 30), 30, random));
                        return made;
                    };
                    const PointwiseCall call = {{image(row.source, row.sourceOrder, (masks & 1) != 0),
                                                 image(row.destination, 1 - row.sourceOrder, (masks & 2) != 0)},
                                                constant};
                    int written = 0;
                    ASSERT_TRUE(runs(mirror(), call, reports, written));
                    writing += written > 0;
                    ++calls;
                }
    EXPECT_GT(writing, calls / 2);
}

// The first plane of a source, under the header of a destination of one channel in pixel order: read before it is
// written.
TEST(Mirror, PlaneUnderPixels)
{
    Random random(37);
    Reports reports;
    for (const Constant &constant : mirror().constants) {
        const Form planes = {.channels = 3, .order = ORV_DATA_ORDER_PLANE, .width = 25, .height = 7};
        const Form pixels = {.width = 25, .height = 7};
        const auto source = std::make_shared<TestImage>(planes, random);
        source->setWholeRectangle(1);
        const auto destination = std::make_shared<TestImage>(pixels, source->memory(), source->start());
        int written = 0;
        EXPECT_TRUE(runs(mirror(), {{source, destination}, constant}, reports, written));
    }
}

// One channel of pixels beside a destination in planes is read as a plane: samples on end, from the channel's first.
TEST(Mirror, PixelsBesidePlanesAreReadOnEnd)
{
    Random random(34);
    TestImage source({.channels = 3, .width = 5, .height = 2}, random),
        destination({.order = ORV_DATA_ORDER_PLANE, .width = 5, .height = 2}, random);
    source.setWholeRectangle(3);
    orvMirror(&source.header, &destination.header, 1);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(destination.get(4 - x, y, 0).bits, source.get((2 + x) / 3, y, (2 + x) % 3).bits) << x;
}

// The checks between those of the table, each before the next one.
TEST(Mirror, ChecksOfItsOwn)
{
    const char *const mask = "(srcImage==dstImage && srcImage->maskROI != 0)";
    const char *const depth = "(srcImage->depth!=dstImage->depth)";
    const char *const axis = "((flipAxis>1)||(flipAxis<-1))";
    const char *const sourceAlpha = "(srcImage->depth==1 && srcImage->alphaChannel!=0)";
    const char *const destinationAlpha = "(dstImage->depth==1 && dstImage->alphaChannel!=0)";
    const char *const origin = "(srcImage->origin != dstImage->origin)";
    const struct {
        bool itself, masked, otherDepth;
        std::int32_t axis, depth, sourceAlpha, destinationAlpha;
        bool otherOrigin;
        OrvStatus status;
        const char *context;
    } rows[] = {{true, true, false, 2, ORV_DEPTH_8U, 0, 0, false, ORV_STATUS_BAD_ARGUMENT, mask},
                {true, true, false, 0, ORV_DEPTH_1U, 1, 1, false, ORV_STATUS_BAD_ARGUMENT, mask},
                {false, true, true, 2, ORV_DEPTH_8U, 0, 0, false, ORV_STATUS_BAD_ARGUMENT, depth},
                {false, false, false, 2, ORV_DEPTH_8U, 0, 0, false, ORV_STATUS_BAD_ARGUMENT, axis},
                {true, false, false, -2, ORV_DEPTH_1U, 1, 1, false, ORV_STATUS_BAD_ARGUMENT, axis},
                {false, false, false, -2147483647 - 1, ORV_DEPTH_16S, 0, 0, true, ORV_STATUS_BAD_ARGUMENT, axis},
                {false, false, false, 1, ORV_DEPTH_1U, 1, 1, true, ORV_STATUS_BAD_ARGUMENT, sourceAlpha},
                {false, false, false, 1, ORV_DEPTH_1U, 0, 1, true, ORV_STATUS_BAD_ARGUMENT, destinationAlpha},
                {false, false, false, 1, ORV_DEPTH_1U, 0, 0, true, ORV_STATUS_BAD_ARGUMENT, origin},
                {false, true, false, 1, ORV_DEPTH_1U, 0, 0, false, ORV_STATUS_NOT_IMPLEMENTED, ""}};
    Random random(35);
    Reports reports;
    for (const auto &row : rows) {
        Form form = {.depth = row.depth, .alpha = row.sourceAlpha};
        const auto source = std::make_shared<TestImage>(form, random);
        form.alpha = row.destinationAlpha;
        form.depth = row.otherDepth ? ORV_DEPTH_16U : row.depth;
        form.origin = row.otherOrigin ? 1 : 0;
        const auto destination = row.itself ? source : std::make_shared<TestImage>(form, random);
        if (row.masked)
            source->setMask(randomMask(8, 8, random));
        const PointwiseCall call = {{source, destination}, {.flip = row.axis}};
        const Snapshot before(call);
        reports.clear();
        EXPECT_EQ(call.run(mirror()), row.status);
        EXPECT_EQ(reports.all(), reportsOf(mirror(), row.status, row.context, false));
        EXPECT_TRUE(before.unchanged());
    }
}

// A failure of another call, still stored, stays.
TEST(Mirror, SuccessLeavesTheStoredStatus)
{
    Random random(36);
    TestImage image({}, random);
    orvSetErrStatus(ORV_STATUS_BAD_COI);
    orvMirror(&image.header, &image.header, -1);
    EXPECT_EQ(orvGetErrStatus(), ORV_STATUS_BAD_COI);
    orvSetErrStatus(ORV_STATUS_OK);
}

} // namespace
} // namespace front
