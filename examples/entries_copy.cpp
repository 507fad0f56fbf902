// Entries: copies under a mask, of rectangles and of channels.
#include "entries.h"

namespace sheet {
namespace {

Picture underEllipse(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    Image result = newImage({}, sizeOf(source));
    check(orvSet(result.get(), 235));
    const Image mask = ellipseMask(sizeOf(source));
    result->maskROI = mask.get();
    const double time = bestTime([&] { return orvCopy(&source, result.get()); });
    return pictureOf(*result, source, time);
}

Picture rectangleElsewhere(const Photograph &photograph)
{
    const Image result = owned(orvCloneImage(photograph.colour.get()));
    const std::int32_t width = (result->width + 2) / 3, height = (result->height + 2) / 3;
    OrvROI from = {0, (result->width - width) / 2, (result->height - height) / 2, width, height};
    OrvROI to = {0, 0, 0, width, height};
    const OrvImage source = viewOf(*photograph.colour, &from);
    OrvImage target = viewOf(*result, &to);
    const double time = bestTime([&] { return orvCopy(&source, &target); });
    return pictureOf(*result, source, time);
}

Picture channelToChannel(const Photograph &photograph)
{
    const Image result = owned(orvCloneImage(photograph.colour.get()));
    OrvROI red = {1, 0, 0, result->width, result->height};
    OrvROI blue = {3, 0, 0, result->width, result->height};
    const OrvImage source = viewOf(*photograph.colour, &red);
    OrvImage target = viewOf(*result, &blue);
    const double time = bestTime([&] { return orvCopy(&source, &target); });
    return pictureOf(*result, source, time);
}

Picture channelAlone(const Photograph &photograph)
{
    const Image result = newImage({.channels = 1}, sizeOf(*photograph.colour));
    OrvROI blue = {3, 0, 0, result->width, result->height};
    const OrvImage source = viewOf(*photograph.colour, &blue);
    const double time = bestTime([&] { return orvCopy(&source, result.get()); });
    return pictureOf(*result, source, time);
}

// The photograph in plane order. Only images of one channel can be copied between the orders. So each channel takes two
// images on its way.
Image inPlanes(const OrvImage &source)
{
    Image planes = newImage({.order = ORV_DATA_ORDER_PLANE}, sizeOf(source));
    const Image dense = newImage({.channels = 1}, sizeOf(source));
    const Image plane = newImage({.channels = 1, .order = ORV_DATA_ORDER_PLANE}, sizeOf(source));
    for (std::int32_t channel = 1; channel <= 3; ++channel) {
        OrvROI one = {channel, 0, 0, source.width, source.height};
        const OrvImage from = viewOf(source, &one);
        OrvImage to = viewOf(*planes, &one);
        check(orvCopy(&from, dense.get()));
        check(orvCopy(dense.get(), plane.get()));
        check(orvCopy(plane.get(), &to));
    }
    return planes;
}

Picture planesBeside(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image planes = inPlanes(source);
    const Image copy = newImage({.order = ORV_DATA_ORDER_PLANE}, sizeOf(source));
    const double time = bestTime([&] { return orvCopy(planes.get(), copy.get()); });

    const Image strip = newImage({.channels = 1, .order = ORV_DATA_ORDER_PLANE}, {3 * source.width, source.height});
    for (std::int32_t channel = 1; channel <= 3; ++channel) {
        OrvROI one = {channel, 0, 0, source.width, source.height};
        OrvROI place = {0, (channel - 1) * source.width, 0, source.width, source.height};
        const OrvImage from = viewOf(*copy, &one);
        OrvImage to = viewOf(*strip, &place);
        check(orvCopy(&from, &to));
    }
    return pictureOf(*strip, *copy, time);
}

Picture besideAlpha(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = newImage({.channels = 4, .alpha = 4}, sizeOf(source));
    constexpr std::int32_t steps = 8;
    for (std::int32_t step = 0; step < steps; ++step) {
        const std::int32_t left = step * result->width / steps, right = (step + 1) * result->width / steps;
        if (right == left)
            continue;
        OrvROI stripe = {4, left, 0, right - left, result->height};
        OrvImage target = viewOf(*result, &stripe);
        check(orvSet(&target, 255 * (step + 1) / steps));
    }
    const double time = bestTime([&] { return orvCopy(&source, result.get()); });
    return pictureOf(*result, *result, time);
}

constexpr Entry table[] = {
    {"copy-ellipse", "orvCopy", "A copy under an elliptic mask, onto a uniform background.", true, 2, underEllipse},
    {"copy-rectangle", "orvCopy", "The middle ninth copied into the top left corner.", true, 0, rectangleElsewhere},
    {"copy-channel", "orvCopy", "The first channel copied into the third: red into blue.", true, 1, channelToChannel},
    {"copy-one-channel", "orvCopy", "The third channel, blue, copied to an image of one channel.", true, 2,
     channelAlone},
    {"copy-alpha", "orvCopy",
     "A copy of three channels into four with alpha. The alpha samples, filled in eight steps before, are kept.", true,
     1, besideAlpha},
    {"copy-planes", "orvCopy", "A copy in plane order, its three planes side by side: red, green, blue.", true, 2,
     planesBeside},
};

} // namespace

Family copyFamily()
{
    return {"Copy", table};
}

} // namespace sheet
