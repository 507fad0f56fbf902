// Opens a build's region: from here to end.h, code may use the instructions of the build that ORV_SLOT names, and all
// of it is in the build's namespace. The object itself is compiled for the target's base processor, and external
// headers come first (external.h).
//
// Inside the region are our own definitions only: kernels by name, all else in an unnamed namespace.

#ifndef ORV_SLOT
#error "the build must name its slot"
#endif

// What the region may use. The compiler's own macros do not follow a target pragma everywhere, so code asks these.
//   ORV_VECTOR_BYTES   width of its integer and float vectors, 0 for none
//   ORV_SHUFFLES       it has an instruction that places bytes within a lane at will
//   ORV_SSE41          it has the blends, minima and wide products of SSE4.1
#if (defined(__x86_64__) || defined(__i386__)) && ORV_SLOT > 0
#define ORV_REGION_TARGET_1 "mmx,sse"
#define ORV_REGION_TARGET_2 "sse2"
#define ORV_REGION_TARGET_3 "sse3"
#define ORV_REGION_TARGET_4 "ssse3"
#define ORV_REGION_TARGET_5 "sse4.1"
#define ORV_REGION_TARGET_6 "avx2"
#define ORV_REGION_TARGET_(number) ORV_REGION_TARGET_##number
#define ORV_REGION_TARGET(number) ORV_REGION_TARGET_(number)
#define ORV_VECTOR_BYTES (ORV_SLOT >= 6 ? 32 : ORV_SLOT >= 2 ? 16 : 0)
#define ORV_SHUFFLES (ORV_SLOT >= 4)
#define ORV_SSE41 (ORV_SLOT >= 5)
#define ORV_PRAGMA_(text) _Pragma(#text)
#define ORV_PRAGMA(text) ORV_PRAGMA_(text)
#if defined(__clang__)
ORV_PRAGMA(clang attribute push(__attribute__((target(ORV_REGION_TARGET(ORV_SLOT)))), apply_to = function))
#else
ORV_PRAGMA(GCC target(ORV_REGION_TARGET(ORV_SLOT)))
#endif
#else
#define ORV_VECTOR_BYTES 0
#define ORV_SHUFFLES 0
#define ORV_SSE41 0
#endif

#define ORV_SLOT_NAME_(number) slot##number
#define ORV_SLOT_NAME(number) ORV_SLOT_NAME_(number)

namespace orv {
namespace ORV_SLOT_NAME(ORV_SLOT)
{
