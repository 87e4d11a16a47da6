// SPDX-License-Identifier: MIT
// From a heap of vertices to the first tetrahedron.
#include "Dt3.h"

#include <utility>

namespace TULO3D {

Tet3* Dt3::startUp()
{
	CONDITION_CHECK(!bFullDimensional);
	if (staysFlat()) return nullptr;

	// The first four vertices that are not coplanar, in lexicographic order of their places, are
	// A, B, C, D: if any four span space, then A and B, being distinct, can be extended to four that
	// do. C is the first one off their line, D the first one behind C off their plane: whatever lies
	// between is in the plane of A, B, C already.
	const VertexOrder& items = hc3.items;
	if (items.size() < 4) return nullptr;
	VertexOrder::Position at = items.begin();
	const auto next = [&items, &at]() -> Point3* {
		if (items.isEnd(at)) return nullptr;
		Point3* pVtx = items[at]->pVtx;
		at = items.next(at);
		return pVtx;
	};
	Point3* pA = next();
	Point3* pB = next();
	Point3* pC = next();
	while (pC != nullptr && isOnLine(*pA, *pB, *pC)) pC = next();
	if (pC == nullptr) return rememberFlat(pA, pB, nullptr);
	Point3* pD = next();
	Orientation3 ori = ORIENTATION3_COPLANAR;
	for (; pD != nullptr; pD = next()) {
		ori = predicates.getOrientation3(pA, pB, pC, pD);
		if (ori != ORIENTATION3_COPLANAR) break;
	}
	if (pD == nullptr) return rememberFlat(pA, pB, pC);

	if (ori == ORIENTATION3_NEGATIVE) std::swap(pA, pB);
	ori = predicates.getOrientation3(pA, pB, pC, pD);
	CONDITION_CHECK(ori==ORIENTATION3_POSITIVE);
	Tet3* pFirstTet = createTet(pA, pB, pC, pD);
	bFullDimensional = true;
	return pFirstTet;
}

bool Dt3::isOnLine(const Point3& a, const Point3& b, const Point3& p) const
{
	// Three points are collinear when their three coordinate projections are; each of these is an
	// orientation in the plane, asked in space with an apex beside that plane.
	const auto isOnLineIn = [&](double ax, double ay, double bx, double by, double px, double py) {
		const Point3 flatA(ax, ay, 0.0), flatB(bx, by, 0.0), flatP(px, py, 0.0), apex(ax, ay, 1.0);
		return predicates.getOrientation3(&flatA, &flatB, &flatP, &apex) == ORIENTATION3_COPLANAR;
	};
	return isOnLineIn(a.x(), a.y(), b.x(), b.y(), p.x(), p.y()) &&
	    isOnLineIn(a.y(), a.z(), b.y(), b.z(), p.y(), p.z()) &&
	    isOnLineIn(a.z(), a.x(), b.z(), b.x(), p.z(), p.x());
}

Tet3* Dt3::rememberFlat(Point3* pA, Point3* pB, Point3* pC)
{
	flatWitness = {pA, pB, pC, hc3.size()};
	return nullptr;
}

bool Dt3::staysFlat()
{
	// All but the newest vertex are known to be in the line or plane of the witness, so that points
	// that come one by one cost one test each.
	FlatWitness& known = flatWitness;
	if (known.numVertices < 4) return false;
	if (hc3.size() == known.numVertices) return true;
	if (hc3.size() != known.numVertices + 1) return false;

	Point3* pNew = hc3.newestVertex();
	if (known.pC == nullptr) {
		if (!isOnLine(*known.pA, *known.pB, *pNew)) known.pC = pNew;
	} else if (predicates.getOrientation3(known.pA, known.pB, known.pC, pNew) !=
	    ORIENTATION3_COPLANAR) {
		return false;
	}
	++known.numVertices;
	return true;
}

} // namespace TULO3D
