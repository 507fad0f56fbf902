// Blocks of 8 x 8 floats in registers, for transforms and transpositions. To be included inside the unnamed namespace
// of a region, after rows.h and vectors.h.

#if ORV_VECTOR_BYTES > 0
using BlockValue = Floats;
constexpr std::size_t blockLanes = perVector<float>;
#else
using BlockValue = float;
constexpr std::size_t blockLanes = 1;
#endif
constexpr std::size_t blockValues = 8 / blockLanes; // of a row

struct FloatBlock {
    BlockValue rows[8][blockValues];
};

#if ORV_VECTOR_BYTES > 0

// Four vectors: in each lane, rows of 4 x 4 floats become columns.
inline void transposeFours(Floats &a, Floats &b, Floats &c, Floats &d)
{
    U8s items[4] = {as<std::uint8_t>(a), as<std::uint8_t>(b), as<std::uint8_t>(c), as<std::uint8_t>(d)};
    transpose<4>(items);
    a = as<float>(items[0]);
    b = as<float>(items[1]);
    c = as<float>(items[2]);
    d = as<float>(items[3]);
}

inline void transpose(FloatBlock &block)
{
    auto &rows = block.rows;
    for (std::size_t k = 0; k < blockValues; ++k) {
        transposeFours(rows[0][k], rows[1][k], rows[2][k], rows[3][k]);
        transposeFours(rows[4][k], rows[5][k], rows[6][k], rows[7][k]);
    }
    for (std::size_t i = 0; i < 4; ++i) {
#if ORV_VECTOR_BYTES == 32
        const Floats upper = rows[i][0], lower = rows[i + 4][0];
        rows[i][0] = lowerLanes(upper, lower);
        rows[i + 4][0] = upperLanes(upper, lower);
#else
        const Floats corner = rows[i][1];
        rows[i][1] = rows[i + 4][0];
        rows[i + 4][0] = corner;
#endif
    }
}

#else

inline void transpose(FloatBlock &block)
{
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t k = 0; k < i; ++k) {
            const float corner = block.rows[i][k];
            block.rows[i][k] = block.rows[k][i];
            block.rows[k][i] = corner;
        }
}

#endif

inline void loadBlock(ConstRaster floats, FloatBlock &block)
{
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t k = 0; k < blockValues; ++k)
            block.rows[i][k] = load<BlockValue>(floats.fromRow(static_cast<std::int64_t>(i)).data, k);
}

inline void storeBlock(const FloatBlock &block, Raster floats)
{
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t k = 0; k < blockValues; ++k)
            store(floats.fromRow(static_cast<std::int64_t>(i)).data, k, block.rows[i][k]);
}
