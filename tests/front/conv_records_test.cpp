// Convolution records: what they hold, what is refused in which order, and what happens without memory.
#include <algorithm>
#include <type_traits>

#include "front/memory_watch.h"
#include "front/reports.h"
#include "front/test_image.h"

#include <gtest/gtest.h>

namespace front {
namespace {

constexpr std::int32_t untouched = -7;
constexpr int coefficients[6] = {1, -1, -128, 127, 0, 5}; // of any type

// What a get function fills, and which of its pointers are null.
enum Pointer : unsigned { toRows = 1, toColumns = 2, toX = 4, toY = 8, toValues = 16, toShift = 32, toBuffer = 64 };

struct Reading {
    unsigned nulls = 0;
    std::int32_t columns = untouched, rows = untouched, x = untouched, y = untouched, shift = untouched;
    std::vector<int> values = std::vector<int>(6, untouched);

    bool operator==(const Reading &) const = default;
};

// One form of the functions. Records of floats pass as those of integers, whose first fields are the same.
struct Form {
    const char *name, *create, *get, *remove;
    bool shifts;
    OrvConvKernel *(*make)(std::int32_t columns, std::int32_t rows, std::int32_t x, std::int32_t y, bool given);
    void (*read)(const OrvConvKernel *kernel, Reading &reading);
    void (*release)(OrvConvKernel *kernel);
};

template <class Value, auto create>
OrvConvKernel *make(std::int32_t columns, std::int32_t rows, std::int32_t x, std::int32_t y, bool given)
{
    Value values[6];
    std::copy(std::begin(coefficients), std::end(coefficients), values);
    OrvConvKernel *made;
    if constexpr (std::is_same_v<Value, float>)
        made = reinterpret_cast<OrvConvKernel *>(create(columns, rows, x, y, given ? values : nullptr));
    else
        made = create(columns, rows, x, y, given ? values : nullptr, 3);
    std::fill(std::begin(values), std::end(values), Value(99)); // the caller's own
    return made;
}

template <class Value, class Record, auto get> void read(const OrvConvKernel *kernel, Reading &reading)
{
    Value room[6], *values = (reading.nulls & toBuffer) != 0 ? nullptr : room, *const before = values;
    std::fill(std::begin(room), std::end(room), Value(untouched));
    const auto given = [&](Pointer which, auto *pointer) { return (reading.nulls & which) != 0 ? nullptr : pointer; };
    const auto call = [&](auto... shift) {
        get(reinterpret_cast<const Record *>(kernel), given(toColumns, &reading.columns), given(toRows, &reading.rows),
            given(toX, &reading.x), given(toY, &reading.y), given(toValues, &values), shift...);
    };
    if constexpr (std::is_same_v<Value, float>)
        call();
    else
        call(given(toShift, &reading.shift));
    std::copy(std::begin(room), std::end(room), reading.values.begin());
    EXPECT_EQ(values, before);
}

const Form forms[] = {
    {"Ints", "orvCreateConvKernel", "orvGetConvKernel", "orvDeleteConvKernel", true,
     make<std::int32_t, orvCreateConvKernel>, read<std::int32_t, OrvConvKernel, orvGetConvKernel>, orvDeleteConvKernel},
    {"Chars", "orvCreateConvKernelChar", "orvGetConvKernelChar", "orvDeleteConvKernel", true,
     make<signed char, orvCreateConvKernelChar>, read<signed char, OrvConvKernel, orvGetConvKernelChar>,
     orvDeleteConvKernel},
    {"Floats", "orvCreateConvKernelFP", "orvGetConvKernelFP", "orvDeleteConvKernelFP", false,
     make<float, orvCreateConvKernelFP>, read<float, OrvConvKernelFP, orvGetConvKernelFP>,
     [](OrvConvKernel *kernel) { orvDeleteConvKernelFP(reinterpret_cast<OrvConvKernelFP *>(kernel)); }}};

class ConvRecords : public testing::TestWithParam<Form> {
protected:
    ConvRecords() { EXPECT_NE(kernel, nullptr); }
    void TearDown() override
    {
        form.release(kernel);
        EXPECT_TRUE(reports.all().empty());
        EXPECT_EQ(watch.live(), 0u);
    }

    void expectRefused(const char *function, std::vector<const char *> contexts,
                       OrvStatus status = ORV_STATUS_BAD_ARGUMENT)
    {
        std::vector<Report> expected;
        for (const char *context : contexts)
            expected.push_back({status, function, context, "orvcnv2d"});
        EXPECT_EQ(reports.all(), expected);
        EXPECT_EQ(orvGetErrStatus(), status);
        reports.clear();
    }
    void expectUnread(const OrvConvKernel *from, unsigned nulls, std::vector<const char *> contexts)
    {
        Reading reading = {nulls};
        form.read(from, reading);
        expectRefused(form.get, contexts);
        EXPECT_EQ(reading, Reading{nulls});
    }

    const Form &form = GetParam();
    Reports reports;
    MemoryWatch watch;
    OrvConvKernel *kernel = form.make(3, 2, 1, 1, true);
};

TEST_P(ConvRecords, GiveBackWhatTheyWereCreatedWith)
{
    const struct {
        std::int32_t columns, rows, x, y;
    } rows[] = {{1, 1, 0, 0}, {3, 2, 0, 0}, {3, 2, 2, 1}, {2, 3, 0, 2}, {6, 1, 4, 0}, {1, 6, 0, 1}};
    for (const auto &row : rows) {
        OrvConvKernel *one = form.make(row.columns, row.rows, row.x, row.y, true);
        ASSERT_NE(one, nullptr);
        EXPECT_TRUE(one->nCols == row.columns && one->nRows == row.rows);
        EXPECT_TRUE(one->anchorX == row.columns - 1 - row.x && one->anchorY == row.rows - 1 - row.y);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(one->values) % 32, 0u);
        Reading reading, expected = {0, row.columns, row.rows, row.x, row.y, form.shifts ? 3 : untouched};
        std::copy_n(coefficients, row.columns * row.rows, expected.values.begin());
        form.read(one, reading);
        EXPECT_EQ(reading, expected);
        form.release(one);
    }
}

// With two faults in a row the earlier check finds its own. Memory is asked for last.
TEST_P(ConvRecords, RefuseToBeCreated)
{
    constexpr const char *null = "(values == 0)", *size = "(nRows<=0 || nCols<=0)",
                         *anchor = "(anchorX<0 || anchorY<0 || nRows<=anchorY || nCols<=anchorX)";
    const struct {
        bool valuesGiven;
        std::int32_t columns, rows, x, y;
        const char *context;
    } rows[] = {{false, 0, 2, 5, 0, null},   {false, 3, 2, 1, 1, null},       {true, 0, 2, 0, 0, size},
                {true, 3, 0, 0, 0, size},    {true, -1, 2, -1, 0, size},      {true, leastInt, leastInt, 0, 0, size},
                {true, 3, 2, -1, 0, anchor}, {true, 3, 2, 0, -1, anchor},     {true, 3, 2, 3, 0, anchor},
                {true, 3, 2, 0, 2, anchor},  {true, 3, 2, mostInt, 0, anchor}};
    watch.forget();
    for (const auto &row : rows) {
        EXPECT_EQ(form.make(row.columns, row.rows, row.x, row.y, row.valuesGiven), nullptr);
        expectRefused(form.create, {row.context});
    }
    EXPECT_EQ(watch.allocations(), 0);
}

TEST_P(ConvRecords, NeedMemory)
{
    const std::size_t live = watch.live();
    const struct {
        std::int32_t columns, rows;
        int failing; // or more bytes of coefficients than 31 bits can say: 2^31, 2^32 + 4 and nearly 2^64
    } rows[] = {{3, 2, 0},          {3, 2, 1},
                {1 << 29, 1, -1},   {(1 << 15) + 1, 1 << 15, -1},
                {65537, 65521, -1}, {mostInt, mostInt, -1}};
    for (const auto &row : rows) {
        watch.forget();
        if (row.failing >= 0)
            watch.failAt(row.failing);
        EXPECT_EQ(form.make(row.columns, row.rows, 0, 0, true), nullptr);
        expectRefused(form.create, {"Allocation failure"}, ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(watch.live(), live);
    }
}

// Each set of null pointers, and the reports of the first step that finds one.
TEST_P(ConvRecords, ReportNullPointers)
{
    const struct {
        Pointer pointer;
        int step;
        const char *context;
    } rows[] = {{toRows, 1, "nRows==0"}, {toColumns, 1, "nCols==0"}, {toX, 2, "anchorX==0"},
                {toY, 2, "anchorY==0"},  {toValues, 3, "values==0"}, {toShift, 4, "nShiftR==0"}};
    for (unsigned nulls = 1; nulls < (form.shifts ? 64u : 32u); ++nulls) {
        SCOPED_TRACE(nulls);
        std::vector<const char *> contexts;
        int first = 0;
        for (const auto &[pointer, step, context] : rows)
            if ((nulls & pointer) != 0 && (first == 0 || first == step)) {
                first = step;
                contexts.push_back(context);
            }
        expectUnread(kernel, nulls, contexts);
    }
}

TEST_P(ConvRecords, ReportBadStructure)
{
    const struct {
        std::int32_t columns, rows, x, y;
    } rows[] = {{3, 0, 0, 0}, {0, 2, 0, 0}, {-1, -1, 0, 0}, {3, 2, -1, 0}, {3, 2, 0, -1}, {3, 2, 0, 2}, {3, 2, 3, 0}};
    for (const auto &[columns, height, x, y] : rows) {
        const OrvConvKernel record = {columns, height, x, y, nullptr, 0};
        expectUnread(&record, toRows | toX, {"Bad kernel structure"});
    }
    expectUnread(nullptr, 0, {"kernel==0"});
}

// A negative status of an earlier call stops the reading silently, behind the tests of the sizes' pointers and before
// those of the anchors'; what is no failure does not.
TEST_P(ConvRecords, LeftoverStatusStopsTheReading)
{
    for (const OrvStatus leftover : {ORV_STATUS_BACKTRACE + 0, ORV_STATUS_BAD_COI + 0, leastInt}) {
        orvSetErrStatus(leftover);
        Reading reading = {toX};
        form.read(kernel, reading);
        EXPECT_TRUE(reports.all().empty());
        EXPECT_EQ(orvGetErrStatus(), leftover);
        EXPECT_EQ(reading, Reading{toX});
        expectUnread(kernel, toX | toColumns, {"nCols==0"});
    }
    orvSetErrStatus(1);
    Reading reading;
    form.read(kernel, reading);
    EXPECT_EQ(reading.columns, 3);
    EXPECT_EQ(orvGetErrStatus(), 1);
}

TEST_P(ConvRecords, ReadWithoutCoefficients)
{
    const OrvConvKernel record = {3, 2, 0, 0, nullptr, 0};
    Reading withoutTheirs, withoutOurs = {toBuffer};
    form.read(&record, withoutTheirs);
    EXPECT_EQ(withoutTheirs, (Reading{0, 3, 2, 2, 1, form.shifts ? 0 : untouched}));
    form.read(kernel, withoutOurs);
    EXPECT_EQ(withoutOurs.columns, 3);
}

TEST_P(ConvRecords, ReportWhatCannotBeDeleted)
{
    const std::size_t live = watch.live();
    std::int32_t *values = kernel->values;
    kernel->values = nullptr;
    form.release(kernel);
    expectRefused(form.remove, {"kernel->values==0"});
    EXPECT_EQ(watch.live(), live);
    form.release(nullptr);
    expectRefused(form.remove, {"kernel==0"});
    kernel->values = values;
}

INSTANTIATE_TEST_SUITE_P(All, ConvRecords, testing::ValuesIn(forms), [](const auto &form) { return form.param.name; });

// Between the two integer forms: bytes are widened with their sign, and read back by their low byte, whatever there is.
TEST(ConvRecordsOfBytes, WidenAndNarrow)
{
    Reports reports;
    const std::int32_t ints[] = {300, -129, 128, -1, leastInt, mostInt};
    const signed char low[] = {44, 127, -128, -1, 0, -1};
    signed char bytes[6], *bytesGiven = bytes;
    std::int32_t columns, rows, x, y, shift, wide[6], *wideGiven = wide;

    OrvConvKernel *kernel = orvCreateConvKernel(6, 1, 0, 0, ints, -3); // any shift
    ASSERT_NE(kernel, nullptr);
    orvGetConvKernelChar(kernel, &columns, &rows, &x, &y, &bytesGiven, &shift);
    EXPECT_EQ(shift, -3);
    EXPECT_TRUE(std::equal(std::begin(bytes), std::end(bytes), low));
    orvDeleteConvKernel(kernel);

    kernel = orvCreateConvKernelChar(6, 1, 0, 0, low, mostInt);
    ASSERT_NE(kernel, nullptr);
    orvGetConvKernel(kernel, &columns, &rows, &x, &y, &wideGiven, &shift);
    EXPECT_EQ(shift, mostInt);
    EXPECT_TRUE(std::equal(std::begin(wide), std::end(wide), low));
    orvDeleteConvKernel(kernel);
    EXPECT_TRUE(reports.all().empty());
}

} // namespace
} // namespace front
