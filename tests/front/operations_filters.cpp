// Entries of the filters with a window and of morphology.
#include <algorithm>
#include <memory>
#include <sstream>

#include "filter_models.h"
#include "front/operation_entries.h"

namespace front {
namespace {

struct Window {
    std::int32_t columns = 3, rows = 3, anchorX = 1, anchorY = 1;

    std::int32_t size() const { return columns * rows; }
};

using WindowFunction = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t, std::int32_t, std::int32_t,
                                     std::int32_t);

OrvStatus callWindow(WindowFunction function, Images images, const Window &window)
{
    return function(images[0], images[1], window.columns, window.rows, window.anchorX, window.anchorY);
}

double valueOf(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer());
}

Results exactly(std::int32_t depth, double value)
{
    return Results::only(depth == ORV_DEPTH_32F
                             ? realSample(value)
                             : integerSample(depth, saturated(depth, static_cast<long long>(value))));
}

std::vector<double> samplesOf(const Place &place, const Window &window)
{
    std::vector<double> samples;
    for (std::int32_t row = 0; row < window.rows; ++row)
        for (std::int32_t column = 0; column < window.columns; ++column)
            samples.push_back(valueOf(place.at(0, column - window.anchorX, row - window.anchorY)));
    return samples;
}

// One sample at an edge of the window is no window of 1 x 1, which copies.
Window drawWindow(Random &random, bool odd)
{
    const auto side = [&] {
        const int any = random.once(12) ? random.between(9, 40) : random.between(1, 8);
        return odd ? any | 1 : any;
    };
    Window window = {side(), side()};
    if (window.size() == 1)
        window.columns = 3;
    window.anchorX = random.between(0, window.columns - 1);
    window.anchorY = random.between(0, window.rows - 1);
    return window;
}

std::string textOf(const Window &window)
{
    std::ostringstream text;
    text << "window " << window.columns << " x " << window.rows << ", anchor " << window.anchorX << ","
         << window.anchorY;
    return text.str();
}

// The smallest, middle or largest sample: rank 0, 1 or 2 halves.
decltype(Operation::draw) ofRank(WindowFunction function, int halves)
{
    return [=](std::int32_t, Random &random) -> Arguments {
        const Window window = drawWindow(random, halves == 1);
        return {textOf(window), [=](Images images) { return callWindow(function, images, window); },
                [=](const Place &place) {
                    std::vector<double> samples = samplesOf(place, window);
                    const auto found = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() - 1) * halves / 2;
                    std::nth_element(samples.begin(), found, samples.end());
                    return exactly(place.depth, *found);
                }};
    };
}

Arguments drawColorMedian(std::int32_t, Random &random)
{
    const std::int32_t side = random.once(2) ? 3 : 5;
    const Window window = {side, side, side / 2, side / 2};
    return {textOf(window), [=](Images images) { return callWindow(orvColorMedianFilter, images, window); },
            [=](const Place &place) {
                std::vector<double> samples[3];
                Place other = place;
                for (std::int32_t channel = 0; channel < 3; ++channel) {
                    other.sources[0].channel = channel;
                    samples[channel] = samplesOf(other, window);
                }
                return exactly(place.depth, samples[place.sources[0].channel][models::colorMedian(samples)]);
            }};
}

// Sums of floats run through the whole rectangle. They are summed up once a channel.
struct Means {
    std::int32_t channel = -1;
    std::vector<float> means;

    Results at(const Place &place, const Window &window)
    {
        if (const std::int32_t of = place.sources[0].channel; of != channel) {
            channel = of;
            Place corner = place;
            corner.x = -window.anchorX;
            corner.y = -window.anchorY;
            means = models::runningMeans(place.width, place.height, window.columns, window.rows,
                                         [&](int x, int y) { return corner.at(0, x, y).real(); });
        }
        return exactly(place.depth, means[static_cast<std::size_t>(place.y * place.width + place.x)]);
    }
};

Arguments drawBlur(std::int32_t depth, Random &random)
{
    Window window = drawWindow(random, false);
    if (random.once(12)) // beyond the bound of the fixed point
        window = {100, 82, random.between(0, 99), random.between(0, 81)};
    const auto means = std::make_shared<Means>();
    return {textOf(window), [=](Images images) { return callWindow(orvBlur, images, window); },
            [=](const Place &place) {
                if (depth == ORV_DEPTH_32F)
                    return means->at(place, window);
                double sum = 0;
                for (const double sample : samplesOf(place, window))
                    sum += sample - static_cast<double>(lowestOf(depth));
                return exactly(depth, depth == ORV_DEPTH_8U ? models::meanOfBytes(sum, window.size())
                                                            : models::meanOfWords(sum, window.size()));
            }};
}

Arguments drawFixed(std::int32_t depth, Random &random)
{
    const std::int32_t number = random.between(0, 10);
    const models::FixedFilter &filter = models::fixedFilters[number];
    const Window window = {filter.side, filter.side, filter.side / 2, filter.side / 2};
    return {"filter " + std::to_string(number),
            [=](Images images) { return orvFixedFilter(images[0], images[1], number); },
            [=, &filter](const Place &place) {
                const std::vector<double> samples = samplesOf(place, window);
                std::vector<WeightedTerm> terms;
                std::int64_t sum = 0;
                for (std::size_t i = 0; i < samples.size(); ++i)
                    if (const int weight = filter.coefficients[i]; weight != 0) {
                        terms.push_back({static_cast<double>(weight) / filter.divisor, FloatRange::real(samples[i])});
                        sum += depth == ORV_DEPTH_32F ? 0 : weight * static_cast<std::int64_t>(samples[i]);
                    }
                if (depth != ORV_DEPTH_32F)
                    return exactly(depth, models::fixedQuotient(filter, sum, depth == ORV_DEPTH_16S));
                // Sums of rows are subtracted from a multiple of the centre, whose weight so counts twice.
                terms.push_back({17, FloatRange::real(samples[samples.size() / 2])});
                terms.push_back({-17, FloatRange::real(samples[samples.size() / 2])});
                return Results::of(weightedSum(terms), depth);
            }};
}

// Passes in a rectangle whose surroundings stay as they were. After so many of them a sample has met all that are no
// further away.
class Passes {
public:
    Passes(const Place &place, std::int32_t passes) : place_(place), passes_(passes) {}

    double dilated(std::int32_t x, std::int32_t y) const
    {
        return extreme(x, y, 1, [&](std::int32_t nextX, std::int32_t nextY) { return sample(nextX, nextY); });
    }
    double eroded(std::int32_t x, std::int32_t y) const
    {
        return extreme(x, y, -1, [&](std::int32_t nextX, std::int32_t nextY) { return sample(nextX, nextY); });
    }
    double opened(std::int32_t x, std::int32_t y) const
    {
        return extreme(x, y, 1, [&](std::int32_t nextX, std::int32_t nextY) {
            return inside(nextX, nextY) ? eroded(nextX, nextY) : sample(nextX, nextY);
        });
    }
    double closed(std::int32_t x, std::int32_t y) const
    {
        return extreme(x, y, -1, [&](std::int32_t nextX, std::int32_t nextY) {
            return inside(nextX, nextY) ? dilated(nextX, nextY) : sample(nextX, nextY);
        });
    }

private:
    bool inside(std::int32_t x, std::int32_t y) const
    {
        return x >= 0 && y >= 0 && x < place_.width && y < place_.height;
    }
    double sample(std::int32_t x, std::int32_t y) const { return valueOf(place_.at(0, x - place_.x, y - place_.y)); }
    template <class At> double extreme(std::int32_t x, std::int32_t y, double sign, At at) const
    {
        double found = sign * at(x, y);
        for (std::int32_t row = std::max(y - passes_, -1); row <= std::min(y + passes_, place_.height); ++row)
            for (std::int32_t column = std::max(x - passes_, -1); column <= std::min(x + passes_, place_.width);
                 ++column)
                found = std::max(found, sign * at(column, row));
        return sign * found;
    }

    const Place &place_;
    std::int32_t passes_;
};

using MorphologyFunction = OrvStatus (*)(const OrvImage *, OrvImage *, std::int32_t);

template <MorphologyFunction call> OrvStatus withoutIterations(Images images, std::uint32_t)
{
    return call(images[0], images[1], 0);
}

template <MorphologyFunction call>
Operation morphology(const char *function, const char *unit, double (Passes::*result)(std::int32_t, std::int32_t) const)
{
    const auto draw = [=](std::int32_t, Random &random) -> Arguments {
        const std::int32_t iterations = random.once(12) ? random.between(4, 9) : random.between(1, 3);
        return {std::to_string(iterations) + " iterations",
                [=](Images images) { return call(images[0], images[1], iterations); },
                [=](const Place &place) {
                    return exactly(place.depth, (Passes(place, iterations).*result)(place.x, place.y));
                }};
    };
    const Refusals refusals =
        joined({headersOf(2),
                {{Fault::Argument, 1, ORV_STATUS_BAD_ARGUMENT, "Illegal number of iterations", 0}},
                wrongDepths(0, {ORV_DEPTH_8S, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F}, "Illegal image depth"),
                {differs(Fault::OtherDepth, 1, "SRC and DST depth are different"),
                 differs(Fault::Order, 1, "SRC and DST order are different"),
                 differs(Fault::Origin, 1, "SRC and DST orign are different"),
                 differs(Fault::Channels, 1, "SRC and DST number of channels are different", ORV_STATUS_BAD_CHANNELS),
                 differs(Fault::Alpha, 1, "(src->alphaChannel!=dst->alphaChannel)"), tiled(0), tiled(1),
                 unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_16U)}});
    Operation operation = {{function, unit}, 1, {ORV_DEPTH_8U}, draw, refusals};
    operation.callWith = withoutIterations<call>;
    operation.channels = Agreement::SameAlpha;
    operation.originsAgree = true;
    operation.window = true;
    return operation;
}

// Arguments to be refused.
struct ArgumentFault {
    const char *context;
    OrvStatus status;
    void (*make)(Window &window);
};

constexpr ArgumentFault faultsOfWindows[] = {
    {"(nRows<0||nCols<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.rows = -1; }},
    {"(nRows<0||nCols<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.columns = leastInt; }},
    {"(anchorX<0||anchorY<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorX = -1; }},
    {"(anchorX<0||anchorY<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorY = -1; }},
    {"(anchorX>=nCols||anchorY>=nRows)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorX = 3; }},
    {"(anchorX>=nCols||anchorY>=nRows)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorY = 3; }},
    {"(anchorX>=nCols||anchorY>=nRows)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.columns = 0; }}};

// Anchors first, sides between other checks.
constexpr ArgumentFault faultsOfColors[] = {
    {"(anchorX>=nCols)||(anchorX<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorX = -1; }},
    {"(anchorX>=nCols)||(anchorX<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorX = 99; }},
    {"(anchorY>=nRows)||(anchorY<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorY = -1; }},
    {"(anchorY>=nRows)||(anchorY<0)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.anchorY = 99; }},
    {"(3!=nCols)&&(5!=nCols)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.columns = 4; }},
    {"(3!=nRows)&&(5!=nRows)", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.rows = 7; }},
    {"nCols!=nRows", ORV_STATUS_BAD_ARGUMENT, [](Window &window) { window.rows = window.rows == 3 ? 5 : window.rows; }},
    {"", ORV_STATUS_NOT_IMPLEMENTED, [](Window &window) { window.anchorX = window.anchorX == 1 ? 0 : window.anchorX; }},
    {"", ORV_STATUS_NOT_IMPLEMENTED,
     [](Window &window) { window.anchorY = window.anchorY == 1 ? 2 : window.anchorY; }}};

template <WindowFunction function, const auto &table> OrvStatus spoilt(Images images, std::uint32_t faults)
{
    Window window;
    for (std::size_t i = std::size(table); i > 0; --i) // the later ones first, so that the earlier ones stand
        if ((faults >> (i - 1) & 1) != 0)
            table[i - 1].make(window);
    return callWindow(function, images, window);
}

template <std::size_t count>
Refusals argumentsOf(const ArgumentFault (&table)[count], std::size_t first = 0, std::size_t end = count)
{
    Refusals refusals;
    for (std::size_t i = first; i < end; ++i)
        refusals.push_back({Fault::Argument, 1, table[i].status, table[i].context, static_cast<std::int32_t>(i)});
    return refusals;
}

Operation window(Reporter reporter, std::vector<std::int32_t> depths, decltype(Operation::draw) draw, Refusals refusals)
{
    Operation operation = {reporter, 1, depths, draw, refusals};
    operation.window = true;
    operation.leavesAlphaAlone = true;
    return operation;
}

template <WindowFunction function> Operation rankFilter(const char *name, int halves)
{
    Operation operation =
        window({name, "orvnlf"}, {ORV_DEPTH_8U, ORV_DEPTH_16S}, ofRank(function, halves),
               joined({headersOf(2),
                       argumentsOf(faultsOfWindows),
                       {differs(Fault::OtherDepth, 1, "(srcImage->depth!=dstImage->depth)"),
                        differs(Fault::Channels, 1, "(srcImage->nChannels!=dstImage->nChannels)"),
                        differs(Fault::Alpha, 1, "(srcImage->alphaChannel!=dstImage->alphaChannel)"),
                        differs(Fault::OneHeader, 1, "(srcImage==dstImage)"),
                        depth(allImages, ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==32"),
                        differs(Fault::Order, 1, "(srcImage->dataOrder!=dstImage->dataOrder)"),
                        differs(Fault::Coi, 1, "", ORV_STATUS_BAD_CHANNELS), tiled(0), tiled(1), unserved(ORV_DEPTH_1U),
                        unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U), unserved(ORV_DEPTH_32S)}}));
    operation.callWith = spoilt<function, faultsOfWindows>;
    operation.onItself = OnItself::Refused;
    operation.orderFreeAtDepth1U = true;
    operation.channels = Agreement::SameImages;
    return operation;
}

Operation colorMedian()
{
    const auto layout = [](std::int32_t channels, std::int32_t alpha, const char *context) {
        return Refusal{Fault::Layout, allImages, ORV_STATUS_BAD_ARGUMENT, context, 10 * channels + alpha};
    };
    Operation operation = window(
        {"orvColorMedianFilter", "orvnlf"}, {ORV_DEPTH_8U, ORV_DEPTH_16S}, drawColorMedian,
        joined({headersOf(2),
                argumentsOf(faultsOfColors, 0, 4),
                {differs(Fault::OneHeader, 1, "(srcImage==dstImage)"),
                 differs(Fault::OtherDepth, 1, "srcImage->depth!=dstImage->depth"),
                 depth(allImages, ORV_DEPTH_1U, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==1"),
                 depth(allImages, ORV_DEPTH_32S, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth==(0x80000000|32)"),
                 differs(Fault::Channels, 1, "srcImage->nChannels!=dstImage->nChannels"),
                 layout(2, 0, "srcImage->nChannels<3"), layout(5, 0, "srcImage->nChannels>4"),
                 layout(3, 3, "(srcImage->nChannels==3)&&(srcImage->alphaChannel!=0)"),
                 layout(4, 0, "(srcImage->nChannels==4)&&(srcImage->alphaChannel==0)"),
                 differs(Fault::Coi, 0, "srcImage->roi->coi!=0"), differs(Fault::Coi, 1, "dstImage->roi->coi!=0")},
                argumentsOf(faultsOfColors, 4),
                {tiled(0), tiled(1), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_16U), unserved(ORV_DEPTH_32F)}}));
    operation.callWith = spoilt<orvColorMedianFilter, faultsOfColors>;
    operation.onItself = OnItself::Refused;
    operation.orders = Orders::Free;
    operation.channels = Agreement::Colors;
    operation.leavesAlphaAlone = false;
    operation.alphaOfSource = true;
    return operation;
}

Operation blur()
{
    Operation operation = window({"orvBlur", "orvBlur"}, {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F}, drawBlur,
                                 joined({headersOf(2),
                                         {differs(Fault::OtherDepth, 1, "(srcImage->depth!=dstImage->depth)")},
                                         argumentsOf(faultsOfWindows),
                                         {tiled(0), tiled(1), unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S),
                                          unserved(ORV_DEPTH_16U), unserved(ORV_DEPTH_32S)}}));
    operation.callWith = spoilt<orvBlur, faultsOfWindows>;
    operation.orders = Orders::Free;
    operation.channels = Agreement::Any;
    operation.anyNan = true;
    return operation;
}

Operation fixedFilter()
{
    Operation operation = window({"orvFixedFilter", "orvnlf"}, {ORV_DEPTH_8U, ORV_DEPTH_16S, ORV_DEPTH_32F}, drawFixed,
                                 joined({headersOf(2),
                                         {differs(Fault::OneHeader, 1, "(srcImage==dstImage)"),
                                          differs(Fault::OtherDepth, 1, "(srcImage->depth!=dstImage->depth)"),
                                          differs(Fault::Channels, 1, "(srcImage->nChannels!=dstImage->nChannels)"),
                                          differs(Fault::Alpha, 1, "(srcImage->alphaChannel!=dstImage->alphaChannel)"),
                                          differs(Fault::Order, 1, "(srcImage->dataOrder!=dstImage->dataOrder)"),
                                          differs(Fault::Coi, 1, "", ORV_STATUS_BAD_CHANNELS), tiled(0), tiled(1),
                                          unserved(ORV_DEPTH_1U), unserved(ORV_DEPTH_8S), unserved(ORV_DEPTH_32S)}}));
    operation.onItself = OnItself::Refused;
    operation.orderFreeAtDepth1U = true;
    operation.channels = Agreement::SameImages;
    operation.oneResultOfRefusals = true;
    operation.withoutMemory = nullptr;
    return operation;
}

} // namespace

std::vector<Operation> filters()
{
    return {rankFilter<orvMaxFilter>("orvMaxFilter", 2),
            rankFilter<orvMinFilter>("orvMinFilter", 0),
            rankFilter<orvMedianFilter>("orvMedianFilter", 1),
            colorMedian(),
            blur(),
            fixedFilter(),
            morphology<orvDilate>("orvDilate", "orvdilat", &Passes::dilated),
            morphology<orvErode>("orvErode", "orverode", &Passes::eroded),
            morphology<orvOpen>("orvOpen", "orvopen", &Passes::opened),
            morphology<orvClose>("orvClose", "orvclose", &Passes::closed)};
}

} // namespace front
