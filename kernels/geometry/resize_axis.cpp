// Resizing: where results lie among sources, and how their sources are gathered.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "control_word.h"

#include "resize_shuffles.h"

// Writers of weights, for the result at place k, which lies at t from its first or second source.
struct ByteWeights {
    std::int32_t *of;

    static std::int32_t weight(double t) { return static_cast<std::int32_t>(t * resizeOne + resizeSlack); }
    void linear(std::int32_t k, double t) const { of[k] = -2 * weight(t); }
    void cubic(std::int32_t, double, std::int32_t) const {}
};
struct WordWeights {
    std::int32_t *of;

    void linear(std::int32_t k, double t) const
    {
        const std::int32_t weight = ByteWeights::weight(t);
        of[k] = weight * 65536 + (resizeOne - weight);
    }
    void cubic(std::int32_t, double, std::int32_t) const {}
};
struct FloatWeights {
    float *of;

    void linear(std::int32_t k, double t) const { of[k] = static_cast<float>(t); }
    // The factors of the differences of first, second and third order in Newton's form.
    void cubic(std::int32_t k, double position, std::int32_t count) const
    {
        const float t = static_cast<float>(position), a = singleFloat(1 + t);
        const float b = singleFloat(singleFloat(t * a) * 0.5f);
        of[k] = a;
        of[count + k] = b;
        of[2 * std::int64_t{count} + k] = singleFloat(singleFloat(singleFloat(t - 1) * b) / 3);
    }
};

// No source lies outside the image: at its ends those further inside are taken, and weighted for the same place.
template <class Weights>
KrnStatus fillAxis(double start, double step, std::int32_t count, std::int32_t mode, std::int32_t offset,
                   std::int32_t last, std::int32_t *indices, Weights weights)
{
    if (indices == nullptr || (mode != KRN_NEAREST && weights.of == nullptr))
        return KRN_NULL_POINTER;
    if (count < 1)
        return KRN_BAD_SIZE;
    const DoublePrecision doubles;
    double position = start;
    for (std::int32_t k = 0; k < count; ++k, position += step) {
        const double most = last - offset;
        std::int32_t i = static_cast<std::int32_t>(position + resizeSlack < most ? position + resizeSlack : most);
        const bool isLast = offset + i == last;
        if (mode == KRN_LINEAR) {
            i -= isLast;
            weights.linear(k, isLast ? 1 : position - i);
        } else if (mode == KRN_CUBIC) {
            i += isLast ? -2 : offset + i == 0 ? 1 : offset + i == last - 1 ? -1 : 0;
            weights.cubic(k, isLast ? 2 : position - i, count);
            i -= 1;
        }
        indices[k] = i;
    }
    return KRN_OK;
}

#if ORV_SHUFFLES

// The least and the greatest of some offsets.
struct Range {
    std::int32_t least, most;

    Range(const std::int32_t *offsets, std::int32_t count) : least(offsets[0]), most(offsets[0])
    {
        for (std::int32_t i = 1; i < count; ++i) {
            least = offsets[i] < least ? offsets[i] : least;
            most = offsets[i] > most ? offsets[i] : most;
        }
    }
};

// Windows stay within the bytes that the row's own sources span.
template <std::int32_t sampleBytes, std::int32_t taps, std::int32_t placeBytes>
void fillShuffles(const ResizeColumns &columns, const ShuffleTable &table)
{
    constexpr std::int32_t perLane = 16 / placeBytes;
    const std::int32_t further = (taps - 1) * columns.pixelBytes, sourceBytes = further + sampleBytes;
    *table.width = ORV_VECTOR_BYTES;
    if (table.samples < table.perVector)
        return;
    std::int64_t windows = 1;
    std::int32_t *start = table.starts;
    Range all(columns.offsets, 1);
    for (std::int32_t vector = 0; vector < table.vectors(); ++vector)
        for (std::int32_t lane = 0; lane < lanesPerVector; ++lane, ++start) {
            const Range range(columns.offsets + table.firstOf(vector) + lane * perLane, perLane);
            const std::int64_t needed = (std::int64_t{range.most} - range.least + sourceBytes + 15) / 16;
            windows = needed > windows ? needed : windows;
            *start = range.least;
            all.least = range.least < all.least ? range.least : all.least;
            all.most = range.most > all.most ? range.most : all.most;
        }
    if (windows > mostWindows || all.most + sourceBytes - 16 * windows < all.least)
        return;
    *table.windows = static_cast<std::int32_t>(windows);
    const std::int32_t lastStart = all.most + sourceBytes - 16 * *table.windows;
    start = table.starts;
    unsigned char *out = table.indices;
    for (std::int32_t vector = 0; vector < table.vectors(); ++vector) {
        // An index beyond all windows chooses nothing.
        constexpr std::uint8_t nothing = 0xC0;
        U8s indices = everywhere(nothing);
        for (std::int32_t lane = 0; lane < lanesPerVector; ++lane, ++start) {
            *start = *start < lastStart ? *start : lastStart;
            const std::int32_t *const offsets = columns.offsets + table.firstOf(vector) + lane * perLane;
            for (std::int32_t place = 0; place < perLane; ++place)
                for (std::int32_t byte = 0; byte < taps * sampleBytes; ++byte)
                    indices[lane * 16 + place * placeBytes + byte] = static_cast<std::uint8_t>(
                        offsets[place] - *start + byte / sampleBytes * columns.pixelBytes + byte % sampleBytes);
        }
        // A shuffle takes indices from 0 to 15. Greater ones get the top bit, and those below 0 have it.
        for (std::int32_t window = 0; window < *table.windows; ++window, out += ORV_VECTOR_BYTES)
            storeVector<std::uint8_t>(
                out, 0,
                saturatingSum(indices - static_cast<std::uint8_t>(16 * window), everywhere<std::uint8_t>(0x70)));
    }
}

#endif

KrnStatus prepareShuffles(const ResizeColumns *columns, [[maybe_unused]] std::int32_t sampleBytes,
                          [[maybe_unused]] std::int32_t taps, [[maybe_unused]] std::int32_t placeBytes, void *shuffles)
{
    if (columns == nullptr || columns->offsets == nullptr || shuffles == nullptr)
        return KRN_NULL_POINTER;
    if (columns->samples < 1)
        return KRN_BAD_SIZE;
    store<std::int64_t>(shuffles, 0, 0);
#if ORV_SHUFFLES
    const ShuffleTable table(shuffles, columns->samples, placeBytes);
    (sampleBytes == 1 && taps == 4   ? fillShuffles<1, 4, 4>
     : sampleBytes == 1 && taps == 2 ? fillShuffles<1, 2, 2>
     : sampleBytes == 1              ? fillShuffles<1, 1, 1>
     : sampleBytes == 4              ? fillShuffles<4, 1, 4>
     : placeBytes == 4               ? fillShuffles<2, 1, 4>
                                     : fillShuffles<2, 1, 2>)(*columns, table);
#endif
    return KRN_OK;
}

} // namespace

#define ORV_RESIZE_AXIS(samples, Weights, Number)                                                                  \
    KRN_KERNEL(ResizeAxisKernel, krnResizeAxis##samples)                                                           \
    {                                                                                                              \
        return fillAxis(start, step, count, mode, offset, last, indices, Weights{static_cast<Number *>(weights)}); \
    }

ORV_RESIZE_AXIS(8u, ByteWeights, std::int32_t)
ORV_RESIZE_AXIS(16u, WordWeights, std::int32_t)
ORV_RESIZE_AXIS(32f, FloatWeights, float)

KRN_KERNEL(ResizeShufflesKernel, krnResizeShuffles)
{
    return prepareShuffles(columns, sampleBytes, taps, placeBytes, shuffles);
}

#include "end.h"
