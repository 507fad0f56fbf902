// Walks all rows of the kernel table: every build between guard pages, with sizes, steps and starts of all kinds,
// against the formula of its operation and so against build 0; and what every kernel refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <tuple>

#include "trial.h"

namespace {

using namespace orv;

Random seeded(const Row &row)
{
    const std::string name = row.name;
    std::seed_seq seed(name.begin(), name.end());
    return Random(seed);
}

int below(Random &random, int bound)
{
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

template <class Item> Item oneOf(const std::vector<Item> &items, Random &random)
{
    return items[random() % items.size()];
}

double anyNumber(const SampleType &type, Random &random)
{
    if (type.isFloat())
        return random() % 4 == 0 ? oneOf(numbersOf(type), random)
                                 : static_cast<float>(std::ldexp(static_cast<int>(random()), -below(random, 40)));
    return type.lowest + std::floor((type.highest - type.lowest + 1) * (random() / 4294967296.0));
}

// A quarter of all rasters is near zero, near the top, or of those numbers that show faults.
void fill(const Raster &raster, Random &random)
{
    const SampleType &type = *raster.type;
    const unsigned kind = random() % 12;
    raster.fill([&] {
        if (kind == 0)
            return oneOf(numbersOf(type), random);
        if (kind <= 2 && !type.isFloat())
            return kind == 1 ? below(random, 3) : type.highest - below(random, 3);
        return anyNumber(type, random);
    });
}

// Large areas, as masks have them, and single pixels; any number that is not 0 selects.
void fillMask(const Raster &mask, Random &random)
{
    const unsigned kind = random() % 4;
    int run = 0;
    bool selects = false;
    mask.fill([&] {
        if (--run < 0) {
            run = kind == 0 ? 1000 : kind == 1 ? below(random, 3) : below(random, 90);
            selects = random() % 2 == 0;
        }
        return selects ? 1 << random() % 8 : 0;
    });
}

// Constants that are alike, that differ, and that differ from the others in one channel only, which may be the fourth.
void drawConstants(Trial &trial, Random &random)
{
    const Row &row = trial.row;
    const auto one = [&]() -> double {
        if (!row.shifts())
            return random() % 3 == 0 ? anyNumber(row.source, random) : oneOf(numbersOf(row.source), random);
        const std::vector<double> counts = {32, 33, 40, 2147483647.0, -2147483648.0, -1};
        return random() % 4 == 0 ? oneOf(counts, random) : below(random, 34);
    };
    trial.constants.fill(one());
    const int other = below(random, 6);
    for (int i = 0; i < 4; ++i)
        if (other == 5 || other == i)
            trial.constants[static_cast<std::size_t>(i)] = one();
    if (!row.shifts() && row.source.bytes < 4)
        trial.valueBits = static_cast<int>(random()) << 8 * row.source.bytes;
}

// One side of the window of a filter: mostly small, at times longer than vectors.
int drawSide(const Row &row, Random &random)
{
    const int any = random() % 8 == 0 ? 1 + below(random, 70) : 1 + below(random, 9);
    return row.is("Median") ? any | 1 : any;
}

Window drawWindow(const Row &row, Random &random)
{
    Window window;
    if (row.takes(FIXED))
        return {3, 3, 1, 1};
    if (row.takes(CODE))
        return random() % 2 == 0 ? Window{3, 3, 1, 1} : Window{5, 5, 2, 2};
    if (row.takes(WINDOW) && !row.turns()) {
        window = {drawSide(row, random), drawSide(row, random)};
        if (row.is("Blur") && random() % 16 == 0) // on both sides of the bounds of integers and of words
            window = random() % 2 == 0 ? Window{90 + below(random, 2), 90} : Window{3, 128 + below(random, 2)};
        return {window.columns, window.rows, below(random, window.columns), below(random, window.rows)};
    }
    if (row.takes(WINDOW) && !row.is("ConvolveCol"))
        window.columns = 1 + below(random, 7);
    if (row.takes(WINDOW) && !row.is("ConvolveRow"))
        window.rows = 1 + below(random, 6);
    window.anchorX = below(random, window.columns);
    window.anchorY = below(random, window.rows);
    return window;
}

// Integers from those whose sums fit a word to those that pass 32 bits, zeros among them, of one sign or two.
void drawCoefficients(Trial &trial, Random &random)
{
    const int ranges[] = {3, 9, 20, 40, 128, 257, 32768, 65536}, range = ranges[random() % 8];
    const bool any = random() % 8 == 0, signs = random() % 3 != 0;
    for (double &value : trial.coefficients)
        if (trial.row.source.isFloat())
            value = any ? anyNumber(trial.row.source, random) : (below(random, 65) - 32) / 8.0;
        else
            value = any                 ? static_cast<int>(random())
                    : random() % 4 == 0 ? 0
                                        : below(random, range) - (signs ? range / 2 : 0);
    do
        trial.divisor = random() % 4 == 0   ? below(random, 600) - 300
                        : random() % 4 == 0 ? static_cast<int>(1u << random() % 32)
                                            : 1 << random() % 12;
    while (trial.divisor == 0);
}

// A level of the source's samples, with bits above them. Values may be as wide as 32 bits.
void drawLevel(Trial &trial, Random &random)
{
    const int bits = 8 * trial.row.source.bytes;
    trial.level = static_cast<int>(anyNumber(trial.row.source, random));
    if (random() % 4 == 0)
        trial.level = static_cast<int>(oneOf(numbersOf(trial.row.source), random));
    trial.level ^= bits < 32 && random() % 4 == 0 ? static_cast<int>(random()) << bits : 0;
    trial.low = static_cast<int>(random());
    trial.high = static_cast<int>(random());
}

int drawMode(const Row &row, const Form &form, Random &random)
{
    if (row.takes(CODE))
        return form.window.columns == 3 ? KRN_WINDOW_3X3 : KRN_WINDOW_5X5;
    if (row.takes(CONTINUED))
        return below(random, form.height);
    if (row.takes(SCALE))
        return random() % 2 == 0 ? 0 : oneOf(scales(), random);
    if (row.takes(ROUNDING))
        return oneOf<int>({0, 1, 2, -7}, random);
    return row.takes(FLIP) ? below(random, 3) : 0;
}

testing::AssertionResult tryOnce(const Row &row, Form form, Random &random)
{
    if (form.window.size() == 1)
        form.window = drawWindow(row, random);
    form.dense = random() % 3 == 0;
    Trial trial(row, form, random);
    fill(trial.first, random);
    fill(trial.second, random);
    fillMask(trial.mask, random);
    if (form.place == Place::Disjoint && !row.takes(RESULTS))
        fill(trial.out, random);
    drawConstants(trial, random);
    drawCoefficients(trial, random);
    drawLevel(trial, random);
    trial.mode = drawMode(row, form, random);
    return hold(trial, formulaOf(row));
}

std::vector<Place> placesOf(const Row &row)
{
    const bool moves = row.windowed() || row.takes(FLIP | RESULTS) || row.layout.source != row.layout.destination;
    std::vector<Place> places = {Place::Disjoint};
    if (row.takes(FIRST) && !row.takes(ONTO) && !moves && row.source.kind == row.destination.kind)
        places.push_back(Place::OverFirst);
    if (row.takes(SECOND) && !row.takes(RESULTS))
        places.push_back(Place::OverSecond);
    return places;
}

// Forms of more rows, or of longer ones, than a kernel takes at once.
std::vector<Form> largerForms(const Row &row, Random &random)
{
    if (row.takes(ONE_ROW))
        return {};
    std::vector<Form> forms = {{3, 70}};
    if (row.takes(FIXED | CODE)) // strips of whole vectors
        forms.push_back({41, 70});
    for (int i = 0; i < 4 && row.takes(CONTINUED); ++i) // groups of rows
        forms.push_back({i == 0 ? 408 / row.layout.source : 16 * i, 18 + below(random, 20)});
    for (int i = 0; i < 8 && row.takes(INTERVALS | TABLE); ++i) // counted by place in a block, or by a table's runs
        forms.push_back({1 + below(random, 400), 35 + below(random, 30), oneOf(placesOf(row), random)});
    if (row.is("MaxFilter") || row.is("MinFilter")) { // rows that high windows share, and blocks of columns
        for (int i = 0; i < 4; ++i)
            forms.push_back({1 + below(random, 20),
                             17 + below(random, 20),
                             Place::Disjoint,
                             {1 + below(random, 2), 24 + below(random, 30), 0, below(random, 24)}});
        const int width = 2049 / (row.layout.source * row.source.bytes) + below(random, 50);
        forms.push_back({width, 3, Place::Disjoint, {7, 2, 3, 1}});
    }
    return forms;
}

// Beyond two of the widest vectors of the smallest samples by one, and some pieces of a row.
std::vector<int> widthsOf(const Row &row)
{
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width)
        widths.push_back(width);
    for (const int width : {97, 128, 131, 200, 257, 300})
        widths.push_back(width);
    if (row.takes(FLIP)) // longer than the pieces that change places
        widths.insert(widths.end(), {1000, 2049, 4099});
    return widths;
}

TEST(KernelRows, EveryBuildComputesTheFormula)
{
    int walked = 0;
    for (const Row &row : allRows()) {
        if (row.run == nullptr)
            continue;
        ++walked;
        const bool ownOrder = row.source.isFloat() && (row.takes(FIXED | CODE) || row.isNorm());
        EXPECT_TRUE(formulaOf(row) || row.is("Jaehne") || ownOrder) << row.name;
        Random random = seeded(row);
        testing::AssertionResult outcome = testing::AssertionSuccess();
        const std::vector<Place> places = placesOf(row);
        for (const int width : widthsOf(row))
            for (int i = row.turns() ? 5 : row.windowed() ? 2 : 3; i > 0 && outcome; --i) {
                const int height = row.takes(ONE_ROW) ? 1 : 1 + below(random, 5);
                outcome = tryOnce(row, {width, height, places[random() % places.size()]}, random);
            }
        for (const Form &form : largerForms(row, random))
            if (outcome)
                outcome = tryOnce(row, form, random);
        EXPECT_TRUE(outcome);
    }
    EXPECT_GT(walked, 790);
}

// Rows and images too long for the caches take a way of their own, which starts and ends anywhere.
TEST(KernelRows, LongRowsAreLikeShortOnes)
{
    Random random(5);
    for (const Row &row : allRows()) {
        const int pixelBytes = row.source.bytes * row.layout.source;
        const bool sums =
            row.is("Add") && (pixelBytes == 1 || row.layout.written < row.layout.source || row.takes(ONE_ROW));
        const bool mirrors = row.is("Mirror") && row.takes(FIRST) && row.source.bytes < 4 && row.layout.source < 4;
        if (!sums && !mirrors)
            continue;
        const int width = row.takes(ONE_ROW) ? 2200001 : 9001 / pixelBytes;
        const int height = row.takes(ONE_ROW) ? 1 : (sums ? 9000000 : 13000000) / (width * pixelBytes);
        for (const int gap : {0, 5, 64}) {
            Trial trial(row, {width, height, Place::Disjoint, {}, gap != 5, gap}, random);
            trial.mode = sums ? 0 : gap % 3;
            EXPECT_TRUE(hold(trial, Formula()));
        }
    }
}

// Windows with more samples than 16-bit counters hold, windows wider than columns are counted, and images that are
// computed in several pieces.
TEST(KernelRows, LargeMediansAreLikeSmallOnes)
{
    Random random(6);
    for (const Row &row : allRows())
        if (row.is("Median"))
            for (const auto &[width, height, window] : {std::tuple{3, 3, Window{183, 181, 9, 180}},
                                                        {2, 2, Window{4097, 5, 4096, 0}},
                                                        {3, 131, Window{5, 9, 2, 4}},
                                                        {262, 2, Window{7, 5, 0, 1}}}) {
                const Trial trial(row, {width, height, Place::Disjoint, window}, random);
                fill(trial.first, random);
                EXPECT_TRUE(hold(trial, formulaOf(row)));
            }
}

// A row whose builds were one function by mistake would pass the walk.
TEST(KernelRows, BuildsAreOfTheirOwn)
{
    for (const Row &row : allRows())
        EXPECT_EQ(std::set<void *>(row.builds.begin(), row.builds.end()).size(),
                  row.plain ? 1u : unsigned{kernelBuilds})
            << row.name;
}

int ranBuild = -1;
template <int build> KrnStatus recordBuild(int value)
{
    ranBuild = build;
    return value;
}

TEST(KernelRows, TheIndexPicksTheBuild)
{
    struct Signature {
        using Function = KrnStatus(int);
    };
    const Kernel<Signature> row = {{{recordBuild<0>, recordBuild<1>, recordBuild<2>, recordBuild<3>, recordBuild<4>,
                                     recordBuild<5>, recordBuild<6>}}};
    EXPECT_EQ(krnDispatchIndex, 0);
    for (krnDispatchIndex = 0; krnDispatchIndex < kernelBuilds; ++krnDispatchIndex) {
        EXPECT_EQ(row(77), 77);
        EXPECT_EQ(ranBuild, krnDispatchIndex);
    }
    krnDispatchIndex = 0;
}

} // namespace
