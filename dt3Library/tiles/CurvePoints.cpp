// SPDX-License-Identifier: MIT
// The distinct points of a mesh along the curve, which all tiles read.
#include "tiles/CurvePoints.h"

#include <algorithm>
#include <utility>

namespace TULO3D {

namespace {

std::size_t numBlocksOf(std::size_t numPoints)
{
	return (numPoints + CurvePoints::kBlock - 1) / CurvePoints::kBlock;
}

} // namespace

std::size_t CurvePoints::numBoxes(std::size_t numPoints)
{
	return numBlocksOf(numPoints) * (numOfBlock(0) + numOfBlock(1) + numOfBlock(2));
}

void CurvePoints::boxesOfBlocks(const double* pCoordinates, std::size_t numPoints, Box* pBoxes)
{
	std::fill_n(pBoxes, numBoxes(numPoints), emptyBox());
	for (std::size_t i = 0; i < numPoints; ++i) {
		const double* p = pCoordinates + 3 * i;
		widen(pBoxes[i / kLeafSize], {{p[0], p[1], p[2]}, {p[0], p[1], p[2]}});
	}
	for (std::uint32_t level = 1; level < kNumBlockLevels; ++level) {
		const std::size_t numBelow = numBlocksOf(numPoints) * numOfBlock(level - 1);
		Box* const pAbove = pBoxes + numBelow;
		for (std::size_t i = 0; i < numBelow; ++i) widen(pAbove[i / kFanOut], pBoxes[i]);
		pBoxes = pAbove;
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
