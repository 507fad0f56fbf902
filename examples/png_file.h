// Reads and writes PNG files.
#pragma once

#include <string>

#include "owned_image.h"

namespace sheet {

// Reads any PNG file as 8U in pixel order, with one channel if it is grey, otherwise three. Transparent pixels are
// blended with white. Throws a Failure that names the file.
Image readPng(const std::string &path);

// Writes an 8U image in pixel order with one channel, three, or four with alpha.
void writePng(const std::string &path, const OrvImage &image);

} // namespace sheet
