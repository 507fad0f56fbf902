// From the whole range of one depth to that of another.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

// The factor takes the top of bytes to the top of the wider range; the offset is the bottom of that range, and wraps.
template <class Out, std::uint32_t factor, std::uint32_t offset> struct Stretch {
    Out operator()(std::uint8_t value) const { return static_cast<Out>(value * factor + offset); }
};

// To nearest, or toward zero: with an odd divisor there are no ties.
struct Compress {
    std::uint32_t half;

    std::uint8_t operator()(std::int16_t value) const
    {
        return static_cast<std::uint8_t>((static_cast<std::uint32_t>(value + 32768) + half) / 257);
    }
};

} // namespace

#define ORV_STRETCH(layout, stem, Out, factor, offset)                                              \
    KRN_KERNEL(CopyKernel, stem##layout)                                                            \
    {                                                                                               \
        return compute<Out, layout, std::uint8_t>(width, height, Stretch<Out, factor, offset>(),    \
                                                  to(destination, step), from(source, sourceStep)); \
    }

ORV_LAYOUTS(ORV_STRETCH, krnScale8u16u, std::uint16_t, 257, 0)
ORV_LAYOUTS(ORV_STRETCH, krnScale8u16s, std::int16_t, 257, 0x8000)
ORV_LAYOUTS(ORV_STRETCH, krnScale8u32s, std::int32_t, 16843009, 0x80000000)

#define ORV_COMPRESS(layout, stem)                                                                         \
    KRN_KERNEL(ConvertRoundKernel, stem##layout)                                                           \
    {                                                                                                      \
        const Compress compress = {rounding == 0 ? 0u : 128u};                                             \
        return compute<std::uint8_t, layout, std::int16_t>(width, height, compress, to(destination, step), \
                                                           from(source, sourceStep));                      \
    }

ORV_LAYOUTS(ORV_COMPRESS, krnScale16s8u)

#include "end.h"
