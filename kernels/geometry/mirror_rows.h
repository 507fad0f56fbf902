// Mirrored rows. Pixels move whole, so all that counts of them is how many bytes they have and how many of those move.
// To be included inside the unnamed namespace of a region, after shuffles.h.

// A row is mirrored block by block, each of as many pixels as it can hold. With pixels of three bytes and multiples of
// that, a block has bytes to spare: behind its pixels at the front of a row, before them at its back.
template <class Block, std::size_t pixelBytes> constexpr std::size_t pixelsOf = sizeof(Block) / pixelBytes;
template <class Block, std::size_t pixelBytes> constexpr std::size_t spareOf = sizeof(Block) % pixelBytes;

enum class End { Front, Back };

// A block for one end of a row, from the other.
template <std::size_t pixelBytes, End target> inline std::uint64_t mirrored(std::uint64_t block)
{
    if constexpr (pixelBytes == 1) {
        return __builtin_bswap64(block);
    } else if constexpr (pixelBytes == 2) {
        constexpr std::uint64_t evenWords = 0x0000FFFF0000FFFF;
        block = block << 32 | block >> 32;
        return (block & evenWords) << 16 | (block >> 16 & evenWords);
    } else if constexpr (pixelBytes == 3) {
        constexpr std::uint64_t pixel = 0xFFFFFF;
        return target == End::Back ? block << 40 | (block >> 24 & pixel) << 16
                                   : block >> 40 | (block >> 16 & pixel) << 24;
    } else if constexpr (pixelBytes == 4) {
        return block << 32 | block >> 32;
    } else {
        constexpr std::size_t spareBits = 8 * (8 - pixelBytes);
        return target == End::Back ? block << spareBits : block >> spareBits;
    }
}

#if ORV_VECTOR_BYTES > 0

// Where byte `at` of a mirrored block comes from.
template <class Block, std::size_t pixelBytes, End target> struct MirrorOrigin {
    static constexpr std::size_t of(std::size_t at)
    {
        constexpr std::size_t spare = spareOf<Block, pixelBytes>, last = pixelsOf<Block, pixelBytes> - 1;
        const std::size_t before = target == End::Back ? spare : 0, byte = at - before;
        if (at < before || byte >= sizeof(Block) - spare)
            return at;
        return spare - before + (last - byte / pixelBytes) * pixelBytes + byte % pixelBytes;
    }
};

template <std::size_t pixelBytes, End target, class Block>
inline Block mirrored(Block block) requires(sizeof(Block) >= sizeof(Lane))
{
#if !ORV_SHUFFLES
    const U16s words = as<std::uint16_t>(block);
    if constexpr (pixelBytes == 1)
        return as<std::uint8_t>(reversedWords(words << 8 | words >> 8));
    if constexpr (pixelBytes == 2)
        return as<std::uint8_t>(reversedWords(words));
#endif
    return shuffledBytes<MirrorOrigin<Block, pixelBytes, target>>(block);
}

// Pixels of three samples of a byte or a word need the instruction that places bytes at will. Pixels that do not divide
// a vector would cross its lanes, which costs more than two lanes one by one.
template <std::size_t pixelBytes>
using BlockFor = std::conditional_t<!ORV_SHUFFLES && (pixelBytes == 3 || pixelBytes == 6), std::uint64_t,
                                    std::conditional_t<sizeof(U8s) % pixelBytes != 0, Lane, U8s>>;

#else

template <std::size_t> using BlockFor = std::uint64_t;

#endif

template <std::size_t pixelBytes> constexpr bool hasBlocks = sizeof(BlockFor<pixelBytes>) >= pixelBytes;

// The result, but its pixels' bytes from `moved` on as they were before.
template <std::size_t pixelBytes, std::size_t moved, class Block> inline Block keeping(Block result, Block before)
{
    union {
        unsigned char bytes[sizeof(Block)];
        Block all;
    } mask = {};
    for (std::size_t at = 0; at < sizeof(Block); ++at)
        mask.bytes[at] = at % pixelBytes < moved ? 0xFF : 0;
    return (result & mask.all) | (before & ~mask.all);
}

template <std::size_t pixelBytes, std::size_t moved, End target, class Block>
inline void storeMirrored(Block block, unsigned char *out)
{
    block = mirrored<pixelBytes, target>(block);
    if constexpr (moved < pixelBytes)
        block = keeping<pixelBytes, moved>(block, load<Block>(out, 0));
    store(out, 0, block);
}

// Pixels from `first` on to before `outEnd`, and pixels before `end` to `outFirst` and on, as many of `pixels` each as
// fill blocks: how many is the result. Spare bytes fall on pixels that are still to come. Both blocks are read before
// either is written, so rows without spare bytes can also be their own destination. Working from both ends avoids 4K
// aliasing between source and destination.
template <std::size_t pixelBytes, std::size_t moved>
inline std::size_t mirrorEnds(std::size_t pixels, const unsigned char *first, const unsigned char *end,
                              unsigned char *outFirst, unsigned char *outEnd)
{
    using Block = BlockFor<pixelBytes>;
    constexpr std::size_t some = pixelsOf<Block, pixelBytes>, size = sizeof(Block);
    std::size_t done = 0;
    ORV_UNROLLED
    for (; done + some + (spareOf<Block, pixelBytes> != 0) <= pixels; done += some) {
        const std::size_t at = done * pixelBytes;
        const Block front = load<Block>(first + at, 0), back = load<Block>(end - at - size, 0);
        storeMirrored<pixelBytes, moved, End::Back>(front, outEnd - at - size);
        storeMirrored<pixelBytes, moved, End::Front>(back, outFirst + at);
    }
    return done;
}

// Rasters may overlap.
template <std::size_t bytes> inline void movePixel(const unsigned char *in, unsigned char *out)
{
    __builtin_memmove(out, in, bytes);
}

// Not inlined: kernels in place and not in place and layouts of one pixel size share it.
template <std::size_t pixelBytes, std::size_t moved>
[[gnu::noinline]] void mirrorRow(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    if constexpr (hasBlocks<pixelBytes>) {
        using Block = BlockFor<pixelBytes>;
        constexpr std::size_t some = pixelsOf<Block, pixelBytes>, size = sizeof(Block);
        const std::size_t bytes = pixels * pixelBytes;
        const std::size_t done = mirrorEnds<pixelBytes, moved>(pixels / 2, in, in + bytes, out, out + bytes);
        const std::size_t left = pixels - 2 * done;
        in += done * pixelBytes;
        out += done * pixelBytes;
        if constexpr (spareOf<Block, pixelBytes> == 0) {
            // What is left in the middle, some of it twice and some of it with neighbours that are done.
            if (pixels >= some) {
                if (left > some)
                    storeMirrored<pixelBytes, moved, End::Front>(load<Block>(in + left * pixelBytes - size, 0), out);
                if (left > 0)
                    storeMirrored<pixelBytes, moved, End::Back>(load<Block>(in, 0), out + left * pixelBytes - size);
                return;
            }
        } else {
            pixels = left;
            while (pixels > some) {
                storeMirrored<pixelBytes, moved, End::Back>(load<Block>(in, 0), out + pixels * pixelBytes - size);
                in += some * pixelBytes;
                pixels -= some;
            }
        }
    }
    for (; pixels > 0; in += pixelBytes)
        movePixel<moved>(in, out + --pixels * pixelBytes);
}

template <std::size_t pixelBytes, std::size_t moved>
inline void moveRow(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    using Sample = std::conditional_t<pixelBytes == 4, std::uint8_t,
                                      std::conditional_t<pixelBytes == 8, std::uint16_t, std::uint32_t>>;
    if constexpr (moved < pixelBytes)
        moveThreeOfFour<Sample>(pixels, in, out);
    else
        __builtin_memmove(out, in, pixels * pixelBytes);
}
