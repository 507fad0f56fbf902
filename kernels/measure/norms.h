// The frame of norms: rows, what channels come to, and the kernels. To be included inside the unnamed namespace of a
// region, after points.h and control_word.h.
//
// A source of this frame defines takeBlock(), which does the work.

enum class Norm { Inf, L1, L2 };

// A double holds the sum of so many squares, whatever the integers.
constexpr std::size_t mostPixels = 32768;

// Below it the denominator of the Euclidean norm counts as 0: the smallest double of full precision.
constexpr double leastDenominator = 2.2250738585072014e-308;

template <Norm norm, class Total> inline Total joined(Total a, Total b)
{
    if constexpr (norm == Norm::Inf)
        return b > a ? b : a;
    else
        return a + b;
}

// Adds a block of one row to the totals of its channels: of one raster, or of the difference of two. A row is one
// block, or several of mostPixels. Totals are those of all blocks so far, so that a result depends neither on the
// height of strips nor on the padding of rows.
template <Norm norm, class Sample, std::size_t channels, class... Source>
void takeBlock(double *totals, std::size_t pixels, const Source *...in);

template <Norm norm, class Sample, std::size_t channels, class... Source>
inline void takeRow(double *totals, std::size_t pixels, const Source *...in)
{
    for (; pixels > mostPixels; pixels -= mostPixels) {
        takeBlock<norm, Sample, channels>(totals, mostPixels, in...);
        ((in += mostPixels * channels * sizeof(Sample)), ...);
    }
    takeBlock<norm, Sample, channels>(totals, pixels, in...);
}

// Totals of denominators come after those of numerators.
constexpr std::size_t firstDenominator = normSums / 2;

// The totals of a call, which goes on with those of an earlier one.
struct Totals {
    double of[normSums];

    explicit Totals(const double *sums)
    {
        for (std::size_t i = 0; i < normSums; ++i)
            of[i] = sums != nullptr ? sums[i] : 0;
    }
    void keep(double *sums) const
    {
        for (std::size_t i = 0; sums != nullptr && i < normSums; ++i)
            sums[i] = of[i];
    }
};

// Norms of integers are exact but for a few, and are computed by rows or by all of them at once: their source defines
// these instead. The first adds to totals, and the second also adds those of the second raster to denominators.
template <class Sample> constexpr bool isInteger = static_cast<Sample>(0.5) == 0;
template <Norm norm, class Sample, class... Source>
void measure(std::size_t channels, double *totals, std::int32_t width, std::int32_t height, Source... in);
template <Norm norm, class Sample>
void measureBoth(std::size_t channels, double *totals, std::int32_t width, std::int32_t height, ConstRaster first,
                 ConstRaster second);

template <Norm norm> inline double normOf(double total)
{
    return norm == Norm::L2 ? __builtin_sqrt(total) : total;
}

// Of one raster, or of the difference of two.
template <Norm norm, class Sample, std::size_t layout, class... Source>
inline KrnStatus absolute(std::int32_t width, std::int32_t height, double *norms, double *sums, Source... in)
{
    constexpr std::size_t channels = samplesOf(layout), measured = layout == AC4 ? 3 : layout;
    if ((... || (in.data == nullptr)) || norms == nullptr)
        return KRN_NULL_POINTER;
    if (const KrnStatus status = testRasters(width, height, in...); status != KRN_OK)
        return status;
    const DoublePrecision doubles;
    Totals totals(sums);
    if constexpr (isInteger<Sample>)
        measure<norm, Sample>(channels, totals.of, width, height, in...);
    else
        for (std::int32_t row = 0; row < height; ++row)
            takeRow<norm, Sample, channels>(totals.of, static_cast<std::size_t>(width), in.fromRow(row).data...);
    totals.keep(sums);
    for (std::size_t channel = 0; channel < measured; ++channel)
        norms[channel] = normOf<norm>(totals.of[channel]);
    return KRN_OK;
}

template <Norm norm> inline double quotient(double numerator, double denominator, KrnStatus &status)
{
    if constexpr (norm == Norm::L2) {
        if (denominator > leastDenominator || denominator != denominator)
            return __builtin_sqrt(numerator / denominator);
        status = KRN_WARN_ZERO_DENOMINATOR;
        return __builtin_sqrt(numerator);
    } else {
        return norm == Norm::Inf && denominator == 0 ? numerator : numerator / denominator;
    }
}

// Of the difference, over that of the second raster.
template <Norm norm, class Sample, std::size_t layout>
inline KrnStatus relative(std::int32_t width, std::int32_t height, double *norms, double *sums, ConstRaster first,
                          ConstRaster second)
{
    constexpr std::size_t channels = samplesOf(layout), measured = layout == AC4 ? 3 : layout;
    if (first.data == nullptr || second.data == nullptr || norms == nullptr)
        return KRN_NULL_POINTER;
    if (const KrnStatus status = testRasters(width, height, first, second); status != KRN_OK)
        return status;
    const DoublePrecision doubles;
    Totals totals(sums);
    double *const denominators = totals.of + firstDenominator;
    if constexpr (isInteger<Sample>) {
        measureBoth<norm, Sample>(channels, totals.of, width, height, first, second);
    } else {
        const std::size_t pixels = static_cast<std::size_t>(width);
        for (std::int32_t row = 0; row < height; ++row) {
            const unsigned char *const in = second.fromRow(row).data;
            takeRow<norm, Sample, channels>(totals.of, pixels, first.fromRow(row).data, in);
            takeRow<norm, Sample, channels>(denominators, pixels, in);
        }
    }
    totals.keep(sums);
    KrnStatus status = KRN_OK;
    for (std::size_t channel = 0; channel < measured; ++channel)
        norms[channel] = quotient<norm>(totals.of[channel], denominators[channel], status);
    return status;
}

#define ORV_NORM_KERNELS(layout, norm, samples, Sample)                                               \
    KRN_KERNEL(NormKernel, krnNorm##norm##samples##layout)                                            \
    {                                                                                                 \
        return absolute<Norm::norm, Sample, layout>(width, height, norms, sums, from(source, step));  \
    }                                                                                                 \
    KRN_KERNEL(NormPairKernel, krnNormDiff##norm##samples##layout)                                    \
    {                                                                                                 \
        return absolute<Norm::norm, Sample, layout>(width, height, norms, sums, from(source1, step1), \
                                                    from(source2, step2));                            \
    }                                                                                                 \
    KRN_KERNEL(NormPairKernel, krnNormRel##norm##samples##layout)                                     \
    {                                                                                                 \
        return relative<Norm::norm, Sample, layout>(width, height, norms, sums, from(source1, step1), \
                                                    from(source2, step2));                            \
    }

#define ORV_NORMS(samples, Sample)                      \
    ORV_LAYOUTS(ORV_NORM_KERNELS, Inf, samples, Sample) \
    ORV_LAYOUTS(ORV_NORM_KERNELS, L1, samples, Sample)  \
    ORV_LAYOUTS(ORV_NORM_KERNELS, L2, samples, Sample)
