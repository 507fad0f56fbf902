// Builds plans of cosine transforms, the same for all builds.
#include <cmath>
#include <cstdint>

#include "cosine_plans.h"
#include "plan_building.h"
#include "roots.h"
#include "signatures.h"

namespace orv {
namespace {

KrnStatus buildAxis(CosineAxis &axis, std::int64_t length, PlanBlocks &blocks)
{
    Roots roots;
    float *const turns = allocateBehind<float>(blocks, 2 * (length / 2 + 1));
    if (turns == nullptr || !roots.make(4 * length))
        return KRN_NO_MEMORY;
    // A half, since each part of a pair is the sum of two.
    const double count = static_cast<double>(length), scale = std::sqrt(2 / count) / 2;
    for (std::int64_t k = 0; k <= length / 2; ++k) {
        const Complex64 root = roots.power(k);
        turns[2 * k] = static_cast<float>(scale * root.re);
        turns[2 * k + 1] = static_cast<float>(scale * -root.im);
    }
    axis.turns = turns;
    axis.first = static_cast<float>(1 / std::sqrt(count));
    return buildFourierPlan(axis.core, length, false, blocks);
}

// A batch, its scratch and a row.
std::int64_t workBytes(const FourierPlan &core)
{
    const std::size_t elements = core.batchRoom + core.scratchRoom;
    return static_cast<std::int64_t>((elements * batchElement + core.length) * sizeof(float));
}

KrnStatus build(OrvDct2DPlan &plan)
{
    const std::int32_t longer = plan.width > plan.height ? plan.width : plan.height;
    // To refuse a length before its tables are made.
    if (2 * std::int64_t{longer} * static_cast<std::int64_t>(batchElement * sizeof(float)) > INT32_MAX)
        return KRN_NO_MEMORY;
    if (const KrnStatus status = buildAxis(plan.row, plan.width, plan.blocks); status != KRN_OK)
        return status;
    plan.column = &plan.row;
    if (plan.height != plan.width) {
        CosineAxis *const column = allocateBehind<CosineAxis>(plan.blocks, 1);
        if (column == nullptr)
            return KRN_NO_MEMORY;
        if (const KrnStatus status = buildAxis(*column, plan.height, plan.blocks); status != KRN_OK)
            return status;
        plan.column = column;
    }
    const std::int64_t ofRow = workBytes(plan.row.core), ofColumn = workBytes(plan.column->core);
    return setWorkSize(plan.workSize, ofRow > ofColumn ? ofRow : ofColumn) ? KRN_OK : KRN_NO_MEMORY;
}

KrnStatus testPlan(const OrvDct2DPlan *plan)
{
    return plan == nullptr ? KRN_NULL_POINTER : plan->id != DCT_2D_PLAN ? KRN_WRONG_PLAN : KRN_OK;
}

} // namespace

namespace slot0 {

KRN_KERNEL(Dct2DInitKernel, krnDct2DInitAlloc32f)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    *plan = {};
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    plan->width = width;
    plan->height = height;
    plan->hint = hint;
    const KrnStatus status = build(*plan);
    if (status == KRN_OK)
        plan->id = DCT_2D_PLAN;
    else
        releaseBlocks(plan->blocks);
    return status;
}

KRN_KERNEL(Dct2DWorkSizeKernel, krnDct2DWorkSize32f)
{
    if (const KrnStatus status = testPlan(plan); status != KRN_OK)
        return status;
    if (size == nullptr)
        return KRN_NULL_POINTER;
    *size = plan->workSize == 0 ? 0 : plan->workSize + workAlignment;
    return KRN_OK;
}

KRN_KERNEL(Dct2DFreeKernel, krnDct2DFree32f)
{
    if (const KrnStatus status = testPlan(plan); status != KRN_OK)
        return status;
    plan->id = RELEASED_PLAN;
    releaseBlocks(plan->blocks);
    return KRN_OK;
}

} // namespace slot0
} // namespace orv
