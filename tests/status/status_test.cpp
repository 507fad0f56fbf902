// Statuses and their texts, the reporting record, and what a report does to it.
#include <cstdint>
#include <limits>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "orv.h"

namespace {

// Taken before main, so that no test has touched the record yet.
struct Initial {
    OrvStatus status = orvGetErrStatus();
    std::int32_t mode = orvGetErrMode();
    OrvErrorCallback handler = orvRedirectError(nullptr);
};

const Initial initial;

struct Report {
    int calls = 0;
    OrvStatus status = 0;
    const char *func = nullptr;
    const char *context = nullptr;
    const char *file = nullptr;
    std::int32_t line = 0;
    OrvStatus storedMeanwhile = 0;
};

Report report;
OrvStatus answer = 0;

OrvStatus record(OrvStatus status, const char *func, const char *context, const char *file, std::int32_t line)
{
    report = {report.calls + 1, status, func, context, file, line, orvGetErrStatus()};
    return answer;
}

class Reporting : public testing::Test {
protected:
    Reporting()
    {
        report = {};
        answer = 0;
        orvSetErrStatus(0);
        orvSetErrMode(ORV_ErrorModeParent);
        orvRedirectError(record);
    }

    ~Reporting() override
    {
        orvSetErrStatus(0);
        orvSetErrMode(ORV_ErrorModeLeaf);
        orvRedirectError(nullptr);
    }
};

TEST(InitialReporting, IsSilentAndFinal)
{
    EXPECT_EQ(initial.status, 0);
    EXPECT_EQ(initial.mode, 0);
    EXPECT_EQ(initial.handler, orvNulDevReport);
}

TEST(StatusTexts, AreTheTableAndNothingElse)
{
    const std::map<OrvStatus, std::string> texts = {
        {0, "No Error"},
        {-1, "Backtrace"},
        {-3, "Internal error (bad state)"},
        {-4, "Insufficient memory"},
        {-5, "Bad argument"},
        {-6, "Unsupported function"},
        {-7, "Iteration convergence failed"},
        {-8, "Autotrace call"},
        {-9, "Null pointer to an image header"},
        {-10, "Incorrect image size"},
        {-11, "Incorrect offset of ROI of the image"},
        {-12, "Image must be tiled or must have nonzero data pointer"},
        {-13, "Incorrect widthStep of the image"},
        {-14, "Incorrect Color model or channel sequence of the image"},
        {-15, "Incorrect number of channels in the image"},
        {-16, "Number of channels for 1U depth image must be one"},
        {-17, "Incorrect depth value in the image header"},
        {-18, "Incorrect alpha channel number in the image header"},
        {-19, "Incorrect data order value in the image header"},
        {-20, "Incorrect data origin value in the image header"},
        {-21, "Incorrect data alignment value in the image header"},
        {-22, "Null pointer to callback function"},
        {-23, "Incorrect size of the tile"},
        {-24, "Incorrect COI of the image"},
        {-25, "Incorrect size of ROI in the image header"},
        {-26, "Mask image is taled"},
        {-27, "Null pointer"},
        {-28, "Incorrect vector length"},
        {-29, "Incorrect filter structure content"},
        {-30, "Incorrect transform kernel content"},
        {-31, "Incorrect filter ofset value"},
        {-50, "Not implemented"},
        {-110, "Mask. Incorrect image size"},
        {-111, "Mask. Incorrect offset of ROI of the image"},
        {-112, "Mask. Image must be tiled or must have nonzero data pointer"},
        {-113, "Mask. Incorrect widthStep of the image"},
        {-114, "Mask. Incorrect Color model or channel sequence of the image"},
        {-115, "Mask. Incorrect number of channels in the image"},
        {-117, "Mask. Incorrect depth value in the image header"},
        {-118, "Mask. Incorrect alpha channel number in the image header"},
        {-119, "Mask. Incorrect data order value in the image header"},
        {-120, "Mask. Incorrect data origin value in the image header"},
        {-121, "Mask. Incorrect data alignment value in the image header"},
        {-124, "Mask. Incorrect COI of the image"},
        {-125, "Mask. Incorrect size of ROI in the image header"},
    };
    const auto expected = [&](OrvStatus status) {
        const auto entry = texts.find(status);
        return entry != texts.end() ? entry->second : "Unknown error or status code";
    };
    for (OrvStatus status = -300; status <= 300; ++status)
        EXPECT_EQ(orvErrorStr(status), expected(status)) << status;
    for (OrvStatus status : {std::numeric_limits<OrvStatus>::min(), std::numeric_limits<OrvStatus>::max()})
        EXPECT_EQ(orvErrorStr(status), expected(status)) << status;
}

TEST_F(Reporting, KeepsAnyStatusAndMode)
{
    for (std::int32_t value : {0, 1, 2, 3, -1, -8, -50, std::numeric_limits<std::int32_t>::min(),
                               std::numeric_limits<std::int32_t>::max()}) {
        orvSetErrStatus(value);
        orvSetErrMode(value ^ 5);
        EXPECT_EQ(orvGetErrStatus(), value);
        EXPECT_EQ(orvGetErrMode(), value ^ 5);
    }
}

TEST_F(Reporting, AFailureIsStoredAndHandedOnUnchanged)
{
    const char func[] = "orvAbs", context[] = "Incorrect Image", file[] = "orvabs";
    for (OrvStatus status : {-3, -5, -50, -117, 7, 1000}) {
        report = {};
        answer = status - 1; // a handler's own result is the caller's, not the stored one
        EXPECT_EQ(orvError(status, func, context, file, -12), status - 1);
        EXPECT_EQ(report.calls, 1);
        EXPECT_EQ(report.storedMeanwhile, status);
        EXPECT_EQ(orvGetErrStatus(), status);
        EXPECT_EQ(report.status, status);
        EXPECT_EQ(report.func, func);
        EXPECT_EQ(report.context, context);
        EXPECT_EQ(report.file, file);
        EXPECT_EQ(report.line, -12);
    }
}

TEST_F(Reporting, NullTextsReachTheHandler)
{
    orvError(-5, nullptr, nullptr, nullptr, 3);
    EXPECT_EQ(report.calls, 1);
    EXPECT_EQ(report.func, nullptr);
    EXPECT_EQ(report.context, nullptr);
    EXPECT_EQ(report.file, nullptr);
}

TEST_F(Reporting, SuccessClearsTheStatusAndIsNotReported)
{
    orvSetErrStatus(-5);
    answer = -7;
    EXPECT_EQ(orvError(0, "orvAbs", "", "orvabs", 1), 0);
    EXPECT_EQ(orvGetErrStatus(), 0);
    EXPECT_EQ(report.calls, 0);
}

TEST_F(Reporting, TraceRecordsAreReportedAndLeaveTheStatus)
{
    for (OrvStatus status : {-1, -8}) {
        report = {};
        orvSetErrStatus(-17);
        answer = -99;
        EXPECT_EQ(orvError(status, "orvAbs", "", "orvabs", 1), -99);
        EXPECT_EQ(orvGetErrStatus(), -17);
        EXPECT_EQ(report.calls, 1);
        EXPECT_EQ(report.status, status);
    }
}

TEST_F(Reporting, RedirectionGivesThePreviousHandlerAndTakesNull)
{
    EXPECT_EQ(orvRedirectError(orvStdErrReport), record);
    EXPECT_EQ(orvRedirectError(nullptr), orvStdErrReport);
    EXPECT_EQ(orvRedirectError(record), orvNulDevReport);
    orvRedirectError(nullptr);
    EXPECT_EQ(orvError(-5, "orvAbs", "", "orvabs", 1), -5);
    EXPECT_EQ(report.calls, 0);
}

TEST(Version, IsTheRecordedOne)
{
    const OrvLibVersion *version = orvGetLibVersion();
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version, orvGetLibVersion());
    EXPECT_EQ(version->major, 1);
    EXPECT_EQ(version->minor, 0);
    EXPECT_EQ(version->build, 1);
    EXPECT_STREQ(version->Name, "orv.dll");
    EXPECT_STREQ(version->Version, "1.0 Beta");
    EXPECT_STREQ(version->InternalVersion, "[1.0.1.15, 03/04/2002]");
    EXPECT_STREQ(version->BuildDate, "Oct  1 2009");
    EXPECT_STREQ(version->CallConv, "Microsoft*");
}

} // namespace
