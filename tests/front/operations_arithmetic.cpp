// Entries of arithmetic between images: sums, differences, products, fractions and squares.
#include "front/operation_entries.h"

namespace front {
namespace {

// A float, or an integer that saturates. The second operand of a square is the first.
template <class Formula> Sample computed(Formula formula, std::int32_t depth, const Sample &a, const Sample &b)
{
    if (depth == ORV_DEPTH_32F) {
        const volatile float result = formula(single(a), single(b));
        return realSample(result);
    }
    return integerSample(depth, saturated(depth, formula(a.integer(), b.integer())));
}

template <class Formula>
Operation ofTwoImages(const char *function, const char *unit,
                      OrvStatus (*call)(const OrvImage *, const OrvImage *, OrvImage *), Formula formula)
{
    Operation operation = {
        {function, unit},
        2,
        {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F, ORV_DEPTH_32S},
        pixelByPixel(call, [=](std::int32_t depth, const Sample *sources,
                               const Constant &) { return computed(formula, depth, sources[0], sources[1]); }),
        joined({headersOf(3),
                comparisonsOfThree(),
                {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U)}})};
    operation.anyNan = true;
    operation.wholeSamples = {ORV_DEPTH_32S};
    return operation;
}

Operation squareOperation()
{
    Operation operation = {
        {"orvSquare", "orvsqr"},
        1,
        {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32F},
        pixelByPixel(orvSquare,
                     [](std::int32_t depth, const Sample *sources, const Constant &) {
                         return computed([](auto a, auto b) { return a * b; }, depth, sources[0], sources[0]);
                     }),
        joined({headersOf(2), comparisonsWithAlpha(), {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_32S)}})};
    operation.channels = Agreement::SameAlpha;
    operation.orderFreeAtDepth1U = true;
    operation.anyNan = true;
    return operation;
}

// The quotient by full scale, which is what (t + (t >> width) + 1) >> width comes to for every product t.
Sample fraction(std::int32_t depth, long long a, long long b)
{
    return integerSample(depth, a * b / highestOf(depth));
}

// The depth of each image is judged by itself before depths are compared.
Refusals depthsOfFractions(int image, const char *context)
{
    return wrongDepths(image, {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F, ORV_DEPTH_1U}, context);
}

Operation multiplyScaleOperation()
{
    return {{"orvMultiplyScale", "orvalpha"},
            2,
            {ORV_DEPTH_16U, ORV_DEPTH_8U}, // so that another depth than the first is served too
            pixelByPixel(orvMultiplyScale,
                         [](std::int32_t depth, const Sample *sources, const Constant &) {
                             return fraction(depth, sources[0].integer(), sources[1].integer());
                         }),
            joined({headersOf(3), depthsOfFractions(0, "(srcImageA->depth != 8) && srcImageA->depth != 16"),
                    depthsOfFractions(1, "(srcImageB->depth != 8) && srcImageB->depth != 16"),
                    depthsOfFractions(2, "(dstImage->depth != 8) && dstImage->depth != 16"), comparisonsOfThree()})};
}

Operation multiplySScaleOperation()
{
    return {{"orvMultiplySScale", "orvalpha"},
            1,
            {ORV_DEPTH_16U, ORV_DEPTH_8U},
            pixelByPixel(
                orvMultiplySScale,
                [](std::int32_t depth, const Sample *sources, const Constant &constant) {
                    return fraction(depth, sources[0].integer(), saturated(depth, constant.integer));
                },
                constants({100, 0, 1, 2, 127, 128, 254, 255, 256, 1000, 32767, 32768, 65534, 65535, 65536, -1, -300,
                           mostInt, leastInt})),
            joined({headersOf(2), depthsOfFractions(0, "(srcImage->depth != 8) && srcImage->depth != 16"),
                    depthsOfFractions(1, "(dstImage->depth != 8) && dstImage->depth != 16"), comparisonsOfTwo()})};
}

} // namespace

std::vector<Operation> imageArithmetic()
{
    return {ofTwoImages("orvAdd", "orvadd", orvAdd, [](auto a, auto b) { return a + b; }),
            ofTwoImages("orvSubtract", "orvsub", orvSubtract, [](auto a, auto b) { return a - b; }),
            ofTwoImages("orvMultiply", "orvmul", orvMultiply, [](auto a, auto b) { return a * b; }),
            squareOperation(),
            multiplyScaleOperation(),
            multiplySScaleOperation()};
}

} // namespace front
