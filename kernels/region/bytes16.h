// Sixteen bytes at a time, for kernels whose loops the compiler does not turn into vectors well. To be included inside
// the unnamed namespace of a region, in builds whose vectors hold integers (ORV_SSE_LEVEL of 2 and more). The includer
// has <emmintrin.h>, <cstddef> and <utility>.

typedef unsigned char Bytes16 __attribute__((vector_size(16)));

inline Bytes16 loadBytes(const unsigned char *at)
{
    return reinterpret_cast<Bytes16>(_mm_loadu_si128(reinterpret_cast<const __m128i *>(at)));
}

inline void storeBytes(unsigned char *at, Bytes16 bytes)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(at), reinterpret_cast<__m128i>(bytes));
}

// One bit for each byte that is not zero.
inline unsigned nonZeroBytes(Bytes16 bytes)
{
    const __m128i zeros = _mm_cmpeq_epi8(reinterpret_cast<__m128i>(bytes), _mm_setzero_si128());
    return static_cast<unsigned>(_mm_movemask_epi8(zeros)) ^ 0xFFFFu;
}

// Sixteen pixels' bytes, each spread over the `moved` first bytes of `pixelBytes`: piece number `piece` of `pixelBytes`
// pieces of sixteen bytes. The other bytes of a pixel are zero.
template <std::size_t pixelBytes, std::size_t moved, std::size_t piece, std::size_t... at>
inline Bytes16 spreadPiece(Bytes16 bytes, std::index_sequence<at...>)
{
    constexpr Bytes16 none = {};
    return __builtin_shufflevector(
        bytes, none,
        ((16 * piece + at) % pixelBytes < moved ? static_cast<int>((16 * piece + at) / pixelBytes) : 16)...);
}

template <std::size_t pixelBytes, std::size_t moved, std::size_t piece> inline Bytes16 spread(Bytes16 bytes)
{
    return spreadPiece<pixelBytes, moved, piece>(bytes, std::make_index_sequence<16>());
}
