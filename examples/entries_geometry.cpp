// Entries: the photograph mirrored, whole and in parts.
#include "entries.h"

namespace sheet {
namespace {

// orvMirror() returns nothing. Every failure ends this program, so a stored status can only come from this call.
void mirror(const OrvImage &source, OrvImage &target, std::int32_t axis)
{
    orvMirror(&source, &target, axis);
    check(orvGetErrStatus());
}

template <std::int32_t Axis> Picture whole(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = newImage({}, sizeOf(source));
    const double time = bestTime([&] { mirror(source, *result, Axis); });
    return pictureOf(*result, source, time);
}

Picture besideItself(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = owned(orvCloneImage(&source));
    const std::int32_t half = (source.width + 1) / 2;
    OrvROI left = {0, 0, 0, half, source.height}, right = {0, source.width - half, 0, half, source.height};
    const OrvImage from = viewOf(source, &left);
    OrvImage to = viewOf(*result, &right);
    const double time = bestTime([&] { mirror(from, to, 1); });
    return pictureOf(*result, from, time);
}

Picture underEllipse(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = owned(orvCloneImage(&source));
    const std::int32_t width = (source.width + 1) / 2, height = (source.height + 1) / 2;
    OrvROI middle = {0, (source.width - width) / 2, (source.height - height) / 2, width, height};
    const Image mask = ellipseMask({width, height});
    const OrvImage from = viewOf(source, &middle);
    OrvImage to = viewOf(*result, &middle, mask.get());
    const double time = bestTime([&] { mirror(from, to, -1); });
    return pictureOf(*result, from, time);
}

Picture oneChannel(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = owned(orvCloneImage(&source));
    OrvROI red = {1, 0, 0, source.width, source.height};
    const OrvImage from = viewOf(source, &red);
    OrvImage to = viewOf(*result, &red);
    const double time = bestTime([&] { mirror(from, to, 1); });
    return pictureOf(*result, from, time);
}

constexpr Entry table[] = {
    {"mirror-rows", "orvMirror", "Axis 0: the rows reversed.", false, 0, whole<0>},
    {"mirror-columns", "orvMirror", "Axis 1: the columns reversed.", false, 1, whole<1>},
    {"mirror-both", "orvMirror", "Axis -1: both.", false, 2, whole<-1>},
    {"mirror-half", "orvMirror", "The left half mirrored onto the right one.", true, 0, besideItself},
    {"mirror-ellipse", "orvMirror", "The middle rotated by half a turn, under an elliptic mask.", true, 2,
     underEllipse},
    {"mirror-channel", "orvMirror", "The first channel, red, mirrored alone.", false, 1, oneChannel},
};

} // namespace

Family geometryFamily()
{
    return {"Geometry", table};
}

} // namespace sheet
