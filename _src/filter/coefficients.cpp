// Coefficients as floats.
#include "filter/coefficients.h"

#include "filter/conv_record.h"
#include "float_samples.h"
#include "kernels.h"

namespace orv {

KrnStatus takeCoefficients(const OrvConvKernel &kernel, std::uint8_t *&scratch, const float *&coefficients)
{
    const std::int32_t count = kernel.nCols * kernel.nRows;
    const Raster floats = takeFloatRows(scratch, count, 1);
    coefficients = reinterpret_cast<const float *>(floats.data);
    if (const KrnStatus status = krnConvert32s32f(kernel.values, count * 4, floats.data, floats.step, count, 1);
        status != KRN_OK)
        return status;
    const float divisor = static_cast<float>(static_cast<std::uint32_t>(divisorOf(kernel)));
    return krnMulC32fC1(floats.data, floats.step, 1.0f / divisor, floats.data, floats.step, count, 1);
}

KrnStatus takeCoefficients(const OrvConvKernelFP &kernel, std::uint8_t *&, const float *&coefficients)
{
    coefficients = kernel.values;
    return KRN_OK;
}

std::int64_t coefficientBytes(const OrvConvKernel &kernel)
{
    return floatRowsBytes(std::int64_t{kernel.nCols} * kernel.nRows, 1);
}

std::int64_t coefficientBytes(const OrvConvKernelFP &)
{
    return 0;
}

} // namespace orv
