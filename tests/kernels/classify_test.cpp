// The classification of processors that the test describes, and of the one it runs on.
#include <algorithm>
#include <climits>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "classify.h"
#include "rows.h"

namespace {

using orv::ProcessorFacts;
using Feature = void (*)(ProcessorFacts &facts);

template <std::uint32_t ProcessorFacts::*word, int bit> void set(ProcessorFacts &facts)
{
    facts.*word |= 1u << bit;
}
constexpr Feature mmx = set<&ProcessorFacts::leaf1Edx, 23>, sse = set<&ProcessorFacts::leaf1Edx, 25>,
                  sse2 = set<&ProcessorFacts::leaf1Edx, 26>, sse3 = set<&ProcessorFacts::leaf1Ecx, 0>,
                  ssse3 = set<&ProcessorFacts::leaf1Ecx, 9>, sse41 = set<&ProcessorFacts::leaf1Ecx, 19>,
                  sse42 = set<&ProcessorFacts::leaf1Ecx, 20>, emulation = set<&ProcessorFacts::leaf1Edx, 30>,
                  avx = set<&ProcessorFacts::leaf1Ecx, 28>, avx2 = set<&ProcessorFacts::leaf7Ebx, 5>,
                  systemSaves = set<&ProcessorFacts::leaf1Ecx, 27>, wide = set<&ProcessorFacts::extended1Edx, 29>,
                  threads = set<&ProcessorFacts::leaf1Edx, 28>, twoLogical = set<&ProcessorFacts::leaf1Ebx, 17>;
constexpr Feature otherVendor = [](ProcessorFacts &facts) { facts.vendor[11] = 'x'; };
constexpr Feature noCpuid = [](ProcessorFacts &facts) { facts.hasCpuid = false; };
constexpr Feature noExtendedLeaf = [](ProcessorFacts &facts) { facts.highestExtendedLeaf = 0x80000000u; };
constexpr Feature noLeafOfCores = [](ProcessorFacts &facts) { facts.highestLeaf = 3; };
constexpr Feature manyLeaves = [](ProcessorFacts &facts) { facts.highestLeaf = 0x80000000u; };
constexpr Feature extendedFamily = [](ProcessorFacts &facts) { facts.leaf1Eax |= 0x0FF00000u; };
constexpr Feature extendedModel = [](ProcessorFacts &facts) { facts.leaf1Eax |= 0x000F0000u; };

ProcessorFacts withFeatures(ProcessorFacts facts, std::initializer_list<Feature> features)
{
    for (const Feature feature : features)
        feature(facts);
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
    facts.highestExtendedLeaf = 0x80000001u;
    facts.leaf1Ebx = 0xFF01FFFFu; // one logical processor, among other fields
    const std::uint32_t baseFamily = family < 15 ? family : 15;
    const std::uint32_t unread = 0xF000F00Fu; // stepping, type and reserved bits
    facts.leaf1Eax = unread | (model & 15) << 4 | baseFamily << 8 | (model >> 4) << 16 | (family - baseFamily) << 20;
    facts.leaf4Eax = (cores - 1) << 26 | 0x03FFFFFFu;
    return withFeatures(facts, features);
}

TEST(CpuCode, FollowsTheModel)
{
    const std::uint32_t models[][4] = {
        {5, 1, 1, 1},      {5, 2, 1, 1},     {5, 4, 1, 2},     {6, 1, 1, 3},     {6, 3, 1, 4},     {6, 5, 1, 4},
        {6, 6, 1, 4},      {6, 7, 1, 5},     {6, 8, 1, 5},     {6, 10, 1, 5},    {6, 11, 1, 5},    {6, 9, 1, 9},
        {6, 13, 1, 9},     {6, 14, 1, 0x0A}, {6, 14, 2, 0x0B}, {6, 15, 1, 0x21}, {6, 15, 2, 0x21}, {6, 15, 3, 0x22},
        {6, 15, 64, 0x22}, {6, 23, 1, 0x44}, {6, 26, 1, 0x23}, {6, 28, 1, 0x24}, {15, 0, 1, 6}};
    struct Case {
        ProcessorFacts facts;
        std::int32_t code;
    };
    std::vector<Case> cases = {{processor(15, 0, {threads, twoLogical}), 7},
                               {processor(15, 0, {threads}), 6},
                               {processor(15, 0, {twoLogical}), 6},
                               {processor(15, 0, {sse3}), 8},
                               {processor(15, 0, {sse3, threads, twoLogical}), 8},
                               {processor(15, 0, {sse3, wide}), 0x20},
                               {processor(15, 0xFF, {sse3, wide}), 0x20},
                               {processor(15, 0, {sse3, wide, noExtendedLeaf}), 8},
                               {processor(7, 0, {emulation}), 0x10},
                               {processor(6, 8, {emulation}), 0x11},
                               {processor(15, 0, {emulation, sse3}), 0x11},
                               {processor(22, 0, {emulation}), 0x11}, // 15 + 7
                               {processor(4, 0, {emulation}), 0x11},
                               // Fields that only other families have, and where the number of cores stands.
                               {processor(5, 4, {extendedFamily, extendedModel}), 2},
                               {processor(6, 7, {extendedFamily}), 5},
                               {processor(6, 15, {noLeafOfCores}, 4), 0x21},
                               {processor(6, 15, {manyLeaves}, 4), 0x22}};
    for (const auto &[family, model, cores, code] : models)
        cases.push_back({processor(family, model, {}, cores), static_cast<std::int32_t>(code)});
    for (const auto &[facts, code] : cases) {
        EXPECT_EQ(orv::cpuCode(facts), code) << std::hex << facts.leaf1Eax;
        // Features decide only where the model does not.
        EXPECT_EQ(orv::cpuCode(withFeatures(facts, {mmx, sse, sse2, ssse3, sse41, sse42})), code) << facts.leaf1Eax;
    }
}

TEST(CpuCode, FallsBackToFeatures)
{
    // Models without a code, whose neighbours have one, and models with a code under another vendor's name.
    const std::uint32_t unknownModels[][2] = {{4, 1},  {5, 0},    {5, 3},  {6, 0},  {6, 2},  {6, 4},
                                              {6, 12}, {6, 16},   {6, 22}, {6, 24}, {6, 25}, {6, 27},
                                              {6, 29}, {6, 0x8E}, {7, 1},  {16, 0}, {22, 0}};
    std::vector<ProcessorFacts> unknown = {processor(6, 7, {otherVendor}), processor(15, 0, {otherVendor}),
                                           processor(7, 0, {emulation, otherVendor})};
    for (const auto &[family, model] : unknownModels)
        unknown.push_back(processor(family, model));
    const auto expect = [&](const std::vector<Feature> &features, std::int32_t code, std::int32_t slot) {
        for (ProcessorFacts facts : unknown) {
            facts.xcr0 = 7;
            for (const Feature feature : features)
                feature(facts);
            std::int32_t index = -1;
            EXPECT_EQ(orv::cpuCode(facts), code) << std::hex << facts.leaf1Eax;
            orv::classify(facts, index);
            EXPECT_EQ(index, slot) << std::hex << facts.leaf1Eax;
        }
    };
    const std::pair<Feature, std::int32_t> codes[] = {{sse, 0x40},   {sse2, 0x41},  {sse3, 0x42},
                                                      {ssse3, 0x43}, {sse41, 0x44}, {sse42, 0x45}};
    std::vector<Feature> all = {mmx, wide};
    for (std::int32_t i = 0; i < 6; ++i) {
        const auto &[feature, code] = codes[i];
        all.push_back(feature);
        expect(all, code, std::min(i + 1, 5));
        expect({feature}, code, std::min(i + 1, 5));
    }
    all.insert(all.end(), {systemSaves, avx, avx2}); // the index never passes 5
    expect(all, 0x45, 5);
    expect({mmx, wide, threads, twoLogical}, 0x60, 0);
    expect({mmx, wide, noExtendedLeaf, threads, twoLogical}, 0, 0);
    expect({}, 0, 0);
}

TEST(Classify, MapsEveryCodeToASlot)
{
    const std::map<std::int32_t, std::int32_t> slots = {
        {5, 1},    {0x10, 1}, {0x11, 1}, {0x40, 1}, {6, 2},    {7, 2},    {9, 2},
        {0x41, 2}, {8, 3},    {0x0A, 3}, {0x0B, 3}, {0x20, 3}, {0x42, 3}, {0x21, 4},
        {0x22, 4}, {0x24, 4}, {0x43, 4}, {0x23, 5}, {0x25, 5}, {0x44, 5}, {0x45, 5}};
    for (std::int32_t code = -1; code <= 256; ++code)
        EXPECT_EQ(orv::slotOfCode(code), slots.contains(code) ? slots.at(code) : 0) << code;
}

TEST(Classify, StoresTheSlotAndRefusesStrangers)
{
    const struct {
        ProcessorFacts facts;
        std::int32_t result, index;
    } cases[] = {{processor(6, 28, {sse, sse2}), 0, 4},
                 {processor(5, 1), 0, 0},
                 {processor(6, 14, {}, 2), 0, 3},
                 {processor(6, 28, {sse, sse2, otherVendor}), 20, 2},
                 {processor(6, 28, {sse, sse2, noCpuid}), 20, 0},
                 {ProcessorFacts{}, 20, 0}};
    for (const auto &c : cases) {
        std::int32_t index = -1;
        EXPECT_EQ(orv::classify(c.facts, index), c.result);
        EXPECT_EQ(index, c.index);
    }
    EXPECT_EQ(orv::cpuCode(processor(6, 28, {sse, sse2, noCpuid})), 0);
    for (std::size_t at = 0; at < 12; ++at) {
        ProcessorFacts facts = processor(6, 1);
        EXPECT_TRUE(orv::isKnownVendor(facts));
        facts.vendor[at] = static_cast<char>(facts.vendor[at] ^ 0x20);
        EXPECT_FALSE(orv::isKnownVendor(facts)) << at;
    }
}

const struct {
    Feature feature;
    bool (*has)(const ProcessorFacts &);
    std::int32_t widestWithout; // build
} steps[] = {{mmx, orv::hasMmx, 0},   {sse, orv::hasSse, 0},     {sse2, orv::hasSse2, 1},
             {sse3, orv::hasSse3, 2}, {ssse3, orv::hasSsse3, 3}, {sse41, orv::hasSse41, 4},
             {avx, orv::hasAvx2, 5},  {avx2, orv::hasAvx2, 5},   {systemSaves, orv::hasAvx2, 5}};

TEST(Builds, NeedAllThatComesBefore)
{
    ProcessorFacts all = {};
    all.hasCpuid = true;
    all.xcr0 = 6;
    for (const auto &step : steps)
        step.feature(all);
    EXPECT_EQ(orv::widestBuild(all), 6);
    for (const auto &without : steps) {
        ProcessorFacts facts = {}, alone = {};
        facts.hasCpuid = true;
        facts.xcr0 = alone.xcr0 = 0xE7;
        for (const auto &step : steps)
            if (step.feature != without.feature)
                step.feature(facts);
        without.feature(alone);
        EXPECT_EQ(orv::widestBuild(facts), without.widestWithout);
        for (const auto &step : steps) {
            const bool avx2Step = step.has == orv::hasAvx2;
            EXPECT_EQ(step.has(facts), step.has != without.has) << without.widestWithout;
            EXPECT_EQ(step.has(alone), step.has == without.has && !avx2Step) << without.widestWithout;
        }
    }
    for (const std::uint32_t saved : {0u, 1u, 2u, 4u, 0xF9u}) { // 2 are the XMM registers, 4 the YMM registers
        ProcessorFacts facts = all;
        facts.xcr0 = saved;
        EXPECT_EQ(orv::widestBuild(facts), 5) << saved;
    }
    all.hasCpuid = false;
    EXPECT_EQ(orv::widestBuild(all), 0);
    EXPECT_EQ(orv::widestBuild({}), 0);
    EXPECT_TRUE(orv::hasSse42(withFeatures({}, {sse42})) && !orv::hasSse42(withFeatures({}, {sse41})));
}

TEST(Builds, HaveNames)
{
    const char *const names[] = {"unknown", "plain", "SSE", "SSE2", "SSE3", "SSSE3", "SSE4.1", "AVX2", "unknown"};
    for (int i = 0; i < 9; ++i)
        EXPECT_STREQ(orvBuildName(i - 1), names[i]);
}

// The index is the process's: it goes back to the plain build for the tests that follow.
TEST(ThisProcessor, IsClassifiedOnce)
{
    EXPECT_EQ(krnDispatchIndex, 0) << "nothing but krnClassify and orvUseBuild may choose a build";
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

TEST(ThisProcessor, UsesTheBuildThatIsAskedForOrTheWidestBelow)
{
    const std::int32_t widest = orv::widestBuild(orv::readProcessorFacts());
    for (const std::int32_t atMost : {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, INT_MAX}) {
        const std::int32_t expected = std::min(std::max(atMost, 0), widest);
        krnDispatchIndex = -1;
        EXPECT_EQ(orvUseBuild(atMost), expected);
        EXPECT_EQ(krnDispatchIndex, expected);
    }
    krnDispatchIndex = 0;
}

// The compiler's own run-time support reads the same processor by code of its own. Builds that it does not carry cannot
// be tested on it.
TEST(ThisProcessor, HasTheFeaturesThatTheCompilerSees)
{
#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
    const ProcessorFacts facts = orv::readProcessorFacts();
    const std::string vendor(facts.vendor, sizeof facts.vendor);
    __builtin_cpu_init();
    EXPECT_EQ(vendor == "GenuineIntel", __builtin_cpu_is("intel") != 0) << vendor;
    EXPECT_EQ(vendor == "AuthenticAMD", __builtin_cpu_is("amd") != 0) << vendor;
    const bool seen[] = {__builtin_cpu_supports("mmx") != 0,   __builtin_cpu_supports("sse") != 0,
                         __builtin_cpu_supports("sse2") != 0,  __builtin_cpu_supports("sse3") != 0,
                         __builtin_cpu_supports("ssse3") != 0, __builtin_cpu_supports("sse4.1") != 0,
                         __builtin_cpu_supports("avx2") != 0};
    int expected = 0;
    bool all = seen[0];
    for (std::size_t i = 0; i < std::size(seen); ++i) {
        EXPECT_EQ(steps[i].has(facts), seen[i]) << i;
        all = all && seen[i];
        expected += all;
    }
    EXPECT_EQ(orv::hasSse42(facts), __builtin_cpu_supports("sse4.2") != 0);
    ASSERT_EQ(carriedBuilds(), std::max(expected, 1));
#if defined(__x86_64__)
    EXPECT_TRUE(facts.hasCpuid && orv::has64Bit(facts));
#endif
    EXPECT_GE(orv::coresOf(facts), 1u);
#endif
    if (carriedBuilds() < orv::kernelBuilds)
        GTEST_SKIP() << "builds from " << carriedBuilds() << " on were not tested: this processor does not carry them";
}

} // namespace
