// SPDX-License-Identifier: MIT
// A convex polyhedron, perhaps unbounded, that half-spaces cut.
#pragma once

#include "Mesh.h"

#include <unordered_map>
#include <vector>

namespace TULO3D::shapes {

/// A polyhedron around the origin, held by its faces. A cut decides once for each corner on which side of the plane
/// it lies; so the result is a closed surface whatever the rounding, unless two corners have two edges in common, as can be in
/// cells of points that are flat up to rounding.
///
/// Corners are in homogeneous coordinates: with weight 1 a point, with weight 0 a point at infinity. The corners
/// at infinity of an unbounded polyhedron have a face of their own, which closes its surface.
class Polyhedron
{
public:
	struct Corner
	{
		Vec p;         ///< a point, or a direction
		double weight; ///< 1 or 0
		Index source;  ///< a number of the caller's; -1 when a cut has made the corner
	};
	struct Face
	{
		std::size_t begin, end; ///< in `polygons`, counter-clockwise from outside
		Index label;            ///< what lies behind it, for the caller
		Vec normal;             ///< outward, of length 1
		double distance;        ///< of its plane from the origin, along the normal
	};

	void clear();
	Index addCorner(const Corner& corner);
	/// Appends the polygon of corners given to `addToPolygon` since the last face.
	void addFace(Index label, const Vec& normal, double distance);
	void addToPolygon(Index corner) { vPolygons.push_back(corner); }
	/// Appends faces whose polygons follow `vNext` from corner to corner; negative where none follows.
	void addFacesAlong(std::vector<Index>& vNext, Index label, const Vec& normal, double distance);

	/// Takes away what lies beyond the plane { x : normal * x = distance } and closes the cut by faces with this label.
	/// False when nothing lies there.
	bool cut(const Vec& normal, double distance, Index label);

	/// After cuts that make it bounded: joins each corner at infinity, which only rounding can have left, to a neighbour. The
	/// surface stays closed.
	void joinCornersAtInfinity();

	/// Of a bounded polyhedron.
	double volume() const;

	const std::vector<Corner>& corners() const { return vCorners; }
	const std::vector<Face>& faces() const { return vFaces; }
	const std::vector<Index>& polygons() const { return vPolygons; }

private:
	Index cornerBetween(Index inside, Index outside);
	void cutFace(const Face& face);
	void dropCornersOutside();
	void joinToNeighbours();
	void takeFormerFaces();
	bool isInside(Index corner) const { return vHeights[at(corner)] >= 0; }

	std::vector<Corner> vCorners;
	std::vector<Face> vFaces;
	std::vector<Index> vPolygons;

	// While a cut is made: heights below the plane, former polygons, made corners by their edges, and along the
	// border of the new face the corner after each corner.
	std::vector<double> vHeights;
	std::vector<Index> vFormer, vNext;
	std::vector<Face> vFormerFaces;
	std::unordered_map<std::uint64_t, Index> made;
};

} // namespace TULO3D::shapes
