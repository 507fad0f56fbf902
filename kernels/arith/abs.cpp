// Magnitude of floats: the sign bit goes, also that of a not-a-number.
#include <cstddef>
#include <cstdint>

#include "signatures.h"

#include "begin.h"

namespace {

#include "rows.h"

constexpr std::uint32_t magnitudeBits = 0x7FFFFFFF;

KrnStatus magnitude(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                    std::int32_t width, std::int32_t height, std::int32_t channels)
{
    const auto row = [=](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        const std::size_t samples = pixels * static_cast<std::size_t>(channels);
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < samples; ++i)
            store(out, i, load<std::uint32_t>(in, i) & magnitudeBits);
    };
    const std::int32_t pixelBytes = channels * 4;
    return overRows(width, height, row, from(source, sourceStep, pixelBytes),
                    to(destination, destinationStep, pixelBytes));
}

} // namespace

#define ORV_ABS(name, channels)                                                                                  \
    KrnStatus name(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep, \
                   std::int32_t width, std::int32_t height)                                                      \
    {                                                                                                            \
        return magnitude(source, sourceStep, destination, destinationStep, width, height, channels);             \
    }

ORV_ABS(krnAbs32fC1, 1)
ORV_ABS(krnAbs32fC3, 3)
ORV_ABS(krnAbs32fC4, 4)

KrnStatus krnAbs32fAC4(const void *source, std::int32_t sourceStep, void *destination, std::int32_t destinationStep,
                       std::int32_t width, std::int32_t height)
{
    const auto row = [](std::size_t pixels, const unsigned char *in, unsigned char *out) {
        ORV_INDEPENDENT
        for (std::size_t i = 0; i < pixels; ++i)
            for (std::size_t channel = 0; channel < 3; ++channel)
                store(out, 4 * i + channel, load<std::uint32_t>(in, 4 * i + channel) & magnitudeBits);
    };
    return overRows(width, height, row, from(source, sourceStep, 16), to(destination, destinationStep, 16));
}

#include "end.h"
