// The recorder of reports.
#include "front/reports.h"

#include <ostream>

#include <gtest/gtest.h>

namespace front {

Reports *Reports::current = nullptr;

std::ostream &operator<<(std::ostream &out, const Report &report)
{
    return out << "{" << report.status << ", " << report.function << ", \"" << report.context << "\", " << report.unit
               << "}";
}

Reports::Reports() : previousMode_(orvGetErrMode()), previousHandler_(orvRedirectError(record))
{
    EXPECT_EQ(current, nullptr) << "one recorder at a time";
    current = this;
    orvSetErrMode(ORV_ErrorModeParent);
    orvSetErrStatus(ORV_STATUS_OK);
}

Reports::~Reports()
{
    orvRedirectError(previousHandler_);
    orvSetErrMode(previousMode_);
    orvSetErrStatus(ORV_STATUS_OK);
    current = nullptr;
}

void Reports::clear()
{
    all_.clear();
    orvSetErrStatus(ORV_STATUS_OK);
}

void Reports::answer(OrvStatus status)
{
    answers_ = true;
    answer_ = status;
}

OrvStatus Reports::record(OrvStatus status, const char *function, const char *context, const char *unit,
                          std::int32_t line)
{
    const auto text = [](const char *given) { return std::string(given != nullptr ? given : "(null)"); };
    current->all_.push_back({status, text(function), text(context), text(unit)});
    EXPECT_GT(line, 0) << current->all_.back();
    return current->answers_ ? current->answer_ : status;
}

} // namespace front
