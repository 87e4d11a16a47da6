// SPDX-License-Identifier: MIT
// The vertices of a batch in the order of the curve, and their ranks.
#pragma once

#include "Point3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// What one engine, as the first of its process, would make of a batch before it inserts the first vertex: the
/// distinct points along its curve, their numbers as vertices, and the order in which they would enter the mesh.
///
/// A vertex is named here by its position along the curve.
class CurveOrder
{
public:
	/// Of points as x, y, z, x, y, z, ... Throws `TuloException` for what an engine refuses.
	CurveOrder(const double* pCoordinates, std::size_t numPoints);

	std::uint32_t size() const { return static_cast<std::uint32_t>(vPoints.size()); }

	/// There are no four vertices that span space, and so no mesh.
	bool isFlat() const { return bFlat; }
	/// Some coordinate is so small that products of it may underflow.
	bool isTiny() const { return bTiny; }

	/// The vertex at a position. Its custom index is the position.
	const Point3& point(std::uint32_t position) const { return vPoints[position]; }
	const std::vector<Point3>& points() const { return vPoints; }

	/// The number of a vertex: the place of its first point among the distinct ones, in input order.
	std::int32_t number(std::uint32_t position) const { return vNumbers[position]; }

	/// The place of a vertex in the order of insertion. Those of the first tetrahedron have 0 to 3.
	std::int32_t rank(std::uint32_t position) const { return vRanks[position]; }
	/// The vertex with a rank. The first four are in positive order.
	std::uint32_t withRank(std::size_t rank) const { return vByRank[rank]; }

	/// The number of the vertex of each input point.
	const std::vector<std::int32_t>& vertexOfPoint() const { return vVertexOfPoint; }

private:
	struct Listing;
	void rankAll(const std::vector<std::uint32_t>& vListed);

	bool bFlat = true;
	bool bTiny = false;
	std::vector<Point3> vPoints;
	std::vector<std::int32_t> vNumbers;
	std::vector<std::int32_t> vRanks;
	std::vector<std::uint32_t> vByRank;
	std::vector<std::int32_t> vVertexOfPoint;
};

} // namespace TULO3D
