// Entries: borders, and convolutions that blur, sharpen and find edges.
#include "entries.h"

#include <vector>

namespace sheet {
namespace {

struct ReleaseKernel {
    void operator()(OrvConvKernel *kernel) const { orvDeleteConvKernel(kernel); }
};
using Kernel = std::unique_ptr<OrvConvKernel, ReleaseKernel>;

Kernel kernelOf(Size size, Size anchor, const std::vector<std::int32_t> &values, std::int32_t shift)
{
    OrvConvKernel *kernel =
        orvCreateConvKernel(size.width, size.height, anchor.width, anchor.height, values.data(), shift);
    check(kernel == nullptr ? orvGetErrStatus() : ORV_STATUS_OK);
    return Kernel(kernel);
}

// A kernel with its anchor in the middle.
Kernel kernelOf(Size size, const std::vector<std::int32_t> &values, std::int32_t shift)
{
    return kernelOf(size, {size.width / 2, size.height / 2}, values, shift);
}

void repeatEdges(OrvImage &image)
{
    orvSetBorderMode(&image, ORV_BORDER_REPLICATE, ORV_SIDE_ALL, 0);
}

// Shows a part of the photograph with its border around it, in a picture twice its size. The part is an image of its
// own. A window whose only coefficient is in the corner opposite to the anchor shifts the image by the size of the
// window. Four such windows, one per direction, make the four quarters of the picture.
Picture bordered(const Photograph &photograph, std::int32_t mode)
{
    const OrvImage &photo = *photograph.colour;
    const Size half = {std::max(photo.width / 6, 1), std::max(photo.height / 6, 1)};
    const Size part = {std::min(2 * half.width, photo.width), std::min(2 * half.height, photo.height)};
    const Image small = newImage({}, part);
    OrvROI middle = {0, (photo.width - part.width) / 2, (photo.height - part.height) / 2, part.width, part.height};
    const OrvImage from = viewOf(photo, &middle);
    check(orvCopy(&from, small.get()));
    orvSetBorderMode(small.get(), mode, ORV_SIDE_ALL, 128);

    const Image result = newImage({}, {2 * part.width, 2 * part.height});
    const Size window = {half.width + 1, half.height + 1};
    double time = 0;
    for (const std::int32_t right : {0, 1})
        for (const std::int32_t low : {0, 1}) {
            const Size anchor = {right * half.width, low * half.height};
            std::vector<std::int32_t> values(static_cast<std::size_t>(window.width * window.height));
            const std::int32_t column = half.width - anchor.width, row = half.height - anchor.height;
            values[static_cast<std::size_t>(row * window.width + column)] = 1;
            const Kernel kernel = kernelOf(window, anchor, values, 0);
            OrvConvKernel *const kernels[] = {kernel.get()};
            OrvROI quarter = {0, right * part.width, low * part.height, part.width, part.height};
            OrvImage to = viewOf(*result, &quarter);
            time += bestTime([&] { return orvConvolve2D(small.get(), &to, kernels, 1, ORV_COMBINE_SUM); });
        }
    return pictureOf(*result, *small, time);
}

template <std::int32_t Mode> Picture border(const Photograph &photograph)
{
    return bordered(photograph, Mode);
}

Picture convolved(const OrvImage &photograph, const std::vector<OrvConvKernel *> &kernels,
                  std::int32_t method = ORV_COMBINE_SUM)
{
    const Image source = owned(orvCloneImage(&photograph)), result = owned(orvCloneImage(&photograph));
    repeatEdges(*source);
    const double time = bestTime([&] {
        return orvConvolve2D(source.get(), result.get(), kernels.data(), static_cast<std::int32_t>(kernels.size()),
                             method);
    });
    return pictureOf(*result, *source, time);
}

const std::vector<std::int32_t> acrossEdges = {1, 0, -1, 2, 0, -2, 1, 0, -1};
const std::vector<std::int32_t> downEdges = {1, 2, 1, 0, 0, 0, -1, -2, -1};

Picture edges(const Photograph &photograph)
{
    const Kernel across = kernelOf({3, 3}, acrossEdges, 0);
    return convolved(*photograph.grey, {across.get()});
}

Picture gradient(const Photograph &photograph)
{
    const Kernel across = kernelOf({3, 3}, acrossEdges, 0), down = kernelOf({3, 3}, downEdges, 0);
    return convolved(*photograph.grey, {across.get(), down.get()}, ORV_COMBINE_SUMSQROOT);
}

Picture sharpened(const Photograph &photograph)
{
    const Kernel kernel = kernelOf({3, 3}, {-1, -1, -1, -1, 16, -1, -1, -1, -1}, 3);
    return convolved(*photograph.colour, {kernel.get()});
}

// At 16S, because results may be negative: black and white on grey.
Picture emboss(const Photograph &photograph)
{
    const Kernel kernel = kernelOf({3, 3}, {2, 1, 0, 1, 0, -1, 0, -1, -2}, 0);
    const OrvImage &grey = *photograph.grey;
    const Image source = newImage({.depth = ORV_DEPTH_16S, .channels = 1}, sizeOf(grey)),
                result = newImage({.depth = ORV_DEPTH_16S, .channels = 1}, sizeOf(grey));
    for (std::int32_t y = 0; y < grey.height; ++y)
        std::copy_n(rowOf<std::uint8_t>(grey, y), grey.width, rowOf<std::int16_t>(*source, y));
    repeatEdges(*source);
    OrvConvKernel *const kernels[] = {kernel.get()};
    const double time =
        bestTime([&] { return orvConvolve2D(source.get(), result.get(), kernels, 1, ORV_COMBINE_SUM); });
    return pictureOf(*result, {1, 128, "samples + 128"}, *source, time);
}

Picture binomialBlur(const Photograph &photograph)
{
    const std::vector<std::int32_t> binomial = {1, 8, 28, 56, 70, 56, 28, 8, 1};
    const Kernel x = kernelOf({9, 1}, binomial, 8), y = kernelOf({1, 9}, binomial, 8);
    const Image source = owned(orvCloneImage(photograph.colour.get()));
    const Image result = owned(orvCloneImage(photograph.colour.get()));
    repeatEdges(*source);
    const double time = bestTime([&] { return orvConvolveSep2D(source.get(), result.get(), x.get(), y.get()); });
    return pictureOf(*result, *source, time);
}

constexpr Entry table[] = {
    {"border-constant", "orvSetBorderMode", "A part of the photograph with a border of constants around it.", false, 1,
     border<ORV_BORDER_CONSTANT>},
    {"border-replicate", "orvSetBorderMode", "The same with its edges repeated.", false, 1,
     border<ORV_BORDER_REPLICATE>},
    {"border-reflect", "orvSetBorderMode", "The same mirrored at its edges.", true, 1, border<ORV_BORDER_REFLECT>},
    {"border-wrap", "orvSetBorderMode", "The same continued from the opposite side.", false, 1,
     border<ORV_BORDER_WRAP>},
    {"edges", "orvConvolve2D", "Edges where the picture becomes brighter to the right, by a window of 3 × 3.", false, 0,
     edges},
    {"gradient", "orvConvolve2D",
     "The length of the gradient: two windows, combined by the root of the sum of squares.", true, 0, gradient},
    {"sharpened", "orvConvolve2D", "16 times the centre minus its neighbours, divided by 8.", false, 2, sharpened},
    {"emboss", "orvConvolve2D", "Light from one corner, computed at 16S.", true, 1, emboss},
    {"binomial-blur", "orvConvolveSep2D", "A row and a column of nine binomial coefficients.", true, 2, binomialBlur},
};

} // namespace

Family neighbourhoodFamily()
{
    return {"Neighbourhoods", table};
}

} // namespace sheet
