// Kernels in place (suffix I), derived from their siblings with two rasters. Such a sibling computes each sample from
// the sample at its place, so its source may be its destination.
#pragma once

#include "../arith/signatures.h"
#include "../hist/signatures.h"

namespace orv {

// How the parameters of a kernel in place become those of its sibling.
template <class Signature> struct InPlace;

#define KRN_DERIVE(signature, ...)                                                                                \
    template <> struct InPlace<signature> {                                                                       \
        template <auto sibling> static KrnStatus run(KRN_PARAMETERS_##signature) { return sibling(__VA_ARGS__); } \
    };

KRN_DERIVE(ConstantScaledInPlaceKernel, image, step, value, image, step, width, height, scale)
KRN_DERIVE(ConstantsScaledInPlaceKernel, image, step, values, image, step, width, height, scale)
KRN_DERIVE(FloatConstantInPlaceKernel, image, step, value, image, step, width, height)
KRN_DERIVE(ConstantsInPlaceKernel, image, step, values, image, step, width, height)
KRN_DERIVE(ConstantRowInPlaceKernel, row, value, row, length, scale)
KRN_DERIVE(FloatConstantRowInPlaceKernel, row, value, row, length)
KRN_DERIVE(ReplaceInPlaceKernel, image, step, image, step, width, height, level, value)
KRN_DERIVE(FractionInPlaceKernel, image, step, value, image, step, width, height)
KRN_DERIVE(FractionsInPlaceKernel, image, step, values, image, step, width, height)

#undef KRN_DERIVE

} // namespace orv
