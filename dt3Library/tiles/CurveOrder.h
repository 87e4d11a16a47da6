// SPDX-License-Identifier: MIT
// The vertices of a batch in the order of the curve, and their ranks.
#pragma once

#include "Bbox3.h"
#include "Point3.h"
#include "ardo_tools/RadixSort.h"
#include "tiles/CurvePoints.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// The position of an input point, by its key on the curve.
using KeyedInput = Keyed<std::uint32_t, std::uint32_t>;

/// Points x, y, z, x, y, z, ... in the order in which a store lists them: by their keys on the curve through a box, within
/// a cell by coordinates, equal ones as in the input. `around` is the box of all points, without the margin that a
/// process gives to its first.
std::vector<KeyedInput> listAlongCurve(
    const double* pCoordinates, std::size_t numPoints, const Bbox3& around);

/// So many vertices of the lowest ranks, which are spread over all, are in every tile.
constexpr std::size_t kNumLowest = 256;

/// What one engine, as the first of its process, would make of a batch before it inserts the first vertex: the
/// distinct points along its curve, their numbers as vertices, and the order in which they would enter the mesh.
///
/// A vertex is named here by its position along the curve.
class CurveOrder
{
public:
	/// Of points as x, y, z, x, y, z, ..., by several threads. Throws `TuloException` for what an engine refuses.
	CurveOrder(const double* pCoordinates, std::size_t numPoints, unsigned numThreads);

	std::uint32_t size() const { return static_cast<std::uint32_t>(vNumbers.size()); }

	/// There are no four vertices that span space, and so no mesh.
	bool isFlat() const { return bFlat; }

	/// What tiles read, unless flat. The order must outlive it.
	CurvePoints points() const;

	/// The number of a vertex: the place of its first point among the distinct ones, in input order.
	const std::vector<std::int32_t>& numbers() const { return vNumbers; }

	/// The number of the vertex of each input point.
	const std::vector<std::int32_t>& vertexOfPoint() const { return vVertexOfPoint; }

private:
	struct Section;
	Bbox3 examine(const double* pCoordinates, std::size_t numPoints, unsigned numThreads);
	void takeOver(
	    const double* pCoordinates, const std::vector<std::uint32_t>& vOrder, unsigned numThreads);
	void rankAll(const std::array<std::uint32_t, 4>& firstFour);

	bool bFlat = true;
	bool bTiny = false;
	std::vector<double> vCoordinates;
	std::vector<Box> vBoxes;
	std::vector<std::int32_t> vNumbers;
	std::vector<std::int32_t> vRanks;
	std::vector<std::uint32_t> vLowest;
	std::vector<std::int32_t> vVertexOfPoint;
};

} // namespace TULO3D
