// Builds plans. They consist of plain numbers, the same for all builds.
#pragma once

#include "../dispatch/kernel.h"
#include "plans.h"

namespace orv {

// A block of so many items behind a plan, on the boundary of a cache line; null where memory is exhausted or the size
// passes it.
void *allocateBehind(PlanBlocks &blocks, std::int64_t count, std::size_t itemBytes);
template <class Item> Item *allocateBehind(PlanBlocks &blocks, std::int64_t count)
{
    return static_cast<Item *>(allocateBehind(blocks, count, sizeof(Item)));
}

// Releases all of them.
void releaseBlocks(PlanBlocks &blocks);

// Errors grow with the length, and are twice as large with a chirp. Floats keep them below 6e-7 of the root mean square
// of a spectrum for so many elements. Sequences that are longer or need a chirp have a precise plan.
constexpr std::int64_t longestInFloats = 4096;

// A plan of at least one element. A failure leaves what it allocated to releaseBlocks().
KrnStatus buildFourierPlan(FourierPlan &plan, std::int64_t length, bool precise, PlanBlocks &blocks);

// A plan of a sequence, complex or real, whose transforms multiply by these.
KrnStatus buildSequencePlan(SequencePlan &plan, std::int32_t length, bool isReal, float forwardScale,
                            float inverseScale);

// Likewise of an image.
KrnStatus buildImagePlan(ImagePlan &plan, std::int32_t width, std::int32_t height, float forwardScale,
                         float inverseScale);

// What a flag of plans means for a length; false for no flag.
bool scalesOfFlag(std::int32_t flag, std::int64_t length, float &forwardScale, float &inverseScale);

// Bytes as the work size of a plan: false where these pass 32 bits.
bool setWorkSize(std::int32_t &workSize, std::int64_t bytes);

} // namespace orv
