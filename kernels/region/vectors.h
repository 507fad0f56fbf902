// Vectors of sixteen bytes by sample type. To be included inside the unnamed namespace of a region, in builds whose
// vectors hold integers (ORV_SSE_LEVEL of 2 and more). The includer has <emmintrin.h>, <cstddef> and <cstdint>.

template <class Sample> struct VectorOf {
    typedef Sample Type __attribute__((vector_size(16)));
};
template <class Sample> using Vector = typename VectorOf<Sample>::Type;

template <class Sample> inline Vector<Sample> loadVector(const void *row, std::size_t index)
{
    Vector<Sample> vector;
    __builtin_memcpy(&vector, static_cast<const unsigned char *>(row) + index * sizeof(Sample), 16);
    return vector;
}

template <class Sample> inline void storeVector(void *row, std::size_t index, Vector<Sample> vector)
{
    __builtin_memcpy(static_cast<unsigned char *>(row) + index * sizeof(Sample), &vector, 16);
}

// Past the caches, to a multiple of sixteen bytes.
template <class Sample> inline void streamVector(void *row, std::size_t index, Vector<Sample> vector)
{
    _mm_stream_si128(reinterpret_cast<__m128i *>(static_cast<unsigned char *>(row) + index * sizeof(Sample)),
                     reinterpret_cast<__m128i>(vector));
}

template <class Sample> inline Vector<Sample> everywhere(Sample sample)
{
    return sample - Vector<Sample>{};
}

inline __m128i asIntegers(auto vector)
{
    return reinterpret_cast<__m128i>(vector);
}
template <class Sample> inline Vector<Sample> asVector(__m128i integers)
{
    return reinterpret_cast<Vector<Sample>>(integers);
}

// All bits of the first three samples of each four.
template <class Sample> inline __m128i threeOfFourBits()
{
    if constexpr (sizeof(Sample) == 1)
        return _mm_set1_epi32(0x00FFFFFF);
    else if constexpr (sizeof(Sample) == 2)
        return _mm_set_epi32(0x0000FFFF, -1, 0x0000FFFF, -1);
    else
        return _mm_set_epi32(0, -1, -1, -1);
}

// The result, with the fourth samples of what stood there before.
template <class Sample> inline Vector<Sample> keepingFourth(Vector<Sample> result, Vector<Sample> before)
{
    const __m128i bits = threeOfFourBits<Sample>();
    return asVector<Sample>(
        _mm_or_si128(_mm_and_si128(bits, asIntegers(result)), _mm_andnot_si128(bits, asIntegers(before))));
}
