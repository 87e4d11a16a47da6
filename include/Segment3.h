// SPDX-License-Identifier: MIT
// A pair of points.
#pragma once

#include "Point3.h"

namespace TULO3D {

/// A segment from a source to a target point, both held by value.
class TULO3D_API Segment3
{
public:
	/// Copies the coordinates and the custom indices; the ends may coincide.
	Segment3(const Point3& source, const Point3& target) : src(source), trg(target) {}

	///@{
	/// A copy of one end, never part of a mesh.
	Point3 getSrc() const { return src; }
	Point3 getTrg() const { return trg; }
	///@}

	/// Prints the segment on a line of standard output.
	void debug() const;

private:
	Point3 src;
	Point3 trg;
};

} // namespace TULO3D
