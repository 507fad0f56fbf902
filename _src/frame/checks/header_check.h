// The tests of a header's own fields, shared by the check of whole headers and by the functions that create them.
#pragma once

#include "orv.h"

namespace orv {

// The status of the first field that is refused, not stored. `colorModel` and `channelSeq` are what stands or shall
// stand in the header; they are looked at for null only.
OrvStatus checkHeaderFields(const OrvImage &image, const char *colorModel, const char *channelSeq);

} // namespace orv
