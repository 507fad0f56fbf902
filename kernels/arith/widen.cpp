// Bytes as signed words and back, with saturation.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "operators.h"

struct Widen {
    std::int16_t operator()(std::uint8_t value) const { return value; }

#if ORV_VECTOR_BYTES > 0
    Group<std::int16_t, 2> group(const unsigned char *in) const
    {
        return widened<std::int16_t, std::uint8_t, Upper::Zeros>(loadVector<std::uint8_t>(in));
    }
#endif
};

struct Narrow {
    std::uint8_t operator()(std::int16_t value) const { return saturated<std::uint8_t>(value); }

#if ORV_VECTOR_BYTES > 0
    Group<std::uint8_t, 1> group(const unsigned char *in) const
    {
        const S16s first = loadVector<std::int16_t>(in), second = loadVector<std::int16_t>(in, perVector<std::int16_t>);
        return {inOrderOfPairs(packed<std::uint8_t>(first, second))};
    }
#endif
};

} // namespace

#define ORV_WIDEN(layout, stem, Out, In, Operator)                                                                   \
    KRN_KERNEL(CopyKernel, stem##layout)                                                                             \
    {                                                                                                                \
        return compute<Out, layout, In>(width, height, Operator(), to(destination, step), from(source, sourceStep)); \
    }

ORV_LAYOUTS(ORV_WIDEN, krnCvt8u16s, std::int16_t, std::uint8_t, Widen)
ORV_LAYOUTS(ORV_WIDEN, krnCvt16s8u, std::uint8_t, std::int16_t, Narrow)

#include "end.h"
