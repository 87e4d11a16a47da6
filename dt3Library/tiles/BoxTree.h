// SPDX-License-Identifier: MIT
// A hierarchy of boxes over points in the order of the curve.
#pragma once

#include "Point3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// An axis-aligned box, closed.
struct Box
{
	std::array<double, 3> low;
	std::array<double, 3> high;
};

/// The box of one point.
Box boxOf(const Point3& p);

/// Grows a box to contain another.
void widen(Box& box, const Box& other);

/// The squared length of the diagonal.
double squaredDiagonal(const Box& box);

/// The squared distance between two boxes; zero where they meet.
double squaredDistance(const Box& a, const Box& b);

/// A node of a BoxTree.
struct BoxNode
{
	std::uint32_t level; ///< 0 is a leaf
	std::uint32_t index; ///< in its level
};

/// Points that follow one another on a space-filling curve are near one another: runs of kLeafSize points are the
/// leaves, runs of kFanOut nodes the nodes of the next level, up to one root. Nothing but the boxes is stored.
class BoxTree
{
public:
	static constexpr std::uint32_t kLeafSize = 16;
	static constexpr std::uint32_t kFanOut = 8;

	/// Of points along a curve, at least one, which must outlive the tree.
	explicit BoxTree(const std::vector<Point3>& vAlongCurve);

	const Box& box(const BoxNode& node) const { return vLevels[node.level][node.index]; }
	std::uint32_t numLevels() const { return static_cast<std::uint32_t>(vLevels.size()); }
	std::uint32_t numNodes(std::uint32_t level) const
	{
		return static_cast<std::uint32_t>(vLevels[level].size());
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
		const std::uint32_t first = leaf * kLeafSize;
		for (std::uint32_t i = first; i < first + kLeafSize && i < vPoints.size(); ++i) visit(i);
	}

	const Point3& point(std::uint32_t position) const { return vPoints[position]; }

private:
	const std::vector<Point3>& vPoints;
	std::vector<std::vector<Box>> vLevels;
};

} // namespace TULO3D
