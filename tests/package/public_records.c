/* The binary layout of the public records, which programs compiled long ago rely on, and the version in its three
 * places. */
#include <orv.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

/* Offsets with pointers of 4 bytes and of 8. Every target that the library is built for has one of them. */
#define SAME_AT(record, field, with4, with8) \
    _Static_assert(offsetof(record, field) == (sizeof(void *) == 4 ? (with4) : (with8)), #record "." #field)
#define SAME_SIZE(record, with4, with8) \
    _Static_assert(sizeof(record) == (sizeof(void *) == 4 ? (with4) : (with8)), "size of " #record)

SAME_SIZE(OrvROI, 20, 20);
SAME_AT(OrvROI, coi, 0, 0);
SAME_AT(OrvROI, xOffset, 4, 4);
SAME_AT(OrvROI, yOffset, 8, 8);
SAME_AT(OrvROI, width, 12, 12);
SAME_AT(OrvROI, height, 16, 16);

SAME_SIZE(OrvTileInfo, 20, 32);
SAME_AT(OrvTileInfo, callback, 0, 0);
SAME_AT(OrvTileInfo, id, 4, 8);
SAME_AT(OrvTileInfo, tileData, 8, 16);
SAME_AT(OrvTileInfo, width, 12, 24);
SAME_AT(OrvTileInfo, height, 16, 28);

SAME_SIZE(OrvImage, 112, 144);
SAME_AT(OrvImage, nSize, 0, 0);
SAME_AT(OrvImage, ID, 4, 4);
SAME_AT(OrvImage, nChannels, 8, 8);
SAME_AT(OrvImage, alphaChannel, 12, 12);
SAME_AT(OrvImage, depth, 16, 16);
SAME_AT(OrvImage, colorModel, 20, 20);
SAME_AT(OrvImage, channelSeq, 24, 24);
SAME_AT(OrvImage, dataOrder, 28, 28);
SAME_AT(OrvImage, origin, 32, 32);
SAME_AT(OrvImage, align, 36, 36);
SAME_AT(OrvImage, width, 40, 40);
SAME_AT(OrvImage, height, 44, 44);
SAME_AT(OrvImage, roi, 48, 48);
SAME_AT(OrvImage, maskROI, 52, 56);
SAME_AT(OrvImage, imageId, 56, 64);
SAME_AT(OrvImage, tileInfo, 60, 72);
SAME_AT(OrvImage, imageSize, 64, 80);
SAME_AT(OrvImage, imageData, 68, 88);
SAME_AT(OrvImage, widthStep, 72, 96);
SAME_AT(OrvImage, BorderMode, 76, 100);
SAME_AT(OrvImage, BorderConst, 92, 116);
SAME_AT(OrvImage, imageDataOrigin, 108, 136);

SAME_SIZE(OrvConvKernel, 24, 32);
SAME_AT(OrvConvKernel, nCols, 0, 0);
SAME_AT(OrvConvKernel, nRows, 4, 4);
SAME_AT(OrvConvKernel, anchorX, 8, 8);
SAME_AT(OrvConvKernel, anchorY, 12, 12);
SAME_AT(OrvConvKernel, values, 16, 16);
SAME_AT(OrvConvKernel, nShiftR, 20, 24);

SAME_SIZE(OrvConvKernelFP, 20, 24);
SAME_AT(OrvConvKernelFP, nCols, 0, 0);
SAME_AT(OrvConvKernelFP, nRows, 4, 4);
SAME_AT(OrvConvKernelFP, anchorX, 8, 8);
SAME_AT(OrvConvKernelFP, anchorY, 12, 12);
SAME_AT(OrvConvKernelFP, values, 16, 16);

SAME_SIZE(OrvLUT, 20, 40);
SAME_AT(OrvLUT, num, 0, 0);
SAME_AT(OrvLUT, key, 4, 8);
SAME_AT(OrvLUT, value, 8, 16);
SAME_AT(OrvLUT, factor, 12, 24);
SAME_AT(OrvLUT, interpolateType, 16, 32);

SAME_SIZE(OrvLibVersion, 32, 56);
SAME_AT(OrvLibVersion, major, 0, 0);
SAME_AT(OrvLibVersion, minor, 4, 4);
SAME_AT(OrvLibVersion, build, 8, 8);
SAME_AT(OrvLibVersion, Name, 12, 16);
SAME_AT(OrvLibVersion, Version, 16, 24);
SAME_AT(OrvLibVersion, InternalVersion, 20, 32);
SAME_AT(OrvLibVersion, BuildDate, 24, 40);
SAME_AT(OrvLibVersion, CallConv, 28, 48);

int main(void)
{
    const OrvLibVersion *library = orvGetLibVersion();
    char numbers[40];
    snprintf(numbers, sizeof numbers, "%d.%d.%d", ORV_VERSION_MAJOR, ORV_VERSION_MINOR, ORV_VERSION_PATCH);
    if (strcmp(numbers, ORV_VERSION) != 0 || strcmp(ORV_PROJECT_VERSION, ORV_VERSION) != 0 ||
        library->major != ORV_VERSION_MAJOR || library->minor != ORV_VERSION_MINOR ||
        library->build != ORV_VERSION_PATCH) {
        printf("header %s (%s), project %s, library %d.%d.%d\n", ORV_VERSION, numbers, ORV_PROJECT_VERSION,
               (int)library->major, (int)library->minor, (int)library->build);
        return 1;
    }
    return 0;
}
