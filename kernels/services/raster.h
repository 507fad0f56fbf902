// A rectangle of samples, as the front end and kernels see it: where its first row starts, and how far its rows are
// apart. Samples may stand at any byte address, so a raster has no sample type.
//
// A kernel may use the members in a build's region: they are always inlined there, and leave no symbol that several
// builds would share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv {

template <class Byte> struct RasterOf {
    Byte *data;        // the first sample of the first row
    std::int32_t step; // in bytes, from row to row

    // The same raster from a later row on, or from an earlier one.
    [[gnu::always_inline]] RasterOf fromRow(std::int64_t row) const
    {
        return {data + static_cast<std::ptrdiff_t>(row * step), step};
    }

    // The raster that starts `bytes` further to the right.
    [[gnu::always_inline]] RasterOf fromByte(std::int64_t bytes) const
    {
        return {data + static_cast<std::ptrdiff_t>(bytes), step};
    }

    // What may be written may be read.
    template <class Other> [[gnu::always_inline]] operator RasterOf<Other>() const
    {
        Other *const same = data;
        return {same, step};
    }
};

using Raster = RasterOf<unsigned char>;
using ConstRaster = RasterOf<const unsigned char>;

} // namespace orv
