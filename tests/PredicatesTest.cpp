// SPDX-License-Identifier: MIT
// Both predicates against the oracle on degenerate and nearly degenerate cases, stage by stage. O, S and T
// number the laws of ArdoTest3.h.
#include "ArdoTest3.h"
#include "oracle.h"
#include "predicates/ShewchukStages.h"
#include "support.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <gmpxx.h>

using namespace TULO3D;
using support::Cloud;

namespace {

/// Five points; the first four for an orientation, all for a sphere.
using Case = std::array<Point3, 5>;
using Order = std::array<std::size_t, 4>;

/// The case, and once more at either end of the range of exactness. A power of two changes no sign.
void addScaled(std::vector<Case>& cases, const Case& c)
{
	double least = DBL_MAX, largest = 0;
	for (const Point3& p : c) {
		for (const double v : {std::fabs(p.x()), std::fabs(p.y()), std::fabs(p.z())}) {
			least = v != 0 ? std::min(least, v) : least;
			largest = std::max(largest, v);
		}
	}
	const double low = std::ceil(std::log2(kLeastSafe / least)),
	             high = std::floor(std::log2(kMaxCoordinate / largest)); // T6
	for (const double exponent : {0.0, low, high}) {
		if (low > high) continue; // already as wide as the range
		cases.push_back(c);
		const double s = std::exp2(exponent);
		for (Point3& p : cases.back()) p = Point3(p.x() * s, p.y() * s, p.z() * s);
	}
}

std::vector<Case> makeCases()
{
	std::vector<Case> cases;
	points::Random random(7);
	for (const points::Family& family : points::families()) {
		if (family.name.rfind("Denormals", 0) == 0) continue; // they have a test of their own
		const Cloud cloud = family.make(400, 1);
		for (int i = 0; i < 200; ++i) {
			// Neighbours in the list are close to each other in many families.
			const auto start = static_cast<std::size_t>(random.below(400));
			Case c;
			for (std::size_t k = 0; k < 5; ++k) {
				c[k] = i % 2 == 0 ? cloud[(start + k) % cloud.size()] : random.of(cloud);
				if (i % 3 == 0) c[k] = random.nudged(c[k]);
			}
			addScaled(cases, c);
		}
	}
	// A map of one-ulp steps around a point exactly on a line, and around one exactly on a sphere.
	for (int i = 0; i < 625; ++i) {
		const double u = 0x1p-53 * (i / 25 - 12), v = 0x1p-53 * (i % 25 - 12);
		cases.push_back({Point3(12, 12, 12), Point3(24, 24, 24), Point3(17, 3, 5),
		    Point3(0.5 + u, 0.5 + v, 0.5), Point3(1, 2, 3)});
		cases.push_back({Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1), Point3(-1, 0, 0),
		    Point3(0.6 + u, -0.8 + v, 0)});
		cases.push_back({Point3(5 + u, 0, 0), Point3(3, 4, 0), Point3(0, 3, 4 + v),
		    Point3(0, -5, 0), Point3(-4, 0, 3 + 8 * v)});
	}
	return cases;
}

/// The library's results as signs: orient3d and insphere are negative for positive and inside.
int signOf(double det)
{
	return det < 0 ? 1 : det > 0 ? -1 : 0;
}

int parity(const Order& p)
{
	int sign = 1;
	for (std::size_t i = 0; i < 4; ++i) {
		for (std::size_t j = 0; j < i; ++j) sign *= p[j] > p[i] ? -1 : 1;
	}
	return sign;
}

/// Counts which stage decides, and checks every stage that claims to be certain against the exact sign.
struct Stages
{
	void expect(int truth, const ArdoTest3::FastStage& fast, const StageResult& b,
	    const StageResult& c, double exact)
	{
		EXPECT_EQ(fast.bCertain() ? signOf(fast.det) : truth, truth) << "T1, filter";
		EXPECT_FALSE(fast.bCertain() && truth == 0) << "T2";
		EXPECT_EQ(b.bDecided ? signOf(b.det) : truth, truth) << "T1, stage B";
		EXPECT_EQ(c.bDecided ? signOf(c.det) : truth, truth) << "T1, stage C";
		EXPECT_EQ(signOf(exact), truth) << "T4, stage D";
		++numDecided[fast.bCertain() ? 0 : b.bDecided ? 1 : c.bDecided ? 2 : 3];
	}
	/// Every stage sees all orders of some cases, and one order, another one each time, of the others.
	static bool sees(int numCase, int numOrder)
	{
		return numCase % 16 == 0 || numCase % 24 == numOrder;
	}
	~Stages()
	{
		for (const int n : numDecided) EXPECT_GT(n, 50) << "a stage is not tested";
	}
	int numDecided[4] = {};
};

/// A tetrahedron record outside of any engine.
struct Loose
{
	explicit Loose(std::array<Point3, 4> points) : corners(points), tet(made())
	{
		tet.setProperties(&corners[0], &corners[1], &corners[2], &corners[3]);
	}
	static Tet3 made()
	{
		const support::Capture quiet;
		return Tet3();
	}
	std::array<Point3, 4> corners;
	Tet3 tet;
};

} // namespace

TEST(Predicates, NoProductIsFused)
{
	// u * v - v * u is zero when both products are rounded; a fused one leaves what rounding lost.
	// Fused operations void the error bounds, and with them every stage.
	const volatile double u = 1 + 0x1p-30, v = 1 + 0x1p-31;
	const Point3 o(0, 0, 0), a(u, 0, u), b(v, 0, v), c(0, 1, 0), d(0, 2, 0);
	const ArdoTest3 test;
	EXPECT_EQ(test.orient3dFast(a, b, c, o).det, 0) << "in the tests";
	EXPECT_EQ(test.insphereFast(a, b, c, d, o).det, 0) << "in the library";
}

TEST(Predicates, ConstantsAreThePublishedOnes)
{
	// (a + b e) e^power with e = 2^-53, as in the table of Bounds.h. None of them needs rounding.
	const struct
	{
		double ArdoTest3::*pMember;
		int a, b, power;
	} bounds[] = {{&ArdoTest3::resulterrbound, 3, 8, 1}, {&ArdoTest3::ccwerrboundA, 3, 16, 1},
	    {&ArdoTest3::ccwerrboundB, 2, 12, 1}, {&ArdoTest3::ccwerrboundC, 9, 64, 2},
	    {&ArdoTest3::o3derrboundA, 7, 56, 1}, {&ArdoTest3::o3derrboundB, 3, 28, 1},
	    {&ArdoTest3::o3derrboundC, 26, 288, 2}, {&ArdoTest3::iccerrboundA, 10, 96, 1},
	    {&ArdoTest3::iccerrboundB, 4, 48, 1}, {&ArdoTest3::iccerrboundC, 44, 576, 2},
	    {&ArdoTest3::isperrboundA, 16, 224, 1}, {&ArdoTest3::isperrboundB, 5, 72, 1},
	    {&ArdoTest3::isperrboundC, 71, 1408, 2}};
	const ArdoTest3 test;
	EXPECT_EQ(test.splitter, 134217729);
	EXPECT_EQ(test.epsilon, 1.1102230246251565e-16);
	const mpq_class e(0x1p-53);
	for (const auto& bound : bounds) {
		const mpq_class whole = (bound.a + bound.b * e) * (bound.power == 2 ? mpq_class(e * e) : e);
		EXPECT_EQ(mpq_class(test.*bound.pMember), whole) << &bound - bounds;
	}
}

TEST(Predicates, OrientationIsExactInEveryStage)
{
	const ArdoTest3 test;
	Stages stages;
	int numCase = 0, numFromOthers = 0;
	for (const Case& p : makeCases()) {
		const int truth = oracle::orientation(p[0], p[1], p[2], p[3]);
		Order o{0, 1, 2, 3};
		int numOrder = 0;
		do {
			const Point3 &a = p[o[0]], &b = p[o[1]], &c = p[o[2]], &d = p[o[3]];
			const int sign = truth * parity(o);
			const Orientation3 expected[] = {
			    ORIENTATION3_NEGATIVE, ORIENTATION3_COPLANAR, ORIENTATION3_POSITIVE};
			ASSERT_EQ(test.getOrientation3(&a, &b, &c, &d), expected[1 + sign]) << "O1 to O3";
			if (!Stages::sees(numCase, numOrder++)) continue;
			const auto fast = test.orient3dFast(a, b, c, d);
			const Orient3dRows rows = orient3dRows(a, b, c, d);
			const StageResult fromOthers = orient3dFromOthers(test, a, b, c, d);
			numFromOthers += fromOthers.bDecided && !fast.bCertain();
			ASSERT_TRUE(!fromOthers.bDecided || (fromOthers.det < 0 ? 1 : -1) == sign);
			const StageResult stageB = orient3dStageB(test, rows, fast.permanent);
			stages.expect(sign, fast, stageB,
			    orient3dStageC(test, rows, fast.permanent, stageB.det), orient3dExact(test, rows));
		} while (std::next_permutation(o.begin(), o.end()));
		++numCase;
	}
	EXPECT_GT(numFromOthers, 100);
}

TEST(Predicates, InSphereIsExactInEveryStage)
{
	const ArdoTest3 test;
	Stages stages;
	int numCase = 0, numDoubleDouble = 0;
	for (Case p : makeCases()) {
		const int orientation = oracle::orientation(p[0], p[1], p[2], p[3]);
		if (orientation == 0) continue;
		if (orientation < 0) std::swap(p[0], p[1]);
		const int truth = oracle::inSphere(p[0], p[1], p[2], p[3], p[4]);
		// Deliberate: on the sphere is outside (S2), but the coordinates of a corner are inside (S3).
		Loose t({p[0], p[1], p[2], p[3]});
		const bool bCorner = t.tet.hasVertex(p[4]);
		Order o{0, 1, 2, 3};
		int numOrder = 0;
		do {
			const int sign = truth * parity(o);
			for (std::size_t i = 0; i < 4; ++i)
				t.tet.setCorner(static_cast<int>(i), &t.corners[o[i]]);
			ASSERT_EQ(test.sphereInclusionTest(&t.tet, &p[4]),
			    sign > 0 || bCorner ? SIC_INSIDE : SIC_OUTSIDE)
			    << "S1 to S4";
			if (!Stages::sees(numCase, numOrder++)) continue;
			const Point3 &a = p[o[0]], &b = p[o[1]], &c = p[o[2]], &d = p[o[3]], &e = p[4];
			const auto fast = test.insphereFast(a, b, c, d, e);
			const InsphereRows rows = insphereRows(a, b, c, d, e);
			const StageResult stageB = insphereStageB(test, rows, fast.permanent);
			stages.expect(sign, fast, stageB,
			    insphereStageC(test, rows, fast.permanent, stageB.det),
			    insphereExact(test, a, b, c, d, e));
			const auto twice = insphereDoubleDouble(rows, fast.permanent);
			EXPECT_EQ(twice.bDecided ? signOf(twice.det) : sign, sign) << "T1, double-doubles";
			numDoubleDouble += twice.bDecided && !fast.bCertain();
		} while (std::next_permutation(o.begin(), o.end()));
		++numCase;
	}
	EXPECT_GT(numDoubleDouble, 50);
}

TEST(Predicates, SignsAreExactWhateverUnderflows)
{
	const ArdoTest3 test;
	points::Random random(3);
	int numOf[3] = {}, numCase = 0;
	for (Case p : makeCases()) {
		if (++numCase % 8 != 0) continue;
		// One to three axes shrink, together or not, perhaps so far that only a few bits are left. A point may lie
		// at the upper limit: nothing can be scaled up then.
		const double scales[] = {1, 0x1p-300, 0x1p-700, 0x1p-1060};
		const double sz = random.below(4) == 0 ? 0x1p-700 : 0x1p-1040;
		const bool bTogether = random.below(3) == 0;
		const double sx = bTogether ? sz : random.of(scales),
		             sy = bTogether ? sz : random.of(scales);
		for (Point3& q : p) q = Point3(q.x() * sx, q.y() * sy, q.z() * sz);
		if (random.below(3) == 0) p[0] = Point3(kMaxCoordinate, p[0].y(), kMaxCoordinate);
		const int truth = oracle::orientation(p[0], p[1], p[2], p[3]);
		const Orientation3 expected[] = {
		    ORIENTATION3_NEGATIVE, ORIENTATION3_COPLANAR, ORIENTATION3_POSITIVE};
		ASSERT_EQ(test.getOrientation3(&p[0], &p[1], &p[2], &p[3]), expected[1 + truth]) << "T5";
		++numOf[1 + truth];
		if (truth == 0) continue;
		if (truth < 0) std::swap(p[0], p[1]);
		const Loose t({p[0], p[1], p[2], p[3]});
		const bool bInside = oracle::inSphere(p[0], p[1], p[2], p[3], p[4]) > 0;
		ASSERT_EQ(test.sphereInclusionTest(&t.tet, &p[4]),
		    bInside || t.tet.hasVertex(p[4]) ? SIC_INSIDE : SIC_OUTSIDE)
		    << "T5";
	}
	EXPECT_TRUE(numOf[0] > 200 && numOf[1] > 200 && numOf[2] > 200);

	// Half of the least number would be none.
	const double least = DBL_TRUE_MIN;
	const Loose widest(
	    {Point3(0, 0, 0), Point3(least, 0, 0), Point3(0, least, 0), Point3(0, 0, kMaxCoordinate)});
	const Point3 onSphere(least, least, 0);
	EXPECT_EQ(test.sphereInclusionTest(&widest.tet, &onSphere), SIC_OUTSIDE);
}
