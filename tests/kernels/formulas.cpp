// What each operation computes, sample by sample, in exact arithmetic. Doubles hold the sum and the product of two
// floats so exactly that rounding them to floats is the only rounding.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "trial.h"

namespace {

using Wide = std::int64_t; // holds the product of any two samples

double clamped(double value, const SampleType &type)
{
    return std::clamp(value, type.lowest, type.highest);
}

// The number of units nearest to the value, the even one of two.
Wide nearestMultiple(Wide value, Wide unit)
{
    Wide below = value / unit, rest = value % unit;
    if (rest < 0) {
        --below;
        rest += unit;
    }
    const Wide toNext = unit - rest;
    return below + (rest > toNext || (rest == toNext && below % 2 != 0));
}

// The value divided by 2 to the power of the scale, within the range.
double scaled(Wide value, int scale, const SampleType &type)
{
    if (scale > 62)
        return 0; // a half at the most, which is nearest to an even 0 too
    if (scale > 0)
        return clamped(static_cast<double>(nearestMultiple(value, Wide{1} << scale)), type);
    const Wide bottom = static_cast<Wide>(type.lowest), top = static_cast<Wide>(type.highest);
    for (int doubled = 0; doubled > scale && value != 0 && value >= bottom && value <= top; --doubled)
        value *= 2;
    return static_cast<double>(std::clamp(value, bottom, top));
}

template <class Of> Formula arithmetic(Of of)
{
    return [of](const Trial &t, int x, int y) -> double {
        const double a = t.firstAt(x, y), b = t.secondAt(x, y);
        if (t.row.destination.isFloat())
            return of(a, b);
        return scaled(of(static_cast<Wide>(a), static_cast<Wide>(b)), t.mode, t.row.destination);
    };
}

// Of the samples or constants that meet.
template <class Of> Formula pointwise(Of of)
{
    return [of](const Trial &t, int x, int y) { return of(t, t.firstAt(x, y), t.secondAt(x, y)); };
}

// Bit by bit, by a table of 0 and 0, 0 and 1, 1 and 0, 1 and 1.
Formula bitwise(const char *truth)
{
    return [truth](const Trial &t, int x, int y) {
        const Wide a = static_cast<Wide>(t.firstAt(x, y)), b = static_cast<Wide>(t.secondAt(x, y));
        Wide result = 0;
        for (int bit = 0; bit < 8 * t.row.source.bytes; ++bit)
            result |= Wide{truth[2 * (a >> bit & 1) + (b >> bit & 1)] == '1'} << bit;
        return static_cast<double>(result);
    };
}

// Times 2 as often as counted, or half of it towards minus infinity. Counts have no sign.
Formula shift(bool left)
{
    return [left](const Trial &t, int x, int y) {
        const std::uint32_t count = static_cast<std::uint32_t>(static_cast<Wide>(t.secondAt(x, y)));
        double value = t.firstAt(x, y);
        for (std::uint32_t i = 0; i < std::min(count, 40u); ++i)
            value = left ? std::fmod(2 * value, std::ldexp(1.0, 8 * t.row.source.bytes)) : std::floor(value / 2);
        return value;
    };
}

double converted(const Trial &t, int x, int y)
{
    const double value = t.firstAt(x, y);
    const SampleType &type = t.row.destination;
    if (type.isFloat())
        return value;
    if (!(value > type.lowest))
        return type.lowest; // not-a-numbers too
    const double truncated = std::trunc(value), fraction = std::fabs(value - truncated);
    const bool away = fraction > 0.5 || (fraction == 0.5 && (t.mode != 1 || std::fmod(truncated, 2) != 0));
    return clamped(t.mode != 0 && away ? truncated + (value < 0 ? -1 : 1) : truncated, type);
}

double mirrored(const Trial &t, int x, int y)
{
    const int channels = t.row.layout.destination, fromY = t.mode == 1 ? y : t.form.height - 1 - y;
    return t.first.get(t.mode == 0 ? x : (t.form.width - 1 - x / channels) * channels + x % channels, fromY);
}

// To nearest, ties to even: by whole numbers where the divisor is a power of two, else in extended precision.
double quotient(const Trial &t, Wide sum)
{
    const Wide power = static_cast<std::uint32_t>(t.divisor);
    if ((power & (power - 1)) == 0)
        return clamped(static_cast<double>(nearestMultiple(sum, power)), t.row.destination);
    const long double value = t.row.source.bytes == 1 ? static_cast<long double>(sum) * (1.0L / t.divisor)
                                                      : static_cast<long double>(sum) / t.divisor;
    return clamped(static_cast<double>(std::nearbyint(std::clamp(value, -1e6L, 1e6L))), t.row.destination);
}

// Calls term(coefficient, sample) for all that meet at a place, row by row of the source and from left to right.
template <class Term> void overWindow(const Trial &t, int x, int y, Term term)
{
    const Window &window = t.form.window;
    for (int row = window.rows - 1; row >= 0; --row)
        for (int column = window.columns - 1; column >= 0; --column)
            term(t.coefficients[static_cast<std::size_t>(row * window.columns + column)],
                 t.first.get(x + (window.anchorX - column) * t.row.layout.source, y + window.anchorY - row));
}

double convolved(const Trial &t, int x, int y)
{
    if (t.row.source.isFloat()) {
        double sum = 0;
        overWindow(t, x, y, [&](double coefficient, double sample) {
            const volatile float product = static_cast<float>(coefficient * sample);
            const volatile float next = static_cast<float>(sum + product);
            sum = next;
        });
        return sum;
    }
    Wide sum = 0;
    overWindow(t, x, y, [&](double coefficient, double sample) {
        sum += static_cast<Wide>(coefficient) * static_cast<Wide>(sample);
    });
    // Sums of bytes wrap at 32 bits. From bytes to words the sums themselves come, which wrap there.
    if (t.row.source.bytes == 1)
        sum = static_cast<std::int32_t>(sum);
    return t.row.takes(DIVISOR) ? quotient(t, sum) : static_cast<double>(static_cast<std::int16_t>(sum));
}

// Calls take(sample, column, row) for all samples of a window that is not turned, row by row.
template <class Take> void overSamples(const Trial &t, int x, int y, Take take)
{
    const Window &window = t.form.window;
    for (int row = 0; row < window.rows; ++row)
        for (int column = 0; column < window.columns; ++column)
            take(t.first.get(x + (column - window.anchorX) * t.row.layout.source, y + row - window.anchorY), column,
                 row);
}

Formula ofRank(double rank)
{
    return [rank](const Trial &t, int x, int y) {
        std::vector<double> samples;
        overSamples(t, x, y, [&](double sample, int, int) { samples.push_back(sample); });
        const auto place = samples.begin() + std::ptrdiff_t(rank * static_cast<double>(samples.size() - 1));
        std::nth_element(samples.begin(), place, samples.end());
        return *place;
    };
}

// The first pixel of the window whose summed distance to all others is smallest.
double colorMedian(const Trial &t, int x, int y)
{
    const int pixel = x / t.row.layout.source * t.row.layout.source;
    std::vector<double> samples[3];
    for (int channel = 0; channel < 3; ++channel)
        overSamples(t, pixel + channel, y, [&](double sample, int, int) { samples[channel].push_back(sample); });
    std::size_t nearest = 0;
    double smallest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < samples[0].size(); ++i) {
        double sum = 0;
        for (const auto &channel : samples)
            for (const double other : channel)
                sum += std::fabs(channel[i] - other);
        if (sum < smallest) {
            smallest = sum;
            nearest = i;
        }
    }
    return samples[x % t.row.layout.source][nearest];
}

// One rounding to a float for each operation.
float rounded(double value)
{
    const volatile float single = static_cast<float>(value);
    return single;
}

// Means of floats from running sums: down each column from the first row, and along each row of those from its first
// pixel.
std::vector<float> runningMeans(const Trial &t)
{
    const Window &window = t.form.window;
    const int channels = t.row.layout.source, samples = t.form.width * channels, lag = window.columns * channels;
    const auto sample = [&](int i, int row) {
        return t.first.get(i - window.anchorX * channels, row - window.anchorY);
    };
    std::vector<float> columns(static_cast<std::size_t>(samples + lag - channels)), means;
    for (int y = 0; y < t.form.height; ++y) {
        for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
            float &sum = columns[static_cast<std::size_t>(i)];
            for (int row = 0; row < window.rows && y == 0; ++row)
                sum = rounded(double{sum} + sample(i, row));
            if (y > 0)
                sum = rounded(double{sum} + rounded(sample(i, y + window.rows - 1) - sample(i, y - 1)));
        }
        std::vector<float> sums(static_cast<std::size_t>(channels));
        for (int i = 0; i < lag; ++i) {
            float &sum = sums[static_cast<std::size_t>(i % channels)];
            sum = rounded(double{sum} + columns[static_cast<std::size_t>(i)]);
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(samples); ++i) {
            float &sum = sums[i % sums.size()];
            means.push_back(rounded(double{sum} * rounded(1.0 / window.size())));
            if (const std::size_t next = i + static_cast<std::size_t>(lag); next < columns.size())
                sum = rounded(double{sum} + rounded(double{columns[next]} - columns[i]));
        }
    }
    return means;
}

// The mean of integers from their exact sum. Bytes have a reciprocal in fixed point, or floats where that has no room.
double blurred(const Trial &t, int x, int y)
{
    static std::vector<float> means; // of the trial, whose first sample is asked for first
    if (t.row.source.isFloat()) {
        if (x == 0 && y == 0)
            means = runningMeans(t);
        return means[static_cast<std::size_t>(y * t.form.width * t.row.layout.source + x)];
    }
    const int size = t.form.window.size();
    const float inverse = rounded(1.0 / size);
    double sum = 0;
    overSamples(t, x, y, [&](double sample, int, int) { sum += sample - t.row.source.lowest; });
    if (t.row.source.bytes == 2)
        return std::floor(rounded(double{rounded(double{rounded(sum)} * inverse)} + 9.0e-6f)) - 32768;
    if (size > 8100)
        return std::floor(rounded(sum * inverse));
    if (size == 1)
        return sum;
    std::uint64_t value = static_cast<std::uint64_t>(double{inverse} * 4294967295.0);
    int shift = 12;
    for (; value < 0x80000000u; value *= 2)
        ++shift;
    return std::floor(std::ldexp(static_cast<double>((value >> 20) + 1) * sum, -shift));
}

// Coefficients of the fixed filters, of 3 x 3 and of 5 x 5.
using Coefficients = std::vector<int>;

Wide weightedSum(const Trial &t, int x, int y, const Coefficients &coefficients)
{
    Wide sum = 0;
    overSamples(t, x, y, [&](double sample, int column, int row) {
        sum += coefficients[static_cast<std::size_t>(row * t.form.window.columns + column)] * static_cast<Wide>(sample);
    });
    return sum;
}

Formula fixedFilter(Coefficients three, int shift, Coefficients five = {})
{
    return [=](const Trial &t, int x, int y) -> double {
        if (t.form.window.columns == 3)
            return clamped(static_cast<double>(nearestMultiple(weightedSum(t, x, y, three), Wide{1} << shift)),
                           t.row.destination);
        const Wide sum = weightedSum(t, x, y, five);
        if (shift == 0)
            return clamped(static_cast<double>(sum), t.row.destination);
        // A quotient by 571: of words by a reciprocal that is a little too large.
        if (t.row.source.bytes == 1)
            return std::floor((static_cast<double>(sum) + 285) / 571);
        return static_cast<double>(((sum + 286 + 571 * 32768) * 7521834 >> 32) - 32768);
    };
}

// Not-a-numbers are neither below nor above any number. Of zeros it is the first.
double extreme(const Trial &t, int channel, int largest)
{
    double found = (largest == 0 ? 1 : -1) * std::numeric_limits<double>::infinity(), zero = 1;
    for (int y = 0; y < t.form.height; ++y)
        for (int x = channel; x < t.form.width * t.row.layout.source; x += t.row.layout.source) {
            const double value = t.first.get(x, y);
            if (value == 0 && zero == 1)
                zero = value;
            found = (largest == 0 ? value < found : value > found) ? value : found;
        }
    return found == 0 ? zero : found;
}

struct Entry {
    std::vector<const char *> operations;
    Formula formula;
};

const Entry entries[] = {
    {{"Add", "AddC"}, arithmetic([](auto a, auto b) { return a + b; })},
    {{"SubC"}, arithmetic([](auto a, auto b) { return a - b; })},
    {{"Sub", "SubRevC"}, arithmetic([](auto a, auto b) { return b - a; })}, // of images the first from the second
    {{"Mul", "MulC"}, arithmetic([](auto a, auto b) { return a * b; })},
    {{"Sqr"}, arithmetic([](auto a, auto) { return a * a; })},
    {{"And", "AndC", "AndMask"}, bitwise("0001")},
    {{"Or", "OrC"}, bitwise("0111")},
    {{"Xor", "XorC"}, bitwise("0110")},
    {{"LShiftC"}, shift(true)},
    {{"RShiftC"}, shift(false)},
    {{"Convert"}, converted},
    {{"Mirror"}, mirrored},
    {{"Convolve", "ConvolveRow", "ConvolveCol"}, convolved},
    {{"MinMax"}, extreme},
    {{"MinFilter", "Erode"}, ofRank(0)},
    {{"Median"}, ofRank(0.5)},
    {{"MaxFilter", "Dilate"}, ofRank(1)},
    {{"ColorMedian"}, colorMedian},
    {{"Blur"}, blurred},
    {{"PrewittV"}, fixedFilter({1, 0, -1, 1, 0, -1, 1, 0, -1}, 0)},
    {{"PrewittH"}, fixedFilter({-1, -1, -1, 0, 0, 0, 1, 1, 1}, 0)},
    {{"SobelV"}, fixedFilter({1, 0, -1, 2, 0, -2, 1, 0, -1}, 0)},
    {{"SobelH"}, fixedFilter({-1, -2, -1, 0, 0, 0, 1, 2, 1}, 0)},
    {{"Laplace"},
     fixedFilter({-1, -1, -1, -1, 8, -1, -1, -1, -1}, 0,
                 {-1, -3, -4, -3, -1, -3, 0, 6, 0, -3, -4, 6, 20, 6, -4, -3, 0, 6, 0, -3, -1, -3, -4, -3, -1})},
    {{"Gauss"}, fixedFilter({1, 2, 1, 2, 4, 2, 1, 2, 1}, 4, {2,  7,  12, 7,  2,  7,  31, 52, 31, 7,  12, 52, 127,
                                                             52, 12, 7,  31, 52, 31, 7,  2,  7,  12, 7,  2})},
    {{"Hipass"},
     fixedFilter({-1, -1, -1, -1, 8, -1, -1, -1, -1}, 0,
                 {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 24, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1})},
    {{"Sharpen"}, fixedFilter({-1, -1, -1, -1, 16, -1, -1, -1, -1}, 3)},
    {{"Abs"}, pointwise([](const Trial &t, double a, double) {
         return t.row.source.isFloat() ? std::fabs(a) : clamped(std::fabs(a), t.row.source);
     })},
    {{"MulScale", "MulCScale"},
     pointwise([](const Trial &t, double a, double b) { return std::floor(a * b / t.row.source.highest); })},
    {{"Cvt"}, pointwise([](const Trial &t, double a, double) { return clamped(a, t.row.destination); })},
    {{"Copy", "CopyBytes", "Extract", "Insert"}, pointwise([](const Trial &, double a, double) { return a; })},
    {{"Fill"}, [](const Trial &t, int x, int y) { return t.secondAt(x, y); }},
    {{"CopyMasked"},
     [](const Trial &t, int x, int y) {
         return (t.mask.get(x / t.row.layout.destination, y) != 0 ? t.first : t.out).get(x, y);
     }},
    {{"Min"}, pointwise([](const Trial &, double a, double b) { return a < b ? a : b; })},
    {{"Max"}, pointwise([](const Trial &, double a, double b) { return a > b ? a : b; })},
    {{"Sqrt"}, pointwise([](const Trial &, double a, double) { return std::sqrt(a); })},
};

} // namespace

Formula formulaOf(const Row &row)
{
    // The order of the sums of floats is the kernels' own. They are held against build 0, and against coefficients by
    // the operation's tests.
    if (row.takes(FIXED | CODE) && row.source.isFloat())
        return Formula();
    for (const Entry &entry : entries)
        for (const char *operation : entry.operations)
            if (row.is(operation))
                return entry.formula;
    return Formula();
}
