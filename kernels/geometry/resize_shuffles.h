// Gathering the sources of a row of results by shuffles of bytes. A lane of results has its sources in a few windows of
// 16 bytes, one behind the other; one shuffle a window puts those that it has into their places. To be included inside
// the unnamed namespace of a region, after vectors.h.

#if ORV_SHUFFLES

constexpr std::int32_t lanesPerVector = ORV_VECTOR_BYTES / 16;

// The table that krnResizeShuffles fills.
struct ShuffleTable {
    std::int32_t samples, perVector;
    std::int32_t *windows;  // how many; 0 where the row is gathered sample by sample
    std::int32_t *width;    // of the vectors that the table is for
    std::int32_t *starts;   // of each lane's first window, from the start of the row
    unsigned char *indices; // of each vector's shuffles, window by window

    ShuffleTable(void *memory, std::int32_t itsSamples, std::int32_t placeBytes)
        : samples(itsSamples), perVector(ORV_VECTOR_BYTES / placeBytes), windows(static_cast<std::int32_t *>(memory)),
          width(windows + 1), starts(windows + 4),
          indices(reinterpret_cast<unsigned char *>(starts + (vectors() * lanesPerVector + 3) / 4 * 4))
    {
    }

    std::int32_t vectors() const { return (samples + perVector - 1) / perVector; }
    // The last vector overlaps its neighbour where vectors do not divide the row.
    std::int32_t firstOf(std::int32_t vector) const
    {
        return vector < samples / perVector ? vector * perVector : samples - perVector;
    }
};

// The sources of a vector, each at its place, that lie `further` bytes beyond the first ones.
template <std::int32_t windows> struct GatheredVector {
    const unsigned char *row;
    const std::int32_t *starts;
    const unsigned char *indices;

    U8s at(std::ptrdiff_t further) const
    {
        const unsigned char *const first = row + further;
        U8s bytes = {};
        for (std::int32_t window = 0; window < windows; ++window) {
            const U8s some = bytesAt(loadLanes<std::uint8_t>(first + starts[0] + 16 * window,
                                                             first + starts[lanesPerVector - 1] + 16 * window),
                                     loadVector<std::uint8_t>(indices, static_cast<std::size_t>(window) * sizeof(U8s)));
            bytes = window == 0 ? some : bytes | some;
        }
        return bytes;
    }
};

template <std::int32_t windows, class Compute>
inline void gatherVectors(const unsigned char *row, const ShuffleTable &table, Compute compute)
{
    GatheredVector<windows> sources = {row, table.starts, table.indices};
    const std::size_t samples = static_cast<std::size_t>(table.samples),
                      step = static_cast<std::size_t>(table.perVector);
    ORV_UNROLLED
    for (std::size_t i = 0; i + step <= samples; i += step) {
        compute(i, sources);
        sources.starts += lanesPerVector;
        sources.indices += windows * ORV_VECTOR_BYTES;
    }
    if (samples % step != 0)
        compute(samples - step, sources);
}

// Calls compute(index, sources) for the vectors of a row, whose places have so many bytes. False where it is to be
// gathered sample by sample.
template <std::int32_t placeBytes, class Compute>
inline bool gatheredByVectors(const unsigned char *row, const ResizeColumns &columns, Compute compute)
{
    const ShuffleTable table(const_cast<void *>(columns.shuffles), columns.samples, placeBytes);
    // Another thread may have chosen another build since the table was made.
    if (*table.width != ORV_VECTOR_BYTES)
        return false;
    switch (*table.windows) {
    case 1:
        gatherVectors<1>(row, table, compute);
        return true;
    case 2:
        gatherVectors<2>(row, table, compute);
        return true;
    case 3:
        gatherVectors<3>(row, table, compute);
        return true;
    case 4:
        gatherVectors<4>(row, table, compute);
        return true;
    default:
        return false;
    }
}

#endif
