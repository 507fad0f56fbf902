// What all operations that work pixel by pixel share: every depth, order, number of channels, channel of interest,
// alpha channel, rectangle and mask, in place and not, in the plain build and in the best one.
#include "front/pointwise_call.h"

namespace front {
namespace {

// Long rows, and many of them, run through what a kernel or a strip of scratch does more than once.
enum class Shape { Small, Wide, Tall };

struct Extent {
    std::int32_t width, height;
};

Extent randomExtent(Shape shape, Random &random)
{
    switch (shape) {
    case Shape::Wide:
        return {random.between(60, 150), random.between(40, 70)};
    case Shape::Tall:
        return {random.between(1, 6), random.between(560, 660)};
    default:
        return {random.between(1, random.once(2) ? 9 : 40), random.between(1, 9)};
    }
}

// Operations share their frame, so that each of them goes through a part of all combinations, and no two the same.
std::uint32_t seedOf(const Operation &operation)
{
    std::uint32_t seed = 0;
    for (const char letter : operation.name)
        seed = 31 * seed + static_cast<std::uint8_t>(letter);
    return seed;
}

class Sweep {
public:
    Sweep(const Operation &operation, std::uint32_t seed) : operation_(operation), random_(seed) {}

    // The call has the destination's channels and those of the first source; where masks are, the bits say, source
    // first.
    PointwiseCall randomCall(std::int32_t depth, std::int32_t order, const Channels &destination,
                             const Channels &source, unsigned masks);

    Random &random() { return random_; }

private:
    Form formFor(std::int32_t depth, std::int32_t order, const Channels &channels);
    Channels anyChannels(const Channels &destination, std::int32_t depth);
    std::shared_ptr<TestImage> inPlaceOf(const TestImage &source, const Channels &channels);
    std::shared_ptr<TestImage> mask();

    const Operation &operation_;
    Random random_;
    Shape shape_ = Shape::Small;
};

Form Sweep::formFor(std::int32_t depth, std::int32_t order, const Channels &channels)
{
    Form form;
    form.depth = depth;
    form.channels = channels.count;
    form.alpha = channels.alpha;
    form.order = order;
    form.align = anyAlign(random_);
    const Extent extent = randomExtent(shape_, random_);
    form.width = extent.width;
    form.height = extent.height;
    form.extraStep = random_.once(3) ? 0 : random_.between(1, 13);
    if (operation_.stepsOfWholeSamples)
        form.stepInWholeSamples();
    return form;
}

Channels Sweep::anyChannels(const Channels &destination, std::int32_t depth)
{
    for (;;) {
        const Channels channels = random_.oneOf(choicesOfChannels);
        const bool possible = depth != ORV_DEPTH_1U || channels.count == 1;
        if (possible && agree(operation_, channels, destination))
            return channels;
    }
}

// Another header over the same raster, with the same rectangle.
std::shared_ptr<TestImage> Sweep::inPlaceOf(const TestImage &source, const Channels &channels)
{
    auto image = std::make_shared<TestImage>(source.form, source.memory(), source.start());
    if (const OrvROI *roi = source.header.roi; roi != nullptr)
        image->setRectangle(channels.coi, roi->xOffset, roi->yOffset, roi->width, roi->height);
    else if (channels.coi != 0)
        image->setWholeRectangle(channels.coi);
    return image;
}

std::shared_ptr<TestImage> Sweep::mask()
{
    const Extent extent = randomExtent(shape_, random_);
    const auto image = randomMask(extent.width, extent.height, random_);
    setRandomRectangle(*image, anyRectangles(random_), random_.between(0, 1), random_);
    if (random_.once(8))
        image->setMask(randomMask(1, 1, random_)); // masks of masks count for nothing
    return image;
}

PointwiseCall Sweep::randomCall(std::int32_t depth, std::int32_t order, const Channels &destination,
                                const Channels &source, unsigned masks)
{
    shape_ = random_.once(100) ? Shape::Wide : random_.once(20) ? Shape::Tall : Shape::Small;
    const std::int32_t origin = random_.between(0, 1);
    PointwiseCall call;
    for (int i = 0; i <= operation_.sources; ++i) {
        const bool isDestination = i == operation_.sources;
        const Channels channels = isDestination ? destination : i == 0 ? source : anyChannels(destination, depth);
        Form form = formFor(depth, order, channels);
        form.origin = operation_.originsAgree ? origin : random_.between(0, 1);
        std::shared_ptr<TestImage> image;
        if (isDestination && i > 0 && random_.once(3)) {
            const auto &other = call.images[static_cast<std::size_t>(random_.between(0, i - 1))];
            if (other->form.channels == channels.count && other->form.alpha == channels.alpha)
                image = inPlaceOf(*other, channels);
        }
        if (image == nullptr) {
            image = std::make_shared<TestImage>(form, random_);
            setRandomRectangle(*image, anyRectangles(random_), channels.coi, random_);
        }
        if ((masks & (1u << i)) != 0)
            image->setMask(mask());
        call.images.push_back(image);
    }
    call.constant = random_.oneOf(operation_.constants);
    return call;
}

class Pointwise : public testing::TestWithParam<Operation> {};

class PointwiseOnItself : public Pointwise {};

class PointwiseInAnyOrder : public Pointwise {};

TEST_P(Pointwise, AllForms)
{
    const Operation &operation = GetParam();
    Reports reports;
    Sweep sweep(operation, seedOf(operation));
    const int part = operation.sources > 1 ? 4 : 2;
    int calls = 0, writing = 0;
    for (const std::int32_t depth : operation.depths)
        for (const Channels &destination : choicesOfChannels)
            for (const Channels &source : choicesOfChannels) {
                const int most = std::max(destination.count, source.count);
                if (!agree(operation, source, destination) || (depth == ORV_DEPTH_1U && most > 1))
                    continue;
                for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                    for (unsigned masks = 0; masks < 2u << operation.sources; ++masks) {
                        if (!sweep.random().once(part))
                            continue;
                        const PointwiseCall call = sweep.randomCall(depth, order, destination, source, masks);
                        const Slot slot(sweep.random().once(2) ? 0 : Slot::best());
                        int written = 0;
                        ASSERT_TRUE(runs(operation, call, reports, written)) << "call " << calls;
                        ++calls;
                        writing += written > 0;
                    }
            }
    EXPECT_GT(writing, calls / 3) << "of " << calls; // else the sweep tests next to nothing
}

// One image given as source and destination at once.
TEST_P(PointwiseOnItself, OneHeaderForAll)
{
    const Operation &operation = GetParam();
    Reports reports;
    Sweep sweep(operation, 2);
    for (const std::int32_t depth : operation.depths)
        for (const Channels &channels : choicesOfChannels)
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const unsigned masks : {0u, 1u}) {
                    if ((depth == ORV_DEPTH_1U && channels.count > 1) || (masks != 0 && operation.noMaskOnItself))
                        continue;
                    PointwiseCall call = sweep.randomCall(depth, order, channels, channels, masks);
                    call.images.assign(call.images.size(), call.images.front());
                    int written = 0;
                    ASSERT_TRUE(runs(operation, call, reports, written));
                }
}

TEST_P(PointwiseInAnyOrder, SingleChannels)
{
    const Operation &operation = GetParam();
    Reports reports;
    Random random(3);
    for (const std::int32_t depth : operation.depths)
        for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
            for (const bool masked : {false, true}) {
                PointwiseCall call;
                for (int i = 0; i <= operation.sources; ++i) {
                    Form form = {.depth = depth, .order = i == 0 ? 1 - order : order, .width = random.between(1, 20)};
                    call.images.push_back(std::make_shared<TestImage>(form, random));
                    setRandomRectangle(*call.images.back(), Rectangles::Inside, 0, random);
                }
                if (masked)
                    call.images.back()->setMask(randomMask(9, 9, random));
                int written = 0;
                ASSERT_TRUE(runs(operation, call, reports, written));
            }
}

// Rasters that lie across each other, and masks across the destination. What a straight call writes is open then; all
// other calls have their whole result before they write any of it.
TEST_P(Pointwise, RastersAcrossEachOther)
{
    const Operation &operation = GetParam();
    Reports reports;
    Random random(seedOf(operation));
    Bytes content(250000); // room for the larger images
    for (std::uint8_t &byte : content)
        byte = static_cast<std::uint8_t>(random.once(3) ? 0 : random.bits());
    for (int round = 0; round < 250; ++round) {
        const std::int32_t depth = random.oneOf(operation.depths);
        const std::int32_t order = random.between(0, 1), extra = random.between(0, 5);
        const Shape shape = random.once(30) ? Shape::Wide : random.once(20) ? Shape::Tall : Shape::Small;
        const std::size_t reach = shape != Shape::Small ? content.size() : 24000;
        const auto memory = std::make_shared<Bytes>(content.begin(), content.begin() + static_cast<int>(reach));
        const Extent common = randomExtent(shape, random);
        std::int32_t commonStep = 0; // rows beside each other that share no byte, where it is set
        const auto across = [&](Form form) {
            const Extent extent = commonStep != 0 ? common : randomExtent(shape, random);
            form.width = extent.width;
            form.height = extent.height;
            form.extraStep = std::max(commonStep - form.rowBytes(), extra);
            if (operation.stepsOfWholeSamples)
                form.stepInWholeSamples();
            const int room = static_cast<int>(reach - form.reach());
            const int distance = random.oneOf(std::initializer_list<int>{1, 2, 3, 4, 32, form.widthStep(), 400});
            const int start = distance * random.between(0, 4) + random.between(0, 1);
            return std::make_shared<TestImage>(form, memory, static_cast<std::size_t>(std::min(start, room)));
        };

        Channels destination = random.oneOf(choicesOfChannels);
        if (depth == ORV_DEPTH_1U)
            destination = {1, 0, 0};
        if (shape == Shape::Small && random.once(2))
            commonStep =
                2 *
                Form{.depth = depth, .channels = destination.count, .order = order, .width = common.width}.rowBytes();
        PointwiseCall call;
        for (int i = 0; i <= operation.sources; ++i) {
            Channels channels = destination;
            while (i < operation.sources && depth != ORV_DEPTH_1U) {
                channels = random.oneOf(choicesOfChannels);
                if (agree(operation, channels, destination))
                    break;
            }
            const auto image =
                across({.depth = depth, .channels = channels.count, .alpha = channels.alpha, .order = order});
            setRandomRectangle(*image, random.once(2) ? Rectangles::None : Rectangles::Clipped, channels.coi, random);
            if (random.once(2))
                image->setMask(random.once(2) ? across({.depth = ORV_DEPTH_1U}) : randomMask(20, 600, random));
            call.images.push_back(image);
        }
        call.constant = random.oneOf(operation.constants);
        const Slot slot(random.once(2) ? 0 : Slot::best());
        int written = 0;
        ASSERT_TRUE(runs(operation, call, reports, written, true)) << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(All, Pointwise, testing::ValuesIn(operations()), nameOf);
INSTANTIATE_TEST_SUITE_P(Some, PointwiseOnItself, testing::ValuesIn(operationsWith(&Operation::nothingOnItself, false)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Some, PointwiseInAnyOrder,
                         testing::ValuesIn(operationsWith(&Operation::orderOfSingleChannelsFree, true)), nameOf);

// The corners by the numbers that are promised, for the model above to be right about them.
TEST(PointwiseExamples, CommonRectangle)
{
    Random random(5);
    TestImage source({.width = 30, .height = 30}, random), destination({.width = 30, .height = 30}, random);
    source.fill({ORV_DEPTH_8U, 7});
    destination.fill({ORV_DEPTH_8U, 1});
    source.setRectangle(0, 3, 4, 10, 10);
    destination.setRectangle(0, 5, 6, 4, 20);
    EXPECT_EQ(orvCopy(&source.header, &destination.header), ORV_STATUS_OK);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 30; ++x)
            EXPECT_EQ(destination.get(x, y, 0).bits, x >= 5 && x < 9 && y >= 6 && y < 16 ? 7u : 1u) << x << "," << y;
}

TEST(PointwiseExamples, MasksSelectByCommonBits)
{
    const struct {
        std::uint32_t ofSource, ofDestination;
        bool selected;
    } rows[] = {{0x80, 0xFF, true}, {0x80, 0x01, false}, {1, 2, false}, {3, 2, true}, {0, 0xFF, false}};
    Random random(6);
    for (const auto &row : rows) {
        TestImage source({}, random), destination({}, random);
        source.fill({ORV_DEPTH_8U, 9});
        destination.fill({ORV_DEPTH_8U, 4});
        source.setMask(randomMask(8, 8, random));
        destination.setMask(randomMask(8, 8, random));
        source.mask()->fill({ORV_DEPTH_1U, row.ofSource});
        destination.mask()->fill({ORV_DEPTH_1U, row.ofDestination});
        EXPECT_EQ(orvCopy(&source.header, &destination.header), ORV_STATUS_OK);
        EXPECT_EQ(destination.get(7, 7, 0).bits, row.selected ? 9u : 4u) << row.ofSource << " & " << row.ofDestination;
    }
}

// One raster, read from its first sample on and written from its second.
TEST(PointwiseExamples, MaskedCopyIsReadBeforeItIsWritten)
{
    Random random(8);
    for (const std::int32_t slot : {std::int32_t{0}, Slot::best()}) {
        const Slot build(slot);
        const auto memory = std::make_shared<Bytes>(Bytes{1, 2, 3, 4, 5});
        const Form form = {.width = 4, .height = 1, .extraStep = 4};
        TestImage source(form, memory, 0), destination(form, memory, 1);
        destination.setMask(randomMask(4, 1, random));
        destination.mask()->fill({ORV_DEPTH_1U, 1});
        EXPECT_EQ(orvCopy(&source.header, &destination.header), ORV_STATUS_OK);
        EXPECT_EQ(*memory, (Bytes{1, 1, 2, 3, 4}));
    }
}

TEST(PointwiseExamples, Samples)
{
    const struct {
        std::int32_t depth;
        long long source, magnitude;
    } magnitudes[] = {{ORV_DEPTH_8S, -128, 127},
                      {ORV_DEPTH_16S, -32768, 32767},
                      {ORV_DEPTH_32S, -2147483648LL, 2147483647},
                      {ORV_DEPTH_16S, -32767, 32767}};
    const struct {
        std::int32_t depth, value;
        std::uint32_t bits;
    } fills[] = {{ORV_DEPTH_8U, 300, 255}, {ORV_DEPTH_16U, -1, 0}, {ORV_DEPTH_1U, 2, 255}, {ORV_DEPTH_8S, -200, 0x80}};
    Random random(7);
    for (const auto &row : magnitudes) {
        TestImage image({.depth = row.depth}, random);
        image.fill(integerSample(row.depth, row.source));
        EXPECT_EQ(orvAbs(&image.header, &image.header), ORV_STATUS_OK);
        EXPECT_EQ(image.get(3, 3, 0).integer(), row.magnitude);
    }
    for (const auto &row : fills) {
        TestImage image({.depth = row.depth}, random);
        EXPECT_EQ(orvSet(&image.header, row.value), ORV_STATUS_OK);
        EXPECT_EQ(image.get(3, 3, 0).bits, row.bits);
    }
}

} // namespace
} // namespace front
