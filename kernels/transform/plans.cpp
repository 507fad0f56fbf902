// Plans as applications of the kernels build, ask and release them: the same in all builds.
#include "plan_building.h"
#include "signatures.h"

namespace orv {
namespace {

constexpr std::int32_t lastOrder = 30;

template <class Plan>
KrnStatus initSequence(Plan *plan, std::int32_t id, std::int32_t length, std::int32_t flag, bool isReal)
{
    plan->id = RELEASED_PLAN;
    float forwardScale = 1, inverseScale = 1;
    if (!scalesOfFlag(flag, length, forwardScale, inverseScale))
        return KRN_BAD_FLAG;
    const KrnStatus status = buildSequencePlan(*plan, length, isReal, forwardScale, inverseScale);
    plan->id = status == KRN_OK ? id : std::int32_t{RELEASED_PLAN};
    return status;
}

KrnStatus initByOrder(OrvFftPlan *plan, std::int32_t id, std::int32_t order, std::int32_t flag)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    plan->id = RELEASED_PLAN;
    if (order < 0 || order > lastOrder)
        return KRN_BAD_ORDER;
    return initSequence(plan, id, 1 << order, flag, id == REAL_FFT_PLAN);
}

KrnStatus initByLength(OrvDftPlan *plan, std::int32_t id, std::int32_t length, std::int32_t flag)
{
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    plan->id = RELEASED_PLAN;
    if (length < 1)
        return KRN_BAD_SIZE;
    return initSequence(plan, id, length, flag, id == REAL_DFT_PLAN);
}

// The scales of both axes are one factor.
KrnStatus initImage(ImagePlan *plan, std::int32_t id, std::int32_t width, std::int32_t height, std::int32_t flag)
{
    float forwardScale = 1, inverseScale = 1;
    if (!scalesOfFlag(flag, std::int64_t{width} * height, forwardScale, inverseScale))
        return KRN_BAD_FLAG;
    const KrnStatus status = buildImagePlan(*plan, width, height, forwardScale, inverseScale);
    plan->id = status == KRN_OK ? id : std::int32_t{RELEASED_PLAN};
    return status;
}

KrnStatus testPlan(const auto *plan, std::int32_t id)
{
    return plan == nullptr ? KRN_NULL_POINTER : plan->id != id ? KRN_WRONG_PLAN : KRN_OK;
}

KrnStatus workSizeOf(const auto *plan, std::int32_t id, std::int32_t *size)
{
    if (const KrnStatus status = testPlan(plan, id); status != KRN_OK)
        return status;
    if (size == nullptr)
        return KRN_NULL_POINTER;
    *size = plan->workSize == 0 ? 0 : plan->workSize + workAlignment;
    return KRN_OK;
}

KrnStatus release(auto *plan, std::int32_t id)
{
    if (const KrnStatus status = testPlan(plan, id); status != KRN_OK)
        return status;
    plan->id = RELEASED_PLAN;
    releaseBlocks(plan->blocks);
    return KRN_OK;
}

} // namespace

namespace slot0 {

#define ORV_RELEASES(stem, samples, id)                            \
    KRN_KERNEL(stem##WorkSizeKernel, krn##stem##WorkSize##samples) \
    {                                                              \
        return workSizeOf(plan, id, size);                         \
    }                                                              \
    KRN_KERNEL(stem##FreeKernel, krn##stem##Free##samples)         \
    {                                                              \
        return release(plan, id);                                  \
    }
#define ORV_PLANS(stem, samples, id, init, extent)              \
    KRN_KERNEL(stem##InitKernel, krn##stem##InitAlloc##samples) \
    {                                                           \
        (void)hint;                                             \
        return init(plan, id, extent, flag);                    \
    }                                                           \
    ORV_RELEASES(stem, samples, id)

ORV_PLANS(Fft, 32fc, COMPLEX_FFT_PLAN, initByOrder, order)
ORV_PLANS(Fft, 32f, REAL_FFT_PLAN, initByOrder, order)
ORV_PLANS(Dft, 32fc, COMPLEX_DFT_PLAN, initByLength, length)
ORV_PLANS(Dft, 32f, REAL_DFT_PLAN, initByLength, length)

KRN_KERNEL(Fft2DInitKernel, krnFft2DInitAlloc32f)
{
    (void)hint;
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    plan->id = RELEASED_PLAN;
    if (orderX < 0 || orderX > lastOrder || orderY < 0 || orderY > lastOrder)
        return KRN_BAD_ORDER;
    return initImage(plan, FFT_2D_PLAN, 1 << orderX, 1 << orderY, flag);
}
KRN_KERNEL(Dft2DInitKernel, krnDft2DInitAlloc32f)
{
    (void)hint;
    if (plan == nullptr)
        return KRN_NULL_POINTER;
    plan->id = RELEASED_PLAN;
    if (width < 1 || height < 1)
        return KRN_BAD_SIZE;
    return initImage(plan, DFT_2D_PLAN, width, height, flag);
}

ORV_RELEASES(Fft2D, 32f, FFT_2D_PLAN)
ORV_RELEASES(Dft2D, 32f, DFT_2D_PLAN)

} // namespace slot0
} // namespace orv
