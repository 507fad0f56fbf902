// Reads and writes PNG files by libpng. Each of its errors becomes one line.
#include "png_file.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace sheet {
namespace {

// 2^26: more than a camera delivers, and a raster of four floats per pixel stays below 2 GB.
constexpr std::int64_t mostPixels = 67108864;

[[noreturn]] void fail(const std::string &path, const std::string &why)
{
    throw Failure(path + ": " + why);
}

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Opens a file and checks the PNG signature.
File openPng(const std::string &path)
{
    File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr)
        fail(path, std::string("cannot open: ") + std::strerror(errno));
    png_byte signature[8];
    const std::size_t count = std::fread(signature, 1, sizeof signature, file.get());
    if (std::ferror(file.get()) != 0)
        fail(path, std::string("cannot read: ") + std::strerror(errno));
    if (count < sizeof signature || png_sig_cmp(signature, 0, sizeof signature) != 0)
        fail(path, "is not a PNG file");
    std::rewind(file.get());
    return file;
}

// Reads row by row, because the functions of libpng for whole pictures read interlaced files of 16 bits wrongly. On an
// error libpng jumps out of its caller. The functions that a jump may leave have no destructors to run.
struct PngReader {
    png_structp png;
    png_infop info = nullptr;
    char message[120] = "not enough memory";

    PngReader() : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, keepAndJump, ignore))
    {
        if (png != nullptr)
            info = png_create_info_struct(png);
    }
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
    PngReader(const PngReader &) = delete;
    PngReader &operator=(const PngReader &) = delete;

    // Reads the header of the file and asks for 8-bit samples: grey or colour, with or without alpha.
    bool begin(std::FILE *file)
    {
        if (info == nullptr || setjmp(png_jmpbuf(png)) != 0)
            return false;
        png_init_io(png, file);
        png_read_info(png, info);
        png_set_expand(png);
        png_set_scale_16(png);
        png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }

    bool readRows(png_bytepp rows)
    {
        if (setjmp(png_jmpbuf(png)) != 0)
            return false;
        png_read_image(png, rows);
        return true;
    }

private:
    [[noreturn]] static void keepAndJump(png_structp png, png_const_charp text)
    {
        PngReader *reader = static_cast<PngReader *>(png_get_error_ptr(png));
        std::snprintf(reader->message, sizeof reader->message, "%s", text);
        png_longjmp(png, 1);
    }
    static void ignore(png_structp, png_const_charp) {}
};

[[noreturn]] void failReading(const std::string &path, std::FILE *file, const PngReader &reader)
{
    fail(path, std::feof(file) != 0 ? "is cut off: the file ends within the picture"
                                    : std::string("cannot read as PNG: ") + reader.message);
}

// Copies a row of samples, blended with white if they have alpha.
void copyRow(const png_byte *source, bool alpha, OrvImage &image, std::int32_t y)
{
    const int channels = image.nChannels;
    std::uint8_t *target = rowOf<std::uint8_t>(image, y);
    for (std::int32_t x = 0; x < image.width; ++x) {
        const int cover = alpha ? source[channels] : 255;
        for (int c = 0; c < channels; ++c)
            *target++ = static_cast<std::uint8_t>((source[c] * cover + 255 * (255 - cover) + 127) / 255);
        source += channels + (alpha ? 1 : 0);
    }
}

} // namespace

Image readPng(const std::string &path)
{
    const File file = openPng(path);
    PngReader reader;
    if (!reader.begin(file.get()))
        failReading(path, file.get(), reader);
    const Size size = {static_cast<std::int32_t>(png_get_image_width(reader.png, reader.info)),
                       static_cast<std::int32_t>(png_get_image_height(reader.png, reader.info))};
    if (std::int64_t{size.width} * size.height > mostPixels)
        fail(path, "is too large: " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                       " pixels, at most " + std::to_string(mostPixels) + " in all");

    const std::size_t rowBytes = png_get_rowbytes(reader.png, reader.info);
    std::vector<png_byte> pixels(rowBytes * static_cast<std::size_t>(size.height));
    std::vector<png_bytep> rows;
    for (std::int32_t y = 0; y < size.height; ++y)
        rows.push_back(pixels.data() + static_cast<std::size_t>(y) * rowBytes);
    if (!reader.readRows(rows.data()))
        failReading(path, file.get(), reader);

    const int samples = png_get_channels(reader.png, reader.info);
    Image image = newImage({.channels = samples <= 2 ? 1 : 3}, size);
    for (std::int32_t y = 0; y < size.height; ++y)
        copyRow(rows[static_cast<std::size_t>(y)], samples == 2 || samples == 4, *image, y);
    return image;
}

void writePng(const std::string &path, const OrvImage &image)
{
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    png.format = image.nChannels == 1 ? PNG_FORMAT_GRAY : image.nChannels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
    if (png_image_write_to_file(&png, path.c_str(), 0, image.imageData, image.widthStep, nullptr) == 0)
        fail(path, std::string("cannot write: ") + png.message);
}

} // namespace sheet
