// What regions need from outside. A kernel's source includes this before its region opens: an external inline function
// emitted inside a region would be defined once per build under one symbol, and the linker keeps an arbitrary one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "raster.h"

#if defined(__x86_64__) || defined(__i386__)
#if ORV_SLOT >= 6
#include <immintrin.h>
#elif ORV_SLOT >= 2
#include <smmintrin.h>
#endif
#endif
