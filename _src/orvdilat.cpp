// Dilation.
#include <cstdint>

#include "morph/morphology.h"

extern "C" OrvStatus orvDilate(const OrvImage *srcImage, OrvImage *dstImage, std::int32_t nIterations)
{
    return orv::runMorphology(orv::Call("orvdilat"), srcImage, dstImage, nIterations, orv::dilation);
}
