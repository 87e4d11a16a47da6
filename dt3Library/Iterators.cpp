// SPDX-License-Identifier: MIT
// The step from one tetrahedron around an edge to the next.
#include "TetAroundEdgeIterator.h"

#include "Message.h"

#include <string>

namespace TULO3D {

TetAroundEdgeIterator& TetAroundEdgeIterator::operator++()
{
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
	// rotation stays. So do the ends of the edge, which need not be looked up again.
	const Tet3* pFrom = curEdge.pTet;
	Tet3* pTo = previewNextTet();
	curEdge.opp2ICI = pTo->getIntraTetIndex(pFrom->getCorner(curEdge.opp3ICI));
	curEdge.opp3ICI = pTo->getIntraTetIndex(pFrom);
	curEdge.pTet = pTo;
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
