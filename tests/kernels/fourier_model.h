// Fourier transforms in long doubles, and noise to transform.
#pragma once

#include <cmath>
#include <complex>
#include <random>
#include <vector>

namespace fourier {

using Real = long double;
using Number = std::complex<Real>;
using Numbers = std::vector<Number>;
using Floats = std::vector<float>;

inline Number root(std::size_t power, std::size_t length)
{
    const Real angle = -2 * std::acos(Real{-1}) * static_cast<Real>(power % length) / static_cast<Real>(length);
    return {std::cos(angle), std::sin(angle)};
}

// By halves as long as two divides, then by the sum.
inline Numbers spectrumOf(const Numbers &x)
{
    const std::size_t length = x.size(), half = length / 2;
    Numbers result(length), roots;
    for (std::size_t k = 0; k < length; ++k)
        roots.push_back(root(k, length));
    if (length % 2 != 0) {
        for (std::size_t k = 0; k < length; ++k)
            for (std::size_t i = 0; i < length; ++i)
                result[k] += x[i] * roots[i * k % length];
        return result;
    }
    Numbers parts[2];
    for (std::size_t i = 0; i < length; ++i)
        parts[i % 2].push_back(x[i]);
    const Numbers even = spectrumOf(parts[0]), odd = spectrumOf(parts[1]);
    for (std::size_t k = 0; k < length; ++k)
        result[k] = even[k % half] + odd[k % half] * roots[k];
    return result;
}

inline Floats noise(std::size_t count, std::mt19937 &random)
{
    Floats values(count);
    for (float &value : values)
        value = std::ldexp(static_cast<float>(random() >> 8), -23) - 1;
    return values;
}

inline Real packedAt(const Numbers &spectrum, std::size_t i)
{
    return i % 2 == 0 && i != 0 ? spectrum[i / 2].imag() : spectrum[(i + 1) / 2].real();
}

inline Real meanSquareRoot(const Numbers &spectrum)
{
    Real sum = 0;
    for (const Number &value : spectrum)
        sum += std::norm(value);
    return std::sqrt(sum / static_cast<Real>(spectrum.size()));
}

} // namespace fourier
