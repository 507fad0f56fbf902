// Entries of the convolutions.
#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <type_traits>

#include "front/convolution_calls.h"
#include "front/operation_entries.h"

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

long long halfToEven(long long sum, int shift)
{
    const long long divisor = 1LL << shift, below = sum >> shift, rest = sum - below * divisor;
    const bool up = 2 * rest > divisor || (2 * rest == divisor && below % 2 != 0);
    return below + (up ? 1 : 0);
}

// In integers: a sum that wraps around at 32 bits, or one of 64 bits that never does.
Results integerResults(const Window<std::int32_t> &window, const Place &place)
{
    long long sum = 0;
    window.walk([&](long long value, int right, int down) { sum += value * place.at(0, right, down).integer(); });
    if (place.depth == ORV_DEPTH_8U)
        sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum));
    const long long quotient = saturated(place.depth, halfToEven(sum, window.shift & 31));
    return Results::only(integerSample(place.depth, quotient));
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

template <class Value> FloatRange floatSum(const Window<Value> &window, const Place &place)
{
    return floatSum(window, [&](int right, int down) { return inFloat(place.at(0, right, down)); });
}

template <class Value>
Results combinedResults(const std::vector<Window<Value>> &windows, std::int32_t method, const Place &place)
{
    const bool several = windows.size() > 1;
    const bool squares = several && (method == ORV_COMBINE_SUMSQ || method == ORV_COMBINE_SUMSQROOT);
    FloatRange total = {};
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const FloatRange sumOfOne = floatSum(windows[i], place);
        const FloatRange one = squares ? square(sumOfOne) : sumOfOne;
        total = i == 0                      ? one
                : method == ORV_COMBINE_MAX ? chosen(total, one, [](double a, double b) { return std::max(a, b); })
                : method == ORV_COMBINE_MIN ? chosen(total, one, [](double a, double b) { return std::min(a, b); })
                                            : sum(total, one);
    }
    if (several && method == ORV_COMBINE_SUMSQROOT)
        total = squareRoot(total);
    return Results::of(total, place.depth);
}

template <class Value> Arguments draw2D(std::int32_t depth, std::int32_t count, Random &random)
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
    return {text.str(), [=](Images images) { return convolve(images[0], images[1], *windows, method); },
            [=](const Place &place) {
                if constexpr (std::is_same_v<Value, std::int32_t>)
                    if (integers)
                        return integerResults(windows->front(), place);
                return combinedResults(*windows, method, place);
            }};
}

template <class Value> Results vectorResults(const Window<Value> &vector, const Place &place)
{
    if constexpr (std::is_same_v<Value, std::int32_t>)
        return integerResults(vector, place);
    else
        return Results::of(floatSum(vector, place), place.depth);
}

// Columns first, then a row of what they came to.
template <class Value>
Results separableResults(const Window<Value> &row, const Window<Value> &column, const Place &place)
{
    const FloatRange total = floatSum(row, [&](int right, int) {
        return floatSum(column, [&](int, int down) { return inFloat(place.at(0, right, down)); });
    });
    return Results::of(total, place.depth);
}

enum Vectors { rowOnly = 1, columnOnly = 2, bothVectors = 3 };

template <class Value> Arguments drawSeparable(Vectors given, Random &random)
{
    const auto row = std::make_shared<Window<Value>>(drawWindow<Value>(1 + anyLength(random, 6), 1, random));
    const auto column = std::make_shared<Window<Value>>(drawWindow<Value>(1, 1 + anyLength(random, 6), random));
    std::ostringstream text;
    if ((given & rowOnly) != 0)
        text << "row " << *row << "\n";
    if ((given & columnOnly) != 0)
        text << "column " << *column;
    return {text.str(),
            [=](Images images) {
                const RecordOf<Value> x = row->record(), y = column->record();
                return convolve(images[0], images[1], (given & rowOnly) != 0 ? &x : nullptr,
                                (given & columnOnly) != 0 ? &y : nullptr);
            },
            [=](const Place &place) {
                return given == bothVectors ? separableResults(*row, *column, place)
                                            : vectorResults(given == rowOnly ? *row : *column, place);
            }};
}

// The arguments of a call to be refused. The kernels of one call are of 3 x 2 coefficients and the vectors 3 long.
struct GivenKernel {
    std::int32_t columns, rows, anchorX, anchorY;
    bool values = true;

    template <class Value> RecordOf<Value> record(Value *coefficients) const
    {
        return recordOf(columns, rows, anchorX, anchorY, values ? coefficients : nullptr);
    }
};

struct Given {
    GivenKernel last = {3, 2, 1, 0}, row = {3, 1, 1, 0}, column = {1, 3, 0, 1};
    bool none = false, lastIsNull = false;
    std::int32_t count = 2, method = 0;
};

struct ArgumentFault {
    const char *context;
    void (*make)(Given &given);
};

constexpr const char *badCount = "(nKernels<=0 || nKernels>10)", *badMethod = "Inadmissible method",
                     *badKernel = "Bad kernel structure", *uncompatible = "Uncompatible images",
                     *noValues = "NULL kernel values", *badSize = "Invalid kernal size",
                     *badAnchor = "Invalid kernrl anchor";

constexpr ArgumentFault faults2D[] = {{"kernel==0", [](Given &given) { given.none = true; }},
                                      {badCount, [](Given &given) { given.count = 0; }},
                                      {badCount, [](Given &given) { given.count = -1; }},
                                      {badCount, [](Given &given) { given.count = 11; }},
                                      {badMethod, [](Given &given) { given.method = -1; }},
                                      {badMethod, [](Given &given) { given.method = 5; }},
                                      {badKernel, [](Given &given) { given.lastIsNull = true; }},
                                      {badKernel, [](Given &given) { given.last.rows = 0; }},
                                      {badKernel, [](Given &given) { given.last.columns = 0; }},
                                      {badKernel, [](Given &given) { given.last.anchorX = -1; }},
                                      {badKernel, [](Given &given) { given.last.anchorX = 3; }},
                                      {badKernel, [](Given &given) { given.last.anchorY = -1; }},
                                      {badKernel, [](Given &given) { given.last.anchorY = 2; }}};

constexpr ArgumentFault faultsOfVectors[] = {{"Kernel pointers are NULL", [](Given &given) { given.none = true; }},
                                             {noValues, [](Given &given) { given.row.values = false; }},
                                             {badSize, [](Given &given) { given.row.columns = 1; }},
                                             {badSize, [](Given &given) { given.row.rows = 2; }},
                                             {badAnchor, [](Given &given) { given.row.anchorX = -1; }},
                                             {badAnchor, [](Given &given) { given.row.anchorX = 3; }},
                                             {badAnchor, [](Given &given) { given.row.anchorY = 1; }},
                                             {noValues, [](Given &given) { given.column.values = false; }},
                                             {badSize, [](Given &given) { given.column.rows = 1; }},
                                             {badSize, [](Given &given) { given.column.columns = 2; }},
                                             {badAnchor, [](Given &given) { given.column.anchorX = 1; }},
                                             {badAnchor, [](Given &given) { given.column.anchorY = -1; }},
                                             {badAnchor, [](Given &given) { given.column.anchorY = 3; }}};

template <std::size_t count> Given spoilt(const ArgumentFault (&table)[count], std::uint32_t faults)
{
    Given given;
    for (std::size_t i = 0; i < count; ++i)
        if ((faults >> i & 1) != 0)
            table[i].make(given);
    return given;
}

template <class Value> OrvStatus convolve2DWith(Images images, std::uint32_t faults)
{
    const Given given = spoilt(faults2D, faults);
    Value values[6] = {};
    RecordOf<Value> good = GivenKernel{3, 2, 1, 0}.record(values), last = given.last.record(values);
    RecordOf<Value> *kernels[11];
    std::fill(std::begin(kernels), std::end(kernels), &good);
    kernels[1] = given.lastIsNull ? nullptr : &last;
    RecordOf<Value> *const *all = given.none ? nullptr : kernels;
    if constexpr (std::is_same_v<Value, float>)
        return orvConvolve2DFP(images[0], images[1], all, given.count, given.method);
    else
        return orvConvolve2D(images[0], images[1], all, given.count, given.method);
}

template <class Value> OrvStatus convolveSeparablyWith(Images images, std::uint32_t faults)
{
    const Given given = spoilt(faultsOfVectors, faults);
    Value values[6] = {};
    const RecordOf<Value> x = given.row.record(values), y = given.column.record(values);
    return convolve(images[0], images[1], given.none ? nullptr : &x, given.none ? nullptr : &y);
}

template <std::size_t count>
Refusals argumentsOf(const ArgumentFault (&table)[count], std::size_t first, std::size_t end)
{
    Refusals refusals;
    for (std::size_t i = first; i < end; ++i)
        refusals.push_back(
            {Fault::Argument, 1, ORV_STATUS_BAD_ARGUMENT, table[i].context, static_cast<std::int32_t>(i)});
    return refusals;
}

// Each depth that the form with the other kind of coefficients takes, in either image. Only the integer forms can come
// to a comparison of depths.
Refusals refusals2D(std::initializer_list<std::int32_t> wrong, const char *context, bool integers)
{
    const Refusals none, depths = {differs(Fault::OtherDepth, 1, uncompatible)}, last = {unserved(ORV_DEPTH_1U)};
    return joined({headersOf(2),
                   wrongDepths(0, wrong, context),
                   wrongDepths(1, wrong, context),
                   argumentsOf(faults2D, 0, 6),
                   integers ? depths : none,
                   {differs(Fault::Order, 1, uncompatible), otherChannels(1)},
                   argumentsOf(faults2D, 6, std::size(faults2D)),
                   {tiled(0), tiled(1)},
                   integers ? last : none});
}

Refusals refusalsOfVectors(std::initializer_list<std::int32_t> wrong, const char *context, bool integers)
{
    const Refusals none,
        depths = {differs(Fault::OtherDepth, 1, "SRC and DST depth are different")},
        last = {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U), unserved(ORV_DEPTH_32S)};
    return joined({headersOf(2),
                   wrongDepths(0, wrong, context),
                   wrongDepths(1, wrong, context),
                   {differs(Fault::OneHeader, 1, "Unsupported in-place mode")},
                   argumentsOf(faultsOfVectors, 0, 1),
                   integers ? depths : none,
                   {differs(Fault::Order, 1, "SRC and DST order are different"),
                    differs(Fault::Origin, 1, "SRC and DST orign are different"), otherChannels(1)},
                   argumentsOf(faultsOfVectors, 1, std::size(faultsOfVectors)),
                   {tiled(0), tiled(1)},
                   integers ? last : none});
}

Operation ofKernels(const char *function, std::vector<std::int32_t> depths, decltype(Operation::draw) draw,
                    Refusals refusals, const char *variant = "")
{
    Operation operation = {{function, "orvcnv2d"}, 1, depths, draw, refusals, variant};
    operation.callWith = depths.front() == ORV_DEPTH_32F ? convolve2DWith<float> : convolve2DWith<std::int32_t>;
    operation.withoutMemory = "Allocation failure";
    operation.window = true;
    operation.alphaOfSource = true;
    return operation;
}

template <class Value> Operation ofVectors(const char *function, Vectors given, Refusals refusals, const char *variant)
{
    const std::vector<std::int32_t> floatDepth = {ORV_DEPTH_32F}, depths = {ORV_DEPTH_8U, ORV_DEPTH_16S};
    Operation operation = {{function, "orvCSep2"},
                           1,
                           std::is_same_v<Value, float> ? floatDepth : depths,
                           [=](std::int32_t, Random &random) { return drawSeparable<Value>(given, random); },
                           refusals,
                           variant};
    operation.callWith = convolveSeparablyWith<Value>;
    operation.onItself = OnItself::Refused;
    operation.originsAgree = true;
    operation.window = true;
    operation.alphaOfSource = true;
    return operation;
}

Arguments drawOne(std::int32_t depth, Random &random)
{
    return draw2D<std::int32_t>(depth, 1, random);
}

Arguments drawSeveral(std::int32_t depth, Random &random)
{
    return draw2D<std::int32_t>(depth, random.once(4) ? random.between(3, 10) : 2, random);
}

Arguments drawFloats(std::int32_t depth, Random &random)
{
    return draw2D<float>(depth, random.once(2) ? 1 : random.once(4) ? random.between(3, 10) : 2, random);
}

} // namespace

std::vector<Operation> convolutions()
{
    const std::vector<std::int32_t> depths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S};
    const Refusals ofVectorsOfIntegers =
        refusalsOfVectors({ORV_DEPTH_32F},
                          "orvConvolveSep2D does not support ORV_DEPTH_32F.\nCall orvConvolveSep2DFP "
                          "instead",
                          true);
    const Refusals ofVectorsOfFloats =
        refusalsOfVectors({ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_1U},
                          "orvConvolveSep2DFP does support ORV_DEPTH_32F only.\nCall orvConvolveSep2D instead", false);
    return {ofKernels("orvConvolve2D", depths, drawOne,
                      refusals2D({ORV_DEPTH_32F}, "32F images can be processed only with FP kernel", true)),
            ofKernels("orvConvolve2D", depths, drawSeveral, {}, "OfSeveral"),
            ofKernels("orvConvolve2DFP", {ORV_DEPTH_32F}, drawFloats,
                      refusals2D({ORV_DEPTH_8U, ORV_DEPTH_32S, ORV_DEPTH_1U},
                                 "FP kernel can be used only for 32F images", false)),
            ofVectors<std::int32_t>("orvConvolveSep2D", bothVectors, ofVectorsOfIntegers, ""),
            ofVectors<std::int32_t>("orvConvolveSep2D", rowOnly, {}, "Row"),
            ofVectors<std::int32_t>("orvConvolveSep2D", columnOnly, {}, "Column"),
            ofVectors<float>("orvConvolveSep2DFP", bothVectors, ofVectorsOfFloats, ""),
            ofVectors<float>("orvConvolveSep2DFP", rowOnly, {}, "Row"),
            ofVectors<float>("orvConvolveSep2DFP", columnOnly, {}, "Column")};
}

} // namespace front
