/* A small application in C: the magnitude of an image of one value. Exits with 0 when the result is right. */
#include <orv.h>
#include <stdio.h>

static OrvImage *createImage(int32_t value)
{
    OrvImage *image = orvCreateImageHeader(1, 0, ORV_DEPTH_16S, "GRAY", "GRAY", ORV_DATA_ORDER_PIXEL, ORV_ORIGIN_TL,
                                           ORV_ALIGN_4BYTES, 5, 3, NULL, NULL, NULL, NULL);
    if (image != NULL)
        orvAllocateImage(image, 1, value);
    return image;
}

int main(void)
{
    int16_t pixel = 0;
    OrvImage *source;
    OrvImage *result;

    orvUseBuild(ORV_BUILD_BEST);
    orvSetErrMode(ORV_ErrorModeParent);
    orvRedirectError(orvStdErrReport);

    source = createImage(-1234);
    result = createImage(0);
    if (source == NULL || result == NULL || orvAbs(source, result) != ORV_STATUS_OK ||
        orvGetPixel(result, 4, 2, &pixel) != ORV_STATUS_OK)
        return 1;
    orvDeallocate(source, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);
    orvDeallocate(result, ORV_IMAGE_HEADER | ORV_IMAGE_DATA);

    printf("orv " ORV_VERSION ": the magnitude of -1234 is %d\n", (int)pixel);
    return pixel == 1234 ? 0 : 1;
}
