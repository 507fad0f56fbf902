// The classification of processors that the test describes, and of the one it runs on.
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "classify.h"
#include "kernel.h"

namespace {

using orv::ProcessorFacts;

enum Feature {
    mmx,
    sse,
    sse2,
    sse3,
    ssse3,
    sse41,
    sse42,
    emulation,
    hyperThreading,    // the bit and two logical processors
    hyperThreadingBit, // the bit with one logical processor
    twoLogical,        // two logical processors without the bit
    wide,              // 64-bit extensions
    wideWithoutLeaf    // their bit, in a leaf that does not exist
};

ProcessorFacts withFeatures(ProcessorFacts facts, std::initializer_list<Feature> features)
{
    for (Feature feature : features)
        switch (feature) {
        case mmx:
            facts.leaf1Edx |= 1u << 23;
            break;
        case sse:
            facts.leaf1Edx |= 1u << 25;
            break;
        case sse2:
            facts.leaf1Edx |= 1u << 26;
            break;
        case sse3:
            facts.leaf1Ecx |= 1u << 0;
            break;
        case ssse3:
            facts.leaf1Ecx |= 1u << 9;
            break;
        case sse41:
            facts.leaf1Ecx |= 1u << 19;
            break;
        case sse42:
            facts.leaf1Ecx |= 1u << 20;
            break;
        case emulation:
            facts.leaf1Edx |= 1u << 30;
            break;
        case hyperThreading:
            facts.leaf1Edx |= 1u << 28;
            facts.leaf1Ebx |= 2u << 16;
            break;
        case hyperThreadingBit:
            facts.leaf1Edx |= 1u << 28;
            facts.leaf1Ebx |= 1u << 16 | 0xFF00FFFFu;
            break;
        case twoLogical:
            facts.leaf1Ebx |= 2u << 16;
            break;
        case wide:
            facts.highestExtendedLeaf = 0x80000001u;
            facts.extended1Edx |= 1u << 29;
            break;
        case wideWithoutLeaf:
            facts.highestExtendedLeaf = 0x80000000u;
            facts.extended1Edx |= 1u << 29;
            break;
        }
    return facts;
}

// Base family 15 carries the extended family on top, 6 and 15 the extended model.
ProcessorFacts processor(std::uint32_t family, std::uint32_t model, std::initializer_list<Feature> features = {},
                         std::uint32_t cores = 1)
{
    ProcessorFacts facts = {};
    facts.hasCpuid = true;
    std::memcpy(facts.vendor, "GenuineIntel", 12);
    facts.highestLeaf = 4;
    const std::uint32_t baseFamily = family < 15 ? family : 15;
    const std::uint32_t unread = 0xF000F00Fu; // stepping, type and reserved bits
    facts.leaf1Eax = unread | (model & 15) << 4 | baseFamily << 8 | (model >> 4) << 16 | (family - baseFamily) << 20;
    facts.leaf4Eax = (cores - 1) << 26 | 0x03FFFFFFu;
    return withFeatures(facts, features);
}

ProcessorFacts ofOtherVendor(ProcessorFacts facts)
{
    facts.vendor[11] = 'x';
    return facts;
}

TEST(CpuCode, FollowsTheModel)
{
    const struct {
        ProcessorFacts facts;
        std::int32_t code;
    } cases[] = {
        {processor(5, 1), 1},
        {processor(5, 2), 1},
        {processor(5, 4), 2},
        {processor(6, 1), 3},
        {processor(6, 3), 4},
        {processor(6, 5), 4},
        {processor(6, 6), 4},
        {processor(6, 7), 5},
        {processor(6, 8), 5},
        {processor(6, 10), 5},
        {processor(6, 11), 5},
        {processor(6, 9), 9},
        {processor(6, 13), 9},
        {processor(6, 14), 0x0A},
        {processor(6, 14, {}, 2), 0x0B},
        {processor(6, 15), 0x21},
        {processor(6, 15, {}, 2), 0x21},
        {processor(6, 15, {}, 3), 0x22},
        {processor(6, 15, {}, 64), 0x22},
        {processor(6, 23), 0x44},
        {processor(6, 26), 0x23},
        {processor(6, 28), 0x24},
        {processor(15, 0), 6},
        {processor(15, 0, {hyperThreading}), 7},
        {processor(15, 0, {hyperThreadingBit}), 6},
        {processor(15, 0, {twoLogical}), 6},
        {processor(15, 0, {sse3}), 8},
        {processor(15, 0, {sse3, hyperThreading}), 8},
        {processor(15, 0, {sse3, wide}), 0x20},
        {processor(15, 0, {sse3, wideWithoutLeaf}), 8},
        {processor(15, 0xFF, {sse3, wide}), 0x20},
        {processor(7, 0, {emulation}), 0x10},
        {processor(6, 8, {emulation}), 0x11},
        {processor(15, 0, {emulation, sse3}), 0x11},
        {processor(22, 0, {emulation}), 0x11}, // 15 + 7
        {processor(4, 0, {emulation}), 0x11},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(orv::cpuCode(c.facts), c.code) << std::hex << c.facts.leaf1Eax;

        // Features decide only where the model does not.
        EXPECT_EQ(orv::cpuCode(withFeatures(c.facts, {mmx, sse, sse2, ssse3, sse41, sse42})), c.code)
            << std::hex << c.facts.leaf1Eax;
    }
}

TEST(CpuCode, IgnoresTheExtendedFieldsOfOtherFamilies)
{
    ProcessorFacts pentium = processor(5, 4);
    pentium.leaf1Eax |= 0x0FFF0000u;
    EXPECT_EQ(orv::cpuCode(pentium), 2);
    ProcessorFacts family6 = processor(6, 7);
    family6.leaf1Eax |= 0x0FF00000u;
    EXPECT_EQ(orv::cpuCode(family6), 5);
}

TEST(CpuCode, OneCoreWhereLeafFourIsMissing)
{
    EXPECT_EQ(orv::coresOf(processor(6, 15, {}, 64)), 64u);
    ProcessorFacts facts = processor(6, 15, {}, 4);
    facts.highestLeaf = 3;
    EXPECT_EQ(orv::coresOf(facts), 1u);
    EXPECT_EQ(orv::cpuCode(facts), 0x21);
    facts.highestLeaf = 0x80000000u;
    EXPECT_EQ(orv::coresOf(facts), 4u);
    EXPECT_EQ(orv::cpuCode(facts), 0x22);
}

TEST(CpuCode, FallsBackToFeatures)
{
    const struct {
        std::initializer_list<Feature> features;
        std::int32_t code, slot;
    } cases[] = {
        {{sse42, sse41, ssse3, sse3, sse2, sse, mmx, wide}, 0x45, 5},
        {{sse42}, 0x45, 5},
        {{sse41, ssse3, sse3, sse2, sse, mmx, wide}, 0x44, 5},
        {{sse41}, 0x44, 5},
        {{ssse3, sse3, sse2, sse, mmx, wide}, 0x43, 4},
        {{ssse3}, 0x43, 4},
        {{sse3, sse2, sse, mmx, wide}, 0x42, 3},
        {{sse3}, 0x42, 3},
        {{sse2, sse, mmx, wide}, 0x41, 2},
        {{sse2}, 0x41, 2},
        {{sse, mmx, wide}, 0x40, 1},
        {{sse}, 0x40, 1},
        {{mmx, wide, hyperThreading}, 0x60, 0},
        {{mmx, wideWithoutLeaf, hyperThreading}, 0, 0},
        {{}, 0, 0},
    };
    // Models without a code, whose neighbours have one, and models with a code under another vendor's name.
    const ProcessorFacts unknown[] = {
        processor(4, 1),
        processor(5, 0),
        processor(5, 3),
        processor(6, 0),
        processor(6, 2),
        processor(6, 4),
        processor(6, 12),
        processor(6, 16),
        processor(6, 22),
        processor(6, 24),
        processor(6, 25),
        processor(6, 27),
        processor(6, 29),
        processor(6, 0x8E),
        processor(7, 1),
        processor(16, 0),
        processor(22, 0),
        ofOtherVendor(processor(6, 7)),
        ofOtherVendor(processor(15, 0)),
        ofOtherVendor(processor(7, 0, {emulation})),
    };
    for (const auto &c : cases)
        for (const ProcessorFacts &facts : unknown) {
            const ProcessorFacts whole = withFeatures(facts, c.features);
            std::int32_t index = -1;
            EXPECT_EQ(orv::cpuCode(whole), c.code) << std::hex << facts.leaf1Eax;
            orv::classify(whole, index);
            EXPECT_EQ(index, c.slot) << std::hex << facts.leaf1Eax;
        }
}

TEST(Classify, MapsEveryCodeToASlot)
{
    const std::map<std::int32_t, std::int32_t> slots = {
        {5, 1},    {0x10, 1}, {0x11, 1}, {0x40, 1},            //
        {6, 2},    {7, 2},    {9, 2},    {0x41, 2},            //
        {8, 3},    {0x0A, 3}, {0x0B, 3}, {0x20, 3}, {0x42, 3}, //
        {0x21, 4}, {0x22, 4}, {0x24, 4}, {0x43, 4},            //
        {0x23, 5}, {0x25, 5}, {0x44, 5}, {0x45, 5},
    };
    for (std::int32_t code = -1; code <= 256; ++code)
        EXPECT_EQ(orv::slotOfCode(code), slots.contains(code) ? slots.at(code) : 0) << code;
}

TEST(Classify, StoresTheSlotAndRefusesStrangers)
{
    const ProcessorFacts known = processor(6, 28, {sse, sse2});
    ProcessorFacts withoutCpuid = processor(6, 28, {sse, sse2});
    withoutCpuid.hasCpuid = false;
    const struct {
        ProcessorFacts facts;
        std::int32_t result, index;
    } cases[] = {
        {known, 0, 4},
        {processor(5, 1), 0, 0},
        {processor(6, 14, {}, 2), 0, 3},
        {ofOtherVendor(known), 20, 2},
        {withoutCpuid, 20, 0},
        {ProcessorFacts{}, 20, 0},
    };
    for (const auto &c : cases) {
        std::int32_t index = -1;
        EXPECT_EQ(orv::classify(c.facts, index), c.result);
        EXPECT_EQ(index, c.index);
    }
    EXPECT_EQ(orv::cpuCode(withoutCpuid), 0);
}

TEST(Classify, ComparesAllTwelveVendorCharacters)
{
    EXPECT_TRUE(orv::isKnownVendor(processor(6, 1)));
    for (std::size_t at = 0; at < 12; ++at) {
        ProcessorFacts facts = processor(6, 1);
        facts.vendor[at] = static_cast<char>(facts.vendor[at] ^ 0x20);
        EXPECT_FALSE(orv::isKnownVendor(facts)) << at;
    }
}

TEST(Classify, HelpersReadOneBitEach)
{
    const struct {
        Feature feature;
        bool (*has)(const ProcessorFacts &);
    } helpers[] = {
        {mmx, orv::hasMmx},     {sse, orv::hasSse},
        {sse2, orv::hasSse2},   {sse3, orv::hasSse3},
        {ssse3, orv::hasSsse3}, {sse41, orv::hasSse41},
        {sse42, orv::hasSse42}, {hyperThreading, orv::hasHyperThreading},
        {wide, orv::has64Bit},
    };
    for (const auto &set : helpers)
        for (const auto &asked : helpers)
            EXPECT_EQ(asked.has(withFeatures({}, {set.feature})), asked.feature == set.feature)
                << set.feature << " " << asked.feature;
}

// The index is the process's: it goes back to the plain build for the tests that follow.
TEST(ThisProcessor, IsClassifiedOnce)
{
    EXPECT_EQ(krnDispatchIndex, 0) << "nothing but krnClassify may choose a build";
    const std::int32_t code = krnCpuCode();
    EXPECT_EQ(krnDispatchIndex, 0);
    const std::int32_t result = krnClassify();
    const std::int32_t index = krnDispatchIndex;
    krnDispatchIndex = 0;
    EXPECT_EQ(index, orv::slotOfCode(code));
#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
    __builtin_cpu_init();
    EXPECT_EQ(result, __builtin_cpu_is("intel") ? 0 : 20);
#else
    EXPECT_EQ(result, 20);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(index, 0);
#endif
}

#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
// The compiler's own run-time support reads the same processor by code of its own.
TEST(ThisProcessor, HasTheFeaturesThatTheCompilerSees)
{
    const ProcessorFacts facts = orv::readProcessorFacts();
    const std::string vendor(facts.vendor, sizeof facts.vendor);
    __builtin_cpu_init();
    EXPECT_EQ(vendor == "GenuineIntel", __builtin_cpu_is("intel") != 0) << vendor;
    EXPECT_EQ(vendor == "AuthenticAMD", __builtin_cpu_is("amd") != 0) << vendor;
    EXPECT_EQ(orv::hasMmx(facts), __builtin_cpu_supports("mmx") != 0);
    EXPECT_EQ(orv::hasSse(facts), __builtin_cpu_supports("sse") != 0);
    EXPECT_EQ(orv::hasSse2(facts), __builtin_cpu_supports("sse2") != 0);
    EXPECT_EQ(orv::hasSse3(facts), __builtin_cpu_supports("sse3") != 0);
    EXPECT_EQ(orv::hasSsse3(facts), __builtin_cpu_supports("ssse3") != 0);
    EXPECT_EQ(orv::hasSse41(facts), __builtin_cpu_supports("sse4.1") != 0);
    EXPECT_EQ(orv::hasSse42(facts), __builtin_cpu_supports("sse4.2") != 0);
#if defined(__x86_64__)
    EXPECT_TRUE(facts.hasCpuid);
    EXPECT_TRUE(orv::has64Bit(facts));
#endif
    EXPECT_GE(orv::coresOf(facts), 1u);
}
#endif

} // namespace
