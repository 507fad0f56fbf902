#include "roots.h"

#include <cmath>
#include <cstddef>

#include "memory.h"

namespace orv {
namespace {

// Up to which power the table goes: an eighth of the circle where four divides the length, a quarter where two does.
std::int64_t lastPower(std::int64_t length)
{
    return length / (length % 4 == 0 ? 8 : length % 2 == 0 ? 4 : 2);
}

} // namespace

Roots::~Roots()
{
    if (table_ != nullptr)
        memoryFunctions.releaseBlock(table_);
}

bool Roots::make(std::int64_t length)
{
    const std::int64_t last = lastPower(length);
    if (last >= static_cast<std::int64_t>(PTRDIFF_MAX / sizeof(Complex64)))
        return false;
    void *const block = memoryFunctions.allocateBlock(static_cast<std::size_t>(last + 1) * sizeof(Complex64));
    if (block == nullptr)
        return false;
    table_ = static_cast<Complex64 *>(block);
    length_ = length;
    constexpr double circle = 6.283185307179586476925;
    for (std::int64_t i = 0; i <= last; ++i) {
        const double angle = circle * static_cast<double>(i) / static_cast<double>(length);
        table_[i] = {std::cos(angle), std::sin(angle)};
    }
    return true;
}

Complex64 Roots::power(std::int64_t exponent) const
{
    std::int64_t i = exponent;
    double reSign = 1, imSign = -1;
    bool exchanged = false;
    if (2 * i > length_) {
        i = length_ - i;
        imSign = 1;
    }
    if (length_ % 2 == 0 && 4 * i > length_) {
        i = length_ / 2 - i;
        reSign = -1;
    }
    if (length_ % 4 == 0 && 8 * i > length_) {
        i = length_ / 4 - i;
        exchanged = true;
    }
    const Complex64 &entry = table_[i];
    return exchanged ? Complex64{reSign * entry.im, imSign * entry.re}
                     : Complex64{reSign * entry.re, imSign * entry.im};
}

void transformOnce(std::int64_t length, const Roots &roots, Complex64 *sequence, Complex64 *buffer)
{
    Complex64 *in = sequence, *out = buffer;
    for (std::int64_t span = 1, left = length; left > 1;) {
        const std::int64_t radix = left % 2 == 0 ? 2 : 3, groups = left / radix;
        for (std::int64_t p = 0; p < groups; ++p)
            for (std::int64_t k = 0; k < radix; ++k) {
                // All roots of one result: those of the butterfly times the twiddle.
                Complex64 factors[3];
                for (std::int64_t j = 0, exponent = span * p * k; j < radix; ++j) {
                    factors[j] = roots.power(exponent);
                    exponent += length / radix * k;
                    exponent -= exponent < length ? 0 : length;
                }
                for (std::int64_t q = 0; q < span; ++q) {
                    Complex64 sum = {0, 0};
                    for (std::int64_t j = 0; j < radix; ++j) {
                        const Complex64 &x = in[q + span * (p + j * groups)], &w = factors[j];
                        sum.re += x.re * w.re - x.im * w.im;
                        sum.im += x.re * w.im + x.im * w.re;
                    }
                    out[q + span * (radix * p + k)] = sum;
                }
            }
        Complex64 *const other = in;
        in = out;
        out = other;
        span *= radix;
        left = groups;
    }
    if (in != sequence)
        for (std::int64_t i = 0; i < length; ++i)
            sequence[i] = in[i];
}

} // namespace orv
