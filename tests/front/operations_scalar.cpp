// Entries of arithmetic between an image and a constant.
#include <limits>

#include "front/operation_entries.h"

namespace front {
namespace {

constexpr std::int32_t word = ORV_DEPTH_16S;

// Values around the ends of all depths, and well beyond.
constexpr auto integerValues = {
    3,       0,      1,       -1,         2,           -2,      100,          -100,    127,    -127,   128,
    -128,    129,    -129,    255,        -255,        256,     -256,         300,     -300,   10000,  -10000,
    32767,   -32767, 32768,   -32768,     32769,       -32769,  40000,        -40000,  65535,  -65535, 65536,
    -65536,  65537,  -65537,  70000,      98303,       98304,   -98304,       -98305,  131070, 131071, -131070,
    -131071, 200000, 1 << 20, -(1 << 20), mostInt - 1, mostInt, leastInt + 1, leastInt};

constexpr float infinity = std::numeric_limits<float>::infinity(), notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr auto realValues = {1.5f,   0.0f,        -0.0f,    1.0f,    -1.0f,    0.3f,      -2.5f,     1e-42f,
                             1e-20f, 16777217.0f, -3.4e38f, 3.4e38f, infinity, -infinity, notANumber};

constexpr auto integerDepths = {ORV_DEPTH_1U, ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S};

// The low 16 bits, read as signed.
long long lowWord(long long value)
{
    const long long low = ((value % 65536) + 65536) % 65536;
    return low < 32768 ? low : low - 65536;
}

// What is left of a value beyond a word, with the value's sign. Of a positive one the negative's low bits count.
long long restOf(long long value)
{
    const long long rest = value - saturated(word, value);
    return value < 0 ? lowWord(rest) : -lowWord(-rest);
}

Sample addedInteger(std::int32_t depth, const Sample *sources, const Constant &constant)
{
    const long long source = sources[0].integer(), value = constant.integer;
    if (depth != word)
        return integerSample(depth, saturated(depth, source + value));
    const long long first = saturated(word, source + saturated(word, value));
    return integerSample(word, saturated(word, first + restOf(value)));
}

Sample subtractedInteger(std::int32_t depth, const Sample *sources, const Constant &constant)
{
    const long long source = sources[0].integer(), value = constant.integer;
    if (constant.flip == 0 && depth == word) {
        const long long first = saturated(word, source - saturated(word, value));
        return integerSample(word, saturated(word, first - restOf(value)));
    }
    if (constant.flip == 0)
        return integerSample(depth, saturated(depth, source - value));
    if (depth != word)
        return integerSample(depth, saturated(depth, value - source));
    const Sample negative = integerSample(word, saturated(word, -source));
    return addedInteger(word, &negative, constant);
}

Sample multipliedInteger(std::int32_t depth, const Sample *sources, const Constant &constant)
{
    const long long value = saturated(depth, constant.integer);
    return integerSample(depth, saturated(depth, sources[0].integer() * value));
}

Sample addedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const volatile float result = single(sources[0]) + constant.real;
    return realSample(result);
}

Sample subtractedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const float source = single(sources[0]);
    const volatile float result = constant.flip != 0 ? constant.real - source : source - constant.real;
    return realSample(result);
}

Sample multipliedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const volatile float result = single(sources[0]) * constant.real;
    return realSample(result);
}

Operation ofIntegers(Reporter reporter, std::vector<std::int32_t> depths, PointCall call, Formula formula,
                     Refusals refusals)
{
    Operation operation = {reporter, 1, depths, pixelByPixel(call, formula, constants(integerValues)),
                           joined({headersOf(2), refusals})};
    operation.wholeSamples = {ORV_DEPTH_16U, ORV_DEPTH_32S};
    operation.orderFreeAtDepth1U = true;
    return operation;
}

Operation sumOrDifference(Reporter reporter, PointCall call, Formula formula, const char *partner)
{
    return ofIntegers(
        reporter, {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_16U, ORV_DEPTH_32S}, call, formula,
        joined({comparisonsOfTwo(),
                {unserved(ORV_DEPTH_1U), depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, partner)}}));
}

Operation ofFloats(Reporter reporter, PointCall call, Formula formula, const char *partner)
{
    Operation operation = {reporter,
                           1,
                           {ORV_DEPTH_32F},
                           pixelByPixel(call, formula, constants(realValues)),
                           joined({headersOf(2), wrongDepths(0, integerDepths, partner), comparisonsOfTwo()})};
    operation.anyNan = true;
    return operation;
}

// The constant less the image, which takes loops of its own.
Operation flipped(Operation operation, PointCall call, Formula formula, const std::vector<Constant> &constants)
{
    operation.variant = "Flipped";
    operation.draw = pixelByPixel(call, formula, constants);
    operation.refusals.clear();
    return operation;
}

// Its source's depth is judged before its header, and its channels by another status.
Refusals refusalsOfFloatProduct()
{
    return joined(
        {{null(0, ORV_STATUS_BAD_ARGUMENT, "srcImage==0")},
         wrongDepths(0, integerDepths, "For processing this depth use function orvMultiplyS"),
         {header(0), null(1), header(1), differs(Fault::OtherDepth, 1, "(srcImage->depth != dstImage->depth)"),
          differs(Fault::Order, 1, "(srcImage->dataOrder != dstImage->dataOrder)"),
          differs(Fault::Channels, 1, "(srcChannels != dstChannels)"), tiled(0), tiled(1)}});
}

} // namespace

std::vector<Operation> scalarArithmetic()
{
    const Operation subtract = sumOrDifference({"orvSubtractS", "orvsubs"}, orvSubtractS, subtractedInteger,
                                               "For processing depth 32F use function orvSubtractSFP");
    const Operation subtractFloat = ofFloats({"orvSubtractSFP", "orvsubsf"}, orvSubtractSFP, subtractedReal,
                                             "For processing this depth use function orvSubtractS");
    Operation multiply = ofIntegers(
        {"orvMultiplyS", "orvmuls"}, {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32S}, orvMultiplyS, multipliedInteger,
        joined({wrongDepths(0, {ORV_DEPTH_32F}, "For processing depth 32F use function orvMultiplySFP"),
                comparisonsOfTwo(),
                {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U)}}));
    multiply.wholeSamples = {ORV_DEPTH_32S};
    Operation multiplyFloat = ofFloats({"orvMultiplySFP", "orvmuls"}, orvMultiplySFP, multipliedReal, "");
    multiplyFloat.refusals = refusalsOfFloatProduct();
    std::vector<Constant> flips = constants(integerValues, 1);
    for (std::size_t i = 0; i < flips.size(); i += 2)
        flips[i].flip = -2; // any but 0
    return {sumOrDifference({"orvAddS", "orvadds"}, orvAddS, addedInteger,
                            "For processing depth 32F use function orvAddSFP"),
            ofFloats({"orvAddSFP", "orvaddsf"}, orvAddSFP, addedReal, "For processing this depth use function orvAddS"),
            subtract,
            flipped(subtract, orvSubtractS, subtractedInteger, flips),
            subtractFloat,
            flipped(subtractFloat, orvSubtractSFP, subtractedReal, constants(realValues, 2)),
            multiply,
            multiplyFloat};
}

} // namespace front
