// Clones: what they share with their source, what they don't, and what is left when memory ends.
#include <cstring>

#include <gtest/gtest.h>

#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

namespace front {
namespace {

class Clone : public testing::Test {
protected:
    OrvImage *clone(const TestImage &image)
    {
        const OrvImage before = image.header;
        OrvImage *copy = orvCloneImage(&image.header);
        EXPECT_EQ(std::memcmp(&before, &image.header, sizeof before), 0);
        return copy;
    }
    // Releases all that a clone has.
    void release(OrvImage *copy) { orvDeallocate(copy, ORV_IMAGE_HEADER | ORV_IMAGE_DATA | ORV_IMAGE_ROI); }
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
                        std::make_shared<Bytes>(1 + static_cast<std::size_t>(form.widthStep() * form.rows()));
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

                    Form copied = form;
                    copied.extraStep = step - form.rowBytes();
                    const TestImage view(
                        copied, std::make_shared<Bytes>(copy->imageData, copy->imageData + copy->imageSize), 0);
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

TEST_F(Clone, OfImageWithoutRectangleHasNone)
{
    const TestImage source({}, random);
    OrvImage *copy = clone(source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->roi, nullptr);
    EXPECT_EQ(watch.liveBlocks(), 1u);
    release(copy);
}

TEST_F(Clone, OfTiledImageHasARaster)
{
    OrvTileInfo tile = {[] {}, 0, nullptr, 8, 8};
    TestImage source({.channels = 3, .width = 5, .height = 2}, random);
    source.header.imageData = nullptr;
    source.header.tileInfo = &tile;
    source.header.imageSize = source.header.widthStep = 0;
    OrvImage *copy = clone(source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->tileInfo, nullptr);
    EXPECT_EQ(copy->widthStep, 16);
    EXPECT_EQ(copy->imageSize, 32);
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
        for (int failing = 0; failing < 3; ++failing) {
            reports.clear();
            watch.failAt(failing);
            EXPECT_EQ(clone(source), nullptr);
            EXPECT_EQ(reports.all(), expected[failing]);
            EXPECT_EQ(orvGetErrStatus(), -4);
            EXPECT_EQ(watch.live(), 0u);
        }
    }
}

// No raster could have this size; a header may say so.
TEST_F(Clone, OfAbsurdSizeIsRefused)
{
    TestImage source({}, random);
    source.header.width = source.header.height = 0x7FFFFFFF;
    EXPECT_EQ(clone(source), nullptr);
    ASSERT_EQ(reports.all().size(), 2u);
    EXPECT_EQ(reports.all()[0].context, "for allocate image data");
    EXPECT_EQ(reports.all()[1].context, "Not enough memory to allocate imageData for clone image");
}

} // namespace
} // namespace front
