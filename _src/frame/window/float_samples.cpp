// Conversions to floats and back.
#include "float_samples.h"

#include "window.h"

namespace orv {
KrnStatus withMarginsAsFloats(const Work &work, std::int32_t depth, std::uint8_t *&scratch, ConstRaster &floats)
{
    const std::int32_t samplesPer = samplesPerPixel(work.layout);
    const ConstRaster whole = withMargins(work, samplesPer * sampleBytes(depth));
    floats = whole;
    if (depth == ORV_DEPTH_32F)
        return KRN_OK;
    const std::int64_t samples = paddedWidth(work) * samplesPer, rows = paddedHeight(work);
    const Raster converted = takeFloatRows(scratch, samples, rows);
    floats = converted;
    return toFloats(whole, depth, converted, {static_cast<std::int32_t>(samples), static_cast<std::int32_t>(rows)});
}

std::int64_t withMarginsAsFloatsBytes(const Work &work, std::int32_t depth)
{
    return depth == ORV_DEPTH_32F
               ? 0
               : floatRowsBytes(paddedWidth(work) * samplesPerPixel(work.layout), paddedHeight(work));
}

} // namespace orv
