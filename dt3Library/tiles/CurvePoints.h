// SPDX-License-Identifier: MIT
// The distinct points of a mesh along the curve, which all tiles read.
#pragma once

#include "Point3.h"
#include "tiles/Box.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// Points along a curve, with their ranks and with boxes around runs of them, in parts one after another. A part is in
/// one piece of memory, which may be a file: what no tile reads of it is never loaded.
///
/// A vertex is named by its position. Each part begins at a multiple of kBlock, so that its boxes are those of no other;
/// the positions behind its last point are those of no vertex.
class CurvePoints
{
public:
	/// So many positions have boxes in common, in three levels: around 16, 128 and all of them.
	static constexpr std::uint32_t kBlock = 1024;
	static constexpr std::uint32_t kLeafSize = 16;
	static constexpr std::uint32_t kFanOut = 8;
	static constexpr std::uint32_t kNumBlockLevels = 3;

	struct Part
	{
		const double* pCoordinates; ///< x, y, z, x, y, z, ...
		const std::int32_t* pRanks;
		const Box* pBoxes; ///< as boxesOfBlocks() makes them
		std::uint32_t numPoints;
	};

	/// `vLowest` are the positions with the lowest ranks, some hundred if there are so many, in order; the first
	/// four span space, in positive order. `bMayUnderflow`: some coordinate is that small.
	CurvePoints(const std::vector<Part>& vTheParts, std::vector<std::uint32_t> vTheLowest,
	    bool bMayUnderflow);

	Point3 point(std::uint32_t position) const
	{
		const Placed& part = partOf(position);
		const double* p = part.pCoordinates + 3 * std::size_t{position - part.first};
		return {p[0], p[1], p[2]};
	}
	/// The place in the order of insertion.
	std::int32_t rank(std::uint32_t position) const
	{
		const Placed& part = partOf(position);
		return part.pRanks[position - part.first];
	}
	/// The box of a node below the level of whole blocks, or of that level.
	const Box& box(std::uint32_t level, std::uint32_t index) const
	{
		const std::uint32_t block = index / numOfBlock(level);
		const Placed& part = vParts[vPartOfBlock[block]];
		return part.pLevels[level][index - part.first / kBlock * numOfBlock(level)];
	}
	/// Behind the last point of a leaf.
	std::uint32_t lastOfLeaf(std::uint32_t leaf) const
	{
		const Placed& part = partOf(leaf * kLeafSize);
		const std::uint32_t last = part.first + part.numPoints;
		const std::uint32_t full = (leaf + 1) * kLeafSize;
		return full < last ? full : last;
	}

	/// The number of points.
	std::uint32_t size() const { return numPoints; }
	std::uint32_t numBlocks() const { return static_cast<std::uint32_t>(vPartOfBlock.size()); }
	/// The position of the first point of a part.
	std::uint32_t firstOfPart(std::size_t part) const { return vParts[part].first; }
	const std::vector<std::uint32_t>& lowest() const { return vLowest; }
	bool isTiny() const { return bTiny; }

	/// The number of boxes of a level in one block.
	static constexpr std::uint32_t numOfBlock(std::uint32_t level)
	{
		return level == 0 ? kBlock / kLeafSize : level == 1 ? kBlock / (kLeafSize * kFanOut) : 1;
	}
	/// The number of boxes of a part.
	static std::size_t numBoxes(std::size_t numPoints);
	/// Writes the boxes of some blocks of a part to where those of the part are: first those of all leaves, then those of
	/// the next level, then those of the blocks.
	static void boxBlocks(const double* pCoordinates, std::size_t numPoints, std::size_t firstBlock,
	    std::size_t lastBlock, Box* pBoxes);
	static std::size_t numBlocksOf(std::size_t numPoints)
	{
		return (numPoints + kBlock - 1) / kBlock;
	}

private:
	struct Placed : Part
	{
		std::uint32_t first = 0;
		const Box* pLevels[kNumBlockLevels] = {};
	};
	const Placed& partOf(std::uint32_t position) const
	{
		return vParts[vPartOfBlock[position / kBlock]];
	}

	std::vector<Placed> vParts;
	std::vector<std::uint32_t> vPartOfBlock;
	std::vector<std::uint32_t> vLowest;
	std::uint32_t numPoints = 0;
	bool bTiny;
};

} // namespace TULO3D
