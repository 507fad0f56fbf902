// Filling of the pixels around an image.
#include "border.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "channel_kernels.h"
#include "fill.h"

namespace orv {
namespace {

enum Side { Top, Bottom, Left, Right };
enum class Mode { Constant, Replicate, Reflect, Wrap };

Mode modeOf(const OrvImage &image, Side side)
{
    return static_cast<Mode>(image.BorderMode[side] & 3);
}

// The remainder that is never negative.
std::int64_t modulo(std::int64_t value, std::int64_t period)
{
    const std::int64_t remainder = value % period;
    return remainder < 0 ? remainder + period : remainder;
}

// Rows of the image, and where they go.
struct Rows {
    std::int64_t source;
    std::int32_t count;
    Raster out; // at the area's first column
};

template <std::size_t bytes>
void repeat(const std::uint8_t *pixel, std::int32_t step, std::uint8_t *out, std::int32_t outStep, Size size)
{
    for (std::int32_t row = 0; row < size.height; ++row, pixel += step, out += outStep)
        for (std::int32_t column = 0; column < size.width; ++column)
            std::memcpy(out + static_cast<std::size_t>(column) * bytes, pixel, bytes);
}

class Border {
public:
    Border(const BorderedImage &source, const PaddedArea &area)
        : source_(source), area_(area), kernels_(channelKernels(source.sampleBytes))
    {
    }

    void fillArea(Raster padded) const;

private:
    Raster at(const Rows &rows, std::int64_t column) const
    {
        return rows.out.fromByte((column - area_.x) * source_.paddedPixelBytes());
    }
    ConstRaster pixelsFrom(std::int64_t column, std::int64_t row) const
    {
        return source_.raster.fromRow(row).fromByte(column * source_.pixelBytes());
    }

    void fillRows(const Rows &rows, Side left, Side right) const;
    void fillSide(const Rows &rows, Side side, std::int64_t first, std::int64_t end) const;
    void fillConstant(Side side, Raster out, Size size) const;
    void copyColumns(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const;
    void copyMirrored(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const;
    void copyRepeated(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const;

    const BorderedImage &source_;
    const PaddedArea &area_;
    const ChannelKernels &kernels_;
};

// Copies `count` columns of the image, from the column `from` on.
void Border::copyColumns(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const
{
    const ConstRaster in = pixelsFrom(from, rows.source);
    const Raster out = at(rows, column);
    const Kernel<CopyKernel> &copy = !source_.interleaved            ? kernels_.copy[source_.layout]
                                     : source_.image->nChannels == 3 ? kernels_.extractC3
                                                                     : kernels_.extractC4;
    copy(in.data, in.step, out.data, out.step, count, rows.count);
}

void Border::copyMirrored(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const
{
    constexpr std::int32_t columnsSwap = 1;
    const ConstRaster in = pixelsFrom(from, rows.source);
    const Raster out = at(rows, column);
    if (source_.interleaved) {
        copyColumns(rows, from, count, column);
        kernels_.mirrorInPlaceC1(out.data, out.step, count, rows.count, columnsSwap);
    } else {
        kernels_.mirror[source_.layout](in.data, in.step, out.data, out.step, count, rows.count, columnsSwap);
    }
}

// Repeats one column of the image.
void Border::copyRepeated(const Rows &rows, std::int64_t from, std::int32_t count, std::int64_t column) const
{
    const ConstRaster in = pixelsFrom(from, rows.source);
    const Raster out = at(rows, column);
    const Size size = {count, rows.count};
    switch (source_.paddedPixelBytes()) {
    case 1:
        return repeat<1>(in.data, in.step, out.data, out.step, size);
    case 2:
        return repeat<2>(in.data, in.step, out.data, out.step, size);
    case 3:
        return repeat<3>(in.data, in.step, out.data, out.step, size);
    case 4:
        return repeat<4>(in.data, in.step, out.data, out.step, size);
    case 6:
        return repeat<6>(in.data, in.step, out.data, out.step, size);
    case 8:
        return repeat<8>(in.data, in.step, out.data, out.step, size);
    case 12:
        return repeat<12>(in.data, in.step, out.data, out.step, size);
    default:
        return repeat<16>(in.data, in.step, out.data, out.step, size);
    }
}

// The constant is an integer. Float images take its value, narrower integers its low bits.
void Border::fillConstant(Side side, Raster out, Size size) const
{
    std::int32_t value = source_.image->BorderConst[side];
    if (source_.image->depth == ORV_DEPTH_32F)
        value = std::bit_cast<std::int32_t>(static_cast<float>(value));
    fill(source_.sampleBytes, value, source_.layout, out, size);
}

// Columns `first` to `end` beside the image.
void Border::fillSide(const Rows &rows, Side side, std::int64_t first, std::int64_t end) const
{
    if (first >= end)
        return;
    const Mode mode = modeOf(*source_.image, side);
    const std::int64_t width = source_.image->width;
    if (mode == Mode::Constant)
        return fillConstant(side, at(rows, first), {static_cast<std::int32_t>(end - first), rows.count});
    if (mode == Mode::Replicate)
        return copyRepeated(rows, first < 0 ? 0 : width - 1, static_cast<std::int32_t>(end - first), first);
    // Run by run of columns: a run ends where the image does.
    for (std::int64_t column = first; column < end;) {
        const std::int64_t place = modulo(column, mode == Mode::Wrap ? width : 2 * width);
        const bool mirrored = place >= width;
        const std::int64_t left = mirrored ? 2 * width - place : width - place;
        const std::int32_t count = static_cast<std::int32_t>(std::min(left, end - column));
        if (mirrored)
            copyMirrored(rows, left - count, count, column);
        else
            copyColumns(rows, place, count, column);
        column += count;
    }
}

void Border::fillRows(const Rows &rows, Side left, Side right) const
{
    const std::int64_t width = source_.image->width, end = area_.x + area_.width;
    fillSide(rows, left, area_.x, std::min<std::int64_t>(end, 0));
    const std::int64_t first = std::clamp<std::int64_t>(area_.x, 0, width),
                       last = std::clamp<std::int64_t>(end, 0, width);
    if (first < last)
        copyColumns(rows, first, static_cast<std::int32_t>(last - first), first);
    fillSide(rows, right, std::max(area_.x, width), end);
}

void Border::fillArea(Raster padded) const
{
    const std::int64_t height = source_.image->height, end = area_.y + area_.height;
    for (std::int64_t row = area_.y; row < end;) {
        Rows rows = {row, 1, padded.fromRow(row - area_.y)};
        if (row >= 0 && row < height) {
            rows.count = static_cast<std::int32_t>(std::min(height, end) - row);
            fillRows(rows, Left, Right);
            row += rows.count;
            continue;
        }
        const Side side = row < 0 ? Top : Bottom;
        const Mode mode = modeOf(*source_.image, side);
        if (mode == Mode::Constant) {
            const std::int64_t beyond = row < 0 ? std::min<std::int64_t>(end, 0) : end;
            const Size size = {static_cast<std::int32_t>(area_.width), static_cast<std::int32_t>(beyond - row)};
            fillConstant(side, rows.out, size);
            row = beyond;
            continue;
        }
        if (mode == Mode::Replicate) {
            rows.source = row < 0 ? 0 : height - 1;
        } else {
            const std::int64_t place = modulo(row, mode == Mode::Wrap ? height : 2 * height);
            rows.source = place < height ? place : 2 * height - 1 - place;
        }
        // The corners follow the mode of the top or the bottom.
        fillRows(rows, side, side);
        ++row;
    }
}

} // namespace

void borderFill(const BorderedImage &source, const PaddedArea &area, Raster padded)
{
    Border(source, area).fillArea(padded);
}

} // namespace orv
