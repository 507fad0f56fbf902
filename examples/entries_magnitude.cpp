// Entries: the magnitude of signed images. The source is on the left, the result on the right.
#include "entries.h"

namespace sheet {
namespace {

// Right neighbour minus left neighbour.
Image horizontalDifference(const OrvImage &grey)
{
    Image out = newImage({.depth = ORV_DEPTH_16S, .channels = 1}, sizeOf(grey));
    for (std::int32_t y = 0; y < grey.height; ++y) {
        const std::uint8_t *source = rowOf<std::uint8_t>(grey, y);
        std::int16_t *target = rowOf<std::int16_t>(*out, y);
        for (std::int32_t x = 1; x + 1 < grey.width; ++x)
            target[x] = static_cast<std::int16_t>(source[x + 1] - source[x - 1]);
    }
    return out;
}

Picture beforeAndAfter(const OrvImage &before, const Mapping &mapping)
{
    const Image after = newImage({.depth = before.depth, .channels = 1}, sizeOf(before));
    const double time = bestTime([&] { return orvAbs(&before, after.get()); });
    const Image left = shown(before, mapping), right = shown(*after, mapping);
    return {sideBySide(*left, *right), describe(before), time, mapping.text};
}

Picture ofDifference(const Photograph &photograph)
{
    const Image difference = horizontalDifference(*photograph.grey);
    return beforeAndAfter(*difference, {2, 128, "shown as 128 + 2 × sample"});
}

Picture ofFloats(const Photograph &photograph)
{
    const Image centred = toFloat(*photograph.grey, 2 / 255.0f, -1);
    return beforeAndAfter(*centred, {127.5, 127.5, "shown as 127.5 + 127.5 × sample"});
}

template <std::int32_t Depth> Picture ofPattern(const Photograph &)
{
    const Image rings = owned(orvCreateImageJaehne(Depth, 400, 300));
    return beforeAndAfter(*rings, rangeOf(Depth));
}

constexpr Entry table[] = {
    {"abs-16s", "orvAbs", "The difference of horizontal neighbours, and its magnitude: edges of both signs are bright.",
     true, 0, ofDifference},
    {"abs-32f", "orvAbs", "The photograph from -1 to 1, and its magnitude: samples below middle grey become bright.",
     true, 1, ofFloats},
    {"abs-8s", "orvAbs", "The test pattern, and its magnitude: twice as many rings.", true, noPhotograph,
     ofPattern<ORV_DEPTH_8S>},
    {"abs-32s", "orvAbs", "The same in 32 bits.", false, noPhotograph, ofPattern<ORV_DEPTH_32S>},
};

} // namespace

Family magnitudeFamily()
{
    return {"Magnitude", table};
}

} // namespace sheet
