// Histograms, look-up tables and thresholds.
#include <algorithm>
#include <vector>

#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

// Records of one kind for all channels.
struct Records {
    std::vector<std::int32_t> keys, values, factors;
    OrvLUT lut;
    OrvLUT *pointers[4] = {&lut, &lut, &lut, &lut};

    Records(int intervals, bool interpolates)
    {
        for (int i = 0; i <= intervals; ++i) {
            keys.push_back(256 * i / intervals);
            values.push_back(i * 97 % 251);
            factors.push_back(3);
        }
        lut = {intervals + 1, keys.data(), values.data(), factors.data(), interpolates};
    }
};
using SharedRecords = std::shared_ptr<Records>;

struct Layout {
    int channels;
    bool alpha, masked;

    std::string text() const
    {
        return std::string(alpha ? " 8U AC" : " 8U C") + std::to_string(channels) + (masked ? " masked" : "");
    }
    Image image(int side) const
    {
        const Image target =
            masked ? maskedImage(ORV_DEPTH_8U, channels, side) : bench::image(ORV_DEPTH_8U, channels, side);
        target->alphaChannel = alpha ? 4 : 0;
        return target;
    }
};

std::size_t pixels(int side)
{
    return static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
}

Case histogram(const char *name, Layout layout, bool grey)
{
    return {name + layout.text(), [=](int side) {
                const Image source = layout.image(side);
                if (grey)
                    orvSet(source.get(), 77);
                const SharedRecords records = std::make_shared<Records>(256, false);
                return Job{[=] { orvComputeHisto(source.get(), records->pointers); }, sampleBytes(source), pixels(side),
                           source->imageData, nullptr};
            }};
}

template <class Call> Case lookUp(const std::string &name, Layout layout, int intervals, bool interpolates, Call call)
{
    return {name + layout.text(), [=](int side) {
                const Image source = layout.image(side), destination = layout.image(side);
                const SharedRecords records = std::make_shared<Records>(intervals, interpolates);
                return Job{[=] { call(source.get(), destination.get(), records->pointers); }, sampleBytes(destination),
                           pixels(side), source->imageData, destination->imageData};
            }};
}

// memcpy moves the bytes of the wider side.
Case threshold(int from, int to, int channels, bool alpha, bool masked)
{
    const std::string name = std::string("orvThreshold ") + depthName(from) + (from == to ? "" : " to ") +
                             (from == to ? "" : depthName(to)) + (alpha ? " AC" : " C") + std::to_string(channels) +
                             (masked ? " masked" : "");
    return {name, [=](int side) {
                const Image source = image(from, channels, side);
                const Image destination = masked ? maskedImage(to, channels, side) : image(to, channels, side);
                destination->alphaChannel = alpha ? 4 : 0;
                const std::size_t bytes = std::max(sampleBytes(source), sampleBytes(destination));
                const bool toWider = sampleBytes(destination) == bytes;
                return Job{[=] { orvThreshold(source.get(), destination.get(), 100); }, bytes, pixels(side),
                           toWider ? nullptr : source->imageData, toWider ? destination->imageData : nullptr};
            }};
}

} // namespace

std::vector<Case> levelCases()
{
    std::vector<Case> cases;
    for (const Layout &layout :
         {Layout{1, false, false}, {1, false, true}, {3, false, false}, {4, false, false}, {4, true, false}}) {
        cases.push_back(histogram("orvComputeHisto noise", layout, false));
        cases.push_back(histogram("orvComputeHisto grey", layout, true));
        cases.push_back(lookUp("orvContrastStretch full", layout, 256, false, orvContrastStretch));
        cases.push_back(lookUp("orvContrastStretch slopes", layout, 3, true, orvContrastStretch));
        cases.push_back(lookUp("orvContrastStretch 4 steps", layout, 4, false, orvContrastStretch));
        cases.push_back(lookUp("orvHistoEqualize", layout, 256, false, orvHistoEqualize));
    }
    for (const auto &[from, to] : {std::pair<int, int>{ORV_DEPTH_8U, ORV_DEPTH_8U},
                                   {ORV_DEPTH_16S, ORV_DEPTH_16S},
                                   {ORV_DEPTH_8U, ORV_DEPTH_16S},
                                   {ORV_DEPTH_8U, ORV_DEPTH_32S},
                                   {ORV_DEPTH_16S, ORV_DEPTH_8U},
                                   {ORV_DEPTH_16S, ORV_DEPTH_16U}}) {
        for (const int channels : {1, 3, 4})
            cases.push_back(threshold(from, to, channels, false, false));
        cases.push_back(threshold(from, to, 4, true, false));
        cases.push_back(threshold(from, to, 1, false, true));
    }
    return cases;
}

} // namespace bench
