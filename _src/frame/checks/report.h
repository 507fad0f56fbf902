// How a unit of the front end says its checks: one line each, with its status and its text, in their order. A unit
// defines `unitName`, the name that its reports carry; the function is the exported one in which the line stands.
#pragma once

#include "comparisons.h"
#include "orv.h"

#define ORV_REPORT(status, context) orvError(status, __func__, context, unitName, __LINE__)

#define ORV_CHECK_HEADER(image)                                      \
    do {                                                             \
        if (orvCheckImageHeader(image) != ORV_STATUS_OK)             \
            return ORV_REPORT(orvGetErrStatus(), "Incorrect Image"); \
    } while (false)

#define ORV_REFUSE_IF(condition, status, context) \
    do {                                          \
        if (condition)                            \
            return ORV_REPORT(status, context);   \
    } while (false)

// A whole list of checks.
#define ORV_REFUSE(checks)                                      \
    do {                                                        \
        const orv::Refusal refusal = (checks);                  \
        if (refusal.status != ORV_STATUS_OK)                    \
            return ORV_REPORT(refusal.status, refusal.context); \
    } while (false)

// The same for functions whose result is no status: `result` is what they return, or nothing.
#define ORV_REFUSE_AS(result, condition, status, context) \
    do {                                                  \
        if (condition) {                                  \
            ORV_REPORT(status, context);                  \
            return result;                                \
        }                                                 \
    } while (false)

// The result of a run of the frame as the result of the call: 0, exhausted memory with its text, or a depth that is not
// served.
#define ORV_RETURN_RUN_AS(run, noMemory)                                                 \
    do {                                                                                 \
        const OrvStatus runStatus = (run);                                               \
        if (runStatus == ORV_STATUS_OK)                                                  \
            return ORV_STATUS_OK;                                                        \
        return ORV_REPORT(runStatus, runStatus == ORV_STATUS_NO_MEMORY ? noMemory : ""); \
    } while (false)
#define ORV_RETURN_RUN(run) ORV_RETURN_RUN_AS(run, "Not enough memory")
