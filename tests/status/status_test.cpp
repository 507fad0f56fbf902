// Statuses and their texts, the reporting record, and what a report does to it.
#include <cstdint>
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
    };
    // Texts of headers' statuses serve for masks too; -116, which no mask comes to, has none.
    const auto expected = [&](OrvStatus status) -> std::string {
        const bool ofHeaders = (status <= -110 && status >= -125) && status != -116 && status != -122 && status != -123;
        const auto entry = texts.find(ofHeaders ? status - ORV_STATUS_MASK_BASE : status);
        return entry == texts.end() ? "Unknown error or status code" : (ofHeaders ? "Mask. " : "") + entry->second;
    };
    for (OrvStatus status = -300; status <= 300; ++status)
        EXPECT_EQ(orvErrorStr(status), expected(status)) << status;
    for (OrvStatus status : {INT32_MIN, INT32_MAX})
        EXPECT_EQ(orvErrorStr(status), expected(status)) << status;
}

TEST_F(Reporting, KeepsAnyStatusAndMode)
{
    for (std::int32_t value : {0, 1, 2, 3, -1, -8, -50, INT32_MIN, INT32_MAX}) {
        orvSetErrStatus(value);
        orvSetErrMode(value ^ 5);
        EXPECT_EQ(orvGetErrStatus(), value);
        EXPECT_EQ(orvGetErrMode(), value ^ 5);
    }
}

// A failure is stored, a trace record is not. The texts go on unchanged, and the handler's result is the caller's.
TEST_F(Reporting, IsHandedOnUnchanged)
{
    const char func[] = "orvAbs", context[] = "Incorrect Image", file[] = "orvabs";
    for (const OrvStatus status : {-3, -5, -50, -117, 7, 1000, -1, -8})
        for (const bool given : {true, false}) {
            const bool traces = status == -1 || status == -8;
            report = {};
            orvSetErrStatus(-17);
            answer = status - 1;
            EXPECT_EQ(orvError(status, given ? func : nullptr, given ? context : nullptr, given ? file : nullptr, -12),
                      status - 1);
            EXPECT_EQ(report.calls, 1);
            EXPECT_EQ(report.storedMeanwhile, traces ? -17 : status);
            EXPECT_EQ(orvGetErrStatus(), traces ? -17 : status);
            EXPECT_EQ(report.status, status);
            EXPECT_EQ(report.func, given ? func : nullptr);
            EXPECT_EQ(report.context, given ? context : nullptr);
            EXPECT_EQ(report.file, given ? file : nullptr);
            EXPECT_EQ(report.line, -12);
        }
}

TEST_F(Reporting, SuccessClearsTheStatusAndIsNotReported)
{
    orvSetErrStatus(-5);
    answer = -7;
    EXPECT_EQ(orvError(0, "orvAbs", "", "orvabs", 1), 0);
    EXPECT_EQ(orvGetErrStatus(), 0);
    EXPECT_EQ(report.calls, 0);
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
