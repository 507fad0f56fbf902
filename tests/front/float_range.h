// What a computation in 32-bit floats may come to, whatever the order of its sums.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace front {

// The bounds of a float that was computed with roundings on the way. Where `unit` is not 0 there were none: the value
// is known, a multiple of this power of two, and sums of such values stay exact as long as 24 bits hold them.
struct FloatRange {
    double low, high;
    double unit = 0;

    static FloatRange whole(double integer) { return {integer, integer, 1}; }
    static FloatRange real(double value) { return {value, value, 0}; }
    // Overflow, or no number, on the way.
    static FloatRange anything()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return {-infinity, infinity, 0};
    }

    double magnitude() const { return std::max(std::fabs(low), std::fabs(high)); }
    bool isAnything() const { return !(magnitude() < 1e38); }
};

// As close as `roundings` roundings leave a float to values of this magnitude.
inline double roundingError(double magnitude, double roundings)
{
    constexpr double epsilon = 1.001 / (1 << 24), leastFloat = 0x1p-149;
    return roundings * (magnitude * epsilon + leastFloat);
}

// `magnitude` is the sum of those of all terms, so that no order of the sum passes it; `unit` that of all, or 0.
inline FloatRange rounded(double low, double high, double magnitude, double unit, double roundings)
{
    if (!(magnitude < 1e38))
        return FloatRange::anything();
    if (unit > 0 && magnitude <= unit * (1 << 24))
        return {low, high, unit};
    const double error = roundingError(magnitude, roundings);
    return {low - error, high + error, 0};
}

struct WeightedTerm {
    double weight;
    FloatRange value;
};

// The sum of all products, weights and values being converted to floats before. Weights are whole numbers where values
// have a unit.
inline FloatRange weightedSum(const std::vector<WeightedTerm> &terms)
{
    double low = 0, high = 0, magnitude = 0, unit = std::numeric_limits<double>::infinity();
    for (const auto &[weight, value] : terms) {
        low += std::min(weight * value.low, weight * value.high);
        high += std::max(weight * value.low, weight * value.high);
        magnitude += std::fabs(weight) * value.magnitude();
        unit = std::min(unit, value.unit);
    }
    return rounded(low, high, magnitude, unit, static_cast<double>(terms.size()) + 3);
}

inline FloatRange sum(const FloatRange &a, const FloatRange &b)
{
    return weightedSum({{1, a}, {1, b}});
}

inline FloatRange dividedByPowerOfTwo(const FloatRange &value, int exponent)
{
    const double factor = std::ldexp(1.0, -exponent);
    return {value.low * factor, value.high * factor, value.unit * factor};
}

inline FloatRange square(const FloatRange &value)
{
    const double low = value.low * value.low, high = value.high * value.high;
    const bool aroundZero = value.low < 0 && value.high > 0;
    return rounded(aroundZero ? 0 : std::min(low, high), std::max(low, high), std::max(low, high),
                   value.unit * value.unit, 1);
}

inline FloatRange squareRoot(const FloatRange &value)
{
    const double high = std::sqrt(std::max(value.high, 0.0));
    return rounded(std::sqrt(std::max(value.low, 0.0)), high, high, 0, 2);
}

// The larger of two, or the smaller.
template <class Choose> FloatRange chosen(const FloatRange &a, const FloatRange &b, Choose choose)
{
    if (a.isAnything() || b.isAnything())
        return FloatRange::anything();
    return {choose(a.low, b.low), choose(a.high, b.high), std::min(a.unit, b.unit)};
}

} // namespace front
