// The families of entries. Each is the table at the end of its own source.
#pragma once

#include "entry.h"

namespace sheet {

Family photographFamily();
Family copyFamily();
Family fillFamily();
Family magnitudeFamily();
Family arithmeticFamily();
Family logicFamily();
Family geometryFamily();
Family levelFamily();
Family measureFamily();
Family neighbourhoodFamily();
Family filterFamily();
Family patternFamily();

} // namespace sheet
