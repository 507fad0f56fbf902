// One call of a row in every build, between guard pages, held against a formula or against build 0.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <vector>

#include "rows.h"

using Random = std::mt19937;

// A rectangle of samples. All sample types are read and written as doubles, which hold each of their numbers.
struct Raster {
    const SampleType *type;
    int samples, height;     // of a row; rows
    int left = 0, above = 0; // samples and rows around those that the kernel computes
    std::uint8_t *start;     // the first sample that the kernel computes
    int step;
    std::uint8_t *watched; // all bytes of the raster, and some around it
    std::size_t watchedBytes;

    std::uint8_t *at(int x, int y) const { return start + std::ptrdiff_t{y} * step + std::ptrdiff_t{x} * type->bytes; }
    double get(int x, int y) const;
    void set(int x, int y, double value) const;

    // Takes next() for each sample, margins included.
    template <class Next> void fill(Next next) const
    {
        for (int y = -above; y < height - above; ++y)
            for (int x = -left; x < samples - left; ++x)
                set(x, y, next());
    }
};

enum class Place { Disjoint, OverFirst, OverSecond };

struct Form {
    int width, height = 1;
    Place place = Place::Disjoint;
    Window window = {};
    bool dense = false; // no raster has padding
    int gap = -1;       // bytes between the lower guard page and all rasters; below 0 anywhere
};

// Rasters for a call, filled with noise, and arguments that the test may change. Trials share the memory behind their
// rasters, so only one lives at a time.
struct Trial {
    Trial(const Row &itsRow, const Form &itsForm, Random &random);

    const Row &row;
    Form form;
    Raster first, second, mask, out;
    std::array<double, 4> constants = {}; // as the row takes them: of samples, or counts of shifts
    std::vector<double> coefficients;     // of the window
    int valueBits = 0;                    // above the sample, in a constant by value
    int mode = 0, divisor = 1;
    std::vector<int> levels[4], steps[4]; // of each channel
    int level = 0, low = 0, high = 0;

    int outWidth() const { return row.takes(RESULTS) ? 1 : form.width; }
    int outHeight() const; // results have a row each
    // The sample of the first source at the place of a destination's sample.
    int firstX(int x) const { return x / row.layout.destination * row.layout.source + x % row.layout.destination; }
    double firstAt(int x, int y) const { return first.get(firstX(x), y); }
    // What meets it: a sample of the second source or a constant.
    double secondAt(int x, int y) const
    {
        return row.takes(SECOND | ONTO)       ? second.get(x, y)
               : row.takes(CONSTANT | VALUES) ? constants[static_cast<std::size_t>(x % row.layout.destination)]
                                              : 0;
    }
};

// The sample of the destination at x and y, from rasters as they are before the call.
using Formula = std::function<double(const Trial &trial, int x, int y)>;

// Runs all builds that this processor carries. Each must write what the formula says and leave all else alone: fourth
// samples, padding, sources. Without a formula it is what build 0 writes. Not-a-numbers are alike, since operands may
// be exchanged or kept in wider registers, which shows in the payload.
testing::AssertionResult hold(const Trial &trial, const Formula &formula);

// The formula of a row's operation; none for the test pattern, and for sums of floats that depend on their order.
Formula formulaOf(const Row &row, bool sumsAreExact = false);

// Numbers that show faults: all bytes; of wider integers powers of two, halves between two of them and what is beside
// those, and some of all magnitudes; of floats ties, limits of the integers, infinities and not-a-numbers.
const std::vector<double> &numbersOf(const SampleType &type);

// Numbers beyond which nothing is left of a result or nothing but its sign, and some between.
const std::vector<int> &scales();
