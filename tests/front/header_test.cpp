// The check of headers: every test in its order, the masks, and headers that make no sense at all.
#include <deque>
#include <functional>

#include "front/reports.h"
#include "front/test_image.h"

#include <gtest/gtest.h>

namespace front {
namespace {

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

enum Of { ofRaster = 1, ofTiled = 2, ofBoth = 3 }; // images that a fault concerns

template <class Record> struct FieldFault {
    OrvStatus status;
    std::int32_t Record::*field;
    std::vector<std::int32_t> values;
};

template <class Record> using FieldFaults = std::vector<FieldFault<Record>>;

struct Fault {
    OrvStatus status;
    std::function<void(Subject &)> spoil;
    Of of = ofBoth;
};

// All of them, in the order of the tests.
std::vector<Fault> makeFaults()
{
    std::vector<Fault> all;
    const auto add = [&](auto record, const auto &faults, Of of = ofBoth) {
        for (const auto &fault : faults)
            for (const std::int32_t value : fault.values)
                all.push_back({fault.status, [=, field = fault.field](Subject &s) { (s.*record).*field = value; }, of});
    };
    all.push_back({-12, [](Subject &s) { s.image.tileInfo = &s.tile, s.image.imageData = s.raster; }});
    all.push_back({-12, [](Subject &s) { s.image.tileInfo = nullptr, s.image.imageData = nullptr; }});
    using Image = OrvImage;
    add(&Subject::image, FieldFaults<Image>{{-10, &Image::imageSize, {0, leastInt}}, {-13, &Image::widthStep, {0, -8}}},
        ofRaster);
    add(&Subject::image, FieldFaults<Image>{{-10, &Image::height, {0, leastInt}},
                                            {-10, &Image::width, {0, -1}},
                                            {-15, &Image::nChannels, {0, leastInt}},
                                            {-16, &Image::depth, {ORV_DEPTH_1U}},
                                            {-17, &Image::depth, {0, 7, 64, leastInt + 1, leastInt, -1}},
                                            {-18, &Image::alphaChannel, {1, 4, -1}},
                                            {-19, &Image::dataOrder, {2, -1}},
                                            {-20, &Image::origin, {2, -1}},
                                            {-21, &Image::align, {0, 2, 12, 64, -4}}});
    all.push_back({-117, [](Subject &s) { s.mask.depth = ORV_DEPTH_8U; }});
    all.push_back({-26, [](Subject &s) { s.mask.tileInfo = &s.tile; }});
    all.push_back({-112, [](Subject &s) { s.mask.imageData = nullptr; }});
    add(&Subject::mask, FieldFaults<Image>{{-110, &Image::imageSize, {-1}},
                                           {-113, &Image::widthStep, {0}},
                                           {-110, &Image::width, {0}},
                                           {-115, &Image::nChannels, {0}},
                                           {-116, &Image::nChannels, {3}},
                                           {-118, &Image::alphaChannel, {3}},
                                           {-119, &Image::dataOrder, {5}},
                                           {-120, &Image::origin, {5}},
                                           {-121, &Image::align, {5}}});
    add(&Subject::maskRectangle,
        FieldFaults<OrvROI>{{-124, &OrvROI::coi, {4}}, {-125, &OrvROI::width, {0}}, {-111, &OrvROI::yOffset, {-1}}});
    all.push_back({-22, [](Subject &s) { s.tile.callback = nullptr; }, ofTiled});
    add(&Subject::tile,
        FieldFaults<OrvTileInfo>{{-23, &OrvTileInfo::width, {0, 12}}, {-23, &OrvTileInfo::height, {-8, 4}}}, ofTiled);
    add(&Subject::rectangle, FieldFaults<OrvROI>{{-24, &OrvROI::coi, {-1, 4}},
                                                 {-25, &OrvROI::height, {0}},
                                                 {-25, &OrvROI::width, {leastInt}},
                                                 {-11, &OrvROI::xOffset, {-1}},
                                                 {-11, &OrvROI::yOffset, {leastInt}}});
    return all;
}

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

// Of two faults in one header the earlier test finds its own.
TEST_F(HeaderCheck, FindsTheEarlierFault)
{
    expectStatus(ORV_STATUS_NULL_HEADER, nullptr);
    const std::vector<Fault> faults = makeFaults();
    for (std::size_t earlier = 0; earlier < faults.size(); ++earlier)
        for (std::size_t later = earlier; later < faults.size(); ++later)
            for (const bool tiled : {false, true}) {
                if ((faults[earlier].of & faults[later].of & (tiled ? ofTiled : ofRaster)) == 0)
                    continue;
                SCOPED_TRACE("faults " + std::to_string(earlier) + " and " + std::to_string(later));
                Subject subject(tiled);
                faults[later].spoil(subject);
                faults[earlier].spoil(subject);
                expectStatus(faults[earlier].status, &subject.image);
            }
}

TEST_F(HeaderCheck, PassesWhatIsUnusualOnly)
{
    void (*const changes[])(Subject &) = {
        [](Subject &) {},
        [](Subject &s) { s.image.roi = nullptr; },
        [](Subject &s) { s.image.maskROI = nullptr; },
        [](Subject &s) { s.image.tileInfo = &s.tile, s.image.imageData = nullptr; },
        [](Subject &s) { s.image.nChannels = 2, s.rectangle.coi = 2; },
        [](Subject &s) { s.image.nChannels = 7; },
        [](Subject &s) { s.image.alphaChannel = 3; },
        [](Subject &s) {
            s.rectangle = {0, mostInt, mostInt, mostInt, mostInt};
        },
        [](Subject &s) { s.image.widthStep = 1; },
        [](Subject &s) { s.image.nSize = -7, s.image.ID = 9; },
        [](Subject &s) { s.image.width = s.image.height = s.image.nChannels = mostInt; },
        [](Subject &s) { s.image.widthStep = s.image.imageSize = mostInt; },
        [](Subject &s) { s.image.BorderMode[0] = -1, s.image.BorderConst[3] = leastInt; },
    };
    for (const auto &change : changes) {
        SCOPED_TRACE(&change - changes);
        Subject subject;
        change(subject);
        expectStatus(ORV_STATUS_OK, &subject.image);
    }
    const Subject tiled(true);
    expectStatus(ORV_STATUS_OK, &tiled.image);
    for (const std::int32_t depth : allDepths)
        for (const std::int32_t align : {4, 8, 16, 32}) {
            Subject subject;
            subject.image.depth = depth;
            subject.image.nChannels = subject.rectangle.coi = 1;
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
