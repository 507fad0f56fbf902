// A constant as kernels take it.
#pragma once

#include <cstdint>
#include <cstring>

namespace orv {

// A constant as four values of a sample's width.
struct FourValues {
    alignas(4) unsigned char bytes[16];

    FourValues(std::int32_t value, std::int32_t sampleBytes)
    {
        for (std::int32_t i = 0; i < 4; ++i) {
            const std::uint8_t byte = static_cast<std::uint8_t>(value);
            const std::uint16_t word = static_cast<std::uint16_t>(value);
            const void *from = sampleBytes == 1   ? static_cast<const void *>(&byte)
                               : sampleBytes == 2 ? static_cast<const void *>(&word)
                                                  : static_cast<const void *>(&value);
            std::memcpy(bytes + i * sampleBytes, from, static_cast<std::size_t>(sampleBytes));
        }
    }
};

} // namespace orv
