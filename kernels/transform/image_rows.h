// Sixteen rows of an image as a batch: the floats of a column are an element, the first eight rows its real parts. To
// be included inside the unnamed namespace of a region, after butterflies.h.

constexpr std::size_t batchRows = batchElement;
// A cache line of each row at a time.
constexpr std::size_t lineColumns = 16;

// Where the rows of a batch start.
struct RowsOfBatch {
    unsigned char *rows[batchRows];
};

#if ORV_VECTOR_BYTES > 0
constexpr std::size_t rowsOfVector = perVector<float>;

template <std::size_t columns> inline void loadBlock(const RowsOfBatch &from, std::size_t column, float *elements)
{
    for (std::size_t row = 0; row < batchRows; row += rowsOfVector)
        for (std::size_t i = 0; i < columns; i += 4) {
            U8s block[4];
            for (std::size_t k = 0; k < 4; ++k) {
                const std::size_t upper = rowsOfVector - 4, at = sizeof(float) * (column + i);
                block[k] = loadLanes<std::uint8_t>(from.rows[row + k] + at, from.rows[row + upper + k] + at);
            }
            transpose<4>(block);
            for (std::size_t k = 0; k < 4; ++k)
                storeVector<std::uint8_t>(elements + batchElement * (i + k) + row, 0, block[k]);
        }
}
template <std::size_t columns>
inline void storeBlock(const float *elements, const RowsOfBatch &to, std::size_t column, float scale)
{
    for (std::size_t row = 0; row < batchRows; row += rowsOfVector)
        for (std::size_t i = 0; i < columns; i += 4) {
            U8s block[4];
            for (std::size_t k = 0; k < 4; ++k)
                block[k] = as<std::uint8_t>(allLanes<float>(scale) *
                                            loadVector<float>(elements + batchElement * (i + k) + row));
            transpose<4>(block);
            for (std::size_t k = 0; k < 4; ++k)
                storeLanes<std::uint8_t>(to.rows[row + k] + sizeof(float) * (column + i),
                                         to.rows[row + rowsOfVector - 4 + k] + sizeof(float) * (column + i), block[k]);
        }
}
#endif

inline void loadColumns(const RowsOfBatch &from, std::size_t column, std::size_t count, float *elements)
{
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    for (; i + lineColumns <= count; i += lineColumns)
        loadBlock<lineColumns>(from, column + i, elements + batchElement * i);
    for (; i + 4 <= count; i += 4)
        loadBlock<4>(from, column + i, elements + batchElement * i);
#endif
    for (; i < count; ++i)
        for (std::size_t row = 0; row < batchRows; ++row)
            elements[batchElement * i + row] = load<float>(from.rows[row], column + i);
}

// The counterpart, with a factor.
inline void storeColumns(const float *elements, const RowsOfBatch &to, std::size_t column, std::size_t count,
                         float scale)
{
    std::size_t i = 0;
#if ORV_VECTOR_BYTES > 0
    for (; i + lineColumns <= count; i += lineColumns)
        storeBlock<lineColumns>(elements + batchElement * i, to, column + i, scale);
    for (; i + 4 <= count; i += 4)
        storeBlock<4>(elements + batchElement * i, to, column + i, scale);
#endif
    for (; i < count; ++i)
        for (std::size_t row = 0; row < batchRows; ++row)
            store<float>(to.rows[row], column + i, scale * elements[batchElement * i + row]);
}

// The first pass of a batch, from the rows themselves.
template <std::size_t radix>
[[gnu::noinline]] void runRowsPass(const FourierPass &pass, const RowsOfBatch &from, float *elements)
{
    alignas(32) float blocks[radix][batchElement * lineColumns];
    const float *twiddles = pass.twiddles;
    const std::size_t groups = pass.groups;
    for (std::size_t p = 0; p < groups; p += lineColumns) {
        const std::size_t some = groups - p < lineColumns ? groups - p : lineColumns;
        for (std::size_t j = 0; j < radix; ++j)
            loadColumns(from, p + j * groups, some, blocks[j]);
        for (std::size_t i = 0; i < some; ++i) {
            runButterfly<float, radix, true, ConstElements, Elements>(
                twiddles, &blocks[0][batchElement * i], batchElement * lineColumns, elements, batchElement);
            twiddles += 2 * (radix - 1);
            elements += batchElement * radix;
        }
    }
}
