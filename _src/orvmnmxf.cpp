// The smallest and the largest sample of a float image.
#include <cstdint>
#include <cstring>

#include "call.h"
#include "kernels.h"
#include "layout.h"
#include "measure.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvmnmxf";

constexpr LayoutKernels<MinMaxKernel> kernels = ORV_LAYOUT_KERNELS(krnMinMax32f);

// The results so far. The first sample that is read starts them; the result of a channel replaces them where it is
// smaller or larger, which a NaN never is.
class Extremes {
public:
    Extremes(float &min, float &max, bool oneOfPixels) : min_(min), max_(max), oneOfPixels_(oneOfPixels) {}

    KrnStatus add(const Work &work)
    {
        const ConstRaster &in = work.sources[0];
        float minima[4], maxima[4];
        const KrnStatus status =
            kernels[work.layout](in.data, in.step, work.size.width, work.size.height, minima, maxima);
        if (status != KRN_OK)
            return status;
        // Of pixels that are read whole, the selected channel alone counts.
        const bool one = work.layout == Layout::C1 || oneOfPixels_;
        const std::int32_t first = one && work.layout != Layout::C1 ? work.channel : 0;
        const std::int32_t end = one ? first + 1 : work.layout == Layout::C4 ? 4 : 3;
        if (!started_)
            start(in.fromByte(std::int64_t{4} * first).data);
        for (std::int32_t channel = first; channel < end; ++channel) {
            if (minima[channel] < min_)
                min_ = minima[channel];
            if (maxima[channel] > max_)
                max_ = maxima[channel];
        }
        return KRN_OK;
    }

private:
    void start(const unsigned char *sample)
    {
        // A copy by value would quiet a signalling NaN on the x87.
        std::memcpy(&min_, sample, sizeof min_);
        std::memcpy(&max_, sample, sizeof max_);
        started_ = true;
    }

    float &min_, &max_;
    bool oneOfPixels_;
    bool started_ = false;
};

OrvStatus run(const OrvImage &image, float &min, float &max)
{
    Size size = {0, 0};
    roiSize(image, size);
    Extremes extremes(min, max, hasCoi(image));
    return runMeasure({.image = &image, .size = size, .selected = Selected::WholePixels},
                      {.run = [&](const Work &work) { return extremes.add(work); }});
}

} // namespace

extern "C" OrvStatus orvMinMaxFP(const OrvImage *srcImage, float *min, float *max)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage)) ||
        call.refuses(min == nullptr || max == nullptr, ORV_STATUS_BAD_ARGUMENT, "((min == 0)||(max == 0))") ||
        call.refuses(srcImage->depth != ORV_DEPTH_32F, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != 32)"))
        return call.reportAs(ORV_STATUS_BAD_ARGUMENT);
    if (onlyAlpha(*srcImage))
        return ORV_STATUS_OK;
    if (call.refuses(anyTiled(srcImage), ORV_STATUS_NOT_IMPLEMENTED, "")) {
        call.report();
        return orvGetErrStatus();
    }
    return call.result(run(*srcImage, *min, *max));
}
