// Sums of signed words and a constant beyond the range of a word: the clamped constant first, then the residual.
#pragma once

#include "arith/arithmetic.h"

namespace orv {

constexpr ScaledConstant addToBytes = ORV_CONSTANT_KERNELS(krnAddC8u);
constexpr ScaledConstant subtractFromBytes = ORV_CONSTANT_KERNELS(krnSubC8u);
constexpr ScaledConstant addToWords = ORV_CONSTANT_KERNELS(krnAddC16s);
constexpr ScaledConstant subtractFromWords = ORV_CONSTANT_KERNELS(krnSubC16s);

// A constant for signed words: its clamped value, and the low 16 bits of the residual. A positive residual is stored
// negated, because 32768 does not fit a word. Beyond twice the range of a word the residual loses its high bits, and
// the result is that of the two passes.
struct WordConstant {
    std::int32_t clamped;
    std::int16_t residual;
    bool residualNegated, hasResidual;

    explicit WordConstant(std::int32_t value) : clamped(std::clamp(value, -32768, 32767))
    {
        const std::int32_t beyond = value < 0 ? value + 32768 : value - 32767;
        residualNegated = value >= 0;
        hasResidual = value < 0 ? beyond < 0 : beyond > 0;
        residual = static_cast<std::int16_t>(residualNegated ? -beyond : beyond);
    }

    // Adds the residual, or subtracts it.
    KrnStatus applyResidual(bool subtract, Layout layout, Raster image, Size size) const
    {
        if (!hasResidual)
            return KRN_OK;
        return applyConstant(subtract == residualNegated ? addToWords : subtractFromWords, residual, 2, layout, image,
                             image, size);
    }
};

// The source and the clamped constant in one pass, and the residual in another.
inline auto makeWords(const ScaledConstant &kernels, bool subtract, std::int32_t value)
{
    return [=, constant = WordConstant(value)](const Work &work) {
        return inStrips(work.layout, 2, work.size, [&](std::int32_t row, Size strip) {
            const Raster result = work.destination.fromRow(row);
            const KrnStatus status =
                applyConstant(kernels, constant.clamped, 2, work.layout, work.sources[0].fromRow(row), result, strip);
            return status == KRN_OK ? constant.applyResidual(subtract, work.layout, result, strip) : status;
        });
    };
}

} // namespace orv
