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

Operation ofTwoImages(Reporter reporter, PointCall call, std::uint32_t (*bits)(std::uint32_t a, std::uint32_t b))
{
    Operation operation = {reporter, 2, integerDepths,
                           pixelByPixel(call,
                                        [=](std::int32_t depth, const Sample *sources, const Constant &) {
                                            return Sample{depth, bits(sources[0].bits, sources[1].bits)};
                                        }),
                           joined({headersOf(3), comparisonsOfThree(), lastChecks()})};
    operation.orderFreeAtDepth1U = true;
    return operation;
}

// The constant's low bits count, as many as a sample has.
Operation ofConstant(Reporter reporter, PointCall call, std::uint32_t (*bits)(std::uint32_t a, std::uint32_t b))
{
    Operation operation = {reporter, 1, integerDepths,
                           pixelByPixel(
                               call,
                               [=](std::int32_t depth, const Sample *sources, const Constant &constant) {
                                   const std::uint32_t low = integerSample(depth, constant.integer).bits;
                                   return Sample{depth, bits(sources[0].bits, low)};
                               },
                               constants(bitValues)),
                           joined({headersOf(2), comparisonsOfTwo(), lastChecks()})};
    operation.orderFreeAtDepth1U = true;
    return operation;
}

Operation complement()
{
    Operation operation = ofConstant({"orvXorS", "orvxor"}, orvXorS, nullptr);
    operation.variant = "AsNot";
    operation.draw = pixelByPixel(orvNot, [](std::int32_t depth, const Sample *sources, const Constant &) {
        return integerSample(depth, -1 - sources[0].integer());
    });
    return operation;
}

Operation shift(Reporter reporter, PointCall call, Formula formula)
{
    Operation operation = {
        reporter, 1, integerDepths,
        pixelByPixel(call, formula,
                     constants({1,  0,  2,   6,   7,   8,   9,     14,    15,      16,       17,           30, 31,
                                32, 33, 100, 255, 256, 257, 65536, 65537, mostInt, leastInt, leastInt + 1, -1})),
        joined({{null(0, ORV_STATUS_BAD_ARGUMENT, "src==0"), header(0), null(1), header(1)},
                comparisonsWithAlpha(),
                lastChecks()})};
    operation.channels = Agreement::SameAlpha;
    return operation;
}

// Shifts bit by bit, so that no count is too large.
Sample shiftedLeft(std::int32_t depth, const Sample *sources, const Constant &constant)
{
    const std::uint32_t count = static_cast<std::uint32_t>(constant.integer);
    long long value = sources[0].bits;
    for (std::uint32_t i = 0; i < std::min(count, 32u); ++i)
        value = integerSample(depth, 2 * value).bits;
    return {depth, static_cast<std::uint32_t>(value)};
}

// Halves, rounded down.
Sample shiftedRight(std::int32_t depth, const Sample *sources, const Constant &constant)
{
    const std::uint32_t count = static_cast<std::uint32_t>(constant.integer);
    long long value = sources[0].integer();
    for (std::uint32_t i = 0; i < std::min(count, 32u); ++i)
        value = (value - (value % 2 != 0 && value < 0 ? 1 : 0)) / 2;
    return integerSample(depth, value);
}

} // namespace

std::vector<Operation> logicAndShifts()
{
    const auto both = [](std::uint32_t a, std::uint32_t b) { return a & b; };
    const auto either = [](std::uint32_t a, std::uint32_t b) { return a | b; };
    const auto one = [](std::uint32_t a, std::uint32_t b) { return a ^ b; };
    return {ofTwoImages({"orvAnd", "orvand"}, orvAnd, both),
            ofConstant({"orvAndS", "orvand"}, orvAndS, both),
            ofTwoImages({"orvOr", "orvor"}, orvOr, either),
            ofConstant({"orvOrS", "orvor"}, orvOrS, either),
            ofTwoImages({"orvXor", "orvxor"}, orvXor, one),
            ofConstant({"orvXorS", "orvxor"}, orvXorS, one),
            complement(),
            shift({"orvLShiftS", "orvlshs"}, orvLShiftS, shiftedLeft),
            shift({"orvRShiftS", "orvrshs"}, orvRShiftS, shiftedRight)};
}

} // namespace front
