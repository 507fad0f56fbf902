// Walking rectangles row by row, and samples at any address. To be included inside the unnamed namespace of whoever
// uses it: a kernel's region, so that each build compiles these for its own processor, or a source of the front end.
// The includer has <cstddef>, <cstdint> and raster.h.

// Rows are independent of each other and so are a row's samples. A loop over them may therefore run in vectors even
// where source and destination are the same raster.
#if defined(__clang__)
#define ORV_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#define ORV_UNROLLED _Pragma("clang loop unroll_count(4)")
#elif defined(__GNUC__)
#define ORV_INDEPENDENT _Pragma("GCC ivdep")
#define ORV_UNROLLED _Pragma("GCC unroll 4")
#else
#define ORV_INDEPENDENT
#define ORV_UNROLLED
#endif

template <class Sample> inline Sample load(const void *row, std::size_t index)
{
    Sample sample;
    __builtin_memcpy(&sample, static_cast<const unsigned char *>(row) + index * sizeof(Sample), sizeof(Sample));
    return sample;
}

template <class Sample> inline void store(void *row, std::size_t index, Sample sample)
{
    __builtin_memcpy(static_cast<unsigned char *>(row) + index * sizeof(Sample), &sample, sizeof(Sample));
}

// The rasters of a kernel's parameters.
inline ConstRaster from(const void *source, std::int32_t step)
{
    return {static_cast<const unsigned char *>(source), step};
}
inline Raster to(void *destination, std::int32_t step)
{
    return {static_cast<unsigned char *>(destination), step};
}

// A raster with the bytes of its pixels, which tell whether its rows are dense.
template <class Byte> struct Pixels {
    RasterOf<Byte> raster;
    std::size_t pixelBytes;
};
template <class Byte> Pixels(RasterOf<Byte>, std::size_t) -> Pixels<Byte>;

// The tests that every kernel makes, in their order. 0 where nothing is refused.
template <class... Byte>
inline std::int32_t testRasters(std::int32_t width, std::int32_t height, RasterOf<Byte>... rasters)
{
    enum : std::int32_t { Ok = 0, BadSize = -6, NullPointer = -8, BadStep = -14 };
    if ((... || !rasters.data))
        return NullPointer;
    if (width < 1 || height < 1)
        return BadSize;
    if ((... || (rasters.step < 1)))
        return BadStep;
    return Ok;
}

// Runs row(pixels, pointers...) over the rows of rasters of one size, after those tests. Where all rows are dense the
// whole is one row.
template <class Row, class... Byte>
inline std::int32_t overRows(std::int32_t width, std::int32_t height, Row row, Pixels<Byte>... of)
{
    if (const std::int32_t refusal = testRasters(width, height, of.raster...); refusal != 0)
        return refusal;
    std::size_t pixels = static_cast<std::size_t>(width);
    if ((... && (static_cast<std::size_t>(of.raster.step) == pixels * of.pixelBytes))) {
        pixels *= static_cast<std::size_t>(height);
        height = 1;
    }
    row(pixels, of.raster.data...);
    while (--height > 0) {
        ((of.raster.data += of.raster.step), ...);
        row(pixels, of.raster.data...);
    }
    return 0;
}

// Moves three samples of each four; the fourth is stored as it is. Pixels of four and eight bytes are words, of whose
// bits the last quarter stays.
template <class Sample> inline void moveThreeOfFour(std::size_t pixels, const unsigned char *in, unsigned char *out)
{
    if constexpr (sizeof(Sample) == 4) {
        for (std::size_t i = 0; i < pixels; ++i) {
            store(out, 2 * i, load<std::uint64_t>(in, 2 * i));
            store(out, 4 * i + 2, load<std::uint32_t>(in, 4 * i + 2));
        }
    } else {
        constexpr std::uint64_t moved = sizeof(Sample) == 1 ? 0x00FFFFFF00FFFFFF : 0x0000FFFFFFFFFFFF;
        constexpr std::size_t perWord = sizeof(Sample) == 1 ? 2 : 1;
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels / perWord; ++i)
            store(out, i, (load<std::uint64_t>(in, i) & moved) | (load<std::uint64_t>(out, i) & ~moved));
        if (pixels % perWord != 0)
            for (std::size_t i = 4 * (pixels - 1); i + 1 < 4 * pixels; ++i)
                store(out, i, load<Sample>(in, i));
    }
}
