// What a kernel's name says of its rasters: bytes of a sample and samples of a pixel, on either side.
#pragma once

#include <string>

struct RasterShape {
    int sampleBytes;
    int channels;
    bool anyChannel; // the start pointer may stand on any sample of the pixel

    int pixelBytes() const { return sampleBytes * channels; }
};

struct RowShape {
    RasterShape source, destination;
    bool sourceFloats, destinationFloats;
};

inline bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// A kernel that takes one row of samples, and not a rectangle.
inline bool takesOneRow(const std::string &name)
{
    return name.find("Row") != std::string::npos && !startsWith(name, "krnConvolve");
}

inline bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The first sample type in the name, which goes with all that stands before it.
inline std::string takeType(std::string &name)
{
    const std::size_t digit = name.find_first_of("123456789");
    const std::size_t letter = name.find_first_not_of("0123456789", digit);
    const std::string type = name.substr(digit, letter + 1 - digit);
    name = name.substr(letter + 1);
    return type;
}

inline RowShape shapeOf(const std::string &name)
{
    std::string rest = name.substr(3);
    const std::string sourceType = takeType(rest);
    const bool twoTypes = !rest.empty() && rest[0] >= '1' && rest[0] <= '9';
    const std::string destinationType = twoTypes ? takeType(rest) : sourceType;
    const std::string layout = endsWith(rest, "I") ? rest.substr(0, rest.size() - 1) : rest;
    const int channels = endsWith(layout, "C4") ? 4 : endsWith(layout, "C3") ? 3 : 1;
    RowShape shape = {{std::stoi(sourceType) / 8, channels, false},
                      {std::stoi(destinationType) / 8, channels, false},
                      endsWith(sourceType, "f"),
                      endsWith(destinationType, "f")};
    if (layout == "C3AC4")
        shape.source.channels = 3;
    if (layout == "AC4C3")
        shape.source.channels = 4;
    if (startsWith(name, "krnExtract")) {
        shape.source.anyChannel = true;
        shape.destination.channels = 1;
    }
    if (startsWith(name, "krnInsert")) {
        shape.destination.anyChannel = true;
        shape.source.channels = 1;
    }
    return shape;
}
