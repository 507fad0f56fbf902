// The operations that work pixel by pixel. Each is registered once, in operations.cpp; all that they share is tested
// over this list.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "front/reports.h"
#include "front/test_image.h"

namespace front {

// The arguments of an operation beside its images.
struct Constant {
    std::int32_t integer = 0;
    float real = 0;
    std::int32_t flip = 0;
    unsigned spoilt = 0; // arguments to be refused, by bits of the operation's own
};

// What is done to the images of a call that an operation serves, to make it refuse them.
enum class Fault {
    NullImage,
    BadHeader,  // an alignment of 5, which the check of the header leaves as -21
    Depth,      // `depth` put into an image, or into all
    OtherDepth, // of one image another than that of the rest
    Origin,     // likewise
    Order,      // likewise
    Channels,   // three of them, where the rest have four
    Alpha,      // the last of four channels an alpha channel, where the rest have none
    Tiled,
    OneHeader, // of the source, for the destination too
    Arguments  // `argument` told to the operation beside its constant
};

inline constexpr int allImages = -1;

struct Reporter {
    const char *function;
    const char *unit;
};

// One check of an operation: what it finds and how it says so.
struct Refusal {
    Fault fault;
    int image; // sources first, the destination last
    OrvStatus status;
    const char *context;
    std::int32_t depth = 0; // for Fault::Depth
    bool byWorker = false;  // reported by Operation::worker
    unsigned argument = 0;  // for Fault::Arguments: a bit that Operation::call knows
};

// Which numbers of channels agree, of a source and the destination; a channel of interest is one channel in any case.
enum class Agreement {
    All,          // as many in all
    WithoutAlpha, // as many without the alpha channel of four
    Both,         // in all, and without it too
    SameAlpha     // in all, and the same alpha channel
};

struct Channels {
    std::int32_t count, alpha, coi;
};

inline constexpr Channels choicesOfChannels[] = {{1, 0, 0}, {1, 1, 0}, {1, 0, 1}, {2, 0, 0}, {2, 2, 0}, {2, 0, 2},
                                                 {3, 0, 0}, {3, 3, 0}, {3, 0, 1}, {3, 0, 3}, {4, 0, 0}, {4, 4, 0},
                                                 {4, 0, 2}, {4, 4, 4}, {4, 4, 1}, {5, 0, 0}, {5, 5, 0}, {5, 0, 5}};

// A pixel of the common rectangle.
struct Position {
    int x, y;
};

struct Operation {
    std::string name; // in the tests' names
    Reporter reporter;
    int sources;
    std::vector<std::int32_t> depths;
    OrvStatus (*call)(OrvImage *const *images, const Constant &constant);
    Sample (*expected)(std::int32_t depth, const Sample *sources, const Constant &constant);
    std::vector<Refusal> refusals; // in the order of the checks
    std::vector<Constant> constants = {Constant()};

    Reporter worker = reporter; // the function that does the work, and reports exhausted memory
    bool traces = false;        // a failure of the worker is traced by the operation
    bool originsAgree = false;
    bool orderOfSingleChannelsFree = false;
    bool orderFreeAtDepth1U = false;
    Agreement channels = Agreement::All;
    bool nothingOnItself = false;     // given one header twice it does nothing and returns the channel count
    bool stepsOfWholeSamples = false; // rows at other steps are its family's own matter
    // Where a result comes from in a rectangle of that size; null where pixels stay at their places. Operations that
    // move pixels do so in the destination's own rectangle when a straight call has one raster for both images.
    Position (*origin)(Position at, int width, int height, const Constant &constant) = nullptr;
    bool noMaskOnItself = false; // given one header twice it refuses a mask
    bool returnsNothing = false; // `call` gives the stored status
    bool anyNan = false;         // which not-a-number a float result is remains open
};

const std::vector<Operation> &operations();

// The operations for which the flag stands as wanted.
std::vector<Operation> operationsWith(bool Operation::*flag, bool value);

bool agree(const Operation &operation, const Channels &source, const Channels &destination);

// What is reported when the operation, or its worker, fails in this way.
std::vector<Report> reportsOf(const Operation &operation, OrvStatus status, const char *context, bool byWorker);

// For INSTANTIATE_TEST_SUITE_P over operations().
std::string nameOf(const testing::TestParamInfo<Operation> &info);
void PrintTo(const Operation &operation, std::ostream *out);

} // namespace front
