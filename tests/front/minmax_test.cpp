// The search for the smallest and the largest sample, against a naive one.
#include <bit>
#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "front/operations.h"
#include "front/reports.h"
#include "front/test_image.h"

namespace front {
namespace {

constexpr float untouched = 12345.0f;

// The bits of both results, for a NaN to equal itself. On the x87 a float that is copied by value loses the bit of a
// signalling NaN.
using Found = std::pair<std::uint32_t, std::uint32_t>;

Found found(const float &min, const float &max)
{
    return {std::bit_cast<std::uint32_t>(min), std::bit_cast<std::uint32_t>(max)};
}

// Channel by channel, from the first sample on.
Found expectedOf(const TestImage &image)
{
    const OrvROI &roi = *image.header.roi;
    const long long right = std::min<long long>(image.form.width, 0LL + roi.xOffset + roi.width);
    const long long bottom = std::min<long long>(image.form.height, 0LL + roi.yOffset + roi.height);
    const bool withoutAlpha = roi.coi == 0 && image.form.channels == 4 && image.form.alpha != 0;
    const std::int32_t first = roi.coi == 0 ? 0 : roi.coi - 1;
    const std::int32_t end = roi.coi != 0 ? roi.coi : withoutAlpha ? 3 : image.form.channels;
    const bool unserved = image.form.order == ORV_DATA_ORDER_PIXEL && roi.coi == 0 &&
                          (image.form.channels == 2 || image.form.channels == 5);
    if (unserved || roi.xOffset >= right || roi.yOffset >= bottom)
        return found(untouched, untouched);
    const auto less = [](std::uint32_t a, std::uint32_t b) {
        return std::bit_cast<float>(a) < std::bit_cast<float>(b);
    };
    std::uint32_t min = image.get(roi.xOffset, roi.yOffset, first).bits, max = min;
    for (std::int32_t channel = first; channel < end; ++channel)
        for (std::int32_t y = roi.yOffset; y < bottom; ++y)
            for (std::int32_t x = roi.xOffset; x < right; ++x) {
                const std::uint32_t sample = image.get(x, y, channel).bits;
                min = less(sample, min) ? sample : min;
                max = less(max, sample) ? sample : max;
            }
    return {min, max};
}

// All layouts and channels, NaN and infinities among the samples, masks that are not consulted, steps of any number of
// bytes, rectangles in and beyond the image.
TEST(MinMax, FindsWhatANaiveSearchFinds)
{
    Random random(81);
    Reports reports;
    int nans = 0;
    for (int round = 0; round < 3000; ++round) {
        const Channels channels = random.oneOf(choicesOfChannels);
        const Form form = {.depth = ORV_DEPTH_32F,
                           .channels = channels.count,
                           .alpha = channels.count == 1 && channels.coi == 0 ? 0 : channels.alpha,
                           .order = random.between(0, 1),
                           .width = random.between(1, 30),
                           .height = random.between(1, 6),
                           .extraStep = random.between(0, 9)};
        TestImage image(form, random);
        image.setWholeRectangle(channels.coi);
        if (random.once(2))
            setRandomRectangle(image, anyRectangles(random), channels.coi, random);
        if (random.once(3))
            image.setMask(randomMask(3, 3, random));
        float min = untouched, max = untouched;
        ASSERT_EQ(orvMinMaxFP(&image.header, &min, &max), ORV_STATUS_OK);
        ASSERT_EQ(found(min, max), expectedOf(image)) << image;
        nans += std::isnan(min);
    }
    EXPECT_GT(nans, 10);
    EXPECT_TRUE(reports.all().empty());
}

// Each row has one fault more than the next one; the first found is reported. Results stay.
TEST(MinMax, ChecksInTheirOrder)
{
    Random random(82);
    TestImage image({.depth = ORV_DEPTH_32F, .width = 4, .height = 3}, random);
    OrvTileInfo tile = {[] {}, 0, nullptr, 8, 8};
    float min = untouched, max = untouched;
    const struct {
        bool badAlign, nullMax, integers, onlyAlpha;
        OrvStatus result, status;
        const char *context;
    } rows[] = {{true, true, true, true, ORV_STATUS_BAD_ARGUMENT, ORV_STATUS_BAD_ALIGN, "Incorrect Image"},
                {false, true, true, true, ORV_STATUS_BAD_ARGUMENT, ORV_STATUS_BAD_ARGUMENT, "((min == 0)||(max == 0))"},
                {false, false, true, true, ORV_STATUS_BAD_ARGUMENT, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != 32)"},
                {false, false, false, true, ORV_STATUS_OK, ORV_STATUS_OK, ""},
                {false, false, false, false, ORV_STATUS_NOT_IMPLEMENTED, ORV_STATUS_NOT_IMPLEMENTED, ""}};
    Reports reports;
    for (const auto &row : rows) {
        reports.clear();
        OrvImage header = image.header;
        header.imageData = nullptr;
        header.tileInfo = &tile;
        header.align = row.badAlign ? 5 : 4;
        header.depth = row.integers ? ORV_DEPTH_32S : ORV_DEPTH_32F;
        header.alphaChannel = row.onlyAlpha ? 1 : 0;
        EXPECT_EQ(orvMinMaxFP(&header, &min, row.nullMax ? nullptr : &max), row.result) << row.context;
        std::vector<Report> expected;
        if (row.status != ORV_STATUS_OK)
            expected.push_back({row.status, "orvMinMaxFP", row.context, "orvmnmxf"});
        EXPECT_EQ(reports.all(), expected);
        EXPECT_EQ(found(min, max), found(untouched, untouched));
    }
}

} // namespace
} // namespace front
