// SPDX-License-Identifier: MIT
// Finds four vertices that are not coplanar and makes the first tetrahedron.
#include "Dt3.h"

#include <utility>

namespace TULO3D {

Tet3* Dt3::startUp()
{
	CONDITION_CHECK(!bFullDimensional);
	if (staysFlat()) return nullptr;

	// A, B, C, D become the first four vertices that are not coplanar, in the lexicographic order of their
	// positions. A and B are the first two of the listing: if any four vertices span space, then A and B,
	// being distinct, are among such four. C is the first vertex off the line AB, D the first one behind C
	// off the plane ABC: all vertices between C and D lie in that plane. So one pass suffices.
	const VertexOrder& items = hc3.items;
	if (items.size() < 4) return nullptr;
	auto at = items.begin();
	const auto next = [&items, &at]() -> Point3* {
		if (at == items.end()) return nullptr;
		Point3* pVtx = (*at)->pVtx;
		++at;
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
	// Three points are collinear when their projections to all three coordinate planes are. An exact
	// orientation test in the plane is that of space with a fourth point off the plane.
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
	// All vertices but the newest are known to lie in the line or plane of the witness. So a point that is
	// inserted singly costs one test, where the search in startUp would visit all vertices each time.
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
