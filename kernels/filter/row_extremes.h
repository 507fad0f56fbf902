// Extremes along rows. They widen in steps: three times as wide with each, and with the last one as wide as the window.
// To be included after region/extremes.h.

constexpr std::size_t nine = 9; // neighbouring pixels: a first step without offsets

// Runs step(places, offsets, margin): a step takes the best of so many places at these offsets. The margin is what rows
// then still have on their right.
template <class Step>
inline void overWidths(std::int32_t columns, std::size_t pixelBytes, bool startsWithNine, Step step)
{
    const std::size_t wanted = static_cast<std::size_t>(columns) * pixelBytes;
    std::size_t offsets[mostPlaces] = {}, margin = wanted - pixelBytes, wide = pixelBytes;
    if (startsWithNine && columns >= std::int32_t{nine}) {
        wide *= nine;
        margin = wanted - wide;
        step(nine, offsets, margin);
        if (margin == 0)
            return;
    }
    for (; mostPlaces * wide < wanted; wide *= 3) {
        offsets[1] = wide;
        offsets[2] = 2 * wide;
        margin -= 2 * wide;
        step(3, offsets, margin);
    }
    std::size_t places = 1;
    for (; places * wide < wanted; ++places)
        offsets[places] = places * wide < margin ? places * wide : margin;
    step(places, offsets, 0);
}

#if ORV_SHUFFLES
template <std::size_t by, class Sample, class Better>
inline Vector<Sample> bestOfThree(Better better, Vector<Sample> vector, Vector<Sample> next)
{
    const U8s bytes = as<std::uint8_t>(vector), more = as<std::uint8_t>(next);
    return better(better(vector, as<Sample>(furtherBytes<by>(bytes, more))),
                  as<Sample>(furtherBytes<2 * by>(bytes, more)));
}

// The best of nine neighbouring samples, in registers, since two steps by three are bound by their loads. Rows have at
// least one vector of results, and two more vectors can be read behind it. The result may lie over the rows if it is
// whole vectors.
template <class Sample, class Better>
[[gnu::noinline]] void bestOfNine(ConstRaster in, Raster out, std::size_t bytes, std::int32_t height)
{
    constexpr std::size_t by = sizeof(Sample), step = ORV_VECTOR_BYTES;
    const Better better;
    for (std::int32_t row = 0; row < height; ++row, in = in.fromRow(1), out = out.fromRow(1)) {
        const auto over = [&](std::size_t begin, std::size_t end) {
            Vector<Sample> next = loadVector<Sample>(in.data + begin + step);
            Vector<Sample> three = bestOfThree<by, Sample>(better, loadVector<Sample>(in.data + begin), next);
            ORV_UNROLLED
            for (std::size_t at = begin; at + step <= end; at += step) {
                const Vector<Sample> after = loadVector<Sample>(in.data + at + 2 * step);
                const Vector<Sample> nextThree = bestOfThree<by, Sample>(better, next, after);
                storeVector<Sample>(out.data + at, 0, bestOfThree<3 * by, Sample>(better, three, nextThree));
                next = after;
                three = nextThree;
            }
        };
        over(0, bytes);
        if (bytes % step != 0)
            over(bytes - step, bytes);
    }
}
#endif
