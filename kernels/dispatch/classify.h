// What processor this is, and which build of the kernels suits it.
#pragma once

#include <cstdint>

#if defined(_WIN32) && defined(ORV_BUILDING_SHARED)
#define ORV_CLASSIFY_API __declspec(dllexport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define ORV_CLASSIFY_API __attribute__((visibility("default")))
#else
#define ORV_CLASSIFY_API
#endif

// Exported; the public header documents them.
extern "C" {
ORV_CLASSIFY_API std::int32_t krnClassify(void);
ORV_CLASSIFY_API std::int32_t krnCpuCode(void);
ORV_CLASSIFY_API std::int32_t orvUseBuild(std::int32_t atMost);
ORV_CLASSIFY_API const char *orvBuildName(std::int32_t build);
}

namespace orv {

// Registers as cpuid left them. All zero where there is no cpuid, a leaf's registers where the leaf does not exist.
struct ProcessorFacts {
    bool hasCpuid;
    char vendor[12]; // not terminated
    std::uint32_t highestLeaf;
    std::uint32_t leaf1Eax, leaf1Ebx, leaf1Ecx, leaf1Edx;
    std::uint32_t leaf4Eax;
    std::uint32_t leaf7Ebx;
    std::uint32_t xcr0;                // what registers the operating system saves; 0 where it does not say
    std::uint32_t highestExtendedLeaf; // counts from 0x80000000
    std::uint32_t extended1Edx;
};

ProcessorFacts readProcessorFacts();

bool hasMmx(const ProcessorFacts &facts);
bool hasSse(const ProcessorFacts &facts);
bool hasSse2(const ProcessorFacts &facts);
bool hasSse3(const ProcessorFacts &facts);
bool hasSsse3(const ProcessorFacts &facts);
bool hasSse41(const ProcessorFacts &facts);
bool hasSse42(const ProcessorFacts &facts);
// The operating system saves the wide registers too.
bool hasAvx2(const ProcessorFacts &facts);
bool hasHyperThreading(const ProcessorFacts &facts);
bool has64Bit(const ProcessorFacts &facts);
std::uint32_t coresOf(const ProcessorFacts &facts); // at least 1

// True for processors of the vendor whose families and models have codes of their own.
bool isKnownVendor(const ProcessorFacts &facts);

// The classification code: of the model where it has one, else of the features, 0 for a processor with none.
std::int32_t cpuCode(const ProcessorFacts &facts);

// The build for a code, 0 to 5; 0 for any number that is not a code.
std::int32_t slotOfCode(std::int32_t code);

// Stores the build for the processor. 0, or 20 when it has no cpuid or is of another vendor.
std::int32_t classify(const ProcessorFacts &facts, std::int32_t &index);

// The widest build, 0 to 6, of which the processor and the operating system support all instructions.
std::int32_t widestBuild(const ProcessorFacts &facts);

} // namespace orv
