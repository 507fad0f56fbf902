// Vector medians: the pixel of a window that is nearest to all others. The distance of two pixels is the same in all
// windows that have both: it is computed once.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

// Distances of three samples, and sums of 24 such.
template <class Sample> struct DistanceOf {
    using Type = std::int32_t;
    using Difference = std::uint16_t;
};
template <> struct DistanceOf<std::uint8_t> {
    using Type = std::int16_t;
    using Difference = std::uint8_t;
};
template <class Sample> using Distance = typename DistanceOf<Sample>::Type;

template <class Sample> inline typename DistanceOf<Sample>::Difference difference(Sample a, Sample b)
{
    return static_cast<typename DistanceOf<Sample>::Difference>((a > b ? a : b) - (a < b ? a : b));
}

// Pixels of a window by number, row by row. Where the distances of the first to the second are: in the lists of the row
// of the upper one or the left one, from its column on.
template <std::size_t side> struct Pairs {
    static constexpr std::size_t pixels = side * side;
    // From a pixel to those on its right, and to those as far to either side in each of the rows below.
    static constexpr std::size_t lists = side - 1 + (side - 1) * (2 * side - 1);

    static constexpr std::size_t listOf(std::size_t down, std::ptrdiff_t right)
    {
        const std::size_t shifted = static_cast<std::size_t>(right + static_cast<std::ptrdiff_t>(side) - 1);
        return down == 0 ? shifted - side : side - 1 + (down - 1) * (2 * side - 1) + shifted;
    }

    struct Place {
        std::uint8_t row, list, column;
    };
    Place places[pixels][pixels - 1] = {};

    constexpr Pairs()
    {
        for (std::size_t one = 0; one < pixels; ++one)
            for (std::size_t i = 0; i + 1 < pixels; ++i) {
                const std::size_t other = i < one ? i : i + 1;
                const std::size_t first = one < other ? one : other, second = one < other ? other : one;
                const std::ptrdiff_t right =
                    static_cast<std::ptrdiff_t>(second % side) - static_cast<std::ptrdiff_t>(first % side);
                places[one][i] = {static_cast<std::uint8_t>(first / side),
                                  static_cast<std::uint8_t>(listOf(second / side - first / side, right)),
                                  static_cast<std::uint8_t>(first % side)};
            }
    }
};
template <std::size_t side> constexpr Pairs<side> pairs = {};

// A block of columns that runs down the image: of the rows of a window, the samples by planes, and the distances from
// each pixel to those right of it and below.
template <class Sample, std::size_t side> struct ColorBlock {
    // So few pixels that all distances are in the nearest cache, and windows of as many less what they reach beyond.
    static constexpr std::size_t group = 32 / sizeof(Sample), most = (side == 3 ? 4 : 1) * group;
    static constexpr std::size_t block = most - (side - 1), margin = 8, length = most + margin;
    using Planes = Sample[3][margin + most + margin];

    Planes planes[side] = {};
    Distance<Sample> lists[side][Pairs<side>::lists][length] = {};

    void split(std::size_t slot, const unsigned char *in, std::size_t channels, std::size_t pixels)
    {
        for (std::size_t x = 0; x < pixels; ++x)
            for (std::size_t i = 0; i < 3; ++i)
                planes[slot][i][margin + x] = load<Sample>(in, x * channels + i);
    }

    // Whole groups are computed: what is beyond the pixels is never used.
    void measure(std::size_t upper, std::size_t lower, std::size_t down, std::ptrdiff_t right, std::size_t pixels)
    {
        const Planes &first = planes[upper], &second = planes[lower];
        Distance<Sample> *const list = lists[upper][Pairs<side>::listOf(down, right)];
        const std::size_t there = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(margin) + right);
        for (std::size_t begin = 0; begin < pixels; begin += group) {
            ORV_INDEPENDENT
            for (std::size_t x = begin; x < begin + group; ++x)
                list[x] = static_cast<Distance<Sample>>(difference(first[0][margin + x], second[0][there + x]) +
                                                        difference(first[1][margin + x], second[1][there + x]) +
                                                        difference(first[2][margin + x], second[2][there + x]));
        }
    }

    void add(std::size_t row, const unsigned char *in, std::size_t channels, std::size_t pixels)
    {
        const std::size_t slot = row % side;
        split(slot, in, channels, pixels);
        for (std::ptrdiff_t right = 1; right < static_cast<std::ptrdiff_t>(side); ++right)
            measure(slot, slot, 0, right, pixels);
        for (std::size_t down = 1; down < side && down <= row; ++down)
            for (std::ptrdiff_t right = 1 - static_cast<std::ptrdiff_t>(side);
                 right < static_cast<std::ptrdiff_t>(side); ++right)
                measure((row - down) % side, slot, down, right, pixels);
    }

#if ORV_VECTOR_BYTES > 0
    using Sums = Vector<Distance<Sample>>;
    static constexpr std::size_t perSums = perVector<Distance<Sample>>;
    static Sums loadSums(const Distance<Sample> *from)
    {
        return loadVector<Distance<Sample>>(from);
    }
    static Sums everySum(std::size_t value)
    {
        return everywhere(static_cast<Distance<Sample>>(value));
    }
    static void keepSums(Distance<Sample> *to, Sums sums)
    {
        storeVector<Distance<Sample>>(to, 0, sums);
    }
#else
    using Sums = Distance<Sample>;
    static constexpr std::size_t perSums = 1;
    static Sums loadSums(const Distance<Sample> *from)
    {
        return *from;
    }
    static Sums everySum(std::size_t value)
    {
        return static_cast<Sums>(value);
    }
    static void keepSums(Distance<Sample> *to, Sums sums)
    {
        *to = sums;
    }
#endif

    static constexpr std::size_t largest = sizeof(Distance<Sample>) == 2 ? 32767 : 2147483647;

    // The numbers of the nearest pixels of so many windows, whose first row is in that slot.
    static constexpr std::size_t some = perSums == 1 ? 16 : 4 * perSums < most ? 4 : most / perSums;
    static constexpr std::size_t windows = some * perSums;
    void findNearest(std::size_t slot, std::size_t x, Distance<Sample> *nearest) const
    {
        const Distance<Sample> *rows[side];
        for (std::size_t i = 0; i < side; ++i)
            rows[i] = lists[(slot + i) % side][0] + x;
        Sums numbers[some] = {}, smallest[some];
        for (Sums &each : smallest)
            each = everySum(largest);
        for (std::size_t one = 0; one < Pairs<side>::pixels; ++one) {
            Sums sums[some] = {};
            for (const auto &place : pairs<side>.places[one]) {
                const Distance<Sample> *const from = rows[place.row] + place.list * length + place.column;
                for (std::size_t i = 0; i < some; ++i)
                    sums[i] = static_cast<Sums>(sums[i] + loadSums(from + i * perSums));
            }
            for (std::size_t i = 0; i < some; ++i) {
                const auto less = sums[i] < smallest[i];
                numbers[i] = less ? everySum(one) : numbers[i];
                smallest[i] = less ? sums[i] : smallest[i];
            }
        }
        for (std::size_t i = 0; i < some; ++i)
            keepSums(nearest + i * perSums, numbers[i]);
    }
};

// Three samples, the first two at once.
template <class Sample> inline void moveThree(const unsigned char *in, unsigned char *out)
{
    using Two = std::conditional_t<sizeof(Sample) == 1, std::uint16_t, std::uint32_t>;
    store(out, 0, load<Two>(in, 0));
    store(out, 2, load<Sample>(in, 2));
}

template <class Sample, std::size_t side>
[[gnu::noinline]] void colorMedian(std::size_t channels, ConstRaster source, Raster destination, std::size_t width,
                                   std::size_t height)
{
    using Block = ColorBlock<Sample, side>;
    Block block;
    const std::size_t pixelBytes = channels * sizeof(Sample);
    std::ptrdiff_t offsets[side * side];
    for (std::size_t i = 0; i < side * side; ++i)
        offsets[i] =
            static_cast<std::ptrdiff_t>(i / side) * source.step + static_cast<std::ptrdiff_t>(i % side * pixelBytes);
    for (std::size_t begin = 0; begin < width; begin += Block::block) {
        const std::size_t pixels = width - begin < Block::block ? width - begin : Block::block;
        const unsigned char *in = source.data + begin * pixelBytes;
        unsigned char *out = destination.data + begin * pixelBytes;
        for (std::size_t row = 0; row + 1 < side; ++row)
            block.add(row, in + offsets[row * side], channels, pixels + side - 1);
        for (std::size_t y = 0; y < height; ++y, in += source.step, out += destination.step) {
            block.add(y + side - 1, in + offsets[(side - 1) * side], channels, pixels + side - 1);
            for (std::size_t x = 0; x < pixels; x += Block::windows) {
                Distance<Sample> nearest[Block::windows];
                block.findNearest(y % side, x, nearest);
                const std::size_t end = pixels - x < Block::windows ? pixels : x + Block::windows;
                for (std::size_t i = x; i < end; ++i)
                    moveThree<Sample>(in + i * pixelBytes + offsets[nearest[i - x]], out + i * pixelBytes);
            }
        }
    }
}

template <class Sample>
[[gnu::noinline]] KrnStatus colorMedianOf(std::size_t layout, ConstRaster source, Raster destination,
                                          std::int32_t width, std::int32_t height, std::int32_t code)
{
    if (const KrnStatus status = testRasters(width, height, source, destination); status != KRN_OK)
        return status;
    if (code != KRN_WINDOW_3X3 && code != KRN_WINDOW_5X5)
        return KRN_BAD_MASK_SIZE;
    const std::int32_t side = code == KRN_WINDOW_3X3 ? 3 : 5;
    const std::size_t channels = samplesOf(layout);
    const ConstRaster first = firstOf(source, {side, side, side / 2, side / 2}, channels * sizeof(Sample));
    const auto run = side == 3 ? colorMedian<Sample, 3> : colorMedian<Sample, 5>;
    run(channels, first, destination, static_cast<std::size_t>(width), static_cast<std::size_t>(height));
    return KRN_OK;
}

} // namespace

#define ORV_COLOR_MEDIAN(layout, samples, Sample)                                                                   \
    KRN_KERNEL(CodedKernel, krnColorMedian##samples##layout)                                                        \
    {                                                                                                               \
        return colorMedianOf<Sample>(layout, from(source, sourceStep), to(destination, step), width, height, code); \
    }

ORV_COLOR_MEDIAN(C3, 8u, std::uint8_t)
ORV_COLOR_MEDIAN(AC4, 8u, std::uint8_t)
ORV_COLOR_MEDIAN(C3, 16s, std::int16_t)
ORV_COLOR_MEDIAN(AC4, 16s, std::int16_t)

#include "end.h"
