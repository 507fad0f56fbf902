// Mirrored rows of images larger than the caches, stored past them: that saves the reading of what is overwritten. To
// be included after mirror_rows.h, in builds with vectors.

// Source and destination of this size fill the caches that there are.
constexpr std::size_t streamedBytes = std::size_t{12} << 20;

// A buffer that stays in the nearest cache.
constexpr std::size_t bufferBytes = 2048;

inline void streamBytes(std::size_t bytes, const unsigned char *in, unsigned char *out)
{
    for (; bytes > 0 && !onVectorBoundary(out); --bytes)
        *out++ = *in++;
    std::size_t i = 0;
    for (; i + sizeof(U8s) <= bytes; i += sizeof(U8s))
        streamVector<std::uint8_t>(out, i, loadVector<std::uint8_t>(in, i));
    __builtin_memmove(out + i, in + i, bytes - i);
}

template <std::size_t pixelBytes> void streamRow(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    streamBytes(pixels * pixelBytes, in, out);
}

template <std::size_t pixelBytes>
inline bool standsOn(std::size_t boundary, const unsigned char *out, std::size_t pixel)
{
    return reinterpret_cast<std::uintptr_t>(out + pixel * pixelBytes) % boundary == 0;
}

// Blocks that pixels fill. Pixels across vector boundaries are stored as ever.
template <std::size_t pixelBytes> void streamBlocks(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    constexpr std::size_t size = sizeof(U8s), some = size / pixelBytes;
    for (std::size_t i = 0; i < some && pixels > 0 && !standsOn<pixelBytes>(size, out, pixels); ++i, in += pixelBytes)
        movePixel<pixelBytes>(in, out + --pixels * pixelBytes);
    if (standsOn<pixelBytes>(size, out, pixels))
        for (; pixels >= some; pixels -= some, in += size)
            streamVector<std::uint8_t>(out, pixels * pixelBytes - size,
                                       mirrored<pixelBytes, End::Back>(loadVector<std::uint8_t>(in)));
    mirrorRow<pixelBytes, pixelBytes>(pixels, in, out);
}

template <std::size_t pixelBytes> void mirrorUpwards(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    using Block = BlockFor<pixelBytes>;
    constexpr std::size_t some = pixelsOf<Block, pixelBytes>;
    ORV_UNROLLED
    for (; pixels > some; pixels -= some, in += some * pixelBytes)
        storeMirrored<pixelBytes, pixelBytes, End::Back>(load<Block>(in, 0), out + pixels * pixelBytes - sizeof(Block));
    for (; pixels > 0; in += pixelBytes)
        movePixel<pixelBytes>(in, out + --pixels * pixelBytes);
}

// Other blocks are gathered in a buffer, as many as make whole cache lines: parts of lines are written slowly.
template <std::size_t pixelBytes> void streamLines(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    constexpr std::size_t line = 64, most = bufferBytes / pixelBytes / line * line;
    unsigned char buffer[most * pixelBytes];
    std::size_t some = pixels < most ? pixels : most;
    for (std::size_t i = 0; i < line && some > 0 && !standsOn<pixelBytes>(line, out, pixels - some); ++i)
        --some;
    if (!standsOn<pixelBytes>(line, out, pixels - some))
        some = 0;
    while (some > 0) {
        pixels -= some;
        mirrorUpwards<pixelBytes>(some, in, buffer);
        streamBytes(some * pixelBytes, buffer, out + pixels * pixelBytes);
        in += some * pixelBytes;
        some = pixels < most ? pixels : most;
    }
    mirrorUpwards<pixelBytes>(pixels, in, out);
}

// All of these read upwards, which the prefetchers follow best. Where the destination's rows come in descending order
// too, blocks with spare bytes do without the buffer.
template <std::size_t pixelBytes> constexpr auto streamMirrored(bool rowsDescend)
{
    if constexpr (sizeof(U8s) % pixelBytes == 0)
        return streamBlocks<pixelBytes>;
    else
        return rowsDescend ? mirrorUpwards<pixelBytes> : streamLines<pixelBytes>;
}
