// Closing: dilation, then erosion.
#include <cstdint>

#include "morph/morphology.h"

extern "C" OrvStatus orvClose(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nIterations)
{
    return orv::runMorphology(orv::Call("orvclose"), srcImage, dstImage, nIterations, orv::dilation, &orv::erosion);
}
