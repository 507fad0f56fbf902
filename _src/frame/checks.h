// Comparisons of images that the checks of many units share.
#pragma once

#include "area.h"

namespace orv {

template <class... Images> bool anyTiled(const Images *...images)
{
    return (... || (images->tileInfo != nullptr));
}

// Three channels and an alpha channel are three channels to process, where an operation counts so.
inline std::int32_t channelsWithoutAlpha(const OrvImage &image)
{
    const std::int32_t channels = channelsToProcess(image);
    return channels == 4 && image.alphaChannel != 0 ? 3 : channels;
}

} // namespace orv
