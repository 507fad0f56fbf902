// How units call kernels that compute: two rasters into a third, a raster and a constant, and single rows.
#pragma once

#include <algorithm>
#include <cstdint>

#include "area.h"
#include "arith/plain_rows.h"
#include "channel_kernels.h"
#include "constant.h"

namespace orv {

// The scale that exported operations pass.
constexpr std::int32_t unscaled = 0;

// Calls a kernel of two rasters for each pixel layout.
inline auto runBinary(const LayoutKernels<BinaryScaledKernel> &kernels)
{
    return [kernels](Layout layout, const Raster *in, Raster out, Size size) {
        kernels[layout](in[0].data, in[0].step, in[1].data, in[1].step, out.data, out.step, size.width, size.height,
                        unscaled);
    };
}

inline auto runBinary(const LayoutKernels<BinaryKernel> &kernels)
{
    return [kernels](Layout layout, const Raster *in, Raster out, Size size) {
        kernels[layout](in[0].data, in[0].step, in[1].data, in[1].step, out.data, out.step, size.width, size.height);
    };
}

// Kernels of a raster and a constant: by value for one channel, by a pointer to one value a channel for more.
template <class One, class More> struct ConstantKernels {
    const Kernel<One> &c1;
    const Kernel<More> &c3, &c4, &ac4;

    const Kernel<More> &pixels(Layout layout) const
    {
        return layout == Layout::C3 ? c3 : layout == Layout::C4 ? c4 : ac4;
    }
};

#define ORV_CONSTANT_KERNELS(stem, suffix)                                      \
    {                                                                           \
        stem##C1##suffix, stem##C3##suffix, stem##C4##suffix, stem##AC4##suffix \
    }

using ScaledConstant = ConstantKernels<ConstantScaledKernel, ConstantsScaledKernel>;
using ScaledConstantInPlace = ConstantKernels<ConstantScaledInPlaceKernel, ConstantsScaledInPlaceKernel>;
using FloatConstant = ConstantKernels<FloatConstantKernel, ConstantsKernel>;
using FloatConstantInPlace = ConstantKernels<FloatConstantInPlaceKernel, ConstantsInPlaceKernel>;
using BitConstant = ConstantKernels<ConstantKernel, ConstantsKernel>;
using FractionInPlace = ConstantKernels<FractionInPlaceKernel, FractionsInPlaceKernel>;

// The same start pointer selects the kernel in place; where else rasters overlap is not looked for.
inline void applyConstant(const ScaledConstant &kernels, const ScaledConstantInPlace &inPlace, std::int32_t value,
                          std::int32_t sampleBytes, Layout layout, Raster in, Raster out, Size size)
{
    const FourValues values(value, sampleBytes);
    if (layout == Layout::C1 && in.data == out.data)
        inPlace.c1(value, out.data, out.step, size.width, size.height, unscaled);
    else if (layout == Layout::C1)
        kernels.c1(in.data, in.step, value, out.data, out.step, size.width, size.height, unscaled);
    else if (in.data == out.data)
        inPlace.pixels(layout)(values.bytes, out.data, out.step, size.width, size.height, unscaled);
    else
        kernels.pixels(layout)(in.data, in.step, values.bytes, out.data, out.step, size.width, size.height, unscaled);
}

inline void applyConstant(const FloatConstant &kernels, const FloatConstantInPlace &inPlace, float value, Layout layout,
                          Raster in, Raster out, Size size)
{
    const float values[4] = {value, value, value, value};
    if (layout == Layout::C1 && in.data == out.data)
        inPlace.c1(value, out.data, out.step, size.width, size.height);
    else if (layout == Layout::C1)
        kernels.c1(in.data, in.step, value, out.data, out.step, size.width, size.height);
    else if (in.data == out.data)
        inPlace.pixels(layout)(values, out.data, out.step, size.width, size.height);
    else
        kernels.pixels(layout)(in.data, in.step, values, out.data, out.step, size.width, size.height);
}

// Kernels that have no form in place; they may be called in place all the same.
inline void applyConstant(const BitConstant &kernels, std::int32_t value, std::int32_t sampleBytes, Layout layout,
                          Raster in, Raster out, Size size)
{
    const FourValues values(value, sampleBytes);
    if (layout == Layout::C1)
        kernels.c1(in.data, in.step, value, out.data, out.step, size.width, size.height);
    else
        kernels.pixels(layout)(in.data, in.step, values.bytes, out.data, out.step, size.width, size.height);
}

// A raster whose rows stand on multiples of a sample's size: where the rows of an image do not, loops of whole samples
// run with the step rounded down.
inline Raster inWholeSamples(Raster raster, std::int32_t sampleBytes)
{
    return {raster.data, raster.step & -sampleBytes};
}

// Calls row(sources, destination, samples) for each row of 32-bit samples, for kernels that know single rows only. Rows
// of AC4 run over all four samples into a buffer, piece by piece, and three of four are moved from there.
template <std::size_t sourceCount, class Row>
void rowByRow(Layout layout, const Raster *sources, Raster destination, Size size, Row row)
{
    constexpr std::int32_t most = 256;
    const std::int32_t samples = samplesPerPixel(layout);
    const std::int32_t pieceWidth = layout == Layout::AC4 ? most : size.width;
    for (std::int32_t y = 0; y < size.height; ++y)
        for (std::int32_t x = 0; x < size.width; x += std::min(pieceWidth, size.width - x)) {
            const std::int32_t pixels = std::min(pieceWidth, size.width - x);
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(x) * samples * 4;
            const void *in[sourceCount];
            for (std::size_t i = 0; i < sourceCount; ++i)
                in[i] = sources[i].fromRow(y).data + at;
            std::uint8_t *out = destination.fromRow(y).data + at;
            if (layout != Layout::AC4) {
                row(in, out, pixels * samples);
                continue;
            }
            std::int32_t buffer[4 * most];
            row(in, buffer, pixels * samples);
            krnCopy32sAC4(buffer, sizeof buffer, out, destination.step, pixels, 1);
        }
}

// The same for rows whose steps count in whole samples.
template <std::size_t sourceCount, class Row>
void integerRowByRow(Layout layout, const Raster *sources, Raster destination, Size size, Row row)
{
    Raster whole[sourceCount];
    for (std::size_t i = 0; i < sourceCount; ++i)
        whole[i] = inWholeSamples(sources[i], 4);
    rowByRow<sourceCount>(layout, whole, inWholeSamples(destination, 4), size, row);
}

// Rows of 32-bit integers and a constant.
inline auto runConstantRows(const Kernel<ConstantRowKernel> &kernel, const Kernel<ConstantRowInPlaceKernel> &inPlace,
                            std::int32_t value)
{
    return [&kernel, &inPlace, value](Layout layout, const Raster *in, Raster out, Size size) {
        integerRowByRow<1>(layout, in, out, size, [&](const void *const *rows, void *result, std::int32_t samples) {
            if (rows[0] == result)
                inPlace(value, result, samples, unscaled);
            else
                kernel(rows[0], value, result, samples, unscaled);
        });
    };
}

// Calls pass(band) for bands of rows that stay in the nearest cache, so that a second pass finds there what the first
// left.
template <class Pass> void inBands(Layout layout, std::int32_t sampleBytes, Size size, Pass pass)
{
    const std::int64_t rowBytes = static_cast<std::int64_t>(size.width) * samplesPerPixel(layout) * sampleBytes;
    const std::int32_t rows = static_cast<std::int32_t>(std::clamp<std::int64_t>(8192 / rowBytes, 1, size.height));
    std::int32_t height = 0;
    for (std::int32_t row = 0; row < size.height; row += height) {
        height = std::min(rows, size.height - row);
        pass(row, Size{size.width, height});
    }
}

} // namespace orv
