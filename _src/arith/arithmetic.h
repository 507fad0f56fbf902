// Loops over arithmetic kernels: of two rasters, of a raster and a constant, and of single rows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "cache_sizes.h"
#include "call_images.h"
#include "constant.h"
#include "kernels.h"
#include "loop.h"

namespace orv {

// The scale that exported operations pass.
constexpr std::int32_t unscaled = 0;

// A loop over kernels from one raster to another.
inline auto makeUnary(const LayoutKernels<CopyKernel> &kernels)
{
    return [&kernels](const Work &work) {
        const ConstRaster &in = work.sources[0];
        return kernels[work.layout](in.data, in.step, work.destination.data, work.destination.step, work.size.width,
                                    work.size.height);
    };
}

// Loops over kernels of two rasters.
inline auto makeBinary(const LayoutKernels<BinaryScaledKernel> &kernels)
{
    return [&kernels](const Work &work) {
        const ConstRaster &a = work.sources[0], &b = work.sources[1];
        return kernels[work.layout](a.data, a.step, b.data, b.step, work.destination.data, work.destination.step,
                                    work.size.width, work.size.height, unscaled);
    };
}

inline auto makeBinary(const LayoutKernels<BinaryKernel> &kernels)
{
    return [&kernels](const Work &work) {
        const ConstRaster &a = work.sources[0], &b = work.sources[1];
        return kernels[work.layout](a.data, a.step, b.data, b.step, work.destination.data, work.destination.step,
                                    work.size.width, work.size.height);
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

#define ORV_CONSTANT_KERNELS(stem)              \
    {                                           \
        stem##C1, stem##C3, stem##C4, stem##AC4 \
    }

using ScaledConstant = ConstantKernels<ConstantScaledKernel, ConstantsScaledKernel>;
using FloatConstant = ConstantKernels<FloatConstantKernel, ConstantsKernel>;
using BitConstant = ConstantKernels<ConstantKernel, ConstantsKernel>;

// The source and the destination may be the same raster. Other overlaps leave the results open.
inline KrnStatus applyConstant(const ScaledConstant &kernels, std::int32_t value, std::int32_t sampleBytes,
                               Layout layout, ConstRaster in, Raster out, Size size)
{
    if (layout == Layout::C1)
        return kernels.c1(in.data, in.step, value, out.data, out.step, size.width, size.height, unscaled);
    const FourValues values(value, sampleBytes);
    return kernels.pixels(layout)(in.data, in.step, values.bytes, out.data, out.step, size.width, size.height,
                                  unscaled);
}

// A loop over kernels of a raster and a constant that fits a sample.
inline auto makeConstant(const ScaledConstant &kernels, std::int32_t value, std::int32_t sampleBytes)
{
    return [=](const Work &work) {
        return applyConstant(kernels, value, sampleBytes, work.layout, work.sources[0], work.destination, work.size);
    };
}

inline auto makeConstant(const FloatConstant &kernels, float value)
{
    return [=](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        const float values[4] = {value, value, value, value};
        return work.layout == Layout::C1
                   ? kernels.c1(in.data, in.step, value, out.data, out.step, work.size.width, work.size.height)
                   : kernels.pixels(work.layout)(in.data, in.step, values, out.data, out.step, work.size.width,
                                                 work.size.height);
    };
}

inline auto makeConstant(const BitConstant &kernels, std::int32_t value, std::int32_t sampleBytes)
{
    return [=](const Work &work) {
        const ConstRaster &in = work.sources[0];
        const Raster &out = work.destination;
        const FourValues values(value, sampleBytes);
        return work.layout == Layout::C1
                   ? kernels.c1(in.data, in.step, value, out.data, out.step, work.size.width, work.size.height)
                   : kernels.pixels(work.layout)(in.data, in.step, values.bytes, out.data, out.step, work.size.width,
                                                 work.size.height);
    };
}

// A loop over kernels that know single rows of 32-bit samples: row(sources, destination, samples), a status. Rows of
// AC4 run over all four samples into a buffer, tile by tile, and three of four are moved from there.
template <class Row> auto makeRows(std::size_t sourceCount, Row row)
{
    return [=](const Work &work) -> KrnStatus {
        constexpr std::int32_t most = 256;
        const std::int32_t samples = samplesPerPixel(work.layout);
        const std::int32_t tileWidth = work.layout == Layout::AC4 ? most : work.size.width;
        for (std::int32_t y = 0; y < work.size.height; ++y)
            for (std::int32_t x = 0; x < work.size.width; x += std::min(tileWidth, work.size.width - x)) {
                const std::int32_t pixels = std::min(tileWidth, work.size.width - x);
                const std::int64_t at = std::int64_t{x} * samples * 4;
                const void *in[mostSources];
                for (std::size_t i = 0; i < sourceCount; ++i)
                    in[i] = work.sources[i].fromRow(y).fromByte(at).data;
                const Raster out = work.destination.fromRow(y).fromByte(at);
                std::int32_t buffer[4 * most];
                const bool threeOfFour = work.layout == Layout::AC4;
                KrnStatus status = row(in, threeOfFour ? static_cast<void *>(buffer) : out.data, pixels * samples);
                if (status == KRN_OK && threeOfFour)
                    status = krnCopy32sAC4(buffer, sizeof buffer, out.data, out.step, pixels, 1);
                if (status != KRN_OK)
                    return status;
            }
        return KRN_OK;
    };
}

// Rows of 32-bit integers and a constant.
inline auto makeConstantRows(const Kernel<ConstantRowKernel> &kernel, std::int32_t value)
{
    return makeRows(1, [&kernel, value](const void *const *rows, void *result, std::int32_t samples) {
        return kernel(rows[0], value, result, samples, unscaled);
    });
}

// Calls pass(row, size) for strips of rows. A strip stays in the nearest cache, so a second kernel reads there what the
// first wrote. Ends with the first status that is not KRN_OK.
template <class Pass> KrnStatus inStrips(Layout layout, std::int32_t sampleBytes, Size size, Pass pass)
{
    const std::int64_t rowBytes = std::int64_t{size.width} * samplesPerPixel(layout) * sampleBytes;
    const std::int32_t rows =
        static_cast<std::int32_t>(std::clamp<std::int64_t>(passStripBytes / rowBytes, 1, size.height));
    std::int32_t height = 0;
    for (std::int32_t row = 0; row < size.height; row += height) {
        height = std::min(rows, size.height - row);
        if (const KrnStatus status = pass(row, Size{size.width, height}); status != KRN_OK)
            return status;
    }
    return KRN_OK;
}

} // namespace orv
