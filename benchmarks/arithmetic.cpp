// Arithmetic, logic and shifts.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

std::size_t pixelsOf(const Image &target)
{
    return static_cast<std::size_t>(target->width) * static_cast<std::size_t>(target->height);
}

Job job(std::function<void()> call, const Image &source, const Image &destination)
{
    return {std::move(call), sampleBytes(destination), pixelsOf(destination), source->imageData,
            destination->imageData};
}

using Binary = OrvStatus(const OrvImage *, const OrvImage *, OrvImage *);
using Unary = OrvStatus(const OrvImage *, OrvImage *);

// The images of a case.
struct Form {
    int depth, channels;
    bool alpha = false, masked = false, inPlace = false;

    std::string text() const
    {
        return std::string(" ") + depthName(depth) + (alpha ? " AC" : " C") + std::to_string(channels) +
               (masked ? " masked" : "") + (inPlace ? " in place" : "");
    }
    Image destination(int side) const
    {
        Image target = masked ? maskedImage(depth, channels, side) : image(depth, channels, side);
        target->alphaChannel = alpha ? 4 : 0;
        return target;
    }
};

Case binary(const char *name, Binary *call, Form form, bool tiny = false)
{
    return {name + form.text(),
            [=](int side) {
                const Image a = image(form.depth, form.channels, side), b = image(form.depth, form.channels, side);
                const Image destination = form.inPlace ? a : form.destination(side);
                return job([=] { call(a.get(), b.get(), destination.get()); }, b, destination);
            },
            tiny};
}

template <class Call> Case unary(const std::string &name, Call call, Form form)
{
    return {name + form.text(), [=](int side) {
                const Image source = image(form.depth, form.channels, side);
                const Image destination = form.inPlace ? source : form.destination(side);
                Job result = job([=] { call(source.get(), destination.get()); }, source, destination);
                if (form.inPlace)
                    result.from = nullptr;
                return result;
            }};
}

template <class Function, class Value> auto withValue(Function *function, Value value)
{
    return [=](const OrvImage *source, OrvImage *destination) { function(source, destination, value); };
}

auto subtract(int value, int flip)
{
    return [=](const OrvImage *source, OrvImage *destination) { orvSubtractS(source, destination, value, flip); };
}

} // namespace

std::vector<Case> arithmeticCases()
{
    std::vector<Case> cases;
    for (const int depth : {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F, ORV_DEPTH_32S}) {
        cases.push_back(binary("orvAdd", orvAdd, {depth, 1}, depth == ORV_DEPTH_8U));
        cases.push_back(binary("orvAdd", orvAdd, {depth, 1, false, false, true}));
        cases.push_back(binary("orvAdd", orvAdd, {depth, 3}));
        cases.push_back(binary("orvAdd", orvAdd, {depth, 4}));
        cases.push_back(binary("orvAdd", orvAdd, {depth, 4, true}));
        cases.push_back(binary("orvAdd", orvAdd, {depth, 1, false, true}));
        cases.push_back(binary("orvSubtract", orvSubtract, {depth, 1}));
        cases.push_back(binary("orvMultiply", orvMultiply, {depth, 1}));
        cases.push_back(binary("orvMultiply", orvMultiply, {depth, 4, true}));
        if (depth != ORV_DEPTH_32S)
            cases.push_back(unary("orvSquare", orvSquare, {depth, 1}));
        if (depth == ORV_DEPTH_32F)
            continue;
        cases.push_back(unary("orvAddS 5", withValue(orvAddS, 5), {depth, 1}));
        cases.push_back(unary("orvAddS 5", withValue(orvAddS, 5), {depth, 1, false, false, true}));
        cases.push_back(unary("orvAddS 5", withValue(orvAddS, 5), {depth, 4, true}));
        cases.push_back(unary("orvSubtractS 5", subtract(5, 0), {depth, 1}));
        cases.push_back(unary("orvSubtractS 5 flip", subtract(5, 1), {depth, 1}));
        cases.push_back(unary("orvMultiplyS 3", withValue(orvMultiplyS, 3), {depth, 1}));
        cases.push_back(binary("orvAnd", orvAnd, {depth, 1}));
        cases.push_back(unary("orvAndS 85", withValue(orvAndS, 85), {depth, 1}));
        cases.push_back(unary("orvNot", orvNot, {depth, 1}));
        cases.push_back(unary("orvLShiftS 2", withValue(orvLShiftS, 2u), {depth, 1}));
        cases.push_back(unary("orvRShiftS 2", withValue(orvRShiftS, 2u), {depth, 1}));
    }
    cases.push_back(unary("orvAddS 40000", withValue(orvAddS, 40000), {ORV_DEPTH_16S, 1}));
    cases.push_back(unary("orvAddSFP", withValue(orvAddSFP, 5.0f), {ORV_DEPTH_32F, 1}));
    cases.push_back(unary("orvMultiplySFP", withValue(orvMultiplySFP, 5.0f), {ORV_DEPTH_32F, 1}));
    for (const int depth : {ORV_DEPTH_8U, ORV_DEPTH_16U}) {
        cases.push_back(binary("orvMultiplyScale", orvMultiplyScale, {depth, 1}));
        cases.push_back(binary("orvMultiplyScale", orvMultiplyScale, {depth, 4, true}));
        cases.push_back(unary("orvMultiplySScale 99", withValue(orvMultiplySScale, 99), {depth, 1}));
    }
    return cases;
}

} // namespace bench
