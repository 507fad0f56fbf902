// Transforms of one sequence, complex or real, of any length.
#include "external.h"
#include "memory.h"
#include "signatures.h"

#include "begin.h"

#include "batch.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "control_word.h"

#include "butterflies.h"

#include "passes.h"

#include "line.h"

#include "work.h"

// A complex number of the plain loops, which round their results alone.
struct Number {
    double re, im;
};
inline Number times(Number a, const float *b)
{
    return {a.re * b[0] - a.im * b[1], a.re * b[1] + a.im * b[0]};
}
inline Number exchangedIf(Number a, bool exchanges)
{
    return exchanges ? Number{a.im, a.re} : a;
}
inline Number numberOf(const void *row, std::size_t index)
{
    return {load<float>(row, 2 * index), load<float>(row, 2 * index + 1)};
}
inline void putNumber(void *row, std::size_t index, Number value)
{
    store<float>(row, 2 * index, static_cast<float>(value.re));
    store<float>(row, 2 * index + 1, static_cast<float>(value.im));
}

std::size_t lineFloats(const LinePlan &line)
{
    return batchElement * (line.core.batchRoom + line.core.scratchRoom);
}

// A convolution with a chirp; the plan's line has its length.
void transformByChirp(const SequencePlan &plan, std::size_t length, bool inverse, const unsigned char *in,
                      unsigned char *out, float scale, float *work)
{
    unsigned char *const padded = reinterpret_cast<unsigned char *>(work + lineFloats(plan.line));
    for (std::size_t i = 0; i < plan.line.length; ++i)
        putNumber(padded, i,
                  i < length ? times(exchangedIf(numberOf(in, i), inverse), plan.chirp + 2 * i) : Number{0, 0});
    transformLine(plan.line, false, padded, padded, 1, work);
    for (std::size_t i = 0; i < plan.line.length; ++i)
        putNumber(padded, i, times(numberOf(padded, i), plan.chirpSpectrum + 2 * i));
    transformLine(plan.line, true, padded, padded, 1, work);
    for (std::size_t i = 0; i < length; ++i) {
        const Number value = exchangedIf(times(numberOf(padded, i), plan.chirp + 2 * i), inverse);
        putNumber(out, i, {scale * value.re, scale * value.im});
    }
}

void transformComplex(const SequencePlan &plan, std::size_t length, bool inverse, const unsigned char *in,
                      unsigned char *out, float scale, float *work)
{
    if (plan.chirp != nullptr)
        return transformByChirp(plan, length, inverse, in, out, scale, work);
    transformLine(plan.line, inverse, in, out, scale, work);
}

// Number k of a packed spectrum, from 1 on.
inline Number packedAt(const unsigned char *spectrum, std::size_t k)
{
    return {load<float>(spectrum, 2 * k - 1), load<float>(spectrum, 2 * k)};
}
inline void putPacked(unsigned char *spectrum, std::size_t k, double re, double im)
{
    store<float>(spectrum, 2 * k - 1, static_cast<float>(re));
    store<float>(spectrum, 2 * k, static_cast<float>(im));
}

// The spectrum of real numbers from that of as many complex ones, of which these are real and imaginary parts. Numbers
// from both ends give results at both ends.
void separate(const SequencePlan &plan, std::size_t half, const unsigned char *in, unsigned char *out, float scale)
{
    const Number first = numberOf(in, 0);
    store<float>(out, 0, static_cast<float>(scale * (first.re + first.im)));
    store<float>(out, 2 * half - 1, static_cast<float>(scale * (first.re - first.im)));
    const double part = 0.5 * scale;
    for (std::size_t k = 1; k <= half - k; ++k) {
        const Number a = numberOf(in, k), b = numberOf(in, half - k);
        const Number even = {a.re + b.re, a.im - b.im};
        const Number odd = times({a.im + b.im, b.re - a.re}, plan.halfTwiddles + 2 * k);
        putPacked(out, k, part * (even.re + odd.re), part * (even.im + odd.im));
        if (k < half - k)
            putPacked(out, half - k, part * (even.re - odd.re), part * (odd.im - even.im));
    }
}

// The reverse of it, but twice as large.
void join(const SequencePlan &plan, std::size_t half, const unsigned char *in, unsigned char *out)
{
    const double first = load<float>(in, 0), last = load<float>(in, 2 * half - 1);
    putNumber(out, 0, {first + last, first - last});
    for (std::size_t k = 1; k <= half - k; ++k) {
        const Number a = packedAt(in, k), b = packedAt(in, half - k);
        const Number even = {a.re + b.re, a.im - b.im}, odd = {a.re - b.re, a.im + b.im};
        const float *const root = plan.halfTwiddles + 2 * k;
        const Number turned = {odd.re * root[1] - odd.im * root[0], odd.re * root[0] + odd.im * root[1]};
        putNumber(out, k, {even.re + turned.re, even.im + turned.im});
        if (k < half - k)
            putNumber(out, half - k, {even.re - turned.re, turned.im - even.im});
    }
}

std::size_t lengthOf(const SequencePlan &plan)
{
    return static_cast<std::size_t>(plan.length);
}

// The complex numbers of a real transform lie behind the rest of its work.
unsigned char *numbersIn(const SequencePlan &plan, float *work)
{
    const std::size_t padded = plan.chirp != nullptr ? 2 * plan.line.length : 0;
    return reinterpret_cast<unsigned char *>(work + lineFloats(plan.line) + padded);
}

void transformReal(const SequencePlan &plan, const unsigned char *in, unsigned char *out, float *work)
{
    const std::size_t length = lengthOf(plan);
    unsigned char *const numbers = numbersIn(plan, work);
    if (plan.halfTwiddles != nullptr) {
        transformComplex(plan, length / 2, false, in, numbers, 1, work);
        return separate(plan, length / 2, numbers, out, plan.forwardScale);
    }
    for (std::size_t i = 0; i < length; ++i)
        putNumber(numbers, i, Number{load<float>(in, i), 0});
    transformComplex(plan, length, false, numbers, numbers, plan.forwardScale, work);
    store<float>(out, 0, load<float>(numbers, 0));
    for (std::size_t i = 1; i < length; ++i)
        store<float>(out, i, load<float>(numbers, i + 1));
}

void transformPacked(const SequencePlan &plan, const unsigned char *in, unsigned char *out, float *work)
{
    const std::size_t length = lengthOf(plan);
    unsigned char *const numbers = numbersIn(plan, work);
    if (plan.halfTwiddles != nullptr) {
        join(plan, length / 2, in, numbers);
        return transformComplex(plan, length / 2, true, numbers, out, plan.inverseScale, work);
    }
    putNumber(numbers, 0, {load<float>(in, 0), 0});
    for (std::size_t k = 1; k <= length / 2; ++k) {
        const Number value = packedAt(in, k);
        putNumber(numbers, k, value);
        putNumber(numbers, length - k, {value.re, 0 - value.im});
    }
    transformComplex(plan, length, true, numbers, numbers, plan.inverseScale, work);
    for (std::size_t i = 0; i < length; ++i)
        store<float>(out, i, load<float>(numbers, 2 * i));
}

// Tests the arguments in their order, and runs transform(in, out, work).
template <class Transform>
KrnStatus runSequence(const void *source, void *destination, const SequencePlan *plan, std::int32_t id, void *given,
                      Transform transform)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    if (plan->id != id)
        return KRN_WRONG_PLAN;
    if (source == nullptr || destination == nullptr)
        return KRN_NULL_POINTER;
    const Work work(plan->workSize, given);
    if (work.start() == nullptr)
        return KRN_NO_MEMORY;
    const DoublePrecision doubles;
    transform(static_cast<const unsigned char *>(source), static_cast<unsigned char *>(destination), work.start());
    return KRN_OK;
}

template <bool inverse>
KrnStatus complexSequence(const void *source, void *destination, const SequencePlan *plan, std::int32_t id, void *given)
{
    const auto transform = [=](const unsigned char *in, unsigned char *out, float *work) {
        transformComplex(*plan, lengthOf(*plan), inverse, in, out, inverse ? plan->inverseScale : plan->forwardScale,
                         work);
    };
    return runSequence(source, destination, plan, id, given, transform);
}
template <bool inverse>
KrnStatus realSequence(const void *source, void *destination, const SequencePlan *plan, std::int32_t id, void *given)
{
    const auto transform = [=](const unsigned char *in, unsigned char *out, float *work) {
        inverse ? transformPacked(*plan, in, out, work) : transformReal(*plan, in, out, work);
    };
    return runSequence(source, destination, plan, id, given, transform);
}

} // namespace

#define ORV_SEQUENCE(stem, samples, id, run)                    \
    KRN_KERNEL(stem##Kernel, krn##stem##Fwd##samples)           \
    {                                                           \
        return run<false>(source, destination, plan, id, work); \
    }                                                           \
    KRN_KERNEL(stem##Kernel, krn##stem##Inv##samples)           \
    {                                                           \
        return run<true>(source, destination, plan, id, work);  \
    }

ORV_SEQUENCE(Fft, 32fc, COMPLEX_FFT_PLAN, complexSequence)
ORV_SEQUENCE(Fft, 32f, REAL_FFT_PLAN, realSequence)
ORV_SEQUENCE(Dft, 32fc, COMPLEX_DFT_PLAN, complexSequence)
ORV_SEQUENCE(Dft, 32f, REAL_DFT_PLAN, realSequence)

#include "end.h"
