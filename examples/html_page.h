// The page of the contact sheet.
#pragma once

#include <string>
#include <vector>

#include "entry.h"

namespace sheet {

// A picture on the page. Its pixels are in its file.
struct Figure {
    const Family *family;
    const Entry *entry;
    std::string file;       // beside the page
    std::string photograph; // its name, or empty
    Size size;
    std::string worked, shownAs;
    double microseconds;
};

// Writes the page, figures of a family under one heading, in their order. Throws a Failure that names the file.
void writePage(const std::string &path, const std::string &subtitle, const std::vector<Figure> &figures);

} // namespace sheet
