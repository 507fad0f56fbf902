// Four floats at a time, and four groups of four integers packed to sixteen samples. To be included as bytes16.h is.

inline __m128 loadFloats(const unsigned char *at)
{
    return _mm_loadu_ps(reinterpret_cast<const float *>(at));
}

// A not-a-number stays: the minimum of a number and such a one is its second operand.
inline __m128 notAbove(__m128 value, float top)
{
    return _mm_min_ps(_mm_set1_ps(top), value);
}

// A not-a-number becomes the bottom.
inline __m128 clamped(__m128 value, float bottom, float top)
{
    return _mm_min_ps(_mm_max_ps(value, _mm_set1_ps(bottom)), _mm_set1_ps(top));
}

inline void storeIntegers(unsigned char *at, __m128i integers)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(at), integers);
}

// Eight integers, all in the range of the sample, as eight words. The instruction set has no unsigned pack of this
// width before its last extension, so unsigned samples move down by half their range, and back.
template <class Sample> inline __m128i packWords(__m128i low, __m128i high)
{
    if constexpr (static_cast<Sample>(-1) > 0 && sizeof(Sample) == 2) {
        const __m128i half = _mm_set1_epi32(32768);
        const __m128i words = _mm_packs_epi32(_mm_sub_epi32(low, half), _mm_sub_epi32(high, half));
        return _mm_xor_si128(words, _mm_set1_epi16(-32768));
    } else {
        return _mm_packs_epi32(low, high);
    }
}

template <class Sample> inline void storePacked(unsigned char *at, const __m128i (&integers)[4])
{
    if constexpr (sizeof(Sample) == 4) {
        for (std::size_t quarter = 0; quarter < 4; ++quarter)
            storeIntegers(at + 16 * quarter, integers[quarter]);
        return;
    }
    const __m128i low = packWords<Sample>(integers[0], integers[1]), high = packWords<Sample>(integers[2], integers[3]);
    if constexpr (sizeof(Sample) == 2) {
        storeIntegers(at, low);
        storeIntegers(at + 16, high);
    } else if constexpr (static_cast<Sample>(-1) > 0) {
        storeIntegers(at, _mm_packus_epi16(low, high));
    } else {
        storeIntegers(at, _mm_packs_epi16(low, high));
    }
}
