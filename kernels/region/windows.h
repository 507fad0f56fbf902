// Kernels that compute each pixel from a window around it. To be included inside the unnamed namespace of a region,
// after points.h.

// Size of a window in pixels; the anchor is the pixel of it that is computed, counted from the left and the top.
struct Window {
    std::int32_t columns, rows, anchorX, anchorY;
};

// The window of a convolution is flipped: its anchor is counted from the right and the bottom.
inline Window flipped(const Window &window)
{
    return {window.columns, window.rows, window.columns - 1 - window.anchorX, window.rows - 1 - window.anchorY};
}

// The tests of such a kernel in their order, but for those of its own.
inline KrnStatus checkWindow(ConstRaster source, Raster destination, std::int32_t width, std::int32_t height,
                             const Window &window)
{
    const KrnStatus refusal = testRasters(width, height, source, destination);
    if (refusal != KRN_OK)
        return refusal;
    if (window.columns < 1 || window.rows < 1)
        return KRN_BAD_MASK_SIZE;
    if (window.anchorX < 0 || window.anchorX >= window.columns || window.anchorY < 0 || window.anchorY >= window.rows)
        return KRN_BAD_ANCHOR;
    return KRN_OK;
}

// The source from the first pixel's window on.
inline ConstRaster firstOf(ConstRaster source, const Window &window, std::size_t pixelBytes)
{
    return source.fromRow(-std::int64_t{window.anchorY})
        .fromByte(-std::int64_t{window.anchorX} * static_cast<std::int64_t>(pixelBytes));
}

// Runs row(samples, in, out) over all rows, where `in` is the first sample of the first pixel's window. Source and
// destination are different rasters. Pixels whose fourth sample stays are computed into a buffer, and moved from there.
template <class Sample, class Out, class Row>
inline KrnStatus overWindows(std::size_t layout, ConstRaster source, Raster destination, std::int32_t width,
                             std::int32_t height, const Window &window, Row row)
{
    const std::size_t channels = samplesOf(layout), pixelBytes = channels * sizeof(Sample);
    const auto all = [&](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        if (layout != AC4)
            return row(channels * pixels, in, out);
        constexpr std::size_t most = 128;
        unsigned char buffer[most * 4 * sizeof(Out)];
        for (std::size_t i = 0; i < pixels; i += most) {
            const std::size_t some = pixels - i < most ? pixels - i : most;
            row(4 * some, in + i * pixelBytes, buffer);
            moveThreeOfFour<Out>(some, buffer, out + i * 4 * sizeof(Out));
        }
    };
    return overRows(width, height, all, Pixels{firstOf(source, window, pixelBytes), pixelBytes},
                    Pixels{destination, channels * sizeof(Out)});
}

// Runs most(in, out) over a row in blocks of `block` samples, and one(in, out) over its tail in vectors. The last
// vector overlaps what is before it, so the row must have at least one.
template <class Sample, std::size_t mostSamples, std::size_t oneSamples, class Out, class Most, class One>
inline void overBlocks(std::size_t samples, const unsigned char *in, unsigned char *out, Most most, One one)
{
    std::size_t i = 0;
    for (; i + mostSamples <= samples; i += mostSamples)
        most(in + i * sizeof(Sample), out + i * sizeof(Out));
    for (; i + oneSamples <= samples; i += oneSamples)
        one(in + i * sizeof(Sample), out + i * sizeof(Out));
    if (i < samples)
        one(in + (samples - oneSamples) * sizeof(Sample), out + (samples - oneSamples) * sizeof(Out));
}
