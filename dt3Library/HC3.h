// SPDX-License-Identifier: MIT
// The vertex store: owns every vertex, merges duplicate points, sorts a batch along a Hilbert curve, and
// finds a tetrahedron from which to start a walk.
#pragma once

#include "Bbox3.h"
#include "Point3.h"
#include "ardo_tools/SimplePool.h"
#include "store/VertexOrder.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace TULO3D {

class HC3
{
public:
	/// `bits` is the length of a key: three for each level of the curve.
	explicit HC3(unsigned bits = 27);
	HC3(const HC3&) = delete;
	HC3& operator=(const HC3&) = delete;
	~HC3() = default;

	/// The position (key) of `point` on the curve through the current box.
	std::uint32_t hilbertIndex(const Point3& point) const;

	/// Takes over the extents of the box, computes all keys anew and sorts the items by them.
	void rebuildKeys();

	/// The vertex of `point`, new or already known. `pStartTet` becomes a tetrahedron near it, or
	/// null when neither the vertex nor its neighbour on the curve is in the mesh.
	Point3* insertPoint(const Point3& point, Tet3*& pStartTet);

	/// vUserHandles[i] becomes the vertex of vPoints[i]; the vertices that this call has made follow
	/// one another along the curve in `vNewVertices`, input order within one cell. A long batch calls `poll`
	/// now and then; what it throws leaves the store good for nothing but destruction.
	void insertPoints(const std::vector<Point3>& vPoints, std::vector<Point3*>& vUserHandles,
	    std::vector<Point3*>& vNewVertices, const std::function<void()>& poll = nullptr);

	/// The tetrahedron of the first vertex in the mesh from the curve's cell of `point` on, else of the last one
	/// before that cell; null when no vertex is in the mesh.
	Tet3* findNearbyTet(const Point3& point) const;

	/// `pTet`, or a tetrahedron of a vertex that is nearer to `point` than corner 0 of `pTet`, among the
	/// four vertices on either side of the point along the curve. (The one next to it need not be near,
	/// because the curve separates some neighbouring cells.) Tetrahedra marked by a host are passed over.
	Tet3* nearerTet(const Point3& point, Tet3* pTet) const;

	/// A vertex that belongs to this store, but to no listing: neither curve nor look-up know it.
	Point3* createVertex(const Point3& point, std::int32_t number);

	/// Appends every vertex, in the order of the curve.
	void getVertices(std::vector<Point3*>& out) const;

	/// The number of distinct vertices.
	std::size_t size() const { return items.size(); }

	/// The vertex made last; null when there is none.
	Point3* newestVertex() const { return pNewest; }

	Bbox3 bbox;       ///< around all points so far, with a margin
	unsigned numBits; ///< the length of a key
	double extentX = -1, extentY = -1, extentZ = -1;
	bool bValid = false; ///< the extents and keys are those of the box
	SimplePool<Point3> vertexPool;
	SimplePool<IdxVtx> itemPool;
	VertexOrder items; ///< one for each distinct vertex, in curve order

private:
	struct Batch;

	/// Inserts the points of a batch that share one cell of the curve.
	void insertCell(std::uint32_t key, Batch& batch);
	/// Looks the points of a cell up: the handles of those that the store knows, a list of the others.
	void findNewPoints(std::uint32_t key, Batch& batch) const;
	/// Numbers the new vertices of a batch with duplicate points, in the order of the input.
	static void closeNumberGaps(const std::vector<Point3*>& vUserHandles, std::int32_t firstNumber);
	/// The set has no item with the coordinates of the probe, whose place is `at`.
	bool isNew(const IdxVtx& probe, const VertexOrder::Iterator& at) const;
	/// The vertex with the coordinates of `point`; null when there is none.
	Point3* findVertex(std::uint32_t key, const Point3& point) const;
	IdxVtx* createItem(std::uint32_t key, Point3* pVtx);

	Point3* pNewest = nullptr;
};

} // namespace TULO3D
