// The callable row of the kernel table, and what all kernels return.
#pragma once

#include <cstdint>

// Which of the seven builds every kernel runs, 0 to 6. Written by krnClassify and orvUseBuild alone, before any kernel
// runs, and therefore read unguarded by every call.
extern "C" {
#if defined(__GNUC__) && !defined(_WIN32)
extern __attribute__((visibility("hidden"))) std::int32_t krnDispatchIndex;
#else
extern std::int32_t krnDispatchIndex;
#endif
}

namespace orv {

constexpr int kernelBuilds = 7;

// Result of a kernel: a number space of its own, which the application never sees.
using KrnStatus = std::int32_t;

enum : KrnStatus {
    KRN_OK = 0,
    KRN_BAD_SIZE = -6,       // width, height or length below 1
    KRN_NULL_POINTER = -8,   // a data pointer is null
    KRN_NO_MEMORY = -9,      // a scratch allocation failed
    KRN_BAD_STEP = -14,      // a row step below 1
    KRN_BAD_ORDER = -15,     // an order of a transform below 0 or above 30
    KRN_BAD_FLAG = -16,      // a flag that names no scaling
    KRN_WRONG_PLAN = -17,    // a plan of another kind, or a released one
    KRN_BAD_AXIS = -21,      // a mode out of its range, such as the axis of a mirror
    KRN_BAD_MASK_SIZE = -33, // a side of a window below 1
    KRN_BAD_ANCHOR = -34,    // an anchor outside its window
    KRN_SHORT_STEP = -37,    // a row step with no room for a pixel on either side
    KRN_ZERO_DIVISOR = -51,
    KRN_BAD_TABLE_LEVELS = -106,     // fewer than two levels of a look-up table
    KRN_BAD_HISTOGRAM_LEVELS = -107, // or of a histogram

    // A warning: a relative norm is that of the numerator alone, since its denominator vanished.
    KRN_WARN_ZERO_DENOMINATOR = 6,
};

// One row of the table: seven builds of one function. Calling the row costs one load and one indirect jump.
template <class Function> struct KernelBuilds;

template <class Result, class... Parameters> struct KernelBuilds<Result(Parameters...)> {
    Result (*builds[kernelBuilds])(Parameters...);

    Result operator()(Parameters... parameters) const { return builds[krnDispatchIndex](parameters...); }
};

template <class Signature> struct Kernel : KernelBuilds<typename Signature::Function> {
};

} // namespace orv
