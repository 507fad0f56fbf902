// What filters with a window compute, from exact numbers. The tests of kernels and those of operations share it.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace models {

// One rounding to a float for each operation.
inline float rounded(double value)
{
    const volatile float single = static_cast<float>(value);
    return single;
}

// The number of units nearest to the value, the even one of two.
inline std::int64_t nearestMultiple(std::int64_t value, std::int64_t unit)
{
    std::int64_t below = value / unit, rest = value % unit;
    if (rest < 0) {
        --below;
        rest += unit;
    }
    const std::int64_t toNext = unit - rest;
    return below + (rest > toNext || (rest == toNext && below % 2 != 0));
}

// By the reciprocal in fixed point, or in floats where that has no room.
inline double meanOfBytes(double sum, int size)
{
    const float inverse = rounded(1.0 / size);
    if (size > 8100)
        return std::floor(rounded(sum * inverse));
    if (size == 1)
        return sum;
    std::uint64_t value = static_cast<std::uint64_t>(double{inverse} * 4294967295.0);
    int shift = 12;
    for (; value < 0x80000000u; value *= 2)
        ++shift;
    return std::floor(std::ldexp(static_cast<double>((value >> 20) + 1) * sum, -shift));
}

// Of the samples above the lowest.
inline double meanOfWords(double sum, int size)
{
    const float mean = rounded(double{rounded(sum)} * rounded(1.0 / size));
    return std::floor(rounded(double{mean} + 9.0e-6f)) - 32768;
}

// Means of floats from running sums: down each column from the first row, and along each row of those from its first
// pixel. sample(column, row) counts from the first window's corner.
template <class At> std::vector<float> runningMeans(int width, int height, int windowColumns, int windowRows, At sample)
{
    std::vector<float> columns(static_cast<std::size_t>(width + windowColumns - 1)), means;
    const float inverse = rounded(1.0 / (static_cast<double>(windowColumns) * windowRows));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < static_cast<int>(columns.size()); ++x) {
            float &sum = columns[static_cast<std::size_t>(x)];
            for (int row = 0; row < windowRows && y == 0; ++row)
                sum = rounded(double{sum} + sample(x, row));
            if (y > 0)
                sum = rounded(double{sum} + rounded(sample(x, y + windowRows - 1) - sample(x, y - 1)));
        }
        float sum = 0;
        for (std::size_t x = 0; x < static_cast<std::size_t>(windowColumns); ++x)
            sum = rounded(double{sum} + columns[x]);
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
            means.push_back(rounded(double{sum} * inverse));
            if (const std::size_t next = x + static_cast<std::size_t>(windowColumns); next < columns.size())
                sum = rounded(double{sum} + rounded(double{columns[next]} - columns[x]));
        }
    }
    return means;
}

// The first pixel whose summed distance to all others is smallest.
inline std::size_t colorMedian(const std::vector<double> (&samples)[3])
{
    std::size_t nearest = 0;
    double smallest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < samples[0].size(); ++i) {
        double sum = 0;
        for (const auto &channel : samples)
            for (const double other : channel)
                sum += std::fabs(channel[i] - other);
        if (sum < smallest) {
            smallest = sum;
            nearest = i;
        }
    }
    return nearest;
}

// The fixed filters by their numbers.
struct FixedFilter {
    const char *kernel;
    int side, divisor;
    std::vector<int> coefficients;
};

inline const FixedFilter fixedFilters[] = {
    {"PrewittV", 3, 1, {1, 0, -1, 1, 0, -1, 1, 0, -1}},
    {"PrewittH", 3, 1, {-1, -1, -1, 0, 0, 0, 1, 1, 1}},
    {"SobelV", 3, 1, {1, 0, -1, 2, 0, -2, 1, 0, -1}},
    {"SobelH", 3, 1, {-1, -2, -1, 0, 0, 0, 1, 2, 1}},
    {"Laplace", 3, 1, {-1, -1, -1, -1, 8, -1, -1, -1, -1}},
    {"Laplace", 5, 1, {-1, -3, -4, -3, -1, -3, 0, 6, 0, -3, -4, 6, 20, 6, -4, -3, 0, 6, 0, -3, -1, -3, -4, -3, -1}},
    {"Gauss", 3, 16, {1, 2, 1, 2, 4, 2, 1, 2, 1}},
    {"Gauss", 5, 571, {2, 7, 12, 7, 2, 7, 31, 52, 31, 7, 12, 52, 127, 52, 12, 7, 31, 52, 31, 7, 2, 7, 12, 7, 2}},
    {"Hipass", 3, 1, {-1, -1, -1, -1, 8, -1, -1, -1, -1}},
    {"Hipass", 5, 1, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 24,
                      -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}},
    {"Sharpen", 3, 8, {-1, -1, -1, -1, 16, -1, -1, -1, -1}}};

// The quotient of integers before it saturates. Of words a reciprocal of 571 serves that is a little too large.
inline double fixedQuotient(const FixedFilter &filter, std::int64_t sum, bool words)
{
    if (filter.divisor == 571 && words)
        return static_cast<double>(((sum + 286 + 571 * 32768) * 7521834 >> 32) - 32768);
    return static_cast<double>(nearestMultiple(sum, filter.divisor));
}

} // namespace models
