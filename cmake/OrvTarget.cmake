# How the library is compiled, in every room and build type.

add_library(orv_options INTERFACE)
target_compile_options(orv_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -fno-exceptions -fno-rtti
  # Arithmetic is the same on every build and wraps where the results say so; samples stand at any address.
  -ffp-contract=off -fwrapv -fno-strict-aliasing -fno-math-errno -fno-trapping-math)

# On 32-bit x86 the plain builds use the base processor's integer and floating-point unit only.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
  target_compile_options(orv_options INTERFACE -march=i586 -mtune=generic -mno-mmx -mno-sse)
  # Without vector registers the vectoriser packs bytes into words, and GCC 12 multiplies those wrongly.
  set(ORV_PLAIN_OPTIONS -fno-tree-vectorize)
endif()

# Loops over samples are optimised in every build type; a debug build of a library like this is of no use otherwise.
set(ORV_KERNEL_OPTIMISATION -O3)
