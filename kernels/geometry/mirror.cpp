// Rasters flipped about their axes. Pixels move whole, so a kernel knows of them only how many bytes they have and how
// many of those it moves.
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#endif

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#if ORV_SSE_LEVEL >= 2
#include "bytes16.h"
#endif

enum : std::int32_t { flipRows = 0, flipColumns = 1, flipBoth = 2 };

// A row is mirrored piece by piece, each of as many pixels as it can hold. Beside pixels of three bytes and multiples
// of that a piece has bytes to spare: behind its pixels at the front of a row, before them at its back.
template <class Piece, std::size_t pixelBytes> constexpr std::size_t pixelsOf = sizeof(Piece) / pixelBytes;
template <class Piece, std::size_t pixelBytes> constexpr std::size_t spareOf = sizeof(Piece) % pixelBytes;

enum class End { Front, Back };

// A piece for one end of a row, from the other.
template <std::size_t pixelBytes, End target> inline std::uint64_t mirrored(std::uint64_t piece)
{
    if constexpr (pixelBytes == 1) {
        return __builtin_bswap64(piece);
    } else if constexpr (pixelBytes == 2) {
        constexpr std::uint64_t evenWords = 0x0000FFFF0000FFFF;
        piece = piece << 32 | piece >> 32;
        return (piece & evenWords) << 16 | (piece >> 16 & evenWords);
    } else if constexpr (pixelBytes == 3) {
        constexpr std::uint64_t pixel = 0xFFFFFF;
        return target == End::Back ? piece << 40 | (piece >> 24 & pixel) << 16
                                   : piece >> 40 | (piece >> 16 & pixel) << 24;
    } else if constexpr (pixelBytes == 4) {
        return piece << 32 | piece >> 32;
    } else {
        constexpr std::size_t spareBits = 8 * (8 - pixelBytes);
        return target == End::Back ? piece << spareBits : piece >> spareBits;
    }
}

#if ORV_SSE_LEVEL >= 4

// Where byte `at` of such a piece comes from.
template <std::size_t pixelBytes, End target> constexpr int originOf(std::size_t at)
{
    constexpr std::size_t spare = spareOf<Bytes16, pixelBytes>, last = pixelsOf<Bytes16, pixelBytes> - 1;
    const std::size_t before = target == End::Back ? spare : 0, byte = at - before;
    if (at < before || byte >= 16 - spare)
        return static_cast<int>(at);
    return static_cast<int>(spare - before + (last - byte / pixelBytes) * pixelBytes + byte % pixelBytes);
}

template <std::size_t pixelBytes, End target, std::size_t... at>
inline Bytes16 shuffled(Bytes16 piece, std::index_sequence<at...>)
{
    return __builtin_shufflevector(piece, piece, originOf<pixelBytes, target>(at)...);
}

#endif

#if ORV_SSE_LEVEL >= 2

template <std::size_t pixelBytes, End target> inline Bytes16 mirrored(Bytes16 piece)
{
    const __m128i bytes = reinterpret_cast<__m128i>(piece);
    if constexpr (pixelBytes == 16)
        return piece;
    else if constexpr (pixelBytes == 12)
        return reinterpret_cast<Bytes16>(target == End::Back ? _mm_slli_si128(bytes, 4) : _mm_srli_si128(bytes, 4));
    else if constexpr (pixelBytes == 8)
        return reinterpret_cast<Bytes16>(_mm_shuffle_epi32(bytes, 0x4E));
    else if constexpr (pixelBytes == 4)
        return reinterpret_cast<Bytes16>(_mm_shuffle_epi32(bytes, 0x1B));
    else {
#if ORV_SSE_LEVEL >= 4
        return shuffled<pixelBytes, target>(piece, std::make_index_sequence<16>());
#else
        static_assert(pixelBytes <= 2);
        const __m128i words =
            pixelBytes == 2 ? bytes : _mm_or_si128(_mm_slli_epi16(bytes, 8), _mm_srli_epi16(bytes, 8));
        const __m128i halves = _mm_shufflehi_epi16(_mm_shufflelo_epi16(words, 0x1B), 0x1B);
        return reinterpret_cast<Bytes16>(_mm_shuffle_epi32(halves, 0x4E));
#endif
    }
}

// Pixels of three samples of a byte or a word wait for the instruction that places bytes at will.
template <std::size_t pixelBytes>
using PieceFor = std::conditional_t<ORV_SSE_LEVEL >= 4 || (pixelBytes != 3 && pixelBytes != 6), Bytes16, std::uint64_t>;

#else

template <std::size_t> using PieceFor = std::uint64_t;

#endif

template <std::size_t pixelBytes> constexpr bool hasPieces = sizeof(PieceFor<pixelBytes>) >= pixelBytes;

// The result, but its pixels' bytes from `moved` on as they were before.
template <std::size_t pixelBytes, std::size_t moved, class Piece> inline Piece keeping(Piece result, Piece before)
{
    union {
        unsigned char bytes[sizeof(Piece)];
        Piece all;
    } mask = {};
    for (std::size_t at = 0; at < sizeof(Piece); ++at)
        mask.bytes[at] = at % pixelBytes < moved ? 0xFF : 0;
    return (result & mask.all) | (before & ~mask.all);
}

template <std::size_t pixelBytes, std::size_t moved, End target, class Piece>
inline void storeMirrored(Piece piece, unsigned char *out)
{
    piece = mirrored<pixelBytes, target>(piece);
    if constexpr (moved < pixelBytes)
        piece = keeping<pixelBytes, moved>(piece, load<Piece>(out, 0));
    store(out, 0, piece);
}

// Pixels from `first` on to before `outEnd`, and pixels before `end` to `outFirst` and on, as many of `pixels` each as
// fill pieces: how many is the result. Spare bytes fall on pixels that are still to come. Both pieces are read before
// either is written, so rows without spare bytes can also change places with themselves. Working from both ends reads
// no place of a page whose like in the other raster has just been written, which processors take for the same place.
template <std::size_t pixelBytes, std::size_t moved>
inline std::size_t mirrorEnds(std::size_t pixels, const unsigned char *first, const unsigned char *end,
                              unsigned char *outFirst, unsigned char *outEnd)
{
    using Piece = PieceFor<pixelBytes>;
    constexpr std::size_t some = pixelsOf<Piece, pixelBytes>, size = sizeof(Piece);
    std::size_t done = 0;
    ORV_UNROLLED
    for (; done + some + (spareOf<Piece, pixelBytes> != 0) <= pixels; done += some) {
        const std::size_t at = done * pixelBytes;
        const Piece front = load<Piece>(first + at, 0), back = load<Piece>(end - at - size, 0);
        storeMirrored<pixelBytes, moved, End::Back>(front, outEnd - at - size);
        storeMirrored<pixelBytes, moved, End::Front>(back, outFirst + at);
    }
    return done;
}

// Rasters may lie across each other.
template <std::size_t bytes> inline void movePixel(const unsigned char *in, unsigned char *out)
{
    __builtin_memmove(out, in, bytes);
}

// Not inlined: kernels in place and not in place and layouts of one pixel size share it.
template <std::size_t pixelBytes, std::size_t moved>
__attribute__((noinline)) void mirrorRow(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    if constexpr (hasPieces<pixelBytes>) {
        using Piece = PieceFor<pixelBytes>;
        constexpr std::size_t some = pixelsOf<Piece, pixelBytes>, size = sizeof(Piece);
        const std::size_t bytes = pixels * pixelBytes;
        const std::size_t done = mirrorEnds<pixelBytes, moved>(pixels / 2, in, in + bytes, out, out + bytes);
        const std::size_t left = pixels - 2 * done;
        in += done * pixelBytes;
        out += done * pixelBytes;
        if constexpr (spareOf<Piece, pixelBytes> == 0) {
            // What is left in the middle, some of it twice and some of it with neighbours that are done.
            if (pixels >= some) {
                if (left > some)
                    storeMirrored<pixelBytes, moved, End::Front>(load<Piece>(in + left * pixelBytes - size, 0), out);
                if (left > 0)
                    storeMirrored<pixelBytes, moved, End::Back>(load<Piece>(in, 0), out + left * pixelBytes - size);
                return;
            }
        } else {
            pixels = left;
            while (pixels > some) {
                storeMirrored<pixelBytes, moved, End::Back>(load<Piece>(in, 0), out + pixels * pixelBytes - size);
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

// A piece of a row that the nearest cache holds.
template <std::size_t pixelBytes> struct Buffer {
    static constexpr std::size_t pixels = 2048 / pixelBytes;
    unsigned char bytes[pixels * pixelBytes];
};

#if ORV_SSE_LEVEL >= 2

// Source and destination of that size fill the caches that there are. Stores that pass the caches by save the reading
// of what they overwrite.
constexpr std::size_t streamedBytes = std::size_t{12} << 20;

inline void streamBytes(std::size_t bytes, const unsigned char *in, unsigned char *out)
{
    for (; bytes > 0 && reinterpret_cast<std::uintptr_t>(out) % 16 != 0; --bytes)
        *out++ = *in++;
    for (; bytes >= 16; bytes -= 16, in += 16, out += 16)
        _mm_stream_si128(reinterpret_cast<__m128i *>(out), reinterpret_cast<__m128i>(loadBytes(in)));
    __builtin_memmove(out, in, bytes);
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

// Pieces of whole vectors. Pixels that stand across multiples of sixteen are stored as ever.
template <std::size_t pixelBytes> void streamPieces(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    constexpr std::size_t some = 16 / pixelBytes;
    for (std::size_t i = 0; i < some && pixels > 0 && !standsOn<pixelBytes>(16, out, pixels); ++i, in += pixelBytes)
        movePixel<pixelBytes>(in, out + --pixels * pixelBytes);
    if (standsOn<pixelBytes>(16, out, pixels))
        for (; pixels >= some; pixels -= some, in += some * pixelBytes)
            _mm_stream_si128(reinterpret_cast<__m128i *>(out + pixels * pixelBytes - 16),
                             reinterpret_cast<__m128i>(mirrored<pixelBytes, End::Back>(loadBytes(in))));
    mirrorRow<pixelBytes, pixelBytes>(pixels, in, out);
}

template <std::size_t pixelBytes> void mirrorUpwards(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    using Piece = PieceFor<pixelBytes>;
    constexpr std::size_t some = pixelsOf<Piece, pixelBytes>;
    ORV_UNROLLED
    for (; pixels > some; pixels -= some, in += some * pixelBytes)
        storeMirrored<pixelBytes, pixelBytes, End::Back>(load<Piece>(in, 0), out + pixels * pixelBytes - sizeof(Piece));
    for (; pixels > 0; in += pixelBytes)
        movePixel<pixelBytes>(in, out + --pixels * pixelBytes);
}

// Other pieces are put together in a buffer, as many as make whole lines of the caches: parts of lines are written
// slowly.
template <std::size_t pixelBytes> void streamLines(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    constexpr std::size_t line = 64, most = 2048 / pixelBytes / line * line;
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

// All of these read upwards, as the memory likes it best. Where the destination's rows follow each other downwards too,
// other pieces do without the buffer.
template <std::size_t pixelBytes> constexpr auto streamMirrored(std::int32_t flip)
{
    if constexpr (16 % pixelBytes == 0)
        return streamPieces<pixelBytes>;
    else
        return flip == flipColumns ? streamLines<pixelBytes> : mirrorUpwards<pixelBytes>;
}

#endif

template <std::size_t pixelBytes, std::size_t moved>
KrnStatus mirror(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                 std::int32_t width, std::int32_t height, std::int32_t flip)
{
    const auto in = from(source, sourceStep, pixelBytes);
    const auto out = to(destination, destinationStep, pixelBytes);
    if (const KrnStatus refusal = testRectangles(width, height, in, out); refusal != KRN_OK)
        return refusal;
    if (flip < flipRows || flip > flipBoth)
        return KRN_BAD_AXIS;
    auto row = flip == flipRows ? moveRow<pixelBytes, moved> : mirrorRow<pixelBytes, moved>;
#if ORV_SSE_LEVEL >= 2
    const bool streams = moved == pixelBytes && static_cast<std::size_t>(width) * static_cast<std::size_t>(height) >=
                                                    streamedBytes / pixelBytes;
    if (streams)
        row = flip == flipRows ? streamRow<pixelBytes> : streamMirrored<pixelBytes>(flip);
#endif
    for (std::int32_t y = 0; y < height; ++y)
        row(static_cast<std::size_t>(width), rowOf(in, y), rowOf(out, flip == flipColumns ? y : height - 1 - y));
#if ORV_SSE_LEVEL >= 2
    if (streams)
        _mm_sfence();
#endif
    return KRN_OK;
}

// In place, what is not exchanged by vectors changes places by way of a buffer.
template <std::size_t pixelBytes, std::size_t moved>
void exchangeRows(std::size_t pixels, unsigned char *above, unsigned char *below)
{
#if ORV_SSE_LEVEL >= 2
    if constexpr (pixelBytes == 1) {
        ORV_UNROLLED
        for (; pixels >= 16; pixels -= 16, above += 16, below += 16) {
            const Bytes16 piece = loadBytes(above);
            storeBytes(above, loadBytes(below));
            storeBytes(below, piece);
        }
    }
#endif
    Buffer<pixelBytes> buffer;
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
    if constexpr (hasPieces<pixelBytes> && spareOf<PieceFor<pixelBytes>, pixelBytes> == 0) {
        const std::size_t done = mirrorEnds<pixelBytes, moved>(pixels, first, end, first, end);
        first += done * pixelBytes;
        end -= done * pixelBytes;
        pixels -= done;
    }
    Buffer<pixelBytes> buffer;
    for (std::size_t some = 0; pixels > 0; pixels -= some) {
        some = pixels < buffer.pixels ? pixels : buffer.pixels;
        end -= some * pixelBytes;
        __builtin_memcpy(buffer.bytes, first, some * pixelBytes);
        mirrorRow<pixelBytes, moved>(some, end, first);
        mirrorRow<pixelBytes, moved>(some, buffer.bytes, end);
        first += some * pixelBytes;
    }
}

template <std::size_t pixelBytes, std::size_t moved>
KrnStatus mirrorInPlace(void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t flip)
{
    const auto raster = to(image, step, pixelBytes);
    if (const KrnStatus refusal = testRectangles(width, height, raster); refusal != KRN_OK)
        return refusal;
    if (flip < flipRows || flip > flipBoth)
        return KRN_BAD_AXIS;
    const std::size_t pixels = static_cast<std::size_t>(width);
    const auto mirrorOne = [=](std::int32_t y) {
        exchangeMirrored<pixelBytes, moved>(pixels / 2, rowOf(raster, y), rowOf(raster, y) + pixels * pixelBytes);
    };
    if (flip == flipColumns) {
        for (std::int32_t y = 0; y < height; ++y)
            mirrorOne(y);
        return KRN_OK;
    }
    for (std::int32_t y = 0; y < height / 2; ++y) {
        unsigned char *const above = rowOf(raster, y), *const below = rowOf(raster, height - 1 - y);
        if (flip == flipBoth)
            exchangeMirrored<pixelBytes, moved>(pixels, above, below + pixels * pixelBytes);
        else if constexpr (moved == pixelBytes)
            exchangeRows<1, 1>(pixels * pixelBytes, above, below);
        else
            exchangeRows<pixelBytes, moved>(pixels, above, below);
    }
    if (flip == flipBoth && height % 2 != 0)
        mirrorOne(height / 2);
    return KRN_OK;
}

} // namespace

#define ORV_MIRROR(name, pixelBytes, moved)                                                                       \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,  \
                   std::int32_t width, std::int32_t height, std::int32_t flip)                                    \
    {                                                                                                             \
        return mirror<pixelBytes, moved>(source, sourceStep, destination, destinationStep, width, height, flip);  \
    }                                                                                                             \
    KrnStatus name##I(void *image, std::int32_t step, std::int32_t width, std::int32_t height, std::int32_t flip) \
    {                                                                                                             \
        return mirrorInPlace<pixelBytes, moved>(image, step, width, height, flip);                                \
    }

#define ORV_MIRRORS(samples, sampleBytes)                                \
    ORV_MIRROR(krnMirror##samples##C1, sampleBytes, sampleBytes)         \
    ORV_MIRROR(krnMirror##samples##C3, 3 * sampleBytes, 3 * sampleBytes) \
    ORV_MIRROR(krnMirror##samples##C4, 4 * sampleBytes, 4 * sampleBytes) \
    ORV_MIRROR(krnMirror##samples##AC4, 4 * sampleBytes, 3 * sampleBytes)

ORV_MIRRORS(8u, 1)
ORV_MIRRORS(16u, 2)
ORV_MIRRORS(32s, 4)

#include "end.h"
