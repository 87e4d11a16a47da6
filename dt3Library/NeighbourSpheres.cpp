// SPDX-License-Identifier: MIT
// The in-sphere tests of a cavity, four at a time, in three stages: doubles, doubles that are found
// to be exact, and double-doubles. SphereDeterminant.h has the formula and the bounds.
#include "NeighbourSpheres.h"
#include "Expansion.h"
#include "SphereDeterminant.h"
#include "TetIndices.h"

#include <cstdint>

namespace TULO3D {

namespace {

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
#  pragma GCC diagnostic ignored "-Wpsabi" // no lane ever crosses a real call

/// One double for each facet; the compiler lowers it to what the CPU has.
typedef double Lanes __attribute__((vector_size(32)));
typedef std::int64_t Flags __attribute__((vector_size(32))); // all ones or all zeros

TULO3D_ALWAYS_INLINE Lanes swapPairs(const Lanes& v)
{
	return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}

TULO3D_ALWAYS_INLINE Lanes swapHalves(const Lanes& v)
{
	return __builtin_shufflevector(v, v, 2, 3, 0, 1);
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> swapPairs(const DoubleDouble<T>& v)
{
	return {swapPairs(v.hi), swapPairs(v.lo)};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> swapHalves(const DoubleDouble<T>& v)
{
	return {swapHalves(v.hi), swapHalves(v.lo)};
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereRow<N> swapPairs(const SphereRow<N>& r)
{
	return {swapPairs(r.x), swapPairs(r.y), swapPairs(r.z), swapPairs(r.l)};
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereRow<N> swapHalves(const SphereRow<N>& r)
{
	return {swapHalves(r.x), swapHalves(r.y), swapHalves(r.z), swapHalves(r.l)};
}

TULO3D_ALWAYS_INLINE Lanes maskedWith(const Lanes& v, std::int64_t mask)
{
	return (Lanes)((Flags)v & mask);
}

TULO3D_ALWAYS_INLINE Lanes magnitude(const Lanes& v)
{
	return maskedWith(v, 0x7fffffffffffffff);
}

/// Four points by their coordinates.
struct Points
{
	Lanes x, y, z;
};

TULO3D_ALWAYS_INLINE Points gather(const Point3* const (&points)[4])
{
	const Point3 &p = *points[0], &q = *points[1], &r = *points[2], &s = *points[3];
	return {Lanes{p.x(), q.x(), r.x(), s.x()}, Lanes{p.y(), q.y(), r.y(), s.y()},
	    Lanes{p.z(), q.z(), r.z(), s.z()}};
}

/// The four determinants of a batch, its corners and opposites being rows of numbers of any kind.
template <typename N>
TULO3D_ALWAYS_INLINE SphereDeterminant<N> batchDeterminants(
    const SphereRow<N>& corners, const SphereRow<N>& opposites)
{
	const SphereRow<N> b = swapHalves(corners);
	return sphereDeterminant(swapPairs(corners), b, swapPairs(b), opposites);
}

struct LaneVerdicts
{
	Flags inside, outside, positive;
};

TULO3D_ALWAYS_INLINE bool anyUndecided(const LaneVerdicts& verdicts)
{
	const Flags decided = verdicts.inside | verdicts.outside;
	return (decided[0] & decided[1] & decided[2] & decided[3]) == 0;
}

/// The sum over a facet's three corners, for each facet.
TULO3D_ALWAYS_INLINE Lanes sumOverFacet(const Lanes& v)
{
	const Lanes halves = swapHalves(v);
	return swapPairs(v) + halves + swapPairs(halves);
}

/// What the stages have in common: the rows in doubles, and the bound before its factor.
struct LaneStage
{
	SphereRow<Lanes> corners, opposites;
	SphereDeterminant<Lanes> d;
	Lanes facetSum;  // the product of three column sums
	Lanes sphereSum; // of four
};

TULO3D_ALWAYS_INLINE LaneStage laneStage(const NeighbourBatch& batch, const Point3& query)
{
	const Points p = gather(batch.corner);
	const Points q = gather(batch.opposite);
	LaneStage s;
	s.corners = sphereRow<Lanes>(p.x - query.x(), p.y - query.y(), p.z - query.z());
	s.opposites = sphereRow<Lanes>(q.x - query.x(), q.y - query.y(), q.z - query.z());
	s.d = batchDeterminants(s.corners, s.opposites);

	const Lanes sumX = sumOverFacet(magnitude(s.corners.x));
	const Lanes sumY = sumOverFacet(magnitude(s.corners.y));
	const Lanes sumZ = sumOverFacet(magnitude(s.corners.z));
	const Lanes sumL = sumOverFacet(s.corners.l);
	s.facetSum = sumX * sumY * sumZ;
	s.sphereSum = (sumX + magnitude(s.opposites.x)) * (sumY + magnitude(s.opposites.y)) *
	    (sumZ + magnitude(s.opposites.z)) * (sumL + s.opposites.l);
	return s;
}

/// Doubles with a bound for their error.
TULO3D_ALWAYS_INLINE LaneVerdicts fastStage(const LaneStage& s)
{
	const Lanes bound = kSphereBound * s.sphereSum;
	return {(Flags)(s.d.det < -bound), (Flags)(s.d.det > bound),
	    (Flags)(s.d.xyz > kFacetBound * s.facetSum)};
}

/// Doubles that happen to be exact, as on a lattice, where ever so many determinants are zero.
///
/// Let every difference of a lane be a multiple of g and at most 2^8 g in magnitude. Then a column
/// sum is at most 2^10 g, that of the lifts less than 2^20 g^2, and all values on the way to the
/// determinant are multiples of a power of g, at most 2^50 times as large: nothing was rounded, if
/// the differences themselves were not. That they are multiples of g is seen when adding 1.5 * 2^52 g
/// and taking it away again leaves them as they are; that they are exact, by their tails.
TULO3D_ALWAYS_INLINE void exactStage(
    const NeighbourBatch& batch, const Point3& query, const LaneStage& s, LaneVerdicts& verdicts)
{
	const Points p = gather(batch.corner);
	const Points q = gather(batch.opposite);
	const Lanes cornerSum =
	    magnitude(s.corners.x) + magnitude(s.corners.y) + magnitude(s.corners.z);
	const Lanes largest = sumOverFacet(cornerSum) + magnitude(s.opposites.x) +
	    magnitude(s.opposites.y) + magnitude(s.opposites.z); // or some more
	const Lanes powerOfTwo =
	    maskedWith(largest, 0x7ff0000000000000);       // at most that, more than half
	const Lanes shifter = (1.5 * 0x1p45) * powerOfTwo; // 1.5 * 2^52 g with g = powerOfTwo / 2^7

	Flags inexact = (Flags)(powerOfTwo == 0.0); // so small that products underflow
	const auto check = [&](const Lanes& coordinate, double origin, const Lanes& shift) {
		const DoubleDouble<Lanes> difference =
		    differenceOf<Lanes>(coordinate, Lanes{origin, origin, origin, origin});
		const Lanes rounded = (difference.hi + shift) - shift;
		return (Flags)(difference.lo != 0.0) | (Flags)(rounded != difference.hi);
	};
	const auto checkCorners = [&](const Lanes& coordinate, double origin) {
		// A corner belongs to three facets, each with a g of its own.
		const Lanes lanes[3] = {
		    swapPairs(coordinate), swapHalves(coordinate), swapPairs(swapHalves(coordinate))};
		for (const Lanes& lane : lanes) inexact |= check(lane, origin, shifter);
	};
	checkCorners(p.x, query.x());
	checkCorners(p.y, query.y());
	checkCorners(p.z, query.z());
	inexact |= check(q.x, query.x(), shifter);
	inexact |= check(q.y, query.y(), shifter);
	inexact |= check(q.z, query.z(), shifter);

	verdicts.inside |= ~inexact & (Flags)(s.d.det < 0.0);
	verdicts.outside |= ~inexact & (Flags)(s.d.det >= 0.0); // on the sphere counts as outside
	verdicts.positive |= ~inexact & (Flags)(s.d.xyz > 0.0);
}

/// Double-doubles with a bound for their error: nearly cospherical points, but not quite.
TULO3D_ALWAYS_INLINE void doubleDoubleStage(
    const NeighbourBatch& batch, const Point3& query, const LaneStage& s, LaneVerdicts& verdicts)
{
	const auto rows = [&query](const Points& p) {
		const Lanes x = Lanes{} + query.x(), y = Lanes{} + query.y(), z = Lanes{} + query.z();
		return sphereRow(differenceOf(p.x, x), differenceOf(p.y, y), differenceOf(p.z, z));
	};
	const Lanes det =
	    batchDeterminants(rows(gather(batch.corner)), rows(gather(batch.opposite))).det.hi;
	const Lanes bound = kSphereBoundDoubleDouble * s.sphereSum;
	verdicts.inside |= (Flags)(det < -bound);
	verdicts.outside |= (Flags)(det > bound);
}

/// The first stage, which nearly always settles all four.
TULO3D_ALWAYS_INLINE LaneVerdicts testLanes(const NeighbourBatch& batch, const Point3& query)
{
	return fastStage(laneStage(batch, query));
}

/// All stages, for a batch with a lane in doubt.
TULO3D_ALWAYS_INLINE LaneVerdicts settleLanes(const NeighbourBatch& batch, const Point3& query)
{
	const LaneStage stage = laneStage(batch, query);
	LaneVerdicts verdicts = fastStage(stage);
	exactStage(batch, query, stage, verdicts);
	if (anyUndecided(verdicts)) doubleDoubleStage(batch, query, stage, verdicts);
	return verdicts;
}

bool allDecided(const NeighbourVerdicts& verdicts)
{
	return (verdicts.inside | verdicts.outside) == 0xfU;
}

// What follows stands once for each kind of CPU. Settling is kept out of line, or its registers
// would burden the ordinary case.

unsigned bitsOf(const Flags& mask)
{
	return static_cast<unsigned>((mask[0] & 1) | (mask[1] & 2) | (mask[2] & 4) | (mask[3] & 8));
}

__attribute__((noinline)) NeighbourVerdicts settlePortable(
    const NeighbourBatch& batch, const Point3& query)
{
	const LaneVerdicts lanes = settleLanes(batch, query);
	return {bitsOf(lanes.inside), bitsOf(lanes.outside), bitsOf(lanes.positive)};
}

#  if defined(__x86_64__)
#	define TULO3D_AVX2 __attribute__((target("avx2")))

TULO3D_AVX2 inline __attribute__((always_inline)) NeighbourVerdicts packAvx2(
    const LaneVerdicts& lanes)
{
	return {static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes)lanes.inside)),
	    static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes)lanes.outside)),
	    static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes)lanes.positive))};
}

TULO3D_AVX2 __attribute__((noinline)) NeighbourVerdicts settleAvx2(
    const NeighbourBatch& batch, const Point3& query)
{
	return packAvx2(settleLanes(batch, query));
}

TULO3D_AVX2 NeighbourVerdicts testNeighboursAvx2(const NeighbourBatch& batch, const Point3& query)
{
	const NeighbourVerdicts verdicts = packAvx2(testLanes(batch, query));
	return allDecided(verdicts) ? verdicts : settleAvx2(batch, query);
}
#  endif

#endif

} // namespace

NeighbourVerdicts testNeighboursPortable(
    [[maybe_unused]] const NeighbourBatch& batch, [[maybe_unused]] const Point3& query)
{
#if defined(__GNUC__)
	const LaneVerdicts lanes = testLanes(batch, query);
	const NeighbourVerdicts verdicts = {
	    bitsOf(lanes.inside), bitsOf(lanes.outside), bitsOf(lanes.positive)};
	return allDecided(verdicts) ? verdicts : settlePortable(batch, query);
#else
	return {0, 0, 0}; // without vector types nothing is certain here; the adaptive tests decide
#endif
}

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
