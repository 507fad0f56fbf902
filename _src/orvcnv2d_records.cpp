// Convolution records: created, read and deleted.
#include <cstdint>
#include <limits>
#include <type_traits>

#include "call.h"
#include "filter/conv_record.h"
#include "kernels.h"

namespace {

using namespace orv;

constexpr const char *unitName = "orvcnv2d";

// The record without its shift; null after a report.
template <class Record, class Given>
Record *create(Call call, std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX, std::int32_t anchorY,
               const Given *values)
{
    if (call.refuses(values == nullptr, ORV_STATUS_BAD_ARGUMENT, "(values == 0)") ||
        call.refuses(nRows <= 0 || nCols <= 0, ORV_STATUS_BAD_ARGUMENT, "(nRows<=0 || nCols<=0)") ||
        call.refuses(anchorX < 0 || anchorY < 0 || nRows <= anchorY || nCols <= anchorX, ORV_STATUS_BAD_ARGUMENT,
                     "(anchorX<0 || anchorY<0 || nRows<=anchorY || nCols<=anchorX)"))
        return call.reportAs(nullptr);
    auto *kernel = static_cast<Record *>(krnMallocBytes(static_cast<std::int32_t>(sizeof(Record))));
    if (call.refuses(kernel == nullptr, ORV_STATUS_NO_MEMORY, "Allocation failure"))
        return call.reportAs(nullptr);
    using Value = std::remove_pointer_t<decltype(kernel->values)>;
    const std::int64_t count = std::int64_t{nCols} * nRows;
    const bool fits = count <= std::numeric_limits<std::int32_t>::max() / static_cast<std::int32_t>(sizeof(Value));
    auto *copies = fits ? static_cast<Value *>(krnMalloc32(static_cast<std::int32_t>(count))) : nullptr;
    if (call.refuses(copies == nullptr, ORV_STATUS_NO_MEMORY, "Allocation failure")) {
        krnFree(kernel);
        return call.reportAs(nullptr);
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

// Whether the record can be read; reports why not. A negative stored status ends the call at two places, even if it is
// that of an earlier call. The pointers are tested there too, because a handler may clear the status.
template <class Record, class Value>
bool readable(Call &call, const Record *kernel, const std::int32_t *nCols, const std::int32_t *nRows,
              const std::int32_t *anchorX, const std::int32_t *anchorY, Value *const *values)
{
    if (call.refuses(kernel == nullptr, ORV_STATUS_BAD_ARGUMENT, "kernel==0") ||
        call.refuses(badStructure(*kernel), ORV_STATUS_BAD_ARGUMENT, "Bad kernel structure"))
        return call.reportAs(false);
    call.reports(nRows == nullptr, ORV_STATUS_BAD_ARGUMENT, "nRows==0");
    call.reports(nCols == nullptr, ORV_STATUS_BAD_ARGUMENT, "nCols==0");
    if (Call::ended() || nRows == nullptr || nCols == nullptr)
        return false;
    call.reports(anchorX == nullptr, ORV_STATUS_BAD_ARGUMENT, "anchorX==0");
    call.reports(anchorY == nullptr, ORV_STATUS_BAD_ARGUMENT, "anchorY==0");
    if (Call::ended() || anchorX == nullptr || anchorY == nullptr)
        return false;
    return !call.refuses(values == nullptr, ORV_STATUS_BAD_ARGUMENT, "values==0") || call.reportAs(false);
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
void readWithShift(Call call, const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows,
                   std::int32_t *anchorX, std::int32_t *anchorY, Value **values, std::int32_t *nShiftR)
{
    if (!readable(call, kernel, nCols, nRows, anchorX, anchorY, values))
        return;
    if (call.refuses(nShiftR == nullptr, ORV_STATUS_BAD_ARGUMENT, "nShiftR==0")) {
        call.report();
        return;
    }
    *nShiftR = kernel->nShiftR;
    read(*kernel, *nCols, *nRows, *anchorX, *anchorY, *values);
}

template <class Record> void release(Call call, Record *kernel)
{
    if (call.refuses(kernel == nullptr, ORV_STATUS_BAD_ARGUMENT, "kernel==0") ||
        call.refuses(kernel->values == nullptr, ORV_STATUS_BAD_ARGUMENT, "kernel->values==0")) {
        call.report();
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
    return withShift(create<OrvConvKernel>(Call(unitName), nCols, nRows, anchorX, anchorY, values), nShiftR);
}

OrvConvKernel *orvCreateConvKernelChar(std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX,
                                       std::int32_t anchorY, const signed char *values, std::int32_t nShiftR)
{
    return withShift(create<OrvConvKernel>(Call(unitName), nCols, nRows, anchorX, anchorY, values), nShiftR);
}

OrvConvKernelFP *orvCreateConvKernelFP(std::int32_t nCols, std::int32_t nRows, std::int32_t anchorX,
                                       std::int32_t anchorY, const float *values)
{
    return create<OrvConvKernelFP>(Call(unitName), nCols, nRows, anchorX, anchorY, values);
}

void orvGetConvKernel(const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                      std::int32_t *anchorY, std::int32_t **values, std::int32_t *nShiftR)
{
    readWithShift(Call(unitName), kernel, nCols, nRows, anchorX, anchorY, values, nShiftR);
}

void orvGetConvKernelChar(const OrvConvKernel *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                          std::int32_t *anchorY, signed char **values, std::int32_t *nShiftR)
{
    readWithShift(Call(unitName), kernel, nCols, nRows, anchorX, anchorY, values, nShiftR);
}

void orvGetConvKernelFP(const OrvConvKernelFP *kernel, std::int32_t *nCols, std::int32_t *nRows, std::int32_t *anchorX,
                        std::int32_t *anchorY, float **values)
{
    Call call(unitName);
    if (readable(call, kernel, nCols, nRows, anchorX, anchorY, values))
        read(*kernel, *nCols, *nRows, *anchorX, *anchorY, *values);
}

void orvDeleteConvKernel(OrvConvKernel *kernel)
{
    release(Call(unitName), kernel);
}

void orvDeleteConvKernelFP(OrvConvKernelFP *kernel)
{
    release(Call(unitName), kernel);
}

} // extern "C"
