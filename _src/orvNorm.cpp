// Norms of an image, or of the difference of two.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "call.h"
#include "kernels.h"
#include "layout.h"
#include "measure.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvNorm";

// The kernels of a norm for one depth.
struct NormKernels {
    LayoutKernels<NormKernel> ofOne;
    LayoutKernels<NormPairKernel> ofDifference, relative;
};
#define ORV_NORM_KERNELS(norm, samples)                                                             \
    {                                                                                               \
        ORV_LAYOUT_KERNELS(krnNorm##norm##samples), ORV_LAYOUT_KERNELS(krnNormDiff##norm##samples), \
            ORV_LAYOUT_KERNELS(krnNormRel##norm##samples)                                           \
    }
#define ORV_NORMS(norm)                                                                      \
    {                                                                                        \
        ORV_NORM_KERNELS(norm, 8u), ORV_NORM_KERNELS(norm, 16s), ORV_NORM_KERNELS(norm, 32f) \
    }

// By depth.
using Depths = NormKernels[3];
constexpr Depths infNorms = ORV_NORMS(Inf), l1Norms = ORV_NORMS(L1), l2Norms = ORV_NORMS(L2);

const NormKernels &kernelsOf(std::int32_t normType, std::int32_t depth)
{
    const std::int32_t norm = normType & ~ORV_NORM_RELATIVE;
    const Depths &depths = norm == ORV_NORM_INF ? infNorms : norm == ORV_NORM_L1 ? l1Norms : l2Norms;
    return depths[depth == ORV_DEPTH_8U ? 0 : depth == ORV_DEPTH_16S ? 1 : 2];
}

bool isRelative(std::int32_t normType)
{
    return (normType & ORV_NORM_RELATIVE) != 0;
}

// The norms of channels as one: their largest, their sum, or the root of the sum of their squares.
class Combination {
public:
    explicit Combination(std::int32_t normType) : norm_(normType & ~ORV_NORM_RELATIVE) {}

    void add(double norm)
    {
        const double term = norm_ == ORV_NORM_L2 ? norm * norm : norm;
        total_ = count_++ == 0 ? term : norm_ == ORV_NORM_INF ? std::max(total_, term) : total_ + term;
        last_ = norm;
    }
    // The norm of a single channel is that channel's, to the last bit.
    double value() const { return count_ == 1 ? last_ : norm_ == ORV_NORM_L2 ? std::sqrt(total_) : total_; }

private:
    std::int32_t norm_;
    int count_ = 0;
    double total_ = 0, last_ = 0;
};

KrnStatus normsOf(const Kernel<NormKernel> &kernel, ConstRaster in, Size size, double *norms, double *sums)
{
    return kernel(in.data, in.step, size.width, size.height, norms, sums);
}
KrnStatus normsOf(const Kernel<NormPairKernel> &kernel, const ConstRaster *in, Size size, double *norms, double *sums)
{
    const KrnStatus status =
        kernel(in[0].data, in[0].step, in[1].data, in[1].step, size.width, size.height, norms, sums);
    return status == KRN_WARN_ZERO_DENOMINATOR ? KrnStatus{KRN_OK} : status;
}

// Measures strip by strip.
class Measure {
public:
    Measure(std::int32_t normType, std::int32_t depth, bool two)
        : kernels_(kernelsOf(normType, depth)), relative_(isRelative(normType)), two_(two), norm_(normType),
          second_(normType)
    {
    }

    KrnStatus add(const Work &work);

    // The relative norm of several interleaved channels is the quotient of their combined norms.
    double value() const { return ofPixels_ && relative_ ? norm_.value() / second_.value() : norm_.value(); }

private:
    const NormKernels &kernels_;
    const bool relative_, two_;
    Combination norm_, second_;
    double sums_[normSums] = {}, secondSums_[normSums] = {};
    bool ofPixels_ = false;
};

KrnStatus Measure::add(const Work &work)
{
    const Layout layout = work.layout;
    double norms[4] = {}, secondNorms[4] = {};
    ofPixels_ = layout != Layout::C1;
    KrnStatus status;
    if (!two_)
        status = normsOf(kernels_.ofOne[layout], work.sources[0], work.size, norms, sums_);
    else if (relative_ && !ofPixels_)
        status = normsOf(kernels_.relative[layout], work.sources, work.size, norms, sums_);
    else
        status = normsOf(kernels_.ofDifference[layout], work.sources, work.size, norms, sums_);
    if (relative_ && ofPixels_ && status == KRN_OK)
        status = normsOf(kernels_.ofOne[layout], work.sources[1], work.size, secondNorms, secondSums_);
    if (status != KRN_OK || work.rowsBelow > 0)
        return status;
    for (std::int32_t i = 0; i < samplesWritten(layout); ++i) {
        norm_.add(norms[i]);
        second_.add(secondNorms[i]);
    }
    std::fill_n(sums_, normSums, 0.0);
    return KRN_OK;
}

double measure(Call &call, const OrvImage &a, const OrvImage *b, std::int32_t normType)
{
    const OrvImage *const maskOfB = b != nullptr ? b->maskROI : nullptr;
    const Size sizeOfA = maskedRoiSize(a), size = b != nullptr ? smaller(sizeOfA, maskedRoiSize(*b)) : sizeOfA;
    Measure found(normType, a.depth, b != nullptr);
    const OrvStatus status = runMeasure({.image = &a, .other = b, .size = size, .masks = {a.maskROI, maskOfB}},
                                        {.run = [&](const Work &work) { return found.add(work); }});
    call.result(status);
    return found.value();
}

bool isKnown(std::int32_t normType)
{
    const std::int32_t norm = normType & ~ORV_NORM_RELATIVE;
    return norm == ORV_NORM_INF || norm == ORV_NORM_L1 || norm == ORV_NORM_L2;
}

bool isServed(std::int32_t depth)
{
    return depth == ORV_DEPTH_8U || depth == ORV_DEPTH_16S || depth == ORV_DEPTH_32F;
}

} // namespace

// Most failures end the call only if the stored status is negative after the report, which a report handler can
// prevent. The call then goes on to further checks, but measures nothing: its images may not fit each other. Channels
// of interest and alpha channels have been validated with the headers.
extern "C" double orvNorm(const OrvImage *srcImageA, const OrvImage *srcImageB, std::int32_t normType)
{
    constexpr double nothing = 0;
    Call call(unitName);
    bool failed = false;
    const auto ends = [&](bool condition, OrvStatus status, const char *text, std::int32_t line = __builtin_LINE()) {
        if (!call.refuses(condition, status, text, line))
            return false;
        failed = true;
        call.report();
        return Call::ended();
    };
    const bool two = srcImageB != nullptr;
    if (call.refuses(checkHeaders(srcImageA)))
        return call.reportAs(nothing);
    if (ends(two && srcImageA->dataOrder != srcImageB->dataOrder, ORV_STATUS_BAD_ORDER, "DataOrder_A!=DataOrder_B"))
        return nothing;
    const bool depthsDiffer = two && srcImageA->depth != srcImageB->depth;
    if ((depthsDiffer && call.refuses(checkHeaders(srcImageB))) ||
        call.refuses(depthsDiffer, ORV_STATUS_BAD_ARGUMENT, "(srcImageA->depth != srcImageB->depth)"))
        return call.reportAs(nothing);
    if (ends(!isKnown(normType), ORV_STATUS_BAD_ARGUMENT, "Unknown normType") ||
        ends(!two && isKnown(normType) && isRelative(normType), ORV_STATUS_BAD_ARGUMENT,
             "normType is impossible, no second image"))
        return nothing;
    if (two && call.refuses(checkHeaders(srcImageB)))
        return call.reportAs(nothing);
    if (ends(two && srcImageA->nChannels != srcImageB->nChannels, ORV_STATUS_BAD_CHANNELS, "") ||
        ends(two && hasCoi(*srcImageA) != hasCoi(*srcImageB), ORV_STATUS_BAD_COI,
             "COI should be defined for second image if COI is defined for the first one") ||
        ends(anyTiled(srcImageA) || (two && anyTiled(srcImageB)), ORV_STATUS_NOT_IMPLEMENTED, "") ||
        ends(!isServed(srcImageA->depth), ORV_STATUS_NOT_IMPLEMENTED, "") || failed)
        return nothing;
    return measure(call, *srcImageA, srcImageB, normType);
}
