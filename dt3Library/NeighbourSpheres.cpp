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

// A register holds the facets of a batch side by side: all four, or the two of one half. A CPU whose
// registers are shorter than the type would be slowed down rather than helped.
typedef double Lanes2 __attribute__((vector_size(16)));
typedef double Lanes4 __attribute__((vector_size(32)));
typedef std::int64_t Flags2 __attribute__((vector_size(16))); // all ones or all zeros
typedef std::int64_t Flags4 __attribute__((vector_size(32)));

template <typename Lanes>
struct FlagsOf;
template <>
struct FlagsOf<Lanes2>
{
	using Type = Flags2;
};
template <>
struct FlagsOf<Lanes4>
{
	using Type = Flags4;
};
template <typename Lanes>
using Flags = typename FlagsOf<Lanes>::Type;

TULO3D_ALWAYS_INLINE Lanes2 swapPairs(const Lanes2& v)
{
	return __builtin_shufflevector(v, v, 1, 0);
}

TULO3D_ALWAYS_INLINE Lanes4 swapPairs(const Lanes4& v)
{
	return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}

TULO3D_ALWAYS_INLINE Lanes4 swapHalves(const Lanes4& v)
{
	return __builtin_shufflevector(v, v, 2, 3, 0, 1);
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE DoubleDouble<Lanes> swapPairs(const DoubleDouble<Lanes>& v)
{
	return {swapPairs(v.hi), swapPairs(v.lo)};
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereRow<N> swapPairs(const SphereRow<N>& r)
{
	return {swapPairs(r.x), swapPairs(r.y), swapPairs(r.z), swapPairs(r.l)};
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE Lanes maskedWith(const Lanes& v, std::int64_t mask)
{
	return (Lanes)((Flags<Lanes>)v & mask);
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE Lanes magnitude(const Lanes& v)
{
	return maskedWith(v, 0x7fffffffffffffff);
}

/// Points side by side, by their coordinates.
template <typename Lanes>
struct Points
{
	Lanes x, y, z;
};

TULO3D_ALWAYS_INLINE Points<Lanes2> gather(const Point3* pP, const Point3* pQ)
{
	return {Lanes2{pP->x(), pQ->x()}, Lanes2{pP->y(), pQ->y()}, Lanes2{pP->z(), pQ->z()}};
}

TULO3D_ALWAYS_INLINE Points<Lanes4> gather(const Point3* const (&p)[4])
{
	return {Lanes4{p[0]->x(), p[1]->x(), p[2]->x(), p[3]->x()},
	    Lanes4{p[0]->y(), p[1]->y(), p[2]->y(), p[3]->y()},
	    Lanes4{p[0]->z(), p[1]->z(), p[2]->z(), p[3]->z()}};
}

/// The facets of a batch that are tested side by side: their own corners, those of the other half of
/// the tetrahedron, and the corners beyond.
template <typename Lanes>
struct Group
{
	Points<Lanes> own, other, beyond;
};

TULO3D_ALWAYS_INLINE Group<Lanes4> wholeBatch(const NeighbourBatch& batch)
{
	const Points<Lanes4> own = gather(batch.corner);
	return {own, {swapHalves(own.x), swapHalves(own.y), swapHalves(own.z)}, gather(batch.opposite)};
}

/// Facets 0 and 1, or 2 and 3.
TULO3D_ALWAYS_INLINE Group<Lanes2> halfBatch(const NeighbourBatch& batch, int half)
{
	const Point3* const* own = batch.corner + 2 * half;
	const Point3* const* other = batch.corner + 2 - 2 * half;
	const Point3* const* beyond = batch.opposite + 2 * half;
	return {gather(own[0], own[1]), gather(other[0], other[1]), gather(beyond[0], beyond[1])};
}

template <typename Lanes>
struct LaneVerdicts
{
	Flags<Lanes> inside, outside, positive;
};

TULO3D_ALWAYS_INLINE bool allOf(const Flags2& flags)
{
	return (flags[0] & flags[1]) != 0;
}

TULO3D_ALWAYS_INLINE bool allOf(const Flags4& flags)
{
	return (flags[0] & flags[1] & flags[2] & flags[3]) != 0;
}

/// Over the three corners of a facet: columns A, B and C of the table above.
template <typename Lanes>
TULO3D_ALWAYS_INLINE Lanes sumOverFacet(const Lanes& own, const Lanes& other)
{
	return swapPairs(own) + other + swapPairs(other);
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereDeterminant<N> determinants(
    const SphereRow<N>& own, const SphereRow<N>& other, const SphereRow<N>& beyond)
{
	return sphereDeterminant(swapPairs(own), other, swapPairs(other), beyond);
}

/// What the stages have in common: the rows and determinants in doubles, and the bounds before
/// their factors.
template <typename Lanes>
struct LaneStage
{
	SphereRow<Lanes> own, other, beyond;
	SphereDeterminant<Lanes> d;
	Lanes facetSum;  // the product of three column sums
	Lanes sphereSum; // of four
};

template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneStage<Lanes> laneStage(const Group<Lanes>& group, const Point3& query)
{
	const auto rows = [&query](const Points<Lanes>& p) TULO3D_INLINE_LAMBDA {
		return sphereRow<Lanes>(p.x - query.x(), p.y - query.y(), p.z - query.z());
	};
	LaneStage<Lanes> s;
	s.own = rows(group.own);
	s.other = rows(group.other);
	s.beyond = rows(group.beyond);
	s.d = determinants(s.own, s.other, s.beyond);

	const Lanes sumX = sumOverFacet(magnitude(s.own.x), magnitude(s.other.x));
	const Lanes sumY = sumOverFacet(magnitude(s.own.y), magnitude(s.other.y));
	const Lanes sumZ = sumOverFacet(magnitude(s.own.z), magnitude(s.other.z));
	const Lanes sumL = sumOverFacet(s.own.l, s.other.l);
	s.facetSum = sumX * sumY * sumZ;
	s.sphereSum = (sumX + magnitude(s.beyond.x)) * (sumY + magnitude(s.beyond.y)) *
	    (sumZ + magnitude(s.beyond.z)) * (sumL + s.beyond.l);
	return s;
}

/// Doubles with a bound for their error.
template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> fastStage(const LaneStage<Lanes>& s)
{
	const Lanes bound = kSphereBound * s.sphereSum;
	return {(Flags<Lanes>)(s.d.det < -bound), (Flags<Lanes>)(s.d.det > bound),
	    (Flags<Lanes>)(s.d.xyz > kFacetBound * s.facetSum)};
}

/// Doubles that happen to be exact, as on a lattice, where ever so many determinants are zero.
///
/// Let every difference of a lane be a multiple of g and at most 2^8 g in magnitude. Then a column
/// sum is at most 2^10 g, that of the lifts less than 2^20 g^2, and all values on the way to the
/// determinant are multiples of a power of g, at most 2^50 times as large: nothing was rounded, if
/// the differences themselves were not. That they are multiples of g is seen when adding 1.5 * 2^52 g
/// and taking it away again leaves them as they are; that they are exact, by their tails.
template <typename Lanes>
TULO3D_ALWAYS_INLINE void exactStage(const Group<Lanes>& group, const Point3& query,
    const LaneStage<Lanes>& s, LaneVerdicts<Lanes>& verdicts)
{
	const auto size = [](const SphereRow<Lanes>& r) TULO3D_INLINE_LAMBDA {
		return magnitude(r.x) + magnitude(r.y) + magnitude(r.z);
	};
	const Lanes largest =
	    sumOverFacet<Lanes>(size(s.own), size(s.other)) + size(s.beyond); // or more
	const Lanes powerOfTwo = maskedWith(largest, 0x7ff0000000000000); // at most that, above half
	const Lanes shifter = (1.5 * 0x1p45) * powerOfTwo; // 1.5 * 2^52 g with g = powerOfTwo / 2^7

	Flags<Lanes> inexact = (Flags<Lanes>)(powerOfTwo == 0.0); // so small that products underflow
	const auto check = [&](const Lanes& coordinate, double origin) TULO3D_INLINE_LAMBDA {
		const DoubleDouble<Lanes> difference = differenceOf<Lanes>(coordinate, Lanes{} + origin);
		const Lanes rounded = (difference.hi + shifter) - shifter;
		inexact |= (Flags<Lanes>)(difference.lo != 0.0) | (Flags<Lanes>)(rounded != difference.hi);
	};
	const auto checkPoints = [&](const Lanes& x, const Lanes& y, const Lanes& z)
	                             TULO3D_INLINE_LAMBDA {
		                             check(x, query.x());
		                             check(y, query.y());
		                             check(z, query.z());
	                             };
	const Points<Lanes>&own = group.own, &other = group.other, &beyond = group.beyond;
	checkPoints(swapPairs(own.x), swapPairs(own.y), swapPairs(own.z));
	checkPoints(other.x, other.y, other.z);
	checkPoints(swapPairs(other.x), swapPairs(other.y), swapPairs(other.z));
	checkPoints(beyond.x, beyond.y, beyond.z);

	verdicts.inside |= ~inexact & (Flags<Lanes>)(s.d.det < 0.0);
	verdicts.outside |=
	    ~inexact & (Flags<Lanes>)(s.d.det >= 0.0); // on the sphere counts as outside
	verdicts.positive |= ~inexact & (Flags<Lanes>)(s.d.xyz > 0.0);
}

/// Double-doubles with a bound for their error: nearly cospherical points, but not quite.
template <typename Lanes>
TULO3D_ALWAYS_INLINE void doubleDoubleStage(const Group<Lanes>& group, const Point3& query,
    const LaneStage<Lanes>& s, LaneVerdicts<Lanes>& verdicts)
{
	const auto rows = [&query](const Points<Lanes>& p) TULO3D_INLINE_LAMBDA {
		const Lanes x = Lanes{} + query.x(), y = Lanes{} + query.y(), z = Lanes{} + query.z();
		return sphereRow(differenceOf(p.x, x), differenceOf(p.y, y), differenceOf(p.z, z));
	};
	const Lanes det = determinants(rows(group.own), rows(group.other), rows(group.beyond)).det.hi;
	const Lanes bound = kSphereBoundDoubleDouble * s.sphereSum;
	verdicts.inside |= (Flags<Lanes>)(det < -bound);
	verdicts.outside |= (Flags<Lanes>)(det > bound);
}

/// The first stage, which nearly always settles everything.
template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> testLanes(const Group<Lanes>& group, const Point3& query)
{
	return fastStage(laneStage(group, query));
}

/// All stages, for a group with a lane in doubt.
template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> settleLanes(const Group<Lanes>& group, const Point3& query)
{
	const LaneStage<Lanes> stage = laneStage(group, query);
	LaneVerdicts<Lanes> verdicts = fastStage(stage);
	exactStage(group, query, stage, verdicts);
	if (!allOf(verdicts.inside | verdicts.outside))
		doubleDoubleStage(group, query, stage, verdicts);
	return verdicts;
}

// What follows stands once for each kind of CPU. Settling is kept out of line, or its registers
// would burden the ordinary case.

__attribute__((noinline)) LaneVerdicts<Lanes2> settleHalf(
    const NeighbourBatch& batch, int half, const Point3& query)
{
	return settleLanes(halfBatch(batch, half), query);
}

/// The bits of facets 0 and 1, or 2 and 3.
void testHalf(
    const NeighbourBatch& batch, int half, const Point3& query, NeighbourVerdicts& verdicts)
{
	LaneVerdicts<Lanes2> lanes = testLanes(halfBatch(batch, half), query);
	if (!allOf(lanes.inside | lanes.outside)) lanes = settleHalf(batch, half, query);
	const auto bits = [half](const Flags2& flags) {
		return static_cast<unsigned>((flags[0] & 1) | (flags[1] & 2)) << 2 * half;
	};
	verdicts.inside |= bits(lanes.inside);
	verdicts.outside |= bits(lanes.outside);
	verdicts.positive |= bits(lanes.positive);
}

#  if defined(__x86_64__)
#	define TULO3D_AVX2 __attribute__((target("avx2")))

TULO3D_AVX2 inline __attribute__((always_inline)) NeighbourVerdicts packAvx2(
    const LaneVerdicts<Lanes4>& lanes)
{
	return {static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes4)lanes.inside)),
	    static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes4)lanes.outside)),
	    static_cast<unsigned>(__builtin_ia32_movmskpd256((Lanes4)lanes.positive))};
}

TULO3D_AVX2 __attribute__((noinline)) NeighbourVerdicts settleAvx2(
    const NeighbourBatch& batch, const Point3& query)
{
	return packAvx2(settleLanes(wholeBatch(batch), query));
}

TULO3D_AVX2 NeighbourVerdicts testNeighboursAvx2(const NeighbourBatch& batch, const Point3& query)
{
	const NeighbourVerdicts verdicts = packAvx2(testLanes(wholeBatch(batch), query));
	if ((verdicts.inside | verdicts.outside) == 0xfU) return verdicts;
	return settleAvx2(batch, query);
}
#  endif

#endif

} // namespace

NeighbourVerdicts testNeighboursPortable(
    [[maybe_unused]] const NeighbourBatch& batch, [[maybe_unused]] const Point3& query)
{
	NeighbourVerdicts verdicts = {0, 0, 0};
#if defined(__GNUC__) // without vector types nothing is certain here; the adaptive tests decide
	testHalf(batch, 0, query, verdicts);
	testHalf(batch, 1, query, verdicts);
#endif
	return verdicts;
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
