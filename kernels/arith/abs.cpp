// Magnitude of floats: the sign bit goes, also that of a not-a-number.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "vectors.h"
#endif
#include "points.h"

struct Magnitude {
    auto vector(auto bits) const { return bits & 0x7FFFFFFF; }
    std::uint32_t operator()(std::uint32_t bits) const { return bits & 0x7FFFFFFF; }
};

} // namespace

#define ORV_ABS(layout)                                                                                        \
    KrnStatus krnAbs32f##layout(const void *source, std::int32_t sourceStep, void *destination,                \
                                std::int32_t destinationStep, std::int32_t width, std::int32_t height)         \
    {                                                                                                          \
        return compute<std::uint32_t, layout>(width, height, Magnitude(), Given{destination, destinationStep}, \
                                              Given{source, sourceStep});                                      \
    }

ORV_ABS(C1)
ORV_ABS(C3)
ORV_ABS(C4)
ORV_ABS(AC4)

#include "end.h"
