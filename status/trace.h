// The statuses of trace records.
#pragma once

#include "orv.h"

namespace orv {

// A trace record names a caller of the function that failed. It is not a failure of its own, and must not replace the
// status of the failure.
constexpr bool isTraceRecord(OrvStatus status)
{
    return status == ORV_STATUS_BACKTRACE || status == ORV_STATUS_AUTOTRACE;
}

} // namespace orv
