// How a kernel of each signature is called with one set of arguments.
#pragma once

#include <string>
#include <type_traits>

#include "kernels.h"

struct RowRaster {
    void *data;
    int step;
};

// A window of coefficients; a row or a column of them has a side of 1.
struct RowWindow {
    int columns = 1, rows = 1, anchorX = 0, anchorY = 0;
    int divisor = 1;

    int size() const { return columns * rows; }
};

struct RowCall {
    RowRaster sources[2], destination, mask;
    int width, height;
    int value; // a constant, a count or a rounding mode
    int scale;
    const void *values; // one a channel, or those of the window
    int flip = 0;
    RowWindow window = {};
    float real = 0; // a constant of floats
};

using orv::Kernel;
using orv::KrnStatus;

#define ORV_CALL(Signature, ...)                                                  \
    inline KrnStatus call(const Kernel<orv::Signature> &kernel, const RowCall &c) \
    {                                                                             \
        const auto &[a, b] = c.sources;                                           \
        const auto &[out, step] = c.destination;                                  \
        (void)a, (void)b, (void)step;                                             \
        return kernel(__VA_ARGS__);                                               \
    }

ORV_CALL(CopyKernel, a.data, a.step, out, step, c.width, c.height)
ORV_CALL(CopyMaskedKernel, a.data, a.step, out, step, c.width, c.height, c.mask.data, c.mask.step)
ORV_CALL(FillKernel, c.value, out, step, c.width, c.height)
ORV_CALL(FillPixelsKernel, c.values, out, step, c.width, c.height)
// Rounding modes have the signature of scales.
ORV_CALL(ConvertRoundKernel, a.data, a.step, out, step, c.width, c.height, c.scale)
ORV_CALL(PatternKernel, out, step, c.width, c.height)
ORV_CALL(CopyBytesKernel, a.data, out, c.width)
ORV_CALL(BinaryKernel, a.data, a.step, b.data, b.step, out, step, c.width, c.height)
ORV_CALL(BinaryScaledKernel, a.data, a.step, b.data, b.step, out, step, c.width, c.height, c.scale)
ORV_CALL(BinaryRowKernel, a.data, b.data, out, c.width, c.scale)
ORV_CALL(ConstantKernel, a.data, a.step, c.value, out, step, c.width, c.height)
ORV_CALL(ConstantsKernel, a.data, a.step, c.values, out, step, c.width, c.height)
ORV_CALL(ConstantScaledKernel, a.data, a.step, c.value, out, step, c.width, c.height, c.scale)
ORV_CALL(ConstantsScaledKernel, a.data, a.step, c.values, out, step, c.width, c.height, c.scale)
ORV_CALL(ConstantScaledInPlaceKernel, c.value, out, step, c.width, c.height, c.scale)
ORV_CALL(ConstantsScaledInPlaceKernel, c.values, out, step, c.width, c.height, c.scale)
ORV_CALL(FloatConstantKernel, a.data, a.step, c.real, out, step, c.width, c.height)
ORV_CALL(FloatConstantInPlaceKernel, c.real, out, step, c.width, c.height)
ORV_CALL(ConstantRowKernel, a.data, c.value, out, c.width, c.scale)
ORV_CALL(ConstantRowInPlaceKernel, c.value, out, c.width, c.scale)
ORV_CALL(FloatConstantRowKernel, a.data, c.real, out, c.width)
ORV_CALL(FloatConstantRowInPlaceKernel, c.real, out, c.width)
ORV_CALL(FractionInPlaceKernel, out, step, c.value, c.width, c.height)
ORV_CALL(FractionsInPlaceKernel, out, step, c.values, c.width, c.height)
ORV_CALL(ConvolveKernel, a.data, a.step, out, step, c.width, c.height, c.values, c.window.columns, c.window.rows,
         c.window.anchorX, c.window.anchorY, c.window.divisor)
ORV_CALL(ConvolveFloatsKernel, a.data, a.step, out, step, c.width, c.height, c.values, c.window.columns, c.window.rows,
         c.window.anchorX, c.window.anchorY)
ORV_CALL(ConvolveLineKernel, a.data, a.step, out, step, c.width, c.height, c.values, c.window.size(),
         c.window.anchorX + c.window.anchorY, c.window.divisor)
ORV_CALL(SumLineKernel, a.data, a.step, out, step, c.width, c.height, c.values, c.window.size(),
         c.window.anchorX + c.window.anchorY)
ORV_CALL(FloatPairRowKernel, a.data, b.data, out, c.width)

#undef ORV_CALL

// Mirrors have the types of other signatures, so that only the name tells what their arguments mean.
template <class Signature> KrnStatus call(const std::string &name, const Kernel<Signature> &kernel, const RowCall &c)
{
    if (name.compare(0, 9, "krnMirror") != 0)
        return call(kernel, c);
    const auto &[a, b] = c.sources;
    if constexpr (std::is_same_v<Signature, orv::MirrorKernel>)
        return kernel(a.data, a.step, c.destination.data, c.destination.step, c.width, c.height, c.flip);
    else if constexpr (std::is_same_v<Signature, orv::MirrorInPlaceKernel>)
        return kernel(c.destination.data, c.destination.step, c.width, c.height, c.flip);
    else
        return orv::KRN_BAD_AXIS;
}
