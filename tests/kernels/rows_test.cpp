// Walks all rows of the kernel table: every build against build 0, between guard pages, with sizes, steps and starts of
// all kinds; and what every kernel refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "guarded.h"
#include "row_table.h"

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
    // The source of a kernel that looks around itself starts at the pixel which that computes first.
    void startAt(int bytes, int row) { start_ += bytes + row * step_; }
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

    // Numbers whose sums and products are far from the ends of the range.
    void fillModestFloats(std::mt19937 &random)
    {
        for (std::size_t i = 0; i + 4 <= memory_.size(); i += 4) {
            const float value = static_cast<float>(static_cast<int>(random() % 65536) - 32768) / 64.0f;
            std::memcpy(memory_.data() + i, &value, 4);
        }
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

void fillMask(Plot &mask, std::mt19937 &random)
{
    const unsigned kind = random() % 4;
    std::uint8_t *bytes = mask.memory().data();
    for (std::size_t i = 0; i < mask.memory().size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(kind == 0         ? 0
                                             : kind == 1       ? 255
                                             : i / 20 % 2 == 0 ? random() % 2 * 0x80
                                                               : 1);
}

constexpr int trials = 60;

// Operands may be exchanged or kept in wider registers, which shows in the payload of a result that is no number.
void makeNaNsAlike(Plot &plot, int width, int height, int channels)
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * channels; ++x) {
            std::uint8_t *at = static_cast<std::uint8_t *>(plot.start()) + y * plot.step() + x * 4;
            float value;
            std::memcpy(&value, at, 4);
            if (std::isnan(value))
                std::memset(at, 0x7F, 4);
        }
}

// Shifts have few counts, constants and scales many.
int someNumber(std::mt19937 &random)
{
    const int edges[] = {0, 1, -1, 7, 8, 9, 15, 16, 31, 32, 100, 255, 32767, -32768, 2147483647, -2147483647 - 1};
    return random() % 2 == 0 ? edges[random() % std::size(edges)] : static_cast<int>(random() % 600) - 300;
}

RowWindow someWindow(const std::string &name, std::mt19937 &random)
{
    RowWindow window;
    if (!startsWith(name, "krnConvolve"))
        return window;
    if (name.find("Col") == std::string::npos)
        window.columns = 1 + static_cast<int>(random() % 7);
    if (name.find("Row") == std::string::npos)
        window.rows = 1 + static_cast<int>(random() % 5);
    window.anchorX = static_cast<int>(random() % window.columns);
    window.anchorY = static_cast<int>(random() % window.rows);
    window.divisor = random() % 4 == 0 ? 1 + static_cast<int>(random() % 300) : 1 << random() % 12;
    return window;
}

void walk(const TableRow &row)
{
    const std::string name = row.name;
    const RowShape shape = shapeOf(name);
    const bool oneRow = takesOneRow(name), windows = startsWith(name, "krnConvolve");
    const bool shifts = name.find("Shift") != std::string::npos;
    std::mt19937 random = seeded(name.c_str());
    for (int trial = 0; trial < trials; ++trial) {
        const int width = 1 + static_cast<int>(random() % (trial % 4 == 0 ? 200 : 40));
        const int height = oneRow ? 1 : 1 + static_cast<int>(random() % 4);
        const RowWindow window = someWindow(name, random);
        Plot first(shape.source, width + window.columns - 1, height + window.rows - 1, random);
        Plot second(shape.source, width, height, random);
        Plot destination(shape.destination, width, height, random), mask({1, 1, false}, width, height, random);
        for (Plot *plot : {&first, &second})
            shape.sourceFloats &&windows ? plot->fillModestFloats(random)
            : shape.sourceFloats         ? plot->fillFloats(random)
                                         : plot->fillBytes(random);
        first.startAt((window.columns - 1 - window.anchorX) * shape.source.pixelBytes(),
                      window.rows - 1 - window.anchorY);
        shape.destinationFloats ? destination.fillFloats(random) : destination.fillBytes(random);
        fillMask(mask, random);

        std::int32_t values[35];
        const bool modest = random() % 3 != 0;
        for (std::int32_t &value : values)
            value = shifts              ? static_cast<int>(random() % 40)
                    : windows && modest ? static_cast<int>(random() % 9) - 3
                                        : someNumber(random);
        if (random() % 2 == 0)
            values[1] = values[2] = values[3] = values[0];
        float floats[35] = {1.5f, static_cast<float>(values[1]), -2.25f, 1e30f};
        for (float &value : floats)
            value = windows ? static_cast<float>(static_cast<int>(random() % 65) - 32) / 8 : value;
        const int scale = random() % 2 == 0 ? 0 : static_cast<int>(random() % 100) - 35;
        const RowCall arguments = {{{first.start(), first.step()}, {second.start(), second.step()}},
                                   {destination.start(), destination.step()},
                                   {mask.start(), mask.step()},
                                   width,
                                   height,
                                   values[0],
                                   scale,
                                   shape.destinationFloats ? static_cast<const void *>(floats) : values,
                                   trial % 3,
                                   window,
                                   static_cast<float>(values[0])};

        const Guarded &memory = destination.memory();
        const std::vector<std::uint8_t> before(memory.data(), memory.data() + memory.size());
        std::vector<std::uint8_t> expected;
        for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
            std::memcpy(memory.data(), before.data(), before.size());
            ASSERT_EQ(row(arguments), KRN_OK) << name;
            if (shape.destinationFloats)
                makeNaNsAlike(destination, width, height, shape.destination.channels);
            const std::vector<std::uint8_t> result(memory.data(), memory.data() + memory.size());
            if (krnDispatchIndex == 0)
                expected = result;
            ASSERT_TRUE(result == expected)
                << name << " of build " << krnDispatchIndex << ", " << width << " x " << height << ", trial " << trial;
        }
        krnDispatchIndex = 0;
    }
}

TEST(KernelRows, EveryBuildGivesWhatBuild0Gives)
{
    int walked = 0;
    for (const TableRow &row : tableRows())
        if (!row.plain) {
            ASSERT_NE(row.call, nullptr) << row.name;
            walk(row);
            ++walked;
        }
    EXPECT_GT(walked, 400);
}

// A row whose builds were one function by mistake would pass the walk.
TEST(KernelRows, BuildsAreOfTheirOwn)
{
    for (const TableRow &row : tableRows())
        EXPECT_EQ(std::set<void *>(row.builds, row.builds + kernelBuilds).size(),
                  row.plain ? 1u : unsigned{kernelBuilds})
            << row.name;
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

// Rows too long for the caches take a way of their own, which starts and ends anywhere.
TEST(KernelRows, LongRowsAreLikeShortOnes)
{
    constexpr int width = 4099, height = 2200;
    const std::size_t bytes = std::size_t{width} * height;
    std::vector<std::uint8_t> a(bytes), b(bytes);
    std::mt19937 random(5);
    for (std::size_t i = 0; i < bytes; ++i) {
        a[i] = static_cast<std::uint8_t>(random());
        b[i] = static_cast<std::uint8_t>(random() >> 7);
    }
    const std::size_t offsets[] = {0, 1, 16};
    for (const std::size_t offset : offsets) {
        std::vector<std::uint8_t> results[2] = {std::vector<std::uint8_t>(bytes + 64, 0x99),
                                                std::vector<std::uint8_t>(bytes + 64, 0x99)};
        for (const int build : {0, 5}) {
            krnDispatchIndex = build;
            std::uint8_t *out = results[build != 0].data() + offset;
            EXPECT_EQ(krnAdd8uC1(a.data(), width, b.data(), width, out, width, width, height, 0), KRN_OK);
        }
        krnDispatchIndex = 0;
        EXPECT_TRUE(results[0] == results[1]) << offset;
    }
}

// Counts the roles of which `spoil(call, role)` makes the kernel refuse with that status; the others, of which the
// signature knows nothing, must not matter.
template <class Spoil> int refused(const TableRow &row, const RowCall &good, int roles, KrnStatus status, Spoil spoil)
{
    int count = 0;
    for (int role = 0; role < roles; ++role) {
        RowCall spoilt = good;
        spoil(spoilt, role);
        const KrnStatus result = row(spoilt);
        EXPECT_TRUE(result == KRN_OK || result == status) << result;
        count += result == status;
    }
    return count;
}

RowRaster &rasterOf(RowCall &c, int role)
{
    return role < 2 ? c.sources[role] : role == 2 ? c.destination : c.mask;
}

void testRefusals(const TableRow &row)
{
    const std::string name = row.name;
    SCOPED_TRACE(name + " of build " + std::to_string(krnDispatchIndex));
    std::uint8_t bytes[256] = {}, spare[256] = {};
    const RowCall good = {{{bytes, 64}, {bytes, 64}}, {spare, 64}, {bytes, 64}, 4, 2, 1, 0, bytes};
    EXPECT_EQ(row(good), KRN_OK);

    const bool oneRow = takesOneRow(name) || name == "krnCopyBytes";
    EXPECT_EQ(refused(row, good, 5, KRN_NULL_POINTER,
                      [](RowCall &c, int role) { role == 4 ? c.values = nullptr : rasterOf(c, role).data = nullptr; }),
              row.pointers);
    EXPECT_EQ(
        refused(row, good, 4, KRN_BAD_STEP, [](RowCall &c, int role) { rasterOf(c, role).step = role == 1 ? -64 : 0; }),
        oneRow ? 0 : row.pointers - row.constants);
    EXPECT_EQ(refused(row, good, 4, KRN_BAD_SIZE,
                      [](RowCall &c, int role) { (role % 2 == 0 ? c.width : c.height) = role < 2 ? 0 : -1; }),
              oneRow ? 2 : 4);

    // The earlier test speaks; the pattern looks at its step before its size.
    RowCall bad = {{{bytes, 0}, {bytes, 0}}, {spare, 0}, {bytes, 0}, 0, 0, 1, 0, bytes};
    EXPECT_EQ(row(bad), row.is("krnJaehne") ? KRN_BAD_STEP : KRN_BAD_SIZE);
    bad.destination.data = nullptr;
    EXPECT_EQ(row(bad), KRN_NULL_POINTER);
}

TEST(KernelRows, RefusePointersThenSizesThenSteps)
{
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex)
        for (const TableRow &row : tableRows())
            if (row.call != nullptr)
                testRefusals(row);
    krnDispatchIndex = 0;
}

// A refused call leaves the destination alone.
TEST(KernelRows, RefusalsWriteNothing)
{
    const std::vector<std::uint8_t> untouched(64, 0x99);
    std::vector<std::uint8_t> destination = untouched;
    const std::uint8_t source[64] = {};
    EXPECT_EQ(krnCopy8uC1(nullptr, 8, destination.data(), 8, 8, 8), KRN_NULL_POINTER);
    EXPECT_EQ(krnFill8uC1(1, destination.data(), 0, 8, 8), KRN_BAD_STEP);
    EXPECT_EQ(krnConvert32f8uC1(source, 4, destination.data(), 8, 0, 8, 1), KRN_BAD_SIZE);
    EXPECT_EQ(krnCopyMasked8uC1(source, 8, destination.data(), 8, 8, 8, nullptr, 8), KRN_NULL_POINTER);
    EXPECT_EQ(destination, untouched);
}

} // namespace
