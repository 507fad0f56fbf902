#include "rows.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "classify.h"

namespace {

using namespace orv;

const SampleType sampleTypes[] = {{SampleType::U8, "8u", 1, 0, 255},
                                  {SampleType::S8, "8s", 1, -128, 127},
                                  {SampleType::U16, "16u", 2, 0, 65535},
                                  {SampleType::S16, "16s", 2, -32768, 32767},
                                  {SampleType::S32, "32s", 4, -2147483648.0, 2147483647.0},
                                  {SampleType::F32, "32f", 4, 0, 0},
                                  {SampleType::F64, "64f", 8, 0, 0},
                                  {SampleType::F32, "32fc", 8, 0, 0}};

const PixelLayout layouts[] = {{"C1", 1, 1, 1},    {"C3", 3, 3, 3},    {"C4", 4, 4, 4},   {"AC4", 4, 4, 3},
                               {"C3AC4", 3, 4, 3}, {"AC4C3", 4, 3, 3}, {"C3C1", 3, 1, 1}, {"C4C1", 4, 1, 1},
                               {"C1C3", 1, 3, 1},  {"C1C4", 1, 4, 1}};

template <class Facts> const auto &named(const Facts &facts, const char *name)
{
    for (const auto &fact : facts)
        if (std::strcmp(fact.name, name) == 0)
            return fact;
    std::fprintf(stderr, "the tests do not know this row, type or layout: %s\n", name);
    std::abort();
}

// How a kernel of each signature is called.
template <class Signature> struct Call {
    static constexpr unsigned uses = 0;
};

#define ORV_CALL(Signature, whatItUses, ...)                                       \
    template <> struct Call<Signature> {                                           \
        static constexpr unsigned uses = whatItUses;                               \
        static KrnStatus run(const void *kernel, const Arguments &c)               \
        {                                                                          \
            return (*static_cast<const Kernel<Signature> *>(kernel))(__VA_ARGS__); \
        }                                                                          \
    };
#define ORV_FIRST c.first.data, c.first.step
#define ORV_SECOND c.second.data, c.second.step
#define ORV_OUT c.out.data, c.out.step
#define ORV_SIZE c.width, c.height

ORV_CALL(CopyKernel, FIRST | OUT, ORV_FIRST, ORV_OUT, ORV_SIZE)
ORV_CALL(CopyMaskedKernel, FIRST | OUT | MASK, ORV_FIRST, ORV_OUT, ORV_SIZE, c.mask.data, c.mask.step)
ORV_CALL(AndMaskKernel, FIRST | OUT | ONTO, ORV_FIRST, ORV_OUT, ORV_SIZE)
ORV_CALL(FillKernel, CONSTANT | OUT, c.value, ORV_OUT, ORV_SIZE)
ORV_CALL(FillPixelsKernel, VALUES | OUT, c.values, ORV_OUT, ORV_SIZE)
ORV_CALL(PatternKernel, OUT, ORV_OUT, ORV_SIZE)
ORV_CALL(CopyBytesKernel, FIRST | OUT | ONE_ROW, c.first.data, c.out.data, c.width)
ORV_CALL(ConvertRoundKernel, FIRST | OUT | ROUNDING, ORV_FIRST, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(BinaryKernel, FIRST | SECOND | OUT, ORV_FIRST, ORV_SECOND, ORV_OUT, ORV_SIZE)
ORV_CALL(BinaryScaledKernel, FIRST | SECOND | OUT | SCALE, ORV_FIRST, ORV_SECOND, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(BinaryRowKernel, FIRST | SECOND | OUT | SCALE | ONE_ROW, c.first.data, c.second.data, c.out.data, c.width,
         c.mode)
ORV_CALL(UnaryScaledKernel, FIRST | OUT | SCALE, ORV_FIRST, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(ConstantKernel, FIRST | CONSTANT | OUT, ORV_FIRST, c.value, ORV_OUT, ORV_SIZE)
ORV_CALL(ConstantsKernel, FIRST | VALUES | OUT, ORV_FIRST, c.values, ORV_OUT, ORV_SIZE)
ORV_CALL(ConstantScaledKernel, FIRST | CONSTANT | OUT | SCALE, ORV_FIRST, c.value, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(ConstantsScaledKernel, FIRST | VALUES | OUT | SCALE, ORV_FIRST, c.values, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(FloatConstantKernel, FIRST | CONSTANT | OUT, ORV_FIRST, c.real, ORV_OUT, ORV_SIZE)
ORV_CALL(ConstantRowKernel, FIRST | CONSTANT | OUT | SCALE | ONE_ROW, c.first.data, c.value, c.out.data, c.width,
         c.mode)
ORV_CALL(FloatConstantRowKernel, FIRST | CONSTANT | OUT | ONE_ROW, c.first.data, c.real, c.out.data, c.width)
ORV_CALL(ConstantScaledInPlaceKernel, CONSTANT | OUT | IN_PLACE | SCALE, c.value, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(ConstantsScaledInPlaceKernel, VALUES | OUT | IN_PLACE | SCALE, c.values, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(FloatConstantInPlaceKernel, CONSTANT | OUT | IN_PLACE, c.real, ORV_OUT, ORV_SIZE)
ORV_CALL(ConstantsInPlaceKernel, VALUES | OUT | IN_PLACE, c.values, ORV_OUT, ORV_SIZE)
ORV_CALL(ConstantRowInPlaceKernel, CONSTANT | OUT | IN_PLACE | SCALE | ONE_ROW, c.value, c.out.data, c.width, c.mode)
ORV_CALL(FloatConstantRowInPlaceKernel, CONSTANT | OUT | IN_PLACE | ONE_ROW, c.real, c.out.data, c.width)
ORV_CALL(FractionInPlaceKernel, CONSTANT | OUT | IN_PLACE, ORV_OUT, c.value, ORV_SIZE)
ORV_CALL(FractionsInPlaceKernel, VALUES | OUT | IN_PLACE, ORV_OUT, c.values, ORV_SIZE)
ORV_CALL(ConvolveKernel, FIRST | VALUES | OUT | WINDOW | DIVISOR, ORV_FIRST, ORV_OUT, ORV_SIZE, c.values,
         c.window.columns, c.window.rows, c.window.anchorX, c.window.anchorY, c.divisor)
ORV_CALL(ConvolveFloatsKernel, FIRST | VALUES | OUT | WINDOW, ORV_FIRST, ORV_OUT, ORV_SIZE, c.values, c.window.columns,
         c.window.rows, c.window.anchorX, c.window.anchorY)
ORV_CALL(ConvolveLineKernel, FIRST | VALUES | OUT | WINDOW | DIVISOR, ORV_FIRST, ORV_OUT, ORV_SIZE, c.values,
         c.window.size(), c.window.anchor(), c.divisor)
ORV_CALL(SumLineKernel, FIRST | VALUES | OUT | WINDOW, ORV_FIRST, ORV_OUT, ORV_SIZE, c.values, c.window.size(),
         c.window.anchor())
ORV_CALL(FloatPairRowKernel, FIRST | SECOND | OUT | ONE_ROW, c.first.data, c.second.data, c.out.data, c.width)
ORV_CALL(WindowKernel, FIRST | OUT | WINDOW, ORV_FIRST, ORV_OUT, ORV_SIZE, c.window.columns, c.window.rows,
         c.window.anchorX, c.window.anchorY, c.scratch)
ORV_CALL(FixedKernel, FIRST | OUT | FIXED, ORV_FIRST, ORV_OUT, ORV_SIZE)
ORV_CALL(CodedKernel, FIRST | OUT | CODE, ORV_FIRST, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(MorphologyKernel, OUT | IN_PLACE | FIXED, ORV_OUT, ORV_SIZE, c.scratch)
ORV_CALL(MirrorKernel, FIRST | OUT | FLIP, ORV_FIRST, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(MirrorInPlaceKernel, OUT | IN_PLACE | FLIP, ORV_OUT, ORV_SIZE, c.mode)
ORV_CALL(ReplaceKernel, FIRST | OUT | LEVEL, ORV_FIRST, ORV_OUT, ORV_SIZE, c.value, c.high)
ORV_CALL(ReplaceInPlaceKernel, OUT | IN_PLACE | LEVEL, ORV_OUT, ORV_SIZE, c.value, c.high)
ORV_CALL(BinarizeKernel, FIRST | OUT | LEVEL, ORV_FIRST, ORV_OUT, ORV_SIZE, c.value, c.low, c.high)
ORV_CALL(HistogramKernel, FIRST | OUT | RESULTS | INTERVALS, ORV_FIRST, ORV_SIZE, static_cast<int *>(c.out.data),
         c.levels[0], c.levelCounts[0])
ORV_CALL(TableKernel, FIRST | OUT | TABLE, ORV_FIRST, ORV_OUT, ORV_SIZE, c.steps[0], c.levels[0], c.levelCounts[0])
ORV_CALL(TablesKernel, FIRST | OUT | TABLE, ORV_FIRST, ORV_OUT, ORV_SIZE, c.steps, c.levels, c.levelCounts)
ORV_CALL(MinMaxKernel, FIRST | OUT | RESULTS, ORV_FIRST, ORV_SIZE, static_cast<float *>(c.out.data),
         c.out.data == nullptr ? nullptr : static_cast<float *>(c.out.data) + c.out.step / 4)

// The counts of an interval are one pixel of results.
template <> struct Call<HistogramsKernel> {
    static constexpr unsigned uses = FIRST | OUT | RESULTS | INTERVALS;
    static KrnStatus run(const void *kernel, const Arguments &c)
    {
        const std::size_t channels = std::min(static_cast<std::size_t>(c.out.step) / sizeof(int), std::size_t{4});
        int *const results = static_cast<int *>(c.out.data);
        std::vector<int> counts[4];
        int *pointers[4];
        const auto copy = [&](auto from, auto to) {
            for (std::size_t i = 0; i < channels && results != nullptr; ++i)
                for (std::size_t k = 0; k < counts[i].size(); ++k)
                    to(i, k) = from(i, k);
        };
        const auto counted = [&](std::size_t i, std::size_t k) -> int & { return counts[i][k]; };
        const auto result = [&](std::size_t i, std::size_t k) -> int & { return results[k * channels + i]; };
        for (std::size_t i = 0; i < 4; ++i) {
            counts[i].resize(static_cast<std::size_t>(std::max(c.levelCounts[i], 2)) - 1);
            pointers[i] = counts[i].data();
        }
        copy(result, counted);
        const KrnStatus status = (*static_cast<const Kernel<HistogramsKernel> *>(kernel))(
            ORV_FIRST, ORV_SIZE, results == nullptr ? nullptr : pointers, c.levels, c.levelCounts);
        copy(counted, result);
        return status;
    }
};

// Of all rows at once, or of some rows and then of the others.
template <class Signature> struct NormCall {
    static constexpr bool isPair = std::is_same_v<Signature, NormPairKernel>;
    static constexpr unsigned uses = FIRST | (isPair ? unsigned{SECOND} : 0) | OUT | RESULTS | CONTINUED;
    static KrnStatus run(const void *kernel, const Arguments &c)
    {
        const bool twice = c.mode > 0 && c.mode < c.height;
        double *const sums = twice ? static_cast<double *>(c.sums) : nullptr;
        const auto rows = [&](int first, int count) {
            const auto at = [=](const Argument &of) {
                return first == 0 ? of.data : static_cast<std::uint8_t *>(of.data) + first * of.step;
            };
            const Kernel<Signature> &norm = *static_cast<const Kernel<Signature> *>(kernel);
            KrnStatus status = KRN_OK;
            if constexpr (isPair)
                status = norm(at(c.first), c.first.step, at(c.second), c.second.step, c.width, count,
                              static_cast<double *>(c.out.data), sums);
            else
                status = norm(at(c.first), c.first.step, c.width, count, static_cast<double *>(c.out.data), sums);
            return status == KRN_WARN_ZERO_DENOMINATOR ? KrnStatus{KRN_OK} : status;
        };
        if (!twice)
            return rows(0, c.height);
        std::fill_n(sums, normSums, 0.0);
        const KrnStatus status = rows(0, c.mode);
        return status != KRN_OK ? status : rows(c.mode, c.height - c.mode);
    }
};
template <> struct Call<NormKernel> : NormCall<NormKernel> {
};
template <> struct Call<NormPairKernel> : NormCall<NormPairKernel> {
};

template <> struct Call<BoxKernel> {
    static constexpr unsigned uses = FIRST | OUT | WINDOW | CONTINUED;
    static KrnStatus run(const void *kernel, const Arguments &c)
    {
        const auto rows = [&](int first, int count) {
            const auto at = [=](const Argument &of) { return static_cast<std::uint8_t *>(of.data) + first * of.step; };
            return (*static_cast<const Kernel<BoxKernel> *>(kernel))(
                first == 0 ? c.first.data : at(c.first), c.first.step, first == 0 ? c.out.data : at(c.out), c.out.step,
                c.width, count, c.window.columns, c.window.rows, c.window.anchorX, c.window.anchorY, c.sums, first,
                c.scratch);
        };
        if (c.mode < 1 || c.mode >= c.height)
            return rows(0, c.height);
        const KrnStatus status = rows(0, c.mode);
        return status != KRN_OK ? status : rows(c.mode, c.height - c.mode);
    }
};

template <class Signature>
Row rowOf(const Kernel<Signature> &kernel, bool plain, const char *name, const char *operation, const char *source,
          const char *destination, const char *layout)
{
    Row row = {name,
               operation,
               named(sampleTypes, source),
               named(sampleTypes, destination),
               named(layouts, layout),
               plain,
               Call<Signature>::uses,
               {},
               nullptr,
               &kernel};
    for (const auto build : kernel.builds)
        row.builds.push_back(reinterpret_cast<void *>(build));
    if constexpr (Call<Signature>::uses != 0)
        row.run = Call<Signature>::run;
    return row;
}

} // namespace

std::int64_t Row::scratchBytes(int width, const Window &window) const
{
    if (is("MaxFilter") || is("MinFilter"))
        return extremesScratchBytes(shape(width, window));
    if (is("Median"))
        return medianScratchBytes(shape(width, window));
    if (is("Blur"))
        return boxScratchBytes(shape(width, window));
    return is("Dilate") || is("Erode") ? morphologyScratchBytes(width, layout.source) : 0;
}

std::int64_t Row::sumsBytes(int width, const Window &window) const
{
    return isNorm() ? std::int64_t{normSums} * 8 : takes(CONTINUED) ? boxSumsBytes(shape(width, window)) : 0;
}

const SampleType &sampleType(const char *name)
{
    return named(sampleTypes, name);
}

const std::vector<Row> &allRows()
{
    static const std::vector<Row> rows = {
#define KRN(signature, name, operation, source, destination, layout) \
    rowOf<signature>(orv::name, false, #name, #operation, #source, #destination, #layout),
#define KRN_PLAIN(signature, name, operation, source, destination, layout) \
    rowOf<signature>(orv::name, true, #name, #operation, #source, #destination, #layout),
#define KRN_IN_PLACE(signature, name, operation, samples, layout, sibling) \
    rowOf<signature>(orv::name, false, #name, #operation, #samples, #samples, #layout),
#include "kernels.def"
    };
    return rows;
}

const Row &rowNamed(const std::string &name)
{
    return named(allRows(), name.c_str());
}

int carriedBuilds()
{
#if defined(__i386__) || defined(__x86_64__)
    static const int builds = widestBuild(readProcessorFacts()) + 1;
    return builds;
#else
    return kernelBuilds; // all of them plain
#endif
}
