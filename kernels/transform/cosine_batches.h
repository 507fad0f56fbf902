// Sixteen sequences of numbers as a batch of eight complex ones: the real parts of an element belong to the first
// eight, the imaginary parts to the others. To be included inside the unnamed namespace of a region, after passes.h and
// float_block.h.

constexpr std::size_t sequences = batchElement;

// Where numbers stand in a batch: as they come, or first those at even places and then those at odd ones from behind.
struct NaturalOrder {
    std::size_t operator()(std::size_t index) const { return index; }
};
struct FoldedOrder {
    std::size_t length;

    std::size_t operator()(std::size_t index) const { return index % 2 == 0 ? index / 2 : length - 1 - index / 2; }
};

inline Complex exchanged(const Complex &value)
{
    return {value.im, value.re};
}

// Elements that are sixteen columns of an image.
inline Complex loadFromRow(const unsigned char *row, std::size_t part)
{
    return {load<Part>(row, part), load<Part>(row, partCount + part)};
}
inline void storeInRow(unsigned char *row, std::size_t part, const Complex &value)
{
    store(row, part, value.re);
    store(row, partCount + part, value.im);
}
struct Columns {
    Raster image;

    unsigned char *row(std::size_t index) const { return image.fromRow(static_cast<std::int64_t>(index)).data; }
    Complex load(std::size_t index, std::size_t part) const { return loadFromRow(row(index), part); }
    void store(std::size_t index, std::size_t part, const Complex &value) const { storeInRow(row(index), part, value); }
};

// Fewer columns; the others are zeros in the batch.
template <class Order>
inline void loadColumns(Raster image, std::size_t count, std::size_t length, Order order, float *data)
{
    for (std::size_t i = 0; i < length; ++i) {
        float *const element = data + batchElement * order(i);
        const unsigned char *const row = Columns{image}.row(i);
        for (std::size_t k = 0; k < sequences; ++k)
            element[k] = k < count ? load<float>(row, k) : 0;
    }
}
template <class Order>
inline void storeColumns(Raster image, std::size_t count, std::size_t length, Order order, const float *data,
                         std::size_t first)
{
    for (std::size_t i = 0; i < length; ++i) {
        const float *const element = data + batchElement * order(i);
        unsigned char *const row = Columns{image}.row(i);
        for (std::size_t k = 0; k < count; ++k)
            store(row, k, element[(k + first) % sequences]);
    }
}

// A tile of at most 8 x 8 floats of an image; what lies beyond is zero, and is not stored.
inline void loadTile(ConstRaster image, std::size_t rows, std::size_t columns, FloatBlock &block)
{
    if (rows == 8 && columns == 8)
        return loadBlock(image, block);
    alignas(32) unsigned char tile[8][8 * sizeof(float)] = {};
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t k = 0; k < columns; ++k)
            store(tile[i], k, load<float>(image.fromRow(static_cast<std::int64_t>(i)).data, k));
    loadBlock(from(tile, sizeof tile[0]), block);
}
inline void storeTile(const FloatBlock &block, std::size_t rows, std::size_t columns, Raster image)
{
    if (rows == 8 && columns == 8)
        return storeBlock(block, image);
    alignas(32) unsigned char tile[8][8 * sizeof(float)];
    storeBlock(block, to(tile, sizeof tile[0]));
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t k = 0; k < columns; ++k)
            store(image.fromRow(static_cast<std::int64_t>(i)).data, k, load<float>(tile[i], k));
}

// Calls tile(first row, first column, rows, columns) for the tiles of sixteen rows, or of fewer.
template <class Tile> inline void overTiles(std::size_t rowCount, std::size_t length, Tile tile)
{
    for (std::size_t row = 0; row < sequences; row += 8) {
        const std::size_t left = row < rowCount ? rowCount - row : 0, rows = left < 8 ? left : 8;
        for (std::size_t column = 0; column < length; column += 8)
            tile(row, column, rows, length - column < 8 ? length - column : 8);
    }
}

inline float *partOf(float *data, std::size_t index, std::size_t row)
{
    return data + batchElement * index + row;
}

template <class Order>
inline void loadRows(ConstRaster image, std::size_t count, std::size_t length, Order order, float *data)
{
    overTiles(count, length, [=](std::size_t row, std::size_t column, std::size_t rows, std::size_t columns) {
        FloatBlock block;
        loadTile(image.fromRow(static_cast<std::int64_t>(row)).fromByte(static_cast<std::int64_t>(4 * column)), rows,
                 columns, block);
        transpose(block);
        for (std::size_t i = 0; i < columns; ++i)
            for (std::size_t k = 0; k < blockValues; ++k)
                store(partOf(data, order(column + i), row), k, block.rows[i][k]);
    });
}
// `first` is the half of an element that the first eight rows have.
template <class Order>
inline void storeRows(Raster image, std::size_t count, std::size_t length, Order order, float *data, std::size_t first)
{
    overTiles(count, length, [=](std::size_t row, std::size_t column, std::size_t rows, std::size_t columns) {
        FloatBlock block;
        for (std::size_t i = 0; i < 8; ++i)
            for (std::size_t k = 0; k < blockValues; ++k)
                block.rows[i][k] =
                    i < columns ? load<BlockValue>(partOf(data, order(column + i), row ^ first), k) : BlockValue{};
        transpose(block);
        storeTile(block, rows, columns,
                  image.fromRow(static_cast<std::int64_t>(row)).fromByte(static_cast<std::int64_t>(4 * column)));
    });
}
