// Entries of the operations on bits: logic and shifts.
#include <algorithm>

#include "front/operation_entries.h"

namespace front {
namespace {

constexpr const char *refusesFloats = "This function does not support depth 32F";
constexpr auto integerDepths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S};
constexpr auto bitValues = {0x0F0F0F55, 0,     1,      -1,     0x1F0,   0xF0,        0x7F,       0x80,
                            0xFF,       0x100, 0x7FFF, 0x8000, 0xFFFF,  0x10000,     0x12345678, -2,
                            -128,       -256,  -32768, -65536, mostInt, mostInt - 1, leastInt,   leastInt + 1};

std::vector<Refusal> lastChecks()
{
    return {depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, refusesFloats), unserved(ORV_DEPTH_1U)};
}

Operation ofTwoImages(const char *name, Reporter reporter, Call call, Expected expected)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 2,
        .depths = integerDepths,
        .call = call,
        .expected = expected,
        .refusals = joined({headersOfThree(), comparisonsOfThree(), lastChecks()}),
    };
    operation.orderFreeAtDepth1U = true;
    return operation;
}

Operation ofConstant(const char *name, Reporter reporter, Call call, Expected expected)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 1,
        .depths = integerDepths,
        .call = call,
        .expected = expected,
        .refusals = joined({headersOfTwo(), comparisonsOfTwo(), lastChecks()}),
        .constants = integers(bitValues),
    };
    operation.orderFreeAtDepth1U = true;
    return operation;
}

Operation shift(const char *name, Reporter reporter, Call call, Expected expected)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 1,
        .depths = integerDepths,
        .call = call,
        .expected = expected,
        .refusals = joined({{null(0, ORV_STATUS_BAD_ARGUMENT, "src==0"), header(0), null(1), header(1)},
                            comparisonsWithAlpha(),
                            lastChecks()}),
        .constants = integers({1,  0,  2,   6,   7,   8,   9,     14,    15,      16,       17,           30, 31,
                               32, 33, 100, 255, 256, 257, 65536, 65537, mostInt, leastInt, leastInt + 1, -1}),
    };
    operation.channels = Agreement::SameAlpha;
    return operation;
}

// A constant's low bits, as many as a sample has.
std::uint32_t low(std::int32_t sampleDepth, const Constant &constant)
{
    return integerSample(sampleDepth, constant.integer).bits;
}

// Shifts bit by bit, so that no count is too large.
Sample shiftedLeft(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const std::uint32_t count = static_cast<std::uint32_t>(constant.integer);
    long long value = sources[0].bits;
    for (std::uint32_t i = 0; i < std::min(count, 32u); ++i)
        value = integerSample(sampleDepth, 2 * value).bits;
    return {sampleDepth, static_cast<std::uint32_t>(value)};
}

// Halves, rounded down.
Sample shiftedRight(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const std::uint32_t count = static_cast<std::uint32_t>(constant.integer);
    long long value = sources[0].integer();
    for (std::uint32_t i = 0; i < std::min(count, 32u); ++i)
        value = (value - (value % 2 != 0 && value < 0 ? 1 : 0)) / 2;
    return integerSample(sampleDepth, value);
}

std::vector<Operation> ands()
{
    return {ofTwoImages(
                "And", {"orvAnd", "orvand"},
                [](OrvImage *const *images, const Constant &) { return orvAnd(images[0], images[1], images[2]); },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &) {
                    return Sample{sampleDepth, sources[0].bits & sources[1].bits};
                }),
            ofConstant(
                "AndS", {"orvAndS", "orvand"},
                [](OrvImage *const *images, const Constant &constant) {
                    return orvAndS(images[0], images[1], constant.integer);
                },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &constant) {
                    return Sample{sampleDepth, sources[0].bits & low(sampleDepth, constant)};
                })};
}

std::vector<Operation> ors()
{
    return {ofTwoImages(
                "Or", {"orvOr", "orvor"},
                [](OrvImage *const *images, const Constant &) { return orvOr(images[0], images[1], images[2]); },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &) {
                    return Sample{sampleDepth, sources[0].bits | sources[1].bits};
                }),
            ofConstant(
                "OrS", {"orvOrS", "orvor"},
                [](OrvImage *const *images, const Constant &constant) {
                    return orvOrS(images[0], images[1], constant.integer);
                },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &constant) {
                    return Sample{sampleDepth, sources[0].bits | low(sampleDepth, constant)};
                })};
}

std::vector<Operation> xors()
{
    Operation complement = ofConstant(
        "Not", {"orvXorS", "orvxor"},
        [](OrvImage *const *images, const Constant &) { return orvNot(images[0], images[1]); },
        [](std::int32_t sampleDepth, const Sample *sources, const Constant &) {
            return integerSample(sampleDepth, -1 - sources[0].integer());
        });
    complement.constants = {Constant()};
    return {ofTwoImages(
                "Xor", {"orvXor", "orvxor"},
                [](OrvImage *const *images, const Constant &) { return orvXor(images[0], images[1], images[2]); },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &) {
                    return Sample{sampleDepth, sources[0].bits ^ sources[1].bits};
                }),
            ofConstant(
                "XorS", {"orvXorS", "orvxor"},
                [](OrvImage *const *images, const Constant &constant) {
                    return orvXorS(images[0], images[1], constant.integer);
                },
                [](std::int32_t sampleDepth, const Sample *sources, const Constant &constant) {
                    return Sample{sampleDepth, sources[0].bits ^ low(sampleDepth, constant)};
                }),
            complement};
}

std::vector<Operation> shifts()
{
    return {shift(
                "LShiftS", {"orvLShiftS", "orvlshs"},
                [](OrvImage *const *images, const Constant &constant) {
                    return orvLShiftS(images[0], images[1], static_cast<unsigned int>(constant.integer));
                },
                shiftedLeft),
            shift(
                "RShiftS", {"orvRShiftS", "orvrshs"},
                [](OrvImage *const *images, const Constant &constant) {
                    return orvRShiftS(images[0], images[1], static_cast<unsigned int>(constant.integer));
                },
                shiftedRight)};
}

} // namespace

std::vector<Operation> logicAndShifts()
{
    std::vector<Operation> all;
    for (const auto &some : {ands(), ors(), xors(), shifts()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

} // namespace front
