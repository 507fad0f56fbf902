// The signatures of all families.
#pragma once

#include "../arith/signatures.h"
#include "../copy/signatures.h"
#include "../filter/signatures.h"
#include "../geometry/signatures.h"
#include "../hist/signatures.h"
#include "../measure/signatures.h"
#include "../morph/signatures.h"
#include "../services/signatures.h"
#include "../transform/signatures.h"
