// Comparisons of samples with a level: one value for each side of it, or a value for one side only.
#include "external.h"
#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"
#include "vectors.h"

#include "points.h"

template <class Out, class In> struct Binarize {
    In level;
    Out low, high;

    Out operator()(In value) const { return value < level ? low : high; }
};

template <class Sample> struct ReplaceBelow {
    Sample level, value;

    Sample operator()(Sample sample) const { return sample < level ? value : sample; }
};

template <class Sample> struct ReplaceAbove {
    Sample level, value;

    Sample operator()(Sample sample) const { return sample > level ? value : sample; }
};

} // namespace

#define ORV_BINARIZE(layout, stem, Out, In)                                                                         \
    KRN_KERNEL(BinarizeKernel, stem##layout)                                                                        \
    {                                                                                                               \
        const Binarize<Out, In> binarize = {static_cast<In>(level), static_cast<Out>(low), static_cast<Out>(high)}; \
        return compute<Out, layout, In>(width, height, binarize, to(destination, step), from(source, sourceStep));  \
    }

ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u, std::uint8_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u16u, std::uint16_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize8u32s, std::int32_t, std::uint8_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize16s, std::int16_t, std::int16_t)
ORV_LAYOUTS(ORV_BINARIZE, krnBinarize16s8u, std::uint8_t, std::int16_t)

#define ORV_REPLACE(layout, stem, Sample, Replace)                                                               \
    KRN_KERNEL(ReplaceKernel, stem##layout)                                                                      \
    {                                                                                                            \
        const Replace<Sample> replace = {static_cast<Sample>(level), static_cast<Sample>(value)};                \
        return compute<Sample, layout>(width, height, replace, to(destination, step), from(source, sourceStep)); \
    }

ORV_LAYOUTS(ORV_REPLACE, krnThresholdLT8u, std::uint8_t, ReplaceBelow)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdGT8u, std::uint8_t, ReplaceAbove)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdLT16s, std::int16_t, ReplaceBelow)
ORV_LAYOUTS(ORV_REPLACE, krnThresholdGT16s, std::int16_t, ReplaceAbove)

#include "end.h"
