// Exhausted memory: each allocation of each form of a call fails in turn, and nothing is written, lost or kept.
#include "front/memory_watch.h"
#include "front/pointwise_call.h"

namespace front {
namespace {

// The forms that differ in what they allocate: by layout, order and masks.
struct ScratchForm {
    Channels source, destination;
    std::int32_t order;
};

constexpr ScratchForm forms[] = {
    {{1, 0, 0}, {1, 0, 0}, ORV_DATA_ORDER_PIXEL}, {{3, 0, 0}, {3, 0, 0}, ORV_DATA_ORDER_PIXEL},
    {{4, 0, 0}, {4, 0, 0}, ORV_DATA_ORDER_PIXEL}, {{4, 4, 0}, {4, 4, 0}, ORV_DATA_ORDER_PIXEL},
    {{3, 0, 0}, {4, 4, 0}, ORV_DATA_ORDER_PIXEL}, {{4, 4, 0}, {3, 0, 0}, ORV_DATA_ORDER_PIXEL},
    {{3, 0, 0}, {3, 0, 0}, ORV_DATA_ORDER_PLANE}, {{4, 4, 0}, {4, 4, 0}, ORV_DATA_ORDER_PLANE},
    {{1, 0, 0}, {3, 0, 2}, ORV_DATA_ORDER_PIXEL}, {{4, 0, 3}, {1, 0, 0}, ORV_DATA_ORDER_PIXEL},
    {{3, 0, 1}, {4, 4, 4}, ORV_DATA_ORDER_PIXEL}, {{3, 0, 3}, {3, 0, 1}, ORV_DATA_ORDER_PLANE}};

class ExhaustedMemory : public testing::TestWithParam<Operation> {
protected:
    // The same images each time. Across each other they make a call take all of its result into scratch at once.
    static PointwiseCall images(std::int32_t depth, const ScratchForm &form, unsigned masks, bool across)
    {
        const Operation &operation = GetParam();
        Random random(21);
        PointwiseCall call;
        call.constant = operation.constants.front();
        const Form size = {.depth = depth, .order = form.order, .width = 13, .height = 9};
        const auto memory = std::make_shared<Bytes>(size.reach() * 16 + 64);
        for (std::uint8_t &byte : *memory)
            byte = static_cast<std::uint8_t>(random.bits());
        for (int i = 0; i <= operation.sources; ++i) {
            const Channels &channels = i < operation.sources ? form.source : form.destination;
            Form one = size;
            one.channels = channels.count;
            one.alpha = channels.alpha;
            const auto image = across ? std::make_shared<TestImage>(one, memory, static_cast<std::size_t>(4 * i))
                                      : std::make_shared<TestImage>(one, random);
            setRandomRectangle(*image, Rectangles::None, channels.coi, random);
            if ((masks & (1u << i)) != 0)
                image->setMask(randomMask(13, 9, random));
            call.images.push_back(image);
        }
        return call;
    }

    // Fails each allocation of the call once; the number of them.
    int exhaust(std::int32_t depth, const ScratchForm &form, unsigned masks, bool across)
    {
        const Operation &operation = GetParam();
        const auto run = [&](int failing, int &allocations) {
            const PointwiseCall call = images(depth, form, masks, across);
            const Snapshot before(call);
            reports_.clear();
            MemoryWatch watch;
            if (failing >= 0)
                watch.failAt(failing);
            const OrvStatus status = call.run(operation);
            EXPECT_EQ(watch.live(), 0u) << call;
            allocations = watch.allocations();
            if (failing < 0) {
                EXPECT_EQ(status, ORV_STATUS_OK) << call;
                EXPECT_TRUE(!call.straight() || allocations == 0) << "a straight form allocates\n" << call;
                return;
            }
            EXPECT_EQ(status, ORV_STATUS_NO_MEMORY) << call;
            EXPECT_EQ(reports_.all(), reportsOf(operation, ORV_STATUS_NO_MEMORY, "Not enough memory", true)) << call;
            EXPECT_TRUE(before.unchanged()) << call;
        };
        int allocations = 0, ignored = 0;
        run(-1, allocations);
        for (int failing = 0; failing < allocations; ++failing)
            run(failing, ignored);
        return allocations;
    }

    Reports reports_;
};

TEST_P(ExhaustedMemory, OfEachForm)
{
    const Operation &operation = GetParam();
    int provoked = 0;
    for (const std::int32_t depth : operation.depths)
        for (const ScratchForm &form : forms)
            for (unsigned masks = 0; masks < 2u << operation.sources; ++masks)
                for (const bool across : {false, true}) {
                    const bool possible =
                        depth != ORV_DEPTH_1U || (form.source.count == 1 && form.destination.count == 1);
                    if (possible && (operation.sources == 0 || agree(operation, form.source, form.destination)))
                        provoked += exhaust(depth, form, masks, across);
                }
    EXPECT_GT(provoked, 0);
}

INSTANTIATE_TEST_SUITE_P(All, ExhaustedMemory, testing::ValuesIn(operations()), nameOf);

} // namespace
} // namespace front
