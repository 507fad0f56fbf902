// Any table by shuffles: 16 vectors hold 16 entries each. To be included after table_blocks.h, in builds that have
// shuffles and choices of bytes: with shuffles alone, loads from the table are faster.

struct ShuffledTable {
    U8s entries[16];

    void make(const Table &table)
    {
        for (std::size_t i = 0; i < 16; ++i)
            entries[i] = loadLanes<std::uint8_t>(table.of + 16 * i, table.of + 16 * i);
    }
    U8s lookUp(U8s samples) const;
};

// Moves a bit to the top of each byte, where choices look for it.
template <int by> inline U8s bitOnTop(U8s samples)
{
    return as<std::uint8_t>(as<std::uint16_t>(samples) << by);
}

// The lower four bits are an index. Shuffles give 0 for indices with the top bit set, which tells the halves of the
// table apart; the other three bits choose.
inline U8s ShuffledTable::lookUp(U8s samples) const
{
    const U8s low = samples & std::uint8_t{0x8F}, high = low ^ std::uint8_t{0x80};
    const U8s by16 = bitOnTop<3>(samples), by32 = bitOnTop<2>(samples), by64 = bitOnTop<1>(samples);
    U8s chosen[8];
    for (std::size_t i = 0; i < 8; ++i)
        chosen[i] = bytesAt(entries[i], low) | bytesAt(entries[i + 8], high);
    for (std::size_t i = 0; i < 8; i += 2)
        chosen[i] = chosenBytes(by16, chosen[i + 1], chosen[i]);
    for (std::size_t i = 0; i < 8; i += 4)
        chosen[i] = chosenBytes(by32, chosen[i + 2], chosen[i]);
    return chosenBytes(by64, chosen[4], chosen[0]);
}

// Blocks with a vector of each channel, and back.
template <std::size_t channels> struct ByChannel {
    static void split(Block<channels> &) {}
    static void join(Block<channels> &) {}
};

// In three neighbouring vectors, a channel has different places in each. It keeps them.
template <> struct ByChannel<3> {
    template <std::size_t vector, std::size_t channel> static U8s places()
    {
        return movedBits<3, 1, (vector + (3 - channel) * ORV_VECTOR_BYTES) % 3>();
    }
    template <std::size_t channel> static U8s channelOf(const Block<3> &block)
    {
        return chosenBytes(places<0, channel>(), block.vectors[0],
                           chosenBytes(places<1, channel>(), block.vectors[1], block.vectors[2]));
    }
    template <std::size_t vector> static U8s vectorOf(const Block<3> &block)
    {
        return chosenBytes(places<vector, 0>(), block.vectors[0],
                           chosenBytes(places<vector, 1>(), block.vectors[1], block.vectors[2]));
    }
    static void split(Block<3> &block) { block = {{channelOf<0>(block), channelOf<1>(block), channelOf<2>(block)}}; }
    static void join(Block<3> &block) { block = {{vectorOf<0>(block), vectorOf<1>(block), vectorOf<2>(block)}}; }
};

// The transpose of four bytes by four.
struct FourByFour {
    static constexpr std::size_t of(std::size_t at) { return at / 16 * 16 + at % 4 * 4 + at / 4 % 4; }
};

template <> struct ByChannel<4> {
    static void split(Block<4> &block)
    {
        for (U8s &vector : block.vectors)
            vector = shuffledBytes<FourByFour>(vector);
        transpose<4>(block.vectors);
    }
    static void join(Block<4> &block)
    {
        transpose<4>(block.vectors);
        for (U8s &vector : block.vectors)
            vector = shuffledBytes<FourByFour>(vector);
    }
};

template <std::size_t channels, std::size_t written> struct ShuffledTables {
    ShuffledTable tables[written];

    explicit ShuffledTables(const Table *of)
    {
        for (std::size_t channel = 0; channel < written; ++channel)
            tables[channel].make(of[channel]);
    }
    Block<channels> operator()(Block<channels> block) const
    {
        ByChannel<channels>::split(block);
        for (std::size_t channel = 0; channel < written; ++channel)
            block.vectors[channel] = tables[channel].lookUp(block.vectors[channel]);
        ByChannel<channels>::join(block);
        return block;
    }
};
