// SPDX-License-Identifier: MIT
// A hierarchy of boxes over points in the order of the curve.
#pragma once

#include "tiles/Box.h"
#include "tiles/CurvePoints.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// A node of a BoxTree.
struct BoxNode
{
	std::uint32_t level; ///< 0 is a leaf
	std::uint32_t index; ///< in its level
};

/// Points that follow one another on a space-filling curve are near one another: runs of kLeafSize points are the
/// leaves, runs of kFanOut nodes the nodes of the next level, up to one root. Nothing but the boxes is stored, and
/// those of the lower levels are with the points.
class BoxTree
{
public:
	static constexpr std::uint32_t kLeafSize = CurvePoints::kLeafSize;
	static constexpr std::uint32_t kFanOut = CurvePoints::kFanOut;

	/// Of at least one point; the points must outlive the tree.
	explicit BoxTree(const CurvePoints& curvePoints);

	const Box& box(const BoxNode& node) const
	{
		if (node.level < CurvePoints::kNumBlockLevels) return points.box(node.level, node.index);
		return vUpperLevels[node.level - CurvePoints::kNumBlockLevels][node.index];
	}
	std::uint32_t numLevels() const
	{
		return CurvePoints::kNumBlockLevels + static_cast<std::uint32_t>(vUpperLevels.size());
	}
	std::uint32_t numNodes(std::uint32_t level) const
	{
		if (level < CurvePoints::kNumBlockLevels) {
			return points.numBlocks() * CurvePoints::numOfBlock(level);
		}
		return static_cast<std::uint32_t>(
		    vUpperLevels[level - CurvePoints::kNumBlockLevels].size());
	}
	std::uint32_t numLeaves() const { return numNodes(0); }
	BoxNode root() const { return {numLevels() - 1, 0}; }

	/// Calls `visit` with each child of a node that is no leaf.
	template <typename Visit>
	void forEachChild(const BoxNode& node, Visit visit) const
	{
		const std::uint32_t numChildren = numNodes(node.level - 1);
		const std::uint32_t first = node.index * kFanOut;
		for (std::uint32_t i = first; i < first + kFanOut && i < numChildren; ++i) {
			visit(BoxNode{node.level - 1, i});
		}
	}

	/// Calls `visit` with the position of each point of a leaf.
	template <typename Visit>
	void forEachPoint(std::uint32_t leaf, Visit visit) const
	{
		const std::uint32_t last = points.lastOfLeaf(leaf);
		for (std::uint32_t i = leaf * kLeafSize; i < last; ++i) visit(i);
	}

private:
	const CurvePoints& points;
	std::vector<std::vector<Box>> vUpperLevels;
};

} // namespace TULO3D
