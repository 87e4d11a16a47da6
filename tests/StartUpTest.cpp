// SPDX-License-Identifier: MIT
// The first tetrahedron is the one that the four plain loops find, at a cost that grows with n.
#include "Dt3.h"
#include "oracle.h"
#include "support.h"

#include <utility>

using namespace TULO3D;
using points::Cloud;

namespace {

/// The first four vertices of the listing that are not coplanar, in positive order; empty if none.
std::vector<Point3*> fourLoops(const Dt3& engine)
{
	std::vector<Point3*> v;
	engine.getVertices(v);
	const std::size_t n = v.size();
	for (std::size_t i = 0; i < n; ++i) {
		for (std::size_t j = i + 1; j < n; ++j) {
			for (std::size_t k = j + 1; k < n; ++k) {
				for (std::size_t l = k + 1; l < n; ++l) {
					const int sign = oracle::orientation(*v[i], *v[j], *v[k], *v[l]);
					if (sign != 0) return {v[sign > 0 ? i : j], v[sign > 0 ? j : i], v[k], v[l]};
				}
			}
		}
	}
	return {};
}

/// Few distinct coordinates, often on one line or plane, near the origin or far away.
Cloud degenerate(points::Random& random)
{
	Cloud cloud;
	const auto kind = static_cast<std::size_t>(random.below(5));
	for (int i = random.below(10); i >= 0; --i) {
		const double a = random.below(3), b = random.below(3), c = random.below(20) == 0 ? 1 : 0;
		const Point3 kinds[] = {{a, b, 1. * random.below(3)}, {a, 2 * a, 3 * a + c},
		    {a, b, a + b + c}, {a * 0x1p30, b, 1e15 - a * 0x1p30 - b + c},
		    {0.1 * a, 0.1 * b, 0.1 * (a + b) + c}};
		cloud.push_back(kinds[kind]);
	}
	return cloud;
}

} // namespace

TEST(StartUp, FindsTheQuadrupleOfTheFourLoops)
{
	points::Random random(1);
	int numFlat = 0;
	for (int round = 0; round < 4000; ++round) {
		Dt3 engine(nullptr);
		Cloud cloud = degenerate(random);
		// By batches, or one by one with an attempt after each, as the drivers do it.
		while (!cloud.empty() && !engine.is3D()) {
			std::vector<Point3*> handles, vNew, corners(4);
			Tet3* pTet = nullptr;
			if (round % 2 == 0 || random.below(3) == 0) {
				engine.hc3.insertPoint(cloud.back(), pTet);
				cloud.pop_back();
			} else {
				engine.hc3.insertPoints(std::exchange(cloud, {}), handles, vNew);
			}
			const std::vector<Point3*> expected = fourLoops(engine);
			pTet = engine.startUp();
			ASSERT_EQ(pTet != nullptr, !expected.empty()) << "round " << round;
			ASSERT_EQ(engine.is3D(), !expected.empty());
			if (pTet == nullptr) continue;
			pTet->getCorners(corners[0], corners[1], corners[2], corners[3]);
			ASSERT_EQ(corners, expected) << "round " << round;
			EXPECT_EQ(support::conditionFailedBy([&] { engine.startUp(); }), "!bFullDimensional");
		}
		numFlat += !engine.is3D();
	}
	EXPECT_TRUE(numFlat > 500 && numFlat < 3500) << numFlat;
}

TEST(StartUp, LargeFlatInputIsAnsweredAtOnce)
{
	for (const char* family : {"FlatGrid", "FarPlane", "LineThenTwoPoints"}) {
		support::Recorded batch, singles;
		Cloud cloud = points::make(family, 100000);
		cloud.resize(99000); // without the points at the end of the line
		batch.insert(cloud);
		EXPECT_FALSE(batch.mesh.is3D());
		EXPECT_EQ(batch.vertices().size(), cloud.size());
		for (std::size_t i = 0; i < 10000; ++i) singles.insert(cloud[i * 7 % cloud.size()]);
		EXPECT_VALID(singles);
		EXPECT_FALSE(singles.mesh.is3D());
		// A batch with points off the plane lets all of them in.
		singles.insert(Cloud{Point3(1, 1, 1e14), Point3(1, 7, 1e14)});
		EXPECT_VALID(singles);
		EXPECT_TRUE(singles.mesh.is3D() && singles.leftOut.empty());
	}
}
