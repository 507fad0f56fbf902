// The rows of the kernel table, as the front end, tests and benchmarks call them.
#pragma once

#include "all_signatures.h"

namespace orv {

#define KRN(signature, name, ...) extern const Kernel<signature> name;
#define KRN_PLAIN(signature, name, ...) extern const Kernel<signature> name;
#define KRN_IN_PLACE(signature, name, ...) extern const Kernel<signature> name;
#include "kernels.def"

} // namespace orv
