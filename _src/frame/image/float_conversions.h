// Conversions of rasters to floats and back.
#pragma once

#include <cstdint>

#include "area.h"
#include "kernel.h"
#include "layout.h"
#include "raster.h"

namespace orv {

// Samples side by side, whatever pixels they form.
KrnStatus toFloats(ConstRaster samples, std::int32_t depth, Raster floats, Size size);

// To pixels of the depth, rounded to nearest with ties to even.
KrnStatus fromFloats(ConstRaster floats, Layout layout, std::int32_t depth, Raster destination, Size size);

} // namespace orv
