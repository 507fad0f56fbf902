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

// A row is mirrored piece by piece, each of as many pixels as it can hold. What is left of it behind pixels of three
// bytes and multiples of that comes to lie before them.
template <class Piece, std::size_t pixelBytes> constexpr std::size_t pixelsOf = sizeof(Piece) / pixelBytes;
template <class Piece, std::size_t pixelBytes> constexpr std::size_t spareOf = sizeof(Piece) % pixelBytes;

template <std::size_t pixelBytes> inline std::uint64_t mirrored(std::uint64_t piece)
{
    if constexpr (pixelBytes == 1) {
        return __builtin_bswap64(piece);
    } else if constexpr (pixelBytes == 2) {
        constexpr std::uint64_t evenWords = 0x0000FFFF0000FFFF;
        piece = piece << 32 | piece >> 32;
        return (piece & evenWords) << 16 | (piece >> 16 & evenWords);
    } else if constexpr (pixelBytes == 3) {
        return piece << 40 | (piece >> 24 & 0xFFFFFF) << 16;
    } else if constexpr (pixelBytes == 4) {
        return piece << 32 | piece >> 32;
    } else {
        return piece << 8 * (8 - pixelBytes);
    }
}

#if ORV_SSE_LEVEL >= 4

// Where byte `at` of a mirrored piece comes from.
template <std::size_t pixelBytes> constexpr int originOf(std::size_t at)
{
    constexpr std::size_t spare = spareOf<Bytes16, pixelBytes>, pixels = pixelsOf<Bytes16, pixelBytes>;
    return at < spare
               ? 0
               : static_cast<int>((pixels - 1 - (at - spare) / pixelBytes) * pixelBytes + (at - spare) % pixelBytes);
}

template <std::size_t pixelBytes, std::size_t... at> inline Bytes16 shuffled(Bytes16 piece, std::index_sequence<at...>)
{
    return __builtin_shufflevector(piece, piece, originOf<pixelBytes>(at)...);
}

#endif

#if ORV_SSE_LEVEL >= 2

template <std::size_t pixelBytes> inline Bytes16 mirrored(Bytes16 piece)
{
    const __m128i bytes = reinterpret_cast<__m128i>(piece);
    if constexpr (pixelBytes == 16)
        return piece;
    else if constexpr (pixelBytes == 12)
        return reinterpret_cast<Bytes16>(_mm_slli_si128(bytes, 4));
    else if constexpr (pixelBytes == 8)
        return reinterpret_cast<Bytes16>(_mm_shuffle_epi32(bytes, 0x4E));
    else if constexpr (pixelBytes == 4)
        return reinterpret_cast<Bytes16>(_mm_shuffle_epi32(bytes, 0x1B));
    else {
#if ORV_SSE_LEVEL >= 4
        return shuffled<pixelBytes>(piece, std::make_index_sequence<16>());
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

template <std::size_t pixelBytes, std::size_t moved, class Piece>
inline void mirrorPiece(const unsigned char *in, unsigned char *out)
{
    Piece piece = mirrored<pixelBytes>(load<Piece>(in, 0));
    if constexpr (moved < pixelBytes)
        piece = keeping<pixelBytes, moved>(piece, load<Piece>(out, 0));
    store(out, 0, piece);
}

// Pixels from the first one on go to the end of the destination and before it. Spare bytes of a piece fall on pixels
// that are still to come. Not inlined: kernels in place and not in place and layouts of one pixel size share it.
template <std::size_t pixelBytes, std::size_t moved>
__attribute__((noinline)) void mirrorRow(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    std::size_t done = 0;
    using Piece = PieceFor<pixelBytes>;
    if constexpr (sizeof(Piece) >= pixelBytes) {
        constexpr std::size_t some = pixelsOf<Piece, pixelBytes>, spare = spareOf<Piece, pixelBytes>;
        const auto mirrorFrom = [=](std::size_t pixel) {
            mirrorPiece<pixelBytes, moved, Piece>(in + pixel * pixelBytes,
                                                  out + (pixels - pixel - some) * pixelBytes - spare);
        };
        ORV_UNROLLED
        for (; done + some + (spare != 0) <= pixels; done += some)
            mirrorFrom(done);
        // The last pixels once more with those before them.
        if (spare == 0 && pixels >= some && done < pixels) {
            mirrorFrom(pixels - some);
            return;
        }
    }
    for (; done < pixels; ++done)
        __builtin_memcpy(out + (pixels - 1 - done) * pixelBytes, in + done * pixelBytes, moved);
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
    const auto row = flip == flipRows ? moveRow<pixelBytes, moved> : mirrorRow<pixelBytes, moved>;
    for (std::int32_t y = 0; y < height; ++y)
        row(static_cast<std::size_t>(width), rowOf(in, y), rowOf(out, flip == flipColumns ? y : height - 1 - y));
    return KRN_OK;
}

// In place, pieces change places by way of a buffer that the nearest cache holds.
template <std::size_t pixelBytes> struct Buffer {
    static constexpr std::size_t pixels = 2048 / pixelBytes;
    unsigned char bytes[pixels * pixelBytes];
};

template <std::size_t pixelBytes, std::size_t moved>
void exchangeRows(std::size_t pixels, unsigned char *above, unsigned char *below)
{
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
        if (flip == flipRows)
            exchangeRows<pixelBytes, moved>(pixels, above, below);
        else
            exchangeMirrored<pixelBytes, moved>(pixels, above, below + pixels * pixelBytes);
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
