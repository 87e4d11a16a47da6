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

	// clang-format off
	//
	//            q               the edge seen along its direction: E is both pSource and pTarget
	//          / | \             pFrom  opp2ICI is corner p, opp3ICI is corner q
	//        /   |   \           pTo    opp2ICI is corner q, opp3ICI is corner r
	//      / pFrom pTo \         (q is the corner of the facet between them that is not on the edge)
	//    p-------E-------r
	//
	// clang-format on
	// A step crosses facet opp2ICI, which contains the edge and the corner opp3ICI. In the next tetrahedron
	// that corner becomes opp2ICI, so the next step crosses the other facet at the edge: the sense of
	// rotation stays.
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
