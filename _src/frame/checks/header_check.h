// Tests of a header's own fields. The check of whole headers and the functions that create headers share them.
#pragma once

#include "orv.h"

namespace orv {

// The status of the first field that fails. It is not stored. `colorModel` and `channelSeq` are the header's, or will
// be; they are tested for null only.
OrvStatus checkHeaderFields(const OrvImage &image, const char *colorModel, const char *channelSeq);

} // namespace orv
