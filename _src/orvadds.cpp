// The sum of an image and an integer.
#include <algorithm>
#include <cstdint>

#include "arith/plain_rows.h"
#include "arith/two_passes.h"
#include "call.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvadds";

template <class Sample> auto makeAdd(std::int32_t value, std::int32_t bottom, std::int32_t top)
{
    return makePlain<Sample>([=](Sample sample) { return std::clamp(sample + value, bottom, top); });
}

OrvStatus run(const OrvImage *source, const OrvImage *destination, std::int32_t value)
{
    switch (destination->depth) {
    case ORV_DEPTH_8U:
        return value < 0
                   ? runPointwise({{source}, destination},
                                  {.run = makeConstant(subtractFromBytes, -std::max(value, -255), 1)})
                   : runPointwise({{source}, destination}, {.run = makeConstant(addToBytes, std::min(value, 255), 1)});
    case ORV_DEPTH_8S:
        return runPointwise({{source}, destination},
                            {.run = makeAdd<std::int8_t>(std::clamp(value, -32768, 32767), -128, 127)});
    case ORV_DEPTH_16U:
        return runPointwise(
            {{source}, destination},
            {.run = makeAdd<std::uint16_t>(std::clamp(value, -65535, 65535), 0, 65535), .wholeSamples = true});
    case ORV_DEPTH_16S:
        return runPointwise({{source}, destination}, {.run = makeWords(addToWords, false, value)});
    case ORV_DEPTH_32S:
        return runPointwise({{source}, destination},
                            {.run = makeConstantRows(krnAddC32sRow, value), .wholeSamples = true});
    default:
        return ORV_STATUS_NOT_IMPLEMENTED;
    }
}

} // namespace

extern "C" OrvStatus orvAddS(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t value)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)) ||
        call.refuses(comparePair(*srcImage, *dstImage, textsOfImages)) ||
        call.refuses(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT,
                     "For processing depth 32F use function orvAddSFP"))
        return call.report();
    return call.result(run(srcImage, dstImage, value));
}
