// Signatures of transforms. They look at their plan first, at its kind next, then at rasters and steps.
//
// A real spectrum is packed: Re 0, Re 1, Im 1, Re 2, Im 2 and so on; of an even number it ends with Re N/2.
#pragma once

#include "../dispatch/signatures.h"
#include "cosine_plans.h"
#include "plans.h"

namespace orv {

// Builds a plan in a record of the caller's, who releases it. A length is 2 to the order in plans that take an order.
// The flag tells what is scaled; the hint changes nothing. A failure leaves a plan that transforms refuse.
#define KRN_PARAMETERS_FftInitKernel OrvFftPlan *plan, std::int32_t order, std::int32_t flag, std::int32_t hint
KRN_SIGNATURE(FftInitKernel)
#define KRN_PARAMETERS_DftInitKernel OrvDftPlan *plan, std::int32_t length, std::int32_t flag, std::int32_t hint
KRN_SIGNATURE(DftInitKernel)
#define KRN_PARAMETERS_Fft2DInitKernel \
    OrvFft2DPlan *plan, std::int32_t orderX, std::int32_t orderY, std::int32_t flag, std::int32_t hint
KRN_SIGNATURE(Fft2DInitKernel)
#define KRN_PARAMETERS_Dft2DInitKernel \
    OrvDft2DPlan *plan, std::int32_t width, std::int32_t height, std::int32_t flag, std::int32_t hint
KRN_SIGNATURE(Dft2DInitKernel)

// Bytes of the work buffer of a transform; 0 where it needs none.
#define KRN_PARAMETERS_FftWorkSizeKernel const OrvFftPlan *plan, std::int32_t *size
KRN_SIGNATURE(FftWorkSizeKernel)
#define KRN_PARAMETERS_DftWorkSizeKernel const OrvDftPlan *plan, std::int32_t *size
KRN_SIGNATURE(DftWorkSizeKernel)
#define KRN_PARAMETERS_Fft2DWorkSizeKernel const OrvFft2DPlan *plan, std::int32_t *size
KRN_SIGNATURE(Fft2DWorkSizeKernel)
#define KRN_PARAMETERS_Dft2DWorkSizeKernel const OrvDft2DPlan *plan, std::int32_t *size
KRN_SIGNATURE(Dft2DWorkSizeKernel)

// Releases what a plan holds. Its record is refused from then on.
#define KRN_PARAMETERS_FftFreeKernel OrvFftPlan *plan
KRN_SIGNATURE(FftFreeKernel)
#define KRN_PARAMETERS_DftFreeKernel OrvDftPlan *plan
KRN_SIGNATURE(DftFreeKernel)
#define KRN_PARAMETERS_Fft2DFreeKernel OrvFft2DPlan *plan
KRN_SIGNATURE(Fft2DFreeKernel)
#define KRN_PARAMETERS_Dft2DFreeKernel OrvDft2DPlan *plan
KRN_SIGNATURE(Dft2DFreeKernel)

// Transforms a sequence. Source and destination may be the same. Without a work buffer the kernel allocates its own.
#define KRN_PARAMETERS_FftKernel const void *source, void *destination, const OrvFftPlan *plan, void *work
KRN_SIGNATURE(FftKernel)
#define KRN_PARAMETERS_DftKernel const void *source, void *destination, const OrvDftPlan *plan, void *work
KRN_SIGNATURE(DftKernel)

// Transforms an image. Columns 0 and, of an even width, W - 1 of a spectrum are packed themselves; columns 1 and 2, 3
// and 4 and so on are real and imaginary parts.
#define KRN_PARAMETERS_Fft2DKernel                                                                               \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, const OrvFft2DPlan *plan, \
        void *work
KRN_SIGNATURE(Fft2DKernel)
#define KRN_PARAMETERS_Dft2DKernel                                                                               \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, const OrvDft2DPlan *plan, \
        void *work
KRN_SIGNATURE(Dft2DKernel)

// Likewise an image of which only the upper left part is given, and the rest is zero: no larger than the plan's.
#define KRN_PARAMETERS_Dft2DPartKernel                                                                       \
    const void *source, std::int32_t sourceStep, std::int32_t width, std::int32_t height, void *destination, \
        std::int32_t step, const OrvDft2DPlan *plan, void *work
KRN_SIGNATURE(Dft2DPartKernel)

// Transforms a block of 8 x 8 samples.
#define KRN_PARAMETERS_BlockKernel const void *source, std::int32_t sourceStep, void *destination, std::int32_t step
KRN_SIGNATURE(BlockKernel)

// Plans and transforms of an image by cosines.
#define KRN_PARAMETERS_Dct2DInitKernel OrvDct2DPlan *plan, std::int32_t width, std::int32_t height, std::int32_t hint
KRN_SIGNATURE(Dct2DInitKernel)
#define KRN_PARAMETERS_Dct2DWorkSizeKernel const OrvDct2DPlan *plan, std::int32_t *size
KRN_SIGNATURE(Dct2DWorkSizeKernel)
#define KRN_PARAMETERS_Dct2DFreeKernel OrvDct2DPlan *plan
KRN_SIGNATURE(Dct2DFreeKernel)
#define KRN_PARAMETERS_Dct2DKernel                                                                               \
    const void *source, std::int32_t sourceStep, void *destination, std::int32_t step, const OrvDct2DPlan *plan, \
        void *work
KRN_SIGNATURE(Dct2DKernel)

} // namespace orv
