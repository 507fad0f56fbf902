// Entries: sums, differences and products of pictures and constants.
#include "entries.h"

namespace sheet {
namespace {

Image like(const OrvImage &image)
{
    return owned(orvCloneImage(&image));
}

// From black at the left to white at the right, in all channels.
Image gradientLike(const OrvImage &image)
{
    Image gradient = like(image);
    for (std::int32_t y = 0; y < gradient->height; ++y)
        for (std::int32_t x = 0; x < gradient->width * gradient->nChannels; ++x)
            rowOf<std::uint8_t>(*gradient, y)[x] =
                static_cast<std::uint8_t>(x / gradient->nChannels * 255 / std::max(gradient->width - 1, 1));
    return gradient;
}

using Binary = OrvStatus(const OrvImage *, const OrvImage *, OrvImage *);

Picture ofTwo(Binary *operation, const OrvImage &a, const OrvImage &b)
{
    const Image result = like(a);
    const double time = bestTime([&] { return operation(&a, &b, result.get()); });
    return pictureOf(*result, *result, time);
}

template <class Operation> Picture ofOne(const OrvImage &image, Operation operation)
{
    const Image result = like(image);
    const double time = bestTime([&] { return operation(&image, result.get()); });
    return pictureOf(*result, *result, time);
}

Picture sum(const Photograph &photograph)
{
    const Image rings = owned(orvCreateImageJaehne(ORV_DEPTH_8U, photograph.grey->width, photograph.grey->height));
    return ofTwo(orvAdd, *photograph.grey, *rings);
}

// The picture minus itself, shifted by four pixels right and down: two rectangles of one raster.
Picture difference(const Photograph &photograph)
{
    const Image result = like(*photograph.grey);
    const std::int32_t shift = std::min({4, result->width - 1, result->height - 1});
    OrvROI here = {0, 0, 0, result->width - shift, result->height - shift};
    OrvROI there = {0, shift, shift, here.width, here.height};
    const OrvImage a = viewOf(*photograph.grey, &here), b = viewOf(*photograph.grey, &there);
    OrvImage out = viewOf(*result, &here);
    check(orvSet(result.get(), 0));
    const double time = bestTime([&] { return orvSubtract(&a, &b, &out); });
    return pictureOf(*result, {3, 0, "three times the samples"}, out, time);
}

Picture timesGradient(const Photograph &photograph)
{
    return ofTwo(orvMultiplyScale, *photograph.colour, *gradientLike(*photograph.colour));
}

Picture brighter(const Photograph &photograph)
{
    return ofOne(*photograph.colour, [](const OrvImage *in, OrvImage *out) { return orvAddS(in, out, 70); });
}

Picture negative(const Photograph &photograph)
{
    return ofOne(*photograph.colour, [](const OrvImage *in, OrvImage *out) { return orvSubtractS(in, out, 255, 1); });
}

Picture squared(const Photograph &photograph)
{
    const Image floats = toFloat(*photograph.grey, 1.0f / 255, 0);
    return ofOne(*floats, [](const OrvImage *in, OrvImage *out) { return orvSquare(in, out); });
}

constexpr Entry table[] = {
    {"sum", "orvAdd", "The photograph plus the test pattern. Sums saturate at 255.", true, 0, sum},
    {"difference", "orvSubtract", "The photograph minus itself, shifted by four pixels right and down.", true, 1,
     difference},
    {"times-gradient", "orvMultiplyScale", "The photograph times a gradient from 0 to full scale.", true, 2,
     timesGradient},
    {"brighter", "orvAddS", "70 added to every sample.", false, 0, brighter},
    {"negative", "orvSubtractS", "255 minus every sample.", true, 1, negative},
    {"squared", "orvSquare", "Floats from 0 to 1, squared: dark areas get darker.", false, 2, squared},
};

} // namespace

Family arithmeticFamily()
{
    return {"Arithmetic", table};
}

} // namespace sheet
