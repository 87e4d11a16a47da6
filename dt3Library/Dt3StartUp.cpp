// SPDX-License-Identifier: MIT
// Finds four vertices that are not coplanar and makes the first tetrahedron.
#include "Dt3.h"

#include <array>
#include <functional>
#include <utility>

namespace TULO3D {

namespace {

/// True when the point lies on the line through a and b.
bool isOnLine(const ArdoTest3& predicates, const Point3& a, const Point3& b, const Point3& p)
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

} // namespace

std::array<Point3*, 4> findFirstFour(
    const ArdoTest3& predicates, const std::function<Point3*()>& next)
{
	Point3* pA = next();
	Point3* pB = next();
	Point3* pC = next();
	while (pC != nullptr && isOnLine(predicates, *pA, *pB, *pC)) pC = next();
	Point3* pD = pC == nullptr ? nullptr : next();
	Orientation3 ori = ORIENTATION3_COPLANAR;
	for (; pD != nullptr; pD = next()) {
		ori = predicates.getOrientation3(pA, pB, pC, pD);
		if (ori != ORIENTATION3_COPLANAR) break;
	}
	if (ori == ORIENTATION3_NEGATIVE) std::swap(pA, pB);
	return {pA, pB, pC, pD};
}

bool FlatWitness::covers(const HC3& store, const ArdoTest3& predicates)
{
	if (numVertices < 4) return false;
	if (store.size() == numVertices) return true;
	if (store.size() != numVertices + 1) return false;

	Point3* pNew = store.newestVertex();
	if (pC == nullptr) {
		if (!isOnLine(predicates, *pA, *pB, *pNew)) pC = pNew;
	} else if (predicates.getOrientation3(pA, pB, pC, pNew) != ORIENTATION3_COPLANAR) {
		return false;
	}
	++numVertices;
	return true;
}

Tet3* Dt3::startUp()
{
	CONDITION_CHECK(!bFullDimensional);
	if (flatWitness.covers(hc3, predicates)) return nullptr;

	const VertexOrder& items = hc3.items;
	if (items.size() < 4) return nullptr;
	auto at = items.begin();
	const auto four = findFirstFour(predicates, [&items, &at]() -> Point3* {
		if (at == items.end()) return nullptr;
		Point3* pVtx = (*at)->pVtx;
		++at;
		return pVtx;
	});
	const auto [pA, pB, pC, pD] = four;
	if (pD == nullptr) {
		flatWitness = {pA, pB, pC, items.size()};
		return nullptr;
	}
	const Orientation3 ori = predicates.getOrientation3(pA, pB, pC, pD);
	CONDITION_CHECK(ori==ORIENTATION3_POSITIVE);
	return startWith(four);
}

Tet3* Dt3::startWith(const std::array<Point3*, 4>& vertices)
{
	Tet3* pFirstTet = createTet(vertices[0], vertices[1], vertices[2], vertices[3]);
	bFullDimensional = true;
	return pFirstTet;
}

} // namespace TULO3D
