// Kernels of the tests as an application thinks of them, and the convolutions by one name for both kinds of
// coefficients.
#pragma once

#include <ostream>
#include <type_traits>
#include <vector>

#include "orv.h"

namespace front {

template <class Value>
using RecordOf = std::conditional_t<std::is_same_v<Value, float>, OrvConvKernelFP, OrvConvKernel>;

// A window as an application thinks of it: with its anchor as given.
template <class Value> struct Window {
    std::int32_t columns, rows, anchorX, anchorY, shift;
    std::vector<Value> values;

    RecordOf<Value> record()
    {
        RecordOf<Value> kernel = {};
        kernel.nCols = columns;
        kernel.nRows = rows;
        kernel.anchorX = columns - 1 - anchorX;
        kernel.anchorY = rows - 1 - anchorY;
        kernel.values = values.data();
        if constexpr (std::is_same_v<Value, std::int32_t>)
            kernel.nShiftR = shift;
        return kernel;
    }

    // Calls `take` with each coefficient and how far to the right and below the pixel lies what it meets.
    template <class Take> void walk(Take take) const
    {
        for (std::int32_t row = 0; row < rows; ++row)
            for (std::int32_t column = 0; column < columns; ++column)
                take(values[static_cast<std::size_t>(row * columns + column)], anchorX - column, anchorY - row);
    }
};

template <class Value> std::ostream &operator<<(std::ostream &out, const Window<Value> &window)
{
    out << window.columns << " x " << window.rows << ", anchor " << window.anchorX << "," << window.anchorY
        << ", shift " << window.shift << ":";
    for (const Value value : window.values)
        out << " " << value;
    return out;
}

inline OrvStatus convolve(const OrvImage *source, OrvImage *destination, const std::vector<OrvConvKernel *> &kernels,
                          std::int32_t method)
{
    return orvConvolve2D(source, destination, kernels.data(), static_cast<std::int32_t>(kernels.size()), method);
}

inline OrvStatus convolve(const OrvImage *source, OrvImage *destination, const std::vector<OrvConvKernelFP *> &kernels,
                          std::int32_t method)
{
    return orvConvolve2DFP(source, destination, kernels.data(), static_cast<std::int32_t>(kernels.size()), method);
}

inline OrvStatus convolve(const OrvImage *source, OrvImage *destination, const OrvConvKernel *x, const OrvConvKernel *y)
{
    return orvConvolveSep2D(source, destination, x, y);
}

inline OrvStatus convolve(const OrvImage *source, OrvImage *destination, const OrvConvKernelFP *x,
                          const OrvConvKernelFP *y)
{
    return orvConvolveSep2DFP(source, destination, x, y);
}

} // namespace front
