// Entries: the photograph mirrored, whole and in parts.
#include "entries.h"

#include <algorithm>

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

// orvResize() returns nothing either.
void resize(const OrvImage &source, OrvImage &target, std::int32_t to, std::int32_t from, std::int32_t method)
{
    orvResize(&source, &target, to, from, to, from, method);
    check(orvGetErrStatus());
}

// The middle of the photograph, so large that it is as large as the photograph.
template <std::int32_t Method> Picture enlarged(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = newImage({}, sizeOf(source));
    OrvROI middle = {0, source.width * 3 / 8, source.height * 3 / 8, (source.width + 3) / 4, (source.height + 3) / 4};
    const OrvImage detail = viewOf(source, &middle);
    const double time = bestTime([&] { resize(detail, *result, 4, 1, Method); });
    return pictureOf(*result, detail, time);
}

template <std::int32_t To, std::int32_t From, std::int32_t Method> Picture scaled(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = newImage({}, {std::max(1, source.width * To / From), std::max(1, source.height * To / From)});
    const double time = bestTime([&] { resize(source, *result, To, From, Method); });
    return pictureOf(*result, source, time);
}

// A smaller photograph in an ellipse over the middle of itself.
Picture resizedUnderMask(const Photograph &photograph)
{
    const OrvImage &source = *photograph.colour;
    const Image result = owned(orvCloneImage(&source));
    const std::int32_t width = (source.width + 1) / 2, height = (source.height + 1) / 2;
    OrvROI middle = {0, (source.width - width) / 2, (source.height - height) / 2, width, height};
    const Image mask = ellipseMask({width, height});
    OrvImage to = viewOf(*result, &middle, mask.get());
    const double time = bestTime([&] { resize(source, to, 1, 2, ORV_INTERPOLATE_SUPER); });
    return pictureOf(*result, source, time);
}

// Rings that become finer from the centre on. Every fifth pixel makes new rings of them; means fade to grey.
Picture zonePlate(const Photograph &)
{
    const Image plate = owned(orvCreateImageJaehne(ORV_DEPTH_8U, 1000, 1000));
    const Image nearest = newImage({.channels = 1}, {300, 300}), means = newImage({.channels = 1}, {300, 300});
    resize(*plate, *nearest, 3, 10, ORV_INTERPOLATE_NEAREST);
    const double time = bestTime([&] { resize(*plate, *means, 3, 10, ORV_INTERPOLATE_SUPER); });
    return {sideBySide(*nearest, *means), describe(*plate), time, ""};
}

constexpr Entry table[] = {
    {"mirror-rows", "orvMirror", "Axis 0: the rows reversed.", false, 0, whole<0>},
    {"mirror-columns", "orvMirror", "Axis 1: the columns reversed.", false, 1, whole<1>},
    {"mirror-both", "orvMirror", "Axis -1: both.", false, 2, whole<-1>},
    {"mirror-half", "orvMirror", "The left half mirrored onto the right one.", true, 0, besideItself},
    {"mirror-ellipse", "orvMirror", "The middle rotated by half a turn, under an elliptic mask.", true, 2,
     underEllipse},
    {"mirror-channel", "orvMirror", "The first channel, red, mirrored alone.", false, 1, oneChannel},
    {"resize-nearest-4", "orvResize", "A detail at four times its size: nearest pixels.", true, 1,
     enlarged<ORV_INTERPOLATE_NEAREST>},
    {"resize-linear-4", "orvResize", "The same by linear interpolation.", false, 1, enlarged<ORV_INTERPOLATE_LINEAR>},
    {"resize-cubic-4", "orvResize", "The same by cubic interpolation.", true, 1, enlarged<ORV_INTERPOLATE_CUBIC>},
    {"resize-nearest-1-2", "orvResize", "At half its size: every second pixel.", false, 2,
     scaled<1, 2, ORV_INTERPOLATE_NEAREST>},
    {"resize-linear-1-2", "orvResize", "The same by linear interpolation.", false, 2,
     scaled<1, 2, ORV_INTERPOLATE_LINEAR>},
    {"resize-cubic-2-3", "orvResize", "At two thirds of its size by cubic interpolation.", false, 2,
     scaled<2, 3, ORV_INTERPOLATE_CUBIC>},
    {"resize-super-2-3", "orvResize", "The same by super-sampling.", false, 2, scaled<2, 3, ORV_INTERPOLATE_SUPER>},
    {"resize-cubic-2", "orvResize", "At double its size by cubic interpolation.", false, 0,
     scaled<2, 1, ORV_INTERPOLATE_CUBIC>},
    {"resize-mask", "orvResize", "At half its size over its own middle, under an elliptic mask.", true, 2,
     resizedUnderMask},
    {"resize-zone-plate", "orvResize",
     "A zone plate at three tenths of its size by nearest pixels, which make rings of their own (aliasing), and by "
     "super-sampling.",
     true, noPhotograph, zonePlate},
};

} // namespace

Family geometryFamily()
{
    return {"Geometry", table};
}

} // namespace sheet
