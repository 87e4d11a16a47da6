// SPDX-License-Identifier: MIT
// The walk ends where a search of all tetrahedra says it must, from wherever it starts.
#include "Dt3.h"
#include "ardo_tools/BitsetTree.h"
#include "oracle.h"
#include "support.h"

#include <iterator>
#include <set>

using namespace TULO3D;
using points::Cloud;

namespace {

/// An engine without a facade, filled with a batch.
struct Filled
{
	explicit Filled(Cloud cloud) : engine(nullptr)
	{
		const support::Capture quiet;
		std::vector<Point3*> handles;
		engine.insert(cloud, handles);
		engine.getAllTetrahedra(tets);
	}
	Dt3 engine;
	std::vector<Tet3*> tets;
};

/// On which side of facet i, 1 being the tetrahedron's own.
int side(const Tet3* pTet, int i, const Point3& p)
{
	int a, b, c;
	pTet->getFacetIndices(i, a, b, c);
	return -oracle::quickOrientation(
	    *pTet->getCorner(a), *pTet->getCorner(b), *pTet->getCorner(c), p);
}

/// 3 inside, 2 on a facet, 1 on an edge, 0 a corner, -1 not in the tetrahedron.
int placeIn(const Tet3* pTet, const Point3& p)
{
	int place = -1;
	for (int i = 0; i < 4; ++i) {
		const int s = side(pTet, i, p);
		if (s < 0) return -1;
		place += s;
	}
	return place;
}

/// Checks the result of a walk against a search of all tetrahedra.
void expectTrue(const Filled& mesh, int result, const Tet3* pTet, const Point3& p)
{
	int place = -1;
	bool bOnHull = false;
	for (const Tet3* pAny : mesh.tets) {
		const int here = placeIn(pAny, p);
		if (here >= 0) place = here;
		for (int i = 0; here >= 0 && i < 4; ++i)
			bOnHull |= pAny->getOppTet(i) == nullptr && side(pAny, i, p) == 0;
	}
	if (result < 0) {
		EXPECT_TRUE(result == -1 ? placeIn(pTet, p) >= 1 && !bOnHull
		                         : result == -2 && placeIn(pTet, p) == 0);
		return;
	}
	ASSERT_TRUE(range03(result) && pTet->getOppTet(result) == nullptr && side(pTet, result, p) <= 0)
	    << result;
	EXPECT_TRUE(place == -1 || bOnHull);
	EXPECT_NE(place, 0) << "a vertex must be recognised";
	EXPECT_EQ(place >= 0, placeIn(pTet, p) >= 0) << "a hull facet that contains the point";
}

} // namespace

TEST(Locate, WalkEndsWhereASearchOfAllTetrahedraSays)
{
	for (const char* family :
	    {"Lattice", "Uniform", "IntegerSphereThenCentre", "AroundABox", "BodyCentred"}) {
		Filled mesh(points::make(family, 64));
		points::Random random(3);
		Cloud queries;
		for (const Tet3* pTet : mesh.tets) {
			// Exactly a corner, a middle of an edge, of a facet, of the inside, and points beyond.
			const double weights[][4] = {{1, 0, 0, 0}, {0.5, 0.5, 0, 0}, {0.5, 0.25, 0.25, 0},
			    {0.25, 0.25, 0.25, 0.25}, {2, -1, 0, 0}};
			for (const auto& weight : weights) {
				const int first = random.below(4);
				double x = 0, y = 0, z = 0;
				for (int i = 0; i < 4; ++i) {
					const Point3* p = pTet->getCorner((first + i) % 4);
					x += weight[i] * p->x(), y += weight[i] * p->y(), z += weight[i] * p->z();
				}
				queries.emplace_back(x, y, z);
			}
		}
		const support::Capture quiet;
		for (Point3& p : queries) {
			SCOPED_TRACE(
			    family + (" " + testing::PrintToString(std::vector<double>{p.x(), p.y(), p.z()})));
			Tet3* pTet = random.of(mesh.tets);
			const int result = mesh.engine.locateConflictTet(&p, pTet);
			expectTrue(mesh, result, pTet, p);
			// Of several tetrahedra around a facet, an edge or a vertex, the start decides which is named.
			Tet3* pNext = mesh.engine.hc3.findNearbyTet(p);
			const int found = mesh.engine.locateConflictTet(&p, pNext);
			EXPECT_EQ(found < 0, result < 0);
			EXPECT_EQ(mesh.engine.locate(p), found < 0 ? pNext : nullptr);
		}
	}
}

TEST(Locate, EmptyFlatAndRefusedQueriesGiveNull)
{
	support::Recorded r;
	EXPECT_EQ(r.mesh.locate(Point3(0, 0, 0)), nullptr);
	r.insert(points::make("FlatGrid", 20));
	EXPECT_EQ(r.mesh.locate(Point3(1, 1, 0)), nullptr);
	r.insert(points::make("Uniform", 20));
	EXPECT_NE(r.mesh.locate(Point3(1, 1, 0)), nullptr);
	for (const Point3& p : points::refused()) EXPECT_EQ(r.mesh.locate(p), nullptr);
}

TEST(Locate, AQueryDoesNotReplaceThePredicates)
{
	Filled mesh(points::make("Lattice", 64));
	const NeighbourTest allStages = bestTests().neighbours;
	EXPECT_NE(mesh.engine.locate(Point3(1e-200, 1.25, 1.5)), nullptr);
	EXPECT_EQ(mesh.engine.batchTests.neighbours, allStages);
	const support::Capture quiet;
	std::vector<Point3*> handles;
	Cloud refused{Point3(1e-200, 0, 0), Point3(2e60, 0, 0)};
	EXPECT_THROW(mesh.engine.insert(refused, handles), TuloException);
	EXPECT_EQ(mesh.engine.batchTests.neighbours, allStages);
	refused.pop_back();
	mesh.engine.insert(refused, handles);
	EXPECT_NE(mesh.engine.batchTests.neighbours, allStages) << "they may not underflow";
}

TEST(Locate, WatchdogStopsALongWalkAndPersistenceFinishesIt)
{
	Filled mesh(points::make("Spiral", 20000));
	Point3 bottom(0.1, 0.02, 1.003), top(0.01, 0.03, 198);
	Tet3 *pStart = nullptr, *pTet = nullptr;
	int result = 0;
	support::printedBy([&] { pTet = pStart = mesh.engine.locate(bottom); });
	ASSERT_NE(pStart, nullptr);
	EXPECT_EQ(support::printedBy([&] { result = mesh.engine.locateConflictTet(&top, pTet); }),
	    "watchDog: bad point\n");
	EXPECT_EQ(result, -99);
	EXPECT_NE(pTet, pStart) << "the next walk goes on from there";
	const support::Capture quiet;
	const Tet3* pFound = mesh.engine.locate(top);
	for (int walk = 0; walk < 100 && result == -99; ++walk)
		result = mesh.engine.locateConflictTet(&top, pTet);
	EXPECT_TRUE(result == -1 && placeIn(pTet, top) >= 1 && pFound != nullptr);
}

TEST(Locate, AShortcutThatLeadsNowhereIsTakenOnce)
{
	// A long strip under a far apex: the vertex that is next on the curve is more than 10,000 tests away.
	points::Random random(1);
	Cloud strip;
	for (int i = 0; i < 200000; ++i) strip.emplace_back(i % 2 + 0.2 * random.unit(), i, 0);
	strip.emplace_back(0.5, 1e5, -1e9);
	Filled mesh(strip);
	const support::Capture quiet;
	Point3 apex(0.5, 1e5, 1e9);
	mesh.engine.insert(apex);
	for (int k = 1; k < 5; ++k) {
		Point3 p(0.5, 10000 * k + 0.123, 1);
		EXPECT_NE(mesh.engine.locate(p), nullptr) << k;
		EXPECT_NE(mesh.engine.insert(p)->getOneTet(), nullptr) << k;
	}
	EXPECT_LT(quiet.text().size(), 1000U) << "few walks are stopped";
}

TEST(Locate, TheStartOnTheCurveCountsForWalksOfUpTo64FacetTests)
{
	// The outliers put all other points into one cell of the curve. A query in a facet has two tetrahedra.
	points::Random random(6);
	Cloud cloud;
	for (int i = 0; i < 4000; ++i) {
		cloud.emplace_back(random.below(64), random.below(64), random.below(64));
	}
	for (const double x : {-1e6, 1e6}) {
		for (const double y : {-1e6, 1e6}) cloud.insert(cloud.end(), {{x, y, -1e6}, {x, y, 1e6}});
	}
	Filled mesh(cloud);
	Dt3& engine = mesh.engine;
	int numShort = 0, numLong = 0; // those that end elsewhere than a walk from the nearer vertex
	for (int n = 0; n < 2000; ++n) {
		const Tet3* pTet = random.of(mesh.tets);
		if (pTet->getOppTet(0) == nullptr) continue;
		const Point3 &a = *pTet->getCorner(1), &b = *pTet->getCorner(2), &c = *pTet->getCorner(3);
		Point3 p(a.x() / 2 + b.x() / 4 + c.x() / 4, a.y() / 2 + b.y() / 4 + c.y() / 4,
		    a.z() / 2 + b.z() / 4 + c.z() / 4);
		Tet3* pByCurve = engine.hc3.findNearbyTet(p);
		Tet3* pNearer = engine.hc3.nearerTet(p, pByCurve);
		engine.walk.numFacetTests = 0;
		engine.locateConflictTet(&p, pByCurve);
		const std::size_t numTests = engine.walk.numFacetTests;
		engine.locateConflictTet(&p, pNearer);
		ASSERT_EQ(engine.locate(p), numTests <= 64 ? pByCurve : pNearer) << numTests;
		if (pByCurve != pNearer) (numTests <= 64 ? numShort : numLong) += 1;
	}
	EXPECT_TRUE(numShort > 20 && numLong > 20) << numShort << " " << numLong;
}

TEST(Locate, RanksOnEitherSideAreThoseOfAnOrderedSet)
{
	// A wrong one would only make a walk longer.
	points::Random random(5);
	for (const int limit : {1, 64, 65, 4096, 300000}) {
		BitsetTree ranks(static_cast<std::size_t>(limit));
		std::set<std::size_t> expected;
		for (int n = 0; n < 3000; ++n) {
			const auto rank = static_cast<std::size_t>(random.below(limit));
			const auto itAbove = expected.upper_bound(rank);
			const auto itAt = expected.lower_bound(rank);
			EXPECT_EQ(ranks.above(rank), itAbove == expected.end() ? BitsetTree::kNone : *itAbove);
			EXPECT_EQ(
			    ranks.below(rank), itAt == expected.begin() ? BitsetTree::kNone : *std::prev(itAt));
			ranks.add(rank);
			expected.insert(rank);
		}
	}
}
