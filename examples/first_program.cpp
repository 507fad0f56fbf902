// A first program: the magnitude of a signed test pattern.
#include <orv.h>

#include <cstdint>
#include <cstdio>

int main()
{
    // Before any other call: let failures come back as statuses, report them, and run this processor's best build.
    orvSetErrMode(ORV_ErrorModeParent);
    orvRedirectError(orvStdErrReport);
    const std::int32_t build = orvUseBuild(ORV_BUILD_BEST);

    OrvImage *rings = orvCreateImageJaehne(ORV_DEPTH_16S, 640, 480);
    OrvImage *magnitude = orvCloneImage(rings);
    std::int16_t before = 0, after = 0;
    const bool done = orvAbs(rings, magnitude) == ORV_STATUS_OK &&
                      orvGetPixel(rings, 320, 280, &before) == ORV_STATUS_OK &&
                      orvGetPixel(magnitude, 320, 280, &after) == ORV_STATUS_OK;
    if (done)
        std::printf("%s build: %d before, %d after, at column 320 and row 280.\n", orvBuildName(build), before, after);

    orvDeallocate(rings, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    orvDeallocate(magnitude, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    return done ? 0 : 1;
}
