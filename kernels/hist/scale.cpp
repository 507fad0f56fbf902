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

#if ORV_VECTOR_BYTES > 0
    // The factor repeats the byte; the offset is the sign bit or nothing.
    auto group(const unsigned char *in) const
    {
        auto results = widened<Out, std::uint8_t, Upper::Same>(loadVector<std::uint8_t>(in));
        for (Vector<Out> &result : results.vectors)
            result ^= everywhere(static_cast<Out>(offset));
        return results;
    }
#endif
};

// To nearest, or toward zero: with an odd divisor there are no ties.
struct Compress {
    std::uint32_t half;

    std::uint8_t operator()(std::int16_t value) const
    {
        return static_cast<std::uint8_t>((static_cast<std::uint32_t>(value + 32768) + half) / 257);
    }

#if ORV_VECTOR_BYTES > 0
    // A word x is 257 q + r. Of x - (x >> 8) the high byte is q: that difference is 256 q + r, or one less where q + r
    // passes a byte. What the half takes beyond a word ends at 255 either way.
    S16s quotients(const unsigned char *in, std::size_t index) const
    {
        const U16s words = loadVector<std::uint16_t>(in, index) ^ std::uint16_t{0x8000};
        const U16s dividends = saturatingSum(words, everywhere(static_cast<std::uint16_t>(half)));
        return as<std::int16_t>((dividends - (dividends >> 8)) >> 8);
    }
    Group<std::uint8_t, 1> group(const unsigned char *in) const
    {
        return {inOrderOfPairs(packed<std::uint8_t>(quotients(in, 0), quotients(in, perVector<std::uint16_t>)))};
    }
#endif
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
