// Which statuses belong to a trace of reports.
#pragma once

#include "orv.h"

namespace orv {

// Such a record names a caller of the function that failed. It is no failure of its own, and must not hide the one it
// belongs to.
constexpr bool isTraceRecord(OrvStatus status)
{
    return status == ORV_STATUS_BACKTRACE || status == ORV_STATUS_AUTOTRACE;
}

} // namespace orv
