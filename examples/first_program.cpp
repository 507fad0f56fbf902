// A first program: the magnitude of a signed test pattern.
#include <orv.h>

#include <cstdint>
#include <cstdio>

int main()
{
    krnClassify();                      // once, before any other call: the build for this processor
    orvSetErrMode(ORV_ErrorModeParent); // a failure comes back as a status and does not end the program
    orvRedirectError(orvStdErrReport);  // and is told on standard error

    OrvImage *rings = orvCreateImageJaehne(ORV_DEPTH_16S, 640, 480);
    OrvImage *magnitude = orvCloneImage(rings);
    std::int16_t before = 0, after = 0;
    const bool done = orvAbs(rings, magnitude) == ORV_STATUS_OK &&
                      orvGetPixel(rings, 320, 280, &before) == ORV_STATUS_OK &&
                      orvGetPixel(magnitude, 320, 280, &after) == ORV_STATUS_OK;
    if (done)
        std::printf("At column 320, row 280: %d before, %d after.\n", before, after);

    orvDeallocate(rings, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    orvDeallocate(magnitude, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    return done ? 0 : 1;
}
