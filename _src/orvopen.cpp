// Opening: erosion, then dilation.
#include <cstdint>

#include "morph/morphology.h"

extern "C" OrvStatus orvOpen(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nIterations)
{
    return orv::runMorphology(orv::Call("orvopen"), srcImage, dstImage, nIterations, orv::erosion, &orv::dilation);
}
