// The kernel table: every row with its six builds.
#include "kernels.h"

int32_t krnDispatchIndex = 0;

namespace orv {

#define KRN_PLAIN(signature, name) \
    namespace slot0 {              \
    signature name;                \
    }                              \
    const Kernel<signature> name = {{slot0::name, slot0::name, slot0::name, slot0::name, slot0::name, slot0::name}};

#define KRN(signature, name) \
    namespace slot0 {        \
    signature name;          \
    }                        \
    namespace slot1 {        \
    signature name;          \
    }                        \
    namespace slot2 {        \
    signature name;          \
    }                        \
    namespace slot3 {        \
    signature name;          \
    }                        \
    namespace slot4 {        \
    signature name;          \
    }                        \
    namespace slot5 {        \
    signature name;          \
    }                        \
    const Kernel<signature> name = {{slot0::name, slot1::name, slot2::name, slot3::name, slot4::name, slot5::name}};

#include "kernels.def"

} // namespace orv
