// Images for operations that only read, drawn at random, and the pixels of them that count.
#pragma once

#include <algorithm>
#include <memory>

#include "front/operations.h"

namespace front {

// One channel of a rectangle, as far as it lies within the image.
inline OrvROI clipped(const TestImage &image)
{
    const OrvROI whole = {0, 0, 0, image.form.width, image.form.height};
    if (image.header.roi == nullptr)
        return whole;
    OrvROI roi = *image.header.roi;
    roi.width = std::clamp(image.form.width - roi.xOffset, 0, roi.width);
    roi.height = std::clamp(image.form.height - roi.yOffset, 0, roi.height);
    return roi;
}

struct Measured {
    std::vector<std::shared_ptr<TestImage>> images;
    std::int32_t width = mostInt, height = mostInt; // in common, masks included

    bool masked() const
    {
        return std::any_of(images.begin(), images.end(), [](const auto &image) { return image->mask() != nullptr; });
    }
    bool empty() const { return width < 1 || height < 1; }
    bool inPlanes() const { return first().form.order == ORV_DATA_ORDER_PLANE || first().form.channels == 1; }
    const TestImage &first() const { return *images.front(); }
    // In pixel order, all channels of a number that no layout has.
    bool unserved() const
    {
        const std::int32_t count = first().form.channels;
        return !inPlanes() && clipped(first()).coi == 0 && (count == 2 || count > 4);
    }
    // Memory is needed for what is empty.
    bool failsEmpty() const
    {
        return empty() && (masked() || (height < 1 && !inPlanes() && clipped(first()).coi != 0));
    }
    int channels() const
    {
        const Form &form = first().form;
        return clipped(first()).coi != 0 ? 1 : form.channels == 4 && form.alpha != 0 ? 3 : form.channels;
    }

    bool selected(std::int32_t x, std::int32_t y) const
    {
        std::uint32_t all = 0xFF;
        for (const auto &image : images)
            if (const TestImage *mask = image->mask(); mask != nullptr)
                all &= mask->get(clipped(*mask).xOffset + x, clipped(*mask).yOffset + y, 0).bits;
        return all != 0;
    }
    // A sample of one of the images; channels count from the first that is processed.
    Sample at(std::size_t image, std::int32_t x, std::int32_t y, std::int32_t channel) const
    {
        const OrvROI roi = clipped(*images[image]);
        return images[image]->get(roi.xOffset + x, roi.yOffset + y, roi.coi == 0 ? channel : roi.coi - 1);
    }
    // Calls take(x, y) for the pixels that count.
    template <class Take> void overSelected(Take take) const
    {
        for (std::int32_t y = 0; y < height; ++y)
            for (std::int32_t x = 0; x < width; ++x)
                if (selected(x, y))
                    take(x, y);
    }
};

// Images of one depth that agree in all but their rectangles, their channels of interest and their masks. Tall ones
// take several strips.
inline Measured drawMeasured(std::int32_t depth, int count, Random &random)
{
    Measured measured;
    const Channels channels = random.oneOf(choicesOfChannels);
    const bool tall = random.once(50), withMasks = random.once(2);
    const std::int32_t order = random.between(0, 1);
    for (int i = 0; i < count; ++i) {
        const Form form = {.depth = depth,
                           .channels = channels.count,
                           .alpha = channels.alpha,
                           .order = order,
                           .width = tall ? 40 : random.between(1, 40),
                           .height = tall ? 900 : random.between(1, 7),
                           .extraStep = random.between(0, 9)};
        const auto image = std::make_shared<TestImage>(form, random);
        const std::int32_t coi = channels.coi == 0 ? 0 : random.between(1, channels.count);
        if (coi != 0)
            image->setWholeRectangle(coi);
        if (random.once(2))
            setRandomRectangle(*image, anyRectangles(random), coi, random);
        if (withMasks && random.once(2))
            image->setMask(randomMask(random.between(20, 50), tall ? 800 : random.between(3, 8), random));
        for (const TestImage *one = image.get(); one != nullptr; one = one->mask()) {
            measured.width = std::min(measured.width, clipped(*one).width);
            measured.height = std::min(measured.height, clipped(*one).height);
        }
        measured.images.push_back(image);
    }
    return measured;
}

} // namespace front
