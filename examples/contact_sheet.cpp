// Writes pictures of what the library does with photographs, and a page that shows them.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "entry.h"
#include "html_page.h"
#include "overview.h"
#include "png_file.h"

namespace {

using namespace sheet;
namespace fs = std::filesystem;

constexpr const char *usage =
    "usage: contact_sheet [--output DIR] [--images DIR] [--overview FILE] [PHOTOGRAPH.png ...]\n"
    "Writes pictures of what the library does with the photographs, and a page index.html that shows them, to the "
    "output\n"
    "folder. Without photographs it takes those of the folder of images. --overview writes a selection of the pictures "
    "to\n"
    "one PNG file.\n"
    "Defaults: --output contact-sheet --images examples/images\n";

struct Options {
    std::string output = "contact-sheet";
    std::string images = "examples/images";
    std::string overview;
    std::vector<std::string> photographs;
    bool help = false;
};

Options parse(int count, char **arguments)
{
    Options options;
    bool onlyNames = false;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        std::string *value = argument == "--output"     ? &options.output
                             : argument == "--images"   ? &options.images
                             : argument == "--overview" ? &options.overview
                                                        : nullptr;
        if (onlyNames || argument.empty() || argument[0] != '-') {
            options.photographs.push_back(argument);
        } else if (argument == "--") {
            onlyNames = true;
        } else if (argument == "--help") {
            options.help = true;
        } else if (value == nullptr) {
            throw Failure("unknown option " + argument + "; --help lists the options");
        } else if (++i == count || *arguments[i] == 0) {
            throw Failure(argument + " needs a name after it");
        } else {
            *value = arguments[i];
        }
    }
    return options;
}

std::vector<std::string> photographsIn(const std::string &folder)
{
    std::vector<std::string> paths;
    for (const fs::directory_entry &file : fs::directory_iterator(folder))
        if (file.path().extension() == ".png")
            paths.push_back(file.path().string());
    if (paths.empty())
        throw Failure(folder + ": no PNG file in this folder");
    std::sort(paths.begin(), paths.end());
    return paths;
}

Image greyOf(const OrvImage &colour)
{
    Image grey = newImage({.channels = 1}, sizeOf(colour));
    for (std::int32_t y = 0; y < colour.height; ++y) {
        const std::uint8_t *source = rowOf<std::uint8_t>(colour, y);
        std::uint8_t *target = rowOf<std::uint8_t>(*grey, y);
        for (std::int32_t x = 0; x < colour.width; ++x, source += 3)
            target[x] = static_cast<std::uint8_t>((299 * source[0] + 587 * source[1] + 114 * source[2] + 500) / 1000);
    }
    return grey;
}

Image colourOf(const OrvImage &grey)
{
    Image colour = newImage({}, sizeOf(grey));
    for (std::int32_t channel = 1; channel <= 3; ++channel) {
        OrvROI one = {channel, 0, 0, grey.width, grey.height};
        OrvImage target = viewOf(*colour, &one);
        check(orvCopy(&grey, &target));
    }
    return colour;
}

Photograph readPhotograph(const std::string &path)
{
    const std::string name = fs::path(path).filename().string();
    Image image = readPng(path);
    if (image->nChannels == 1)
        return {name, true, colourOf(*image), std::move(image)};
    Image grey = greyOf(*image);
    return {name, false, std::move(image), std::move(grey)};
}

// The pictures of one run: their folder, and what the page and the overview need of them.
struct Sheet {
    fs::path folder;
    bool wantsThumbnails;
    std::vector<Figure> figures;
    std::vector<Image> thumbnails;
};

void addPicture(Sheet &sheet, const Family &family, const Entry &entry, const Photograph &photograph,
                const std::string &name)
{
    const Picture picture = entry.make(photograph);
    const std::string file = name + ".png";
    writePng((sheet.folder / file).string(), *picture.image);
    if (sheet.wantsThumbnails && entry.inOverview)
        sheet.thumbnails.push_back(thumbnail(*picture.image));
    sheet.figures.push_back({&family, &entry, file, entry.photograph == noPhotograph ? "" : photograph.name,
                             sizeOf(*picture.image), picture.worked, picture.shownAs, picture.microseconds});
}

void addPictures(Sheet &sheet, const std::vector<Photograph> &photographs)
{
    for (const Family &family : families()) {
        const std::size_t before = sheet.figures.size();
        std::cout << family.title << ": " << std::flush;
        for (const Entry &entry : family.entries) {
            if (entry.photograph == everyPhotograph) {
                for (std::size_t i = 0; i < photographs.size(); ++i)
                    addPicture(sheet, family, entry, photographs[i],
                               std::string(entry.name).append("-").append(std::to_string(i + 1)));
            } else {
                const std::size_t number = entry.photograph == noPhotograph ? 0 : std::size_t(entry.photograph);
                addPicture(sheet, family, entry, photographs[number % photographs.size()], entry.name);
            }
        }
        const std::size_t count = sheet.figures.size() - before;
        std::cout << count << (count == 1 ? " picture\n" : " pictures\n");
    }
}

void run(const Options &options)
{
    const std::int32_t build = orvUseBuild(ORV_BUILD_BEST);
    takeReports();
    const std::string library = std::string("orv ") + ORV_VERSION + ", " + orvBuildName(build) + " build";
    std::cout << library << '\n';

    std::vector<Photograph> photographs;
    for (const std::string &path : options.photographs.empty() ? photographsIn(options.images) : options.photographs)
        photographs.push_back(readPhotograph(path));
    Sheet sheet = {options.output, !options.overview.empty(), {}, {}};
    fs::create_directories(sheet.folder);
    addPictures(sheet, photographs);

    const fs::path page = sheet.folder / "index.html";
    writePage(page.string(), library + ".", sheet.figures);
    if (!options.overview.empty())
        writePng(options.overview, *overview(sheet.thumbnails));
    std::cout << sheet.figures.size() << " pictures. Open " << fs::absolute(page).lexically_normal().string() << '\n';
}

} // namespace

int main(int count, char **arguments)
{
    try {
        const Options options = parse(count, arguments);
        if (options.help)
            std::cout << usage;
        else
            run(options);
        return 0;
    } catch (const fs::filesystem_error &error) {
        std::cerr << "contact_sheet: " << error.path1().string() << ": " << error.code().message() << '\n';
    } catch (const std::bad_alloc &) {
        std::cerr << "contact_sheet: not enough memory\n";
    } catch (const std::exception &error) {
        std::cerr << "contact_sheet: " << error.what() << '\n';
    }
    return 1;
}
