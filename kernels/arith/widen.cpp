// Bytes as signed words and back, with saturation.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <smmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

#include "operators.h"

struct Widen {
    std::int16_t operator()(std::uint8_t value) const { return value; }
};

struct Narrow {
    std::uint8_t operator()(std::int16_t value) const { return saturated<std::uint8_t>(value); }
};

} // namespace

#define ORV_WIDEN(name, Out, In, layout, Operator)                                                               \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep, \
                   std::int32_t width, std::int32_t height)                                                      \
    {                                                                                                            \
        return compute<Out, layout, In>(width, height, Operator(), Given{destination, destinationStep},          \
                                        Given{source, sourceStep});                                              \
    }

#define ORV_WIDEN_LAYOUT(layout)                                              \
    ORV_WIDEN(krnCvt8u16s##layout, std::int16_t, std::uint8_t, layout, Widen) \
    ORV_WIDEN(krnCvt16s8u##layout, std::uint8_t, std::int16_t, layout, Narrow)

ORV_WIDEN_LAYOUT(C1)
ORV_WIDEN_LAYOUT(C3)
ORV_WIDEN_LAYOUT(C4)
ORV_WIDEN_LAYOUT(AC4)

#include "end.h"
