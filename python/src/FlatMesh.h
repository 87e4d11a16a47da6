// SPDX-License-Identifier: MIT
// A mesh as four arrays, and the walk to the tetrahedron that contains a point.
#pragma once

#include "ArdoTest3.h"
#include "Vec.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace binding {

/// Views of arrays that Python owns. Corners are indices into the points, in positive order; neighbour
/// k lies beyond the facet opposite corner k, -1 on the hull.
struct FlatMesh
{
	const double* pPoints;          ///< 3 numbers a point
	const std::int32_t* pCorners;   ///< 4 a tetrahedron
	const std::int32_t* pNeighbors; ///< 4 a tetrahedron
	std::size_t numPoints;
	std::size_t numTets;

	const double* point(std::int32_t v) const { return pPoints + 3 * static_cast<std::size_t>(v); }
	const std::int32_t* corners(std::int32_t t) const
	{
		return pCorners + 4 * static_cast<std::size_t>(t);
	}
	const std::int32_t* neighbors(std::int32_t t) const
	{
		return pNeighbors + 4 * static_cast<std::size_t>(t);
	}
	/// The index of the facet behind which neighbour `u` of `t` lies; 4 when it is none.
	int facetTowards(std::int32_t t, std::int32_t u) const
	{
		const std::int32_t* pNeighbor = neighbors(t);
		int k = 0;
		while (k < 4 && pNeighbor[k] != u) ++k;
		return k;
	}
};

/// The edges of tetrahedron `t` from its corner 0 to the others.
inline std::array<Vec, 3> edgesFrom0(const FlatMesh& mesh, std::int32_t t)
{
	const std::int32_t* pCorner = mesh.corners(t);
	const double* p0 = mesh.point(pCorner[0]);
	return {between(p0, mesh.point(pCorner[1])), between(p0, mesh.point(pCorner[2])),
	    between(p0, mesh.point(pCorner[3]))};
}

/// Facet k, counter-clockwise from outside.
constexpr int kOutside[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};

/// Asks the library's exact predicates about tetrahedra of a flat mesh and one query point at a time.
class ExactTests
{
public:
	explicit ExactTests(const FlatMesh& theMesh);

	/// The point that is asked about from now on.
	void setQuery(const double* p) { query.exchange(p[0], p[1], p[2]); }
	/// The tetrahedron that is asked about from now on.
	void setTet(std::int32_t t);
	/// True when the query point lies strictly beyond facet k.
	bool isBeyond(int k) const
	{
		return predicates.getOrientation3(&tet, k, &query) == TULO3D::ORIENTATION3_NEGATIVE;
	}
	/// True when the query point lies strictly inside the circumsphere or is a corner.
	bool isInSphere() const
	{
		return predicates.sphereInclusionTest(&tet, &query) == TULO3D::SIC_INSIDE;
	}
	/// True when the corners are in positive order.
	bool isPositive() const
	{
		return predicates.getOrientation3(corner.data(), &corner[1], &corner[2], &corner[3]) ==
		    TULO3D::ORIENTATION3_POSITIVE;
	}

private:
	const FlatMesh& mesh;
	TULO3D::ArdoTest3 predicates;
	TULO3D::Point3 query;
	std::array<TULO3D::Point3, 4> corner;
	TULO3D::Tet3 tet; // a record of our own, with `corner` as its corners
};

/// Visibility walks, each from where the one before has ended.
///
/// O. Devillers, S. Pion and M. Teillaud, Walking in a triangulation, Symposium on Computational
/// Geometry (2001). In a Delaunay mesh such a walk never comes back, whichever facet it leaves by.
class Walker
{
public:
	explicit Walker(const FlatMesh& theMesh) : mesh(theMesh), exact(theMesh) {}

	/// The tetrahedron that contains `p`, inside or on its boundary; -1 when `p` lies outside the hull or is
	/// not a point. Throws `std::invalid_argument` when the arrays are no Delaunay mesh.
	std::int32_t locate(const double* p);

private:
	const FlatMesh& mesh;
	ExactTests exact;
	std::int32_t last = 0;
};

} // namespace binding
