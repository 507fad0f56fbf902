// The kernel table: every row with its seven builds.
#include "in_place.h"
#include "kernels.h"

std::int32_t krnDispatchIndex = 0;

namespace orv {

// Calls macro(argument, slot) for each slot.
#define KRN_SLOTS(macro, ...)                                                                               \
    macro(slot0, __VA_ARGS__) macro(slot1, __VA_ARGS__) macro(slot2, __VA_ARGS__) macro(slot3, __VA_ARGS__) \
        macro(slot4, __VA_ARGS__) macro(slot5, __VA_ARGS__) macro(slot6, __VA_ARGS__)

#define KRN_DECLARE(slot, signature, name) \
    namespace slot {                       \
    signature::Function name;              \
    }
#define KRN_BUILD(slot, name) slot::name,
#define KRN_PLAIN_BUILD(slot, name) slot0::name,
#define KRN_IN_PLACE_BUILD(slot, signature, sibling) InPlace<signature>::run<slot::sibling>,

#define KRN(signature, name, ...)           \
    KRN_SLOTS(KRN_DECLARE, signature, name) \
    const Kernel<signature> name = {{{KRN_SLOTS(KRN_BUILD, name)}}};

#define KRN_PLAIN(signature, name, ...) \
    KRN_DECLARE(slot0, signature, name) \
    const Kernel<signature> name = {{{KRN_SLOTS(KRN_PLAIN_BUILD, name)}}};

#define KRN_IN_PLACE(signature, name, operation, samples, layout, sibling) \
    const Kernel<signature> name = {{{KRN_SLOTS(KRN_IN_PLACE_BUILD, signature, sibling)}}};

#include "kernels.def"

} // namespace orv
