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
    bool floats; // the source holds floats
};

inline bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

inline bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The bytes of the first sample type in the name, which goes with all that stands before it.
inline int takeSampleBytes(std::string &name)
{
    const std::size_t digit = name.find_first_of("123456789", 3);
    const int bits = std::stoi(name.substr(digit));
    name = name.substr(name.find_first_not_of("0123456789", digit) + 1);
    return bits / 8;
}

inline int channelsOf(const std::string &layout)
{
    return endsWith(layout, "C4") ? 4 : endsWith(layout, "C3") ? 3 : 1;
}

inline RowShape shapeOf(const char *kernelName)
{
    std::string rest = kernelName;
    const std::string name = rest;
    const int first = takeSampleBytes(rest);
    RowShape shape = {
        {first, 0, false}, {first, 0, false}, startsWith(name, "krnConvert32f") || startsWith(name, "krnAbs32f")};
    if (startsWith(name, "krnConvert")) {
        shape.destination.sampleBytes = std::stoi(rest) / 8;
    }
    shape.source.channels = shape.destination.channels = channelsOf(rest);
    if (endsWith(name, "C3AC4"))
        shape.source.channels = 3;
    if (endsWith(name, "AC4C3"))
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
