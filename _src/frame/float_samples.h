// Samples as floats: what operations do that compute in floats whatever the depth of their images.
#pragma once

#include <cstdint>

#include "area.h"
#include "channel_kernels.h"
#include "conv_record.h"

namespace orv {

// A rectangle of floats in scratch, whose rows start on the alignment of blocks.
struct FloatRaster {
    Raster raster;
    Size size; // in samples

    static std::int64_t stepOf(std::int64_t samples) { return (samples * 4 + 31) & ~std::int64_t{31}; }
    static std::int64_t bytes(std::int64_t samples, std::int64_t rows) { return stepOf(samples) * rows; }
};

// Takes the rectangle from the front of the scratch.
FloatRaster takeFloats(std::uint8_t *&work, Size samples);

// The samples of a source with its margins, all channels one by one, as floats. Samples that are floats stay where they
// are and take no scratch.
FloatRaster wholeAsFloats(const PaddedSource &source, Layout layout, std::int32_t depth, std::uint8_t *&work);
std::int64_t wholeAsFloatsBytes(const PaddedSource &source, Layout layout, std::int32_t depth);

// To pixels of the depth, rounded to nearest with ties to even.
void fromFloats(const FloatRaster &floats, Layout layout, std::int32_t depth, const Raster &destination);

// Coefficients as floats: those of an integer record are converted into scratch.
const float *coefficientsOf(const OrvConvKernel &kernel, std::uint8_t *work);
const float *coefficientsOf(const OrvConvKernelFP &kernel, std::uint8_t *work);
std::int64_t coefficientBytes(const OrvConvKernel &kernel);
std::int64_t coefficientBytes(const OrvConvKernelFP &kernel);

// Divides sums by the record's divisor, where it has one.
void divide(const FloatRaster &sums, const OrvConvKernel &kernel);
void divide(const FloatRaster &sums, const OrvConvKernelFP &kernel);

} // namespace orv
