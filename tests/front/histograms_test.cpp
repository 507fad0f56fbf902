// Histograms, the counts of equalised images, and what functions with records refuse.
#include <algorithm>

#include <gtest/gtest.h>

#include "front/call.h"
#include "front/lut_records.h"
#include "front/measured.h"
#include "front/memory_watch.h"

namespace front {
namespace {

using Counts = std::vector<std::int32_t>;

std::vector<LutRecord> drawRecords(Random &random)
{
    std::vector<LutRecord> records;
    for (int channel = 0; channel < 5; ++channel)
        records.push_back(drawLut(random));
    return records;
}

// The pixels that no mask selects are level 0, and are taken off where the first key is 0.
Counts countsOf(const LutRecord &record, const Measured &measured, std::int32_t channel, bool onlySelected)
{
    Counts counts;
    for (int i = 0; i < record.intervals(); ++i)
        counts.push_back(0);
    for (std::int32_t y = 0; y < measured.height; ++y)
        for (std::int32_t x = 0; x < measured.width; ++x) {
            const bool selected = measured.selected(x, y);
            const int level = selected || !onlySelected ? static_cast<int>(measured.at(0, x, y, channel).bits) : 0;
            for (std::size_t i = 0; i < counts.size(); ++i)
                counts[i] += level >= record.keys[i] && level < record.keys[i + 1];
            counts[0] -= !selected && record.keys[0] == 0;
        }
    return counts;
}

Counts countsIn(const LutRecord &record)
{
    return {record.values.begin(), record.values.end() - 1};
}

TEST(Histograms, CountWhatANaiveSearchCounts)
{
    Random random(91);
    Reports reports;
    for (int round = 0; round < 1500; ++round) {
        const Measured measured = drawMeasured(ORV_DEPTH_8U, 1, random);
        const std::vector<LutRecord> records = drawRecords(random);
        OrvImage &header = measured.images.front()->header;
        LutCall call(records, header);
        const Slot slot(random);
        const OrvStatus status = call.run(orvComputeHisto, &header);
        const OrvStatus expected = measured.failsEmpty() ? ORV_STATUS_NO_MEMORY + 0 : measured.empty() ? -6 : 0;
        ASSERT_EQ(status, expected) << measured.first();
        ASSERT_EQ(reports.all().size(), status == ORV_STATUS_NO_MEMORY ? 1u : 0u);
        reports.clear();
        const bool counted = status == ORV_STATUS_OK && !measured.unserved();
        const std::int32_t first = std::max(0, clipped(measured.first()).coi - 1);
        for (std::int32_t channel = 0; channel < static_cast<std::int32_t>(call.records.size()); ++channel) {
            const std::size_t i = static_cast<std::size_t>(channel);
            const bool processed = counted && channel >= first && channel < first + measured.channels();
            ASSERT_EQ(countsIn(call.records[i]),
                      processed ? countsOf(records[i], measured, channel - first, true) : countsIn(records[i]))
                << measured.first() << " channel " << channel;
            ASSERT_EQ(call.records[i].keys, records[i].keys);
            ASSERT_EQ(call.records[i].values.back(), records[i].values.back());
        }
    }
}

// The results of all pixels are counted, whatever masks select.
TEST(Histograms, EqualizedImagesAreCounted)
{
    Random random(92);
    Reports reports;
    for (int round = 0; round < 700; ++round) {
        const Measured measured = drawMeasured(ORV_DEPTH_8U, 2, random);
        const std::vector<LutRecord> records = drawRecords(random);
        OrvImage &source = measured.images[0]->header, &destination = measured.images[1]->header;
        // What comes of all pixels, in the place of the source.
        Measured equalized = measured;
        equalized.images[0] = std::make_shared<TestImage>(
            measured.first().form, std::make_shared<Bytes>(*measured.first().memory()), measured.first().start());
        equalized.images[0]->header.roi = source.roi;
        const std::int32_t first = std::max(0, clipped(measured.first()).coi - 1);
        const OrvROI roi = clipped(measured.first());
        for (std::int32_t i = 0; i < measured.channels(); ++i)
            for (std::int32_t y = 0; y < measured.height; ++y)
                for (std::int32_t x = 0; x < measured.width; ++x)
                    if (const std::uint32_t level = measured.at(0, x, y, i).bits; level != 255)
                        equalized.images[0]->set(
                            roi.xOffset + x, roi.yOffset + y, first + i,
                            {ORV_DEPTH_8U, std::uint32_t(equalizedLevel(records[std::size_t(first + i)], int(level)))});
        if (source.maskROI != nullptr)
            equalized.images[0]->setMask(std::make_shared<TestImage>(
                measured.first().mask()->form, measured.first().mask()->memory(), measured.first().mask()->start()));
        if (source.maskROI != nullptr)
            equalized.images[0]->mask()->header.roi = source.maskROI->roi;

        LutCall call(records, source);
        const Slot slot(random);
        const OrvStatus status = call.run(orvHistoEqualize, &source, &destination);
        reports.clear();
        const bool served =
            measured.unserved() ||
            (measured.inPlanes() ? false : measured.first().form.channels == 2 || measured.first().form.channels == 5);
        for (std::int32_t i = 0; i < measured.channels(); ++i) {
            const std::size_t at = static_cast<std::size_t>(first + i);
            ASSERT_EQ(countsIn(call.records[at]), status != ORV_STATUS_OK || served
                                                      ? countsIn(records[at])
                                                      : countsOf(records[at], equalized, i, false))
                << measured.first() << *measured.images[1] << " channel " << i;
        }
    }
}

// A record of one channel, and arrays that a test may take away.
struct OneRecord {
    std::int32_t keys[4] = {0, 100, 200, 256}, values[4] = {7, 8, 9, 10}, factors[4] = {1, 2, 3, 4};
    OrvLUT lut = {4, keys, values, factors, 1};
    OrvLUT *pointers[1] = {&lut};
};

enum ArgumentFault : unsigned { nullRecords = 1, signedSource = 2, signedDestination = 4, floatSource = 8 };

// Reports pile up before the stored status is looked at, which may be that of an earlier call.
TEST(Histograms, ArgumentsAreReportedBeforeTheStatusEndsTheCall)
{
    Random random(93);
    TestImage source({}, random), destination({}, random);
    const char *const ofSource = "(srcImage->depth & ORV_DEPTH_SIGN) || (srcImage->depth == ORV_DEPTH_32F)";
    const char *const ofDestination = "(dstImage->depth & ORV_DEPTH_SIGN) || (dstImage->depth == ORV_DEPTH_32F)";
    const char *const names[] = {"orvComputeHisto", "orvContrastStretch", "orvHistoEqualize"};
    for (int function = 0; function < 3; ++function)
        for (unsigned faults = 0; faults < 16; ++faults)
            for (const OrvStatus earlier : {ORV_STATUS_OK + 0, ORV_STATUS_BAD_COI + 0}) {
                Reports reports;
                OneRecord record;
                OrvImage from = source.header, into = destination.header;
                if ((faults & signedSource) != 0)
                    from.depth = ORV_DEPTH_16S;
                else if ((faults & floatSource) != 0)
                    from.depth = ORV_DEPTH_32F;
                if ((faults & signedDestination) != 0)
                    into.depth = ORV_DEPTH_8S;
                OrvLUT **const records = (faults & nullRecords) != 0 ? nullptr : record.pointers;
                std::vector<Report> expected;
                const auto expect = [&](bool reported, const char *context) {
                    if (reported)
                        expected.push_back({ORV_STATUS_BAD_ARGUMENT, names[function], context, "orvhist"});
                };
                const bool wrongSource = from.depth != ORV_DEPTH_8U;
                expect(records == nullptr, "lut==0");
                expect(wrongSource, ofSource);
                expect(function > 0 && into.depth != ORV_DEPTH_8U, ofDestination);
                expect(function == 1 && wrongSource, "srcImage->depth != ORV_DEPTH_8U");
                orvSetErrStatus(earlier);
                const OrvStatus status = function == 0   ? orvComputeHisto(&from, records)
                                         : function == 1 ? orvContrastStretch(&from, &into, records)
                                                         : orvHistoEqualize(&from, &into, records);
                EXPECT_EQ(reports.all(), expected);
                EXPECT_EQ(status, expected.empty() ? earlier : ORV_STATUS_BAD_ARGUMENT + 0);
                EXPECT_EQ(record.values[0] == 7, function == 1 || status != ORV_STATUS_OK);
            }
}

// A handler that clears the status lets a call go on. It must not follow a null pointer, nor read other samples.
TEST(Histograms, ClearedStatusesLetNothingThrough)
{
    Random random(94);
    const auto clear = [](OrvStatus, const char *, const char *, const char *, std::int32_t) -> OrvStatus {
        orvSetErrStatus(ORV_STATUS_OK);
        return 55;
    };
    for (const std::int32_t depth : {ORV_DEPTH_8U + 0, ORV_DEPTH_16U + 0, ORV_DEPTH_16S, ORV_DEPTH_32F + 0}) {
        TestImage source({.depth = depth}, random), destination({.depth = depth}, random);
        const Bytes before = *destination.memory();
        Reports reports;
        OneRecord record;
        orvRedirectError(clear);
        const bool bytes = depth == ORV_DEPTH_8U;
        EXPECT_EQ(orvComputeHisto(&source.header, nullptr), bytes ? 55 : 0);
        EXPECT_EQ(orvContrastStretch(&source.header, &destination.header, nullptr), 55);
        EXPECT_EQ(orvHistoEqualize(&source.header, &destination.header, nullptr), bytes ? 55 : 0);
        EXPECT_EQ(orvContrastStretch(&source.header, &destination.header, record.pointers), 0);
        EXPECT_EQ(*destination.memory() == before, !bytes);
    }
}

TEST(Histograms, OtherUnsignedDepthsGiveTheFirstChannel)
{
    Random random(95);
    Reports reports;
    OneRecord record;
    TestImage words({.depth = ORV_DEPTH_16U, .channels = 4}, random), bits({.depth = ORV_DEPTH_1U}, random);
    words.setWholeRectangle(3);
    EXPECT_EQ(orvComputeHisto(&words.header, record.pointers), 2);
    EXPECT_EQ(orvHistoEqualize(&words.header, &words.header, record.pointers), 2);
    EXPECT_EQ(orvComputeHisto(&bits.header, record.pointers), 0);
    EXPECT_EQ(orvContrastStretch(&bits.header, &bits.header, record.pointers), ORV_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(record.values[0], 7);
    EXPECT_EQ(reports.all().size(), 1u);
}

// Each row has one fault more than the next one; the first found is reported, and nothing is written.
TEST(Histograms, ChecksOfImagesAndRecordsInTheirOrder)
{
    enum Faults : unsigned {
        badAlign = 1,
        otherDepth = 2,
        otherOrder = 4,
        otherChannels = 8,
        nullRecord = 16,
        fewKeys = 32,
        nullKeys = 64,
        negativeKey = 128,
        highKey = 256,
        descending = 512,
        tiled = 1024,
        nullValues = 2048,
        nullFactors = 4096,
    };
    const struct {
        unsigned fault;
        OrvStatus status;
        const char *context;
        bool ofHistogram = true, ofEqualizer = true;
    } rows[] = {{badAlign, ORV_STATUS_BAD_ALIGN, "Incorrect Image"},
                {otherDepth, ORV_STATUS_BAD_ARGUMENT, "(srcImage->depth != dstImage->depth)", false},
                {otherOrder, ORV_STATUS_BAD_ARGUMENT, "(srcImage->dataOrder != dstImage->dataOrder)", false},
                {otherChannels, ORV_STATUS_BAD_CHANNELS, "", false},
                {nullRecord, ORV_STATUS_NULL_POINTER, "Some pointers are NULL"},
                {fewKeys, ORV_STATUS_BAD_ARGUMENT, "lut[ch]->num < 2"},
                {nullKeys, ORV_STATUS_NULL_POINTER, "Some pointers are NULL"},
                {negativeKey, ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[0] < 0"},
                {highKey, ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[lut[ch]->num-1] > 256"},
                {descending, ORV_STATUS_BAD_ARGUMENT, "lut[ch]->key[i] > lut[ch]->key[i+1]"},
                {tiled, ORV_STATUS_NOT_IMPLEMENTED, ""},
                {nullValues, ORV_STATUS_NULL_POINTER, "Some pointers are NULL"},
                {nullFactors, ORV_STATUS_NULL_POINTER, "Some pointers are NULL", false, false}};
    const char *const names[] = {"orvComputeHisto", "orvContrastStretch", "orvHistoEqualize"};
    Random random(96);
    TestImage source({.channels = 3}, random), destination({.channels = 3}, random);
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    const Bytes before = *destination.memory();
    for (int function = 0; function < 3; ++function)
        for (const bool alone : {false, true})
            for (std::size_t row = 0; row < std::size(rows); ++row) {
                if ((function == 0 && !rows[row].ofHistogram) || (function == 2 && !rows[row].ofEqualizer))
                    continue;
                unsigned faults = 0;
                for (std::size_t later = row; later < std::size(rows) && (later == row || !alone); ++later)
                    faults |= rows[later].fault;
                OneRecord good, bad;
                OrvImage from = source.header, into = destination.header;
                const auto has = [&](unsigned fault) { return (faults & fault) != 0; };
                from.align = has(badAlign) ? 5 : 4;
                into.depth = has(otherDepth) ? ORV_DEPTH_16U : ORV_DEPTH_8U;
                into.dataOrder = has(otherOrder) ? 1 : 0;
                into.nChannels = has(otherChannels) ? 4 : 3;
                bad.lut.num = has(fewKeys) ? 1 : 4;
                bad.lut.key = has(nullKeys) ? nullptr : bad.keys;
                bad.lut.value = has(nullValues) ? nullptr : bad.values;
                bad.lut.factor = has(nullFactors) ? nullptr : bad.factors;
                bad.keys[0] = has(negativeKey) ? -1 : 0;
                bad.keys[1] = has(descending) ? 201 : 100;
                bad.keys[3] = has(highKey) ? 257 : 256;
                if (has(tiled)) {
                    from.imageData = nullptr;
                    from.tileInfo = &tile;
                }
                OrvLUT *pointers[] = {&good.lut, &good.lut, has(nullRecord) ? nullptr : &bad.lut};
                Reports reports;
                const OrvStatus status = function == 0   ? orvComputeHisto(&from, pointers)
                                         : function == 1 ? orvContrastStretch(&from, &into, pointers)
                                                         : orvHistoEqualize(&from, &into, pointers);
                EXPECT_EQ(status, rows[row].status) << rows[row].context;
                const std::vector<Report> expected = {
                    {rows[row].status, names[function], rows[row].context, "orvhist"}};
                EXPECT_EQ(reports.all(), expected);
                EXPECT_EQ(good.values[0], 7) << rows[row].context;
                EXPECT_EQ(*destination.memory(), before);
            }
}

// No result of another case is as large, nor are records written before all memory is there.
TEST(Histograms, ExhaustedMemory)
{
    Random random(97);
    int provoked = 0;
    for (const std::int32_t channels : {1, 3, 5})
        for (const std::int32_t coi : {0, 1})
            for (const bool masked : {false, true})
                for (const bool equalizes : {false, true}) {
                    TestImage image({.channels = channels, .order = channels == 5, .width = 9, .height = 5}, random);
                    const Bytes before = *image.memory();
                    image.setWholeRectangle(coi);
                    if (masked)
                        image.setMask(randomMask(9, 5, random));
                    for (int failing = 0;; ++failing) {
                        Reports reports;
                        LutCall call({LutRecord{{0, 256}, {4711, 0}, {0, 0}, false},
                                      LutRecord{{0, 256}, {4711, 0}, {0, 0}, false},
                                      LutRecord{{0, 256}, {4711, 0}, {0, 0}, false},
                                      LutRecord{{0, 256}, {4711, 0}, {0, 0}, false},
                                      LutRecord{{0, 256}, {4711, 0}, {0, 0}, false}},
                                     image.header);
                        MemoryWatch watch;
                        watch.failAt(failing);
                        const OrvStatus status = equalizes ? call.run(orvHistoEqualize, &image.header, &image.header)
                                                           : call.run(orvComputeHisto, &image.header);
                        EXPECT_EQ(watch.live(), 0u);
                        if (watch.allocations() <= failing) {
                            EXPECT_EQ(status, ORV_STATUS_OK);
                            break;
                        }
                        ++provoked;
                        const std::vector<Report> expected = {{ORV_STATUS_NO_MEMORY,
                                                               equalizes ? "orvHistoEqualize" : "orvComputeHisto",
                                                               "Insufficient memory", "orvhist"}};
                        EXPECT_EQ(status, ORV_STATUS_NO_MEMORY);
                        EXPECT_EQ(reports.all(), expected);
                        EXPECT_EQ(call.records[0].values[0], 4711);
                        EXPECT_EQ(*image.memory(), before);
                    }
                }
    EXPECT_GT(provoked, 10);
}

// The range of a threshold is tested before tiles and depths that are not served.
TEST(Threshold, RangesOfDepths)
{
    const struct {
        std::int32_t depth, lowest, highest;
        const char *above, *below;
    } rows[] = {{ORV_DEPTH_8S, -128, 127, "((srcImage->depth == (0x80000000| 8)) && (Threshold > 127))",
                 "((srcImage->depth == (0x80000000| 8)) && (Threshold < -128))"},
                {ORV_DEPTH_8U, 0, 255, "((srcImage->depth == 8) && (Threshold > 255))",
                 "((srcImage->depth == 8) && (Threshold < 0))"},
                {ORV_DEPTH_16S, -32768, 32767, "((srcImage->depth == (0x80000000|16)) && (Threshold > 32767))",
                 "((srcImage->depth == (0x80000000|16)) && (Threshold < -32768))"},
                {ORV_DEPTH_16U, 0, 65535, "((srcImage->depth == 16) && (Threshold > 65535))",
                 "((srcImage->depth == 16) && (Threshold < 0))"},
                {ORV_DEPTH_32S, leastInt, mostInt, "", ""}};
    Random random(98);
    OrvTileInfo tile = {provideNoTile, 0, nullptr, 8, 8};
    for (const auto &[depth, lowest, highest, above, below] : rows) {
        TestImage source({.depth = depth}, random), destination({}, random);
        source.header.imageData = nullptr;
        source.header.tileInfo = &tile;
        for (const std::int32_t level :
             {lowest, highest, lowest - (lowest > leastInt), highest + (highest < mostInt)}) {
            Reports reports;
            const char *const context = level > highest ? above : level < lowest ? below : "";
            const OrvStatus expected =
                level > highest || level < lowest ? ORV_STATUS_BAD_ARGUMENT : ORV_STATUS_NOT_IMPLEMENTED;
            EXPECT_EQ(orvThreshold(&source.header, &destination.header, level), expected);
            const std::vector<Report> all = {{expected, "orvThreshold", context, "orvthres"}};
            EXPECT_EQ(reports.all(), all) << level;
        }
    }
}

// Depths that no chain leads to are no failure, though memory is exhausted.
TEST(Threshold, OtherDestinationsStay)
{
    Random random(99);
    const std::pair<std::int32_t, std::int32_t> pairs[] = {{ORV_DEPTH_8U, ORV_DEPTH_1U},
                                                           {ORV_DEPTH_16S, ORV_DEPTH_1U},
                                                           {ORV_DEPTH_16S, ORV_DEPTH_8S},
                                                           {ORV_DEPTH_16S, ORV_DEPTH_32S}};
    for (const auto &[from, to] : pairs) {
        TestImage source({.depth = from}, random), destination({.depth = to}, random);
        destination.setMask(randomMask(8, 8, random));
        destination.mask()->header.origin = destination.header.origin;
        const Bytes before = *destination.memory();
        Reports reports;
        EXPECT_EQ(orvThreshold(&source.header, &destination.header, 9), ORV_STATUS_OK);
        EXPECT_TRUE(reports.all().empty());
        EXPECT_EQ(*destination.memory(), before);
    }
}

} // namespace
} // namespace front
