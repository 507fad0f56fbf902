// The row pass of the fixed-point forward transform, and blocks of 8 x 8 samples in registers. To be included after
// dct8_fixed.h.

// Results wrap to 16 bits where they are stored. Those of bytes never do.
inline void rowPass(std::int32_t (&x)[8])
{
    const auto scaled = [](std::int32_t value) { return (value + 2048) >> 12; };
    const std::int32_t s0 = x[0] + x[7], s1 = x[1] + x[6], s2 = x[2] + x[5], s3 = x[3] + x[4];
    const std::int32_t d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];
    const std::int32_t e0 = s0 + s3, e1 = s1 + s2, e2 = s1 - s2, e3 = s0 - s3;
    const std::int32_t a = 8 * (d1 + d2), b = 8 * (d1 - d2), c = scaled(46341 * d0), d = scaled(46341 * d3);
    const std::int32_t p = b + d, q = a + c, r = c - a, t = d - b;
    x[0] = 8 * (e0 + e1);
    x[4] = 8 * (e0 - e1);
    x[2] = scaled(25080 * e3 + 17734 * (e2 + e3));
    x[6] = scaled(-60547 * e2 + 17734 * (e2 + e3));
    x[1] = scaled(3218 * q + 799 * (p + q));
    x[7] = scaled(-4816 * p + 799 * (p + q));
    x[3] = scaled(-5681 * t + 3406 * (r + t));
    x[5] = scaled(-1130 * r + 3406 * (r + t));
}

#if ORV_VECTOR_BYTES > 0

// The same on words, for samples that were bytes: sums and differences fit. Factors beyond 16 bits lose 65536, which
// comes back as a shift.
inline void rowPass(S16s (&x)[8])
{
    const auto scaled = [](LaneSums sums) { return rounded<12>(sums); };
    // The rounded product by 46341 / 4096, from the high half of that of 32 times the value.
    const auto byRootOfTwo = [](S16s value) {
        const S16s more = value << 5;
        return (highProducts(more, everywhere<std::int16_t>(46341 - 65536)) + more + std::int16_t{1}) >> 1;
    };
    const S16s s0 = x[0] + x[7], s1 = x[1] + x[6], s2 = x[2] + x[5], s3 = x[3] + x[4];
    const S16s d0 = x[0] - x[7], d1 = x[1] - x[6], d2 = x[2] - x[5], d3 = x[3] - x[4];
    const S16s e0 = s0 + s3, e1 = s1 + s2, e2 = s1 - s2, e3 = s0 - s3;
    const S16s a = (d1 + d2) << 3, b = (d1 - d2) << 3, c = byRootOfTwo(d0), d = byRootOfTwo(d3);
    const S16s p = b + d, q = a + c, r = c - a, t = d - b;
    x[0] = (e0 + e1) << 3;
    x[4] = (e0 - e1) << 3;
    x[2] = scaled(products(e3, e2, 25080 + 17734 - 65536, 17734)) + (e3 << 4);
    x[6] = scaled(products(e3, e2, 17734, 17734 - 60547 + 65536)) - (e2 << 4);
    x[1] = scaled(products(p, q, 799, 799 + 3218));
    x[7] = scaled(products(p, q, 799 - 4816, 799));
    x[3] = scaled(products(r, t, 3406, 3406 - 5681));
    x[5] = scaled(products(r, t, 3406 - 1130, 3406));
}

// The columns of a block of bytes, two to a lane.
inline void loadColumns(ConstRaster block, U8s (&pairs)[4])
{
    U8s rows[8];
    for (std::size_t i = 0; i < 8; ++i)
        rows[i] =
            as<std::uint8_t>(everywhere(load<std::uint64_t>(block.fromRow(static_cast<std::int64_t>(i)).data, 0)));
    const auto low = [](U8s a, U8s b) { return interleaveLow<std::uint8_t>(a, b); };
    const auto high = [](U8s a, U8s b) { return interleaveHigh<std::uint8_t>(a, b); };
    const U8s even0 = low(rows[0], rows[4]), even1 = low(rows[2], rows[6]);
    const U8s odd0 = low(rows[1], rows[5]), odd1 = low(rows[3], rows[7]);
    const U8s evenLeft = low(even0, even1), oddLeft = low(odd0, odd1);
    const U8s evenRight = high(even0, even1), oddRight = high(odd0, odd1);
    pairs[0] = low(evenLeft, oddLeft);
    pairs[1] = high(evenLeft, oddLeft);
    pairs[2] = low(evenRight, oddRight);
    pairs[3] = high(evenRight, oddRight);
}

inline void transposeWords(S16s (&block)[8])
{
    U8s items[8];
    for (std::size_t i = 0; i < 8; ++i)
        items[i] = as<std::uint8_t>(block[i]);
    transpose<2>(items);
    for (std::size_t i = 0; i < 8; ++i)
        block[i] = as<std::int16_t>(items[i]);
}

// Stores words, given by columns, as saturated bytes.
inline void storeColumns(const S16s (&columns)[8], Raster block)
{
    const auto pack = [&](std::size_t i) { return packed<std::uint8_t>(columns[i], columns[i + 4]); };
    const U8s with0 = pack(0), with1 = pack(1), with2 = pack(2), with3 = pack(3);
    const auto words = [](U8s vector) { return as<std::uint16_t>(vector); };
    // The bytes of two columns in turn.
    const U16s columns01 = words(interleaveLow<std::uint8_t>(with0, with1));
    const U16s columns23 = words(interleaveLow<std::uint8_t>(with2, with3));
    const U16s columns45 = words(interleaveHigh<std::uint8_t>(with0, with1));
    const U16s columns67 = words(interleaveHigh<std::uint8_t>(with2, with3));
    const auto storeRows = [&](std::size_t first, U16s left, U16s right) {
        using Half = std::uint32_t;
        const Vector<Half> two[] = {interleaveLow<Half>(as<Half>(left), as<Half>(right)),
                                    interleaveHigh<Half>(as<Half>(left), as<Half>(right))};
        for (std::size_t i = 0; i < 4; ++i)
            store<std::uint64_t>(block.fromRow(static_cast<std::int64_t>(first + i)).data, 0,
                                 as<std::uint64_t>(two[i / 2])[i % 2]);
    };
    storeRows(0, interleaveLow<std::uint16_t>(columns01, columns23),
              interleaveLow<std::uint16_t>(columns45, columns67));
    storeRows(4, interleaveHigh<std::uint16_t>(columns01, columns23),
              interleaveHigh<std::uint16_t>(columns45, columns67));
}

#endif
