// SPDX-License-Identifier: MIT
// The vertex store: duplicates and order against plain references.
#include "HC3.h"
#include "store/MortonOrder.h"
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

TEST(VertexStore, OrdersPointsOfAnyScaleByAllTheirBinaryDigits)
{
	// Digit by digit, the highest first: a negative coordinate before a positive one, else the one with the lower digit,
	// or where they are negative with the higher one; of one weight, that of x before that of y and z.
	const auto isBefore = [](const Point3& p, const Point3& q) {
		const double a[] = {p.x(), p.y(), p.z()}, b[] = {q.x(), q.y(), q.z()};
		for (int axis = 0; axis < 3; ++axis) {
			if ((a[axis] < 0) != (b[axis] < 0)) return a[axis] < 0;
		}
		for (int weight = 0; weight > -330; --weight) {
			for (int axis = 0; axis < 3; ++axis) {
				const auto digit = [weight](double c) {
					return std::fmod(std::floor(std::ldexp(std::abs(c), -weight)), 2);
				};
				if (digit(a[axis]) != digit(b[axis])) return a[axis] < b[axis];
			}
		}
		return false;
	};
	// Most of them share one cell of the box around the bulk, and many the digits at their scale.
	points::Random random(4);
	Cloud cloud;
	const auto coordinate = [&] {
		const double size = std::ldexp(1 + random.below(8) / 8., -60 - 10 * random.below(20));
		return random.below(9) == 0 ? 0. : random.below(2) == 0 ? size : -size;
	};
	while (cloud.size() < 3000) {
		cloud.push_back(
		    random.point(-1, 2)); // every third one, as the samples of the bulk are taken
		const Point3 p(coordinate(), coordinate(), coordinate());
		const double more = 1 + std::ldexp(random.below(4), -30);
		cloud.emplace_back(p.x() * more, p.y(), p.z());
		cloud.emplace_back(p.x(), p.y(), p.z() * more);
	}
	std::vector<const Point3*> all, small;
	for (const Point3& p : cloud) all.push_back(&p);
	for (const std::uint32_t i : mortonOrder(all)) {
		if (i % 3 > 0) small.push_back(all[i]);
	}
	ASSERT_EQ(small.size(), 2000U);
	for (std::size_t i = 1; i < small.size(); ++i) {
		ASSERT_FALSE(isBefore(*small[i], *small[i - 1])) << i;
	}
}
