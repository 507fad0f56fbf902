// A selection of the pictures of a sheet, in one picture.
#include "overview.h"

#include <algorithm>
#include <span>

#include "display.h"

namespace sheet {
namespace {

constexpr std::int32_t columns = 6, gap = 6, cellWidth = 143, cellHeight = 108;

constexpr std::int32_t endOf(std::int32_t cells, std::int32_t cell)
{
    return gap + cells * (cell + gap);
}
static_assert(endOf(columns, cellWidth) == 900);

} // namespace

Image thumbnail(const OrvImage &image)
{
    const double scale =
        std::min({1.0, static_cast<double>(cellWidth) / image.width, static_cast<double>(cellHeight) / image.height});
    const auto scaled = [scale](std::int32_t side) {
        return std::max(1, static_cast<std::int32_t>(side * scale + 0.5));
    };
    Image small = reduced(image, {scaled(image.width), scaled(image.height)});
    // 64 levels instead of 256: the difference is invisible, and the file is little more than half as large.
    for (std::int32_t y = 0; y < small->height; ++y)
        for (std::uint8_t &sample :
             std::span(rowOf<std::uint8_t>(*small, y), 3 * static_cast<std::size_t>(small->width)))
            sample = static_cast<std::uint8_t>((sample & 0xFC) | sample >> 6);
    return small;
}

Image overview(const std::vector<Image> &thumbnails)
{
    const auto rows = (static_cast<std::int32_t>(thumbnails.size()) + columns - 1) / columns;
    Image whole = newImage({}, {endOf(columns, cellWidth), endOf(std::max(rows, 1), cellHeight)});
    check(orvSet(whole.get(), 255));
    std::int32_t cell = 0;
    for (const Image &picture : thumbnails) {
        OrvROI place = {0, endOf(cell % columns, cellWidth) + (cellWidth - picture->width) / 2,
                        endOf(cell / columns, cellHeight) + (cellHeight - picture->height) / 2, picture->width,
                        picture->height};
        OrvImage target = viewOf(*whole, &place);
        check(orvCopy(picture.get(), &target));
        ++cell;
    }
    return whole;
}

} // namespace sheet
