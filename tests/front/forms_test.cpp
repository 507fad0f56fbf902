// What all operations share: every depth, order, number of channels, channel of interest, alpha channel, rectangle,
// border and mask, in place and not, in every build; rasters across each other; and exhausted memory.
#include <algorithm>

#include "front/call.h"
#include "front/memory_watch.h"

namespace front {
namespace {

// Long rows, and many of them, run through what a kernel or a strip of scratch does more than once.
enum class Shape { Small, Wide, Tall };

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

// Draws the images of calls. Each operation goes through a part of all combinations, and no two through the same.
class Sweep {
public:
    explicit Sweep(const Operation &operation) : operation_(operation), random_(0)
    {
        for (const char letter : operation.name())
            random_ = Random(random_.bits() + static_cast<std::uint8_t>(letter));
    }

    Random &random() { return random_; }
    void takeShape(Shape shape) { shape_ = shape; }
    void takeAnyShape()
    {
        shape_ = operation_.window   ? Shape::Small
                 : random_.once(100) ? Shape::Wide
                 : random_.once(20)  ? Shape::Tall
                                     : Shape::Small;
    }
    Channels anyChannels(const Channels &destination, std::int32_t depth);
    Channels anyDestination(); // for which there is a source

    // The first source and the destination have these channels. Bits say which images have masks, sources first.
    Call call(std::int32_t depth, std::int32_t order, const Channels &source, const Channels &destination,
              unsigned masks);
    // Images and masks in pieces of one memory.
    Call callAcross(const Bytes &content);

private:
    Form formFor(std::int32_t depth, std::int32_t order, const Channels &channels);
    void drawExtent(Form &form);
    std::int32_t orderOf(int image, std::int32_t order, const Channels &source, const Channels &destination);
    std::shared_ptr<TestImage> freshImage(const Form &form, std::int32_t coi);
    std::shared_ptr<TestImage> inPlaceOf(const TestImage &source, const Channels &channels);
    std::shared_ptr<TestImage> mask();

    const Operation &operation_;
    Random random_;
    Shape shape_ = Shape::Small;
};

// Windows take long to judge: their images are small, or as large as few results can be judged of. The latter pass all
// caches that a call may think of.
void Sweep::drawExtent(Form &form)
{
    constexpr std::int32_t bytesOfTall = 200000, widthOfTall = 90;
    if (shape_ == Shape::Wide) {
        form.width = random_.between(60, 150);
        form.height = random_.between(40, 70);
    } else if (shape_ == Shape::Tall && operation_.window) {
        form.width = widthOfTall;
        form.height = 1;
        form.height = bytesOfTall / form.rowBytes();
    } else if (shape_ == Shape::Tall) {
        form.width = random_.between(1, 6);
        form.height = random_.between(560, 660);
    } else if (operation_.window) {
        const int most = random_.once(20) ? 150 : 14;
        const bool isWide = random_.once(2);
        form.width = random_.between(1, isWide ? most : 6);
        form.height = random_.between(1, isWide ? 6 : most);
    } else {
        form.width = random_.between(1, random_.once(2) ? 9 : 40);
        form.height = random_.between(1, 9);
    }
}

Form Sweep::formFor(std::int32_t depth, std::int32_t order, const Channels &channels)
{
    Form form = {.depth = depth, .channels = channels.count, .alpha = channels.alpha, .order = order};
    form.align = random_.oneOf(std::initializer_list<std::int32_t>{4, 8, 16, 32});
    drawExtent(form);
    form.extraStep = random_.once(3) ? 0 : random_.between(1, 13);
    return form;
}

Channels Sweep::anyChannels(const Channels &destination, std::int32_t depth)
{
    for (;;) {
        const Channels channels = random_.oneOf(choicesOfChannels);
        if ((depth != ORV_DEPTH_1U || channels.count == 1) && agree(operation_, channels, destination))
            return channels;
    }
}

Channels Sweep::anyDestination()
{
    for (;;) {
        const Channels destination = random_.oneOf(choicesOfChannels);
        for (const Channels &source : choicesOfChannels)
            if (agree(operation_, source, destination))
                return destination;
    }
}

// Where data orders may differ they do at times, but for a channel of pixels beside planes.
std::int32_t Sweep::orderOf(int image, std::int32_t order, const Channels &source, const Channels &destination)
{
    const bool isDestination = image == operation_.sources;
    const bool single = (isDestination ? destination : source).count == 1;
    const bool singles = source.count == 1 && destination.count == 1;
    const bool besidePixels = isDestination && order == ORV_DATA_ORDER_PIXEL && source.count > 1;
    const bool free = operation_.orders == Orders::Free                ? true
                      : operation_.orders == Orders::FreeOfSingles     ? singles
                      : operation_.orders == Orders::FreeBesideSingles ? single && !besidePixels
                                                                       : false;
    return free && random_.once(3) ? 1 - order : order;
}

std::shared_ptr<TestImage> Sweep::freshImage(const Form &form, std::int32_t coi)
{
    const auto image = std::make_shared<TestImage>(form, random_);
    setRandomRectangle(*image, anyRectangles(random_), coi, random_);
    if (operation_.window)
        drawContent(*image, random_);
    return image;
}

// Another header over the same raster. Pixels that stay at their places have the same rectangle.
std::shared_ptr<TestImage> Sweep::inPlaceOf(const TestImage &source, const Channels &channels)
{
    Form form = source.form;
    form.alpha = channels.alpha;
    auto image = std::make_shared<TestImage>(form, source.memory(), source.start());
    if (operation_.window || operation_.movesPixels)
        setRandomRectangle(*image, anyRectangles(random_), channels.coi, random_);
    else if (const OrvROI *roi = source.header.roi; roi != nullptr)
        image->setRectangle(channels.coi, roi->xOffset, roi->yOffset, roi->width, roi->height);
    else if (channels.coi != 0)
        image->setWholeRectangle(channels.coi);
    return image;
}

std::shared_ptr<TestImage> Sweep::mask()
{
    Form extent;
    drawExtent(extent);
    const auto image = randomMask(extent.width, extent.height, random_);
    setRandomRectangle(*image, anyRectangles(random_), random_.between(0, 1), random_);
    if (random_.once(8))
        image->setMask(randomMask(1, 1, random_)); // masks of masks count for nothing
    return image;
}

Call Sweep::call(std::int32_t depth, std::int32_t order, const Channels &source, const Channels &destination,
                 unsigned masks)
{
    const std::int32_t origin = random_.between(0, 1);
    Call call;
    for (int i = 0; i <= operation_.sources; ++i) {
        const bool isDestination = i == operation_.sources;
        const Channels channels = isDestination ? destination : i == 0 ? source : anyChannels(destination, depth);
        const std::int32_t ownDepth = operation_.depthOf(i, depth);
        Form form = formFor(ownDepth, orderOf(i, order, source, destination), channels);
        form.origin = operation_.originsAgree ? origin : random_.between(0, 1);
        if (operation_.walksWholeSamples(depth))
            form.stepInWholeSamples();
        std::shared_ptr<TestImage> image;
        if (isDestination && i > 0 && ownDepth == depth && random_.once(3)) {
            const auto &other = call.images[static_cast<std::size_t>(random_.between(0, i - 1))];
            if (other->form.channels == channels.count)
                image = inPlaceOf(*other, channels);
        }
        call.images.push_back(image != nullptr ? image : freshImage(form, channels.coi));
        drawBorders(call.images.back()->header, random_);
        if ((masks & (1u << i)) != 0) {
            call.images.back()->setMask(mask());
            if (operation_.originsAgree)
                call.images.back()->mask()->header.origin = origin;
        }
    }
    call.arguments = operation_.draw(depth, random_);
    return call;
}

Call Sweep::callAcross(const Bytes &content)
{
    const std::int32_t depth = random_.oneOf(operation_.depths);
    const std::int32_t order = random_.between(0, 1), extra = random_.between(0, 5);
    shape_ = random_.once(30) && !operation_.window      ? Shape::Wide
             : random_.once(operation_.window ? 30 : 20) ? Shape::Tall
                                                         : Shape::Small;
    const std::size_t reach = shape_ != Shape::Small ? content.size() : 40000;
    const auto memory = std::make_shared<Bytes>(content.begin(), content.begin() + static_cast<int>(reach));

    const Channels one = {1, 0, 0}, destination = depth == ORV_DEPTH_1U ? one : anyDestination();
    Form common = {.depth = depth, .channels = destination.count, .order = order};
    drawExtent(common);
    // Rows beside each other that share no byte, where it is set.
    const std::int32_t commonStep = shape_ == Shape::Small && random_.once(2) ? 2 * common.rowBytes() : 0;
    const auto across = [&](Form form) {
        if (commonStep != 0) {
            form.width = common.width;
            form.height = common.height;
        } else {
            drawExtent(form);
        }
        form.extraStep = std::max(commonStep - form.rowBytes(), extra);
        if (operation_.walksWholeSamples(depth))
            form.stepInWholeSamples();
        const int room = static_cast<int>(reach - form.reach());
        const int distance = random_.oneOf(std::initializer_list<int>{1, 2, 3, 4, 32, form.widthStep(), 400});
        const int start = distance * random_.between(0, 4) + random_.between(0, 1);
        return std::make_shared<TestImage>(form, memory, static_cast<std::size_t>(std::min(start, room)));
    };

    const Channels source = anyChannels(destination, depth);
    Call call;
    for (int i = 0; i <= operation_.sources; ++i) {
        const Channels channels = i == operation_.sources ? destination
                                  : i == 0                ? source
                                                          : anyChannels(destination, depth);
        const auto image = across({.depth = operation_.depthOf(i, depth),
                                   .channels = channels.count,
                                   .alpha = channels.alpha,
                                   .order = orderOf(i, order, source, destination)});
        setRandomRectangle(*image, random_.once(2) ? Rectangles::None : Rectangles::Clipped, channels.coi, random_);
        drawBorders(image->header, random_);
        if (random_.once(2))
            image->setMask(random_.once(2) ? across({.depth = ORV_DEPTH_1U}) : randomMask(20, 600, random_));
        if (image->mask() != nullptr && operation_.originsAgree)
            image->mask()->header.origin = image->form.origin;
        call.images.push_back(image);
    }
    call.arguments = operation_.draw(depth, random_);
    return call;
}

class Forms : public testing::TestWithParam<Operation> {
protected:
    testing::AssertionResult runs(const Call &call, bool rastersOverlap = false)
    {
        int written = 0;
        const Slot slot(sweep_.random());
        auto result = front::runs(operation_, call, reports_, written, rastersOverlap);
        ++calls_;
        writing_ += written > 0;
        return result << "\ncall " << calls_;
    }

    // Takes each combination of depth, order and channels that the operation serves.
    template <class Take> void forEachForm(Take take)
    {
        for (const std::int32_t depth : operation_.depths)
            for (const Channels &destination : choicesOfChannels)
                for (const Channels &source : choicesOfChannels)
                    for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                        if (agree(operation_, source, destination) &&
                            (depth != ORV_DEPTH_1U || (destination.count == 1 && source.count == 1)))
                            take(depth, order, source, destination);
    }

    const Operation &operation_ = GetParam();
    Reports reports_;
    Sweep sweep_ = Sweep(operation_);
    int calls_ = 0, writing_ = 0;
};

class FormsOnItself : public Forms {};
class FormsOfWindows : public Forms {};

TEST_P(Forms, AllOfThem)
{
    Random &random = sweep_.random();
    const unsigned allMasks = (2u << operation_.sources) - 1;
    forEachForm([&](std::int32_t depth, std::int32_t order, const Channels &source, const Channels &destination) {
        for (int round = operation_.window ? 6 : 2; round > 0 && !HasFatalFailure(); --round) {
            const unsigned masks = random.once(2) ? 0 : random.bits() & allMasks;
            sweep_.takeAnyShape();
            ASSERT_TRUE(runs(sweep_.call(depth, order, source, destination, masks)));
        }
    });
    EXPECT_GT(writing_, calls_ / 3) << "of " << calls_; // else the sweep tests next to nothing
}

// One image given as source and destination at once.
TEST_P(FormsOnItself, OneHeaderForAll)
{
    for (const std::int32_t depth : operation_.depths)
        for (const Channels &channels : choicesOfChannels)
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (const unsigned masks : {0u, 1u}) {
                    if ((depth == ORV_DEPTH_1U && channels.count > 1) ||
                        (masks != 0 && operation_.onItself == OnItself::ComputedUnmasked))
                        continue;
                    Call call = sweep_.call(depth, order, channels, channels, masks);
                    call.images.assign(call.images.size(), call.images.front());
                    ASSERT_TRUE(runs(call));
                }
}

TEST_P(FormsOfWindows, ManyRows)
{
    sweep_.takeShape(Shape::Tall);
    for (const std::int32_t depth : operation_.depths)
        for (const Channels &channels : {Channels{1, 0, 0}, Channels{3, 0, 0}, Channels{4, 4, 0}, Channels{3, 0, 2}})
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE}) {
                if (!agree(operation_, channels, channels))
                    continue;
                const unsigned masks = sweep_.random().once(3) ? 2 : 0;
                ASSERT_TRUE(runs(sweep_.call(depth, order, channels, channels, masks)));
            }
}

// Rasters that lie across each other, and masks across the destination. What a straight call pixel by pixel writes is
// open then; all other calls have their whole result before they write any of it.
TEST_P(Forms, RastersAcrossEachOther)
{
    Bytes content(operation_.window ? 1200000 : 250000); // room for the largest images
    for (std::uint8_t &byte : content)
        byte = static_cast<std::uint8_t>(sweep_.random().once(3) ? 0 : sweep_.random().bits());
    for (int round = 0; round < 250; ++round)
        ASSERT_TRUE(runs(sweep_.callAcross(content), true));
}

// Each allocation of a call fails in turn: nothing is written, lost or kept, and the failure is reported.
class ExhaustedMemory : public Forms {
protected:
    // The same images each time. Across each other they make a call take all of its result into scratch at once.
    Call callOf(const Form &shared, const Channels &source, const Channels &destination, unsigned masks, bool across)
    {
        Random random(21);
        Call call;
        const auto memory = std::make_shared<Bytes>(across ? shared.reach() * 16 + 64 : 0);
        for (std::uint8_t &byte : *memory)
            byte = static_cast<std::uint8_t>(random.bits());
        for (int i = 0; i <= operation_.sources; ++i) {
            const Channels &channels = i < operation_.sources ? source : destination;
            Form form = shared;
            form.depth = operation_.depthOf(i, shared.depth);
            form.channels = channels.count;
            form.alpha = channels.alpha;
            const auto image = across ? std::make_shared<TestImage>(form, memory, static_cast<std::size_t>(4 * i))
                                      : std::make_shared<TestImage>(form, random);
            setRandomRectangle(*image, Rectangles::None, channels.coi, random);
            if ((masks & (1u << i)) != 0)
                image->setMask(randomMask(form.width, form.height, random));
            if (image->mask() != nullptr)
                image->mask()->header.origin = form.origin;
            call.images.push_back(image);
        }
        call.arguments = operation_.draw(shared.depth, random);
        return call;
    }

    // False when no allocation was left to fail.
    bool fails(const Call &call, int failing)
    {
        const Snapshot before(call);
        reports_.clear();
        MemoryWatch watch;
        watch.failAt(failing);
        const OrvStatus status = call.run();
        EXPECT_EQ(watch.live(), 0u) << call;
        if (watch.allocations() <= failing) {
            EXPECT_EQ(status, ORV_STATUS_OK) << call;
            EXPECT_TRUE(operation_.window || !call.straight() || failing == 0) << "a straight form allocates\n" << call;
            return false;
        }
        EXPECT_EQ(status, ORV_STATUS_NO_MEMORY) << call;
        EXPECT_EQ(reports_.all(), reportsOf(operation_, ORV_STATUS_NO_MEMORY, operation_.withoutMemory, true)) << call;
        EXPECT_TRUE(before.unchanged()) << "allocation " << failing << "\n" << call;
        return true;
    }
};

TEST_P(ExhaustedMemory, OfEachForm)
{
    // Forms that differ in what they allocate: by layout, order and masks.
    constexpr Channels pairs[][2] = {{{1, 0, 0}, {1, 0, 0}}, {{3, 0, 0}, {3, 0, 0}}, {{4, 0, 0}, {4, 0, 0}},
                                     {{4, 4, 0}, {4, 4, 0}}, {{4, 0, 0}, {4, 4, 0}}, {{4, 4, 0}, {4, 0, 0}},
                                     {{3, 0, 0}, {4, 4, 0}}, {{4, 4, 0}, {3, 0, 0}}, {{1, 0, 0}, {3, 0, 2}},
                                     {{4, 0, 3}, {1, 0, 0}}, {{3, 0, 1}, {4, 4, 4}}, {{3, 0, 3}, {3, 0, 1}}};
    int provoked = 0;
    for (const std::int32_t depth : operation_.depths)
        for (const auto &[source, destination] : pairs)
            for (const std::int32_t order : {ORV_DATA_ORDER_PIXEL, ORV_DATA_ORDER_PLANE})
                for (unsigned masks = 0; masks < 2u << operation_.sources; ++masks)
                    for (const bool across : {false, true}) {
                        if ((depth == ORV_DEPTH_1U && (source.count > 1 || destination.count > 1)) ||
                            (across && operation_.window) ||
                            (operation_.sources > 0 && !agree(operation_, source, destination)))
                            continue;
                        const Form form = {.depth = depth, .order = order, .width = 13, .height = 9};
                        int failing = 0;
                        while (fails(callOf(form, source, destination, masks, across), failing))
                            ++failing;
                        provoked += failing;
                    }
    EXPECT_GT(provoked, 0);
}

INSTANTIATE_TEST_SUITE_P(All, Forms, testing::ValuesIn(operations()), nameOf);
INSTANTIATE_TEST_SUITE_P(All, ExhaustedMemory, testing::ValuesIn(operations()), nameOf);
INSTANTIATE_TEST_SUITE_P(Some, FormsOfWindows,
                         testing::ValuesIn(operationsWhere([](const Operation &one) { return one.window; })), nameOf);
INSTANTIATE_TEST_SUITE_P(Some, FormsOnItself, testing::ValuesIn(operationsWhere([](const Operation &one) {
                             return one.onItself == OnItself::Computed || one.onItself == OnItself::ComputedUnmasked;
                         })),
                         nameOf);

} // namespace
} // namespace front
