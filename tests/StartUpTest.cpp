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

} // namespace

TEST(StartUp, FindsTheQuadrupleOfTheFourLoops)
{
	points::Random random(1);
	int numFlat = 0;
	for (int round = 0; round < 4000; ++round) {
		Dt3 engine(nullptr);
		const points::Family& family = random.of(points::families());
		SCOPED_TRACE(family.name + " " + std::to_string(round));
		Cloud cloud = family.make(1 + random.below(10), static_cast<unsigned>(round));
		if (round % 3 == 0) points::shuffle(cloud, random);
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
			ASSERT_EQ(pTet != nullptr, !expected.empty());
			ASSERT_EQ(engine.is3D(), !expected.empty());
			if (pTet == nullptr) continue;
			pTet->getCorners(corners[0], corners[1], corners[2], corners[3]);
			ASSERT_EQ(corners, expected);
			EXPECT_EQ(support::conditionFailedBy([&] { engine.startUp(); }), "!bFullDimensional");
		}
		numFlat += !engine.is3D();
	}
	EXPECT_TRUE(numFlat > 500 && numFlat < 3500) << numFlat;
}
