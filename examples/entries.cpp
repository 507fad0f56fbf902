// All families of the contact sheet in the order of the page.
#include "entries.h"

#include <string>

namespace sheet {

std::span<const Family> families()
{
    static const Family all[] = {
        photographFamily(), copyFamily(),  fillFamily(),     magnitudeFamily(),
        arithmeticFamily(), logicFamily(), geometryFamily(), neighbourhoodFamily(),
        filterFamily(),     levelFamily(), measureFamily(),  patternFamily(),
    };
    return all;
}

std::string describe(const OrvImage &image)
{
    struct DepthName {
        std::int32_t depth;
        const char *name;
    };
    constexpr DepthName names[] = {{ORV_DEPTH_1U, "1U"},   {ORV_DEPTH_8U, "8U"},   {ORV_DEPTH_8S, "8S"},
                                   {ORV_DEPTH_16U, "16U"}, {ORV_DEPTH_16S, "16S"}, {ORV_DEPTH_32S, "32S"},
                                   {ORV_DEPTH_32F, "32F"}};
    std::string text;
    for (const DepthName &known : names)
        if (known.depth == image.depth)
            text = known.name;

    const bool oneOfMany = image.roi != nullptr && image.roi->coi != 0 && image.nChannels > 1;
    const std::string channels = std::to_string(image.nChannels);
    if (oneOfMany)
        text += ", channel " + std::to_string(image.roi->coi) + " of " + channels;
    else if (image.alphaChannel != 0)
        text += ", " + std::to_string(image.nChannels - 1) + " of " + channels + " channels";
    else
        text += ", " + channels + (image.nChannels == 1 ? " channel" : " channels");
    if (image.nChannels > 1 && image.dataOrder == ORV_DATA_ORDER_PLANE)
        text += " in planes";
    const Size size = image.roi == nullptr ? sizeOf(image) : Size{image.roi->width, image.roi->height};
    return text + ", " + std::to_string(size.width) + " × " + std::to_string(size.height);
}

Picture pictureOf(const OrvImage &result, const OrvImage &worked, double microseconds)
{
    return pictureOf(result, rangeOf(result.depth), worked, microseconds);
}

Picture pictureOf(const OrvImage &result, const Mapping &mapping, const OrvImage &worked, double microseconds)
{
    return {shown(result, mapping), describe(worked), microseconds, mapping.text};
}

} // namespace sheet
