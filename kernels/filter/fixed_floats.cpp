// The fixed filters of floats. Each formula says the order of its sums, which is the same in all builds: first within
// rows, then from the top row to the bottom one.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "fixed_rows.h"

#if ORV_VECTOR_BYTES > 0

struct FloatRow {
    using Sample = float;
    using Sum = Floats;
    static constexpr std::size_t count = perVector<float>;
    const unsigned char *sample;
    std::ptrdiff_t pixelBytes;

    Floats at(std::ptrdiff_t right) const { return loadVector<float>(sample + right * pixelBytes); }
    static Floats narrowed(Floats sums) { return sums; }
};

#else

// A float that is rounded to one after each operation, also on the x87 unit.
struct Single {
    float value;

    friend Single operator+(Single a, Single b) { return {singleFloat(a.value + b.value)}; }
    friend Single operator-(Single a, Single b) { return {singleFloat(a.value - b.value)}; }
    friend Single operator*(float a, Single b) { return {singleFloat(a * b.value)}; }
};

struct FloatRow {
    using Sample = float;
    using Sum = Single;
    static constexpr std::size_t count = 128;
    const unsigned char *sample;
    std::ptrdiff_t pixelBytes;

    Single at(std::ptrdiff_t right) const { return {load<float>(sample + right * pixelBytes, 0)}; }
    static float narrowed(Single sum) { return sum.value; }
};

#endif

// What rows of windows are made of.
inline auto pair(const auto &row, std::ptrdiff_t right)
{
    return row.at(-right) + row.at(right);
}
inline auto sumOfThree(const auto &row)
{
    return pair(row, 1) + row.at(0);
}
inline auto weightedFive(const auto &row, float outer, float inner, float centre)
{
    return (outer * pair(row, 2) + inner * pair(row, 1)) + centre * row.at(0);
}

struct PrewittV : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        const auto difference = row.at(-1) - row.at(1);
        return aroundOne<1>(held, difference, difference);
    }
};
struct PrewittH : OfThreeRows {
    static auto take(auto &held, const auto &row) { return difference(held, sumOfThree(row)); }
};
struct SobelV : OfThreeRows {
    static auto take(auto &held, const auto &row) { return binomial(held, row.at(-1) - row.at(1)); }
};
struct SobelH : OfThreeRows {
    static auto take(auto &held, const auto &row) { return difference(held, pair(row, 1) + 2.0f * row.at(0)); }
};
struct Laplace3 : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        const auto three = sumOfThree(row);
        return aroundOne<-1>(held, three, 9.0f * row.at(0) - three);
    }
};
struct Laplace5 : OfFiveRows {
    static auto take(auto &held, const auto &row)
    {
        const auto far = weightedFive(row, 1.0f, 3.0f, 4.0f);
        const auto near = 6.0f * row.at(0) - 3.0f * pair(row, 2); // no product with 0: infinities have none
        return aroundTwo<-1, 1>(held, far, near, weightedFive(row, -4.0f, 6.0f, 20.0f));
    }
};
struct Gauss3 : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        return binomial(held, 0.0625f * pair(row, 1) + 0.125f * row.at(0));
    }
};
struct Gauss5 : OfFiveRows {
    static auto take(auto &held, const auto &row)
    {
        constexpr float w2 = 0.003502627f, w7 = 0.012259195f, w12 = 0.021015761f, w31 = 0.05429072f, w52 = 0.0910683f,
                        w127 = 0.22241682f;
        return aroundTwo<1, 1>(held, weightedFive(row, w2, w7, w12), weightedFive(row, w7, w31, w52),
                               weightedFive(row, w12, w52, w127));
    }
};
struct Hipass5 : OfFiveRows {
    static auto take(auto &held, const auto &row)
    {
        const auto five = pair(row, 2) + sumOfThree(row);
        return aroundTwo<-1, -1>(held, five, five, 25.0f * row.at(0) - five);
    }
};
struct Sharpen : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        const auto three = 0.125f * sumOfThree(row);
        return aroundOne<-1>(held, three, 2.125f * row.at(0) - three);
    }
};

} // namespace

ORV_FIXED_FILTERS(32f, FloatRow)

#include "end.h"
