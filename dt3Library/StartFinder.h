// SPDX-License-Identifier: MIT
// Offers a near start to the walk where the curve of the vertex store cannot.
#pragma once

#include "Point3.h"
#include "Tet3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A set of numbers below a limit that knows the next one on either side of any number.
///
/// A bit for each number, a bit for each word of bits that is not zero, and so on: a search looks at
/// a word or two on each of a few levels.
class RankSet
{
public:
	static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

	explicit RankSet(std::size_t limit);

	void add(std::size_t rank);
	/// The largest member below `rank`, or kNone.
	std::size_t below(std::size_t rank) const;
	/// The smallest member above `rank`, or kNone.
	std::size_t above(std::size_t rank) const;

private:
	std::vector<std::vector<std::uint64_t>> levels; // the bits, and then what is not zero
};

/// The vertices of a batch along a curve of its own: 21 levels of cubes around the bulk of them.
///
/// The order of insertion follows the nine levels of the vertex store. They do not tell the vertices
/// apart when a few lie far out or the box is thin, and then each walk starts anywhere. Where it starts
/// decides how long it takes, and the mesh does not depend on it; so it may start near the vertex of the
/// mesh that is next on the finer curve.
class StartFinder
{
public:
	/// `vBatch`, in the order of the store, must outlive the finder.
	explicit StartFinder(const std::vector<Point3*>& vBatch);

	/// Vertex `i` of the batch.
	const Point3& vertex(std::size_t i) const { return *vVertices[i]; }

	/// Vertex `i` of the batch is in the mesh now.
	void add(std::size_t i) { inMesh.add(vRank[i]); }

	/// A tetrahedron near vertex `i`: pLastTet, or one that is nearer.
	Tet3* nearestStart(std::size_t i, Tet3* pLastTet) const;

	/// The vertices of the mesh on either side of vertex `i` along the finer curve, null for none.
	std::array<const Point3*, 2> neighbours(std::size_t i) const;
	/// Asks the memory for what `neighbours` will probably look at.
	void prefetchNeighbours(std::size_t i) const;

	/// True when most vertices are far from the one before along the finer curve.
	bool orderJumps() const;

private:
	const Point3* vertexAt(std::size_t rank) const;

	const std::vector<Point3*>& vVertices;
	std::vector<const Point3*> vAlong; // the batch along the finer curve
	std::vector<std::uint32_t> vRank;  // the place there of each vertex of the batch
	RankSet inMesh;
};

} // namespace TULO3D
