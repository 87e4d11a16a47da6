// SPDX-License-Identifier: MIT
// The in-sphere tests of a cavity, four at a time.
//
// Seen from the query point, let facet i have the rows a, b, c, counter-clockwise from outside, and
// let o be the corner beyond it; each row is (x, y, z, l) with l = x^2 + y^2 + z^2. Then
//
//     det = o.l * |xyz| - o.z * |xyl| + o.y * |xzl| - o.x * |yzl|
//
// with the 3 x 3 minors of a, b, c is positive outside the sphere of the neighbour and negative
// inside, and |xyz| is positive where the query point is on the tetrahedron's side of the facet.
//
// The bound. Let e = 2^-53. A difference of coordinates is rounded once; a lift carries two such
// roundings, that of a square and those of two sums, 5 e. A product of the determinant is made of
// three differences and a lift, 8 e; a 2 x 2 minor adds a product and a difference, a 3 x 3 minor a
// product and two sums, the last line a product and three sums, 9 e. So each of the 24 products is
// off by at most 17 e of its magnitude, to first order. All of them together are at most the product
// of the four column sums of magnitudes, since that multiplies out to them and more. 18 e leaves
// room for the second order and the rounding of the bound itself. Likewise 8 e for |xyz|, and 9 e.
// Nothing underflows for coordinates in the range of exactness.
#include "NeighbourSpheres.h"
#include "Expansion.h"
#include "TetIndices.h"

namespace TULO3D {

namespace {

constexpr double kHalfUlp = 0x1p-53;
constexpr double kSphereBound = 18.0 * kHalfUlp;
constexpr double kFacetBound = 9.0 * kHalfUlp;

// The corners of facet i stand in lane i of these columns. They are the rows of kOutside, each
// turned so that a register of corners 0 1 2 3 becomes a column by swapping pairs or halves.
constexpr int kColumnA[4] = {1, 0, 3, 2};
constexpr int kColumnB[4] = {2, 3, 0, 1};
constexpr int kColumnC[4] = {3, 2, 1, 0};

constexpr bool columnsAreTheFacets()
{
	for (int i = 0; i < 4; ++i) {
		const int turn = placeInFacet(i, kColumnA[i]);
		if (kOutside[i][(turn + 1) % 3] != kColumnB[i]) return false;
		if (kOutside[i][(turn + 2) % 3] != kColumnC[i]) return false;
	}
	return true;
}
static_assert(columnsAreTheFacets(), "a lane would test another facet");

#if defined(__GNUC__)
#  define TULO3D_ALWAYS_INLINE inline __attribute__((always_inline))
#  pragma GCC diagnostic ignored "-Wpsabi" // no lane ever crosses a real call

/// One double for each facet; the compiler lowers it to what the CPU has.
typedef double Lanes __attribute__((vector_size(32)));
typedef std::int64_t Flags __attribute__((vector_size(32)));

TULO3D_ALWAYS_INLINE Lanes swapPairs(const Lanes& v)
{
	return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}

TULO3D_ALWAYS_INLINE Lanes swapHalves(const Lanes& v)
{
	return __builtin_shufflevector(v, v, 2, 3, 0, 1);
}

TULO3D_ALWAYS_INLINE Lanes magnitude(const Lanes& v)
{
	constexpr std::int64_t noSign = 0x7fffffffffffffff;
	return (Lanes)((Flags)v & Flags{noSign, noSign, noSign, noSign});
}

/// Four rows, one in each lane.
struct Rows
{
	Lanes x, y, z, l;
};

TULO3D_ALWAYS_INLINE Rows rowsSeenFrom(const Point3& query, const Point3* const (&points)[4])
{
	const Point3 &p = *points[0], &q = *points[1], &r = *points[2], &s = *points[3];
	const Lanes x = Lanes{p.x(), q.x(), r.x(), s.x()} - query.x();
	const Lanes y = Lanes{p.y(), q.y(), r.y(), s.y()} - query.y();
	const Lanes z = Lanes{p.z(), q.z(), r.z(), s.z()} - query.z();
	return {x, y, z, x * x + y * y + z * z};
}

TULO3D_ALWAYS_INLINE Rows swapPairs(const Rows& r)
{
	return {swapPairs(r.x), swapPairs(r.y), swapPairs(r.z), swapPairs(r.l)};
}

TULO3D_ALWAYS_INLINE Rows swapHalves(const Rows& r)
{
	return {swapHalves(r.x), swapHalves(r.y), swapHalves(r.z), swapHalves(r.l)};
}

TULO3D_ALWAYS_INLINE void testLanes(
    const NeighbourBatch& batch, const Point3& query, NeighbourVerdicts& verdicts)
{
	const Rows corners = rowsSeenFrom(query, batch.corner);
	const Rows o = rowsSeenFrom(query, batch.opposite);
	const Rows a = swapPairs(corners);
	const Rows b = swapHalves(corners);
	const Rows c = swapPairs(b);

	const Lanes xy = b.x * c.y - c.x * b.y;
	const Lanes xz = b.x * c.z - c.x * b.z;
	const Lanes yz = b.y * c.z - c.y * b.z;
	const Lanes xl = b.x * c.l - c.x * b.l;
	const Lanes yl = b.y * c.l - c.y * b.l;
	const Lanes zl = b.z * c.l - c.z * b.l;

	const Lanes xyz = a.x * yz - a.y * xz + a.z * xy;
	const Lanes xyl = a.x * yl - a.y * xl + a.l * xy;
	const Lanes xzl = a.x * zl - a.z * xl + a.l * xz;
	const Lanes yzl = a.y * zl - a.z * yl + a.l * yz;
	const Lanes det = (o.l * xyz - o.z * xyl) + (o.y * xzl - o.x * yzl);

	const Lanes sumX = magnitude(a.x) + magnitude(b.x) + magnitude(c.x);
	const Lanes sumY = magnitude(a.y) + magnitude(b.y) + magnitude(c.y);
	const Lanes sumZ = magnitude(a.z) + magnitude(b.z) + magnitude(c.z);
	const Lanes facetBound = kFacetBound * (sumX * sumY * sumZ);
	const Lanes sphereBound = kSphereBound *
	    ((sumX + magnitude(o.x)) * (sumY + magnitude(o.y)) * (sumZ + magnitude(o.z)) *
	        (a.l + b.l + c.l + o.l));

	const Flags inside = (Flags)(det < -sphereBound) & NeighbourVerdicts::kInside;
	const Flags outside = (Flags)(det > sphereBound) & NeighbourVerdicts::kOutside;
	const Flags positive = (Flags)(xyz > facetBound) & NeighbourVerdicts::kPositive;
	*reinterpret_cast<Flags*>(verdicts.flags) = inside | outside | positive;
}

#  if defined(__x86_64__)
__attribute__((target("avx2"))) void testNeighboursAvx2(
    const NeighbourBatch& batch, const Point3& query, NeighbourVerdicts& verdicts)
{
	testLanes(batch, query, verdicts);
}
#  endif

#endif

} // namespace

#if defined(__GNUC__)
void testNeighboursPortable(
    const NeighbourBatch& batch, const Point3& query, NeighbourVerdicts& verdicts)
{
	testLanes(batch, query, verdicts);
}
#else
void testNeighboursPortable(const NeighbourBatch&, const Point3&, NeighbourVerdicts& verdicts)
{
	// Without vector types nothing is certain here, and the adaptive tests decide everything.
	for (std::int64_t& flags : verdicts.flags) flags = 0;
}
#endif

NeighbourTest neighbourTestAvx2()
{
#if defined(__GNUC__) && defined(__x86_64__)
	if (__builtin_cpu_supports("avx2")) return testNeighboursAvx2;
#endif
	return nullptr;
}

NeighbourTest bestNeighbourTest()
{
	const NeighbourTest avx2 = neighbourTestAvx2();
	return avx2 != nullptr ? avx2 : testNeighboursPortable;
}

} // namespace TULO3D
