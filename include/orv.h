/*
 * Copyright (c) 2026 The orv authors
 * SPDX-License-Identifier: Apache-2.0
 */

/**
 * @file orv.h
 *
 * **An application that sets no error mode is ended silently, with exit code 1, at its first failure**. The initial
 * error mode is #ORV_ErrorModeLeaf and the initial report handler is orvNulDevReport(). To continue after a failure,
 * set another mode before any other call:
 * @code
 * orvSetErrMode(ORV_ErrorModeParent); // a failing function reports, and returns its status
 * orvRedirectError(orvStdErrReport);  // reports go to standard error
 * @endcode
 *
 * @brief Image-processing primitives for images in memory, in C and C++.
 *
 * An image is an ::OrvImage header that describes a raster of samples. A call works on the whole image, or on the
 * rectangle and channel that the header names (#OrvImage::roi). It writes only the pixels that a mask selects
 * (#OrvImage::maskROI). The library keeps no pointer to an image after a call. It starts no thread and reads no file.
 *
 * **Terms.**
 * - *Depth*: the sample type, for example 8U for unsigned 8-bit integers (#ORV_DEPTH_8U) or 32F for 32-bit floats.
 * - *Pixel order*: the samples of a pixel are adjacent. *Plane order*: each channel is a raster of its own.
 * - *Step*: the bytes from one row to the next (#OrvImage::widthStep).
 * - *Channels to process*: one if the header has a `roi` with a non-zero `coi`, otherwise `nChannels`.
 * - *In place*: source and destination are the same raster.
 *
 * **Failures.** A function that fails stores a status, which orvGetErrStatus() returns. It then calls the report
 * handler and returns what the handler returns: the status, with the handlers of this library. Each function lists its
 * statuses. Three of them are common:
 * - *Header status*: orvCheckImageHeader() refuses an image. The status of that check is reported with the context
 *   "Incorrect Image".
 * - #ORV_STATUS_NOT_IMPLEMENTED: the image is tiled, or the function does not serve its depth.
 * - #ORV_STATUS_NO_MEMORY: memory is exhausted, or the rectangles do not intersect (see below).
 *
 * **Rectangles.** Each rectangle is clipped to its image. A call processes the width and height that all rectangles,
 * those of masks included, have in common. Each rectangle keeps its own top left corner. Rows are counted in memory
 * order, whatever the origin.
 *
 * If the common width or height is 0, the call succeeds and writes nothing. Two cases report #ORV_STATUS_NO_MEMORY
 * instead, because an empty block cannot be allocated:
 * - a call with a mask;
 * - a call on one channel of several in pixel order whose common height is 0.
 *
 * **Channels.** If `coi` is set, only that channel is processed, otherwise all. All images of a call must process the
 * same number of channels; `nChannels` may differ. Of four channels, the alpha channel is neither computed nor written
 * if the destination has a non-zero `alphaChannel` and no `coi`. In pixel order, images of 1, 3 and 4 channels are
 * served. A call with another number of channels succeeds and writes nothing.
 *
 * **Masks.** A pixel is written if the bitwise AND of its bytes in all masks of the call is not 0.
 *
 * **In place.** Source and destination may be the same raster where the function says so. If two rasters overlap at
 * different positions, or if `widthStep` is smaller than a row so that rows overlap, the call is safe. The result is
 * then unspecified and may depend on the build.
 *
 * **Alignment and steps.** Samples may start at any byte address. `widthStep` may be any positive number. Some
 * operations address rows in whole samples: sums, differences and products at 32S, and orvAddS() and orvSubtractS() at
 * 16U. These round `widthStep` down to a multiple of the sample size. The first row of a rectangle starts where the
 * header says; row y starts y times the rounded step further on. The rule is the same with and without a mask or a
 * `coi`. If `widthStep` is smaller than one sample, such an operation writes nothing and succeeds.
 *
 * **Builds.** Every kernel exists in seven builds, one per instruction set. Until orvUseBuild() or krnClassify() is
 * called, the plain build runs. All builds give the same specified results to the last bit, with one exception: if
 * several operands of a float sum or product are not-a-number, which of their payloads the result has depends on the
 * build.
 *
 * **Threads.** Calls on different images may run at the same time. The error mode, the report handler and the stored
 * status are shared by the whole process and not synchronised. An image header must not be used by two calls at the
 * same time.
 *
 * Functions share these rules unless their description says otherwise.
 */
#ifndef ORV_H
#define ORV_H

#include <stdint.h>

#if defined(_WIN32)
#if defined(ORV_BUILDING_SHARED)
#define ORV_API __declspec(dllexport)
#else
#define ORV_API
#endif
#elif defined(__GNUC__)
#define ORV_API __attribute__((visibility("default")))
#else
#define ORV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup version Version
 *  The version of this header. orvGetLibVersion() tells the version of the library that the program runs with.
 *  @{ */
#define ORV_VERSION_MAJOR 1 /**< Changes when a program that used the library correctly may no longer build or run. */
#define ORV_VERSION_MINOR 0 /**< Changes when functions are added. */
#define ORV_VERSION_PATCH 1 /**< Changes when faults are mended. */
#define ORV_VERSION "1.0.1" /**< The three numbers as text. */
/** @} */

/** @defgroup status Status and reporting
 *  What a call returns, where the last failure is stored, and which handler reports it.
 *  @{ */

/** Result of a call: 0 for success, negative for a failure. */
typedef int32_t OrvStatus;

/** Statuses. orvErrorStr() returns the text of each. */
enum {
    ORV_STATUS_OK = 0,                      /**< Success. */
    ORV_STATUS_BACKTRACE = -1,              /**< A trace record that names a caller. Not a failure of its own. */
    ORV_STATUS_INTERNAL = -3,               /**< Internal error. */
    ORV_STATUS_NO_MEMORY = -4,              /**< Memory is exhausted, or a size exceeds 32 bits. */
    ORV_STATUS_BAD_ARGUMENT = -5,           /**< The call refuses an argument or a combination of images. */
    ORV_STATUS_UNSUPPORTED = -6,            /**< Unsupported function. */
    ORV_STATUS_NO_CONVERGENCE = -7,         /**< An iteration did not converge. */
    ORV_STATUS_AUTOTRACE = -8,              /**< A trace record of a call. Not a failure of its own. */
    ORV_STATUS_NULL_HEADER = -9,            /**< The image is null. */
    ORV_STATUS_BAD_IMAGE_SIZE = -10,        /**< Width, height or raster size is below 1. */
    ORV_STATUS_BAD_ROI_OFFSET = -11,        /**< A rectangle has a negative offset. */
    ORV_STATUS_NO_RASTER = -12,             /**< The image has neither raster nor tiles, or both. */
    ORV_STATUS_BAD_WIDTH_STEP = -13,        /**< `widthStep` is below 1. */
    ORV_STATUS_BAD_COLOR_MODEL = -14,       /**< Colour model or channel sequence is null. */
    ORV_STATUS_BAD_CHANNELS = -15,          /**< The number of channels is below 1, or the images disagree in it. */
    ORV_STATUS_BAD_1U_CHANNELS = -16,       /**< A mask image has more than one channel. */
    ORV_STATUS_BAD_DEPTH = -17,             /**< The depth is unknown, or the call does not take it. */
    ORV_STATUS_BAD_ALPHA = -18,             /**< The alpha channel is not the last channel. */
    ORV_STATUS_BAD_ORDER = -19,             /**< The data order is unknown. */
    ORV_STATUS_BAD_ORIGIN = -20,            /**< The origin is unknown. */
    ORV_STATUS_BAD_ALIGN = -21,             /**< The alignment is not 4, 8, 16 or 32. */
    ORV_STATUS_NULL_CALLBACK = -22,         /**< A tile record has no callback. */
    ORV_STATUS_BAD_TILE_SIZE = -23,         /**< A tile size is below 1 or not a multiple of 8. */
    ORV_STATUS_BAD_COI = -24,               /**< `coi` is outside 0 to `nChannels`. */
    ORV_STATUS_BAD_ROI_SIZE = -25,          /**< A rectangle has a width or height below 1. */
    ORV_STATUS_MASK_TILED = -26,            /**< A mask is tiled. */
    ORV_STATUS_NULL_POINTER = -27,          /**< A pointer is null. */
    ORV_STATUS_BAD_VECTOR_LENGTH = -28,     /**< A vector length is below 1. */
    ORV_STATUS_BAD_FILTER_CONTENT = -29,    /**< A filter record is inconsistent. */
    ORV_STATUS_BAD_TRANSFORM_CONTENT = -30, /**< A transform record is inconsistent. */
    ORV_STATUS_BAD_FILTER_OFFSET = -31,     /**< An anchor is outside the filter. */
    ORV_STATUS_NOT_IMPLEMENTED = -50,       /**< A valid case that is not served: a tiled image, or a depth. */
    ORV_STATUS_MASK_BASE = -100             /**< Added to a status that concerns the mask of an image. */
};

/** Error modes: what a report handler does besides reporting. */
enum {
    ORV_ErrorModeLeaf = 0,   /**< A failure is final: handlers end the process, or ask whether to. The initial mode. */
    ORV_ErrorModeParent = 1, /**< Handlers report and return. The application handles the status. */
    ORV_ErrorModeSilent = 2  /**< Handlers return at once and report nothing. */
};

/**
 * A report handler.
 * @param status   the status of the failure
 * @param func     the exported function that failed
 * @param context  what failed: the text of a condition, a sentence, or the empty text
 * @param file     the source unit, for example `orvabs`
 * @param line     the line in that unit
 * @return         what the failing function returns to its caller
 */
typedef OrvStatus (*OrvErrorCallback)(OrvStatus status, const char *func, const char *context, const char *file,
                                      int32_t line);

/** Version record of the library. */
typedef struct OrvLibVersion {
    int32_t major;               /**< Major version. */
    int32_t minor;               /**< Minor version. */
    int32_t build;               /**< Patch version: #ORV_VERSION_PATCH of the library. */
    const char *Name;            /**< File name of the library. */
    const char *Version;         /**< Version as text. */
    const char *InternalVersion; /**< Version with its date. */
    const char *BuildDate;       /**< Date of the build. */
    const char *CallConv;        /**< Calling convention. */
} OrvLibVersion;

/** @return the last stored status. A successful call does not clear it. */
ORV_API OrvStatus orvGetErrStatus(void);

/** Stores a status. #ORV_STATUS_OK clears the last failure. @param status the status to store */
ORV_API void orvSetErrStatus(OrvStatus status);

/** @return the error mode. */
ORV_API int32_t orvGetErrMode(void);

/** Sets the error mode. The value is not checked. @param mode one of the `ORV_ErrorMode...` values */
ORV_API void orvSetErrMode(int32_t mode);

/**
 * Reports a failure: stores the status and calls the report handler. The trace records #ORV_STATUS_BACKTRACE and
 * #ORV_STATUS_AUTOTRACE are reported but not stored. #ORV_STATUS_OK is stored but not reported.
 * @param status   the status
 * @param func     the function that failed
 * @param context  what failed
 * @param file     the source unit
 * @param line     the line in that unit
 * @return         what the handler returned; #ORV_STATUS_OK for that status
 */
ORV_API OrvStatus orvError(OrvStatus status, const char *func, const char *context, const char *file, int32_t line);

/** @param status a status
 *  @return its constant text, or "Unknown error or status code"; never null */
ORV_API const char *orvErrorStr(OrvStatus status);

/**
 * Installs a report handler.
 * @param handler  the handler, or null for orvNulDevReport()
 * @return         the previous handler
 */
ORV_API OrvErrorCallback orvRedirectError(OrvErrorCallback handler);

/** The silent handler, which is installed initially. In #ORV_ErrorModeLeaf it ends the process with exit code 1.
 *  @param status the status @param func unused @param context unused @param file unused @param line unused
 *  @return the status */
ORV_API OrvStatus orvNulDevReport(OrvStatus status, const char *func, const char *context, const char *file,
                                  int32_t line);

/** Handler that writes to standard error. In #ORV_ErrorModeLeaf it then ends the process with exit code 1.
 *  @param status the status @param func the function, or null @param context what failed, or null
 *  @param file the source unit, or null @param line the line
 *  @return the status */
ORV_API OrvStatus orvStdErrReport(OrvStatus status, const char *func, const char *context, const char *file,
                                  int32_t line);

/** Handler that shows a message box and asks whether to continue. The box is text on the controlling terminal, and the
 *  answer is read from there. Without a terminal the box takes its first button, which in #ORV_ErrorModeLeaf ends the
 *  process.
 *  @param status the status @param func the function, or null @param context what failed, or null
 *  @param file the source unit, or null @param line the line
 *  @return the status */
ORV_API OrvStatus orvGuiBoxReport(OrvStatus status, const char *func, const char *context, const char *file,
                                  int32_t line);

/** @return the version record. It is constant and belongs to the library. */
ORV_API const OrvLibVersion *orvGetLibVersion(void);
/** @} */

/** @defgroup records Image records
 *  The records that describe an image, and their constants.
 *  @{ */

/** Sample types. The low bits hold the size in bits; #ORV_DEPTH_SIGN marks signed integers. */
#define ORV_DEPTH_SIGN 0x80000000u
#define ORV_DEPTH_1U 1                                  /**< Mask sample: one byte per pixel, set if not 0. */
#define ORV_DEPTH_8U 8                                  /**< Unsigned 8-bit integer. */
#define ORV_DEPTH_16U 16                                /**< Unsigned 16-bit integer. */
#define ORV_DEPTH_32F 32                                /**< 32-bit float. */
#define ORV_DEPTH_8S ((int32_t)(ORV_DEPTH_SIGN | 8u))   /**< Signed 8-bit integer. */
#define ORV_DEPTH_16S ((int32_t)(ORV_DEPTH_SIGN | 16u)) /**< Signed 16-bit integer. */
#define ORV_DEPTH_32S ((int32_t)(ORV_DEPTH_SIGN | 32u)) /**< Signed 32-bit integer. */

/** Values of #OrvImage::dataOrder. */
enum {
    ORV_DATA_ORDER_PIXEL = 0, /**< The samples of a pixel are adjacent. */
    ORV_DATA_ORDER_PLANE = 1  /**< One raster per channel, consecutive in one block. */
};

/** Values of #OrvImage::origin. */
enum {
    ORV_ORIGIN_TL = 0, /**< The first row in memory is the top row. */
    ORV_ORIGIN_BL = 1  /**< The first row in memory is the bottom row. */
};

/** Values of #OrvImage::align. */
enum { ORV_ALIGN_4BYTES = 4, ORV_ALIGN_8BYTES = 8, ORV_ALIGN_16BYTES = 16, ORV_ALIGN_32BYTES = 32 };

/** Border modes: the pixels outside the image for an operation with a neighbourhood. */
enum {
    ORV_BORDER_CONSTANT = 0,  /**< The entry of the side in #OrvImage::BorderConst. */
    ORV_BORDER_REPLICATE = 1, /**< The nearest edge pixel. */
    ORV_BORDER_REFLECT = 2,   /**< The image mirrored at its edge. */
    ORV_BORDER_WRAP = 3       /**< The image continued from the opposite edge. */
};

/** Sides, as bits for orvSetBorderMode(). */
enum { ORV_SIDE_TOP = 1, ORV_SIDE_BOTTOM = 2, ORV_SIDE_LEFT = 4, ORV_SIDE_RIGHT = 8, ORV_SIDE_ALL = 15 };

/** What orvDeallocate() releases, as bits. */
enum {
    ORV_IMAGE_HEADER = 1, /**< The header itself. */
    ORV_IMAGE_DATA = 2,   /**< The raster, if the library allocated it. */
    ORV_IMAGE_ROI = 4,    /**< The rectangle record. */
    ORV_IMAGE_TILE = 8,   /**< The tile record. */
    ORV_IMAGE_MASK = 16   /**< The mask: its header, raster, rectangle and tile record, but not the mask's own mask. */
};

/** A rectangle and a channel of an image. Several images may share one record. */
typedef struct OrvROI {
    int32_t coi;     /**< 0 for all channels, or the one-based number of one channel. */
    int32_t xOffset; /**< Left column, at least 0. */
    int32_t yOffset; /**< First row in memory order, at least 0. */
    int32_t width;   /**< Columns, at least 1. The rectangle may extend beyond the image; it is clipped. */
    int32_t height;  /**< Rows, at least 1. */
} OrvROI;

/** A tile provider. The library never calls it. Its arguments are up to the application. */
typedef void (*OrvTileCallback)(void);

/** Describes a tiled image. A header may describe one, but every operation refuses it. */
typedef struct OrvTileInfo {
    OrvTileCallback callback; /**< The provider, not null. */
    int32_t id;               /**< For use by the application. */
    void *tileData;           /**< Null. */
    int32_t width;            /**< Tile width in pixels, a positive multiple of 8. */
    int32_t height;           /**< Tile height in pixels, a positive multiple of 8. */
} OrvTileInfo;

/**
 * Header of an image. An application may fill one itself; orvCheckImageHeader() tests whether it is usable.
 *
 * Let s be the bytes per sample; a 1U sample takes one byte. The sample of column x, row y and zero-based channel c
 * starts at
 * - `imageData + y * widthStep + (x * nChannels + c) * s` in pixel order;
 * - `imageData + (c * height + y) * widthStep + x * s` in plane order.
 */
typedef struct OrvImage {
    int32_t nSize;            /**< 112, as orvCreateImageHeader() stores it on every target. Not read. */
    int32_t ID;               /**< 0. Not read. */
    int32_t nChannels;        /**< Number of channels, at least 1; 1 for depth 1U. Operations serve 1, 3 and 4. */
    int32_t alphaChannel;     /**< 0, or `nChannels` if the last channel is an alpha channel. */
    int32_t depth;            /**< Sample type, an `ORV_DEPTH_...` value. */
    char colorModel[4];       /**< Four characters. Stored, never read. */
    char channelSeq[4];       /**< Four characters. Stored, never read. */
    int32_t dataOrder;        /**< #ORV_DATA_ORDER_PIXEL or #ORV_DATA_ORDER_PLANE. */
    int32_t origin;           /**< #ORV_ORIGIN_TL or #ORV_ORIGIN_BL. */
    int32_t align;            /**< Row alignment in bytes: 4, 8, 16 or 32. */
    int32_t width;            /**< Pixels per row. */
    int32_t height;           /**< Rows. */
    OrvROI *roi;              /**< Rectangle and channel, or null for the whole image and all channels. */
    struct OrvImage *maskROI; /**< Mask of depth 1U, or null. Its rectangle is laid over that of the operation. */
    void *imageId;            /**< For use by the application. */
    OrvTileInfo *tileInfo;    /**< Null for an image with a raster. */
    int32_t imageSize;        /**< Bytes of the raster. */
    uint8_t *imageData;       /**< First byte of the raster, or null. */
    int32_t widthStep;        /**< Bytes from one row to the next. May be more than the row needs. */
    int32_t BorderMode[4];    /**< Border modes of top, bottom, left and right. */
    int32_t BorderConst[4];   /**< Border constants of the same sides. */
    uint8_t *imageDataOrigin; /**< The block that the library allocated for the raster, or null. */
} OrvImage;

/**
 * Tests whether a header describes a usable image. The tests, in this order:
 * 1. The header is null: #ORV_STATUS_NULL_HEADER.
 * 2. Raster and tile record are both set or both null: #ORV_STATUS_NO_RASTER.
 * 3. Without tiles, `imageSize` is below 1: #ORV_STATUS_BAD_IMAGE_SIZE; `widthStep` is: #ORV_STATUS_BAD_WIDTH_STEP.
 * 4. Width or height is below 1: #ORV_STATUS_BAD_IMAGE_SIZE.
 * 5. `nChannels` is below 1: #ORV_STATUS_BAD_CHANNELS; above 1 at depth 1U: #ORV_STATUS_BAD_1U_CHANNELS.
 * 6. A field has an unknown value: #ORV_STATUS_BAD_DEPTH, #ORV_STATUS_BAD_ALPHA, #ORV_STATUS_BAD_ORDER,
 *    #ORV_STATUS_BAD_ORIGIN, #ORV_STATUS_BAD_ALIGN.
 * 7. The mask has another depth than 1U or is tiled: #ORV_STATUS_MASK_BASE plus #ORV_STATUS_BAD_DEPTH, or
 *    #ORV_STATUS_MASK_TILED. Then the mask passes all these tests; #ORV_STATUS_MASK_BASE is added to its status.
 * 8. The tile record: #ORV_STATUS_NULL_CALLBACK, #ORV_STATUS_BAD_TILE_SIZE.
 * 9. The rectangle: #ORV_STATUS_BAD_COI, #ORV_STATUS_BAD_ROI_SIZE, #ORV_STATUS_BAD_ROI_OFFSET. It is not compared with
 *    the size of the image.
 *
 * If masks have masks, at most a hundred are tested, and each only once if the chain is a cycle.
 * @param image  the header, or null
 * @return       0, or the status, which is also stored but not reported
 */
ORV_API OrvStatus orvCheckImageHeader(const OrvImage *image);
/** @} */

/** @defgroup lifecycle Memory, headers and rasters
 *  @{ */

/** Allocates a block that starts at a multiple of 32 bytes. Only orvFree() may release it.
 *  @param count bytes @return the block, or null if the count is below 1 or memory is exhausted; nothing is reported */
ORV_API void *orvMalloc(int32_t count);
/** orvMalloc() for 16-bit items. @param count items @return the block or null */
ORV_API int16_t *orvwMalloc(int32_t count);
/** orvMalloc() for 32-bit integers. @param count items @return the block or null */
ORV_API int32_t *orviMalloc(int32_t count);
/** orvMalloc() for 32-bit floats. @param count items @return the block or null */
ORV_API float *orvsMalloc(int32_t count);
/** orvMalloc() for 64-bit floats. @param count items @return the block or null */
ORV_API double *orvdMalloc(int32_t count);
/** Releases a block of the orvMalloc() family. @param block the block, or null */
ORV_API void orvFree(void *block);

/**
 * Creates a header without a raster. All borders are constant 0. `widthStep` and `imageSize` are those of a raster
 * whose rows are rounded up to `align`.
 * @param nChannels     number of channels
 * @param alphaChannel  0, or `nChannels`
 * @param depth         sample type
 * @param colorModel    at least four characters
 * @param channelSeq    at least four characters
 * @param dataOrder     pixel or plane order
 * @param origin        top left or bottom left
 * @param align         4, 8, 16 or 32
 * @param width         pixels per row
 * @param height        rows
 * @param roi           stored as given, may be null
 * @param maskROI       stored as given, may be null; tested as orvCheckImageHeader() tests a mask
 * @param imageId       stored as given
 * @param tileInfo      stored as given, may be null
 * @return  the header, to be released by orvDeallocate(). Null if memory is exhausted, which is not reported. Also null
 *          if orvCheckImageHeader() would refuse a field; its status is reported with the context "Incorrect data-ins".
 *          A null colour model or channel sequence is #ORV_STATUS_BAD_COLOR_MODEL.
 */
ORV_API OrvImage *orvCreateImageHeader(int32_t nChannels, int32_t alphaChannel, int32_t depth, const char *colorModel,
                                       const char *channelSeq, int32_t dataOrder, int32_t origin, int32_t align,
                                       int32_t width, int32_t height, OrvROI *roi, OrvImage *maskROI, void *imageId,
                                       OrvTileInfo *tileInfo);

/**
 * Allocates the raster of an integer image and sets `widthStep` and `imageSize` as orvCreateImageHeader() does.
 * Reports:
 * - #ORV_STATUS_BAD_ARGUMENT for a null image, an image that has a raster, a tiled image and a float image;
 * - the status of the field for a bad header field;
 * - #ORV_STATUS_NO_MEMORY if memory is exhausted or the raster exceeds 2147483647 bytes.
 * @param image      the header
 * @param doFill     non-zero to fill the raster, padding included
 * @param fillValue  the sample value: its low 8, 16 or 32 bits. At depth 1U the lowest bit selects 0x00 or 0xFF.
 */
ORV_API void orvAllocateImage(OrvImage *image, int32_t doFill, int32_t fillValue);

/** orvAllocateImage() for a float image. Any other depth is #ORV_STATUS_BAD_ARGUMENT.
 *  @param image the header @param doFill non-zero to fill the raster @param fillValue the sample value */
ORV_API void orvAllocateImageFP(OrvImage *image, int32_t doFill, float fillValue);

/** Releases the raster if the library allocated it, and sets its pointers to null in any case. May be called twice.
 *  @param image the header; null does nothing */
ORV_API void orvDeallocateImage(OrvImage *image);

/** Releases what the flags name and sets the fields to null. The order is rectangle, mask, tile record, raster, header.
 *  Header, rectangle, mask and tile record must come from the library. A raster that does not is left alone.
 *  @param image the header; null does nothing @param flags a sum of `ORV_IMAGE_...` values */
ORV_API void orvDeallocate(OrvImage *image, int32_t flags);

/** orvDeallocate() for the header alone. @param image the header; null does nothing */
ORV_API void orvDeallocateHeader(OrvImage *image);

/** Creates a rectangle record. The values are not checked.
 *  @param coi channel or 0 @param xOffset left column @param yOffset first row @param width columns @param height rows
 *  @return the record, to be released by orvDeleteROI(); null if memory is exhausted, which is not reported */
ORV_API OrvROI *orvCreateROI(int32_t coi, int32_t xOffset, int32_t yOffset, int32_t width, int32_t height);
/** Sets the values of a rectangle record. They are not checked. @param roi the record; null does nothing
 *  @param coi channel or 0 @param xOffset left column @param yOffset first row @param width columns @param height rows
 */
ORV_API void orvSetROI(OrvROI *roi, int32_t coi, int32_t xOffset, int32_t yOffset, int32_t width, int32_t height);
/** Releases a rectangle record. @param roi the record, or null */
ORV_API void orvDeleteROI(OrvROI *roi);

/** Creates a tile record. The values are not checked.
 *  @param callback the provider @param id any value @param width tile width @param height tile height
 *  @return the record, to be released by orvDeleteTileInfo(); null if memory is exhausted, which is not reported */
ORV_API OrvTileInfo *orvCreateTileInfo(OrvTileCallback callback, int32_t id, int32_t width, int32_t height);
/** Sets the values of a tile record. They are not checked. @param tile the record; null does nothing
 *  @param callback the provider @param id any value @param width tile width @param height tile height */
ORV_API void orvSetTileInfo(OrvTileInfo *tile, OrvTileCallback callback, int32_t id, int32_t width, int32_t height);
/** Releases a tile record. @param tile the record, or null */
ORV_API void orvDeleteTileInfo(OrvTileInfo *tile);

/**
 * Copies an image: header, border fields, rectangle record and raster. The clone has no mask, no tile record and a null
 * `imageId`. Its rows have the step that orvCreateImageHeader() computes. The clone of a tiled image has a raster of
 * unspecified content.
 * @param image  the image
 * @return  the clone, to be released by orvDeallocate(); null after a reported failure: the header status, or
 *          #ORV_STATUS_NO_MEMORY
 */
ORV_API OrvImage *orvCloneImage(const OrvImage *image);

/**
 * Sets the border of some sides. At an integer depth of up to 16 bits the constant is clamped to the range of the
 * depth. The mode is not checked; operations read its two low bits.
 * @param image     the header; null does nothing
 * @param mode      an `ORV_BORDER_...` value
 * @param border    a sum of `ORV_SIDE_...` values
 * @param constVal  the constant, an integer for a float image too
 */
ORV_API void orvSetBorderMode(OrvImage *image, int32_t mode, int32_t border, int32_t constVal);

/**
 * Creates an image of one channel with the Jaehne test pattern, a radial chirp. Its data order is pixel order, its
 * origin top left, its alignment 8. With dx = x - (width - 1) / 2, dy = y - (height - 1) / 2 and s = sin((dx^2 + dy^2)
 * 2 pi / (4 height)), the sample is, truncated toward zero at integer depths:
 * - 8U: (s + 1) 127.99999; 16U: (s + 1) 32767.99999;
 * - 8S: s 127.99999; 16S: s 32767.99999; 32S: s 2147483647.99999;
 * - 32F: (s + 1) 0.49999.
 *
 * Source: B. Jaehne, Digital Image Processing, Springer.
 * @param depth   any depth but 1U, which is #ORV_STATUS_NOT_IMPLEMENTED; an unknown one is #ORV_STATUS_BAD_DEPTH
 * @param width   pixels per row; below 1 is #ORV_STATUS_BAD_IMAGE_SIZE
 * @param height  rows; below 1 is #ORV_STATUS_BAD_IMAGE_SIZE
 * @return  the image, to be released by orvDeallocate(); null after a reported failure: those above or
 *          #ORV_STATUS_NO_MEMORY
 */
ORV_API OrvImage *orvCreateImageJaehne(int32_t depth, int32_t width, int32_t height);
/** @} */

/** @defgroup pixels Pixel access
 *  Coordinates are those of the whole image: rectangle, channel and mask are ignored. These are the only operations
 *  that apply the origin: with #ORV_ORIGIN_BL, y counts from the last row in memory. They serve depths 8U, 8S, 16U,
 *  16S, 32S and 32F, 1, 3 and 4 channels, and both data orders. With another number of channels nothing is moved.
 *
 *  Statuses: the header status; #ORV_STATUS_BAD_ARGUMENT for a null `pixel` (orvGetPixel() only) or a coordinate
 *  outside the image; #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U.
 *  @{ */

/** Reads a pixel. @param image the image @param x column @param y row @param pixel receives `nChannels` samples
 *  @return 0 or the reported status */
ORV_API OrvStatus orvGetPixel(const OrvImage *image, int32_t x, int32_t y, void *pixel);
/** Writes a pixel. @param image the image @param x column @param y row
 *  @param pixel `nChannels` samples; null writes nothing
 *  @return 0 or the reported status */
ORV_API OrvStatus orvPutPixel(OrvImage *image, int32_t x, int32_t y, const void *pixel);
/** @} */

/** @defgroup copying Copy, fill and magnitude
 *  @{ */

/**
 * Copies pixels bit for bit: dst(x, y) = src(x, y). All depths, both data orders. In place nothing happens. Also copies
 * between an image of three channels and one of four with alpha: the alpha channel is not counted and keeps its
 * samples.
 *
 * Statuses:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT if depths or origins differ. The same for different data orders, unless the depth is 1U or
 *   both images have one channel;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image;
 * - #ORV_STATUS_NO_MEMORY.
 * @param srcImage  source
 * @param dstImage  destination
 * @return  0 or the reported status; if both are the same header, the positive number of channels to process
 */
ORV_API OrvStatus orvCopy(const OrvImage *srcImage, OrvImage *dstImage);

/**
 * Fills an integer image: dst(x, y) = fillValue, clamped to the range of the depth. At depth 1U a non-zero value
 * becomes 255.
 *
 * Statuses: the header status; #ORV_STATUS_BAD_DEPTH for depth 32F; #ORV_STATUS_NOT_IMPLEMENTED for a tiled image;
 * #ORV_STATUS_NO_MEMORY.
 * @param dstImage   destination
 * @param fillValue  the value
 * @return  0 or the reported status
 */
ORV_API OrvStatus orvSet(OrvImage *dstImage, int32_t fillValue);

/**
 * Fills a float image: dst(x, y) = fillValue. The call changes the `depth` of the header and restores it.
 *
 * The result is the stored status (orvGetErrStatus()) after the fill, which success does not clear. So if an earlier
 * call failed and its status is still stored, the fill is done, #ORV_STATUS_BACKTRACE is reported, and the earlier
 * status is returned. In #ORV_ErrorModeLeaf that report ends the process. Clear the status by orvSetErrStatus() first.
 *
 * Statuses: #ORV_STATUS_BAD_ARGUMENT for a null image; #ORV_STATUS_BAD_DEPTH for another depth; those of orvSet(),
 * reported under its name.
 * @param dstImage   destination
 * @param fillValue  the value
 * @return  the stored status
 */
ORV_API OrvStatus orvSetFP(OrvImage *dstImage, float fillValue);

/**
 * Magnitude: dst(x, y) = |src(x, y)|. Depths 8S, 16S and 32S saturate, so that -128 gives 127. 32F clears the sign. 8U
 * and 16U call orvCopy(), with its statuses and result. Both data orders, in place or not.
 *
 * Statuses: the header status; #ORV_STATUS_BAD_ARGUMENT if depths or data orders differ; #ORV_STATUS_BAD_CHANNELS if
 * the numbers of channels to process differ; #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U;
 * #ORV_STATUS_NO_MEMORY.
 * @param srcImage  source
 * @param dstImage  destination
 * @return  0 or the reported status
 */
ORV_API OrvStatus orvAbs(const OrvImage *srcImage, OrvImage *dstImage);
/** @} */

/** @defgroup arithmetic Arithmetic
 *  Each sample of each channel to process is computed by itself. Integer results saturate to the range of the depth.
 *  Floats do not saturate and follow the processor's arithmetic. All functions serve pixel and plane order, 1, 3 and 4
 *  channels, rectangles, channels of interest and masks. In place or not.
 *
 *  Statuses of functions of two images:
 *  - the header status;
 *  - #ORV_STATUS_BAD_ARGUMENT if depths or data orders differ;
 *  - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 *  - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or a depth that is not served;
 *  - #ORV_STATUS_NO_MEMORY.
 *
 *  Functions of an image and a constant have the same statuses. In addition, the integer functions refuse depth 32F
 *  with #ORV_STATUS_BAD_ARGUMENT, and those with the suffix `FP` refuse any other depth with it.
 *  @{ */

/** dst(x, y) = A(x, y) + B(x, y). Depths 8U, 16S, 32S, 32F.
 *  @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAdd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst(x, y) = A(x, y) - B(x, y). Depths 8U, 16S, 32S, 32F.
 *  @param srcImageA minuend @param srcImageB subtrahend @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSubtract(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst(x, y) = A(x, y) B(x, y), not rescaled. Depths 8U, 16S, 32S, 32F.
 *  @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiply(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst(x, y) = src(x, y)^2. Depths 8U, 8S, 16U, 16S, 32F. Different alpha channels are also #ORV_STATUS_BAD_ARGUMENT.
 *  @param src source @param dst destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSquare(const OrvImage *src, OrvImage *dst);

/** dst(x, y) = src(x, y) + value. Depths 8U, 8S, 16U, 16S, 32S. At 16S a value beyond 16 bits is added in two steps,
 *  each of which saturates: first the value clamped to 16 bits, then the remainder. The result is exact for values from
 *  -65536 to 65535. Beyond them only the low 16 bits of the remainder are added.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAddS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst(x, y) = src(x, y) + value. Depth 32F.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAddSFP(const OrvImage *srcImage, OrvImage *dstImage, float value);
/** dst(x, y) = src(x, y) - value, or value - src(x, y). Depths 8U, 8S, 16U, 16S, 32S. At 16S the steps are those of
 *  orvAddS(). With `flip` they follow a negation that saturates, so that a source of -32768 counts as -32767.
 *  @param srcImage source @param dstImage destination @param value the constant @param flip non-zero for value - src
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSubtractS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value, int32_t flip);
/** dst(x, y) = src(x, y) - value, or value - src(x, y). Depth 32F.
 *  @param srcImage source @param dstImage destination @param value the constant @param flip non-zero for value - src
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSubtractSFP(const OrvImage *srcImage, OrvImage *dstImage, float value, int32_t flip);
/** dst(x, y) = src(x, y) value. Depths 8U (the value is clamped to 0 to 255), 16S (clamped to 16 bits), 32S.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplyS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst(x, y) = src(x, y) value. Depth 32F. A null source, and different numbers of channels to process, are
 *  #ORV_STATUS_BAD_ARGUMENT.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplySFP(const OrvImage *srcImage, OrvImage *dstImage, float value);

/** Product of fractions: dst(x, y) = A(x, y) B(x, y) / m, rounded down, where the full scale m is 255 or 65535. With
 *  the product t and w bits per sample it is computed as (t + t / 2^w + 1) / 2^w in integers. Depths 8U, 16U. Any other
 *  depth is #ORV_STATUS_BAD_ARGUMENT.
 *  @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplyScale(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** orvMultiplyScale() with a constant, which is clamped to the range of the depth.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplySScale(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** @} */

/** @defgroup logic Logic and shifts
 *  Bitwise operations on the integer depths 8U, 8S, 16U, 16S and 32S. All images have the same depth. A constant is
 *  truncated to the width of the sample. All functions serve pixel and plane order, 1, 3 and 4 channels, rectangles,
 *  channels of interest and masks. In place or not.
 *
 *  Statuses:
 *  - the header status;
 *  - #ORV_STATUS_BAD_ARGUMENT if depths or data orders differ, or for depth 32F. The shifts also refuse a null source
 *    and different alpha channels with it;
 *  - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 *  - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U;
 *  - #ORV_STATUS_NO_MEMORY.
 *  @{ */

/** dst = A and B. @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAnd(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst = src and value. @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAndS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst = A or B. @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvOr(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst = src or value. @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvOrS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst = A xor B. @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvXor(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** dst = src xor value. @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvXorS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst = not src. Calls orvXorS() with -1, under whose name failures are reported. @param srcImage source
 *  @param dstImage destination @return 0 or the reported status */
ORV_API OrvStatus orvNot(const OrvImage *srcImage, OrvImage *dstImage);

/** dst = src shifted left. Bits shifted out are lost. A count of the sample's width or more gives 0.
 *  @param src source @param dst destination @param nShift bits @return 0 or the reported status */
ORV_API OrvStatus orvLShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift);
/** dst = src shifted right. Signed samples keep their sign and are rounded towards minus infinity. A count of the
 *  sample's width or more gives 0, or -1 for a negative sample.
 *  @param src source @param dst destination @param nShift bits @return 0 or the reported status */
ORV_API OrvStatus orvRShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift);
/** @} */

/** @defgroup neighbourhood Neighbourhoods and borders
 *  What operations share whose result at a pixel depends on the pixels around it. In their descriptions, src(x, y) is
 *  the pixel x columns and y rows from the first pixel of the source's rectangle.
 *
 *  **Borders.** Pixels outside the image come from its border settings, one per side: #OrvImage::BorderMode and
 *  #OrvImage::BorderConst. Only the two low bits of a mode count. The border belongs to the image and not to its
 *  rectangle: image pixels outside the rectangle are read as they are.
 *
 *  Above the first row and below the last one, corners included, the top or bottom side decides. Left and right of the
 *  image, in its own rows, the left or right side decides. By mode:
 *  - constant: the constant of the side. All channels have the same constant. Its low 8 or 16 bits are the sample at
 *    those sizes, all 32 bits at 32S; its value is the sample at 32F;
 *  - replicate: the nearest pixel of the image;
 *  - reflect: the image mirrored at its edges, where the edge row and column are repeated;
 *  - wrap: the image continued from its opposite edges.
 *
 *  Reflect and wrap repeat periodically if the window is larger than the image.
 *
 *  **Channel of interest.** If the source has a `coi`, its first channel is processed, whichever the `coi` names. The
 *  result goes to the channel that the destination's `coi` names.
 *
 *  **Empty rectangles.** If the rectangles do not intersect, the call succeeds and writes nothing, except that a call
 *  with a mask reports #ORV_STATUS_NO_MEMORY.
 *
 *  **Memory.** A call copies only the pixels that the windows of its rectangle read, in strips of rows. If source and
 *  destination overlap, it copies a whole plane before it writes to it. If memory is exhausted, the destination is
 *  unchanged.
 *  @{ */
/** @} */

/** @defgroup convolution Convolution
 *  With the anchor (anchorX, anchorY) as given to orvCreateConvKernel(),
 *
 *      dst(x, y) = sum of values[r * nCols + c] src(x + anchorX - c, y + anchorY - r)
 *
 *  over 0 <= r < nRows and 0 <= c < nCols.
 *
 *  This is a true convolution: the coefficient at the anchor is applied to the pixel itself, and the one to its right
 *  to the pixel on the left. Each sum is divided by 2^s, where s is the low five bits of the record's `nShiftR`.
 *  Records of floats have no divisor.
 *
 *  All functions serve pixel and plane order, 1, 3 and 4 channels, rectangles and masks. Borders and channels of
 *  interest follow @ref neighbourhood "Neighbourhoods and borders". Of four channels, an alpha channel is neither
 *  computed nor written: in pixel order the `alphaChannel` of the *source* decides, in plane order that of the
 *  destination.
 *
 *  **Integer arithmetic:** the sum has 32 bits and wraps around at 8U; it has 64 bits at 16S. The quotient is rounded
 *  to nearest, ties to even, and saturates to the range of the depth.
 *
 *  **Float arithmetic:** samples and coefficients are converted to 32-bit floats, which hold 24 significant bits, and
 *  all intermediate results are 32-bit floats. Only the final result is converted to an integer depth: rounded to
 *  nearest, ties to even, and saturated.
 *  @{ */

/** A window of integer coefficients. orvCreateConvKernel() makes it and orvGetConvKernel() reads it. A record that the
 *  application fills itself must follow this description. */
typedef struct OrvConvKernel {
    int32_t nCols;   /**< Columns of the window, at least 1. */
    int32_t nRows;   /**< Rows of the window, at least 1. */
    int32_t anchorX; /**< Column of the anchor, counted from the right: `nCols` - 1 minus the column given. */
    int32_t anchorY; /**< Row of the anchor, counted from the bottom: `nRows` - 1 minus the row given. */
    int32_t *values; /**< `nCols` * `nRows` coefficients row by row, as given. A block of the orvMalloc() family. */
    int32_t nShiftR; /**< Right shift of each result. Any value is allowed; the five low bits count. */
} OrvConvKernel;

/** A window of float coefficients, otherwise like #OrvConvKernel. */
typedef struct OrvConvKernelFP {
    int32_t nCols;   /**< Columns of the window, at least 1. */
    int32_t nRows;   /**< Rows of the window, at least 1. */
    int32_t anchorX; /**< Column of the anchor, counted from the right. */
    int32_t anchorY; /**< Row of the anchor, counted from the bottom. */
    float *values;   /**< `nCols` * `nRows` coefficients. */
} OrvConvKernelFP;

/** How the results r of several kernels are combined. */
enum {
    ORV_COMBINE_SUM = 0,       /**< The sum of all r. */
    ORV_COMBINE_SUMSQ = 1,     /**< The sum of all r^2. */
    ORV_COMBINE_SUMSQROOT = 2, /**< The square root of the sum of all r^2. */
    ORV_COMBINE_MAX = 3,       /**< The largest r. */
    ORV_COMBINE_MIN = 4        /**< The smallest r. */
};

/**
 * Creates a record of integer coefficients. Reports #ORV_STATUS_BAD_ARGUMENT, in this order, for null `values`, a size
 * below 1 and an anchor outside the window. Reports #ORV_STATUS_NO_MEMORY if memory is exhausted or the coefficients
 * exceed 2147483647 bytes.
 * @param nCols    columns of the window
 * @param nRows    rows of the window
 * @param anchorX  column of the anchor, 0 to `nCols` - 1
 * @param anchorY  row of the anchor, 0 to `nRows` - 1
 * @param values   `nCols` * `nRows` coefficients row by row; they are copied
 * @param nShiftR  right shift of each result, not checked
 * @return         the record, to be released by orvDeleteConvKernel(), or null after a reported failure
 */
ORV_API OrvConvKernel *orvCreateConvKernel(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                           const int32_t *values, int32_t nShiftR);
/** orvCreateConvKernel() with coefficients given as signed bytes. The record is the same.
 *  @param nCols columns @param nRows rows @param anchorX column of the anchor @param anchorY row of the anchor
 *  @param values coefficients @param nShiftR right shift @return the record or null */
ORV_API OrvConvKernel *orvCreateConvKernelChar(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                               const signed char *values, int32_t nShiftR);
/** orvCreateConvKernel() for float coefficients. @param nCols columns @param nRows rows @param anchorX column of the
 *  anchor
 *  @param anchorY row of the anchor @param values coefficients
 *  @return the record, to be released by orvDeleteConvKernelFP(), or null */
ORV_API OrvConvKernelFP *orvCreateConvKernelFP(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                               const float *values);

/**
 * Reads the values that a record was created with. Reports #ORV_STATUS_BAD_ARGUMENT, in this order, for
 * - a null record;
 * - a record whose size is below 1 or whose anchor is outside its window;
 * - null `nRows` or `nCols`, null `anchorX` or `anchorY` (if both of a pair are null, both are reported);
 * - null `values`, null `nShiftR`.
 *
 * After a report nothing is written. Nothing is written either if the stored status (orvGetErrStatus()) is negative
 * from an earlier call. Clear it by orvSetErrStatus() first.
 * @param kernel   the record
 * @param nCols    receives the columns of the window
 * @param nRows    receives the rows
 * @param anchorX  receives the column of the anchor, as it was given
 * @param anchorY  receives the row of the anchor, as it was given
 * @param values   points to a pointer to the caller's array, which receives `nCols` * `nRows` coefficients. If that
 *                 pointer or the record's own is null, no coefficient is written.
 * @param nShiftR  receives the shift
 */
ORV_API void orvGetConvKernel(const OrvConvKernel *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                              int32_t *anchorY, int32_t **values, int32_t *nShiftR);
/** orvGetConvKernel() into signed bytes. Each receives the low byte of its coefficient: 300 is read as 44.
 *  @param kernel the record @param nCols receives the columns @param nRows receives the rows
 *  @param anchorX receives the column of the anchor @param anchorY receives the row of the anchor
 *  @param values pointer to the caller's array @param nShiftR receives the shift */
ORV_API void orvGetConvKernelChar(const OrvConvKernel *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                                  int32_t *anchorY, signed char **values, int32_t *nShiftR);
/** orvGetConvKernel() for a record of floats.
 *  @param kernel the record @param nCols receives the columns @param nRows receives the rows
 *  @param anchorX receives the column of the anchor @param anchorY receives the row of the anchor
 *  @param values pointer to the caller's array */
ORV_API void orvGetConvKernelFP(const OrvConvKernelFP *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                                int32_t *anchorY, float **values);

/** Releases a record and its coefficients. Reports #ORV_STATUS_BAD_ARGUMENT for a null record. The same for a record
 *  without coefficients, which is not released. @param kernel the record */
ORV_API void orvDeleteConvKernel(OrvConvKernel *kernel);
/** orvDeleteConvKernel() for a record of floats. @param kernel the record */
ORV_API void orvDeleteConvKernelFP(OrvConvKernelFP *kernel);

/**
 * Convolves with one kernel, or with up to ten whose results are combined pixel by pixel. Depths 8U, 8S, 16U, 16S, 32S.
 * One kernel at 8U or 16S uses integer arithmetic, all other cases float arithmetic. In place or not.
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for depth 32F;
 * - #ORV_STATUS_BAD_ARGUMENT for null `kernel`, `nKernels` outside 1 to 10, or several kernels with an unknown
 *   `combineMethod`;
 * - #ORV_STATUS_BAD_ARGUMENT if depths or data orders differ;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_BAD_ARGUMENT for a null record or one that orvGetConvKernel() would not read;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U;
 * - #ORV_STATUS_NO_MEMORY.
 * @param srcImage       source
 * @param dstImage       destination
 * @param kernel         `nKernels` records; if one has no coefficients, nothing is written
 * @param nKernels       1 to 10
 * @param combineMethod  an `ORV_COMBINE_...` value; ignored with one kernel
 * @return               0 or the reported status
 */
ORV_API OrvStatus orvConvolve2D(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernel *const *kernel,
                                int32_t nKernels, int32_t combineMethod);
/** orvConvolve2D() with float coefficients, in float arithmetic. Depth 32F; any other is #ORV_STATUS_BAD_ARGUMENT.
 *  @param srcImage source @param dstImage destination @param kernel records @param nKernels 1 to 10
 *  @param combineMethod an `ORV_COMBINE_...` value @return 0 or the reported status */
ORV_API OrvStatus orvConvolve2DFP(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernelFP *const *kernel,
                                  int32_t nKernels, int32_t combineMethod);

/**
 * Convolves with a row of coefficients, a column of them, or both. Depths 8U and 16S. One vector uses integer
 * arithmetic. Both together use float arithmetic: first the column, then the row, each sum divided by the divisor of
 * its own record. Nothing is rounded to an integer in between. Source and destination must be two headers, which may
 * share a raster.
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for depth 32F, one header for both images, two null kernels, or different depths, data
 *   orders or origins;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_BAD_ARGUMENT for a record without coefficients, of another shape, or with an anchor outside its window;
 *   `xKernel` is tested first;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or any other depth;
 * - #ORV_STATUS_NO_MEMORY.
 * @param srcImage  source
 * @param dstImage  destination, another header
 * @param xKernel   a record of one row and at least two columns, or null
 * @param yKernel   a record of one column and at least two rows, or null
 * @return          0 or the reported status
 */
ORV_API OrvStatus orvConvolveSep2D(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernel *xKernel,
                                   const OrvConvKernel *yKernel);
/** orvConvolveSep2D() with float coefficients, in float arithmetic. Depth 32F; any other is #ORV_STATUS_BAD_ARGUMENT.
 *  @param srcImage source @param dstImage destination, another header @param xKernel a row, or null
 *  @param yKernel a column, or null @return 0 or the reported status */
ORV_API OrvStatus orvConvolveSep2DFP(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernelFP *xKernel,
                                     const OrvConvKernelFP *yKernel);
/** @} */

/** @defgroup filters Filters with a window
 *  Each pixel is computed from a window around it, channel by channel unless stated otherwise. The window of the pixel
 *  (x, y) has the columns x - anchorX to x - anchorX + nCols - 1 and the rows y - anchorY to
 *  y - anchorY + nRows - 1.
 *
 *  All functions serve pixel and plane order, 1, 3 and 4 channels, rectangles and masks. Borders and channels of
 *  interest follow @ref neighbourhood "Neighbourhoods and borders". Of four channels, an alpha channel is neither
 *  computed nor written; the `alphaChannel` of the destination decides, unless stated otherwise.
 *
 *  An image whose only channel is its alpha channel, and which has no `coi`, is left alone: the functions return 0 and
 *  report nothing (but see orvColorMedianFilter()).
 *
 *  A window so large that its padded source exceeds 2147483647 bytes is refused with #ORV_STATUS_NO_MEMORY.
 *  @{ */

/**
 * The largest sample of each window. Depths 8U and 16S. Source and destination must be two headers, which may share a
 * raster. The cost of a pixel hardly depends on the window (Gil and Werman, "Computing 2-D min, median, and max
 * filters", 1993).
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for a negative side, a negative anchor, or an anchor outside the window;
 * - #ORV_STATUS_BAD_ARGUMENT if depths, numbers of channels or alpha channels differ, or if an alpha channel is not the
 *   last one;
 * - #ORV_STATUS_BAD_ARGUMENT for one header for both images, depth 32F, or different data orders;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or any other depth;
 * - #ORV_STATUS_NO_MEMORY.
 *
 * A window of 1 x 1 makes the call one of orvCopy(), after the comparisons and before the test for tiles.
 * @param srcImage  source
 * @param dstImage  destination, another header
 * @param nCols     columns of the window
 * @param nRows     rows of the window
 * @param anchorX   column of the anchor, 0 to `nCols` - 1
 * @param anchorY   row of the anchor, 0 to `nRows` - 1
 * @return          0 or the reported status
 */
ORV_API OrvStatus orvMaxFilter(const OrvImage *srcImage, OrvImage *dstImage, int32_t nCols, int32_t nRows,
                               int32_t anchorX, int32_t anchorY);
/** The smallest sample of each window, otherwise like orvMaxFilter().
 *  @param srcImage source @param dstImage destination, another header @param nCols columns @param nRows rows
 *  @param anchorX column of the anchor @param anchorY row of the anchor @return 0 or the reported status */
ORV_API OrvStatus orvMinFilter(const OrvImage *srcImage, OrvImage *dstImage, int32_t nCols, int32_t nRows,
                               int32_t anchorX, int32_t anchorY);
/** The middle sample of each window, of `nCols` * `nRows` in order. Depths, checks and statuses are those of
 *  orvMaxFilter(). If a side of the window is even, nothing is written, and the result is 0.
 *  @param srcImage source @param dstImage destination, another header @param nCols columns, odd @param nRows rows, odd
 *  @param anchorX column of the anchor @param anchorY row of the anchor @return 0 or the reported status */
ORV_API OrvStatus orvMedianFilter(const OrvImage *srcImage, OrvImage *dstImage, int32_t nCols, int32_t nRows,
                                  int32_t anchorX, int32_t anchorY);

/**
 * The vector median: the pixel of the window that is nearest to all others. A pixel has three channels and may have an
 * alpha channel. With the pixels numbered row by row from the top left,
 *
 *     D(i) = sum over j of |R(i) - R(j)| + |G(i) - G(j)| + |B(i) - B(j)|
 *
 * and the result is the first i with the smallest D(i) (Astola, Haavisto and Neuvo, "Vector median filters", 1990).
 * Depths 8U and 16S. An alpha channel is neither computed nor written. The images may differ in data order. Source and
 * destination must be two headers, which may share a raster.
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for an anchor outside the window, its column first;
 * - #ORV_STATUS_BAD_ARGUMENT for one header for both images, different depths, depth 1U or 32S, different numbers of
 *   channels, less than three or more than four of them;
 * - #ORV_STATUS_BAD_ARGUMENT for a source of three channels with an alpha channel, or of four without one;
 * - #ORV_STATUS_BAD_ARGUMENT for a channel of interest, that of the source first;
 * - #ORV_STATUS_BAD_ARGUMENT for sides other than 3 and 5, or of different lengths;
 * - #ORV_STATUS_NOT_IMPLEMENTED for an anchor that is not the centre, a tiled image or any other depth;
 * - #ORV_STATUS_NO_MEMORY.
 * @param srcImage  source
 * @param dstImage  destination, another header
 * @param nCols     columns of the window, 3 or 5
 * @param nRows     rows of the window, the same number
 * @param anchorX   column of the anchor, `nCols` / 2
 * @param anchorY   row of the anchor, `nRows` / 2
 * @return          0 or the reported status
 */
ORV_API OrvStatus orvColorMedianFilter(const OrvImage *srcImage, OrvImage *dstImage, int32_t nCols, int32_t nRows,
                                       int32_t anchorX, int32_t anchorY);

/**
 * The mean of each window. Depths 8U, 16S and 32F. In place or not. The cost of a pixel does not depend on the window.
 *
 * With N = `nCols` * `nRows`, S the sum of the window, and f = 1 / N as a float:
 * - 8U, N <= 8100: (m * S) >> s, where m / 2^s is 1 / N to 12 bits, rounded up. With v = f * 4294967295 as an integer
 *   and n the number of zero bits above its highest one, m = (v >> (20 - n)) + 1 and s = n + 12.
 * - 8U, N > 8100: S * f in floats, truncated.
 * - 16S: the samples plus 32768 are summed up. The result is S * f + 0.000009 in floats, truncated, minus 32768. So
 *   means are rounded down. S has 32 bits: windows of more than 32768 pixels may wrap around.
 * - 32F: S * f. Sums run down each column and along each row, from the first row and the first pixel of the rectangle:
 *   the difference of the sample that enters and the sample that leaves is added. In long rows and columns rounding
 *   errors add up.
 *
 * The images may differ in data order, and in the number of channels: as many are computed as both have.
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT if depths differ, for a negative side, a negative anchor, or an anchor outside the window;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or any other depth;
 * - #ORV_STATUS_NO_MEMORY.
 *
 * A window of 1 x 1 makes the call one of orvCopy(), before the test for tiles.
 * @param srcImage  source
 * @param dstImage  destination
 * @param nCols     columns of the window
 * @param nRows     rows of the window
 * @param anchorX   column of the anchor, 0 to `nCols` - 1
 * @param anchorY   row of the anchor, 0 to `nRows` - 1
 * @return          0 or the reported status
 */
ORV_API OrvStatus orvBlur(const OrvImage *srcImage, OrvImage *dstImage, int32_t nCols, int32_t nRows, int32_t anchorX,
                          int32_t anchorY);

/** The filters of orvFixedFilter(), with the rows of their coefficients. The first coefficient is applied to the pixel
 *  above and to the left. */
enum {
    ORV_FILTER_PREWITT_V = 0, /**< 1 0 -1 three times: edges that become darker to the right. */
    ORV_FILTER_PREWITT_H = 1, /**< -1 -1 -1, 0 0 0, 1 1 1: edges that become brighter downwards. */
    ORV_FILTER_SOBEL_V = 2,   /**< 1 0 -1, 2 0 -2, 1 0 -1. */
    ORV_FILTER_SOBEL_H = 3,   /**< -1 -2 -1, 0 0 0, 1 2 1. */
    ORV_FILTER_LAPLACE_3 = 4, /**< 8 in the centre, -1 elsewhere. */
    ORV_FILTER_LAPLACE_5 = 5, /**< -1 -3 -4 -3 -1, -3 0 6 0 -3, -4 6 20 6 -4, and the first two rows reversed. */
    ORV_FILTER_GAUSS_3 = 6,   /**< 1 2 1, 2 4 2, 1 2 1, divided by 16. */
    ORV_FILTER_GAUSS_5 = 7,   /**< 2 7 12 7 2, 7 31 52 31 7, 12 52 127 52 12, and the first two rows reversed,
                                   divided by 571. */
    ORV_FILTER_HIPASS_3 = 8,  /**< The same as #ORV_FILTER_LAPLACE_3. */
    ORV_FILTER_HIPASS_5 = 9,  /**< 24 in the centre of 5 x 5, -1 elsewhere. */
    ORV_FILTER_SHARPEN_3 = 10 /**< 16 in the centre of 3 x 3, -1 elsewhere, divided by 8. */
};

/**
 * One of eleven filters with fixed coefficients. Depths 8U, 16S and 32F. Unlike in a convolution, the coefficients are
 * not turned. Source and destination must be two headers, which may share a raster.
 *
 * 8U and 16S: sums are exact. Quotients by 8 and 16 are rounded to nearest, ties to even, and quotients by 571 to
 * nearest; at 16S a quotient by 571 may be larger by 1. Results saturate. 32F: sums and weights are floats; the last
 * bits depend on the order of the sums, which is the same on all processors.
 *
 * The result of a refused call is #ORV_STATUS_BAD_ARGUMENT, whatever was reported, but for the two cases below.
 * Reported are, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for one header for both images, or if depths, numbers of channels, alpha channels or data
 *   orders differ;
 * - #ORV_STATUS_BAD_CHANNELS, which is returned too, if the numbers of channels to process differ;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or any other depth.
 *
 * #ORV_STATUS_NO_MEMORY is returned and not reported. A number that names no filter is no failure: the result is 0, and
 * nothing is written.
 * @param srcImage  source
 * @param dstImage  destination, another header
 * @param filter    an `ORV_FILTER_...` value
 * @return          0 or a status
 */
ORV_API OrvStatus orvFixedFilter(const OrvImage *srcImage, OrvImage *dstImage, int32_t filter);
/** @} */

/** @defgroup morphology Morphology
 *  Dilation and erosion by a square of 3 x 3, any number of times. Depth 8U, each channel by itself. In place or not.
 *
 *  All functions serve pixel and plane order, 1, 3 and 4 channels, rectangles and masks. Borders and channels of
 *  interest follow @ref neighbourhood "Neighbourhoods and borders". Of four channels, the destination's alpha channel
 *  is not written.
 *
 *  One iteration gives each pixel the largest or smallest sample of the pixel and its eight neighbours, as they were
 *  before. All iterations of a call see the same surroundings: outside the rectangle the image and its border stay as
 *  they were at the start. So two iterations of one call may differ from two calls.
 *
 *  Statuses of all functions, in this order:
 *  - the header status;
 *  - #ORV_STATUS_BAD_ARGUMENT for `nIterations` below 1, for depths other than 1U, 8U and 16U, and if depths, data
 *    orders or origins differ;
 *  - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 *  - #ORV_STATUS_BAD_ARGUMENT if alpha channels differ, or if one is not the last channel;
 *  - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image, or depth 1U or 16U;
 *  - #ORV_STATUS_NO_MEMORY.
 *
 *  The time of a call grows with the number of iterations up to the longer side of the rectangle. Further ones change
 *  nothing and take no time. A call with at least a quarter as many iterations as rows copies the whole rectangle at
 *  once, others copy it strip by strip.
 *  @{ */

/** Dilation: the largest samples.
 *  @param srcImage source @param dstImage destination @param nIterations number of iterations
 *  @return 0 or the reported status */
ORV_API OrvStatus orvDilate(const OrvImage *srcImage, OrvImage *dstImage, int32_t nIterations);
/** Erosion: the smallest samples.
 *  @param srcImage source @param dstImage destination @param nIterations number of iterations
 *  @return 0 or the reported status */
ORV_API OrvStatus orvErode(const OrvImage *srcImage, OrvImage *dstImage, int32_t nIterations);
/** Opening: `nIterations` erosions, then as many dilations.
 *  @param srcImage source @param dstImage destination @param nIterations number of iterations of each kind
 *  @return 0 or the reported status */
ORV_API OrvStatus orvOpen(const OrvImage *srcImage, OrvImage *dstImage, int32_t nIterations);
/** Closing: `nIterations` dilations, then as many erosions.
 *  @param srcImage source @param dstImage destination @param nIterations number of iterations of each kind
 *  @return 0 or the reported status */
ORV_API OrvStatus orvClose(const OrvImage *srcImage, OrvImage *dstImage, int32_t nIterations);
/** @} */

/** @defgroup geometry Geometry
 *  @{ */

/**
 * Flips the common rectangle of width W and height H:
 * - axis 0: dst(x, y) = src(x, H-1-y), which reverses the rows;
 * - axis 1: dst(x, y) = src(W-1-x, y), which reverses the columns;
 * - axis -1: dst(x, y) = src(W-1-x, H-1-y), which reverses both.
 *
 * Samples are moved bit for bit. Depths 8U, 8S, 16U, 16S, 32S, 32F. Pixel and plane order, 1, 3 and 4 channels,
 * rectangles, channels of interest and masks.
 *
 * The data orders may differ if one of the images has one channel. A channel of a source in plane order is then read
 * from its plane. One channel of several in pixel order, with a destination in plane order, is read as if it were a
 * plane: W consecutive samples per row.
 *
 * **In place** means that both headers have the same `imageData`. The rectangle of the destination is then flipped
 * within itself, even if the source has another rectangle. With a mask, or with one channel of several in pixel order,
 * the pixels of the source's own rectangle are read instead. A whole plane is then read before any of it is written.
 * With a mask, source and destination must not be the same header.
 *
 * Statuses, to be read by orvGetErrStatus() after the call:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for one header twice with a mask, different depths, or an axis other than -1, 0 and 1. The
 *   same for depth 1U with an alpha channel, for different data orders if both images have several channels, and for
 *   different origins;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U;
 * - #ORV_STATUS_NO_MEMORY.
 *
 * After a failure nothing is written.
 * @param srcImage  source
 * @param dstImage  destination
 * @param flipAxis  0, 1 or -1
 */
ORV_API void orvMirror(const OrvImage *srcImage, OrvImage *dstImage, int32_t flipAxis);

/** Methods of orvResize(). */
enum {
    ORV_INTERPOLATE_NEAREST = 0, /**< The nearest pixel. */
    ORV_INTERPOLATE_LINEAR = 1,  /**< Between two pixels in each direction. */
    ORV_INTERPOLATE_CUBIC = 2,   /**< Through four pixels in each direction. */
    ORV_INTERPOLATE_SUPER = 3    /**< The mean of the box that a pixel covers; only to make images smaller. */
};

/**
 * Scales the rectangle of the source by xDst / xSrc along rows and by yDst / ySrc along columns, and writes the result
 * from the top left corner of the destination's rectangle on. With w as the width of the source's rectangle and
 * f = xDst / xSrc, the result has n = w * f columns, truncated, but at most as many as the destination's rectangle;
 * less than 1 counts as 1, unless w * f < 0.5, where nothing is written. Rows likewise. Further pixels of the
 * destination stay.
 *
 * Depths 8U, 16U and 32F. Pixel and plane order, 1, 3 and 4 channels (any number in plane order), rectangles, channels
 * of interest and masks. Masks, of either image, select pixels of the destination. No image is copied: a call needs
 * tables of a row and a column of the result, and a few rows of it, or one row of the source.
 *
 * Column x of the result lies at the position p(x) of the source, counted from its rectangle. Steps are added up in
 * double precision.
 * - **Nearest**: p(x) = (x + 1/2) / f. The result is the pixel trunc(p).
 * - **Linear**: p(x) = x * (w - 1) / (w * f - 1), so the last column of the whole result is the last one of the source.
 *   With i = trunc(p) and t = p - i it is s(i) * (1 - t) + s(i + 1) * t. Integers take t as a multiple of 1 / 16384,
 *   truncated, and round to nearest, ties up, after the row and again after the column. 32F is computed in floats.
 * - **Cubic**: the same positions, and the polynomial through s(i - 1), s(i), s(i + 1) and s(i + 2), in floats and
 *   in Newton's form. At the ends of the image the four pixels are those nearest to the end. Integers are rounded to
 *   nearest, ties up, and saturate.
 * - **Super-sampling**: the mean of the pixels of the box from x / f to (x + 1) / f, in which pixels count by the part
 *   that is covered. Integers are rounded to nearest, ties up; their sums are exact as long as w, h and the factors are
 *   so small that 65535 * (xSrc / g) * (ySrc / g) < 2^52, with g as the common divisor of each fraction, and double
 *   otherwise. Means of 32F are computed in double. A box that passes the end of the rectangle has what lies inside. A
 *   factor above 1 writes nothing, and is no failure.
 *
 * 1e-7 is added to positions and counts before they are truncated. Results of the first three methods may depend on
 * pixels beside the source's rectangle, but never outside the image. A source's rectangle beside its image is no
 * failure: nothing is written. Images less than 4 pixels wide or high are scaled by the linear method instead of the
 * cubic one, and less than 2 by the nearest pixel.
 *
 * If source and destination overlap, the call is safe and the result unspecified.
 *
 * Statuses, to be read by orvGetErrStatus() after the call:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for another method, and if depths, origins or data orders differ;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_BAD_ARGUMENT for depths 8S, 16S and 32S, and for a number of a factor below 1;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or depth 1U;
 * - #ORV_STATUS_NO_MEMORY.
 * @param srcImage     source
 * @param dstImage     destination
 * @param xDst         numerator of the factor along rows
 * @param xSrc         its denominator
 * @param yDst         numerator of the factor along columns
 * @param ySrc         its denominator
 * @param interpolate  an `ORV_INTERPOLATE_...` value
 */
ORV_API void orvResize(const OrvImage *srcImage, OrvImage *dstImage, int32_t xDst, int32_t xSrc, int32_t yDst,
                       int32_t ySrc, int32_t interpolate);
/** @} */

/** @defgroup processor Choice of the build
 *  Every kernel exists in seven builds, one per instruction set. Until orvUseBuild() or krnClassify() is called, the
 *  plain build runs. Specified results do not depend on the build, except for the payload of a not-a-number in a sum or
 *  product of several.
 *
 *  Choose the build once, at the start of the program, before any other call of the library:
 *  @code
 *  int32_t build = orvUseBuild(ORV_BUILD_BEST);
 *  printf("This processor runs the %s build.\n", orvBuildName(build));
 *  @endcode
 *  The choice holds for the whole process. It must not change while another thread is in a call of the library.
 *  @{ */

/** Builds, from the narrowest to the widest. Each includes the instructions of those before it. */
enum {
    ORV_BUILD_PLAIN = 0, /**< The base instructions of the target. */
    ORV_BUILD_SSE = 1,   /**< MMX and SSE. */
    ORV_BUILD_SSE2 = 2,  /**< SSE2. */
    ORV_BUILD_SSE3 = 3,  /**< SSE3. */
    ORV_BUILD_SSSE3 = 4, /**< SSSE3. */
    ORV_BUILD_SSE41 = 5, /**< SSE4.1. */
    ORV_BUILD_AVX2 = 6,  /**< AVX2, whose vectors have 256 bits. */
    ORV_BUILD_BEST = 6   /**< The widest build of this version. */
};

/**
 * Chooses the widest build that the processor and the operating system support, but no wider than `atMost`. Call it at
 * the start of the program, before any other call of the library.
 * @param atMost  an `ORV_BUILD_...` value. A value below 0 counts as #ORV_BUILD_PLAIN, a value above #ORV_BUILD_BEST as
 *                #ORV_BUILD_BEST.
 * @return        the chosen build, an `ORV_BUILD_...` value
 */
ORV_API int32_t orvUseBuild(int32_t atMost);

/** @param build an `ORV_BUILD_...` value
 *  @return its constant name: "plain", "SSE", "SSE2", "SSE3", "SSSE3", "SSE4.1" or "AVX2"; "unknown" for any other
 *  value */
ORV_API const char *orvBuildName(int32_t build);

/**
 * Chooses one of the builds 0 to 5 from the classification code of the processor, as krnCpuCode() returns it. It never
 * chooses AVX2; use orvUseBuild() instead. Call it at most once, before any other call of the library.
 * @return 0. Or 20 if the processor has no `cpuid`, or for vendors whose models the library does not know; CPU feature
 * flags then choose the build.
 */
ORV_API int32_t krnClassify(void);

/** @return the classification code of the processor: that of its model if it has one, otherwise that of its features. 0
 *  for a processor without either. */
ORV_API int32_t krnCpuCode(void);
/** @} */

/** @defgroup histograms Histograms, look-up tables and thresholds
 *  Functions that look at the level of each sample.
 *
 *  orvComputeHisto(), orvContrastStretch() and orvHistoEqualize() share these rules. Depth 8U. Pixel order with one,
 *  three or four channels, plane order with any number; rectangles, channels of interest and masks. They take an array
 *  of pointers to records, one a channel, of which channel c, counted from 0, uses `lut[c]`:
 *  - with a `coi`, `lut[coi - 1]` alone;
 *  - of four channels with a non-zero `alphaChannel` and without a `roi`, `lut[0]` to `lut[2]`;
 *  - otherwise one for each of `nChannels`. An alpha channel of a header with a `roi` needs a valid record too,
 *    though it is neither counted nor changed.
 *
 *  The records follow the source. A channel of the destination without a record is copied. Several
 *  channels may have one record, and records may share arrays. The library stays within them, but their counts are then
 *  unspecified. Tables are made from the records as they were passed.
 *
 *  The first checks report a failure and let the call go on. Then a negative stored status ends it, **also one of an
 *  earlier call**: clear it by orvSetErrStatus() first. Statuses, in this order:
 *  - the header status, which ends the call at once;
 *  - #ORV_STATUS_BAD_ARGUMENT for a null `lut`, and for a signed or float depth; for orvContrastStretch() also for any
 *    depth but 8U;
 *  - the stored status, if it is negative, without a report;
 *  - #ORV_STATUS_BAD_ARGUMENT if depths or data orders differ, #ORV_STATUS_BAD_CHANNELS if the numbers of channels to
 *    process differ;
 *  - depth 1U or 16U, for orvComputeHisto() and orvHistoEqualize(): no failure. Nothing is done, and the result is the
 *    first channel to process, counted from 0;
 *  - record by record, #ORV_STATUS_BAD_ARGUMENT for less than two keys, a negative first key, a key above the next one,
 *    or a last key above 256; #ORV_STATUS_NULL_POINTER for a null record or `key`;
 *  - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image;
 *  - #ORV_STATUS_NULL_POINTER for a null `value`, or a null `factor` that would be read;
 *  - #ORV_STATUS_NO_MEMORY.
 *
 *  If the common width or height is 0 and no memory is needed, the result is -6. It is neither stored nor reported.
 *
 *  A histogram of quarters, for an image of one channel:
 *  @code
 *  int32_t keys[] = {0, 64, 128, 192, 256}, counts[4];
 *  OrvLUT quarters = {5, keys, counts, NULL, 0}, *records[] = {&quarters};
 *  OrvStatus status = orvComputeHisto(image, records);
 *  @endcode
 *  @{ */

/** Intervals of levels, and a number for each of them. The application owns the record and its arrays. */
typedef struct OrvLUT {
    int32_t num;             /**< Number of keys, at least 2. There is one interval less. */
    int32_t *key;            /**< Bounds, from 0 to 256, not descending: interval i has the levels from `key[i]` to
                                  `key[i + 1]` - 1. */
    int32_t *value;          /**< One for each interval: a count, or an output level. */
    int32_t *factor;         /**< One for each interval: output levels per level. Only orvContrastStretch() reads it, if
                                  `interpolateType` is not 0. */
    int32_t interpolateType; /**< Whether orvContrastStretch() interpolates in the intervals: 0 for no. */
} OrvLUT;

/**
 * Counts the samples of each interval: `value[i]` becomes the number of samples of the channel in interval i. Samples
 * outside all intervals are not counted. Under a mask, selected pixels are counted. Counts wrap around at 32 bits.
 *
 * One case differs: if `key[0]` and `key[1]` are both 0 and there is a mask, `value[0]` is minus the number of pixels
 * that are not selected, which the first interval with level 0 counts.
 * @param srcImage  the image, which is only read
 * @param lut       records, of which `value` is written
 * @return          0 or a status, see above
 */
ORV_API OrvStatus orvComputeHisto(const OrvImage *srcImage, OrvLUT *const *lut);

/**
 * Maps the levels of each channel through a table: a level x of interval i becomes
 * - (`value[i]` + (x - `key[i]`) * `factor[i]`) modulo 256 if `interpolateType` is not 0,
 * - `value[i]` modulo 256 otherwise.
 *
 * Levels outside all intervals stay. Level 255 stays in any case. Where two keys are equal, the intervals from the
 * second one on are not reached: the interval before them goes on to the end. In place or not.
 * @param srcImage  source
 * @param dstImage  destination
 * @param lut       records, which are only read
 * @return          0 or a status, see above
 */
ORV_API OrvStatus orvContrastStretch(const OrvImage *srcImage, OrvImage *dstImage, OrvLUT *const *lut);

/**
 * Equalises each channel by the counts in its record, which orvComputeHisto() makes, and counts the result. The count
 * of an interval is shared by its levels; the last one gets the remainder too. With S(x) as the sum of the counts of
 * the levels up to x, a level x becomes S(x) * 255 / S(255), truncated, but level 255 stays. In place or not.
 *
 * Sums and the product have 32 bits and wrap around: an image of more than about 8.4 million pixels is not equalised
 * well. Results beyond 0 to 255 saturate. If all counts are 0, all levels but 255 become 0.
 *
 * On return, `value` has the counts of the result over the same keys. Under a mask, the results of all pixels of the
 * rectangle are counted, also of those that are not written; if `key[0]` is 0, `value[0]` is lowered by the number of
 * pixels that are not selected.
 * @param srcImage  source
 * @param dstImage  destination
 * @param lut       records, of which `value` is read and written
 * @return          0 or a status, see above. After a failure neither the destination nor a record has changed.
 */
ORV_API OrvStatus orvHistoEqualize(const OrvImage *srcImage, OrvImage *dstImage, OrvLUT *const *lut);

/**
 * Makes an image of two levels: dst = src < `Threshold` ? low : high, where low and high are the lowest and the highest
 * sample of the destination's depth. From 8U to 8U, 8S, 16U, 16S and 32S; from 16S to 16S, 8U and 16U. Two pairs of
 * depths differ:
 * - 8U to 8S: with a `Threshold` above 127, samples from 127 to `Threshold` - 1 keep their byte;
 * - 16S to 16U: samples from -1 to `Threshold` - 1 keep their bits, so only those below -1 become 0.
 *
 * Pixel and plane order, 1, 3 and 4 channels, rectangles, channels of interest and masks. In place if the depths are
 * equal. The data orders may differ as they may for orvMirror().
 *
 * Statuses, in this order:
 * - the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for a source or a destination of depth 32F, a source of depth 1U, different data orders if
 *   both images have several channels, and different origins;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_BAD_ARGUMENT for a mask whose origin is not that of its image, and for a `Threshold` outside the range
 *   of the source's depth;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image, or a source of depth 8S, 16U or 32S;
 * - #ORV_STATUS_NO_MEMORY.
 *
 * If the only channel of an image is an alpha channel and it has no `coi`, nothing is done, and the result is
 * `Threshold`; the tests for tiles and for the depths that are not served come later. Another depth of the destination
 * is no failure: nothing is written, and the result is 0.
 * @param srcImage   source
 * @param dstImage   destination
 * @param Threshold  the lowest sample that becomes high
 * @return           0 or the reported status
 */
ORV_API OrvStatus orvThreshold(const OrvImage *srcImage, OrvImage *dstImage, int32_t Threshold);
/** @} */

/** @defgroup transforms Transforms
 *  Fourier and cosine transforms of images of any size.
 *
 *  They share these rules. Source and destination are different images. Rectangles, channels of interest, pixel and
 *  plane order. Masks have no effect. If the rectangles have no common pixel, or an image has no raster, nothing is
 *  done and nothing is reported. Headers are not checked beyond the tests listed.
 *
 *  Each channel is transformed for itself, in 32-bit floats. Results in integer depths are rounded to nearest with ties
 *  to even, and saturate. Of four channels the alpha channel of the destination is not transformed. A sample that is
 *  not finite spoils its channel only.
 *
 *  If memory is exhausted, the destination stays as it is. That is not reported.
 *
 *  A null image is reported, and the call then ends if the stored status is negative, be it that of an earlier call.
 *  Without a null image a stored status ends the call in silence, too.
 *  @{ */

/** Flags of orvRealFft2D() and orvCcsFft2D(). Bits that are not listed have no effect. */
enum {
    ORV_FFT_FORWARD = 1,  /**< Forward. */
    ORV_FFT_INVERSE = 2,  /**< Inverse. */
    ORV_FFT_RELEASE = 128 /**< The call returns at once. No tables are kept between calls. */
};

/**
 * Transforms real pixels into their spectrum: with w x h as the common size of the rectangles,
 *
 *     F(k, l) = sum of src(x, y) * exp(-2 * pi * i * (k * x / w + l * y / h))   over all x below w and y below h
 *
 * The sum is not divided. It is stored in packed form, which has as many samples as the image has pixels. A packed row
 * holds Re 0, Re 1, Im 1, Re 2, Im 2 and so on; if its length is even, it ends with the real part of the middle.
 *
 * | columns                       | content                                                          |
 * |-------------------------------|------------------------------------------------------------------|
 * | 0                             | F(0, l), packed down the column                                  |
 * | 2k - 1 and 2k, 0 < k < w / 2  | the real and the imaginary parts of F(k, l), in row l            |
 * | w - 1, if w is even           | F(w / 2, l), packed down the column                              |
 *
 * Depths: from 8U to 32S or 32F, from 16S to 16S, from 32F to 32F. The last pair only in plane order, or if both images
 * have one channel. In pixel order, a call with another number of channels than 1, 3 and 4 does nothing.
 *
 * Statuses, in this order:
 * - #ORV_STATUS_BAD_ARGUMENT if `flags` have neither #ORV_FFT_FORWARD nor #ORV_FFT_INVERSE, or both; or both 16 and 32;
 * - #ORV_STATUS_BAD_ARGUMENT for a null image;
 * - #ORV_STATUS_BAD_ARGUMENT if both images are the same, one has depth 1U, or their data orders differ;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_NOT_IMPLEMENTED without #ORV_FFT_FORWARD, and for other depths.
 * @param srcImage  source
 * @param dstImage  destination
 * @param flags     #ORV_FFT_FORWARD
 */
ORV_API void orvRealFft2D(const OrvImage *srcImage, OrvImage *dstImage, int32_t flags);

/**
 * Transforms a spectrum in packed form, as orvRealFft2D() stores it, back into real pixels. The result is divided by
 * the number of pixels, so that the inverse of a forward transform is the image.
 *
 * Depths: from 32S or 32F to 8U, from 16S to 16S, from 32F to 32F. The last pair only in plane order, or if both images
 * have one channel. Another depth of the destination is no failure: nothing is done. In pixel order, a call with
 * another number of channels than 1, 3 and 4 does nothing.
 *
 * Statuses: as for orvRealFft2D(), but the last test is #ORV_STATUS_NOT_IMPLEMENTED without #ORV_FFT_INVERSE, and for
 * other depths of the source.
 * @param srcImage  the spectrum
 * @param dstImage  destination
 * @param flags     #ORV_FFT_INVERSE
 */
ORV_API void orvCcsFft2D(const OrvImage *srcImage, OrvImage *dstImage, int32_t flags);

/** Flags of orvDCT2D(). Bits that are not listed have no effect. */
enum {
    ORV_DCT_FORWARD = 1, /**< Forward. */
    ORV_DCT_INVERSE = 2, /**< Inverse. */
    ORV_DCT_RELEASE = 8  /**< The call returns at once. No tables are kept between calls. */
};

/**
 * The orthonormal cosine transform, or its inverse. With n as the width or the height of the rectangles, a row and then
 * a column becomes
 *
 *     X(0) = sum of x(i) / sqrt(n)
 *     X(k) = sum of x(i) * cos((2 * i + 1) * k * pi / (2 * n)) * sqrt(2 / n)
 *
 * The inverse is the transpose. A constant image of value c has c * sqrt(w * h) at the first place and 0 elsewhere.
 *
 * Depths: forward from 8U to 32F or 16S, inverse from 32F or 16S to 8U.
 *
 * **Blocks of 8 x 8.** From 8U to 16S and back, images of 8 x 8 pixels are transformed in integers. Rectangles must be
 * whole images for that. Results are within one unit of the definition. All other transforms are made in floats.
 *
 * The forward transform starts with rows. With s(i) and d(i) as the sums and the differences of x(i) and x(7 - i),
 * and with >> 12 as a division by 4096 that rounds ties up:
 *
 *     e0 = s0 + s3, e1 = s1 + s2, e2 = s1 - s2, e3 = s0 - s3
 *     a = 8 * (d1 + d2), b = 8 * (d1 - d2), c = 46341 * d0 >> 12, d = 46341 * d3 >> 12
 *     p = b + d, q = a + c, r = c - a, t = d - b
 *     X(0) = 8 * (e0 + e1)
 *     X(1) = 3218 * q + 799 * (p + q) >> 12
 *     X(2) = 25080 * e3 + 17734 * (e2 + e3) >> 12
 *     X(3) = -5681 * t + 3406 * (r + t) >> 12
 *     X(4) = 8 * (e0 - e1)
 *     X(5) = -1130 * r + 3406 * (r + t) >> 12
 *     X(6) = -60547 * e2 + 17734 * (e2 + e3) >> 12
 *     X(7) = -4816 * p + 799 * (p + q) >> 12
 *
 * Columns, and both passes of the inverse, are sums of products, divided by a power of 2 with ties up. Their factors
 * are c(i, k) = cos((2 * i + 1) * k * pi / 16) / 2 (divided by sqrt(2) for k = 0), times sqrt(2^31) and rounded: 22725,
 * 21407, 19266, 16384, 12873, 8867 and 4520.
 *
 *     forward, columns:  X(k) = sum of x(i) * c(i, k) >> 20
 *     inverse, columns:  x(i) = sum of X(k) * c(i, k) >> 13
 *     inverse, rows:     x(i) = sum of X(k) * c(i, k) >> 18, saturated to 0 and 255
 *
 * If the magnitudes of all coefficients add up to more than 11584, factors and shifts of the inverse have 16 bits more.
 *
 * Statuses, in this order:
 * - #ORV_STATUS_BAD_ARGUMENT if `flags` have neither #ORV_DCT_FORWARD nor #ORV_DCT_INVERSE, or both;
 * - #ORV_STATUS_BAD_ARGUMENT for a null image;
 * - #ORV_STATUS_BAD_ARGUMENT if both images are the same;
 * - #ORV_STATUS_NOT_IMPLEMENTED for depth 1U;
 * - #ORV_STATUS_BAD_ARGUMENT if the data orders differ;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels to process differ;
 * - #ORV_STATUS_BAD_ARGUMENT if the widths of the rectangles differ, and then their heights;
 * - #ORV_STATUS_NOT_IMPLEMENTED if the coefficients have another depth than 32F and 16S.
 *
 * If the pixels have another depth than 8U, nothing is done, and nothing is reported.
 * @param src    source
 * @param dst    destination
 * @param flags  #ORV_DCT_FORWARD or #ORV_DCT_INVERSE
 */
ORV_API void orvDCT2D(const OrvImage *src, OrvImage *dst, int32_t flags);
/** @} */

/** @defgroup measures Measures
 *  Functions that only read an image.
 *  @{ */

/**
 * Finds the smallest and the largest sample of a float image: min = min src(x, y) and max = max src(x, y), over all
 * pixels of the rectangle and all channels to process. Depth 32F. Pixel order with 1, 3 and 4 channels, or any number
 * and a `coi`; plane order with any number. Rectangles. An alpha channel is not searched: of four channels with a
 * non-zero `alphaChannel` and no `coi`, three are. The mask of the image must be valid but is not used.
 *
 * Both results start with the first sample. A further sample replaces a result if it is smaller or larger in a
 * comparison of 32-bit floats. A comparison with a not-a-number is false. So a not-a-number is ignored unless it is the
 * first sample read, in which case both results are that sample.
 *
 * Statuses, in this order:
 * - the header status; the call then returns #ORV_STATUS_BAD_ARGUMENT, and orvGetErrStatus() the header status;
 * - #ORV_STATUS_BAD_ARGUMENT for null `min` or `max`;
 * - #ORV_STATUS_BAD_ARGUMENT for any other depth;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image;
 * - #ORV_STATUS_NO_MEMORY, only for a `coi` in pixel order with 2 or more than 4 channels.
 *
 * An image of one channel which is an alpha channel, without a `coi`, has nothing to search. The call then returns 0
 * before it tests for tiles, and `min` and `max` keep their values. They also keep their values
 * - after a failure;
 * - if the rectangle does not intersect the image;
 * - in pixel order with another number of channels than 1, 3 and 4, and no `coi`.
 *
 * @code
 * float low = 0, high = 0;
 * if (orvMinMaxFP(image, &low, &high) == ORV_STATUS_OK)
 *     printf("samples from %g to %g\n", low, high);
 * @endcode
 * @param srcImage  the image
 * @param min       receives the smallest sample
 * @param max       receives the largest sample
 * @return          0, #ORV_STATUS_BAD_ARGUMENT or #ORV_STATUS_NOT_IMPLEMENTED, whatever the report handler returns; for
 *                  exhausted memory what the report handler returns
 */
ORV_API OrvStatus orvMinMaxFP(const OrvImage *srcImage, float *min, float *max);

/** Types of orvNorm(). */
enum {
    ORV_NORM_INF = 1,          /**< The largest magnitude. */
    ORV_NORM_L1 = 2,           /**< The sum of magnitudes. */
    ORV_NORM_L2 = 4,           /**< The square root of the sum of squares. */
    ORV_NORM_RELATIVE = 8,     /**< Added to one of these: divided by the norm of the second image. */
    ORV_NORM_RELATIVE_INF = 9, /**< #ORV_NORM_RELATIVE + #ORV_NORM_INF. */
    ORV_NORM_RELATIVE_L1 = 10, /**< #ORV_NORM_RELATIVE + #ORV_NORM_L1. */
    ORV_NORM_RELATIVE_L2 = 12  /**< #ORV_NORM_RELATIVE + #ORV_NORM_L2. */
};

/**
 * Measures an image, or the difference of two. With a and b as the samples of the common rectangle:
 *
 * | `normType`             | without `srcImageB` | with `srcImageB`                      |
 * |------------------------|---------------------|---------------------------------------|
 * | #ORV_NORM_INF          | max abs(a)          | max abs(a - b)                        |
 * | #ORV_NORM_L1           | sum of abs(a)       | sum of abs(a - b)                     |
 * | #ORV_NORM_L2           | sqrt(sum of a^2)    | sqrt(sum of (a - b)^2)                |
 * | #ORV_NORM_RELATIVE_INF | not allowed         | max abs(a - b) / max abs(b)           |
 * | #ORV_NORM_RELATIVE_L1  | not allowed         | sum of abs(a - b) / sum of abs(b)     |
 * | #ORV_NORM_RELATIVE_L2  | not allowed         | sqrt(sum of (a - b)^2 / sum of b^2)   |
 *
 * Depths 8U, 16S and 32F. Pixel order with 1, 3 and 4 channels, or any number and a `coi`; plane order with any number.
 * Rectangles. Only pixels count that the masks select. Of four channels, the alpha channel of `srcImageA` does not
 * count. A call with another number of channels in pixel order returns 0.
 *
 * **Channels** are measured one by one. The norm of all is the largest, the sum, or the square root of the sum of
 * squares. A relative norm of several channels in pixel order is the quotient of the norms of all channels, without a
 * guard: 0 / 0 gives a not-a-number. In plane order it is made of the relative norms of the channels.
 *
 * **Denominators** of one channel are guarded: if the largest b is 0, or the sum of squares is at most
 * 2.2250738585072014e-308, the numerator's norm is the result. A sum of 0 is not guarded.
 *
 * **Exactness.** Sums are double and the same on all builds, to the last bit. Sums of 8U, and sums of magnitudes of
 * 16S, are exact. So are sums of squares of 16S up to 2^53; beyond it each row, or each 32768 pixels of a longer row,
 * is summed exactly and then added. Differences of 32F are rounded to floats, as orvSubtract() rounds them, and their
 * squares are exact. The relative error of sums of 32F is below (w / 16 + h + 8) * 2^-53 for w x h pixels, with w at
 * most 32768 for each row. Not-a-numbers do not count in maxima; sums with one are not-a-number.
 *
 * Statuses, in this order. Those marked * end the call at once. After the others it goes on to further checks if a
 * report handler has set a status that is not negative, but measures nothing.
 * - the header status of `srcImageA` *;
 * - #ORV_STATUS_BAD_ORDER if the data orders differ;
 * - the header status of `srcImageB` *, then #ORV_STATUS_BAD_ARGUMENT *, if the depths differ;
 * - #ORV_STATUS_BAD_ARGUMENT for an unknown `normType`, and for a relative one without `srcImageB`;
 * - the header status of `srcImageB` *;
 * - #ORV_STATUS_BAD_CHANNELS if the numbers of channels differ;
 * - #ORV_STATUS_BAD_COI for a `coi` of one image only;
 * - #ORV_STATUS_NOT_IMPLEMENTED for a tiled image or any other depth;
 * - #ORV_STATUS_NO_MEMORY.
 *
 * @code
 * orvSetErrStatus(ORV_STATUS_OK);
 * double difference = orvNorm(before, after, ORV_NORM_L2);
 * if (orvGetErrStatus() == ORV_STATUS_OK) printf("%g\n", difference);
 * @endcode
 * @param srcImageA  the image
 * @param srcImageB  the second image, or null
 * @param normType   an `ORV_NORM_...` value
 * @return           the norm. After a failure 0, which a norm may be too: orvGetErrStatus() tells.
 */
ORV_API double orvNorm(const OrvImage *srcImageA, const OrvImage *srcImageB, int32_t normType);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
