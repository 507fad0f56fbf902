// Entries: the photographs, a clone, and single pixels.
#include <cmath>
#include <vector>

#include "entries.h"

namespace sheet {
namespace {

Picture asRead(const Photograph &photograph)
{
    const OrvImage &image = photograph.isGrey ? *photograph.grey : *photograph.colour;
    return pictureOf(image, image, -1);
}

Picture clone(const Photograph &photograph)
{
    Image copy;
    const double time = bestTime([&] { copy = owned(orvCloneImage(photograph.colour.get())); }, [&] { copy.reset(); });
    return pictureOf(*copy, *copy, time);
}

struct Point {
    std::int32_t x, y;
};

// A wave from (0, 0) to the opposite corner, without gaps and three pixels thick.
std::vector<Point> risingWave(Size size)
{
    constexpr double pi = 3.14159265358979;
    const auto heightAt = [size](std::int32_t x) {
        const double t = size.width > 1 ? static_cast<double>(x) / (size.width - 1) : 0;
        const double wave = 0.12 * std::sin(6 * pi * t) * std::sin(pi * t);
        return static_cast<std::int32_t>(std::lround((t + wave) * (size.height - 1)));
    };
    std::vector<Point> points;
    for (std::int32_t x = 0; x < size.width; ++x) {
        const std::int32_t here = heightAt(x), before = heightAt(x > 0 ? x - 1 : 0);
        for (std::int32_t y = std::min(here, before) - 1; y <= std::max(here, before) + 1; ++y)
            if (y >= 0 && y < size.height)
                points.push_back({x, y});
    }
    return points;
}

Picture drawnLine(const Photograph &photograph)
{
    const Image image = owned(orvCloneImage(photograph.colour.get()));
    OrvImage fromBelow = *image; // the same raster, rows counted from the last one
    fromBelow.origin = ORV_ORIGIN_BL;
    const std::vector<Point> points = risingWave(sizeOf(*image));
    const std::uint8_t red[3] = {220, 40, 30};
    const double time = bestTime([&] {
        OrvStatus status = ORV_STATUS_OK;
        for (const Point &point : points)
            status = std::min(status, orvPutPixel(&fromBelow, point.x, point.y, red));
        return status;
    });
    OrvROI one = {0, 0, 0, 1, 1};
    return pictureOf(*image, viewOf(*image, &one), time / static_cast<double>(points.size()));
}

constexpr Entry table[] = {
    {"photograph", "libpng", "The photograph as read.", true, everyPhotograph, asRead},
    {"clone", "orvCloneImage", "A clone, with a raster of its own.", false, 2, clone},
    {"line", "orvPutPixel",
     "A line drawn pixel by pixel, through a header with its origin at the bottom left, where y counts from the last "
     "row. The time is that of one pixel.",
     true, 0, drawnLine},
};

} // namespace

Family photographFamily()
{
    return {"Images and pixels", table};
}

} // namespace sheet
