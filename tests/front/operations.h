// The list of operations. Each has one entry; all that operations share is tested over this list.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "front/float_range.h"
#include "front/reports.h"
#include "front/test_image.h"

namespace front {

// The headers of a call: sources first, the destination last.
using Images = OrvImage *const *;

// What is done to the images of a call that an operation serves, to make it refuse them.
enum class Fault {
    NullImage,
    BadHeader,  // an alignment of 5, which the header check finds with -21
    Depth,      // `value` as the depth of an image, or of all
    OtherDepth, // of one image another than that of the rest
    Origin,     // likewise
    Order,      // likewise
    Channels,   // three of them, where the rest have four
    Alpha,      // the last channel an alpha channel, where the rest have none
    MaskOrigin, // a mask of another origin than its image
    MaskAlpha,  // all images of depth 1U, one of them with an alpha channel
    Coi,        // a rectangle with the first channel as that of interest
    Layout,     // `value` is 10 times the number of channels, plus the alpha channel
    Tiled,
    OneHeader,       // of the source, for the destination too
    MaskOnOneHeader, // likewise, and a mask
    Argument         // `value` is the number of the fault that Operation::callWith makes
};

inline constexpr int allImages = -1;

// One check of an operation: what it finds and how it says so.
struct Refusal {
    Fault fault;
    int image;
    OrvStatus status;
    const char *context;
    std::int32_t value = 0;
    bool byWorker = false; // reported by Operation::worker
};

// Which numbers of channels agree, of a source and the destination; a channel of interest is one channel in any case.
enum class Agreement {
    All,          // as many in all
    WithoutAlpha, // as many without the alpha channel of four
    Both,         // in all, and without it too
    SameAlpha,    // in all, and the same alpha channel
    SameImages,   // the same with and without a channel of interest
    Colors,       // three, or four of which the source's last is its alpha channel, and no channel of interest
    Any           // as many are computed as both have
};

// Where data orders may differ.
enum class Orders { Agree, FreeOfSingles, FreeBesideSingles, Free };

// What becomes of a call that has one header as source and destination.
enum class OnItself { Computed, ComputedUnmasked, ChannelCount, Refused };

struct Channels {
    std::int32_t count, alpha, coi;
};

inline constexpr Channels choicesOfChannels[] = {{1, 0, 0}, {1, 1, 0}, {1, 0, 1}, {2, 0, 0}, {2, 2, 0}, {2, 0, 2},
                                                 {3, 0, 0}, {3, 3, 0}, {3, 0, 1}, {3, 0, 3}, {4, 0, 0}, {4, 4, 0},
                                                 {4, 0, 2}, {4, 4, 4}, {4, 4, 1}, {5, 0, 0}, {5, 5, 0}, {5, 0, 5}};

// A sample of an image with its borders. Never padded: each sample is looked up where its border says.
Sample borderedSample(const TestImage &image, const Bytes &memory, std::int32_t x, std::int32_t y,
                      std::int32_t channel);

// Where a result is computed: its pixel in the common rectangle, and the samples to compute it from.
struct Place {
    struct Source {
        const TestImage *image;
        const Bytes *memory;
        std::int32_t left, top, channel; // that the call reads
    };

    std::int32_t depth, width, height; // of the result, and of the rectangle
    Source sources[2];
    std::int32_t x = 0, y = 0;

    Sample at(int source, std::int32_t right, std::int32_t down) const
    {
        const Source &from = sources[source];
        return borderedSample(*from.image, *from.memory, from.left + x + right, from.top + y + down, from.channel);
    }
    Sample operator[](int source) const { return at(source, 0, 0); }
};

// The results that are right at one place: one alone, to the bit, or all between two.
struct Results {
    double lowest, highest;
    bool any = false; // not-a-numbers too
    Sample exact = {};

    static Results only(Sample sample) { return {0, 0, false, sample}; }
    // A float as it was computed, brought to the depth at last: rounded to nearest, ties to even, and saturated.
    static Results of(const FloatRange &range, std::int32_t depth);

    bool include(const Sample &sample) const;
};

// What an operation is told beside its images, and what it must come to with that.
struct Arguments {
    std::string text; // for messages
    std::function<OrvStatus(Images images)> call;
    std::function<Results(const Place &place)> model;
    OrvStatus resultOfAlphaAlone = ORV_STATUS_OK; // see Operation::leavesAlphaAlone
};

struct Reporter {
    const char *function;
    const char *unit;
};

struct Operation {
    Reporter reporter;
    int sources;
    std::vector<std::int32_t> depths;
    std::function<Arguments(std::int32_t depth, Random &random)> draw;
    std::vector<Refusal> refusals = {}; // in the order of the checks
    std::string variant = {};           // behind the function's name, where that has several entries

    OrvStatus (*callWith)(Images images, std::uint32_t faults) = nullptr; // faults of the arguments, by bits
    Reporter worker = reporter;                      // the function that does the work, and reports exhausted memory
    bool traces = false;                             // a failure of the worker is traced by the operation
    const char *withoutMemory = "Not enough memory"; // null where it is returned and not reported
    bool oneResultOfRefusals = false;                // -5, whatever is reported; but for numbers of channels
    bool originsAgree = false;                       // of images, and of masks with their image
    std::int32_t destinationDepth = 0;               // where it is not that of the sources
    OrvStatus resultOfNothing = ORV_STATUS_OK;       // where no pixel is common, neither stored nor reported
    Orders orders = Orders::Agree;
    bool orderFreeAtDepth1U = false;
    Agreement channels = Agreement::All;
    OnItself onItself = OnItself::Computed;
    std::vector<std::int32_t> wholeSamples = {}; // depths whose rows are walked in whole samples
    bool returnsStatus = true;                   // else `call` gives the stored one
    bool anyNan = false;                         // which not-a-number a float result is remains open
    // Pixels move to other places; in a straight call on one raster, within the destination's own rectangle.
    bool movesPixels = false;
    // Reads around each pixel: the first channel for a channel of interest, and all of a plane before it writes any.
    bool window = false;
    bool leavesAlphaAlone = false; // does nothing, in silence, where the only channel of an image is its alpha channel
    bool alphaOfSource = false;    // which alone says, in pixel order, whether a fourth channel is left alone

    std::int32_t depthOf(int image, std::int32_t depth) const
    {
        return image == sources && destinationDepth != 0 ? destinationDepth : depth;
    }
    bool walksWholeSamples(std::int32_t depth) const
    {
        return std::find(wholeSamples.begin(), wholeSamples.end(), depth) != wholeSamples.end();
    }
    std::string name() const { return reporter.function + 3 + variant; } // behind the prefix
};

const std::vector<Operation> &operations();
std::vector<Operation> operationsWhere(bool (*holds)(const Operation &operation));

bool agree(const Operation &operation, const Channels &source, const Channels &destination);

// What is reported when the operation, or its worker, fails in this way.
std::vector<Report> reportsOf(const Operation &operation, OrvStatus status, const char *context, bool byWorker);

// For INSTANTIATE_TEST_SUITE_P over operations().
inline std::string nameOf(const testing::TestParamInfo<Operation> &info)
{
    return info.param.name();
}
void PrintTo(const Operation &operation, std::ostream *out);

} // namespace front
