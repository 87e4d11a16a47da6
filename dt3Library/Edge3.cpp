// SPDX-License-Identifier: MIT
// An edge by one of its tetrahedra and the two corners that it avoids.
#include "Edge3.h"

#include "geometry/TetIndices.h"
#include "tools.h"

#include <functional>
#include <iostream>
#include <utility>

namespace TULO3D {

namespace {

constexpr int kNoIndex = -99; // no edge avoids a single corner

bool namesAnEdge(int opp3ICI, int opp2ICI)
{
	return range03(opp3ICI) && range03(opp2ICI) && opp3ICI != opp2ICI;
}

/// The corner, or null where the assertion is compiled out.
Point3* checkedCorner(const Tet3* pTet, int ith)
{
	assert(range03(ith));
	return range03(ith) ? pTet->getCorner(ith) : nullptr;
}

} // namespace

Edge3::Edge3(Tet3* pT, int opp3, int opp2)
    : pTet(pT),
      opp3ICI(opp3),
      opp2ICI(opp2),
      pLowerEnd(checkedCorner(pT, getSourceIndex())),
      pHigherEnd(checkedCorner(pT, getTargetIndex()))
{
	if (std::less<>()(pHigherEnd, pLowerEnd)) std::swap(pLowerEnd, pHigherEnd);
}

int Edge3::getSourceIndex() const
{
	return namesAnEdge(opp3ICI, opp2ICI) ? edgeSource(opp3ICI, opp2ICI) : kNoIndex;
}

int Edge3::getTargetIndex() const
{
	return namesAnEdge(opp3ICI, opp2ICI) ? edgeTarget(opp3ICI, opp2ICI) : kNoIndex;
}

bool Edge3::operator==(const Edge3& other) const
{
	const Point3* pSource = checkedCorner(pTet, getSourceIndex());
	const Point3* pTarget = checkedCorner(pTet, getTargetIndex());
	const Point3* pOtherSource = checkedCorner(other.pTet, other.getSourceIndex());
	const Point3* pOtherTarget = checkedCorner(other.pTet, other.getTargetIndex());
	return (pSource == pOtherSource && pTarget == pOtherTarget) ||
	    (pSource == pOtherTarget && pTarget == pOtherSource);
}

bool Edge3::operator<(const Edge3& other) const
{
	const std::less<const Point3*> isBelow;
	if (pLowerEnd != other.pLowerEnd) return isBelow(pLowerEnd, other.pLowerEnd);
	return isBelow(pHigherEnd, other.pHigherEnd);
}

std::ostream& operator<<(std::ostream& stream, const Edge3& edge)
{
	const Tet3* pTet = edge.getTet();
	const auto line = [&](const char* name, int ith) {
		stream << name << ith << ", " << pTet->getCorner(ith) << std::endl;
	};
	stream << "Edge (pTet" << pTet << "): " << std::endl;
	line("opp3ICI=", edge.getOpp3Index());
	line("opp2ICI=", edge.getOpp2Index());
	line("srcICI=", edge.getSourceIndex());
	line("trgICI=", edge.getTargetIndex());
	return stream;
}

} // namespace TULO3D
