// Entries: what the library measures in an image.
#include "entries.h"

#include <cstdio>

namespace sheet {
namespace {

// Floats whose range a display does not know: the search finds black and white.
Picture foundRange(const Photograph &photograph)
{
    const Image floats = toFloat(*photograph.grey, 1.0f / 1024, -3);
    float min = 0, max = 0;
    const double time = bestTime([&] { return orvMinMaxFP(floats.get(), &min, &max); });
    const double gain = max > min ? 255.0 / (double(max) - min) : 0;
    char found[80];
    std::snprintf(found, sizeof found, "black is the smallest sample, %.4f, and white the largest, %.4f", double(min),
                  double(max));
    return {shown(*floats, {gain, -gain * min, ""}), describe(*floats), time, found};
}

constexpr Entry table[] = {
    {"min-max", "orvMinMaxFP", "Floats of an unusual range, shown from the smallest sample to the largest.", false, 0,
     foundRange},
};

} // namespace

Family measureFamily()
{
    return {"Measures", table};
}

} // namespace sheet
