// SPDX-License-Identifier: MIT
// The part of a mesh around one range of the curve.
#pragma once

#include "Dt3.h"
#include "predicates/BatchTests.h"
#include "tiles/BoxTree.h"
#include "tiles/ConflictRegion.h"
#include "tiles/CurvePoints.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_set>
#include <utility>
#include <vector>

namespace TULO3D {

/// A range of positions along the curve.
struct PositionRange
{
	std::uint32_t first;
	std::uint32_t last; ///< behind the last one

	bool contains(std::uint32_t position) const { return position - first < last - first; }
	std::uint32_t size() const { return last - first; }
};

/// One engine with the vertices of a range, its own ones, and with as many others as it takes until each tetrahedron
/// with an own corner is one of the whole mesh.
///
///   1  It begins with the own vertices, those near to them, and a few that are spread over all; by ascending rank,
///      so that this is the mesh of these vertices alone, whatever lies on a sphere.
///   2  A tetrahedron with an own corner is final when no vertex that the tile does not know is in conflict with it,
///      and a hull facet with an own corner when none lies beyond. Otherwise the tile inserts the vertex that is
///      nearest to the centre, by the rule of ranks, and goes on with the new tetrahedra.
///   3  Few tetrahedra need that test. What is in conflict with a vertex is connected, across facets, with where the
///      vertex lies. If that is no tetrahedron with an own corner, then the first one with an own corner on the way
///      is on the hull, or has come across a facet of three foreign corners.
///   4  At the end, no vertex at all is in conflict with a tetrahedron that has an own corner. Those are the
///      tetrahedra of the whole mesh around the own vertices: a set of points has one mesh only, given the ranks,
///      and in it stars are closed by the same facets.
class Tile
{
public:
	/// `tree` is over `curvePoints`; both must outlive the tile. `ownRange` is one of a part that begins with a leaf
	/// and ends with one.
	Tile(const CurvePoints& curvePoints, const BoxTree& boxTree, PositionRange ownRange,
	    const BatchTests& tests);
	Tile(const Tile&) = delete;
	Tile& operator=(const Tile&) = delete;

	/// Called while vertices are inserted; false ends that with an exception.
	void setProgress(std::function<bool(std::size_t, std::size_t)> handler)
	{
		engine.progress = std::move(handler);
	}

	/// Step 1.
	void begin();
	/// Steps 2 to 4.
	void complete();

	PositionRange ownRange() const { return own; }
	/// Own vertices are in one piece of memory, in the order of the curve: to know one, and where it is, nothing
	/// has to be read.
	bool isOwn(const Point3& vtx) const
	{
		const auto offset =
		    reinterpret_cast<std::uintptr_t>(&vtx) - reinterpret_cast<std::uintptr_t>(pFirstOwn);
		return offset < own.size() * sizeof(Point3);
	}
	/// The position along the curve of a vertex that is in.
	std::uint32_t position(const Point3& vtx) const
	{
		return isOwn(vtx) ? own.first + static_cast<std::uint32_t>(&vtx - pFirstOwn)
		                  : static_cast<std::uint32_t>(vtx.getCustomIndex());
	}
	const Dt3& mesh() const { return engine; }
	/// The number of vertices that are in and are not own.
	std::size_t numForeign() const { return foreign.size(); }
	/// How often missing vertices were inserted until none was found.
	std::size_t numRounds() const { return rounds; }

private:
	// Tile.cpp
	void chooseKnown();
	std::vector<std::uint32_t> foreignToBeginWith() const;
	void markNear();
	void markKnownNodes();
	void markIfKnown(const BoxNode& node);
	bool isKnown(const BoxNode& node) const { return vKnown[node.level][node.index] != 0; }
	/// Calls visit(box, firstLeaf, lastLeaf) for the own leaves, some at a time, with a box around them.
	template <typename Visit>
	void forEachOwnGroup(Visit visit) const
	{
		const std::uint32_t last = (own.last + BoxTree::kLeafSize - 1) / BoxTree::kLeafSize;
		std::uint32_t next = 0;
		for (std::uint32_t leaf = own.first / BoxTree::kLeafSize; leaf < last; leaf = next) {
			const std::uint32_t group = leaf / BoxTree::kFanOut;
			next = std::min(last, (group + 1) * BoxTree::kFanOut);
			visit(tree.box(tree.numLevels() > 1 ? BoxNode{1, group} : tree.root()), leaf, next);
		}
	}
	/// The leaves with an unknown vertex for which, and for all nodes above them, `test` is true.
	template <typename Test>
	void gatherUnknownLeaves(std::vector<std::uint32_t>& vLeaves, Test test) const
	{
		vLeaves.clear();
		std::vector<BoxNode> vStack{tree.root()};
		while (!vStack.empty()) {
			const BoxNode node = vStack.back();
			vStack.pop_back();
			if (isKnown(node) || !test(node)) continue;
			if (node.level == 0) {
				vLeaves.push_back(node.index);
			} else {
				tree.forEachChild(node, [&](const BoxNode& child) { vStack.push_back(child); });
			}
		}
	}
	Point3* createVertex(std::uint32_t position);
	bool isIn(std::uint32_t position) const
	{
		return own.contains(position) || foreign.count(position) != 0;
	}

	// TileCompletion.cpp
	/// A lower bound of the squared distance from a box to unknown vertices.
	double squaredDistanceToUnknown(const Box& box) const;
	void measureClearance();
	/// What has to be found out of a tetrahedron.
	enum class Doubt {
		kNone,    ///< it has no own corner
		kInside,  ///< whether it holds an unknown vertex
		kConflict ///< whether an unknown vertex is in conflict with it, or sees a hull facet of it
	};
	Doubt doubtOf(const Tet3& tet) const;
	double clearance(const Point3& vtx) const;
	/// False when all unknown vertices are farther from some own corner than the other corners are.
	bool mayHoldUnknown(const Tet3& tet) const;
	/// True when all unknown vertices are certainly outside of the ball.
	bool hasClearBall(const Tet3& tet) const;
	/// Notes a tetrahedron that is in doubt.
	void consider(Tet3* pTet);
	/// An unknown vertex that has to be inserted because of a tetrahedron; kNone when there is no doubt any more.
	std::uint32_t findMissing(const Tet3& tet);
	std::uint32_t findInside(const Tet3& tet);
	std::uint32_t findInConflict(const Tet3& tet);
	/// Of the unknown vertices for which `test` is true, the one with the smallest f; kNone when there is none.
	template <typename Region, typename Test>
	std::uint32_t findUnknown(const Region& region, Test test);
	/// All vertices of a leaf are missing.
	void takeLeaf(std::uint32_t leaf);
	/// Inserts what is missing, and considers the new tetrahedra.
	void insertMissing();

	/// So much may be spent on searches of a leaf, in tests of its points against regions; then all its vertices are
	/// inserted. Near a plane or a sphere there may be as many regions as vertices to search in: inserted, they
	/// are searched no more, and the work stays linear.
	static constexpr unsigned kPatience = 1000;
	static constexpr unsigned kCostOfExactTest = 100;
	struct Searched
	{
		BoxNode node;
		double least;
	};

	static constexpr std::uint32_t kNone = UINT32_MAX;

	const CurvePoints& points;
	const BoxTree& tree;
	const PositionRange own;
	Dt3 engine;
	const Point3* pFirstOwn =
	    nullptr; ///< the own vertex that is the first on the curve; of none, the first of all
	std::size_t rounds = 0;
	std::unordered_set<std::uint32_t> foreign; ///< the positions of the other vertices that are in
	std::vector<std::vector<std::uint8_t>> vKnown; ///< nodes of the tree of which every point is in
	std::vector<std::uint16_t> vSpent; ///< in each leaf: a measure of the time of searches
	std::vector<Tet3*> vDoubtful;
	std::vector<std::uint32_t> vMissing; ///< to be inserted at the end of this round
	std::vector<Searched> vSearch;
	std::vector<double>
	    vClearance; ///< of each own leaf: a squared distance within which no unknown vertex is
};

} // namespace TULO3D
