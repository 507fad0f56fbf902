// What all operations with a neighbourhood share: depths, orders, channels, borders, rectangles, masks, windows larger
// than the image, in place and not, in every build; and what they do without memory.
#include "front/memory_watch.h"
#include "front/neighbourhood_model.h"

namespace front {
namespace {

// Among other content: floats of ordinary sizes, whose sums mean something, and the integers that make the largest
// sums.
void drawContent(TestImage &image, Random &random)
{
    const std::int32_t depth = image.form.depth;
    const bool oneEnd = random.once(12), bothEnds = random.once(8), high = random.once(2);
    if (depth == ORV_DEPTH_32F ? random.once(8) : !oneEnd && !bothEnds)
        return;
    for (std::int32_t y = 0; y < image.form.height; ++y)
        for (std::int32_t x = 0; x < image.form.width; ++x)
            for (std::int32_t channel = 0; channel < image.form.channels; ++channel)
                image.set(x, y, channel,
                          depth == ORV_DEPTH_32F             ? realSample(random.between(-9999, 9999) / 64.0)
                          : (oneEnd ? high : random.once(2)) ? integerSample(depth, highestOf(depth))
                                                             : integerSample(depth, lowestOf(depth)));
}

void drawBorders(OrvImage &header, Random &random)
{
    for (int side = 0; side < 4; ++side) {
        header.BorderMode[side] = random.once(4) ? static_cast<std::int32_t>(random.bits()) : random.between(0, 3);
        header.BorderConst[side] =
            random.once(3) ? static_cast<std::int32_t>(random.bits()) : random.between(-300, 300);
    }
}

class Sweep {
public:
    Sweep(const NeighbourhoodOperation &operation, std::uint32_t seed) : operation_(operation), random_(seed)
    {
        for (const char letter : operation.name) // no two operations through the same calls
            random_ = Random(random_.bits() + static_cast<std::uint8_t>(letter));
    }

    PointwiseCall images(std::int32_t depth, std::int32_t order, const Channels &source, const Channels &destination,
                         unsigned masks);
    Random &random() { return random_; }

private:
    std::shared_ptr<TestImage> image(std::int32_t depth, std::int32_t order, const Channels &channels,
                                     std::int32_t origin);
    // Another header over the same raster.
    std::shared_ptr<TestImage> inPlaceOf(const TestImage &source, const Channels &channels);

    const NeighbourhoodOperation &operation_;
    Random random_;
};

std::shared_ptr<TestImage> Sweep::image(std::int32_t depth, std::int32_t order, const Channels &channels,
                                        std::int32_t origin)
{
    Form form = {.depth = depth, .channels = channels.count, .alpha = channels.alpha, .order = order, .origin = origin};
    form.align = anyAlign(random_);
    const bool isLong = random_.once(20), isWide = random_.once(2);
    const int most = isLong ? 150 : 14;
    form.width = random_.between(1, isWide ? most : 6);
    form.height = random_.between(1, isWide ? 6 : most);
    form.extraStep = random_.once(3) ? 0 : random_.between(1, 13);
    const auto made = std::make_shared<TestImage>(form, random_);
    drawContent(*made, random_);
    drawBorders(made->header, random_);
    return made;
}

std::shared_ptr<TestImage> Sweep::inPlaceOf(const TestImage &source, const Channels &channels)
{
    Form form = source.form;
    form.alpha = channels.alpha;
    const auto made = std::make_shared<TestImage>(form, source.memory(), source.start());
    setRandomRectangle(*made, anyRectangles(random_), channels.coi, random_);
    drawBorders(made->header, random_);
    return made;
}

PointwiseCall Sweep::images(std::int32_t depth, std::int32_t order, const Channels &source, const Channels &destination,
                            unsigned masks)
{
    const std::int32_t origin = random_.between(0, 1);
    PointwiseCall call;
    call.images.push_back(image(depth, order, source, origin));
    setRandomRectangle(*call.images.front(), anyRectangles(random_), source.coi, random_);
    const bool inPlace = source.count == destination.count && random_.once(3);
    if (inPlace) {
        call.images.push_back(inPlaceOf(*call.images.front(), destination));
    } else {
        call.images.push_back(image(depth, order, destination, operation_.originsAgree ? origin : 1 - origin));
        setRandomRectangle(*call.images.back(), anyRectangles(random_), destination.coi, random_);
    }
    for (std::size_t i = 0; i < 2; ++i)
        if ((masks & (1u << i)) != 0) {
            const auto mask = randomMask(random_.between(1, 20), random_.between(1, 20), random_);
            setRandomRectangle(*mask, anyRectangles(random_), random_.between(0, 1), random_);
            call.images[i]->setMask(mask);
        }
    return call;
}

std::int32_t channelsToProcess(const Channels &channels)
{
    return channels.coi != 0 ? 1 : channels.count;
}

class Neighbourhoods : public testing::TestWithParam<NeighbourhoodOperation> {
protected:
    Reports reports_;
};

class NeighbourhoodsOnItself : public Neighbourhoods {};

TEST_P(Neighbourhoods, AllForms)
{
    const NeighbourhoodOperation &operation = GetParam();
    Sweep sweep(operation, 1);
    int calls = 0, writing = 0;
    for (const std::int32_t depth : operation.depths)
        for (const Channels &destination : choicesOfChannels)
            for (const Channels &source : choicesOfChannels) {
                if (channelsToProcess(source) != channelsToProcess(destination))
                    continue;
                for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                    for (const unsigned masks : {0u, 0u, 0u, 1u, 2u, 3u}) {
                        const PointwiseCall call = sweep.images(depth, order, source, destination, masks);
                        const NeighbourhoodArguments arguments = operation.draw(depth, sweep.random());
                        const Slot slot(sweep.random().between(0, Slot::best()));
                        int written = 0;
                        ASSERT_TRUE(runs(operation, arguments, call, reports_, written)) << "call " << calls;
                        ++calls;
                        writing += written > 0;
                    }
            }
    EXPECT_GT(writing, calls / 3) << "of " << calls; // else the sweep tests next to nothing
}

TEST_P(NeighbourhoodsOnItself, OneHeaderForBoth)
{
    const NeighbourhoodOperation &operation = GetParam();
    Sweep sweep(operation, 2);
    for (const std::int32_t depth : operation.depths)
        for (const Channels &channels : choicesOfChannels)
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const unsigned masks : {0u, 1u}) {
                    PointwiseCall call = sweep.images(depth, order, channels, channels, masks);
                    call.images.back() = call.images.front();
                    int written = 0;
                    ASSERT_TRUE(runs(operation, operation.draw(depth, sweep.random()), call, reports_, written));
                }
}

// Images of which no cache that a call may think of holds much more than a part.
TEST_P(Neighbourhoods, ManyRows)
{
    const NeighbourhoodOperation &operation = GetParam();
    Random random(6);
    for (const std::int32_t depth : operation.depths)
        for (const Channels &channels : {Channels{1, 0, 0}, Channels{3, 0, 0}, Channels{4, 4, 0}, Channels{3, 0, 2}})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE}) {
                constexpr std::int32_t bytes = 200000, width = 90;
                Form form = {.depth = depth, .channels = channels.count, .alpha = channels.alpha, .order = order};
                form.width = width;
                form.height = bytes / (width * bytesOf(depth) * (order == ORV_DATA_ORDER_PIXEL ? channels.count : 1));
                PointwiseCall call;
                for (int i = 0; i < 2; ++i) {
                    call.images.push_back(std::make_shared<TestImage>(form, random));
                    setRandomRectangle(*call.images.back(), random.once(2) ? Rectangles::None : Rectangles::Clipped,
                                       channels.coi, random);
                    drawBorders(call.images.back()->header, random);
                }
                if (random.once(3)) // in place
                    call.images.back() = operation.onItself ? call.images.front() : call.images.back();
                if (random.once(3))
                    call.images.back()->setMask(randomMask(width, form.height, random));
                else if (random.once(3)) // read before the first result is written over it
                    call.images.front()->setMask(
                        std::make_shared<TestImage>(Form{.depth = ORV_DEPTH_1U, .width = width, .height = form.height},
                                                    call.images.back()->memory(), call.images.back()->start()));
                const Slot slot(random.between(0, Slot::best()));
                int written = 0;
                ASSERT_TRUE(runs(operation, operation.draw(depth, random), call, reports_, written, 37));
                EXPECT_GT(written, 0);
            }
}

// Each allocation fails in turn: the destination stays, nothing is kept, and the failure is told in the family's words.
TEST_P(Neighbourhoods, ExhaustedMemory)
{
    const NeighbourhoodOperation &operation = GetParam();
    const struct {
        Channels source, destination;
    } forms[] = {{{1, 0, 0}, {1, 0, 0}}, {{3, 0, 0}, {3, 0, 0}}, {{4, 0, 0}, {4, 4, 0}}, {{4, 4, 0}, {4, 0, 0}},
                 {{3, 0, 2}, {4, 0, 3}}, {{1, 0, 0}, {3, 0, 1}}, {{4, 4, 1}, {1, 0, 0}}};
    const std::vector<Report> told = {
        {ORV_STATUS_NO_MEMORY, operation.reporter.function, operation.withoutMemory, operation.reporter.unit}};
    Random random(3);
    for (const std::int32_t depth : operation.depths)
        for (const auto &form : forms)
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const unsigned masks : {0u, 1u, 2u, 3u}) {
                    const NeighbourhoodArguments arguments = operation.draw(depth, random);
                    PointwiseCall call;
                    for (const Channels &channels : {form.source, form.destination}) {
                        call.images.push_back(std::make_shared<TestImage>(Form{.depth = depth,
                                                                               .channels = channels.count,
                                                                               .alpha = channels.alpha,
                                                                               .order = order,
                                                                               .width = 7,
                                                                               .height = 5},
                                                                          random));
                        setRandomRectangle(*call.images.back(), Rectangles::None, channels.coi, random);
                        if ((masks & call.images.size()) != 0)
                            call.images.back()->setMask(randomMask(7, 5, random));
                    }
                    const Snapshot before(call);
                    for (int failing = 0;; ++failing) {
                        reports_.clear();
                        MemoryWatch watch;
                        watch.failAt(failing);
                        const OrvStatus status =
                            arguments.call(&call.images.front()->header, &call.images.back()->header);
                        EXPECT_EQ(watch.live(), 0u) << call;
                        if (watch.allocations() <= failing) { // none was left to fail
                            EXPECT_EQ(status, ORV_STATUS_OK) << call;
                            EXPECT_GT(failing, 0) << call; // the copy of the source at least
                            break;
                        }
                        ASSERT_EQ(status, ORV_STATUS_NO_MEMORY) << call;
                        EXPECT_EQ(reports_.all(), told) << call;
                        EXPECT_TRUE(before.unchanged()) << "allocation " << failing << "\n" << call;
                    }
                }
}

// Nothing of what the rectangles have in common is nothing done, but for the mask that nothing can be kept for.
TEST_P(Neighbourhoods, EmptyRectangles)
{
    const NeighbourhoodOperation &operation = GetParam();
    Random random(4);
    for (const std::int32_t depth : operation.depths)
        for (const Channels &channels : {Channels{1, 0, 0}, Channels{3, 0, 0}, Channels{4, 4, 2}})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const unsigned masks : {0u, 1u, 2u})
                    for (const bool emptyMask : {false, true}) {
                        Form form = {
                            .depth = depth, .channels = channels.count, .alpha = channels.alpha, .order = order};
                        PointwiseCall call;
                        for (const unsigned bit : {1u, 2u}) {
                            call.images.push_back(std::make_shared<TestImage>(form, random));
                            TestImage &image = *call.images.back();
                            setRandomRectangle(image, Rectangles::None, channels.coi, random);
                            if ((masks & bit) == 0)
                                continue;
                            image.setMask(randomMask(8, 8, random));
                            if (emptyMask)
                                image.mask()->setRectangle(0, 8, 0, 3, 3);
                        }
                        if (masks == 0 || !emptyMask)
                            call.images[random.bits() % 2]->setRectangle(channels.coi, 2, 8, 3, 3);
                        int written = 0;
                        ASSERT_TRUE(runs(operation, operation.draw(depth, random), call, reports_, written));
                        EXPECT_EQ(written, 0);
                    }
}

INSTANTIATE_TEST_SUITE_P(All, Neighbourhoods, testing::ValuesIn(neighbourhoodOperations()), nameOfNeighbourhood);

std::vector<NeighbourhoodOperation> operationsOnItself()
{
    std::vector<NeighbourhoodOperation> some;
    for (const NeighbourhoodOperation &operation : neighbourhoodOperations())
        if (operation.onItself)
            some.push_back(operation);
    return some;
}

INSTANTIATE_TEST_SUITE_P(Some, NeighbourhoodsOnItself, testing::ValuesIn(operationsOnItself()), nameOfNeighbourhood);

// The borders by hand, for the model above to be right about them: a 3 by 2 image with 2 pixels around it.
TEST(BorderedSource, SidesAndCorners)
{
    constexpr int c = ORV_BORDER_CONSTANT, r = ORV_BORDER_REPLICATE, m = ORV_BORDER_REFLECT, w = ORV_BORDER_WRAP;
    const struct {
        std::int32_t modes[4]; // top, bottom, left, right
        std::int32_t samples[6][7];
    } rows[] = {{{c, r, w, m},
                 {{91, 91, 91, 91, 91, 91, 91},
                  {91, 91, 91, 91, 91, 91, 91},
                  {2, 3, 1, 2, 3, 3, 2},
                  {5, 6, 4, 5, 6, 6, 5},
                  {4, 4, 4, 5, 6, 6, 6},
                  {4, 4, 4, 5, 6, 6, 6}}},
                {{m, w, c, r},
                 {{5, 4, 4, 5, 6, 6, 5},
                  {2, 1, 1, 2, 3, 3, 2},
                  {93, 93, 1, 2, 3, 3, 3},
                  {93, 93, 4, 5, 6, 6, 6},
                  {2, 3, 1, 2, 3, 1, 2},
                  {5, 6, 4, 5, 6, 4, 5}}},
                {{4 + w, -4 + c, 4 + r, 8 + c},
                 {{2, 3, 1, 2, 3, 1, 2},
                  {5, 6, 4, 5, 6, 4, 5},
                  {1, 1, 1, 2, 3, 94, 94},
                  {4, 4, 4, 5, 6, 94, 94},
                  {92, 92, 92, 92, 92, 92, 92},
                  {92, 92, 92, 92, 92, 92, 92}}}};
    Random random(5);
    TestImage image({.width = 3, .height = 2}, random);
    for (std::int32_t i = 0; i < 6; ++i)
        image.set(i % 3, i / 3, 0, integerSample(ORV_DEPTH_8U, i + 1));
    for (const auto &row : rows) {
        for (int side = 0; side < 4; ++side) {
            image.header.BorderMode[side] = row.modes[side];
            image.header.BorderConst[side] = 256 + 91 + side; // a byte of it
        }
        const BorderedSource source(image, *image.memory());
        for (int y = -2; y < 4; ++y)
            for (int x = -2; x < 5; ++x)
                EXPECT_EQ(source.at(x, y, 0).integer(), row.samples[y + 2][x + 2]) << x << "," << y;
    }
}

} // namespace
} // namespace front
