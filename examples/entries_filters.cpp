// Entries: medians, means, extremes, the fixed filters and morphology.
#include "entries.h"

#include <cstdint>

namespace sheet {
namespace {

void repeatEdges(OrvImage &image)
{
    orvSetBorderMode(&image, ORV_BORDER_REPLICATE, ORV_SIDE_ALL, 0);
}

// Runs filter(source, result) on a photograph with repeated edges.
template <class Filter> Picture filtered(const OrvImage &photograph, Filter filter)
{
    const Image source = owned(orvCloneImage(&photograph)), result = owned(orvCloneImage(&photograph));
    repeatEdges(*source);
    const double time = bestTime([&] { return filter(source.get(), result.get()); });
    return pictureOf(*result, *source, time);
}

// A tenth of the samples black or white, channel by channel or pixel by pixel.
Image withNoise(const OrvImage &photograph, bool wholePixels)
{
    Image noisy = owned(orvCloneImage(&photograph));
    std::uint32_t random = 1;
    const auto draw = [&] { return (random = random * 1664525 + 1013904223) >> 16; };
    for (std::int32_t y = 0; y < noisy->height; ++y) {
        std::uint8_t *const row = rowOf<std::uint8_t>(*noisy, y);
        const std::int32_t step = wholePixels ? noisy->nChannels : 1;
        for (std::int32_t x = 0; x < noisy->width * noisy->nChannels; x += step)
            if (draw() % 10 == 0)
                for (std::int32_t i = 0; i < step; ++i)
                    row[x + i] = draw() % 2 == 0 ? 0 : 255;
    }
    return noisy;
}

Picture besideNoise(const Image &noisy, const Picture &result)
{
    return {sideBySide(*noisy, *result.image), result.worked, result.microseconds, ""};
}

Picture median(const Photograph &photograph)
{
    const Image noisy = withNoise(*photograph.grey, false);
    return besideNoise(noisy, filtered(*noisy, [](const OrvImage *from, OrvImage *to) {
                           return orvMedianFilter(from, to, 3, 3, 1, 1);
                       }));
}

Picture colorMedian(const Photograph &photograph)
{
    const Image noisy = withNoise(*photograph.colour, true);
    return besideNoise(noisy, filtered(*noisy, [](const OrvImage *from, OrvImage *to) {
                           return orvColorMedianFilter(from, to, 3, 3, 1, 1);
                       }));
}

using WindowFunction = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t, std::int32_t, std::int32_t,
                                     std::int32_t);

// A square window around each pixel.
template <WindowFunction Function, std::int32_t Side> Picture around(const Photograph &photograph)
{
    return filtered(*photograph.colour, [](const OrvImage *from, OrvImage *to) {
        return Function(from, to, Side, Side, Side / 2, Side / 2);
    });
}

Picture motionBlur(const Photograph &photograph)
{
    return filtered(*photograph.colour,
                    [](const OrvImage *from, OrvImage *to) { return orvBlur(from, to, 41, 1, 0, 0); });
}

template <std::int32_t Filter> Picture fixedFilter(const Photograph &photograph)
{
    return filtered(*photograph.grey,
                    [](const OrvImage *from, OrvImage *to) { return orvFixedFilter(from, to, Filter); });
}

// Black and white: what is brighter than the middle, by a difference that saturates and a product that does.
Image blackAndWhite(const OrvImage &photograph)
{
    Image result = owned(orvCloneImage(&photograph));
    check(orvSubtractS(&photograph, result.get(), 127, 0));
    check(orvMultiplyS(result.get(), result.get(), 255));
    return result;
}

using Morphology = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t);

template <Morphology Operation> Picture morphology(const Photograph &photograph)
{
    const Image leaves = blackAndWhite(*photograph.grey);
    const Picture result = filtered(*leaves, [](const OrvImage *from, OrvImage *to) { return Operation(from, to, 2); });
    return {sideBySide(*leaves, *result.image), result.worked, result.microseconds, ""};
}

constexpr Entry table[] = {
    {"median", "orvMedianFilter", "Noise in a tenth of the samples, and what a median of 3 × 3 leaves of it.", true, 0,
     median},
    {"color-median", "orvColorMedianFilter",
     "Noise in a tenth of the pixels. The vector median takes pixels as they are, and makes no new colours.", true, 2,
     colorMedian},
    {"median-15", "orvMedianFilter", "A median of 15 × 15: small things vanish, and edges stay.", false, 1,
     around<orvMedianFilter, 15>},
    {"blur", "orvBlur", "The mean of 31 × 31 pixels.", true, 1, around<orvBlur, 31>},
    {"motion-blur", "orvBlur", "The mean of 41 pixels to the right, from an anchor at the left end.", false, 0,
     motionBlur},
    {"minimum", "orvMinFilter", "The smallest samples of 7 × 7.", false, 2, around<orvMinFilter, 7>},
    {"maximum", "orvMaxFilter", "The largest samples of 7 × 7.", true, 2, around<orvMaxFilter, 7>},
    {"sobel", "orvFixedFilter", "Sobel: edges that become brighter downwards.", true, 0,
     fixedFilter<ORV_FILTER_SOBEL_H>},
    {"laplace-5", "orvFixedFilter", "The Laplace filter of 5 × 5: lines and corners.", false, 1,
     fixedFilter<ORV_FILTER_LAPLACE_5>},
    {"gauss-5", "orvFixedFilter", "A Gaussian blur of 5 × 5.", false, 2, fixedFilter<ORV_FILTER_GAUSS_5>},
    {"sharpen-3", "orvFixedFilter", "Sharpened by the filter of 3 × 3.", false, 1, fixedFilter<ORV_FILTER_SHARPEN_3>},
    {"open", "orvOpen", "Black and white, and opened twice: small white spots vanish.", true, 2, morphology<orvOpen>},
    {"close", "orvClose", "The same closed twice: small black spots vanish.", false, 2, morphology<orvClose>},
    {"dilate", "orvDilate", "The same dilated twice: white grows by two pixels.", false, 2, morphology<orvDilate>},
    {"erode", "orvErode", "The same eroded twice: black grows by two pixels.", false, 2, morphology<orvErode>},
};

} // namespace

Family filterFamily()
{
    return {"Filters and morphology", table};
}

} // namespace sheet
