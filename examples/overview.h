// A selection of the pictures of a sheet, in one picture.
#pragma once

#include <vector>

#include "owned_image.h"

namespace sheet {

// The picture reduced to a cell of the overview, with fewer colours.
Image thumbnail(const OrvImage &image);

// Copies thumbnails in order, row by row, into one picture 900 pixels wide.
Image overview(const std::vector<Image> &thumbnails);

} // namespace sheet
