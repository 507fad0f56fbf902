// What entries of the list of operations are made of, and the parts of that list.
#pragma once

#include <initializer_list>
#include <type_traits>
#include <utility>

#include "front/operations.h"

namespace front {

// The parts of the list, each in a file of its own.
std::vector<Operation> copies();
std::vector<Operation> imageArithmetic();
std::vector<Operation> scalarArithmetic();
std::vector<Operation> logicAndShifts();
std::vector<Operation> convolutions();
std::vector<Operation> filters();
std::vector<Operation> levels();

// The arguments of an operation pixel by pixel, beside its images.
struct Constant {
    std::int32_t integer = 0;
    float real = 0;
    std::int32_t flip = 0;
};

// An exported function of any signature, called with headers and a constant.
struct PointCall {
    using Int = std::int32_t;

    PointCall(OrvStatus (*f)(OrvImage *, Int)) : run([f](auto i, auto &c) { return f(i[0], c.integer); }) {}
    PointCall(OrvStatus (*f)(OrvImage *, float)) : run([f](auto i, auto &c) { return f(i[0], c.real); }) {}
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *)) : run([f](auto i, auto &) { return f(i[0], i[1]); }) {}
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *, Int))
        : run([f](auto i, auto &c) { return f(i[0], i[1], c.integer); })
    {
    }
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *, unsigned))
        : run([f](auto i, auto &c) { return f(i[0], i[1], static_cast<unsigned>(c.integer)); })
    {
    }
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *, float))
        : run([f](auto i, auto &c) { return f(i[0], i[1], c.real); })
    {
    }
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *, Int, Int))
        : run([f](auto i, auto &c) { return f(i[0], i[1], c.integer, c.flip); })
    {
    }
    PointCall(OrvStatus (*f)(const OrvImage *, OrvImage *, float, Int))
        : run([f](auto i, auto &c) { return f(i[0], i[1], c.real, c.flip); })
    {
    }
    PointCall(OrvStatus (*f)(const OrvImage *, const OrvImage *, OrvImage *))
        : run([f](auto i, auto &) { return f(i[0], i[1], i[2]); })
    {
    }

    std::function<OrvStatus(Images, const Constant &)> run;
};

// A sample of the result from those of the sources.
using Formula = std::function<Sample(std::int32_t depth, const Sample *sources, const Constant &constant)>;

// Draws one of the constants.
decltype(Operation::draw) pixelByPixel(PointCall call, Formula formula, std::vector<Constant> constants = {{}});

// Constants of these values, integers or reals.
template <class Value> std::vector<Constant> constants(std::initializer_list<Value> values, std::int32_t flip = 0)
{
    std::vector<Constant> all;
    for (const Value value : values)
        all.push_back(
            {static_cast<std::int32_t>(std::is_same_v<Value, float> ? 0 : value), static_cast<float>(value), flip});
    return all;
}

inline float single(Sample sample)
{
    return static_cast<float>(sample.real());
}

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

using Refusals = std::vector<Refusal>;

// Depths that an image may not have, each by itself.
Refusals wrongDepths(int image, std::initializer_list<std::int32_t> values, const char *context);
Refusals joined(std::initializer_list<Refusals> lists);
// One source or two, and the destination.
Refusals headersOf(int images);
Refusals comparisonsOfTwo();
Refusals comparisonsOfThree();
// For the functions whose two images are named shortly, and which compare alpha channels.
Refusals comparisonsWithAlpha();

} // namespace front
