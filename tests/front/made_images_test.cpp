// Images that the library makes: clones, and the test pattern against its formula; and what is left when memory ends.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "front/call.h"
#include "front/memory_watch.h"

namespace front {
namespace {

// The library's raster, for the naive addressing of the tests.
TestImage viewOf(const OrvImage &image)
{
    Form form = {.depth = image.depth,
                 .channels = image.nChannels,
                 .order = image.dataOrder,
                 .width = image.width,
                 .height = image.height};
    form.extraStep = image.widthStep - form.rowBytes();
    return TestImage(form, std::make_shared<Bytes>(image.imageData, image.imageData + image.imageSize), 0);
}

class Clone : public testing::Test {
protected:
    OrvImage *clone(const TestImage &image)
    {
        const OrvImage before = image.header;
        OrvImage *copy = orvCloneImage(&image.header);
        EXPECT_EQ(std::memcmp(&before, &image.header, sizeof before), 0);
        return copy;
    }
    static void release(OrvImage *copy) { orvDeallocate(copy, ORV_IMAGE_HEADER | ORV_IMAGE_DATA | ORV_IMAGE_ROI); }
    void TearDown() override { EXPECT_EQ(watch.live(), 0u); }

    Reports reports;
    MemoryWatch watch;
    Random random{41};
};

TEST_F(Clone, HasRasterAndRecordsOfItsOwn)
{
    for (const std::int32_t depth : allDepths)
        for (const std::int32_t channels : {1, 3, 4})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const std::int32_t extra : {0, 3}) {
                    if (depth == ORV_DEPTH_1U && channels > 1)
                        continue;
                    Form form = {depth, channels, channels, order, random.between(0, 1), 8, 7, 5, 0};
                    const std::int32_t step = (form.rowBytes() + 7) / 8 * 8; // that of the library
                    form.extraStep = step - form.rowBytes() + extra;
                    // Memory that goes on behind the last row, as the header says.
                    const auto memory =
                        std::make_shared<Bytes>(1 + form.reach() + static_cast<unsigned>(form.extraStep));
                    for (std::uint8_t &byte : *memory)
                        byte = static_cast<std::uint8_t>(random.bits());
                    TestImage source(form, memory, 1);
                    source.setRectangle(1, 2, 3, 4, 50);
                    source.setMask(randomMask(3, 3, random));
                    source.header.imageId = &source;
                    source.header.nSize = 99;
                    source.header.ID = 5;
                    std::memcpy(source.header.colorModel, "abcd", 4);
                    std::memcpy(source.header.channelSeq, "efgh", 4);
                    for (int side = 0; side < 4; ++side) {
                        source.header.BorderMode[side] = side + 10;
                        source.header.BorderConst[side] = side - 2000;
                    }
                    OrvImage *copy = clone(source);
                    ASSERT_NE(copy, nullptr) << source;

                    OrvImage expected = source.header; // and what differs
                    expected.ID = 0;
                    expected.roi = copy->roi;
                    expected.maskROI = nullptr;
                    expected.imageId = nullptr;
                    expected.imageData = copy->imageData;
                    expected.imageDataOrigin = copy->imageDataOrigin;
                    expected.widthStep = step;
                    expected.imageSize = step * form.rows();
                    EXPECT_EQ(std::memcmp(copy, &expected, sizeof expected), 0) << source;
                    EXPECT_NE(copy->imageData, source.header.imageData);
                    ASSERT_NE(copy->roi, source.header.roi);
                    EXPECT_EQ(std::memcmp(copy->roi, source.header.roi, sizeof(OrvROI)), 0);

                    const TestImage view = viewOf(*copy);
                    for (std::int32_t y = 0; y < form.height; ++y)
                        for (std::int32_t x = 0; x < form.width; ++x)
                            for (std::int32_t channel = 0; channel < channels; ++channel)
                                ASSERT_EQ(view.get(x, y, channel).bits, source.get(x, y, channel).bits) << source;
                    EXPECT_EQ(watch.liveBlocks(), 2u);
                    EXPECT_EQ(watch.liveRasters(), 1u);
                    release(copy);
                }
    EXPECT_TRUE(reports.all().empty());
}

// One without a rectangle, too.
TEST_F(Clone, OfTiledImageHasARaster)
{
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    TestImage source({.channels = 3, .width = 5, .height = 2}, random);
    source.header.imageData = nullptr;
    source.header.tileInfo = &tile;
    source.header.imageSize = source.header.widthStep = 0;
    OrvImage *copy = clone(source);
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->tileInfo == nullptr && copy->roi == nullptr && watch.liveBlocks() == 1);
    EXPECT_TRUE(copy->widthStep == 16 && copy->imageSize == 32);
    ASSERT_NE(copy->imageData, nullptr);
    std::memset(copy->imageData, 1, 32);
    release(copy);
}

TEST_F(Clone, RefusesBadHeaders)
{
    TestImage source({}, random);
    source.header.align = 5;
    EXPECT_EQ(clone(source), nullptr);
    EXPECT_EQ(orvCloneImage(nullptr), nullptr);
    EXPECT_EQ(reports.all(), (std::vector<Report>{{-21, "orvCloneImage", "Incorrect Image", "orvClone"},
                                                  {-9, "orvCloneImage", "Incorrect Image", "orvClone"}}));
    EXPECT_EQ(watch.allocations(), 0);
}

TEST_F(Clone, KeepsNothingWithoutMemory)
{
    for (const bool real : {false, true}) {
        TestImage source({.depth = real ? ORV_DEPTH_32F : ORV_DEPTH_16S}, random);
        source.setWholeRectangle(0);
        const auto ofClone = [](const char *context) { return Report{-4, "orvCloneImage", context, "orvClone"}; };
        const std::vector<Report> expected[] = {
            {ofClone("Not enough memory to allocate header for clone image")},
            {ofClone("Not enough memory to allocate roi for clone image")},
            {{-4, real ? "orvAllocateImageFP" : "orvAllocateImage", "for allocate image data", "orvalloc"},
             ofClone("Not enough memory to allocate imageData for clone image")}};
        for (std::size_t failing = 0; failing < 4; ++failing) {
            reports.clear();
            if (failing < 3)
                watch.failAt(static_cast<int>(failing));
            else
                source.header.width = source.header.height = mostInt; // no raster could have this size
            EXPECT_EQ(clone(source), nullptr);
            EXPECT_EQ(reports.all(), expected[std::min<std::size_t>(failing, 2)]);
            EXPECT_EQ(orvGetErrStatus(), -4);
            EXPECT_EQ(watch.live(), 0u);
        }
    }
}

struct Amplitude {
    std::int32_t depth;
    long double offset, factor;
};

constexpr Amplitude amplitudes[] = {{ORV_DEPTH_8U, 1, 127.99999L},         {ORV_DEPTH_16U, 1, 32767.99999L},
                                    {ORV_DEPTH_8S, 0, 127.99999L},         {ORV_DEPTH_16S, 0, 32767.99999L},
                                    {ORV_DEPTH_32S, 0, 2147483647.99999L}, {ORV_DEPTH_32F, 1, 0.49999L}};

// A sample, and how far 64-bit arithmetic may be from it.
struct Expected {
    long double value, error;
};

Expected formula(const Amplitude &amplitude, int width, int height, int x, int y)
{
    const long double dx = x - 0.5L * (width - 1), dy = y - 0.5L * (height - 1);
    const long double angle = (dx * dx + dy * dy) * 6.283185307179586 / (4.0L * height);
    const long double rounding = std::numeric_limits<double>::epsilon();
    return {(std::sin(angle) + amplitude.offset) * amplitude.factor, amplitude.factor * (2 * angle + 4) * rounding};
}

void checkSample(const Amplitude &amplitude, const TestImage &image, int x, int y)
{
    const Expected expected = formula(amplitude, image.form.width, image.form.height, x, y);
    const Sample sample = image.get(x, y, 0);
    if (amplitude.depth == ORV_DEPTH_32F) {
        const long double half = std::ldexp(1.0L, -25); // of the last place of a float below 1
        ASSERT_LE(std::fabs(sample.real() - expected.value), half + expected.error) << x << "," << y;
        return;
    }
    // Truncated, unless rounding errors may have moved the value across an integer.
    const long double least = std::trunc(expected.value - expected.error);
    const long double most = std::trunc(expected.value + expected.error);
    ASSERT_TRUE(sample.integer() >= least && sample.integer() <= most)
        << sample.integer() << " and not " << static_cast<double>(expected.value) << " at " << x << "," << y;
}

TEST(Jaehne, FollowsTheFormula)
{
    constexpr int sizes[][2] = {{1, 1}, {2, 1}, {1, 2}, {5, 4}, {64, 64}, {181, 60}, {37, 211}};
    Reports reports;
    for (const std::int32_t slot : {std::int32_t{0}, Slot::best()})
        for (const Amplitude &amplitude : amplitudes)
            for (const auto &[width, height] : sizes) {
                const Slot build(slot);
                OrvImage *image = orvCreateImageJaehne(amplitude.depth, width, height);
                ASSERT_NE(image, nullptr);
                const TestImage view = viewOf(*image);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        ASSERT_NO_FATAL_FAILURE(checkSample(amplitude, view, x, y)) << amplitude.depth;
                for (int y = 0; y < height; ++y)
                    for (int at = view.form.rowBytes(); at < image->widthStep; ++at)
                        ASSERT_EQ(image->imageData[y * image->widthStep + at], 0) << "between the rows";
                orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
            }
    EXPECT_TRUE(reports.all().empty());
}

TEST(Jaehne, MakesAnImageOfTheCaller)
{
    MemoryWatch watch;
    OrvImage *image = orvCreateImageJaehne(ORV_DEPTH_16U, 5, 3);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(numbersOf(*image),
              (std::vector<std::int32_t>{
                  112, 0, 1, 0, ORV_DEPTH_16U, ORV_DATA_ORDER_PIXEL, ORV_ORIGIN_TL, 8, 5, 3, 16, 48, 0, 0, 0, 0,
                  0,   0, 0, 0}));
    EXPECT_EQ(colorsOf(*image), "GRAYGRAY");
    EXPECT_TRUE(image->roi == nullptr && image->maskROI == nullptr && image->imageId == nullptr &&
                image->tileInfo == nullptr);
    orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    EXPECT_EQ(watch.live(), 0u);
}

TEST(Jaehne, Refuses)
{
    const Report noDepth = {ORV_STATUS_NOT_IMPLEMENTED, "orvCreateImageJaehne", "", "orvgenim"};
    const Report badSize = {ORV_STATUS_BAD_IMAGE_SIZE, "orvCreateImageJaehne", "Incorrect image size", "orvgenim"};
    const Report badDepth = {ORV_STATUS_BAD_DEPTH, "orvCreateImageJaehne", "Incorrect depth value in the image header",
                             "orvgenim"};
    const Report noHeader = {ORV_STATUS_NO_MEMORY, "orvCreateImageJaehne",
                             "Not enough memory to allocate header for ImageJaehne", "orvgenim"};
    const Report noRaster = {ORV_STATUS_NO_MEMORY, "orvAllocateImage", "for allocate image data", "orvalloc"};
    const Report noFloatRaster = {ORV_STATUS_NO_MEMORY, "orvAllocateImageFP", "for allocate image data", "orvalloc"};
    const struct {
        std::int32_t depth, width, height;
        Report report;
        int failing = -1;
    } rows[] = {{ORV_DEPTH_1U, 8, 8, noDepth},
                {ORV_DEPTH_1U, 0, 8, noDepth},
                {ORV_DEPTH_8U, 0, 8, badSize},
                {ORV_DEPTH_8U, 8, -1, badSize},
                {7, 8, 0, badSize},
                {7, 8, 8, badDepth},
                {0, 8, 8, badDepth},
                {64, 8, 8, badDepth},
                {ORV_DEPTH_8U, mostInt, mostInt, noRaster},
                {ORV_DEPTH_32S, 1 << 15, 1 << 15, noRaster},
                {ORV_DEPTH_32F, mostInt, 1, noFloatRaster},
                {ORV_DEPTH_8U, 5, 5, noHeader, 0},
                {ORV_DEPTH_8U, 5, 5, noRaster, 1},
                {ORV_DEPTH_32F, 5, 5, noHeader, 0},
                {ORV_DEPTH_32F, 5, 5, noFloatRaster, 1}};
    Reports reports;
    for (const auto &[depth, width, height, report, failing] : rows) {
        MemoryWatch watch;
        if (failing >= 0)
            watch.failAt(failing);
        reports.clear();
        EXPECT_EQ(orvCreateImageJaehne(depth, width, height), nullptr);
        EXPECT_EQ(reports.all(), std::vector<Report>{report});
        EXPECT_EQ(orvGetErrStatus(), report.status);
        EXPECT_EQ(watch.live(), 0u);
    }
}

} // namespace
} // namespace front
