# How the library is compiled, in every room and build type.

add_library(orv_options INTERFACE)
target_compile_options(orv_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -fno-exceptions -fno-rtti
  # Arithmetic gives the same results in every build, and some of it wraps around. Samples may start at any address.
  -ffp-contract=off -fwrapv -fno-strict-aliasing -fno-math-errno -fno-trapping-math)

# On 32-bit x86 the plain build uses only the integer and x87 instructions of the base processor.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
  target_compile_options(orv_options INTERFACE -march=i586 -mtune=generic -mno-mmx -mno-sse)
  # Without vector registers the vectoriser packs bytes into words, and GCC 12 multiplies such words wrongly.
  set(ORV_PLAIN_OPTIONS -fno-tree-vectorize)
endif()

# Loops over samples are optimised in every build type: without optimisation a debug build would be too slow to use.
set(ORV_KERNEL_OPTIMISATION -O3 CACHE STRING "How loops over samples are optimised")
mark_as_advanced(ORV_KERNEL_OPTIMISATION)
