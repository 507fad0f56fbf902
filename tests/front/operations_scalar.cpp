// Entries of arithmetic between an image and a constant.
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

constexpr auto realValues = {1.5f,
                             0.0f,
                             -0.0f,
                             1.0f,
                             -1.0f,
                             0.3f,
                             -2.5f,
                             1e-42f,
                             1e-20f,
                             16777217.0f,
                             -3.4e38f,
                             3.4e38f,
                             std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN()};

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

Sample addedInteger(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const long long source = sources[0].integer(), value = constant.integer;
    if (sampleDepth != word)
        return integerSample(sampleDepth, saturated(sampleDepth, source + value));
    const long long first = saturated(word, source + saturated(word, value));
    return integerSample(word, saturated(word, first + restOf(value)));
}

Sample subtractedInteger(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const long long source = sources[0].integer(), value = constant.integer;
    if (constant.flip == 0 && sampleDepth == word) {
        const long long first = saturated(word, source - saturated(word, value));
        return integerSample(word, saturated(word, first - restOf(value)));
    }
    if (constant.flip == 0)
        return integerSample(sampleDepth, saturated(sampleDepth, source - value));
    if (sampleDepth != word)
        return integerSample(sampleDepth, saturated(sampleDepth, value - source));
    const Sample negative = integerSample(word, saturated(word, -source));
    return addedInteger(word, &negative, constant);
}

Sample multipliedInteger(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const long long value = saturated(sampleDepth, constant.integer);
    return integerSample(sampleDepth, saturated(sampleDepth, sources[0].integer() * value));
}

Sample addedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const volatile float result = static_cast<float>(sources[0].real()) + constant.real;
    return realSample(result);
}

Sample subtractedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const float source = static_cast<float>(sources[0].real());
    const volatile float result = constant.flip != 0 ? constant.real - source : source - constant.real;
    return realSample(result);
}

Sample multipliedReal(std::int32_t, const Sample *sources, const Constant &constant)
{
    const volatile float result = static_cast<float>(sources[0].real()) * constant.real;
    return realSample(result);
}

// Depths that the source of a float function may not have.
std::vector<Refusal> partnersDepths(const char *context)
{
    std::vector<Refusal> refusals;
    for (const std::int32_t value :
         {ORV_DEPTH_1U, ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S})
        refusals.push_back(depth(0, value, ORV_STATUS_BAD_ARGUMENT, context));
    return refusals;
}

Operation sumOrDifference(const char *name, Reporter reporter, Call call, Expected expected, const char *partner)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 1,
        .depths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16S},
        .call = call,
        .expected = expected,
        .refusals =
            joined({headersOfTwo(),
                    comparisonsOfTwo(),
                    {unserved(ORV_DEPTH_1U), depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, partner)}}),
        .constants = integers(integerValues),
    };
    operation.orderFreeAtDepth1U = true;
    return operation;
}

Operation floatSumOrDifference(const char *name, Reporter reporter, Call call, Expected expected, const char *partner)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 1,
        .depths = {ORV_DEPTH_32F},
        .call = call,
        .expected = expected,
        .refusals = joined({headersOfTwo(), partnersDepths(partner), comparisonsOfTwo()}),
        .constants = reals(realValues),
    };
    operation.anyNan = true;
    return operation;
}

Operation addSOperation()
{
    return sumOrDifference(
        "AddS", {"orvAddS", "orvadds"},
        [](OrvImage *const *images, const Constant &constant) {
            return orvAddS(images[0], images[1], constant.integer);
        },
        addedInteger, "For processing depth 32F use function orvAddSFP");
}

Operation subtractSOperation()
{
    return sumOrDifference(
        "SubtractS", {"orvSubtractS", "orvsubs"},
        [](OrvImage *const *images, const Constant &constant) {
            return orvSubtractS(images[0], images[1], constant.integer, constant.flip);
        },
        subtractedInteger, "For processing depth 32F use function orvSubtractSFP");
}

Operation addSFloatOperation()
{
    return floatSumOrDifference(
        "AddSFP", {"orvAddSFP", "orvaddsf"},
        [](OrvImage *const *images, const Constant &constant) {
            return orvAddSFP(images[0], images[1], constant.real);
        },
        addedReal, "For processing this depth use function orvAddS");
}

Operation subtractSFloatOperation()
{
    return floatSumOrDifference(
        "SubtractSFP", {"orvSubtractSFP", "orvsubsf"},
        [](OrvImage *const *images, const Constant &constant) {
            return orvSubtractSFP(images[0], images[1], constant.real, constant.flip);
        },
        subtractedReal, "For processing this depth use function orvSubtractS");
}

// The constant less the image, which takes loops of its own.
Operation flipped(Operation operation, std::int32_t flip)
{
    operation.name += "Flipped";
    for (Constant &constant : operation.constants)
        constant.flip = flip;
    return operation;
}

Operation multiplySOperation()
{
    Operation operation = {
        .name = "MultiplyS",
        .reporter = {"orvMultiplyS", "orvmuls"},
        .sources = 1,
        .depths = {ORV_DEPTH_8U, ORV_DEPTH_16S},
        .call = [](OrvImage *const *images,
                   const Constant &constant) { return orvMultiplyS(images[0], images[1], constant.integer); },
        .expected = multipliedInteger,
        .refusals = joined(
            {headersOfTwo(),
             {depth(0, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "For processing depth 32F use function orvMultiplySFP")},
             comparisonsOfTwo(),
             {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U)}}),
        .constants = integers(integerValues),
    };
    operation.orderFreeAtDepth1U = true;
    return operation;
}

// Its source's depth is judged before its header, and its channels by another status.
Operation multiplySFloatOperation()
{
    Operation operation = floatSumOrDifference(
        "MultiplySFP", {"orvMultiplySFP", "orvmuls"},
        [](OrvImage *const *images, const Constant &constant) {
            return orvMultiplySFP(images[0], images[1], constant.real);
        },
        multipliedReal, "");
    operation.refusals =
        joined({{null(0, ORV_STATUS_BAD_ARGUMENT, "srcImage==0")},
                partnersDepths("For processing this depth use function orvMultiplyS"),
                {header(0), null(1), header(1), differs(Fault::OtherDepth, 1, "(srcImage->depth != dstImage->depth)"),
                 differs(Fault::Order, 1, "(srcImage->dataOrder != dstImage->dataOrder)"),
                 differs(Fault::Channels, 1, "(srcChannels != dstChannels)"), tiled(0), tiled(1)}});
    return operation;
}

} // namespace

std::vector<Operation> scalarArithmetic()
{
    const std::vector<std::int32_t> wholeSamples = {ORV_DEPTH_16U, ORV_DEPTH_32S};
    const Operation add = addSOperation(), subtract = subtractSOperation(), multiply = multiplySOperation();
    const Operation subtractFloat = subtractSFloatOperation();
    return {add,
            inWholeSamples(add, wholeSamples),
            addSFloatOperation(),
            subtract,
            inWholeSamples(subtract, wholeSamples),
            flipped(subtract, 1),
            inWholeSamples(flipped(subtract, -2), wholeSamples),
            subtractFloat,
            flipped(subtractFloat, 2),
            multiply,
            inWholeSamples(multiply, {ORV_DEPTH_32S}),
            multiplySFloatOperation()};
}

} // namespace front
