// Operations with a neighbourhood. Coefficients and shifts are typical ones: small integers.
#include "bench_windows.h"

namespace bench {
namespace {

const std::int32_t binomial3[] = {1, 2, 1, 2, 4, 2, 1, 2, 1};
const std::int32_t edge3[] = {1, 0, -1, 2, 0, -2, 1, 0, -1};
const std::int32_t binomial5[] = {1, 4, 6, 4, 1};

// A window of either record type. It lives as long as the benchmark.
template <class Record> struct Window;

template <> struct Window<OrvConvKernel> {
    OrvConvKernel *record;

    Window(int columns, int rows, const std::vector<std::int32_t> &values, int shift)
        : record(orvCreateConvKernel(columns, rows, columns / 2, rows / 2, values.data(), shift))
    {
    }
};

template <> struct Window<OrvConvKernelFP> {
    OrvConvKernelFP *record;

    Window(int columns, int rows, const std::vector<std::int32_t> &values, int)
    {
        const std::vector<float> floats(values.begin(), values.end());
        record = orvCreateConvKernelFP(columns, rows, columns / 2, rows / 2, floats.data());
    }
};

template <class Record> struct Windows {
    Record *three, *edge, *five, *row, *column;

    Windows()
        : three(Window<Record>(3, 3, {binomial3, binomial3 + 9}, 4).record),
          edge(Window<Record>(3, 3, {edge3, edge3 + 9}, 0).record), five(nullptr),
          row(Window<Record>(5, 1, {binomial5, binomial5 + 5}, 4).record),
          column(Window<Record>(1, 5, {binomial5, binomial5 + 5}, 4).record)
    {
        std::vector<std::int32_t> products;
        for (const std::int32_t y : binomial5)
            for (const std::int32_t x : binomial5)
                products.push_back(x * y);
        five = Window<Record>(5, 5, products, 8).record;
    }
};

template <class Record> const Windows<Record> &windows()
{
    static const Windows<Record> all;
    return all;
}

OrvStatus convolve(const Image &from, const Image &to, std::vector<OrvConvKernel *> kernels, int method)
{
    return orvConvolve2D(from.get(), to.get(), kernels.data(), static_cast<int>(kernels.size()), method);
}
OrvStatus convolve(const Image &from, const Image &to, std::vector<OrvConvKernelFP *> kernels, int method)
{
    return orvConvolve2DFP(from.get(), to.get(), kernels.data(), static_cast<int>(kernels.size()), method);
}
OrvStatus separable(const Image &from, const Image &to, const OrvConvKernel *x, const OrvConvKernel *y)
{
    return orvConvolveSep2D(from.get(), to.get(), x, y);
}
OrvStatus separable(const Image &from, const Image &to, const OrvConvKernelFP *x, const OrvConvKernelFP *y)
{
    return orvConvolveSep2DFP(from.get(), to.get(), x, y);
}

// All forms at one depth and layout.
template <class Record> void addForms(std::vector<Case> &cases, int depth, int channels)
{
    const Windows<Record> &of = windows<Record>();
    const auto add = [&](const char *name, auto call) { cases.push_back(windowCase(name, depth, channels, call)); };
    add("convolve 3x3", [&](const Image &a, const Image &b) { convolve(a, b, {of.three}, 0); });
    add("convolve 5x5", [&](const Image &a, const Image &b) { convolve(a, b, {of.five}, 0); });
    add("row of 5", [&](const Image &a, const Image &b) { separable(a, b, of.row, nullptr); });
    add("column of 5", [&](const Image &a, const Image &b) { separable(a, b, nullptr, of.column); });
    add("separable 5+5", [&](const Image &a, const Image &b) { separable(a, b, of.row, of.column); });
}

// The cost of two kernels compared with one, in float arithmetic.
template <class Record> void addCombinations(std::vector<Case> &cases, int depth)
{
    const Windows<Record> &of = windows<Record>();
    const char *const names[] = {"two 3x3, sum", "two 3x3, squares", "two 3x3, root", "two 3x3, max", "two 3x3, min"};
    cases.push_back(
        windowCase("one 3x3", depth, 1, [&](const Image &a, const Image &b) { convolve(a, b, {of.three}, 0); }));
    for (int method = 0; method < 5; ++method)
        cases.push_back(windowCase(names[method], depth, 1, [&of, method](const Image &a, const Image &b) {
            convolve(a, b, std::vector<Record *>{of.three, of.edge}, method);
        }));
}

} // namespace

std::vector<Case> neighbourhoodCases()
{
    std::vector<Case> cases;
    for (const int channels : {1, 3, 4}) {
        addForms<OrvConvKernel>(cases, ORV_DEPTH_8U, channels);
        addForms<OrvConvKernel>(cases, ORV_DEPTH_16S, channels);
        addForms<OrvConvKernelFP>(cases, ORV_DEPTH_32F, channels);
    }
    addCombinations<OrvConvKernel>(cases, ORV_DEPTH_16U);
    addCombinations<OrvConvKernelFP>(cases, ORV_DEPTH_32F);
    cases.push_back(smallRectangleCase(
        "3x3", [](const Image &a, const Image &b) { convolve(a, b, {windows<OrvConvKernel>().three}, 0); }));
    return cases;
}

} // namespace bench
