// SPDX-License-Identifier: MIT
// The distinct points of a mesh along the curve, which all tiles read.
#include "tiles/CurvePoints.h"

#include <algorithm>
#include <utility>

namespace TULO3D {

std::size_t CurvePoints::numBoxes(std::size_t numPoints)
{
	return numBlocksOf(numPoints) * (numOfBlock(0) + numOfBlock(1) + numOfBlock(2));
}

void CurvePoints::boxBlocks(const double* pCoordinates, std::size_t numPoints,
    std::size_t firstBlock, std::size_t lastBlock, Box* pBoxes)
{
	const std::size_t last = std::min(numPoints, lastBlock * kBlock);
	for (std::uint32_t level = 0; level < kNumBlockLevels; ++level) {
		std::fill(pBoxes + firstBlock * numOfBlock(level), pBoxes + lastBlock * numOfBlock(level),
		    emptyBox());
		if (level == 0) {
			for (std::size_t i = firstBlock * kBlock; i < last; ++i) {
				const double* p = pCoordinates + 3 * i;
				widen(pBoxes[i / kLeafSize], {{p[0], p[1], p[2]}, {p[0], p[1], p[2]}});
			}
		} else {
			const std::size_t numBelow = numOfBlock(level - 1);
			const Box* const pBelow = pBoxes - numBlocksOf(numPoints) * numBelow;
			for (std::size_t i = firstBlock * numBelow; i < lastBlock * numBelow; ++i) {
				widen(pBoxes[i / kFanOut], pBelow[i]);
			}
		}
		pBoxes += numBlocksOf(numPoints) * numOfBlock(level);
	}
}

CurvePoints::CurvePoints(
    const std::vector<Part>& vTheParts, std::vector<std::uint32_t> vTheLowest, bool bMayUnderflow)
    : vLowest(std::move(vTheLowest)), bTiny(bMayUnderflow)
{
	for (const Part& part : vTheParts) {
		Placed placed{part};
		placed.first = numBlocks() * kBlock;
		const std::size_t numOwnBlocks = numBlocksOf(part.numPoints);
		const Box* pBoxes = part.pBoxes;
		for (std::uint32_t level = 0; level < kNumBlockLevels; ++level) {
			placed.pLevels[level] = pBoxes;
			pBoxes += numOwnBlocks * numOfBlock(level);
		}
		vPartOfBlock.insert(
		    vPartOfBlock.end(), numOwnBlocks, static_cast<std::uint32_t>(vParts.size()));
		vParts.push_back(placed);
		numPoints += part.numPoints;
	}
}

} // namespace TULO3D
