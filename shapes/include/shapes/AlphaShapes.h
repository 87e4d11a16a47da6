// SPDX-License-Identifier: MIT
// The alpha shapes of a mesh: which parts of it remain for a radius.
#pragma once

#include "shapes/Solid.h"

#include <vector>

namespace TULO3D::shapes {

/// The solid part of an alpha shape.
struct AlphaShape : Solid
{
	double radius = 0;
};

/// Facets and edges of an alpha shape that bound no tetrahedron, or no facet, of it.
struct SingularParts
{
	std::vector<std::int32_t> vFacets; ///< 3 vertices each
	std::vector<std::int32_t> vEdges;  ///< 2 vertices each
};

/// The alpha shapes of a mesh for all radii. H. Edelsbrunner and E. P. Muecke, Three-dimensional alpha shapes,
/// ACM Transactions on Graphics 13 (1994), without weights.
///
/// The parameter is a radius, not its square, in the unit of the coordinates. A tetrahedron belongs to the shape
/// when its circumradius is at most the radius, equality included. Circumradii are rounded: where they should be
/// equal, they may differ in the last digits. They are computed from differences of coordinates, where a tetrahedron is
/// nearly flat with more precision than doubles have, so they are right far from the origin and for slivers, too. A
/// circumradius is infinite where it is beyond the range of doubles.
class AlphaShapes
{
public:
	/// Computes the circumradii: 8 bytes a tetrahedron.
	explicit AlphaShapes(const MeshView& theMesh);

	/// The circumradius of each tetrahedron.
	const std::vector<double>& radii() const { return vRadii; }

	/// The smallest radius with which every vertex of the mesh is a corner of the shape; 0 for an empty mesh.
	double radiusThatKeepsEveryPoint() const;

	/// The smallest radius, not below the former, with which the shape is connected across facets. Sorts the
	/// tetrahedra of larger radii.
	double radiusOfOneComponent() const;

	/// The shape for a radius. An infinite one keeps everything. Throws `std::invalid_argument` for a radius that
	/// is negative or not a number.
	AlphaShape shape(double radius) const;

	/// What the shape for a radius has beside its tetrahedra and their facets: facets and edges whose smallest
	/// circumscribed sphere is at most that large and has no point inside (decided in rounded arithmetic). Throws
	/// as above.
	SingularParts singularParts(double radius) const;

private:
	MeshView mesh;
	std::vector<double> vRadii;
};

} // namespace TULO3D::shapes
