// Rows in blocks of vectors that are looked up at once. To be included inside the unnamed namespace of a region, after
// points.h.

constexpr std::size_t levelCountOfBytes = 256;

struct Table {
    std::uint8_t of[levelCountOfBytes];

    void make(const std::int32_t *values, const std::int32_t *levels, std::int32_t levelCount);
    bool operator==(const Table &other) const { return __builtin_memcmp(of, other.of, sizeof of) == 0; }
};

#if ORV_VECTOR_BYTES > 0

template <std::size_t count> struct Block {
    static constexpr std::size_t bytes = count * ORV_VECTOR_BYTES;
    U8s vectors[count];

    static Block from(const unsigned char *in)
    {
        Block block;
        for (std::size_t i = 0; i < count; ++i)
            block.vectors[i] = loadVector<std::uint8_t>(in, i * ORV_VECTOR_BYTES);
        return block;
    }
    template <bool keepsFourth> void storeTo(unsigned char *out) const
    {
        for (std::size_t i = 0; i < count; ++i) {
            U8s result = vectors[i];
            if constexpr (keepsFourth)
                result = keepingFourth<std::uint8_t>(result, loadVector<std::uint8_t>(out, i * ORV_VECTOR_BYTES));
            storeVector<std::uint8_t>(out, i * ORV_VECTOR_BYTES, result);
        }
    }
};

// A row of at least one block. The last block overlaps its neighbour where blocks do not divide the row. It is looked
// up before anything is written, so that the row may be its own source. No row lies over what is looked up in: without
// that promise, all of it is loaded again after each store.
template <std::size_t count, bool keepsFourth, class LookUp>
[[gnu::noinline]] void overBlocks(std::size_t bytes, const LookUp &__restrict lookUp, unsigned char *out,
                                  const unsigned char *in)
{
    const std::size_t tail = bytes - Block<count>::bytes;
    const Block<count> last = lookUp(Block<count>::from(in + tail));
    std::size_t at = 0;
    for (; at <= tail; at += Block<count>::bytes)
        lookUp(Block<count>::from(in + at)).template storeTo<keepsFourth>(out + at);
    if (at != bytes)
        last.template storeTo<keepsFourth>(out + tail);
}

#endif
