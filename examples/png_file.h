// PNG files in and out.
#pragma once

#include <string>

#include "owned_image.h"

namespace sheet {

// Reads a PNG file of any kind as 8U in pixel order, with one channel if it is grey and three if not. Transparent
// pixels come onto white. Throws a Failure that names the file.
Image readPng(const std::string &path);

// Writes an 8U image in pixel order with one channel, three, or four of which the last is alpha.
void writePng(const std::string &path, const OrvImage &image);

} // namespace sheet
