// Entries: fills of a rectangle, under a mask, of one channel and of floats.
#include "entries.h"

namespace sheet {
namespace {

// The middle of an image, half as wide and half as high.
OrvROI middleOf(const OrvImage &image, std::int32_t channel)
{
    const std::int32_t width = (image.width + 1) / 2, height = (image.height + 1) / 2;
    return {channel, (image.width - width) / 2, (image.height - height) / 2, width, height};
}

Picture filledMiddle(const Photograph &photograph, std::int32_t channel, bool ellipse, std::int32_t value)
{
    const Image result = owned(orvCloneImage(photograph.colour.get()));
    OrvROI middle = middleOf(*result, channel);
    const Image mask = ellipse ? ellipseMask({middle.width, middle.height}) : nullptr;
    OrvImage target = viewOf(*result, &middle, mask.get());
    const double time = bestTime([&] { return orvSet(&target, value); });
    return pictureOf(*result, target, time);
}

Picture rectangle(const Photograph &photograph)
{
    return filledMiddle(photograph, 0, false, 200);
}

Picture ellipse(const Photograph &photograph)
{
    return filledMiddle(photograph, 0, true, 40);
}

Picture oneChannel(const Photograph &photograph)
{
    return filledMiddle(photograph, 1, false, 255);
}

Picture floatSteps(const Photograph &)
{
    constexpr std::int32_t steps = 16, side = 30;
    const Image wedge = newImage({.depth = ORV_DEPTH_32F, .channels = 1}, {steps * side, steps * side / 2});
    OrvROI stripe = {0, 0, 0, side, wedge->height};
    OrvImage target = viewOf(*wedge, &stripe);
    double time = 0;
    for (std::int32_t step = 0; step < steps; ++step) {
        stripe.xOffset = step * side;
        const float value = static_cast<float>(step) / (steps - 1);
        time = bestTime([&] { return orvSetFP(&target, value); });
    }
    return pictureOf(*wedge, target, time);
}

constexpr Entry table[] = {
    {"fill-rectangle", "orvSet", "A rectangle filled with 200.", true, 1, rectangle},
    {"fill-ellipse", "orvSet", "The same rectangle filled with 40 under an elliptic mask.", true, 0, ellipse},
    {"fill-channel", "orvSet", "The first channel, red, of the rectangle filled with 255.", true, 2, oneChannel},
    {"fill-float", "orvSetFP", "Sixteen rectangles filled with 0 to 1 in equal steps. The time is that of one.", true,
     noPhotograph, floatSteps},
};

} // namespace

Family fillFamily()
{
    return {"Fill", table};
}

} // namespace sheet
