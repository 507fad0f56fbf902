// A call of an exported function: its checks in their order, and the one place that reports.
//
//     Call call(unitName);
//     if (call.refuses(checkHeaders(srcImage, dstImage)) ||
//         call.refuses(dstImage->depth == ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "For processing depth 32F ..."))
//         return call.report();
//     return call.result(run(srcImage, dstImage));
//
// A check is evaluated only if those before it did not refuse, so it may rely on them.
#pragma once

#include <cstdint>

#include "comparisons.h"
#include "orv.h"

namespace orv {

class Call {
public:
    // `unit` is the name of the source in reports. The function is the exported one in which the object is made.
    explicit Call(const char *unit, const char *function = __builtin_FUNCTION()) : unit_(unit), function_(function) {}

    // A check, or a list of them. What it refuses is kept for report(), with the line of the check.
    bool refuses(const Refusal &refusal, std::int32_t line = __builtin_LINE())
    {
        refusal_ = refusal;
        line_ = line;
        return refusal.status != ORV_STATUS_OK;
    }
    bool refuses(bool condition, OrvStatus status, const char *text, std::int32_t line = __builtin_LINE())
    {
        return refuses(condition ? Refusal{status, text} : nothingRefused, line);
    }

    // A check that is reported at once, and lets the call go on. ended() decides later.
    void reports(bool condition, OrvStatus status, const char *text, std::int32_t line = __builtin_LINE())
    {
        if (refuses(condition, status, text, line))
            report();
        refusal_ = nothingRefused;
    }

    // Whether the stored status ends the call, be it that of an earlier one.
    static bool ended() { return orvGetErrStatus() < 0; }

    // Reports what was refused. The result is what the handler answers, for the function to return.
    OrvStatus report() const { return orvError(refusal_.status, function_, refusal_.text, unit_, line_); }

    // The same for functions that return something else.
    template <class Result> Result reportAs(Result result) const
    {
        report();
        return result;
    }

    // The result of a frame as that of the call: success, exhausted memory with its text, or a depth that is not
    // served.
    OrvStatus result(OrvStatus status, const char *noMemory = "Not enough memory", std::int32_t line = __builtin_LINE())
    {
        return refuses(status != ORV_STATUS_OK, status, status == ORV_STATUS_NO_MEMORY ? noMemory : "", line)
                   ? report()
                   : ORV_STATUS_OK;
    }

private:
    const char *unit_, *function_;
    Refusal refusal_ = nothingRefused;
    std::int32_t line_ = 0;
};

} // namespace orv
