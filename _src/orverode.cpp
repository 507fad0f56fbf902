// Erosion.
#include <cstdint>

#include "morph/morphology.h"

extern "C" OrvStatus orvErode(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nIterations)
{
    return orv::runMorphology(orv::Call("orverode"), srcImage, dstImage, nIterations, orv::erosion);
}
