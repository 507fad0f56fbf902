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

// How far a blurred photograph is from the original.
Picture norms(const Photograph &photograph)
{
    const Image blurred = owned(orvCloneImage(photograph.grey.get()));
    check(orvBlur(photograph.grey.get(), blurred.get(), 9, 9, 4, 4));
    const auto norm = [&](std::int32_t type) { return orvNorm(blurred.get(), photograph.grey.get(), type); };
    const double time = bestTime([&] { norm(ORV_NORM_L2); });
    char found[160];
    std::snprintf(found, sizeof found,
                  "the difference: at most %.0f, in all %.0f, Euclidean %.1f; relative: %.3f, %.3f and %.3f",
                  norm(ORV_NORM_INF), norm(ORV_NORM_L1), norm(ORV_NORM_L2), norm(ORV_NORM_RELATIVE_INF),
                  norm(ORV_NORM_RELATIVE_L1), norm(ORV_NORM_RELATIVE_L2));
    return {sideBySide(*photograph.grey, *blurred), describe(*blurred), time, found};
}

constexpr Entry table[] = {
    {"min-max", "orvMinMaxFP", "Floats of an unusual range, shown from the smallest sample to the largest.", false, 0,
     foundRange},
    {"norms", "orvNorm", "A photograph, its mean of 9 × 9, and how far they are apart.", false, 1, norms},
};

} // namespace

Family measureFamily()
{
    return {"Measures", table};
}

} // namespace sheet
