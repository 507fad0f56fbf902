// Rows of one raster that change places, as they are or mirrored. To be included after mirror_rows.h.

// A part of a row that the nearest cache holds.
template <std::size_t pixelBytes> struct RowBuffer {
    static constexpr std::size_t pixels = 2048 / pixelBytes;
    unsigned char bytes[pixels * pixelBytes];
};

// What vectors do not exchange changes places by way of a buffer.
template <std::size_t pixelBytes, std::size_t moved>
void exchangeRows(std::size_t pixels, unsigned char *above, unsigned char *below)
{
#if ORV_VECTOR_BYTES > 0
    if constexpr (pixelBytes == 1) {
        constexpr std::size_t size = sizeof(U8s);
        ORV_UNROLLED
        for (; pixels >= size; pixels -= size, above += size, below += size) {
            const U8s kept = loadVector<std::uint8_t>(above);
            storeVector<std::uint8_t>(above, 0, loadVector<std::uint8_t>(below));
            storeVector<std::uint8_t>(below, 0, kept);
        }
    }
#endif
    RowBuffer<pixelBytes> buffer;
    for (std::size_t some = 0; pixels > 0; pixels -= some) {
        some = pixels < buffer.pixels ? pixels : buffer.pixels;
        __builtin_memcpy(buffer.bytes, above, some * pixelBytes);
        moveRow<pixelBytes, moved>(some, below, above);
        moveRow<pixelBytes, moved>(some, buffer.bytes, below);
        above += some * pixelBytes;
        below += some * pixelBytes;
    }
}

// Pixels from `first` on with those before `end`.
template <std::size_t pixelBytes, std::size_t moved>
void exchangeMirrored(std::size_t pixels, unsigned char *first, unsigned char *end)
{
    if constexpr (hasBlocks<pixelBytes> && spareOf<BlockFor<pixelBytes>, pixelBytes> == 0) {
        const std::size_t done = mirrorEnds<pixelBytes, moved>(pixels, first, end, first, end);
        first += done * pixelBytes;
        end -= done * pixelBytes;
        pixels -= done;
    }
    RowBuffer<pixelBytes> buffer;
    for (std::size_t some = 0; pixels > 0; pixels -= some) {
        some = pixels < buffer.pixels ? pixels : buffer.pixels;
        end -= some * pixelBytes;
        __builtin_memcpy(buffer.bytes, first, some * pixelBytes);
        mirrorRow<pixelBytes, moved>(some, end, first);
        mirrorRow<pixelBytes, moved>(some, buffer.bytes, end);
        first += some * pixelBytes;
    }
}
