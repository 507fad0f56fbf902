// Kernels that compute each pixel from a window around it. To be included inside the unnamed namespace of a region,
// after points.h.

// A window of so many pixels; the anchor is the pixel of it that is computed, counted from the left and the top.
struct Window {
    std::int32_t columns, rows, anchorX, anchorY;
};

// The window of a convolution is flipped: its anchor is counted from the right and the bottom.
inline Window flipped(const Window &window)
{
    return {window.columns, window.rows, window.columns - 1 - window.anchorX, window.rows - 1 - window.anchorY};
}

// The tests of such a kernel in their order, but for those of its own.
inline KrnStatus checkWindow(Given<const void *> source, Given<void *> destination, std::int32_t width,
                             std::int32_t height, const Window &window)
{
    const KrnStatus refusal =
        testRectangles(width, height, from(source.data, source.step, 1), to(destination.data, destination.step, 1));
    if (refusal != KRN_OK)
        return refusal;
    if (window.columns < 1 || window.rows < 1)
        return KRN_BAD_MASK_SIZE;
    if (window.anchorX < 0 || window.anchorX >= window.columns || window.anchorY < 0 || window.anchorY >= window.rows)
        return KRN_BAD_ANCHOR;
    return KRN_OK;
}

// Runs row(samples, in, out) over all rows, where `in` is the first sample of the first pixel's window. Source and
// destination are different rasters. Pixels whose fourth sample stays are computed into a buffer, and moved from there.
template <class Sample, std::size_t layout, class Out = Sample, class Row>
inline KrnStatus overWindows(Given<const void *> source, Given<void *> destination, std::int32_t width,
                             std::int32_t height, const Window &window, Row row)
{
    constexpr std::size_t channels = samplesOf(layout);
    constexpr std::int32_t pixelBytes = static_cast<std::int32_t>(channels * sizeof(Sample));
    constexpr std::int32_t outBytes = static_cast<std::int32_t>(channels * sizeof(Out));
    const unsigned char *first = static_cast<const unsigned char *>(source.data) -
                                 static_cast<std::ptrdiff_t>(window.anchorY) * source.step -
                                 static_cast<std::ptrdiff_t>(window.anchorX) * pixelBytes;
    const auto all = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        if constexpr (layout == AC4) {
            constexpr std::size_t most = 128;
            unsigned char buffer[most * outBytes];
            for (std::size_t i = 0; i < pixels; i += most) {
                const std::size_t some = pixels - i < most ? pixels - i : most;
                row(4 * some, in + i * pixelBytes, buffer);
                moveThreeOfFour<Out>(some, buffer, out + i * outBytes);
            }
        } else {
            row(channels * pixels, in, out);
        }
    };
    return overRows(width, height, all, from(first, source.step, pixelBytes),
                    to(destination.data, destination.step, outBytes));
}

// Runs block(in, out) over a row in pieces of so many samples. The last piece overlaps the one before it, so the row
// must have at least one.
template <class Sample, std::size_t most, class Out = Sample, class Block>
inline void overBlocks(std::size_t samples, const unsigned char *in, unsigned char *out, Block block)
{
    std::size_t i = 0;
    for (; i + most <= samples; i += most)
        block(in + i * sizeof(Sample), out + i * sizeof(Out));
    if (i < samples)
        block(in + (samples - most) * sizeof(Sample), out + (samples - most) * sizeof(Out));
}
