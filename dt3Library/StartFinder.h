// SPDX-License-Identifier: MIT
// Offers a near start to the walk where the curve of the vertex store cannot.
#pragma once

#include "NeighbourSpheres.h"
#include "Point3.h"
#include "Tet3.h"

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

/// The way of one vertex to its place in the mesh, some insertions before its own.
///
/// Each step only looks at what the step before has asked the memory for, and an insertion passes
/// between them: so nobody waits. What it has seen may be dead or elsewhere by the time of the insertion.
class Scout
{
public:
	/// Sets out towards `target` from the nearer of two vertices, which may be null.
	void start(const Point3* pTarget, const Point3* pBelow, const Point3* pAbove);

	/// Takes the next step, if there is one left.
	void advance(FacetTest facetTest);

	/// The tetrahedron to which the scout has come, if the target is still in it; otherwise null.
	Tet3* arrival(FacetTest facetTest) const;

private:
	/// The facets of pTet that certainly have the target beyond them.
	unsigned facetsToCross(FacetTest facetTest) const;

	enum class Step {
		kChooseVertex,
		kLookAtTet,
		kWalk,
		kFirstRing,
		kSecondRing,
		kThirdRing,
		kDone
	};

	const Point3* pVtx = nullptr;
	const Point3* pNear[2] = {};
	Tet3* pTet = nullptr;
	Step step = Step::kDone;
};

/// The vertices of a batch along a curve of its own: 21 levels of cubes around the bulk of them.
///
/// The order of insertion follows the nine levels of the vertex store. They do not tell the vertices
/// apart when a few lie far out or the box is thin, and then each walk starts anywhere. Where it starts
/// decides how long it takes, and the mesh does not depend on it; so it may start near the vertex of the
/// mesh that is next on the finer curve. Where each vertex is far from the one before, and so a stranger
/// to the cache as well, scouts go ahead.
class StartFinder
{
public:
	/// `vBatch`, in the order of the store, must outlive the finder.
	StartFinder(const std::vector<Point3*>& vBatch, FacetTest facetTest);

	/// The order of the insertions that follow, which must outlive them.
	void beginStage(const std::vector<std::uint32_t>& vStage, std::size_t n);

	/// A tetrahedron near the next vertex of the stage: pLastTet, or one that is nearer.
	Tet3* nextStart(Tet3* pLastTet);

	/// Vertex `i` of the batch is in the mesh now.
	void add(std::size_t i) { inMesh.add(vRank[i]); }

private:
	/// Sends a scout to the n-th vertex of the stage, if there are as many.
	void sendScout(std::size_t n);
	const Point3* vertexAt(std::size_t rank) const;
	/// A tetrahedron of a vertex on either side of vertex `i` along the finer curve, or pLastTet.
	Tet3* nearestStart(std::uint32_t i, Tet3* pLastTet) const;
	/// True when most vertices are far from the one before along the finer curve.
	bool orderJumps() const;

	static constexpr std::size_t kAhead = 32;
	Scout scouts[kAhead];

	const std::vector<Point3*>& vVertices;
	const FacetTest facetTest;
	std::vector<std::uint32_t> vByRank; // positions in the batch along the finer curve
	std::vector<std::uint32_t> vRank;   // the inverse
	RankSet inMesh;
	const std::vector<std::uint32_t>* pStage = nullptr;
	std::size_t next = 0; // in the stage
	bool bScouts = false;
};

} // namespace TULO3D
