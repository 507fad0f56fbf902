// Shifts by a count of bits: to the left by the width of a sample, to the right by its type.
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

// Counts beyond the width leave nothing, or nothing but the sign: the signed types shift as 32 bits, 31 at most.
template <class Sample> struct ShiftLeft {
    std::uint32_t count;

    Sample operator()(Sample value) const
    {
        if (count >= 8 * sizeof(Sample))
            return 0;
        return static_cast<Sample>(static_cast<std::uint32_t>(value) << count);
    }
};

template <class Sample> struct ShiftRight {
    std::uint32_t count;

    Sample operator()(Sample value) const
    {
        if constexpr (isSigned<Sample>)
            return static_cast<Sample>(std::int32_t{value} >> (count < 31 ? count : 31));
        else
            return count >= 8 * sizeof(Sample) ? Sample{0} : static_cast<Sample>(value >> count);
    }
};

// Bytes by a product of words, since vectors have no shift of bytes.
template <> inline std::uint8_t ShiftLeft<std::uint8_t>::operator()(std::uint8_t value) const
{
    const std::uint16_t factor = static_cast<std::uint16_t>(count < 8 ? 1 << count : 0);
    return static_cast<std::uint8_t>(static_cast<std::uint16_t>(value * factor));
}
template <> inline std::uint8_t ShiftRight<std::uint8_t>::operator()(std::uint8_t value) const
{
    const std::uint16_t factor = static_cast<std::uint16_t>(count < 8 ? 256 >> count : 0);
    return static_cast<std::uint8_t>(static_cast<std::uint16_t>(value * factor) >> 8);
}
// The sign, as a bit of its own value at the place where it has gone, is spread by a subtraction.
template <> inline std::int8_t ShiftRight<std::int8_t>::operator()(std::int8_t value) const
{
    const std::uint32_t least = count < 7 ? count : 7;
    const std::uint8_t bits = ShiftRight<std::uint8_t>{least}(static_cast<std::uint8_t>(value));
    const std::uint8_t sign = static_cast<std::uint8_t>(0x80u >> least);
    return static_cast<std::int8_t>((bits ^ sign) - sign);
}

#if ORV_SSE_LEVEL >= 2

// The instructions shift words at the least: bytes are shifted as words, and rid of the bits of their neighbour. Their
// counts saturate as the operators' do.
inline __m128i shiftCount(std::uint32_t count)
{
    return _mm_cvtsi32_si128(static_cast<int>(count < 64 ? count : 64));
}
inline __m128i everyByte(unsigned byte)
{
    return _mm_set1_epi8(static_cast<char>(byte));
}

inline auto vectorOf(ShiftLeft<std::uint8_t> shift, Vector<std::uint8_t> a)
{
    const __m128i words = _mm_sll_epi16(asIntegers(a), shiftCount(shift.count));
    return asVector<std::uint8_t>(_mm_and_si128(words, everyByte(shift.count < 8 ? 0xFFu << shift.count : 0)));
}
inline auto vectorOf(ShiftLeft<std::uint16_t> shift, Vector<std::uint16_t> a)
{
    return asVector<std::uint16_t>(_mm_sll_epi16(asIntegers(a), shiftCount(shift.count)));
}
inline auto vectorOf(ShiftLeft<std::int32_t> shift, Vector<std::int32_t> a)
{
    return asVector<std::int32_t>(_mm_sll_epi32(asIntegers(a), shiftCount(shift.count)));
}
inline __m128i shiftedBytes(std::uint32_t count, __m128i bytes)
{
    return _mm_and_si128(_mm_srl_epi16(bytes, shiftCount(count)), everyByte(count < 8 ? 0xFFu >> count : 0));
}
inline auto vectorOf(ShiftRight<std::uint8_t> shift, Vector<std::uint8_t> a)
{
    return asVector<std::uint8_t>(shiftedBytes(shift.count, asIntegers(a)));
}
inline auto vectorOf(ShiftRight<std::int8_t> shift, Vector<std::int8_t> a)
{
    const std::uint32_t count = shift.count < 7 ? shift.count : 7;
    const __m128i sign = everyByte(0x80u >> count);
    return asVector<std::int8_t>(_mm_sub_epi8(_mm_xor_si128(shiftedBytes(count, asIntegers(a)), sign), sign));
}
inline auto vectorOf(ShiftRight<std::uint16_t> shift, Vector<std::uint16_t> a)
{
    return asVector<std::uint16_t>(_mm_srl_epi16(asIntegers(a), shiftCount(shift.count)));
}
inline auto vectorOf(ShiftRight<std::int16_t> shift, Vector<std::int16_t> a)
{
    return asVector<std::int16_t>(_mm_sra_epi16(asIntegers(a), shiftCount(shift.count)));
}
inline auto vectorOf(ShiftRight<std::int32_t> shift, Vector<std::int32_t> a)
{
    return asVector<std::int32_t>(_mm_sra_epi32(asIntegers(a), shiftCount(shift.count)));
}

#endif

template <class Sample, std::size_t layout, template <class> class Shift>
KrnStatus shifts(const void *source, std::int32_t sourceStep, const void *counts, void *destination, std::int32_t step,
                 std::int32_t width, std::int32_t height)
{
    const auto make = [](std::uint32_t count) { return Shift<Sample>{count}; };
    return computeByChannel<Sample, layout, std::uint32_t>(counts, width, height, make, Given{destination, step},
                                                           Given{source, sourceStep});
}

} // namespace

#define ORV_SHIFTS(stem, layout, Sample, Shift)                                                                \
    KrnStatus stem##layout(const void *source, std::int32_t sourceStep, const void *counts, void *destination, \
                           std::int32_t step, std::int32_t width, std::int32_t height)                         \
    {                                                                                                          \
        return shifts<Sample, layout, Shift>(source, sourceStep, counts, destination, step, width, height);    \
    }

#define ORV_SHIFT(stem, Sample, Shift)                                                                     \
    KrnStatus stem##C1(const void *source, std::int32_t sourceStep, std::int32_t count, void *destination, \
                       std::int32_t step, std::int32_t width, std::int32_t height)                         \
    {                                                                                                      \
        return shifts<Sample, C1, Shift>(source, sourceStep, &count, destination, step, width, height);    \
    }                                                                                                      \
    ORV_SHIFTS(stem, C3, Sample, Shift)                                                                    \
    ORV_SHIFTS(stem, C4, Sample, Shift)                                                                    \
    ORV_SHIFTS(stem, AC4, Sample, Shift)

ORV_SHIFT(krnLShiftC8u, std::uint8_t, ShiftLeft)
ORV_SHIFT(krnLShiftC16u, std::uint16_t, ShiftLeft)
ORV_SHIFT(krnLShiftC32s, std::int32_t, ShiftLeft)
ORV_SHIFT(krnRShiftC8u, std::uint8_t, ShiftRight)
ORV_SHIFT(krnRShiftC8s, std::int8_t, ShiftRight)
ORV_SHIFT(krnRShiftC16u, std::uint16_t, ShiftRight)
ORV_SHIFT(krnRShiftC16s, std::int16_t, ShiftRight)
ORV_SHIFT(krnRShiftC32s, std::int32_t, ShiftRight)

#include "end.h"
