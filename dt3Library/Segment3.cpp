// SPDX-License-Identifier: MIT
// A segment's print.
#include "Segment3.h"

#include "printing.h"

#include <iostream>

namespace TULO3D {

void Segment3::debug() const
{
	std::cout << "Segment3: " << src << "," << trg << std::endl;
}

} // namespace TULO3D
