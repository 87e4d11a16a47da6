// SPDX-License-Identifier: MIT
// The convex hull of a mesh, as triangles and as flat polygons.
#pragma once

#include "shapes/MeshView.h"

#include <vector>

namespace TULO3D::shapes {

/// The convex hull: a closed surface of triangles. Every point on the hull, also in the middle of a flat side,
/// is a corner of triangles. All of it is empty, or 0, when the mesh has no tetrahedron.
struct ConvexHull
{
	std::vector<std::int32_t> vTriangles;  ///< 3 vertices each, counter-clockwise from outside
	std::vector<std::int32_t> vNeighbours; ///< 3 triangles each, i across the edge without corner i
	std::vector<std::int32_t> vTets;       ///< the tetrahedron behind each triangle
	double area = 0;                       ///< in the square of the unit of the coordinates
	double volume = 0;                     ///< in its cube
};

/// The facets without a neighbour, in the order of their tetrahedra.
ConvexHull convexHull(const MeshView& view);

/// The flat sides of the hull. Polygon i has the vertices vCorners[vBegins[i]] to vCorners[vBegins[i + 1] - 1],
/// counter-clockwise from outside: only true corners of the hull, none inside of an edge. An edge belongs to
/// exactly two polygons.
struct HullPolygons
{
	std::vector<std::int64_t> vBegins; ///< one more than there are polygons
	std::vector<std::int32_t> vCorners;
	std::vector<std::int32_t> vPolygonOfTriangle; ///< for each triangle of the hull
};

/// Merges the triangles of `hull`, which is that of `view`, that lie in one plane. Coplanarity is decided
/// exactly by expansions (J. R. Shewchuk, Discrete & Computational Geometry 18, 1997), provided that nonzero
/// differences of coordinates within two neighbouring triangles are within a factor of 1e150 of each other.
HullPolygons mergeCoplanar(const MeshView& view, const ConvexHull& hull);

} // namespace TULO3D::shapes
