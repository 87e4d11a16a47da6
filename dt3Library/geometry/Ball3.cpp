// SPDX-License-Identifier: MIT
// A sphere: its radius and its print.
#include "Ball3.h"

#include "Message.h"
#include "geometry/printing.h"

#include <cmath>

namespace TULO3D {

double Ball3::getRadius() const
{
	return std::sqrt(sqRadius);
}

void Ball3::debug() const
{
	Message() << "Ball3: " << center << ", r=" << getRadius() << std::endl;
}

} // namespace TULO3D
