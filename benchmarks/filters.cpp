// Filters with a window, and morphology.
#include "bench_windows.h"

namespace bench {
namespace {

using WindowFunction = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t, std::int32_t, std::int32_t,
                                     std::int32_t);

auto square(WindowFunction function, int side)
{
    return [=](const Image &from, const Image &to) { function(from.get(), to.get(), side, side, side / 2, side / 2); };
}

void addSquares(std::vector<Case> &cases, const char *name, WindowFunction function, const std::vector<int> &sides,
                int depth, int channels)
{
    for (const int side : sides)
        cases.push_back(windowCase(std::string(name) + " " + std::to_string(side) + "x" + std::to_string(side), depth,
                                   channels, square(function, side)));
}

void addFixed(std::vector<Case> &cases, int depth, int channels)
{
    constexpr struct {
        const char *name;
        int number;
    } filters[] = {{"Prewitt", ORV_FILTER_PREWITT_V},   {"Sobel", ORV_FILTER_SOBEL_H},
                   {"Laplace 3", ORV_FILTER_LAPLACE_3}, {"Gauss 3", ORV_FILTER_GAUSS_3},
                   {"sharpen 3", ORV_FILTER_SHARPEN_3}, {"Laplace 5", ORV_FILTER_LAPLACE_5},
                   {"Gauss 5", ORV_FILTER_GAUSS_5},     {"high pass 5", ORV_FILTER_HIPASS_5}};
    for (const auto &[name, number] : filters)
        cases.push_back(windowCase(name, depth, channels, [number = number](const Image &from, const Image &to) {
            orvFixedFilter(from.get(), to.get(), number);
        }));
}

} // namespace

std::vector<Case> filterCases()
{
    std::vector<Case> cases;
    for (const int channels : {1, 3, 4}) {
        for (const int depth : {ORV_DEPTH_8U, ORV_DEPTH_16S}) {
            addSquares(cases, "minimum", orvMinFilter, {9, 51}, depth, channels);
            addSquares(cases, "median", orvMedianFilter, {3, 5, 9, 51}, depth, channels);
        }
        for (const int depth : {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F}) {
            addSquares(cases, "blur", orvBlur, {5, 51}, depth, channels);
            if (channels != 4)
                addFixed(cases, depth, channels);
        }
        for (const int iterations : {1, 4})
            cases.push_back(windowCase(
                "dilate " + std::to_string(iterations), ORV_DEPTH_8U, channels,
                [iterations](const Image &from, const Image &to) { orvDilate(from.get(), to.get(), iterations); }));
    }
    addSquares(cases, "blur", orvBlur, {101}, ORV_DEPTH_8U, 1);
    addSquares(cases, "color median", orvColorMedianFilter, {3, 5}, ORV_DEPTH_8U, 3);
    addSquares(cases, "color median", orvColorMedianFilter, {3, 5}, ORV_DEPTH_16S, 3);
    cases.push_back(smallRectangleCase("median 9x9", square(orvMedianFilter, 9)));
    return cases;
}

} // namespace bench
