// What operations refuse: in which order, with which status and text, and under whose name.
#include "front/call.h"

namespace front {
namespace {

// Images that an operation serves, to be spoilt: four channels without alpha, of the first depth that has them.
class Refused {
public:
    explicit Refused(const Operation &operation) : operation_(operation)
    {
        Form form = {.channels = 4, .width = 9, .height = 5};
        form.alpha = operation.channels == Agreement::Colors ? 4 : 0;
        for (const std::int32_t depth : operation.depths)
            if (form.depth = depth; depth != ORV_DEPTH_1U)
                break;
        Random random(11);
        for (int i = 0; i <= operation.sources; ++i) {
            images_.push_back(std::make_shared<TestImage>(form, random));
            headers_.push_back(&images_.back()->header);
        }
        mask_ = randomMask(9, 5, random);
    }

    void spoil(const Refusal &refusal)
    {
        if (refusal.fault == Fault::Argument)
            faultsOfArguments_ |= 1u << refusal.value;
        for (int i = 0; i <= operation_.sources; ++i)
            if (headers_[static_cast<std::size_t>(i)] != nullptr && (refusal.image == i || refusal.image == allImages))
                spoil(refusal, headers_[static_cast<std::size_t>(i)]);
    }

    OrvStatus call() const
    {
        if (faultsOfArguments_ != 0)
            return operation_.callWith(headers_.data(), faultsOfArguments_);
        Random random(12);
        return operation_.draw(images_.front()->form.depth, random).call(headers_.data());
    }
    Call images() const { return {images_, {}}; }
    OrvImage &header(int image) { return *headers_[static_cast<std::size_t>(image)]; }

private:
    void spoil(const Refusal &refusal, OrvImage *&header)
    {
        switch (refusal.fault) {
        case Fault::NullImage:
            header = nullptr;
            break;
        case Fault::BadHeader:
            header->align = 5;
            break;
        case Fault::Depth:
            header->depth = refusal.value;
            if (refusal.value == ORV_DEPTH_1U) {
                header->nChannels = 1;
                header->alphaChannel = header->alphaChannel != 0 ? 1 : 0;
            }
            break;
        case Fault::MaskOrigin: {
            OrvImage &mask = masks_[refusal.image];
            mask = mask_->header;
            mask.origin = 1 - header->origin;
            header->maskROI = &mask;
            break;
        }
        case Fault::MaskAlpha:
            for (OrvImage *one : headers_)
                if (one != nullptr) {
                    one->depth = ORV_DEPTH_1U;
                    one->nChannels = 1;
                }
            header->alphaChannel = 1;
            break;
        case Fault::OtherDepth:
            header->depth = header->depth == ORV_DEPTH_8U ? ORV_DEPTH_8S : ORV_DEPTH_8U;
            break;
        case Fault::Origin:
            header->origin = 1 - header->origin;
            break;
        case Fault::Order:
            header->dataOrder = 1 - header->dataOrder;
            break;
        case Fault::Channels:
            header->nChannels = 3;
            header->alphaChannel = header->alphaChannel != 0 ? 3 : 0;
            break;
        case Fault::Alpha:
            header->alphaChannel = header->nChannels;
            break;
        case Fault::Coi:
            coi_ = {1, 0, 0, header->width, header->height};
            header->roi = &coi_;
            break;
        case Fault::Layout:
            header->nChannels = refusal.value / 10;
            header->alphaChannel = refusal.value % 10;
            break;
        case Fault::Tiled:
            header->tileInfo = &tile_;
            header->imageData = nullptr;
            break;
        case Fault::MaskOnOneHeader:
            headers_.front()->maskROI = &mask_->header;
            [[fallthrough]];
        case Fault::OneHeader:
            header = headers_.front();
            break;
        case Fault::Argument:
            break;
        }
    }

    const Operation &operation_;
    OrvROI coi_ = {};
    OrvTileInfo tile_ = {provideNoTile, 0, nullptr, 8, 8};
    std::vector<std::shared_ptr<TestImage>> images_;
    std::vector<OrvImage *> headers_;
    std::shared_ptr<TestImage> mask_;
    OrvImage masks_[4];
    std::uint32_t faultsOfArguments_ = 0;
};

bool isDepth1U(const Refusal &refusal)
{
    return refusal.fault == Fault::MaskAlpha || (refusal.fault == Fault::Depth && refusal.value == ORV_DEPTH_1U);
}

// Of an image with one channel none of these can be said. One header does not differ from itself.
bool contradict(const Refusal &earlier, const Refusal &later)
{
    const auto needsChannels = [](const Refusal &refusal) {
        return refusal.fault == Fault::Channels || refusal.fault == Fault::Alpha || refusal.fault == Fault::Coi ||
               refusal.fault == Fault::Layout;
    };
    const auto compares = [&](const Refusal &refusal) {
        return refusal.image == 1 && (needsChannels(refusal) || refusal.fault == Fault::OtherDepth);
    };
    return (isDepth1U(earlier) && needsChannels(later)) || (isDepth1U(later) && needsChannels(earlier)) ||
           (later.fault == Fault::OneHeader && compares(earlier)) ||
           (earlier.fault == Fault::Channels && later.fault == Fault::Layout && later.value / 10 == 3);
}

OrvStatus resultOf(const Operation &operation, OrvStatus reported)
{
    return operation.oneResultOfRefusals && reported != ORV_STATUS_BAD_CHANNELS ? ORV_STATUS_BAD_ARGUMENT : reported;
}

class Refusals : public testing::TestWithParam<Operation> {
protected:
    // The call is refused so, and nothing is written.
    void expectRefused(Refused &call, const Refusal &refusal)
    {
        const Operation &operation = GetParam();
        const Call images = call.images();
        const Snapshot before(images);
        reports_.clear();
        EXPECT_EQ(call.call(), resultOf(operation, refusal.status));
        EXPECT_EQ(orvGetErrStatus(), refusal.status);
        EXPECT_EQ(reports_.all(), reportsOf(operation, refusal.status, refusal.context, refusal.byWorker));
        EXPECT_TRUE(before.unchanged());
    }

    Reports reports_;
};

TEST_P(Refusals, Each)
{
    for (const Refusal &refusal : GetParam().refusals) {
        SCOPED_TRACE(testing::PrintToString(refusal.status) + " \"" + refusal.context + "\"");
        Refused call(GetParam());
        call.spoil(refusal);
        expectRefused(call, refusal);
    }
}

// Of two faults in one call the earlier check finds its own.
TEST_P(Refusals, EarlierOneWins)
{
    const Operation &operation = GetParam();
    const std::size_t count = operation.refusals.size();
    for (std::size_t first = 0; first < count; ++first)
        for (std::size_t second = first + 1; second < count; ++second) {
            const Refusal &earlier = operation.refusals[first], &later = operation.refusals[second];
            if (contradict(earlier, later))
                continue;
            SCOPED_TRACE("checks " + std::to_string(first) + " and " + std::to_string(second));
            Refused call(operation);
            call.spoil(later);
            call.spoil(earlier);
            const bool exempt = operation.orderFreeAtDepth1U && earlier.fault == Fault::Order && isDepth1U(later);
            expectRefused(call, exempt ? later : earlier);
        }
}

// What the handler answers is the result, but what is stored stays the status of the failure.
TEST_P(Refusals, HandlerChangesTheResult)
{
    reports_.answer(77);
    for (const Refusal &refusal : GetParam().refusals) {
        Refused call(GetParam());
        call.spoil(refusal);
        reports_.clear();
        // A traced failure gives the stored status.
        const bool stored = (refusal.byWorker && GetParam().traces) || !GetParam().returnsStatus;
        const OrvStatus result = GetParam().oneResultOfRefusals ? resultOf(GetParam(), refusal.status) : 77;
        EXPECT_EQ(call.call(), stored ? refusal.status : result) << refusal.context;
        EXPECT_EQ(orvGetErrStatus(), refusal.status) << refusal.context;
    }
}

// The tests of the headers come before all others, and take the mask in.
TEST_P(Refusals, BadMask)
{
    const Operation &operation = GetParam();
    for (int image = 0; image <= operation.sources; ++image) {
        Refused call(operation);
        OrvImage mask = call.header(image);
        mask.depth = ORV_DEPTH_8U;
        call.header(image).maskROI = &mask;
        const bool byWorker = operation.traces; // such an operation leaves the headers to its worker
        expectRefused(call, {Fault::BadHeader, image, ORV_STATUS_BAD_DEPTH + ORV_STATUS_MASK_BASE, "Incorrect Image", 0,
                             byWorker});
    }
}

std::vector<Operation> refusing()
{
    return operationsWhere([](const Operation &one) { return !one.refusals.empty(); });
}

INSTANTIATE_TEST_SUITE_P(All, Refusals, testing::ValuesIn(refusing()), nameOf);

class NothingOnItself : public testing::TestWithParam<Operation> {};

// The number of channels comes back, and comes before the test for tiles where copying alone is at work.
TEST_P(NothingOnItself, GivesTheChannelCount)
{
    const Operation &operation = GetParam();
    Random random(12);
    Reports reports;
    for (const Channels &channels : choicesOfChannels)
        for (const bool masked : {false, true}) {
            Form form = {.depth = operation.depths.back(), .channels = channels.count, .alpha = channels.alpha};
            const auto image = std::make_shared<TestImage>(form, random);
            setRandomRectangle(*image, Rectangles::None, channels.coi, random);
            if (masked)
                image->setMask(randomMask(8, 8, random));
            const Call call = {{image, image}, operation.draw(form.depth, random)};
            const Snapshot before(call);
            const bool withoutAlpha = channels.count == 4 && channels.alpha != 0;
            EXPECT_EQ(call.run(), channels.coi != 0 ? 1 : withoutAlpha ? 3 : channels.count) << *image;
            EXPECT_TRUE(before.unchanged());
        }
    EXPECT_TRUE(reports.all().empty());
    EXPECT_EQ(orvGetErrStatus(), ORV_STATUS_OK);
}

INSTANTIATE_TEST_SUITE_P(Some, NothingOnItself, testing::ValuesIn(operationsWhere([](const Operation &one) {
                             return one.onItself == OnItself::ChannelCount;
                         })),
                         nameOf);

TEST(CopyOnItself, ComesBeforeTheTestForTiles)
{
    Random random(13);
    Reports reports;
    TestImage image({.channels = 3}, random);
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    image.header.imageData = nullptr;
    image.header.tileInfo = &tile;
    EXPECT_EQ(orvCopy(&image.header, &image.header), 3);
    EXPECT_EQ(orvAbs(&image.header, &image.header), ORV_STATUS_NOT_IMPLEMENTED);
}

// The fill of a float image gives back whatever status stands stored, though it was done.
TEST(SetFP, GivesTheStoredStatus)
{
    const std::vector<Report> trace = {{ORV_STATUS_BACKTRACE, "orvSetFP", "", "orvsce"}}, none;
    Random random(14);
    for (const bool answering : {false, true})
        for (const OrvStatus stored : {ORV_STATUS_OK + 0, ORV_STATUS_BAD_COI + 0, ORV_STATUS_BACKTRACE + 0, 5}) {
            TestImage image({.depth = ORV_DEPTH_32F}, random);
            Reports reports;
            if (answering)
                reports.answer(77);
            orvSetErrStatus(stored);
            EXPECT_EQ(orvSetFP(&image.header, 1.5f), stored);
            EXPECT_EQ(orvGetErrStatus(), stored);
            EXPECT_EQ(reports.all(), stored < 0 ? trace : none) << stored;
            EXPECT_EQ(image.get(7, 7, 0).real(), 1.5);
            EXPECT_EQ(image.header.depth, ORV_DEPTH_32F);
        }
}

} // namespace
} // namespace front
