// Shifts by a count of bits: to the left by the width of a sample, to the right by its type.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

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

#if ORV_VECTOR_BYTES > 0

inline U8s everyByte(std::uint32_t byte)
{
    return everywhere(static_cast<std::uint8_t>(byte));
}

// The instructions shift words at the least: bytes are shifted as words, and lose the bits of their neighbour.
inline U8s vectorOf(ShiftLeft<std::uint8_t> shift, U8s a)
{
    const U16s words = shiftedLeft(as<std::uint16_t>(a), ShiftCount(shift.count));
    return as<std::uint8_t>(words) & everyByte(shift.count < 8 ? 0xFFu << shift.count : 0);
}
inline U16s vectorOf(ShiftLeft<std::uint16_t> shift, U16s a)
{
    return shiftedLeft(a, ShiftCount(shift.count));
}
inline S32s vectorOf(ShiftLeft<std::int32_t> shift, S32s a)
{
    return shiftedLeft(a, ShiftCount(shift.count));
}
inline U8s vectorOf(ShiftRight<std::uint8_t> shift, U8s a)
{
    const U16s words = shiftedRight(as<std::uint16_t>(a), ShiftCount(shift.count));
    return as<std::uint8_t>(words) & everyByte(shift.count < 8 ? 0xFFu >> shift.count : 0);
}
inline S8s vectorOf(ShiftRight<std::int8_t> shift, S8s a)
{
    const std::uint32_t count = shift.count < 7 ? shift.count : 7;
    const U8s sign = everyByte(0x80u >> count);
    const U8s bits = vectorOf(ShiftRight<std::uint8_t>{count}, as<std::uint8_t>(a));
    return as<std::int8_t>((bits ^ sign) - sign);
}
template <class Sample> inline Vector<Sample> vectorOf(ShiftRight<Sample> shift, Vector<Sample> a)
{
    return shiftedRight(a, ShiftCount(shift.count));
}

#endif

template <class Sample, std::size_t layout, template <class> class Shift>
KrnStatus shifts(const void *counts, ConstRaster in, Raster out, std::int32_t width, std::int32_t height)
{
    const auto make = [](std::uint32_t count) { return Shift<Sample>{count}; };
    return computeByChannel<Sample, layout, std::uint32_t>(counts, width, height, make, out, in);
}

} // namespace

#define ORV_SHIFTS(stem, layout, Sample, Shift)                                                                       \
    KRN_KERNEL(ConstantsKernel, stem##layout)                                                                         \
    {                                                                                                                 \
        return shifts<Sample, layout, Shift>(values, from(source, sourceStep), to(destination, step), width, height); \
    }

#define ORV_SHIFT(stem, Sample, Shift)                                                                            \
    KRN_KERNEL(ConstantKernel, stem##C1)                                                                          \
    {                                                                                                             \
        return shifts<Sample, C1, Shift>(&value, from(source, sourceStep), to(destination, step), width, height); \
    }                                                                                                             \
    ORV_SHIFTS(stem, C3, Sample, Shift)                                                                           \
    ORV_SHIFTS(stem, C4, Sample, Shift)                                                                           \
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
