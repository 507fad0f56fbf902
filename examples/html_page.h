// The page of the contact sheet.
#pragma once

#include <string>
#include <vector>

#include "entry.h"

namespace sheet {

// A picture on the page. The pixels are in a file of their own.
struct Figure {
    const Family *family;
    const Entry *entry;
    std::string file;       // beside the page
    std::string photograph; // its name, or empty
    Size size;
    std::string worked, shownAs;
    double microseconds;
};

// Writes the page: a heading for each family, then its figures in order. Throws a Failure that names the file.
void writePage(const std::string &path, const std::string &subtitle, const std::vector<Figure> &figures);

} // namespace sheet
