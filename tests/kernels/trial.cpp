#include "trial.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>

#include "guarded.h"

namespace {

using namespace orv;

template <class Sample> double read(const std::uint8_t *at)
{
    Sample sample;
    std::memcpy(&sample, at, sizeof sample);
    return static_cast<double>(sample);
}

template <class Sample> void write(std::uint8_t *at, auto value)
{
    const Sample sample = static_cast<Sample>(value);
    std::memcpy(at, &sample, sizeof sample);
}

double readAs(const SampleType &type, const std::uint8_t *at)
{
    switch (type.kind) {
    case SampleType::U8:
        return *at;
    case SampleType::S8:
        return static_cast<std::int8_t>(*at);
    case SampleType::U16:
        return read<std::uint16_t>(at);
    case SampleType::S16:
        return read<std::int16_t>(at);
    case SampleType::S32:
        return read<std::int32_t>(at);
    case SampleType::F64:
        return read<double>(at);
    default:
        return read<float>(at);
    }
}

void writeAs(const SampleType &type, std::uint8_t *at, double value)
{
    if (type.isFloat())
        return type.bytes == 8 ? write<double>(at, value) : write<float>(at, value);
    const std::int64_t bits = static_cast<std::int64_t>(value);
    type.bytes == 1   ? write<std::uint8_t>(at, bits)
    : type.bytes == 2 ? write<std::uint16_t>(at, bits)
                      : write<std::uint32_t>(at, bits);
}

constexpr std::size_t around = 64; // bytes watched where no guard page is

// `channel` is that on which the raster starts.
Raster drawRaster(Guarded &memory, const SampleType &type, int channels, int channel, int width, int height,
                  const Form &form, bool margins, Random &random)
{
    if (margins) {
        width += form.window.columns - 1;
        height += form.window.rows - 1;
    }
    const int rowBytes = width * channels * type.bytes;
    const int step = rowBytes + (form.dense || random() % 3 == 0 ? 0 : static_cast<int>(random() % 40));
    const std::size_t bytes =
        static_cast<std::size_t>(step) * static_cast<std::size_t>(height - 1) + static_cast<std::size_t>(rowBytes);
    memory.grow(bytes + 2 * around);
    const int gap = form.gap >= 0 ? form.gap : random() % 3 == 0 ? static_cast<int>(random() % 40) : 0;
    const bool lower = form.gap >= 0 || random() % 2 == 0;
    std::uint8_t *const begin = lower ? memory.begin() + gap : memory.end() - bytes - gap;

    Raster raster = {&type, width * channels, height, 0, 0, nullptr, step, nullptr, 0};
    if (margins) {
        raster.left = form.window.anchorX * channels;
        raster.above = form.window.anchorY;
    }
    raster.start = begin + std::ptrdiff_t{raster.above} * step + (raster.left + channel) * type.bytes;
    // The last pixel has its other channels behind the raster's last sample.
    raster.samples -= channel;
    const auto before = std::min(around, static_cast<std::size_t>(begin - memory.begin()));
    const auto behind = std::min(around, static_cast<std::size_t>(memory.end() - begin) - bytes);
    raster.watched = begin - before;
    raster.watchedBytes = before + bytes + behind;
    std::uint32_t noise = static_cast<std::uint32_t>(random());
    for (std::size_t i = 0; i < raster.watchedBytes; ++i, noise = noise * 1664525 + 1013904223)
        raster.watched[i] = static_cast<std::uint8_t>(noise >> 24);
    return raster;
}

// Levels of all ranges, ascending, equal at times. Some are those that front ends pass.
void drawLevels(Trial &trial, Random &random)
{
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    const bool alike = below(3) == 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const int kind = below(4), count = 2 + below(kind == 0 ? 40 : 6);
        if (alike && i > 0) {
            trial.levels[i] = trial.levels[0];
            trial.steps[i] = trial.steps[0];
            continue;
        }
        for (int level = 0; level < (kind == 1 ? 256 + below(2) : count); ++level)
            trial.levels[i].push_back(kind == 1 ? level : below(below(4) == 0 ? 400 : 257) - below(5));
        std::sort(trial.levels[i].begin(), trial.levels[i].end());
        for (std::size_t k = 0; k < trial.levels[i].size(); ++k)
            trial.steps[i].push_back(below(8) == 0 ? below(1000) - 400 : below(256));
    }
}

// Calls take(x, y) for all samples that the kernel writes.
template <class Take> void overWritten(const Trial &trial, Take take)
{
    const PixelLayout &layout = trial.row.layout;
    for (int y = 0; y < trial.outHeight(); ++y)
        for (int x = 0; x < trial.outWidth() * layout.destination; ++x)
            if (x % layout.destination < layout.written)
                take(x, y);
}

using Bytes = std::vector<std::uint8_t>;

Bytes snapshot(const Raster &raster)
{
    return {raster.watched, raster.watched + raster.watchedBytes};
}

// Constants or coefficients as the kernel reads them: counts and coefficients of integers have 32 bits.
Bytes valuesOf(const Trial &trial)
{
    const Row &row = trial.row;
    const bool ownType = row.source.isFloat() || !(row.takes(WINDOW) || row.shifts());
    const SampleType &type = ownType ? row.source : sampleType("32s");
    std::vector<double> numbers = trial.coefficients;
    if (!row.takes(WINDOW))
        numbers.assign(trial.constants.begin(), trial.constants.end());
    Bytes values;
    for (const double number : numbers) {
        values.resize(values.size() + static_cast<std::size_t>(type.bytes));
        writeAs(type, &values[values.size() - static_cast<std::size_t>(type.bytes)], number);
    }
    return values;
}

// What went wrong, for the reader. The destination is as it was before the call.
testing::AssertionResult describe(const Trial &trial, const Bytes &expected, const Bytes &result)
{
    const Form &form = trial.form;
    const Raster &out = trial.out;
    testing::AssertionResult failure = testing::AssertionFailure();
    failure << trial.row.name << " of build " << krnDispatchIndex << ", " << form.width << " x " << form.height
            << ", steps " << trial.first.step << " to " << out.step << ", place " << static_cast<int>(form.place)
            << ", mode " << trial.mode << ", window " << form.window.columns << " x " << form.window.rows << ", anchor "
            << form.window.anchorX << ", " << form.window.anchorY << ", divisor " << trial.divisor;
    for (int y = 0; y < trial.outHeight(); ++y)
        for (int x = 0; x < trial.outWidth() * trial.row.layout.destination; ++x) {
            const std::ptrdiff_t place = out.at(x, y) - out.watched;
            if (place + out.type->bytes > static_cast<std::ptrdiff_t>(result.size()) ||
                std::memcmp(&result[static_cast<std::size_t>(place)], &expected[static_cast<std::size_t>(place)],
                            static_cast<std::size_t>(out.type->bytes)) == 0)
                continue;
            return failure << ", sample " << x << " of row " << y << ": of "
                           << trial.firstAt(x, std::min(y, form.height - 1)) << " and " << trial.secondAt(x, y)
                           << " came " << readAs(*out.type, &result[std::size_t(place)]) << ", not "
                           << readAs(*out.type, &expected[std::size_t(place)]);
        }
    return failure << ": wrote beyond the samples";
}

} // namespace

int Trial::outHeight() const
{
    if (!row.takes(RESULTS))
        return form.height;
    std::size_t intervals = row.is("MinMax") ? 2 : 1;
    for (int i = 0; i < row.channels() && row.takes(INTERVALS); ++i)
        intervals = std::max(intervals, levels[i].size() - 1);
    return static_cast<int>(intervals);
}

double Raster::get(int x, int y) const
{
    return readAs(*type, at(x, y));
}

void Raster::set(int x, int y, double value) const
{
    writeAs(*type, at(x, y), value);
}

Trial::Trial(const Row &itsRow, const Form &itsForm, Random &random) : row(itsRow), form(itsForm)
{
    static Guarded memory[4];
    const PixelLayout &layout = row.layout;
    Form placed = form;
    if (row.turns()) {
        placed.window.anchorX = form.window.columns - 1 - form.window.anchorX;
        placed.window.anchorY = form.window.rows - 1 - form.window.anchorY;
    }
    const auto channelOf = [&](int channels) {
        return channels > layout.written && layout.written == 1
                   ? static_cast<int>(random() % static_cast<unsigned>(channels))
                   : 0;
    };
    const auto some = [&](int which, const SampleType &type, int channels, int channel) {
        return drawRaster(memory[which], type, channels, channel, form.width, form.height, placed, which == 0, random);
    };
    first = some(0, row.source, layout.source, channelOf(layout.source));
    second = some(1, row.source, layout.source, 0);
    mask = some(2, sampleType("8u"), 1, 0);
    if (row.takes(INTERVALS | TABLE))
        drawLevels(*this, random);
    if (row.takes(RESULTS)) {
        Form aligned = form;
        aligned.dense = true;
        aligned.gap = 0;
        out = drawRaster(memory[3], row.destination, layout.destination, 0, 1, outHeight(), aligned, false, random);
    } else {
        out = some(3, row.destination, layout.destination, channelOf(layout.destination));
    }
    if (form.place == Place::OverFirst)
        out = first;
    if (form.place == Place::OverSecond)
        out = second;
    if (row.takes(IN_PLACE) && row.windowed())
        out = first;
    if (row.takes(IN_PLACE))
        first = out;
    if (row.takes(ONTO))
        second = out;
    coefficients.resize(static_cast<std::size_t>(form.window.size()));
}

testing::AssertionResult hold(const Trial &trial, const Formula &formula)
{
    const Row &row = trial.row;
    const Raster &out = trial.out;
    const Bytes before = snapshot(out);
    const Raster *const sources[] = {&trial.first, &trial.second, &trial.mask};
    Bytes untouched[3];
    for (int i = 0; i < 3; ++i)
        untouched[i] = sources[i]->watched == out.watched ? Bytes() : snapshot(*sources[i]);

    Bytes expected = before;
    if (formula)
        overWritten(trial, [&](int x, int y) {
            const double value = formula(trial, x, y);
            writeAs(*out.type, &expected[static_cast<std::size_t>(out.at(x, y) - out.watched)],
                    std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value);
        });

    const Bytes values = valuesOf(trial);
    static Guarded scratch[2];
    const auto block = [&](int which, std::int64_t bytes) -> void * {
        const std::size_t rounded = (static_cast<std::size_t>(bytes) + 31) / 32 * 32;
        scratch[which].grow(rounded);
        std::memset(scratch[which].end() - rounded, 0xA5, rounded);
        return scratch[which].end() - rounded;
    };
    Arguments arguments = {{trial.first.start, trial.first.step},
                           {trial.second.start, trial.second.step},
                           {out.start, out.step},
                           {trial.mask.start, trial.mask.step},
                           trial.form.width,
                           trial.form.height,
                           trial.mode,
                           0,
                           static_cast<float>(trial.constants[0]),
                           values.data(),
                           trial.form.window,
                           trial.divisor,
                           block(0, row.scratchBytes(trial.form.width, trial.form.window)),
                           block(1, row.sumsBytes(trial.form.width, trial.form.window)),
                           {},
                           {},
                           {},
                           trial.low,
                           trial.high};
    for (std::size_t i = 0; i < 4; ++i) {
        arguments.levels[i] = trial.levels[i].data();
        arguments.steps[i] = trial.steps[i].data();
        arguments.levelCounts[i] = static_cast<int>(trial.levels[i].size());
    }
    if (row.takes(LEVEL))
        arguments.value = trial.level;
    if (row.takes(CONSTANT) && !row.source.isFloat())
        arguments.value = static_cast<int>(static_cast<std::int64_t>(trial.constants[0])) ^ trial.valueBits;

    testing::AssertionResult outcome = testing::AssertionSuccess();
    for (krnDispatchIndex = 0; outcome && krnDispatchIndex < carriedBuilds(); ++krnDispatchIndex) {
        const KrnStatus status = row.run(row.kernel, arguments);
        if (status != KRN_OK)
            outcome = testing::AssertionFailure() << row.name << " returned " << status;
        if (out.type->isFloat())
            overWritten(trial, [&](int x, int y) {
                if (std::isnan(out.get(x, y)))
                    out.set(x, y, std::numeric_limits<double>::quiet_NaN());
            });
        const Bytes result = snapshot(out);
        std::memcpy(out.watched, before.data(), before.size());
        if (!formula && krnDispatchIndex == 0)
            expected = result;
        if (outcome && result != expected)
            outcome = describe(trial, expected, result);
        for (int i = 0; i < 3 && outcome; ++i)
            if (!untouched[i].empty() &&
                std::memcmp(untouched[i].data(), sources[i]->watched, untouched[i].size()) != 0)
                outcome = testing::AssertionFailure()
                          << row.name << " of build " << krnDispatchIndex << " wrote to source " << i;
    }
    krnDispatchIndex = 0;
    return outcome;
}

const std::vector<double> &numbersOf(const SampleType &type)
{
    static std::vector<double> known[SampleType::F64];
    std::vector<double> &numbers = known[type.kind];
    if (!numbers.empty())
        return numbers;
    Random random(static_cast<unsigned>(type.kind));
    if (type.isFloat()) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        numbers = {1e-45,      1.2e-38,   1e-40,     1e-20, 3.4e38, 0.1,          3.0,          0.49999997, 0.50000006,
                   16777216.0, 8388609.0, 4194304.5, 1e20,  1e30,   2147483520.0, 2147483904.0, infinity};
        for (const double edge : {0.0, 127.0, 128.0, 255.0, 32767.0, 32768.0, 65535.0, 2147483648.0})
            for (const double offset : {-2.0, -1.5, -1.0, -0.5, -0.25, 0.0, 0.25, 0.5, 1.0, 1.5})
                numbers.push_back(edge + offset);
        for (int i = 0; i < 60; ++i)
            numbers.push_back(std::ldexp(random() % 65536, static_cast<int>(random() % 48) - 24));
        for (std::size_t i = 0, positive = numbers.size(); i < positive; ++i)
            numbers.push_back(-numbers[i]);
        numbers.push_back(-0.0);
        numbers.push_back(std::numeric_limits<double>::quiet_NaN());
        for (double &number : numbers)
            number = static_cast<float>(number);
        return numbers;
    }
    const auto inside = [&](double number) { return number >= type.lowest && number <= type.highest; };
    std::set<double> found = {type.lowest, type.highest};
    if (type.bytes == 1)
        for (double number = type.lowest; number <= type.highest; ++number)
            found.insert(number);
    for (int bit = 0; bit < 8 * type.bytes; bit += type.bytes == 4 ? 3 : 1)
        for (const double factor : {1.0, 3.0})
            for (const double offset : {-1.0, 0.0, 1.0})
                for (const double sign : {1.0, -1.0})
                    if (const double number = sign * (std::ldexp(factor, bit) + offset); inside(number))
                        found.insert(number);
    for (int i = 0; i < 80; ++i)
        if (const double number = (random() % 2 == 0 ? 1.0 : -1.0) * (random() >> random() % 32); inside(number))
            found.insert(number);
    numbers.assign(found.begin(), found.end());
    return numbers;
}

const std::vector<int> &scales()
{
    static const std::vector<int> all = {0,   1,   2,   3,   5,   7,   8,       9,       10,         15,  16,  17,
                                         29,  30,  31,  32,  33,  34,  61,      62,      63,         64,  65,  -1,
                                         -2,  -3,  -6,  -7,  -8,  -9,  -13,     -14,     -15,        -16, -29, -30,
                                         -31, -32, -33, -63, -64, -65, INT_MAX, INT_MIN, INT_MIN + 1};
    return all;
}
