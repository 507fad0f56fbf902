// Records what the library reports while it stands: mode Parent, a clean status, and a handler of its own.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orv.h"

namespace front {

struct Report {
    OrvStatus status;
    std::string function, context, unit;

    bool operator==(const Report &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Report &report)
{
    return out << "{" << report.status << ", " << report.function << ", \"" << report.context << "\", " << report.unit
               << "}";
}

class Reports {
public:
    Reports() : previousMode_(orvGetErrMode()), previousHandler_(orvRedirectError(record))
    {
        EXPECT_EQ(current, nullptr) << "one recorder at a time";
        current = this;
        orvSetErrMode(ORV_ErrorModeParent);
        orvSetErrStatus(ORV_STATUS_OK);
    }
    ~Reports()
    {
        orvRedirectError(previousHandler_);
        orvSetErrMode(previousMode_);
        orvSetErrStatus(ORV_STATUS_OK);
        current = nullptr;
    }
    Reports(const Reports &) = delete;
    Reports &operator=(const Reports &) = delete;

    const std::vector<Report> &all() const { return all_; }
    void clear() { all_.clear(), orvSetErrStatus(ORV_STATUS_OK); }

    // What the handler answers instead of the status that it was told.
    void answer(OrvStatus status) { answers_ = true, answer_ = status; }

private:
    static OrvStatus record(OrvStatus status, const char *function, const char *context, const char *unit,
                            std::int32_t line)
    {
        const auto text = [](const char *given) { return std::string(given != nullptr ? given : "(null)"); };
        current->all_.push_back({status, text(function), text(context), text(unit)});
        EXPECT_GT(line, 0) << current->all_.back();
        return current->answers_ ? current->answer_ : status;
    }

    inline static Reports *current = nullptr;

    std::vector<Report> all_;
    bool answers_ = false;
    OrvStatus answer_ = 0;
    std::int32_t previousMode_;
    OrvErrorCallback previousHandler_;
};

} // namespace front
