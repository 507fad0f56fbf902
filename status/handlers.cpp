// The report handlers of the library: the silent one, standard error, and the message box.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "message_box.h"
#include "orv.h"
#include "trace.h"

namespace {

// exit() rather than abort(), so that the application's at-exit handlers run.
[[noreturn]] void endProcess()
{
    std::exit(1);
}

const char *orElse(const char *text, const char *instead)
{
    return text != nullptr ? text : instead;
}

const char *questionOf(int32_t mode)
{
    switch (mode) {
    case ORV_ErrorModeLeaf:
        return "\n\nErrMode=ORV_ErrorModeLeaf\n\nTerminate the application?";
    case ORV_ErrorModeParent:
        return "\n\nErrMode=ORV_ErrorModeParent\n\nContinue?";
    default:
        return "";
    }
}

// Shows the report with the buttons of the mode. True if the answer is to end the process.
bool isEndWanted(const char *text, int32_t mode)
{
    char caption[40];
    std::snprintf(caption, sizeof caption, "ORV %s", orvGetLibVersion()->Version);
    constexpr unsigned look = orv::MESSAGE_BOX_TASK_MODAL | orv::MESSAGE_BOX_STOP;
    switch (mode) {
    case ORV_ErrorModeLeaf:
        return orv::showMessageBox(text, caption, look | orv::MESSAGE_BOX_YES_NO) == orv::MESSAGE_BOX_ANSWER_YES;
    case ORV_ErrorModeParent:
        return orv::showMessageBox(text, caption, look | orv::MESSAGE_BOX_OK_CANCEL) == orv::MESSAGE_BOX_ANSWER_CANCEL;
    default:
        return false;
    }
}

} // namespace

OrvStatus orvNulDevReport(OrvStatus status, const char *, const char *, const char *, int32_t)
{
    if (orvGetErrMode() == ORV_ErrorModeLeaf)
        endProcess();
    return status;
}

OrvStatus orvStdErrReport(OrvStatus status, const char *func, const char *context, const char *file, int32_t line)
{
    const int32_t mode = orvGetErrMode();
    if (mode == ORV_ErrorModeSilent)
        return status;

    if (orv::isTraceRecord(status))
        std::fprintf(stderr, "\tcalled from");
    else
        std::fprintf(stderr, "\nORV Library Error: %s \n\tin function", orvErrorStr(status));
    if (line > 0 || file != nullptr)
        std::fprintf(stderr, " [%s:%d]", orElse(file, "(null)"), line); // not every runtime prints a null
    std::fprintf(stderr, ":%s", orElse(func, "<unknown>"));
    if (context != nullptr)
        std::fprintf(stderr, status == ORV_STATUS_AUTOTRACE ? "(%s)" : "(): %s", context);
    std::fprintf(stderr, "\n");
    std::fflush(stderr);

    if (mode == ORV_ErrorModeLeaf) {
        std::fprintf(stderr, "ORV Library Error\nErrMode=ORV_ErrModeLeaf\nterminating the application");
        std::fflush(stderr);
        endProcess();
    }
    return status;
}

OrvStatus orvGuiBoxReport(OrvStatus status, const char *func, const char *context, const char *file, int32_t line)
{
    const char *const statusText = orvErrorStr(status);
    const int32_t mode = orvGetErrMode();
    if (mode == ORV_ErrorModeSilent)
        return status;

    func = orElse(func, "<unknown>");
    context = orElse(context, "");
    file = orElse(file, "");
    const std::size_t size =
        std::strlen(context) + std::strlen(statusText) + std::strlen(func) + std::strlen(file) + 200;
    char *const report = static_cast<char *>(std::malloc(size));
    const bool formatted =
        report != nullptr &&
        std::snprintf(report, size,
                      orv::isTraceRecord(status) ? "Called from %s(): [file %s, line %d]\n%s\n\n%s\n(status: %d)%s"
                                                 : "In function %s(): [file %s, line %d]\n%s\n\n%s\n(status: %d)%s",
                      func, file, line < 0 ? 0 : line, context, statusText, status, questionOf(mode)) >= 0;

    // If memory for the report is exhausted, the user is asked all the same.
    const bool ends = isEndWanted(formatted ? report : statusText, mode);
    if (ends)
        orv::showMessageBox("ORV Library: terminating the application", "Win32: Application exit",
                            orv::MESSAGE_BOX_TASK_MODAL | orv::MESSAGE_BOX_INFORMATION | orv::MESSAGE_BOX_OK);
    std::free(report);
    if (ends)
        endProcess();
    return status;
}
