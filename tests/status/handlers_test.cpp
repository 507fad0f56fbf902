// The report handlers: what they write or show to the letter, and when they end the process.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#if defined(__unix__)
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <gtest/gtest.h>

#include "message_box.h"
#include "orv.h"

namespace {

using testing::Eq;
using testing::ExitedWithCode;

constexpr int answerOk = 1, answerCancel = 2, answerYes = 6, answerNo = 7;
constexpr std::int32_t otherMode = 77;

struct Box {
    std::string text;
    std::string caption;
    unsigned flags;

    bool operator==(const Box &) const = default;
};

void PrintTo(const Box &box, std::ostream *out)
{
    *out << "{" << box.caption << " | " << box.text << " | 0x" << std::hex << box.flags << std::dec << "}";
}

std::vector<Box> shown;
int pressed = answerOk;

int recordBox(const char *text, const char *caption, unsigned flags)
{
    shown.push_back({text, caption, flags});
    return pressed;
}

// For a process that is to end: what it showed is told on its standard error stream.
int writeBox(const char *text, const char *caption, unsigned flags)
{
    std::cerr << "{" << caption << " | " << text << " | 0x" << std::hex << flags << std::dec << "}";
    return pressed;
}

class Handlers : public testing::Test {
protected:
    Handlers()
    {
        shown.clear();
        orv::messageBoxFunction = recordBox;
    }

    ~Handlers() override
    {
        orv::messageBoxFunction = originalBox;
        orvSetErrStatus(0);
        orvSetErrMode(ORV_ErrorModeLeaf);
        orvRedirectError(nullptr);
    }

private:
    int (*originalBox)(const char *, const char *, unsigned) = orv::messageBoxFunction;
};

using HandlersDeathTest = Handlers;

void sayGoodbyeAtExit()
{
    std::atexit([] { std::cerr << "[goodbye]"; });
}

TEST_F(HandlersDeathTest, SilentHandlerEndsALeafWithoutAWord)
{
    EXPECT_EXIT(orvNulDevReport(-5, "f", "c", "u", 1), ExitedWithCode(1), Eq(""));
    EXPECT_EXIT(orvError(-9, "orvAbs", "Incorrect Image", "orvabs", 1), ExitedWithCode(1), Eq(""));
    EXPECT_EXIT(
        {
            sayGoodbyeAtExit();
            orvNulDevReport(-5, "f", "c", "u", 1);
        },
        ExitedWithCode(1), Eq("[goodbye]"));
}

// A report as a handler gets it, and what the handler makes of it.
struct Case {
    OrvStatus status;
    const char *func, *context, *file;
    std::int32_t line;
    const char *text;

    // The status comes back, and nothing but this appears on the standard error stream.
    void expectWritten(OrvErrorCallback handler, const std::string &written) const
    {
        SCOPED_TRACE(text);
        testing::internal::CaptureStderr();
        const OrvStatus result = handler(status, func, context, file, line);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), written);
        EXPECT_EQ(result, status);
    }
};

TEST_F(Handlers, AreSilentInTheseModes)
{
    const struct {
        OrvErrorCallback handler;
        std::vector<std::int32_t> modes;
    } rows[] = {{orvNulDevReport, {ORV_ErrorModeParent, ORV_ErrorModeSilent, -1, otherMode}},
                {orvStdErrReport, {ORV_ErrorModeSilent}},
                {orvGuiBoxReport, {ORV_ErrorModeSilent, -1, 3, otherMode}}};
    for (const auto &[handler, modes] : rows)
        for (const std::int32_t mode : modes)
            for (const Case &report : {Case{-5, "f", "c", "u", 1, ""}, Case{-1, nullptr, nullptr, nullptr, 0, ""},
                                       Case{-8, nullptr, nullptr, nullptr, 1, ""}, Case{3, "", "", "", 0, ""}}) {
                orvSetErrMode(mode);
                report.expectWritten(handler, "");
            }
    EXPECT_TRUE(shown.empty());
}

TEST_F(Handlers, StandardErrorHandlerWritesToTheLetter)
{
    const Case cases[] = {
        {-9, "orvAbs", "Incorrect Image", "orvabs", 41,
         "\nORV Library Error: Null pointer to an image header \n\tin function [orvabs:41]:orvAbs(): Incorrect "
         "Image\n"},
        {-50, "orvAbs", "", "orvabs", 7,
         "\nORV Library Error: Not implemented \n\tin function [orvabs:7]:orvAbs(): \n"},
        {-2, "f", nullptr, "u", 1, "\nORV Library Error: Unknown error or status code \n\tin function [u:1]:f\n"},
        {0, "f", "c", nullptr, 0, "\nORV Library Error: No Error \n\tin function:f(): c\n"},
        {-5, "f", "c", nullptr, -3, "\nORV Library Error: Bad argument \n\tin function:f(): c\n"},
        {-5, "f", "c", nullptr, 1, "\nORV Library Error: Bad argument \n\tin function [(null):1]:f(): c\n"},
        {-5, "f", "c", "u", 0, "\nORV Library Error: Bad argument \n\tin function [u:0]:f(): c\n"},
        {-5, "f", "c", "u", -3, "\nORV Library Error: Bad argument \n\tin function [u:-3]:f(): c\n"},
        {-5, nullptr, "c", "u", 5, "\nORV Library Error: Bad argument \n\tin function [u:5]:<unknown>(): c\n"},
        {-5, nullptr, nullptr, nullptr, 0, "\nORV Library Error: Bad argument \n\tin function:<unknown>\n"},
        {-5, "100%s", "%d%n", "%x", 5, "\nORV Library Error: Bad argument \n\tin function [%x:5]:100%s(): %d%n\n"},
        {-1, "f", "c", "u", 5, "\tcalled from [u:5]:f(): c\n"},
        {-1, nullptr, nullptr, nullptr, 0, "\tcalled from:<unknown>\n"},
        {-8, "f", "a, b", "u", 5, "\tcalled from [u:5]:f(a, b)\n"},
        {-8, "f", "", nullptr, 2, "\tcalled from [(null):2]:f()\n"},
        {-8, "f", nullptr, "u", 5, "\tcalled from [u:5]:f\n"},
    };
    for (std::int32_t mode : {1, -1, otherMode})
        for (const Case &c : cases) {
            orvSetErrMode(mode);
            orvSetErrStatus(-31);
            c.expectWritten(orvStdErrReport, c.text);
            EXPECT_EQ(orvGetErrStatus(), -31);
        }
}

TEST_F(HandlersDeathTest, StandardErrorHandlerEndsALeaf)
{
    const std::string ending = "ORV Library Error\nErrMode=ORV_ErrModeLeaf\nterminating the application";
    EXPECT_EXIT(
        {
            sayGoodbyeAtExit();
            orvStdErrReport(-4, "orvAbs", "Not enough memory", "orvabs", 12);
        },
        ExitedWithCode(1),
        Eq("\nORV Library Error: Insufficient memory \n\tin function [orvabs:12]:orvAbs(): Not enough memory\n" +
           ending + "[goodbye]"));
    EXPECT_EXIT(orvStdErrReport(-1, "f", nullptr, nullptr, 0), ExitedWithCode(1), Eq("\tcalled from:f\n" + ending));
}

TEST_F(Handlers, BoxHandlerFormatsItsText)
{
    const Case cases[] = {
        {-9, "orvAbs", "Incorrect Image", "orvabs", 41,
         "In function orvAbs(): [file orvabs, line 41]\nIncorrect Image\n\nNull pointer to an image header\n(status: "
         "-9)"},
        {-5, nullptr, nullptr, nullptr, -1, "In function <unknown>(): [file , line 0]\n\n\nBad argument\n(status: -5)"},
        {3, "f", "", "u", INT32_MAX,
         "In function f(): [file u, line 2147483647]\n\n\nUnknown error or status code\n(status: 3)"},
        {-1, "f", "c", "u", 2, "Called from f(): [file u, line 2]\nc\n\nBacktrace\n(status: -1)"},
        {-8, nullptr, "%s%n", nullptr, 0,
         "Called from <unknown>(): [file , line 0]\n%s%n\n\nAutotrace call\n(status: -8)"},
    };
    const struct {
        std::int32_t mode;
        int answer;
        unsigned flags;
        const char *tail;
    } asked[] = {
        {ORV_ErrorModeParent, answerOk, 0x2011, "\n\nErrMode=ORV_ErrorModeParent\n\nContinue?"},
        {ORV_ErrorModeLeaf, answerNo, 0x2014, "\n\nErrMode=ORV_ErrorModeLeaf\n\nTerminate the application?"},
    };
    for (const auto &a : asked)
        for (const Case &c : cases) {
            shown.clear();
            orvSetErrMode(a.mode);
            pressed = a.answer;
            c.expectWritten(orvGuiBoxReport, "");
            EXPECT_EQ(shown, (std::vector<Box>{{std::string(c.text) + a.tail, "ORV 1.0 Beta", a.flags}}));
        }
}

TEST_F(Handlers, BoxHandlerHoldsTextsOfAnyLength)
{
    orvSetErrMode(ORV_ErrorModeParent);
    pressed = answerOk;
    const std::string texts[][3] = {{"f", std::string(100'000, 'c'), "u"},
                                    {std::string(1000, 'n'), "", std::string(1000, 'u')}};
    for (const auto &[func, context, file] : texts) {
        shown.clear();
        orvGuiBoxReport(-5, func.c_str(), context.c_str(), file.c_str(), 1);
        ASSERT_EQ(shown.size(), 1u);
        EXPECT_TRUE(shown[0].text == "In function " + func + "(): [file " + file + ", line 1]\n" + context +
                                         "\n\nBad argument\n(status: -5)\n\nErrMode=ORV_ErrorModeParent\n\nContinue?");
    }
}

TEST_F(HandlersDeathTest, BoxHandlerEndsTheProcessOnRequest)
{
    const std::string farewell =
        "{Win32: Application exit | ORV Library: terminating the application | 0x2040}[goodbye]";
    const std::string report = "{ORV 1.0 Beta | In function f(): [file u, line 1]\nc\n\nBad argument\n(status: -5)\n\n";
    const struct {
        std::int32_t mode;
        int answer;
        std::string written;
    } cases[] = {
        {ORV_ErrorModeLeaf, answerYes, report + "ErrMode=ORV_ErrorModeLeaf\n\nTerminate the application? | 0x2014}"},
        {ORV_ErrorModeParent, answerCancel, report + "ErrMode=ORV_ErrorModeParent\n\nContinue? | 0x2011}"},
    };
    for (const auto &c : cases) {
        orvSetErrMode(c.mode);
        pressed = c.answer;
        EXPECT_EXIT(
            {
                orv::messageBoxFunction = writeBox;
                sayGoodbyeAtExit();
                orvGuiBoxReport(-5, "f", "c", "u", 1);
            },
            ExitedWithCode(1), Eq(c.written + farewell));
    }
}

// Where memory is exhausted the box shows the text of the status alone. Memory is taken from a child process by
// forbidding it to grow; a sanitizer's allocator would not survive that.
#if defined(__has_feature)
#define ORV_TEST_HAS_FEATURE(feature) __has_feature(feature)
#else
#define ORV_TEST_HAS_FEATURE(feature) 0
#endif
#if defined(__unix__) && !defined(__SANITIZE_ADDRESS__) && !ORV_TEST_HAS_FEATURE(address_sanitizer)
// An emulator of another processor may let a process grow all the same.
bool canForbidGrowth(std::size_t bytes)
{
    const pid_t child = fork();
    if (child == 0) {
        const rlimit none = {};
        setrlimit(RLIMIT_AS, &none);
        _exit(mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED ? 0 : 1);
    }
    int status = 1;
    return waitpid(child, &status, 0) == child && status == 0;
}

TEST_F(HandlersDeathTest, BoxHandlerAsksAlsoWithExhaustedMemory)
{
    const std::string context(64 * 1024 * 1024, 'c');
    if (!canForbidGrowth(context.size()))
        GTEST_SKIP() << "the system lets a process grow beyond its limit";
    orvSetErrMode(ORV_ErrorModeLeaf);
    pressed = answerYes;
    const rlimit none = {};
    EXPECT_EXIT(
        {
            orv::messageBoxFunction = writeBox;
            if (setrlimit(RLIMIT_AS, &none) == 0)
                orvGuiBoxReport(-5, "f", context.c_str(), "u", 1);
        },
        ExitedWithCode(1),
        Eq("{ORV 1.0 Beta | Bad argument | 0x2014}"
           "{Win32: Application exit | ORV Library: terminating the application | 0x2040}"));
}
#endif

} // namespace
