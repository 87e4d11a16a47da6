// SPDX-License-Identifier: MIT
// How a point prints itself inside the library's messages.
#pragma once

#include "Point3.h"

#include <iosfwd>

namespace TULO3D {

/// Prints address and coordinates; no end of line. Not exported: a host prints coordinates its own
/// way, and the address is only of use in the library's messages.
std::ostream& operator<<(std::ostream& stream, const Point3& point);

} // namespace TULO3D
