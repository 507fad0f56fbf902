// A small application in C++: a clone of the test pattern. Exits with 0 when the clone equals the pattern.
#include <cstring>
#include <iostream>
#include <memory>
#include <orv.h>

namespace {

struct Release {
    void operator()(OrvImage *image) const { orvDeallocate(image, ORV_IMAGE_HEADER | ORV_IMAGE_DATA); }
};
using Image = std::unique_ptr<OrvImage, Release>;

} // namespace

int main()
{
    orvSetErrMode(ORV_ErrorModeParent);
    orvRedirectError(orvStdErrReport);

    const Image pattern(orvCreateImageJaehne(ORV_DEPTH_8U, 31, 17));
    const Image clone(pattern ? orvCloneImage(pattern.get()) : nullptr);
    if (!clone || clone->imageData == pattern->imageData || clone->width != 31 || clone->height != 17)
        return 1;

    // The centre of the chirp, where its phase is 0.
    if (pattern->imageData[8 * pattern->widthStep + 15] != 127)
        return 1;
    for (int y = 0; y < 17; ++y)
        if (std::memcmp(pattern->imageData + y * pattern->widthStep, clone->imageData + y * clone->widthStep, 31) != 0)
            return 1;

    std::cout << "orv " << orvGetLibVersion()->major << '.' << orvGetLibVersion()->minor << ": the clone is equal\n";
    return 0;
}
