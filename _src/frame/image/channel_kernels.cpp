// The tables of channel_kernels.h.
#include "channel_kernels.h"

namespace orv {
namespace {

#define ORV_CHANNEL_KERNELS(samples)                                                                              \
    {                                                                                                             \
        ORV_LAYOUT_KERNELS(krnCopy##samples), ORV_LAYOUT_KERNELS(krnCopyMasked##samples), krnSelect##samples##C1, \
            krnSelect##samples##C3, krnSelect##samples##C4, ORV_LAYOUT_KERNELS(krnMirror##samples),               \
            krnMirror##samples##C1I, krnCopy##samples##C3AC4, krnCopy##samples##AC4C3, krnExtract##samples##C3,   \
            krnExtract##samples##C4, krnInsert##samples##C3, krnInsert##samples##C4, krnFill##samples##C1,        \
            krnFill##samples##C3, krnFill##samples##C4, krnFill##samples##AC4                                     \
    }

constexpr ChannelKernels bytes = ORV_CHANNEL_KERNELS(8u);
constexpr ChannelKernels words = ORV_CHANNEL_KERNELS(16u);
constexpr ChannelKernels longWords = ORV_CHANNEL_KERNELS(32s);

} // namespace

const ChannelKernels &channelKernels(std::int32_t sampleBytes)
{
    return sampleBytes == 1 ? bytes : sampleBytes == 2 ? words : longWords;
}

} // namespace orv
