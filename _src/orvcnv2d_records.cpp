// Convolution records: created, read and deleted.
#include <cstdint>
#include <limits>
#include <type_traits>

#include "filter/conv_record.h"
#include "kernels.h"
#include "report.h"

// As ORV_REPORT, where one function stands for several exported ones and was told the name.
#define REPORT_FOR(function, status, context) orvError(status, function, context, unitName, __LINE__)

namespace {

using namespace orv;

constexpr const char *unitName = "orvcnv2d";

// The record without its shift; null after a report.
template <class Record, class Given>
Record *create(const char *function, std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX, std::int32_t anchorY,
               const Given *values)
{
    if (values == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "(values == 0)");
        return nullptr;
    }
    if (nRows <= 0 || nCols <= 0) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "(nRows<=0 || nCols<=0)");
        return nullptr;
    }
    if (anchorX < 0 || anchorY < 0 || nRows <= anchorY || nCols <= anchorX) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "(anchorX<0 || anchorY<0 || nRows<=anchorY || nCols<=anchorX)");
        return nullptr;
    }
    auto *kernel = static_cast<Record *>(krnMallocBytes(static_cast<std::int32_t>(sizeof(Record))));
    if (kernel == nullptr) {
        REPORT_FOR(function, ORV_STATUS_NO_MEMORY, "Allocation failure");
        return nullptr;
    }
    using Value = std::remove_pointer_t<decltype(kernel->values)>;
    const std::int64_t count = std::int64_t{nCols} * nRows;
    const bool fits = count <= std::numeric_limits<std::int32_t>::max() / static_cast<std::int32_t>(sizeof(Value));
    auto *copies = fits ? static_cast<Value *>(krnMalloc32(static_cast<std::int32_t>(count))) : nullptr;
    if (copies == nullptr) {
        krnFree(kernel);
        REPORT_FOR(function, ORV_STATUS_NO_MEMORY, "Allocation failure");
        return nullptr;
    }
    *kernel = {};
    kernel->nCols = nCols;
    kernel->nRows = nRows;
    kernel->anchorX = nCols - anchorX - 1;
    kernel->anchorY = nRows - anchorY - 1;
    kernel->values = copies;
    for (std::int64_t i = 0; i < count; ++i)
        copies[i] = values[i];
    return kernel;
}

OrvConvKernel *withShift(OrvConvKernel *kernel, std::int32_t nShiftR)
{
    if (kernel != nullptr)
        kernel->nShiftR = nShiftR;
    return kernel;
}

// Whether the record can be read into these; reports why not. The stored status decides at two of the tests, so that a
// failure of an earlier call stops the reading. The pointers are tested too: a handler may clear the status.
template <class Record, class Value>
bool readable(const char *function, const Record *kernel, const std::int32_t *nCols, const std::int32_t *nRows,
              const std::int32_t *anchorX, const std::int32_t *anchorY, Value *const *values)
{
    if (kernel == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "kernel==0");
        return false;
    }
    if (badStructure(*kernel)) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "Bad kernel structure");
        return false;
    }
    if (nRows == nullptr)
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "nRows==0");
    if (nCols == nullptr)
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "nCols==0");
    if (orvGetErrStatus() < 0 || nRows == nullptr || nCols == nullptr)
        return false;
    if (anchorX == nullptr)
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "anchorX==0");
    if (anchorY == nullptr)
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "anchorY==0");
    if (orvGetErrStatus() < 0 || anchorX == nullptr || anchorY == nullptr)
        return false;
    if (values == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "values==0");
        return false;
    }
    return true;
}

// Coefficients narrow to their low byte where `Value` is one.
template <class Record, class Value>
void read(const Record &kernel, std::int32_t &nCols, std::int32_t &nRows, std::int32_t &anchorX, std::int32_t &anchorY,
          Value *values)
{
    nCols = kernel.nCols;
    nRows = kernel.nRows;
    anchorX = kernel.nCols - kernel.anchorX - 1;
    anchorY = kernel.nRows - kernel.anchorY - 1;
    if (kernel.values == nullptr || values == nullptr)
        return;
    const std::int64_t count = std::int64_t{kernel.nCols} * kernel.nRows;
    for (std::int64_t i = 0; i < count; ++i)
        values[i] = static_cast<Value>(kernel.values[i]);
}

template <class Value>
void readWithShift(const char *function, const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows,
                   std::int32_t *anchorX, std::int32_t *anchorY, Value **values, std::int32_t *nShiftR)
{
    if (!readable(function, kernel, nCols, nRows, anchorX, anchorY, values))
        return;
    if (nShiftR == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "nShiftR==0");
        return;
    }
    *nShiftR = kernel->nShiftR;
    read(*kernel, *nCols, *nRows, *anchorX, *anchorY, *values);
}

template <class Record> void release(const char *function, Record *kernel)
{
    if (kernel == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "kernel==0");
        return;
    }
    if (kernel->values == nullptr) {
        REPORT_FOR(function, ORV_STATUS_BAD_ARGUMENT, "kernel->values==0");
        return;
    }
    krnFree(kernel->values);
    krnFree(kernel);
}

} // namespace

extern "C" {

OrvConvKernel *orvCreateConvKernel(std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX, std::int32_t anchorY,
                                   const std::int32_t *values, std::int32_t nShiftR)
{
    return withShift(create<OrvConvKernel>(__func__, nCols, nRows, anchorX, anchorY, values), nShiftR);
}

OrvConvKernel *orvCreateConvKernelChar(std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX,
                                       std::int32_t anchorY, const signed char *values, std::int32_t nShiftR)
{
    return withShift(create<OrvConvKernel>(__func__, nCols, nRows, anchorX, anchorY, values), nShiftR);
}

OrvConvKernelFP *orvCreateConvKernelFP(std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX,
                                       std::int32_t anchorY, const float *values)
{
    return create<OrvConvKernelFP>(__func__, nCols, nRows, anchorX, anchorY, values);
}

void orvGetConvKernel(const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                      std::int32_t *anchorY, std::int32_t **values, std::int32_t *nShiftR)
{
    readWithShift(__func__, kernel, nCols, nRows, anchorX, anchorY, values, nShiftR);
}

void orvGetConvKernelChar(const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                          std::int32_t *anchorY, signed char **values, std::int32_t *nShiftR)
{
    readWithShift(__func__, kernel, nCols, nRows, anchorX, anchorY, values, nShiftR);
}

void orvGetConvKernelFP(const OrvConvKernelFP *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                        std::int32_t *anchorY, float **values)
{
    if (readable(__func__, kernel, nCols, nRows, anchorX, anchorY, values))
        read(*kernel, *nCols, *nRows, *anchorX, *anchorY, *values);
}

void orvDeleteConvKernel(OrvConvKernel *kernel)
{
    release(__func__, kernel);
}

void orvDeleteConvKernelFP(OrvConvKernelFP *kernel)
{
    release(__func__, kernel);
}

} // extern "C"
