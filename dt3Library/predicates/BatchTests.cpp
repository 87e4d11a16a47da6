// SPDX-License-Identifier: MIT
// The batched tests as functions, and the stages after the first one: doubles that are proved to be exact, a filter
// in doubles with a sharper bound, and one in double-doubles.
#include "predicates/BatchTests.h"
#include "ArdoTest3.h"
#include "predicates/BatchTestsSimd.h"
#include "predicates/RankRule.h"
#include "predicates/Underflow.h"

#include <cstddef>
#include <cstdint>

namespace TULO3D {

namespace {

/// What becomes of a vertex exactly on a sphere.
enum class OnSphere { kOutside, kUndecided };

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

/// The points of tests side by side that have one query point: of a tetrahedron, and one beyond each facet.
/// They are mapped before they are sorted into columns: two of the columns are the same points.
template <typename Lanes>
struct NeighbourGroup
{
	Points<Lanes> own, other, beyond, query;

	template <typename Map>
	TULO3D_ALWAYS_INLINE auto map(const Map& f) const
	{
		return facetsAnd(f(own), f(other), f(beyond));
	}
};

/// The same with a query point for each facet of a tetrahedron.
template <typename Lanes>
struct DelaunayGroup
{
	Points<Lanes> own, other, query;

	template <typename Map>
	TULO3D_ALWAYS_INLINE auto map(const Map& f) const
	{
		return mapped(facetsFromInside(own, other), f);
	}
};

/// `wanted` has a bit for each lane.
template <typename Lanes>
TULO3D_ALWAYS_INLINE bool areDecided(const LaneVerdicts<Lanes>& verdicts, unsigned wanted)
{
	constexpr unsigned kLanes = sizeof(Lanes) / sizeof(double);
	const Flags<Lanes> decided = verdicts.inside | verdicts.outside;
	bool bAll = true;
	for (unsigned i = 0; i < kLanes; ++i) bAll &= (wanted >> i & 1U) == 0 || decided[i] != 0;
	return bAll;
}

/// A magnitude in a formula: differences become sums, so that a determinant becomes its permanent.
template <typename Lanes>
struct Magnitude
{
	Lanes value;

	friend TULO3D_ALWAYS_INLINE Magnitude operator+(const Magnitude& a, const Magnitude& b)
	{
		return {a.value + b.value};
	}
	friend TULO3D_ALWAYS_INLINE Magnitude operator-(const Magnitude& a, const Magnitude& b)
	{
		return {a.value + b.value};
	}
	friend TULO3D_ALWAYS_INLINE Magnitude operator*(const Magnitude& a, const Magnitude& b)
	{
		return {a.value * b.value};
	}
};

/// What the stages have in common: the rows and determinants in doubles.
template <typename Lanes>
struct LaneStage
{
	Quad<SphereRow<Lanes>> rows;
	SphereDeterminant<Lanes> d;
};

template <template <typename> class Group, typename Lanes>
TULO3D_ALWAYS_INLINE LaneStage<Lanes> laneStage(const Group<Lanes>& group)
{
	LaneStage<Lanes> s;
	s.rows =
	    group.map([&group](const auto& p) TULO3D_INLINE_LAMBDA { return rowsOf(p, group.query); });
	s.d = determinants(s.rows);
	return s;
}

/// The bounds of the filters, before their factors.
template <typename Lanes>
using Permanents = SphereDeterminant<Magnitude<Lanes>>;

template <typename Lanes>
TULO3D_ALWAYS_INLINE Permanents<Lanes> permanents(const Quad<SphereRow<Lanes>>& rows)
{
	return determinants(mapped(rows, [](const auto& r) TULO3D_INLINE_LAMBDA {
		return SphereRow<Magnitude<Lanes>>{
		    {{magnitude(r.x)}, {magnitude(r.y)}, {magnitude(r.z)}}, {r.l}};
	}));
}

/// Doubles that happen to be exact, as on a lattice, where many determinants are exactly zero.
///
/// Let every difference of a lane be a multiple of g and at most 2^8 g in magnitude. Then a column
/// sum is at most 2^10 g, that of the lifts less than 2^20 g^2, and all values on the way to the
/// determinant are multiples of a power of g, at most 2^50 times as large: nothing was rounded, if
/// the differences themselves were not. That they are multiples of g is seen when adding 1.5 * 2^52 g
/// and taking it away again leaves them as they are; that they are exact, by their tails.
template <OnSphere onSphere, template <typename> class Group, typename Lanes>
TULO3D_ALWAYS_INLINE void exactStage(
    const Group<Lanes>& group, const LaneStage<Lanes>& s, LaneVerdicts<Lanes>& verdicts)
{
	const auto sizes = mapped(s.rows, [](const auto& r) TULO3D_INLINE_LAMBDA {
		return magnitude(r.x) + magnitude(r.y) + magnitude(r.z);
	});
	const Lanes largest = sizes.a + sizes.b + sizes.c + sizes.d;      // or more
	const Lanes powerOfTwo = maskedWith(largest, 0x7ff0000000000000); // at most that, above half
	const Lanes shifter = (1.5 * 0x1p45) * powerOfTwo; // 1.5 * 2^52 g with g = powerOfTwo / 2^7

	Flags<Lanes> inexact = (Flags<Lanes>)(powerOfTwo == 0.0); // so small that products underflow
	const auto check = [&](const Lanes& coordinate, const Lanes& origin) TULO3D_INLINE_LAMBDA {
		const DoubleDouble<Lanes> difference = twoDiff(coordinate, origin);
		const Lanes rounded = (difference.hi + shifter) - shifter;
		inexact |= (Flags<Lanes>)(difference.lo != 0.0) | (Flags<Lanes>)(rounded != difference.hi);
	};
	const auto checkPoints = [&](const Points<Lanes>& p) TULO3D_INLINE_LAMBDA {
		check(p.x, group.query.x);
		check(p.y, group.query.y);
		check(p.z, group.query.z);
	};
	const auto points = group.map([](const auto& p) TULO3D_INLINE_LAMBDA { return p; });
	checkPoints(points.a);
	checkPoints(points.b);
	checkPoints(points.c);
	checkPoints(points.d);

	verdicts.inside |= ~inexact & (Flags<Lanes>)(s.d.det < 0.0);
	const Flags<Lanes> outside = onSphere == OnSphere::kOutside ? (Flags<Lanes>)(s.d.det >= 0.0)
	                                                            : (Flags<Lanes>)(s.d.det > 0.0);
	verdicts.outside |= ~inexact & outside;
	verdicts.positive |= ~inexact & (Flags<Lanes>)(s.d.xyz > 0.0);
}

/// Doubles with a bound for their error.
template <typename Lanes>
TULO3D_ALWAYS_INLINE void filterStage(
    const LaneStage<Lanes>& s, const Permanents<Lanes>& permanent, LaneVerdicts<Lanes>& verdicts)
{
	const Lanes bound = kSphereBound * permanent.det.value;
	verdicts.inside |= (Flags<Lanes>)(s.d.det < -bound);
	verdicts.outside |= (Flags<Lanes>)(s.d.det > bound);
	verdicts.positive |= (Flags<Lanes>)(s.d.xyz > kFacetBound * permanent.xyz.value);
}

/// Double-doubles with a bound for their error: nearly cospherical points, but not quite.
template <template <typename> class Group, typename Lanes>
TULO3D_ALWAYS_INLINE void doubleDoubleStage(
    const Group<Lanes>& group, const Permanents<Lanes>& permanent, LaneVerdicts<Lanes>& verdicts)
{
	const auto rows = group.map([&group](const auto& p) TULO3D_INLINE_LAMBDA {
		const Points<Lanes>& q = group.query;
		return lifted<DoubleDouble<Lanes>>(
		    {twoDiff(p.x, q.x), twoDiff(p.y, q.y), twoDiff(p.z, q.z)});
	});
	const Lanes det = determinants(rows).det.hi;
	const Lanes bound = kSphereBoundDoubleDouble * permanent.det.value;
	verdicts.inside |= (Flags<Lanes>)(det < -bound);
	verdicts.outside |= (Flags<Lanes>)(det > bound);
}

template <OnSphere onSphere, template <typename> class Group, typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> slowStages(const Group<Lanes>& group, unsigned wanted)
{
	const LaneStage<Lanes> stage = laneStage(group);
	LaneVerdicts<Lanes> verdicts{};
	exactStage<onSphere>(group, stage, verdicts);
	if (areDecided(verdicts, wanted)) return verdicts;
	const Permanents<Lanes> permanent = permanents(stage.rows);
	filterStage(stage, permanent, verdicts);
	if (!areDecided(verdicts, wanted)) doubleDoubleStage(group, permanent, verdicts);
	return verdicts;
}

template <typename Variant, typename Stage>
TULO3D_ALWAYS_INLINE NeighbourVerdicts decideByPoints(const NeighbourBatch& batch, Stage stage)
{
	return Variant::decide(
	    batch, [](const auto& points) TULO3D_INLINE_LAMBDA { return points; }, stage);
}

template <typename Variant, OnSphere onSphere>
NeighbourVerdicts testNeighbours(const NeighbourBatch& batch, const Point3& query, unsigned wanted)
{
	return Variant::compiled([&batch, &query, wanted]() TULO3D_INLINE_LAMBDA {
		return decideByPoints<Variant>(batch,
		    [&query, wanted](const auto& own, const auto& other, const auto& beyond,
		        int firstFacet) TULO3D_INLINE_LAMBDA {
			    using Lanes = decltype(own.x + own.x);
			    const Points<Lanes> everywhere{
			        Lanes{} + query.x(), Lanes{} + query.y(), Lanes{} + query.z()};
			    return slowStages<onSphere>(
			        NeighbourGroup<Lanes>{own, other, beyond, everywhere}, wanted >> firstFacet);
		    });
	});
}

template <typename Variant>
unsigned testDelaunay(const NeighbourBatch& batch)
{
	return Variant::compiled([&batch]() TULO3D_INLINE_LAMBDA {
		const NeighbourVerdicts verdicts = decideByPoints<Variant>(batch,
		    [](const auto& own, const auto& other, const auto& opposite, int /*firstFacet*/)
		        TULO3D_INLINE_LAMBDA {
			        using Lanes = decltype(own.x + own.x);
			        return slowStages<OnSphere::kOutside>(
			            DelaunayGroup<Lanes>{own, other, opposite}, 0xFU);
		        });
		return verdicts.outside & verdicts.positive;
	});
}

#else

template <typename Variant, OnSphere>
NeighbourVerdicts testNeighbours(const NeighbourBatch&, const Point3&, unsigned)
{
	return {0, 0, 0};
}

template <typename Variant>
unsigned testDelaunay(const NeighbourBatch&)
{
	return 0;
}

#endif

/// A test at a scale where no product underflows; undecided where there is none.
template <typename Test>
auto atAnotherScale(const NeighbourBatch& batch, const Point3& query, Test test)
    -> decltype(test(batch, query))
{
	const auto& [corner, opposite] = batch;
	ScaledPoints<9> p({corner[0], corner[1], corner[2], corner[3], opposite[0], opposite[1],
	                      opposite[2], opposite[3], &query},
	    Scales::kCommon);
	if (!p.areSafe()) return {};
	return test({{&p[0], &p[1], &p[2], &p[3]}, {&p[4], &p[5], &p[6], &p[7]}}, p[8]);
}

template <typename Variant, OnSphere onSphere>
NeighbourVerdicts testScaledNeighbours(
    const NeighbourBatch& batch, const Point3& query, unsigned wanted)
{
	return atAnotherScale(batch, query, [wanted](const NeighbourBatch& scaled, const Point3& q) {
		return testNeighbours<Variant, onSphere>(scaled, q, wanted);
	});
}

template <typename Variant>
FacetSides testFacets(const Point3* const (&corner)[4], const Point3& query)
{
	return Variant::compiled(
	    [&corner, &query]() TULO3D_INLINE_LAMBDA { return Variant::sides(corner, query); });
}

template <typename Variant>
unsigned testScaledDelaunay(const NeighbourBatch& batch)
{
	return atAnotherScale(batch, *batch.corner[0],
	    [](const NeighbourBatch& scaled, const Point3&) { return testDelaunay<Variant>(scaled); });
}

bool isInConflict(const ArdoTest3& predicates, const Tet3& tet, const Point3& vtx)
{
	return predicates.sphereInclusionTest(&tet, &vtx) == SIC_INSIDE;
}

template <typename Variant>
constexpr BatchTests kTinyTestsByRank{testScaledNeighbours<Variant, OnSphere::kUndecided>,
    testFacets<Variant>, testScaledDelaunay<Variant>, isInConflictByRank, Variant::bAvx2, nullptr,
    nullptr};

template <typename Variant>
constexpr BatchTests kTestsByRank{testNeighbours<Variant, OnSphere::kUndecided>,
    testFacets<Variant>, testDelaunay<Variant>, isInConflictByRank, Variant::bAvx2,
    &kTinyTestsByRank<Variant>, nullptr};

template <typename Variant>
constexpr BatchTests kTinyTests{testScaledNeighbours<Variant, OnSphere::kOutside>,
    testFacets<Variant>, testScaledDelaunay<Variant>, isInConflict, Variant::bAvx2, nullptr,
    &kTinyTestsByRank<Variant>};

template <typename Variant>
constexpr BatchTests kTests{testNeighbours<Variant, OnSphere::kOutside>, testFacets<Variant>,
    testDelaunay<Variant>, isInConflict, Variant::bAvx2, &kTinyTests<Variant>,
    &kTestsByRank<Variant>};

} // namespace

const BatchTests kPortableTests = kTests<TwoLaneVariant>;

const BatchTests* avx2Tests()
{
	return cpuHasAvx2() ? &kTests<FourLaneVariant> : nullptr;
}

const BatchTests& bestTests()
{
	const BatchTests* avx2 = avx2Tests();
	return avx2 != nullptr ? *avx2 : kPortableTests;
}

} // namespace TULO3D
