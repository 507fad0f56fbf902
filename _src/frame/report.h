// How a unit of the front end says its checks: one line each, with its status and its text, in their order. A unit
// defines `unitName`, the name that its reports carry; the function is the exported one in which the line stands.
#pragma once

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

// The same for functions whose result is no status: `result` is what they return, or nothing.
#define ORV_REFUSE_AS(result, condition, status, context) \
    do {                                                  \
        if (condition) {                                  \
            ORV_REPORT(status, context);                  \
            return result;                                \
        }                                                 \
    } while (false)

// The result of a loop of the frame, which is 0 or exhausted memory, as the result of the call.
#define ORV_RETURN_LOOP(loop)                                                                                       \
    do {                                                                                                            \
        const OrvStatus loopStatus = (loop);                                                                        \
        return loopStatus == ORV_STATUS_OK ? ORV_STATUS_OK : ORV_REPORT(ORV_STATUS_NO_MEMORY, "Not enough memory"); \
    } while (false)
