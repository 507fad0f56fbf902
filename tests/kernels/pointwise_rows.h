// Rows of the table that compute each sample from the samples at its place, and how they are held against a formula.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "row_table.h"

struct PointwiseRow {
    std::string name;
    std::string stem; // what it computes: AddC of krnAddC8uC3I
    std::string type; // of the samples of its sources
    int channels;
    bool alpha, inPlace, oneRow;
    bool twoImages, constant; // or one image alone
    TableRow run;
};

// All types and layouts, in place or not, of krn<stem>.
inline std::vector<PointwiseRow> rowsOf(const std::string &stem)
{
    std::vector<PointwiseRow> rows;
    for (const TableRow &row : tableRows("krn" + stem)) {
        std::string rest = std::string(row.name).substr(3);
        if (rest.substr(0, rest.find_first_of("123456789")) == stem)
            rows.push_back({row.name, stem, takeType(rest), shapeOf(row.name).source.channels, row.alpha(),
                            row.inPlace(), takesOneRow(row.name), row.twoImages, !row.twoImages && !row.oneImage, row});
    }
    return rows;
}

// A rectangle of samples among bytes of no meaning.
class Raster {
public:
    // With spare bytes after a row, all rows and samples stand at addresses of any kind; without, at aligned ones.
    Raster(int samplesPerRow, int height, int sampleBytes, int spare)
        : samplesPerRow_(samplesPerRow), height_(height), step_(samplesPerRow * sampleBytes + spare),
          start_(64 + spare), bytes_(static_cast<std::size_t>(step_) * height + start_ + 64)
    {
        for (std::size_t i = 0; i < bytes_.size(); ++i)
            bytes_[i] = static_cast<std::uint8_t>(i * 167 + 13);
    }

    int samplesPerRow() const { return samplesPerRow_; }
    int height() const { return height_; }
    RowRaster raster() { return {bytes_.data() + start_, step_}; }
    bool operator==(const Raster &other) const { return bytes_ == other.bytes_; }

    template <class Sample> Sample get(int x, int y) const
    {
        Sample sample;
        std::memcpy(&sample, at<Sample>(x, y), sizeof sample);
        return sample;
    }
    template <class Sample> void set(int x, int y, Sample sample)
    {
        std::memcpy(const_cast<std::uint8_t *>(at<Sample>(x, y)), &sample, sizeof sample);
    }
    template <class Sample> void fill(const std::vector<Sample> &values)
    {
        std::size_t next = 0;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < samplesPerRow_; ++x, next = next + 1 == values.size() ? 0 : next + 1)
                set(x, y, values[next]);
    }

private:
    template <class Sample> const std::uint8_t *at(int x, int y) const
    {
        return bytes_.data() + start_ + static_cast<std::ptrdiff_t>(y) * step_ + x * static_cast<int>(sizeof(Sample));
    }

    int samplesPerRow_, height_, step_, start_;
    std::vector<std::uint8_t> bytes_;
};

enum class Place { Apart, OverFirst, OverSecond };

struct Trial {
    int width, height;
    int spare = 0;
    Place place = Place::Apart;
    int scale = 0;
    int aboveSample = 0; // bits of a constant given by value that its kernel has to cut
};

template <class In, class Constant = In> struct Operands {
    std::vector<In> first, second; // repeated as often as it takes
    std::array<Constant, 4> constants;
};

// Any results that are no numbers are alike.
template <class Sample> Sample canonical(Sample sample)
{
    if constexpr (std::is_floating_point_v<Sample>)
        return std::isnan(sample) ? std::numeric_limits<float>::quiet_NaN() : sample;
    else
        return sample;
}

// Where the result is not as expected, for the reader.
template <class In, class Out, class Constant>
::testing::AssertionResult differs(const PointwiseRow &row, const Trial &trial, const Raster &first,
                                   const Raster &second, const std::array<Constant, 4> &constants,
                                   const Raster &expected, const Raster &result)
{
    ::testing::AssertionResult failure = ::testing::AssertionFailure();
    failure << row.name << " of build " << krnDispatchIndex << ", " << trial.width << " x " << trial.height
            << ", spare " << trial.spare << ", place " << static_cast<int>(trial.place) << ", scale " << trial.scale;
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.samplesPerRow(); ++x) {
            const Out is = result.get<Out>(x, y), shouldBe = expected.get<Out>(x, y);
            if (std::memcmp(&is, &shouldBe, sizeof is) == 0)
                continue;
            failure << ", sample " << x << " of row " << y << ": of " << +first.get<In>(x, y);
            if (row.twoImages)
                failure << " and " << +second.get<In>(x, y);
            if (row.constant)
                failure << " and constant " << +constants[x % row.channels];
            return failure << " came " << +is << ", not " << +shouldBe;
        }
    return failure << ": wrote beyond the samples";
}

// Runs all builds of a row and compares each with formula(first, second or constant, scale), byte by byte: what is not
// the kernel's to write has to stay, in the fourth samples of pixels with alpha and all around the raster.
template <class In, class Out = In, class Constant, class Formula>
::testing::AssertionResult hold(const PointwiseRow &row, const Trial &trial, const Operands<In, Constant> &operands,
                                Formula formula)
{
    const int samplesPerRow = trial.width * row.channels;
    const auto rasterOf = [&](int bytes, int more) {
        return Raster(samplesPerRow, trial.height, bytes, trial.spare == 0 ? 0 : trial.spare + more);
    };
    Raster first = rasterOf(sizeof(In), 0), second = rasterOf(sizeof(In), 2);
    first.fill(operands.first);
    second.fill(operands.second);
    const Raster destination = trial.place == Place::OverFirst    ? first
                               : trial.place == Place::OverSecond ? second
                                                                  : rasterOf(sizeof(Out), 1);
    Raster expected = destination;
    for (int y = 0; y < trial.height; ++y)
        for (int x = 0; x < samplesPerRow; ++x) {
            if (row.alpha && x % 4 == 3)
                continue;
            const In sample = first.get<In>(x, y);
            expected.set<Out>(x, y,
                              canonical<Out>(row.constant
                                                 ? formula(sample, operands.constants[x % row.channels], trial.scale)
                                                 : formula(sample, second.get<In>(x, y), trial.scale)));
        }

    int value = 0;
    float real = 0;
    if constexpr (std::is_integral_v<Constant>)
        value = static_cast<int>(operands.constants[0]) ^ trial.aboveSample;
    else
        real = operands.constants[0];
    ::testing::AssertionResult outcome = ::testing::AssertionSuccess();
    for (krnDispatchIndex = 0; outcome && krnDispatchIndex < orv::kernelBuilds; ++krnDispatchIndex) {
        Raster result = destination;
        RowCall arguments = {{trial.place == Place::OverFirst ? result.raster() : first.raster(),
                              trial.place == Place::OverSecond ? result.raster() : second.raster()},
                             result.raster(),
                             {},
                             trial.width,
                             trial.height,
                             value,
                             trial.scale,
                             operands.constants.data()};
        arguments.real = real;
        const KrnStatus status = row.run(arguments);
        if (status != orv::KRN_OK)
            outcome = ::testing::AssertionFailure() << row.name << " returned " << status;
        if constexpr (std::is_floating_point_v<Out>)
            for (int y = 0; y < trial.height; ++y)
                for (int x = 0; x < samplesPerRow; ++x)
                    if (!row.alpha || x % 4 != 3)
                        result.set<Out>(x, y, canonical<Out>(result.get<Out>(x, y)));
        if (outcome && !(result == expected))
            outcome = differs<In, Out>(row, trial, first, second, operands.constants, expected, result);
    }
    krnDispatchIndex = 0;
    return outcome;
}

// Numbers that show faults: all bytes; of wider integers powers of two, halves between two of them and what is beside
// those, and some of all magnitudes.
template <class Sample> std::vector<Sample> numbersOf()
{
    std::set<Sample> numbers = {std::numeric_limits<Sample>::min(), std::numeric_limits<Sample>::max()};
    constexpr int bits = 8 * sizeof(Sample);
    if (bits == 8)
        for (int number = 0; number < 256; ++number)
            numbers.insert(static_cast<Sample>(number));
    else
        for (int bit = 0; bit < bits; bit += bits / 16 + bits / 32)
            for (const std::int64_t factor : {1, 3})
                for (std::int64_t number = (factor << bit) - 1; number <= (factor << bit) + 1; ++number)
                    numbers.insert({static_cast<Sample>(number), static_cast<Sample>(-number)});
    std::mt19937 random(bits);
    for (int i = 0; i < 40; ++i) {
        const std::int64_t magnitude = static_cast<std::int64_t>(random()) >> random() % 32;
        numbers.insert(static_cast<Sample>(random() % 2 == 0 ? magnitude : -magnitude));
    }
    return {numbers.begin(), numbers.end()};
}

// A row of one channel by all of `firsts` with all of `seconds`, which are the samples of a second image or constants.
template <class In, class Out = In, class Constant, class Formula>
::testing::AssertionResult holdOperands(const PointwiseRow &row, const std::vector<In> &firsts,
                                        const std::vector<Constant> &seconds, const std::vector<int> &scales,
                                        Formula formula)
{
    Operands<In, Constant> operands = {{}, {In{}}, {}};
    const std::size_t repeats = row.twoImages ? seconds.size() : 1;
    for (std::size_t i = 0; i < repeats; ++i)
        operands.first.insert(operands.first.end(), firsts.begin(), firsts.end());
    if (row.twoImages) {
        operands.second.clear();
        for (const Constant second : seconds)
            operands.second.insert(operands.second.end(), firsts.size(), static_cast<In>(second));
    }
    const int samples = static_cast<int>(operands.first.size());
    const Place place = row.inPlace ? Place::OverFirst : Place::Apart;
    for (const int scale : scales) {
        const Trial trial = {row.oneRow ? samples : (samples + 6) / 7, row.oneRow ? 1 : 7, 0, place, scale};
        for (std::size_t i = 0; i < (row.constant ? seconds.size() : 1); ++i) {
            if (row.constant)
                operands.constants.fill(seconds[i]);
            const ::testing::AssertionResult outcome = hold<In, Out>(row, trial, operands, formula);
            if (!outcome)
                return outcome;
        }
    }
    return ::testing::AssertionSuccess();
}

// A row of any layout by widths around those of vectors, dense and not, apart and in place, with constants that are
// alike and that differ, also only in the fourth.
template <class In, class Out = In, class Constant, class Formula>
::testing::AssertionResult holdLayouts(const PointwiseRow &row, const std::vector<In> &samples,
                                       const std::vector<Constant> &constants, Formula formula)
{
    const int scales[] = {0, 0, 1, 3, 8, 15, -2};
    std::vector<Place> places = {Place::Apart, Place::OverFirst, Place::OverSecond};
    places.resize(sizeof(In) != sizeof(Out) ? 1 : row.twoImages ? 3 : 2);
    if (row.inPlace)
        places.assign(3, Place::OverFirst);
    std::seed_seq seed(row.name.begin(), row.name.end());
    std::mt19937 random(seed);
    const auto some = [&](int count) {
        std::vector<In> chosen;
        for (int i = 0; i < count; ++i)
            chosen.push_back(samples[random() % samples.size()]);
        return chosen;
    };
    for (int width = 1; width <= 41; ++width) {
        Trial trial = {width == 41 ? 300 : width, row.oneRow ? 1 : 1 + width % 3};
        Operands<In, Constant> operands = {some(997), some(997), {}};
        for (const Place place : places) {
            trial.place = place;
            trial.spare = static_cast<int>(random() % 2 * (1 + random() % 9));
            trial.scale = scales[random() % std::size(scales)];
            operands.constants.fill(constants[random() % constants.size()]);
            const int alike = width % 6; // 5: all; 4: none; else all but the one of this channel
            for (int i = 0; i < 4; ++i)
                if (alike == 4 || alike == i)
                    operands.constants[i] = constants[random() % constants.size()];
            const ::testing::AssertionResult outcome = hold<In, Out>(row, trial, operands, formula);
            if (!outcome)
                return outcome;
        }
    }
    return ::testing::AssertionSuccess();
}

// A constant by value is an int, of which the bits above the sample have no say.
template <class Sample, class Formula>
::testing::AssertionResult holdCut(const PointwiseRow &row, const std::vector<Sample> &samples, Formula formula)
{
    Trial trial = {static_cast<int>(samples.size()), 1, 0, row.inPlace ? Place::OverFirst : Place::Apart};
    trial.aboveSample = static_cast<int>(0x5A5A5A5Aull << 8 * sizeof(Sample));
    return hold(row, trial, Operands<Sample>{samples, {0}, {7, 7, 7, 7}}, formula);
}

// All of the above that applies to the row.
template <class In, class Out = In, class Constant, class Formula>
::testing::AssertionResult holdAll(const PointwiseRow &row, const std::vector<In> &firsts,
                                   const std::vector<Constant> &seconds, const std::vector<int> &scales,
                                   Formula formula)
{
    ::testing::AssertionResult outcome = holdLayouts<In, Out>(row, firsts, seconds, formula);
    if (outcome && row.channels == 1)
        outcome = holdOperands<In, Out>(row, firsts, seconds, scales, formula);
    if constexpr (std::is_integral_v<In> && std::is_same_v<In, Constant>)
        if (outcome && row.channels == 1 && row.constant)
            outcome = holdCut(row, firsts, formula);
    return outcome;
}

// Calls run with a sample of that name.
template <class Run> void withSampleOf(const std::string &type, Run run)
{
    if (type == "8u")
        run(std::uint8_t{});
    else if (type == "8s")
        run(std::int8_t{});
    else if (type == "16u")
        run(std::uint16_t{});
    else if (type == "16s")
        run(std::int16_t{});
    else if (type == "32s")
        run(std::int32_t{});
    else
        FAIL() << type;
}
