// SPDX-License-Identifier: MIT
// The batched tests as functions, and the stages after the first one: a filter in doubles with a sharper
// bound, doubles that are proved to be exact, and a filter in double-doubles.
#include "predicates/BatchTests.h"
#include "predicates/BatchTestsSimd.h"
#include "predicates/Underflow.h"

#include <cstddef>
#include <cstdint>

namespace TULO3D {

namespace {

#if defined(__GNUC__)

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

/// The points of the facets that are tested side by side: their own corners, those of the other half of
/// the tetrahedron, and the corners beyond.
template <typename Lanes>
struct Group
{
	Points<Lanes> own, other, beyond;
};

TULO3D_ALWAYS_INLINE bool allOf(const Flags2& flags)
{
	return (flags[0] & flags[1]) != 0;
}

TULO3D_ALWAYS_INLINE bool allOf(const Flags4& flags)
{
	return (flags[0] & flags[1] & flags[2] & flags[3]) != 0;
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
	LaneStage<Lanes> s;
	s.own = rowsOf(group.own, query);
	s.other = rowsOf(group.other, query);
	s.beyond = rowsOf(group.beyond, query);
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

/// Doubles that happen to be exact, as on a lattice, where many determinants are exactly zero.
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
		const DoubleDouble<Lanes> difference = twoDiff<Lanes>(coordinate, Lanes{} + origin);
		const Lanes rounded = (difference.hi + shifter) - shifter;
		inexact |= (Flags<Lanes>)(difference.lo != 0.0) | (Flags<Lanes>)(rounded != difference.hi);
	};
	const auto checkPoints = [&](const Points<Lanes>& p) TULO3D_INLINE_LAMBDA {
		check(p.x, query.x());
		check(p.y, query.y());
		check(p.z, query.z());
	};
	checkPoints(swapPairs(group.own));
	checkPoints(group.other);
	checkPoints(swapPairs(group.other));
	checkPoints(group.beyond);

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
		return lifted<DoubleDouble<Lanes>>({twoDiff(p.x, x), twoDiff(p.y, y), twoDiff(p.z, z)});
	};
	const Lanes det = determinants(rows(group.own), rows(group.other), rows(group.beyond)).det.hi;
	const Lanes bound = kSphereBoundDoubleDouble * s.sphereSum;
	verdicts.inside |= (Flags<Lanes>)(det < -bound);
	verdicts.outside |= (Flags<Lanes>)(det > bound);
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> slowStages(const Points<Lanes>& own,
    const Points<Lanes>& other, const Points<Lanes>& beyond, const Point3& query)
{
	const Group<Lanes> group{own, other, beyond};
	const LaneStage<Lanes> stage = laneStage(group, query);
	LaneVerdicts<Lanes> verdicts = fastStage(stage);
	exactStage(group, query, stage, verdicts);
	if (!allOf(verdicts.inside | verdicts.outside))
		doubleDoubleStage(group, query, stage, verdicts);
	return verdicts;
}

/// The other stages, for a batch with an undecided facet. Out of line: inlined, they would cost the hot path
/// registers (spills).
template <typename Variant>
TULO3D_ALWAYS_INLINE NeighbourVerdicts slowVerdicts(
    const NeighbourBatch& batch, const Point3& query)
{
	return Variant::compiled([&batch, &query]() TULO3D_INLINE_LAMBDA {
		return Variant::decide(
		    batch, [](const auto& points) TULO3D_INLINE_LAMBDA { return points; },
		    [&query](const auto& own, const auto& other, const auto& beyond)
		        TULO3D_INLINE_LAMBDA { return slowStages(own, other, beyond, query); });
	});
}

#else

template <typename Variant>
NeighbourVerdicts slowVerdicts(const NeighbourBatch&, const Point3&)
{
	return {0, 0, 0};
}

#endif

template <typename Variant>
NeighbourVerdicts testNeighbours(const NeighbourBatch& batch, const Point3& query)
{
	return Variant::compiled([&batch, &query]() TULO3D_INLINE_LAMBDA {
		const NeighbourVerdicts verdicts = Variant::verdicts(batch, query);
		if ((verdicts.inside | verdicts.outside) == 0xFU) return verdicts;
		return slowVerdicts<Variant>(batch, query);
	});
}

/// The same at a scale where no product underflows; undecided where there is none.
template <typename Variant>
NeighbourVerdicts testScaledNeighbours(const NeighbourBatch& batch, const Point3& query)
{
	const auto& [corner, opposite] = batch;
	ScaledPoints<9> p({corner[0], corner[1], corner[2], corner[3], opposite[0], opposite[1],
	                      opposite[2], opposite[3], &query},
	    Scales::kCommon);
	if (!p.areSafe()) return {0, 0, 0};
	return testNeighbours<Variant>(
	    {{&p[0], &p[1], &p[2], &p[3]}, {&p[4], &p[5], &p[6], &p[7]}}, p[8]);
}

template <typename Variant>
FacetSides testFacets(const Point3* const (&corner)[4], const Point3& query)
{
	return Variant::compiled(
	    [&corner, &query]() TULO3D_INLINE_LAMBDA { return Variant::sides(corner, query); });
}

template <typename Variant>
constexpr BatchTests testsOf()
{
	return {testNeighbours<Variant>, testScaledNeighbours<Variant>, testFacets<Variant>,
	    Variant::bAvx2};
}

} // namespace

const BatchTests kPortableTests = testsOf<TwoLaneVariant>();

const BatchTests* avx2Tests()
{
	static constexpr BatchTests tests = testsOf<FourLaneVariant>();
	return cpuHasAvx2() ? &tests : nullptr;
}

const BatchTests& bestTests()
{
	const BatchTests* avx2 = avx2Tests();
	return avx2 != nullptr ? *avx2 : kPortableTests;
}

} // namespace TULO3D
