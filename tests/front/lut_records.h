// Records of levels, and what they say about one level, worked out for that level alone.
#pragma once

#include <algorithm>
#include <vector>

#include "front/test_image.h"

namespace front {

struct LutRecord {
    std::vector<std::int32_t> keys, values, factors;
    bool interpolates;

    int intervals() const { return static_cast<int>(keys.size()) - 1; }
};

// Ascending keys with equal ones among them, at both ends at times, counts of all sizes and few that are not 0.
inline LutRecord drawLut(Random &random)
{
    LutRecord record;
    const int count = random.once(4) ? random.between(2, 60) : random.between(2, 6);
    for (int i = 0; i < count; ++i)
        record.keys.push_back(random.between(0, 256));
    std::sort(record.keys.begin(), record.keys.end());
    if (random.once(2))
        record.keys.front() = 0;
    if (random.once(2))
        record.keys.back() = 256;
    const bool few = random.once(4);
    for (int i = 0; i < count; ++i) {
        record.values.push_back(few && random.between(0, 3) != 0 ? 0
                                : random.once(10)                ? static_cast<int>(random.bits())
                                                                 : random.between(0, random.once(2) ? 300 : 100000));
        record.factors.push_back(random.once(4) ? static_cast<int>(random.bits()) : random.between(-3, 3));
    }
    record.interpolates = random.once(2);
    return record;
}

// One for each channel that a header asks for: none beyond.
inline std::int32_t recordsFor(const OrvImage &image)
{
    if (image.roi != nullptr && image.roi->coi != 0)
        return image.roi->coi;
    return image.roi == nullptr && image.nChannels == 4 && image.alphaChannel != 0 ? 3 : image.nChannels;
}

// Records of the library over copies of their own, for the channels from the first one that is processed on. The array
// ends with the last of them, for the sanitizer to see a read beyond.
struct LutCall {
    std::vector<LutRecord> records;
    std::vector<OrvLUT> luts;
    std::vector<OrvLUT *> pointers;

    LutCall(const std::vector<LutRecord> &drawn, const OrvImage &image) : records(drawn)
    {
        records.resize(static_cast<std::size_t>(std::min<std::int32_t>(recordsFor(image), 5)));
        for (LutRecord &record : records)
            luts.push_back({static_cast<std::int32_t>(record.keys.size()), record.keys.data(), record.values.data(),
                            record.interpolates ? record.factors.data() : nullptr, record.interpolates});
        for (OrvLUT &lut : luts)
            pointers.push_back(&lut);
        if (image.roi != nullptr && image.roi->coi != 0)
            std::fill(pointers.begin(), pointers.end() - 1, nullptr);
    }

    template <class Function, class... Image> OrvStatus run(Function function, Image *...images)
    {
        return function(images..., pointers.data());
    }
};

// A level inside an interval of a record; a record's equal keys are only met as its first ones.
inline int stretchedLevel(const LutRecord &record, int level)
{
    int interval = -1;
    for (int at = 0; at <= level && interval < record.intervals(); ++at)
        if (record.keys[static_cast<std::size_t>(interval + 1)] == at)
            ++interval;
    if (interval < 0 || interval == record.intervals())
        return level;
    const std::size_t i = static_cast<std::size_t>(interval);
    long long value = record.values[i];
    if (record.interpolates)
        value += static_cast<long long>(level - record.keys[i]) * (record.factors[i] & 0xFF);
    return static_cast<int>(value & 0xFF);
}

// Sums wrap as numbers of 32 bits do.
inline int equalizedLevel(const LutRecord &record, int level)
{
    std::int32_t sums[2] = {}; // up to the level, and up to the last one
    for (std::size_t i = 0; i + 1 < record.keys.size(); ++i)
        for (int at = record.keys[i]; at < record.keys[i + 1]; ++at) {
            const int width = record.keys[i + 1] - record.keys[i];
            const int share = record.values[i] / width + (at == record.keys[i + 1] - 1 ? record.values[i] % width : 0);
            for (std::int32_t &sum : sums)
                if (&sum != sums || at <= level)
                    sum = static_cast<std::int32_t>(static_cast<long long>(sum) + share);
        }
    if (sums[1] == 0)
        return 0;
    const std::int32_t product = static_cast<std::int32_t>(255LL * sums[0]);
    return static_cast<int>(std::clamp<long long>(static_cast<long long>(product) / sums[1], 0, 255));
}

} // namespace front
