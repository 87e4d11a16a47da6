// SPDX-License-Identifier: MIT
// Walk starts from Morton order, for batches in which the curve of the vertex store has no locality.
#pragma once

#include "ardo_tools/BitsetTree.h"

#include "Point3.h"
#include "Tet3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// Finds, for a vertex of a batch, a vertex of the mesh nearby to start its walk from.
///
/// The batch comes in the order of the store's curve, which has nine levels. Nine levels do not tell
/// vertices apart when a few lie far out or the box is thin, and then a walk from the last vertex is long.
/// The start of a walk does not affect which tetrahedra are made, only its length and, for a vertex in a
/// facet or on or beyond the hull, the order in which they are made. So it may be at the vertex of the mesh that
/// is next in Morton order, which has 21 levels around the bulk of the batch.
class WalkStart
{
public:
	/// `vBatch`, in the order of the store, must outlive it.
	explicit WalkStart(const std::vector<Point3*>& vBatch);

	/// Vertex `i` of the batch.
	const Point3& vertex(std::size_t i) const { return *vVertices[i]; }

	/// Vertex `i` of the batch is in the mesh now.
	void add(std::size_t i) { inMesh.add(vRank[i]); }

	/// A tetrahedron near vertex `i`: pLastTet, or one that is nearer.
	Tet3* nearest(std::size_t i, Tet3* pLastTet) const;

	/// The vertices of the mesh on either side of vertex `i` in Morton order, null for none.
	std::array<const Point3*, 2> neighbours(std::size_t i) const;
	/// Prefetches what `neighbours` will read first.
	void prefetchNeighbours(std::size_t i) const;

	/// True when most vertices of the batch are far from the previous one in Morton order: insertions
	/// have no locality.
	bool orderJumps() const;

private:
	const Point3* vertexAt(std::size_t rank) const;

	const std::vector<Point3*>& vVertices;
	std::vector<const Point3*> vMorton; // the batch in Morton order
	std::vector<std::uint32_t> vRank;   // the position there of each vertex of the batch
	BitsetTree inMesh;                  // ranks of the vertices that are in the mesh
};

} // namespace TULO3D
