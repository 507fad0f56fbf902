// Operations whose result at a pixel comes from the pixels around it: a naive model of a source with its borders, of
// one call, and the list of these operations.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "front/float_range.h"
#include "front/pointwise_call.h"

namespace front {

// A source with all that stands around it. Never padded: each sample is looked up where its border says.
class BorderedSource {
public:
    BorderedSource(const TestImage &image, const Bytes &memory) : image_(image), memory_(memory) {}

    // Any column and row, the image's or not.
    Sample at(std::int32_t x, std::int32_t y, std::int32_t channel) const;

private:
    const TestImage &image_;
    const Bytes &memory_;
};

// What is around one pixel, in the channel that is computed or in another.
struct Surroundings {
    const BorderedSource &source;
    std::int32_t x, y, channel;

    Sample at(std::int32_t right, std::int32_t down) const { return source.at(x + right, y + down, channel); }
    Sample at(std::int32_t right, std::int32_t down, std::int32_t ofChannel) const
    {
        return source.at(x + right, y + down, ofChannel);
    }
};

// The results that are right at one place: one alone, or all between two.
struct Results {
    double lowest, highest;
    bool any = false; // not-a-numbers too

    static Results only(double value) { return {value, value}; }
    // A float as it was computed, brought to the depth at last: rounded to nearest, ties to even, and saturated.
    static Results of(const FloatRange &range, std::int32_t depth);

    bool include(const Sample &sample) const;
};

// What an operation is told beside its images, and what it is to come to with that.
struct NeighbourhoodArguments {
    std::string text; // for messages
    std::function<OrvStatus(const OrvImage *source, OrvImage *destination)> call;
    std::function<Results(const Surroundings &surroundings)> results;
};

struct NeighbourhoodOperation {
    std::string name; // in the tests' names
    Reporter reporter;
    std::vector<std::int32_t> depths;
    NeighbourhoodArguments (*draw)(std::int32_t depth, Random &random);

    const char *withoutMemory = "Not enough memory";
    bool onItself = true; // takes one header for source and destination
    bool originsAgree = false;
    bool alphaOfSource = false; // which alone says, in pixel order, whether a fourth channel is left alone
};

const std::vector<NeighbourhoodOperation> &neighbourhoodOperations();
// The checks of the same functions.
std::vector<Operation> refusalsOfNeighbourhoods();

// The parts of both lists, each in a file of its own.
std::vector<NeighbourhoodOperation> convolutions();
std::vector<Operation> refusalsOfConvolutions();

// Runs the call, a source and a destination, and compares status, reports and every byte of all memory with what the
// operation promises. Of large images only every so many results may be judged, some of them in each row.
testing::AssertionResult runs(const NeighbourhoodOperation &operation, const NeighbourhoodArguments &arguments,
                              const PointwiseCall &images, Reports &reports, int &written, int judgedOneIn = 1);

// For INSTANTIATE_TEST_SUITE_P over neighbourhoodOperations().
std::string nameOfNeighbourhood(const testing::TestParamInfo<NeighbourhoodOperation> &info);
void PrintTo(const NeighbourhoodOperation &operation, std::ostream *out);

} // namespace front
