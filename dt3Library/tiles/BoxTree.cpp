// SPDX-License-Identifier: MIT
// A hierarchy of boxes over points in the order of the curve.
#include "tiles/BoxTree.h"

#include <utility>

namespace TULO3D {

BoxTree::BoxTree(const CurvePoints& curvePoints) : points(curvePoints)
{
	while (numNodes(numLevels() - 1) > 1) {
		const std::uint32_t below = numLevels() - 1;
		std::vector<Box> vBoxes((numNodes(below) + kFanOut - 1) / kFanOut, emptyBox());
		for (std::uint32_t i = 0; i < numNodes(below); ++i) {
			widen(vBoxes[i / kFanOut], box({below, i}));
		}
		vUpperLevels.push_back(std::move(vBoxes));
	}
}

} // namespace TULO3D
