// What each operation computes, sample by sample, in exact arithmetic. Doubles hold the sum and the product of two
// floats so exactly that rounding them to floats is the only rounding.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "filter_models.h"
#include "trial.h"

namespace {

using models::nearestMultiple;

using Wide = std::int64_t; // holds the product of any two samples

double clamped(double value, const SampleType &type)
{
    return std::clamp(value, type.lowest, type.highest);
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

double colorMedian(const Trial &t, int x, int y)
{
    const int channels = t.row.layout.source;
    std::vector<double> samples[3];
    for (int channel = 0; channel < 3; ++channel)
        overSamples(t, x - x % channels + channel, y,
                    [&](double sample, int, int) { samples[channel].push_back(sample); });
    return samples[x % channels][models::colorMedian(samples)];
}

// Integers have their exact sum.
double blurred(const Trial &t, int x, int y)
{
    const Window &window = t.form.window;
    const int channels = t.row.layout.source, size = window.size();
    static std::vector<float> means[4]; // of the trial, whose first sample is asked for first
    for (int channel = 0; t.row.source.isFloat() && channel < channels && x == 0 && y == 0; ++channel)
        means[channel] =
            models::runningMeans(t.form.width, t.form.height, window.columns, window.rows, [&](int column, int row) {
                return t.first.get((column - window.anchorX) * channels + channel, row - window.anchorY);
            });
    if (t.row.source.isFloat())
        return means[x % channels][static_cast<std::size_t>(y * t.form.width + x / channels)];
    double sum = 0;
    overSamples(t, x, y, [&](double sample, int, int) { sum += sample - t.row.source.lowest; });
    return t.row.source.bytes == 1 ? models::meanOfBytes(sum, size) : models::meanOfWords(sum, size);
}

// One of two sizes.
double fixedFilter(const Trial &t, int x, int y)
{
    const Window &window = t.form.window;
    for (const models::FixedFilter &filter : models::fixedFilters) {
        if (!t.row.is(filter.kernel) || filter.side != window.columns)
            continue;
        Wide sum = 0;
        overSamples(t, x, y, [&](double sample, int column, int row) {
            sum += filter.coefficients[static_cast<std::size_t>(row * window.columns + column)] *
                   static_cast<Wide>(sample);
        });
        return clamped(models::fixedQuotient(filter, sum, t.row.source.bytes == 2), t.row.destination);
    }
    return std::numeric_limits<double>::quiet_NaN();
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

// Calls take(sample) for the samples of one channel, row by row.
template <class Take> void overChannel(const Trial &t, int channel, Take take)
{
    for (int y = 0; y < t.form.height; ++y)
        for (int x = channel; x < t.form.width * t.row.layout.source; x += t.row.layout.source)
            take(x, y);
}

// Each interval by itself, from level to level. Rows beyond a channel's intervals stay.
double counted(const Trial &t, int channel, int interval)
{
    const std::vector<int> &levels = t.levels[channel];
    const std::size_t i = static_cast<std::size_t>(interval);
    if (i + 1 >= levels.size())
        return t.out.get(channel, interval);
    int found = 0;
    overChannel(t, channel, [&](int x, int y) {
        const double sample = t.first.get(x, y);
        found += sample >= levels[i] && sample < levels[i + 1];
    });
    return found;
}

double lookedUp(const Trial &t, int x, int y)
{
    const int channel = x % t.row.layout.destination;
    const double sample = t.firstAt(x, y);
    for (std::size_t i = 0; i + 1 < t.levels[channel].size(); ++i)
        if (sample >= t.levels[channel][i] && sample < t.levels[channel][i + 1])
            return clamped(t.steps[channel][i], t.row.destination);
    return sample;
}

// A constant as the kernel reads it: its low bits, as many as a sample has.
double cut(int value, const SampleType &type)
{
    const double range = std::ldexp(1.0, 8 * type.bytes), low = value - range * std::floor(value / range);
    return low > type.highest ? low - range : low;
}

// The x87 unit goes on with more bits than a double has, and a root that is rounded twice may differ.
class RoundingToDoubles {
public:
#if defined(__i386__)
    RoundingToDoubles()
    {
        __asm__ volatile("fnstcw %0" : "=m"(saved_));
        const unsigned short doubles = static_cast<unsigned short>((saved_ & ~0x300) | 0x200);
        __asm__ volatile("fldcw %0" : : "m"(doubles));
    }
    ~RoundingToDoubles()
    {
        __asm__ volatile("fldcw %0" : : "m"(saved_));
    }

private:
    unsigned short saved_ = 0;
#else
    RoundingToDoubles() {}
#endif
};

// Doubles hold the sums of the walk's integers, but for those of squares of differences of words, which are added up
// row by row.
double norm(const Trial &t, int channel, int)
{
    const RoundingToDoubles doubles;
    const std::string name = t.row.operation;
    const bool differs = t.row.takes(SECOND), relative = name.starts_with("NormRel"), squares = name.ends_with("L2");
    const auto of = [&](auto value) {
        double total = 0;
        overChannel(t, channel, [&](int x, int y) {
            const double magnitude = std::fabs(value(x, y));
            total = name.ends_with("Inf") ? (magnitude > total ? magnitude : total)
                                          : total + (squares ? magnitude * magnitude : magnitude);
        });
        return total;
    };
    const double found = of([&](int x, int y) {
        const double value = t.first.get(x, y) - (differs ? t.second.get(x, y) : 0);
        return t.row.source.isFloat() ? static_cast<double>(static_cast<float>(value)) : value;
    });
    if (!relative)
        return squares ? std::sqrt(found) : found;
    const double second = of([&](int x, int y) { return t.second.get(x, y); });
    if (squares)
        return std::sqrt(second == 0 ? found : found / second);
    return second == 0 && name.ends_with("Inf") ? found : found / second;
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
    {{"Histogram"}, counted},
    {{"LUT"}, lookedUp},
    {{"ThresholdLT"}, pointwise([](const Trial &t, double a, double) {
         return a < cut(t.level, t.row.source) ? cut(t.high, t.row.source) : a;
     })},
    {{"ThresholdGT"}, pointwise([](const Trial &t, double a, double) {
         return a > cut(t.level, t.row.source) ? cut(t.high, t.row.source) : a;
     })},
    {{"Binarize"}, pointwise([](const Trial &t, double a, double) {
         return cut(a < cut(t.level, t.row.source) ? t.low : t.high, t.row.destination);
     })},
    {{"Scale"}, pointwise([](const Trial &t, double a, double) {
         const SampleType &from = t.row.source, &into = t.row.destination;
         const double part = (a - from.lowest) / (from.highest - from.lowest) * (into.highest - into.lowest);
         return into.lowest + std::floor(part + (t.row.takes(ROUNDING) && t.mode == 0 ? 0 : 0.5));
     })},
    {{"NormInf", "NormDiffInf", "NormRelInf", "NormL1", "NormDiffL1", "NormRelL1", "NormL2", "NormDiffL2", "NormRelL2"},
     norm},
    {{"MinFilter", "Erode"}, ofRank(0)},
    {{"Median"}, ofRank(0.5)},
    {{"MaxFilter", "Dilate"}, ofRank(1)},
    {{"ColorMedian"}, colorMedian},
    {{"Blur"}, blurred},
    {{"PrewittV", "PrewittH", "SobelV", "SobelH", "Laplace", "Gauss", "Hipass", "Sharpen"}, fixedFilter},
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
    {{"Select"},
     [](const Trial &t, int x, int y) {
         return t.mask.get(x / t.row.layout.destination, y) != 0 ? t.first.get(x, y) : 0;
     }},
    {{"Min"}, pointwise([](const Trial &, double a, double b) { return a < b ? a : b; })},
    {{"Max"}, pointwise([](const Trial &, double a, double b) { return a > b ? a : b; })},
    {{"Sqrt"}, pointwise([](const Trial &, double a, double) { return std::sqrt(a); })},
};

} // namespace

Formula formulaOf(const Row &row, bool sumsAreExact)
{
    // The order of the sums of floats is the kernels' own. They are held against build 0, and by the operation's tests
    // against coefficients, or within a bound.
    if (row.takes(FIXED | CODE) && row.source.isFloat())
        return Formula();
    if (!sumsAreExact && row.isNorm() && row.source.isFloat() && !row.is("NormInf") && !row.is("NormDiffInf"))
        return Formula();
    for (const Entry &entry : entries)
        for (const char *operation : entry.operations)
            if (row.is(operation))
                return entry.formula;
    return Formula();
}
