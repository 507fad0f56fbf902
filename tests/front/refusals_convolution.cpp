// What the convolutions refuse, in the order of their checks.
#include <algorithm>
#include <iterator>
#include <utility>

#include "front/convolution_calls.h"
#include "front/neighbourhood_model.h"
#include "front/operation_entries.h"

namespace front {
namespace {

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
    RecordOf<Value> good = window.record();
    RecordOf<Value> last = good;
    last.nRows = (spoilt & noRows) != 0 ? 0 : last.nRows;
    last.nCols = (spoilt & noColumns) != 0 ? 0 : last.nCols;
    last.anchorX = (spoilt & anchorLeft) != 0 ? -1 : (spoilt & anchorRight) != 0 ? 3 : last.anchorX;
    last.anchorY = (spoilt & anchorAbove) != 0 ? -1 : (spoilt & anchorBelow) != 0 ? 2 : last.anchorY;
    RecordOf<Value> *kernels[11];
    std::fill(std::begin(kernels), std::end(kernels), &good);
    kernels[1] = (spoilt & nullRecord) != 0 ? nullptr : &last;
    const std::int32_t count = (spoilt & noKernels) != 0       ? 0
                               : (spoilt & negativeCount) != 0 ? -1
                               : (spoilt & elevenKernels) != 0 ? 11
                                                               : 2;
    const std::int32_t method = (spoilt & methodBelow) != 0 ? -1 : (spoilt & methodAbove) != 0 ? 5 : 0;
    RecordOf<Value> *const *given = (spoilt & nullKernels) != 0 ? nullptr : kernels;
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

Operation refused(const char *function, const char *unit, std::int32_t depth,
                  OrvStatus (*call)(OrvImage *const *, const Constant &), std::vector<Refusal> refusals)
{
    return {.name = function + 3, // behind the prefix
            .reporter = {function, unit},
            .sources = 1,
            .depths = {depth},
            .call = call,
            .expected = nullptr,
            .refusals = std::move(refusals)};
}

} // namespace

std::vector<Operation> refusalsOfConvolutions()
{
    constexpr const char *needsFloats = "32F images can be processed only with FP kernel",
                         *needsIntegers = "FP kernel can be used only for 32F images",
                         *callFloats =
                             "orvConvolveSep2D does not support ORV_DEPTH_32F.\nCall orvConvolveSep2DFP instead",
                         *callIntegers =
                             "orvConvolveSep2DFP does support ORV_DEPTH_32F only.\nCall orvConvolveSep2D instead";
    const auto of2D = withDepthsCompared(refusals2D(wrongDepths({ORV_DEPTH_32F}, needsFloats)), "Uncompatible images",
                                         {ORV_DEPTH_1U});
    const auto of2DFP = refusals2D(wrongDepths({ORV_DEPTH_8U, ORV_DEPTH_32S, ORV_DEPTH_1U}, needsIntegers));
    const auto ofSep =
        withDepthsCompared(refusalsSep(wrongDepths({ORV_DEPTH_32F}, callFloats)), "SRC and DST depth are different",
                           {ORV_DEPTH_1U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_32S});
    const auto ofSepFP = refusalsSep(wrongDepths({ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_1U}, callIntegers));
    return {refused("orvConvolve2D", "orvcnv2d", ORV_DEPTH_8U, refusedConvolution2D<std::int32_t>, of2D),
            refused("orvConvolve2DFP", "orvcnv2d", ORV_DEPTH_32F, refusedConvolution2D<float>, of2DFP),
            refused("orvConvolveSep2D", "orvCSep2", ORV_DEPTH_8U, refusedSeparable<std::int32_t>, ofSep),
            refused("orvConvolveSep2DFP", "orvCSep2", ORV_DEPTH_32F, refusedSeparable<float>, ofSepFP)};
}

} // namespace front
