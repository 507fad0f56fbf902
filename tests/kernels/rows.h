// All rows of the kernel table as a list, with what the lists of the families say of each of them.
#pragma once

#include <string>
#include <vector>

#include "kernels.h"

struct SampleType {
    enum Kind { U8, S8, U16, S16, S32, F32, F64 } kind;
    const char *name;
    int bytes;
    double lowest, highest; // of integers

    bool isFloat() const { return kind >= F32; }
};

// Samples of a pixel on both sides, and how many of them a kernel writes: the first ones. A single channel of several
// may be any: there the raster starts at that channel's first sample.
struct PixelLayout {
    const char *name;
    int source, destination, written;
};

// What a signature takes.
enum Use : unsigned {
    FIRST = 1,
    SECOND = 2,
    OUT = 4,
    MASK = 8,
    VALUES = 16,    // constants, one a channel, or the coefficients of a window
    CONSTANT = 32,  // by value
    ONE_ROW = 64,   // no rectangle
    IN_PLACE = 128, // the destination is the first source
    ONTO = 256,     // the destination is the second source
    SCALE = 512,
    FLIP = 1024,
    ROUNDING = 2048,
    WINDOW = 4096,
    DIVISOR = 8192,
    RESULTS = 16384,    // the destination is a pixel a row: extremes, counts of intervals, norms
    CODE = 32768,       // of a window of a fixed size, as the mode
    FIXED = 65536,      // a window of 3 x 3, unless a code says otherwise
    CONTINUED = 131072, // sums, which a second call continues after as many rows as the mode says
    INTERVALS = 262144, // levels of a histogram
    TABLE = 524288,     // levels and values of a look-up table
    LEVEL = 1048576,    // a level and values for its sides
};

struct Window {
    int columns = 1, rows = 1, anchorX = 0, anchorY = 0;

    int size() const { return columns * rows; }
    int anchor() const { return anchorX + anchorY; } // of a single row or column
};

struct Argument {
    void *data;
    int step;
};

// One set of arguments for all signatures.
struct Arguments {
    Argument first, second, out, mask;
    int width, height;
    int mode; // scale, flip or rounding
    int value;
    float real;
    const void *values;
    Window window;
    int divisor;
    void *scratch, *sums;
    const int *levels[4], *steps[4]; // of each channel: levels, and the values of a table's steps
    int levelCounts[4];
    int low, high; // beside `value`, which is the level
};

struct Row {
    const char *name, *operation;
    const SampleType &source, &destination;
    const PixelLayout &layout;
    bool plain; // one build serves all slots
    unsigned uses;
    std::vector<void *> builds;
    orv::KrnStatus (*run)(const void *kernel, const Arguments &arguments); // null where the row takes no raster
    const void *kernel;

    bool is(const std::string &what) const { return operation == what; }
    bool takes(unsigned what) const { return (uses & what) != 0; }
    bool windowed() const { return takes(WINDOW | FIXED | CODE); }
    // Convolutions turn their window: it starts as many pixels from the anchor as it ends elsewhere.
    bool turns() const { return takes(WINDOW) && takes(VALUES); }
    orv::WindowShape shape(int width, const Window &window) const
    {
        return {width, layout.source, source.bytes, window.columns, window.rows};
    }
    std::int64_t scratchBytes(int width, const Window &window) const;
    std::int64_t sumsBytes(int width, const Window &window) const;
    int channels() const { return layout.source < 4 ? layout.source : layout.written; } // that are measured
    bool isNorm() const { return std::string(operation).starts_with("Norm"); }
    bool shifts() const { return is("LShiftC") || is("RShiftC"); }
};

const SampleType &sampleType(const char *name);
const std::vector<Row> &allRows();
// The only row of that name.
const Row &rowNamed(const std::string &name);

// How many builds the processor and the operating system carry, from build 0 on.
int carriedBuilds();
