// What kernels refuse, and in which order.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "rows.h"

namespace {

using namespace orv;

// In the order in which kernels look: of several faults the earlier kind speaks.
struct Fault {
    const char *what;
    KrnStatus status;
    unsigned uses; // of the rows that it concerns; 0 for all
    void (*spoil)(Arguments &arguments);
};

const Fault faults[] = {
    {"first source", KRN_NULL_POINTER, FIRST, [](Arguments &c) { c.first.data = nullptr; }},
    {"second source", KRN_NULL_POINTER, SECOND, [](Arguments &c) { c.second.data = nullptr; }},
    {"destination", KRN_NULL_POINTER, OUT, [](Arguments &c) { c.out.data = nullptr; }},
    {"mask", KRN_NULL_POINTER, MASK, [](Arguments &c) { c.mask.data = nullptr; }},
    {"values", KRN_NULL_POINTER, VALUES, [](Arguments &c) { c.values = nullptr; }},
    {"levels", KRN_NULL_POINTER, INTERVALS | TABLE, [](Arguments &c) { c.levels[0] = nullptr; }},
    {"steps", KRN_NULL_POINTER, TABLE, [](Arguments &c) { c.steps[0] = nullptr; }},
    {"width 0", KRN_BAD_SIZE, 0, [](Arguments &c) { c.width = 0; }},
    {"width -1", KRN_BAD_SIZE, 0, [](Arguments &c) { c.width = -1; }},
    {"height 0", KRN_BAD_SIZE, 0, [](Arguments &c) { c.height = 0; }},
    {"height -1", KRN_BAD_SIZE, 0, [](Arguments &c) { c.height = -1; }},
    {"first step", KRN_BAD_STEP, FIRST, [](Arguments &c) { c.first.step = 0; }},
    {"second step", KRN_BAD_STEP, SECOND, [](Arguments &c) { c.second.step = -64; }},
    {"step", KRN_BAD_STEP, OUT, [](Arguments &c) { c.out.step = 0; }},
    {"negative step", KRN_BAD_STEP, OUT, [](Arguments &c) { c.out.step = -64; }},
    {"mask step", KRN_BAD_STEP, MASK, [](Arguments &c) { c.mask.step = 0; }},
    {"no columns", KRN_BAD_MASK_SIZE, WINDOW, [](Arguments &c) { c.window.columns = 0; }},
    {"negative rows", KRN_BAD_MASK_SIZE, WINDOW, [](Arguments &c) { c.window.rows = -1; }},
    {"anchor left", KRN_BAD_ANCHOR, WINDOW, [](Arguments &c) { c.window.anchorX = -1; }},
    {"anchor right", KRN_BAD_ANCHOR, WINDOW, [](Arguments &c) { c.window.anchorX = c.window.size(); }},
    {"anchor above", KRN_BAD_ANCHOR, WINDOW, [](Arguments &c) { c.window.anchorY = -1; }},
    {"anchor below", KRN_BAD_ANCHOR, WINDOW, [](Arguments &c) { c.window.anchorY = c.window.size(); }},
    {"no divisor", KRN_ZERO_DIVISOR, DIVISOR, [](Arguments &c) { c.divisor = 0; }},
    {"no code", KRN_BAD_MASK_SIZE, CODE, [](Arguments &c) { c.mode = 0; }},
    {"code of a row", KRN_BAD_MASK_SIZE, CODE, [](Arguments &c) { c.mode = 0x1F; }},
    {"one level of a table", KRN_BAD_TABLE_LEVELS, TABLE, [](Arguments &c) { c.levelCounts[0] = 1; }},
    {"no level of a table", KRN_BAD_TABLE_LEVELS, TABLE, [](Arguments &c) { c.levelCounts[0] = INT_MIN; }},
    {"one level of a histogram", KRN_BAD_HISTOGRAM_LEVELS, INTERVALS, [](Arguments &c) { c.levelCounts[0] = 1; }},
    {"axis -1", KRN_BAD_AXIS, FLIP, [](Arguments &c) { c.mode = -1; }},
    {"axis 3", KRN_BAD_AXIS, FLIP, [](Arguments &c) { c.mode = 3; }},
    {"axis beyond all", KRN_BAD_AXIS, FLIP, [](Arguments &c) { c.mode = INT_MAX; }}};

bool concerns(const Fault &fault, const Row &row)
{
    Arguments probe = {};
    probe.height = 1;
    fault.spoil(probe);
    if (row.takes(ONE_ROW) && (fault.status == KRN_BAD_STEP || probe.height != 1))
        return false;
    if (row.takes(RESULTS) && fault.uses == OUT && fault.status == KRN_BAD_STEP)
        return false;
    return fault.uses == 0 || row.takes(fault.uses);
}

void testRefusals(const Row &row)
{
    alignas(32) std::uint8_t source[512] = {}, destination[512] = {}, scratch[32768], sums[256];
    ASSERT_LE(row.scratchBytes(4, {3, 3, 0, 0}), std::int64_t{sizeof scratch});
    const int columns = row.takes(WINDOW) && !row.is("ConvolveCol") ? 3 : 1;
    const int rows = row.takes(WINDOW) && !row.is("ConvolveRow") ? 3 : 1;
    const int levels[] = {0, 100, 256};
    std::uint8_t *const start = source + 192;
    const Arguments good = {{start, 64},
                            {start, 64},
                            {destination + 128, 64},
                            {start, 64},
                            4,
                            2,
                            row.takes(CODE) ? KRN_WINDOW_3X3 : 1,
                            0,
                            0,
                            source,
                            {columns, rows, 0, 0},
                            1,
                            scratch,
                            sums,
                            {levels, levels, levels, levels},
                            {levels, levels, levels, levels},
                            {3, 3, 3, 3},
                            0,
                            0};
    EXPECT_EQ(row.run(row.kernel, good), KRN_OK);

    std::memset(destination, 0x99, sizeof destination);
    const std::vector<std::uint8_t> untouched(sizeof destination, 0x99);
    for (const Fault &fault : faults) {
        if (!concerns(fault, row))
            continue;
        Arguments one = good, all = good;
        fault.spoil(one);
        EXPECT_EQ(row.run(row.kernel, one), fault.status) << fault.what;
        bool later = false;
        for (const Fault &other : faults) {
            later = later || &other == &fault;
            if (later && concerns(other, row) && (other.status != fault.status || &other == &fault))
                other.spoil(all);
        }
        // The pattern and morphology look at their step before their size.
        const bool stepFirst =
            (row.is("Jaehne") || row.is("Dilate") || row.is("Erode")) && fault.status == KRN_BAD_SIZE;
        EXPECT_EQ(row.run(row.kernel, all), stepFirst ? KRN_BAD_STEP : fault.status) << fault.what << " and more";
        EXPECT_EQ(std::memcmp(destination, untouched.data(), untouched.size()), 0) << fault.what;
    }
}

TEST(KernelRefusals, PointersThenSizesThenStepsThenTestsOfTheirOwn)
{
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex)
        for (const Row &row : allRows())
            if (row.run != nullptr) {
                SCOPED_TRACE(std::string(row.name) + " of build " + std::to_string(krnDispatchIndex));
                testRefusals(row);
            }
    krnDispatchIndex = 0;
}

TEST(KernelRefusals, MorphologyNeedsRoomAroundItsRows)
{
    std::uint8_t image[256] = {}, scratch[64];
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex)
        for (const auto &[step, status] : {std::pair{17, KRN_SHORT_STEP}, {18, KRN_OK}}) {
            EXPECT_EQ(krnDilate8uC3(image + 64, step, 4, 2, scratch), status);
            EXPECT_EQ(krnErode8uC3(image + 64, step, 4, 2, scratch), status);
        }
    krnDispatchIndex = 0;
}

TEST(KernelRefusals, EvenMediansAreRefused)
{
    std::uint8_t source[256] = {}, out = 7, scratch[256];
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        EXPECT_EQ(krnMedian8uC1(source, 16, &out, 1, 1, 1, 2, 3, 0, 0, scratch), KRN_BAD_MASK_SIZE);
        EXPECT_EQ(krnMedian8uC1(source, 16, &out, 1, 1, 1, 3, 4, 0, 0, scratch), KRN_BAD_MASK_SIZE);
        EXPECT_EQ(out, 7);
    }
    krnDispatchIndex = 0;
}

TEST(KernelRefusals, ExtremesNeedBothDestinations)
{
    const float source = 1;
    float result = 2;
    for (krnDispatchIndex = 0; krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        EXPECT_EQ(krnMinMax32fC1(&source, 4, 1, 1, &result, nullptr), KRN_NULL_POINTER);
        EXPECT_EQ(krnMinMax32fC1(&source, 4, 1, 1, nullptr, &result), KRN_NULL_POINTER);
        EXPECT_EQ(result, 2);
    }
    krnDispatchIndex = 0;
}

} // namespace
