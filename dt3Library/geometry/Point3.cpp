// SPDX-License-Identifier: MIT
// The two printed forms of a point: for a host, and for the library's own messages.
#include "Point3.h"

#include "Message.h"
#include "geometry/printing.h"

#include <iomanip>

namespace TULO3D {

void Point3::debug() const
{
	Message() << "Point3: " << px << "," << py << "," << pz << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const Point3& point)
{
	return stream << static_cast<const void*>(&point) << '\t' << std::setw(8) << point.x() << ", "
	              << std::setw(8) << point.y() << ", " << std::setw(8) << point.z();
}

} // namespace TULO3D
