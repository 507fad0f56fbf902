// Memory blocks, headers, rectangle and tile records, and rasters.
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

#include "area.h"
#include "call.h"
#include "header_check.h"
#include "kernels.h"
#include "memory.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvalloc";

constexpr std::int32_t headerSize = 112; // as stored in every header, whatever the machine's pointers

struct RasterLayout {
    std::int64_t widthStep, imageSize;
    bool representable; // in the 32 bits of the header, with what alignment may add
};

// Rows are rounded up to the image's alignment.
RasterLayout rasterLayout(const OrvImage &image)
{
    bool overflow = false;
    const auto product = [&overflow](std::int64_t a, std::int64_t b) {
        std::int64_t result;
        overflow |= __builtin_mul_overflow(a, b, &result);
        return result;
    };
    const bool pixelOrder = image.dataOrder == ORV_DATA_ORDER_PIXEL;
    const std::int64_t rowBytes =
        product(product(sampleBytes(image.depth), image.width), pixelOrder ? image.nChannels : 1);
    const std::int64_t widthStep = (rowBytes + image.align - 1) & ~std::int64_t{image.align - 1};
    const std::int64_t rows = product(image.height, pixelOrder ? 1 : image.nChannels);
    const std::int64_t imageSize = product(widthStep, rows);
    return {widthStep, imageSize, !overflow && imageSize <= std::numeric_limits<std::int32_t>::max() - image.align + 1};
}

void fillWords(std::uint8_t *raster, std::int32_t bytes, std::uint32_t word)
{
    krnFill32sC1(static_cast<std::int32_t>(word), raster, bytes, bytes / 4, 1);
}

std::uint32_t fillWord(std::int32_t depth, std::int32_t value)
{
    const std::uint32_t bits = static_cast<std::uint32_t>(value);
    switch (static_cast<std::uint32_t>(depth) & ~ORV_DEPTH_SIGN) {
    case 1:
        return (bits & 1) != 0 ? 0xFFFFFFFFu : 0;
    case 8:
        return (bits & 0xFF) * 0x01010101u;
    case 16:
        return (bits & 0xFFFF) * 0x00010001u;
    default:
        return bits;
    }
}

// `depthText` is reported for a depth that belongs to the other allocator.
Refusal checkAllocatable(const OrvImage *image, bool ofFloats, const char *depthText)
{
    if (image == nullptr)
        return {ORV_STATUS_BAD_ARGUMENT, "( image == ((void *)0) )"};
    return firstOf({{image->imageData != nullptr, ORV_STATUS_BAD_ARGUMENT, "( image->imageData != ((void *)0) )"},
                    {image->tileInfo != nullptr, ORV_STATUS_BAD_ARGUMENT, "( image->tileInfo != ((void *)0) )"},
                    {(image->depth == ORV_DEPTH_32F) != ofFloats, ORV_STATUS_BAD_ARGUMENT, depthText}});
}

// The fields of a header with this colour model and channel sequence.
Refusal checkFields(const OrvImage &header, const char *colorModel, const char *channelSeq)
{
    return {checkHeaderFields(header, colorModel, channelSeq), "Incorrect data-ins"};
}

// Allocates the raster of a header that may have one.
Refusal allocateRaster(OrvImage &image, bool fill, std::uint32_t word)
{
    const RasterLayout layout = rasterLayout(image);
    const std::int64_t bytes = image.align + layout.imageSize - 1;
    void *block = layout.representable ? memoryFunctions.allocateRaster(static_cast<std::size_t>(bytes)) : nullptr;
    image.imageDataOrigin = static_cast<std::uint8_t *>(block);
    if (block == nullptr)
        return {ORV_STATUS_NO_MEMORY, "for allocate image data"};
    const std::uintptr_t mask = static_cast<std::uintptr_t>(image.align) - 1;
    image.imageData = reinterpret_cast<std::uint8_t *>((reinterpret_cast<std::uintptr_t>(block) + mask) & ~mask);
    image.widthStep = static_cast<std::int32_t>(layout.widthStep);
    image.imageSize = static_cast<std::int32_t>(layout.imageSize);
    if (fill)
        fillWords(image.imageData, image.imageSize, word);
    return nothingRefused;
}

template <class Record> Record *allocateRecord()
{
    return static_cast<Record *>(krnMallocBytes(static_cast<std::int32_t>(sizeof(Record))));
}

void deallocateRaster(OrvImage &image)
{
    if (image.imageDataOrigin != nullptr)
        memoryFunctions.releaseRaster(image.imageDataOrigin);
    image.imageDataOrigin = nullptr;
    image.imageData = nullptr;
}

// Clears what a mask shares with its image, where the image will release it.
void disown(const OrvImage &image, OrvImage &mask, std::int32_t flags)
{
    if (&mask == &image)
        return;
    if ((flags & ORV_IMAGE_ROI) != 0 && mask.roi == image.roi)
        mask.roi = nullptr;
    if ((flags & ORV_IMAGE_TILE) != 0 && mask.tileInfo == image.tileInfo)
        mask.tileInfo = nullptr;
    if ((flags & ORV_IMAGE_DATA) != 0 && mask.imageDataOrigin == image.imageDataOrigin)
        mask.imageDataOrigin = nullptr;
}

template <class Record> void deallocateRecord(Record *&record)
{
    krnFree(record);
    record = nullptr;
}

} // namespace

extern "C" {

void *orvMalloc(std::int32_t count)
{
    return krnMallocBytes(count);
}
std::int16_t *orvwMalloc(std::int32_t count)
{
    return static_cast<std::int16_t *>(krnMalloc16(count));
}
std::int32_t *orviMalloc(std::int32_t count)
{
    return static_cast<std::int32_t *>(krnMalloc32(count));
}
float *orvsMalloc(std::int32_t count)
{
    return static_cast<float *>(krnMalloc32f(count));
}
double *orvdMalloc(std::int32_t count)
{
    return static_cast<double *>(krnMalloc64(count));
}
void orvFree(void *block)
{
    krnFree(block);
}

OrvImage *orvCreateImageHeader(std::int32_t nChannels, std::int32_t alphaChannel, std::int32_t depth,
                               const char *colorModel, const char *channelSeq, std::int32_t dataOrder,
                               std::int32_t origin, std::int32_t align, std::int32_t width, std::int32_t height,
                               OrvROI *roi, OrvImage *maskROI, void *imageId, OrvTileInfo *tileInfo)
{
    OrvImage header = {};
    header.nSize = headerSize;
    header.nChannels = nChannels;
    header.alphaChannel = alphaChannel;
    header.depth = depth;
    header.dataOrder = dataOrder;
    header.origin = origin;
    header.align = align;
    header.width = width;
    header.height = height;
    header.roi = roi;
    header.maskROI = maskROI;
    header.imageId = imageId;
    header.tileInfo = tileInfo;
    Call call(unitName);
    if (call.refuses(checkFields(header, colorModel, channelSeq)))
        return call.reportAs(nullptr);
    OrvImage *image = allocateRecord<OrvImage>();
    if (image == nullptr)
        return nullptr;
    std::memcpy(header.colorModel, colorModel, sizeof header.colorModel);
    std::memcpy(header.channelSeq, channelSeq, sizeof header.channelSeq);
    // A tiled image has no raster, so its size may be any; high bits are dropped.
    const RasterLayout layout = rasterLayout(header);
    header.widthStep = static_cast<std::int32_t>(layout.widthStep);
    header.imageSize = static_cast<std::int32_t>(layout.imageSize);
    *image = header;
    orvSetBorderMode(image, ORV_BORDER_CONSTANT, ORV_SIDE_ALL, 0);
    return image;
}

void orvAllocateImage(OrvImage *image, std::int32_t doFill, std::int32_t fillValue)
{
    Call call(unitName);
    if (call.refuses(checkAllocatable(image, false, "( image->depth == 32 )")) ||
        call.refuses(checkFields(*image, image->colorModel, image->channelSeq)) ||
        call.refuses(allocateRaster(*image, doFill != 0, fillWord(image->depth, fillValue))))
        call.report();
}

void orvAllocateImageFP(OrvImage *image, std::int32_t doFill, float fillValue)
{
    Call call(unitName);
    if (call.refuses(checkAllocatable(image, true, "( image->depth != 32 )")) ||
        call.refuses(checkFields(*image, image->colorModel, image->channelSeq)) ||
        call.refuses(allocateRaster(*image, doFill != 0, std::bit_cast<std::uint32_t>(fillValue))))
        call.report();
}

void orvDeallocateImage(OrvImage *image)
{
    if (image != nullptr)
        deallocateRaster(*image);
}

void orvDeallocate(OrvImage *image, std::int32_t flags)
{
    if (image == nullptr)
        return;
    OrvImage *mask = (flags & ORV_IMAGE_MASK) != 0 ? image->maskROI : nullptr;
    if (mask != nullptr) {
        image->maskROI = nullptr;
        disown(*image, *mask, flags);
    }
    if ((flags & ORV_IMAGE_ROI) != 0)
        deallocateRecord(image->roi);
    // An image that is its own mask is released with its own flags.
    if (mask != nullptr && mask != image)
        orvDeallocate(mask, ORV_IMAGE_HEADER | ORV_IMAGE_DATA | ORV_IMAGE_ROI | ORV_IMAGE_TILE);
    if ((flags & ORV_IMAGE_TILE) != 0)
        deallocateRecord(image->tileInfo);
    if ((flags & ORV_IMAGE_DATA) != 0 && image->imageDataOrigin != nullptr)
        deallocateRaster(*image);
    if ((flags & ORV_IMAGE_HEADER) != 0)
        krnFree(image);
}

void orvDeallocateHeader(OrvImage *image)
{
    orvDeallocate(image, ORV_IMAGE_HEADER);
}

OrvROI *orvCreateROI(std::int32_t coi, std::int32_t xOffset, std::int32_t yOffset, std::int32_t width,
                     std::int32_t height)
{
    OrvROI *roi = allocateRecord<OrvROI>();
    orvSetROI(roi, coi, xOffset, yOffset, width, height);
    return roi;
}

void orvSetROI(OrvROI *roi, std::int32_t coi, std::int32_t xOffset, std::int32_t yOffset, std::int32_t width,
               std::int32_t height)
{
    if (roi != nullptr)
        *roi = {coi, xOffset, yOffset, width, height};
}

void orvDeleteROI(OrvROI *roi)
{
    krnFree(roi);
}

OrvTileInfo *orvCreateTileInfo(OrvTileCallback callback, std::int32_t id, std::int32_t width, std::int32_t height)
{
    OrvTileInfo *tile = allocateRecord<OrvTileInfo>();
    orvSetTileInfo(tile, callback, id, width, height);
    return tile;
}

void orvSetTileInfo(OrvTileInfo *tile, OrvTileCallback callback, std::int32_t id, std::int32_t width,
                    std::int32_t height)
{
    if (tile != nullptr)
        *tile = {callback, id, nullptr, width, height};
}

void orvDeleteTileInfo(OrvTileInfo *tile)
{
    krnFree(tile);
}

} // extern "C"
