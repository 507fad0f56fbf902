// A choice of the pictures of a sheet in one.
#pragma once

#include <vector>

#include "owned_image.h"

namespace sheet {

// The picture as small as its cell of the overview, in somewhat fewer colours.
Image thumbnail(const OrvImage &image);

// Thumbnails in their order, row by row, copied into one picture of 900 pixels' width.
Image overview(const std::vector<Image> &thumbnails);

} // namespace sheet
