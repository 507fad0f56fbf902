// What entries of the list of operations are made of, and the parts of that list.
#pragma once

#include <initializer_list>
#include <limits>
#include <utility>

#include "front/operations.h"

namespace front {

// The parts of the list, each in a file of its own.
std::vector<Operation> imageArithmetic();
std::vector<Operation> scalarArithmetic();
std::vector<Operation> logicAndShifts();
std::vector<Operation> geometry();

using Call = decltype(Operation::call);
using Expected = decltype(Operation::expected);

inline constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int32_t leastInt = std::numeric_limits<std::int32_t>::min();

inline Refusal header(int image)
{
    return {Fault::BadHeader, image, ORV_STATUS_BAD_ALIGN, "Incorrect Image"};
}

inline Refusal null(int image, OrvStatus status = ORV_STATUS_NULL_HEADER, const char *context = "Incorrect Image")
{
    return {Fault::NullImage, image, status, context};
}

inline Refusal differs(Fault fault, int image, const char *context, OrvStatus status = ORV_STATUS_BAD_ARGUMENT)
{
    return {fault, image, status, context};
}

inline Refusal otherChannels(int image)
{
    return differs(Fault::Channels, image, "", ORV_STATUS_BAD_CHANNELS);
}

inline Refusal depth(int image, std::int32_t value, OrvStatus status, const char *context)
{
    return {Fault::Depth, image, status, context, value};
}

// A depth that no loop serves.
inline Refusal unserved(std::int32_t value)
{
    return depth(allImages, value, ORV_STATUS_NOT_IMPLEMENTED, "");
}

inline Refusal tiled(int image)
{
    return {Fault::Tiled, image, ORV_STATUS_NOT_IMPLEMENTED, ""};
}

inline Refusal byWorker(Refusal refusal)
{
    refusal.byWorker = true;
    return refusal;
}

inline std::vector<Refusal> joined(std::initializer_list<std::vector<Refusal>> lists)
{
    std::vector<Refusal> all;
    for (const std::vector<Refusal> &list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

// Two sources or one, and the destination.
inline std::vector<Refusal> headersOfThree()
{
    return {null(0), header(0), null(1), header(1), null(2), header(2)};
}

inline std::vector<Refusal> headersOfTwo()
{
    return {null(0), header(0), null(1), header(1)};
}

inline std::vector<Refusal> comparisonsOfThree()
{
    return {differs(Fault::OtherDepth, 0, "(srcImageA->depth != dstImage->depth)"),
            differs(Fault::OtherDepth, 1, "(srcImageB->depth != dstImage->depth)"),
            differs(Fault::Order, 0, "(srcImageA->dataOrder != dstImage->dataOrder)"),
            differs(Fault::Order, 1, "(srcImageB->dataOrder != dstImage->dataOrder)"),
            otherChannels(0),
            otherChannels(1),
            tiled(0),
            tiled(1),
            tiled(2)};
}

inline std::vector<Refusal> comparisonsOfTwo()
{
    return {differs(Fault::OtherDepth, 1, "(srcImage->depth != dstImage->depth)"),
            differs(Fault::Order, 1, "(srcImage->dataOrder != dstImage->dataOrder)"), otherChannels(1), tiled(0),
            tiled(1)};
}

// For the functions whose two images are named shortly, and which compare alpha channels.
inline std::vector<Refusal> comparisonsWithAlpha()
{
    return {differs(Fault::OtherDepth, 1, "(src->depth != dst->depth)"),
            differs(Fault::Order, 1, "(src->dataOrder != dst->dataOrder)"),
            differs(Fault::Alpha, 1, "(src->alphaChannel != dst->alphaChannel)"),
            otherChannels(1),
            tiled(0),
            tiled(1)};
}

inline std::vector<Constant> integers(std::initializer_list<std::int32_t> values, std::int32_t flip = 0)
{
    std::vector<Constant> constants;
    for (const std::int32_t value : values)
        constants.push_back({value, 0, flip});
    return constants;
}

inline std::vector<Constant> reals(std::initializer_list<float> values, std::int32_t flip = 0)
{
    std::vector<Constant> constants;
    for (const float value : values)
        constants.push_back({0, value, flip});
    return constants;
}

// The same operation at the depths whose loops walk rows in whole samples.
inline Operation inWholeSamples(Operation operation, std::vector<std::int32_t> depths)
{
    operation.name += "InWholeSamples";
    operation.depths = std::move(depths);
    operation.stepsOfWholeSamples = true;
    return operation;
}

} // namespace front
