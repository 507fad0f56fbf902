// Entries: the test pattern at every depth.
#include "entries.h"

namespace sheet {
namespace {

template <std::int32_t Depth> Picture pattern(const Photograph &)
{
    Image rings;
    const double time = bestTime([&] { rings = owned(orvCreateImageJaehne(Depth, 400, 300)); }, [&] { rings.reset(); });
    return pictureOf(*rings, *rings, time);
}

constexpr const char *operation = "orvCreateImageJaehne";

constexpr Entry table[] = {
    {"pattern-8u", operation, "Rings around the middle of the range.", true, noPhotograph, pattern<ORV_DEPTH_8U>},
    {"pattern-8s", operation, "Rings about 0.", false, noPhotograph, pattern<ORV_DEPTH_8S>},
    {"pattern-16u", operation, "Rings over 0 to 65535.", false, noPhotograph, pattern<ORV_DEPTH_16U>},
    {"pattern-16s", operation, "Rings about 0.", false, noPhotograph, pattern<ORV_DEPTH_16S>},
    {"pattern-32s", operation, "Rings about 0.", false, noPhotograph, pattern<ORV_DEPTH_32S>},
    {"pattern-32f", operation, "Rings between 0 and 1.", false, noPhotograph, pattern<ORV_DEPTH_32F>},
};

} // namespace

Family patternFamily()
{
    return {"Test pattern", table};
}

} // namespace sheet
