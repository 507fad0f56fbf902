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

template <class Value>
RecordOf<Value> recordOf(std::int32_t columns, std::int32_t rows, std::int32_t anchorX, std::int32_t anchorY,
                         Value *values, [[maybe_unused]] std::int32_t shift = 0)
{
    if constexpr (std::is_same_v<Value, float>)
        return {columns, rows, anchorX, anchorY, values};
    else
        return {columns, rows, anchorX, anchorY, values, shift};
}

// A window as an application thinks of it: with its anchor as given.
template <class Value> struct Window {
    std::int32_t columns, rows, anchorX, anchorY, shift;
    std::vector<Value> values;

    RecordOf<Value> record()
    {
        return recordOf(columns, rows, columns - 1 - anchorX, rows - 1 - anchorY, values.data(), shift);
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

// One kernel or several, by a way of combining.
template <class Value>
OrvStatus convolve(const OrvImage *source, OrvImage *destination, std::vector<Window<Value>> &windows,
                   std::int32_t method)
{
    std::vector<RecordOf<Value>> records;
    for (Window<Value> &window : windows)
        records.push_back(window.record());
    std::vector<RecordOf<Value> *> kernels;
    for (auto &record : records)
        kernels.push_back(&record);
    const std::int32_t count = static_cast<std::int32_t>(kernels.size());
    if constexpr (std::is_same_v<Value, float>)
        return orvConvolve2DFP(source, destination, kernels.data(), count, method);
    else
        return orvConvolve2D(source, destination, kernels.data(), count, method);
}

// A row, a column, or both.
template <class Record>
OrvStatus convolve(const OrvImage *source, OrvImage *destination, const Record *row, const Record *column)
{
    if constexpr (std::is_same_v<Record, OrvConvKernelFP>)
        return orvConvolveSep2DFP(source, destination, row, column);
    else
        return orvConvolveSep2D(source, destination, row, column);
}

} // namespace front
