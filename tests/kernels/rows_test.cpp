// Walks all rows of the kernel table: every build against build 0, between guard pages, with sizes, steps and starts of
// all kinds; and what every kernel refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "guarded.h"
#include "kernels.h"
#include "row_shapes.h"

namespace {

using namespace orv;

std::mt19937 seeded(const char *name)
{
    unsigned seed = 1;
    for (const char *c = name; *c != '\0'; ++c)
        seed = seed * 31 + static_cast<unsigned char>(*c);
    return std::mt19937(seed);
}

// A rectangle of a raster, somewhere between two guard pages.
class Plot {
public:
    Plot(RasterShape shape, int width, int height, std::mt19937 &random)
        : step_(width * shape.pixelBytes() + (random() % 3 == 0 ? 0 : static_cast<int>(random() % 40))),
          memory_(static_cast<std::size_t>(step_) * (height - 1) + static_cast<std::size_t>(width * shape.pixelBytes()),
                  random() % 2 == 0 ? Guarded::AtLowerGuard : Guarded::AtUpperGuard),
          start_(shape.anyChannel ? static_cast<int>(random() % shape.channels) * shape.sampleBytes : 0)
    {
    }

    void *start() const { return memory_.data() + start_; }
    int step() const { return step_; }
    Guarded &memory() { return memory_; }

    void fillBytes(std::mt19937 &random)
    {
        // An eighth of all fills is near zero, an eighth near the top: where saturation and ties happen.
        const unsigned kind = random() % 8;
        for (std::size_t i = 0; i < memory_.size(); ++i)
            memory_.data()[i] = static_cast<std::uint8_t>(kind == 0   ? random() % 3
                                                          : kind == 1 ? 255 - random() % 3
                                                                      : random());
    }

    void fillFloats(std::mt19937 &random)
    {
        static const float nasty[] = {0.0f,
                                      -0.0f,
                                      0.5f,
                                      1.5f,
                                      2.5f,
                                      -0.5f,
                                      -1.5f,
                                      0.49999997f,
                                      254.5f,
                                      255.5f,
                                      127.5f,
                                      -128.5f,
                                      32766.5f,
                                      32767.5f,
                                      -32768.5f,
                                      65534.5f,
                                      65535.5f,
                                      8388609.0f,
                                      2147483520.0f,
                                      2147483648.0f,
                                      -2147483648.0f,
                                      -2147483904.0f,
                                      1e20f,
                                      -1e20f,
                                      1e-40f,
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(),
                                      std::numeric_limits<float>::quiet_NaN()};
        for (std::size_t i = 0; i + 4 <= memory_.size(); i += 4) {
            float value = nasty[random() % std::size(nasty)];
            if (random() % 2 == 0)
                value = std::ldexp(static_cast<float>(static_cast<int>(random() % 65536) - 32768),
                                   static_cast<int>(random() % 24) - 8);
            std::memcpy(memory_.data() + i, &value, 4);
        }
    }

private:
    int step_;
    Guarded memory_;
    int start_;
};

constexpr int trials = 60;

// Calls `run(plots..., width, height)` for each build on the same content, and compares the destination, the whole plot
// of it, with that of build 0.
template <class Prepare, class Run> void compareBuilds(const char *name, Prepare prepare, Run run)
{
    std::mt19937 random = seeded(name);
    for (int trial = 0; trial < trials; ++trial) {
        const int width = 1 + static_cast<int>(random() % (trial % 4 == 0 ? 200 : 40));
        const int height = 1 + static_cast<int>(random() % 4);
        const RowShape shape = shapeOf(name);
        Plot source(shape.source, width, height, random), destination(shape.destination, width, height, random),
            mask({1, 1, false}, width, height, random);
        prepare(shape, source, mask, random);
        destination.fillBytes(random);
        const Guarded &memory = destination.memory();
        const std::vector<std::uint8_t> before(memory.data(), memory.data() + memory.size());
        std::vector<std::uint8_t> expected;
        const unsigned parameter = random();
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
            std::memcpy(memory.data(), before.data(), before.size());
            ASSERT_EQ(run(source, destination, mask, width, height, parameter), KRN_OK) << name;
            const std::vector<std::uint8_t> result(memory.data(), memory.data() + memory.size());
            if (krnDispatchIndex == 0)
                expected = result;
            ASSERT_EQ(result == expected, true)
                << name << " of build " << krnDispatchIndex << ", " << width << " x " << height << ", trial " << trial;
        }
        krnDispatchIndex = 0;
    }
}

void prepareSource(const RowShape &shape, Plot &source, Plot &mask, std::mt19937 &random)
{
    shape.floats ? source.fillFloats(random) : source.fillBytes(random);
    const unsigned kind = random() % 4;
    std::uint8_t *bytes = mask.memory().data();
    for (std::size_t i = 0; i < mask.memory().size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(kind == 0         ? 0
                                             : kind == 1       ? 255
                                             : i / 20 % 2 == 0 ? random() % 2 * 0x80
                                                               : 1);
}

// One trial for each signature of the list.

void walk(const char *name, const Kernel<CopyKernel> &kernel)
{
    compareBuilds(name, prepareSource, [&](Plot &source, Plot &destination, Plot &, int width, int height, unsigned) {
        return kernel(source.start(), source.step(), destination.start(), destination.step(), width, height);
    });
}

void walk(const char *name, const Kernel<CopyMaskedKernel> &kernel)
{
    compareBuilds(name, prepareSource,
                  [&](Plot &source, Plot &destination, Plot &mask, int width, int height, unsigned) {
                      return kernel(source.start(), source.step(), destination.start(), destination.step(), width,
                                    height, mask.start(), mask.step());
                  });
}

void walk(const char *name, const Kernel<ConvertRoundKernel> &kernel)
{
    compareBuilds(name, prepareSource,
                  [&](Plot &source, Plot &destination, Plot &, int width, int height, unsigned parameter) {
                      return kernel(source.start(), source.step(), destination.start(), destination.step(), width,
                                    height, static_cast<int>(parameter % 4));
                  });
}

void walk(const char *name, const Kernel<FillPixelsKernel> &kernel)
{
    compareBuilds(name, prepareSource,
                  [&](Plot &, Plot &destination, Plot &, int width, int height, unsigned parameter) {
                      const unsigned values[4] = {parameter, parameter * 7, parameter * 31, parameter * 101};
                      return kernel(values, destination.start(), destination.step(), width, height);
                  });
}

TEST(KernelRows, EveryBuildGivesWhatBuild0Gives)
{
    int walked = 0;
#define KRN(signature, name) \
    walk(#name, name);       \
    ++walked;
#define KRN_PLAIN(signature, name)
#include "kernels.def"
    EXPECT_GT(walked, 80);
}

// A row whose builds were one function by mistake would pass the walk.
TEST(KernelRows, BuildsAreOfTheirOwn)
{
#define KRN(signature, name)                                                                \
    EXPECT_EQ(std::set<void *>(reinterpret_cast<void *const *>(name.builds),                \
                               reinterpret_cast<void *const *>(name.builds + kernelBuilds)) \
                  .size(),                                                                  \
              std::size_t{kernelBuilds})                                                    \
        << #name;
#define KRN_PLAIN(signature, name)                     \
    for (int build = 1; build < kernelBuilds; ++build) \
        EXPECT_EQ(name.builds[build], name.builds[0]) << #name;
#include "kernels.def"
}

int ranBuild = -1;
template <int build> KrnStatus recordBuild(int value)
{
    ranBuild = build;
    return value;
}

TEST(KernelRows, TheIndexPicksTheBuild)
{
    const Kernel<KrnStatus(int)> row = {
        {recordBuild<0>, recordBuild<1>, recordBuild<2>, recordBuild<3>, recordBuild<4>, recordBuild<5>}};
    EXPECT_EQ(krnDispatchIndex, 0);
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
        EXPECT_EQ(row(77), 77);
        EXPECT_EQ(ranBuild, krnDispatchIndex);
    }
    krnDispatchIndex = 0;
}

// What a refused call may not touch.
constexpr std::uint8_t untouched = 0x99;

struct Refusal {
    bool nullSource, nullDestination, nullMask;
    int width, height, step;
    KrnStatus status;
};

const Refusal refusals[] = {
    {true, false, false, 4, 1, 64, KRN_NULL_POINTER}, {false, true, false, 4, 1, 64, KRN_NULL_POINTER},
    {false, false, true, 4, 1, 64, KRN_NULL_POINTER}, {true, false, false, 0, 0, 0, KRN_NULL_POINTER},
    {false, false, false, 0, 1, 64, KRN_BAD_SIZE},    {false, false, false, 4, 0, 64, KRN_BAD_SIZE},
    {false, false, false, -1, -1, 64, KRN_BAD_SIZE},  {false, false, false, 0, 1, 0, KRN_BAD_SIZE},
    {false, false, false, 4, 1, 0, KRN_BAD_STEP},     {false, false, false, 4, 2, -64, KRN_BAD_STEP},
};

struct Arguments {
    const void *source;
    void *destination;
    const void *mask;
    const Refusal &refusal;
};

KrnStatus refuse(const Kernel<CopyKernel> &kernel, const Arguments &a)
{
    return kernel(a.source, a.refusal.step, a.destination, a.refusal.step, a.refusal.width, a.refusal.height);
}

KrnStatus refuse(const Kernel<CopyMaskedKernel> &kernel, const Arguments &a)
{
    return kernel(a.source, a.refusal.step, a.destination, a.refusal.step, a.refusal.width, a.refusal.height, a.mask,
                  a.refusal.step);
}

KrnStatus refuse(const Kernel<ConvertRoundKernel> &kernel, const Arguments &a)
{
    return kernel(a.source, a.refusal.step, a.destination, a.refusal.step, a.refusal.width, a.refusal.height, 1);
}

KrnStatus refuse(const Kernel<FillPixelsKernel> &kernel, const Arguments &a)
{
    return kernel(a.source, a.destination, a.refusal.step, a.refusal.width, a.refusal.height);
}

KrnStatus refuse(const Kernel<FillKernel> &kernel, const Arguments &a)
{
    return a.refusal.nullSource ? a.refusal.status
                                : kernel(1, a.destination, a.refusal.step, a.refusal.width, a.refusal.height);
}

KrnStatus refuse(const Kernel<PatternKernel> &kernel, const Arguments &a)
{
    // The pattern tests its step before its size.
    if (a.refusal.nullSource || (a.refusal.width < 1 && a.refusal.step < 1))
        return a.refusal.status;
    return kernel(a.destination, a.refusal.step, a.refusal.width, a.refusal.height);
}

KrnStatus refuse(const Kernel<CopyBytesKernel> &kernel, const Arguments &a)
{
    return a.refusal.status == KRN_BAD_STEP || a.refusal.height < 1 ? a.refusal.status
                                                                    : kernel(a.source, a.destination, a.refusal.width);
}

KrnStatus refuse(const Kernel<AllocateKernel> &, const Arguments &a)
{
    return a.refusal.status;
}

KrnStatus refuse(const Kernel<ReleaseKernel> &, const Arguments &a)
{
    return a.refusal.status;
}

template <class Signature> void testRefusals(const char *name, const Kernel<Signature> &kernel)
{
    const std::uint8_t source[256] = {};
    for (const Refusal &refusal : refusals) {
        if (refusal.nullMask && !std::is_same_v<Signature, CopyMaskedKernel>)
            continue;
        std::uint8_t destination[256];
        std::memset(destination, untouched, sizeof destination);
        const Arguments arguments = {refusal.nullSource ? nullptr : source,
                                     refusal.nullDestination ? nullptr : destination,
                                     refusal.nullMask ? nullptr : source, refusal};
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
            EXPECT_EQ(refuse(kernel, arguments), refusal.status)
                << name << " of build " << krnDispatchIndex << ", case " << &refusal - refusals;
        krnDispatchIndex = 0;
        for (const std::uint8_t byte : destination)
            ASSERT_EQ(byte, untouched) << name;
    }
}

TEST(KernelRows, RefusePointersThenSizesThenSteps)
{
#define KRN(signature, name) testRefusals(#name, name);
#define KRN_PLAIN(signature, name) testRefusals(#name, name);
#include "kernels.def"
}

} // namespace
