// The classification of the processor, from nothing but what cpuid tells.
#include "classify.h"

#include <cstring>

#include "kernel.h"

#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
#define ORV_HAS_CPUID 1
#include <cpuid.h>
#endif

namespace orv {
namespace {

constexpr std::int32_t noCode = 0;
constexpr int savesRegisters = 27; // of leaf 1, ecx: the operating system has enabled xgetbv

constexpr bool bitOf(std::uint32_t word, int bit)
{
    return ((word >> bit) & 1u) != 0;
}

constexpr std::uint32_t fieldOf(std::uint32_t word, int lowest, int bits)
{
    return (word >> lowest) & ((1u << bits) - 1u);
}

std::int32_t codeOfFamily5(std::uint32_t model)
{
    switch (model) {
    case 1:
    case 2:
        return 1;
    case 4:
        return 2;
    default:
        return noCode;
    }
}

std::int32_t codeOfFamily6(std::uint32_t model, std::uint32_t cores)
{
    switch (model) {
    case 1:
        return 3;
    case 3:
    case 5:
    case 6:
        return 4;
    case 7:
    case 8:
    case 10:
    case 11:
        return 5;
    case 9:
    case 13:
        return 9;
    case 14:
        return cores > 1 ? 0x0B : 0x0A;
    case 15:
        return cores > 2 ? 0x22 : 0x21;
    case 23:
        return 0x44;
    case 26:
        return 0x23;
    case 28:
        return 0x24;
    default:
        return noCode;
    }
}

std::int32_t codeOfFamily15(const ProcessorFacts &facts)
{
    if (hasSse3(facts))
        return has64Bit(facts) ? 0x20 : 8;
    return hasHyperThreading(facts) ? 7 : 6;
}

std::int32_t codeOfModel(const ProcessorFacts &facts)
{
    constexpr int emulatesInstructionSet = 30;
    const std::uint32_t family = fieldOf(facts.leaf1Eax, 8, 4);
    std::uint32_t model = fieldOf(facts.leaf1Eax, 4, 4);
    if (family == 6 || family == 15)
        model += 16 * fieldOf(facts.leaf1Eax, 16, 4);

    if (bitOf(facts.leaf1Edx, emulatesInstructionSet))
        return family == 7 ? 0x10 : 0x11;
    switch (family) {
    case 5:
        return codeOfFamily5(model);
    case 6:
        return codeOfFamily6(model, coresOf(facts));
    case 15: // the extended family counts on from here: only a zero leaves it 15
        return fieldOf(facts.leaf1Eax, 20, 8) == 0 ? codeOfFamily15(facts) : noCode;
    default:
        return noCode;
    }
}

std::int32_t codeOfFeatures(const ProcessorFacts &facts)
{
    if (hasSse42(facts))
        return 0x45;
    if (hasSse41(facts))
        return 0x44;
    if (hasSsse3(facts))
        return 0x43;
    if (hasSse3(facts))
        return 0x42;
    if (hasSse2(facts))
        return 0x41;
    if (hasSse(facts))
        return 0x40;
    return has64Bit(facts) ? 0x60 : noCode;
}

} // namespace

#if defined(ORV_HAS_CPUID)

ProcessorFacts readProcessorFacts()
{
    ProcessorFacts facts = {};
    // On 32-bit processors this first tries whether bit 21 of the flags can be toggled, and is 0 where it cannot.
    facts.highestLeaf = static_cast<std::uint32_t>(__get_cpuid_max(0, nullptr));
    facts.hasCpuid = facts.highestLeaf != 0;
    if (!facts.hasCpuid)
        return facts;

    std::uint32_t eax, ebx, ecx, edx;
    __cpuid(0, eax, ebx, ecx, edx);
    const std::uint32_t vendor[3] = {ebx, edx, ecx};
    std::memcpy(facts.vendor, vendor, sizeof facts.vendor);
    __cpuid(1, facts.leaf1Eax, facts.leaf1Ebx, facts.leaf1Ecx, facts.leaf1Edx);
    if (facts.highestLeaf >= 4)
        __cpuid_count(4, 0, facts.leaf4Eax, ebx, ecx, edx);
    if (facts.highestLeaf >= 7)
        __cpuid_count(7, 0, eax, facts.leaf7Ebx, ecx, edx);
    if (bitOf(facts.leaf1Ecx, savesRegisters))
        __asm__("xgetbv" : "=a"(facts.xcr0), "=d"(edx) : "c"(0));

    constexpr std::uint32_t extended = 0x80000000u;
    __cpuid(extended, eax, ebx, ecx, edx);
    // A processor without extended leaves answers with the registers of another leaf.
    facts.highestExtendedLeaf = eax >= extended ? eax : 0;
    if (facts.highestExtendedLeaf > extended)
        __cpuid(extended + 1, eax, ebx, ecx, facts.extended1Edx);
    return facts;
}

#else

ProcessorFacts readProcessorFacts()
{
    return {};
}

#endif

bool hasMmx(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Edx, 23);
}

bool hasSse(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Edx, 25);
}

bool hasSse2(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Edx, 26);
}

bool hasSse3(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Ecx, 0);
}

bool hasSsse3(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Ecx, 9);
}

bool hasSse41(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Ecx, 19);
}

bool hasSse42(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Ecx, 20);
}

bool hasAvx2(const ProcessorFacts &facts)
{
    constexpr int avx = 28, avx2 = 5;
    constexpr std::uint32_t vectorState = 6; // XMM and YMM registers
    return bitOf(facts.leaf1Ecx, savesRegisters) && (facts.xcr0 & vectorState) == vectorState &&
           bitOf(facts.leaf1Ecx, avx) && bitOf(facts.leaf7Ebx, avx2);
}

// The bit alone does not tell: the count of logical processors must be above one, and stands in bits 16 to 23.
bool hasHyperThreading(const ProcessorFacts &facts)
{
    return bitOf(facts.leaf1Edx, 28) && fieldOf(facts.leaf1Ebx, 17, 7) != 0;
}

bool has64Bit(const ProcessorFacts &facts)
{
    return fieldOf(facts.highestExtendedLeaf, 0, 31) != 0 && bitOf(facts.extended1Edx, 29);
}

std::uint32_t coresOf(const ProcessorFacts &facts)
{
    return facts.highestLeaf < 4 ? 1 : (facts.leaf4Eax >> 26) + 1;
}

bool isKnownVendor(const ProcessorFacts &facts)
{
    return std::memcmp(facts.vendor, "GenuineIntel", sizeof facts.vendor) == 0;
}

std::int32_t cpuCode(const ProcessorFacts &facts)
{
    if (!facts.hasCpuid)
        return noCode;
    const std::int32_t code = isKnownVendor(facts) ? codeOfModel(facts) : noCode;
    return code != noCode ? code : codeOfFeatures(facts);
}

std::int32_t slotOfCode(std::int32_t code)
{
    switch (code) {
    case 5:
    case 0x10:
    case 0x11:
    case 0x40:
        return 1;
    case 6:
    case 7:
    case 9:
    case 0x41:
        return 2;
    case 8:
    case 0x0A:
    case 0x0B:
    case 0x20:
    case 0x42:
        return 3;
    case 0x21:
    case 0x22:
    case 0x24:
    case 0x43:
        return 4;
    case 0x23:
    case 0x25:
    case 0x44:
    case 0x45:
        return 5;
    default:
        return 0;
    }
}

std::int32_t classify(const ProcessorFacts &facts, std::int32_t &index)
{
    constexpr std::int32_t unknownProcessor = 20;
    index = slotOfCode(cpuCode(facts));
    return facts.hasCpuid && isKnownVendor(facts) ? 0 : unknownProcessor;
}

std::int32_t widestBuild(const ProcessorFacts &facts)
{
    bool (*const needs[])(const ProcessorFacts &) = {hasSse, hasSse2, hasSse3, hasSsse3, hasSse41, hasAvx2};
    if (!facts.hasCpuid || !hasMmx(facts))
        return 0;
    std::int32_t build = 0;
    for (const auto has : needs) {
        if (!has(facts))
            break;
        ++build;
    }
    return build;
}

} // namespace orv

std::int32_t krnClassify(void)
{
    return orv::classify(orv::readProcessorFacts(), krnDispatchIndex);
}

std::int32_t krnCpuCode(void)
{
    return orv::cpuCode(orv::readProcessorFacts());
}

std::int32_t orvUseBuild(std::int32_t atMost)
{
    const std::int32_t widest = orv::widestBuild(orv::readProcessorFacts());
    krnDispatchIndex = atMost < 0 ? 0 : atMost < widest ? atMost : widest;
    return krnDispatchIndex;
}

const char *orvBuildName(std::int32_t build)
{
    static const char *const names[orv::kernelBuilds] = {"plain", "SSE", "SSE2", "SSE3", "SSSE3", "SSE4.1", "AVX2"};
    return build >= 0 && build < orv::kernelBuilds ? names[build] : "unknown";
}
