// Entries of arithmetic between images: sums, differences, products, fractions and squares.
#include "front/operation_entries.h"

namespace front {
namespace {

float single(Sample sample)
{
    return static_cast<float>(sample.real());
}

Sample sum(std::int32_t sampleDepth, const Sample *sources, const Constant &)
{
    if (sampleDepth == ORV_DEPTH_32F) {
        const volatile float result = single(sources[0]) + single(sources[1]);
        return realSample(result);
    }
    return integerSample(sampleDepth, saturated(sampleDepth, sources[0].integer() + sources[1].integer()));
}

Sample difference(std::int32_t sampleDepth, const Sample *sources, const Constant &)
{
    if (sampleDepth == ORV_DEPTH_32F) {
        const volatile float result = single(sources[0]) - single(sources[1]);
        return realSample(result);
    }
    return integerSample(sampleDepth, saturated(sampleDepth, sources[0].integer() - sources[1].integer()));
}

Sample product(std::int32_t sampleDepth, const Sample *sources, const Constant &)
{
    if (sampleDepth == ORV_DEPTH_32F) {
        const volatile float result = single(sources[0]) * single(sources[1]);
        return realSample(result);
    }
    return integerSample(sampleDepth, saturated(sampleDepth, sources[0].integer() * sources[1].integer()));
}

Sample square(std::int32_t sampleDepth, const Sample *sources, const Constant &constant)
{
    const Sample twice[] = {sources[0], sources[0]};
    return product(sampleDepth, twice, constant);
}

// The quotient by full scale, which is what (t + (t >> width) + 1) >> width comes to for every product t.
Sample fraction(std::int32_t sampleDepth, long long a, long long b)
{
    return integerSample(sampleDepth, a * b / highestOf(sampleDepth));
}

Operation ofTwoImages(const char *name, Reporter reporter, Call call, Expected expected)
{
    Operation operation = {
        .name = name,
        .reporter = reporter,
        .sources = 2,
        .depths = {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F},
        .call = call,
        .expected = expected,
        .refusals = joined({headersOfThree(),
                            comparisonsOfThree(),
                            {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U)}}),
    };
    operation.anyNan = true;
    return operation;
}

Operation addOperation()
{
    return ofTwoImages(
        "Add", {"orvAdd", "orvadd"},
        [](OrvImage *const *images, const Constant &) { return orvAdd(images[0], images[1], images[2]); }, sum);
}

Operation subtractOperation()
{
    return ofTwoImages(
        "Subtract", {"orvSubtract", "orvsub"},
        [](OrvImage *const *images, const Constant &) { return orvSubtract(images[0], images[1], images[2]); },
        difference);
}

Operation multiplyOperation()
{
    return ofTwoImages(
        "Multiply", {"orvMultiply", "orvmul"},
        [](OrvImage *const *images, const Constant &) { return orvMultiply(images[0], images[1], images[2]); },
        product);
}

Operation squareOperation()
{
    Operation operation = {
        .name = "Square",
        .reporter = {"orvSquare", "orvsqr"},
        .sources = 1,
        .depths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32F},
        .call = [](OrvImage *const *images, const Constant &) { return orvSquare(images[0], images[1]); },
        .expected = square,
        .refusals = joined({headersOfTwo(), comparisonsWithAlpha(), {unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_32S)}}),
    };
    operation.channels = Agreement::SameAlpha;
    operation.orderFreeAtDepth1U = true;
    operation.anyNan = true;
    return operation;
}

// The depth of each image is judged by itself before depths are compared.
std::vector<Refusal> depthsOfFractions(int image, const char *context)
{
    std::vector<Refusal> refusals;
    for (const std::int32_t value : {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F, ORV_DEPTH_1U})
        refusals.push_back(depth(image, value, ORV_STATUS_BAD_ARGUMENT, context));
    return refusals;
}

Operation multiplyScaleOperation()
{
    return {
        .name = "MultiplyScale",
        .reporter = {"orvMultiplyScale", "orvalpha"},
        .sources = 2,
        .depths = {ORV_DEPTH_16U, ORV_DEPTH_8U}, // so that another depth than the first is served too
        .call = [](OrvImage *const *images,
                   const Constant &) { return orvMultiplyScale(images[0], images[1], images[2]); },
        .expected = [](std::int32_t sampleDepth, const Sample *sources,
                       const Constant &) { return fraction(sampleDepth, sources[0].integer(), sources[1].integer()); },
        .refusals =
            joined({headersOfThree(), depthsOfFractions(0, "(srcImageA->depth != 8) && srcImageA->depth != 16"),
                    depthsOfFractions(1, "(srcImageB->depth != 8) && srcImageB->depth != 16"),
                    depthsOfFractions(2, "(dstImage->depth != 8) && dstImage->depth != 16"), comparisonsOfThree()}),
    };
}

Operation multiplySScaleOperation()
{
    return {
        .name = "MultiplySScale",
        .reporter = {"orvMultiplySScale", "orvalpha"},
        .sources = 1,
        .depths = {ORV_DEPTH_16U, ORV_DEPTH_8U},
        .call = [](OrvImage *const *images,
                   const Constant &constant) { return orvMultiplySScale(images[0], images[1], constant.integer); },
        .expected =
            [](std::int32_t sampleDepth, const Sample *sources, const Constant &constant) {
                return fraction(sampleDepth, sources[0].integer(), saturated(sampleDepth, constant.integer));
            },
        .refusals =
            joined({headersOfTwo(), depthsOfFractions(0, "(srcImage->depth != 8) && srcImage->depth != 16"),
                    depthsOfFractions(1, "(dstImage->depth != 8) && dstImage->depth != 16"), comparisonsOfTwo()}),
        .constants = integers({100, 0, 1, 2, 127, 128, 254, 255, 256, 1000, 32767, 32768, 65534, 65535, 65536, -1, -300,
                               mostInt, leastInt}),
    };
}

} // namespace

std::vector<Operation> imageArithmetic()
{
    const Operation add = addOperation(), subtract = subtractOperation(), multiply = multiplyOperation();
    return {add,
            inWholeSamples(add, {ORV_DEPTH_32S}),
            subtract,
            inWholeSamples(subtract, {ORV_DEPTH_32S}),
            multiply,
            inWholeSamples(multiply, {ORV_DEPTH_32S}),
            squareOperation(),
            multiplyScaleOperation(),
            multiplySScaleOperation()};
}

} // namespace front
