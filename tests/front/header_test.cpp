// The check of headers: every test in its order, the masks, and headers that make no sense at all.
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "front/reports.h"

namespace front {
namespace {

constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t leastInt = std::numeric_limits<std::int32_t>::min();

void provideNoTile() {}

// A valid image with a rectangle, and a valid mask with one of its own.
struct Subject {
    std::uint8_t raster[64] = {};
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 16, 8};
    OrvROI rectangle = {3, 1, 1, 2, 2}, maskRectangle = {1, 0, 0, 1, 1};
    OrvImage mask = {}, image = {};

    explicit Subject(bool tiled = false)
    {
        image.nChannels = 3;
        image.depth = ORV_DEPTH_16S;
        image.align = ORV_ALIGN_8BYTES;
        image.width = 2;
        image.height = 2;
        image.roi = &rectangle;
        mask = image;
        mask.nChannels = 1;
        mask.depth = ORV_DEPTH_1U;
        mask.roi = &maskRectangle;
        image.maskROI = &mask;
        for (OrvImage *one : {&image, &mask}) {
            one->imageSize = 16;
            one->widthStep = 8;
            one->imageData = raster;
        }
        if (tiled) {
            image.tileInfo = &tile;
            image.imageData = nullptr;
            image.imageSize = image.widthStep = 0;
        }
    }
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;
};

// One fault of the image. It concerns images with a raster, tiled ones, or both.
struct Fault {
    const char *what;
    OrvStatus status;
    enum { Raster = 1, Tiled = 2, Both = 3 } of;
    void (*spoil)(Subject &subject);
};

// In the order of the tests.
const Fault faults[] = {
    {"raster and tiles", -12, Fault::Both,
     [](Subject &s) {
         s.image.tileInfo = &s.tile;
         s.image.imageData = s.raster;
     }},
    {"neither raster nor tiles", -12, Fault::Both,
     [](Subject &s) {
         s.image.tileInfo = nullptr;
         s.image.imageData = nullptr;
     }},
    {"size 0", -10, Fault::Raster, [](Subject &s) { s.image.imageSize = 0; }},
    {"negative size", -10, Fault::Raster, [](Subject &s) { s.image.imageSize = leastInt; }},
    {"step 0", -13, Fault::Raster, [](Subject &s) { s.image.widthStep = 0; }},
    {"negative step", -13, Fault::Raster, [](Subject &s) { s.image.widthStep = -8; }},
    {"height 0", -10, Fault::Both, [](Subject &s) { s.image.height = 0; }},
    {"negative height", -10, Fault::Both, [](Subject &s) { s.image.height = leastInt; }},
    {"width 0", -10, Fault::Both, [](Subject &s) { s.image.width = 0; }},
    {"negative width", -10, Fault::Both, [](Subject &s) { s.image.width = -1; }},
    {"no channels", -15, Fault::Both, [](Subject &s) { s.image.nChannels = 0; }},
    {"negative channels", -15, Fault::Both, [](Subject &s) { s.image.nChannels = leastInt; }},
    {"channels at 1U", -16, Fault::Both,
     [](Subject &s) {
         s.image.depth = ORV_DEPTH_1U;
         s.image.nChannels = 3;
     }},
    {"depth 0", -17, Fault::Both, [](Subject &s) { s.image.depth = 0; }},
    {"depth 7", -17, Fault::Both, [](Subject &s) { s.image.depth = 7; }},
    {"depth 64", -17, Fault::Both, [](Subject &s) { s.image.depth = 64; }},
    {"signed 1U", -17, Fault::Both, [](Subject &s) { s.image.depth = leastInt + 1; }},
    {"sign alone", -17, Fault::Both, [](Subject &s) { s.image.depth = leastInt; }},
    {"depth -1", -17, Fault::Both, [](Subject &s) { s.image.depth = -1; }},
    {"alpha first", -18, Fault::Both, [](Subject &s) { s.image.alphaChannel = 1; }},
    {"alpha above", -18, Fault::Both, [](Subject &s) { s.image.alphaChannel = s.image.nChannels + 1; }},
    {"alpha negative", -18, Fault::Both, [](Subject &s) { s.image.alphaChannel = -1; }},
    {"order 2", -19, Fault::Both, [](Subject &s) { s.image.dataOrder = 2; }},
    {"order -1", -19, Fault::Both, [](Subject &s) { s.image.dataOrder = -1; }},
    {"origin 2", -20, Fault::Both, [](Subject &s) { s.image.origin = 2; }},
    {"origin -1", -20, Fault::Both, [](Subject &s) { s.image.origin = -1; }},
    {"align 0", -21, Fault::Both, [](Subject &s) { s.image.align = 0; }},
    {"align 2", -21, Fault::Both, [](Subject &s) { s.image.align = 2; }},
    {"align 12", -21, Fault::Both, [](Subject &s) { s.image.align = 12; }},
    {"align 64", -21, Fault::Both, [](Subject &s) { s.image.align = 64; }},
    {"align -4", -21, Fault::Both, [](Subject &s) { s.image.align = -4; }},
    {"mask of 8U", -117, Fault::Both, [](Subject &s) { s.mask.depth = ORV_DEPTH_8U; }},
    {"mask with tiles", -26, Fault::Both, [](Subject &s) { s.mask.tileInfo = &s.tile; }},
    {"mask without raster", -112, Fault::Both, [](Subject &s) { s.mask.imageData = nullptr; }},
    {"size of mask", -110, Fault::Both, [](Subject &s) { s.mask.imageSize = -1; }},
    {"step of mask", -113, Fault::Both, [](Subject &s) { s.mask.widthStep = 0; }},
    {"width of mask", -110, Fault::Both, [](Subject &s) { s.mask.width = 0; }},
    {"no channels of mask", -115, Fault::Both, [](Subject &s) { s.mask.nChannels = 0; }},
    {"channels of mask", -116, Fault::Both, [](Subject &s) { s.mask.nChannels = 3; }},
    {"alpha of mask", -118, Fault::Both, [](Subject &s) { s.mask.alphaChannel = 3; }},
    {"order of mask", -119, Fault::Both, [](Subject &s) { s.mask.dataOrder = 5; }},
    {"origin of mask", -120, Fault::Both, [](Subject &s) { s.mask.origin = 5; }},
    {"align of mask", -121, Fault::Both, [](Subject &s) { s.mask.align = 5; }},
    {"coi of mask", -124, Fault::Both, [](Subject &s) { s.maskRectangle.coi = s.mask.nChannels + 1; }},
    {"rectangle of mask", -125, Fault::Both, [](Subject &s) { s.maskRectangle.width = 0; }},
    {"offset of mask", -111, Fault::Both, [](Subject &s) { s.maskRectangle.yOffset = -1; }},
    {"no tile callback", -22, Fault::Tiled, [](Subject &s) { s.tile.callback = nullptr; }},
    {"tile width 0", -23, Fault::Tiled, [](Subject &s) { s.tile.width = 0; }},
    {"tile width 12", -23, Fault::Tiled, [](Subject &s) { s.tile.width = 12; }},
    {"tile height -8", -23, Fault::Tiled, [](Subject &s) { s.tile.height = -8; }},
    {"tile height 4", -23, Fault::Tiled, [](Subject &s) { s.tile.height = 4; }},
    {"coi -1", -24, Fault::Both, [](Subject &s) { s.rectangle.coi = -1; }},
    {"coi above", -24, Fault::Both, [](Subject &s) { s.rectangle.coi = s.image.nChannels + 1; }},
    {"rectangle height 0", -25, Fault::Both, [](Subject &s) { s.rectangle.height = 0; }},
    {"rectangle width", -25, Fault::Both, [](Subject &s) { s.rectangle.width = leastInt; }},
    {"offset x", -11, Fault::Both, [](Subject &s) { s.rectangle.xOffset = -1; }},
    {"offset y", -11, Fault::Both, [](Subject &s) { s.rectangle.yOffset = leastInt; }},
};

class HeaderCheck : public testing::Test {
protected:
    // The status comes back, is stored when it is a failure, and is reported in no case.
    void expectStatus(OrvStatus status, const OrvImage *image)
    {
        constexpr OrvStatus before = 4711;
        orvSetErrStatus(before);
        EXPECT_EQ(orvCheckImageHeader(image), status);
        EXPECT_EQ(orvGetErrStatus(), status == ORV_STATUS_OK ? before : status);
        EXPECT_TRUE(reports.all().empty());
    }

    Reports reports;
};

TEST_F(HeaderCheck, FindsEachFault)
{
    expectStatus(ORV_STATUS_NULL_HEADER, nullptr);
    for (const Fault &fault : faults)
        for (const bool tiled : {false, true}) {
            if ((fault.of & (tiled ? Fault::Tiled : Fault::Raster)) == 0)
                continue;
            SCOPED_TRACE(fault.what);
            Subject subject(tiled);
            fault.spoil(subject);
            expectStatus(fault.status, &subject.image);
        }
}

TEST_F(HeaderCheck, FindsTheEarlierOfTwoFaults)
{
    for (const Fault &earlier : faults)
        for (const Fault *later = &earlier + 1; later != std::end(faults); ++later)
            for (const bool tiled : {false, true}) {
                if ((earlier.of & later->of & (tiled ? Fault::Tiled : Fault::Raster)) == 0)
                    continue;
                SCOPED_TRACE(std::string(earlier.what) + " before " + later->what);
                Subject subject(tiled);
                later->spoil(subject);
                earlier.spoil(subject);
                expectStatus(earlier.status, &subject.image);
            }
}

TEST_F(HeaderCheck, PassesWhatIsUnusualOnly)
{
    const struct {
        const char *what;
        void (*change)(Subject &subject);
    } rows[] = {
        {"nothing", [](Subject &) {}},
        {"no rectangle", [](Subject &s) { s.image.roi = nullptr; }},
        {"no mask", [](Subject &s) { s.image.maskROI = nullptr; }},
        {"tiled", [](Subject &s) { s.image.tileInfo = &s.tile, s.image.imageData = nullptr; }},
        {"tiled without sizes",
         [](Subject &s) {
             s.image.tileInfo = &s.tile;
             s.image.imageData = nullptr;
             s.image.imageSize = s.image.widthStep = 0;
         }},
        {"two channels", [](Subject &s) { s.image.nChannels = 2, s.rectangle.coi = 2; }},
        {"seven channels", [](Subject &s) { s.image.nChannels = 7; }},
        {"alpha of three", [](Subject &s) { s.image.alphaChannel = 3; }},
        {"rectangle beyond",
         [](Subject &s) {
             s.rectangle = {0, mostInt, mostInt, mostInt, mostInt};
         }},
        {"step that fits no row", [](Subject &s) { s.image.widthStep = 1; }},
        {"wrong record size", [](Subject &s) { s.image.nSize = -7, s.image.ID = 9; }},
        {"absurd size", [](Subject &s) { s.image.width = s.image.height = s.image.nChannels = mostInt; }},
        {"absurd raster", [](Subject &s) { s.image.widthStep = s.image.imageSize = mostInt; }},
        {"border", [](Subject &s) { s.image.BorderMode[0] = -1, s.image.BorderConst[3] = leastInt; }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Subject subject;
        row.change(subject);
        expectStatus(ORV_STATUS_OK, &subject.image);
    }
    for (const std::int32_t depth : {1, 8, 16, 32, leastInt + 8, leastInt + 16, leastInt + 32}) {
        Subject subject;
        subject.image.depth = depth;
        subject.image.nChannels = subject.rectangle.coi = 1;
        expectStatus(ORV_STATUS_OK, &subject.image);
    }
    for (const std::int32_t align : {4, 8, 16, 32}) {
        Subject subject;
        subject.image.align = align;
        expectStatus(ORV_STATUS_OK, &subject.image);
    }
}

// Headers of masks in a row, each the mask of the one before.
std::deque<OrvImage> chainOfMasks(std::size_t count)
{
    static std::uint8_t raster[16];
    OrvImage mask = Subject().mask;
    mask.imageData = raster;
    mask.roi = nullptr;
    std::deque<OrvImage> chain(count, mask);
    for (std::size_t i = 0; i + 1 < count; ++i)
        chain[i].maskROI = &chain[i + 1];
    return chain;
}

TEST_F(HeaderCheck, FollowsMasksOfMasks)
{
    std::deque<OrvImage> chain = chainOfMasks(50);
    expectStatus(ORV_STATUS_OK, &chain.front());
    for (const int depth : {1, 2, 49}) {
        OrvImage &mask = chain[static_cast<std::size_t>(depth)];
        mask.align = 5;
        expectStatus(-21 - 100 * depth, &chain.front());
        mask.align = 4;
        mask.depth = ORV_DEPTH_8S;
        expectStatus(-17 - 100 * depth, &chain.front());
        mask.depth = ORV_DEPTH_1U;
        OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
        mask.tileInfo = &tile;
        expectStatus(-26 - 100 * (depth - 1), &chain.front());
        mask.tileInfo = nullptr;
    }
}

TEST_F(HeaderCheck, EndsOnMasksWithoutEnd)
{
    std::deque<OrvImage> chain = chainOfMasks(3);
    chain[0].maskROI = &chain[0]; // its own
    expectStatus(ORV_STATUS_OK, &chain[0]);
    chain[0].maskROI = &chain[1]; // a ring of three, and a row that leads into it
    chain[2].maskROI = &chain[0];
    expectStatus(ORV_STATUS_OK, &chain[0]);
    chain[2].maskROI = &chain[1];
    expectStatus(ORV_STATUS_OK, &chain[0]);
    OrvROI behind = {2, 0, 0, 1, 1}; // looked at when the mask's own mask has passed
    chain[1].roi = &behind;
    expectStatus(ORV_STATUS_BAD_COI + ORV_STATUS_MASK_BASE, &chain[0]);

    Subject subject;
    subject.image.maskROI = &subject.image; // no mask, but an image
    expectStatus(ORV_STATUS_BAD_DEPTH + ORV_STATUS_MASK_BASE, &subject.image);

    std::deque<OrvImage> endless = chainOfMasks(10000);
    expectStatus(ORV_STATUS_OK, &endless.front());
}

} // namespace
} // namespace front
