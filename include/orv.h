/*
 * Copyright (c) 2026 The orv authors
 * SPDX-License-Identifier: Apache-2.0
 */
#ifndef ORV_H
#define ORV_H

#include <stdint.h>

/**
 * @file orv.h
 * @brief Image-processing primitives on rasters that the application describes.
 *
 * An image is an ::OrvImage header over a raster of samples. A call works on the whole image, or, where the header says
 * so, on a rectangle and a channel (its #OrvImage::roi), and writes only the pixels that a mask selects (its
 * #OrvImage::maskROI). The library keeps nothing of a header after the call, starts no thread and reads no file.
 *
 * **Failures.** A function that fails stores a status (orvGetErrStatus()), hands it to the report handler and returns it.
 * In the initial state the handler is orvNulDevReport() and the mode #ORV_ErrorModeLeaf, which together *end the process
 * silently with exit code 1*. An application that wants to go on after a failure sets another mode first:
 * @code
 * orvSetErrMode(ORV_ErrorModeParent);   // report and return
 * orvRedirectError(orvStdErrReport);    // say on standard error what failed
 * @endcode
 *
 * **Rectangles, channels, masks.** Unless a function says otherwise: the rectangle of each image is clipped to that image,
 * and the call processes the width and height that all rectangles (those of masks too) have in common, each from its own
 * top left corner. A rectangle counts rows in memory order, whatever the origin. With a `coi` one channel is processed, else
 * all; the images of a call must agree in that number, not in `nChannels`. With four channels, a non-zero
 * `alphaChannel` of the destination and no `coi`, three channels are processed and the alpha samples of the destination
 * stay. A pixel is written when the bytes of all masks of the call, combined by bitwise AND, are not zero together. In
 * pixel order the channel counts served are 1, 3 and 4; a call with another count writes nothing and succeeds. Rectangles
 * that have nothing in common are no failure, save that a call with a mask, and a call on one channel of several in pixel
 * order when no row is in common, ends as one without memory does (-4).
 *
 * **In place.** Source and destination may be the same raster where the function says so. Rasters that overlap at
 * different positions are safe, but the result is unspecified.
 *
 * **Alignment.** Samples may stand at any address, also at an odd one.
 *
 * **Threads.** Calls on different images may run at once, save that the reporting state is one for the process.
 */

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

/** @defgroup status Status and reporting
 *  What a call returns, where the last failure stands, and who is told of it.
 *  @{ */

/** Result of a call: 0 is success, a failure is negative. */
typedef int32_t OrvStatus;

/** Statuses. orvErrorStr() gives the text of each. */
enum {
    ORV_STATUS_OK = 0,                      /**< Success. */
    ORV_STATUS_BACKTRACE = -1,              /**< A caller's frame in a trace of reports; no failure of its own. */
    ORV_STATUS_INTERNAL = -3,               /**< Internal error. */
    ORV_STATUS_NO_MEMORY = -4,              /**< Exhausted memory, or a size beyond 32 bits. */
    ORV_STATUS_BAD_ARGUMENT = -5,           /**< An argument, or a combination of images, that the call refuses. */
    ORV_STATUS_UNSUPPORTED = -6,            /**< Unsupported function. */
    ORV_STATUS_NO_CONVERGENCE = -7,         /**< An iteration did not converge. */
    ORV_STATUS_AUTOTRACE = -8,              /**< A call record in a trace of reports; no failure of its own. */
    ORV_STATUS_NULL_HEADER = -9,            /**< Null image. */
    ORV_STATUS_BAD_IMAGE_SIZE = -10,        /**< Width, height or size of the raster below 1. */
    ORV_STATUS_BAD_ROI_OFFSET = -11,        /**< Negative offset of a rectangle. */
    ORV_STATUS_NO_RASTER = -12,             /**< Neither raster nor tiles, or both. */
    ORV_STATUS_BAD_WIDTH_STEP = -13,        /**< `widthStep` below 1. */
    ORV_STATUS_BAD_COLOR_MODEL = -14,       /**< Null colour model or channel sequence. */
    ORV_STATUS_BAD_CHANNELS = -15,          /**< Number of channels below 1, or numbers that do not agree. */
    ORV_STATUS_BAD_1U_CHANNELS = -16,       /**< A mask image with more than one channel. */
    ORV_STATUS_BAD_DEPTH = -17,             /**< Unknown depth, or a depth that this call does not take. */
    ORV_STATUS_BAD_ALPHA = -18,             /**< Alpha channel that is not the last channel. */
    ORV_STATUS_BAD_ORDER = -19,             /**< Unknown data order. */
    ORV_STATUS_BAD_ORIGIN = -20,            /**< Unknown origin. */
    ORV_STATUS_BAD_ALIGN = -21,             /**< Alignment other than 4, 8, 16 or 32. */
    ORV_STATUS_NULL_CALLBACK = -22,         /**< Tile record without a callback. */
    ORV_STATUS_BAD_TILE_SIZE = -23,         /**< Tile size below 1 or no multiple of 8. */
    ORV_STATUS_BAD_COI = -24,               /**< Channel of interest outside 0 to `nChannels`. */
    ORV_STATUS_BAD_ROI_SIZE = -25,          /**< Rectangle with a side below 1. */
    ORV_STATUS_MASK_TILED = -26,            /**< Tiled mask. */
    ORV_STATUS_NULL_POINTER = -27,          /**< Null pointer. */
    ORV_STATUS_BAD_VECTOR_LENGTH = -28,     /**< Vector length below 1. */
    ORV_STATUS_BAD_FILTER_CONTENT = -29,    /**< Inconsistent filter record. */
    ORV_STATUS_BAD_TRANSFORM_CONTENT = -30, /**< Inconsistent transform record. */
    ORV_STATUS_BAD_FILTER_OFFSET = -31,     /**< Anchor outside the filter. */
    ORV_STATUS_NOT_IMPLEMENTED = -50,       /**< A valid case that is not served: a tiled image, or a depth. */
    ORV_STATUS_MASK_BASE = -100             /**< Added to a status that concerns the image's mask. */
};

/** Error modes: what a report handler does beside reporting. */
enum {
    ORV_ErrorModeLeaf = 0,   /**< A failure is final: handlers end the process, or ask to. The initial mode. */
    ORV_ErrorModeParent = 1, /**< Handlers report and return; the application handles the status. */
    ORV_ErrorModeSilent = 2  /**< Handlers return at once and report nothing. */
};

/**
 * A report handler.
 * @param status   the status of the failure
 * @param func     the exported function that failed
 * @param context  what failed: the text of a condition, a sentence, or the empty text
 * @param file     the source unit, such as `orvabs`
 * @param line     the line in it
 * @return         what the failing function returns to its caller
 */
typedef OrvStatus (*OrvErrorCallback)(OrvStatus status, const char *func, const char *context, const char *file,
                                      int32_t line);

/** Version record of the library. */
typedef struct OrvLibVersion {
    int32_t major;               /**< Major version. */
    int32_t minor;               /**< Minor version. */
    int32_t build;               /**< Build within the minor version. */
    const char *Name;            /**< File name of the library. */
    const char *Version;         /**< Version as text. */
    const char *InternalVersion; /**< Version with its date. */
    const char *BuildDate;       /**< Date of the build. */
    const char *CallConv;        /**< Calling convention. */
} OrvLibVersion;

/** @return the last stored status. Success of a call does not clear it. */
ORV_API OrvStatus orvGetErrStatus(void);

/** Stores a status; 0 clears the last failure. @param status the status to store */
ORV_API void orvSetErrStatus(OrvStatus status);

/** @return the error mode. */
ORV_API int32_t orvGetErrMode(void);

/** Sets the error mode, unchecked. @param mode one of the `ORV_ErrorMode...` values */
ORV_API void orvSetErrMode(int32_t mode);

/**
 * Reports a failure: stores the status (unless it is #ORV_STATUS_BACKTRACE or #ORV_STATUS_AUTOTRACE, which leave a stored
 * failure in place) and calls the report handler. A status of 0 is stored and not reported.
 * @param status   the status
 * @param func     the function that failed
 * @param context  what failed
 * @param file     the source unit
 * @param line     the line in it
 * @return         what the handler returned, 0 for a status of 0
 */
ORV_API OrvStatus orvError(OrvStatus status, const char *func, const char *context, const char *file, int32_t line);

/** @param status a status @return its constant text, "Unknown error or status code" for an unknown one; never null */
ORV_API const char *orvErrorStr(OrvStatus status);

/**
 * Installs a report handler.
 * @param handler  the handler, or null for orvNulDevReport()
 * @return         the handler that was installed before
 */
ORV_API OrvErrorCallback orvRedirectError(OrvErrorCallback handler);

/** The silent handler, installed initially: ends the process with exit code 1 in #ORV_ErrorModeLeaf.
 *  @param status the status @param func unused @param context unused @param file unused @param line unused
 *  @return the status */
ORV_API OrvStatus orvNulDevReport(OrvStatus status, const char *func, const char *context, const char *file, int32_t line);

/** Handler that writes to the standard error stream, and then ends the process with exit code 1 in #ORV_ErrorModeLeaf.
 *  @param status the status @param func the function, or null @param context what failed, or null
 *  @param file the source unit, or null @param line the line
 *  @return the status */
ORV_API OrvStatus orvStdErrReport(OrvStatus status, const char *func, const char *context, const char *file, int32_t line);

/** Handler that shows a message box and asks whether to go on. On a terminal the box is text and the answer is read from
 *  the terminal; without one the box takes its first button, which ends the process in #ORV_ErrorModeLeaf.
 *  @param status the status @param func the function, or null @param context what failed, or null
 *  @param file the source unit, or null @param line the line
 *  @return the status */
ORV_API OrvStatus orvGuiBoxReport(OrvStatus status, const char *func, const char *context, const char *file, int32_t line);

/** @return the version record, which is constant and belongs to the library. */
ORV_API const OrvLibVersion *orvGetLibVersion(void);
/** @} */

/** @defgroup records Image records
 *  The records that describe an image, and their constants.
 *  @{ */

/** Sample types. The low bits hold the size in bits; #ORV_DEPTH_SIGN marks the signed integers. */
#define ORV_DEPTH_SIGN 0x80000000u
#define ORV_DEPTH_1U 1                                     /**< Mask sample: one byte a pixel, set when not zero. */
#define ORV_DEPTH_8U 8                                     /**< Unsigned 8-bit integer. */
#define ORV_DEPTH_16U 16                                   /**< Unsigned 16-bit integer. */
#define ORV_DEPTH_32F 32                                   /**< 32-bit float. */
#define ORV_DEPTH_8S ((int32_t)(ORV_DEPTH_SIGN | 8u))      /**< Signed 8-bit integer. */
#define ORV_DEPTH_16S ((int32_t)(ORV_DEPTH_SIGN | 16u))    /**< Signed 16-bit integer. */
#define ORV_DEPTH_32S ((int32_t)(ORV_DEPTH_SIGN | 32u))    /**< Signed 32-bit integer. */

/** Values of #OrvImage::dataOrder. */
enum {
    ORV_DATA_ORDER_PIXEL = 0, /**< The samples of a pixel are adjacent. */
    ORV_DATA_ORDER_PLANE = 1  /**< One raster per channel, one after the other in one block. */
};

/** Values of #OrvImage::origin. */
enum {
    ORV_ORIGIN_TL = 0, /**< The first row in memory is the top row. */
    ORV_ORIGIN_BL = 1  /**< The first row in memory is the bottom row. */
};

/** Values of #OrvImage::align. */
enum { ORV_ALIGN_4BYTES = 4, ORV_ALIGN_8BYTES = 8, ORV_ALIGN_16BYTES = 16, ORV_ALIGN_32BYTES = 32 };

/** Border modes: what stands outside the image for an operation with a neighbourhood. */
enum {
    ORV_BORDER_CONSTANT = 0,  /**< The side's entry of #OrvImage::BorderConst. */
    ORV_BORDER_REPLICATE = 1, /**< The nearest edge pixel, repeated. */
    ORV_BORDER_REFLECT = 2,   /**< The image mirrored at its edge. */
    ORV_BORDER_WRAP = 3       /**< The image continued from the opposite edge. */
};

/** Sides, as bits for orvSetBorderMode(). */
enum { ORV_SIDE_TOP = 1, ORV_SIDE_BOTTOM = 2, ORV_SIDE_LEFT = 4, ORV_SIDE_RIGHT = 8, ORV_SIDE_ALL = 15 };

/** What orvDeallocate() releases, as bits. */
enum {
    ORV_IMAGE_HEADER = 1, /**< The header itself. */
    ORV_IMAGE_DATA = 2,   /**< The raster, where the library allocated it. */
    ORV_IMAGE_ROI = 4,    /**< The rectangle record. */
    ORV_IMAGE_TILE = 8,   /**< The tile record. */
    ORV_IMAGE_MASK = 16   /**< The mask: its header, raster, rectangle and tile record, not the mask's own mask. */
};

/** A rectangle and a channel of an image. One record may serve several images. */
typedef struct OrvROI {
    int32_t coi;     /**< 0 for all channels, or the one-based number of one channel. */
    int32_t xOffset; /**< Left column, at least 0. */
    int32_t yOffset; /**< First row in memory order, at least 0. */
    int32_t width;   /**< Columns, at least 1. The rectangle may reach beyond the image: it is clipped. */
    int32_t height;  /**< Rows, at least 1. */
} OrvROI;

/** A tile provider. The library never calls it; its arguments are the application's own. */
typedef void (*OrvTileCallback)(void);

/** Describes a tiled image. Tiling is a form of header only: every operation refuses a tiled image. */
typedef struct OrvTileInfo {
    OrvTileCallback callback; /**< The provider, not null. */
    int32_t id;               /**< Free for the application. */
    void *tileData;           /**< Null. */
    int32_t width;            /**< Tile width in pixels, a positive multiple of 8. */
    int32_t height;           /**< Tile height in pixels, a positive multiple of 8. */
} OrvTileInfo;

/**
 * Header of an image. An application may fill one itself; orvCheckImageHeader() tells whether it is usable.
 *
 * With s bytes a sample (a 1U sample counts as one byte), the sample of column x, row y and zero-based channel c stands at
 * `imageData + y * widthStep + (x * nChannels + c) * s` in pixel order and at
 * `imageData + (c * height + y) * widthStep + x * s` in plane order.
 */
typedef struct OrvImage {
    int32_t nSize;              /**< Size of the record as stored by orvCreateImageHeader(): 112. Not read. */
    int32_t ID;                 /**< 0. Not read. */
    int32_t nChannels;          /**< Number of channels, at least 1; 1 for depth 1U. Operations serve 1, 3 and 4. */
    int32_t alphaChannel;       /**< 0, or `nChannels` when the last channel is an alpha channel. */
    int32_t depth;              /**< Sample type, an `ORV_DEPTH_...` value. */
    char colorModel[4];         /**< Four characters, carried and never read. */
    char channelSeq[4];         /**< Four characters, carried and never read. */
    int32_t dataOrder;          /**< #ORV_DATA_ORDER_PIXEL or #ORV_DATA_ORDER_PLANE. */
    int32_t origin;             /**< #ORV_ORIGIN_TL or #ORV_ORIGIN_BL. */
    int32_t align;              /**< Row alignment in bytes: 4, 8, 16 or 32. */
    int32_t width;              /**< Pixels per row. */
    int32_t height;             /**< Rows. */
    OrvROI *roi;                /**< Rectangle and channel, or null for the whole image and all channels. */
    struct OrvImage *maskROI;   /**< Mask of depth 1U, or null. Its rectangle lies on that of the operation. */
    void *imageId;              /**< Free for the application. */
    OrvTileInfo *tileInfo;      /**< Null for an image with a raster. */
    int32_t imageSize;          /**< Bytes of the raster. */
    uint8_t *imageData;         /**< First byte of the raster, or null. */
    int32_t widthStep;          /**< Bytes from a row to the next. May be more than the row needs. */
    int32_t BorderMode[4];      /**< Border mode of top, bottom, left and right. */
    int32_t BorderConst[4];     /**< Border constant of the same sides. */
    uint8_t *imageDataOrigin;   /**< The block that the library allocated for the raster, or null. */
} OrvImage;

/**
 * Tells whether a header describes a usable image. Tests, in this order: null (-9); raster and tiles both there or both
 * missing (-12); `imageSize` (-10) and `widthStep` (-13) of an image without tiles; width and height (-10); number of
 * channels (-15), more than one at depth 1U (-16); depth (-17); alpha channel (-18); data order (-19); origin (-20);
 * alignment (-21); the mask: its depth (-117), tiles (-26), then all these tests on the mask itself, whose status comes
 * back minus 100; the tile record (-22, -23); the rectangle: channel (-24), size (-25), offset (-11). The rectangle is not
 * compared with the size of the image. A chain of masks that returns to itself is followed once, and none beyond a hundred.
 * @param image  the header, or null
 * @return       0, or the status, which is then stored too; never reported
 */
ORV_API OrvStatus orvCheckImageHeader(const OrvImage *image);
/** @} */

/** @defgroup lifecycle Memory, headers and rasters
 *  @{ */

/** Allocates a block that starts at a multiple of 32 bytes, to be released by orvFree() and no other way.
 *  @param count bytes @return the block, or null for a count below 1 or exhausted memory; nothing is reported */
ORV_API void *orvMalloc(int32_t count);
/** orvMalloc() of 16-bit items. @param count items @return the block or null */
ORV_API int16_t *orvwMalloc(int32_t count);
/** orvMalloc() of 32-bit integers. @param count items @return the block or null */
ORV_API int32_t *orviMalloc(int32_t count);
/** orvMalloc() of 32-bit floats. @param count items @return the block or null */
ORV_API float *orvsMalloc(int32_t count);
/** orvMalloc() of 64-bit floats. @param count items @return the block or null */
ORV_API double *orvdMalloc(int32_t count);
/** Releases a block of the orvMalloc() family. @param block the block, or null */
ORV_API void orvFree(void *block);

/**
 * Creates a header without a raster: border mode constant 0 on all sides, `widthStep` and `imageSize` as a raster of the
 * library would have them (rows rounded up to `align`).
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
 * @param maskROI       stored as given, may be null; checked as orvCheckImageHeader() checks a mask
 * @param imageId       stored as given
 * @param tileInfo      stored as given, may be null
 * @return  the header, to be released by orvDeallocate(); null on exhausted memory (not reported) or for a field that
 *          orvCheckImageHeader() would refuse (reported with that status, or -14 for a null colour model or sequence, and
 *          "Incorrect data-ins")
 */
ORV_API OrvImage *orvCreateImageHeader(int32_t nChannels, int32_t alphaChannel, int32_t depth, const char *colorModel,
                                       const char *channelSeq, int32_t dataOrder, int32_t origin, int32_t align,
                                       int32_t width, int32_t height, OrvROI *roi, OrvImage *maskROI, void *imageId,
                                       OrvTileInfo *tileInfo);

/**
 * Allocates the raster of an integer image, and sets `widthStep` and `imageSize` by the rule of orvCreateImageHeader().
 * Reports -5 for a null image, one that has a raster, a tiled one or a float one, the field's own status for a bad header
 * field, and -4 for exhausted memory or a raster beyond 2147483647 bytes.
 * @param image      the header
 * @param doFill     non-zero fills the raster, padding included
 * @param fillValue  the sample value; its low 8, 16 or 32 bits, or the lowest bit for 1U (0x00 or 0xFF)
 */
ORV_API void orvAllocateImage(OrvImage *image, int32_t doFill, int32_t fillValue);

/** orvAllocateImage() for a float image; any other depth is refused with -5.
 *  @param image the header @param doFill non-zero fills the raster @param fillValue the sample value */
ORV_API void orvAllocateImageFP(OrvImage *image, int32_t doFill, float fillValue);

/** Releases the raster where the library allocated it, and forgets it in any case. Harmless when called twice.
 *  @param image the header; null does nothing */
ORV_API void orvDeallocateImage(OrvImage *image);

/** Releases what the flags name, in the order rectangle, mask, tile record, raster, header, and sets the fields to null.
 *  Header, rectangle, mask and tile record must come from the library; a raster that does not is left alone.
 *  @param image the header; null does nothing @param flags a sum of `ORV_IMAGE_...` values */
ORV_API void orvDeallocate(OrvImage *image, int32_t flags);

/** orvDeallocate() of the header alone. @param image the header; null does nothing */
ORV_API void orvDeallocateHeader(OrvImage *image);

/** @param coi channel or 0 @param xOffset left column @param yOffset first row @param width columns @param height rows
 *  @return a new record, unchecked, to be released by orvDeleteROI(); null on exhausted memory, not reported */
ORV_API OrvROI *orvCreateROI(int32_t coi, int32_t xOffset, int32_t yOffset, int32_t width, int32_t height);
/** Stores five values, unchecked. @param roi the record; null does nothing @param coi channel or 0
 *  @param xOffset left column @param yOffset first row @param width columns @param height rows */
ORV_API void orvSetROI(OrvROI *roi, int32_t coi, int32_t xOffset, int32_t yOffset, int32_t width, int32_t height);
/** Releases a rectangle record. @param roi the record, or null */
ORV_API void orvDeleteROI(OrvROI *roi);

/** @param callback the provider @param id free @param width tile width @param height tile height
 *  @return a new record, unchecked, to be released by orvDeleteTileInfo(); null on exhausted memory, not reported */
ORV_API OrvTileInfo *orvCreateTileInfo(OrvTileCallback callback, int32_t id, int32_t width, int32_t height);
/** Stores the values, unchecked. @param tile the record; null does nothing @param callback the provider
 *  @param id free @param width tile width @param height tile height */
ORV_API void orvSetTileInfo(OrvTileInfo *tile, OrvTileCallback callback, int32_t id, int32_t width, int32_t height);
/** Releases a tile record. @param tile the record, or null */
ORV_API void orvDeleteTileInfo(OrvTileInfo *tile);

/**
 * Copies an image: header, border fields, rectangle record and raster. The clone has no mask, no tile record and a null
 * `imageId`; its raster has rows of the rule of orvCreateImageHeader(). The clone of a tiled image has a raster of
 * unspecified content.
 * @param image  the image
 * @return  the clone, to be released by orvDeallocate(); null after a reported failure: the header's status with
 *          "Incorrect Image", or -4
 */
ORV_API OrvImage *orvCloneImage(const OrvImage *image);

/**
 * Sets the border of some sides. The constant is clamped to the range of an integer depth up to 16 bits; the mode is
 * stored unchecked (operations read its two low bits).
 * @param image     the header; null does nothing
 * @param mode      an `ORV_BORDER_...` value
 * @param border    a sum of `ORV_SIDE_...` values
 * @param constVal  the constant, as an integer also for a float image
 */
ORV_API void orvSetBorderMode(OrvImage *image, int32_t mode, int32_t border, int32_t constVal);

/**
 * Creates a one-channel image (pixel order, origin top left, alignment 8) with the Jaehne test pattern, a radial chirp: with
 * dx = x - (width - 1) / 2, dy = y - (height - 1) / 2 and s = sin((dx^2 + dy^2) 2 pi / (4 height)), the sample is
 * (s + 1) 127.99999 (8U), (s + 1) 32767.99999 (16U), s 127.99999 (8S), s 32767.99999 (16S), s 2147483647.99999 (32S),
 * each truncated toward zero, or (s + 1) 0.49999 (32F).
 * Source: B. Jaehne, Digital Image Processing, Springer.
 * @param depth   any depth but 1U (-50); an unknown one is -17
 * @param width   pixels per row, at least 1 (-10)
 * @param height  rows, at least 1 (-10)
 * @return  the image, to be released by orvDeallocate(); null after a reported failure, those above or -4
 */
ORV_API OrvImage *orvCreateImageJaehne(int32_t depth, int32_t width, int32_t height);
/** @} */

/** @defgroup pixels Pixel access
 *  Whole-image coordinates: rectangle, channel and mask are ignored. The only operations that apply the origin: with
 *  #ORV_ORIGIN_BL, y counts from the last row in memory. Depths 8U, 8S, 16U, 16S, 32S, 32F; 1, 3 or 4 channels, in both
 *  data orders. With another number of channels nothing is moved.
 *
 *  Statuses: the header's with "Incorrect Image"; -5 for a null `pixel` (orvGetPixel() only) or a coordinate outside the
 *  image; -50 for a tiled image or depth 1U.
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
 * Copies pixels bit for bit: dst(x, y) = src(x, y). All depths, both data orders, in place (nothing happens). Also between
 * an image of three channels and one of four with alpha: an alpha channel does not count and stays as it is.
 *
 * Statuses: the header's with "Incorrect Image"; -5 for different depth, origin or (unless the depth is 1U or both images
 * have one channel) data order; -15 for different numbers of channels to process; -50 for a tiled image; -4 for exhausted
 * memory, and for the empty rectangles named above.
 * @param srcImage  source
 * @param dstImage  destination
 * @return  0 or the reported status; if both are the same header, the positive number of channels to process
 */
ORV_API OrvStatus orvCopy(const OrvImage *srcImage, OrvImage *dstImage);

/**
 * Fills an integer image: dst(x, y) = fillValue, clamped to the range of the depth; at depth 1U a non-zero value becomes 255.
 *
 * Statuses: the header's with "Incorrect Image"; -17 for depth 32F; -50 for a tiled image; -4 for exhausted memory, and for
 * the empty rectangles named above.
 * @param dstImage   destination
 * @param fillValue  the value
 * @return  0 or the reported status
 */
ORV_API OrvStatus orvSet(OrvImage *dstImage, int32_t fillValue);

/**
 * Fills a float image: dst(x, y) = fillValue. The header's `depth` is changed during the call. The result is the stored
 * status (orvGetErrStatus()) after the fill, which success does not clear: a failure of an earlier call that still stands
 * there is traced with -1 and comes back, although the fill was done (and in #ORV_ErrorModeLeaf ends the process).
 *
 * Statuses: -5 for a null image; -17 for another depth; those of orvSet(), reported under its name.
 * @param dstImage   destination
 * @param fillValue  the value
 * @return  the stored status
 */
ORV_API OrvStatus orvSetFP(OrvImage *dstImage, float fillValue);

/**
 * Magnitude: dst(x, y) = |src(x, y)|. Depths 8S, 16S and 32S saturate (-128 gives 127); 32F clears the sign; 8U and 16U are
 * orvCopy(), its refusals and result included. Both data orders, in place or not.
 *
 * Statuses: the header's with "Incorrect Image"; -5 for different depth or data order; -15 for different numbers of channels
 * to process; -50 for a tiled image or depth 1U; -4 for exhausted memory, and for the empty rectangles named above.
 * @param srcImage  source
 * @param dstImage  destination
 * @return  0 or the reported status
 */
ORV_API OrvStatus orvAbs(const OrvImage *srcImage, OrvImage *dstImage);
/** @} */

/** @defgroup arithmetic Arithmetic
 *  Sample by sample, for each channel to process. Integer results saturate to the range of the depth; floats do not and
 *  follow the processor's arithmetic. Pixel and plane order, 1, 3 and 4 channels, rectangles, channels of interest and masks;
 *  in place or not.
 *
 *  Statuses of the functions of two images: the header's with "Incorrect Image"; -5 for different depth or data order; -15
 *  for different numbers of channels to process; -50 for a tiled image or a depth that is not served; -4 for exhausted memory,
 *  and for the empty rectangles named above. Those of an image and a constant: the same, and -5 for the depth that the function's
 *  partner serves (32F for the integer functions, any other for the `FP` ones).
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
/** dst(x, y) = src(x, y)^2. Depths 8U, 8S, 16U, 16S, 32F. Different alpha channels are refused with -5 too.
 *  @param src source @param dst destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSquare(const OrvImage *src, OrvImage *dst);

/** dst(x, y) = src(x, y) + value. Depths 8U, 8S, 16U, 16S, 32S. At 16S a value beyond 16 bits is added in two steps that
 *  saturate each: the clamped value, then what is left of it; exact for values of -65536 to 65535, beyond them the low 16 bits
 *  of the rest are added.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAddS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst(x, y) = src(x, y) + value. Depth 32F. @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvAddSFP(const OrvImage *srcImage, OrvImage *dstImage, float value);
/** dst(x, y) = src(x, y) - value, or value - src(x, y). Depths 8U, 8S, 16U, 16S, 32S. At 16S in the steps of orvAddS(), with
 *  `flip` after a negation that saturates (so that a source of -32768 counts as -32767).
 *  @param srcImage source @param dstImage destination @param value the constant @param flip non-zero for value - src
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSubtractS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value, int32_t flip);
/** dst(x, y) = src(x, y) - value, or value - src(x, y). Depth 32F.
 *  @param srcImage source @param dstImage destination @param value the constant @param flip non-zero for value - src
 *  @return 0 or the reported status */
ORV_API OrvStatus orvSubtractSFP(const OrvImage *srcImage, OrvImage *dstImage, float value, int32_t flip);
/** dst(x, y) = src(x, y) value. Depths 8U (the value clamped to 0 to 255), 16S (clamped to 16 bits), 32S.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplyS(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** dst(x, y) = src(x, y) value. Depth 32F. A null source is -5, and so are different numbers of channels to process.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplySFP(const OrvImage *srcImage, OrvImage *dstImage, float value);

/** Product of fractions: with full scale m (255 or 65535), dst(x, y) = A(x, y) B(x, y) / m, to the whole number below; in
 *  integers (t + t / 2^w + 1) / 2^w for the product t and w bits a sample. Depths 8U, 16U; others are -5.
 *  @param srcImageA first source @param srcImageB second source @param dstImage destination
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplyScale(const OrvImage *srcImageA, const OrvImage *srcImageB, OrvImage *dstImage);
/** orvMultiplyScale() with a constant, which is clamped to the range of the depth. Depths 8U, 16U; others are -5.
 *  @param srcImage source @param dstImage destination @param value the constant
 *  @return 0 or the reported status */
ORV_API OrvStatus orvMultiplySScale(const OrvImage *srcImage, OrvImage *dstImage, int32_t value);
/** @} */

/** @defgroup logic Logic and shifts
 *  Bit by bit, on the integer depths 8U, 8S, 16U, 16S, 32S; all sources and the destination of one depth. Pixel and plane
 *  order, 1, 3 and 4 channels, rectangles, channels of interest and masks; in place or not. A constant is cut to the width of
 *  the sample.
 *
 *  Statuses: the header's with "Incorrect Image"; -5 for different depth or data order, or depth 32F; -15 for different
 *  numbers of channels to process; -50 for a tiled image or depth 1U; -4 for exhausted memory, and for the empty
 *  rectangles named above. The shifts refuse a null source and different alpha channels with -5 too.
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
/** dst = not src: orvXorS() with -1, under whose name failures are reported. @param srcImage source
 *  @param dstImage destination @return 0 or the reported status */
ORV_API OrvStatus orvNot(const OrvImage *srcImage, OrvImage *dstImage);

/** dst = src shifted to the left; bits shifted out are lost. A count of the sample's width or more gives 0.
 *  @param src source @param dst destination @param nShift bits @return 0 or the reported status */
ORV_API OrvStatus orvLShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift);
/** dst = src shifted to the right; signed samples keep their sign, and round towards minus infinity. A count of the sample's
 *  width or more gives 0, or -1 for a negative sample.
 *  @param src source @param dst destination @param nShift bits @return 0 or the reported status */
ORV_API OrvStatus orvRShiftS(const OrvImage *src, OrvImage *dst, unsigned int nShift);
/** @} */

/** @defgroup neighbourhood Neighbourhoods and borders
 *  What the operations share whose result at a pixel comes from the pixels around it. In these, the source at a place means
 *  the source pixel that lies so many columns and rows from the first pixel of the source's rectangle.
 *
 *  **Borders.** Outside the source stands what its #OrvImage::BorderMode and #OrvImage::BorderConst say, side by side; only
 *  the two low bits of a mode count. The border is that of the image and not of its rectangle: pixels of the image beyond the
 *  rectangle are read as they are. Over the first row and under the last one, the side top or bottom rules alone, to the left
 *  and the right of the image too: constant gives its constant, replicate the nearest pixel (that of the image's corner in a
 *  corner), reflect the image mirrored at its edges in both directions, the edge row and column being repeated, and wrap the
 *  image continued from its opposite edges in both directions. Beside the image, in its rows, the side left or right rules in
 *  the same way. A window that is larger than the image finds it mirrored or continued again and again. A constant is the same
 *  in all channels: its low 8 or 16 bits as a sample of that size, all of them at depth 32S, and its value at depth 32F.
 *
 *  **Channel of interest.** A `coi` of the source says that one channel is processed, but not which: it is always the first.
 *  The result goes to the channel that the destination's `coi` names.
 *
 *  **Empty rectangles.** Where the rectangles have nothing in common nothing is written and the call succeeds, save that a
 *  call with a mask ends as one without memory does (-4).
 *
 *  **Memory.** A call copies no more than the windows of its rectangle read, piece by piece, or all at once where source and
 *  destination overlap: a plane is read before any of it is written. When memory is exhausted the destination stays as it was.
 *  @{ */
/** @} */

/** @defgroup convolution Convolution
 *  With the given anchor (anchorX, anchorY) of a record,
 *
 *      dst(x, y) = sum over 0 <= r < nRows, 0 <= c < nCols of values[r * nCols + c] src(x + anchorX - c, y + anchorY - r)
 *
 *  that is, a true convolution: the coefficient at the anchor meets the pixel itself, and one to its right a pixel to the
 *  left. Each sum is divided by 2^s, where s is the low five bits of the record's `nShiftR`; records of floats have no such
 *  divisor.
 *
 *  Pixel and plane order, 1, 3 and 4 channels, rectangles and masks; borders and channels of interest as told under
 *  @ref neighbourhood "Neighbourhoods and borders". Of four channels the last one is neither computed nor written where it is
 *  an alpha channel: in pixel order the `alphaChannel` of the *source* says so, in plane order that of the destination.
 *
 *  **In integers:** the sum is taken in 32 bits (8U, wrapping around) or 64 bits (16S), and the quotient rounded to nearest,
 *  ties to even, and saturated to the range of the depth.
 *
 *  **In floats:** samples and coefficients are converted to 32-bit floats (which hold 24 bits of a number), all is computed in
 *  these, and the final result alone is converted to an integer depth: rounded to nearest, ties to even, and saturated.
 *  @{ */

/** A window of integer coefficients. To be made by orvCreateConvKernel() and read by orvGetConvKernel(); one filled by hand
 *  must hold to what is said here. */
typedef struct OrvConvKernel {
    int32_t nCols;   /**< Columns of the window, at least 1. */
    int32_t nRows;   /**< Rows of the window, at least 1. */
    int32_t anchorX; /**< The anchor's column counted from the right: `nCols` - 1 - the column given. */
    int32_t anchorY; /**< The anchor's row counted from below: `nRows` - 1 less the row given. */
    int32_t *values; /**< `nCols` * `nRows` coefficients row by row, as given. A block of the orvMalloc() family. */
    int32_t nShiftR; /**< The shift to the right of each result. Any value may stand here, the five low bits count. */
} OrvConvKernel;

/** A window of float coefficients, else as #OrvConvKernel. */
typedef struct OrvConvKernelFP {
    int32_t nCols;   /**< Columns of the window, at least 1. */
    int32_t nRows;   /**< Rows of the window, at least 1. */
    int32_t anchorX; /**< The anchor's column counted from the right. */
    int32_t anchorY; /**< The anchor's row counted from below. */
    float *values;   /**< `nCols` * `nRows` coefficients. */
} OrvConvKernelFP;

/** How the results r of several kernels become one. */
enum {
    ORV_COMBINE_SUM = 0,       /**< The sum of all r. */
    ORV_COMBINE_SUMSQ = 1,     /**< The sum of all r^2. */
    ORV_COMBINE_SUMSQROOT = 2, /**< The square root of the sum of all r^2. */
    ORV_COMBINE_MAX = 3,       /**< The largest r. */
    ORV_COMBINE_MIN = 4        /**< The smallest r. */
};

/**
 * Creates a record of integer coefficients. Reports, and returns null: -5 for null `values`, a size below 1 or an anchor
 * outside the window, in this order; -4 for exhausted memory or coefficients beyond 2147483647 bytes.
 * @param nCols    columns of the window
 * @param nRows    rows of the window
 * @param anchorX  column of the anchor, 0 to `nCols` - 1
 * @param anchorY  row of the anchor, 0 to `nRows` - 1
 * @param values   `nCols` * `nRows` coefficients row by row, which are copied
 * @param nShiftR  the shift to the right of each result, unchecked
 * @return         the record, to be released by orvDeleteConvKernel(), or null
 */
ORV_API OrvConvKernel *orvCreateConvKernel(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                           const int32_t *values, int32_t nShiftR);
/** orvCreateConvKernel() with coefficients of signed bytes; the record is the same.
 *  @param nCols columns @param nRows rows @param anchorX column of the anchor @param anchorY row of the anchor
 *  @param values coefficients @param nShiftR shift @return the record or null */
ORV_API OrvConvKernel *orvCreateConvKernelChar(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                               const signed char *values, int32_t nShiftR);
/** orvCreateConvKernel() of float coefficients. @param nCols columns @param nRows rows @param anchorX column of the anchor
 *  @param anchorY row of the anchor @param values coefficients
 *  @return the record, to be released by orvDeleteConvKernelFP(), or null */
ORV_API OrvConvKernelFP *orvCreateConvKernelFP(int32_t nCols, int32_t nRows, int32_t anchorX, int32_t anchorY,
                                               const float *values);

/**
 * Reads a record: gives what it was created with. Reports -5, in this order, for a null record; for one whose size is
 * below 1 or whose anchor lies outside its window; for null `nRows` and `nCols`, null `anchorX` and `anchorY` (both of a
 * pair are reported), null `values`, null `nShiftR`. Then nothing is written. Nor is it when the stored status
 * (orvGetErrStatus()) is negative from an earlier call: clear it by orvSetErrStatus() first.
 * @param kernel   the record
 * @param nCols    receives the columns of the window
 * @param nRows    receives the rows
 * @param anchorX  receives the column of the anchor, as it was given
 * @param anchorY  receives the row of the anchor, as it was given
 * @param values   points to a pointer to the caller's array, which receives `nCols` * `nRows` coefficients. No coefficient is
 *                 written where that pointer, or the record's own, is null.
 * @param nShiftR  receives the shift
 */
ORV_API void orvGetConvKernel(const OrvConvKernel *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                              int32_t *anchorY, int32_t **values, int32_t *nShiftR);
/** orvGetConvKernel() into signed bytes: of each coefficient the low byte, so that 300 is read as 44.
 *  @param kernel the record @param nCols receives the columns @param nRows receives the rows
 *  @param anchorX receives the column of the anchor @param anchorY receives the row of the anchor
 *  @param values pointer to the caller's array @param nShiftR receives the shift */
ORV_API void orvGetConvKernelChar(const OrvConvKernel *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                                  int32_t *anchorY, signed char **values, int32_t *nShiftR);
/** orvGetConvKernel() of a record of floats.
 *  @param kernel the record @param nCols receives the columns @param nRows receives the rows
 *  @param anchorX receives the column of the anchor @param anchorY receives the row of the anchor
 *  @param values pointer to the caller's array */
ORV_API void orvGetConvKernelFP(const OrvConvKernelFP *kernel, int32_t *nCols, int32_t *nRows, int32_t *anchorX,
                                int32_t *anchorY, float **values);

/** Releases a record and its coefficients. Reports -5 for a null record, and for one without coefficients, which is not
 *  released. @param kernel the record */
ORV_API void orvDeleteConvKernel(OrvConvKernel *kernel);
/** orvDeleteConvKernel() of a record of floats. @param kernel the record */
ORV_API void orvDeleteConvKernelFP(OrvConvKernelFP *kernel);

/**
 * Convolves with one kernel, or with up to ten whose results are combined pixel by pixel. Depths 8U, 8S, 16U, 16S, 32S: one
 * kernel at 8U and 16S works in integers, all else in floats. In place or not.
 *
 * Statuses, in this order: the header's with "Incorrect Image"; -5 for depth 32F; -5 for null `kernel`, `nKernels` outside 1
 * to 10, or an unknown `combineMethod` of several kernels; -5 for different depth or data order; -15 for different numbers of
 * channels to process; -5 for a null record or one that orvGetConvKernel() would not read; -50 for a tiled image or depth
 * 1U; -4 for exhausted memory, and for the empty rectangles named above.
 * @param srcImage       source
 * @param dstImage       destination
 * @param kernel         `nKernels` records; where one has no coefficients nothing is written
 * @param nKernels       1 to 10
 * @param combineMethod  an `ORV_COMBINE_...` value; not looked at with one kernel
 * @return               0 or the reported status
 */
ORV_API OrvStatus orvConvolve2D(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernel *const *kernel,
                                int32_t nKernels, int32_t combineMethod);
/** orvConvolve2D() with float coefficients, at depth 32F (-5 for any other). Works in floats.
 *  @param srcImage source @param dstImage destination @param kernel records @param nKernels 1 to 10
 *  @param combineMethod an `ORV_COMBINE_...` value @return 0 or the reported status */
ORV_API OrvStatus orvConvolve2DFP(const OrvImage *srcImage, OrvImage *dstImage, OrvConvKernelFP *const *kernel,
                                  int32_t nKernels, int32_t combineMethod);

/**
 * Convolves with a row of coefficients, a column of them, or both. Depths 8U and 16S. One vector works in integers. Both
 * together work in floats: the column first, each sum divided by the divisor of its own record, nothing rounded to an integer
 * in between. Not with one header for source and destination; two headers may share a raster.
 *
 * Statuses, in this order: the header's with "Incorrect Image"; -5 for depth 32F, one header for both images, two null
 * kernels, different depth, data order or origin; -15 for different numbers of channels to process; -5 for a record without
 * coefficients, of another shape, or with an anchor outside of it, `xKernel` first; -50 for a tiled image or any other depth;
 * -4 for exhausted memory, and for the empty rectangles named above.
 * @param srcImage  source
 * @param dstImage  destination, another header
 * @param xKernel   a record of one row and at least two columns, or null
 * @param yKernel   a record of one column and at least two rows, or null
 * @return          0 or the reported status
 */
ORV_API OrvStatus orvConvolveSep2D(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernel *xKernel,
                                   const OrvConvKernel *yKernel);
/** orvConvolveSep2D() with float coefficients, at depth 32F (-5 for any other). Works in floats.
 *  @param srcImage source @param dstImage destination, another header @param xKernel a row, or null
 *  @param yKernel a column, or null @return 0 or the reported status */
ORV_API OrvStatus orvConvolveSep2DFP(const OrvImage *srcImage, OrvImage *dstImage, const OrvConvKernelFP *xKernel,
                                     const OrvConvKernelFP *yKernel);
/** @} */

/** @defgroup geometry Geometry
 *  @{ */

/**
 * Flips the common rectangle, of width W and height H: dst(x, y) = src(x, H-1-y) for axis 0, which exchanges the rows,
 * src(W-1-x, y) for axis 1, which exchanges the columns, and src(W-1-x, H-1-y) for axis -1, which does both. Samples move bit
 * for bit. Depths 8U, 8S, 16U, 16S, 32S, 32F. Pixel and plane order, 1, 3 and 4 channels, rectangles, channels of interest
 * and masks. The data orders may differ where either image has one channel; a channel that the source has in plane order is
 * then read as its plane, but one of several in pixel order beside a destination in plane order is read as if it were a
 * plane: W samples on end in each row.
 *
 * In place where both headers have the same `imageData`: the rectangle of the destination is then flipped in itself, also
 * where that of the source is another one. Under a mask, and with one channel of several in pixel order, the pixels of the
 * source's own rectangle are read in place too, all of a plane before any of it is written. One header for both images with a
 * mask is refused.
 *
 * Statuses, which orvGetErrStatus() tells after the call: the header's with "Incorrect Image"; -5 for one header twice with a
 * mask, different depth, an axis other than -1, 0 and 1, depth 1U with an alpha channel, different data orders with several
 * channels in both images, and different origin; -15 for different numbers of channels to process; -50 for a tiled image or
 * depth 1U; -4 for exhausted memory, and for the empty rectangles named above. Nothing is written after a failure.
 * @param srcImage  source
 * @param dstImage  destination
 * @param flipAxis  0, 1 or -1
 */
ORV_API void orvMirror(const OrvImage *srcImage, OrvImage *dstImage, int32_t flipAxis);
/** @} */

/** @defgroup processor Choice of the processor's build
 *  Every kernel exists in six builds: 0 plain, 1 MMX and SSE, 2 SSE2, 3 SSE3, 4 SSSE3, 5 SSE4.1. A library left alone runs
 *  build 0. Results do not depend on the build.
 *  @{ */

/**
 * Chooses the build for the processor that the program runs on. Call it at most once, before any other call of the library.
 * @return 0, or 20 when the processor cannot be told (no `cpuid`) or is not of the vendor whose models the library knows by
 *         number; in the latter case the build was chosen by the processor's features all the same
 */
ORV_API int32_t krnClassify(void);

/** @return the classification code of the processor, 0 when it cannot be told. */
ORV_API int32_t krnCpuCode(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
