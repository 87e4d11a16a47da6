// SPDX-License-Identifier: MIT
// The step from one tetrahedron around an edge to the next.
#include "TetAroundEdgeIterator.h"

#include "Message.h"

#include <string>

namespace TULO3D {

TetAroundEdgeIterator& TetAroundEdgeIterator::operator++()
{
	const Tet3* pFrom = curEdge.getTet();
	const Point3* pSource = curEdge.getSourceVtx();
	const Point3* pTarget = curEdge.getTargetVtx();

	// Crossing facet opp2ICI, the next tetrahedron's two corners off the edge are the one beyond
	// that facet (opp3) and the one on it (opp2). The step after this one crosses the facet opposite
	// the latter, which is the other one at the edge, so the sense of rotation stays.
	Tet3* pTo = previewNextTet();
	const int opp3ICI = pTo->getIntraTetIndex(pFrom);
	int opp2ICI = 0;
	for (; opp2ICI < 4; ++opp2ICI) {
		const Point3* p = pTo->getCorner(opp2ICI);
		if (opp2ICI != opp3ICI && p != pSource && p != pTarget) break;
	}
	curEdge = Edge3(pTo, opp3ICI, opp2ICI);
	return *this;
}

void TetAroundEdgeIterator::debug() const
{
	const std::string rule(35, '-');
	Message() << rule << std::endl
	          << "# This is a TetAroundEdgeIterator:" << std::endl
	          << curEdge << rule << std::endl
	          << std::endl;
}

} // namespace TULO3D
