// Entries: histograms, look-up tables and thresholds.
#include "entries.h"

#include <algorithm>
#include <cstdint>

namespace sheet {
namespace {

// A record over equal intervals of levels, with its arrays.
struct Levels {
    std::int32_t keys[257], counts[256], factors[256];
    OrvLUT record;
    OrvLUT *pointers[1] = {&record};

    explicit Levels(std::int32_t intervals) : record{intervals + 1, keys, counts, factors, 0}
    {
        for (std::int32_t i = 0; i <= intervals; ++i)
            keys[i] = 256 * i / intervals;
    }
    Levels(const Levels &) = delete;
    Levels &operator=(const Levels &) = delete;
};

// Bars of black on white, each a rectangle that is filled. The highest one has the height of the picture.
Image drawn(const Levels &levels, Size size)
{
    Image picture = newImage({.channels = 1}, size);
    check(orvSet(picture.get(), 255));
    const std::int32_t bars = levels.record.num - 1;
    const std::int32_t most = std::max(1, *std::max_element(levels.counts, levels.counts + bars));
    for (std::int32_t i = 0; i < bars; ++i) {
        const std::int32_t left = size.width * i / bars, right = size.width * (i + 1) / bars;
        const std::int32_t height = static_cast<std::int32_t>(std::int64_t{size.height} * levels.counts[i] / most);
        if (right <= left || height == 0)
            continue;
        OrvROI bar = {0, left, size.height - height, right - left, height};
        OrvImage view = viewOf(*picture, &bar);
        check(orvSet(&view, 40));
    }
    return picture;
}

// A picture beside its histogram.
Image withHistogram(const OrvImage &image)
{
    Levels levels(128);
    check(orvComputeHisto(&image, levels.pointers));
    return sideBySide(image, *drawn(levels, sizeOf(image)));
}

Picture histogram(const Photograph &photograph)
{
    Levels levels(128);
    const double time = bestTime([&] { return orvComputeHisto(photograph.grey.get(), levels.pointers); });
    return {sideBySide(*photograph.grey, *drawn(levels, sizeOf(*photograph.grey))), describe(*photograph.grey), time,
            ""};
}

// The photograph with half its contrast, which the next two bring back.
Image flat(const OrvImage &photograph)
{
    Image image = owned(orvCloneImage(&photograph));
    check(orvMultiplySScale(&photograph, image.get(), 100));
    check(orvAddS(image.get(), image.get(), 70));
    return image;
}

// One slope from the darkest level to the brightest, of which a hundredth of the samples lies outside at each end.
Picture stretched(const Photograph &photograph)
{
    const Image source = flat(*photograph.grey), result = owned(orvCloneImage(source.get()));
    Levels levels(256);
    check(orvComputeHisto(source.get(), levels.pointers));
    const std::int32_t hundredth = source->width * source->height / 100;
    std::int32_t low = 0, high = 255;
    for (std::int32_t sum = 0; low < 255 && (sum += levels.counts[low]) <= hundredth;)
        ++low;
    for (std::int32_t sum = 0; high > low + 1 && (sum += levels.counts[high]) <= hundredth;)
        --high;
    // Factors are whole numbers: of the two that are nearest, the smaller one stays within the range.
    const std::int32_t factor = std::max(1, 255 / (high - low));
    Levels slope(3);
    slope.keys[0] = 0, slope.keys[1] = low, slope.keys[2] = low + std::min(255 - low, 255 / factor),
    slope.keys[3] = 256;
    slope.counts[0] = 0, slope.counts[1] = 0, slope.counts[2] = 255;
    slope.factors[0] = 0, slope.factors[1] = factor, slope.factors[2] = 0;
    slope.record.interpolateType = 1;
    const double time = bestTime([&] { return orvContrastStretch(source.get(), result.get(), slope.pointers); });
    return {withHistogram(*result), describe(*source), time, ""};
}

Picture equalized(const Photograph &photograph)
{
    const Image source = flat(*photograph.grey), result = owned(orvCloneImage(source.get()));
    Levels levels(256);
    const double time = bestTime([&] { return orvHistoEqualize(source.get(), result.get(), levels.pointers); },
                                 [&] { check(orvComputeHisto(source.get(), levels.pointers)); });
    return {withHistogram(*result), describe(*source), time, ""};
}

Picture flattened(const Photograph &photograph)
{
    const Image source = flat(*photograph.grey);
    return {withHistogram(*source), describe(*source), -1, ""};
}

// Four levels, each channel by itself.
Picture posterized(const Photograph &photograph)
{
    const Image result = owned(orvCloneImage(photograph.colour.get()));
    Levels levels(4);
    for (std::int32_t i = 0; i < 4; ++i)
        levels.counts[i] = 85 * i;
    OrvLUT *records[] = {&levels.record, &levels.record, &levels.record};
    const double time = bestTime([&] { return orvContrastStretch(photograph.colour.get(), result.get(), records); });
    return pictureOf(*result, *photograph.colour, time);
}

template <std::int32_t Level> Picture thresholded(const Photograph &photograph)
{
    const Image result = owned(orvCloneImage(photograph.grey.get()));
    const double time = bestTime([&] { return orvThreshold(photograph.grey.get(), result.get(), Level); });
    return pictureOf(*result, *photograph.grey, time);
}

// What is bright becomes a mask, under which a blurred picture keeps its colours.
Picture throughThreshold(const Photograph &photograph)
{
    const Image mask = owned(orvCloneImage(photograph.grey.get())),
                result = owned(orvCloneImage(photograph.colour.get()));
    check(orvThreshold(photograph.grey.get(), mask.get(), 150));
    mask->depth = ORV_DEPTH_1U;
    const auto makeGrey = [&] {
        for (std::int32_t coi = 1; coi <= 3; ++coi) {
            OrvROI channel = {coi, 0, 0, result->width, result->height};
            OrvImage view = viewOf(*result, &channel);
            check(orvCopy(photograph.grey.get(), &view));
        }
    };
    OrvImage target = viewOf(*result, nullptr, mask.get());
    const double time = bestTime([&] { return orvCopy(photograph.colour.get(), &target); }, makeGrey);
    return pictureOf(*result, *photograph.colour, time);
}

constexpr Entry table[] = {
    {"histogram", "orvComputeHisto", "A photograph, and its histogram drawn by fills of rectangles.", true, 0,
     histogram},
    {"flat", "orvComputeHisto", "The same with less than half its contrast.", false, 0, flattened},
    {"stretched", "orvContrastStretch", "Its contrast stretched by one slope.", true, 0, stretched},
    {"equalized", "orvHistoEqualize", "Its histogram equalised: all levels are used about as often.", true, 0,
     equalized},
    {"posterized", "orvContrastStretch", "Four levels a channel.", true, 2, posterized},
    {"threshold", "orvThreshold", "Black below 128, white from there on.", true, 1, thresholded<128>},
    {"threshold-low", "orvThreshold", "The same with a threshold of 60.", false, 1, thresholded<60>},
    {"threshold-mask", "orvCopy", "Colour where a threshold of 150 made the mask, grey elsewhere.", true, 2,
     throughThreshold},
};

} // namespace

Family levelFamily()
{
    return {"Histograms, look-up tables and thresholds", table};
}

} // namespace sheet
