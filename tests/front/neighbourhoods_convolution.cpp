// The convolutions in the list of operations that work on a neighbourhood.
#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <type_traits>

#include "front/convolution_calls.h"
#include "front/neighbourhood_model.h"

namespace front {
namespace {

// Small ones, large ones, those of a blur, whose sum is that of a few bytes, and those at the ends of narrower
// integers.
void drawCoefficients(std::vector<std::int32_t> &values, Random &random)
{
    static const std::int32_t ends[] = {-32769, -32768, -129, -128, -127, 127, 128, 129, 32767, 32768};
    const int kind = random.between(1, 10), ofBlur = 1 + 500 / static_cast<int>(values.size());
    const bool sparse = random.once(4);
    for (std::int32_t &value : values) {
        value = kind == 1   ? static_cast<std::int32_t>(random.bits())
                : kind == 2 ? random.oneOf(ends)
                : kind <= 4 ? random.between(-300, 300)
                : kind <= 6 ? random.between(0, ofBlur)
                            : random.between(-3, 4);
        if (sparse && random.once(2))
            value = 0;
    }
}

void drawCoefficients(std::vector<float> &values, Random &random)
{
    const bool ofManySizes = random.once(5);
    for (float &value : values)
        value = std::ldexp(static_cast<float>(random.between(-999, 999)), ofManySizes ? random.between(-30, 15) : -8);
}

// More often than not such that the samples' weight in a result is about 1, which keeps it from the ends of the range.
std::int32_t drawShift(const std::vector<std::int32_t> &values, Random &random)
{
    double sum = 1;
    for (const std::int32_t value : values)
        sum += std::fabs(value);
    const int fitting = static_cast<int>(std::log2(sum)) + random.between(-3, 1);
    const int shift = random.once(4) ? 0 : random.once(8) ? random.between(0, 31) : std::clamp(fitting, 0, 31);
    return shift + (random.once(4) ? 32 * random.between(-3, 3) : 0); // five low bits count
}

template <class Value> Window<Value> drawWindow(std::int32_t columns, std::int32_t rows, Random &random)
{
    Window<Value> window = {columns, rows, random.between(0, columns - 1), random.between(0, rows - 1), 0, {}};
    window.values.resize(static_cast<std::size_t>(columns * rows));
    drawCoefficients(window.values, random);
    if constexpr (std::is_same_v<Value, std::int32_t>)
        window.shift = drawShift(window.values, random);
    return window;
}

int anyLength(Random &random, int most)
{
    return random.once(12) ? random.between(most, 5 * most) : random.between(1, most);
}

double halfToEven(long long sum, int shift)
{
    const long long divisor = 1LL << shift, below = sum >> shift, rest = sum - below * divisor;
    const bool up = 2 * rest > divisor || (2 * rest == divisor && below % 2 != 0);
    return static_cast<double>(below + (up ? 1 : 0));
}

// In integers: a sum that wraps around at 32 bits, or one of 64 bits that never does.
Results integerResults(const Window<std::int32_t> &window, std::int32_t depth, const Surroundings &around)
{
    long long sum = 0;
    window.walk([&](long long value, int right, int down) { sum += value * around.at(right, down).integer(); });
    if (depth == ORV_DEPTH_8U)
        sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum));
    const double quotient = halfToEven(sum, window.shift & 31);
    return Results::only(std::clamp(quotient, double(lowestOf(depth)), double(highestOf(depth))));
}

FloatRange inFloat(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? FloatRange::real(sample.real())
                                         : FloatRange::whole(static_cast<float>(sample.integer())); // 24 bits of it
}

// In floats: one sum, divided.
template <class Value, class At> FloatRange floatSum(const Window<Value> &window, At at)
{
    std::vector<WeightedTerm> terms;
    window.walk([&](Value value, int right, int down) {
        terms.push_back({static_cast<double>(static_cast<float>(value)), at(right, down)});
    });
    return dividedByPowerOfTwo(weightedSum(terms), window.shift & 31);
}

template <class Value> FloatRange floatSum(const Window<Value> &window, const Surroundings &around)
{
    return floatSum(window, [&](int right, int down) { return inFloat(around.at(right, down)); });
}

template <class Value>
Results combinedResults(const std::vector<Window<Value>> &windows, std::int32_t method, std::int32_t depth,
                        const Surroundings &around)
{
    const bool several = windows.size() > 1;
    const bool squares = several && (method == ORV_COMBINE_SUMSQ || method == ORV_COMBINE_SUMSQROOT);
    FloatRange total = {};
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const FloatRange sumOfOne = floatSum(windows[i], around);
        const FloatRange one = squares ? square(sumOfOne) : sumOfOne;
        total = i == 0                      ? one
                : method == ORV_COMBINE_MAX ? larger(total, one)
                : method == ORV_COMBINE_MIN ? smaller(total, one)
                                            : sum(total, one);
    }
    if (several && method == ORV_COMBINE_SUMSQROOT)
        total = squareRoot(total);
    return Results::of(total, depth);
}

template <class Value> NeighbourhoodArguments arguments2D(std::int32_t depth, std::int32_t count, Random &random)
{
    const bool integers =
        std::is_same_v<Value, std::int32_t> && count == 1 && (depth == ORV_DEPTH_8U || depth == ORV_DEPTH_16S);
    const std::int32_t method = count > 1 ? random.between(0, 4) : random.between(-1, 5); // ignored with one kernel
    const auto windows = std::make_shared<std::vector<Window<Value>>>();
    std::ostringstream text;
    text << "method " << method;
    for (int i = 0; i < count; ++i) {
        windows->push_back(drawWindow<Value>(anyLength(random, 6), anyLength(random, 5), random));
        text << "\nkernel " << windows->back();
    }
    const auto call = [=](const OrvImage *source, OrvImage *destination) {
        std::vector<RecordOf<Value>> records;
        for (Window<Value> &window : *windows)
            records.push_back(window.record());
        std::vector<RecordOf<Value> *> kernels;
        for (auto &record : records)
            kernels.push_back(&record);
        return convolve(source, destination, kernels, method);
    };
    const auto results = [=](const Surroundings &around) {
        if constexpr (std::is_same_v<Value, std::int32_t>)
            if (integers)
                return integerResults(windows->front(), depth, around);
        return combinedResults(*windows, method, depth, around);
    };
    return {text.str(), call, results};
}

// Columns first, then a row of what they came to.
template <class Value>
Results separableResults(const Window<Value> &row, const Window<Value> &column, std::int32_t depth,
                         const Surroundings &around)
{
    const FloatRange total = floatSum(row, [&](int right, int) {
        return floatSum(column, [&](int, int down) { return inFloat(around.at(right, down)); });
    });
    return Results::of(total, depth);
}

template <class Value>
Results vectorResults(const Window<Value> &vector, std::int32_t depth, const Surroundings &around)
{
    if constexpr (std::is_same_v<Value, std::int32_t>)
        return integerResults(vector, depth, around);
    else
        return Results::of(floatSum(vector, around), depth);
}

enum Vectors { rowOnly = 1, columnOnly = 2, bothVectors = 3 };

template <class Value, Vectors given> NeighbourhoodArguments argumentsSep(std::int32_t depth, Random &random)
{
    const auto row = std::make_shared<Window<Value>>(drawWindow<Value>(1 + anyLength(random, 6), 1, random));
    const auto column = std::make_shared<Window<Value>>(drawWindow<Value>(1, 1 + anyLength(random, 6), random));
    std::ostringstream text;
    if ((given & rowOnly) != 0)
        text << "row " << *row << "\n";
    if ((given & columnOnly) != 0)
        text << "column " << *column;
    const auto call = [=](const OrvImage *source, OrvImage *destination) {
        const RecordOf<Value> x = row->record(), y = column->record();
        return convolve(source, destination, (given & rowOnly) != 0 ? &x : nullptr,
                        (given & columnOnly) != 0 ? &y : nullptr);
    };
    const auto results = [=](const Surroundings &around) {
        return given == bothVectors ? separableResults(*row, *column, depth, around)
                                    : vectorResults(given == rowOnly ? *row : *column, depth, around);
    };
    return {text.str(), call, results};
}

const std::vector<std::int32_t> integerDepths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S,
                                                 ORV_DEPTH_32S};
const std::vector<std::int32_t> separableDepths = {ORV_DEPTH_8U, ORV_DEPTH_16S};
const std::vector<std::int32_t> floatDepth = {ORV_DEPTH_32F};

NeighbourhoodOperation convolution(const char *name, const char *function, const std::vector<std::int32_t> &depths,
                                   NeighbourhoodArguments (*draw)(std::int32_t, Random &))
{
    NeighbourhoodOperation operation = {name, {function, "orvcnv2d"}, depths, draw};
    operation.withoutMemory = "Allocation failure";
    operation.alphaOfSource = true;
    return operation;
}

template <class Value, Vectors given> NeighbourhoodOperation separable(const char *name, const char *function)
{
    NeighbourhoodOperation operation = {name,
                                        {function, "orvCSep2"},
                                        std::is_same_v<Value, float> ? floatDepth : separableDepths,
                                        argumentsSep<Value, given>};
    operation.onItself = false;
    operation.alphaOfSource = true;
    operation.originsAgree = true;
    return operation;
}

} // namespace

std::vector<NeighbourhoodOperation> convolutions()
{
    return {convolution("Convolve2D", "orvConvolve2D", integerDepths,
                        [](std::int32_t depth, Random &random) { return arguments2D<std::int32_t>(depth, 1, random); }),
            convolution("Convolve2DOfSeveral", "orvConvolve2D", integerDepths,
                        [](std::int32_t depth, Random &random) {
                            const int count = random.once(4) ? random.between(3, 10) : 2;
                            return arguments2D<std::int32_t>(depth, count, random);
                        }),
            convolution("Convolve2DFP", "orvConvolve2DFP", floatDepth,
                        [](std::int32_t depth, Random &random) {
                            const int count = random.once(2) ? 1 : random.once(4) ? random.between(3, 10) : 2;
                            return arguments2D<float>(depth, count, random);
                        }),
            separable<std::int32_t, rowOnly>("ConvolveSep2DRow", "orvConvolveSep2D"),
            separable<std::int32_t, columnOnly>("ConvolveSep2DColumn", "orvConvolveSep2D"),
            separable<std::int32_t, bothVectors>("ConvolveSep2D", "orvConvolveSep2D"),
            separable<float, rowOnly>("ConvolveSep2DFPRow", "orvConvolveSep2DFP"),
            separable<float, columnOnly>("ConvolveSep2DFPColumn", "orvConvolveSep2DFP"),
            separable<float, bothVectors>("ConvolveSep2DFP", "orvConvolveSep2DFP")};
}

} // namespace front
