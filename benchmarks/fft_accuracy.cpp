// Prints the errors of Fourier transforms by length: the largest and the root mean square over all results, relative to
// the root mean square of the spectrum, which a transform in long doubles gives. The samples are noise.
//   orv_fft_accuracy [build]
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "kernels.h"

namespace {

using Real = long double;
using Number = std::complex<Real>;
using Numbers = std::vector<Number>;

constexpr Real pi = 3.14159265358979323846264338327950288L;

// Of a power of two, in place: every `apart`-th of the roots is one of this length.
void transformByHalves(Numbers &x, const Numbers &roots, std::size_t apart)
{
    const std::size_t half = x.size() / 2;
    if (half == 0)
        return;
    Numbers even(half), odd(half);
    for (std::size_t i = 0; i < half; ++i) {
        even[i] = x[2 * i];
        odd[i] = x[2 * i + 1];
    }
    transformByHalves(even, roots, 2 * apart);
    transformByHalves(odd, roots, 2 * apart);
    for (std::size_t k = 0; k < half; ++k) {
        const Number turned = odd[k] * roots[k * apart];
        x[k] = even[k] + turned;
        x[half + k] = even[k] - turned;
    }
}

const Numbers &rootsOf(std::size_t length)
{
    static Numbers roots;
    if (roots.size() != length) {
        roots.resize(length);
        for (std::size_t k = 0; k < length; ++k) {
            const Real angle = -2 * pi * static_cast<Real>(k) / static_cast<Real>(length);
            roots[k] = {std::cos(angle), std::sin(angle)};
        }
    }
    return roots;
}

// Of any length, by a convolution with a chirp.
Numbers spectrumOf(const Numbers &x)
{
    const std::size_t length = x.size();
    std::size_t padded = 1;
    while (padded < 2 * length)
        padded *= 2;
    Numbers chirp(length), a(padded), b(padded), result(length);
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint64_t square = static_cast<std::uint64_t>(i) * i % (2 * length);
        const Real angle = -pi * static_cast<Real>(square) / static_cast<Real>(length);
        chirp[i] = {std::cos(angle), std::sin(angle)};
        a[i] = x[i] * chirp[i];
        b[i] = b[(padded - i) % padded] = std::conj(chirp[i]);
    }
    const Numbers &roots = rootsOf(padded);
    transformByHalves(a, roots, 1);
    transformByHalves(b, roots, 1);
    for (std::size_t i = 0; i < padded; ++i)
        a[i] = std::conj(a[i] * b[i]);
    transformByHalves(a, roots, 1);
    for (std::size_t i = 0; i < length; ++i)
        result[i] = std::conj(a[i]) * chirp[i] / static_cast<Real>(padded);
    return result;
}

struct Errors {
    double largest = 0, rms = 0;
};

// Of the results that error(i) tells, over the spectrum's root mean square.
template <class Error> Errors errorsOf(const Numbers &spectrum, Error error)
{
    Real power = 0, squares = 0, largest = 0;
    for (std::size_t i = 0; i < spectrum.size(); ++i) {
        const Real one = error(i);
        power += std::norm(spectrum[i]);
        squares += one * one;
        largest = std::max(largest, one);
    }
    return {static_cast<double>(largest / std::sqrt(power / static_cast<Real>(spectrum.size()))),
            static_cast<double>(std::sqrt(squares / power))};
}

std::vector<float> noise(std::size_t count)
{
    static std::mt19937 random(1);
    std::vector<float> values(count);
    for (float &value : values)
        value = std::ldexp(static_cast<float>(random() >> 8), -23) - 1;
    return values;
}

[[noreturn]] void giveUp(int length)
{
    std::printf("no transform of %d\n", length);
    std::exit(1);
}

Errors ofComplex(int length)
{
    const std::size_t count = static_cast<std::size_t>(length);
    const std::vector<float> values = noise(2 * count);
    std::vector<float> result(2 * count);
    orv::OrvDftPlan plan;
    if (orv::krnDftInitAlloc32fc(&plan, length, orv::SCALE_NEITHER, 0) != orv::KRN_OK ||
        orv::krnDftFwd32fc(values.data(), result.data(), &plan, nullptr) != orv::KRN_OK)
        giveUp(length);
    orv::krnDftFree32fc(&plan);
    Numbers numbers(count);
    for (std::size_t i = 0; i < count; ++i)
        numbers[i] = {values[2 * i], values[2 * i + 1]};
    const Numbers spectrum = spectrumOf(numbers);
    return errorsOf(spectrum,
                    [&](std::size_t i) { return std::abs(spectrum[i] - Number(result[2 * i], result[2 * i + 1])); });
}

Errors ofReal(int length)
{
    const std::size_t count = static_cast<std::size_t>(length);
    const std::vector<float> values = noise(count);
    std::vector<float> result(count);
    orv::OrvDftPlan plan;
    if (orv::krnDftInitAlloc32f(&plan, length, orv::SCALE_NEITHER, 0) != orv::KRN_OK ||
        orv::krnDftFwd32f(values.data(), result.data(), &plan, nullptr) != orv::KRN_OK)
        giveUp(length);
    orv::krnDftFree32f(&plan);
    const Numbers spectrum = spectrumOf(Numbers(values.begin(), values.end()));
    return errorsOf(spectrum, [&](std::size_t i) {
        const Number &number = spectrum[(i + 1) / 2];
        return std::abs((i % 2 == 0 && i != 0 ? number.imag() : number.real()) - result[i]);
    });
}

void print(const char *what, int length, const Errors &complex, const Errors &real)
{
    std::printf("%-14s %8d   %.2e %.2e   %.2e %.2e\n", what, length, complex.largest, complex.rms, real.largest,
                real.rms);
    std::fflush(stdout);
}

} // namespace

int main(int count, char **arguments)
{
    krnDispatchIndex = count > 1 ? std::atoi(arguments[1]) % orv::kernelBuilds : 0;
    std::printf("%-14s %8s   %-17s   %s\n", "", "length", "complex: max, rms", "real: max, rms");
    for (int first = 1; first <= 2000; first += 100) {
        Errors complex, real;
        int worst = first;
        for (int length = first; length < first + 100; ++length) {
            const Errors one = ofComplex(length), other = ofReal(length);
            if (std::max(one.largest, other.largest) > std::max(complex.largest, real.largest))
                worst = length;
            complex = {std::max(complex.largest, one.largest), std::max(complex.rms, one.rms)};
            real = {std::max(real.largest, other.largest), std::max(real.rms, other.rms)};
        }
        const std::string range = std::to_string(first) + " to " + std::to_string(first + 99);
        print(range.c_str(), worst, complex, real);
    }
    for (int length = 1; length <= 1 << 20; length *= 2)
        print("", length, ofComplex(length), ofReal(length));
    for (const int length : {2187, 10007, 30030, 100000, 524287, 1000000})
        print("", length, ofComplex(length), ofReal(length));
}
