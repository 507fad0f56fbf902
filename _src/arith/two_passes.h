// Adding a constant to signed words when it is more than a word holds: the clamped constant first, then what is left of
// it.
#pragma once

#include "arith/arithmetic.h"

namespace orv {

constexpr ScaledConstant addToBytes = ORV_CONSTANT_KERNELS(krnAddC8u, );
constexpr ScaledConstantInPlace addToBytesInPlace = ORV_CONSTANT_KERNELS(krnAddC8u, I);
constexpr ScaledConstant subtractFromBytes = ORV_CONSTANT_KERNELS(krnSubC8u, );
constexpr ScaledConstantInPlace subtractFromBytesInPlace = ORV_CONSTANT_KERNELS(krnSubC8u, I);
constexpr ScaledConstant addToWords = ORV_CONSTANT_KERNELS(krnAddC16s, );
constexpr ScaledConstantInPlace addToWordsInPlace = ORV_CONSTANT_KERNELS(krnAddC16s, I);
constexpr ScaledConstant subtractFromWords = ORV_CONSTANT_KERNELS(krnSubC16s, );
constexpr ScaledConstantInPlace subtractFromWordsInPlace = ORV_CONSTANT_KERNELS(krnSubC16s, I);

// A constant for signed words: what fits, and the low 16 bits of the rest. A rest above 0 is kept negated, since 32768
// fits a word only so. Beyond twice the range of a word the rest loses its high bits: the result is that of the two
// passes.
struct WordConstant {
    std::int32_t clamped;
    std::int16_t rest;
    bool restNegated, hasRest;

    explicit WordConstant(std::int32_t value) : clamped(std::clamp(value, -32768, 32767))
    {
        const std::int32_t residual = value < 0 ? value + 32768 : value - 32767;
        restNegated = value >= 0;
        hasRest = value < 0 ? residual < 0 : residual > 0;
        rest = static_cast<std::int16_t>(restNegated ? -residual : residual);
    }

    // Adds the rest, or subtracts it.
    void applyRest(bool subtract, Layout layout, Raster image, Size size) const
    {
        if (!hasRest)
            return;
        if (subtract == restNegated)
            applyConstant(addToWords, addToWordsInPlace, rest, 2, layout, image, image, size);
        else
            applyConstant(subtractFromWords, subtractFromWordsInPlace, rest, 2, layout, image, image, size);
    }
};

} // namespace orv
