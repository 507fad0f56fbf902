// Images of the tests: guarded rasters at any address, whose samples are read and written by the addressing rules
// alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orv.h"

namespace front {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::int32_t mostInt = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int32_t leastInt = std::numeric_limits<std::int32_t>::min();

inline void provideNoTile() {} // the callback of tiled images

// One sample: the bits of its depth, in the low bits.
struct Sample {
    std::int32_t depth;
    std::uint32_t bits;

    long long integer() const;
    double real() const;
    bool isNan() const;
};

Sample integerSample(std::int32_t depth, long long value); // a value of the depth's range
Sample realSample(double value);

int bytesOf(std::int32_t depth);
long long lowestOf(std::int32_t depth);
long long highestOf(std::int32_t depth);
long long saturated(std::int32_t depth, long long value);

inline constexpr std::int32_t allDepths[] = {ORV_DEPTH_1U,  ORV_DEPTH_8U,  ORV_DEPTH_8S, ORV_DEPTH_16U,
                                             ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F};

// Seeded choices, the same on every target.
class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t bits() { return static_cast<std::uint32_t>(engine_()); }
    int between(int first, int last)
    {
        return first + static_cast<int>(bits() % static_cast<unsigned>(last - first + 1));
    }
    bool once(int in) { return between(1, in) == 1; }
    template <class Range> auto oneOf(const Range &range)
    {
        return std::begin(range)[static_cast<std::size_t>(between(0, static_cast<int>(std::size(range)) - 1))];
    }

private:
    std::mt19937 engine_;
};

// How a raster is laid out. Rows may be longer than their samples, by any number of bytes.
struct Form {
    std::int32_t depth = ORV_DEPTH_8U;
    std::int32_t channels = 1;
    std::int32_t alpha = 0;
    std::int32_t order = ORV_DATA_ORDER_PIXEL;
    std::int32_t origin = ORV_ORIGIN_TL;
    std::int32_t align = 4;
    std::int32_t width = 8;
    std::int32_t height = 8;
    std::int32_t extraStep = 0;

    std::int32_t rowBytes() const;
    std::int32_t widthStep() const { return rowBytes() + extraStep; }
    std::int32_t rows() const { return height * (order == ORV_DATA_ORDER_PLANE ? channels : 1); }
    std::size_t reach() const; // bytes from the first to the last sample
    void stepInWholeSamples(); // lengthens the rows as far as that takes
};

// A raster of random content, extremes among it, with a header of the test's own over it. What lies around the raster
// and between its rows is random too, so that a write there shows. The block ends with the last sample as often as not,
// for the sanitizer to see a read beyond.
class TestImage {
public:
    TestImage(const Form &form, Random &random);
    // Over a piece of memory that others use too.
    TestImage(const Form &form, std::shared_ptr<Bytes> memory, std::size_t start);
    TestImage(const TestImage &) = delete;
    TestImage &operator=(const TestImage &) = delete;

    const Form form;
    OrvImage header = {};

    void setRectangle(std::int32_t coi, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    void setWholeRectangle(std::int32_t coi) { setRectangle(coi, 0, 0, form.width, form.height); }
    void setMask(std::shared_ptr<TestImage> mask);
    TestImage *mask() const { return mask_.get(); }

    const std::shared_ptr<Bytes> &memory() const { return memory_; }
    std::size_t start() const { return start_; }
    // Where the sample stands in the memory; the row counts in memory order.
    std::size_t place(std::int32_t x, std::int32_t y, std::int32_t channel) const;
    Sample read(const Bytes &bytes, std::int32_t x, std::int32_t y, std::int32_t channel) const;
    void write(Bytes &bytes, std::int32_t x, std::int32_t y, std::int32_t channel, Sample sample) const;
    Sample get(std::int32_t x, std::int32_t y, std::int32_t channel) const { return read(*memory_, x, y, channel); }
    void set(std::int32_t x, std::int32_t y, std::int32_t channel, Sample sample)
    {
        write(*memory_, x, y, channel, sample);
    }
    void fill(Sample sample); // all channels of the whole raster

private:
    void fillHeader();

    std::shared_ptr<Bytes> memory_;
    std::size_t start_;
    OrvROI rectangle_ = {};
    std::shared_ptr<TestImage> mask_;
};

// A mask of the bytes that matter: none, single bits that share nothing, and all.
std::shared_ptr<TestImage> randomMask(std::int32_t width, std::int32_t height, Random &random);

// What rectangles a test gives its images.
enum class Rectangles { None, Inside, Clipped, Outside, Absurd };
Rectangles anyRectangles(Random &random);
void setRandomRectangle(TestImage &image, Rectangles kind, std::int32_t coi, Random &random);

std::ostream &operator<<(std::ostream &out, const TestImage &image);

// The numbers of a header from nSize to imageSize, and those of its borders.
std::vector<std::int32_t> numbersOf(const OrvImage &image);
// Its color model and channel sequence.
std::string colorsOf(const OrvImage &image);

} // namespace front
