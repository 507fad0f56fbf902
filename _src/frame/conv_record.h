// What makes a convolution record usable, whatever its coefficients are.
#pragma once

#include "orv.h"

namespace orv {

// A size below 1, or an anchor outside of the window. The coefficients are not looked at.
template <class Record> bool badStructure(const Record &kernel)
{
    return kernel.nRows < 1 || kernel.nCols < 1 || kernel.anchorX < 0 || kernel.anchorY < 0 ||
           kernel.anchorY >= kernel.nRows || kernel.anchorX >= kernel.nCols;
}

} // namespace orv
