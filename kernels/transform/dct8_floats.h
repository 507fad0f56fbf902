// Cosine transforms of a block of 8 x 8 floats. To be included inside the unnamed namespace of a region, after
// float_block.h and dct8_rows.h. The flow is that of the fixed-point row pass: two pairs of rotations after sums and
// differences of mirrored samples. A pass makes results sqrt(8) times the orthonormal ones; the second one divides
// by 8.

// cos(i * pi / 16), and those of even i times the root of 2. The scale is a power of 2, so that it is exact.
struct BlockFactors {
    float one, root, cos1, cos3, sin3, sin1, cos2, sin2;
};
constexpr BlockFactors factorsFor(float scale)
{
    return {scale,
            1.4142135623730951f,
            scale * 0.9807852804032304f,
            scale * 0.8314696123025452f,
            scale * 0.5555702330196022f,
            scale * 0.1950903220161283f,
            scale * 1.3065629648763766f,
            scale * 0.5411961001461970f};
}
constexpr BlockFactors firstPass = factorsFor(1.0f), secondPass = factorsFor(0.125f);

inline void forwardColumn(BlockValue (&x)[8], const BlockFactors &f)
{
    const BlockValue s0 = x[0] + x[7], s1 = x[1] + x[6], s2 = x[2] + x[5], s3 = x[3] + x[4];
    const BlockValue d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];
    const BlockValue e0 = s0 + s3, e1 = s1 + s2, e2 = s1 - s2, e3 = s0 - s3;
    const BlockValue a = d1 + d2, b = d1 - d2, c = d0 * f.root, d = d3 * f.root;
    const BlockValue p = b + d, q = a + c, r = c - a, t = d - b;
    x[0] = (e0 + e1) * f.one;
    x[4] = (e0 - e1) * f.one;
    x[2] = e3 * f.cos2 + e2 * f.sin2;
    x[6] = e3 * f.sin2 - e2 * f.cos2;
    x[1] = q * f.cos1 + p * f.sin1;
    x[7] = q * f.sin1 - p * f.cos1;
    x[3] = r * f.cos3 - t * f.sin3;
    x[5] = r * f.sin3 + t * f.cos3;
}

inline void inverseColumn(BlockValue (&y)[8], const BlockFactors &f)
{
    const BlockValue e0 = (y[0] + y[4]) * f.one, e1 = (y[0] - y[4]) * f.one;
    const BlockValue e3 = y[2] * f.cos2 + y[6] * f.sin2, e2 = y[2] * f.sin2 - y[6] * f.cos2;
    const BlockValue q = y[1] * f.cos1 + y[7] * f.sin1, p = y[1] * f.sin1 - y[7] * f.cos1;
    const BlockValue r = y[3] * f.cos3 + y[5] * f.sin3, t = y[5] * f.cos3 - y[3] * f.sin3;
    const BlockValue a = q - r, b = p - t, d0 = (q + r) * f.root, d3 = (p + t) * f.root;
    const BlockValue s0 = e0 + e3, s1 = e1 + e2, s2 = e1 - e2, s3 = e0 - e3, d1 = a + b, d2 = a - b;
    y[0] = s0 + d0;
    y[1] = s1 + d1;
    y[2] = s2 + d2;
    y[3] = s3 + d3;
    y[4] = s3 - d3;
    y[5] = s2 - d2;
    y[6] = s1 - d1;
    y[7] = s0 - d0;
}

// Runs the pass along the columns of the block, as many at once as a vector holds.
template <auto pass> inline void alongColumns(FloatBlock &block, const BlockFactors &factors)
{
    for (std::size_t k = 0; k < blockValues; ++k) {
        BlockValue column[8];
        for (std::size_t i = 0; i < 8; ++i)
            column[i] = block.rows[i][k];
        pass(column, factors);
        for (std::size_t i = 0; i < 8; ++i)
            block.rows[i][k] = column[i];
    }
}

// The block of bytes, its columns as rows.
inline void loadTransposed(ConstRaster bytes, FloatBlock &block)
{
#if ORV_VECTOR_BYTES > 0
    U8s pairs[4];
    loadColumns(bytes, pairs);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto integers = widened<std::int32_t, std::uint8_t, Upper::Zeros>(pairs[i]);
        for (std::size_t k = 0; k < 2 * blockValues; ++k)
            block.rows[2 * i + k / blockValues][k % blockValues] = toFloats(integers.vectors[k]);
    }
#else
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t k = 0; k < 8; ++k)
            block.rows[k][i] = bytes.fromRow(static_cast<std::int64_t>(i)).data[k];
#endif
}

// Of a block whose columns stand as rows. Passes go along rows first, and the result stands as it is.
inline void forwardFloats(FloatBlock &block)
{
    alongColumns<forwardColumn>(block, firstPass);
    transpose(block);
    alongColumns<forwardColumn>(block, secondPass);
}

// The other way: columns first, and the columns of the result stand as rows.
inline void inverseFloats(FloatBlock &block)
{
    alongColumns<inverseColumn>(block, firstPass);
    transpose(block);
    alongColumns<inverseColumn>(block, secondPass);
}
