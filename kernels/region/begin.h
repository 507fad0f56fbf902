// Opens a build's region: from here to end.h, code may use the instructions of the build that ORV_SLOT names, and all
// of it stands in the build's namespace. The object is compiled for the target's base processor, and headers from
// outside come first: an inline function of theirs that was emitted with this build's instructions would carry a name
// that all builds share, and the linker would keep any one of the copies.
//
// Inside the region stand our own definitions only, kernels by name and all else in an unnamed namespace.

#ifndef ORV_SLOT
#error "the build must name its slot"
#endif

#if (defined(__x86_64__) || defined(__i386__)) && ORV_SLOT > 0
#define ORV_REGION_TARGET_1 "mmx,sse"
#define ORV_REGION_TARGET_2 "sse2"
#define ORV_REGION_TARGET_3 "sse3"
#define ORV_REGION_TARGET_4 "ssse3"
#define ORV_REGION_TARGET_5 "sse4.1"
#define ORV_REGION_TARGET_(number) ORV_REGION_TARGET_##number
#define ORV_REGION_TARGET(number) ORV_REGION_TARGET_(number)
// What the region may use. The compiler's own macros do not follow a target pragma everywhere, so code asks this one.
#define ORV_SSE_LEVEL ORV_SLOT
#define ORV_PRAGMA_(text) _Pragma(#text)
#define ORV_PRAGMA(text) ORV_PRAGMA_(text)
#if defined(__clang__)
ORV_PRAGMA(clang attribute push(__attribute__((target(ORV_REGION_TARGET(ORV_SLOT)))), apply_to = function))
#else
#pragma GCC push_options
ORV_PRAGMA(GCC target(ORV_REGION_TARGET(ORV_SLOT)))
#endif
#else
#define ORV_SSE_LEVEL 0
#endif

#define ORV_SLOT_NAME_(number) slot##number
#define ORV_SLOT_NAME(number) ORV_SLOT_NAME_(number)

namespace orv {
namespace ORV_SLOT_NAME(ORV_SLOT)
{
