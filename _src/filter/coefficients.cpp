// Coefficients as floats.
#include "filter/coefficients.h"

#include "filter/conv_record.h"
#include "float_samples.h"
#include "kernels.h"

namespace orv {

const float *takeCoefficients(const OrvConvKernel &kernel, std::uint8_t *&work)
{
    const std::int32_t count = kernel.nCols * kernel.nRows, bytes = count * 4;
    std::uint8_t *const floats = work;
    krnConvert32s32f(kernel.values, bytes, floats, bytes, count, 1);
    const float divisor = static_cast<float>(static_cast<std::uint32_t>(divisorOf(kernel)));
    krnMulC32fC1I(1.0f / divisor, floats, bytes, count, 1);
    work += coefficientBytes(kernel);
    return reinterpret_cast<const float *>(floats);
}

const float *takeCoefficients(const OrvConvKernelFP &kernel, std::uint8_t *&)
{
    return kernel.values;
}

std::int64_t coefficientBytes(const OrvConvKernel &kernel)
{
    return FloatRaster::bytes(std::int64_t{kernel.nCols} * kernel.nRows, 1);
}

std::int64_t coefficientBytes(const OrvConvKernelFP &)
{
    return 0;
}

} // namespace orv
