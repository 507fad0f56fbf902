// The test pattern against its formula, and how its image is made, refused and released.
#include <cmath>
#include <limits>

#include "front/memory_watch.h"
#include "front/pointwise_call.h"

namespace front {
namespace {

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

// The library's raster, for the naive addressing of the tests.
TestImage viewOf(const OrvImage &image)
{
    const std::uint8_t *first = image.imageData;
    Form form = {.depth = image.depth, .align = image.align, .width = image.width, .height = image.height};
    form.extraStep = image.widthStep - form.rowBytes();
    return TestImage(form, std::make_shared<Bytes>(first, first + image.imageSize), 0);
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

TEST(Jaehne, ValuesInTheMiddle)
{
    const struct {
        std::int32_t depth;
        double value;
    } rows[] = {{ORV_DEPTH_8U, 127}, {ORV_DEPTH_8S, 0},  {ORV_DEPTH_16U, 32767},
                {ORV_DEPTH_16S, 0},  {ORV_DEPTH_32S, 0}, {ORV_DEPTH_32F, 0.49999f}};
    for (const auto &[depth, value] : rows) {
        OrvImage *image = orvCreateImageJaehne(depth, 1, 1);
        ASSERT_NE(image, nullptr);
        const Sample sample = viewOf(*image).get(0, 0, 0);
        EXPECT_EQ(depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer()), value);
        orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    }
}

TEST(Jaehne, MakesAnImageOfTheCaller)
{
    MemoryWatch watch;
    OrvImage *image = orvCreateImageJaehne(ORV_DEPTH_16U, 5, 3);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->nSize, 112);
    EXPECT_EQ(image->nChannels, 1);
    EXPECT_EQ(image->alphaChannel, 0);
    EXPECT_EQ(image->depth, ORV_DEPTH_16U);
    EXPECT_EQ(std::string(image->colorModel, 4) + std::string(image->channelSeq, 4), "GRAYGRAY");
    EXPECT_EQ(image->dataOrder, ORV_DATA_ORDER_PIXEL);
    EXPECT_EQ(image->origin, ORV_ORIGIN_TL);
    EXPECT_EQ(image->align, 8);
    EXPECT_EQ(image->widthStep, 16);
    EXPECT_EQ(image->imageSize, 48);
    EXPECT_TRUE(image->roi == nullptr && image->maskROI == nullptr && image->imageId == nullptr &&
                image->tileInfo == nullptr);
    orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    EXPECT_EQ(watch.live(), 0u);
}

TEST(Jaehne, Refuses)
{
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const Report noDepth = {ORV_STATUS_NOT_IMPLEMENTED, "orvCreateImageJaehne", "", "orvgenim"};
    const Report badSize = {ORV_STATUS_BAD_IMAGE_SIZE, "orvCreateImageJaehne", "Incorrect image size", "orvgenim"};
    const Report badDepth = {ORV_STATUS_BAD_DEPTH, "orvCreateImageJaehne", "Incorrect depth value in the image header",
                             "orvgenim"};
    const Report noRaster = {ORV_STATUS_NO_MEMORY, "orvAllocateImage", "for allocate image data", "orvalloc"};
    const Report noFloatRaster = {ORV_STATUS_NO_MEMORY, "orvAllocateImageFP", "for allocate image data", "orvalloc"};
    const struct {
        std::int32_t depth, width, height;
        Report report;
    } rows[] = {{ORV_DEPTH_1U, 8, 8, noDepth},
                {ORV_DEPTH_1U, 0, 8, noDepth},
                {ORV_DEPTH_8U, 0, 8, badSize},
                {ORV_DEPTH_8U, 8, -1, badSize},
                {7, 8, 0, badSize},
                {7, 8, 8, badDepth},
                {0, 8, 8, badDepth},
                {64, 8, 8, badDepth},
                {ORV_DEPTH_8U, most, most, noRaster},
                {ORV_DEPTH_32S, 1 << 15, 1 << 15, noRaster},
                {ORV_DEPTH_32F, most, 1, noFloatRaster}};
    Reports reports;
    MemoryWatch watch;
    for (const auto &[depth, width, height, report] : rows) {
        reports.clear();
        EXPECT_EQ(orvCreateImageJaehne(depth, width, height), nullptr);
        EXPECT_EQ(reports.all(), std::vector<Report>{report});
        EXPECT_EQ(orvGetErrStatus(), report.status);
        EXPECT_EQ(watch.live(), 0u);
    }
}

TEST(Jaehne, KeepsNothingWithoutMemory)
{
    const Report noHeader = {ORV_STATUS_NO_MEMORY, "orvCreateImageJaehne",
                             "Not enough memory to allocate header for ImageJaehne", "orvgenim"};
    Reports reports;
    for (const bool real : {false, true}) {
        const Report noRaster = {ORV_STATUS_NO_MEMORY, real ? "orvAllocateImageFP" : "orvAllocateImage",
                                 "for allocate image data", "orvalloc"};
        for (const int failing : {0, 1}) {
            MemoryWatch watch;
            watch.failAt(failing);
            reports.clear();
            EXPECT_EQ(orvCreateImageJaehne(real ? ORV_DEPTH_32F : ORV_DEPTH_8U, 5, 5), nullptr);
            EXPECT_EQ(reports.all(), std::vector<Report>{failing == 0 ? noHeader : noRaster});
            EXPECT_EQ(watch.live(), 0u);
        }
    }
}

} // namespace
} // namespace front
