// The convolutions in the list of operations that work on a neighbourhood: formulas, and what they refuse.
#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <type_traits>
#include <utility>

#include "front/neighbourhood_model.h"
#include "front/operation_entries.h"

namespace front {
namespace {

template <class Value>
using RecordOf = std::conditional_t<std::is_same_v<Value, float>, OrvConvKernelFP, OrvConvKernel>;

// A window as an application thinks of it: with its anchor as given.
template <class Value> struct Window {
    std::int32_t columns, rows, anchorX, anchorY, shift;
    std::vector<Value> values;

    RecordOf<Value> record()
    {
        RecordOf<Value> kernel = {};
        kernel.nCols = columns;
        kernel.nRows = rows;
        kernel.anchorX = columns - 1 - anchorX;
        kernel.anchorY = rows - 1 - anchorY;
        kernel.values = values.data();
        if constexpr (std::is_same_v<Value, std::int32_t>)
            kernel.nShiftR = shift;
        return kernel;
    }

    // Calls `take` with each coefficient and how far to the right and below the pixel lies what it meets.
    template <class Take> void walk(Take take) const
    {
        for (std::int32_t row = 0; row < rows; ++row)
            for (std::int32_t column = 0; column < columns; ++column)
                take(values[static_cast<std::size_t>(row * columns + column)], anchorX - column, anchorY - row);
    }
};

template <class Value> std::ostream &operator<<(std::ostream &out, const Window<Value> &window)
{
    out << window.columns << " x " << window.rows << ", anchor " << window.anchorX << "," << window.anchorY
        << ", shift " << window.shift << ":";
    for (const Value value : window.values)
        out << " " << value;
    return out;
}

void drawCoefficients(std::vector<std::int32_t> &values, Random &random)
{
    const int kind = random.between(1, 8);
    for (std::int32_t &value : values)
        value = kind == 1   ? static_cast<std::int32_t>(random.bits())
                : kind <= 3 ? random.between(-300, 300)
                            : random.between(-3, 4);
}

void drawCoefficients(std::vector<float> &values, Random &random)
{
    const bool ofManySizes = random.once(5);
    for (float &value : values)
        value = std::ldexp(static_cast<float>(random.between(-999, 999)), ofManySizes ? random.between(-30, 15) : -8);
}

// The sign of the divisor 2^31 depends on the type that holds it; in floats nobody is to rely on either.
enum class Arithmetic { Integers, Floats };

// More often than not such that the samples' weight in a result is about 1, which keeps it from the ends of the range.
std::int32_t drawShift(const std::vector<std::int32_t> &values, Arithmetic arithmetic, Random &random)
{
    double sum = 1;
    for (const std::int32_t value : values)
        sum += std::fabs(value);
    const int most = arithmetic == Arithmetic::Floats ? 30 : 31;
    const int fitting = static_cast<int>(std::log2(sum)) + random.between(-3, 1);
    const int shift = random.once(4) ? 0 : random.once(8) ? random.between(0, most) : std::clamp(fitting, 0, most);
    return shift + (random.once(4) ? 32 * random.between(-3, 3) : 0); // five low bits count
}

template <class Value>
Window<Value> drawWindow(std::int32_t columns, std::int32_t rows, Arithmetic arithmetic, Random &random)
{
    Window<Value> window = {columns, rows, random.between(0, columns - 1), random.between(0, rows - 1), 0, {}};
    window.values.resize(static_cast<std::size_t>(columns * rows));
    drawCoefficients(window.values, random);
    if constexpr (std::is_same_v<Value, std::int32_t>)
        window.shift = drawShift(window.values, arithmetic, random);
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

OrvStatus convolve(const OrvImage *source, OrvImage *destination, const std::vector<const OrvConvKernel *> &kernels,
                   std::int32_t method)
{
    return orvConvolve2D(source, destination, kernels.data(), static_cast<std::int32_t>(kernels.size()), method);
}

OrvStatus convolve(const OrvImage *source, OrvImage *destination, const std::vector<const OrvConvKernelFP *> &kernels,
                   std::int32_t method)
{
    return orvConvolve2DFP(source, destination, kernels.data(), static_cast<std::int32_t>(kernels.size()), method);
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
        windows->push_back(drawWindow<Value>(anyLength(random, 6), anyLength(random, 5),
                                             integers ? Arithmetic::Integers : Arithmetic::Floats, random));
        text << "\nkernel " << windows->back();
    }
    const auto call = [=](const OrvImage *source, OrvImage *destination) {
        std::vector<RecordOf<Value>> records;
        for (Window<Value> &window : *windows)
            records.push_back(window.record());
        std::vector<const RecordOf<Value> *> kernels;
        for (const auto &record : records)
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

OrvStatus convolve(const OrvImage *source, OrvImage *destination, const OrvConvKernel *x, const OrvConvKernel *y)
{
    return orvConvolveSep2D(source, destination, x, y);
}

OrvStatus convolve(const OrvImage *source, OrvImage *destination, const OrvConvKernelFP *x, const OrvConvKernelFP *y)
{
    return orvConvolveSep2DFP(source, destination, x, y);
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
    const Arithmetic kind = given == bothVectors ? Arithmetic::Floats : Arithmetic::Integers;
    const auto row = std::make_shared<Window<Value>>(drawWindow<Value>(1 + anyLength(random, 6), 1, kind, random));
    const auto column = std::make_shared<Window<Value>>(drawWindow<Value>(1, 1 + anyLength(random, 6), kind, random));
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

// Arguments to be refused, as bits.
enum Spoilt2D : unsigned {
    nullKernels = 1u << 0,
    noKernels = 1u << 1,
    negativeCount = 1u << 2,
    elevenKernels = 1u << 3,
    methodBelow = 1u << 4,
    methodAbove = 1u << 5,
    nullRecord = 1u << 6,
    noRows = 1u << 7,
    noColumns = 1u << 8,
    anchorLeft = 1u << 9,
    anchorRight = 1u << 10,
    anchorAbove = 1u << 11,
    anchorBelow = 1u << 12
};

template <class Value> OrvStatus refusedConvolution2D(OrvImage *const *images, const Constant &constant)
{
    const unsigned spoilt = constant.spoilt;
    Window<Value> window = {3, 2, 1, 1, 0, std::vector<Value>(6, Value(1))};
    const RecordOf<Value> good = window.record();
    RecordOf<Value> last = good;
    last.nRows = (spoilt & noRows) != 0 ? 0 : last.nRows;
    last.nCols = (spoilt & noColumns) != 0 ? 0 : last.nCols;
    last.anchorX = (spoilt & anchorLeft) != 0 ? -1 : (spoilt & anchorRight) != 0 ? 3 : last.anchorX;
    last.anchorY = (spoilt & anchorAbove) != 0 ? -1 : (spoilt & anchorBelow) != 0 ? 2 : last.anchorY;
    const RecordOf<Value> *kernels[11];
    std::fill(std::begin(kernels), std::end(kernels), &good);
    kernels[1] = (spoilt & nullRecord) != 0 ? nullptr : &last;
    const std::int32_t count = (spoilt & noKernels) != 0       ? 0
                               : (spoilt & negativeCount) != 0 ? -1
                               : (spoilt & elevenKernels) != 0 ? 11
                                                               : 2;
    const std::int32_t method = (spoilt & methodBelow) != 0 ? -1 : (spoilt & methodAbove) != 0 ? 5 : 0;
    const RecordOf<Value> *const *given = (spoilt & nullKernels) != 0 ? nullptr : kernels;
    if constexpr (std::is_same_v<Value, float>)
        return orvConvolve2DFP(images[0], images[1], given, count, method);
    else
        return orvConvolve2D(images[0], images[1], given, count, method);
}

enum SpoiltVectors : unsigned {
    noVectors = 1u << 0,
    rowWithoutValues = 1u << 1,
    rowOfOne = 1u << 2,
    rowOfTwoRows = 1u << 3,
    rowAnchorLeft = 1u << 4,
    rowAnchorRight = 1u << 5,
    rowAnchorBelow = 1u << 6,
    columnWithoutValues = 1u << 7,
    columnOfOne = 1u << 8,
    columnOfTwoColumns = 1u << 9,
    columnAnchorRight = 1u << 10,
    columnAnchorAbove = 1u << 11,
    columnAnchorBelow = 1u << 12
};

template <class Value> OrvStatus refusedSeparable(OrvImage *const *images, const Constant &constant)
{
    const unsigned spoilt = constant.spoilt;
    const auto set = [spoilt](unsigned bit, std::int32_t &field, std::int32_t value) {
        if ((spoilt & bit) != 0)
            field = value;
    };
    Window<Value> row = {3, 1, 1, 0, 0, std::vector<Value>(6, Value(1))};
    Window<Value> column = {1, 3, 0, 1, 0, std::vector<Value>(6, Value(1))};
    RecordOf<Value> x = row.record(), y = column.record();
    x.values = (spoilt & rowWithoutValues) != 0 ? nullptr : x.values;
    set(rowOfOne, x.nCols, 1);
    set(rowOfTwoRows, x.nRows, 2);
    set(rowAnchorLeft, x.anchorX, -1);
    set(rowAnchorRight, x.anchorX, 3);
    set(rowAnchorBelow, x.anchorY, 1);
    y.values = (spoilt & columnWithoutValues) != 0 ? nullptr : y.values;
    set(columnOfOne, y.nRows, 1);
    set(columnOfTwoColumns, y.nCols, 2);
    set(columnAnchorRight, y.anchorX, 1);
    set(columnAnchorAbove, y.anchorY, -1);
    set(columnAnchorBelow, y.anchorY, 3);
    const bool none = (spoilt & noVectors) != 0;
    return convolve(images[0], images[1], none ? nullptr : &x, none ? nullptr : &y);
}

Refusal argument(unsigned bit, const char *context)
{
    Refusal refusal = {Fault::Arguments, 1, ORV_STATUS_BAD_ARGUMENT, context};
    refusal.argument = bit;
    return refusal;
}

// Each depth that the form with the other kind of coefficients takes, in either image.
std::vector<Refusal> wrongDepths(std::initializer_list<std::int32_t> values, const char *context)
{
    std::vector<Refusal> refusals;
    for (const int image : {0, 1})
        for (const std::int32_t value : values)
            refusals.push_back(depth(image, value, ORV_STATUS_BAD_ARGUMENT, context));
    return refusals;
}

std::vector<Refusal> refusals2D(const std::vector<Refusal> &depths)
{
    constexpr const char *count = "(nKernels<=0 || nKernels>10)", *bad = "Bad kernel structure",
                         *uncompatible = "Uncompatible images";
    return joined(
        {headersOfTwo(),
         depths,
         {argument(nullKernels, "kernel==0"), argument(noKernels, count), argument(negativeCount, count),
          argument(elevenKernels, count), argument(methodBelow, "Inadmissible method"),
          argument(methodAbove, "Inadmissible method"), differs(Fault::Order, 1, uncompatible), otherChannels(1),
          argument(nullRecord, bad), argument(noRows, bad), argument(noColumns, bad), argument(anchorLeft, bad),
          argument(anchorRight, bad), argument(anchorAbove, bad), argument(anchorBelow, bad), tiled(0), tiled(1)}});
}

std::vector<Refusal> refusalsSep(const std::vector<Refusal> &depths)
{
    constexpr const char *values = "NULL kernel values", *size = "Invalid kernal size",
                         *anchor = "Invalid kernrl anchor";
    return joined(
        {headersOfTwo(),
         depths,
         {differs(Fault::OneHeader, 1, "Unsupported in-place mode"), argument(noVectors, "Kernel pointers are NULL"),
          differs(Fault::Order, 1, "SRC and DST order are different"),
          differs(Fault::Origin, 1, "SRC and DST orign are different"), otherChannels(1),
          argument(rowWithoutValues, values), argument(rowOfOne, size), argument(rowOfTwoRows, size),
          argument(rowAnchorLeft, anchor), argument(rowAnchorRight, anchor), argument(rowAnchorBelow, anchor),
          argument(columnWithoutValues, values), argument(columnOfOne, size), argument(columnOfTwoColumns, size),
          argument(columnAnchorRight, anchor), argument(columnAnchorAbove, anchor), argument(columnAnchorBelow, anchor),
          tiled(0), tiled(1)}});
}

// The comparison of depths, which only the integer forms can come to, before that of the orders.
std::vector<Refusal> withDepthsCompared(std::vector<Refusal> refusals, const char *context,
                                        std::initializer_list<std::int32_t> notServed)
{
    const auto order = std::find_if(refusals.begin(), refusals.end(),
                                    [](const Refusal &refusal) { return refusal.fault == Fault::Order; });
    refusals.insert(order, differs(Fault::OtherDepth, 1, context));
    for (const std::int32_t value : notServed)
        refusals.push_back(unserved(value));
    return refusals;
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

Operation refused(const NeighbourhoodOperation &operation, OrvStatus (*call)(OrvImage *const *, const Constant &),
                  std::vector<Refusal> refusals)
{
    return {.name = operation.name,
            .reporter = operation.reporter,
            .sources = 1,
            .depths = operation.depths,
            .call = call,
            .expected = nullptr,
            .refusals = std::move(refusals)};
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

std::vector<Operation> refusalsOfConvolutions()
{
    std::vector<Operation> list;
    for (const NeighbourhoodOperation &operation : convolutions()) {
        if (operation.name == "Convolve2D")
            list.push_back(
                refused(operation, refusedConvolution2D<std::int32_t>,
                        withDepthsCompared(
                            refusals2D(wrongDepths({ORV_DEPTH_32F}, "32F images can be processed only with FP kernel")),
                            "Uncompatible images", {ORV_DEPTH_1U})));
        else if (operation.name == "Convolve2DFP")
            list.push_back(refused(operation, refusedConvolution2D<float>,
                                   refusals2D(wrongDepths({ORV_DEPTH_8U, ORV_DEPTH_32S, ORV_DEPTH_1U},
                                                          "FP kernel can be used only for 32F images"))));
        else if (operation.name == "ConvolveSep2D")
            list.push_back(refused(
                operation, refusedSeparable<std::int32_t>,
                withDepthsCompared(refusalsSep(wrongDepths({ORV_DEPTH_32F}, "orvConvolveSep2D does not support "
                                                                            "ORV_DEPTH_32F.\nCall orvConvolveSep2DFP "
                                                                            "instead")),
                                   "SRC and DST depth are different",
                                   {ORV_DEPTH_1U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_32S})));
        else if (operation.name == "ConvolveSep2DFP")
            list.push_back(refused(operation, refusedSeparable<float>,
                                   refusalsSep(wrongDepths({ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_1U},
                                                           "orvConvolveSep2DFP does support ORV_DEPTH_32F only.\nCall "
                                                           "orvConvolveSep2D instead"))));
    }
    return list;
}

} // namespace front
