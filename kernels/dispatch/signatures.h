// The signatures of kernels. Rasters are untyped: samples may stand at any byte address, so no kernel holds a pointer
// to samples that it could dereference as they are. Steps are bytes between rows; widths are pixels.
#pragma once

#include "kernel.h"

namespace orv {

using CopyBytesKernel = KrnStatus(const void *source, void *destination, int32_t count);

// Also any other kernel from one raster to another of the same size without a parameter.
using CopyKernel = KrnStatus(const void *source, int32_t sourceStep, void *destination, int32_t destinationStep,
                             int32_t width, int32_t height);

using CopyMaskedKernel = KrnStatus(const void *source, int32_t sourceStep, void *destination, int32_t destinationStep,
                                   int32_t width, int32_t height, const void *mask, int32_t maskStep);

using AndMaskKernel = KrnStatus(const void *mask, int32_t maskStep, void *accumulator, int32_t accumulatorStep,
                                int32_t width, int32_t height);

// The bits of one sample, in the low bits of the value.
using FillKernel = KrnStatus(int32_t value, void *destination, int32_t step, int32_t width, int32_t height);

// One value per channel.
using FillPixelsKernel = KrnStatus(const void *values, void *destination, int32_t step, int32_t width, int32_t height);

using AbsKernel = CopyKernel;

// To float: exact but for 32-bit integers, which round to nearest.
using ConvertKernel = CopyKernel;

// From float; rounding is 0 toward zero, 1 to nearest with ties to even, else to nearest with ties away from zero.
using ConvertRoundKernel = KrnStatus(const void *source, int32_t sourceStep, void *destination, int32_t destinationStep,
                                     int32_t width, int32_t height, int32_t rounding);

using PatternKernel = KrnStatus(void *destination, int32_t step, int32_t width, int32_t height);

// Integer arithmetic takes a scale: its exact results are divided by 2 to the power of it, to nearest with ties to
// even, and then saturated. 0 is none; a negative scale multiplies.

// Two rasters into a third. A difference takes the subtrahend first.
using BinaryKernel = KrnStatus(const void *source1, std::int32_t step1, const void *source2, std::int32_t step2,
                               void *destination, std::int32_t step, std::int32_t width, std::int32_t height);
using BinaryScaledKernel = KrnStatus(const void *source1, std::int32_t step1, const void *source2, std::int32_t step2,
                                     void *destination, std::int32_t step, std::int32_t width, std::int32_t height,
                                     std::int32_t scale);
// One row of so many samples.
using BinaryRowKernel = KrnStatus(const void *source1, const void *source2, void *destination, std::int32_t length,
                                  std::int32_t scale);

using UnaryScaledKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                                    std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                    std::int32_t scale);

// A raster and a constant: the value itself for one channel, cut to the sample, else a pointer to one value a channel.
// Those in place (suffix I) take one raster.
using ConstantKernel = KrnStatus(const void *source, std::int32_t sourceStep, std::int32_t value, void *destination,
                                 std::int32_t step, std::int32_t width, std::int32_t height);
using ConstantsKernel = KrnStatus(const void *source, std::int32_t sourceStep, const void *values, void *destination,
                                  std::int32_t step, std::int32_t width, std::int32_t height);
using ConstantScaledKernel = KrnStatus(const void *source, std::int32_t sourceStep, std::int32_t value,
                                       void *destination, std::int32_t step, std::int32_t width, std::int32_t height,
                                       std::int32_t scale);
using ConstantsScaledKernel = KrnStatus(const void *source, std::int32_t sourceStep, const void *values,
                                        void *destination, std::int32_t step, std::int32_t width, std::int32_t height,
                                        std::int32_t scale);
using ConstantScaledInPlaceKernel = KrnStatus(std::int32_t value, void *image, std::int32_t step, std::int32_t width,
                                              std::int32_t height, std::int32_t scale);
using ConstantsScaledInPlaceKernel = KrnStatus(const void *values, void *image, std::int32_t step, std::int32_t width,
                                               std::int32_t height, std::int32_t scale);
using FloatConstantKernel = KrnStatus(const void *source, std::int32_t sourceStep, float value, void *destination,
                                      std::int32_t step, std::int32_t width, std::int32_t height);
using FloatConstantInPlaceKernel = KrnStatus(float value, void *image, std::int32_t step, std::int32_t width,
                                             std::int32_t height);
using ConstantsInPlaceKernel = KrnStatus(const void *values, void *image, std::int32_t step, std::int32_t width,
                                         std::int32_t height);
using ConstantRowKernel = KrnStatus(const void *source, std::int32_t value, void *destination, std::int32_t length,
                                    std::int32_t scale);
using ConstantRowInPlaceKernel = KrnStatus(std::int32_t value, void *row, std::int32_t length, std::int32_t scale);
using FloatConstantRowKernel = KrnStatus(const void *source, float value, void *destination, std::int32_t length);
using FloatConstantRowInPlaceKernel = KrnStatus(float value, void *row, std::int32_t length);
// Products of fractions in place take the raster first.
using FractionInPlaceKernel = KrnStatus(void *image, std::int32_t step, std::int32_t value, std::int32_t width,
                                        std::int32_t height);
using FractionsInPlaceKernel = KrnStatus(void *image, std::int32_t step, const void *values, std::int32_t width,
                                         std::int32_t height);

// Flips exchange rows (0), columns (1) or both (2). Those in place (suffix I) take one raster.
using MirrorKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                               std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                               std::int32_t flip);
using MirrorInPlaceKernel = KrnStatus(void *image, std::int32_t step, std::int32_t width, std::int32_t height,
                                      std::int32_t flip);

// With a window of coefficients in rows, which is flipped: the value at the anchor meets the pixel that is computed,
// one to the right of it a pixel to the left. The source starts at the pixel that is computed first, and has pixels
// around it.
using ConvolveKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                                 std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                 const void *values, std::int32_t columns, std::int32_t rows, std::int32_t anchorX,
                                 std::int32_t anchorY, std::int32_t divisor);
using ConvolveFloatsKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                                       std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                       const void *values, std::int32_t columns, std::int32_t rows,
                                       std::int32_t anchorX, std::int32_t anchorY);
// A row or a column of coefficients.
using ConvolveLineKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                                     std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                     const void *values, std::int32_t size, std::int32_t anchor, std::int32_t divisor);
// Without a divisor: of floats, and where the sums themselves are the result.
using SumLineKernel = KrnStatus(const void *source, std::int32_t sourceStep, void *destination,
                                          std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                                          const void *values, std::int32_t size, std::int32_t anchor);
using FloatPairRowKernel = KrnStatus(const void *source1, const void *source2, void *destination, std::int32_t length);

using AllocateKernel = void *(int32_t count);
using ReleaseKernel = void(void *block);

} // namespace orv
