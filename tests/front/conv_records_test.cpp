// Convolution records: what they hold, what is refused in which order, and what happens without memory.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "front/memory_watch.h"
#include "front/reports.h"

namespace front {
namespace {

constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t leastInt = std::numeric_limits<std::int32_t>::min();

// The three forms of the functions, with the same signatures; that of floats has no shift and does nothing with one.
struct OfInts {
    using Record = OrvConvKernel;
    using Value = std::int32_t;
    static constexpr const char *createName = "orvCreateConvKernel", *getName = "orvGetConvKernel",
                                *deleteName = "orvDeleteConvKernel";
    static constexpr bool shifts = true;

    static Record *create(std::int32_t columns, std::int32_t rows, std::int32_t x, std::int32_t y, const Value *values)
    {
        return orvCreateConvKernel(columns, rows, x, y, values, 3);
    }
    static void get(const Record *kernel, std::int32_t *columns, std::int32_t *rows, std::int32_t *x, std::int32_t *y,
                    Value **values, std::int32_t *shift)
    {
        orvGetConvKernel(kernel, columns, rows, x, y, values, shift);
    }
    static void release(Record *kernel) { orvDeleteConvKernel(kernel); }
};

struct OfChars : OfInts {
    using Value = signed char;
    static constexpr const char *createName = "orvCreateConvKernelChar", *getName = "orvGetConvKernelChar";

    static Record *create(std::int32_t columns, std::int32_t rows, std::int32_t x, std::int32_t y, const Value *values)
    {
        return orvCreateConvKernelChar(columns, rows, x, y, values, 3);
    }
    static void get(const Record *kernel, std::int32_t *columns, std::int32_t *rows, std::int32_t *x, std::int32_t *y,
                    Value **values, std::int32_t *shift)
    {
        orvGetConvKernelChar(kernel, columns, rows, x, y, values, shift);
    }
};

struct OfFloats {
    using Record = OrvConvKernelFP;
    using Value = float;
    static constexpr const char *createName = "orvCreateConvKernelFP", *getName = "orvGetConvKernelFP",
                                *deleteName = "orvDeleteConvKernelFP";
    static constexpr bool shifts = false;

    static Record *create(std::int32_t columns, std::int32_t rows, std::int32_t x, std::int32_t y, const Value *values)
    {
        return orvCreateConvKernelFP(columns, rows, x, y, values);
    }
    static void get(const Record *kernel, std::int32_t *columns, std::int32_t *rows, std::int32_t *x, std::int32_t *y,
                    Value **values, std::int32_t *)
    {
        orvGetConvKernelFP(kernel, columns, rows, x, y, values);
    }
    static void release(Record *kernel) { orvDeleteConvKernelFP(kernel); }
};

template <class Form> class ConvRecords : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(watch.live(), 0u); }

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

    Reports reports;
    MemoryWatch watch;
    const typename Form::Value given[6] = {1, -1, -128, 127, 0, 5};
};

using Forms = testing::Types<OfInts, OfChars, OfFloats>;
TYPED_TEST_SUITE(ConvRecords, Forms);

TYPED_TEST(ConvRecords, GiveBackWhatTheyWereCreatedWith)
{
    using Value = typename TypeParam::Value;
    const struct {
        std::int32_t columns, rows, x, y;
    } rows[] = {{1, 1, 0, 0}, {3, 2, 0, 0}, {3, 2, 2, 1}, {2, 3, 0, 2}, {6, 1, 4, 0}, {1, 6, 0, 1}};
    for (const auto &row : rows) {
        Value copied[6] = {};
        const int count = row.columns * row.rows;
        for (int i = 0; i < count; ++i)
            copied[i] = this->given[i];
        auto *kernel = TypeParam::create(row.columns, row.rows, row.x, row.y, copied);
        ASSERT_NE(kernel, nullptr);
        copied[0] = Value(99); // the caller's own
        EXPECT_TRUE(kernel->nCols == row.columns && kernel->nRows == row.rows);
        EXPECT_TRUE(kernel->anchorX == row.columns - 1 - row.x && kernel->anchorY == row.rows - 1 - row.y);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(kernel->values) % 32, 0u);

        std::int32_t columns = -1, height = -1, x = -1, y = -1, shift = -1;
        std::vector<Value> read(static_cast<std::size_t>(count) + 1, Value(77));
        Value *values = read.data();
        TypeParam::get(kernel, &columns, &height, &x, &y, &values, &shift);
        EXPECT_TRUE(columns == row.columns && height == row.rows && x == row.x && y == row.y);
        EXPECT_EQ(shift, TypeParam::shifts ? 3 : -1);
        EXPECT_EQ(values, read.data());
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(kernel->values[i], this->given[i]);
            EXPECT_EQ(read[static_cast<std::size_t>(i)], this->given[i]);
        }
        EXPECT_EQ(read.back(), Value(77));
        TypeParam::release(kernel);
    }
    EXPECT_TRUE(this->reports.all().empty());
}

// With two faults in a row the earlier check finds its own.
TYPED_TEST(ConvRecords, RefuseToBeCreated)
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
    this->watch.failAll(); // memory is asked for last
    for (const auto &row : rows) {
        EXPECT_EQ(TypeParam::create(row.columns, row.rows, row.x, row.y, row.valuesGiven ? this->given : nullptr),
                  nullptr);
        this->expectRefused(TypeParam::createName, {row.context});
    }
    EXPECT_EQ(this->watch.allocations(), 0);
}

TYPED_TEST(ConvRecords, NeedMemory)
{
    for (const int failing : {0, 1}) {
        this->watch.failAt(failing);
        EXPECT_EQ(TypeParam::create(3, 2, 1, 1, this->given), nullptr);
        this->expectRefused(TypeParam::createName, {"Allocation failure"}, ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(this->watch.live(), 0u);
    }
    EXPECT_EQ(this->watch.allocations(), 3);

    // More bytes of coefficients than 31 bits can say: 2^31, 2^32 + 4 and nearly 2^64.
    const struct {
        std::int32_t columns, rows;
    } sizes[] = {{1 << 29, 1}, {(1 << 15) + 1, 1 << 15}, {65537, 65521}, {mostInt, mostInt}};
    for (const auto &size : sizes) {
        EXPECT_EQ(TypeParam::create(size.columns, size.rows, 0, 0, this->given), nullptr);
        this->expectRefused(TypeParam::createName, {"Allocation failure"}, ORV_STATUS_NO_MEMORY);
        EXPECT_EQ(this->watch.live(), 0u);
    }
}

// The arguments of a get function, all given, to be taken away one by one.
template <class Form> struct Reading {
    typename Form::Value room[6] = {}, *values = room, **valuesGiven = &values;
    std::int32_t columns = -7, rows = -7, x = -7, y = -7, shift = -7;
    std::int32_t *columnsGiven = &columns, *rowsGiven = &rows, *xGiven = &x, *yGiven = &y, *shiftGiven = &shift;

    void of(const typename Form::Record *kernel)
    {
        Form::get(kernel, columnsGiven, rowsGiven, xGiven, yGiven, valuesGiven, shiftGiven);
    }
    bool nothingWritten() const
    {
        for (const auto value : room)
            if (value != 0)
                return false;
        return columns == -7 && rows == -7 && x == -7 && y == -7 && shift == -7;
    }
};

// Each set of null pointers, and the reports of the first step that finds one.
TYPED_TEST(ConvRecords, ReportNullPointers)
{
    auto *kernel = TypeParam::create(3, 2, 1, 1, this->given);
    ASSERT_NE(kernel, nullptr);
    for (unsigned null = 1; null < (TypeParam::shifts ? 64u : 32u); ++null) {
        Reading<TypeParam> reading;
        std::vector<const char *> size, anchor, last;
        if ((null & 1) != 0)
            reading.rowsGiven = nullptr, size.push_back("nRows==0");
        if ((null & 2) != 0)
            reading.columnsGiven = nullptr, size.push_back("nCols==0");
        if ((null & 4) != 0)
            reading.xGiven = nullptr, anchor.push_back("anchorX==0");
        if ((null & 8) != 0)
            reading.yGiven = nullptr, anchor.push_back("anchorY==0");
        if ((null & 32) != 0)
            reading.shiftGiven = nullptr, last = {"nShiftR==0"};
        if ((null & 16) != 0)
            reading.valuesGiven = nullptr, last = {"values==0"};
        reading.of(kernel);
        this->expectRefused(TypeParam::getName, !size.empty() ? size : !anchor.empty() ? anchor : last);
        EXPECT_TRUE(reading.nothingWritten()) << null;
    }
    TypeParam::release(kernel);
}

TYPED_TEST(ConvRecords, ReportBadStructure)
{
    const struct {
        std::int32_t columns, rows, x, y;
    } rows[] = {{3, 0, 0, 0}, {0, 2, 0, 0}, {-1, -1, 0, 0}, {3, 2, -1, 0}, {3, 2, 0, -1}, {3, 2, 0, 2}, {3, 2, 3, 0}};
    typename TypeParam::Record record = {};
    for (const auto &row : rows) {
        record.nCols = row.columns;
        record.nRows = row.rows;
        record.anchorX = row.x;
        record.anchorY = row.y;
        Reading<TypeParam> reading;
        reading.rowsGiven = reading.xGiven = nullptr; // of later steps
        reading.of(&record);
        this->expectRefused(TypeParam::getName, {"Bad kernel structure"});
        EXPECT_TRUE(reading.nothingWritten());
    }
    Reading<TypeParam> reading;
    reading.of(nullptr);
    this->expectRefused(TypeParam::getName, {"kernel==0"});
    EXPECT_TRUE(reading.nothingWritten());
}

// A negative status of an earlier call stops the reading silently, behind the tests of the sizes' pointers and before
// those of the anchors'; what is no failure does not.
TYPED_TEST(ConvRecords, LeftoverStatusStopsTheReading)
{
    auto *kernel = TypeParam::create(3, 2, 1, 1, this->given);
    ASSERT_NE(kernel, nullptr);
    for (const OrvStatus leftover : {ORV_STATUS_BACKTRACE + 0, ORV_STATUS_BAD_COI + 0, leastInt}) {
        orvSetErrStatus(leftover);
        Reading<TypeParam> reading;
        reading.xGiven = nullptr;
        reading.of(kernel);
        EXPECT_TRUE(this->reports.all().empty());
        EXPECT_EQ(orvGetErrStatus(), leftover);
        EXPECT_TRUE(reading.nothingWritten());

        reading.columnsGiven = nullptr;
        reading.of(kernel);
        this->expectRefused(TypeParam::getName, {"nCols==0"});
    }
    orvSetErrStatus(1);
    Reading<TypeParam> reading;
    reading.of(kernel);
    EXPECT_EQ(reading.columns, 3);
    EXPECT_EQ(orvGetErrStatus(), 1);
    TypeParam::release(kernel);
}

TYPED_TEST(ConvRecords, ReadWithoutCoefficients)
{
    typename TypeParam::Record record = {};
    record.nCols = 3;
    record.nRows = 2;
    Reading<TypeParam> withoutTheirs, withoutOurs;
    withoutTheirs.of(&record);
    EXPECT_TRUE(withoutTheirs.columns == 3 && withoutTheirs.rows == 2);
    EXPECT_TRUE(withoutTheirs.x == 2 && withoutTheirs.y == 1);
    EXPECT_EQ(withoutTheirs.room[0], 0);

    auto *kernel = TypeParam::create(3, 2, 1, 1, this->given);
    ASSERT_NE(kernel, nullptr);
    withoutOurs.values = nullptr;
    withoutOurs.of(kernel);
    EXPECT_EQ(withoutOurs.columns, 3);
    EXPECT_EQ(withoutOurs.values, nullptr);
    TypeParam::release(kernel);
    EXPECT_TRUE(this->reports.all().empty());
}

TYPED_TEST(ConvRecords, ReportWhatCannotBeDeleted)
{
    auto *kernel = TypeParam::create(3, 2, 1, 1, this->given);
    ASSERT_NE(kernel, nullptr);
    auto *values = kernel->values;
    kernel->values = nullptr;
    TypeParam::release(kernel);
    this->expectRefused(TypeParam::deleteName, {"kernel->values==0"});
    EXPECT_EQ(this->watch.live(), 2u);
    TypeParam::release(nullptr);
    this->expectRefused(TypeParam::deleteName, {"kernel==0"});
    kernel->values = values;
    TypeParam::release(kernel);
    EXPECT_TRUE(this->reports.all().empty());
}

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
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(bytes[i], low[i]) << ints[i];
    orvDeleteConvKernel(kernel);

    kernel = orvCreateConvKernelChar(6, 1, 0, 0, low, mostInt);
    ASSERT_NE(kernel, nullptr);
    orvGetConvKernel(kernel, &columns, &rows, &x, &y, &wideGiven, &shift);
    EXPECT_EQ(shift, mostInt);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(wide[i], low[i]);
    orvDeleteConvKernel(kernel);
    EXPECT_TRUE(reports.all().empty());
}

} // namespace
} // namespace front
