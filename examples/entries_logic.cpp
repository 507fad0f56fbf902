// Entries: masks combined by logic, and single bits of samples.
#include "entries.h"

namespace sheet {
namespace {

// Two ellipses that overlap in the middle, as 8U. A mask differs only in the depth of its header.
struct Ellipses {
    Image left, right, result;

    explicit Ellipses(const OrvImage &image)
        : left(newImage({.channels = 1}, sizeOf(image))), right(newImage({.channels = 1}, sizeOf(image))),
          result(newImage({.channels = 1}, sizeOf(image)))
    {
        const std::int32_t width = std::max(1, image.width * 5 / 8);
        place(*left, 0, width);
        place(*right, image.width - width, width);
    }

    static void place(OrvImage &target, std::int32_t x, std::int32_t width)
    {
        OrvROI rectangle = {0, x, 0, width, target.height};
        const Image ellipse = ellipseMask({width, target.height});
        OrvImage view = viewOf(target, &rectangle, ellipse.get());
        check(orvSet(&view, 255));
    }
};

using Binary = OrvStatus(const OrvImage *, const OrvImage *, OrvImage *);

Picture under(const Photograph &photograph, Binary *operation)
{
    const Ellipses ellipses(*photograph.colour);
    const double time =
        bestTime([&] { return operation(ellipses.left.get(), ellipses.right.get(), ellipses.result.get()); });

    OrvImage mask = *ellipses.result;
    mask.depth = ORV_DEPTH_1U;
    const Image picture = owned(orvCloneImage(photograph.colour.get()));
    check(orvSet(picture.get(), 235));
    OrvImage target = viewOf(*picture, nullptr, &mask);
    check(orvCopy(photograph.colour.get(), &target));
    return pictureOf(*picture, *ellipses.result, time);
}

Picture inBoth(const Photograph &photograph)
{
    return under(photograph, orvAnd);
}

Picture inEither(const Photograph &photograph)
{
    return under(photograph, orvOr);
}

Picture inOne(const Photograph &photograph)
{
    return under(photograph, orvXor);
}

// One bit of every sample: shifted right, the others cleared.
Image bitPlane(const OrvImage &image, unsigned bit, double &time)
{
    Image plane = owned(orvCloneImage(&image));
    time = bestTime([&] {
        check(orvRShiftS(&image, plane.get(), bit));
        return orvAndS(plane.get(), plane.get(), 1);
    });
    return shown(*plane, {255, 0, ""});
}

Picture bitPlanes(const Photograph &photograph)
{
    double time = 0;
    const Image high = bitPlane(*photograph.grey, 7, time), low = bitPlane(*photograph.grey, 4, time);
    return pictureOf(*sideBySide(*high, *low), {1, 0, "bit 7 left and bit 4 right, 1 as white"}, *photograph.grey,
                     time);
}

Picture complement(const Photograph &photograph)
{
    const Image result = owned(orvCloneImage(photograph.grey.get()));
    const double time = bestTime([&] { return orvNot(photograph.grey.get(), result.get()); });
    return pictureOf(*result, *result, time);
}

constexpr Entry table[] = {
    {"mask-and", "orvAnd", "A copy under two ellipses: the pixels in both.", false, 0, inBoth},
    {"mask-or", "orvOr", "The pixels in either ellipse.", false, 0, inEither},
    {"mask-xor", "orvXor", "The pixels in exactly one ellipse.", true, 1, inOne},
    {"bit-planes", "orvRShiftS, orvAndS", "Single bits of the samples: shifted right, the others cleared.", true, 2,
     bitPlanes},
    {"complement", "orvNot", "All bits inverted.", false, 0, complement},
};

} // namespace

Family logicFamily()
{
    return {"Logic and shifts", table};
}

} // namespace sheet
