// SPDX-License-Identifier: MIT
// The tetrahedron record: construction, queries, printing, and the stops on a broken mesh.
#include "Tet3.h"

#include "ArdoTest3.h"
#include "Edge3.h"
#include "Facet3.h"
#include "Message.h"
#include "geometry/TetIndices.h"
#include "geometry/printing.h"
#include "geometry/vectors.h"
#include "tools.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace TULO3D {

namespace {

std::array<Point3*, 3> facetVertices(const Tet3& tet, int opp3)
{
	int i0 = 0;
	int i1 = 0;
	int i2 = 0;
	tet.getFacetIndices(opp3, i0, i1, i2);
	return {tet.getCorner(i0), tet.getCorner(i1), tet.getCorner(i2)};
}

void printFacet(Message& message, const Tet3& tet, int opp3)
{
	int i0 = 0;
	int i1 = 0;
	int i2 = 0;
	tet.getFacetIndices(opp3, i0, i1, i2);
	message << tet << "...with index " << opp3 << '\n' << i0 << "," << i1 << "," << i2 << std::endl;
}

void reportNoCommonFacet(const Tet3& tet0, int i0, const Tet3& tet1, int i1)
{
	Message message;
	message << "Tet3::haveCommonFacet() ERROR" << std::endl;
	printFacet(message, tet0, i0);
	printFacet(message, tet1, i1);
}

void reportNoNeighbour(const Tet3& tet, const Tet3* pT)
{
	Message message;
	message << "Tet3::getIntraTetIndex went wrong: ";
	if (pT != nullptr) {
		message << *pT;
	} else {
		message << "NULL"; // a null neighbour, but the tetrahedron has no hull facet
	}
	message << ", this is " << tet << std::endl;
}

} // namespace

int Tet3::runningLabel = 1000;

Tet3::Tet3()
    : hasBeenVisited(false),
      bInCavity(false),
      reservations(0),
      label(takeLabels(1)),
      aVertexPointer{},
      aNeighbours{},
      customIndex(-1)
{
	Message() << "Tet default constructor (is actually not called)" << std::endl;
}

Tet3::Tet3(const Tet3& /*other*/)
    : hasBeenVisited(false),
      bInCavity(false),
      reservations(0),
      label(-1),
      aVertexPointer{},
      aNeighbours{},
      customIndex(-1)
{
	Message() << "CCTOR of Tet3" << std::endl;
}

int Tet3::getIntraTetIndexInOppTetForReg(const Tet3* pOther, int ith) const
{
	if (!range03(ith)) {
		assert(false);
		return -1;
	}
	Point3 *p0, *p1, *p2, *p3;
	pOther->getCorners(p0, p1, p2, p3);
	// The corner opposite the facet does not count: it may be a corner of this tetrahedron too.
	const auto isOnFacet = [pOther, ith](const Point3* p) {
		return p == pOther->aVertexPointer[(ith + 1) & 3] ||
		    p == pOther->aVertexPointer[(ith + 2) & 3] ||
		    p == pOther->aVertexPointer[(ith + 3) & 3];
	};
	for (int k = 0; k < 3; ++k) {
		if (!isOnFacet(aVertexPointer[k])) return k;
	}
	[[maybe_unused]] const Point3* pd = aVertexPointer[3];
	switch (ith) { // the checks differ in their printed text
	case 0:
		assert(pd!=p1 && pd!=p2 && pd!=p3);
		break;
	case 1:
		assert(pd!=p0 && pd!=p2 && pd!=p3);
		break;
	case 2:
		assert(pd!=p0 && pd!=p1 && pd!=p3);
		break;
	default:
		assert(pd!=p0 && pd!=p1 && pd!=p2);
		break;
	}
	return 3;
}

Point3* Tet3::getOppVtxInOppTet(int ith, bool bMayBeNull) const
{
	const Tet3* pNeigh = getOppTet(ith);
	if (pNeigh) return pNeigh->getCorner(pNeigh->getIntraTetIndex(this));
	if (bMayBeNull) return nullptr;
	const std::string text = printError("Tet3::getOppVtxInOppTet", "no neighbor tet");
	hardStop(StopReason::kWrongUse, text.c_str());
}

Facet3 Tet3::getFacet(int ith)
{
	return Facet3(this, ith);
}

Edge3 Tet3::getEdge(int opp3ICI, int opp2ICI)
{
	if (opp3ICI == opp2ICI) {
		printError("Tet3::getEdge()", "opp3ICI==opp2ICI=" + std::to_string(opp3ICI));
		assert(opp3ICI!=opp2ICI);
	}
	return Edge3(this, opp3ICI, opp2ICI);
}

void Tet3::getFacetIndices(int opp3, int& i0, int& i1, int& i2) const
{
	assert(range03(opp3));
	i0 = kOutside[opp3][0];
	i1 = kOutside[opp3][1];
	i2 = kOutside[opp3][2];
}

std::pair<int, int> Tet3::getEdgeIndices(int i, int j)
{
	const auto [first, second] = facetEdge(i, j);
	return {first, second};
}

bool Tet3::haveCommonFacet(Tet3* pT0, int i0, Tet3* pT1, int i1)
{
	const auto aFirst = facetVertices(*pT0, i0);
	const auto aSecond = facetVertices(*pT1, i1);
	const bool bCommon = std::all_of(aFirst.begin(), aFirst.end(), [&](const Point3* p) {
		return std::find(aSecond.begin(), aSecond.end(), p) != aSecond.end();
	});
	if (bCommon) return true;

	reportNoCommonFacet(*pT0, i0, *pT1, i1);
	hardStop(StopReason::kBrokenMesh, "Tet3::haveCommonFacet() ERROR");
}

Point3 Tet3::getCircumcenter() const
{
	const Point3& a = *aVertexPointer[0];
	const Vector3 ba = *aVertexPointer[1] - a;
	const Vector3 ca = *aVertexPointer[2] - a;
	const Vector3 da = *aVertexPointer[3] - a;
	const double lenBa = dot(ba, ba), lenCa = dot(ca, ca), lenDa = dot(da, da);
	const Vector3 cd = cross(ca, da), db = cross(da, ba), bc = cross(ba, ca);
	const double denominator = 0.5 / dot(ba, cd);
	return a +
	    Vector3((lenBa * cd.x() + lenCa * db.x() + lenDa * bc.x()) * denominator,
	        (lenBa * cd.y() + lenCa * db.y() + lenDa * bc.y()) * denominator,
	        (lenBa * cd.z() + lenCa * db.z() + lenDa * bc.z()) * denominator);
}

int Tet3::debug_getOppTetIndex(int ith) const
{
	assert(range03(ith));
	if (!aNeighbours[ith]) return -1;
	Message() << "Tet3::debug_getTetIndex(): Not implemented yet" << std::endl;
	return 0;
}

void Tet3::reportSelfLink(int ith, [[maybe_unused]] const Tet3* pC) const
{
	Message() << "this=" << this << ", pC=" << pC << std::endl << *this;
	printWarning("Tet3::setOppTet()",
	    "trying to set *this as neighbor of *this, ith=" + std::to_string(ith));
	assert(this!=pC);
}

int Tet3::searchNeighbour(const Tet3* pT) const
{
	const auto it = std::find(std::begin(aNeighbours), std::end(aNeighbours), pT);
	if (it != std::end(aNeighbours)) return static_cast<int>(it - std::begin(aNeighbours));

	reportNoNeighbour(*this, pT);
	hardStop(StopReason::kBrokenMesh, "Tet3::getIntraTetIndex went wrong");
}

std::ostream& operator<<(std::ostream& stream, const Tet3& tet)
{
	const ArdoTest3 predicates;
	const Orientation3 orientation = predicates.getOrientation3(
	    tet.getCorner(0), tet.getCorner(1), tet.getCorner(2), tet.getCorner(3));
	stream << "Tetrahedron (ID=" << tet.label << "), (this=" << &tet
	       << "): hasBeenVisited=" << tet.hasBeenVisited << ", "
	       << "ownOri=" << ArdoTest3::getOrientationName(orientation) << '\n';
	for (int i = 0; i < 4; ++i) {
		const Point3* pCorner = tet.getCorner(i);
		const Tet3* pNeigh = tet.getOppTet(i);
		stream << "ith=" << i << ", vertex (" << pCorner << "): " << *pCorner
		       << "  oppTet=" << pNeigh << (pNeigh ? "" : " (NULL)") << '\n';
	}
	return stream;
}

} // namespace TULO3D
