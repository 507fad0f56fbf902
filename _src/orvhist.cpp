// Histograms, contrast stretch and equalisation of bytes.
#include <cstdint>

#include "call.h"
#include "call_images.h"
#include "hist/level_counts.h"
#include "hist/lookup_tables.h"
#include "kernels.h"
#include "measure.h"
#include "pointwise.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvhist";

// A channel each. An alpha channel has none, unless the image has a rectangle.
Records recordsOf(const OrvImage &image, OrvLUT *const *lut)
{
    if (hasCoi(image))
        return {lut, firstChannel(image), firstChannel(image) + 1};
    return {lut, 0, image.roi == nullptr ? channelsWithoutAlpha(image) : image.nChannels};
}

constexpr Refusal lacksPointers = {ORV_STATUS_NULL_POINTER, "Some pointers are NULL"};

Refusal checkRecord(const OrvLUT *record)
{
    if (record == nullptr)
        return lacksPointers;
    if (record->num < 2)
        return {ORV_STATUS_BAD_ARGUMENT, "lut[ch]->num < 2"};
    if (record->key == nullptr)
        return lacksPointers;
    if (record->key[0] < 0)
        return {ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[0] < 0"};
    for (std::int32_t i = 0; i + 1 < record->num; ++i) {
        if (record->key[i] > record->key[i + 1])
            return {ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[i] > lut[ch]->key[i+1]"};
        if (record->key[record->num - 1] > byteLevels)
            return {ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[lut[ch]->num-1] > 256"};
    }
    return nothingRefused;
}

// The array may be missing: a report handler can clear the status that ends such a call.
Refusal checkRecords(const Records &records)
{
    if (records.of == nullptr)
        return lacksPointers;
    for (std::int32_t channel = records.first; channel < records.end; ++channel)
        if (const Refusal refusal = checkRecord(records.of[channel]); refusal.status != ORV_STATUS_OK)
            return refusal;
    return nothingRefused;
}

bool isSignedOrFloat(const OrvImage &image)
{
    return (static_cast<std::uint32_t>(image.depth) & ORV_DEPTH_SIGN) != 0 || image.depth == ORV_DEPTH_32F;
}

// These checks report and let the call go on. The stored status ends it then, be it that of an earlier call.
void reportArguments(Call &call, const OrvImage &source, const OrvImage *destination, OrvLUT *const *lut)
{
    call.reports(lut == nullptr, ORV_STATUS_BAD_ARGUMENT, "lut==0");
    call.reports(isSignedOrFloat(source), ORV_STATUS_BAD_ARGUMENT,
                 "(srcImage->depth & ORV_DEPTH_SIGN) || (srcImage->depth == ORV_DEPTH_32F)");
    if (destination != nullptr)
        call.reports(isSignedOrFloat(*destination), ORV_STATUS_BAD_ARGUMENT,
                     "(dstImage->depth & ORV_DEPTH_SIGN) || (dstImage->depth == ORV_DEPTH_32F)");
}

Refusal compareImages(const OrvImage &source, const OrvImage &destination)
{
    return firstOf(
        {{source.depth != destination.depth, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != dstImage->depth)"},
         {source.dataOrder != destination.dataOrder, ORV_STATUS_BAD_ARGUMENT,
          "(srcImage->dataOrder != dstImage->dataOrder)"},
         {channelsToProcess(source) != channelsToProcess(destination), ORV_STATUS_BAD_CHANNELS, ""}});
}

// What a kernel refuses comes back as it stands, but for two statuses that are reported under other names.
OrvStatus resultOf(Call &call, KrnStatus status)
{
    if (call.refuses(status == KRN_NULL_POINTER, lacksPointers.status, lacksPointers.text) ||
        call.refuses(status == KRN_NO_MEMORY, ORV_STATUS_NO_MEMORY, "Insufficient memory"))
        return call.report();
    return status;
}

KrnStatus kernelStatusOf(OrvStatus status, Size size)
{
    return status == ORV_STATUS_NO_MEMORY ? KRN_NO_MEMORY : size.empty() ? KRN_BAD_SIZE : KRN_OK;
}

// Adds the pixels of a strip that its mask does not select.
KrnStatus addUnselected(const Work &work, std::int32_t &unselected)
{
    static constexpr std::int32_t zero[] = {0, 1};
    std::int32_t found = 0;
    const KrnStatus status =
        krnHistogram8uC1(work.mask.data, work.mask.step, work.size.width, work.size.height, &found, zero, 2);
    unselected += found;
    return status;
}

void storeCounts(const LevelCounts &counts, const Records &records, std::int32_t channels, std::int32_t unselected)
{
    for (std::int32_t i = 0; i < channels && records.first + i < records.end; ++i) {
        const OrvLUT &record = *records.of[records.first + i];
        counts.store(i, record);
        // Unselected pixels have been counted as level 0.
        if (record.key[0] == 0)
            record.value[0] -= unselected;
    }
}

KrnStatus computeHistogram(const OrvImage &image, const Records &records)
{
    LevelCounts counts;
    const std::int32_t channels = channelsWithoutAlpha(image);
    if (records.lackArrays(false))
        return KRN_NULL_POINTER;
    if (!counts.take(channels))
        return KRN_NO_MEMORY;
    std::int32_t unselected = 0;
    const auto count = [&](const Work &work) {
        KrnStatus status = KRN_OK;
        if (work.mask.data != nullptr && work.channel == records.first)
            status = addUnselected(work, unselected);
        return status != KRN_OK ? status
                                : counts.add(work.sources[0], work.size, work.layout, work.channel - records.first);
    };
    const Size size = maskedRoiSize(image);
    const OrvStatus status = runMeasure({.image = &image, .size = size, .masks = {image.maskROI}}, {.run = count});
    if (status == ORV_STATUS_OK && counts.any())
        storeCounts(counts, records, channels, unselected);
    return kernelStatusOf(status, size);
}

KrnStatus stretchContrast(const OrvImage &source, const OrvImage &destination, const Records &records)
{
    if (source.depth != ORV_DEPTH_8U) // refused, but a report handler has cleared the status
        return KRN_OK;
    if (records.lackArrays(true))
        return KRN_NULL_POINTER;
    const CallImages images = {{&source}, &destination};
    const OrvStatus status =
        runPointwise(images, {.run = [&](const Work &work) { return lookUp(records, stretchLevels, work); }});
    return kernelStatusOf(status, images.commonSize());
}

// The results of all pixels are counted, also of those that no mask selects.
KrnStatus equalize(const OrvImage &source, const OrvImage &destination, const Records &records)
{
    LevelCounts counts;
    const CallImages images = {{&source}, &destination};
    const Size size = images.commonSize();
    const std::int32_t channels = channelsWithoutAlpha(destination);
    if (records.lackArrays(false))
        return KRN_NULL_POINTER;
    if (!counts.take(channels))
        return KRN_NO_MEMORY;
    std::int32_t unselected = 0;
    OrvStatus status = ORV_STATUS_OK;
    if (images.masked())
        status = runMeasure({.image = &source,
                             .size = size,
                             .masks = {source.maskROI, destination.maskROI},
                             .unselected = Unselected::AsTheyAre,
                             .selected = Selected::WholePixels},
                            {.run = [&](const Work &work) {
                                return work.channel == firstChannel(source) ? addUnselected(work, unselected)
                                                                            : KrnStatus{KRN_OK};
                            }});
    const auto equalizeAndCount = [&](const Work &work) {
        const KrnStatus done = lookUp(records, equalizeLevels, work);
        return done != KRN_OK ? done
                              : counts.add(work.destination, work.size, work.layout, work.channel - records.first);
    };
    if (status == ORV_STATUS_OK)
        status = runPointwise(images, {.run = equalizeAndCount});
    if (status == ORV_STATUS_OK && counts.any())
        storeCounts(counts, records, channels, unselected);
    return kernelStatusOf(status, size);
}

} // namespace

extern "C" OrvStatus orvComputeHisto(const OrvImage *srcImage, OrvLUT *const *lut)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage)))
        return call.report();
    reportArguments(call, *srcImage, nullptr, lut);
    if (Call::ended())
        return orvGetErrStatus();
    if (srcImage->depth != ORV_DEPTH_8U)
        return firstChannel(*srcImage);
    const Records records = recordsOf(*srcImage, lut);
    if (call.refuses(checkRecords(records)) || call.refuses(anyTiled(srcImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return resultOf(call, computeHistogram(*srcImage, records));
}

extern "C" OrvStatus orvContrastStretch(const OrvImage *srcImage, OrvImage *dstImage, OrvLUT *const *lut)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)))
        return call.report();
    reportArguments(call, *srcImage, dstImage, lut);
    call.reports(srcImage->depth != ORV_DEPTH_8U, ORV_STATUS_BAD_ARGUMENT, "srcImage->depth != ORV_DEPTH_8U");
    if (Call::ended())
        return orvGetErrStatus();
    const Records records = recordsOf(*srcImage, lut);
    if (call.refuses(compareImages(*srcImage, *dstImage)) || call.refuses(checkRecords(records)) ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return resultOf(call, stretchContrast(*srcImage, *dstImage, records));
}

extern "C" OrvStatus orvHistoEqualize(const OrvImage *srcImage, OrvImage *dstImage, OrvLUT *const *lut)
{
    Call call(unitName);
    if (call.refuses(checkHeaders(srcImage, dstImage)))
        return call.report();
    reportArguments(call, *srcImage, dstImage, lut);
    if (Call::ended())
        return orvGetErrStatus();
    if (call.refuses(compareImages(*srcImage, *dstImage)))
        return call.report();
    if (srcImage->depth != ORV_DEPTH_8U)
        return firstChannel(*srcImage);
    const Records records = recordsOf(*srcImage, lut);
    if (call.refuses(checkRecords(records)) ||
        call.refuses(anyTiled(srcImage, dstImage), ORV_STATUS_NOT_IMPLEMENTED, ""))
        return call.report();
    return resultOf(call, equalize(*srcImage, *dstImage, records));
}
