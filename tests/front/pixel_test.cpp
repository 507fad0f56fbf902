// Single pixels: every depth and layout at any address, whole-image coordinates, the origin, and what is refused.
#include "front/call.h"

namespace front {
namespace {

// The samples of a pixel one after the other, as an application keeps them.
Bytes samplesAt(const TestImage &image, std::int32_t x, std::int32_t memoryRow)
{
    Bytes samples;
    for (std::int32_t channel = 0; channel < image.form.channels; ++channel) {
        const std::uint8_t *at = image.memory()->data() + image.place(x, memoryRow, channel);
        samples.insert(samples.end(), at, at + bytesOf(image.form.depth));
    }
    return samples;
}

void checkPixel(TestImage &image, std::int32_t x, std::int32_t y, Random &random)
{
    const std::int32_t row = image.form.origin == ORV_ORIGIN_BL ? image.form.height - 1 - y : y;
    const Bytes before = *image.memory(), samples = samplesAt(image, x, row);
    constexpr std::uint8_t guard = 0xA5;
    Bytes buffer(samples.size() + 2, guard);
    EXPECT_EQ(orvGetPixel(&image.header, x, y, &buffer[1]), ORV_STATUS_OK);
    EXPECT_EQ(Bytes(buffer.begin() + 1, buffer.end() - 1), samples);
    EXPECT_TRUE(buffer.front() == guard && buffer.back() == guard);
    EXPECT_EQ(*image.memory(), before);

    for (std::uint8_t &byte : buffer)
        byte = static_cast<std::uint8_t>(random.bits());
    EXPECT_EQ(orvPutPixel(&image.header, x, y, &buffer[1]), ORV_STATUS_OK);
    Bytes expected = before;
    const std::uint8_t *next = &buffer[1];
    for (std::int32_t channel = 0; channel < image.form.channels; ++channel)
        for (int byte = 0; byte < bytesOf(image.form.depth); ++byte)
            expected[image.place(x, row, channel) + static_cast<std::size_t>(byte)] = *next++;
    EXPECT_EQ(*image.memory(), expected);
}

TEST(Pixel, EveryLayout)
{
    Reports reports;
    Random random(31);
    for (const std::int32_t slot : {std::int32_t{0}, Slot::best()})
        for (const std::int32_t depth : allDepths)
            for (const std::int32_t channels : {1, 3, 4})
                for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                    for (const std::int32_t origin : {ORV_ORIGIN_TL, ORV_ORIGIN_BL}) {
                        if (depth == ORV_DEPTH_1U)
                            continue;
                        const Slot build(slot);
                        TestImage image({.depth = depth,
                                         .channels = channels,
                                         .alpha = random.once(2) ? channels : 0,
                                         .order = order,
                                         .origin = origin,
                                         .width = random.between(1, 9),
                                         .height = random.between(1, 9),
                                         .extraStep = random.between(0, 7)},
                                        random);
                        // What restricts other operations does not restrict these.
                        image.setRectangle(random.between(0, 1), 2, 2, 1, 1);
                        image.setMask(randomMask(1, 1, random));
                        image.mask()->fill({ORV_DEPTH_1U, 0});
                        SCOPED_TRACE(testing::PrintToString(image));
                        checkPixel(image, 0, 0, random);
                        checkPixel(image, image.form.width - 1, image.form.height - 1, random);
                        checkPixel(image, random.between(0, image.form.width - 1),
                                   random.between(0, image.form.height - 1), random);
                    }
    EXPECT_TRUE(reports.all().empty());
}

// Nor does a null pointer that is to be put.
TEST(Pixel, OtherChannelCountsMoveNothing)
{
    Reports reports;
    Random random(33);
    for (const std::int32_t channels : {2, 5, 3})
        for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE}) {
            TestImage image({.channels = channels, .order = order}, random);
            const Bytes before = *image.memory(), untouched = {1, 2, 3, 4, 5, 6, 7, 8};
            Bytes pixel = untouched;
            if (channels != 3) {
                EXPECT_EQ(orvGetPixel(&image.header, 1, 1, pixel.data()), ORV_STATUS_OK);
            }
            EXPECT_EQ(orvPutPixel(&image.header, 1, 1, channels == 3 ? nullptr : pixel.data()), ORV_STATUS_OK);
            EXPECT_TRUE(pixel == untouched && *image.memory() == before);
        }
    EXPECT_TRUE(reports.all().empty());
}

// A call with one fault or several; the rows stand in the order of the tests.
struct PixelCall {
    OrvImage *image;
    std::int32_t x, y;
    void *pixel;
};

struct Check {
    OrvStatus status;
    const char *context;
    bool ofGetOnly;
    void (*spoil)(PixelCall &call);
};

OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};

const Check checks[] = {
    {ORV_STATUS_NULL_HEADER, "Incorrect Image", false, [](PixelCall &call) { call.image = nullptr; }},
    {ORV_STATUS_BAD_COI, "Incorrect Image", false, [](PixelCall &call) { call.image->roi->coi = 2; }},
    {ORV_STATUS_BAD_ARGUMENT, "(0 == pixel)", true, [](PixelCall &call) { call.pixel = nullptr; }},
    {ORV_STATUS_BAD_ARGUMENT, "((x>img->width-1) || (x<0))", false, [](PixelCall &call) { call.x = 8; }},
    {ORV_STATUS_BAD_ARGUMENT, "((x>img->width-1) || (x<0))", false, [](PixelCall &call) { call.x = -1; }},
    {ORV_STATUS_BAD_ARGUMENT, "((x>img->width-1) || (x<0))", false, [](PixelCall &call) { call.x = leastInt; }},
    {ORV_STATUS_BAD_ARGUMENT, "((y>img->height-1) || (y<0))", false, [](PixelCall &call) { call.y = 8; }},
    {ORV_STATUS_BAD_ARGUMENT, "((y>img->height-1) || (y<0))", false, [](PixelCall &call) { call.y = -1; }},
    {ORV_STATUS_NOT_IMPLEMENTED, "", false,
     [](PixelCall &call) { call.image->tileInfo = &tile, call.image->imageData = nullptr; }},
    {ORV_STATUS_NOT_IMPLEMENTED, "", false, [](PixelCall &call) { call.image->depth = ORV_DEPTH_1U; }},
};

TEST(Pixel, RefusesInOrder)
{
    Reports reports;
    Random random(34);
    for (const std::int32_t origin : {ORV_ORIGIN_TL, ORV_ORIGIN_BL})
        for (const bool get : {true, false})
            for (const Check &earlier : checks)
                for (const Check *later = &earlier; later != std::end(checks); ++later) {
                    if (!get && (earlier.ofGetOnly || later->ofGetOnly))
                        continue;
                    TestImage image({.origin = origin}, random);
                    image.setWholeRectangle(0);
                    std::uint8_t pixel = 77;
                    PixelCall call = {&image.header, 2, 2, &pixel};
                    const Bytes before = *image.memory();
                    later->spoil(call);
                    if (call.image != nullptr)
                        earlier.spoil(call);
                    reports.clear();
                    const OrvStatus status = get ? orvGetPixel(call.image, call.x, call.y, call.pixel)
                                                 : orvPutPixel(call.image, call.x, call.y, call.pixel);
                    EXPECT_EQ(status, earlier.status);
                    EXPECT_EQ(reports.all(), std::vector<Report>({{earlier.status, get ? "orvGetPixel" : "orvPutPixel",
                                                                   earlier.context, get ? "orvGetPx" : "orvPutPx"}}));
                    EXPECT_TRUE(pixel == 77 && *image.memory() == before);
                }
}

} // namespace
} // namespace front
