// Layouts of pixels, and the kernels of an operation by layout.
#pragma once

#include <cstdint>

#include "kernel.h"

namespace orv {

// How the samples of a row form pixels. AC4 pixels have four samples, of which the fourth is not written.
enum class Layout { C1, C3, C4, AC4 };

constexpr std::int32_t samplesPerPixel(Layout layout)
{
    return layout == Layout::C1 ? 1 : layout == Layout::C3 ? 3 : 4;
}

constexpr std::int32_t samplesWritten(Layout layout)
{
    return layout == Layout::AC4 ? 3 : samplesPerPixel(layout);
}

// The layout that writes all samples of the same pixels.
constexpr Layout withAllSamples(Layout layout)
{
    return layout == Layout::AC4 ? Layout::C4 : layout;
}

// One kernel a layout, in the order of Layout.
template <class Signature> struct LayoutKernels {
    const Kernel<Signature> &c1, &c3, &c4, &ac4;

    const Kernel<Signature> &operator[](Layout layout) const
    {
        switch (layout) {
        case Layout::C1:
            return c1;
        case Layout::C3:
            return c3;
        case Layout::C4:
            return c4;
        default:
            return ac4;
        }
    }
};

// The four kernels whose names differ in the layout.
#define ORV_LAYOUT_KERNELS(stem)                \
    {                                           \
        stem##C1, stem##C3, stem##C4, stem##AC4 \
    }

} // namespace orv
