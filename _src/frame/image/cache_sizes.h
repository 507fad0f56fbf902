// How much memory a strip of rows may take. A later pass over the strip then finds it in a cache.
#pragma once

#include <cstdint>

namespace orv {

// Two passes over one strip of samples: a quarter of the nearest cache, beside the images.
constexpr std::int64_t passStripBytes = 8192;

// A strip that is gathered, computed and delivered: half of the nearest cache.
constexpr std::int64_t deliveryStripBytes = 16384;

// A strip with its margins and what is made from it: the second cache.
constexpr std::int64_t windowStripBytes = 131072;

} // namespace orv
