// Headers and rasters: what is made, what is refused, and what is released.
#include <cstring>
#include <functional>

#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

#include <gtest/gtest.h>

namespace front {
namespace {

class Lifecycle : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(watch.live(), 0u); }

    Reports reports;
    MemoryWatch watch;
};

// What orvCreateImageHeader takes.
struct Description {
    std::int32_t nChannels = 3, alphaChannel = 0, depth = ORV_DEPTH_8U;
    const char *colorModel = "RGB", *channelSeq = "BGR";
    std::int32_t dataOrder = ORV_DATA_ORDER_PIXEL, origin = ORV_ORIGIN_TL, align = 4, width = 5, height = 3;
    OrvROI *roi = nullptr;
    OrvImage *maskROI = nullptr;
    void *imageId = nullptr;
    OrvTileInfo *tileInfo = nullptr;

    OrvImage *create() const
    {
        return orvCreateImageHeader(nChannels, alphaChannel, depth, colorModel, channelSeq, dataOrder, origin, align,
                                    width, height, roi, maskROI, imageId, tileInfo);
    }
};

OrvImage *headerOf(std::int32_t channels, std::int32_t depth, std::int32_t order, std::int32_t align,
                   std::int32_t width, std::int32_t height)
{
    return orvCreateImageHeader(channels, 0, depth, "GRAY", "GRAY", order, ORV_ORIGIN_TL, align, width, height, nullptr,
                                nullptr, nullptr, nullptr);
}

// Through the allocator of the image's depth.
void allocateFilled(OrvImage *image, std::int32_t fill, std::int32_t value)
{
    if (image->depth == ORV_DEPTH_32F)
        orvAllocateImageFP(image, fill, static_cast<float>(value));
    else
        orvAllocateImage(image, fill, value);
}

OrvImage *maskHeader()
{
    return headerOf(1, ORV_DEPTH_1U, ORV_DATA_ORDER_PIXEL, 4, 5, 3);
}

TEST_F(Lifecycle, HeaderHoldsWhatWasGiven)
{
    OrvROI roi = {1, 2, 3, 4, 5};
    OrvTileInfo tile = {provideNoTile, 7, nullptr, 8, 8};
    OrvImage *mask = maskHeader();
    orvAllocateImage(mask, 0, 0);
    OrvImage *image =
        Description{4, 4,    ORV_DEPTH_16S, "CMYKandmore", "KYMC", ORV_DATA_ORDER_PLANE, ORV_ORIGIN_BL, 16, 7,
                    9, &roi, mask,          &roi,          &tile}
            .create();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image) % 32, 0u);
    EXPECT_EQ(
        numbersOf(*image),
        (std::vector<std::int32_t>{
            112, 0, 4, 4, ORV_DEPTH_16S, ORV_DATA_ORDER_PLANE, ORV_ORIGIN_BL, 16, 7, 9, 16, 16 * 4 * 9, 0, 0, 0, 0,
            0,   0, 0, 0}));
    EXPECT_EQ(colorsOf(*image), "CMYKKYMC");
    EXPECT_TRUE(image->roi == &roi && image->maskROI == mask && image->imageId == &roi && image->tileInfo == &tile);
    EXPECT_TRUE(image->imageData == nullptr && image->imageDataOrigin == nullptr);
    EXPECT_TRUE(reports.all().empty());
    orvDeallocateHeader(image);
    orvDeallocate(mask, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
}

TEST_F(Lifecycle, RowsAreRoundedUpToTheAlignment)
{
    const struct {
        std::int32_t channels, depth, order, align, width, height, step, size;
    } rows[] = {{1, ORV_DEPTH_1U, 0, 4, 5, 2, 8, 16},     {3, ORV_DEPTH_8U, 0, 8, 5, 7, 16, 112},
                {3, ORV_DEPTH_16S, 1, 4, 3, 2, 8, 48},    {4, ORV_DEPTH_32F, 0, 32, 2, 1, 32, 32},
                {4, ORV_DEPTH_32S, 1, 32, 2, 3, 32, 384}, {1, ORV_DEPTH_16U, 0, 16, 8, 1, 16, 16},
                {1, ORV_DEPTH_8S, 0, 16, 17, 1, 32, 32},  {5, ORV_DEPTH_8U, 1, 4, 4, 4, 4, 80}};
    for (const auto &row : rows) {
        OrvImage *image = headerOf(row.channels, row.depth, row.order, row.align, row.width, row.height);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->widthStep, row.step);
        EXPECT_EQ(image->imageSize, row.size);
        image->widthStep = image->imageSize = -1; // what stands there counts for nothing
        watch.misalign(static_cast<std::size_t>(row.step / 4 + 1));
        allocateFilled(image, 0, 0);
        ASSERT_NE(image->imageData, nullptr);
        EXPECT_EQ(watch.requests().back(), static_cast<std::size_t>(row.size + row.align - 1));
        EXPECT_EQ(image->widthStep, row.step);
        EXPECT_EQ(image->imageSize, row.size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image->imageData) % static_cast<unsigned>(row.align), 0u);
        EXPECT_GE(image->imageData, image->imageDataOrigin);
        EXPECT_LT(image->imageData - image->imageDataOrigin, row.align);
        std::memset(image->imageData, 0xEE, static_cast<std::size_t>(image->imageSize));
        orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    }
    EXPECT_TRUE(reports.all().empty());
}

// The fields in the order of their tests, as far as a header's own fields go.
const struct {
    OrvStatus status;
    void (*spoil)(Description &description);
} badFields[] = {{-10, [](Description &d) { d.height = 0; }},
                 {-10, [](Description &d) { d.width = leastInt; }},
                 {-15, [](Description &d) { d.nChannels = 0; }},
                 {-16, [](Description &d) { d.nChannels = 3, d.depth = ORV_DEPTH_1U; }},
                 {-14, [](Description &d) { d.colorModel = nullptr; }},
                 {-14, [](Description &d) { d.channelSeq = nullptr; }},
                 {-17, [](Description &d) { d.depth = 24; }},
                 {-18, [](Description &d) { d.alphaChannel = 1; }},
                 {-19, [](Description &d) { d.dataOrder = 2; }},
                 {-20, [](Description &d) { d.origin = -1; }},
                 {-21, [](Description &d) { d.align = 1; }}};

TEST_F(Lifecycle, HeaderRefusesBadFieldsInOrder)
{
    for (std::size_t first = 0; first < std::size(badFields); ++first)
        for (std::size_t second = first; second < std::size(badFields); ++second) {
            Description description;
            badFields[second].spoil(description);
            badFields[first].spoil(description);
            reports.clear();
            EXPECT_EQ(description.create(), nullptr);
            const Report report = {badFields[first].status, "orvCreateImageHeader", "Incorrect data-ins", "orvalloc"};
            EXPECT_EQ(reports.all(), std::vector<Report>{report}) << first << ", " << second;
            EXPECT_EQ(orvGetErrStatus(), badFields[first].status);
        }
    OrvImage mask = {};
    mask.depth = ORV_DEPTH_1U; // and neither raster nor tiles
    EXPECT_EQ((Description{.maskROI = &mask}.create()), nullptr);
    EXPECT_EQ(orvGetErrStatus(), -112);
    mask.depth = ORV_DEPTH_8U;
    EXPECT_EQ((Description{.maskROI = &mask}.create()), nullptr);
    EXPECT_EQ(orvGetErrStatus(), -117);
    EXPECT_EQ(watch.allocations(), 0);
}

TEST_F(Lifecycle, WithoutMemoryRecordsAreNullInSilence)
{
    watch.failAll();
    EXPECT_EQ(Description{}.create(), nullptr);
    EXPECT_EQ(orvCreateROI(0, 0, 0, 1, 1), nullptr);
    EXPECT_EQ(orvCreateTileInfo(provideNoTile, 0, 8, 8), nullptr);
    EXPECT_EQ(watch.allocations(), 3);
    EXPECT_TRUE(reports.all().empty());
}

// One allocator with what it refuses, by the depth that it does not take.
struct RasterAllocator {
    const char *function;
    void (*run)(OrvImage *image);
    std::int32_t depth, otherDepth;
    const char *contextOfOther;

    void expectReported(Reports &reports, OrvStatus status, const char *context) const
    {
        EXPECT_EQ(reports.all(), (std::vector<Report>{{status, function, context, "orvalloc"}}));
        EXPECT_EQ(orvGetErrStatus(), status);
        reports.clear();
    }
};

const RasterAllocator rasterAllocators[] = {{"orvAllocateImage", [](OrvImage *image) { orvAllocateImage(image, 1, 1); },
                                             ORV_DEPTH_16U, ORV_DEPTH_32F, "( image->depth == 32 )"},
                                            {"orvAllocateImageFP",
                                             [](OrvImage *image) { orvAllocateImageFP(image, 1, 1.0f); }, ORV_DEPTH_32F,
                                             ORV_DEPTH_16U, "( image->depth != 32 )"}};

TEST_F(Lifecycle, RasterIsRefusedInOrder)
{
    static std::uint8_t raster[1];
    static OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    static OrvImage mask = {};
    for (const RasterAllocator &allocator : rasterAllocators) {
        // What is found, and then mended for the next test to be reached.
        const struct {
            OrvStatus status;
            const char *context;
            std::function<void(OrvImage &)> mend;
        } steps[] = {{-5, "( image->imageData != ((void *)0) )", [](OrvImage &image) { image.imageData = nullptr; }},
                     {-5, "( image->tileInfo != ((void *)0) )", [](OrvImage &image) { image.tileInfo = nullptr; }},
                     {-5, allocator.contextOfOther, [&](OrvImage &image) { image.depth = allocator.depth; }},
                     {-10, "Incorrect data-ins", [](OrvImage &image) { image.width = image.height = 8; }},
                     {-15, "Incorrect data-ins", [](OrvImage &image) { image.nChannels = 1; }},
                     {-21, "Incorrect data-ins", [](OrvImage &image) { image.align = 4; }},
                     {-117, "Incorrect data-ins", [](OrvImage &image) { image.maskROI = nullptr; }}};
        OrvImage image = {}; // bad in every way
        image.imageData = raster;
        image.tileInfo = &tile;
        image.depth = allocator.otherDepth;
        image.maskROI = &mask;
        allocator.run(nullptr);
        allocator.expectReported(reports, -5, "( image == ((void *)0) )");
        for (const auto &step : steps) {
            const std::uint8_t *before = image.imageData;
            allocator.run(&image);
            allocator.expectReported(reports, step.status, step.context);
            EXPECT_TRUE(image.imageData == before && image.imageDataOrigin == nullptr);
            step.mend(image);
        }
        EXPECT_EQ(watch.allocations(), 0);
        watch.failAt(0);
        allocator.run(&image);
        allocator.expectReported(reports, -4, "for allocate image data");
        EXPECT_TRUE(image.imageData == nullptr && image.widthStep == 0 && image.imageSize == 0);
        allocator.run(&image);
        EXPECT_NE(image.imageData, nullptr);
        orvDeallocateImage(&image);
        watch.forget();
    }
}

// Sizes beyond 32 bits end as exhausted memory does, and are never asked for by what is left of them.
TEST_F(Lifecycle, AbsurdRastersAreRefused)
{
    const struct {
        std::int32_t channels, order, align, width, height;
        bool askedFor;
    } rows[] = {{1, 0, 4, mostInt, mostInt, false},
                {mostInt, 0, 32, mostInt, mostInt, false},
                {mostInt, 1, 4, mostInt, mostInt, false},
                {1, 0, 4, 1 << 16, 1 << 16, false},
                {4, 0, 4, 1 << 30, 1, false},
                {2, 1, 4, 1 << 15, 1 << 15, false},
                {1, 0, 32, mostInt, 1, false},
                {1, 0, 4, 1 << 16, (1 << 15) - 1, true}};
    for (const RasterAllocator &allocator : rasterAllocators)
        for (const auto &row : rows) {
            const std::int32_t width = row.askedFor ? row.width / bytesOf(allocator.depth) : row.width;
            OrvImage *image = headerOf(row.channels, allocator.depth, row.order, row.align, width, row.height);
            ASSERT_NE(image, nullptr);
            watch.forget();
            allocator.run(image);
            allocator.expectReported(reports, -4, "for allocate image data");
            EXPECT_TRUE(image->imageData == nullptr && image->imageDataOrigin == nullptr);
            EXPECT_EQ(watch.allocations(), row.askedFor ? 1 : 0) << row.width << " x " << row.height;
            orvDeallocateHeader(image);
        }
}

TEST_F(Lifecycle, FillIsRepeated)
{
    const struct {
        std::int32_t depth, value;
        std::uint32_t word;
    } rows[] = {{ORV_DEPTH_8U, 0x1FF, 0xFFFFFFFF},
                {ORV_DEPTH_8S, -2, 0xFEFEFEFE},
                {ORV_DEPTH_1U, 2, 0},
                {ORV_DEPTH_1U, -1, 0xFFFFFFFF},
                {ORV_DEPTH_1U, 3, 0xFFFFFFFF},
                {ORV_DEPTH_16U, 0x12345, 0x23452345},
                {ORV_DEPTH_16S, -2, 0xFFFEFFFE},
                {ORV_DEPTH_32S, -2147483643, 0x80000005},
                {ORV_DEPTH_32F, 1, 0x3F800000}};
    for (const auto &row : rows) {
        OrvImage *image = headerOf(1, row.depth, 0, 8, 3, 5);
        ASSERT_NE(image, nullptr);
        allocateFilled(image, -1, row.value);
        for (std::int32_t at = 0; at < image->imageSize; at += 4) {
            std::uint32_t word;
            std::memcpy(&word, image->imageData + at, sizeof word);
            EXPECT_EQ(word, row.word) << "the padding of rows is filled too";
        }
        orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    }
}

TEST_F(Lifecycle, RasterIsReleasedOnlyOnceAndOnlyWhereAllocated)
{
    OrvImage *image = Description{}.create();
    orvAllocateImage(image, 0, 0);
    EXPECT_EQ(watch.liveRasters(), 1u);
    orvDeallocateImage(image);
    EXPECT_EQ(watch.liveRasters(), 0u);
    EXPECT_TRUE(image->imageData == nullptr && image->imageDataOrigin == nullptr);
    orvDeallocateImage(image);

    std::uint8_t own[60];
    image->imageData = own;
    orvDeallocate(image, ORV_IMAGE_DATA); // nothing of the library's to release, so the field stays
    EXPECT_EQ(image->imageData, own);
    orvDeallocateImage(image);
    EXPECT_EQ(image->imageData, nullptr);
    orvDeallocateImage(nullptr);
    orvDeallocate(nullptr, 31);
    orvDeallocateHeader(nullptr);
    orvDeallocateHeader(image);
    EXPECT_TRUE(reports.all().empty());
}

// What is left is released by the watch.
TEST(Release, IsWhatTheFlagsSay)
{
    for (int flags = 0; flags < 32; ++flags) {
        SCOPED_TRACE(flags);
        MemoryWatch watch;
        OrvImage *image = Description{}.create(), *mask = maskHeader(), *maskOfMask = maskHeader();
        for (OrvImage *one : {image, mask}) {
            orvAllocateImage(one, 0, 0);
            one->roi = orvCreateROI(0, 0, 0, 1, 1);
            one->tileInfo = orvCreateTileInfo(provideNoTile, 0, 8, 8);
        }
        image->maskROI = mask;
        mask->maskROI = maskOfMask;
        const OrvImage before = *image;
        orvDeallocate(image, flags);
        const bool header = (flags & 1) != 0, data = (flags & 2) != 0, roi = (flags & 4) != 0, tile = (flags & 8) != 0,
                   masked = (flags & 16) != 0;
        // Of seven blocks the mask's mask always stays; the mask has three.
        EXPECT_EQ(watch.liveBlocks(), 7u - header - roi - tile - (masked ? 3 : 0));
        EXPECT_EQ(watch.liveRasters(), 2u - data - masked);
        EXPECT_EQ(maskOfMask->width, 5);
        if (header)
            continue;
        EXPECT_EQ(image->roi, roi ? nullptr : before.roi);
        EXPECT_EQ(image->tileInfo, tile ? nullptr : before.tileInfo);
        EXPECT_EQ(image->maskROI, masked ? nullptr : mask);
        EXPECT_EQ(image->imageData, data ? nullptr : before.imageData);
        EXPECT_EQ(image->imageDataOrigin, data ? nullptr : before.imageDataOrigin);
    }
}

TEST_F(Lifecycle, ImageThatIsItsOwnMaskGoesOnce)
{
    for (const int flags : {31, 16}) {
        OrvImage *image = maskHeader();
        orvAllocateImage(image, 0, 0);
        image->maskROI = image;
        orvDeallocate(image, flags);
        if (flags == 16)
            orvDeallocate(image, 31);
        EXPECT_EQ(watch.live(), 0u);
    }
}

} // namespace
} // namespace front
