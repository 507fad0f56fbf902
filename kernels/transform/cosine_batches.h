// Sixteen sequences of numbers as a batch of eight complex ones: the real parts of an element belong to the first
// eight, the imaginary parts to the others. Folded, numbers at even places come first, and then those at odd ones from
// behind. To be included inside the unnamed namespace of a region, after image_rows.h.

constexpr std::size_t sequences = batchElement;

inline std::size_t folded(std::size_t index, std::size_t length)
{
    return index % 2 == 0 ? index / 2 : length - 1 - index / 2;
}

inline void moveElement(const void *from, void *to)
{
    __builtin_memcpy(to, from, batchElement * sizeof(float));
}

// Rows of an image into folded order, and back.
inline void loadFolded(const RowsOfBatch &from, std::size_t length, float *data)
{
    alignas(32) float columns[batchElement * lineColumns];
    for (std::size_t column = 0; column < length; column += lineColumns) {
        const std::size_t some = length - column < lineColumns ? length - column : lineColumns;
        loadColumns(from, column, some, columns);
        for (std::size_t i = 0; i < some; ++i)
            moveElement(columns + batchElement * i, data + batchElement * folded(column + i, length));
    }
}
inline void storeFolded(const float *data, std::size_t length, const RowsOfBatch &to)
{
    alignas(32) float columns[batchElement * lineColumns];
    for (std::size_t column = 0; column < length; column += lineColumns) {
        const std::size_t some = length - column < lineColumns ? length - column : lineColumns;
        for (std::size_t i = 0; i < some; ++i)
            moveElement(data + batchElement * folded(column + i, length), columns + batchElement * i);
        storeColumns(columns, to, column, some, 1);
    }
}

// At most sixteen columns of an image: a row has an element. Columns that lack are zeros.
struct Columns {
    Raster image;
    std::size_t count;

    unsigned char *row(std::size_t index) const { return image.fromRow(static_cast<std::int64_t>(index)).data; }

    void loadElement(std::size_t index, float *element) const
    {
        if (count == sequences)
            return moveElement(row(index), element);
        for (std::size_t i = 0; i < sequences; ++i)
            element[i] = i < count ? load<float>(row(index), i) : 0;
    }
    // The first column's number is at `first`.
    void storeElement(std::size_t index, const float *element, std::size_t first) const
    {
        constexpr std::size_t half = batchLanes * sizeof(float);
        if (count == sequences) {
            __builtin_memcpy(row(index), element + first, half);
            __builtin_memcpy(row(index) + half, element + (first ^ batchLanes), half);
            return;
        }
        for (std::size_t i = 0; i < count; ++i)
            store(row(index), i, element[i ^ first]);
    }
};
