// Transforms. Some cases have sizes of their own in the columns of the table, and name them.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {
namespace {

using Function = void (*)(const OrvImage *, OrvImage *, std::int32_t);

struct Transform {
    const char *name;
    Function call;
    int flags, from, to;
};

constexpr Transform fourier[] = {{"orvRealFft2D", orvRealFft2D, ORV_FFT_FORWARD, ORV_DEPTH_32F, ORV_DEPTH_32F},
                                 {"orvRealFft2D", orvRealFft2D, ORV_FFT_FORWARD, ORV_DEPTH_8U, ORV_DEPTH_32F},
                                 {"orvRealFft2D", orvRealFft2D, ORV_FFT_FORWARD, ORV_DEPTH_16S, ORV_DEPTH_16S},
                                 {"orvCcsFft2D", orvCcsFft2D, ORV_FFT_INVERSE, ORV_DEPTH_32F, ORV_DEPTH_32F},
                                 {"orvCcsFft2D", orvCcsFft2D, ORV_FFT_INVERSE, ORV_DEPTH_32F, ORV_DEPTH_8U},
                                 {"orvCcsFft2D", orvCcsFft2D, ORV_FFT_INVERSE, ORV_DEPTH_16S, ORV_DEPTH_16S}};
constexpr Transform cosine[] = {{"orvDCT2D", orvDCT2D, ORV_DCT_FORWARD, ORV_DEPTH_8U, ORV_DEPTH_32F},
                                {"orvDCT2D", orvDCT2D, ORV_DCT_FORWARD, ORV_DEPTH_8U, ORV_DEPTH_16S},
                                {"orvDCT2D inverse", orvDCT2D, ORV_DCT_INVERSE, ORV_DEPTH_32F, ORV_DEPTH_8U},
                                {"orvDCT2D inverse", orvDCT2D, ORV_DCT_INVERSE, ORV_DEPTH_16S, ORV_DEPTH_8U}};

Job job(const Transform &transform, int width, int height)
{
    const Image source = rectangle(transform.from, 1, width, height),
                destination = rectangle(transform.to, 1, width, height);
    return {[=] { transform.call(source.get(), destination.get(), transform.flags); }, sampleBytes(destination),
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height), nullptr, destination->imageData};
}

std::string nameOf(const Transform &transform)
{
    return std::string(transform.name) + " " + depthName(transform.from) +
           (transform.from == transform.to ? "" : std::string(" to ") + depthName(transform.to));
}

// Sizes that are powers of two, as the table has them.
Case ofSide(const Transform &transform)
{
    return {nameOf(transform), [=](int side) { return job(transform, side, side); }, true};
}

struct Sides {
    int width, height;
};

// One size in the columns of small images, another in those of large ones.
Case ofSides(const Transform &transform, Sides small, Sides large)
{
    const auto text = [](Sides sides) { return std::to_string(sides.width) + "x" + std::to_string(sides.height); };
    return {nameOf(transform) + " " + text(small) + " " + text(large), [=](int side) {
                const Sides &sides = side < 1024 ? small : large;
                return job(transform, sides.width, sides.height);
            }};
}

// What a block of 8 x 8 is measured by.
Case additionOf32()
{
    return {"orvAdd 8U 32x32 for 8x8",
            [](int side) {
                const Image a = image(ORV_DEPTH_8U, 1, side == 8 ? 32 : side), b = image(ORV_DEPTH_8U, 1, a->width),
                            sum = image(ORV_DEPTH_8U, 1, a->width);
                return Job{[=] { orvAdd(a.get(), b.get(), sum.get()); }, sampleBytes(sum), sampleBytes(sum), nullptr,
                           sum->imageData};
            },
            true};
}

} // namespace

std::vector<Case> transformCases()
{
    std::vector<Case> cases;
    for (const Transform &transform : fourier)
        cases.push_back(ofSide(transform));
    for (const Transform &transform : fourier)
        cases.push_back(ofSides(transform, {512, 512}, {1024, 1024}));
    for (const Transform *const transform : {&fourier[0], &fourier[3]}) {
        cases.push_back(ofSides(*transform, {640, 480}, {1000, 1000}));
        cases.push_back(ofSides(*transform, {509, 509}, {1021, 1021}));
    }
    for (const Transform &transform : cosine)
        cases.push_back(ofSide(transform));
    for (const Transform &transform : cosine)
        cases.push_back(ofSides(transform, {512, 512}, {1000, 1000}));
    cases.push_back(ofSides(cosine[0], {96, 96}, {1021, 1021}));
    cases.push_back(additionOf32());
    return cases;
}

} // namespace bench
