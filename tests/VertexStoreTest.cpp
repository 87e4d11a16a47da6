// SPDX-License-Identifier: MIT
// The vertex store: duplicates and order against plain references, and the margins of the box.
#include "HC3.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <map>
#include <set>

using namespace TULO3D;
using points::Cloud;

namespace {

/// A store with short ways to fill it, beside a plain map fed with the same points.
struct Store : HC3
{
	Store() = default;
	Store(const Point3& low, const Point3& high) // a box without a margin
	{
		bbox = Bbox3({low, high});
		rebuildKeys();
	}

	Tet3* single(const Point3& p)
	{
		Tet3* pStart = nullptr;
		handles = {insertPoint(p, pStart)};
		return pStart;
	}

	void batch(const Cloud& cloud)
	{
		handles.clear();
		vNew.clear();
		insertPoints(cloud, handles, vNew);
	}

	/// Inserts, and compares handles, new vertices and the listing with what plain containers say.
	void checked(const Cloud& cloud, bool bSingles)
	{
		std::vector<Point3*> made;
		if (!bSingles) batch(cloud);
		for (std::size_t i = 0; i < cloud.size(); ++i) {
			if (bSingles) single(cloud[i]);
			Point3* pVtx = handles.at(bSingles ? 0 : i);
			const auto [it, bNew] = vertexOf.emplace(cloud[i], pVtx);
			ASSERT_TRUE(pVtx == it->second && *pVtx == cloud[i]);
			// The first of equal points becomes the vertex. The sign of a zero tells.
			ASSERT_TRUE(!bNew ||
			    (std::signbit(pVtx->x()) == std::signbit(cloud[i].x()) &&
			        pVtx->getCustomIndex() == -1));
			if (bNew) made.push_back(pVtx);
		}
		std::stable_sort(made.begin(), made.end(),
		    [this](auto p, auto q) { return hilbertIndex(*p) < hilbertIndex(*q); });
		ASSERT_TRUE(bSingles || vNew == made);
		// Records are made in the same order: those of a batch follow one another in memory, but for the
		// steps from block to block.
		std::size_t numSteps = 0;
		for (std::size_t i = 1; i < vNew.size(); ++i) numSteps += vNew[i] != vNew[i - 1] + 1;
		ASSERT_LT(numSteps, 30U);
		std::list<IdxVtx> records;
		std::set<IdxVtx*, Func_ltIdxVtxPtr> reference;
		for (const auto& [p, pVtx] : vertexOf)
			reference.insert(&records.emplace_back(IdxVtx{hilbertIndex(p), pVtx}));
		std::vector<Point3*> listed, expected;
		for (const IdxVtx* pItem : reference) expected.push_back(pItem->pVtx);
		getVertices(listed);
		ASSERT_EQ(listed, expected);
		ASSERT_EQ(size(), expected.size());
	}

	std::vector<Point3*> handles, vNew;
	std::map<Point3, Point3*> vertexOf;
};

} // namespace

TEST(VertexStore, KeysCompareEveryAxisWithTheHalfWidthInX)
{
	// Deliberate. In a box 1 wide and 4 high, y = 0.5 counts as the upper half.
	const Store store(Point3(0, 0, 0), Point3(1, 4, 1));
	const auto octant = [&](double y) { return store.hilbertIndex(Point3(0, y, 0)) >> 24U; };
	EXPECT_EQ(octant(0.5), octant(3));
	EXPECT_NE(octant(0.5), octant(0.49));
	EXPECT_EQ(store.hilbertIndex(Point3(0, 0.6, 0)), store.hilbertIndex(Point3(0, 1.9, 0)));
}

TEST(VertexStore, MergesDuplicatesAndOrdersLikeASet)
{
	points::Random random(5);
	for (const char* family : {"SmallIntegers", "Uniform", "NeedleBox", "EachOutside",
	         "DuplicatesAndSignedZeros", "MixedScales"}) {
		Store store;
		for (int round = 0; round < 12; ++round) {
			// Batches around the length from which keys are sorted by their digits, and runs of singles.
			const int size = round % 3 == 0 ? 700 : 1 + random.below(60);
			store.checked(points::make(family, size, static_cast<unsigned>(round)), round % 3 == 1);
			if (testing::Test::HasFatalFailure()) FAIL() << family << " round " << round;
		}
		EXPECT_EQ(
		    support::conditionFailedBy([&] { store.insertPoints({}, store.handles, store.vNew); }),
		    "vUserHandles.empty()");
	}
}

TEST(VertexStore, OffersTheNearestTetrahedronAlongTheCurve)
{
	Store store;
	EXPECT_EQ(store.single(Point3(0.5, 0.5, 0.5)), nullptr);
	store.batch(points::make("Uniform", 39));
	EXPECT_EQ(store.findNearbyTet(Point3(0.3, 0.6, 0.4)), nullptr);
	std::vector<Point3*> listed;
	store.getVertices(listed);
	// Stand-ins for tetrahedra, told apart by their addresses only.
	std::vector<char> memory(listed.size() * sizeof(Tet3));
	points::Random random(2);
	for (int round = 0; round < 500; ++round) {
		const Point3 p = round % 2 == 0 ? random.point(-0.5, 1.5) : *random.of(listed);
		const int odds = 1 << random.below(6);
		Tet3 *pAfter = nullptr, *pBefore = nullptr;
		for (std::size_t i = 0; i < listed.size(); ++i) {
			Tet3* pTet = random.below(odds) == 0
			    ? reinterpret_cast<Tet3*>(&memory[i * sizeof(Tet3)])
			    : nullptr;
			listed[i]->setOneTet(pTet);
			const bool bBefore = store.hilbertIndex(*listed[i]) < store.hilbertIndex(p);
			if (bBefore && pTet != nullptr) pBefore = pTet;
			if (!bBefore && pAfter == nullptr) pAfter = pTet;
		}
		ASSERT_EQ(store.findNearbyTet(p), pAfter != nullptr ? pAfter : pBefore);

		// A single insert offers the vertex' own one, else that of the vertex before (for the first one:
		// behind), even when there is none.
		const auto i = static_cast<std::size_t>(random.below(40));
		Tet3* pOwn = listed[i]->getOneTet();
		ASSERT_EQ(store.single(*listed[i]),
		    pOwn != nullptr ? pOwn : listed[i == 0 ? 1 : i - 1]->getOneTet());
	}
}

TEST(VertexStoreDeathTest, AMovedBoxGetsItsWholeSizeAsMarginButATenthForTheFirstBatch)
{
	const auto insertAll = [] {
		Store store, other;
		const auto expectBox = [](const Store& s) {
			std::cerr << s.bbox.getMinX() << ".." << s.bbox.getMaxX() << " ";
			if (s.extentX != s.bbox.getRangeX()) std::cerr << "extent " << s.extentX;
		};
		const Point3 unmoved(1, 1, 2);
		for (const Point3& p : {Point3(0, 0, 0), Point3(2, 4, 8), Point3(3, 5, 9), unmoved}) {
			store.single(p);
			expectBox(store);
		}
		for (const Cloud& batch : {Cloud{unmoved, Point3(-1, 0, 0)}, Cloud{Point3(19, 1, 1)},
		         Cloud{Point3(20, 1, 1)}, Cloud{Point3(-3, 1, 1), unmoved}}) {
			store.batch(batch);
			expectBox(store);
		}
		other.batch({Point3(0, 0, 0), Point3(2, 2, 2)});
		expectBox(other);
	};
	EXPECT_FRESH_PROCESS_PRINTS(
	    insertAll(), "^0..0 -1..3 -1..3 -1..3 -1..3 -2..20 -2..20 -14.5..31.5 -1..3 $");
}
