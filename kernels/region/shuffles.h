// Shuffles of bytes: the operations of the vector layer that cross lanes. Where a byte goes is known when they are
// compiled, and the compiler finds the instructions. Included by vectors.h.

#if ORV_VECTOR_BYTES > 0

// Byte `at` of the result is byte Origin::of(at) of the vector, or of the lane.
template <class Origin, class Bytes, std::size_t... at>
inline Bytes shuffledBytes(Bytes bytes, std::index_sequence<at...>)
{
    return __builtin_shufflevector(bytes, bytes, static_cast<int>(Origin::of(at))...);
}
template <class Origin, class Bytes> inline Bytes shuffledBytes(Bytes bytes)
{
    return shuffledBytes<Origin>(bytes, std::make_index_sequence<sizeof(Bytes)>());
}

#if !ORV_SHUFFLES
// Without an instruction for bytes, by those for words and pairs of them.
inline U16s reversedWords(U16s words)
{
    const __m128i halves = _mm_shufflehi_epi16(_mm_shufflelo_epi16(bitsOf(words), 0x1B), 0x1B);
    return as<std::uint16_t>(_mm_shuffle_epi32(halves, 0x4E));
}
#endif

#endif

#if ORV_SHUFFLES

// In each lane, the bytes at the places that the lower four bits of the indices tell; 0 for those with the top bit.
inline U8s bytesAt(U8s bytes, U8s indices)
{
    return as<std::uint8_t>(ORV_VECTOR(shuffle_epi8)(bitsOf(bytes), bitsOf(indices)));
}

// A vector has one item of so many bytes for each of as many pixels. These are as many vectors of the pixels' own bytes
// as a pixel has items, of which the one of this number gets each pixel's item over and over, at all its places.
template <std::size_t itemBytes, std::size_t items, std::size_t number> struct SpreadOrigin {
    static constexpr std::size_t of(std::size_t at)
    {
        return (ORV_VECTOR_BYTES * number + at) / itemBytes / items * itemBytes + at % itemBytes;
    }
};
template <std::size_t itemBytes, std::size_t items, std::size_t number> inline U8s spread(U8s bytes)
{
    if constexpr (items == 1)
        return bytes;
    else
        return shuffledBytes<SpreadOrigin<itemBytes, items, number>>(bytes);
}

#endif

#if ORV_VECTOR_BYTES > 0

// All bits of the first `moved` bytes of each pixel, in the vector of that number from the start of a pixel on.
template <std::size_t pixelBytes, std::size_t moved, std::size_t number = 0> struct MovedBits {
    alignas(ORV_VECTOR_BYTES) unsigned char bytes[ORV_VECTOR_BYTES];

    constexpr MovedBits() : bytes()
    {
        for (std::size_t at = 0; at < sizeof bytes; ++at)
            bytes[at] = (ORV_VECTOR_BYTES * number + at) % pixelBytes < moved ? 0xFF : 0;
    }
};
template <std::size_t pixelBytes, std::size_t moved, std::size_t number = 0> inline U8s movedBits()
{
    static constexpr MovedBits<pixelBytes, moved, number> bits;
    return loadVector<std::uint8_t>(bits.bytes);
}

// Byte by byte: `yes` where all bits of the mask's byte are set, `no` where none is. SSE4.1 asks the top bit alone.
inline U8s chosenBytes(U8s mask, U8s yes, U8s no)
{
#if ORV_SSE41
    return chosenBySigns(mask, yes, no);
#else
    return chosen<std::uint8_t>(mask, yes, no);
#endif
}

// The result, with the fourth samples of what was there before.
template <class Sample> inline Vector<Sample> keepingFourth(Vector<Sample> result, Vector<Sample> before)
{
    const U8s bits = movedBits<4 * sizeof(Sample), 3 * sizeof(Sample)>();
    return as<Sample>(chosenBytes(bits, as<std::uint8_t>(result), as<std::uint8_t>(before)));
}

// The bytes that lie `by` places further in a row, of which these are two neighbouring vectors.
template <std::size_t by> inline U8s furtherBytes(U8s vector, U8s next)
{
    static_assert(by > 0 && by <= 16);
#if ORV_VECTOR_BYTES == 32
    const Bits between = _mm256_permute2x128_si256(bitsOf(vector), bitsOf(next), 0x21);
    if constexpr (by == 16)
        return as<std::uint8_t>(between);
    else
        return as<std::uint8_t>(_mm256_alignr_epi8(between, bitsOf(vector), by));
#elif ORV_SHUFFLES
    return as<std::uint8_t>(_mm_alignr_epi8(bitsOf(next), bitsOf(vector), by));
#else
    return as<std::uint8_t>(_mm_srli_si128(bitsOf(vector), by) | _mm_slli_si128(bitsOf(next), 16 - by));
#endif
}

// packed() of neighbouring vectors gives their samples lane by lane: the lower lanes of both first. These put them in
// order, after one step of packing and after two.
template <class Vector> inline Vector inOrderOfPairs(Vector vector)
{
#if ORV_VECTOR_BYTES == 32
    return reinterpret_cast<Vector>(_mm256_permute4x64_epi64(bitsOf(vector), 0xD8));
#else
    return vector;
#endif
}
template <class Vector> inline Vector inOrderOfQuads(Vector vector)
{
#if ORV_VECTOR_BYTES == 32
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return reinterpret_cast<Vector>(_mm256_permutevar8x32_epi32(bitsOf(vector), order));
#else
    return vector;
#endif
}

// Interleaving takes the lower halves of both lanes first. These put samples so that what it gives is in order, after
// one step and after two.
template <class Vector> inline Vector forPairsInOrder(Vector vector)
{
    return inOrderOfPairs(vector);
}
template <class Vector> inline Vector forQuadsInOrder(Vector vector)
{
#if ORV_VECTOR_BYTES == 32
    const __m256i order = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
    return reinterpret_cast<Vector>(_mm256_permutevar8x32_epi32(bitsOf(vector), order));
#else
    return vector;
#endif
}

// What the upper half of a sample of twice the width holds.
enum class Upper { Zeros, Signs, Same };

template <class Sample, Upper upper> inline Vector<Sample> upperHalves(Vector<Sample> samples)
{
    if constexpr (upper == Upper::Same)
        return samples;
    else if constexpr (upper == Upper::Signs)
        return as<Sample>(samples < 0);
    else
        return Vector<Sample>{};
}

// Samples as samples of twice or four times the width.
template <class Wide, class Sample, Upper upper>
inline Group<Wide, sizeof(Wide) / sizeof(Sample)> widened(Vector<Sample> samples)
{
    if constexpr (sizeof(Wide) == 2 * sizeof(Sample)) {
        const Vector<Sample> lower = forPairsInOrder(samples), above = upperHalves<Sample, upper>(lower);
        return {as<Wide>(interleaveLow<Sample>(lower, above)), as<Wide>(interleaveHigh<Sample>(lower, above))};
    } else {
        using Word = std::int16_t;
        const Vector<Sample> lower = forQuadsInOrder(samples), above = upperHalves<Sample, upper>(lower);
        const S16s low = as<Word>(interleaveLow<Sample>(lower, above));
        const S16s high = as<Word>(interleaveHigh<Sample>(lower, above));
        const S16s aboveLow = upperHalves<Word, upper>(low), aboveHigh = upperHalves<Word, upper>(high);
        return {as<Wide>(interleaveLow<Word>(low, aboveLow)), as<Wide>(interleaveHigh<Word>(low, aboveLow)),
                as<Wide>(interleaveLow<Word>(high, aboveHigh)), as<Wide>(interleaveHigh<Word>(high, aboveHigh))};
    }
}

#if ORV_VECTOR_BYTES == 32
// The lower lanes of two vectors, and their upper lanes.
inline Floats lowerLanes(Floats a, Floats b)
{
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
}
inline Floats upperLanes(Floats a, Floats b)
{
    return __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
}
#endif

// What interleaving gave, one vector after the other in order.
template <class Sample>
inline void storeHalvesInOrder(void *row, std::size_t index, Vector<Sample> low, Vector<Sample> high)
{
#if ORV_VECTOR_BYTES == 32
    const Bits lower = _mm256_permute2x128_si256(bitsOf(low), bitsOf(high), 0x20);
    const Bits upper = _mm256_permute2x128_si256(bitsOf(low), bitsOf(high), 0x31);
    storeVector<Sample>(row, index, as<Sample>(lower));
    storeVector<Sample>(row, index + perVector<Sample>, as<Sample>(upper));
#else
    storeVector<Sample>(row, index, low);
    storeVector<Sample>(row, index + perVector<Sample>, high);
#endif
}

#endif
