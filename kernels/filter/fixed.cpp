// The fixed filters of 8 and 16 bits.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

#include "windows.h"

#include "operators.h"

#include "fixed_rows.h"

#include "fixed_sums.h"

inline auto sumOfThree(const auto &row)
{
    return 1 * row.pair(1) + 1 * row.centre();
}
inline auto weightedFive(const auto &row, std::int32_t outer, std::int32_t inner, std::int32_t centre)
{
    return (outer * row.pair(2) + inner * row.pair(1)) + centre * row.centre();
}

struct PrewittV : OfThreeRows {
    static auto take(auto &held, const auto &row) { return aroundOne<1>(held, row.difference(), row.difference()); }
};
struct PrewittH : OfThreeRows {
    static auto take(auto &held, const auto &row) { return difference(held, sumOfThree(row)); }
};
struct SobelV : OfThreeRows {
    static auto take(auto &held, const auto &row) { return binomial(held, row.difference()); }
};
struct SobelH : OfThreeRows {
    static auto take(auto &held, const auto &row) { return difference(held, row.oneTwoOne()); }
};
struct Laplace3 : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        return aroundOne<-1>(held, sumOfThree(row), 8 * row.centre() - 1 * row.pair(1));
    }
};
// The weights of the row in the middle are twice the sum of the others'.
struct Laplace5 : OfFiveRows {
    static auto take(auto &held, const auto &row)
    {
        const auto far = weightedFive(row, 1, 3, 4), near = 6 * row.centre() - 3 * row.pair(2), both = near + far;
        return aroundTwo<-1, 1>(held, far, near, both + both);
    }
};
struct Gauss3 : OfThreeRows {
    static auto take(auto &held, const auto &row) { return binomial(held, row.oneTwoOne()); }
    template <class Row> static auto finished(const auto &sum) { return halved<4>(sum); }
};
struct Gauss5 : OfFiveRows {
    template <class Row> using Sum = typename Row::Total;
    static auto take(auto &held, const auto &row)
    {
        return aroundTwo<1, 1>(held, row.total(weightedFive(row, 2, 7, 12)), row.total(weightedFive(row, 7, 31, 52)),
                               row.total(weightedFive(row, 12, 52, 127)));
    }
    template <class Row> static auto finished(const auto &sum) { return Row::by571(sum); }
};
struct Hipass5 : OfFiveRows {
    static auto take(auto &held, const auto &row)
    {
        const auto five = 1 * row.pair(2) + sumOfThree(row);
        return aroundTwo<-1, -1>(held, five, five, 25 * row.centre() - five);
    }
};
struct Sharpen : OfThreeRows {
    static auto take(auto &held, const auto &row)
    {
        return aroundOne<-1>(held, sumOfThree(row), 16 * row.centre() - 1 * row.pair(1));
    }
    template <class Row> static auto finished(const auto &sum) { return halved<3>(sum); }
};

} // namespace

ORV_FIXED_FILTERS(8u, ByteRow)
ORV_FIXED_FILTERS(16s, WordRow)

#include "end.h"
