// SPDX-License-Identifier: MIT
// A segment's print.
#include "Segment3.h"

#include "Message.h"
#include "geometry/printing.h"

namespace TULO3D {

void Segment3::debug() const
{
	Message() << "Segment3: " << src << "," << trg << std::endl;
}

} // namespace TULO3D
