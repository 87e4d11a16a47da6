// SPDX-License-Identifier: MIT
// Every variant of the batched predicates against the oracle: decided signs are exact, and all variants
// decide the same ones. T numbers the laws of ArdoTest3.h.
#include "predicates/BatchTests.h"
#include "geometry/TetIndices.h"
#include "oracle.h"
#include "points.h"
#include "predicates/BatchTestsSimd.h"

#include <gtest/gtest.h>

using namespace TULO3D;

TEST(BatchTests, NoVariantDecidesAWrongSign)
{
	const BatchTests* variants[] = {&kPortableTests, avx2Tests()};
	points::Random random(5);
	int numOf[7] = {}; // undecided, inside, outside, positive; the same side, beyond; Delaunay
	for (const points::Family& family : points::families()) {
		// Where products underflow the engine uses the first stage, and then all of them at another scale.
		const bool bUnderflow = family.name.rfind("Denormals", 0) == 0;
		const points::Cloud cloud =
		    bUnderflow ? points::make("SmallIntegers", 300) : family.make(300, 1);
		const double scales[] = {1e-62, 1e-63, 1e-64, 1e-106, 1e-107, 1e-108};
		for (int round = 0; round < 300; ++round) {
			Point3 p[9]; // four corners, a point for each facet, the query
			const int start = random.below(300);
			for (std::size_t k = 0; k < 9; ++k) {
				const auto next = (static_cast<std::size_t>(start) + k) % cloud.size();
				p[k] = round % 2 == 0 ? cloud[next] : random.of(cloud);
				if (round % 3 == 0) p[k] = random.nudged(p[k]);
				const double scale = bUnderflow ? scales[round % 6] : 1;
				p[k].exchange(scale * p[k].x(), scale * p[k].y(), scale * p[k].z());
			}
			if (bUnderflow && round % 5 == 0) p[round % 4 + 4] = Point3(1e60, 3e59, -1e60);
			const NeighbourBatch batch = {
			    {&p[0], &p[1], &p[2], &p[3]}, {&p[4], &p[5], &p[6], &p[7]}};
			const bool bFirstStage = bUnderflow && round % 4 < 2;
			const auto variantOf = [bUnderflow](const BatchTests& tests) -> const BatchTests& {
				return bUnderflow ? *tests.pForTiny : tests;
			};
			const BatchTests& portable = variantOf(kPortableTests);
			const auto verdictsOf = [&](const BatchTests& tests) {
				NeighbourVerdicts v{};
				runLoop(tests, [&](auto variant) { v = decltype(variant)::verdicts(batch, p[8]); });
				if (bFirstStage) return v;
				const NeighbourVerdicts later = tests.neighbours(batch, p[8], 0xF);
				return NeighbourVerdicts{v.inside | later.inside, v.outside | later.outside,
				    v.positive | later.positive};
			};
			const NeighbourVerdicts first = verdictsOf(portable);
			const FacetSides sides = portable.facets(batch.corner, p[8]);
			const unsigned quick = TwoLaneVariant::delaunay(batch);
			const unsigned delaunay = bFirstStage ? quick : quick | portable.delaunay(batch);
			for (const BatchTests* pTests : variants) {
				if (pTests == nullptr) continue; // not on this CPU
				pTests = &variantOf(*pTests);
				const NeighbourVerdicts v = verdictsOf(*pTests);
				ASSERT_TRUE(v.inside == first.inside && v.outside == first.outside &&
				    v.positive == first.positive)
				    << "T7";
				const FacetSides s = pTests->facets(batch.corner, p[8]);
				ASSERT_TRUE(s.positive == sides.positive && s.negative == sides.negative) << "T7";
				ASSERT_TRUE(bFirstStage || (quick | pTests->delaunay(batch)) == delaunay) << "T7";
			}
			for (int i = 0; i < 4; ++i) {
				const Point3 &a = p[kOutside[i][0]], &b = p[kOutside[i][1]], &c = p[kOutside[i][2]];
				// T1. Beyond the facet is where it is seen counter-clockwise.
				const int sphere = oracle::quickInSphere(a, b, c, p[4 + i], p[8]);
				const bool bInside = first.inside >> i & 1, bOutside = first.outside >> i & 1,
				           bPositive = first.positive >> i & 1;
				ASSERT_TRUE(!bInside || sphere > 0) << family.name << " round " << round;
				ASSERT_TRUE(!bOutside || sphere <= 0) << family.name << " round " << round;
				const int beyond = oracle::quickOrientation(a, b, c, p[8]);
				ASSERT_TRUE(!bPositive || beyond < 0) << family.name << " round " << round;
				const bool bAbove = sides.positive >> i & 1, bBelow = sides.negative >> i & 1;
				ASSERT_TRUE((!bAbove || beyond < 0) && (!bBelow || beyond > 0))
				    << family.name << " round " << round;
				const bool bDelaunay = delaunay >> i & 1;
				ASSERT_TRUE(!bDelaunay ||
				    (oracle::quickOrientation(a, b, c, p[4 + i]) > 0 &&
				        oracle::quickInSphere(a, c, b, p[i], p[4 + i]) <= 0))
				    << family.name << " round " << round;
				++numOf[bInside ? 1 : bOutside ? 2 : 0];
				numOf[3] += bPositive;
				numOf[4] += bAbove;
				numOf[5] += bBelow;
				numOf[6] += bDelaunay;
			}
		}
	}
	for (const int n : numOf) EXPECT_GT(n, 1000);
}
