// Roots of unity, each as accurate as a double is.
#pragma once

#include <cstdint>

namespace orv {

struct Complex64 {
    double re, im;
};

// All powers of exp(-2 pi i / length), from a table of the part of the circle from which the rest follows by symmetry.
class Roots {
public:
    Roots() = default;
    ~Roots();
    Roots(const Roots &) = delete;
    Roots &operator=(const Roots &) = delete;

    // False where memory is exhausted.
    bool make(std::int64_t length);

    // For powers from 0 to length - 1.
    Complex64 power(std::int64_t exponent) const;

private:
    std::int64_t length_ = 0;
    Complex64 *table_ = nullptr; // cosines and sines
};

// The forward transform of a symmetric sequence by roots of its length, in place of the sequence. The length is a power
// of two or three times one; the buffer has as much room. Used once a plan, for the spectrum of a chirp.
void transformOnce(std::int64_t length, const Roots &roots, Complex64 *sequence, Complex64 *buffer);

} // namespace orv
