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

using AllocateKernel = void *(int32_t count);
using ReleaseKernel = void(void *block);

} // namespace orv
